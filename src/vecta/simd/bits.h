// Answers for each byte as bits of a byte: comparisons gathered, bits of several vectors put together; and differences
// of bytes, of which such answers are made.
//
// withBits(v, mask, bits): s8, v with these bits, which it has not, in the true lanes
// selectBits(mask, a, b): u8, the bits of a where the mask has ones, else those of b
// gatherBits<ofTrue>(masks, next, first): u8, with AVX-512 alone: bit k of lane i is set where lane i + first[k] of
// masks[k], followed by next[k], is true if bit k of ofTrue is set, else where it is false; first[k] is below 64
// subtractWideInLanes(a, b): u8 -> s16, exact
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

#if defined(__AVX512BW__)

RVK_INLINE Vec<int8_t> withBits(Vec<int8_t> v, Mask<int8_t> m, Vec<int8_t> bits)
{
    return vec<int8_t>(_mm512_mask_add_epi8(reg(v), m.bits, reg(v), reg(bits)));
}

RVK_INLINE Vec<uint8_t> selectBits(Vec<uint8_t> mask, Vec<uint8_t> a, Vec<uint8_t> b)
{
    return vec<uint8_t>(_mm512_ternarylogic_epi32(reg(mask), reg(a), reg(b), 0xca));
}

// Eight masks of eight bytes are turned to eight squares of 8x8 bits, whose rows begin with the last mask, as GFNI has
// them: it multiplies each byte by such a square, and 1 << i gives column i.
struct BitSquares
{
    alignas(64) uint8_t lanes[64] = {};
    constexpr BitSquares()
    {
        for (size_t i = 0; i < 64; ++i)
            lanes[i] = static_cast<uint8_t>((7 - i % 8) * 8 + i / 8);
    }
};
constexpr BitSquares kBitSquares;

template <uint8_t ofTrue>
RVK_INLINE Vec<uint8_t> gatherBits(const uint64_t (&masks)[8], const uint64_t (&next)[8], const uint64_t (&first)[8])
{
    constexpr int64_t columns = static_cast<int64_t>(0x8040201008040201);
    constexpr int invert = 0xff ^ ofTrue;
    __m512i counts = _mm512_loadu_si512(first);
    __asm__("" : "+v"(counts)); // clang 14 turns a shift by known counts round, and then takes 0 for 64
    const __m512i shifted = _mm512_shrdv_epi64(_mm512_loadu_si512(masks), _mm512_loadu_si512(next), counts);
    const __m512i squares = _mm512_permutexvar_epi8(_mm512_load_si512(kBitSquares.lanes), shifted);
    return vec<uint8_t>(_mm512_gf2p8affine_epi64_epi8(_mm512_set1_epi64(columns), squares, invert));
}

#elif defined(__ARM_NEON)

RVK_INLINE Vec<uint8_t> selectBits(Vec<uint8_t> mask, Vec<uint8_t> a, Vec<uint8_t> b)
{
    return vec(vbslq_u8(reg(mask), reg(a), reg(b)));
}

RVK_INLINE Vec<int8_t> withBits(Vec<int8_t> v, Mask<int8_t> m, Vec<int8_t> bits)
{
    return bitCast<int8_t>(selectBits(bitCast<uint8_t>(bits), m.bits, bitCast<uint8_t>(v)));
}

#else

RVK_INLINE Vec<int8_t> withBits(Vec<int8_t> v, Mask<int8_t> m, Vec<int8_t> bits)
{
    return v | (toVec(m) & bits);
}

RVK_INLINE Vec<uint8_t> selectBits(Vec<uint8_t> mask, Vec<uint8_t> a, Vec<uint8_t> b)
{
    return ((a ^ b) & mask) ^ b;
}

#endif

#if defined(__x86_64__)
// The bytes beside each other, and then one multiplication by 1 and -1 for each half.
RVK_INLINE Vecs<int16_t, 2> subtractWideInLanes(Vec<uint8_t> a, Vec<uint8_t> b)
{
    const Vec<int8_t> signs = bitCast<int8_t>(splat<uint16_t>(0xff01));
    return both(zipInLanes(a, b), [=](auto pairs) RVK_INLINE_LAMBDA { return dotPairs(pairs, signs); });
}
#else
RVK_INLINE Vecs<int16_t, 2> subtractWideInLanes(Vec<uint8_t> a, Vec<uint8_t> b)
{
    return subtractWide(a, b);
}
#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA

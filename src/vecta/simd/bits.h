// Answers for each byte as bits of a byte: comparisons gathered, bits of several vectors put together; and differences
// of bytes, of which such answers are made.
//
// withBits(v, mask, bits): s8, v with these bits, which it has not, in the true lanes
// selectBits(mask, a, b): u8, the bits of a where the mask has ones, else those of b
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

// Bilinear values of single pixels of four neighbours in a word each, where products are summed in one operation: a
// word for each pixel from the first to the last step, and nothing moves between vectors.
#pragma once

#include "vecta/simd/tiles.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

// The lower half of each word, in both halves.
RVK_INLINE Vec<int16_t> lowHalvesTwice(Vec<uint32_t> v)
{
    const Vec<uint32_t> places = anyVector(splat(0x01000100u) + (iota<uint32_t>() & splat(3u)) * splat(0x04040404u));
    return vec<int16_t>(_mm512_shuffle_epi8(reg(v), reg(places))); // clang would make two of it that need no places
}

RVK_INLINE Vec<int16_t> splatHalves(int32_t low, int32_t high)
{
    return bitCast<int16_t>(splat(static_cast<uint32_t>(low & 65535) | static_cast<uint32_t>(high) << 16));
}

// The upper half of each word, not negative, times a number below 2^15; and that added to acc.
RVK_INLINE Vec<uint32_t> productOfUpperHalves(Vec<uint32_t> v, uint32_t factor)
{
    return bitCast<uint32_t>(dotPairs(bitCast<int16_t>(v), bitCast<int16_t>(splat(factor << 16))));
}
RVK_INLINE Vec<uint32_t> addProductOfUpperHalves(Vec<uint32_t> acc, Vec<uint32_t> v, uint32_t factor)
{
    return bitCast<uint32_t>(
        addDotPairs(bitCast<int32_t>(acc), bitCast<int16_t>(v), bitCast<int16_t>(splat(factor << 16))));
}

// Words of two neighbours above, in their lower half, and of the two below, as bilinearOfWords takes them.
RVK_INLINE Vec<uint32_t> pairsOfRows(Vec<uint32_t> above, Vec<uint32_t> below)
{
    const Vec<uint16_t> both = blend(0xaaaaaaaa, bitCast<uint16_t>(above), bitCast<uint16_t>(shiftLeft(below, 16)));
    const Vec<uint8_t> bytes = bitCast<uint8_t>(both);
    return bitCast<uint32_t>(shuffle(bytes, bytes, [](size_t i) { return i / 4 * 4 + i % 2 * 2 + i % 4 / 2; }));
}

// Of words of the upper and lower left, the upper and lower right neighbour and the lower halves of coordinates, their
// fractions:
//
//     left = upper * 128 + (((lower - upper) * 128 * (fy >> 1) + 2^14) >> 15), right likewise
//     value = (left + (((right - left) * fx) >> 16) + 64) >> 7
//
// in the upper bits of words: value * 2^kBilinearBits + less than that. All between is exact: of a fraction less 2^15,
// which has a sign, the products lack what half of the sum of both neighbours makes good. Left and right are negative,
// for weights can be -2^15.
constexpr unsigned kBilinearBits = 23;

// The weights that these take of fractions: as many steps further on, those of x are by the steps in lower halves, less
// the steps in upper ones, and those of y by the steps in both, where these are even: the lowest bit of fy is dropped.
RVK_INLINE Vec<int16_t> weightsOfX(Vec<uint32_t> x)
{
    return lowHalvesTwice(x) ^ splatHalves(1 << 15, (1 << 15) - 1);
}
RVK_INLINE Vec<int16_t> weightsOfY(Vec<uint32_t> y)
{
    return (lowHalvesTwice(y) ^ splatHalves(1 << 15, 1 << 15)) & splatHalves(-2, -2);
}

RVK_INLINE Vec<uint32_t> bilinearOfWords(Vec<uint32_t> words, Vec<int16_t> across, Vec<int16_t> down)
{
    const Vec<uint8_t> bytes = bitCast<uint8_t>(words);
    const Vec<int16_t> leftAndRight = dotPairs(bytes, bitCast<int8_t>(splatPair(-64, -64))) -
                                      multiplyRounded(dotPairs(bytes, bitCast<int8_t>(splatPair(-64, 64))), down);
    const Vec<int32_t> half = addDotPairs(splat(1 << (kBilinearBits - 1)), leftAndRight, splatHalves(-32768, -32767));
    return bitCast<uint32_t>(addDotPairs(half, leftAndRight, across));
}

// Eight bits of each word, from bit `shift` on, in all of its bytes.
template <unsigned shift>
RVK_INLINE Vec<uint8_t> bitsFourTimes(Vec<uint32_t> v)
{
    const Register places = reg(splat((uint64_t{shift + 32} * 0x01010101 << 32) | uint64_t{shift} * 0x01010101));
    return vec<uint8_t>(_mm512_multishift_epi64_epi8(places, reg(v)));
}

// Eight bits of each word, from bit `shift` on: those of the first words of the vectors, of the second ones, ...
template <unsigned shift>
RVK_INLINE Vec<uint8_t> takeBits(const Vecs<uint32_t, 4>& v)
{
    const Register places = reg(splat((uint64_t{shift + 32} * 0x01010101 << 32) | uint64_t{shift} * 0x01010101));
    Register bytes = _mm512_multishift_epi64_epi8(places, reg(v[0]));
    unrolled<3>([&](auto i) RVK_INLINE_LAMBDA {
        __mmask64 everyFourth = 0x2222222222222222 << i;
        __asm__("" : "+Yk"(everyFourth)); // with a mask that it knows, clang makes two operations of each
        bytes = _mm512_mask_multishift_epi64_epi8(bytes, everyFourth, places, reg(v[i + 1]));
    });
    return vec<uint8_t>(bytes);
}

// The same in the order of the vectors.
template <unsigned shift>
RVK_INLINE Vec<uint8_t> takeBitsInOrder(const Vecs<uint32_t, 4>& v)
{
    const Vec<uint8_t> bytes = takeBits<shift>(v);
    return shuffle(bytes, bytes, [](size_t i) { return i % 16 * 4 + i / 16; });
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#endif

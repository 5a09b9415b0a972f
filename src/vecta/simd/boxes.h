// Rectangles of a picture in registers, for pixels whose positions are near each other, but not in order: a permutation
// of bytes takes them from there in a fraction of the time of loads from everywhere.
#pragma once

#include "vecta/simd/simd.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

// The first two words.
RVK_INLINE uint64_t firstPair(Vec<uint32_t> v)
{
    return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm512_castsi512_si128(reg(v))));
}

// One of each four words, in all four: what a step has for several boxes stands in four lanes.
template <size_t lane>
RVK_INLINE Vec<uint32_t> ofEachFour(Vec<uint32_t> v)
{
    return shuffle(v, v, [](size_t i) { return i / 4 * 4 + lane; });
}

// 256 pixels of a byte: 32 columns and 8 rows, or 16 and 16.
template <uint32_t columns>
class Box
{
public:
    static constexpr uint32_t width = columns, height = 256 / columns;

    // From the pixel at p on.
    RVK_INLINE Box(const uint8_t* p, size_t stride)
    {
        static_assert(columns == 16 || columns == 32);
        constexpr size_t rows = height / 4; // in a vector
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { m_pixels.quarter[i] = loadRows(p + i * rows * stride, stride); });
    }

    // Pixels by their numbers, columns * row + column, in the lowest bytes of words, and what is so much after them:
    // the byte `offset` of these words. What is outside of the box is any of its pixels.
    RVK_INLINE Vec<uint32_t> words(Vec<uint32_t> numbers, Vec<uint8_t> offsets) const
    {
        const Vec<uint8_t> bytes = bitCast<uint8_t>(numbers);
        const Vec<uint8_t> fourTimes = shuffle(bytes, bytes, [](size_t i) { return i / 4 * 4; });
        return bitCast<uint32_t>(lookup(m_pixels, fourTimes + offsets));
    }
    // The four neighbours to the right and below, the upper left one first.
    static RVK_INLINE Vec<uint8_t> squaresByColumns() { return offsets(0, columns, 1, columns + 1); }
    static RVK_INLINE Vec<uint8_t> squaresByRows() { return offsets(0, 1, columns, columns + 1); }

private:
    static RVK_INLINE Vec<uint8_t> offsets(uint32_t first, uint32_t second, uint32_t third, uint32_t fourth)
    {
        return bitCast<uint8_t>(splat(first | second << 8 | third << 16 | fourth << 24));
    }
    static RVK_INLINE Vec<uint8_t> loadRows(const uint8_t* p, size_t stride)
    {
        if constexpr (columns == 16) {
            const uint8_t* const rows[4] = {p, p + stride, p + 2 * stride, p + 3 * stride};
            return loadEach16(rows, 0);
        } else {
            const __m256i upper = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
            const __m256i lower = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + stride));
            return vec<uint8_t>(_mm512_inserti64x4(_mm512_castsi256_si512(upper), lower, 1));
        }
    }

    Table256 m_pixels;
};

// 64 pixels of a byte: 8 columns and 8 rows. One permutation takes any of them.
class SquareBox
{
public:
    static constexpr uint32_t side = 8;

    // From the pixel at p on.
    RVK_INLINE SquareBox(const uint8_t* p, size_t stride)
    {
        const auto twoRows = [=](const uint8_t* q) RVK_INLINE_LAMBDA {
            const __m128i upper = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(q));
            return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(upper), reinterpret_cast<const __m64*>(q + stride)));
        };
        const uint8_t* const middle = p + 4 * stride;
        const __m128i rows[4] = {twoRows(p), twoRows(p + 2 * stride), twoRows(middle), twoRows(middle + 2 * stride)};
        m_pixels = joinBlocks(rows);
    }

    // Pixels by their numbers, side * row + column, in the lower six bits of each byte.
    RVK_INLINE Vec<uint8_t> pixels(Vec<uint8_t> numbers) const
    {
        return vec<uint8_t>(_mm512_permutexvar_epi8(reg(numbers), m_pixels));
    }
    // To be added to four times the same number: a pixel, the one below, and those to the right of both; or the one to
    // the right first.
    static RVK_INLINE Vec<uint8_t> neighboursByColumns()
    {
        return bitCast<uint8_t>(splat(side << 8 | 1u << 16 | (side + 1) << 24));
    }
    static RVK_INLINE Vec<uint8_t> neighboursByRows()
    {
        return bitCast<uint8_t>(splat(1u << 8 | side << 16 | (side + 1) << 24));
    }

private:
    Register m_pixels;
};

// Four numbers, each block of four the same.
RVK_INLINE Vec<float> loadFourTimes(const float* p)
{
    return vec<float>(_mm512_castps_si512(_mm512_broadcast_f32x4(_mm_loadu_ps(p))));
}

// Each 16 bytes to a row.
RVK_INLINE void storeRows(uint8_t* const (&rows)[4], Vec<uint8_t> v)
{
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(rows[i]), _mm512_extracti32x4_epi32(reg(v), i));
    });
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#endif

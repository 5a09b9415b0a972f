// Boxes of pixels in registers, for pixels of a byte whose positions are near each other, but not in order: a permutation
// takes them from there in a fraction of the time of loads from everywhere.
//
// Each square of 4x4 pixels of a destination comes from one box of 8x8 of the source, as long as pixels beside and below
// each other are not much farther apart there, however the picture is turned. A square's pixels are the words of a
// vector, row by row.
#pragma once

#include "vecta/simd/words.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr size_t kSquareSide = 4;
constexpr size_t kTileSquares = 4, kTileColumns = kSquareSide * kTileSquares; // stored together
constexpr size_t kSegmentSquares = Vec<uint32_t>::lanes, kSegmentColumns = kSquareSide * kSegmentSquares; // placed so

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

// Four numbers of each of four rows.
RVK_INLINE Vec<float> loadFourRows(const float* p, ptrdiff_t stride)
{
    __m128i rows[4];
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        rows[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + static_cast<ptrdiff_t>(size_t{i}) * stride));
    });
    return vec<float>(joinBlocks(rows));
}

// Number `n` of each four of the 64 at p.
template <size_t n>
RVK_INLINE Vec<float> everyFourth(const float* p)
{
    const auto half = [](Vec<float> a, Vec<float> b)
                          RVK_INLINE_LAMBDA { return n % 2 ? unzipOdd(a, b) : unzipEven(a, b); };
    const Vecs<float, 4> v = loadVecs<4>(p);
    const Vec<float> low = half(v[0], v[1]), high = half(v[2], v[3]);
    return n / 2 ? unzipOdd(low, high) : unzipEven(low, high);
}

// Four squares beside each other are a tile, and tiles go to four rows: eight bits of each word, from bit `shift` on.
template <unsigned shift>
RVK_INLINE void storeTile(uint8_t* const (&rows)[kSquareSide], size_t column, const Vecs<uint32_t, kTileSquares>& v)
{
    const Vec<uint8_t> bytes = takeBits<shift>(v);
    const Vec<uint8_t> byRows = shuffle(bytes, bytes, [](size_t i) { return i / 16 * 16 + i % 4 * 4 + i / 4 % 4; });
    unrolled<kSquareSide>([&](auto i) RVK_INLINE_LAMBDA {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(rows[i] + column), _mm512_extracti32x4_epi32(reg(byRows), i));
    });
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#endif

// Boxes of pixels in registers, for pixels of a byte whose positions are near each other, but not in order: a
// permutation takes them from there in a fraction of the time of loads from everywhere.
//
// Each square of 4x4 pixels of a destination comes from one box of 8x8 of the source, as long as pixels beside and
// below each other are not much farther apart there, however the picture is turned; where it is not turned much, two
// squares come from one box of 16x8. A square's pixels are the words of a vector, row by row.
#pragma once

#include "vecta/simd/words.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr size_t kSquareSide = 4;
constexpr size_t kTileSquares = 4, kTileColumns = kSquareSide * kTileSquares; // stored together
constexpr size_t kSegmentSquares = Vec<uint32_t>::lanes, kSegmentColumns = kSquareSide * kSegmentSquares; // placed so

// Pixels of a byte: 8 rows, of 8 columns for a square, or of 16 for two beside each other. One permutation takes any of
// them.
template <uint32_t width>
class Box
{
public:
    static constexpr uint32_t columns = width, rows = 8;
    static constexpr size_t squares = columns / 8;
    static constexpr unsigned columnBits = columns == 8 ? 3 : 4;

    Box() = default;

    // From the pixel at p on.
    RVK_INLINE Box(const uint8_t* p, size_t stride)
    {
        static_assert(columns == 8 || columns == 16);
        const uint8_t* const half = p + rows / 2 * stride;
        if constexpr (columns == 8) {
            const __m128i blocks[4] = {twoRows(p, stride), twoRows(p + 2 * stride, stride), twoRows(half, stride),
                                       twoRows(half + 2 * stride, stride)};
            m_pixels[0] = joinBlocks(blocks);
        } else {
            m_pixels[0] = fourRows(p, stride);
            m_pixels[1] = fourRows(half, stride);
        }
    }

    // Pixels by their numbers, columns * row + column, in the lower bits of each byte: six, or seven.
    RVK_INLINE Vec<uint8_t> pixels(Vec<uint8_t> numbers) const
    {
        if constexpr (columns == 8)
            return vec<uint8_t>(_mm512_permutexvar_epi8(reg(numbers), m_pixels[0]));
        else
            return vec<uint8_t>(_mm512_permutex2var_epi8(m_pixels[0], reg(numbers), m_pixels[1]));
    }
    // To be added to four times the same number: a pixel, the one below, and those to the right of both; or the one to
    // the right first.
    static RVK_INLINE Vec<uint8_t> neighboursByColumns() { return offsets(columns, 1); }
    static RVK_INLINE Vec<uint8_t> neighboursByRows() { return offsets(1, columns); }

private:
    static RVK_INLINE Vec<uint8_t> offsets(uint32_t second, uint32_t third)
    {
        return bitCast<uint8_t>(splat(second << 8 | third << 16 | (second + third) << 24));
    }
    static RVK_INLINE __m128i twoRows(const uint8_t* p, size_t stride)
    {
        const __m128i upper = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(upper), reinterpret_cast<const __m64*>(p + stride)));
    }
    static RVK_INLINE Register fourRows(const uint8_t* p, size_t stride)
    {
        __m128i blocks[4];
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
            blocks[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i * stride));
        });
        return joinBlocks(blocks);
    }

    Register m_pixels[squares];
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

// Rectangles of a picture in registers, for pixels whose positions are near each other, but not in order: a permutation
// of bytes takes them from there in a fraction of the time of loads from everywhere.
#pragma once

#include "vecta/simd/simd.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

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

// Sums of absolute differences of bytes: of two blocks, and of a patch and all places of a row.
#pragma once

#include "vecta/simd/rows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

#if defined(__x86_64__)

// ---- x86: an instruction sums eight differences -------------------------------------------------------------------

// 16 pixels of a block: one row of 16, or two of 8, of which p is the first.
template <size_t size>
RVK_INLINE __m128i loadRows(const uint8_t* p, [[maybe_unused]] size_t stride)
{
    if constexpr (size == 16)
        return loadBlock(p);
    else
        return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                                  _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + stride)));
}

// The sum of |a - b| over size x size pixels, 8 or 16. (Wider registers would have to be put together first.)
template <size_t size>
RVK_INLINE uint32_t distanceOfBlocks(const uint8_t* a, size_t aStride, const uint8_t* b, size_t bStride)
{
    constexpr size_t rows = 16 / size;
    __m128i sums[2] = {};
    unrolled<size / rows>([&](auto i) RVK_INLINE_LAMBDA {
        const __m128i distances = _mm_sad_epu8(loadRows<size>(a, aStride), loadRows<size>(b, bStride));
        sums[i % 2] = _mm_add_epi32(sums[i % 2], distances);
        a += rows * aStride;
        b += rows * bStride;
    });
    const __m128i sum = _mm_add_epi32(sums[0], sums[1]);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(sum) + _mm_extract_epi32(sum, 2));
}

// Adds the distances of eight bytes and those under them at 8 of each 16 places.
RVK_INLINE Vec<uint16_t> addEight(Vec<uint16_t> acc, const uint8_t* eight, Register places)
{
#if RVK_AVX512
    int32_t words[2];
    __builtin_memcpy(words, eight, sizeof words);
    // Of four words those that the windows of four bytes from each place on lie in: 0 1 1 2, and 1 2 2 3.
    acc = acc + vec<uint16_t>(_mm512_dbsad_epu8(_mm512_set1_epi32(words[0]), places, 0x94));
    return acc + vec<uint16_t>(_mm512_dbsad_epu8(_mm512_set1_epi32(words[1]), places, 0xe9));
#else
    uint64_t bytes;
    __builtin_memcpy(&bytes, eight, sizeof bytes);
    const Register patch = reg(splat(bytes));
    acc = acc + vec<uint16_t>(RVK_MM(mpsadbw_epu8)(places, patch, 0));
    return acc + vec<uint16_t>(RVK_MM(mpsadbw_epu8)(places, patch, kBytes == 32 ? 0x2d : 0x05));
#endif
}

// What a block of registers needs of memory ends one byte before the last one of the register.
template <bool isLast>
RVK_INLINE Register loadPlaces(const uint8_t* p)
{
    const Register r = reg(load(p - isLast));
    if constexpr (!isLast)
        return r;
#if RVK_AVX512
    return _mm512_bsrli_epi128(r, 1);
#elif defined(__AVX2__)
    return _mm256_srli_si256(r, 1);
#else
    return _mm_srli_si128(r, 1);
#endif
}

// Vectors of places that 16-byte blocks take by turns, in the order of memory.
RVK_INLINE Vecs<uint16_t, 2> alternateBlocks(Vec<uint16_t> even, Vec<uint16_t> odd)
{
#if RVK_AVX512
    const auto take = [=](__m512i order) RVK_INLINE_LAMBDA {
        return vec<uint16_t>(_mm512_permutex2var_epi64(reg(even), order, reg(odd)));
    };
    return {take(_mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11)), take(_mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15))};
#elif defined(__AVX2__)
    return {vec<uint16_t>(_mm256_permute2x128_si256(reg(even), reg(odd), 0x20)),
            vec<uint16_t>(_mm256_permute2x128_si256(reg(even), reg(odd), 0x31))};
#else
    return {even, odd};
#endif
}

// The distances of a patch of size x size pixels at the places p, p + 1, ... kBytes of them. When they are the last
// ones of their row, nothing is read beyond the patch at the last one; otherwise a byte more.
template <size_t size, bool isLast>
RVK_INLINE Vecs<uint16_t, 2> distancesOfPatch(const uint8_t* patch, const uint8_t* p, size_t stride)
{
    Vec<uint16_t> even = zero<uint16_t>(), odd = zero<uint16_t>();
    for (size_t y = 0; y < size; ++y, p += stride) {
        Register places = loadPlaces<false>(p);
        unrolled<size / 8>([&](auto i) RVK_INLINE_LAMBDA {
            const Register next = loadPlaces<(isLast && i + 1 == size / 8)>(p + 8 * i + 8);
            even = addEight(even, patch, places);
            odd = addEight(odd, patch, next);
            places = next;
            patch += 8;
        });
    }
    return alternateBlocks(even, odd);
}

#else

// ---- NEON: an instruction adds each difference to a sum of its own ------------------------------------------------

template <size_t size>
RVK_INLINE uint32_t distanceOfBlocks(const uint8_t* a, size_t aStride, const uint8_t* b, size_t bStride)
{
    uint16x8_t even = vdupq_n_u16(0), odd = even;
    unrolled<size * size / 16>([&](auto) RVK_INLINE_LAMBDA { // 16 pixels at a time
        if constexpr (size == 8) {
            even = vabal_u8(even, loadHalf(a), loadHalf(b));
            a += aStride;
            b += bStride;
            odd = vabal_u8(odd, loadHalf(a), loadHalf(b));
        } else {
            const Vec<uint8_t> x = load(a), y = load(b);
            even = vabal_u8(even, lowHalf(x), lowHalf(y));
            odd = vabal_u8(odd, highHalf(x), highHalf(y));
        }
        a += aStride;
        b += bStride;
    });
    return reduceAdd(vec(vaddq_u16(even, odd)));
}

// The distances of a patch of size x size pixels at the places p, p + 1, ... kBytes of them, pixel by pixel of the
// patch.
template <size_t size, bool>
RVK_INLINE Vecs<uint16_t, 2> distancesOfPatch(const uint8_t* patch, const uint8_t* p, size_t stride)
{
    uint16x8_t low = vdupq_n_u16(0), high = low;
    for (size_t y = 0; y < size; ++y, p += stride)
        unrolled<size>([&](auto x) RVK_INLINE_LAMBDA {
            const uint8x8_t pixel = vdup_n_u8(*patch++);
            const Vec<uint8_t> places = load(p + x);
            low = vabal_u8(low, lowHalf(places), pixel);
            high = vabal_u8(high, highHalf(places), pixel);
        });
    return {vec(low), vec(high)};
}

#endif

// ---- at all places of a picture -----------------------------------------------------------------------------------

constexpr size_t kPlaces = kBytes; // of one step

// Pictures of fewer places in a row are copied to one of more columns, some rows at a time.
template <size_t size>
RVK_NOINLINE void distancesInNarrow(const uint8_t* patch, size_t width, size_t height, Plane<const uint8_t> src,
                                    Plane<uint16_t> dst)
{
    constexpr size_t rows = 4 * size, columns = kPlaces + size;
    uint8_t copy[rows * columns] = {};
    const size_t down = height - size + 1;
    for (size_t first = 0; first < down; first += rows - size + 1) {
        for (size_t y = 0; y < least(rows, height - first); ++y)
            __builtin_memcpy(copy + y * columns, src.row(first + y), width);
        for (size_t y = 0; y < least(rows - size + 1, down - first); ++y)
            storePartial(dst.row(first + y), distancesOfPatch<size, false>(patch, copy + y * columns, columns),
                         width - size + 1);
    }
}

template <size_t size>
RVK_NOINLINE void distancesInPicture(const uint8_t* patch, size_t width, size_t height, Plane<const uint8_t> src,
                                     Plane<uint16_t> dst)
{
    const size_t across = width - size + 1, down = height - size + 1;
    if (across < kPlaces)
        return distancesInNarrow<size>(patch, width, height, src, dst);
    const size_t last = across - kPlaces;
    for (size_t y = 0; y < down; ++y) {
        const uint8_t* const in = src.row(y);
        uint16_t* const out = dst.row(y);
        for (size_t x = 0; x < last; x += kPlaces)
            store(out + x, distancesOfPatch<size, false>(patch, in + x, src.stride));
        store(out + last, distancesOfPatch<size, true>(patch, in + last, src.stride));
    }
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

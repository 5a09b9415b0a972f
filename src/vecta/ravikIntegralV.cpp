// Vector implementations of the integral images.
//
// Row by row: the sums up to each pixel of a vector, what the vectors before it came to, and the row above.
#include "vecta/simd/rows.h"
#include "vecta/simd/runningSums.h"
#include "vecta/vecta.h"

#include <ravik/integral.h>

namespace rvk {
decltype(::rvkIntegrateImageu8u64) rvkIntegrateImageu8u64C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {
namespace {

// step(x, n) for the vectors of a row, n pixels from x on: all that one holds, but fewer in the last one.
template <class Step>
RVK_INLINE void alongRow(size_t width, Step step)
{
    size_t x = 0;
    for (; x + kBytes <= width; x += kBytes)
        step(x, Constant<kBytes>{});
    if (x < width)
        step(x, width - x);
}

RVK_INLINE Vec<uint8_t> loadFirst(const uint8_t* p, size_t n)
{
    return n == kBytes ? load(p) : loadPartial(p, n);
}

// The first n sums, n at most what the vectors hold, and what stands above them.
template <class Sum, size_t count>
RVK_INLINE void storeFirst(Sum* dst, const Sum* above, const Vecs<Sum, count>& sums, size_t n)
{
    constexpr size_t lanes = Vec<Sum>::lanes;
    if (n == count * lanes) {
        Vecs<Sum, count> all = sums;
        if (above) {
            const Vecs<Sum, count> before = loadVecs<count>(above);
            unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { all[i] = all[i] + before[i]; });
        }
        store(dst, all);
        return;
    }
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA {
        const size_t first = i * lanes;
        if (n <= first)
            return;
        const size_t here = least(n - first, lanes);
        const auto before = [&] { return here == lanes ? load(above + first) : loadPartial(above + first, here); };
        const Vec<Sum> all = above ? sums[i] + before() : sums[i];
        if (here == lanes)
            store(dst + first, all);
        else
            storePartial(dst + first, all, here);
    });
}

// ---- rows; `above` may be null --------------------------------------------------------------------------------------

// Of the bytes that pixelsAt(x, n) gives.
template <class PixelsAt>
RVK_INLINE void sumsOfRow(size_t width, const uint32_t* above, uint32_t* dst, PixelsAt pixelsAt)
{
    Vec<uint32_t> before = zero<uint32_t>();
    alongRow(width, [&](size_t x, auto n) RVK_INLINE_LAMBDA {
        storeFirst(dst + x, above ? above + x : nullptr, sumsUpToEach(pixelsAt(x, n), before), n);
    });
}

RVK_INLINE void sumsOfRow(const uint8_t* src, size_t width, const uint32_t* above, uint32_t* dst)
{
    sumsOfRow(width, above, dst, [=](size_t x, size_t n) RVK_INLINE_LAMBDA { return loadFirst(src + x, n); });
}

RVK_INLINE void squaresOfRow(const uint8_t* src, size_t width, const uint32_t* above, uint32_t* dst)
{
    Vec<uint32_t> before = zero<uint32_t>();
    alongRow(width, [&](size_t x, auto n) RVK_INLINE_LAMBDA {
        storeFirst(dst + x, above ? above + x : nullptr, squaresUpToEach(loadFirst(src + x, n), before), n);
    });
}

// Both, of squares with 64 bits. Those of a row alone fit 32 bits.
constexpr uint32_t kMostColumnsOfSquares = UINT32_MAX / (255 * 255);
RVK_INLINE void bothOfRow(const uint8_t* src, size_t width, const uint32_t* sumsAbove, uint32_t* sums,
                          const uint64_t* squaresAbove, uint64_t* squares)
{
    Vec<uint32_t> sumBefore = zero<uint32_t>(), squareBefore = sumBefore;
    alongRow(width, [&](size_t x, auto n) RVK_INLINE_LAMBDA {
        const Vec<uint8_t> v = loadFirst(src + x, n);
        storeFirst(sums + x, sumsAbove ? sumsAbove + x : nullptr, sumsUpToEach(v, sumBefore), n);
        storeFirst(squares + x, squaresAbove ? squaresAbove + x : nullptr, wideSquaresUpToEach(v, squareBefore), n);
    });
}

// ---- pictures -------------------------------------------------------------------------------------------------------

RVK_NOINLINE void integrateLine(const uint8_t* src, size_t width, const uint32_t* above, uint32_t* dst)
{
    if (above)
        sumsOfRow(src, width, above, dst);
    else
        sumsOfRow(src, width, nullptr, dst);
}

// row(y, above, dst) for the rows of an inclusive integral.
template <class Sum, class Row>
RVK_INLINE void integrateRows(size_t height, Plane<Sum> dst, Row row)
{
    const Sum* above = nullptr;
    for (size_t y = 0; y < height; ++y) {
        row(y, above, dst.row(y));
        above = dst.row(y);
    }
}

// The same behind a row and a column of 0.
template <class Row>
RVK_INLINE void integrateRowsExclusive(size_t width, size_t height, Plane<uint32_t> dst, Row row)
{
    __builtin_memset(dst.data, 0, (width + 1) * sizeof(uint32_t));
    for (size_t y = 0; y < height; ++y) {
        dst.row(y + 1)[0] = 0;
        row(y, dst.row(y) + 1, dst.row(y + 1) + 1);
    }
}

RVK_INLINE void integrateImage(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> dst)
{
    integrateRowsExclusive(width, height, dst, [=](size_t y, const uint32_t* above, uint32_t* row) RVK_INLINE_LAMBDA {
        sumsOfRow(src.row(y), anyNumber(width), above, row);
    });
}

RVK_INLINE void integrateInclusive(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> dst)
{
    integrateRows(height, dst, [=](size_t y, const uint32_t* above, uint32_t* row) RVK_INLINE_LAMBDA {
        integrateLine(src.row(y), width, above, row);
    });
}

RVK_INLINE void integrateBoth(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> sums,
                              Plane<uint64_t> squares)
{
    if (width > kMostColumnsOfSquares) {
        rvkIntegrateImageu8u64C(src.data, static_cast<uint32_t>(width), static_cast<uint32_t>(height), src.stride,
                                sums.data, squares.data, sums.stride, squares.stride);
        return;
    }
    bothOfRow(src.row(0), width, nullptr, sums.row(0), nullptr, squares.row(0));
    for (size_t y = 1; y < height; ++y)
        bothOfRow(src.row(y), anyNumber(width), sums.row(y - 1), sums.row(y), squares.row(y - 1), squares.row(y));
}

// Patches that a few vectors hold, `strips` of them: what stands above stays in registers.
template <size_t strips, class UpToEach>
RVK_INLINE void integrateNarrow(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> dst,
                                UpToEach upToEach)
{
    Vecs<uint32_t, 4> sums[strips] = {};
    integrateRowsExclusive(width, height, dst, [&](size_t y, const uint32_t*, uint32_t* row) RVK_INLINE_LAMBDA {
        Vec<uint32_t> before = zero<uint32_t>();
        unrolled<strips>([&](auto strip) RVK_INLINE_LAMBDA {
            const size_t x = strip * kBytes, n = least(width - x, kBytes);
            const Vecs<uint32_t, 4> ofRow = upToEach(loadFirst(src.row(y) + x, n));
            Vecs<uint32_t, 4> all;
            unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
                sums[strip][i] = sums[strip][i] + ofRow[i];
                all[i] = sums[strip][i] + before;
            });
            storeFirst(row + x, static_cast<const uint32_t*>(nullptr), all, n);
            before = splatLast(all[3]);
        });
    });
}

template <size_t strips>
RVK_INLINE void integrateNarrowPatch(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> sums,
                                     Plane<uint32_t> squares)
{
    integrateNarrow<strips>(width, height, src, sums, [](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return sumsUpToEach(v); });
    integrateNarrow<strips>(width, height, src, squares,
                            [](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return squaresUpToEach(v); });
}

template <uint32_t size>
RVK_INLINE void integrateSquarePatch(Plane<const uint8_t> src, uint32_t* sums, uint32_t* squares)
{
    constexpr uint32_t packed = (size + 1) * sizeof(uint32_t);
    integrateNarrowPatch<(size + kBytes - 1) / kBytes>(size, size, src, {sums, packed}, {squares, packed});
}

RVK_NOINLINE void integratePatch(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> sums,
                                 Plane<uint32_t> squares)
{
    if (width <= kBytes) {
        integrateNarrowPatch<1>(width, height, src, sums, squares);
        return;
    }
    integrateRowsExclusive(width, height, sums, [=](size_t y, const uint32_t* above, uint32_t* row) RVK_INLINE_LAMBDA {
        sumsOfRow(src.row(y), width, above, row);
    });
    integrateRowsExclusive(width, height, squares,
                           [=](size_t y, const uint32_t* above, uint32_t* row)
                               RVK_INLINE_LAMBDA { squaresOfRow(src.row(y), width, above, row); });
}

// ---- pairs ----------------------------------------------------------------------------------------------------------

// The first n pairs, each component in a vector.
RVK_INLINE Vecs<uint8_t, 2> loadFirst2(const uint8_t* p, size_t n)
{
    if (n == kBytes)
        return load2(p);
    uint8_t pairs[2 * kBytes];
    store(pairs, loadVecsPartial<2>(p, 2 * n));
    return load2(pairs);
}

RVK_INLINE void integratePairs(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint32_t> first,
                               Plane<uint32_t> second)
{
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* pairs = src.row(y);
        const uint32_t *above1 = y ? first.row(y - 1) : nullptr, *above2 = y ? second.row(y - 1) : nullptr;
        uint32_t *row1 = first.row(y), *row2 = second.row(y);
        Vec<uint32_t> before1 = zero<uint32_t>(), before2 = before1;
        alongRow(anyNumber(width), [&](size_t x, auto n) RVK_INLINE_LAMBDA {
            const Vecs<uint8_t, 2> v = loadFirst2(pairs + 2 * x, n);
            storeFirst(row1 + x, above1 ? above1 + x : nullptr, sumsUpToEach(v[0], before1), n);
            storeFirst(row2 + x, above2 ? above2 + x : nullptr, sumsUpToEach(v[1], before2), n);
        });
    }
}

// ---- foreground -----------------------------------------------------------------------------------------------------

// Says of pixels whether they differ from a background, by 1 or 0.
struct Foreground
{
    Vec<uint8_t> luma;
    Vec<uint8_t> chroma;     // pairs
    Vec<uint16_t> threshold; // no difference is larger than the largest one

    // The pixels share chroma, two of them a pair. Their differences are taken apart, even and odd ones.
    RVK_INLINE Vec<uint8_t> operator()(Vec<uint8_t> y, Vec<uint8_t> pairs) const
    {
        const Vec<uint16_t> ofChroma = addPairs(absDiff(pairs, chroma));
        const Vec<uint16_t> ofLuma = bitCast<uint16_t>(absDiff(y, luma));
        const Vec<uint16_t> even = ofChroma + (ofLuma & splat<uint16_t>(255));
        const Vec<uint16_t> odd = ofChroma + shiftRight(ofLuma, 8);
        const Vec<uint16_t> evenBits = toVec(greater(even, threshold)) & splat<uint16_t>(1);
        const Vec<uint16_t> oddBits = toVec(greater(odd, threshold)) & splat<uint16_t>(256);
        return bitCast<uint8_t>(evenBits | oddBits);
    }
};

} // namespace

void rvkFindForegroundIntegrateImageYCbCr420u32V(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                 uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                 uint8_t backgroundY, uint8_t backgroundCb, uint8_t backgroundCr,
                                                 uint32_t threshold, uint32_t* dst, uint32_t dstStride)
{
    constexpr uint32_t largest = 3 * 255;
    const Foreground isForeground = {splat(backgroundY),
                                     bitCast<uint8_t>(splat(static_cast<uint16_t>(backgroundCb | backgroundCr << 8))),
                                     splat(static_cast<uint16_t>(least(threshold, largest)))};
    const Plane<const uint8_t> lumaPlane{srcY, srcYStride}, chromaPlane{srcC, srcCStride};
    integrateRows(srcHeight, Plane<uint32_t>{dst, dstStride},
                  [&](size_t y, const uint32_t* above, uint32_t* row) RVK_INLINE_LAMBDA {
                      const uint8_t *luma = lumaPlane.row(y), *chroma = chromaPlane.row(y / 2);
                      sumsOfRow(anyNumber(srcWidth), above, row, [&](size_t x, size_t n) RVK_INLINE_LAMBDA {
                          return isForeground(loadFirst(luma + x, n), loadFirst(chroma + x, (n + 1) / 2 * 2));
                      });
                  });
}

// Entries depend on the two rows above alone.
void rvkTiltedIntegralu8s32V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int32_t* dst, uint32_t dstStride)
{
    const Plane<const uint8_t> source{src, srcStride};
    const Plane<uint32_t> sums{reinterpret_cast<uint32_t*>(dst), dstStride};
    const size_t right = srcWidth;
    __builtin_memset(sums.row(0), 0, (right + 1) * sizeof(uint32_t));
    sums.row(1)[0] = 0;
    mapRow(
        right, sums.row(1) + 1, [](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return widenBoth(widen(v)); }, source.row(0));
    for (size_t y = 2; y <= srcHeight; ++y) {
        const uint32_t *above = sums.row(y - 1), *twoAbove = sums.row(y - 2);
        const uint8_t *pixels = source.row(y - 1), *pixelsAbove = source.row(y - 2);
        uint32_t* row = sums.row(y);
        row[0] = above[1];
        row[right] = above[right - 1] + pixels[right - 1] + pixelsAbove[right - 1];
        mapRow(
            anyNumber(right - 1), row + 1,
            [](const Vecs<uint32_t, 4>& left, const Vecs<uint32_t, 4>& other, const Vecs<uint32_t, 4>& common,
               Vec<uint8_t> p, Vec<uint8_t> q) RVK_INLINE_LAMBDA {
                Vecs<uint32_t, 4> sum = widenBoth(addWide(p, q));
                unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { sum[i] = left[i] + other[i] - common[i] + sum[i]; });
                return sum;
            },
            above, above + 2, twoAbove + 1, pixels, pixelsAbove);
    }
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikIntegralForms.h"

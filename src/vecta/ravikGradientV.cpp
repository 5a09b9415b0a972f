// Vector implementations of image derivatives.
#include "vecta/simd/sobel.h"
#include "vecta/vecta.h"

#include <ravik/gradient.h>

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;

// ---- what becomes of the derivatives of a step of pixels ----------------------------------------

// Interleaved pairs of derivatives, count vectors of either.
template <class T, size_t count>
struct Interleaved
{
    Vecs<T, count> dx, dy;
};

template <class T, size_t count>
RVK_INLINE void put(const Interleaved<T, count>& pairs, size_t x, size_t y, Plane<T> dst)
{
    T* const p = dst.row(y) + 2 * x;
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA {
        store2(p + i * 2 * Vec<T>::lanes, Vecs<T, 2>{{pairs.dx[i], pairs.dy[i]}});
    });
}

template <class T, size_t count>
RVK_INLINE void putPartial(const Interleaved<T, count>& pairs, size_t n, size_t y, Plane<T> dst)
{
    T* const p = dst.row(y);
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA {
        constexpr size_t lanes = Vec<T>::lanes;
        const size_t left = n > i * lanes ? n - i * lanes : 0;
        storePartial(p + i * 2 * lanes, zip(pairs.dx[i], pairs.dy[i]), 2 * (left < lanes ? left : lanes));
    });
}

template <unsigned shift>
RVK_INLINE Vecs<int16_t, 2> shifted(Pairs<int16_t> v)
{
    return orderPairs(Pairs<int16_t>{{shiftRight(v[0], shift), shiftRight(v[1], shift)}});
}

RVK_INLINE Vecs<float, 4> floats(Pairs<int16_t> v)
{
    const Vecs<int16_t, 2> ordered = orderPairs(v);
    const Vecs<int32_t, 2> low = widen(ordered[0]), high = widen(ordered[1]);
    return {{toFloat(low[0]), toFloat(low[1]), toFloat(high[0]), toFloat(high[1])}};
}

template <unsigned shift>
struct Planars16
{
    static RVK_INLINE auto of(const Derivatives& d)
    {
        return Two<Vecs<int16_t, 2>, Vecs<int16_t, 2>>{shifted<shift>(d.dx), shifted<shift>(d.dy)};
    }
};

struct OnlyDx
{
    static RVK_INLINE Vecs<int16_t, 2> of(const Derivatives& d) { return orderPairs(d.dx); }
};

struct OnlyDy
{
    static RVK_INLINE Vecs<int16_t, 2> of(const Derivatives& d) { return orderPairs(d.dy); }
};

struct Planars8
{
    static RVK_INLINE Vec<int8_t> eighth(Pairs<int16_t> v)
    {
        return lowHalves({shiftRight(v[0], 3), shiftRight(v[1], 3)});
    }
    static RVK_INLINE auto of(const Derivatives& d)
    {
        return Two<Vec<int8_t>, Vec<int8_t>>{eighth(d.dx), eighth(d.dy)};
    }
};

struct Planarf32
{
    static RVK_INLINE auto of(const Derivatives& d)
    {
        return Two<Vecs<float, 4>, Vecs<float, 4>>{floats(d.dx), floats(d.dy)};
    }
};

template <unsigned shift>
struct Interleaveds16
{
    static RVK_INLINE auto of(const Derivatives& d)
    {
        return Interleaved<int16_t, 2>{shifted<shift>(d.dx), shifted<shift>(d.dy)};
    }
};

struct Interleavedf32
{
    static RVK_INLINE auto of(const Derivatives& d) { return Interleaved<float, 4>{floats(d.dx), floats(d.dy)}; }
};

struct Strength
{
    static RVK_INLINE Bytes of(const Derivatives& d)
    {
        return narrowPairsSat(Pairs<int16_t>{abs(d.dx[0]) + abs(d.dy[0]), abs(d.dx[1]) + abs(d.dy[1])});
    }
};

// ---- 3x3 ----------------------------------------------------------------------------------------

// The difference of the pixels on either side, and of those above and below.
struct CentralDifferences
{
    Pairs<int16_t> last = {};
    Bytes middle = {}, middleAbove = {};

    RVK_INLINE Derivatives next(const uint8_t* p)
    {
        const Bytes centre = load(p + 1);
        const Derivatives d = {last, subtractPairs(centre, middleAbove)};
        last = subtractPairs(load(p + 2), load(p));
        middleAbove = middle;
        middle = centre;
        return d;
    }
};

template <class Operator, class Output, class... D>
RVK_INLINE void planar(size_t width, size_t height, Plane<const uint8_t> src, Plane<D>... dst)
{
    filterInterior(width, height, src, DerivativeKernel<Operator, Output>{}, dst...);
}

// Outputs begin with those of pixel (1, 1).
template <class Operator, class Output, class D>
RVK_INLINE void compact(size_t width, size_t height, Plane<const uint8_t> src, Plane<D> dst)
{
    if (width > 2 && height > 2)
        walk(width - 2, height - 2, src, DerivativeKernel<Operator, Output>{}, dst);
}

// The Sobel operator on floats: in the order of the operations that the reference has.
struct FloatSobel3x3
{
    using Floats = Vec<float>;
    static constexpr size_t rows = 3, columns = 3, step = Floats::lanes;
    Floats difference = zero<float>(), differences = difference; // of the row above; and those of the rows above it
    Vecs<float, 3> above = {}, twoAbove = {};

    RVK_INLINE Two<Floats, Floats> next(const float* p)
    {
        const Vecs<float, 3> row = {{load(p), load(p + 1), load(p + 2)}};
        const auto lower = [&](size_t i) RVK_INLINE_LAMBDA { return row[i] - twoAbove[i]; };
        const Floats middle = lower(1);
        const Floats here = row[2] - row[0];
        const Two<Floats, Floats> result = {differences + here, (lower(0) + (middle + middle)) + lower(2)};
        differences = difference + (here + here);
        difference = here;
        twoAbove = above;
        above = row;
        return result;
    }
};

} // namespace

void rvkImageGradientInterleaveds16_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        int16_t* gradients, uint32_t gradStride)
{
    compact<CentralDifferences, Interleaveds16<0>>(srcWidth, srcHeight, {src, srcStride}, Plane{gradients, gradStride});
}

void rvkImageGradientInterleavedf32_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        float32_t* gradients, uint32_t gradStride)
{
    compact<CentralDifferences, Interleavedf32>(srcWidth, srcHeight, {src, srcStride}, Plane{gradients, gradStride});
}

void rvkImageGradientPlanars16_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<CentralDifferences, Planars16<0>>(srcWidth, srcHeight, {src, srcStride}, Plane{dx, dxyStride},
                                             Plane{dy, dxyStride});
}

void rvkImageGradientPlanarf32_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<CentralDifferences, Planarf32>(srcWidth, srcHeight, {src, srcStride}, Plane{dx, dxyStride},
                                          Plane{dy, dxyStride});
}

void rvkImageGradientSobelInterleaveds16_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    compact<Sobel3x3, Interleaveds16<3>>(srcWidth, srcHeight, {src, srcStride}, Plane{gradients, gradStride});
}

void rvkImageGradientSobelPlanars16_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    planar<Sobel3x3, Planars16<3>>(srcWidth, srcHeight, {src, srcStride}, Plane{dx, dxyStride}, Plane{dy, dxyStride});
}

void rvkImageGradientSobelPlanars8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int8_t* dx, int8_t* dy, uint32_t dxyStride)
{
    planar<Sobel3x3, Planars8>(srcWidth, srcHeight, {src, srcStride}, Plane{dx, dxyStride}, Plane{dy, dxyStride});
}

rvkStatus rvkImageGradientSobelInterleaveds16_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                  uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    compact<Sobel3x3, Interleaveds16<0>>(srcWidth, srcHeight, {src, srcStride}, Plane{gradients, gradStride});
    return RAVIK_SUCCESS;
}

void rvkImageGradientSobelInterleavedf32_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, float32_t* gradients, uint32_t gradStride)
{
    compact<Sobel3x3, Interleavedf32>(srcWidth, srcHeight, {src, srcStride}, Plane{gradients, gradStride});
}

void rvkImageGradientSobelPlanarf32_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    planar<Sobel3x3, Planarf32>(srcWidth, srcHeight, {src, srcStride}, Plane{dx, dxyStride}, Plane{dy, dxyStride});
}

rvkStatus rvkImageGradientSobelPlanars16_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    const Plane<int16_t> planeDx = {dx, dxyStride}, planeDy = {dy, dxyStride};
    if (!dx && !dy)
        return RAVIK_EBADPARAM;
    if (dx && dy)
        planar<Sobel3x3, TwoPlanes>(srcWidth, srcHeight, {src, srcStride}, planeDx, planeDy);
    else if (dx)
        planar<Sobel3x3, OnlyDx>(srcWidth, srcHeight, {src, srcStride}, planeDx);
    else
        planar<Sobel3x3, OnlyDy>(srcWidth, srcHeight, {src, srcStride}, planeDy);
    return RAVIK_SUCCESS;
}

void rvkImageGradientSobelPlanarf32f32_v2V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, float32_t* dx, float32_t* dy, uint32_t dxyStride)
{
    filterInterior(srcWidth, srcHeight, Plane{src, srcStride}, FloatSobel3x3{}, Plane{dx, dxyStride},
                   Plane{dy, dxyStride});
}

void rvkImageGradientScharrInterleaveds16V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, int16_t* gradients, uint32_t gradStride)
{
    compact<Scharr3x3, Interleaveds16<0>>(srcWidth, srcHeight, {src, srcStride}, Plane{gradients, gradStride});
}

void rvkFilterSobel3x3u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    planar<Sobel3x3, Strength>(srcWidth, srcHeight, {src, srcStride}, Plane{dst, dstStride});
}

// ---- any size, with a border --------------------------------------------------------------------

namespace {

using Words = Vec<int16_t>;

template <int weight>
RVK_INLINE Words weighted(Words v)
{
    if constexpr (weight == 1)
        return v;
    else if constexpr (weight == 2)
        return v + v;
    else if constexpr (weight == 4)
        return shiftLeft(v, 2);
    else
        return splat<int16_t>(weight) * v;
}

// `at(k)` gives the pixels of the window from its first to its last. What has the same weight on both sides is added,
// or subtracted, first.
template <size_t size, class At>
RVK_INLINE Words smoothed(At at)
{
    constexpr size_t radius = size / 2;
    using W = typename SobelWeights<size>::Smoothing;
    Words sum = weighted<W::at(radius)>(at(radius));
    unrolled<radius>([&](auto i) RVK_INLINE_LAMBDA {
        constexpr size_t k = i + 1;
        sum = sum + weighted<W::at(radius + k)>(at(radius - k) + at(radius + k));
    });
    return sum;
}

template <size_t size, class At>
RVK_INLINE Words differences(At at)
{
    constexpr size_t radius = size / 2;
    using W = typename SobelWeights<size>::Difference;
    Words sum = zero<int16_t>();
    unrolled<radius>([&](auto i) RVK_INLINE_LAMBDA {
        constexpr size_t k = i + 1;
        const Words term = weighted<W::at(radius + k)>(at(radius + k) - at(radius - k));
        sum = i == 0 ? term : sum + term;
    });
    return sum;
}

// Along a row of sums. The products of 7x7 need 32 bits, and saturate.
template <size_t size>
RVK_INLINE Words smoothedAlong(const int16_t* p)
{
    if constexpr (size == 7)
        return narrowPairsSat(rowSum<SobelWeights<7>::Smoothing>(p));
    else
        return smoothed<size>([=](size_t k) RVK_INLINE_LAMBDA { return load(p + k); });
}

template <size_t size>
RVK_INLINE Words differencesAlong(const int16_t* p)
{
    if constexpr (size == 7)
        return narrowPairsSat(rowSum<SobelWeights<7>::Difference>(p));
    else
        return differences<size>([=](size_t k) RVK_INLINE_LAMBDA { return load(p + k); });
}

// What lies outside the picture: the nearest pixel inside, or a value.
struct Border
{
    bool replicate;
    uint8_t value;
};

// A strip of the picture, filtered row by row: down the columns into two rows of sums on the stack, with what lies left
// and right of the picture, and from there along the row.
template <size_t size>
struct SobelStrip
{
    static constexpr size_t radius = size / 2, columns = 1024, room = columns + 2 * radius + Words::lanes;
    alignas(kBytes) int16_t smooth[room] = {}, difference[room] = {};

    // Sums of `n` columns, from `first` on in the strip. Each row has Words::lanes elements or more.
    RVK_INLINE void sumColumns(size_t n, const uint8_t* const (&rows)[size], size_t first)
    {
        constexpr size_t lanes = Words::lanes;
        for (size_t next = 0; next < n; next += lanes) {
            const size_t x = next + lanes <= n ? next : n - lanes; // the last step may overlap the one before it
            Words pixels[size];
            unrolled<size>([&](auto k)
                               RVK_INLINE_LAMBDA { pixels[k] = bitCast<int16_t>(loadWiden<uint16_t>(rows[k] + x)); });
            const auto at = [&](size_t k) RVK_INLINE_LAMBDA { return pixels[k]; };
            store(smooth + first + x, smoothed<size>(at));
            store(difference + first + x, differences<size>(at));
        }
    }

    RVK_INLINE void fill(size_t begin, size_t end, int16_t smoothValue, int16_t differenceValue)
    {
        for (size_t i = begin; i < end; ++i) {
            smooth[i] = smoothValue;
            difference[i] = differenceValue;
        }
    }

    template <class Along>
    static RVK_INLINE void finish(size_t n, const int16_t* sums, int16_t* dst, Along along)
    {
        size_t x = 0;
        for (; x + Words::lanes <= n; x += Words::lanes)
            store(dst + x, along(sums + x));
        if (x < n)
            storePartial(dst + x, along(sums + x), n - x);
    }
};

// The pixels of columns `left` to `right` and rows `top` to `bottom`.
template <size_t size>
RVK_NOINLINE void sobelWithin(size_t left, size_t right, size_t top, size_t bottom, size_t width, size_t height,
                              Plane<const uint8_t> src, Plane<int16_t> dx, Plane<int16_t> dy, Border border)
{
    using Strip = SobelStrip<size>;
    constexpr size_t radius = Strip::radius, lanes = Words::lanes;
    constexpr int16_t weightOfAll = size == 3 ? 4 : size == 5 ? 16 : 64;
    Strip strip;
    uint8_t outside[Strip::columns + 2 * radius];
    __builtin_memset(outside, border.value, sizeof outside);
    uint8_t narrow[size][lanes] = {};

    for (size_t x = left; x < right; x += Strip::columns) {
        const size_t n = least(Strip::columns, right - x);
        const size_t begin = x < radius ? 0 : x - radius, end = least(x + n + radius, width);
        const size_t first = begin + radius - x; // of the strip's columns
        for (size_t y = top; y < bottom; ++y) {
            const uint8_t* rows[size];
            for (size_t k = 0; k < size; ++k) {
                const size_t row = nearest(y + k, radius, height);
                rows[k] = row + radius == y + k || border.replicate ? src.row(row) + begin : outside;
                if (end - begin < lanes) {
                    __builtin_memcpy(narrow[k], rows[k], end - begin);
                    rows[k] = narrow[k];
                }
            }
            strip.sumColumns(end - begin < lanes ? lanes : end - begin, rows, first);
            const size_t last = first + end - begin, stop = n + 2 * radius;
            if (border.replicate) {
                strip.fill(0, first, strip.smooth[first], strip.difference[first]);
                strip.fill(last, stop, strip.smooth[last - 1], strip.difference[last - 1]);
            } else {
                const auto sum = static_cast<int16_t>(weightOfAll * border.value);
                strip.fill(0, first, sum, 0);
                strip.fill(last, stop, sum, 0);
            }
            if (dx.data)
                Strip::finish(n, strip.smooth, dx.row(y) + x, differencesAlong<size>);
            if (dy.data)
                Strip::finish(n, strip.difference, dy.row(y) + x, smoothedAlong<size>);
        }
    }
}

// Rows `top` to `bottom` of the first or the last column x, whose neighbour in the picture is column `inner`. All have
// neighbours above and below.
RVK_INLINE void sobelEdgeColumn3x3(size_t x, size_t inner, size_t top, size_t bottom, Plane<const uint8_t> src,
                                   Plane<int16_t> dx, Plane<int16_t> dy, Border border)
{
    const int sign = inner > x ? 1 : -1;
    const auto outer = [=](const uint8_t* row) RVK_INLINE_LAMBDA { return border.replicate ? row[x] : border.value; };
    for (size_t y = top; y < bottom; ++y) {
        const uint8_t *const above = src.row(y - 1), *const here = src.row(y), *const below = src.row(y + 1);
        const auto difference = [=](const uint8_t* row) RVK_INLINE_LAMBDA { return row[inner] - outer(row); };
        const auto sum = [=](const uint8_t* row) RVK_INLINE_LAMBDA { return row[inner] + 2 * row[x] + outer(row); };
        if (dx.data)
            dx.row(y)[x] = static_cast<int16_t>(sign * (difference(above) + 2 * difference(here) + difference(below)));
        if (dy.data)
            dy.row(y)[x] = static_cast<int16_t>(sum(below) - sum(above));
    }
}

// 3x3 with a border: the inside as without one, in blocks of rows, so that the columns at the edges are filtered while
// the cache has them.
RVK_INLINE void sobel3x3(size_t width, size_t height, Plane<const uint8_t> src, Plane<int16_t> dx, Plane<int16_t> dy,
                         Border border)
{
    constexpr size_t blockRows = kBlockRows<DerivativeKernel<Sobel3x3, TwoPlanes>>;
    sobelWithin<3>(0, width, 0, 1, width, height, src, dx, dy, border);
    for (size_t top = 1; top < height - 1; top += blockRows) {
        const size_t bottom = least(top + blockRows, height - 1);
        rvkImageGradientSobelPlanars16_v3V(
            src.row(top - 1), static_cast<uint32_t>(width), static_cast<uint32_t>(bottom - top + 2), src.stride,
            dx.data ? dx.row(top - 1) : nullptr, dy.data ? dy.row(top - 1) : nullptr, dx.stride);
        sobelEdgeColumn3x3(0, 1, top, bottom, src, dx, dy, border);
        sobelEdgeColumn3x3(width - 1, width - 2, top, bottom, src, dx, dy, border);
    }
    sobelWithin<3>(0, width, height - 1, height, width, height, src, dx, dy, border);
}

template <size_t size>
RVK_INLINE rvkStatus sobel(size_t width, size_t height, Plane<const uint8_t> src, Plane<int16_t> dx, Plane<int16_t> dy,
                           uint32_t borderType, uint8_t borderValue)
{
    if (!dx.data && !dy.data)
        return RAVIK_EFAIL;
    const Border border = {borderType == RAVIK_BORDER_REPLICATE, borderValue};
    const bool isWhole = border.replicate || borderType == RAVIK_BORDER_CONSTANT;
    if (size == 3 && isWhole && width >= 3 && height >= 3)
        sobel3x3(width, height, src, dx, dy, border);
    else if (isWhole)
        sobelWithin<size>(0, width, 0, height, width, height, src, dx, dy, border);
    else if (width >= size && height >= size)
        sobelWithin<size>(size / 2, width - size / 2, size / 2, height - size / 2, width, height, src, dx, dy, border);
    return RAVIK_SUCCESS;
}

} // namespace

rvkStatus rvkFilterSobel3x3u8s16V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                  uint8_t borderValue)
{
    return sobel<3>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, borderType, borderValue);
}

rvkStatus rvkFilterSobel5x5u8s16V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                  uint8_t borderValue)
{
    return sobel<5>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, borderType, borderValue);
}

rvkStatus rvkFilterSobel7x7u8s16V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                  uint8_t borderValue)
{
    return sobel<7>(srcWidth, srcHeight, {src, srcStride}, {dx, dxyStride}, {dy, dxyStride}, borderType, borderValue);
}

} // namespace rvk::vecta::RVK_ISA

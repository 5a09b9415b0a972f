// Vector implementations of the smoothing filters and of local normalisation.
#include "cpu/ravikBlurC.h"
#include "scratch.h"
#include "vecta/simd/binomials.h"
#include "vecta/vecta.h"

#include <ravik/blur.h>

namespace rvk {
decltype(::rvkFilterGaussian3x3u8_v2) rvkFilterGaussian3x3u8_v2C;
decltype(::rvkFilterGaussian3x3u8_v3) rvkFilterGaussian3x3u8_v3C;
decltype(::rvkFilterGaussian5x5u8_v2) rvkFilterGaussian5x5u8_v2C;
decltype(::rvkFilterGaussian5x5s16_v2) rvkFilterGaussian5x5s16_v2C;
decltype(::rvkFilterGaussian11x11u8_v2) rvkFilterGaussian11x11u8_v2C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;

// ---- sums of windows ----------------------------------------------------------------------------

// (sum * reciprocal + 32768) >> 16; sums are below 2^15.
template <int reciprocal>
struct Mean
{
    static RVK_INLINE Vec<uint16_t> of(Vec<uint16_t> sum)
    {
        if constexpr (reciprocal % 2 == 0) // one instruction
            return bitCast<uint16_t>(multiplyRounded(bitCast<int16_t>(sum), splat<int16_t>(reciprocal / 2)));
        else
            return multiplyHighRounded(sum, splat<uint16_t>(reciprocal));
    }
    static RVK_INLINE Bytes of(Pairs<uint16_t> sums)
    {
        return narrowPairs<0>(Pairs<uint16_t>{{of(sums[0]), of(sums[1])}});
    }
};

struct Box3
{
    static constexpr size_t rows = 3, columns = 3, step = Bytes::lanes;
    Pairs<uint16_t> last = {}, lastTwo = {};

    RVK_INLINE Bytes next(const uint8_t* p)
    {
        const Pairs<uint16_t> row = rowSum<Weights<1, 1, 1>>(p);
        const Pairs<uint16_t> sum = row + lastTwo;
        lastTwo = row + last;
        last = row;
        return Mean<7282>::of(sum);
    }
};

struct Box5
{
    static constexpr size_t rows = 5, columns = 5, step = Bytes::lanes;
    Pairs<uint16_t> last = {}, lastTwo = {}, twoBefore = {}, lastFour = {};

    RVK_INLINE Bytes next(const uint8_t* p)
    {
        const Pairs<uint16_t> row = rowSum<Weights<1, 1, 1, 1, 1>>(p);
        const Pairs<uint16_t> sum = row + lastFour;
        const Pairs<uint16_t> two = row + last;
        lastFour = two + twoBefore;
        twoBefore = lastTwo;
        lastTwo = two;
        last = row;
        return Mean<2621>::of(sum);
    }
};

// The rows of the window lie in a ring in memory; registers could not hold them.
struct Box11
{
    static constexpr size_t rows = 11, columns = 11, step = Bytes::lanes;
    using Ring = Pairs<uint16_t>[rows];
    Pairs<uint16_t>* ring;
    size_t oldest = 0;
    Pairs<uint16_t> lastTen = {};

    static RVK_INLINE Pairs<uint16_t> rowOf(const uint8_t* p)
    {
        return rowSum<Weights<1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1>>(p);
    }

    RVK_INLINE void prime(const uint8_t* p)
    {
        const Pairs<uint16_t> row = rowOf(p);
        lastTen = lastTen + row;
        ring[oldest++] = row;
    }

    RVK_INLINE Bytes next(const uint8_t* p)
    {
        const Pairs<uint16_t> row = rowOf(p);
        const Pairs<uint16_t> sum = lastTen + row;
        ring[oldest] = row;
        oldest = oldest == rows - 1 ? 0 : oldest + 1;
        lastTen = sum - ring[oldest];
        return Mean<542>::of(sum);
    }
};

// ---- the 11x11 Gaussian -------------------------------------------------------------------------

// Neighbour sums down a column, taken eight times, of bytes fill 16 bits. They are moved down by half the range, so
// that products of signed numbers can go on from there; the end results then are 2^27 too low.
struct TallBinomial
{
    static constexpr size_t rows = 9, columns = 1, step = Vec<uint16_t>::lanes;
    NeighbourSums<8, Vec<uint16_t>> sums;

    RVK_INLINE Vec<int16_t> next(const uint8_t* p)
    {
        return bitCast<int16_t>(sums.add(loadWiden<uint16_t>(p)) ^ splat<uint16_t>(0x8000));
    }
};

// The other two, and the sum along the row.
template <class Output>
struct WideBinomial
{
    static constexpr size_t rows = 3, columns = 11, step = Bytes::lanes;
    using RowWeights = Weights<1, 10, 45, 120, 210, 252, 210, 120, 45, 10, 1>;
    NeighbourSums<2, Pairs<int32_t>> left, right;

    RVK_INLINE auto next(const int16_t* p)
    {
        const Pairs<int32_t> sumsLeft = left.add(rowSum<RowWeights>(p));
        const Pairs<int32_t> sumsRight = right.add(rowSum<RowWeights>(p + step / 2));
        return Output::of(sumsLeft, sumsRight);
    }
};

struct Shift20
{
    static RVK_INLINE Bytes of(Pairs<int32_t> left, Pairs<int32_t> right)
    {
        const Vecs<int16_t, 2> shifted = {{narrowPairs<20>(left), narrowPairs<20>(right)}};
        return bitCast<uint8_t>(narrow(shifted)) ^ splat<uint8_t>(0x80);
    }
};

struct Sums28
{
    static RVK_INLINE Vecs<uint32_t, 4> of(Pairs<int32_t> left, Pairs<int32_t> right)
    {
        const Vec<int32_t> half = splat(1 << 27);
        const Vecs<int32_t, 2> a = orderPairs(left), b = orderPairs(right);
        return {{bitCast<uint32_t>(a[0] + half), bitCast<uint32_t>(a[1] + half), bitCast<uint32_t>(b[0] + half),
                 bitCast<uint32_t>(b[1] + half)}};
    }
};

// As walk, in tiles whose intermediate sums stay in the first-level cache.
template <class Output, class D>
RVK_INLINE void walkBinomial11(size_t n, size_t m, Plane<const uint8_t> src, Plane<D> dst)
{
    using Wide = WideBinomial<Output>;
    constexpr size_t tileColumns = 256, tileRows = 64;
    alignas(kBytes) int16_t tile[tileRows + Wide::rows - 1][tileColumns + Wide::columns - 1];
    const Plane<int16_t> sums = {tile[0], sizeof tile[0]};
    for (size_t y = 0; y < m; y += tileRows)
        for (size_t x = 0; x < n; x += tileColumns) {
            const size_t columns = least(tileColumns, n - x), rows = least(tileRows, m - y);
            walk(columns + Wide::columns - 1, rows + Wide::rows - 1, Plane<const uint8_t>{src.row(y) + x, src.stride},
                 TallBinomial{}, sums);
            walk(columns, rows, Plane<const int16_t>{tile[0], sums.stride}, Wide{},
                 Plane<D>{dst.row(y) + x, dst.stride});
        }
}

// ---- rings --------------------------------------------------------------------------------------

// What stands for the pixels outside the image: the nearest inside, or a value.
template <class T>
struct Outside
{
    bool replicate;
    T value;
};

// `n` elements of a row of the image, from column x on and with `radius` more at either end, some of which may lie
// outside.
template <size_t radius, class T>
RVK_INLINE void copyPadded(T* dst, const T* row, size_t width, size_t x, size_t n, Outside<T> outside)
{
    const size_t before = x < radius ? radius - x : 0; // missing
    const size_t end = x + n + radius, after = end > width ? end - width : 0;
    for (size_t i = 0; i < before; ++i)
        dst[i] = outside.replicate ? row[0] : outside.value;
    __builtin_memcpy(dst + before, row + x + before - radius, (n + 2 * radius - before - after) * sizeof(T));
    for (size_t i = n + 2 * radius - after; i < n + 2 * radius; ++i)
        dst[i] = outside.replicate ? row[width - 1] : outside.value;
}

// The first and the last 2 * radius elements of a row, with what is outside before and after them.
template <size_t radius, class T>
RVK_INLINE void copySides(T* dst, const T* row, size_t width, Outside<T> outside)
{
    for (size_t i = 0; i < radius; ++i) {
        dst[i] = outside.replicate ? row[0] : outside.value;
        dst[5 * radius + i] = outside.replicate ? row[width - 1] : outside.value;
    }
    __builtin_memcpy(dst + radius, row, 2 * radius * sizeof(T));
    __builtin_memcpy(dst + 3 * radius, row + width - 2 * radius, 2 * radius * sizeof(T));
}

// The ring of an image that has an interior. Pieces of the image are copied with what lies around them, `filter(n, m,
// src, dst)` makes n x m outputs of type Value of a copy, and `finish(x, y, n, values)` writes n of them to a row.
template <size_t radius, class Value, class T, class Filter, class Finish>
RVK_INLINE void filterRing(size_t width, size_t height, Plane<const T> src, Outside<T> outside, Filter filter,
                           Finish finish)
{
    // The rows at the top and at the bottom.
    constexpr size_t strip = 1024;
    alignas(kBytes) T band[3 * radius][strip + 2 * radius];
    alignas(kBytes) Value bandValues[radius][strip];
    for (int end = 0; end < 2; ++end) {
        const size_t top = end == 0 ? 0 : height - radius;
        for (size_t x = 0; x < width; x += strip) {
            const size_t n = least(strip, width - x);
            for (size_t k = 0; k < 3 * radius; ++k) {
                const size_t y = nearest(top + k, radius, height);
                if (y + radius == top + k || outside.replicate) {
                    copyPadded<radius>(band[k], src.row(y), width, x, n, outside);
                } else {
                    for (size_t i = 0; i < n + 2 * radius; ++i)
                        band[k][i] = outside.value;
                }
            }
            filter(n, radius, Plane<const T>{band[0], sizeof band[0]},
                   Plane<Value>{bandValues[0], sizeof bandValues[0]});
            for (size_t k = 0; k < radius; ++k)
                finish(x, top + k, n, bandValues[k]);
        }
    }

    // The columns at the left and at the right: the first and the last 2 * radius pixels of a row side by side, and as
    // many blocks of rows next to each other as fill a vector.
    constexpr size_t block = 6 * radius, blockRows = 32;
    constexpr size_t blocks = Vec<T>::lanes + 2 * radius < block ? 1 : (Vec<T>::lanes + 2 * radius) / block;
    constexpr size_t n = blocks * block - 2 * radius > Vec<T>::lanes ? blocks * block - 2 * radius : Vec<T>::lanes;
    T sides[blockRows + 2 * radius][n + 2 * radius] = {};
    Value sideValues[blockRows][n];
    const auto rowsFrom = [&](size_t top) RVK_INLINE_LAMBDA {
        return top < height - radius ? least(blockRows, height - radius - top) : 0;
    };
    for (size_t top = radius; top < height - radius; top += blocks * blockRows) {
        for (size_t i = 0; i < blocks && rowsFrom(top + i * blockRows); ++i)
            for (size_t k = 0; k < rowsFrom(top + i * blockRows) + 2 * radius; ++k)
                copySides<radius>(sides[k] + i * block, src.row(top + i * blockRows + k - radius), width, outside);
        filter(n, rowsFrom(top), Plane<const T>{sides[0], sizeof sides[0]},
               Plane<Value>{sideValues[0], sizeof sideValues[0]});
        for (size_t i = 0; i < blocks; ++i)
            for (size_t k = 0; k < rowsFrom(top + i * blockRows); ++k) {
                const Value* values = sideValues[k] + i * block;
                finish(0, top + i * blockRows + k, radius, values);
                finish(width - radius, top + i * blockRows + k, radius, values + 3 * radius);
            }
    }
}

// A ring that is computed like the interior.
template <class Kernel>
RVK_INLINE void paddedRing(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst,
                           Outside<uint8_t> outside, Kernel kernel)
{
    filterRing<Kernel::columns / 2, uint8_t>(
        width, height, src, outside,
        [&](size_t n, size_t m, Plane<const uint8_t> in, Plane<uint8_t> out)
            RVK_INLINE_LAMBDA { walk(n, m, in, kernel, out); },
        [&](size_t x, size_t y, size_t n, const uint8_t* values)
            RVK_INLINE_LAMBDA { __builtin_memcpy(dst.row(y) + x, values, n); });
}

// floor(sum / divisor) = sum * reciprocal >> shift with reciprocal = floor(2^shift / divisor) + 1, as long as sum *
// divisor < 2^shift. Divisors are the sums of the weights of ring pixels, 9 to 240 or 638 * 638 to 1013 * 1024, and a
// sum is at most as many times the largest element. So the reciprocals, too, fit 32 bits.
template <class Sum>
constexpr unsigned kQuotientShift = 0;
template <>
constexpr unsigned kQuotientShift<uint16_t> = 24;
template <>
constexpr unsigned kQuotientShift<int32_t> = 38;
template <>
constexpr unsigned kQuotientShift<uint32_t> = 48;

RVK_INLINE uint8_t quotient(uint16_t sum, uint32_t reciprocal)
{
    return static_cast<uint8_t>(sum * reciprocal >> kQuotientShift<uint16_t>);
}

RVK_INLINE uint8_t quotient(uint32_t sum, uint32_t reciprocal)
{
    return static_cast<uint8_t>(uint64_t{sum} * reciprocal >> kQuotientShift<uint32_t>);
}

RVK_INLINE int16_t quotient(int32_t sum, uint32_t reciprocal) // rounded towards zero
{
    const auto magnitude = static_cast<uint32_t>(sum < 0 ? -sum : sum);
    const auto result = static_cast<int32_t>(uint64_t{magnitude} * reciprocal >> kQuotientShift<int32_t>);
    return static_cast<int16_t>(sum < 0 ? -result : result);
}

// 1 / (the sum of the weights inside the image) for pixels whose row and column have these distances from the edge.
template <class RowWeights, class Sum>
struct RingReciprocals
{
    static constexpr size_t radius = RowWeights::count / 2;
    uint32_t of[radius + 1][radius + 1];

    static constexpr int inside(size_t distance)
    {
        int sum = 0;
        for (size_t i = radius - distance; i < RowWeights::count; ++i)
            sum += RowWeights::at(i);
        return sum;
    }

    constexpr RingReciprocals() : of{}
    {
        for (size_t i = 0; i <= radius; ++i)
            for (size_t k = 0; k <= radius; ++k)
                of[i][k] = static_cast<uint32_t>(
                    (uint64_t{1} << kQuotientShift<Sum>) / static_cast<uint64_t>(inside(i) * inside(k)) + 1);
    }
};

// A ring from the pixels that exist: with zeros around the image, the sums of the interior are theirs, and only the
// divisor differs. `sums(n, m, src, dst)` makes those.
template <class RowWeights, class Sum, class T, class Filter>
RVK_INLINE void renormalisedRing(size_t width, size_t height, Plane<const T> src, Plane<T> dst, Filter sums)
{
    static constexpr RingReciprocals<RowWeights, Sum> reciprocals;
    constexpr size_t radius = RowWeights::count / 2;
    const auto distance = [](size_t x, size_t size) RVK_INLINE_LAMBDA { return least(radius, least(x, size - 1 - x)); };
    const auto finish = [&](size_t x, size_t y, size_t n, const Sum* values) RVK_INLINE_LAMBDA {
        const auto& row = reciprocals.of[distance(y, height)];
        T* out = dst.row(y) + x;
        size_t i = 0;
        for (; i < n && x + i < radius; ++i)
            out[i] = quotient(values[i], row[x + i]);
        for (; i < n && x + i < width - radius; ++i)
            out[i] = quotient(values[i], row[radius]);
        for (; i < n; ++i)
            out[i] = quotient(values[i], row[width - 1 - x - i]);
    };
    filterRing<radius, Sum>(width, height, src, Outside<T>{false, 0}, sums, finish);
}

template <class Kernel, class RowWeights, class Sum, class T>
RVK_INLINE void renormalisedRing(size_t width, size_t height, Plane<const T> src, Plane<T> dst)
{
    renormalisedRing<RowWeights, Sum>(width, height, src, dst,
                                      [&](size_t n, size_t m, Plane<const T> in, Plane<Sum> out)
                                          RVK_INLINE_LAMBDA { walk(n, m, in, Kernel{}, out); });
}

// Pictures that are all ring are rare and small: the reference does them.
RVK_INLINE bool hasInterior(size_t radius, size_t width, size_t height)
{
    return width > 2 * radius && height > 2 * radius;
}

void gaussian3x3(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    filterInterior(width, height, src, Binomial3<ShiftRight<4>>{}, dst);
}

void gaussian3x3Ring(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    renormalisedRing<Binomial3<Sums>, Weights<1, 2, 1>, uint16_t>(width, height, src, dst);
}

} // namespace

// ---- Gaussians ----------------------------------------------------------------------------------

void rvkFilterGaussian3x3u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    if (!hasInterior(1, srcWidth, srcHeight))
        return rvkFilterGaussian3x3u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
    gaussian3x3(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
    if (blurBorder == 1)
        gaussian3x3Ring(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
}

rvkStatus rvkFilterGaussian3x3u8_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    if (!hasInterior(1, srcWidth, srcHeight))
        return rvkFilterGaussian3x3u8_v3C(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue);
    gaussian3x3(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
    if (borderType == RAVIK_BORDER_CONSTANT || borderType == RAVIK_BORDER_REPLICATE)
        paddedRing(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride},
                   {borderType == RAVIK_BORDER_REPLICATE, borderValue}, Binomial3<ShiftRight<4>>{});
    else
        gaussian3x3Ring(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
    return RAVIK_SUCCESS;
}

void rvkFilterGaussian5x5u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    if (!hasInterior(2, srcWidth, srcHeight))
        return rvkFilterGaussian5x5u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    filterInterior(srcWidth, srcHeight, in, Binomial5<uint8_t, ShiftRight<8>>{}, out);
    if (blurBorder == 1)
        renormalisedRing<Binomial5<uint8_t, Sums>, Weights<1, 4, 6, 4, 1>, uint16_t>(srcWidth, srcHeight, in, out);
}

void rvkFilterGaussian5x5s16_v2V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    if (!hasInterior(2, srcWidth, srcHeight))
        return rvkFilterGaussian5x5s16_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    filterInterior(srcWidth, srcHeight, in, BinomialMeans5<>{}, out);
    if (blurBorder == 1)
        renormalisedRing<Binomial5<int16_t, Sums>, Weights<1, 4, 6, 4, 1>, int32_t>(srcWidth, srcHeight, in, out);
}

namespace {

// Of x = 256 * high + low the sums of `high`, which are at most 256 times 24 bits, and those of `low` fit 32 bits.
struct Binomial5s32
{
    static constexpr size_t rows = 5, columns = 5, step = Vec<int32_t>::lanes;
    NeighbourSums<4, Vecs<int32_t, 2>> sums;

    static RVK_INLINE Vecs<int32_t, 2> split(const int32_t* p)
    {
        const Vec<int32_t> v = load(p);
        return {{shiftRight(v, 8), v & splat(255)}};
    }

    static RVK_INLINE Vecs<int32_t, 2> times4(Vecs<int32_t, 2> v) { return {{shiftLeft(v[0], 2), shiftLeft(v[1], 2)}}; }

    RVK_INLINE Vec<int32_t> next(const int32_t* p)
    {
        const Vecs<int32_t, 2> middle = split(p + 2);
        const Vecs<int32_t, 2> row =
            split(p) + split(p + 4) + times4(split(p + 1) + middle + split(p + 3)) + middle + middle;
        const Vecs<int32_t, 2> sum = sums.add(row);
        return sum[0] + shiftRight(sum[1], 8);
    }
};

} // namespace

void rvkFilterGaussian5x5s32_v2V(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int32_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    if (blurBorder != 1)
        return;
    filterInterior(srcWidth, srcHeight, Plane{src, srcStride}, Binomial5s32{}, Plane{dst, dstStride});
    gaussian5x5s32Ring(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkFilterGaussian11x11u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    if (!hasInterior(5, srcWidth, srcHeight))
        return rvkFilterGaussian11x11u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    walkBinomial11<Shift20>(srcWidth - 10, srcHeight - 10, in, Plane{out.row(5) + 5, dstStride});
    if (blurBorder == 1)
        renormalisedRing<WideBinomial<Sums28>::RowWeights, uint32_t>(
            srcWidth, srcHeight, in, out,
            [](size_t n, size_t m, Plane<const uint8_t> from, Plane<uint32_t> to)
                RVK_INLINE_LAMBDA { walkBinomial11<Sums28>(n, m, from, to); });
}

// ---- box filters --------------------------------------------------------------------------------

namespace {

template <class Kernel>
RVK_INLINE void box(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, Outside<uint8_t> outside,
                    Kernel kernel)
{
    filterInterior(width, height, src, kernel, dst);
    paddedRing(width, height, src, dst, outside, kernel);
}

constexpr Outside<uint8_t> kZeroOutside = {false, 0};

} // namespace

rvkStatus rvkBoxFilter3x3u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    const uint8_t value = borderType == RAVIK_BORDER_CONSTANT ? borderValue : 0;
    box(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride},
        {borderType == RAVIK_BORDER_REPLICATE, value}, Box3{});
    return RAVIK_SUCCESS;
}

void rvkBoxFilter3x3u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstStride)
{
    rvkBoxFilter3x3u8_v2V(src, srcWidth, srcHeight, srcStride, dst, dstStride, 0, 0);
}

void rvkBoxFilter5x5u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstStride)
{
    box(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride}, kZeroOutside, Box5{});
}

void rvkBoxFilter11x11u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride)
{
    Box11::Ring ring;
    box(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride}, kZeroOutside, Box11{ring});
}

// ---- sums of windows of any size ----------------------------------------------------------------

namespace {

// dst = a + b. The sources may begin at dst or behind it.
template <class T>
RVK_INLINE void addRows(T* dst, const T* a, const T* b, size_t n)
{
    mapRow(
        n, dst, [](Vec<T> x, Vec<T> y) RVK_INLINE_LAMBDA { return x + y; }, a, b);
}

RVK_INLINE void addRows(double* dst, const double* a, const double* b, size_t n)
{
#if defined(__clang__)
#pragma clang loop vectorize(assume_safety)
#else
#pragma GCC ivdep
#endif
    for (size_t i = 0; i < n; ++i)
        dst[i] = a[i] + b[i];
}

// Pairwise sums of windows of `count` values that start at each of the first n: sums of 2, 4, 8 ... values take the
// place of the values, and those that make up a window are added to the result, the last ones of the window first.
template <class T>
RVK_INLINE void sumWindowsOfRow(T* values, size_t n, size_t count, T* result)
{
    bool started = false;
    for (size_t size = 1; size <= count; size *= 2) {
        if (count & size) {
            const T* last = values + (count & ~(2 * size - 1));
            if (started)
                addRows(result, last, result, n);
            else
                __builtin_memcpy(result, last, n * sizeof(T));
            started = true;
        }
        if (2 * size <= count)
            addRows(values, values, values + size, n + count - 2 * size);
    }
}

// Sums of windows of floating-point values, in the order of the reference: the sums of the window's rows lie in a ring,
// where those of the previous turn are replaced by their sums with all rows after them, as soon as the turn is
// complete, and those of the current turn are added up as they come.
template <class T>
class WindowSums
{
public:
    RVK_INLINE WindowSums(size_t width, size_t windowWidth, size_t windowHeight)
        : m_width(width), m_windowWidth(windowWidth), m_windowHeight(windowHeight), m_values(width + windowWidth - 1),
          m_ring(windowHeight, width), m_newer(width), m_sums(width)
    {
    }

    RVK_INLINE explicit operator bool() const { return m_values && m_ring && m_newer && m_sums; }

    // Where the next row's values go, before add().
    RVK_INLINE T* values() const { return m_values.get() + m_windowWidth / 2; }

    // Takes the values, continued at both ends by the nearest.
    RVK_INLINE void add()
    {
        const size_t before = m_windowWidth / 2, all = m_width + m_windowWidth - 1;
        for (size_t i = 0; i < before; ++i)
            m_values[i] = m_values[before];
        for (size_t i = before + m_width; i < all; ++i)
            m_values[i] = m_values[before + m_width - 1];
        T* row = rowOf(m_next);
        sumWindowsOfRow(m_values.get(), m_width, m_windowWidth, row);
        if (m_next + 1 == m_windowHeight) {
            for (size_t k = m_next; k-- > 0;)
                addRows(rowOf(k), rowOf(k + 1), rowOf(k), m_width);
            m_next = 0;
            return;
        }
        if (m_next == 0)
            __builtin_memcpy(m_newer.get(), row, m_width * sizeof(T));
        else
            addRows(m_newer.get(), m_newer.get(), row, m_width);
        ++m_next;
    }

    // The sums of the windows whose last row was the one just added.
    RVK_INLINE const T* sums() const
    {
        if (m_next == 0)
            return rowOf(0);
        addRows(m_sums.get(), rowOf(m_next), m_newer.get(), m_width);
        return m_sums.get();
    }

private:
    RVK_INLINE T* rowOf(size_t k) const { return m_ring.get() + k * m_width; }

    size_t m_width, m_windowWidth, m_windowHeight;
    Scratch<T> m_values, m_ring, m_newer, m_sums;
    size_t m_next = 0;
};

} // namespace

rvkStatus rvkBoxFilterNxNf32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t N, float32_t* dst, uint32_t dstStride)
{
    WindowSums<float> sums(srcWidth, N, N);
    if (!sums)
        return RAVIK_ENORES;
    const Vec<float> pixels = splat(static_cast<float>(N) * static_cast<float>(N));
    for (size_t y = 0; y < size_t{srcHeight} + N - 1; ++y) {
        __builtin_memcpy(sums.values(), Plane{src, srcStride}.row(nearest(y, N / 2, srcHeight)),
                         srcWidth * sizeof(float));
        sums.add();
        if (y + 1 >= N)
            mapRow(
                srcWidth, Plane{dst, dstStride}.row(y + 1 - N),
                [&](Vec<float> sum) RVK_INLINE_LAMBDA { return divide(sum, pixels); }, sums.sums());
    }
    return RAVIK_SUCCESS;
}

// ---- local normalisation ------------------------------------------------------------------------

namespace {

struct Normalised
{
    Vec<uint32_t> count;
    Vec<float> oneth; // 1 / count

    // The reference's formula.
    RVK_INLINE Vec<int32_t> of(Vec<uint32_t> pixel, Vec<uint32_t> sum, Vec<uint32_t> sumOfSquares) const
    {
        const Vec<uint32_t> nearMean = bitCast<uint32_t>(truncateToInt(toFloat(sum) * oneth));
        const Vec<uint32_t> rest = sum - nearMean * count;
        const Vec<uint32_t> squaresAboutNearMean = sumOfSquares - nearMean * (sum + rest);
        const Vec<float> meanAboveNearMean = toFloat(bitCast<int32_t>(rest)) * oneth;
        const Vec<float> variance = toFloat(squaresAboutNearMean) * oneth - meanAboveNearMean * meanAboveNearMean;
        const Vec<float> deviation = squareRoot(max(variance, splat(1.0f)));
        const Vec<float> above = toFloat(bitCast<int32_t>(pixel - nearMean)) - meanAboveNearMean;
        return roundToInt(splat(32.0f) * divide(above, deviation)) + splat(128);
    }
};

// Adds a row of the image to the sums of its columns, and takes one away.
RVK_INLINE void moveDown(size_t n, const uint8_t* entering, const uint8_t* leaving, uint32_t* sums, uint32_t* squares)
{
    constexpr size_t step = Vec<uint32_t>::lanes;
    size_t x = 0;
    for (; x + step <= n; x += step) {
        const Vec<uint32_t> in = loadWiden<uint32_t>(entering + x), out = loadWiden<uint32_t>(leaving + x);
        store(sums + x, load(sums + x) + in - out);
        store(squares + x, load(squares + x) + (in + out) * (in - out));
    }
    for (; x < n; ++x) {
        const uint32_t in = entering[x], out = leaving[x];
        sums[x] += in - out;
        squares[x] += (in + out) * (in - out);
    }
}

// The values of the columns, continued at both ends by the nearest.
RVK_INLINE void copyContinued(uint32_t* dst, const uint32_t* columns, size_t n, size_t before)
{
    for (size_t i = 0; i < before; ++i) {
        dst[i] = columns[0];
        dst[before + n + i] = columns[n - 1];
    }
    __builtin_memcpy(dst + before, columns, n * sizeof *dst);
}

RVK_INLINE void normaliseRow(size_t n, const uint8_t* row, const uint32_t* sums, const uint32_t* squares, uint8_t* dst,
                             const Normalised& normalised)
{
    constexpr size_t step = Bytes::lanes, lanes = Vec<uint32_t>::lanes;
    const auto at = [&](const uint8_t* pixels, const uint32_t* s, const uint32_t* q) RVK_INLINE_LAMBDA {
        const auto quarter = [&](size_t i) RVK_INLINE_LAMBDA {
            return normalised.of(loadWiden<uint32_t>(pixels + i * lanes), load(s + i * lanes), load(q + i * lanes));
        };
        const Vecs<int32_t, 2> low = {{quarter(0), quarter(1)}}, high = {{quarter(2), quarter(3)}};
        return narrowSat<uint8_t>(Vecs<int16_t, 2>{{narrowSat<int16_t>(low), narrowSat<int16_t>(high)}});
    };
    if (n < step) {
        uint8_t pixels[step] = {};
        uint32_t s[step] = {}, q[step] = {};
        __builtin_memcpy(pixels, row, n);
        __builtin_memcpy(s, sums, n * sizeof *s);
        __builtin_memcpy(q, squares, n * sizeof *q);
        storePartial(dst, at(pixels, s, q), n);
        return;
    }
    for (size_t next = 0; next < n; next += step) {
        const size_t x = next + step <= n ? next : n - step;
        store(dst + x, at(row + x, sums + x, squares + x));
    }
}

// The square of (value - mean) / deviation, and a number with its sign: the reference's formula.
RVK_INLINE void normalisedSquares(size_t n, const float* values, const double* sums, const double* squares,
                                  double count, float* __restrict square, float* __restrict above)
{
    for (size_t i = 0; i < n; ++i) {
        const double difference = count * values[i] - sums[i];
        const double squaredSum = sums[i] * sums[i];
        const double spread = count * squares[i] - squaredSum, least = 0x1p-40 * squaredSum + 0x1p-600;
        square[i] = static_cast<float>(difference * difference / (spread < least ? least : spread));
        above[i] = static_cast<float>(difference);
    }
}

} // namespace

rvkStatus rvkNormalizeLocalBoxu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint32_t windowWidth, uint32_t windowHeight, uint8_t* dst, uint32_t dstStride)
{
    const Scratch<uint32_t> scratch(uint64_t{5} * srcWidth + windowWidth - 1);
    if (!scratch)
        return RAVIK_ENORES;
    uint32_t *sums = scratch.get(), *squares = sums + srcWidth; // of the columns
    uint32_t *windowSums = squares + srcWidth, *windowSquares = windowSums + srcWidth,
             *continued = windowSquares + srcWidth;

    const Plane in = {src, srcStride};
    const size_t radius = windowHeight / 2;
    const uint32_t count = windowWidth * windowHeight;
    const Normalised normalised = {splat(count), splat(1.0f / static_cast<float>(count))};
    for (size_t x = 0; x < 2 * size_t{srcWidth}; ++x)
        sums[x] = 0;
    for (size_t k = 0; k < windowHeight; ++k) { // of the row above the image
        const uint8_t* row = in.row(nearest(k, radius + 1, srcHeight));
        for (size_t x = 0; x < srcWidth; ++x) {
            sums[x] += row[x];
            squares[x] += uint32_t{row[x]} * row[x];
        }
    }
    for (size_t y = 0; y < srcHeight; ++y) {
        moveDown(srcWidth, in.row(nearest(y + radius, 0, srcHeight)), in.row(nearest(y, radius + 1, srcHeight)), sums,
                 squares);
        copyContinued(continued, sums, srcWidth, windowWidth / 2);
        sumWindowsOfRow(continued, srcWidth, windowWidth, windowSums);
        copyContinued(continued, squares, srcWidth, windowWidth / 2);
        sumWindowsOfRow(continued, srcWidth, windowWidth, windowSquares);
        normaliseRow(srcWidth, in.row(y), windowSums, windowSquares, Plane{dst, dstStride}.row(y), normalised);
    }
    return RAVIK_SUCCESS;
}

rvkStatus rvkNormalizeLocalBoxf32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint32_t windowWidth, uint32_t windowHeight, float32_t* dst, uint32_t dstStride)
{
    WindowSums<double> sums(srcWidth, windowWidth, windowHeight), squares(srcWidth, windowWidth, windowHeight);
    const Scratch<float> quotients(2, srcWidth);
    if (!sums || !squares || !quotients)
        return RAVIK_ENORES;
    const double count = static_cast<double>(windowWidth) * windowHeight;
    const size_t radius = windowHeight / 2;
    float *square = quotients.get(), *above = square + srcWidth;
    for (size_t y = 0; y < srcHeight + 2 * radius; ++y) {
        const float* row = Plane{src, srcStride}.row(nearest(y, radius, srcHeight));
        double *values = sums.values(), *valuesSquared = squares.values();
        for (size_t x = 0; x < srcWidth; ++x) {
            values[x] = row[x];
            valuesSquared[x] = values[x] * values[x];
        }
        sums.add();
        squares.add();
        if (y < 2 * radius)
            continue;
        const float* centre = Plane{src, srcStride}.row(y - 2 * radius);
        normalisedSquares(srcWidth, centre, sums.sums(), squares.sums(), count, square, above);
        const Vec<uint32_t> sign = splat(0x80000000u);
        mapRow(
            srcWidth, Plane{dst, dstStride}.row(y - 2 * radius),
            [&](Vec<float> magnitude, Vec<float> difference) RVK_INLINE_LAMBDA {
                return bitCast<float>(bitCast<uint32_t>(squareRoot(magnitude)) |
                                      (bitCast<uint32_t>(difference) & sign));
            },
            square, above);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

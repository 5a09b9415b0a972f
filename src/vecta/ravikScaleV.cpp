// Vector implementations of the scalers by fixed ratios.
#include "vecta/simd/rows.h"
#include "vecta/simd/scaling.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- weighted means -------------------------------------------------------------------------------------------------

// floor(1/2 + sum * reciprocal) for a single-precision reciprocal, in integers. The reciprocal's error moves no mean but
// those that lie half way between two, which an even sum of weights has: they go up or down as the reciprocal was rounded.
// So the mean is (sum + half) / weights, and a multiplication divides where excess * (sum + half) < 2^(16 + shift) for the
// excess = multiplier * weights - 2^(16 + shift) (Granlund and Montgomery, "Division by Invariant Integers using
// Multiplication", 1994).
struct Mean
{
    uint32_t half, multiplier, shift;

    constexpr explicit Mean(uint32_t weights)
    {
        const double reciprocal = 1.0f / static_cast<float>(weights);
        half = weights / 2 - (weights % 2 == 0 && reciprocal * weights < 1);
        shift = 0;
        while ((weights - 1) >> (shift + 1))
            ++shift;
        multiplier = ((uint32_t{1} << (16 + shift)) + weights - 1) / weights;
    }

    constexpr bool isExact(uint32_t weights) const
    {
        const uint64_t power = uint64_t{1} << (16 + shift);
        return (uint64_t{multiplier} * weights - power) * (255 * weights + half) < power && multiplier <= UINT16_MAX &&
               255 * weights + half <= UINT16_MAX;
    }

    RVK_INLINE uint8_t of(uint32_t sum) const
    {
        return static_cast<uint8_t>((sum + half) * multiplier >> (16 + shift));
    }
    RVK_INLINE Vec<uint8_t> of(const Vecs<uint16_t, 2>& sums) const
    {
        return narrow(both(sums, [this](Vec<uint16_t> sum) RVK_INLINE_LAMBDA {
            const Vec<uint16_t> product =
                multiplyHigh(sum + splat(static_cast<uint16_t>(half)), splat(static_cast<uint16_t>(multiplier)));
            return shiftRight(product, shift);
        }));
    }
};

template <uint32_t... weights>
constexpr bool allExact = (Mean(weights).isExact(weights) && ...);

struct FloatMean
{
    float reciprocal;

    explicit FloatMean(uint32_t weights) : reciprocal(1.0f / static_cast<float>(weights)) {}

    RVK_INLINE float of(float sum) const { return sum * reciprocal; }
    RVK_INLINE Vec<float> of(Vec<float> sum) const { return sum * splat(reciprocal); }
};

// ---- binomial means at every second pixel ---------------------------------------------------------------------------
//
// A Halving says what the window is. Sums along the rows come first, each of every second window, and are added down
// columns, while what two outputs have in common stays in registers. What is added is a row's sums as vectors or, at the
// left and right edge of the picture, the sum of one window. What lies outside the picture is 0.

// Down a column: `next` takes the two rows of sums below the last output's middle one.
template <class Row>
struct Down3
{
    Row odd, even;

    RVK_INLINE Down3(Row, Row oddAbove, Row middle) : odd(oddAbove), even(middle) {}
    RVK_INLINE Row next(Row oddBelow, Row evenBelow)
    {
        const Row sum = odd + oddBelow + (even + even);
        odd = oddBelow;
        even = evenBelow;
        return sum;
    }
};

// Sums of neighbours, taken four times.
template <class Row>
struct Down5
{
    Row even, two, three;

    RVK_INLINE Down5(Row evenAbove, Row oddAbove, Row middle)
        : even(middle), two(oddAbove + middle), three(evenAbove + oddAbove + two)
    {
    }
    RVK_INLINE Row next(Row oddBelow, Row evenBelow)
    {
        const Row twoHere = even + oddBelow, twoBelow = oddBelow + evenBelow;
        const Row threeHere = two + twoHere, threeBelow = twoHere + twoBelow;
        const Row sum = three + threeHere + (threeHere + threeBelow);
        even = evenBelow;
        two = twoBelow;
        three = threeBelow;
        return sum;
    }
};

RVK_INLINE float times(float factor, float v)
{
    return factor * v;
}
RVK_INLINE Vec<float> times(float factor, Vec<float> v)
{
    return splat(factor) * v;
}

// The reference's order of additions.
template <class V>
RVK_INLINE V weightedSum(V a, V b, V c, V d, V e)
{
    return ((a + e) + times(4.0f, b + d)) + times(6.0f, c);
}

template <class Row>
struct FloatDown5
{
    Row evenTwoAbove, oddAbove, even;

    RVK_INLINE FloatDown5(Row evenAbove, Row above, Row middle) : evenTwoAbove(evenAbove), oddAbove(above), even(middle)
    {
    }
    RVK_INLINE Row next(Row oddBelow, Row evenBelow)
    {
        const Row sum = weightedSum(evenTwoAbove, oddAbove, even, oddBelow, evenBelow);
        evenTwoAbove = even;
        oddAbove = oddBelow;
        even = evenBelow;
        return sum;
    }
};

struct Halving3x3
{
    static constexpr size_t radius = 1, step = Vec<uint8_t>::lanes;
    static constexpr uint32_t weights[] = {1, 2, 1}, wholeLine = 4;
    using Sums = Vecs<uint16_t, 2>;
    using Sum = uint32_t;
    template <class Row>
    using Down = Down3<Row>;
    using MeanOf = Mean;
    static_assert(allExact<9, 12, 16>);

    static RVK_INLINE Sums sumsOf(const uint8_t* p) { return everySecondSum<Weights<1, 2, 1>>(p); }
    static RVK_INLINE Sum leftSumOf(const uint8_t* row, size_t) { return 2u * row[0] + row[1]; }
    static RVK_INLINE Sum rightSumOf(const uint8_t*, size_t) { return 0; } // no window reaches beyond
    static RVK_INLINE Vec<uint8_t> wholeMean(const Sums& sums) { return narrowRounded<uint8_t, 4>(sums); }
};

struct Halving5x5
{
    static constexpr size_t radius = 2, step = Vec<uint8_t>::lanes;
    static constexpr uint32_t weights[] = {1, 4, 6, 4, 1}, wholeLine = 16;
    using Sums = Vecs<uint16_t, 2>;
    using Sum = uint32_t;
    template <class Row>
    using Down = Down5<Row>;
    using MeanOf = Mean;
    static_assert(allExact<100, 110, 121, 150, 160, 165, 176, 225, 240>);

    static RVK_INLINE Sums sumsOf(const uint8_t* p) { return everySecondSum<Weights<1, 4, 6, 4, 1>>(p); }
    static RVK_INLINE Sum leftSumOf(const uint8_t* row, size_t width)
    {
        return 6u * row[0] + 4u * row[1] + (width > 2 ? row[2] : 0u);
    }
    static RVK_INLINE Sum rightSumOf(const uint8_t* row, size_t width)
    {
        const uint8_t* p = row + width - 4;
        return p[0] + 4u * p[1] + 6u * p[2] + 4u * p[3];
    }
    static RVK_INLINE Vec<uint8_t> wholeMean(const Sums& sums) { return narrowRounded<uint8_t, 8>(sums); }
};

struct FloatHalving5x5
{
    static constexpr size_t radius = 2, step = Vec<float>::lanes;
    static constexpr uint32_t weights[] = {1, 4, 6, 4, 1}, wholeLine = 16;
    using Sums = Vec<float>;
    using Sum = float;
    template <class Row>
    using Down = FloatDown5<Row>;
    using MeanOf = FloatMean;

    static RVK_INLINE Sums sumsOf(const float* p)
    {
        const Vecs<float, 2> ab = load2(p), cd = load2(p + 2);
        return weightedSum(ab[0], ab[1], cd[0], cd[1], load2(p + 3)[1]);
    }
    static RVK_INLINE Sum leftSumOf(const float* row, size_t width)
    {
        return weightedSum(0.0f, 0.0f, row[0], row[1], width > 2 ? row[2] : 0.0f);
    }
    static RVK_INLINE Sum rightSumOf(const float* row, size_t width)
    {
        const float* p = row + width - 4;
        return weightedSum(p[0], p[1], p[2], p[3], 0.0f);
    }
    static RVK_INLINE Vec<float> wholeMean(Sums sums) { return sums * splat(1.0f / 256); }
};

// The weights of a window around pixel 2 * i of a line that lie on it, summed.
template <class Halving>
RVK_INLINE uint32_t weightsInside(size_t i, size_t size)
{
    uint32_t sum = 0;
    for (size_t k = 0; k <= 2 * Halving::radius; ++k)
        if (2 * i + k >= Halving::radius && 2 * i + k - Halving::radius < size)
            sum += Halving::weights[k];
    return sum;
}

// Whether the window around pixel 2 * i reaches beyond the line.
template <class Halving>
RVK_INLINE bool isAtEdge(size_t i, size_t size)
{
    return i == 0 || 2 * i + Halving::radius >= size;
}

// Rows of outputs that a column is followed down before the next one.
constexpr size_t kBlockRows = 32;

// Rows top..bottom - 1 of one column: sumOf(y) gives the sums of row y of the source, put(y, sums) gets those of output y.
template <class Halving, class Row, class SumOf, class Put>
RVK_INLINE void followDown(size_t top, size_t bottom, size_t height, SumOf sumOf, Put put)
{
    const Row nothing = {};
    typename Halving::template Down<Row> column(top ? sumOf(2 * top - 2) : nothing, top ? sumOf(2 * top - 1) : nothing,
                                                sumOf(2 * top));
    for (size_t y = top; y < bottom; ++y) {
        const Row odd = sumOf(2 * y + 1);
        put(y, column.next(odd, 2 * y + 2 < height ? sumOf(2 * y + 2) : nothing));
    }
}

// The means of outputs whose windows lie between the left and the right edge.
template <class Halving>
RVK_INLINE auto meansOf(const typename Halving::Sums& sums, size_t y, size_t height)
{
    if (isAtEdge<Halving>(y, height)) [[unlikely]]
        return typename Halving::MeanOf(Halving::wholeLine * weightsInside<Halving>(y, height)).of(sums);
    return Halving::wholeMean(sums);
}

// Such outputs, `n` in a row from dst on; the windows of the first begin in the first column of src.
template <class Halving, class T>
RVK_INLINE void halveMiddle(size_t n, size_t top, size_t bottom, size_t height, Plane<const T> src, Plane<T> dst)
{
    constexpr size_t step = Halving::step;
    using Sums = typename Halving::Sums;
    for (size_t next = 0; next < n; next += step) {
        const size_t x = next + step <= n ? next : n - step; // the last column may overlap the one before it
        followDown<Halving, Sums>(
            top, bottom, height, [&](size_t y) RVK_INLINE_LAMBDA { return Halving::sumsOf(src.row(y) + 2 * x); },
            [&](size_t y, const Sums& sums)
                RVK_INLINE_LAMBDA { store(dst.row(y) + x, meansOf<Halving>(sums, y, height)); });
    }
}

// The same of fewer outputs than a vector has, in copies of the rows that have room behind them.
template <class Halving, class T>
RVK_INLINE void halveNarrowMiddle(size_t n, size_t top, size_t bottom, size_t height, Plane<const T> src, Plane<T> dst)
{
    using Sums = typename Halving::Sums;
    T row[2 * Halving::step + 2 * Halving::radius] = {};
    followDown<Halving, Sums>(
        top, bottom, height,
        [&](size_t y) RVK_INLINE_LAMBDA {
            __builtin_memcpy(row, src.row(y), (2 * n + 2 * Halving::radius - 1) * sizeof(T));
            return Halving::sumsOf(row);
        },
        [&](size_t y, const Sums& sums)
            RVK_INLINE_LAMBDA { storePartial(dst.row(y), meansOf<Halving>(sums, y, height), n); });
}

// The outputs of column x, at the left or the right edge.
template <class Halving, class T, class SumOf>
RVK_INLINE void halveEdge(size_t x, size_t width, size_t top, size_t bottom, size_t height, Plane<T> dst, SumOf sumOf)
{
    const uint32_t across = weightsInside<Halving>(x, width);
    const typename Halving::MeanOf mean(across * Halving::wholeLine);
    followDown<Halving, typename Halving::Sum>(
        top, bottom, height, sumOf, [&](size_t y, typename Halving::Sum sum) RVK_INLINE_LAMBDA {
            T& to = dst.row(y)[x];
            if (isAtEdge<Halving>(y, height)) [[unlikely]]
                to = typename Halving::MeanOf(across * weightsInside<Halving>(y, height)).of(sum);
            else
                to = mean.of(sum);
        });
}

template <class Halving, class T>
RVK_INLINE void halve(size_t width, size_t height, Plane<const T> src, Plane<T> dst)
{
    const size_t columns = width / 2, rows = height / 2;
    const bool hasRightEdge = columns > 1 && isAtEdge<Halving>(columns - 1, width);
    const size_t middle = columns - 1 - hasRightEdge;
    const Plane<const T> middleSrc = {src.data + 2 - Halving::radius, src.stride};
    const Plane<T> middleDst = {dst.data + 1, dst.stride};
    for (size_t top = 0; top < rows; top += kBlockRows) {
        const size_t bottom = least(top + kBlockRows, rows);
        halveEdge<Halving>(0, width, top, bottom, height, dst,
                           [&](size_t y) RVK_INLINE_LAMBDA { return Halving::leftSumOf(src.row(y), width); });
        if (middle >= Halving::step)
            halveMiddle<Halving>(middle, top, bottom, height, middleSrc, middleDst);
        else if (middle > 0)
            halveNarrowMiddle<Halving>(middle, top, bottom, height, middleSrc, middleDst);
        if (hasRightEdge)
            halveEdge<Halving>(columns - 1, width, top, bottom, height, dst,
                               [&](size_t y) RVK_INLINE_LAMBDA { return Halving::rightSumOf(src.row(y), width); });
    }
}

} // namespace

rvkStatus rvkScaleDownBy2Gaussian3x3u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride)
{
    halve<Halving3x3>(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
    return RAVIK_SUCCESS;
}

void rvkScaleDownBy2Gaussian5x5u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride)
{
    halve<Halving5x5>(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
}

void rvkScaleDownBy2Gaussian5x5f32_v2V(const float32_t* srcImg, uint32_t width, uint32_t height, uint32_t srcStride,
                                       float32_t* dst, uint32_t dstStride)
{
    halve<FloatHalving5x5>(width, height, Plane{srcImg, srcStride}, Plane{dst, dstStride});
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikScaleForms.h"

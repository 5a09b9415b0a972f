// Vector implementations of the scalers by fixed ratios.
#include "vecta/simd/blocks.h"
#include "vecta/simd/scaling.h"
#include "vecta/vecta.h"

#include <ravik/scale.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- blocks of pixels: steps over rows of them ----------------------------------------------------------------------

// Bytes, four vectors at a time.
struct Copy : WholeUnits
{
    static constexpr size_t vectors = 4, units = vectors * kBytes, in = 1, out = 1;

    RVK_INLINE static Vecs<uint8_t, vectors> take(const Rows<const uint8_t, 1>& src)
    {
        return loadVecs<vectors>(src.row[0]);
    }
    RVK_INLINE static void put(const Vecs<uint8_t, vectors>& v, size_t, uint8_t* dst) { store(dst, v); }
};

// Elements T, each twice.
template <class T>
struct Twice : WholeUnits
{
    static constexpr size_t units = Vec<T>::lanes, in = sizeof(T), out = 2 * sizeof(T);

    RVK_INLINE static Vec<uint8_t> take(const Rows<const uint8_t, 1>& src) { return load(src.row[0]); }
    RVK_INLINE static void put(Vec<uint8_t> v, size_t, uint8_t* dst) { storeTwice<T>(dst, v); }
};

template <uint32_t pixelSize, uint32_t across, uint32_t down>
RVK_INLINE void repeat(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    if constexpr (across == 1)
        mapBlocks<Copy, 1, down>(size_t{width} * pixelSize, height, src, dst);
    else if constexpr (pixelSize == 1)
        mapBlocks<Twice<uint8_t>, 1, down>(width, height, src, dst);
    else
        mapBlocks<Twice<uint16_t>, 1, down>(width, height, src, dst);
}

// ---- weighted means -------------------------------------------------------------------------------------------------

// floor(1/2 + sum * reciprocal) for the single-precision reciprocal of the weights, in integers: the mean, rounded half
// up. The reciprocal's error is too small to matter but where the mean lies half way and the reciprocal was rounded
// down. Of even weights only 100 and 110 have such ones, and their windows, of two columns or rows, have even sums,
// 100's multiples of 4, which are no odd multiples of 55 and 50.
//
// So the mean is (sum + half) / weights, and a multiplication divides where excess * (sum + half) < 2^(16 + shift) for
// the excess = multiplier * weights - 2^(16 + shift) (Granlund and Montgomery, "Division by Invariant Integers using
// Multiplication", 1994).
struct Mean
{
    uint32_t half, multiplier, shift = 0;

    constexpr explicit Mean(uint32_t weights) : half(weights / 2)
    {
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
    RVK_INLINE Vec<uint16_t> of(Vec<uint16_t> sum) const
    {
        const Vec<uint16_t> product =
            multiplyHigh(sum + splat(static_cast<uint16_t>(half)), splat(static_cast<uint16_t>(multiplier)));
        return shiftRight(product, shift);
    }
    RVK_INLINE Vec<uint8_t> of(const Vecs<uint16_t, 2>& sums) const
    {
        return narrow(both(sums, [this](Vec<uint16_t> sum) RVK_INLINE_LAMBDA { return of(sum); }));
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

// Lane i of sums.
RVK_INLINE uint32_t laneOf(const Vecs<uint16_t, 2>& sums, size_t i)
{
    constexpr size_t n = Vec<uint16_t>::lanes;
    return sums[i / n].raw[i % n];
}
RVK_INLINE float laneOf(Vec<float> sums, size_t i)
{
    return sums.raw[i];
}

// ---- binomial means at every second pixel ---------------------------------------------------------------------------
//
// A Halving says what the window is. Sums along the rows come first, each of every second window, and are added down
// columns, while what two outputs have in common stays in registers. What lies outside the picture is 0, and the means
// of the outputs beside it are put right one by one.

// Down a column: `next` takes the two rows of sums below the last output's middle one.
struct Down3
{
    using Row = Vecs<uint16_t, 2>;
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

// The reference's order of additions.
RVK_INLINE Vec<float> weightedSum(Vec<float> a, Vec<float> b, Vec<float> c, Vec<float> d, Vec<float> e)
{
    return ((a + e) + splat(4.0f) * (b + d)) + splat(6.0f) * c;
}

struct FloatDown5
{
    using Row = Vec<float>;
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
    using Down = Down3;
    using MeanOf = Mean;
    static_assert(allExact<9, 12, 16>);

    template <At at, bool oddRow>
    static RVK_INLINE Down::Row sumsOf(const uint8_t* p)
    {
        return everySecondSum<Weights<1, 2, 1>, at>(p);
    }
    static RVK_INLINE Vec<uint8_t> wholeMeans(const Down::Row& sums)
    {
        return narrowRounded<uint8_t, 4>(bitCast<int16_t>(sums)); // which are below 2^15
    }
};

struct Halving5x5
{
    static constexpr size_t radius = 2, step = Vec<uint8_t>::lanes;
    static constexpr uint32_t weights[] = {1, 4, 6, 4, 1}, wholeLine = 16;
    using Down = Down5;
    using MeanOf = Mean;
    static_assert(allExact<100, 110, 121, 150, 160, 165, 176, 225, 240>);

    template <At at, bool oddRow>
    static RVK_INLINE Down::Row sumsOf(const uint8_t* p)
    {
        constexpr int n = oddRow ? Down::oddRows : 1;
        return everySecondSum<Weights<n, 4 * n, 6 * n, 4 * n, n>, at>(p);
    }
    static RVK_INLINE Vec<uint8_t> wholeMeans(const Down::Row& sums) { return meansOf256(sums); }
};

struct FloatHalving5x5
{
    static constexpr size_t radius = 2, step = Vec<float>::lanes;
    static constexpr uint32_t weights[] = {1, 4, 6, 4, 1}, wholeLine = 16;
    using Down = FloatDown5;
    using MeanOf = FloatMean;

    template <At at, bool oddRow>
    static RVK_INLINE Vec<float> sumsOf(const float* p)
    {
        const Vecs<float, 5> v = loadEverySecond5<at>(p);
        return weightedSum(v[0], v[1], v[2], v[3], v[4]);
    }
    static RVK_INLINE Vec<float> wholeMeans(Vec<float> sums) { return sums * splat(1.0f / 256); }
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

// Some rows of outputs, and how high the source is.
struct RowRange
{
    size_t top, bottom, height;
};

// One column of outputs: evenSums(y) and oddSums(y) give the sums of such a row of the source, put(y, sums) gets those
// of output y.
template <class Halving, class EvenSums, class OddSums, class Put>
RVK_INLINE void halveDown(const RowRange& rows, EvenSums evenSums, OddSums oddSums, Put put)
{
    const typename Halving::Down::Row nothing = {};
    const size_t top = rows.top;
    typename Halving::Down column(top ? evenSums(2 * top - 2) : nothing, top ? oddSums(2 * top - 1) : nothing,
                                  evenSums(2 * top));
    for (size_t y = top; y < rows.bottom; ++y) {
        const auto odd = oddSums(2 * y + 1);
        put(y, column.next(odd, 2 * y + 2 < rows.height ? evenSums(2 * y + 2) : nothing));
    }
}

// The means of outputs whose windows lie between the left and right edge.
template <class Halving>
RVK_INLINE auto meansOf(const typename Halving::Down::Row& sums, size_t y, size_t height)
{
    if (isAtEdge<Halving>(y, height)) [[unlikely]]
        return typename Halving::MeanOf(Halving::wholeLine * weightsInside<Halving>(y, height)).of(sums);
    return Halving::wholeMeans(sums);
}

// The mean of an output in a column at one of these edges.
template <class Halving>
struct EdgeMean
{
    using MeanOf = typename Halving::MeanOf;
    uint32_t across;
    MeanOf inner;

    RVK_INLINE EdgeMean(size_t x, size_t width)
        : across(weightsInside<Halving>(x, width)), inner(across * Halving::wholeLine)
    {
    }
    template <class Sum>
    RVK_INLINE auto of(Sum sum, size_t y, size_t height) const
    {
        if (isAtEdge<Halving>(y, height)) [[unlikely]]
            return MeanOf(across * weightsInside<Halving>(y, height)).of(sum);
        return inner.of(sum);
    }
};

// The outputs from column x on, as many as a vector has.
template <class Halving, At at, class T>
RVK_INLINE void halveColumn(size_t x, size_t width, const RowRange& rows, Plane<const T> src, Plane<T> dst)
{
    constexpr size_t edge = at == At::right ? Halving::step - 1 : 0;
    const EdgeMean<Halving> edgeMean(x + edge, width);
    const auto windows = [&](size_t y) RVK_INLINE_LAMBDA { return src.row(y) + 2 * x - Halving::radius; };
    halveDown<Halving>(
        rows, [&](size_t y) RVK_INLINE_LAMBDA { return Halving::template sumsOf<at, false>(windows(y)); },
        [&](size_t y) RVK_INLINE_LAMBDA { return Halving::template sumsOf<at, true>(windows(y)); },
        [&](size_t y, const auto& sums) RVK_INLINE_LAMBDA {
            T* const to = dst.row(y) + x;
            store(to, meansOf<Halving>(sums, y, rows.height));
            if constexpr (at != At::middle)
                to[edge] = edgeMean.of(laneOf(sums, edge), y, rows.height);
        });
}

// All outputs of pictures that have no more in a row than a vector has, in copies of the rows between zeros.
template <class Halving, class T>
RVK_NOINLINE void halveNarrow(size_t width, size_t height, Plane<const T> src, Plane<T> dst)
{
    const size_t columns = width / 2;
    const EdgeMean<Halving> left(0, width), right(columns - 1, width);
    T row[2 * Halving::step + 1 + 2 * Halving::radius] = {};
    const auto windows = [&](size_t y) RVK_INLINE_LAMBDA {
        __builtin_memcpy(row + Halving::radius, src.row(y), width * sizeof(T));
        return static_cast<const T*>(row);
    };
    halveDown<Halving>(
        {0, height / 2, height},
        [&](size_t y) RVK_INLINE_LAMBDA { return Halving::template sumsOf<At::middle, false>(windows(y)); },
        [&](size_t y) RVK_INLINE_LAMBDA { return Halving::template sumsOf<At::middle, true>(windows(y)); },
        [&](size_t y, const auto& sums) RVK_INLINE_LAMBDA {
            T* const to = dst.row(y);
            storePartial(to, meansOf<Halving>(sums, y, height), columns);
            to[0] = left.of(laneOf(sums, 0), y, height);
            to[columns - 1] = right.of(laneOf(sums, columns - 1), y, height);
        });
}

template <class Halving, class T>
RVK_INLINE void halve(size_t width, size_t height, Plane<const T> src, Plane<T> dst)
{
    constexpr size_t step = Halving::step;
    const size_t columns = width / 2;
    if (columns <= step)
        return halveNarrow<Halving>(width, height, src, dst);
    const size_t last = columns - step; // where the last column begins, which may overlap the one before it
    for (size_t top = 0; top < height / 2; top += kBlockRows) {
        const RowRange rows = {top, least(top + kBlockRows, height / 2), height};
        halveColumn<Halving, At::left>(0, width, rows, src, dst);
        for (size_t x = step; x < last; x += step)
            halveColumn<Halving, At::middle>(x, width, rows, src, dst);
        if (isAtEdge<Halving>(columns - 1, width))
            halveColumn<Halving, At::right>(last, width, rows, src, dst);
        else
            halveColumn<Halving, At::middle>(last, width, rows, src, dst);
    }
}

// ---- binomial means between pixels ----------------------------------------------------------------------------------
//
// Of a row: sums for the pixels on the source's, weights 1 6 1, and for those between them, weights 1 1 in place of 4
// 4. Edges as above.

static_assert(allExact<2, 4, 6, 7, 8, 12, 14, 16, 36, 42, 48, 49, 56>);

// Down a column, the same.
RVK_INLINE Vecs<uint16_t, 2> sixTimes(const Vecs<uint16_t, 2>& v)
{
    return both(v, [](auto half) RVK_INLINE_LAMBDA { return half * splat<uint16_t>(6); });
}
RVK_INLINE EvenAndOdd evenRow(const EvenAndOdd& above, const EvenAndOdd& here, const EvenAndOdd& below)
{
    return {above.even + below.even + sixTimes(here.even), above.odd + below.odd + sixTimes(here.odd)};
}
RVK_INLINE EvenAndOdd oddRow(const EvenAndOdd& here, const EvenAndOdd& below)
{
    return {here.even + below.even, here.odd + below.odd};
}

// The weights of the pixels that exist around pixel i of a line.
RVK_INLINE uint32_t evenWeights(size_t i, size_t size)
{
    return 6 + (i > 0) + (i + 1 < size);
}
RVK_INLINE uint32_t oddWeights(size_t i, size_t size)
{
    return 1 + (i + 1 < size);
}

// The means for sums of so many weights down and across.
struct MeansByTurns
{
    Mean even, odd;

    RVK_INLINE MeansByTurns(uint32_t down, uint32_t evenAcross, uint32_t oddAcross)
        : even(down * evenAcross), odd(down * oddAcross)
    {
    }
    RVK_INLINE void put(uint8_t* to, const EvenAndOdd& sums) const
    {
        const auto meansOf = [](const Vecs<uint16_t, 2>& v, const Mean& mean) RVK_INLINE_LAMBDA {
            return both(v, [&](auto half) RVK_INLINE_LAMBDA { return mean.of(half); });
        };
        storeByTurns(to, EvenAndOdd{meansOf(sums.even, even), meansOf(sums.odd, odd)});
    }
    RVK_INLINE void putOne(uint8_t* to, const EvenAndOdd& sums, size_t lane) const
    {
        to[2 * lane] = even.of(laneOf(sums.even, lane));
        to[2 * lane + 1] = odd.of(laneOf(sums.odd, lane));
    }
};

// The two rows of a row of the source, and what is put there.
struct TwoRows
{
    uint8_t *evenTo, *oddTo;
    const EvenAndOdd &even, &odd;
    uint32_t evenDown, oddDown; // weights

    RVK_INLINE bool haveNeighbours() const { return evenDown == 8; }
};

// Where all columns have two neighbours.
RVK_INLINE void store(const TwoRows& rows)
{
    if (rows.haveNeighbours()) [[likely]] {
        storeRoundedByTurns<6, 4>(rows.evenTo, rows.even);
        storeRoundedByTurns<4, 2>(rows.oddTo, rows.odd);
    } else {
        MeansByTurns(rows.evenDown, 8, 2).put(rows.evenTo, rows.even);
        MeansByTurns(rows.oddDown, 8, 2).put(rows.oddTo, rows.odd);
    }
}

// The pixels that come of pixel x of each row of the source.
struct EdgeByTurns
{
    uint32_t evenAcross, oddAcross;
    MeansByTurns innerEven, innerOdd;

    RVK_INLINE EdgeByTurns(size_t x, size_t width)
        : evenAcross(evenWeights(x, width)), oddAcross(oddWeights(x, width)), innerEven(8, evenAcross, oddAcross),
          innerOdd(2, evenAcross, oddAcross)
    {
    }
    RVK_INLINE void store(const TwoRows& rows, size_t lane) const
    {
        if (rows.haveNeighbours()) [[likely]] {
            innerEven.putOne(rows.evenTo, rows.even, lane);
            innerOdd.putOne(rows.oddTo, rows.odd, lane);
        } else {
            MeansByTurns(rows.evenDown, evenAcross, oddAcross).putOne(rows.evenTo, rows.even, lane);
            MeansByTurns(rows.oddDown, evenAcross, oddAcross).putOne(rows.oddTo, rows.odd, lane);
        }
    }
};

// One column of the source: sumsOf(y) gives the sums of row y, targetOf(y) is where row y of the destination goes,
// done(y, rows) gets both that come of row y.
template <class SumsOf, class TargetOf, class Done>
RVK_INLINE void doubleDown(const RowRange& rows, SumsOf sumsOf, TargetOf targetOf, Done done)
{
    const EvenAndOdd nothing = {};
    EvenAndOdd above = rows.top ? sumsOf(rows.top - 1) : nothing, here = sumsOf(rows.top);
    for (size_t y = rows.top; y < rows.bottom; ++y) {
        const EvenAndOdd below = y + 1 < rows.height ? sumsOf(y + 1) : nothing;
        const EvenAndOdd even = evenRow(above, here, below), odd = oddRow(here, below);
        const TwoRows two = {targetOf(2 * y),           targetOf(2 * y + 1), even, odd, evenWeights(y, rows.height),
                             oddWeights(y, rows.height)};
        store(two);
        done(y, two);
        above = here;
        here = below;
    }
}

// As many columns of the source as a vector has lanes, from x on.
template <At at>
RVK_INLINE void doubleColumn(size_t x, size_t width, const RowRange& rows, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    constexpr size_t lane = at == At::right ? kBytes - 1 : 0;
    const EdgeByTurns edge(x + lane, width);
    doubleDown(
        rows, [&](size_t y) RVK_INLINE_LAMBDA { return doubledSums<at>(src.row(y) + x - 1); },
        [&](size_t y) RVK_INLINE_LAMBDA { return dst.row(y) + 2 * x; },
        [&](size_t, const TwoRows& two) RVK_INLINE_LAMBDA {
            if constexpr (at != At::middle)
                edge.store(two, lane);
        });
}

// All of pictures that have no more in a row than that, in copies of the rows between zeros.
RVK_NOINLINE void doubleNarrow(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    const EdgeByTurns left(0, width), right(width - 1, width);
    uint8_t in[kBytes + 2] = {}, out[2][2 * kBytes];
    doubleDown(
        {0, height, height},
        [&](size_t y) RVK_INLINE_LAMBDA {
            __builtin_memcpy(in + 1, src.row(y), width);
            return doubledSums<At::middle>(in);
        },
        [&](size_t y) RVK_INLINE_LAMBDA { return out[y % 2]; },
        [&](size_t y, const TwoRows& two) RVK_INLINE_LAMBDA {
            left.store(two, 0);
            right.store(two, width - 1);
            __builtin_memcpy(dst.row(2 * y), out[0], 2 * width);
            __builtin_memcpy(dst.row(2 * y + 1), out[1], 2 * width);
        });
}

} // namespace

// ---- down -----------------------------------------------------------------------------------------------------------

int32_t rvkScaleDownBy2u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride)
{
    mapBlocks<MeanOf2x2<Rounding::down>, 2, 1>(srcWidth / 2, srcHeight / 2, {src, srcStride}, {dst, dstStride});
    return 0;
}

int32_t rvkScaleDownBy4u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride)
{
    mapBlocks<MeanOf4x4<Rounding::down>, 4, 1>(srcWidth / 4, srcHeight / 4, {src, srcStride}, {dst, dstStride});
    return 0;
}

void rvkScaleDown3To2u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                         uint32_t dstStride)
{
    mapBlocks<CornersOf3x3<Rounding::down>, 3, 2>(srcWidth / 3, srcHeight / 3, {src, srcStride}, {dst, dstStride});
}

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

// ---- up -------------------------------------------------------------------------------------------------------------

void rvkScaleUpBy2Gaussian5x5u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride)
{
    const Plane in{src, srcStride};
    const Plane out{dst, dstStride};
    const size_t width = srcWidth, height = srcHeight;
    if (width <= kBytes)
        return doubleNarrow(width, height, in, out);
    const size_t last = width - kBytes; // where the last column begins, which may overlap the one before it
    for (size_t top = 0; top < height; top += kBlockRows) {
        const RowRange rows = {top, least(top + kBlockRows, height), height};
        doubleColumn<At::left>(0, width, rows, in, out);
        for (size_t x = kBytes; x < last; x += kBytes)
            doubleColumn<At::middle>(x, width, rows, in, out);
        doubleColumn<At::right>(last, width, rows, in, out);
    }
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikScaleForms.h"

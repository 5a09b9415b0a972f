// Thinning: the pixels whose gradient is the largest across the edge, as bits.
//
// Row by row: the gradient and its magnitude, in rings of rows; one row behind, thinning. What is kept of a row is
// little enough for the nearest cache to hold rows of 2000 pixels.
//
// A step is kBytes pixels.
#pragma once

#include "cpu/ravikCannyC.h"
#include "scratch.h"
#include "vecta/simd/bitRows.h"
#include "vecta/simd/sobel.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- rows ----------------------------------------------------------------------------------------------------------

// Numbers of the pixels of a row, and of kBytes more columns on either side, in the order of Pairs, so that neighbours
// are found without shuffling: on x86 the even columns and, `planeSize` further on, the odd ones; on Arm all columns.
#if defined(__x86_64__)
constexpr size_t kPlanes = 2;
constexpr ptrdiff_t kSecond = 1; // the column where the second vector of a step begins
#else
constexpr size_t kPlanes = 1;
constexpr ptrdiff_t kSecond = Vec<int16_t>::lanes;
#endif

template <class T>
struct PairRow
{
    T* data;
    size_t planeSize;

    // The number of column x + c; from there, a vector of the order begins. x is even, c a constant.
    RVK_INLINE T* at(size_t x, ptrdiff_t c = 0) const
    {
        if constexpr (kPlanes == 2)
            return data + static_cast<ptrdiff_t>(x / 2) + (c & 1) * static_cast<ptrdiff_t>(planeSize) + (c >> 1);
        else
            return data + static_cast<ptrdiff_t>(x) + c;
    }
    RVK_INLINE T& operator[](ptrdiff_t column) const { return *at(0, column); }

    // Both vectors of the step at x.
    RVK_INLINE Pairs<T> load(size_t x) const { return {RVK_ISA::load(at(x)), RVK_ISA::load(at(x, kSecond))}; }
    RVK_INLINE void store(size_t x, const Pairs<T>& v) const
    {
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA { RVK_ISA::store(at(x, i * kSecond), v[i]); });
    }

    // The numbers of the picture in the order of its columns.
    RVK_INLINE void copyTo(T* dst, size_t width) const
    {
        if (kPlanes == 1) {
            __builtin_memcpy(dst, data, width * sizeof(T));
            return;
        }
        for (size_t x = 0; x < width; x += kBytes) {
            const Vecs<T, 2> numbers = orderPairs(load(x));
            if (x + kBytes <= width)
                RVK_ISA::store(dst + x, numbers);
            else
                storePartial(dst + x, numbers, width - x);
        }
    }

    // Repeats the first and the last number of the picture in so many columns outside.
    RVK_INLINE void continueBy(ptrdiff_t count, size_t width) const
    {
        const auto last = static_cast<ptrdiff_t>(width) - 1;
        for (ptrdiff_t k = 1; k <= count; ++k) {
            (*this)[-k] = (*this)[0];
            (*this)[last + k] = (*this)[last];
        }
    }

    // Makes numbers zero from a column on, to `end` or one more.
    RVK_INLINE void clear(size_t column, size_t end) const
    {
        const size_t count = (end - column + kPlanes - 1) / kPlanes;
        for (size_t plane = 0; plane < kPlanes; ++plane)
            __builtin_memset(at(0, static_cast<ptrdiff_t>(column + plane)), 0, count * sizeof(T));
    }
};

// So many of them; then from the first one again.
template <class T, size_t count>
struct PairRows
{
    T* data;
    size_t size; // of a row: whole steps and the columns on either side

    RVK_INLINE PairRow<T> row(size_t y) const { return {data + y % count * size + kBytes / kPlanes, size / kPlanes}; }
};

// ---- gradient ------------------------------------------------------------------------------------------------------

struct Derivative
{
    Pairs<int16_t> exact;  // saturated
    Pairs<int16_t> scaled; // for the detection
};

template <int weight>
RVK_INLINE Vec<int16_t> times(Vec<int16_t> v)
{
    if constexpr (weight == 1)
        return v;
    else if constexpr (weight == 2)
        return v + v;
    else
        return splat<int16_t>(weight) * v;
}

// Of the numbers 0, 1, 2 and 3 away from the centre, those on both sides together, in the order of narrowSatInLanes.
template <int w0, int w1, int w2, int w3>
RVK_INLINE Vecs<int32_t, 2> weightedSum(Vec<int16_t> v0, Vec<int16_t> v1, Vec<int16_t> v2, Vec<int16_t> v3)
{
    const auto weight = [](int w) RVK_INLINE_LAMBDA { return splat(static_cast<int16_t>(w)); };
    const Vecs<int32_t, 2> outer = dotInLanes({v2, v3}, {weight(w2), weight(w3)});
    if constexpr (w0 == 0)
        return outer + multiplyWideInLanes(v1, weight(w1));
    else
        return addDotInLanes(outer, {v0, v1}, {weight(w0), weight(w1)});
}

// v / 16, rounded to the nearest, halves to the even one: 7 or 8 sixteenths more, rounded down.
RVK_INLINE Vec<int32_t> sixteenth(Vec<int32_t> v)
{
    const Vec<int32_t> isOdd = shiftRight(v, 4) & splat<int32_t>(1);
    return shiftRight(v + splat<int32_t>(7) + isOdd, 4);
}
static_assert(kScaleOf7x7 == 16);

template <int weight>
RVK_INLINE Pairs<int16_t> weighted(const Pairs<int16_t>& v)
{
    return {times<weight>(v[0]), times<weight>(v[1])};
}

// The weighted sums across the windows of a step; those of 3 and 5 columns fit 16 bits.
template <class W>
RVK_INLINE Derivative sumAcross(PairRow<int16_t> row, size_t x)
{
    Derivative sums;
    unrolled<2>([&](auto v) RVK_INLINE_LAMBDA {
        constexpr ptrdiff_t first = v * kSecond;
        const auto bothSides = [&](ptrdiff_t k) RVK_INLINE_LAMBDA {
            const Vec<int16_t> left = load(row.at(x, first - k)), right = load(row.at(x, first + k));
            return W::anyNegative ? right - left : right + left;
        };
        constexpr size_t radius = W::count / 2;
        const Vec<int16_t> centre = load(row.at(x, first));
        if constexpr (radius < 3) {
            Vec<int16_t> sum = W::anyNegative ? zero<int16_t>() : times<W::at(radius)>(centre);
            unrolled<radius>([&](auto i) RVK_INLINE_LAMBDA {
                if constexpr (constexpr int weight = W::at(radius + 1 + i); weight != 0)
                    sum = sum + times<weight>(bothSides(i + 1));
            });
            sums.exact[v] = sums.scaled[v] = sum;
        } else {
            const Vecs<int32_t, 2> sum =
                weightedSum<W::at(3), W::at(4), W::at(5), W::at(6)>(centre, bothSides(1), bothSides(2), bothSides(3));
            sums.exact[v] = narrowSatInLanes<int16_t>(sum);
            sums.scaled[v] = narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{sixteenth(sum[0]), sixteenth(sum[1])});
        }
    });
    return sums;
}

template <int radius>
struct Gradient
{
    static constexpr size_t count = 2 * radius + 1;
    static constexpr bool isScaled = radius == 3;
    using Smoothing = typename SobelWeights<count>::Smoothing;
    using Difference = typename SobelWeights<count>::Difference;

    size_t width;
    PairRow<int16_t> smoothed, differences; // sums down the columns of the windows of a row

    // rows[k], as a function that loads a step of it, is row k of the windows.
    template <class LoadRow>
    RVK_INLINE void sumStep(size_t x, LoadRow row) const
    {
        Pairs<int16_t> smooth = weighted<Smoothing::at(radius)>(widenToPairs(row(radius))), difference = {};
        unrolled<radius>([&](auto i) RVK_INLINE_LAMBDA {
            constexpr size_t k = i + 1;
            const Vec<uint8_t> above = row(radius - k), below = row(radius + k);
            smooth = smooth + weighted<Smoothing::at(radius + k)>(widenToPairs(above) + widenToPairs(below));
            if constexpr (Difference::at(radius + k) != 0)
                difference = difference + weighted<Difference::at(radius + k)>(subtractPairs(below, above));
        });
        smoothed.store(x, smooth);
        differences.store(x, difference);
    }

    // The sums of the windows that consist of these rows. Outside the picture they are as at its ends.
    RVK_INLINE void sumDown(const uint8_t* const (&rows)[count]) const
    {
        size_t x = 0;
        for (; x + kBytes <= width; x += kBytes)
            sumStep(x, [&](size_t k) RVK_INLINE_LAMBDA { return load(rows[k] + x); });
        if (x < width)
            sumStep(x, [&](size_t k) RVK_INLINE_LAMBDA { return loadPartial(rows[k] + x, width - x); });
        smoothed.continueBy(radius, width);
        differences.continueBy(radius, width);
    }

    RVK_INLINE Derivative across(size_t x) const { return sumAcross<Difference>(smoothed, x); }
    RVK_INLINE Derivative down(size_t x) const { return sumAcross<Smoothing>(differences, x); }
};

// ---- magnitude and thinning, in 16 bits where magnitudes fit, otherwise in 32 --------------------------------------

// |dx| + |dy|, which fits 16 bits, or dx^2 + dy^2, of the pixels of a vector.
RVK_INLINE Vecs<int16_t, 1> magnitudesOf(Vec<int16_t> dx, Vec<int16_t> dy, const int16_t*)
{
    return {{abs(dx) + abs(dy)}};
}
RVK_INLINE Vecs<int32_t, 2> magnitudesOf(Vec<int16_t> dx, Vec<int16_t> dy, const int32_t*)
{
    const Vecs<int16_t, 2> gradient = {dx, dy};
    return dot(gradient, gradient);
}

// Stores the magnitudes of a step; whether any is above the limit.
template <class M>
RVK_INLINE bool storeMagnitudes(PairRow<M> row, size_t x, const Pairs<int16_t>& dx, const Pairs<int16_t>& dy,
                                Vec<M> limit)
{
    Vec<M> most = zero<M>();
    unrolled<2>([&](auto v) RVK_INLINE_LAMBDA {
        const auto magnitudes = magnitudesOf(dx[v], dy[v], row.data);
        store(row.at(x, v * kSecond), magnitudes);
        unrolled<sizeof(M) / 2>([&](auto i) RVK_INLINE_LAMBDA { most = max(most, magnitudes[i]); });
    });
    return any(greater(most, limit));
}

// Where gradients point, to the nearest of four axes: along the row unless `steep`, along the column where `upright`,
// otherwise along the diagonal that goes up to the right where `rising`.
template <class M>
struct Directions
{
    Mask<M> steep, upright, rising;
};

RVK_INLINE Directions<int16_t> directionsOf(Vec<int16_t> dx, Vec<int16_t> dy)
{
    const Vec<int16_t> x = abs(dx), y = abs(dy), flat = multiplyQ15<kTan22>(x);
    return {greater(y, flat), greater(y, flat + x + x), less(dx ^ dy, zero<int16_t>())};
}

// The magnitudes of the pixels of a vector, `first`, first + 1 or 2... columns from x on, and of their neighbours.
template <class M>
struct Neighbourhood
{
    PairRow<M> above, here, below;
    size_t x;
    ptrdiff_t first;
    size_t lane = 0; // of the vector, where magnitudes take two

    RVK_INLINE const M* at(PairRow<M> row, ptrdiff_t side) const { return row.at(x, first + side) + lane; }
};

template <class M>
struct Thresholds
{
    Vec<M> low, high;
};

// Ridges above the lower and above the higher threshold. A ridge is above both of its neighbours in the direction of
// the gradient, of which the one after it may be as high unless they are diagonal. (They are no struct of two masks:
// g++ moves those through memory.)
template <class M>
RVK_INLINE void findRidges(const Neighbourhood<M>& n, const Directions<M>& directions, const Thresholds<M>& thresholds,
                           Mask<M>& candidates, Mask<M>& edges)
{
    const auto choose = [&](const M* along, const M* upright, Vec<M> diagonal) RVK_INLINE_LAMBDA {
        return select(directions.steep, select(directions.upright, load(upright), diagonal), load(along));
    };
    const auto diagonal = [&](const M* rising, const M* falling)
                              RVK_INLINE_LAMBDA { return select(directions.rising, load(rising), load(falling)); };
    const Vec<M> before = choose(n.at(n.here, -1), n.at(n.above, 0), diagonal(n.at(n.above, 1), n.at(n.above, -1)));
    const Vec<M> after =
        choose(n.at(n.here, 1), n.at(n.below, 0), diagonal(n.at(n.below, -1), n.at(n.below, 1)) + splat<M>(1));
    const Vec<M> m = load(n.at(n.here, 0));
    candidates = greater(m, max(before, thresholds.low)) & ~greater(after, m);
    edges = candidates & greater(m, thresholds.high);
}

RVK_INLINE void findRidges(const Neighbourhood<int32_t>& n, const Directions<int16_t>& directions,
                           const Thresholds<int32_t>& thresholds, Mask<int16_t>& candidates, Mask<int16_t>& edges)
{
    const Masks<int32_t, 2> steep = widen(directions.steep), upright = widen(directions.upright);
    const Masks<int32_t, 2> rising = widen(directions.rising);
    Mask<int32_t> halfCandidates[2], halfEdges[2];
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        findRidges(Neighbourhood<int32_t>{n.above, n.here, n.below, n.x, n.first, i * Vec<int32_t>::lanes},
                   Directions<int32_t>{steep[i], upright[i], rising[i]}, thresholds, halfCandidates[i], halfEdges[i]);
    });
    candidates = narrow(halfCandidates[0], halfCandidates[1]);
    edges = narrow(halfEdges[0], halfEdges[1]);
}

// Where the bits of a row go, which are 0 before. They are written in whole steps.
struct RidgeBits
{
    uint8_t *candidates, *edges;
};

// Steps of a row where some magnitude is above the lower threshold; the others have no ridges.
struct ActiveSteps
{
    uint32_t* places;
    size_t count;

    RVK_INLINE void add(size_t x, bool isActive)
    {
        places[count] = static_cast<uint32_t>(x);
        count += isActive;
    }
};

template <class M>
RVK_INLINE void thinRow(const ActiveSteps& steps, PairRow<M> above, PairRow<M> here, PairRow<M> below,
                        PairRow<int16_t> dx, PairRow<int16_t> dy, const Thresholds<M>& thresholds,
                        const RidgeBits& bits)
{
    for (size_t i = 0; i < steps.count; ++i) {
        const size_t x = steps.places[i];
        const Pairs<int16_t> stepDx = dx.load(x), stepDy = dy.load(x);
        Mask<int16_t> candidates[2], edges[2];
        unrolled<2>([&](auto v) RVK_INLINE_LAMBDA {
            findRidges(Neighbourhood<M>{above, here, below, x, v * kSecond}, directionsOf(stepDx[v], stepDy[v]),
                       thresholds, candidates[v], edges[v]);
        });
        storeBits(bits.candidates + x / 8, narrowPairs({candidates[0], candidates[1]}));
        storeBits(bits.edges + x / 8, narrowPairs({edges[0], edges[1]}));
    }
}

// ---- the walk ------------------------------------------------------------------------------------------------------

// The gradient of a row.
struct GradientRow
{
    PairRow<int16_t> dx, dy;
};

// Thins a picture. M holds magnitudes: 16 bits their sums, 32 bits those of squares; thresholds fit it. Of each row
//     dx and dy take the derivatives, saturated, unless they have no data;
//     bitsOf(y) says where its bits go;
//     takeRidges(y, gradient) takes these bits, with the derivatives in the units of the magnitudes.
// False, with nothing called, when there is no memory.
template <int radius, class M, class BitsOf, class TakeRidges>
RVK_INLINE bool thin(size_t width, size_t height, Plane<const uint8_t> src, CannyThresholds limits, Plane<int16_t> dx,
                     Plane<int16_t> dy, BitsOf bitsOf, TakeRidges takeRidges)
{
    using Gradients = Gradient<radius>;
    constexpr size_t exactRows = Gradients::isScaled ? 2 : 0;
    const size_t pitch = roundedUp(width, kBytes), size = pitch + 2 * kBytes, steps = pitch / kBytes + 1;
    const Scratch<int16_t> numbers(6 + exactRows, size);
    const Scratch<M> magnitudes(3, size);
    const Scratch<uint32_t> places(2, steps);
    if (!numbers || !magnitudes || !places)
        return false;
    __builtin_memset(magnitudes.get(), 0, 3 * size * sizeof(M));

    const PairRows<int16_t, 6 + exactRows> rows = {numbers.get(), size};
    const Gradients sums = {width, rows.row(0), rows.row(1)};
    const GradientRow gradients[2] = {{rows.row(2), rows.row(3)}, {rows.row(4), rows.row(5)}};
    const PairRows<M, 3> magnitudeRows = {magnitudes.get(), size};
    const Thresholds<M> thresholds = {splat(static_cast<M>(limits.low)), splat(static_cast<M>(limits.high))};
    const bool isWanted = dx.data || dy.data;
    ActiveSteps active[2] = {{places.get(), 0}, {places.get() + steps, 0}};

    for (size_t y = 0; y <= height; ++y) {
        const PairRow<M> current = magnitudeRows.row(y);
        ActiveSteps& activeHere = active[y % 2];
        activeHere.count = 0;
        if (y < height) {
            const uint8_t* windows[Gradients::count];
            for (size_t k = 0; k < Gradients::count; ++k)
                windows[k] = src.row(nearest(y + k, radius, height));
            sums.sumDown(windows);
            const GradientRow& gradient = gradients[y % 2];
            const GradientRow exact = exactRows ? GradientRow{rows.row(6), rows.row(7)} : gradient;
            for (size_t x = 0; x < width; x += kBytes) {
                const Derivative h = sums.across(x), v = sums.down(x);
                gradient.dx.store(x, h.scaled);
                gradient.dy.store(x, v.scaled);
                if (Gradients::isScaled && isWanted) {
                    exact.dx.store(x, h.exact);
                    exact.dy.store(x, v.exact);
                }
                activeHere.add(x, storeMagnitudes(current, x, h.scaled, v.scaled, thresholds.low));
            }
            current.clear(width, pitch);
            if (dx.data)
                exact.dx.copyTo(dx.row(y), width);
            if (dy.data)
                exact.dy.copyTo(dy.row(y), width);
        } else {
            current.clear(0, pitch);
        }
        if (y > 0) {
            const GradientRow& gradient = gradients[(y - 1) % 2];
            thinRow<M>(active[(y - 1) % 2], magnitudeRows.row(y + 1), magnitudeRows.row(y + 2), current, gradient.dx,
                       gradient.dy, thresholds, bitsOf(y - 1));
            takeRidges(y - 1, gradient);
        }
    }
    return true;
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

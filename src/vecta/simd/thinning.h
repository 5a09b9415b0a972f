// Thinning: the pixels whose gradient is the largest across the edge, as bits.
//
// Row by row: the gradient and its magnitude, in rings of rows; one row behind, thinning.
//
// A step is kBytes pixels. All working rows have room for whole steps.
#pragma once

#include "cpu/ravikCannyC.h"
#include "scratch.h"
#include "vecta/simd/bitRows.h"
#include "vecta/simd/sobel.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Row y of a picture, while the next `count` - 1 rows have not taken its place.
template <class T, size_t count>
struct Ring
{
    T* data;
    size_t pitch;

    RVK_INLINE T* row(size_t y) const { return data + y % count * pitch; }
};

// ---- gradient ------------------------------------------------------------------------------------------------------

using Step = Vecs<int16_t, 2>; // a number for each pixel of a step

// The derivatives of a step of pixels, each in order.
struct Derivative
{
    Step exact;  // saturated
    Step scaled; // for the detection
};

// The weighted sums of a step of row sums, which are in the order of Pairs, down a column. Those of 3 and 5 rows fit 16
// bits.
template <class W, size_t count>
RVK_INLINE Derivative columnSum(const int16_t* const (&rows)[count], size_t x)
{
    static_assert(W::at(count - 1) == 1);
    Step sum = loadVecs<2>(rows[count - 1] + x);
    unrolled<count - 1>([&](auto k) RVK_INLINE_LAMBDA {
        if constexpr (W::at(k) != 0) {
            const Step v = loadVecs<2>(rows[k] + x);
            if constexpr (W::at(k) == -1)
                sum = sum - v;
            else
                sum = sum + int16_t{W::at(k)} * v;
        }
    });
    sum = orderPairs(sum);
    return {sum, sum};
}

// Of the rows 0, 1, 2 and 3 away from the centre, those on both sides together, in the order of narrowSatInLanes.
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

template <class W>
RVK_INLINE Derivative columnSum(const int16_t* const (&rows)[7], size_t x)
{
    Pairs<int16_t> exact, scaled;
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        const auto bothSides = [&](size_t k) RVK_INLINE_LAMBDA {
            const Vec<int16_t> a = load(rows[3 - k] + x + i * Vec<int16_t>::lanes);
            const Vec<int16_t> b = load(rows[3 + k] + x + i * Vec<int16_t>::lanes);
            return W::anyNegative ? b - a : b + a;
        };
        const Vecs<int32_t, 2> sum = weightedSum<W::at(3), W::at(4), W::at(5), W::at(6)>(
            load(rows[3] + x + i * Vec<int16_t>::lanes), bothSides(1), bothSides(2), bothSides(3));
        exact[i] = narrowSatInLanes<int16_t>(sum);
        scaled[i] = narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{sixteenth(sum[0]), sixteenth(sum[1])});
    });
    return {orderPairs(exact), orderPairs(scaled)};
}

// Rows are counted from the first one of the first window on, which is `radius` rows above the picture: those outside
// are like the nearest one inside.
template <int radius>
struct Gradient
{
    static constexpr size_t count = 2 * radius + 1;
    static constexpr bool isScaled = radius == 3;
    using Smoothing = typename SobelWeights<count>::Smoothing;
    using Difference = typename SobelWeights<count>::Difference;

    size_t width;
    uint8_t* line; // a row of the picture, continued by its ends
    Ring<int16_t, count> smoothed, differences;

    // Elements of `line`.
    static RVK_INLINE size_t lineSize(size_t pitch) { return pitch + count - 1; }

    // The sums along row y.
    RVK_INLINE void takeRow(size_t y, const uint8_t* row) const
    {
        __builtin_memset(line, row[0], radius);
        __builtin_memcpy(line + radius, row, width);
        __builtin_memset(line + radius + width, row[width - 1], radius);
        int16_t *smooth = smoothed.row(y), *difference = differences.row(y);
        for (size_t x = 0; x < width; x += kBytes) {
            const Pairs<uint16_t> sums = rowSum<Smoothing>(line + x);
            store(smooth + x, Step{bitCast<int16_t>(sums[0]), bitCast<int16_t>(sums[1])});
            store(difference + x, rowSum<Difference>(line + x));
        }
    }

    // put(x, dx, dy) for each step of the windows that begin in row y, once all their rows have been taken.
    template <class Put>
    RVK_INLINE void compute(size_t y, Put put) const
    {
        const int16_t *smooth[count], *difference[count];
        for (size_t k = 0; k < count; ++k) {
            smooth[k] = smoothed.row(y + k);
            difference[k] = differences.row(y + k);
        }
        for (size_t x = 0; x < width; x += kBytes)
            put(x, columnSum<Smoothing>(difference, x), columnSum<Difference>(smooth, x));
    }
};

// ---- magnitude and thinning, in 16 bits where magnitudes fit, otherwise in 32 --------------------------------------

// |dx| + |dy|, which fits 16 bits, or dx^2 + dy^2.
RVK_INLINE void storeMagnitudes(int16_t* magnitudes, const Step& dx, const Step& dy)
{
    store(magnitudes, Step{abs(dx[0]) + abs(dy[0]), abs(dx[1]) + abs(dy[1])});
}
RVK_INLINE void storeMagnitudes(int32_t* magnitudes, const Step& dx, const Step& dy)
{
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        const Vecs<int16_t, 2> gradient = {dx[i], dy[i]};
        store(magnitudes + i * Vec<int16_t>::lanes, dot(gradient, gradient));
    });
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

// The magnitudes at one column of three rows.
template <class M>
struct Column
{
    const M *above, *here, *below;

    RVK_INLINE Column operator+(size_t x) const { return {above + x, here + x, below + x}; }
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
RVK_INLINE void findRidges(Column<M> at, const Directions<M>& directions, const Thresholds<M>& thresholds,
                           Mask<M>& candidates, Mask<M>& edges)
{
    const auto choose = [&](const M* along, const M* upright, Vec<M> diagonal) RVK_INLINE_LAMBDA {
        return select(directions.steep, select(directions.upright, load(upright), diagonal), load(along));
    };
    const auto diagonal = [&](const M* rising, const M* falling)
                              RVK_INLINE_LAMBDA { return select(directions.rising, load(rising), load(falling)); };
    const Vec<M> before = choose(at.here - 1, at.above, diagonal(at.above + 1, at.above - 1));
    const Vec<M> after = choose(at.here + 1, at.below, diagonal(at.below - 1, at.below + 1) + splat<M>(1));
    const Vec<M> m = load(at.here);
    candidates = greater(m, max(before, thresholds.low)) & ~greater(after, m);
    edges = candidates & greater(m, thresholds.high);
}

RVK_INLINE void findRidges(Column<int32_t> at, const Directions<int16_t>& directions,
                           const Thresholds<int32_t>& thresholds, Mask<int16_t>& candidates, Mask<int16_t>& edges)
{
    const Masks<int32_t, 2> steep = widen(directions.steep), upright = widen(directions.upright);
    const Masks<int32_t, 2> rising = widen(directions.rising);
    Mask<int32_t> halfCandidates[2], halfEdges[2];
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        findRidges(at + i * Vec<int32_t>::lanes, Directions<int32_t>{steep[i], upright[i], rising[i]}, thresholds,
                   halfCandidates[i], halfEdges[i]);
    });
    candidates = narrow(halfCandidates[0], halfCandidates[1]);
    edges = narrow(halfEdges[0], halfEdges[1]);
}

// In each lane of `count` vectors.
template <size_t count, class M>
RVK_INLINE Vec<M> largest(const M* p)
{
    Vec<M> most = load(p);
    unrolled<count - 1>([&](auto i) RVK_INLINE_LAMBDA { most = max(most, load(p + (i + 1) * Vec<M>::lanes)); });
    return most;
}

// Leaves the bits of steps of pixels alone that have no magnitude above the lower threshold.
template <class M>
RVK_INLINE void thinRow(size_t width, Column<M> at, const int16_t* dx, const int16_t* dy, CannyThresholds limits,
                        uint8_t* candidates, uint8_t* edges)
{
    const Thresholds<M> thresholds = {splat(static_cast<M>(limits.low)), splat(static_cast<M>(limits.high))};
    for (size_t x = 0; x < width; x += kBytes) {
        if (!any(greater(largest<sizeof(M)>(at.here + x), thresholds.low)))
            continue;
        Mask<int16_t> someCandidates[2], someEdges[2];
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
            const size_t j = x + i * Vec<int16_t>::lanes;
            findRidges(at + j, directionsOf(load(dx + j), load(dy + j)), thresholds, someCandidates[i], someEdges[i]);
        });
        storeBits(candidates + x / 8, narrow(someCandidates[0], someCandidates[1]));
        storeBits(edges + x / 8, narrow(someEdges[0], someEdges[1]));
    }
}

// ---- the walk ------------------------------------------------------------------------------------------------------

// Where the bits of a row go, which are 0 before. They are written in whole steps.
struct RidgeBits
{
    uint8_t *candidates, *edges;
};

// Thins a picture. M holds magnitudes: 16 bits their sums, 32 bits those of squares; thresholds fit it. Of each row
//     takeGradient(y, dx, dy) takes the derivatives, saturated;
//     bitsOf(y) says where its bits go;
//     takeRidges(y, dx, dy) takes these bits, with the derivatives in the units of the magnitudes.
// False, with nothing called, when there is no memory.
template <int radius, class M, class TakeGradient, class BitsOf, class TakeRidges>
RVK_INLINE bool thin(size_t width, size_t height, Plane<const uint8_t> src, CannyThresholds thresholds,
                     TakeGradient takeGradient, BitsOf bitsOf, TakeRidges takeRidges)
{
    using Gradients = Gradient<radius>;
    const size_t pitch = roundedUp(width, kBytes);
    const size_t magnitudePitch = pitch + 2 * kBytes; // with a vector of zeros at each end
    const Scratch<uint8_t> line(Gradients::lineSize(pitch));
    const Scratch<int16_t> sums(2 * Gradients::count, pitch), gradients(6, pitch);
    const Scratch<M> magnitudes(3, magnitudePitch);
    if (!line || !sums || !gradients || !magnitudes)
        return false;
    __builtin_memset(line.get(), 0, Gradients::lineSize(pitch));
    __builtin_memset(magnitudes.get(), 0, 3 * magnitudePitch * sizeof(M));

    const Gradients gradient = {width, line.get(), {sums.get(), pitch}, {sums.get() + Gradients::count * pitch, pitch}};
    const Ring<int16_t, 2> dxRows = {gradients.get(), pitch}, dyRows = {gradients.get() + 2 * pitch, pitch};
    int16_t *const exactDx = gradients.get() + 4 * pitch, *const exactDy = exactDx + pitch; // where they are scaled
    const Ring<M, 3> magnitudeRows = {magnitudes.get() + kBytes, magnitudePitch};

    const auto takeRow = [&](size_t y) RVK_INLINE_LAMBDA { gradient.takeRow(y, src.row(nearest(y, radius, height))); };
    for (size_t y = 0; y < 2 * radius; ++y)
        takeRow(y);
    for (size_t y = 0; y <= height; ++y) {
        M* const current = magnitudeRows.row(y);
        if (y < height) {
            takeRow(y + 2 * radius);
            int16_t *const currentDx = dxRows.row(y), *const currentDy = dyRows.row(y);
            gradient.compute(y, [=](size_t x, const Derivative& h, const Derivative& v) RVK_INLINE_LAMBDA {
                store(currentDx + x, h.scaled);
                store(currentDy + x, v.scaled);
                if constexpr (Gradients::isScaled) {
                    store(exactDx + x, h.exact);
                    store(exactDy + x, v.exact);
                }
                storeMagnitudes(current + x, h.scaled, v.scaled);
            });
            __builtin_memset(current + width, 0, (pitch - width) * sizeof(M));
            takeGradient(y, Gradients::isScaled ? exactDx : currentDx, Gradients::isScaled ? exactDy : currentDy);
        } else {
            __builtin_memset(current, 0, width * sizeof(M));
        }
        if (y > 0) {
            const RidgeBits bits = bitsOf(y - 1);
            const int16_t *const dx = dxRows.row(y + 1), *const dy = dyRows.row(y + 1);
            thinRow<M>(width, {magnitudeRows.row(y + 1), magnitudeRows.row(y + 2), current}, dx, dy, thresholds,
                       bits.candidates, bits.edges);
            takeRidges(y - 1, dx, dy);
        }
    }
    return true;
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

// Vector implementations of magnitude and direction of gradients, and of weights of edges. Floats only guess here,
// integers decide: so the results are the same on all instruction sets, whatever their division and square root are
// like.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/magnitude.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// |v|; that of -32768 fits, too.
RVK_INLINE Vec<uint16_t> sizeOf(Vec<int16_t> v)
{
    return bitCast<uint16_t>(abs(v));
}

// ---- magnitude ----------------------------------------------------------------------------------

// The square root, rounded to the nearest integer and at most 32767.
RVK_INLINE Vec<int32_t> nearestRoot(Vec<uint32_t> sum)
{
    const Vec<int32_t> n = bitCast<int32_t>(min(sum, splat(32767u * 32767u)));
    // The result r or r - 1: n + 1/4 lies between (r - 1/2)^2 and (r + 1/2)^2, and the error of the root is below 0.07.
    const Vec<int32_t> root = truncateToInt(guessSquareRoot(toFloat(n) + splat(0.25f)) + splat(0.4f));
    return root - toVec(greater(n, root * root + root)); // (root + 1/2)^2, rounded down
}

RVK_INLINE Vec<int16_t> magnitude(Vec<int16_t> dx, Vec<int16_t> dy)
{
    const Vecs<int16_t, 2> gradient = {dx, dy};
    const Vecs<int32_t, 2> sums = dotInLanes(gradient, gradient); // up to 2^31
    return narrowSatInLanes<int16_t>(
        Vecs<int32_t, 2>{nearestRoot(bitCast<uint32_t>(sums[0])), nearestRoot(bitCast<uint32_t>(sums[1]))});
}

// ---- phase --------------------------------------------------------------------------------------

// Within an eighth of a turn, with small <= large, the phase is the number of boundaries tan((k + 1/2) * pi / 128), k =
// 0 to 31, that small / large exceeds. In place of a boundary stands the largest fraction rise / run below it whose
// denominator is at most 32768: none that small / large can be lies between the two.
constexpr uint16_t kRise[32] = {358,   1152,  361,  1855,  2543,  3643,  4577,  5674,  3119, 2481, 5424,
                                6475,  7568,  6941, 11681, 7841,  10459, 10063, 9287,  9283, 8590, 16661,
                                17775, 19186, 1567, 4245,  13133, 22705, 18317, 23687, 3831, 5996};
constexpr uint16_t kRun[32] = {29171, 31277, 5876,  21541, 22931, 26823, 28446, 30475, 14733, 10447, 20579,
                               22328, 23889, 20176, 31425, 19607, 24399, 21970, 19028, 17892, 15607, 28587,
                               28847, 29491, 2284,  5873,  17261, 28369, 21769, 26788, 4124,  6145};

// 32 numbers of 16 bits as tables of their lower and upper bytes.
struct ByteTables
{
    uint8_t low[32], high[32];

    constexpr explicit ByteTables(const uint16_t (&numbers)[32]) : low(), high()
    {
        for (size_t i = 0; i < 32; ++i) {
            low[i] = static_cast<uint8_t>(numbers[i] & 255);
            high[i] = static_cast<uint8_t>(numbers[i] >> 8);
        }
    }
};
constexpr ByteTables kRiseBytes(kRise), kRunBytes(kRun);

// Numbers by their indices, in the order of widenInLanes.
struct Table32Of16
{
    Table32 low, high;

    explicit RVK_INLINE Table32Of16(const ByteTables& bytes)
        : low(loadTable32(bytes.low)), high(loadTable32(bytes.high))
    {
    }
    RVK_INLINE Vecs<uint16_t, 2> at(Vec<uint8_t> index) const
    {
        const Vecs<uint8_t, 2> numbers = zipInLanes(lookup32(low, index), lookup32(high, index));
        return {bitCast<uint16_t>(numbers[0]), bitCast<uint16_t>(numbers[1])};
    }
};

// The phase within an eighth of a turn, rounded down, as good as a parabola knows it: wrong by less than 0.33, of which
// the quotient makes 0.16.
RVK_INLINE Vec<int32_t> guessedStep(Vec<uint32_t> small, Vec<uint32_t> large)
{
    const Vec<float> tangent = toFloat(small) * guessReciprocal(toFloat(large));
    return truncateToInt(tangent * (splat(43.12f) - splat(11.12f) * tangent));
}

RVK_INLINE Vec<int16_t> guessedStep(Vec<uint16_t> small, Vec<uint16_t> large)
{
    const Vecs<uint32_t, 2> s = widenInLanes(small), l = widenInLanes(max(large, splat<uint16_t>(1)));
    const Vec<int16_t> step =
        narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{guessedStep(s[0], l[0]), guessedStep(s[1], l[1])});
    return min(step, splat<int16_t>(31));
}

// All bits set where a * b > c * d. Products are below 2^31.
RVK_INLINE Vec<int16_t> exceeds(Vec<uint16_t> a, Vec<uint16_t> b, Vec<uint16_t> c, Vec<uint16_t> d)
{
    const Vecs<uint32_t, 2> ab = multiplyWideInLanes(a, b), cd = multiplyWideInLanes(c, d);
    const auto isGreater = [](Vec<uint32_t> x, Vec<uint32_t> y)
                               RVK_INLINE_LAMBDA { return toVec(greater(bitCast<int32_t>(x), bitCast<int32_t>(y))); };
    return narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{isGreater(ab[0], cd[0]), isGreater(ab[1], cd[1])});
}

// The boundary between a guessed step and the next decides between the two: the guess is never wrong by a half, which
// is how far the boundaries of other steps are away.
RVK_INLINE Vec<uint8_t> phase(const Table32Of16& rises, const Table32Of16& runs, Vecs<int16_t, 2> dx,
                              Vecs<int16_t, 2> dy)
{
    Vecs<uint16_t, 2> small, large;
    Vecs<int16_t, 2> step;
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        const Vec<uint16_t> x = sizeOf(dx[i]), y = sizeOf(dy[i]);
        small[i] = min(x, y);
        large[i] = max(x, y);
        step[i] = guessedStep(small[i], large[i]);
    });
    const Vec<uint8_t> index = narrowSatInLanes<uint8_t>(step);
    const Vecs<uint16_t, 2> rise = rises.at(index), run = runs.at(index);
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        const Vec<int16_t> eighth = step[i] - exceeds(small[i], run[i], large[i], rise[i]);
        const Mask<int16_t> isFlat = equal(bitCast<int16_t>(large[i]), abs(dx[i])); // as is any that is diagonal
        const Vec<int16_t> quarter = select(isFlat, eighth, splat<int16_t>(64) - eighth);
        const Vec<int16_t> half = select(less(dx[i], zero<int16_t>()), splat<int16_t>(128) - quarter, quarter);
        step[i] = select(less(dy[i], zero<int16_t>()), zero<int16_t>() - half, half);
    });
    return bitCast<uint8_t>(narrow(step));
}

} // namespace

rvkStatus rvkMagnitudes16V(const int16_t* dx, uint32_t width, uint32_t height, uint32_t dxStride, const int16_t* dy,
                           uint32_t dyStride, int16_t* dst, uint32_t dstStride)
{
    mapImage(
        width, height, Plane{dst, dstStride},
        [](Vec<int16_t> x, Vec<int16_t> y) RVK_INLINE_LAMBDA { return magnitude(x, y); }, Plane{dx, dxStride},
        Plane{dy, dyStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkPhases16V(const int16_t* dx, uint32_t width, uint32_t height, uint32_t dxStride, const int16_t* dy,
                       uint32_t dyStride, uint8_t* dst, uint32_t dstStride)
{
    const Table32Of16 rises(kRiseBytes), runs(kRunBytes);
    mapImage(
        width, height, Plane{dst, dstStride},
        [&](Vecs<int16_t, 2> x, Vecs<int16_t, 2> y) RVK_INLINE_LAMBDA { return phase(rises, runs, x, y); },
        Plane{dx, dxStride}, Plane{dy, dyStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkEdgeWeightings16V(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                               uint16_t threshold, uint16_t weight, uint16_t limit, int16_t* dst, uint32_t dstStride)
{
    const Vec<uint16_t> thresholds = splat(threshold), weights = splat(weight);
    const Vec<uint16_t> limits = min(splat(limit), splat<uint16_t>(INT16_MAX));
    const auto weighted = [=](Vec<int16_t> edge) RVK_INLINE_LAMBDA {
        const Vec<uint16_t> size = min(multiplyQ8(subSat(sizeOf(edge), thresholds), weights), limits);
        const Vec<int16_t> sign = shiftRight(edge, 15);
        return (bitCast<int16_t>(size) ^ sign) - sign;
    };
    mapImage(width, height, Plane{dst, dstStride}, weighted, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

// Vector implementations of descriptors.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/descriptor.h>
#include <ravik/dotproduct.h>

namespace rvk {
decltype(::rvkSort8Scoresf32) rvkSort8Scoresf32C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {

decltype(::rvkDotProduct36x1s8) rvkDotProduct36x1s8V;

namespace {

constexpr size_t kLength = 36;

// f(i, start): vector i of `length` elements begins at `start`; the last one may overlap the one before it.
template <size_t lanes, size_t length, class F>
RVK_INLINE void forEachVector(F f)
{
    static_assert(lanes <= length);
    constexpr size_t whole = length / lanes;
    unrolled<whole>([&](auto i) RVK_INLINE_LAMBDA { f(i, i * lanes); });
    if constexpr (length % lanes != 0)
        f(Constant<whole>{}, length - lanes);
}

template <size_t lanes>
constexpr size_t kVectors = (kLength + lanes - 1) / lanes;

// ---- sorting --------------------------------------------------------------------------------------------------------

constexpr size_t kScores = 8;

// kComesFirst[j][i] is 1 where score j comes before an equal score i: the last four come before the first.
struct TieBreaks
{
    int32_t comesFirst[kScores][kScores];
};
constexpr TieBreaks tieBreaks()
{
    TieBreaks t = {};
    for (size_t j = 0; j < kScores; ++j)
        for (size_t i = 0; i < kScores; ++i)
            t.comesFirst[j][i] = (j + 4) % kScores < (i + 4) % kScores;
    return t;
}
constexpr TieBreaks kTieBreaks = tieBreaks();

// ---- the descriptor of a patch --------------------------------------------------------------------------------------

// A cell has, across or down, the pixels 3 * i and 3 * i + 1 as a whole, which is 6 sixths, of the one before them i
// sixths, and of the one after them the 5 - i that the next cell does not have.
constexpr size_t kPixels = 17, kCells = 6;
constexpr size_t kCellsWithSlack = kLength + Vec<int8_t>::lanes;

// The 17 pixels of a row, or sums of such, of 16 bits. f(start, load) makes a vector of them from one or several rows
// that load(row) takes.
template <class F>
RVK_INLINE void forEachVectorOfPixels(F f)
{
    constexpr size_t lanes = Vec<uint16_t>::lanes;
    if constexpr (lanes > kPixels)
        f(size_t{0}, [](const uint8_t* row) RVK_INLINE_LAMBDA { return widen(loadPartial(row, kPixels))[0]; });
    else
        forEachVector<lanes, kPixels>([&](auto, size_t start) RVK_INLINE_LAMBDA {
            f(start, [=](const uint8_t* row) RVK_INLINE_LAMBDA { return loadWiden<uint16_t>(row + start); });
        });
}

// The sums of row `i` of cells, column by column.
template <size_t i>
RVK_INLINE void sumDown(Plane<const uint8_t> patch, uint16_t* sums)
{
    forEachVectorOfPixels([&](size_t start, auto take) RVK_INLINE_LAMBDA {
        Vec<uint16_t> sum = (take(patch.row(3 * i)) + take(patch.row(3 * i + 1))) * splat<uint16_t>(6);
        if constexpr (i > 0)
            sum = sum + take(patch.row(3 * i - 1)) * splat<uint16_t>(i);
        if constexpr (i < 5)
            sum = sum + take(patch.row(3 * i + 2)) * splat<uint16_t>(5 - i);
        store(sums + start, sum);
    });
}

// Six cells, and others behind them that mean nothing.
RVK_INLINE void sumAcross(const uint16_t* columns, int32_t* cells)
{
    const Vecs<uint16_t, 3> v = load3(columns); // pixels 3 * i, 3 * i + 1, 3 * i + 2
    const Vec<uint16_t> before = extract<Vec<uint16_t>::lanes - 1>(zero<uint16_t>(), v[2]);
    const Vec<uint16_t> partBefore = iota<uint16_t>();
    const Vec<uint16_t> whole = (v[0] + v[1]) * splat<uint16_t>(6);
    const Vec<uint16_t> parts = before * partBefore + v[2] * (splat<uint16_t>(5) - partBefore);
    const Vecs<int32_t, 2> sums = bitCast<int32_t>(addWide(whole, parts));
    store(cells, sums[0]);
    if constexpr (Vec<int32_t>::lanes < kCells)
        store(cells + Vec<int32_t>::lanes, sums[1]);
}

struct Extent
{
    int32_t sum, smallest, largest;
};

RVK_INLINE Extent extentOf(const int32_t* cells)
{
    constexpr size_t lanes = Vec<int32_t>::lanes;
    Vec<int32_t> sum = zero<int32_t>(), smallest = load(cells), largest = smallest;
    unrolled<kVectors<lanes>>([&](auto i) RVK_INLINE_LAMBDA { sum = sum + load(cells + i * lanes); });
    forEachVector<lanes, kLength>([&](auto, size_t start) RVK_INLINE_LAMBDA {
        smallest = min(smallest, load(cells + start));
        largest = max(largest, load(cells + start));
    });
    return {reduceAdd(sum), reduceMin(smallest), reduceMax(largest)};
}

// Numbers from -largest to largest times 127 / largest, to the nearest integer, halves away from zero.
struct ScaleTo127
{
    Vec<int32_t> largest, divisor;
    Vec<float> reciprocal;

    RVK_INLINE explicit ScaleTo127(int32_t most)
        : largest(splat(most)), divisor(splat(2 * most)), reciprocal(splat(1.0f / static_cast<float>(2 * most)))
    {
    }

    RVK_INLINE Vec<int32_t> operator()(Vec<int32_t> v) const
    {
        const Vec<int32_t> dividend = abs(v) * splat(2 * 127) + largest;
        // The quotient is 127 at most, so rounding leaves it right or beside that.
        Vec<int32_t> quotient = truncateToInt(toFloat(dividend) * reciprocal);
        const Vec<int32_t> rest = dividend - quotient * divisor;
        quotient = quotient + shiftRight(rest, 31);                              // -1 where it is negative
        quotient = quotient - toVec(greater(rest, divisor - splat<int32_t>(1))); // +1 where it is too large
        const Vec<int32_t> sign = shiftRight(v, 31);
        return (quotient ^ sign) - sign;
    }
};

RVK_INLINE Vec<int8_t> narrowTwice(const Vecs<int32_t, 4>& v)
{
    return narrow(Vecs<int16_t, 2>{narrow(Vecs<int32_t, 2>{v[0], v[1]}), narrow(Vecs<int32_t, 2>{v[2], v[3]})});
}

RVK_INLINE void quantise(const int32_t* cells, const Extent& extent, int8_t* descriptor)
{
    const int32_t above = 36 * extent.largest - extent.sum, below = extent.sum - 36 * extent.smallest;
    const ScaleTo127 scale(above > below ? above : below);
    const Vec<int32_t> sum = splat(extent.sum);
    const auto quantised = [&](size_t start) RVK_INLINE_LAMBDA {
        Vecs<int32_t, 4> v = loadVecs<4>(cells + start);
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { v[i] = scale(v[i] * splat<int32_t>(36) - sum); });
        return narrowTwice(v);
    };
    constexpr size_t lanes = Vec<int8_t>::lanes;
    if constexpr (lanes > kLength)
        storePartial(descriptor, quantised(0), kLength);
    else
        forEachVector<lanes, kLength>([&](auto, size_t start)
                                          RVK_INLINE_LAMBDA { store(descriptor + start, quantised(start)); });
}

// ---- scaled descriptors ---------------------------------------------------------------------------------------------

RVK_INLINE void scaleDescriptor(const int8_t* from, Vec<float> factor, float* to)
{
    constexpr size_t lanes = Vec<float>::lanes;
    const auto put = [&](size_t start, Vec<int32_t> v) RVK_INLINE_LAMBDA { store(to + start, toFloat(v) * factor); };
    if constexpr (lanes == 4) { // to widen whole vectors is cheaper than to load four bytes
        forEachVector<Vec<int8_t>::lanes, kLength>([&](auto i, size_t start) RVK_INLINE_LAMBDA {
            const Vecs<int16_t, 2> pairs = widen(load(from + start));
            const Vecs<int32_t, 2> high = widen(pairs[1]);
            if constexpr (i < 2) {
                const Vecs<int32_t, 2> low = widen(pairs[0]);
                put(start, low[0]);
                put(start + 4, low[1]);
                put(start + 8, high[0]);
            }
            put(start + 12, high[1]);
        });
    } else {
        forEachVector<lanes, kLength>([&](auto, size_t start)
                                          RVK_INLINE_LAMBDA { put(start, loadWiden<int32_t>(from + start)); });
    }
}

// ---- means and variances --------------------------------------------------------------------------------------------

constexpr size_t kLanes = Vec<float>::lanes;
using Components = Vecs<float, kVectors<kLanes>>;

// The sums of summand(component, i) over all vectors, in their order, for vector i of the components.
template <class Summand>
RVK_INLINE Components sumOver(Plane<const float> vectors, size_t count, Summand summand)
{
    Components sums = {};
    const float* row = vectors.data;
    for (; count; --count, row += vectors.stride / sizeof(float))
        forEachVector<kLanes, kLength>([&](auto i, size_t start)
                                           RVK_INLINE_LAMBDA { sums[i] = sums[i] + summand(load(row + start), i); });
    return sums;
}

RVK_INLINE Components quotients(Components sums, float divisor)
{
    unrolled<kVectors<kLanes>>([&](auto i) RVK_INLINE_LAMBDA { sums[i] = divide(sums[i], splat(divisor)); });
    return sums;
}

RVK_INLINE void storeComponents(float* to, const Components& v)
{
    forEachVector<kLanes, kLength>([&](auto i, size_t start) RVK_INLINE_LAMBDA { store(to + start, v[i]); });
}

} // namespace

// Each score goes where the number of those before it says.
void rvkSort8Scoresf32V(const float32_t* inScores, float32_t* outScores)
{
    constexpr size_t lanes = Vec<float>::lanes < kScores ? Vec<float>::lanes : kScores;
    float scores[kScores];
    int32_t keys[kScores], ranks[kScores];
    bool areNumbers = true;
    forEachVector<lanes, kScores>([&](auto, size_t start) RVK_INLINE_LAMBDA {
        const Vec<float> v = loadPartial(inScores + start, lanes);
        areNumbers = areNumbers && all(equal(v, v));
        storePartial(scores + start, v, lanes);
        storePartial(keys + start, orderKeys(v), lanes);
    });
    if (!areNumbers)
        return rvkSort8Scoresf32C(inScores, outScores);
    forEachVector<lanes, kScores>([&](auto, size_t start) RVK_INLINE_LAMBDA {
        const Vec<int32_t> key = loadPartial(keys + start, lanes);
        Vec<int32_t> rank = zero<int32_t>();
        unrolled<kScores>([&](auto j) RVK_INLINE_LAMBDA {
            const Vec<int32_t> tie = loadPartial(kTieBreaks.comesFirst[j] + start, lanes);
            rank = rank - toVec(greater(key + tie, splat(keys[j])));
        });
        storePartial(ranks + start, rank, lanes);
    });
    for (size_t i = 0; i < kScores; ++i)
        outScores[ranks[i]] = scores[i];
}

rvkStatus rvkVecNormalize36s8f32V(const int8_t* src, uint32_t srcStride, const float32_t* invLengths, uint32_t count,
                                  float32_t* dst, uint32_t dstStride)
{
    for (; count; --count) {
        scaleDescriptor(src, splat(*invLengths++), dst);
        src += srcStride;
        dst += dstStride / sizeof *dst;
    }
    return RAVIK_SUCCESS;
}

rvkStatus rvkDescriptor17x17u8To36s8V(const uint8_t* patch, uint32_t patchStride, int8_t* descriptor,
                                      float32_t* invLength)
{
    uint16_t columns[3 * Vec<uint16_t>::lanes] = {};
    int32_t cells[kCellsWithSlack] = {};
    unrolled<kCells>([&](auto i) RVK_INLINE_LAMBDA {
        sumDown<i>(Plane<const uint8_t>{patch, patchStride}, columns);
        sumAcross(columns, cells + i * kCells);
    });
    store(cells + kLength, zero<int32_t>());
    const Extent extent = extentOf(cells);
    if (extent.smallest == extent.largest) {
        __builtin_memset(descriptor, 0, kLength);
        if (invLength)
            *invLength = 0;
        return RAVIK_SUCCESS;
    }
    quantise(cells, extent, descriptor);
    if (invLength)
        *invLength = 1.0f / __builtin_sqrtf(static_cast<float>(rvkDotProduct36x1s8V(descriptor, descriptor)));
    return RAVIK_SUCCESS;
}

rvkStatus rvkDescriptorSampledMeanAndVar36f32V(const float32_t* src, uint32_t count, uint32_t srcStride,
                                               float32_t* means, float32_t* variances)
{
    const Plane vectors{src, srcStride};
    const auto value = [](Vec<float> v, auto) RVK_INLINE_LAMBDA { return v; };
    const Components mean = quotients(sumOver(vectors, count, value), static_cast<float>(count));
    const auto squareOfDifference = [&](Vec<float> v, auto i) RVK_INLINE_LAMBDA {
        const Vec<float> difference = v - mean[i];
        return difference * difference;
    };
    storeComponents(means, mean);
    if (count == 1)
        storeComponents(variances, Components{});
    else
        storeComponents(variances,
                        quotients(sumOver(vectors, count, squareOfDifference), static_cast<float>(count - 1)));
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikDescriptorForms.h"

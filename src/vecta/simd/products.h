// Sums of products of 16-bit elements and 16-bit weights that the caller gives. Sums wrap at 32 bits, so that their
// order is free.
//
// x86 multiplies two pairs and adds the products in one instruction. Two rows of elements therefore lie in memory as a
// pair, an element of the one beside that of the other. Arm multiplies and adds one product at a time; there the two
// rows lie one after the other. Rows of a pair are `size` elements long.
//
// A window of two dimensions is summed by addProducts, a pair and two weights at a time. Windows of one dimension have
// lines of weights:
//
// filterAlong<Sums>(p, line, shift): the sums of the windows that begin at p, p + 1, ..., as elements: two vectors of
// them. Up to two vectors of elements behind the last window are read.
//
// filterDown<Sums>(first, x, size, line, shift): the same down columns x, x + 1, ..., for two rows of windows, which
// begin in the first and in the second row of the pair at `first`. Pairs follow each other, stored without order, and
// one behind the last is read.
//
// Sums is ProductSums, or ShortSums where no sum is negative or has more than 16 bits.
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Of as many outputs as Vec<int16_t> has lanes.
using ProductSums = Vecs<int32_t, 2>;

// How sums become elements again: shifted right and saturated.
struct SumShift
{
    unsigned count;
    bool takesHighHalves; // the shift is 16, and no sum is too large for it
};

// Weights, and how many. One before the first and four behind the last are read: zeros.
struct AnyWeightLine
{
    const int16_t* weights;
    size_t count;
};

// The same with the weights in registers, and an odd number of them that the compiler knows.
template <size_t count>
struct WeightLine;

// Two rows of outputs, the one below the other.
template <class V>
struct TwoRowsOf
{
    V upper, lower;
};

// Two weights in one word, the first in its low half.
RVK_INLINE int32_t twoWeights(int16_t first, int16_t second)
{
    return static_cast<int32_t>(static_cast<uint16_t>(first) | uint32_t{static_cast<uint16_t>(second)} << 16);
}

RVK_INLINE ProductSums shiftRight(const ProductSums& sums, unsigned shift)
{
    return {{shiftRight(sums[0], shift), shiftRight(sums[1], shift)}};
}

RVK_INLINE Vec<int16_t> loadShorts(const int16_t* p)
{
    return load(p);
}
RVK_INLINE Vec<int16_t> loadShorts(const uint8_t* p)
{
    return bitCast<int16_t>(loadWiden<uint16_t>(p));
}

#if defined(__x86_64__)

// ---- a pair of rows and two weights ---------------------------------------------------------------------------------

using TwoWeights = Vec<int16_t>;
using ShortSums = ProductSums; // products come added in pairs, in 32 bits

RVK_INLINE TwoWeights loadTwoWeights(const int32_t* two)
{
    return bitCast<int16_t>(splat(*two));
}

// Elements of two rows, the first row's in the low halves of words. In order, or, where `ordered` is false, as they
// come cheapest; sums are then to be narrowed likewise.
template <bool ordered>
RVK_INLINE void storePair(int16_t* pair, size_t x, size_t, Vec<int16_t> first, Vec<int16_t> second)
{
    store(pair + 2 * x, ordered ? zip(first, second) : zipInLanes(first, second));
}

RVK_INLINE Vecs<int16_t, 2> loadPair(const int16_t* pair, size_t x, size_t)
{
    return loadVecs<2>(pair + 2 * x);
}

RVK_INLINE void addProducts(ProductSums& sums, const Vecs<int16_t, 2>& pair, TwoWeights weights)
{
    sums[0] = sums[0] + dotPairs(pair[0], weights);
    sums[1] = sums[1] + dotPairs(pair[1], weights);
}

template <bool ordered>
RVK_INLINE Vec<int16_t> narrowSums(const ProductSums& sums, SumShift shift)
{
    const ProductSums shifted = shiftRight(sums, shift.count);
    return ordered ? narrowSat<int16_t>(shifted) : narrowSatInLanes<int16_t>(shifted);
}

// ---- rows of weights ------------------------------------------------------------------------------------------------

RVK_INLINE TwoWeights twoOf(const AnyWeightLine& line, ptrdiff_t first)
{
    int32_t two;
    __builtin_memcpy(&two, line.weights + first, sizeof two);
    return loadTwoWeights(&two);
}

template <size_t count>
struct WeightLine
{
    static constexpr size_t pairs = count / 2 + 1;
    TwoWeights even[pairs], odd[pairs]; // for outputs that begin with a pair of elements, and in the middle of one

    RVK_INLINE explicit WeightLine(AnyWeightLine line)
    {
        unrolled<pairs>([&](auto i) RVK_INLINE_LAMBDA {
            even[i] = twoOf(line, 2 * i);
            odd[i] = twoOf(line, static_cast<ptrdiff_t>(2 * i) - 1);
        });
    }
};

template <size_t count, class F>
RVK_INLINE void forEachPair(const WeightLine<count>& line, F f)
{
    unrolled<WeightLine<count>::pairs>([&](auto i) RVK_INLINE_LAMBDA { f(i, line.even[i], line.odd[i]); });
}

template <class F>
RVK_INLINE void forEachPair(const AnyWeightLine& line, F f)
{
    for (size_t i = 0; i <= line.count / 2; ++i)
        f(i, twoOf(line, 2 * i), twoOf(line, static_cast<ptrdiff_t>(2 * i) - 1));
}

template <class Line, class S>
RVK_INLINE Vec<int16_t> filterVectorAlong(const S* p, const Line& line, SumShift shift)
{
    ProductSums sums = {}; // of even and odd outputs
    forEachPair(line, [&](size_t i, TwoWeights even, TwoWeights odd) RVK_INLINE_LAMBDA {
        const Vec<int16_t> v = loadShorts(p + 2 * i);
        sums[0] = sums[0] + dotPairs(v, even);
        sums[1] = sums[1] + dotPairs(v, odd);
    });
    const Vec<int16_t> v = narrowSums<false>(sums, shift); // even ones, then odd ones, in each block
    return shuffle(v, v, [](size_t i) { return i / 8 * 8 + i % 8 / 2 + i % 2 * 4; });
}

template <class Sums, class Line, class S>
RVK_INLINE Vecs<int16_t, 2> filterAlong(const S* p, const Line& line, SumShift shift)
{
    return {{filterVectorAlong(p, line, shift), filterVectorAlong(p + Vec<int16_t>::lanes, line, shift)}};
}

template <class Sums, class Line>
RVK_INLINE TwoRowsOf<Vecs<int16_t, 2>> filterDown(const int16_t* first, size_t x, size_t size, const Line& line,
                                                  SumShift shift)
{
    ProductSums upper[2] = {}, lower[2] = {};
    forEachPair(line, [&](size_t i, TwoWeights even, TwoWeights odd) RVK_INLINE_LAMBDA {
        const int16_t* const pair = first + i * 2 * size;
        const Vecs<int16_t, 2> left = loadPair(pair, x, size), right = loadPair(pair, x + Vec<int16_t>::lanes, size);
        addProducts(upper[0], left, even);
        addProducts(upper[1], right, even);
        addProducts(lower[0], left, odd);
        addProducts(lower[1], right, odd);
    });
    return {{{narrowSums<false>(upper[0], shift), narrowSums<false>(upper[1], shift)}},
            {{narrowSums<false>(lower[0], shift), narrowSums<false>(lower[1], shift)}}};
}

#else

// ---- a pair of rows and two weights ---------------------------------------------------------------------------------

using TwoWeights = int16x4_t;    // the two again and again
using ShortSums = Vec<uint16_t>; // for sums that are not negative and fit 16 bits

RVK_INLINE TwoWeights loadTwoWeights(const int32_t* two)
{
    return vreinterpret_s16_s32(vld1_dup_s32(two));
}

template <bool>
RVK_INLINE void storePair(int16_t* pair, size_t x, size_t size, Vec<int16_t> first, Vec<int16_t> second)
{
    store(pair + x, first);
    store(pair + size + x, second);
}

RVK_INLINE Vecs<int16_t, 2> loadPair(const int16_t* pair, size_t x, size_t size)
{
    return {{load(pair + x), load(pair + size + x)}};
}

// Adds the products with one of four weights.
template <size_t lane>
RVK_INLINE void addProducts(ProductSums& sums, Vec<int16_t> v, int16x4_t four)
{
#if defined(__aarch64__)
    sums = {{vec(vmlal_lane_s16(reg(sums[0]), lowHalf(v), four, lane)),
             vec(vmlal_high_lane_s16(reg(sums[1]), reg(v), four, lane))}};
#else
    sums = {{vec(vmlal_lane_s16(reg(sums[0]), lowHalf(v), four, lane)),
             vec(vmlal_lane_s16(reg(sums[1]), highHalf(v), four, lane))}};
#endif
}

template <size_t lane>
RVK_INLINE void addProducts(ShortSums& sums, Vec<int16_t> v, int16x4_t four)
{
    sums = bitCast<uint16_t>(vec(vmlaq_lane_s16(reg(bitCast<int16_t>(sums)), reg(v), four, lane)));
}

RVK_INLINE void addProducts(ProductSums& sums, const Vecs<int16_t, 2>& pair, TwoWeights weights)
{
    addProducts<0>(sums, pair[0], weights);
    addProducts<1>(sums, pair[1], weights);
}

template <bool>
RVK_INLINE Vec<int16_t> narrowSums(const ProductSums& sums, SumShift shift)
{
    if (shift.takesHighHalves)
        return unzipOdd(bitCast<int16_t>(sums[0]), bitCast<int16_t>(sums[1]));
    return narrowSat<int16_t>(shiftRight(sums, shift.count));
}

template <bool>
RVK_INLINE Vec<int16_t> narrowSums(const ShortSums& sums, SumShift shift)
{
    return bitCast<int16_t>(shiftRight(sums, shift.count));
}

// ---- rows of weights ------------------------------------------------------------------------------------------------

template <size_t count>
struct WeightLine
{
    int16x4_t fours[(count + 3) / 4];

    RVK_INLINE explicit WeightLine(AnyWeightLine line)
    {
        unrolled<(count + 3) / 4>([&](auto i) RVK_INLINE_LAMBDA { fours[i] = loadHalf(line.weights + 4 * i); });
    }
};

// To be called in every turn of a loop: clang for 32-bit Arm would take the weights apart ahead of it, into more
// registers than there are.
RVK_INLINE void keepTogether([[maybe_unused]] int16x4_t& four)
{
#if defined(__arm__) && defined(__clang__)
    __asm__("" : "+x"(four));
#endif
}

template <size_t count>
RVK_INLINE void keepTogether(WeightLine<count>& line)
{
    unrolled<(count + 3) / 4>([&](auto i) RVK_INLINE_LAMBDA { keepTogether(line.fours[i]); });
}

template <size_t k, class Sums, size_t count>
RVK_INLINE void addProducts(Sums& sums, Vec<int16_t> v, const WeightLine<count>& line)
{
    addProducts<k % 4>(sums, v, line.fours[k / 4]);
}

// Vectors of elements that follow each other.
template <size_t count>
RVK_INLINE Vecs<int16_t, count> loadShortVecs(const int16_t* p)
{
    return loadVecs<count>(p);
}

template <size_t count>
RVK_INLINE Vecs<int16_t, count> loadShortVecs(const uint8_t* p)
{
    constexpr size_t lanes = Vec<int16_t>::lanes;
    Vecs<int16_t, count> r;
    unrolled<count / 2>([&](auto i) RVK_INLINE_LAMBDA {
        const Vecs<uint16_t, 2> two = widen(load(p + 2 * lanes * i));
        r[2 * i] = bitCast<int16_t>(two[0]);
        r[2 * i + 1] = bitCast<int16_t>(two[1]);
    });
    if constexpr (count % 2 == 1)
        r[count - 1] = loadShorts(p + (count - 1) * lanes);
    return r;
}

// The elements from k on.
template <size_t k, size_t count>
RVK_INLINE Vec<int16_t> elementsFrom(const Vecs<int16_t, count>& v)
{
    constexpr size_t lanes = Vec<int16_t>::lanes;
    if constexpr (k % lanes == 0)
        return v[k / lanes];
    else
        return extract<k % lanes>(v[k / lanes], v[k / lanes + 1]);
}

template <class Sums, class S, size_t count>
RVK_INLINE Vecs<int16_t, 2> filterAlong(const S* p, WeightLine<count>& line, SumShift shift)
{
    keepTogether(line);
    constexpr size_t lanes = Vec<int16_t>::lanes;
    const auto v = loadShortVecs<2 + (count + lanes - 2) / lanes>(p);
    Sums left = {}, right = {};
    unrolled<count>([&](auto k) RVK_INLINE_LAMBDA {
        addProducts<k>(left, elementsFrom<k>(v), line);
        addProducts<k>(right, elementsFrom<k + lanes>(v), line);
    });
    return {{narrowSums<false>(left, shift), narrowSums<false>(right, shift)}};
}

template <class Sums, class S>
RVK_INLINE Vecs<int16_t, 2> filterAlong(const S* p, const AnyWeightLine& line, SumShift shift)
{
    constexpr size_t lanes = Vec<int16_t>::lanes;
    Sums left = {}, right = {};
    for (size_t i = 0; i < line.count; i += 4) {
        const int16x4_t four = loadHalf(line.weights + i);
        const auto v = loadShortVecs<3>(p + i);
        unrolled<4>([&](auto k) RVK_INLINE_LAMBDA {
            addProducts<k>(left, elementsFrom<k>(v), four);
            addProducts<k>(right, elementsFrom<k + lanes>(v), four);
        });
    }
    return {{narrowSums<false>(left, shift), narrowSums<false>(right, shift)}};
}

// clang for 32-bit Arm would load all rows ahead of their products, into more registers than there are.
RVK_INLINE void finishRow([[maybe_unused]] ProductSums (&upper)[2], [[maybe_unused]] ProductSums (&lower)[2],
                          [[maybe_unused]] const int16_t*& next)
{
#if defined(__arm__) && defined(__clang__)
    __asm__(""
            : "+w"(upper[0][0].raw), "+w"(upper[0][1].raw), "+w"(upper[1][0].raw), "+w"(upper[1][1].raw),
              "+w"(lower[0][0].raw), "+w"(lower[0][1].raw), "+w"(lower[1][0].raw), "+w"(lower[1][1].raw), "+r"(next));
#endif
}

template <class Sums>
struct SumsDown
{
    Sums upper[2] = {}, lower[2] = {};

    RVK_INLINE TwoRowsOf<Vecs<int16_t, 2>> narrowed(SumShift shift) const
    {
        return {{{narrowSums<false>(upper[0], shift), narrowSums<false>(upper[1], shift)}},
                {{narrowSums<false>(lower[0], shift), narrowSums<false>(lower[1], shift)}}};
    }
};

template <class Sums, size_t count>
RVK_INLINE TwoRowsOf<Vecs<int16_t, 2>> filterDown(const int16_t* first, size_t x, size_t size, WeightLine<count>& line,
                                                  SumShift shift)
{
    keepTogether(line);
    const int16_t* row = first + x;
    SumsDown<Sums> sums;
    unrolled<count + 1>([&](auto k) RVK_INLINE_LAMBDA {
        const Vecs<int16_t, 2> v = loadVecs<2>(row);
        unrolled<2>([&](auto side) RVK_INLINE_LAMBDA {
            if constexpr (k < count)
                addProducts<k>(sums.upper[side], v[side], line);
            if constexpr (k > 0)
                addProducts<k - 1>(sums.lower[side], v[side], line);
        });
        row += size;
        if constexpr (count >= 7 && isSame<Sums, ProductSums>)
            finishRow(sums.upper, sums.lower, row);
    });
    return sums.narrowed(shift);
}

template <class Sums>
RVK_INLINE TwoRowsOf<Vecs<int16_t, 2>> filterDown(const int16_t* first, size_t x, size_t size,
                                                  const AnyWeightLine& line, SumShift shift)
{
    const int16_t* row = first + x;
    SumsDown<Sums> sums;
    for (size_t i = 0; i <= line.count; i += 4) {
        const int16x4_t upper = loadHalf(line.weights + i), lower = loadHalf(line.weights + i - 1);
        unrolled<4>([&](auto k) RVK_INLINE_LAMBDA {
            const Vecs<int16_t, 2> v = loadVecs<2>(row);
            unrolled<2>([&](auto side) RVK_INLINE_LAMBDA {
                addProducts<k>(sums.upper[side], v[side], upper);
                addProducts<k>(sums.lower[side], v[side], lower);
            });
            row += size;
        });
    }
    return sums.narrowed(shift);
}

#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA

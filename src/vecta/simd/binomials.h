// Windows with binomial weights, as kernels of windows.h.
#pragma once

#include "vecta/simd/windows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Binomial sums down a column are sums of neighbours, taken `order` times; so each row costs `order` additions.
template <size_t order, class Row>
struct NeighbourSums
{
    Row last[order] = {};

    RVK_INLINE Row add(Row row)
    {
        unrolled<order>([&](auto i) RVK_INLINE_LAMBDA {
            const Row sum = row + last[i];
            last[i] = row;
            row = sum;
        });
        return row;
    }
};

// The kernels below form sums of windows, and Output makes of them what is wanted: elements, or the sums themselves.
template <unsigned shift>
struct ShiftRight
{
    template <class T>
    static RVK_INLINE auto of(Pairs<T> sums)
    {
        return narrowPairs<shift>(sums);
    }
};

struct Sums
{
    template <class T>
    static RVK_INLINE Vecs<T, 2> of(Pairs<T> sums)
    {
        return orderPairs(sums);
    }
};

// As rowSum. Of 16-bit elements with AVX-512 by the instruction that adds products: 5x5 windows then take a tenth less.
// On Arm the windows of 5 by shifts of what one load and a half bring, which on 32 bits spares the addresses of others.
template <class W, class T>
RVK_INLINE Pairs<SumOf<T, W>> sumRow(const T* p)
{
    return rowSum<W>(p);
}

#if RVK_AVX512
template <int even, int odd>
RVK_INLINE Vec<int32_t> addWeightedPairs(Vec<int32_t> acc, Vec<int16_t> a)
{
    const uint32_t both = static_cast<uint32_t>(odd & 65535) << 16 | static_cast<uint32_t>(even & 65535);
    return vec<int32_t>(_mm512_dpwssd_epi32(reg(acc), reg(a), reg(splat(both))));
}

template <class W>
RVK_INLINE Pairs<int32_t> sumRow(const int16_t* p)
{
    Pairs<int32_t> sum = {};
    unrolled<W::count / 2 + 1>([&](auto j) RVK_INLINE_LAMBDA {
        const Vec<int16_t> v = loadOnce(p + 2 * j);
        sum = {{addWeightedPairs<W::at(2 * j), W::at(2 * j + 1)>(sum[0], v),
                addWeightedPairs<W::at(2 * j - 1), W::at(2 * j)>(sum[1], v)}};
    });
    return sum;
}
#elif defined(__ARM_NEON)
template <class W>
requires(W::count == 5) RVK_INLINE Pairs<int32_t> sumRow(const int16_t* p)
{
    const Vec<int16_t> first = load(p);
    const int16x4_t last = loadHalf(p + 8);
    const Vec<int16_t> rest = join(last, last);
    auto low = productsOfEnds<W::at(0), W::at(4)>(lowHalf(first), highHalf(first));
    auto high = productsOfEnds<W::at(0), W::at(4)>(highHalf(first), last);
    unrolled<3>([&](auto j) RVK_INLINE_LAMBDA {
        constexpr size_t k = j + 1;
        const Vec<int16_t> v = extract<k>(first, rest);
        low = addTap<W, k>(low, lowHalf(v));
        high = addTap<W, k>(high, highHalf(v));
    });
    return {{vec(low), vec(high)}};
}
#endif

template <class T, class RowWeights, class Output>
struct Binomial
{
    static constexpr size_t rows = RowWeights::count, columns = rows, step = Vec<T>::lanes;
    NeighbourSums<rows - 1, Pairs<SumOf<T, RowWeights>>> sums;

    RVK_INLINE auto next(const T* p) { return Output::of(sums.add(sumRow<RowWeights>(p))); }
};

template <class Output>
using Binomial3 = Binomial<uint8_t, Weights<1, 2, 1>, Output>;
template <class T, class Output>
using Binomial5 = Binomial<T, Weights<1, 4, 6, 4, 1>, Output>;

// Means of 16-bit elements, rounded down. On x86, where weights of any size cost the same, the sums are so large that
// their upper halves are the means: of those in odd lanes there is nothing to shift.
#if defined(__x86_64__)
template <class Output = ShiftRight<16>>
using BinomialMeans5 = Binomial<int16_t, Weights<256, 4 * 256, 6 * 256, 4 * 256, 256>, Output>;
#else
template <class Output = ShiftRight<8>>
using BinomialMeans5 = Binomial5<int16_t, Output>;
#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA

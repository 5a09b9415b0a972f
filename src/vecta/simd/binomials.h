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

template <class T, class RowWeights, class Output>
struct Binomial
{
    static constexpr size_t rows = RowWeights::count, columns = rows, step = Vec<T>::lanes;
    NeighbourSums<rows - 1, Pairs<SumOf<T, RowWeights>>> sums;

    RVK_INLINE auto next(const T* p) { return Output::of(sums.add(rowSum<RowWeights>(p))); }
};

template <class Output>
using Binomial3 = Binomial<uint8_t, Weights<1, 2, 1>, Output>;
template <class T, class Output>
using Binomial5 = Binomial<T, Weights<1, 4, 6, 4, 1>, Output>;

} // namespace
} // namespace rvk::vecta::RVK_ISA

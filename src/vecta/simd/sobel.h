// The weights of Sobel's derivatives, and derivatives of 3x3 pixels as kernels of windows.h.
#pragma once

#include "vecta/simd/windows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Derivatives are differences along one axis of sums that are smoothed along the other.
template <size_t size>
struct SobelWeights;
template <>
struct SobelWeights<3>
{
    using Smoothing = Weights<1, 2, 1>;
    using Difference = Weights<-1, 0, 1>;
};
template <>
struct SobelWeights<5>
{
    using Smoothing = Weights<1, 4, 6, 4, 1>;
    using Difference = Weights<-1, -2, 0, 2, 1>;
};
template <>
struct SobelWeights<7>
{
    using Smoothing = Weights<1, 6, 15, 20, 15, 6, 1>;
    using Difference = Weights<-1, -4, -5, 0, 5, 4, 1>;
};

// The derivatives of a step of pixels: as many as a vector has bytes.
struct Derivatives
{
    Pairs<int16_t> dx, dy;
};

// The difference of the outer two of three neighbours in a row, and their sum weighted `side`, `middle`, `side`.
template <int side, int middle>
struct RowOf3
{
    Pairs<int16_t> difference, sum;

#if defined(__x86_64__)
    explicit RVK_INLINE RowOf3(const uint8_t* p)
    {
        const Vec<int16_t> first = bitCast<int16_t>(loadOnce(p)), last = bitCast<int16_t>(loadOnce(p + 2));
        const Vec<int16_t> low = splat<int16_t>(255);
        const Vec<int16_t> a = first & low, b = bitCast<int16_t>(shiftRight(bitCast<uint16_t>(first), 8));
        const Vec<int16_t> c = last & low, d = bitCast<int16_t>(shiftRight(bitCast<uint16_t>(last), 8));
        difference = {{c - a, d - b}};
        if constexpr (side == 1 && middle == 2) {
            const Vec<int16_t> bc = b + c;
            sum = {{a + b + bc, bc + c + d}};
        } else {
            sum = {{splat<int16_t>(side) * (a + c) + splat<int16_t>(middle) * b,
                    splat<int16_t>(side) * (b + d) + splat<int16_t>(middle) * c}};
        }
    }
#else
    explicit RVK_INLINE RowOf3(const uint8_t* p) : difference(rowSum<Weights<-1, 0, 1>>(p))
    {
        const Pairs<uint16_t> s = rowSum<Weights<side, middle, side>>(p);
        sum = {{bitCast<int16_t>(s[0]), bitCast<int16_t>(s[1])}};
    }
#endif
};

template <size_t count>
RVK_INLINE Vecs<int16_t, count> operator*(int16_t a, Vecs<int16_t, count> v)
{
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { v[i] = splat(a) * v[i]; });
    return v;
}

// Differences across, weighted `side`, `middle`, `side` along.
template <int side, int middle>
struct Operator3x3
{
    Pairs<int16_t> last = {}, lastTwo = {};         // differences: of the row above, and of the two rows above
    Pairs<int16_t> sumAbove = {}, sumTwoAbove = {}; // sums

    RVK_INLINE Derivatives next(const uint8_t* p)
    {
        const RowOf3<side, middle> row(p);
        Derivatives d;
        if constexpr (side == 1 && middle == 2) { // twice the sum of neighbours
            const Pairs<int16_t> two = row.difference + last;
            d.dx = lastTwo + two;
            lastTwo = two;
        } else {
            d.dx = int16_t{side} * (row.difference + lastTwo) + int16_t{middle} * last;
            lastTwo = last;
        }
        last = row.difference;
        d.dy = row.sum - sumTwoAbove;
        sumTwoAbove = sumAbove;
        sumAbove = row.sum;
        return d;
    }
};
using Sobel3x3 = Operator3x3<1, 2>;
using Scharr3x3 = Operator3x3<3, 10>;

// An operator as a kernel that gives what Output makes of the derivatives.
template <class Operator, class Output>
struct DerivativeKernel
{
    static constexpr size_t rows = 3, columns = 3, step = Vec<uint8_t>::lanes;
    Operator derivatives;

    RVK_INLINE auto next(const uint8_t* p) { return Output::of(derivatives.next(p)); }
};

struct TwoPlanes
{
    static RVK_INLINE auto of(const Derivatives& d)
    {
        return Two<Vecs<int16_t, 2>, Vecs<int16_t, 2>>{orderPairs(d.dx), orderPairs(d.dy)};
    }
};

} // namespace
} // namespace rvk::vecta::RVK_ISA

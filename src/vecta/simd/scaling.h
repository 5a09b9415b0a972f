// Sums of the bytes of a row that becomes shorter or longer, and how they become bytes again. Steps are as many outputs, or
// whole groups of bytes, as a vector of bytes has lanes.
#pragma once

#include "vecta/simd/rowSums.h"

namespace rvk::vecta::RVK_ISA {
namespace {

#if defined(__x86_64__)

// The weighted sums of the windows that start at p, p + 2, ..., in this order: as many as a vector of bytes has lanes. Reads
// no further than to the end of the last window.
template <class W>
RVK_INLINE Vecs<SumOf<uint8_t, W>, 2> everySecondSum(const uint8_t* p)
{
    using Sum = SumOf<uint8_t, W>;
    Vecs<Sum, 2> sums;
    unrolled<2>([&](auto half) RVK_INLINE_LAMBDA {
        const uint8_t* first = p + half * kBytes;
        Vec<Sum> sum = weightedPairs<Sum, 0, W::at(W::count - 1)>(load(first + W::count - 2));
        unrolled<W::count / 2>([&](auto j) RVK_INLINE_LAMBDA {
            sum = sum + weightedPairs<Sum, W::at(2 * j), W::at(2 * j + 1)>(load(first + 2 * j));
        });
        sums[half] = sum;
    });
    return sums;
}

#else

// Of two windows' elements at once: those at p, p + 2, ... and those beside them. Reads the odd ones of the last pairs only
// where they lie within the last window.
template <class W>
RVK_INLINE Vecs<SumOf<uint8_t, W>, 2> everySecondSum(const uint8_t* p)
{
    using Sum = SumOf<uint8_t, W>;
    constexpr size_t end = W::count - 1;
    const Vec<uint8_t> last = load2(p + end - 1)[1];
    Vecs<uint8_t, 2> taps = load2(p);
    auto low = productsOfEnds<W::at(0), W::at(end)>(lowHalf(taps[0]), lowHalf(last));
    auto high = productsOfEnds<W::at(0), W::at(end)>(highHalf(taps[0]), highHalf(last));
    unrolled<end - 1>([&](auto j) RVK_INLINE_LAMBDA {
        constexpr size_t k = j + 1;
        if constexpr (k % 2 == 0)
            taps = load2(p + k);
        low = addTap<W, k>(low, lowHalf(taps[k % 2]));
        high = addTap<W, k>(high, highHalf(taps[k % 2]));
    });
    return {{bitCast<Sum>(vec(low)), bitCast<Sum>(vec(high))}};
}

#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA

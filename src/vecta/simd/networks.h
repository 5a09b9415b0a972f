// Networks of comparators that sort vectors lane by lane, made and proved by the compiler.
//
// A network is first one that sorts anything, Batcher's odd-even merge sort. Then all cases that can occur go through
// it, as zeros and ones: a network that sorts those sorts all values (Knuth, The Art of Computer Programming, 5.3.4).
// Comparators that never exchange go, and so does what no wanted output depends on. So it is enough to tell what is
// known about the order of the inputs, and which ranks are of interest.
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

#if defined(__AVX512BW__)
// Puts two vectors in order, lane by lane. Minima and maxima all want one port of these processors; where they are most
// of the work, comparing and choosing, which goes elsewhere, is better for some. (Without the barrier compilers make
// minima of it.)
RVK_INLINE void exchange(Vec<uint8_t>& a, Vec<uint8_t>& b)
{
    Mask<uint8_t> isOrdered = greater(b, a);
    __asm__("" : "+k"(isOrdered.bits));
    const Vec<uint8_t> low = select(isOrdered, a, b);
    b = select(isOrdered, b, a);
    a = low;
}
#endif

// Zeros and ones on the wires that enter a network, case by case.
template <size_t wires, size_t mostCases>
struct Cases
{
    static constexpr size_t wireCount = wires;
    static constexpr size_t words = (mostCases + 63) / 64;
    uint64_t bits[wires][words] = {}; // a bit for each case
    size_t count = 0;

    constexpr void setOne(size_t wire) { bits[wire][count / 64] |= uint64_t{1} << count % 64; } // of the next case
    constexpr void next() { ++count; }
};

// All that `wires` wires can bring.
template <size_t wires>
constexpr Cases<wires, size_t{1} << wires> casesInAnyOrder()
{
    Cases<wires, size_t{1} << wires> cases;
    for (size_t ones = 0; ones < size_t{1} << wires; ++ones, cases.next())
        for (size_t i = 0; i < wires; ++i)
            if (ones >> i & 1)
                cases.setOne(i);
    return cases;
}

// Puts the smaller of two values on wire `low` and the larger on wire `high`, unless the one or the other is not used.
struct Comparator
{
    size_t low, high;
    bool needsLow, needsHigh;
};

// Calls compare(i, j), i < j, for each comparator of Batcher's network.
template <class Compare>
constexpr void oddEvenMergeSort(size_t wires, Compare compare)
{
    for (size_t sorted = 1; sorted < wires; sorted *= 2)
        for (size_t distance = sorted; distance > 0; distance /= 2)
            for (size_t first = distance % sorted; first + distance < wires; first += 2 * distance)
                for (size_t i = first; i < first + distance && i + distance < wires; ++i)
                    if (i / (2 * sorted) == (i + distance) / (2 * sorted))
                        compare(i, i + distance);
}

constexpr size_t comparatorsOf(size_t wires)
{
    size_t count = 0;
    oddEvenMergeSort(wires, [&](size_t, size_t) { ++count; });
    return count;
}

template <size_t wires>
struct Network
{
    Comparator comparators[comparatorsOf(wires)] = {};
    size_t count = 0;
    bool sortsAllCases = true;
};

// Sorts the cases and drops the comparators that do nothing in any.
template <size_t wires, size_t mostCases>
constexpr Network<wires> sortingNetwork(Cases<wires, mostCases> cases)
{
    Network<wires> network;
    oddEvenMergeSort(wires, [&](size_t low, size_t high) {
        uint64_t exchanged = 0;
        for (size_t w = 0; w < cases.words; ++w) {
            const uint64_t a = cases.bits[low][w], b = cases.bits[high][w];
            cases.bits[low][w] = a & b;
            cases.bits[high][w] = a | b;
            exchanged |= a & ~b;
        }
        if (exchanged)
            network.comparators[network.count++] = {low, high, true, true};
    });
    for (size_t i = 0; i + 1 < wires; ++i)
        for (size_t w = 0; w < cases.words; ++w)
            if (cases.bits[i][w] & ~cases.bits[i + 1][w])
                network.sortsAllCases = false;
    return network;
}

// What of a sorting network gives the outputs of ranks `first` to `last`, counted from 0.
template <size_t wires>
constexpr Network<wires> selecting(Network<wires> network, size_t first, size_t last)
{
    bool isNeeded[wires] = {};
    for (size_t i = first; i <= last; ++i)
        isNeeded[i] = true;
    size_t kept = network.count; // those that are kept gather at the end
    for (size_t i = network.count; i-- > 0;) {
        Comparator c = network.comparators[i];
        c.needsLow = isNeeded[c.low];
        c.needsHigh = isNeeded[c.high];
        if (!c.needsLow && !c.needsHigh)
            continue;
        isNeeded[c.low] = isNeeded[c.high] = true;
        network.comparators[--kept] = c;
    }
    Network<wires> result;
    result.sortsAllCases = network.sortsAllCases;
    for (size_t i = kept; i < network.count; ++i)
        result.comparators[result.count++] = network.comparators[i];
    return result;
}

// Applies a network, given as a type with a constant `network`, to values that lie in an array.
template <class Selection, class T, size_t wires>
RVK_INLINE void applyNetwork(Vecs<T, wires>& v)
{
    static_assert(Selection::network.sortsAllCases);
    unrolled<Selection::network.count>([&](auto i) RVK_INLINE_LAMBDA {
        constexpr Comparator c = Selection::network.comparators[i];
        const Vec<T> a = v.v[c.low], b = v.v[c.high];
        if constexpr (c.needsLow)
            v.v[c.low] = min(a, b);
        if constexpr (c.needsHigh)
            v.v[c.high] = max(a, b);
    });
}

// Sorts values of which nothing is known.
template <size_t wires>
struct SortAny
{
    static constexpr auto network = sortingNetwork(casesInAnyOrder<wires>());
};

} // namespace
} // namespace rvk::vecta::RVK_ISA

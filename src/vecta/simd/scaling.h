// Sums of the bytes of a row that becomes shorter or longer, and how they become bytes again. Steps are as many
// outputs, or whole groups of bytes, as a vector of bytes has lanes.
#pragma once

#include "vecta/simd/rowSums.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Where windows lie: the first or the last of them may reach beyond the row, to what counts as 0 and is not read.
enum class At { left, middle, right };

// Sums for the pixels that lie on those of the source, and for those between them.
struct EvenAndOdd
{
    Vecs<uint16_t, 2> even, odd;
};

// sums / 2^shift, below 256, of sums below 2^15: rounded down, or halves up.
template <unsigned shift, bool halvesUp>
RVK_INLINE Vec<uint8_t> meansOf(const Vecs<uint16_t, 2>& sums)
{
    if constexpr (halvesUp)
        return narrowRounded<uint8_t, shift>(bitCast<int16_t>(sums));
    else
        return narrowShifted<shift>(sums);
}

// sums / 256 of sums up to 255 * 256, halves up.
RVK_INLINE Vec<uint8_t> meansOf256(const Vecs<uint16_t, 2>& sums)
{
#if defined(__x86_64__)
    const Vec<uint16_t> half = splat<uint16_t>(128);
    const Vecs<uint16_t, 2> rounded = sums + Vecs<uint16_t, 2>{half, half};
#if RVK_AVX512 // one permutation in place of two shifts, a pack and another permutation
    return unzipOdd(bitCast<uint8_t>(rounded[0]), bitCast<uint8_t>(rounded[1]));
#else
    return narrowShifted<8>(rounded);
#endif
#else
    return narrowRounded<uint8_t, 8>(sums);
#endif
}

// ---- down columns ---------------------------------------------------------------------------------------------------

// Sums of 1 4 6 4 1 rows for every second one, from sums of their windows: of even rows, and `oddRows` times those of
// odd ones. Each output begins where the one before it ends.
#if defined(__x86_64__) // whose products give odd rows their weight for nothing
// The sum of three rows around each odd one, and four times the even row between.
struct Down5
{
    static constexpr int oddRows = 4;
    using Row = Vecs<uint16_t, 2>;
    Row even, aroundOdd;

    RVK_INLINE Down5(Row evenAbove, Row oddAbove, Row middle) : even(middle), aroundOdd(evenAbove + oddAbove + middle)
    {
    }
    RVK_INLINE Row next(Row oddBelow, Row evenBelow)
    {
        const Row aroundBelow = even + evenBelow + oddBelow;
        const Row fourTimes = both(even, [](auto half) RVK_INLINE_LAMBDA { return shiftLeft(half, 2); });
        const Row sum = aroundOdd + aroundBelow + fourTimes;
        even = evenBelow;
        aroundOdd = aroundBelow;
        return sum;
    }
};
#else
// Sums of neighbours, taken four times.
struct Down5
{
    static constexpr int oddRows = 1;
    using Row = Vecs<uint16_t, 2>;
    Row even, two, three;

    RVK_INLINE Down5(Row evenAbove, Row oddAbove, Row middle)
        : even(middle), two(oddAbove + middle), three(evenAbove + oddAbove + two)
    {
    }
    RVK_INLINE Row next(Row oddBelow, Row evenBelow)
    {
        const Row twoHere = even + oddBelow, twoBelow = oddBelow + evenBelow;
        const Row threeHere = two + twoHere, threeBelow = twoHere + twoBelow;
        const Row sum = three + threeHere + (threeHere + threeBelow);
        even = evenBelow;
        two = twoBelow;
        three = threeBelow;
        return sum;
    }
};
#endif

#if defined(__x86_64__)

// ---- every second pixel ---------------------------------------------------------------------------------------------

// The weighted sums of the windows that start at p, p + 2, ..., in this order: as many as a vector of bytes has lanes.
// Reads no further than to the end of the last window.
template <class W, At at>
RVK_INLINE Vecs<SumOf<uint8_t, W>, 2> everySecondSum(const uint8_t* p)
{
    using Sum = SumOf<uint8_t, W>;
    constexpr size_t end = W::count - 1, radius = W::count / 2;
    const Vec<uint8_t> outside = zero<uint8_t>();
    Vecs<Sum, 2> sums;
    unrolled<2>([&](auto half) RVK_INLINE_LAMBDA {
        const uint8_t* first = p + half * kBytes;
        const Vec<uint8_t> last =
            at == At::right && half == 1 ? extract<1>(load(first + end - 2), outside) : load(first + end - 1);
        Vec<Sum> sum = weightedPairs<Sum, 0, W::at(end)>(last);
        unrolled<W::count / 2>([&](auto j) RVK_INLINE_LAMBDA {
            const Vec<uint8_t> two = at == At::left && half == 0 && j == 0
                                         ? extract<kBytes - radius>(outside, load(first + radius))
                                         : load(first + 2 * j);
            sum = sum + weightedPairs<Sum, W::at(2 * j), W::at(2 * j + 1)>(two);
        });
        sums[half] = sum;
    });
    return sums;
}

// Elements k, k + 2, ... from p for each k below 5. Loads across cache lines are what this waits for: there are three.
template <At at>
RVK_INLINE Vecs<float, 5> loadEverySecond5(const float* p)
{
    constexpr size_t n = Vec<float>::lanes;
    const Vec<float> outside = zero<float>();
    if constexpr (at == At::middle) {
        const Vec<float> a = loadOnce(p), b = loadOnce(p + n),
                         c = loadOnce(p + n + 3); // at whose end: 2n, 2n + 1, 2n + 2
        const Vec<float> even = unzipEven(a, b), odd = unzipOdd(a, b);
        return {even, odd, shuffle(even, c, [](size_t i) { return i < n - 1 ? i + 1 : 2 * n - 3; }),
                shuffle(odd, c, [](size_t i) { return i < n - 1 ? i + 1 : 2 * n - 2; }), shuffle(even, c, [](size_t i) {
                    return i < n - 2 ? i + 2 : i == n - 2 ? 2 * n - 3 : 2 * n - 1;
                })};
    } else if constexpr (at == At::left) {
        const Vecs<float, 2> second = load2(p + 2);
        return {extract<n - 1>(outside, second[0]), extract<n - 1>(outside, second[1]), second[0], second[1],
                load2(p + 3)[1]};
    } else {
        const Vecs<float, 2> first = load2(p), second = load2(p + 2);
        return {first[0], first[1], second[0], second[1], extract<1>(second[0], outside)};
    }
}

// ---- three pixels to two --------------------------------------------------------------------------------------------

// What a vector of sums is made of: x y y z of each triple from p on. Those of a vector and of the next take six
// quarters of a vector; the second is loaded from a quarter ahead of its triples, so that nothing behind them is read.
template <bool second>
RVK_INLINE Vec<uint8_t> loadThirds(const uint8_t* p)
{
#if defined(__AVX2__) && !RVK_AVX512
    const Vec<uint8_t> v =
        vec<uint8_t>(_mm256_inserti128_si256(_mm256_castsi128_si256(loadBlock(p)), loadBlock(p + 8), 1));
    return shuffle(v, v, [](size_t i) { return i / 16 * 20 + i % 16 / 4 * 3 + (i % 4 + 1) / 2; });
#else
    const Vec<uint8_t> v = load(second ? p - kBytes / 4 : p);
    return shuffle(v, v, [](size_t i) { return (second ? kBytes / 4 : 0) + i / 4 * 3 + (i % 4 + 1) / 2; });
#endif
}

// x * outer + y * inner and y * inner + z * outer of the triples x y z at p.
template <int outer, int inner>
RVK_INLINE Vecs<uint16_t, 4> thirdSums(const uint8_t* p)
{
    constexpr uint32_t weights = outer | inner << 8 | inner << 16 | outer << 24;
    const auto sums = [](Vec<uint8_t> v)
                          RVK_INLINE_LAMBDA { return bitCast<uint16_t>(dotPairs(v, bitCast<int8_t>(splat(weights)))); };
    constexpr size_t n = kBytes / 4 * 3;
    return {sums(loadThirds<false>(p)), sums(loadThirds<true>(p + n)), sums(loadThirds<false>(p + 2 * n)),
            sums(loadThirds<true>(p + 3 * n))};
}

// And those added to acc.
template <int outer, int inner>
RVK_INLINE Vecs<uint16_t, 4> addThirdSums(const Vecs<uint16_t, 4>& acc, const uint8_t* p)
{
    return acc + thirdSums<outer, inner>(p);
}

template <unsigned shift, bool halvesUp>
RVK_INLINE void storeThirds(uint8_t* p, const Vecs<uint16_t, 4>& v)
{
    store(p, meansOf<shift, halvesUp>({v[0], v[1]}));
    store(p + kBytes, meansOf<shift, halvesUp>({v[2], v[3]}));
}

// ---- one pixel to two -----------------------------------------------------------------------------------------------

// p[0] + 6 * p[1] + p[2] and p[1] + p[2], of the bytes at p and following ones.
template <At at>
RVK_INLINE EvenAndOdd doubledSums(const uint8_t* p)
{
    constexpr size_t n = Vec<uint16_t>::lanes;
    const Vec<uint16_t> outside = zero<uint16_t>();
    EvenAndOdd sums;
    unrolled<2>([&](auto half) RVK_INLINE_LAMBDA {
        const uint8_t* first = p + half * n;
        const Vec<uint16_t> middle = loadWiden<uint16_t>(first + 1);
        const Vec<uint16_t> left =
            at == At::left && half == 0 ? extract<n - 1>(outside, middle) : loadWiden<uint16_t>(first);
        const Vec<uint16_t> right =
            at == At::right && half == 1 ? extract<1>(middle, outside) : loadWiden<uint16_t>(first + 2);
        sums.odd[half] = middle + right;
        sums.even[half] = left + right + middle * splat<uint16_t>(6);
    });
    return sums;
}

// Both by turns; sums become means by a rounded shift.
RVK_INLINE void storeByTurns(uint8_t* p, const EvenAndOdd& v)
{
    unrolled<2>([&](auto half) RVK_INLINE_LAMBDA {
        store(p + half * kBytes, bitCast<uint8_t>(v.even[half] | shiftLeft(v.odd[half], 8)));
    });
}

template <unsigned evenShift, unsigned oddShift>
RVK_INLINE void storeRoundedByTurns(uint8_t* p, const EvenAndOdd& v)
{
    const auto rounded = [](const Vecs<uint16_t, 2>& sums, unsigned count) RVK_INLINE_LAMBDA { // which are below 2^15
        return both(sums, [=](Vec<uint16_t> half) RVK_INLINE_LAMBDA {
            return bitCast<uint16_t>(shiftRightRounded(bitCast<int16_t>(half), count));
        });
    };
    storeByTurns(p, EvenAndOdd{rounded(v.even, evenShift), rounded(v.odd, oddShift)});
}

#else

// ---- every second pixel ---------------------------------------------------------------------------------------------

// Of two windows' elements at once: those at p, p + 2, ... and those beside them.
template <At at, size_t radius, class T>
RVK_INLINE Vecs<T, 2> loadFirstTaps(const T* p)
{
    constexpr size_t n = Vec<T>::lanes;
    if constexpr (at != At::left)
        return load2(p);
    else if constexpr (radius == 1) // the first window begins one element before the row
        return {extract<n - 1>(zero<T>(), load2(p + 1)[1]), load2(p + 1)[0]};
    else
        return {extract<n - 1>(zero<T>(), load2(p + 2)[0]), extract<n - 1>(zero<T>(), load2(p + 2)[1])};
}

template <At at, size_t end, class T>
RVK_INLINE Vec<T> loadLastTaps(const T* p)
{
    if constexpr (at == At::right)
        return extract<1>(load2(p + end - 2)[0], zero<T>());
    else
        return load2(p + end - 1)[1];
}

template <class W, At at>
RVK_INLINE Vecs<SumOf<uint8_t, W>, 2> everySecondSum(const uint8_t* p)
{
    using Sum = SumOf<uint8_t, W>;
    constexpr size_t end = W::count - 1;
    const Vec<uint8_t> last = loadLastTaps<at, end>(p);
    Vecs<uint8_t, 2> taps = loadFirstTaps<at, W::count / 2>(p);
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

// Elements k, k + 2, ... from p for each k below 5.
template <At at>
RVK_INLINE Vecs<float, 5> loadEverySecond5(const float* p)
{
    const Vecs<float, 2> first = loadFirstTaps<at, 2>(p), second = load2(p + 2);
    return {first[0], first[1], second[0], second[1], loadLastTaps<at, 4>(p)};
}

// ---- three pixels to two --------------------------------------------------------------------------------------------

// x * outer + y * inner of the triples x y z at p, then y * inner + z * outer; and those added to acc.
template <int outer, int inner>
RVK_INLINE Vecs<uint16_t, 4> addThirdSums(const Vecs<uint16_t, 4>& acc, const uint8_t* p)
{
    const Vecs<uint8_t, 3> triples = load3(p);
    Vecs<uint16_t, 4> sums;
    unrolled<2>([&](auto side) RVK_INLINE_LAMBDA {
        const Vec<uint8_t> end = triples[2 * side], middle = triples[1];
        const auto half = [](Vec<uint16_t> sum, uint8x8_t a, uint8x8_t b)
                              RVK_INLINE_LAMBDA { return vec(addProduct<inner>(addProduct<outer>(reg(sum), a), b)); };
        sums[2 * side] = half(acc[2 * side], lowHalf(end), lowHalf(middle));
        sums[2 * side + 1] = half(acc[2 * side + 1], highHalf(end), highHalf(middle));
    });
    return sums;
}

template <int outer, int inner>
RVK_INLINE Vecs<uint16_t, 4> thirdSums(const uint8_t* p)
{
    const Vecs<uint8_t, 3> triples = load3(p);
    Vecs<uint16_t, 4> sums;
    unrolled<2>([&](auto side) RVK_INLINE_LAMBDA {
        const Vec<uint8_t> end = triples[2 * side], middle = triples[1];
        const auto half = [](uint8x8_t a, uint8x8_t b)
                              RVK_INLINE_LAMBDA { return vec(addProduct<inner>(product<outer>(a), b)); };
        sums[2 * side] = half(lowHalf(end), lowHalf(middle));
        sums[2 * side + 1] = half(highHalf(end), highHalf(middle));
    });
    return sums;
}

template <unsigned shift, bool halvesUp>
RVK_INLINE void storeThirds(uint8_t* p, const Vecs<uint16_t, 4>& v)
{
    store2(p, Vecs<uint8_t, 2>{meansOf<shift, halvesUp>({v[0], v[1]}), meansOf<shift, halvesUp>({v[2], v[3]})});
}

// ---- one pixel to two -----------------------------------------------------------------------------------------------

// p[0] + 6 * p[1] + p[2] and p[1] + p[2], of the bytes at p and following ones.
template <At at>
RVK_INLINE EvenAndOdd doubledSums(const uint8_t* p)
{
    const Vec<uint8_t> outside = zero<uint8_t>(), middle = load(p + 1);
    const Vec<uint8_t> left = at == At::left ? extract<kBytes - 1>(outside, middle) : load(p);
    const Vec<uint8_t> right = at == At::right ? extract<1>(middle, outside) : load(p + 2);
    const Vecs<uint16_t, 2> ends = addWide(left, right);
    return {{vec(addProduct<6>(reg(ends[0]), lowHalf(middle))), vec(addProduct<6>(reg(ends[1]), highHalf(middle)))},
            addWide(middle, right)};
}

// Both by turns; sums become means by a rounded shift.
RVK_INLINE void storeByTurns(uint8_t* p, const EvenAndOdd& v)
{
    store2(p, Vecs<uint8_t, 2>{narrow(v.even), narrow(v.odd)});
}

template <unsigned evenShift, unsigned oddShift>
RVK_INLINE void storeRoundedByTurns(uint8_t* p, const EvenAndOdd& v)
{
    store2(p, Vecs<uint8_t, 2>{narrowRounded<uint8_t, evenShift>(v.even), narrowRounded<uint8_t, oddShift>(v.odd)});
}

#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA

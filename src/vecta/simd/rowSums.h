// Weighted sums of neighbouring elements of a row, and how they become elements again.
//
// Sums are twice as wide as the elements and come in two vectors, in the order that the instruction set likes best: on
// x86, which adds the products of pairs in one instruction, the sums of even and those of odd outputs; on Arm, of the
// first and of the second half. Arithmetic between sum and narrowing, down columns for instance, does not see the
// order.
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Sums of a step of outputs, in that order.
template <class T>
using Pairs = Vecs<T, 2>;

template <class T, size_t count>
RVK_INLINE Vecs<T, count> operator+(Vecs<T, count> a, const Vecs<T, count>& b)
{
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { a[i] = a[i] + b[i]; });
    return a;
}

template <class T, size_t count>
RVK_INLINE Vecs<T, count> operator-(Vecs<T, count> a, const Vecs<T, count>& b)
{
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { a[i] = a[i] - b[i]; });
    return a;
}

// The weights of a window of a row; an odd number of them.
template <int... weights>
struct Weights
{
    static constexpr size_t count = sizeof...(weights);
    static constexpr bool allOne = ((weights == 1) && ...);
    static constexpr bool anyNegative = ((weights < 0) || ...);
    static_assert(count % 2 == 1);

    static constexpr int at(size_t i) // 0 outside
    {
        constexpr int list[] = {weights...};
        return i < count ? list[i] : 0;
    }
};

// Bytes have unsigned sums unless there are negative weights. Sums wrap.
template <class T, bool anyNegative>
struct SumType;
template <bool anyNegative>
struct SumType<int16_t, anyNegative>
{
    using Type = int32_t;
};
template <>
struct SumType<uint8_t, true>
{
    using Type = int16_t;
};
template <>
struct SumType<uint8_t, false>
{
    using Type = uint16_t;
};
template <class T, class W>
using SumOf = typename SumType<T, W::anyNegative>::Type;

#if defined(__x86_64__)

// a[2i] * even + a[2i + 1] * odd. Such a sum of bytes must fit 16 bits with a sign.
template <class Sum, int even, int odd>
RVK_INLINE Vec<Sum> weightedPairs(Vec<uint8_t> a)
{
    static_assert(255 * ((even < 0 ? -even : even) + (odd < 0 ? -odd : odd)) <= 32767);
    if constexpr (even == 1 && odd == 0)
        return bitCast<Sum>(a) & splat<Sum>(255);
    else if constexpr (even == 0 && odd == 1)
        return bitCast<Sum>(shiftRight(bitCast<uint16_t>(a), 8));
    else
        return vec<Sum>(
            RVK_MM(maddubs_epi16)(reg(a), reg(splat(static_cast<int16_t>((odd & 255) << 8 | (even & 255))))));
}

template <class Sum, int even, int odd>
RVK_INLINE Vec<Sum> weightedPairs(Vec<int16_t> a)
{
    const uint32_t both = static_cast<uint32_t>(odd & 65535) << 16 | static_cast<uint32_t>(even & 65535);
    return dotPairs(a, bitCast<int16_t>(splat(both)));
}

// Loads once for two uses: g++ would rather load again than spend a register, but loads across cache lines are what row
// sums wait for.
template <class T>
RVK_INLINE Vec<T> loadOnce(const T* p)
{
    return anyVector(load(p));
}

template <class W, class T>
RVK_INLINE Pairs<SumOf<T, W>> rowSumOfPairs(const T* p)
{
    using Sum = SumOf<T, W>;
    Pairs<Sum> sum = {};
    unrolled<W::count / 2 + 1>([&](auto j) RVK_INLINE_LAMBDA {
        const Vec<T> v = loadOnce(p + 2 * j);
        const Vec<Sum> even = weightedPairs<Sum, W::at(2 * j), W::at(2 * j + 1)>(v);
        const Vec<Sum> odd = weightedPairs<Sum, W::at(2 * j - 1), W::at(2 * j)>(v);
        sum = j == 0 ? Pairs<Sum>{{even, odd}} : sum + Pairs<Sum>{{even, odd}};
    });
    return sum;
}

// Even and odd outputs share all pairs but their first and last.
template <class W, size_t... j>
RVK_INLINE Pairs<uint16_t> boxSumOfPairs(const uint8_t* p, Indices<j...>)
{
    const Vec<uint8_t> first = loadOnce(p), last = loadOnce(p + W::count - 1);
    const Vec<uint16_t> common = (zero<uint16_t>() + ... + weightedPairs<uint16_t, 1, 1>(load(p + 2 * j + 2)));
    return {{weightedPairs<uint16_t, 1, 1>(first) + weightedPairs<uint16_t, 1, 0>(last) + common,
             weightedPairs<uint16_t, 0, 1>(first) + weightedPairs<uint16_t, 1, 1>(last) + common}};
}

// The weighted sums of the windows that start at p, p + 1, ...: as many as a vector of T has lanes. Reads no further
// than to the end of the last window.
template <class W, class T>
RVK_INLINE Pairs<SumOf<T, W>> rowSum(const T* p)
{
    if constexpr (W::allOne && sizeof(T) == 1)
        return boxSumOfPairs<W>(p, typename CountTo<W::count / 2 - 1>::Type{});
    else
        return rowSumOfPairs<W>(p);
}

// Sums in the order of the outputs.
template <class T>
RVK_INLINE Vecs<T, 2> orderPairs(Pairs<T> v)
{
    return zip(v[0], v[1]);
}

// The lower halves of the sums in the order of the outputs.
RVK_INLINE Vec<int8_t> lowHalves(Pairs<int16_t> v)
{
    return bitCast<int8_t>((v[0] & splat<int16_t>(255)) | shiftLeft(v[1], 8));
}

// Sums saturated to elements, in the order of the outputs; sums for bytes may not be negative.
RVK_INLINE Vec<uint8_t> narrowPairsSat(Pairs<int16_t> v)
{
    const Vec<int16_t> top = splat<int16_t>(255);
    return bitCast<uint8_t>(min(v[0], top) | shiftLeft(min(v[1], top), 8));
}

RVK_INLINE Vec<int16_t> narrowPairsSat(Pairs<int32_t> v)
{
    return narrowSatInLanes<int16_t>(zipInLanes(v[0], v[1]));
}

// Bytes, and differences a - b of theirs, in the order of sums.
RVK_INLINE Pairs<int16_t> widenToPairs(Vec<uint8_t> v)
{
    return {bitCast<int16_t>(v) & splat<int16_t>(255), bitCast<int16_t>(shiftRight(bitCast<uint16_t>(v), 8))};
}
RVK_INLINE Pairs<int16_t> subtractPairs(Vec<uint8_t> a, Vec<uint8_t> b)
{
    return widenToPairs(a) - widenToPairs(b);
}

// What holds for the sums, as bits of the outputs in their order.
RVK_INLINE Mask<int8_t> narrowPairs(const Masks<int16_t, 2>& m)
{
    const Vec<uint16_t> low = splat<uint16_t>(255);
    const Vec<uint16_t> bytes =
        (bitCast<uint16_t>(toVec(m[0])) & low) | (bitCast<uint16_t>(toVec(m[1])) & ~low); // no blend: clang 14 permutes
#if defined(__AVX512BW__)
    return {_mm512_movepi8_mask(reg(bytes))};
#else
    return {bitCast<uint8_t>(bytes)};
#endif
}

// The sums, shifted right, as elements in the order of the outputs; the shifted sums must fit the element.
template <unsigned shift>
RVK_INLINE Vec<uint8_t> narrowPairs(Pairs<uint16_t> v)
{
    static_assert(shift <= 8);
    const Vec<uint16_t> odd = shiftLeft(v[1], 8 - shift);
    return bitCast<uint8_t>(shiftRight(v[0], shift) | (shift ? odd & splat<uint16_t>(0xff00) : odd));
}

template <unsigned shift>
RVK_INLINE Vec<int16_t> narrowPairs(Pairs<int32_t> v)
{
    const Vec<uint32_t> low = bitCast<uint32_t>(v[0]), high = bitCast<uint32_t>(v[1]);
    Vec<uint32_t> shifted = shiftRight(low, shift);
    if constexpr (kBytes == 64 && shift == 16)
        shifted = anyVector(shifted); // or clang permutes words, which takes longer
    const Vec<uint32_t> even = shifted & splat<uint32_t>(0xffff);
    const Vec<uint32_t> odd = shift <= 16 ? shiftLeft(high, 16 - shift) : shiftRight(high, shift - 16);
    return bitCast<int16_t>(even | (odd & splat<uint32_t>(0xffff0000)));
}

#else

template <int w>
RVK_INLINE uint16x8_t addProduct(uint16x8_t sum, uint8x8_t v)
{
    if constexpr (w == 0)
        return sum;
    else if constexpr (w == 1)
        return vaddw_u8(sum, v);
    else if constexpr (w == -1)
        return vsubw_u8(sum, v);
    else if constexpr (w > 0)
        return vmlal_u8(sum, v, vdup_n_u8(w));
    else
        return vmlsl_u8(sum, v, vdup_n_u8(-w));
}

template <int w>
RVK_INLINE int32x4_t addProduct(int32x4_t sum, int16x4_t v)
{
    if constexpr (w == 0)
        return sum;
    else if constexpr (w == 1)
        return vaddw_s16(sum, v);
    else if constexpr (w == -1)
        return vsubw_s16(sum, v);
    else
        return vmlal_n_s16(sum, v, w);
}

// The product with weight k of the window. Weights of 16 bits lie four in a register, of which one lane is used.
template <class W, size_t k>
RVK_INLINE uint16x8_t addTap(uint16x8_t sum, uint8x8_t v)
{
    return addProduct<W::at(k)>(sum, v);
}

template <class W, size_t k>
RVK_INLINE int32x4_t addTap(int32x4_t sum, int16x4_t v)
{
    constexpr int w = W::at(k);
    if constexpr (w >= -1 && w <= 1) {
        return addProduct<w>(sum, v);
    } else {
        constexpr size_t first = k / 4 * 4;
        static constexpr int16_t four[] = {W::at(first), W::at(first + 1), W::at(first + 2), W::at(first + 3)};
        return vmlal_lane_s16(sum, v, vld1_s16(four), k % 4);
    }
}

template <int w>
RVK_INLINE uint16x8_t product(uint8x8_t v)
{
    return w == 1 ? vmovl_u8(v) : vmull_u8(v, vdup_n_u8(w));
}
template <int w>
RVK_INLINE int32x4_t product(int16x4_t v)
{
    return w == 1 ? vmovl_s16(v) : vmull_n_s16(v, w);
}

RVK_INLINE uint16x8_t sumOf(uint8x8_t a, uint8x8_t b)
{
    return vaddl_u8(a, b);
}
RVK_INLINE int32x4_t sumOf(int16x4_t a, int16x4_t b)
{
    return vaddl_s16(a, b);
}
RVK_INLINE uint16x8_t differenceOf(uint8x8_t a, uint8x8_t b)
{
    return vsubl_u8(a, b);
}
RVK_INLINE int32x4_t differenceOf(int16x4_t a, int16x4_t b)
{
    return vsubl_s16(a, b);
}

// The products of the first and the last element of the windows, added.
template <int first, int last, class Half>
RVK_INLINE auto productsOfEnds(Half a, Half b)
{
    static_assert(first > 0 || last > 0);
    if constexpr (first == 1 && last == 1)
        return sumOf(a, b);
    else if constexpr (first == -1 && last == 1)
        return differenceOf(b, a);
    else if constexpr (first == 1 && last == -1)
        return differenceOf(a, b);
    else if constexpr (first > 0)
        return addProduct<last>(product<first>(a), b);
    else
        return addProduct<first>(product<last>(b), a);
}

template <class W, class T>
RVK_INLINE Pairs<SumOf<T, W>> rowSum(const T* p)
{
    using Sum = SumOf<T, W>;
    constexpr size_t end = W::count - 1;
    const Vec<T> first = load(p), last = load(p + end);
    auto low = productsOfEnds<W::at(0), W::at(end)>(lowHalf(first), lowHalf(last));
    auto high = productsOfEnds<W::at(0), W::at(end)>(highHalf(first), highHalf(last));
    unrolled<end - 1>([&](auto j) RVK_INLINE_LAMBDA {
        constexpr size_t k = j + 1;
        if constexpr (W::at(k) != 0) {
            const Vec<T> v = load(p + k);
            low = addTap<W, k>(low, lowHalf(v));
            high = addTap<W, k>(high, highHalf(v));
        }
    });
    return {{bitCast<Sum>(vec(low)), bitCast<Sum>(vec(high))}};
}

template <class T>
RVK_INLINE Vecs<T, 2> orderPairs(Pairs<T> v)
{
    return v;
}

RVK_INLINE Vec<int8_t> lowHalves(Pairs<int16_t> v)
{
    return narrow(v);
}

RVK_INLINE Vec<uint8_t> narrowPairsSat(Pairs<int16_t> v)
{
    return narrowSat<uint8_t>(v);
}

RVK_INLINE Vec<int16_t> narrowPairsSat(Pairs<int32_t> v)
{
    return narrowSat<int16_t>(v);
}

RVK_INLINE Pairs<int16_t> widenToPairs(Vec<uint8_t> v)
{
    return bitCast<int16_t>(widen(v));
}
RVK_INLINE Pairs<int16_t> subtractPairs(Vec<uint8_t> a, Vec<uint8_t> b)
{
    return subtractWide(a, b);
}

RVK_INLINE Mask<int8_t> narrowPairs(const Masks<int16_t, 2>& m)
{
    return narrow(m[0], m[1]);
}

template <unsigned shift>
RVK_INLINE Vec<uint8_t> narrowPairs(Pairs<uint16_t> v)
{
    if constexpr (shift == 0)
        return narrow(v);
    else
        return join(vshrn_n_u16(reg(v[0]), shift), vshrn_n_u16(reg(v[1]), shift));
}

template <unsigned shift>
RVK_INLINE Vec<int16_t> narrowPairs(Pairs<int32_t> v)
{
    if constexpr (shift == 0)
        return narrow(v);
    else if constexpr (shift > 16)
        return narrowPairs<16>(Pairs<int32_t>{{shiftRight(v[0], shift - 16), shiftRight(v[1], shift - 16)}});
    else
        return join(vshrn_n_s32(reg(v[0]), shift), vshrn_n_s32(reg(v[1]), shift));
}

#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA

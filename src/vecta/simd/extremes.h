// The least and the largest of many elements, lane by lane.
//
//     Extremes<T> e = {the least so far, the largest so far, as keys in all lanes};
//     e = takeAll(e, p, n);
//
// Elements are compared by keys, as a rule themselves. Floats that are no numbers never become an extreme.
#pragma once

#include "vecta/simd/rows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

template <class T>
struct Order
{
    using Key = T;
    static RVK_INLINE Vec<T> minKeys(Vec<T> v) { return v; }
    static RVK_INLINE Vec<T> maxKeys(Vec<T> v) { return v; }
};

// For two uses: g++ for x86 would load the vector for each of them, and loads are what the searches wait for.
template <class T>
RVK_INLINE Vec<T> loadedOnce(Vec<T> v)
{
#if defined(__x86_64__)
    __asm__("" : "+v"(v.raw));
#endif
    return v;
}

template <class T>
struct Extremes
{
    using Key = typename Order<T>::Key;
    Vec<Key> low, high;

    RVK_INLINE void take(Vec<T> v)
    {
        v = loadedOnce(v);
        low = min(low, Order<T>::minKeys(v));
        high = max(high, Order<T>::maxKeys(v));
    }
    RVK_INLINE void join(const Extremes& e)
    {
        low = min(low, e.low);
        high = max(high, e.high);
    }
};

// The same in fewer instructions where `exists`, but good for nothing when some element was no number: hasFailed().
// Starts with the first vector.
template <class T>
struct QuickExtremes
{
    static constexpr bool exists = false;
};

#if defined(__aarch64__)

// The instructions for floats give any not-a-number on.
template <>
struct QuickExtremes<float>
{
    static constexpr bool exists = true;
    Vec<float> low, high;

    explicit RVK_INLINE QuickExtremes(Vec<float> first) : low(first), high(first) {}
    RVK_INLINE void take(Vec<float> v)
    {
        low = vec(vminq_f32(reg(low), reg(v)));
        high = vec(vmaxq_f32(reg(high), reg(v)));
    }
    RVK_INLINE void join(const QuickExtremes& e)
    {
        take(e.low);
        high = vec(vmaxq_f32(reg(high), reg(e.high)));
    }
    RVK_INLINE bool hasFailed() const { return !all(equal(low, low)); }
    RVK_INLINE Extremes<float> result() const { return {low, high}; }
};

#elif defined(__ARM_NEON)

// The float comparisons of this vector unit take subnormal numbers for zero, so floats are compared by their order
// keys. What is not a number lies beyond both infinities there; an offset that wraps it around makes it lose every
// comparison.
template <>
struct Order<float>
{
    using Key = int32_t;
    static RVK_INLINE Vec<Key> minKeys(Vec<float> v) { return orderKeys(v) - splat<Key>(0x00800000); }
    static RVK_INLINE Vec<Key> maxKeys(Vec<float> v) { return orderKeys(v) + splat<Key>(0x007fffff); }
};

// Without keys for every element. As unsigned numbers the bits of floats have their order for numbers that are not
// negative, and above these the reverse order for negative ones; as signed numbers, the reverse order below. So each
// lane's extremes are among these three: the largest unsigned, the least unsigned and the largest signed.
template <>
struct QuickExtremes<float>
{
    static constexpr bool exists = true;
    Vec<uint32_t> least, largest;
    Vec<int32_t> largestSigned;

    explicit RVK_INLINE QuickExtremes(Vec<float> first)
        : least(bitCast<uint32_t>(first)), largest(least), largestSigned(bitCast<int32_t>(first))
    {
    }
    RVK_INLINE void take(Vec<float> v)
    {
        least = min(least, bitCast<uint32_t>(v));
        largest = max(largest, bitCast<uint32_t>(v));
        largestSigned = max(largestSigned, bitCast<int32_t>(v));
    }
    RVK_INLINE void join(const QuickExtremes& e)
    {
        least = min(least, e.least);
        largest = max(largest, e.largest);
        largestSigned = max(largestSigned, e.largestSigned);
    }
    RVK_INLINE bool hasFailed() const
    {
        return any(greater(largest, splat(0xff800000u))) || any(greater(largestSigned, splat(0x7f800000)));
    }
    RVK_INLINE Extremes<float> result() const
    {
        const Vec<float> other = bitCast<float>(least);
        Extremes<float> e = {Order<float>::minKeys(other), Order<float>::maxKeys(other)};
        e.take(bitCast<float>(largest));
        e.take(bitCast<float>(largestSigned));
        return e;
    }
};

#endif

// The first n elements, n <= lanes; further lanes repeat the first element.
template <class T>
RVK_INLINE Vec<T> loadRepeating(const T* p, size_t n)
{
    Vec<T> v = splat(*p);
    __builtin_memcpy(&v, p, n * sizeof(T));
    return v;
}

// What n elements, n > 0, make of the extremes so far. Two accumulators, because a step of one waits for the one
// before.
template <class Accumulator, class T>
RVK_INLINE Accumulator takeAll(Accumulator even, const T* p, size_t n)
{
    constexpr size_t lanes = Vec<T>::lanes;
    if (n < lanes) {
        even.take(loadRepeating(p, n));
        return even;
    }
    const T* const last = p + n - lanes;
    if (n < 4 * lanes) {
        for (; p < last; p += lanes)
            even.take(load(p));
        even.take(load(last));
        return even;
    }
    Accumulator odd = even;
    if (n % (4 * lanes) != 0) // what the fours leave over
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
            even.take(load(last - 2 * i * lanes));
            odd.take(load(last - (2 * i + 1) * lanes));
        });
    size_t fours = n / (4 * lanes);
    do {
        unrolled<2>([&](auto) RVK_INLINE_LAMBDA {
            const Pair<Vec<T>> two = loadTwo(p);
            even.take(two.first);
            odd.take(two.second);
        });
    } while (--fours > 0);
    even.join(odd);
    return even;
}

// The same by the quickest way.
template <class T>
RVK_INLINE Extremes<T> extremesOf(Extremes<T> soFar, const T* p, size_t n)
{
    if constexpr (QuickExtremes<T>::exists) {
        const auto quick = takeAll(QuickExtremes<T>(splat(*p)), p, n);
        if (!quick.hasFailed()) {
            soFar.join(quick.result());
            return soFar;
        }
    }
    return takeAll(soFar, p, n);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

// Vector implementations of the searches for the smallest and largest element.
//
// The image is walked in chunks in row-major order. A chunk costs a minimum and a maximum per vector; only one that
// improves on all chunks before it is remembered, and the places are looked up at the end, in the two chunks
// remembered.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Elements are compared by keys, as a rule themselves.
template <class T>
struct Order
{
    using Key = T;
    static RVK_INLINE Vec<T> minKeys(Vec<T> v) { return v; }
    static RVK_INLINE Vec<T> maxKeys(Vec<T> v) { return v; }
};

#if defined(__ARM_NEON) && !defined(__aarch64__)
// The float comparisons of this vector unit take subnormal numbers for zero, so floats become two's complement numbers
// of the same order, both zeros 0. What is not a number lies beyond both infinities, at either end; an offset that
// wraps it around makes it lose every comparison.
template <>
struct Order<float>
{
    using Key = int32_t;
    static RVK_INLINE Vec<Key> keys(Vec<float> v)
    {
        const Vec<Key> bits = bitCast<Key>(v);
        const Vec<Key> sign = shiftRight(bits, 31);
        return ((bits & splat<Key>(0x7fffffff)) ^ sign) - sign;
    }
    static RVK_INLINE Vec<Key> minKeys(Vec<float> v) { return keys(v) - splat<Key>(0x00800000); }
    static RVK_INLINE Vec<Key> maxKeys(Vec<float> v) { return keys(v) + splat<Key>(0x007fffff); }
};
#endif

template <class T>
RVK_INLINE bool isNumber(T x)
{
    if constexpr (isSame<T, float>)
        return x == x;
    else
        return true;
}

// The extreme keys so far, lane by lane. A lane starts with a number; the floats that are none never replace it.
template <class Key>
struct Extremes
{
    Vec<Key> low, high;

    template <class T>
    RVK_INLINE void take(Vec<T> v)
    {
        low = min(low, Order<T>::minKeys(v));
        high = max(high, Order<T>::maxKeys(v));
    }
};

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
template <class T, class Key>
RVK_INLINE Extremes<Key> extremesOf(const T* p, size_t n, Extremes<Key> even)
{
    constexpr size_t lanes = Vec<T>::lanes;
    if (n < 2 * lanes) {
        even.take(n < lanes ? loadRepeating(p, n) : load(p));
        if (n > lanes)
            even.take(load(p + n - lanes));
        return even;
    }
    Extremes<Key> odd = even;
    even.take(load(p + n - 2 * lanes)); // with what the pairs leave over
    odd.take(load(p + n - lanes));
    size_t pairs = n / (2 * lanes);
    do {
        const Pair<Vec<T>> two = loadTwo(p);
        even.take(two.first);
        odd.take(two.second);
    } while (--pairs > 0);
    return {min(even.low, odd.low), max(even.high, odd.high)};
}

// The index of the first of n elements for which the lanes of `wanted(vector)` are true; there is one.
template <class T, class Wanted>
RVK_INLINE size_t findFirst(const T* p, size_t n, Wanted wanted)
{
    constexpr size_t lanes = Vec<T>::lanes;
    if (n < lanes)
        return firstTrue(wanted(loadRepeating(p, n)));
    for (size_t i = 0;; i += lanes) {
        if (i + lanes > n)
            i = n - lanes;
        const auto found = wanted(load(p + i));
        if (any(found))
            return i + firstTrue(found);
    }
}

// The best key so far, in all lanes, and the chunk where it stands first.
template <class Key>
struct Best
{
    Vec<Key> key;
    size_t x = 0, y = 0;
};

template <class T>
RVK_INLINE void minMaxLoc(const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, T* minVal, T* maxVal,
                          uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX, uint32_t* maxLocY)
{
    using Key = typename Order<T>::Key;
    constexpr size_t chunk = 4096 / sizeof(T);
    const Plane<const T> image = {src, srcStride};
    size_t width = srcWidth, height = srcHeight;
    if (image.packed(width)) {
        width *= height;
        height = 1;
    }
    Best<Key> smallest = {Order<T>::minKeys(splat(*src))};
    Best<Key> largest = {Order<T>::maxKeys(splat(*src))};
    if (isNumber(*src)) {
        for (size_t y = 0; y < height; ++y) {
            for (size_t x = 0; x < width; x += chunk) {
                const size_t n = least(chunk, width - x);
                const Extremes<Key> e = extremesOf(image.row(y) + x, n, Extremes<Key>{smallest.key, largest.key});
                if (any(less(e.low, smallest.key)))
                    smallest = {splat(reduceMin(e.low)), x, y};
                if (any(greater(e.high, largest.key)))
                    largest = {splat(reduceMax(e.high)), x, y};
            }
        }
        smallest.x += findFirst(image.row(smallest.y) + smallest.x, width - smallest.x,
                                [&](Vec<T> v) RVK_INLINE_LAMBDA { return equal(Order<T>::minKeys(v), smallest.key); });
        largest.x += findFirst(image.row(largest.y) + largest.x, width - largest.x,
                               [&](Vec<T> v) RVK_INLINE_LAMBDA { return equal(Order<T>::maxKeys(v), largest.key); });
    }
    const T minimum = image.row(smallest.y)[smallest.x];
    const T maximum = image.row(largest.y)[largest.x];
    *minVal = minimum;
    *maxVal = maximum;
    *minLocX = static_cast<uint32_t>(smallest.x % srcWidth);
    *minLocY = static_cast<uint32_t>(smallest.y + smallest.x / srcWidth);
    *maxLocX = static_cast<uint32_t>(largest.x % srcWidth);
    *maxLocY = static_cast<uint32_t>(largest.y + largest.x / srcWidth);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikMinMaxForms.h"

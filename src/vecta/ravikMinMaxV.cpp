// Vector implementations of the searches for the smallest and largest element.
//
// The image is walked in chunks in row-major order. A chunk costs a minimum and a maximum per vector; only one that
// improves on all chunks before it is remembered, and the places are looked up at the end, in the two chunks
// remembered.
#include "vecta/simd/extremes.h"
#include "vecta/vecta.h"

#include <ravik/minmax.h>

namespace rvk::vecta::RVK_ISA {
namespace {

template <class T>
RVK_INLINE bool isNumber(T x)
{
    if constexpr (isSame<T, float>)
        return x == x;
    else
        return true;
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
                const Extremes<T> e = extremesOf(Extremes<T>{smallest.key, largest.key}, image.row(y) + x, n);
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

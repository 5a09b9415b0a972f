// Vector implementations of the dot products.
#include "vecta/simd/simd.h"
#include "vecta/vecta.h"

#include <ravik/dotproduct.h>

namespace rvk::vecta::RVK_ISA {
namespace {

template <class T>
using Dot = Wider<Wider<T>>;

// sum = add(sum, p) for the vectors p of n elements at `p`; the last one may be partial.
template <uint32_t n, class T, class Sum, class Add>
RVK_INLINE Sum forEachVector(Sum sum, Add add)
{
    constexpr size_t lanes = Vec<T>::lanes, whole = n / lanes;
    unrolled<whole>([&](auto i) RVK_INLINE_LAMBDA {
        sum = add(sum, [=](const T* p) RVK_INLINE_LAMBDA { return load(p + i * lanes); });
    });
    if constexpr (n % lanes != 0)
        sum = add(sum, [](const T* p) RVK_INLINE_LAMBDA { return loadPartial(p + whole * lanes, n % lanes); });
    return sum;
}

// What the products with `a` have in common, whatever the other factors: their sums begin with it.
template <uint32_t n, class T>
RVK_INLINE Vec<Dot<T>> startOfDots(const T* a)
{
    return restOfDot(forEachVector<n, T>(
        zero<Dot<T>>(), [&](auto sum, auto take) RVK_INLINE_LAMBDA { return addToRestOfDot(sum, take(a)); }));
}

// The sum of the products of n elements, spread over lanes.
template <uint32_t n, class T>
RVK_INLINE Vec<Dot<T>> dotLanes(Vec<Dot<T>> start, const T* a, const T* b)
{
    return forEachVector<n, T>(start, [&](auto sum, auto take)
                                          RVK_INLINE_LAMBDA { return addPartOfDot(sum, take(a), take(b)); });
}

template <uint32_t n, class T>
RVK_INLINE Dot<T> dot(const T* a, const T* b)
{
    return reduceAdd(dotLanes<n>(startOfDots<n>(a), a, b));
}

template <uint32_t n, class T>
RVK_INLINE void dotFour(const T* a, const T* const (&candidates)[4], Dot<T>* dots)
{
    const Vec<Dot<T>> start = startOfDots<n>(a);
    Vecs<Dot<T>, 4> sums;
    unrolled<4>([&](auto k) RVK_INLINE_LAMBDA { sums[k] = dotLanes<n>(start, a, candidates[k]); });
    storeSums(dots, sums);
}

template <class T>
struct DotSum
{
    Vec<Dot<T>> part = {}, rest = {};

    RVK_INLINE void add(Vec<T> a, Vec<T> b)
    {
        part = addPartOfDot(part, a, b);
        rest = addToRestOfDot(rest, a);
    }
    RVK_INLINE Vec<Dot<T>> lanes() const { return part + restOfDot(rest); }
};

// Four sums, since each addition waits for the one before it.
template <class T>
RVK_INLINE Dot<T> dotOfLength(const T* a, const T* b, size_t length)
{
    constexpr size_t lanes = Vec<T>::lanes, step = 4 * lanes;
    DotSum<T> sums[4];
    for (; length >= step; length -= step) {
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { sums[i].add(load(a + i * lanes), load(b + i * lanes)); });
        a += step;
        b += step;
    }
    unrolled<3>([&](auto i) RVK_INLINE_LAMBDA {
        if (length >= lanes) {
            sums[i].add(load(a), load(b));
            length -= lanes;
            a += lanes;
            b += lanes;
        }
    });
    if (length)
        sums[3].add(loadPartial(a, length), loadPartial(b, length));
    return reduceAdd((sums[0].lanes() + sums[1].lanes()) + (sums[2].lanes() + sums[3].lanes()));
}

} // namespace

int32_t rvkDotProducts8V(const int8_t* a, const int8_t* b, uint32_t length)
{
    return dotOfLength(a, b, length);
}

uint32_t rvkDotProductu8V(const uint8_t* a, const uint8_t* b, uint32_t length)
{
    return dotOfLength(a, b, length);
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikDotProductForms.h"

// Vector implementations of the dot products.
#include "vecta/simd/rows.h"
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

// The sum of the lanes, in halves.
RVK_INLINE float sumOfLanes(Vec<float> v)
{
    const auto add = [](Vec<float> a, Vec<float> b) RVK_INLINE_LAMBDA { return a + b; };
    return reduceFrom<Vec<float>::lanes / 2>(v, add);
}

// ---- blocks ---------------------------------------------------------------------------------------------------------

template <class T>
struct SumOf;
template <>
struct SumOf<uint8_t>
{
    using Type = uint32_t;
};
template <>
struct SumOf<float>
{
    using Type = float;
};

// What is added to the sums of as many columns as a vector of T has, in each row.
RVK_INLINE Vecs<uint32_t, 4> addProducts(const Vecs<uint32_t, 4>& sums, Vec<uint8_t> a, Vec<uint8_t> b)
{
    const Vecs<uint16_t, 2> products = multiplyWide(a, b);
    const Vecs<uint32_t, 2> low = widen(products[0]), high = widen(products[1]);
    return {{sums[0] + low[0], sums[1] + low[1], sums[2] + high[0], sums[3] + high[1]}};
}

RVK_INLINE Vecs<float, 1> addProducts(const Vecs<float, 1>& sums, Vec<float> a, Vec<float> b)
{
    return {{sums[0] + a * b}};
}

// Columns are summed as many at a time as lie in this many vectors: their sums stay in the first-level cache.
constexpr size_t kVectorsOfSums = 16;

// sums[i] of the products in rows `top` to `bottom` of column left + i, `columns` of them, and what comes after them in
// the last vector.
template <class T, class Sum>
RVK_NOINLINE void sumColumns(Plane<const T> a, Plane<const T> b, size_t left, size_t columns, size_t top, size_t bottom,
                             Sum* sums)
{
    constexpr size_t lanes = Vec<T>::lanes;
    const auto sumVector = [&](size_t x, auto take) RVK_INLINE_LAMBDA {
        const T* p = a.row(top) + left + x;
        const T* q = b.row(top) + left + x;
        Vecs<Sum, sizeof(Sum) / sizeof(T)> vector = {};
        for (size_t rows = bottom - top; rows; --rows, p += a.stride / sizeof(T), q += b.stride / sizeof(T))
            vector = addProducts(vector, take(p), take(q));
        store(sums + x, vector);
    };
    size_t x = 0;
    for (; x + lanes <= columns; x += lanes)
        sumVector(x, [](const T* p) RVK_INLINE_LAMBDA { return load(p); });
    if (x < columns)
        sumVector(x, [=](const T* p) RVK_INLINE_LAMBDA { return loadPartial(p, columns - x); });
}

// The sums of blocks of so few columns, from left to right.
template <size_t blockWidth, class Sum>
RVK_INLINE void sumNarrowBlocks(const Sum* sums, size_t columns, Sum* out)
{
    constexpr size_t lanes = Vec<Sum>::lanes;
    for (; columns >= blockWidth * lanes; columns -= blockWidth * lanes, sums += blockWidth * lanes, out += lanes) {
        const Vecs<Sum, blockWidth> v = loadInterleaved<blockWidth>(sums);
        Vec<Sum> sum = v[0];
        unrolled<blockWidth - 1>([&](auto i) RVK_INLINE_LAMBDA { sum = sum + v[i + 1]; });
        store(out, sum);
    }
    while (columns) {
        Sum sum = 0;
        for (size_t end = columns - least(columns, blockWidth); columns > end; --columns)
            sum += *sums++;
        *out++ = sum;
    }
}

// Columns are summed by as many as make whole blocks of up to four.
template <size_t blockWidth, class Sum, class T>
RVK_INLINE void dotNarrowBlocks(size_t width, size_t top, size_t bottom, Plane<const T> a, Plane<const T> b, Sum* out)
{
    constexpr size_t most = kVectorsOfSums / blockWidth * blockWidth * Vec<T>::lanes;
    Sum sums[most];
    for (size_t left = 0, columns; left < width; left += columns, out += most / blockWidth) {
        columns = least(most, width - left);
        sumColumns(a, b, left, columns, top, bottom, sums);
        sumNarrowBlocks<blockWidth>(sums, columns, out);
    }
}

template <class Sum, class T>
RVK_INLINE void dotBlocks(size_t width, size_t top, size_t bottom, Plane<const T> a, Plane<const T> b,
                          size_t blockWidth, Sum* out)
{
    constexpr size_t most = kVectorsOfSums * Vec<T>::lanes;
    Sum sums[most];
    Sum sum = 0;
    size_t missing = blockWidth; // columns of the block
    for (size_t left = 0; left < width; left += most) {
        const size_t columns = least(most, width - left);
        sumColumns(a, b, left, columns, top, bottom, sums);
        for (size_t x = 0; x < columns;) {
            const size_t end = x + least(missing, columns - x);
            missing -= end - x;
            for (; x < end; ++x)
                sum += sums[x];
            if (missing == 0) {
                *out++ = sum;
                sum = 0;
                missing = blockWidth;
            }
        }
    }
    if (missing != blockWidth)
        *out = sum;
}

template <class Sum, class T>
RVK_INLINE rvkStatus dotEachBlock(size_t width, size_t height, Plane<const T> a, Plane<const T> b, size_t blockWidth,
                                  size_t blockHeight, Plane<Sum> dst)
{
    for (size_t top = 0; top < height; top += blockHeight) {
        const size_t bottom = top + least(blockHeight, height - top);
        Sum* const out = dst.row(top / blockHeight);
        switch (blockWidth) {
        case 2:
            dotNarrowBlocks<2>(width, top, bottom, a, b, out);
            break;
        case 3:
            dotNarrowBlocks<3>(width, top, bottom, a, b, out);
            break;
        case 4:
            dotNarrowBlocks<4>(width, top, bottom, a, b, out);
            break;
        default:
            dotBlocks(width, top, bottom, a, b, blockWidth, out);
        }
    }
    return RAVIK_SUCCESS;
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

// Four sums, for the same reason.
float32_t rvkDotProductf32V(const float32_t* a, const float32_t* b, uint32_t length)
{
    constexpr size_t lanes = Vec<float>::lanes, step = 4 * lanes;
    Vecs<float, 4> sums = {};
    size_t left = length;
    for (; left >= step; left -= step) {
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
            sums[i] = multiplyAdd(load(a + i * lanes), load(b + i * lanes), sums[i]);
        });
        a += step;
        b += step;
    }
    unrolled<3>([&](auto i) RVK_INLINE_LAMBDA {
        if (left >= lanes) {
            sums[i] = multiplyAdd(load(a), load(b), sums[i]);
            left -= lanes;
            a += lanes;
            b += lanes;
        }
    });
    if (left)
        sums[3] = multiplyAdd(loadPartial(a, left), loadPartial(b, left), sums[3]);
    return sumOfLanes((sums[0] + sums[1]) + (sums[2] + sums[3]));
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikDotProductForms.h"

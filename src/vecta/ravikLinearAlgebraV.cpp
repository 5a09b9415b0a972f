// Vector implementations of the products of matrices. Several rows of src1 meet several vectors of src2 at a time; the
// sums stay in registers and are added to in the order of the reference.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/linearalgebra.h>

namespace rvk::vecta::RVK_ISA {

namespace {

// ---- floats ---------------------------------------------------------------------------------------------------------

using Floats = Vec<float>;

// Sums of `rows` rows by `vectors` vectors of columns from the first one on; `n` counts what there is of a single vector.
template <size_t rows, size_t vectors, bool isPartial>
RVK_INLINE void multiplyBlock(Plane<const float> src1, uint32_t depth, Plane<const float> src2, Plane<float> dst,
                              size_t n)
{
    const auto at = [&](const float* p) RVK_INLINE_LAMBDA { return isPartial ? loadPartial(p, n) : load(p); };
    Vecs<float, vectors> sums[rows];
    unrolled<rows>([&](auto r) RVK_INLINE_LAMBDA {
        unrolled<vectors>([&](auto v) RVK_INLINE_LAMBDA { sums[r][v] = zero<float>(); });
    });
    for (size_t k = 0; k < depth; ++k) {
        Vecs<float, vectors> b;
        unrolled<vectors>([&](auto v) RVK_INLINE_LAMBDA { b[v] = at(src2.row(k) + v * Floats::lanes); });
        unrolled<rows>([&](auto r) RVK_INLINE_LAMBDA {
            const Floats a = splat(src1.row(r)[k]);
            unrolled<vectors>([&](auto v) RVK_INLINE_LAMBDA { sums[r][v] = sums[r][v] + a * b[v]; });
        });
    }
    unrolled<rows>([&](auto r) RVK_INLINE_LAMBDA {
        unrolled<vectors>([&](auto v) RVK_INLINE_LAMBDA {
            float* const p = dst.row(r) + v * Floats::lanes;
            if constexpr (isPartial)
                storePartial(p, sums[r][v], n);
            else
                store(p, sums[r][v]);
        });
    });
}

// All rows of some columns.
template <size_t vectors, bool isPartial = false>
RVK_NOINLINE void multiplyPanel(Plane<const float> src1, uint32_t height, uint32_t depth, Plane<const float> src2,
                                Plane<float> dst, size_t n = 0)
{
    constexpr size_t rows = 4;
    size_t y = 0;
    for (; y + rows <= height; y += rows)
        multiplyBlock<rows, vectors, isPartial>({src1.row(y), src1.stride}, depth, src2, {dst.row(y), dst.stride}, n);
    for (; y < height; ++y)
        multiplyBlock<1, vectors, isPartial>({src1.row(y), src1.stride}, depth, src2, {dst.row(y), dst.stride}, n);
}

} // namespace

rvkStatus rvkMatrixMultiplyf32V(const float32_t* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                                const float32_t* src2, uint32_t width2, uint32_t stride2, float32_t* dst,
                                uint32_t dstStride)
{
    constexpr size_t lanes = Floats::lanes, vectors = kBytes == 64 ? 4 : 2; // as many as there are registers for
    const Plane a{src1, stride1};
    const auto from = [&](size_t x) RVK_INLINE_LAMBDA { return Plane{src2 + x, stride2}; };
    const auto to = [&](size_t x) RVK_INLINE_LAMBDA { return Plane{dst + x, dstStride}; };
    if (width2 < lanes) {
        multiplyPanel<1, true>(a, height1, width1, from(0), to(0), width2);
        return RAVIK_SUCCESS;
    }
    size_t x = 0;
    for (; x + vectors * lanes <= width2; x += vectors * lanes)
        multiplyPanel<vectors>(a, height1, width1, from(x), to(x));
    for (; x < width2; x += lanes) {
        const size_t first = least(x, width2 - lanes);
        multiplyPanel<1>(a, height1, width1, from(first), to(first));
    }
    return RAVIK_SUCCESS;
}

// ---- bytes ----------------------------------------------------------------------------------------------------------

namespace {

using Shorts = Vec<int16_t>;
using Sums = Vecs<int32_t, 2>; // in the order that widening has in lanes

// Two rows of src2 as the products want them, the same for all rows of src1.
struct TwoRows
{
    RVK_INLINE TwoRows(Shorts first, Shorts second)
    {
#if defined(__x86_64__)
        // Zipped once for all rows of src1, not once for each: half of the instructions.
        pairs = zipInLanes(first, second);
#else
        pairs = {first, second};
#endif
    }
    // Adds a pair's product with them.
    RVK_INLINE Sums addTo(const Sums& sums, const int16_t* pair) const
    {
#if defined(__x86_64__)
        uint32_t both;
        __builtin_memcpy(&both, pair, sizeof both);
        const Shorts factors = bitCast<int16_t>(splat(both));
        return {sums[0] + dotPairs(pairs[0], factors), sums[1] + dotPairs(pairs[1], factors)};
#else
        return addDotInLanes(sums, {splat(pair[0]), splat(pair[1])}, pairs);
#endif
    }

    Vecs<int16_t, 2> pairs;
};

constexpr size_t kRows = 4;      // of src1 at a time
constexpr uint32_t kDepth = 256; // of their elements

// Elements of rows of src1 as words, and a 0 behind an odd number of them.
template <size_t rows>
struct Words
{
    int16_t of[rows][kDepth];

    RVK_INLINE Words(Plane<const int8_t> src1, uint32_t first, uint32_t count)
    {
        for (size_t r = 0; r < rows; ++r) {
            const int8_t* const row = src1.row(r) + first;
            for (uint32_t k = 0; k < count; ++k)
                of[r][k] = row[k];
            if (count % 2)
                of[r][count] = 0;
        }
    }
};

template <bool isPartial>
RVK_INLINE Shorts loadShorts(const int8_t* p, size_t n)
{
    if constexpr (isPartial)
        return widen(loadPartial(p, n))[0];
    else
        return loadWiden<int16_t>(p);
}

// Adds to, or makes, the sums of `rows` rows by a vector of columns.
template <size_t rows, bool isPartial>
RVK_INLINE void multiplyWords(const Words<rows>& words, uint32_t count, Plane<const int8_t> src2, Plane<int32_t> dst,
                              bool isFirst, size_t n)
{
    constexpr size_t lanes = Vec<int32_t>::lanes;
    Sums sums[rows];
    unrolled<rows>([&](auto r) RVK_INLINE_LAMBDA { sums[r] = {zero<int32_t>(), zero<int32_t>()}; });
    const auto row = [&](uint32_t k) RVK_INLINE_LAMBDA { return loadShorts<isPartial>(src2.row(k), n); };
    const auto add = [&](const TwoRows& two, uint32_t k) RVK_INLINE_LAMBDA {
        unrolled<rows>([&](auto r) RVK_INLINE_LAMBDA { sums[r] = two.addTo(sums[r], words.of[r] + k); });
    };
    uint32_t k = 0;
    for (; k + 2 <= count; k += 2)
        add(TwoRows(row(k), row(k + 1)), k);
    if (k < count)
        add(TwoRows(row(k), zero<int16_t>()), k);
    unrolled<rows>([&](auto r) RVK_INLINE_LAMBDA {
        Sums ordered = orderWidened(sums[r]);
        int32_t* const p = dst.row(r);
        if (!isFirst) {
            const Sums before = isPartial ? loadVecsPartial<2>(p, n) : loadVecs<2>(p);
            ordered = both(ordered, before, [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; });
        }
        if constexpr (isPartial) {
            storePartial(p, ordered, n);
        } else {
            store(p, ordered[0]);
            store(p + lanes, ordered[1]);
        }
    });
}

// `rows` rows of dst.
template <size_t rows>
RVK_NOINLINE void multiplyRows(Plane<const int8_t> src1, uint32_t depth, Plane<const int8_t> src2, uint32_t width,
                               Plane<int32_t> dst)
{
    constexpr uint32_t lanes = Shorts::lanes;
    for (uint32_t first = 0; first < depth; first += kDepth) {
        const uint32_t count = depth - first < kDepth ? depth - first : kDepth;
        const Words<rows> words(src1, first, count);
        const auto from = [&](size_t x) RVK_INLINE_LAMBDA { return Plane{src2.row(first) + x, src2.stride}; };
        const auto to = [&](size_t x) RVK_INLINE_LAMBDA { return Plane{dst.data + x, dst.stride}; };
        uint32_t x = 0;
        for (; x + lanes <= width; x += lanes)
            multiplyWords<rows, false>(words, count, from(x), to(x), first == 0, lanes);
        if (x < width) // sums that are added to must not be added to twice
            multiplyWords<rows, true>(words, count, from(x), to(x), first == 0, width - x);
    }
}

} // namespace

rvkStatus rvkMatrixMultiplys8s32V(const int8_t* src1, uint32_t width1, uint32_t height1, uint32_t stride1,
                                  const int8_t* src2, uint32_t width2, uint32_t stride2, int32_t* dst,
                                  uint32_t dstStride)
{
    const Plane a{src1, stride1}, b{src2, stride2};
    const Plane sums{dst, dstStride};
    uint32_t y = 0;
    for (; y + kRows <= height1; y += kRows)
        multiplyRows<kRows>({a.row(y), stride1}, width1, b, width2, {sums.row(y), dstStride});
    for (; y < height1; ++y)
        multiplyRows<1>({a.row(y), stride1}, width1, b, width2, {sums.row(y), dstStride});
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

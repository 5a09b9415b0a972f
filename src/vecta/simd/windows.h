// How the vector implementations of filters walk images: down in columns as wide as a vector, with what the rows above
// have in common with the next output kept in registers.
//
// A filter is a kernel:
//
//     struct Erode3x3 {
//         static constexpr size_t rows = 3, columns = 3;       // the window
//         static constexpr size_t step = Vec<uint8_t>::lanes;  // outputs side by side
//         Vec<uint8_t> above = zero<uint8_t>(), twoAbove = above;
//
//         // Takes the next row of the image, at the left end of the first output's window, and gives the outputs
//         // of the windows that end in that row. It may load `step` + `columns` - 1 elements.
//         RVK_INLINE Vec<uint8_t> next(const uint8_t* p) { ... }
//     };
//
// The first `rows` - 1 rows of a column only fill the kernel: it gets them through `prime`, or, if it has none, through
// `next`, and what that returns is dropped. A kernel gives a Vec or Vecs, or Two of those for two destinations. One for
// which two rows are less than twice the work of one has `nextTwo`, which takes two rows and gives Two of its results.
#pragma once

#include "vecta/simd/rowSums.h"
#include "vecta/simd/rows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Rows of outputs that a column is followed down before the walk turns to the next one: enough to make little of the
// rows that two such blocks have to read, few enough for the first-level cache to keep the lines until the next column
// comes.
template <class Kernel>
constexpr size_t kBlockRows = 8 * Kernel::rows;

template <class Kernel, class S>
RVK_INLINE void prime(Kernel& kernel, const S* p)
{
    if constexpr (requires { kernel.prime(p); })
        kernel.prime(p);
    else
        kernel.next(p);
}

template <class A, class B>
struct Two
{
    A first;
    B second;
};

template <class Result, class D>
RVK_INLINE void put(const Result& result, size_t x, size_t y, Plane<D> dst)
{
    store(dst.row(y) + x, result);
}

template <class A, class B, class D1, class D2>
RVK_INLINE void put(const Two<A, B>& result, size_t x, size_t y, Plane<D1> dst1, Plane<D2> dst2)
{
    store(dst1.row(y) + x, result.first);
    store(dst2.row(y) + x, result.second);
}

template <class Result, class D>
RVK_INLINE void putPartial(const Result& result, size_t n, size_t y, Plane<D> dst)
{
    storePartial(dst.row(y), result, n);
}

template <class A, class B, class D1, class D2>
RVK_INLINE void putPartial(const Two<A, B>& result, size_t n, size_t y, Plane<D1> dst1, Plane<D2> dst2)
{
    storePartial(dst1.row(y), result.first, n);
    storePartial(dst2.row(y), result.second, n);
}

// Where the second of the columns begins that give n outputs: behind the first, or so far over it that the stores of
// all but the first begin where a vector ends, when that costs no further column. (A store across two cache lines takes
// twice as long, and outputs that have whole windows begin beside a boundary.)
template <size_t step, class D, class... Others>
RVK_INLINE size_t secondColumn(size_t n, Plane<D> dst, Plane<Others>...)
{
    const size_t beyond = reinterpret_cast<uintptr_t>(dst.data) % kBytes / sizeof(D);
    const bool isFree = (n + beyond - 1) / step == (n - 1) / step;
    return dst.stride % kBytes == 0 && isFree ? step - beyond : step;
}

// `n` x `m` outputs at dst, whose windows begin in the `n` x `m` elements at src. Reads `n` + Kernel::columns - 1 by
// `m` + Kernel::rows - 1 elements, in any order and more than once: destinations must not overlap the source.
template <class Kernel, class S, class... D>
RVK_INLINE void walk(size_t n, size_t m, Plane<const S> src, Kernel kernel, Plane<D>... dst)
{
    constexpr size_t step = Kernel::step, before = Kernel::rows - 1;
    if (n < step) { // too narrow to load whole vectors: filter copies of the rows, with room behind them
        S row[step + Kernel::columns - 1] = {};
        for (size_t y = 0; y < m + before; ++y) {
            __builtin_memcpy(row, src.row(y), (n + Kernel::columns - 1) * sizeof(S));
            if (y < before)
                prime(kernel, row);
            else
                putPartial(kernel.next(row), n, y - before, dst...);
        }
        return;
    }
    const size_t second = secondColumn<step>(n, dst...);
    for (size_t top = 0; top < m; top += kBlockRows<Kernel>) {
        const size_t bottom = least(top + kBlockRows<Kernel>, m);
        for (size_t next = 0, advance = second; next < n; next += advance, advance = step) {
            const size_t x = next + step <= n ? next : n - step; // the last column may overlap the one before it
            Kernel column = kernel;
            size_t y = top;
            for (; y < top + before; ++y)
                prime(column, src.row(y) + x);
            if constexpr (requires { column.nextTwo(src.row(y), src.row(y)); })
                for (; y + 1 < bottom + before; y += 2) {
                    const auto results = column.nextTwo(src.row(y) + x, src.row(y + 1) + x);
                    put(results.first, x, y - before, dst...);
                    put(results.second, x, y + 1 - before, dst...);
                }
            for (; y < bottom + before; ++y)
                put(column.next(src.row(y) + x), x, y - before, dst...);
        }
    }
}

// The outputs whose window lies within the image, at their own positions; the window's centre is at its half, rounded
// down.
template <class Kernel, class S, class... D>
RVK_INLINE void filterInterior(size_t width, size_t height, Plane<const S> src, Kernel kernel, Plane<D>... dst)
{
    if (width >= Kernel::columns && height >= Kernel::rows)
        walk(width - Kernel::columns + 1, height - Kernel::rows + 1, src, kernel,
             Plane<D>{dst.row(Kernel::rows / 2) + Kernel::columns / 2, dst.stride}...);
}

// The whole picture by a 3x3 kernel and functions for its edges: edgeRow(row, neighbour, to) gives the first or the
// last row but for its ends, edgeColumn(x, top, bottom) rows `top` to `bottom` of the first or the last column. A row
// that is the only one is its own neighbour. In blocks of rows, so that the columns at the edges are filtered while the
// cache has them.
template <class Kernel, class S, class D, class EdgeRow, class EdgeColumn>
RVK_INLINE void filterWhole3x3(size_t width, size_t height, Plane<const S> src, Plane<D> dst, Kernel kernel,
                               EdgeRow edgeRow, EdgeColumn edgeColumn)
{
    static_assert(Kernel::rows == 3 && Kernel::columns == 3);
    constexpr size_t blockRows = kBlockRows<Kernel>;
    if (width > 2)
        edgeRow(src.row(0), src.row(height > 1), dst.row(0));
    for (size_t top = 0; top < height; top += blockRows) {
        const size_t bottom = least(top + blockRows, height);
        const size_t first = top ? top : 1, last = least(bottom, height - 1); // rows with two neighbours
        if (width > 2 && first < last)
            walk(width - 2, last - first, Plane<const S>{src.row(first - 1), src.stride}, kernel,
                 Plane<D>{dst.row(first) + 1, dst.stride});
        edgeColumn(0, top, bottom);
        if (width > 1)
            edgeColumn(width - 1, top, bottom);
    }
    if (width > 2 && height > 1)
        edgeRow(src.row(height - 1), src.row(height - 2), dst.row(height - 1));
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

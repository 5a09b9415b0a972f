// How the vector implementations of filters walk images: an output row is formed from the source rows around it, by a
// formula that sees vectors at fixed offsets from the output. Rows between two passes live on the stack, so columns are
// processed in strips.
#pragma once

#include "vecta/simd/rows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Outputs of a strip: with its intermediate rows it stays within the first-level cache.
constexpr size_t kStrip = 2048;

// `n` outputs of one row. `src` has the source rows; each can be read from `radius` elements before the output's position
// to `radius` after the last one's. The formula takes the rows, advanced to the position of the first output of a step, and
// returns that step; it may load at offsets from -radius to +radius. The destination must not overlap the sources.
template <size_t radius, size_t rows, class S, class D, class Formula>
RVK_INLINE void windowRow(size_t n, const S* const (&src)[rows], D* dst, Formula formula)
{
    constexpr size_t step = stepOf<S, D>();
    const auto at = [&](size_t x) RVK_INLINE_LAMBDA {
        struct {
            const S* row[rows];
        } window;
        for (size_t k = 0; k < rows; ++k)
            window.row[k] = src[k] + x;
        return formula(window.row);
    };
    if (n < step) { // too narrow to load whole vectors: filter a copy with room behind it
        S copy[rows][step + 2 * radius] = {};
        struct {
            const S* row[rows];
        } window;
        for (size_t k = 0; k < rows; ++k) {
            __builtin_memcpy(copy[k], src[k] - radius, (n + 2 * radius) * sizeof(S));
            window.row[k] = copy[k] + radius;
        }
        storePartial(dst, formula(window.row), n);
        return;
    }
    for (size_t x = 0; x + step <= n; x += step)
        store(dst + x, at(x));
    if (n % step)
        store(dst + n - step, at(n - step));
}

// The interior of a separable filter of `rows` (odd) rows and `2 * radius + 1` columns: every output whose window lies
// within the image. `vertical` takes the source rows of an output row and returns sums of type M; `horizontal` takes one
// row of those sums. Outputs keep their position; the ring around them is not written.
template <size_t radius, size_t rows, class M, class S, class D, class Vertical, class Horizontal>
RVK_INLINE void separableInterior(size_t width, size_t height, Plane<const S> src, Plane<D> dst, Vertical vertical,
                                  Horizontal horizontal)
{
    if (width < 2 * radius + 1)
        return;
    alignas(kBytes) M sums[kStrip + 2 * radius];
    for (size_t x = radius; x < width - radius; x += kStrip) {
        const size_t n = width - radius - x < kStrip ? width - radius - x : kStrip;
        for (size_t y = rows / 2; y + rows / 2 < height; ++y) {
            struct {
                const S* row[rows];
            } window;
            for (size_t k = 0; k < rows; ++k)
                window.row[k] = src.row(y - rows / 2 + k) + x - radius;
            windowRow<0>(n + 2 * radius, window.row, sums, vertical);
            const M* const sumRow[1] = {sums + radius};
            windowRow<radius>(n, sumRow, dst.row(y) + x, horizontal);
        }
    }
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

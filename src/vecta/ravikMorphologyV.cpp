// Vector implementations of dilation and erosion.
#include "scratch.h"
#include "vecta/simd/windows.h"
#include "vecta/vecta.h"

#include <ravik/morphology.h>

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;

// The extreme that a filter takes, and the value that never is one unless all are.
struct Largest
{
    static constexpr uint8_t neutral = 0;
    static RVK_INLINE Bytes of(Bytes a, Bytes b) { return max(a, b); }
    static RVK_INLINE uint8_t of(uint8_t a, uint8_t b) { return a < b ? b : a; }
};
struct Smallest
{
    static constexpr uint8_t neutral = 255;
    static RVK_INLINE Bytes of(Bytes a, Bytes b) { return min(a, b); }
    static RVK_INLINE uint8_t of(uint8_t a, uint8_t b) { return a < b ? a : b; }
};

// ---- 3x3 and 5x5: every pixel outside the picture counts as `outside` -----------------------------------------------

// Down a column, two rows at a time: their windows have all rows between the first and the last in common. A step of
// outputs takes the extremes along its rows, beginning with the first 2 * radius of them.
template <class Extreme>
struct Rows3
{
    static constexpr size_t rows = 3;
    Bytes first, second;

    explicit RVK_INLINE Rows3(const Bytes (&r)[2]) : first(r[0]), second(r[1]) {}
    RVK_INLINE Vecs<uint8_t, 2> next(Bytes third, Bytes fourth)
    {
        const Bytes common = Extreme::of(second, third);
        const Vecs<uint8_t, 2> result = {Extreme::of(first, common), Extreme::of(common, fourth)};
        first = third;
        second = fourth;
        return result;
    }
};

template <class Extreme>
struct Rows5
{
    static constexpr size_t rows = 5;
    Bytes first, third, fourth, secondAndThird;

    explicit RVK_INLINE Rows5(const Bytes (&r)[4])
        : first(r[0]), third(r[2]), fourth(r[3]), secondAndThird(Extreme::of(r[1], r[2]))
    {
    }
    RVK_INLINE Vecs<uint8_t, 2> next(Bytes fifth, Bytes sixth)
    {
        const Bytes fourthAndFifth = Extreme::of(fourth, fifth), common = Extreme::of(secondAndThird, fourthAndFifth);
        const Vecs<uint8_t, 2> result = {Extreme::of(first, common), Extreme::of(common, sixth)};
        first = third;
        secondAndThird = fourthAndFifth;
        third = fifth;
        fourth = sixth;
        return result;
    }
};

// Along the row: the extremes of a step of pixels and their `radius` neighbours on either side, ...
template <class Extreme, size_t radius>
RVK_INLINE Bytes innerWindows(const uint8_t* p)
{
    Bytes outer = Extreme::of(load(p - 1), load(p + 1));
    if constexpr (radius == 2)
        outer = Extreme::of(outer, Extreme::of(load(p - 2), load(p + 2)));
    return Extreme::of(outer, load(p));
}

// ... of those before and of those behind the pixels of a row, where the picture ends and of what lies outside.
template <class Extreme, size_t radius>
RVK_INLINE Bytes beforeEdge(Bytes row, Bytes outside)
{
    const Bytes nearest = extract<Bytes::lanes - 1>(outside, row);
    return radius == 1 ? nearest : Extreme::of(nearest, extract<Bytes::lanes - 2>(outside, row));
}

template <class Extreme, size_t radius>
RVK_INLINE Bytes behindEdge(Bytes row, Bytes outside)
{
    const Bytes nearest = extract<1>(row, outside);
    return radius == 1 ? nearest : Extreme::of(nearest, extract<2>(row, outside));
}

template <class Extreme, size_t radius>
RVK_INLINE Bytes leftWindows(const uint8_t* p, Bytes outside)
{
    const Bytes row = load(p), behind = radius == 1 ? load(p + 1) : Extreme::of(load(p + 1), load(p + radius));
    return Extreme::of(Extreme::of(row, behind), beforeEdge<Extreme, radius>(row, outside));
}

template <class Extreme, size_t radius>
RVK_INLINE Bytes rightWindows(const uint8_t* p, Bytes outside)
{
    const Bytes row = load(p), before = radius == 1 ? load(p - 1) : Extreme::of(load(p - 1), load(p - radius));
    return Extreme::of(Extreme::of(row, before), behindEdge<Extreme, radius>(row, outside));
}

// Rows `top` to `bottom` of the outputs from column x on: windows(address) gives the extremes along a row, put(address,
// outputs) stores.
template <class Column, class Windows, class Put>
RVK_INLINE void filterColumn(size_t x, size_t top, size_t bottom, size_t height, Plane<const uint8_t> src,
                             Plane<uint8_t> dst, Bytes outside, Windows windows, Put put)
{
    constexpr size_t radius = Column::rows / 2;
    const auto at = [&](size_t i) RVK_INLINE_LAMBDA { // row i - radius
        return radius <= i && i - radius < height ? windows(src.row(i - radius) + x) : outside;
    };
    Bytes above[2 * radius];
    for (size_t i = 0; i < 2 * radius; ++i)
        above[i] = at(top + i);
    Column column(above);
    size_t y = top;
    const uint8_t* in = src.row(top + radius) + x;
    uint8_t* out = dst.row(top) + x;
    for (; y + 1 < least(bottom, height - least(height, radius)); y += 2) {
        const uint8_t* const second = in + src.stride;
        const Vecs<uint8_t, 2> two = column.next(windows(in), windows(second));
        put(out, two[0]);
        put(out + dst.stride, two[1]);
        in = second + src.stride;
        out += 2 * size_t{dst.stride};
        pin(in, out);
    }
    for (; y < bottom; y += 2) {
        const Vecs<uint8_t, 2> two = column.next(at(y + 2 * radius), at(y + 2 * radius + 1));
        put(dst.row(y) + x, two[0]);
        if (y + 1 < bottom)
            put(dst.row(y + 1) + x, two[1]);
    }
}

// The picture is `radius` pixels wider than a vector or more.
template <class Extreme, class Column>
RVK_INLINE void filterWide(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, Bytes outside)
{
    constexpr size_t lanes = Bytes::lanes, radius = Column::rows / 2;
    static_assert(kBlockRows<Column> % 2 == 0);
    for (size_t top = 0; top < height; top += kBlockRows<Column>) {
        const size_t bottom = least(top + kBlockRows<Column>, height);
        const auto filterStep = [&](size_t x, auto windows) RVK_INLINE_LAMBDA {
            filterColumn<Column>(x, top, bottom, height, src, dst, outside, windows,
                                 [](uint8_t* to, Bytes v) RVK_INLINE_LAMBDA { store(to, v); });
        };
        filterStep(0, [=](const uint8_t* p) RVK_INLINE_LAMBDA { return leftWindows<Extreme, radius>(p, outside); });
        for (size_t x = lanes; x < width - lanes; x += lanes)
            filterStep(least(x, width - lanes - radius), innerWindows<Extreme, radius>);
        filterStep(width - lanes,
                   [=](const uint8_t* p) RVK_INLINE_LAMBDA { return rightWindows<Extreme, radius>(p, outside); });
    }
}

// The picture is no wider than a vector.
template <class Extreme, class Column>
RVK_INLINE void filterNarrow(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, Bytes outside)
{
    constexpr size_t radius = Column::rows / 2;
    const auto isInside = less(iota<uint8_t>(), splat(static_cast<uint8_t>(width)));
    filterColumn<Column>(
        0, 0, height, height, src, dst, outside,
        [=](const uint8_t* p) RVK_INLINE_LAMBDA {
            const Bytes row = select(isInside, loadPartial(p, width), outside);
            return Extreme::of(Extreme::of(row, beforeEdge<Extreme, radius>(row, outside)),
                               behindEdge<Extreme, radius>(row, outside));
        },
        [=](uint8_t* to, Bytes v) RVK_INLINE_LAMBDA { storePartial(to, v, width); });
}

template <class Extreme>
RVK_NOINLINE void filter3x3(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint8_t outside)
{
    if (width > Bytes::lanes)
        filterWide<Extreme, Rows3<Extreme>>(width, height, src, dst, splat(outside));
    else
        filterNarrow<Extreme, Rows3<Extreme>>(width, height, src, dst, splat(outside));
}

template <class Extreme>
RVK_INLINE uint8_t outsideValue(uint32_t borderType, uint8_t borderValue)
{
    return borderType == RAVIK_BORDER_CONSTANT ? borderValue : Extreme::neutral;
}

// ---- NxN: along the rows by doubling, down the columns in blocks of N rows ----------------------
//
// The picture gets N / 2 neutral rows before it and the other N - 1 - N / 2 behind it. Its rows, each filtered along
// itself, come in blocks of N. A window covers the end of one block and the beginning of the next: when a block is
// complete its rows become the extremes of the block's ends; the extremes of the beginning of the next run along. All
// rows have room for whole vectors.

// The row with neutral values before and behind it, filtered along itself up to the last step: element i becomes the
// extreme of the elements from i on, as many as the largest power of 2 that is at most N.
template <class Extreme>
RVK_INLINE size_t doubleWindows(size_t length, size_t N, uint8_t* line)
{
    size_t covered = 1;
    for (; covered <= N / 4; covered *= 4) // twice at once
        for (uint8_t* p = line; p < line + length; p += Bytes::lanes) {
            const Bytes firstHalf = Extreme::of(load(p), load(p + covered));
            const Bytes secondHalf = Extreme::of(load(p + 2 * covered), load(p + 3 * covered));
            store(p, Extreme::of(firstHalf, secondHalf));
        }
    if (covered <= N / 2) {
        for (uint8_t* p = line; p < line + length; p += Bytes::lanes)
            store(p, Extreme::of(load(p), load(p + covered)));
        covered *= 2;
    }
    return covered;
}

template <class Extreme>
struct ColumnBlock
{
    size_t width, pitch, N;
    uint8_t* rows;    // N of them: `ends` of the last block from the next row on, rows of this block before it
    uint8_t* running; // the extremes of the rows of this block

    // Takes the row at `place` of the block from two halves of its windows, and gives the extremes of the window that
    // ends in it; without a destination there is no such window.
    template <bool isFirst, bool isLast>
    RVK_INLINE void takeRow(size_t place, const uint8_t* left, const uint8_t* right, uint8_t* dst) const
    {
        uint8_t* const kept = rows + place * pitch;
        const auto step = [&](size_t x) RVK_INLINE_LAMBDA {
            const Bytes row = Extreme::of(load(left + x), load(right + x));
            const Bytes beginning = isFirst ? row : Extreme::of(load(running + x), row);
            store(kept + x, row);
            store(running + x, beginning);
            return isLast || !dst ? beginning : Extreme::of(beginning, load(kept + pitch + x));
        };
        size_t x = 0;
        if (!dst)
            for (; x < width; x += Bytes::lanes)
                step(x);
        for (; x + Bytes::lanes <= width; x += Bytes::lanes)
            store(dst + x, step(x));
        if (x < width)
            storePartial(dst + x, step(x), width - x);
    }

    RVK_INLINE void take(size_t place, const uint8_t* left, const uint8_t* right, uint8_t* dst) const
    {
        if (N == 1)
            takeRow<true, true>(place, left, right, dst);
        else if (place == 0)
            takeRow<true, false>(place, left, right, dst);
        else if (place < N - 1)
            takeRow<false, false>(place, left, right, dst);
        else
            takeRow<false, true>(place, left, right, dst);
    }

    RVK_INLINE void complete() const
    {
        for (size_t place = N - 1; place-- > 1;)
            for (size_t x = 0; x < width; x += Bytes::lanes) {
                uint8_t* const p = rows + place * pitch + x;
                store(p, Extreme::of(load(p), load(p + pitch)));
            }
    }
};

template <class Extreme>
RVK_INLINE rvkStatus filterInBlocks(size_t width, size_t height, Plane<const uint8_t> src, size_t N, Plane<uint8_t> dst)
{
    const size_t before = N / 2, length = width + N - 1;
    const size_t pitch = roundedUp(width, kBytes), lineSize = roundedUp(length, kBytes) + roundedUp(N, kBytes);
    const Scratch<uint8_t> scratch(uint64_t{N + 1} * pitch + lineSize);
    if (!scratch)
        return RAVIK_ENORES;
    const ColumnBlock<Extreme> block = {width, pitch, N, scratch.get(), scratch.get() + N * pitch};
    uint8_t* const line = scratch.get() + (N + 1) * pitch;
    __builtin_memset(line, Extreme::neutral, lineSize);

    size_t place = 0;
    for (size_t y = 0; y < height + N - 1; ++y) { // rows of the picture from `before` on
        if (y + 1 >= N) // a store that misses the cache holds up those to the line, and loads wait for them
            prefetch(dst.row(y + 1 - N), width);
        size_t covered = 1;
        if (y >= before && y - before < height) {
            __builtin_memset(line, Extreme::neutral, before); // behind the row the line stays neutral
            __builtin_memcpy(line + before, src.row(y - before), width);
            covered = doubleWindows<Extreme>(length, N, line);
        } else {
            __builtin_memset(line, Extreme::neutral, lineSize);
        }
        block.take(place, line, line + N - covered, y + 1 >= N ? dst.row(y + 1 - N) : nullptr);
        if (++place == N) {
            block.complete();
            place = 0;
        }
    }
    return RAVIK_SUCCESS;
}

template <class Extreme>
RVK_INLINE rvkStatus filterNxN(size_t width, size_t height, Plane<const uint8_t> src, size_t N, Plane<uint8_t> dst)
{
    if (N == 3)
        filter3x3<Extreme>(width, height, src, dst, Extreme::neutral);
    else if (N == 5 && width >= Bytes::lanes + 2)
        filterWide<Extreme, Rows5<Extreme>>(width, height, src, dst, splat(Extreme::neutral));
    else
        return filterInBlocks<Extreme>(width, height, src, N, dst);
    return RAVIK_SUCCESS;
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikMorphologyForms.h"

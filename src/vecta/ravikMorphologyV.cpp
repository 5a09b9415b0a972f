// Vector implementations of dilation and erosion.
#include "scratch.h"
#include "vecta/simd/windows.h"
#include "vecta/vecta.h"

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

// ---- 3x3: every pixel outside the picture counts as `outside` -----------------------------------

template <class Extreme>
struct Window3x3
{
    static constexpr size_t rows = 3, columns = 3;
    static constexpr size_t step = Bytes::lanes;
    Bytes above = zero<uint8_t>(), lastTwo = above; // extremes of the row above, and of the two rows above

    RVK_INLINE Bytes next(const uint8_t* p)
    {
        const Bytes row = Extreme::of(Extreme::of(load(p), load(p + 2)), load(p + 1));
        const Bytes result = Extreme::of(lastTwo, row);
        lastTwo = Extreme::of(above, row);
        above = row;
        return result;
    }
};

// The first or the last row but for its ends: the picture has no more than one neighbour of it.
template <class Extreme>
RVK_INLINE void filterEdgeRow(size_t width, const uint8_t* row, const uint8_t* neighbour, uint8_t* dst, uint8_t outside)
{
    const Bytes beyond = splat(outside);
    const auto extreme = [=](Bytes a, Bytes b, Bytes c, Bytes d, Bytes e, Bytes f) RVK_INLINE_LAMBDA {
        return Extreme::of(Extreme::of(Extreme::of(a, b), Extreme::of(c, d)), Extreme::of(Extreme::of(e, f), beyond));
    };
    mapRow(width - 2, dst + 1, extreme, row, row + 1, row + 2, neighbour, neighbour + 1, neighbour + 2);
}

// Rows `top` to `bottom` of the first or the last column x, whose neighbour in the picture is column `inner`; the
// column itself where there is no other.
template <class Extreme>
RVK_INLINE void filterEdgeColumn(size_t x, size_t inner, size_t top, size_t bottom, size_t height,
                                 Plane<const uint8_t> src, Plane<uint8_t> dst, uint8_t outside)
{
    const auto rowExtreme = [&](size_t y) RVK_INLINE_LAMBDA { return Extreme::of(src.row(y)[x], src.row(y)[inner]); };
    uint8_t above = top ? rowExtreme(top - 1) : outside;
    uint8_t here = rowExtreme(top);
    for (size_t y = top; y < bottom; ++y) {
        const uint8_t below = y + 1 < height ? rowExtreme(y + 1) : outside;
        dst.row(y)[x] = Extreme::of(Extreme::of(Extreme::of(above, below), here), outside);
        above = here;
        here = below;
    }
}

template <class Extreme>
RVK_INLINE void filter3x3(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint8_t outside)
{
    filterWhole3x3(
        width, height, src, dst, Window3x3<Extreme>{},
        [=](const uint8_t* row, const uint8_t* neighbour, uint8_t* to)
            RVK_INLINE_LAMBDA { filterEdgeRow<Extreme>(width, row, neighbour, to, outside); },
        [=](size_t x, size_t top, size_t bottom) RVK_INLINE_LAMBDA {
            filterEdgeColumn<Extreme>(x, x ? x - 1 : width > 1, top, bottom, height, src, dst, outside);
        });
}

template <class Extreme>
RVK_INLINE uint8_t outsideValue(uint32_t borderType, uint8_t borderValue)
{
    return borderType == RAVIK_BORDER_CONSTANT ? borderValue : Extreme::neutral;
}

// ---- 5x5: rows and columns beside the picture repeat its edge, which every window that reaches there contains

// Down a column: from the extremes of single rows to those of two, four and five.
template <class Extreme>
struct Window5Rows
{
    static constexpr size_t rows = 5;
    Bytes last = zero<uint8_t>(), two = last, four = last; // of as many rows, up to the last one
    Bytes twoBefore = last;                                // `two` one row ago

    RVK_INLINE Bytes next(Bytes row)
    {
        const Bytes result = Extreme::of(four, row), lastAndThis = Extreme::of(last, row);
        four = Extreme::of(twoBefore, lastAndThis);
        twoBefore = two;
        two = lastAndThis;
        last = row;
        return result;
    }
};

// Along the row: a step of windows at the left edge, at the right edge and between them.
template <class Extreme>
RVK_INLINE Bytes leftWindows(const uint8_t* p)
{
    const Bytes row = load(p), neutral = splat(Extreme::neutral);
    const Bytes before = Extreme::of(extract<Bytes::lanes - 1>(neutral, row), extract<Bytes::lanes - 2>(neutral, row));
    return Extreme::of(Extreme::of(row, before), Extreme::of(load(p + 1), load(p + 2)));
}

template <class Extreme>
RVK_INLINE Bytes rightWindows(const uint8_t* p)
{
    const Bytes row = load(p), neutral = splat(Extreme::neutral);
    const Bytes behind = Extreme::of(extract<1>(row, neutral), extract<2>(row, neutral));
    return Extreme::of(Extreme::of(row, behind), Extreme::of(load(p - 1), load(p - 2)));
}

template <class Extreme>
RVK_INLINE Bytes innerWindows(const uint8_t* p)
{
    const Bytes outer = Extreme::of(load(p - 2), load(p + 2));
    return Extreme::of(Extreme::of(load(p - 1), load(p + 1)), Extreme::of(load(p), outer));
}

// The step of outputs at column x of the rows from `top` on.
template <class Extreme, class Windows>
RVK_INLINE void filterStep5x5(size_t x, size_t top, size_t bottom, size_t height, Plane<const uint8_t> src,
                              Plane<uint8_t> dst, Windows windows)
{
    Window5Rows<Extreme> column;
    const auto twoAbove = [&](size_t y) RVK_INLINE_LAMBDA { return windows(src.row(nearest(y, 2, height)) + x); };
    for (size_t y = top; y < top + 4; ++y)
        column.next(twoAbove(y));
    for (size_t y = top; y < bottom; ++y)
        store(dst.row(y) + x, column.next(twoAbove(y + 4)));
}

// The picture is two pixels wider than a vector or more.
template <class Extreme>
RVK_INLINE void filter5x5(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    constexpr size_t lanes = Bytes::lanes, blockRows = kBlockRows<Window5Rows<Extreme>>;
    for (size_t top = 0; top < height; top += blockRows) {
        const size_t bottom = least(top + blockRows, height);
        filterStep5x5<Extreme>(0, top, bottom, height, src, dst, leftWindows<Extreme>);
        for (size_t x = lanes; x < width - lanes; x += lanes)
            filterStep5x5<Extreme>(least(x, width - lanes - 2), top, bottom, height, src, dst, innerWindows<Extreme>);
        filterStep5x5<Extreme>(width - lanes, top, bottom, height, src, dst, rightWindows<Extreme>);
    }
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
        for (size_t x = 0; x < width; x += Bytes::lanes) {
            const Bytes row = Extreme::of(load(left + x), load(right + x));
            const Bytes beginning = isFirst ? row : Extreme::of(load(running + x), row);
            store(kept + x, row);
            store(running + x, beginning);
            if (dst) {
                const Bytes result = isLast ? beginning : Extreme::of(beginning, load(kept + pitch + x));
                if (x + Bytes::lanes <= width)
                    store(dst + x, result);
                else
                    storePartial(dst + x, result, width - x);
            }
        }
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
        filter5x5<Extreme>(width, height, src, dst);
    else
        return filterInBlocks<Extreme>(width, height, src, N, dst);
    return RAVIK_SUCCESS;
}

} // namespace

void rvkFilterDilate3x3u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstStride)
{
    filter3x3<Largest>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, Largest::neutral);
}

rvkStatus rvkFilterDilate3x3u8_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    filter3x3<Largest>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride},
                       outsideValue<Largest>(borderType, borderValue));
    return RAVIK_SUCCESS;
}

void rvkFilterErode3x3u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    filter3x3<Smallest>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, Smallest::neutral);
}

rvkStatus rvkFilterErode3x3u8_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    filter3x3<Smallest>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride},
                        outsideValue<Smallest>(borderType, borderValue));
    return RAVIK_SUCCESS;
}

rvkStatus rvkFilterDilateNxNu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint32_t N, uint8_t* dst, uint32_t dstStride)
{
    return filterNxN<Largest>(srcWidth, srcHeight, {src, srcStride}, N, {dst, dstStride});
}

rvkStatus rvkFilterErodeNxNu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint32_t N, uint8_t* dst, uint32_t dstStride)
{
    return filterNxN<Smallest>(srcWidth, srcHeight, {src, srcStride}, N, {dst, dstStride});
}

} // namespace rvk::vecta::RVK_ISA

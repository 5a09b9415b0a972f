// Vector implementations of the median filters.
#include "vecta/simd/windows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- networks: lane by lane, on vectors or on single bytes ---------------------------------------------------------

RVK_INLINE uint8_t min(uint8_t a, uint8_t b)
{
    return b < a ? b : a;
}
RVK_INLINE uint8_t max(uint8_t a, uint8_t b)
{
    return a < b ? b : a;
}

template <class V>
RVK_INLINE void exchange(V& a, V& b)
{
    const V low = min(a, b);
    b = max(a, b);
    a = low;
}

template <class V>
RVK_INLINE V medianOfThree(V a, V b, V c)
{
    return max(min(a, b), min(max(a, b), c));
}

// ---- 3x3 -----------------------------------------------------------------------------------------------------------

// Three neighbours in a row, in order.
template <class V>
struct Sorted
{
    V low, middle, high;
};

template <class V>
RVK_INLINE Sorted<V> sorted(V a, V b, V c)
{
    exchange(a, b);
    exchange(b, c);
    exchange(a, b);
    return {a, b, c};
}

// Of the rows so far what the windows of the next two rows need: the largest low, the smallest high, the middles.
template <class V>
struct MedianOfRows
{
    Sorted<V> above;
    V low, smallerMiddle, largerMiddle, high; // of the two rows above

    // Takes the next row and gives the median of the last three.
    RVK_INLINE V next(Sorted<V> row)
    {
        const V middle = max(smallerMiddle, min(largerMiddle, row.middle));
        const V result = medianOfThree(max(low, row.low), middle, min(high, row.high));
        *this = {row, max(above.low, row.low), min(above.middle, row.middle), max(above.middle, row.middle),
                 min(above.high, row.high)};
        return result;
    }
};

template <class T>
struct Median3x3
{
    static constexpr size_t rows = 3, columns = 3;
    static constexpr size_t step = Vec<T>::lanes;
    MedianOfRows<Vec<T>> medians{};

    RVK_INLINE Vec<T> next(const T* p) { return medians.next(sorted(load(p), load(p + 1), load(p + 2))); }
};

// The ring of the 3x3 median with something in the place of the pixels that do not exist.
struct Ring
{
    size_t width, height;
    Plane<const uint8_t> src;
    Plane<uint8_t> dst;
    bool replicate; // the nearest pixel inside, else `outside`
    uint8_t outside;

    // The first or the last row but for its ends. The picture has no more than one neighbour of it.
    RVK_INLINE void filterRow(const uint8_t* row, const uint8_t* neighbour, uint8_t* to) const
    {
        using V = Vec<uint8_t>;
        const Sorted<V> constant = {splat(outside), splat(outside), splat(outside)};
        const bool repeats = replicate, hasNeighbour = replicate || height > 1;
        const auto median = [=](V a, V b, V c, V d, V e, V f) RVK_INLINE_LAMBDA {
            MedianOfRows<V> medians{};
            const Sorted<V> here = sorted(a, b, c);
            medians.next(repeats ? here : constant);
            medians.next(here);
            return medians.next(hasNeighbour ? sorted(d, e, f) : constant);
        };
        mapRow(width - 2, to + 1, median, row, row + 1, row + 2, neighbour, neighbour + 1, neighbour + 2);
    }

    RVK_INLINE Sorted<uint8_t> neighbours(size_t x, size_t y) const
    {
        const uint8_t* const p = src.row(y) + x;
        const uint8_t beyond = replicate ? *p : outside;
        return sorted(x ? p[-1] : beyond, *p, x + 1 < width ? p[1] : beyond);
    }

    // Rows `top` to `bottom` of column x.
    RVK_INLINE void filterColumn(size_t x, size_t top, size_t bottom) const
    {
        const Sorted<uint8_t> constant = {outside, outside, outside};
        MedianOfRows<uint8_t> medians{};
        medians.next(top ? neighbours(x, top - 1) : replicate ? neighbours(x, 0) : constant);
        medians.next(neighbours(x, top));
        for (size_t y = top; y < bottom; ++y)
            dst.row(y)[x] = medians.next(y + 1 < height ? neighbours(x, y + 1)
                                         : replicate    ? neighbours(x, y)
                                                        : constant);
    }
};

RVK_INLINE void filterWithRing(const Ring& ring)
{
    filterWhole3x3(
        ring.width, ring.height, ring.src, ring.dst, Median3x3<uint8_t>{},
        [&](const uint8_t* row, const uint8_t* neighbour, uint8_t* to)
            RVK_INLINE_LAMBDA { ring.filterRow(row, neighbour, to); },
        [&](size_t x, size_t top, size_t bottom) RVK_INLINE_LAMBDA { ring.filterColumn(x, top, bottom); });
}

// ---- 5x5 -----------------------------------------------------------------------------------------------------------

using Shorts = Vec<int16_t>;

RVK_INLINE void sortFive(Vecs<int16_t, 5>& v)
{
    exchange(v.v[0], v.v[1]);
    exchange(v.v[3], v.v[4]);
    exchange(v.v[2], v.v[4]);
    exchange(v.v[2], v.v[3]);
    exchange(v.v[1], v.v[4]);
    exchange(v.v[0], v.v[3]);
    exchange(v.v[0], v.v[2]);
    exchange(v.v[1], v.v[3]);
    exchange(v.v[1], v.v[2]);
}

// Moves the least of `count` values to their front and the largest to their end.
template <size_t first, size_t count, bool arePaired, size_t total>
RVK_INLINE void moveExtremesOut(Vecs<int16_t, total>& v)
{
    constexpr size_t half = count / 2, last = first + count - 1;
    if constexpr (!arePaired)
        unrolled<half>([&](auto i) RVK_INLINE_LAMBDA { exchange(v.v[first + i], v.v[last - i]); });
    unrolled<count - half - 1>([&](auto i) RVK_INLINE_LAMBDA { exchange(v.v[first], v.v[first + 1 + i]); });
    unrolled<count - half - 1>([&](auto i) RVK_INLINE_LAMBDA { exchange(v.v[last - 1 - i], v.v[last]); });
}

// The median of an odd number of values. Of more than half of them neither the least nor the largest can be it: they
// go, and the next value comes. `arePaired`: of the first `count` values the i-th is not above the i-th last.
template <size_t first, size_t count, bool arePaired, size_t total>
RVK_INLINE Shorts medianOf(Vecs<int16_t, total>& v)
{
    if constexpr (count == 3) {
        return medianOfThree(v.v[first], v.v[first + 1], v.v[first + 2]);
    } else {
        moveExtremesOut<first, count, arePaired>(v);
        v.v[first + count - 1] = v.v[first + count];
        unrolled<total - first - count - 1>([&](auto i) RVK_INLINE_LAMBDA {
            v.v[first + count + i] = v.v[first + count + 1 + i]; // the queue moves up
        });
        return medianOf<first + 1, count - 1, false>(v);
    }
}

// The rows of the window are sorted, once each, and then the columns of what that gives: the window is now in order
// along both. A value that has more than 12 others after it, or before it, in both directions, is not the median. That
// leaves 13, of which it is the median, too. The order of the rows does not matter, so a new row takes the place of the
// oldest.
struct Median5x5
{
    static constexpr size_t rows = 5, columns = 5;
    static constexpr size_t step = Shorts::lanes;
    Vecs<int16_t, 5> sortedRows[5];
    size_t oldest = 0;

    RVK_INLINE void prime(const int16_t* p)
    {
        Vecs<int16_t, 5> row = {load(p), load(p + 1), load(p + 2), load(p + 3), load(p + 4)};
        sortFive(row);
        sortedRows[oldest] = row;
        oldest = oldest == 4 ? 0 : oldest + 1;
    }

    RVK_INLINE Vecs<int16_t, 5> sortedColumn(size_t i) const
    {
        Vecs<int16_t, 5> column = {sortedRows[0][i], sortedRows[1][i], sortedRows[2][i], sortedRows[3][i],
                                   sortedRows[4][i]};
        sortFive(column);
        return column;
    }

    RVK_INLINE Shorts next(const int16_t* p)
    {
        prime(p);
        const Vecs<int16_t, 5> a = sortedColumn(0), b = sortedColumn(1), c = sortedColumn(2), d = sortedColumn(3),
                               e = sortedColumn(4);
        Vecs<int16_t, 13> rest = {a[3], b[2], c[1], d[0], d[1], c[2], b[3], a[4], b[4], c[3], d[2], e[0], e[1]};
        return medianOf<0, 8, true>(rest);
    }
};

// ---- MxN -----------------------------------------------------------------------------------------------------------

// The medians of as many windows as a vector has lanes, side by side; the first begins at p. Of the range that holds a
// median the half goes that the count of larger values rules out.
RVK_INLINE Shorts medianByBisection(Plane<const int16_t> p, size_t M, size_t N)
{
    Shorts least = load(p.data), most = least;
    for (size_t j = 0; j < N; ++j)
        for (size_t i = 0; i < M; ++i) {
            const Shorts v = load(p.row(j) + i);
            least = min(least, v);
            most = max(most, v);
        }
    const size_t notAbove = (M * N - 1) / 2 + 1; // so many values are not above the median
    const auto mostAbove = splat(static_cast<uint16_t>(M * N - notAbove));
    while (any(less(least, most))) {
        const Shorts middle = (least & most) + shiftRight(least ^ most, 1); // rounded down
        auto above = zero<uint16_t>();
        for (size_t j = 0; j < N; ++j) {
            const int16_t* const row = p.row(j);
            for (size_t i = 0; i < M; ++i)
                above = above - bitCast<uint16_t>(toVec(greater(load(row + i), middle)));
        }
        const auto isLarger = bitCast<int16_t>(toVec(greater(above, mostAbove)));
        least = (isLarger & (middle + splat<int16_t>(1))) | (~isLarger & least);
        most = (isLarger & most) | (~isLarger & middle);
    }
    return least;
}

struct WindowSize
{
    size_t M, N;
};

// Interior only, and at least a vector wide; the last step of a row may overlap the one before it.
RVK_INLINE void filterByBisection(size_t width, size_t height, Plane<const int16_t> src, WindowSize window,
                                  Plane<int16_t> dst)
{
    const size_t left = window.M / 2, top = window.N / 2, count = width - 2 * left;
    for (size_t y = top; y + top < height; ++y)
        for (size_t next = 0; next < count; next += Shorts::lanes) {
            const size_t x = next + Shorts::lanes <= count ? next : count - Shorts::lanes;
            const Plane<const int16_t> begin = {src.row(y - top) + x, src.stride};
            store(dst.row(y) + left + x, medianByBisection(begin, window.M, window.N));
        }
}

RVK_INLINE void copyRing(size_t width, size_t height, Plane<const int16_t> src, WindowSize window, Plane<int16_t> dst)
{
    const size_t left = window.M / 2, top = window.N / 2;
    for (size_t y = 0; y < height; ++y) {
        const bool whole = y < top || y + top >= height || 2 * left >= width;
        const size_t count = whole ? width : left;
        __builtin_memcpy(dst.row(y), src.row(y), count * sizeof(int16_t));
        if (!whole)
            __builtin_memcpy(dst.row(y) + width - count, src.row(y) + width - count, count * sizeof(int16_t));
    }
}

} // namespace

void rvkFilterMedian3x3u8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstStride)
{
    filterInterior(srcWidth, srcHeight, Plane{src, srcStride}, Median3x3<uint8_t>{}, Plane{dst, dstStride});
}

rvkStatus rvkFilterMedian3x3u8_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    const bool replicate = borderType == RAVIK_BORDER_REPLICATE;
    if (replicate || borderType == RAVIK_BORDER_CONSTANT)
        filterWithRing({srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, replicate, borderValue});
    else
        rvkFilterMedian3x3u8_v2V(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    return RAVIK_SUCCESS;
}

rvkStatus rvkFilterMedianMxNs16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t M, uint32_t N, int16_t* dst, uint32_t dstStride)
{
    const Plane<const int16_t> in = {src, srcStride};
    const Plane<int16_t> out = {dst, dstStride};
    const WindowSize window = {M, N};
    if (M == 3 && N == 3) {
        filterInterior(srcWidth, srcHeight, in, Median3x3<int16_t>{}, out);
    } else if (M == 5 && N == 5) {
        filterInterior(srcWidth, srcHeight, in, Median5x5{}, out);
    } else {
        const size_t ring = 2 * (size_t{M} / 2);
        if (srcWidth < ring + Shorts::lanes || size_t{M} * N > UINT16_MAX)
            return rvkFilterMedianMxNs16C(src, srcWidth, srcHeight, srcStride, M, N, dst, dstStride);
        filterByBisection(srcWidth, srcHeight, in, window, out);
    }
    copyRing(srcWidth, srcHeight, in, window, out);
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

// Vector implementations of the median filters.
#include "vecta/simd/networks.h"
#include "vecta/simd/windows.h"
#include "vecta/vecta.h"

#include <ravik/median.h>

namespace rvk {
decltype(::rvkFilterMedianMxNs16) rvkFilterMedianMxNs16C;
} // namespace rvk

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

// Of two rows what the median of them and a third one needs: the largest low, the smallest high, the middles.
template <class V>
struct TwoRows
{
    V low, smallerMiddle, largerMiddle, high;

    RVK_INLINE TwoRows(const Sorted<V>& a, const Sorted<V>& b)
        : low(max(a.low, b.low)), smallerMiddle(min(a.middle, b.middle)), largerMiddle(max(a.middle, b.middle)),
          high(min(a.high, b.high))
    {
    }

    RVK_INLINE V medianWith(const Sorted<V>& third) const
    {
        const V middle = max(smallerMiddle, min(largerMiddle, third.middle));
        return medianOfThree(max(low, third.low), middle, min(high, third.high));
    }
};

template <class V>
struct MedianOfRows
{
    Sorted<V> twoAbove, above;

    // Takes the next row and gives the median of the last three.
    RVK_INLINE V next(const Sorted<V>& row)
    {
        const V result = TwoRows<V>(above, row).medianWith(twoAbove);
        *this = {above, row};
        return result;
    }

    // Takes the next two rows. Their windows have two rows in common.
    RVK_INLINE Two<V, V> nextTwo(const Sorted<V>& first, const Sorted<V>& second)
    {
        const TwoRows<V> common(above, first);
        const Two<V, V> result = {common.medianWith(twoAbove), common.medianWith(second)};
        *this = {first, second};
        return result;
    }
};

template <class T>
struct Median3x3
{
    static constexpr size_t rows = 3, columns = 3;
    static constexpr size_t step = Vec<T>::lanes;
    MedianOfRows<Vec<T>> medians{};

    static RVK_INLINE Sorted<Vec<T>> sortedAt(const T* p) { return sorted(load(p), load(p + 1), load(p + 2)); }
    RVK_INLINE Vec<T> next(const T* p) { return medians.next(sortedAt(p)); }
    RVK_INLINE auto nextTwo(const T* first, const T* second)
    {
        prefetch(first + 2 * step, 1); // down a column the processor does not see which lines come next
        prefetch(second + 2 * step, 1);
        return medians.nextTwo(sortedAt(first), sortedAt(second));
    }
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

// ---- windows with an odd number of rows ----------------------------------------------------------------------------

using Shorts = Vec<int16_t>;

// The rows that the windows of two neighbouring rows of outputs have in common. When each row is in order, and then
// each column, the core is in order along both, as are zeros and ones in it. The median of a window is among as many
// values of the core as the row that is missing has, and one more.
template <size_t M, size_t N>
struct Core
{
    static constexpr size_t columns = M, rows = N - 1;
    static constexpr size_t last = (M * N - 1) / 2, first = last - M; // ranks of interest, counted from 0

    // By the order along rows and columns alone, too many values are not below that in this place, or not above it.
    static constexpr bool isTooSmall(size_t row, size_t column)
    {
        const size_t notBelow = (rows - row) * (columns - column);
        return rows * columns - notBelow < first;
    }
    static constexpr bool isTooLarge(size_t row, size_t column)
    {
        const size_t notAbove = (row + 1) * (column + 1);
        return notAbove - 1 > last;
    }
    static constexpr bool isCandidate(size_t row, size_t column)
    {
        return !isTooSmall(row, column) && !isTooLarge(row, column);
    }

    struct Candidates
    {
        size_t count = 0, row[rows * columns] = {}, column[rows * columns] = {};
    };
    static constexpr Candidates listCandidates() // diagonal by diagonal
    {
        Candidates list;
        for (size_t diagonal = 0; diagonal < rows + columns - 1; ++diagonal)
            for (size_t i = 0; i < rows && i <= diagonal; ++i)
                if (diagonal - i < columns && isCandidate(i, diagonal - i)) {
                    list.row[list.count] = i;
                    list.column[list.count++] = diagonal - i;
                }
        return list;
    }

    static constexpr size_t countTooSmall()
    {
        size_t count = 0;
        for (size_t i = 0; i < rows; ++i)
            for (size_t j = 0; j < columns; ++j)
                count += isTooSmall(i, j);
        return count;
    }
    static constexpr size_t firstOfCandidates = first - countTooSmall(); // the rank among them

    // Zeros lie to the left of ones, and no row has more of them than the one above it:
    // (rows + columns)! / rows! / columns! cases.
    static constexpr size_t mostCases()
    {
        size_t count = 1;
        for (size_t i = 1; i <= rows; ++i)
            count = count * (columns + i) / i;
        return count;
    }
    static constexpr auto cases()
    {
        constexpr Candidates list = listCandidates();
        Cases<list.count, mostCases()> result;
        size_t zeros[rows] = {}, sum = 0;
        for (bool more = true; more;) {
            if (sum >= first && sum <= last + 1) { // others give the ranks of interest all ones, or all zeros
                for (size_t k = 0; k < list.count; ++k)
                    if (list.column[k] >= zeros[list.row[k]])
                        result.setOne(k);
                result.next();
            }
            more = false;
            for (size_t i = rows; !more && i-- > 0;) { // the last row that may takes one more, and those below it none
                more = zeros[i] < (i ? zeros[i - 1] : columns);
                sum = more ? sum + 1 : sum - zeros[i];
                zeros[i] = more ? zeros[i] + 1 : 0;
            }
        }
        return result;
    }
};

// Puts a column of the core in order, which comes in ordered pairs, as far as its candidates need it.
template <class C, size_t column>
struct SortColumn
{
    static constexpr auto cases()
    {
        constexpr size_t all = size_t{1} << C::rows;
        Cases<C::rows, all> result;
        for (size_t ones = 0; ones < all; ++ones) {
            bool isPossible = true;
            for (size_t i = 0; i < C::rows; i += 2)
                isPossible = isPossible && (ones >> i & 3) != 1;
            if (!isPossible)
                continue;
            for (size_t i = 0; i < C::rows; ++i)
                if (ones >> i & 1)
                    result.setOne(i);
            result.next();
        }
        return result;
    }
    static constexpr size_t firstCandidate()
    {
        size_t i = 0;
        while (!C::isCandidate(i, column))
            ++i;
        return i;
    }
    static constexpr size_t lastCandidate()
    {
        size_t i = C::rows - 1;
        while (!C::isCandidate(i, column))
            --i;
        return i;
    }
    static constexpr auto network = selecting(sortingNetwork(cases()), firstCandidate(), lastCandidate());
};

// Puts those candidates in order that have ranks of interest.
template <class C>
struct SelectFromCore
{
    static constexpr auto network =
        selecting(sortingNetwork(C::cases()), C::firstOfCandidates, C::firstOfCandidates + C::columns);
};

// Of windows side by side a row each, in order.
template <size_t M>
using SortedRow = Vecs<int16_t, M>;

// What the windows of the next rows need of the rows so far. Rows come in pairs that are never parted in a core, so
// their columns are put in order once. The order of the pairs does not matter: a new one takes the place of the oldest.
template <size_t M, size_t N>
struct SortedRows
{
    struct Pair
    {
        SortedRow<M> smaller, larger; // column by column
        SortedRow<M> second;          // of the two rows, which will be the top of a window
    };
    Pair pairs[N / 2];
    SortedRow<M> first;          // of the pair to come
    Vecs<int16_t, M + 1> ofCore; // the values of interest, in order
};

// Outputs of two rows: the first when the core of both is complete, with the row above it, and then the other, with the
// row below it.
template <size_t M, size_t N>
struct MedianOfTwoRows
{
    static_assert(N % 2 == 1);
    static constexpr size_t rows = N, columns = M, step = Shorts::lanes;
    SortedRows<M, N>* sorted; // more than registers hold
    size_t oldest = 0;
    bool completesPair = true; // the next row; the pair of the very first row is never read

    static RVK_INLINE SortedRow<M> sortedRow(const int16_t* p)
    {
        SortedRow<M> row;
        unrolled<M>([&](auto i) RVK_INLINE_LAMBDA { row[i] = load(p + i); });
        applyNetwork<SortAny<M>>(row);
        return row;
    }

    RVK_INLINE void completePair(const SortedRow<M>& row)
    {
        auto& pair = sorted->pairs[oldest];
        unrolled<M>([&](auto i) RVK_INLINE_LAMBDA {
            pair.smaller[i] = min(sorted->first[i], row[i]);
            pair.larger[i] = max(sorted->first[i], row[i]);
        });
        pair.second = row;
        oldest = oldest + 1 == N / 2 ? 0 : oldest + 1;
    }

    RVK_INLINE void prime(const int16_t* p)
    {
        if (completesPair)
            completePair(sortedRow(p));
        else
            sorted->first = sortedRow(p);
        completesPair = !completesPair;
    }

    static RVK_NOINLINE void selectFromCore(SortedRows<M, N>& sorted)
    {
        using C = Core<M, N>;
        constexpr auto list = C::listCandidates();
        Vecs<int16_t, list.count> candidates;
        unrolled<M>([&](auto j) RVK_INLINE_LAMBDA {
            Vecs<int16_t, C::rows> column;
            unrolled<N / 2>([&](auto i) RVK_INLINE_LAMBDA {
                column[2 * i] = sorted.pairs[i].smaller[j];
                column[2 * i + 1] = sorted.pairs[i].larger[j];
            });
            applyNetwork<SortColumn<C, j>>(column);
            unrolled<list.count>([&](auto k) RVK_INLINE_LAMBDA {
                if constexpr (list.column[k] == j)
                    candidates[k] = column[list.row[k]];
            });
        });
        applyNetwork<SelectFromCore<C>>(candidates);
        unrolled<M + 1>([&](auto i) RVK_INLINE_LAMBDA { sorted.ofCore[i] = candidates[C::firstOfCandidates + i]; });
    }

    // Of 2 * M + 1 values in two ordered rows the one in the middle.
    RVK_INLINE Shorts medianWith(const SortedRow<M>& row) const
    {
        Shorts median = sorted->ofCore[M];
        unrolled<M>([&](auto i) RVK_INLINE_LAMBDA { median = min(median, max(sorted->ofCore[i], row[M - 1 - i])); });
        return median;
    }

    RVK_INLINE Shorts next(const int16_t* p)
    {
        const bool completesCore = completesPair;
        const SortedRow<M> top = sorted->pairs[oldest].second;
        prime(p);
        if (!completesCore)
            return medianWith(sorted->first);
        selectFromCore(*sorted);
        return medianWith(top);
    }
};

template <size_t M, size_t N>
RVK_INLINE void filterMedian(size_t width, size_t height, Plane<const int16_t> src, Plane<int16_t> dst)
{
    SortedRows<M, N> rows = {};
    filterInterior(width, height, src, MedianOfTwoRows<M, N>{&rows}, dst);
}

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
        filterMedian<5, 5>(srcWidth, srcHeight, in, out);
    } else if (M == 7 && N == 7) {
        filterMedian<7, 7>(srcWidth, srcHeight, in, out);
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

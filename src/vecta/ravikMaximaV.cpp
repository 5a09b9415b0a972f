// Vector implementation of local maxima: few pixels are above their eight neighbours, and only these are looked at more
// closely.
#include "cpu/ravikMaximaC.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk {
decltype(::rvkFindMultipleMaximau8) rvkFindMultipleMaximau8C;
}

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;

struct Search
{
    Plane<const uint8_t> src;
    size_t width, height, radius;
};

// Some columns of rows that are not narrower than a vector.
struct Columns
{
    size_t start;  // of the load
    Bytes outside; // 255 where the load has other columns

    // At most as many columns as a vector has.
    static RVK_INLINE Columns from(size_t first, size_t end, size_t width)
    {
        const size_t start = least(first, width - kBytes);
        const Bytes lane = iota<uint8_t>();
        const Mask<uint8_t> isOutside = less(lane, splat(static_cast<uint8_t>(first - start))) |
                                        ~less(lane, splat(static_cast<uint8_t>(end - start)));
        return {start, toVec(isOutside)};
    }
    // Whether any is not below the value.
    RVK_INLINE bool reach(const uint8_t* row, Bytes value) const
    {
        const Bytes v = load(row + start);
        return any(equal(max(v, value), v) & equal(outside, zero<uint8_t>()));
    }
};

// Whether a pixel that is above its eight neighbours is above all others of its window.
RVK_NOINLINE bool isLargest(const Search& search, size_t x, size_t y)
{
    const size_t radius = search.radius;
    const size_t first = x < radius ? 0 : x - radius, end = least(x + radius + 1, search.width);
    if (radius == 1)
        return true;
    if (search.width < kBytes)
        return isMaximum(search.src.data, static_cast<uint32_t>(search.width), static_cast<uint32_t>(search.height),
                         search.src.stride, static_cast<uint32_t>(radius), static_cast<uint32_t>(x),
                         static_cast<uint32_t>(y));
    // The two overlap where one would do.
    const Columns left = Columns::from(first, least(first + kBytes, end), search.width);
    const Columns right = Columns::from(end - least(kBytes, end - first), end, search.width);
    const uint8_t* const row = search.src.row(y);
    const Bytes value = splat(row[x]);
    const auto reach = [&](const uint8_t* other)
                           RVK_INLINE_LAMBDA { return left.reach(other, value) || right.reach(other, value); };
    for (size_t i = first; i < end; ++i)
        if (row[i] >= row[x] && i != x)
            return false;
    for (size_t d = 1; d <= radius; ++d)
        if ((d <= y && reach(search.src.row(y - d))) || (y + d < search.height && reach(search.src.row(y + d))))
            return false;
    return true;
}

// Pixels of `n` columns from x on, which have neighbours at either side, that are above the threshold and their eight
// neighbours, a bit for each. A row at the edge has the other one for the row that is missing.
RVK_INLINE auto aboveNeighbours(const uint8_t* above, const uint8_t* row, const uint8_t* below, size_t x, size_t n,
                                Bytes threshold)
{
    const auto find = [=](auto loadPixels) RVK_INLINE_LAMBDA {
        const auto three = [=](const uint8_t* p) RVK_INLINE_LAMBDA {
            return max(max(loadPixels(p + x - 1), loadPixels(p + x + 1)), loadPixels(p + x));
        };
        const Bytes beside = max(loadPixels(row + x - 1), loadPixels(row + x + 1));
        const Bytes others = max(max(three(above), three(below)), max(beside, threshold));
        return laneBits(greater(loadPixels(row + x), others));
    };
    if (n >= kBytes)
        return find([](const uint8_t* p) RVK_INLINE_LAMBDA { return load(p); });
    return find([=](const uint8_t* p) RVK_INLINE_LAMBDA { return loadPartial(p, n); });
}

// Ends when the list is full.
RVK_INLINE void findMaxima(const Search& search, uint8_t threshold, MaximaList& list)
{
    for (size_t y = 0; y < search.height; ++y) {
        const uint8_t* const row = search.src.row(y);
        const uint8_t* const above = search.src.row(y ? y - 1 : 1);
        const uint8_t* const below = search.src.row(y + 1 < search.height ? y + 1 : y - 1);
        const auto add = [&](size_t x) RVK_INLINE_LAMBDA {
            return addMaximum(list, static_cast<uint32_t>(x), static_cast<uint32_t>(y), row[x]);
        };
        const auto addAtEnd = [&](size_t x) RVK_INLINE_LAMBDA {
            const bool is =
                isMaximum(search.src.data, static_cast<uint32_t>(search.width), static_cast<uint32_t>(search.height),
                          search.src.stride, static_cast<uint32_t>(search.radius), static_cast<uint32_t>(x),
                          static_cast<uint32_t>(y));
            return row[x] <= threshold || !is || add(x);
        };
        if (!addAtEnd(0))
            return;
        for (size_t x = 1; x < search.width - 1; x += kBytes) {
            auto bits = aboveNeighbours(above, row, below, x, search.width - 1 - x, splat(threshold));
            for (; bits; bits &= bits - 1) {
                const size_t column = x + static_cast<size_t>(__builtin_ctzll(bits));
                if (isLargest(search, column, y) && !add(column))
                    return;
            }
        }
        if (!addAtEnd(search.width - 1))
            return;
    }
}

} // namespace

rvkStatus rvkFindMultipleMaximau8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint32_t radius, uint8_t threshold, uint32_t* xy, uint32_t* values,
                                   uint32_t nMaximaMax, uint32_t* nMaxima)
{
    if (srcWidth < 3 || srcHeight < 2)
        return rvkFindMultipleMaximau8C(src, srcWidth, srcHeight, srcStride, radius, threshold, xy, values, nMaximaMax,
                                        nMaxima);
    MaximaList list = {xy, values, nMaximaMax, 0};
    findMaxima({{src, srcStride}, srcWidth, srcHeight, radius}, threshold, list);
    *nMaxima = list.count;
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

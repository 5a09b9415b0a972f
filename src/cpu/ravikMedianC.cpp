// C references of the median filters.
#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <algorithm>
#include <utility>

namespace rvk {
namespace {

// ---- 3x3 ----------------------------------------------------------------------------------------

// Three values in order.
struct Sorted
{
    uint8_t low, middle, high;
};

void exchange(uint8_t& a, uint8_t& b)
{
    if (b < a)
        std::swap(a, b);
}

Sorted sorted(uint8_t a, uint8_t b, uint8_t c)
{
    exchange(a, b);
    exchange(b, c);
    exchange(a, b);
    return {a, b, c};
}

// The median of nine: four of the values are not above and four not below the middle one of the largest low, the middle
// of the middles and the smallest high.
uint8_t medianOf(Sorted a, Sorted b, Sorted c)
{
    const uint8_t low = std::max({a.low, b.low, c.low}), high = std::min({a.high, b.high, c.high});
    return sorted(low, sorted(a.middle, b.middle, c.middle).middle, high).middle;
}

// The columns of the window stay sorted while it moves along the row.
void median3x3Interior(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    for (size_t y = 1; y + 1 < height; ++y) {
        const auto column = [&](size_t x) { return sorted(src.row(y - 1)[x], src.row(y)[x], src.row(y + 1)[x]); };
        Sorted left{}, middle{};
        for (size_t x = 0; x < width; ++x) {
            const Sorted right = column(x);
            if (x >= 2)
                dst.row(y)[x - 1] = medianOf(left, middle, right);
            left = std::exchange(middle, right);
        }
    }
}

// The ring with the nearest pixel inside, or a value, in the place of the pixels that do not exist.
void median3x3Ring(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, bool replicate,
                   uint8_t outside)
{
    const BorderedImage<uint8_t> bordered(src, width, height, replicate, outside);
    for (int64_t y = 0; y <= bordered.bottom; ++y)
        for (int64_t x = 0; x <= bordered.right; ++x) {
            if (y > 0 && y < bordered.bottom && x > 0 && x < bordered.right)
                continue;
            const auto column = [&](int64_t u) {
                return sorted(bordered.at(u, y - 1), bordered.at(u, y), bordered.at(u, y + 1));
            };
            dst.row(static_cast<size_t>(y))[x] = medianOf(column(x - 1), column(x), column(x + 1));
        }
}

// ---- MxN ----------------------------------------------------------------------------------------

int16_t medianOfThree(int16_t a, int16_t b, int16_t c)
{
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

// Quickselect: the element that would stand at `rank` if the values were sorted. The pivot is the median of the first,
// the middle and the last value of the range in question.
int16_t select(int16_t* values, int64_t count, int64_t rank)
{
    int64_t first = 0, last = count - 1;
    while (last - first > 1) {
        const int16_t pivot = medianOfThree(values[first], values[first + (last - first) / 2], values[last]);
        int64_t i = first, j = last;
        while (i <= j) { // up to j: at most the pivot; from i on: at least the pivot
            while (values[i] < pivot)
                ++i;
            while (values[j] > pivot)
                --j;
            if (i <= j)
                std::swap(values[i++], values[j--]);
        }
        if (rank <= j)
            last = j;
        else if (rank >= i)
            first = i;
        else
            return pivot;
    }
    if (values[last] < values[first])
        std::swap(values[first], values[last]);
    return values[rank];
}

} // namespace

void rvkFilterMedian3x3u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstStride)
{
    median3x3Interior(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
}

rvkStatus rvkFilterMedian3x3u8_v3C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    median3x3Interior(srcWidth, srcHeight, in, out);
    const bool replicate = borderType == RAVIK_BORDER_REPLICATE;
    if (replicate || borderType == RAVIK_BORDER_CONSTANT)
        median3x3Ring(srcWidth, srcHeight, in, out, replicate, borderValue);
    return RAVIK_SUCCESS;
}

rvkStatus rvkFilterMedianMxNs16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t M, uint32_t N, int16_t* dst, uint32_t dstStride)
{
    const Plane in = {src, srcStride};
    const Plane out = {dst, dstStride};
    const size_t size = size_t{M} * N, left = M / 2, top = N / 2;
    const Scratch<int16_t> window(N, M);
    if (!window)
        return RAVIK_ENORES;

    for (size_t y = 0; y < srcHeight; ++y)
        for (size_t x = 0; x < srcWidth; ++x) {
            const bool interior = x >= left && x + left < srcWidth && y >= top && y + top < srcHeight;
            if (!interior) {
                out.row(y)[x] = in.row(y)[x];
                continue;
            }
            for (size_t j = 0; j < N; ++j)
                std::copy_n(in.row(y - top + j) + x - left, M, window.get() + j * M);
            const auto count = static_cast<int64_t>(size);
            out.row(y)[x] = select(window.get(), count, (count - 1) >> 1);
        }
    return RAVIK_SUCCESS;
}

} // namespace rvk

// C references of dilation and erosion.
#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <algorithm>

namespace rvk {
namespace {

// The extreme that a filter takes, and the value that never is one unless all are.
struct Largest
{
    static constexpr uint8_t neutral = 0;
    static uint8_t of(uint8_t a, uint8_t b) { return std::max(a, b); }
};
struct Smallest
{
    static constexpr uint8_t neutral = 255;
    static uint8_t of(uint8_t a, uint8_t b) { return std::min(a, b); }
};

// ---- 3x3: every pixel outside the picture counts as `outside` -----------------------------------

template <class Extreme>
void filter3x3(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint8_t outside)
{
    const BorderedImage<uint8_t> bordered(src, width, height, false, outside);
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            uint8_t extreme = Extreme::neutral;
            for (int64_t v = y - 1; v <= y + 1; ++v)
                for (int64_t u = x - 1; u <= x + 1; ++u)
                    extreme = Extreme::of(extreme, bordered.at(u, v));
            dst.row(static_cast<size_t>(y))[x] = extreme;
        }
}

template <class Extreme>
uint8_t outsideValue(uint32_t borderType, uint8_t borderValue)
{
    return borderType == RAVIK_BORDER_CONSTANT ? borderValue : Extreme::neutral;
}

// ---- NxN: columns, then rows --------------------------------------------------------------------

// result[i] = the extreme of line[i], ... line[i + N - 1], for i < `count`. `line` has count + N - 1 elements in blocks
// of N. A window covers the end of one block and the beginning of the next: the extremes of the ends go into
// `backward`, as long as the line; those of the beginnings run along. A window that is a block is both.
template <class Extreme>
void slidingExtremes(size_t count, size_t N, const uint8_t* line, uint8_t* backward, uint8_t* result)
{
    const size_t length = count + N - 1;
    for (size_t i = length; i-- > 0;) {
        const bool endsBlock = i % N == N - 1 || i == length - 1;
        backward[i] = endsBlock ? line[i] : Extreme::of(line[i], backward[i + 1]);
    }
    uint8_t forward = 0;
    for (size_t i = 0; i < length; ++i) {
        forward = i % N == 0 ? line[i] : Extreme::of(forward, line[i]);
        if (i + 1 >= N)
            result[i + 1 - N] = Extreme::of(backward[i + 1 - N], forward);
    }
}

template <class Extreme>
rvkStatus filterNxN(uint32_t width, uint32_t height, Plane<const uint8_t> src, size_t N, Plane<uint8_t> dst)
{
    const size_t longestLine = std::max(width, height) + N - 1, before = N / 2;
    const Scratch<uint8_t> columns(width, height), line(longestLine), backward(longestLine);
    if (!columns || !line || !backward)
        return RAVIK_ENORES;

    // A line surrounded by neutral values. What lies behind the line needs no refill: all columns end at the same
    // place.
    uint8_t* const inner = line.get() + before;
    std::fill_n(line.get(), longestLine, Extreme::neutral);
    for (size_t x = 0; x < width; ++x) {
        for (size_t y = 0; y < height; ++y)
            inner[y] = src.row(y)[x];
        slidingExtremes<Extreme>(height, N, line.get(), backward.get(), columns.get() + x * height);
    }
    std::fill_n(line.get(), longestLine, Extreme::neutral);
    for (size_t y = 0; y < height; ++y) {
        for (size_t x = 0; x < width; ++x)
            inner[x] = columns[x * height + y];
        slidingExtremes<Extreme>(width, N, line.get(), backward.get(), dst.row(y));
    }
    return RAVIK_SUCCESS;
}

} // namespace
} // namespace rvk

#include "forms/ravikMorphologyForms.h"

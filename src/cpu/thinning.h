// Thinning of the references: the pixels whose gradient is the largest across the edge.
#pragma once

#include "cpu/image.h"
#include "cpu/ravikCannyC.h"

#include <cstdlib>

namespace rvk {

// Whether the magnitude here[0] is the largest across the edge. The pointers are to the magnitudes at one column of
// three rows.
inline bool isRidge(const uint32_t* above, const uint32_t* here, const uint32_t* below, int32_t dx, int32_t dy)
{
    const int32_t x = std::abs(dx), y = std::abs(dy); // below 2^14: products fit 32 bits
    const uint32_t m = here[0];
    if (y * 32768 <= x * kTan22)
        return m > here[-1] && m >= here[1];
    if (y * 32768 > x * (kTan22 + 65536))
        return m > above[0] && m >= below[0];
    const int side = (dx < 0) == (dy < 0) ? -1 : 1;
    return m > above[side] && m > below[-side];
}

// Working memory of forEachRidge(): so many rows of `width` + 2 magnitudes.
constexpr uint32_t kRowsOfThinning = 3;

// take(x, y, magnitude) for each pixel that stays and has a magnitude above `low`, in raster order. The magnitude is
// |dx| + |dy|, or dx^2 + dy^2.
template <class Take>
void forEachRidge(uint32_t width, uint32_t height, Plane<const int16_t> dx, Plane<const int16_t> dy, bool squared,
                  uint32_t low, uint32_t* magnitudes, Take take)
{
    const size_t pitch = size_t{width} + 2; // the pixels of a row between two that are 0
    std::fill_n(magnitudes, kRowsOfThinning * pitch, 0u);
    const auto magnitudeRow = [&](size_t y) { return magnitudes + (y + 3) % 3 * pitch + 1; };
    const auto magnitude = [=](int32_t h, int32_t v) {
        return static_cast<uint32_t>(squared ? h * h + v * v : std::abs(h) + std::abs(v));
    };
    const auto computeMagnitudes = [&](size_t y) {
        for (size_t x = 0; x < width; ++x)
            magnitudeRow(y)[x] = y < height ? magnitude(dx.row(y)[x], dy.row(y)[x]) : 0;
    };
    computeMagnitudes(0);
    for (size_t y = 0; y < height; ++y) {
        computeMagnitudes(y + 1);
        const uint32_t *above = magnitudeRow(y + 2), *here = magnitudeRow(y), *below = magnitudeRow(y + 1);
        for (size_t x = 0; x < width; ++x)
            if (here[x] > low && isRidge(above + x, here + x, below + x, dx.row(y)[x], dy.row(y)[x]))
                take(x, y, here[x]);
    }
}

} // namespace rvk

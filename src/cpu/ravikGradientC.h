// The derivative operators, for the references of everything that is made of them.
#pragma once

#include "cpu/image.h"

#include <cstddef>
#include <cstdint>

namespace rvk {

struct Derivatives
{
    int dx, dy;
};

// Differences across, weighted `side`, `middle`, `side` along: of pixel x of the middle row.
template <int side, int middle>
Derivatives derivatives3x3(const uint8_t* above, const uint8_t* row, const uint8_t* below, size_t x)
{
    return {side * (above[x + 1] - above[x - 1]) + middle * (row[x + 1] - row[x - 1]) +
                side * (below[x + 1] - below[x - 1]),
            side * (below[x - 1] - above[x - 1]) + middle * (below[x] - above[x]) +
                side * (below[x + 1] - above[x + 1])};
}

inline Derivatives sobel3x3(const uint8_t* above, const uint8_t* row, const uint8_t* below, size_t x)
{
    return derivatives3x3<1, 2>(above, row, below, x);
}

// The 7x7 Sobel sums of a picture that is continued by its nearest pixels, divided by 16 and rounded to the nearest,
// halves to the even one: -10200..10200.
void sobel7x7Sixteenths(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<int16_t> dx,
                        Plane<int16_t> dy);

} // namespace rvk

// The derivative operators, for the references of everything that is made of them.
#pragma once

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

} // namespace rvk

// Corners between pixels: all but the sums over windows, which either room forms.
#pragma once

#include <ravik/harris.h>

#include <cstddef>

namespace rvk {

// Arrays by columns have room for whole vectors, and bytes of a patch for those that begin at one of its columns.
constexpr size_t kSubPixLanes = 16;

// Which pixels of a window count, and how much.
struct SubPixWindow
{
    size_t columns, rows;
    size_t pitch;                // of arrays by columns
    const float32_t* rowWeights; // of its rows
    const float32_t* isAlive;    // of its columns: 0 in the dead zone, else 1
    size_t deadTop, deadBottom;  // the rows of the dead zone; the last one is outside
};

// The bytes around a window, from one column left of it and one row above it to two after it. Samples lie to the right
// of pixels and below them by fractions, multiples of 2^-14: that of column 0 and row 0 is made of the bytes (1, 1) to
// (2, 2) here.
struct SubPixPatch
{
    const uint8_t* bytes;
    size_t pitch;
    float32_t right, below;
};

// Sums down the columns of a window, arrays by columns: of the weighted products of the gradients, dx dx, dx dy and
// dy dy, and of the last two times the distance of the row below the centre.
struct SubPixSums
{
    float32_t *xx, *xy, *yy, *xyTimesRow, *yyTimesRow;
};

using SumSubPixColumns = void(const SubPixWindow& window, const SubPixPatch& patch, const SubPixSums& sums);

struct SubPixSearch
{
    uint32_t radiusX, radiusY;
    int32_t deadRadiusX, deadRadiusY;
    uint32_t maxIterations;
    float32_t epsilon;
};

rvkStatus refineCorners(SumSubPixColumns* sumColumns, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                        uint32_t srcStride, float32_t* xy, uint32_t nCorners, const SubPixSearch& search);

} // namespace rvk

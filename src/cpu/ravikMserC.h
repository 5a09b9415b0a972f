// What a handle of the MSER functions is, and the cells that the preparing kernels make of a picture.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rvk {

// ---- cells ---------------------------------------------------------------------------------------------------------

// A cell has the grey value of its pixel, or kMserSeen and more once a flood has seen it. Cells lie in rows of
// width + 1, the first of which is no pixel's; such rows are above and below the picture, and one more cell at the end.
// What is no pixel's has kMserSeen. So each pixel has 4 or 8 neighbours, always at the same distances.
constexpr uint16_t kMserSeen = 0x100;

// (Always inline, because vector implementations may not leave shared definitions behind.)
__attribute__((always_inline)) constexpr uint32_t mserPitch(uint32_t width)
{
    return width + 1;
}
__attribute__((always_inline)) constexpr uint64_t mserCells(uint32_t width, uint32_t height)
{
    return uint64_t{mserPitch(width)} * (uint64_t{height} + 2) + 1;
}

// ---- parameters and handles ----------------------------------------------------------------------------------------

struct MserParameters
{
    uint32_t delta, minArea, maxArea;
    float maxVariation, minDiversity;
};

// The working memory of a pass.
uint64_t mserWorkspaceSize(uint32_t width, uint32_t height);

// Stands before the working memory of the two passes.
struct alignas(64) MserHandle
{
    MserParameters parameters;
    uint32_t maxWidth, maxHeight;
};

} // namespace rvk

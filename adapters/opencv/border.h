// Filters with OpenCV's borders, by functions of the library that know others: what lies outside is written around a
// copy of the picture, some rows at a time, so that the copy stays in the cache.
#pragma once

#include "hal.h"

#include <functional>

namespace rvk::hal {

// A picture, with the pixels around it that belong to the same matrix.
struct Source
{
    const uint8_t* data;
    size_t step;
    int width, height;
    int left = 0, top = 0, right = 0, bottom = 0; // pixels around it

    bool hasSurroundings() const { return left || top || right || bottom; }
};

struct Target
{
    void* data;
    size_t step;
    int width, height;
    size_t pixelSize; // bytes
};

// What is taken for pixels beyond the matrix.
struct Outside
{
    int border;        // one of OpenCV's, without "isolated"
    uint8_t value = 0; // of the constant border
};

// The memory of a source with what surrounds it, and of a target.
Extent extentOf(const Source& source);
Extent extentOf(const Target& target);

// A function of the library on one picture of bytes: (src, width, height, srcStride, dst, dstStride).
using Filter = std::function<rvkStatus(const uint8_t*, uint32_t, uint32_t, uint32_t, void*, uint32_t)>;

// What filterWithBorder has to know of one.
struct Windows
{
    Filter filter;
    int radius;     // how far the windows reach at most
    bool hasBorder; // whether it does by itself what the border asks, if nothing surrounds the picture
    int scale = 1;  // with 2 the pixel (x, y) of the target has its window around the source's pixel (2x, 2y)
};

// The target becomes what the windows make of the source, with OpenCV's border around it. It is the source itself, or
// apart from it and from what surrounds it; otherwise OpenCV's result depends on the order in which it reads and writes.
// Returns what a hook returns.
int filterWithBorder(const Source& source, const Target& target, const Outside& outside, const Windows& windows);

} // namespace rvk::hal

// What the reference and the vector implementation of edge pixels and line segments share.
#pragma once

#include <ravik/hough.h>

namespace rvk {

// Edge pixels in raster order: pairs of x and y, and of dx and dy.
struct EdgePixels
{
    const uint32_t* xy;
    const int16_t* gradients;
    uint32_t count;
};

// The segments that edge pixels of a picture of this width make.
rvkStatus findLineSegments(const EdgePixels& pixels, uint32_t width, float32_t minLength, float32_t maxError,
                           rvkLineSegment* segments, uint32_t nSegmentsMax, uint32_t* nSegments);

} // namespace rvk

// Forms of the line segments.
#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkImageDetectLineSegmentsu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, uint32_t threshold, float32_t minLength,
                                                 float32_t maxError, rvkLineSegment* segments, uint32_t nSegmentsMax,
                                                 uint32_t* nSegments)
{
    // Room for every pixel; no more of it is touched than edges need.
    const Scratch<uint32_t> xy(2 * uint64_t{srcHeight}, srcWidth);
    const Scratch<int16_t> gradients(2 * uint64_t{srcHeight}, srcWidth);
    if (!xy || !gradients)
        return RAVIK_ENORES;
    uint32_t nPixels = 0;
    const rvkStatus status = RVK_FORM(rvkImageDetectEdgePixelsu8)(
        src, srcWidth, srcHeight, srcStride, threshold, xy.get(), srcWidth * srcHeight, &nPixels, gradients.get());
    if (status != RAVIK_SUCCESS)
        return status;
    return findLineSegments({xy.get(), gradients.get(), nPixels}, srcWidth, minLength, maxError, segments, nSegmentsMax,
                            nSegments);
}

} // namespace RVK_ROOM

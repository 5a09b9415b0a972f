// Hough transforms, edge pixels, line segments: the public functions.
#include "dispatch.h"

#include <cmath>

using namespace rvk;

namespace {

// The working memory of a picture: four bytes a pixel must have a size that 32 bits hold.
bool acceptsPicture(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    return src && width && height && stride >= width && uint64_t{width} * height <= UINT32_MAX / 4;
}

} // namespace

rvkStatus rvkHoughLineu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                         uint32_t nAngles, float32_t rhoStep, uint32_t threshold, rvkLine* lines, uint32_t nLinesMax,
                         uint32_t* nLines)
{
    constexpr uint32_t longestSide = 16384; // so that products of coordinates, c and s fit 32 bits
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkHoughLineu8);
    RVK_CHECK_STATUS(acceptsPicture(src, srcWidth, srcHeight, srcStride) && srcWidth <= longestSide &&
                     srcHeight <= longestSide && nAngles && std::isfinite(rhoStep) && rhoStep >= 0.5f && threshold &&
                     lines && nLines);
    return implementation<Slot::rvkHoughLineu8>(target)(src, srcWidth, srcHeight, srcStride, nAngles, rhoStep,
                                                        threshold, lines, nLinesMax, nLines);
}

rvkStatus rvkHoughCircleu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           uint32_t edgeThreshold, uint32_t minRadius, uint32_t maxRadius, uint32_t centerThreshold,
                           uint32_t minDistance, rvkCircle* circles, uint32_t nCirclesMax, uint32_t* nCircles)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkHoughCircleu8);
    RVK_CHECK_STATUS(acceptsPicture(src, srcWidth, srcHeight, srcStride) && edgeThreshold && edgeThreshold <= 32767 &&
                     minRadius && minRadius <= maxRadius && centerThreshold && circles && nCircles);
    return implementation<Slot::rvkHoughCircleu8>(target)(src, srcWidth, srcHeight, srcStride, edgeThreshold, minRadius,
                                                          maxRadius, centerThreshold, minDistance, circles, nCirclesMax,
                                                          nCircles);
}

rvkStatus rvkImageDetectEdgePixelsu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint32_t threshold, uint32_t* xy, uint32_t nPixelsMax, uint32_t* nPixels,
                                     int16_t* gradients)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageDetectEdgePixelsu8);
    RVK_CHECK_STATUS(acceptsPicture(src, srcWidth, srcHeight, srcStride) && xy && nPixels);
    return implementation<Slot::rvkImageDetectEdgePixelsu8>(target)(src, srcWidth, srcHeight, srcStride, threshold, xy,
                                                                    nPixelsMax, nPixels, gradients);
}

rvkStatus rvkImageDetectLineSegmentsu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint32_t threshold, float32_t minLength, float32_t maxError,
                                       rvkLineSegment* segments, uint32_t nSegmentsMax, uint32_t* nSegments)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageDetectLineSegmentsu8);
    RVK_CHECK_STATUS(acceptsPicture(src, srcWidth, srcHeight, srcStride) && minLength >= 0 && maxError >= 0 &&
                     segments && nSegments);
    return implementation<Slot::rvkImageDetectLineSegmentsu8>(target)(
        src, srcWidth, srcHeight, srcStride, threshold, minLength, maxError, segments, nSegmentsMax, nSegments);
}

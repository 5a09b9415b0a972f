// Corners and maxima: the public functions.
#include "dispatch.h"

#include <cmath>

using namespace rvk;

namespace {

bool suitsDsp(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    return aligned(8, src, stride) && enoughWork(width, height);
}

// Whether a window of so many pixels to each side of its centre fits.
bool fits(uint32_t radius, uint32_t size)
{
    return uint64_t{radius} * 2 + 1 <= size;
}

} // namespace

void rvkCornerHarrisu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t border,
                       uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners, int32_t threshold)
{
    stride = packedIfZero(stride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkCornerHarrisu8, [&] { return suitsDsp(src, width, height, stride); });
    RVK_CHECK_ARGS(src && xy && numcorners && width && height && (stride >= width) && width > 4 && height > 4);
    implementation<Slot::rvkCornerHarrisu8>(target)(src, width, height, stride, border, xy, nCornersMax, numcorners,
                                                    threshold);
}

void rvkCornerHarrisInMasku8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t border,
                             uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners, int32_t threshold,
                             const uint8_t* bitMask, uint32_t maskWidth, uint32_t maskHeight)
{
    stride = packedIfZero(stride, width);
    const RVK_IMPL target =
        chooseTarget(Slot::rvkCornerHarrisInMasku8, [&] { return suitsDsp(src, width, height, stride); });
    RVK_CHECK_ARGS(src && xy && numcorners && bitMask && width && height && (stride >= width) && width > 4 &&
                   height > 4);
    implementation<Slot::rvkCornerHarrisInMasku8>(target)(src, width, height, stride, border, xy, nCornersMax,
                                                          numcorners, threshold, bitMask, maskWidth, maskHeight);
}

void rvkCornerHarrisScoreu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t border,
                            uint32_t* xy, uint32_t* scores, uint32_t nCornersMax, uint32_t* numcorners,
                            int32_t threshold)
{
    stride = packedIfZero(stride, width);
    const RVK_IMPL target =
        chooseTarget(Slot::rvkCornerHarrisScoreu8, [&] { return suitsDsp(src, width, height, stride); });
    RVK_CHECK_ARGS(src && xy && scores && numcorners && width && height && (stride >= width) && width > 4 &&
                   height > 4);
    implementation<Slot::rvkCornerHarrisScoreu8>(target)(src, width, height, stride, border, xy, scores, nCornersMax,
                                                         numcorners, threshold);
}

void rvkCornerHarrisAdaptiveu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t border,
                               uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners, int32_t threshold,
                               int32_t minThreshold)
{
    stride = packedIfZero(stride, width);
    const RVK_IMPL target =
        chooseTarget(Slot::rvkCornerHarrisAdaptiveu8, [&] { return suitsDsp(src, width, height, stride); });
    RVK_CHECK_ARGS(src && xy && numcorners && width && height && (stride >= width) && width > 4 && height > 4);
    implementation<Slot::rvkCornerHarrisAdaptiveu8>(target)(src, width, height, stride, border, xy, nCornersMax,
                                                            numcorners, threshold, minThreshold);
}

rvkStatus rvkLocalHarrisMaxu8(const uint8_t* patch, uint32_t width, uint32_t height, uint32_t stride, uint32_t* maxX,
                              uint32_t* maxY, int32_t* maxResponse)
{
    stride = packedIfZero(stride, width);
    const RVK_IMPL target =
        chooseTarget(Slot::rvkLocalHarrisMaxu8, [&] { return suitsDsp(patch, width, height, stride); });
    RVK_CHECK_STATUS(patch && maxX && maxY && maxResponse && width > 6 && height > 6 && stride >= width);
    return implementation<Slot::rvkLocalHarrisMaxu8>(target)(patch, width, height, stride, maxX, maxY, maxResponse);
}

rvkStatus rvkGoodFeatureToTracku8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  float32_t minDistance, uint32_t border, float32_t threshold, uint32_t* xy,
                                  uint32_t nCornersMax, uint32_t* nCorners)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target =
        chooseTarget(Slot::rvkGoodFeatureToTracku8, [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride); });
    RVK_CHECK_STATUS(src && xy && nCorners && srcWidth && srcHeight && srcStride >= srcWidth &&
                     !std::isnan(minDistance) && !std::isnan(threshold));
    return implementation<Slot::rvkGoodFeatureToTracku8>(target)(src, srcWidth, srcHeight, srcStride, minDistance,
                                                                 border, threshold, xy, nCornersMax, nCorners);
}

rvkStatus rvkCornerRefineSubPixu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  float32_t* xy, uint32_t nCorners, uint32_t windowRadiusX, uint32_t windowRadiusY,
                                  int32_t deadRadiusX, int32_t deadRadiusY, uint32_t maxIterations, float32_t epsilon)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target =
        chooseTarget(Slot::rvkCornerRefineSubPixu8, [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride); });
    RVK_CHECK_STATUS(src && xy && srcStride >= srcWidth && windowRadiusX && windowRadiusY &&
                     fits(windowRadiusX, srcWidth) && fits(windowRadiusY, srcHeight) && !std::isnan(epsilon));
    return implementation<Slot::rvkCornerRefineSubPixu8>(target)(src, srcWidth, srcHeight, srcStride, xy, nCorners,
                                                                 windowRadiusX, windowRadiusY, deadRadiusX, deadRadiusY,
                                                                 maxIterations, epsilon);
}

rvkStatus rvkFindMultipleMaximau8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint32_t radius, uint8_t threshold, uint32_t* xy, uint32_t* values,
                                  uint32_t nMaximaMax, uint32_t* nMaxima)
{
    constexpr uint32_t largestRadius = 15;
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target =
        chooseTarget(Slot::rvkFindMultipleMaximau8, [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride); });
    RVK_CHECK_STATUS(src && xy && nMaxima && srcWidth && srcHeight && srcStride >= srcWidth && radius &&
                     radius <= largestRadius);
    return implementation<Slot::rvkFindMultipleMaximau8>(target)(src, srcWidth, srcHeight, srcStride, radius, threshold,
                                                                 xy, values, nMaximaMax, nMaxima);
}

// The corner detectors, by the searches findHarrisCorners and findGoodFeatures of either room.
#pragma once

#include "forms/form.h"
#include "log.h"

namespace RVK_ROOM {

void RVK_FORM(rvkCornerHarrisu8)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t border,
                                 uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners, int32_t threshold)
{
    requireScratchOfHarris(listCorners(findHarrisCorners, {src, width, height, stride}, border, threshold,
                                       {.xy = xy, .most = nCornersMax, .count = numcorners}));
}

void RVK_FORM(rvkCornerHarrisInMasku8)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                       uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners,
                                       int32_t threshold, const uint8_t* bitMask, uint32_t maskWidth,
                                       uint32_t maskHeight)
{
    const BitMask mask(bitMask, maskWidth, maskHeight, width, height);
    if (!mask) {
        *numcorners = 0;
        return;
    }
    logIfOutOfScratch("rvkCornerHarrisInMasku8",
                      listCorners(findHarrisCorners, {src, width, height, stride}, border, threshold,
                                  {.xy = xy, .most = nCornersMax, .count = numcorners, .mask = &mask}));
}

void RVK_FORM(rvkCornerHarrisScoreu8)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                      uint32_t border, uint32_t* xy, uint32_t* scores, uint32_t nCornersMax,
                                      uint32_t* numcorners, int32_t threshold)
{
    logIfOutOfScratch("rvkCornerHarrisScoreu8",
                      listCorners(findHarrisCorners, {src, width, height, stride}, border, threshold,
                                  {.xy = xy, .most = nCornersMax, .count = numcorners, .scores = scores}));
}

void RVK_FORM(rvkCornerHarrisAdaptiveu8)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                         uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners,
                                         int32_t threshold, int32_t minThreshold)
{
    logIfOutOfScratch("rvkCornerHarrisAdaptiveu8",
                      listCornersAdaptively(findHarrisCorners, {src, width, height, stride}, border, threshold,
                                            minThreshold, {.xy = xy, .most = nCornersMax, .count = numcorners}));
}

rvkStatus RVK_FORM(rvkGoodFeatureToTracku8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, float32_t minDistance, uint32_t border,
                                            float32_t threshold, uint32_t* xy, uint32_t nCornersMax, uint32_t* nCorners)
{
    return listDistantCorners(findGoodFeatures, {src, srcWidth, srcHeight, srcStride}, border, threshold, minDistance,
                              {.xy = xy, .most = nCornersMax, .count = nCorners});
}

} // namespace RVK_ROOM

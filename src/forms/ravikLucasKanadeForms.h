// Lucas-Kanade tracking, by kernelsOf<T> of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkTrackLKOpticalFlowu8_v2)(const rvkPyramidLevel* pyr1, const rvkPyramidLevel* pyr2,
                                               uint32_t numLevels, const float32_t* points1, float32_t* points2,
                                               uint32_t numPoints, uint32_t winWidth, uint32_t winHeight,
                                               uint32_t maxIterations, float32_t epsilon, float32_t minEigenvalue,
                                               uint8_t* status, float32_t* errors)
{
    return trackPoints(kernelsOf<uint8_t>, pyr1, pyr2, numLevels, {points1, points2, numPoints, status, errors, 0},
                       {winWidth, winHeight, maxIterations, epsilon, minEigenvalue});
}

rvkStatus RVK_FORM(rvkTrackLKOpticalFlowu8_v3)(const rvkPyramidLevel_v2* pyr1, const rvkPyramidLevel_v2* pyr2,
                                               uint32_t numLevels, const float32_t* points1, float32_t* points2,
                                               uint32_t numPoints, uint32_t winWidth, uint32_t winHeight,
                                               uint32_t maxIterations, float32_t epsilon, float32_t minEigenvalue,
                                               uint8_t* status, float32_t* errors, uint32_t useGuess)
{
    return trackPoints(kernelsOf<uint8_t>, pyr1, pyr2, numLevels,
                       {points1, points2, numPoints, status, errors, useGuess},
                       {winWidth, winHeight, maxIterations, epsilon, minEigenvalue});
}

rvkStatus RVK_FORM(rvkTrackLKOpticalFlowf32)(const rvkPyramidLevel* pyr1, const rvkPyramidLevel* pyr2,
                                             uint32_t numLevels, const float32_t* points1, float32_t* points2,
                                             uint32_t numPoints, uint32_t winWidth, uint32_t winHeight,
                                             uint32_t maxIterations, float32_t epsilon, float32_t minEigenvalue,
                                             uint8_t* status, float32_t* errors)
{
    return trackPoints(kernelsOf<float32_t>, pyr1, pyr2, numLevels, {points1, points2, numPoints, status, errors, 0},
                       {winWidth, winHeight, maxIterations, epsilon, minEigenvalue});
}

} // namespace RVK_ROOM

// The functions that take the parts of correspondences one by one.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkGeomHomographyEvaluatef32_v2)(const float32_t* src, uint32_t srcStride, const float32_t* dst,
                                                    uint32_t dstStride, uint32_t count, const float32_t* homography,
                                                    float32_t maxSquaredError, float32_t* squaredErrors,
                                                    uint8_t* inliers, uint32_t* numInliers)
{
    const rvkaCorrespondences pairs = {src, srcStride, dst, dstStride, count, nullptr};
    *numInliers = RVK_FORM(rvkGeomHomographyEvaluatef32)(&pairs, homography, maxSquaredError, squaredErrors, inliers);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkGeomHomographyRobustFitf32_v2)(const float32_t* src, uint32_t srcStride, const float32_t* dst,
                                                     uint32_t dstStride, uint32_t count, const uint8_t* mask,
                                                     float32_t maxSquaredError, uint32_t maxIterations,
                                                     float32_t confidence, uint32_t seed, float32_t* homography,
                                                     uint8_t* inliers, uint32_t* numInliers)
{
    const rvkaCorrespondences pairs = {src, srcStride, dst, dstStride, count, mask};
    return RVK_FORM(rvkGeomHomographyRobustFitf32)(&pairs, maxSquaredError, maxIterations, confidence, seed, homography,
                                                   inliers, numInliers);
}

} // namespace RVK_ROOM

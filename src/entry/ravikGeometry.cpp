// Maps fitted to correspondences: the public functions.
#include "points.h"

#include <ravik/geometry.h>

using namespace rvk;

namespace {

// Pairs given one by one.
rvkaCorrespondences listed(const float32_t* src, uint32_t srcStride, const float32_t* dst, uint32_t dstStride,
                           uint32_t count, const uint8_t* mask = nullptr)
{
    const rvkaCorrespondences pairs = {src, srcStride, dst, dstStride, count, mask};
    return withStrides(&pairs);
}

bool isConfidence(float32_t confidence)
{
    return confidence > 0 && confidence <= 1;
}

} // namespace

// ---- how far pairs lie from a model ---------------------------------------------------------------------------------

uint32_t rvkGeomAffineEvaluatef32(const rvkaCorrespondences* pairs, const float32_t* affine, float32_t maxSquaredError,
                                  float32_t* squaredErrors, uint8_t* inliers)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomAffineEvaluatef32);
    const rvkaCorrespondences all = withStrides(pairs);
    if (!(arePairs(all) && affine && maxSquaredError >= 0))
        return 0;
    return implementation<Slot::rvkGeomAffineEvaluatef32>(target)(&all, affine, maxSquaredError, squaredErrors,
                                                                  inliers);
}

uint32_t rvkGeomHomographyEvaluatef32(const rvkaCorrespondences* pairs, const float32_t* homography,
                                      float32_t maxSquaredError, float32_t* squaredErrors, uint8_t* inliers)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomHomographyEvaluatef32);
    const rvkaCorrespondences all = withStrides(pairs);
    if (!(arePairs(all) && homography && maxSquaredError >= 0))
        return 0;
    return implementation<Slot::rvkGeomHomographyEvaluatef32>(target)(&all, homography, maxSquaredError, squaredErrors,
                                                                      inliers);
}

uint32_t rvkGeomPoseEvaluatef32(const rvkaCorrespondences* pairs, const float32_t* pose, float32_t maxSquaredError,
                                float32_t* squaredErrors, uint8_t* inliers)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomPoseEvaluatef32);
    const rvkaCorrespondences all = withStrides(pairs, kPoint3);
    if (!(arePairs(all, kPoint3) && pose && maxSquaredError >= 0))
        return 0;
    return implementation<Slot::rvkGeomPoseEvaluatef32>(target)(&all, pose, maxSquaredError, squaredErrors, inliers);
}

rvkStatus rvkGeomHomographyEvaluatef32_v2(const float32_t* src, uint32_t srcStride, const float32_t* dst,
                                          uint32_t dstStride, uint32_t count, const float32_t* homography,
                                          float32_t maxSquaredError, float32_t* squaredErrors, uint8_t* inliers,
                                          uint32_t* numInliers)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomHomographyEvaluatef32_v2);
    const rvkaCorrespondences all = listed(src, srcStride, dst, dstStride, count);
    RVK_CHECK_STATUS(arePairs(all) && homography && maxSquaredError >= 0 && numInliers);
    return implementation<Slot::rvkGeomHomographyEvaluatef32_v2>(target)(
        src, all.srcStride, dst, all.dstStride, count, homography, maxSquaredError, squaredErrors, inliers, numInliers);
}

// ---- fits -----------------------------------------------------------------------------------------------------------

rvkStatus rvkGeomAffineFitf32(const rvkaCorrespondences* pairs, float32_t* affine)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomAffineFitf32);
    const rvkaCorrespondences all = withStrides(pairs);
    RVK_CHECK_STATUS(arePairs(all) && affine);
    return implementation<Slot::rvkGeomAffineFitf32>(target)(&all, affine);
}

rvkStatus rvkGeomHomographyFitf32(const rvkaCorrespondences* pairs, float32_t* homography)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomHomographyFitf32);
    const rvkaCorrespondences all = withStrides(pairs);
    RVK_CHECK_STATUS(arePairs(all) && homography);
    return implementation<Slot::rvkGeomHomographyFitf32>(target)(&all, homography);
}

rvkStatus rvkGeomHomographyFitf32_v2(const float32_t* src, uint32_t srcStride, const float32_t* dst, uint32_t dstStride,
                                     uint32_t count, const uint8_t* mask, float32_t* homography)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomHomographyFitf32_v2);
    const rvkaCorrespondences all = listed(src, srcStride, dst, dstStride, count, mask);
    RVK_CHECK_STATUS(arePairs(all) && homography);
    return implementation<Slot::rvkGeomHomographyFitf32_v2>(target)(src, all.srcStride, dst, all.dstStride, count, mask,
                                                                    homography);
}

rvkStatus rvkGeomHomographyRobustFitf32(const rvkaCorrespondences* pairs, float32_t maxSquaredError,
                                        uint32_t maxIterations, float32_t confidence, uint32_t seed,
                                        float32_t* homography, uint8_t* inliers, uint32_t* numInliers)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomHomographyRobustFitf32);
    const rvkaCorrespondences all = withStrides(pairs);
    RVK_CHECK_STATUS(arePairs(all) && maxSquaredError >= 0 && maxIterations && isConfidence(confidence) && homography);
    return implementation<Slot::rvkGeomHomographyRobustFitf32>(target)(&all, maxSquaredError, maxIterations, confidence,
                                                                       seed, homography, inliers, numInliers);
}

rvkStatus rvkGeomHomographyRobustFitf32_v2(const float32_t* src, uint32_t srcStride, const float32_t* dst,
                                           uint32_t dstStride, uint32_t count, const uint8_t* mask,
                                           float32_t maxSquaredError, uint32_t maxIterations, float32_t confidence,
                                           uint32_t seed, float32_t* homography, uint8_t* inliers, uint32_t* numInliers)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomHomographyRobustFitf32_v2);
    const rvkaCorrespondences all = listed(src, srcStride, dst, dstStride, count, mask);
    RVK_CHECK_STATUS(arePairs(all) && maxSquaredError >= 0 && maxIterations && isConfidence(confidence) && homography);
    return implementation<Slot::rvkGeomHomographyRobustFitf32_v2>(target)(
        src, all.srcStride, dst, all.dstStride, count, mask, maxSquaredError, maxIterations, confidence, seed,
        homography, inliers, numInliers);
}

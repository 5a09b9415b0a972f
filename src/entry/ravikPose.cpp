// Poses: the public functions.
#include "points.h"

#include <ravik/pose.h>

using namespace rvk;

rvkStatus rvkGeom3PointPoseEstimatef32(const float32_t* points3D, const float32_t* points2D, float32_t* poses,
                                       uint32_t* numPoses)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeom3PointPoseEstimatef32);
    RVK_CHECK_STATUS(points3D && points2D && poses && numPoses);
    return implementation<Slot::rvkGeom3PointPoseEstimatef32>(target)(points3D, points2D, poses, numPoses);
}

rvkStatus rvkGeomPoseEvaluateErrorf32(const rvkaCorrespondences* pairs, const float32_t* pose, float32_t* residuals,
                                      float32_t* meanSquaredError)
{
    const rvkaCorrespondences all = withStrides(pairs, kPoint3);
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomPoseEvaluateErrorf32);
    RVK_CHECK_STATUS(arePairs(all, kPoint3) && pose && meanSquaredError);
    return implementation<Slot::rvkGeomPoseEvaluateErrorf32>(target)(&all, pose, residuals, meanSquaredError);
}

rvkStatus rvkGeomPoseUpdatef32(const float32_t* pose, const float32_t* xi, float32_t* updated)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomPoseUpdatef32);
    RVK_CHECK_STATUS(pose && xi && updated);
    return implementation<Slot::rvkGeomPoseUpdatef32>(target)(pose, xi, updated);
}

rvkStatus rvkGeomPoseRefineGNf32(const rvkaCorrespondences* pairs, const float32_t* pose, uint32_t maxIterations,
                                 float32_t epsilon, float32_t* refined)
{
    const rvkaCorrespondences all = withStrides(pairs, kPoint3);
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomPoseRefineGNf32);
    RVK_CHECK_STATUS(arePairs(all, kPoint3) && pose && epsilon >= 0 && refined);
    return implementation<Slot::rvkGeomPoseRefineGNf32>(target)(&all, pose, maxIterations, epsilon, refined);
}

rvkStatus rvkGeomPoseOptimizeGNf32(const rvkaCorrespondences* pairs, float32_t huber, uint32_t maxIterations,
                                   float32_t epsilon, float32_t* pose, float32_t* cost, uint32_t* numIterations)
{
    const rvkaCorrespondences all = withStrides(pairs, kPoint3);
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomPoseOptimizeGNf32);
    RVK_CHECK_STATUS(arePairs(all, kPoint3) && huber > 0 && epsilon >= 0 && pose);
    return implementation<Slot::rvkGeomPoseOptimizeGNf32>(target)(&all, huber, maxIterations, epsilon, pose, cost,
                                                                  numIterations);
}

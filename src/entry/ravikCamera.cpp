// Points through the lens of a camera: the public functions.
#include "points.h"

#include <ravik/camera.h>

using namespace rvk;

namespace {

// Lists of points, and of as many points of two coordinates that they become. Strides are not 0.
bool areLists(const float32_t* src, uint32_t srcStride, uint32_t srcSize, uint32_t count, const float32_t* dst,
              uint32_t dstStride)
{
    return arePoints(src, srcStride, count, srcSize) && arePoints(dst, dstStride, count, kPoint2) &&
           (src != dst || srcStride == dstStride);
}

} // namespace

rvkStatus rvkGeomDistortPoint2x1f32(const float32_t* camera, const float32_t* distortion, const float32_t* point,
                                    float32_t* distorted)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomDistortPoint2x1f32);
    RVK_CHECK_STATUS(isCamera(camera) && point && distorted);
    return implementation<Slot::rvkGeomDistortPoint2x1f32>(target)(camera, distortion, point, distorted);
}

rvkStatus rvkGeomDistortPoint2xNf32(const float32_t* camera, const float32_t* distortion, const float32_t* points,
                                    uint32_t srcStride, uint32_t numPoints, float32_t* distorted, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, kPoint2);
    dstStride = packedIfZero(dstStride, kPoint2);
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomDistortPoint2xNf32);
    RVK_CHECK_STATUS(isCamera(camera) && areLists(points, srcStride, kPoint2, numPoints, distorted, dstStride));
    return implementation<Slot::rvkGeomDistortPoint2xNf32>(target)(camera, distortion, points, srcStride, numPoints,
                                                                   distorted, dstStride);
}

rvkStatus rvkGeomUndistortPoint2x1f32(const float32_t* camera, const float32_t* distortion, const float32_t* point,
                                      float32_t* undistorted)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomUndistortPoint2x1f32);
    RVK_CHECK_STATUS(isCamera(camera) && point && undistorted);
    return implementation<Slot::rvkGeomUndistortPoint2x1f32>(target)(camera, distortion, point, undistorted);
}

rvkStatus rvkGeomUndistortPoint2xNf32(const float32_t* camera, const float32_t* distortion, const float32_t* points,
                                      uint32_t srcStride, uint32_t numPoints, float32_t* undistorted,
                                      uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, kPoint2);
    dstStride = packedIfZero(dstStride, kPoint2);
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomUndistortPoint2xNf32);
    RVK_CHECK_STATUS(isCamera(camera) && areLists(points, srcStride, kPoint2, numPoints, undistorted, dstStride));
    return implementation<Slot::rvkGeomUndistortPoint2xNf32>(target)(camera, distortion, points, srcStride, numPoints,
                                                                     undistorted, dstStride);
}

rvkStatus rvkGeomProjectPoint3x1f32(const float32_t* camera, const float32_t* distortion, const float32_t* pose,
                                    const float32_t* point, float32_t* projected)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomProjectPoint3x1f32);
    RVK_CHECK_STATUS(isCamera(camera) && pose && point && projected);
    return implementation<Slot::rvkGeomProjectPoint3x1f32>(target)(camera, distortion, pose, point, projected);
}

rvkStatus rvkGeomProjectPoint3xNf32(const float32_t* camera, const float32_t* distortion, const float32_t* pose,
                                    const float32_t* points, uint32_t srcStride, uint32_t numPoints,
                                    float32_t* projected, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, kPoint3);
    dstStride = packedIfZero(dstStride, kPoint2);
    const RVK_IMPL target = chooseTarget(Slot::rvkGeomProjectPoint3xNf32);
    RVK_CHECK_STATUS(isCamera(camera) && pose && areLists(points, srcStride, kPoint3, numPoints, projected, dstStride));
    return implementation<Slot::rvkGeomProjectPoint3xNf32>(target)(camera, distortion, pose, points, srcStride,
                                                                   numPoints, projected, dstStride);
}

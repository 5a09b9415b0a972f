// Pictures of depths and what is made of them, and pictures of another bit depth: the public functions.
#include "bodies.h"
#include "points.h"

using namespace rvk;

namespace {

constexpr uint32_t kPoseElements = 12;

} // namespace

// ---- bit depth ------------------------------------------------------------------------------------------------------

rvkStatus rvkConvertDepthu8s16(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t shift,
                               int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, width);
    dstStride = packedIfZero(dstStride, width, sizeof *dst);
    const RVK_IMPL target = chooseTarget(Slot::rvkConvertDepthu8s16, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(src && dst && isMatrix(width, height, srcStride, sizeof *src) &&
                     isMatrix(width, height, dstStride, sizeof *dst) && shift <= 7);
    return implementation<Slot::rvkConvertDepthu8s16>(target)(src, width, height, srcStride, shift, dst, dstStride);
}

rvkStatus rvkConvertDepths16u8(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t policy,
                               uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, width, sizeof *src);
    dstStride = packedIfZero(dstStride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkConvertDepths16u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(src && dst && isMatrix(width, height, srcStride, sizeof *src) &&
                     isMatrix(width, height, dstStride, sizeof *dst) && shift <= 15 &&
                     (policy == RAVIK_POLICY_WRAP || policy == RAVIK_POLICY_SATURATE));
    return implementation<Slot::rvkConvertDepths16u8>(target)(src, width, height, srcStride, policy, shift, dst,
                                                              dstStride);
}

// ---- pictures of depths ---------------------------------------------------------------------------------------------

rvkStatus rvkConvertDepthImageToPointCloudf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, const float32_t* camera, float32_t* dst,
                                              uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof *src);
    dstStride = packedIfZero(dstStride, srcWidth, 3 * sizeof *dst);
    const RVK_IMPL target = chooseTarget(Slot::rvkConvertDepthImageToPointCloudf32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 4);
    });
    RVK_CHECK_STATUS(src && dst && isMatrix(srcWidth, srcHeight, srcStride, sizeof *src) &&
                     isMatrix(srcWidth, srcHeight, dstStride, sizeof *dst, 3) && isCamera(camera));
    return implementation<Slot::rvkConvertDepthImageToPointCloudf32>(target)(src, srcWidth, srcHeight, srcStride,
                                                                             camera, dst, dstStride);
}

rvkStatus rvkRegisterDepthImagef32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   const float32_t* srcCamera, const float32_t* pose, const float32_t* dstCamera,
                                   float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof *src);
    dstStride = packedIfZero(dstStride, dstWidth, sizeof *dst);
    const RVK_IMPL target = chooseTarget(Slot::rvkRegisterDepthImagef32);
    RVK_CHECK_STATUS(src && pose && dst && isMatrix(srcWidth, srcHeight, srcStride, sizeof *src) &&
                     isMatrix(dstWidth, dstHeight, dstStride, sizeof *dst) && isCamera(srcCamera) &&
                     isCamera(dstCamera));
    if (!areFinite(pose, kPoseElements))
        return RAVIK_EFAIL;
    return implementation<Slot::rvkRegisterDepthImagef32>(target)(src, srcWidth, srcHeight, srcStride, srcCamera, pose,
                                                                  dstCamera, dst, dstWidth, dstHeight, dstStride);
}

rvkStatus rvkDepthFusion8x8x8xNs16(int16_t* distances, int16_t* weights, const int32_t* blocks, uint32_t numBlocks,
                                   float32_t voxelSize, float32_t truncation, int16_t maxWeight, const float32_t* depth,
                                   uint32_t width, uint32_t height, uint32_t stride, const float32_t* camera,
                                   const float32_t* pose)
{
    constexpr uint32_t mostBlocks = (uint32_t{1} << 21) - 1; // less than 2^31 bytes of distances
    stride = packedIfZero(stride, width, sizeof *depth);
    const RVK_IMPL target = chooseTarget(Slot::rvkDepthFusion8x8x8xNs16);
    RVK_CHECK_STATUS(distances && weights && blocks && numBlocks <= mostBlocks && voxelSize > 0 && truncation > 0 &&
                     maxWeight > 0 && depth && isMatrix(width, height, stride, sizeof *depth) && isCamera(camera) &&
                     pose);
    if (!areFinite(pose, kPoseElements))
        return RAVIK_EFAIL;
    return implementation<Slot::rvkDepthFusion8x8x8xNs16>(target)(distances, weights, blocks, numBlocks, voxelSize,
                                                                  truncation, maxWeight, depth, width, height, stride,
                                                                  camera, pose);
}

// ---- alignment ------------------------------------------------------------------------------------------------------

rvkStatus rvkJacobianSE2f32(const float32_t* warped, const float32_t* reference, uint32_t width, uint32_t height,
                            uint32_t srcStride, const float32_t* dx, const float32_t* dy, uint32_t dxyStride,
                            float32_t* jtj, float32_t* jte, float32_t* sumSquares, uint32_t* numPixels)
{
    srcStride = packedIfZero(srcStride, width, sizeof *warped);
    dxyStride = packedIfZero(dxyStride, width, sizeof *dx);
    const RVK_IMPL target = chooseTarget(Slot::rvkJacobianSE2f32);
    RVK_CHECK_STATUS(warped && reference && isMatrix(width, height, srcStride, sizeof *warped) && dx && dy &&
                     isMatrix(width, height, dxyStride, sizeof *dx) && jtj && jte && sumSquares && numPixels);
    return implementation<Slot::rvkJacobianSE2f32>(target)(warped, reference, width, height, srcStride, dx, dy,
                                                           dxyStride, jtj, jte, sumSquares, numPixels);
}

rvkStatus rvkICPJacobianErrorSE3f32(const float32_t* points, uint32_t numPoints, uint32_t pointStride,
                                    const float32_t* vertexMap, const float32_t* normalMap, uint32_t width,
                                    uint32_t height, uint32_t mapStride, const float32_t* camera, const float32_t* pose,
                                    float32_t maxDistance, float32_t* jtj, float32_t* jte, float32_t* sumSquares,
                                    uint32_t* numMatched)
{
    pointStride = packedIfZero(pointStride, kPoint3);
    mapStride = packedIfZero(mapStride, width, 3 * sizeof *vertexMap);
    const RVK_IMPL target = chooseTarget(Slot::rvkICPJacobianErrorSE3f32);
    RVK_CHECK_STATUS(arePoints(points, pointStride, numPoints, kPoint3) && vertexMap && normalMap &&
                     isMatrix(width, height, mapStride, sizeof *vertexMap, 3) && isCamera(camera) && pose &&
                     maxDistance > 0 && jtj && jte && sumSquares && numMatched);
    if (!areFinite(pose, kPoseElements))
        return RAVIK_EFAIL;
    return implementation<Slot::rvkICPJacobianErrorSE3f32>(target)(points, numPoints, pointStride, vertexMap, normalMap,
                                                                   width, height, mapStride, camera, pose, maxDistance,
                                                                   jtj, jte, sumSquares, numMatched);
}

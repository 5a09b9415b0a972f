// Affine and perspective transforms: the public functions.
#include "dispatch.h"

using namespace rvk;

rvkStatus rvkGetPerspectiveTransformf32(const float32_t* src, const float32_t* dst, float32_t* matrix)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGetPerspectiveTransformf32);
    RVK_CHECK_STATUS(src && dst && matrix);
    return implementation<Slot::rvkGetPerspectiveTransformf32>(target)(src, dst, matrix);
}

rvkStatus rvkInvertAffineTransformf32(const float32_t* matrix, float32_t* inverse)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkInvertAffineTransformf32);
    RVK_CHECK_STATUS(matrix && inverse);
    return implementation<Slot::rvkInvertAffineTransformf32>(target)(matrix, inverse);
}

rvkStatus rvkUndistortDisparityConvertDepthf32(const float32_t* disparity, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, const float32_t* camera, const float32_t* distortion,
                                               float32_t baseline, float32_t* depth, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkUndistortDisparityConvertDepthf32, [&] {
        return aligned(4, disparity, depth, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 4);
    });
    RVK_CHECK_STATUS(disparity && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(float32_t)) &&
                     camera && depth && dstStride >= rowSize(srcWidth, sizeof(float32_t)));
    return implementation<Slot::rvkUndistortDisparityConvertDepthf32>(target)(
        disparity, srcWidth, srcHeight, srcStride, camera, distortion, baseline, depth, dstStride);
}

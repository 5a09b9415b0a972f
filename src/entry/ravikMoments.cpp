// Moments: the public functions.
#include "dispatch.h"

using namespace rvk;

rvkStatus rvkImageMomentsu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t binary, rvkMoments* moments)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageMomentsu8);
    RVK_CHECK_STATUS(src && moments && srcWidth && srcHeight && srcStride >= srcWidth);
    return implementation<Slot::rvkImageMomentsu8>(target)(src, srcWidth, srcHeight, srcStride, binary, moments);
}

rvkStatus rvkImageMomentss32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t binary, rvkMoments* moments)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageMomentss32);
    RVK_CHECK_STATUS(src && moments && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(int32_t)));
    return implementation<Slot::rvkImageMomentss32>(target)(src, srcWidth, srcHeight, srcStride, binary, moments);
}

rvkStatus rvkImageMomentsf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t binary, rvkMoments* moments)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageMomentsf32);
    RVK_CHECK_STATUS(src && moments && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(float32_t)));
    return implementation<Slot::rvkImageMomentsf32>(target)(src, srcWidth, srcHeight, srcStride, binary, moments);
}

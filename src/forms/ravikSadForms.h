// Sums of absolute differences, by the drivers blockDistance<size> and patchDistances<size> of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

uint32_t RVK_FORM(rvkSumOfAbsoluteDiff8x8u8)(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                             uint32_t src2Stride)
{
    return blockDistance<8>(src1, src1Stride, src2, src2Stride);
}

uint32_t RVK_FORM(rvkSumOfAbsoluteDiff16x16u8)(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                               uint32_t src2Stride)
{
    return blockDistance<16>(src1, src1Stride, src2, src2Stride);
}

void RVK_FORM(rvkSumOfAbsoluteDiffs8x8u8_v2)(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                             uint32_t srcHeight, uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    patchDistances<8>(patch, srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
}

void RVK_FORM(rvkSumOfAbsoluteDiffs8x8u8)(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                          uint32_t srcHeight, uint32_t srcStride, uint16_t* dst)
{
    RVK_FORM(rvkSumOfAbsoluteDiffs8x8u8_v2)
    (patch, src, srcWidth, srcHeight, srcStride, dst, static_cast<uint32_t>((srcWidth - 7) * sizeof(uint16_t)));
}

void RVK_FORM(rvkSumOfAbsoluteDiffs16x16u8)(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                            uint32_t srcHeight, uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    patchDistances<16>(patch, srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
}

// The internal operations.

uint32_t RVK_FORM(irvkSumOfAbsoluteDiff8x8u8)(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                              uint32_t src2Stride)
{
    return RVK_FORM(rvkSumOfAbsoluteDiff8x8u8)(src1, src1Stride, src2, src2Stride);
}

uint32_t RVK_FORM(irvkSumOfAbsoluteDiff16x16u8)(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                                uint32_t src2Stride)
{
    return RVK_FORM(rvkSumOfAbsoluteDiff16x16u8)(src1, src1Stride, src2, src2Stride);
}

void RVK_FORM(irvkSumOfAbsoluteDiffs16x16u8)(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                             uint32_t srcHeight, uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    RVK_FORM(rvkSumOfAbsoluteDiffs16x16u8)(patch, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

} // namespace RVK_ROOM

// Absolute differences, by the drivers absDiff and absDiffValues of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkAbsDiffu8)(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                            uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    absDiff(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffs32)(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, int32_t* dst, uint32_t dstStride)
{
    absDiff(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void RVK_FORM(rvkAbsDifff32)(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    absDiff(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t value, uint8_t* dst, uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value}, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVs32)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              int32_t value, int32_t* dst, uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value}, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVf32)(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              float32_t value, float32_t* dst, uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value}, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVc3u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t value1, uint8_t value2, uint8_t value3, uint8_t* dst, uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value1, value2, value3}, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVc3s32)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                int32_t value1, int32_t value2, int32_t value3, int32_t* dst, uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value1, value2, value3}, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVc3f32)(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                float32_t value1, float32_t value2, float32_t value3, float32_t* dst,
                                uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value1, value2, value3}, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVc4u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t value1, uint8_t value2, uint8_t value3, uint8_t value4, uint8_t* dst,
                               uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value1, value2, value3, value4}, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVc4s32)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                int32_t value1, int32_t value2, int32_t value3, int32_t value4, int32_t* dst,
                                uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value1, value2, value3, value4}, dst, dstStride);
}

void RVK_FORM(rvkAbsDiffVc4f32)(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                float32_t value1, float32_t value2, float32_t value3, float32_t value4, float32_t* dst,
                                uint32_t dstStride)
{
    absDiffValues(src, srcWidth, srcHeight, srcStride, {value1, value2, value3, value4}, dst, dstStride);
}

} // namespace RVK_ROOM

// Scalers that only forward, to another form or to the driver `repeat` of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

// ---- down -----------------------------------------------------------------------------------------------------------

int32_t RVK_FORM(rvkScaleDownBy2u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride)
{
    return RVK_FORM(rvkScaleDownBy2u8)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

int32_t RVK_FORM(rvkScaleDownBy4u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride)
{
    return RVK_FORM(rvkScaleDownBy4u8)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void RVK_FORM(rvkScaleDownBy2Gaussian5x5f32)(const float32_t* srcImg, uint32_t width, uint32_t height, float32_t* dst)
{
    constexpr uint32_t size = sizeof(float32_t);
    RVK_FORM(rvkScaleDownBy2Gaussian5x5f32_v2)(srcImg, width, height, width * size, dst, width / 2 * size);
}

// ---- up: `repeat` gives each pixel of so many bytes so many times across and down -----------------------------------

void RVK_FORM(rvkUpsampleVerticalu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride)
{
    repeat<1, 1, 2>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
}

void RVK_FORM(rvkUpsampleHorizontalu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride)
{
    repeat<1, 2, 1>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
}

void RVK_FORM(rvkUpsample2Du8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride)
{
    repeat<1, 2, 2>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
}

void RVK_FORM(rvkUpsampleVerticalInterleavedu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    repeat<2, 1, 2>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
}

void RVK_FORM(rvkUpsampleHorizontalInterleavedu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                  uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    repeat<2, 2, 1>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
}

void RVK_FORM(rvkUpsample2DInterleavedu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstStride)
{
    repeat<2, 2, 2>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
}

} // namespace RVK_ROOM

// Affine patches of 8 x 8 pixels and the plainer clipped transforms, by the functions of any size and rule of either
// room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkTransformAffine8x8u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, const float32_t* position, const float32_t* affine,
                                               uint8_t* patch, uint32_t patchStride)
{
    return RVK_FORM(rvkTransformAffineu8_v2)(src, srcWidth, srcHeight, srcStride, position, affine, patch, 8, 8,
                                             patchStride);
}

rvkStatus RVK_FORM(rvkTransformAffine8x8u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            const float32_t* position, const float32_t* affine, uint8_t* patch)
{
    return RVK_FORM(rvkTransformAffine8x8u8_v2)(src, srcWidth, srcHeight, srcWidth, position, affine, patch, 8);
}

rvkStatus RVK_FORM(rvkTransformAffineClippedu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                   uint32_t srcStride, const float32_t* position,
                                                   const float32_t* affine, uint8_t* dst, uint32_t dstWidth,
                                                   uint32_t dstHeight, uint32_t dstStride, uint32_t borderType,
                                                   uint8_t borderValue)
{
    return RVK_FORM(rvkTransformAffineClippedu8_v3)(src, srcWidth, srcHeight, srcStride, position, affine, dst,
                                                    dstWidth, dstHeight, dstStride, RAVIK_INTERPOLATION_BILINEAR,
                                                    borderType, borderValue);
}

void RVK_FORM(rvkTransformAffineClippedu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, const float32_t* position, const float32_t* affine,
                                           uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    RVK_FORM(rvkTransformAffineClippedu8_v2)
    (src, srcWidth, srcHeight, srcStride, position, affine, dst, dstWidth, dstHeight, dstStride, RAVIK_BORDER_NONE, 0);
}

} // namespace RVK_ROOM

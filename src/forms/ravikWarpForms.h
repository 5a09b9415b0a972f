// Perspective warps and remaps by two drivers of either room: warpPerspective<channels> and remap<channels>.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

decltype(::rvkWarpPerspectiveu8_v2) RVK_FORM(rvkWarpPerspectiveu8_v2);
decltype(::rvkWarpPerspectiveu8_v3) RVK_FORM(rvkWarpPerspectiveu8_v3);
decltype(::rvkWarpPerspectiveu8_v4) RVK_FORM(rvkWarpPerspectiveu8_v4);
decltype(::rvk3ChannelWarpPerspectiveu8_v2) RVK_FORM(rvk3ChannelWarpPerspectiveu8_v2);
decltype(::rvkRemapu8_v2) RVK_FORM(rvkRemapu8_v2);

void RVK_FORM(rvkWarpPerspectiveu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                    const float32_t* matrix)
{
    RVK_FORM(rvkWarpPerspectiveu8_v2)(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, matrix);
}

rvkStatus RVK_FORM(rvkWarpPerspectiveu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                            uint32_t dstStride, const float32_t* matrix)
{
    return RVK_FORM(rvkWarpPerspectiveu8_v3)(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride,
                                             matrix, RAVIK_BORDER_CONSTANT, 0);
}

rvkStatus RVK_FORM(rvkWarpPerspectiveu8_v3)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                            uint32_t dstStride, const float32_t* matrix, uint32_t borderType,
                                            uint8_t borderValue)
{
    return RVK_FORM(rvkWarpPerspectiveu8_v4)(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride,
                                             matrix, RAVIK_INTERPOLATION_BILINEAR, borderType, borderValue);
}

rvkStatus RVK_FORM(rvkWarpPerspectiveu8_v4)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                            uint32_t dstStride, const float32_t* matrix, uint32_t interpolation,
                                            uint32_t borderType, uint8_t borderValue)
{
    warpPerspective<1>({src, srcWidth, srcHeight, srcStride, interpolation, borderType, {borderValue}}, dstWidth,
                       dstHeight, {dst, dstStride}, matrix);
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvk3ChannelWarpPerspectiveu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                            uint32_t dstStride, const float32_t* matrix)
{
    static constexpr uint8_t kZero[3] = {};
    RVK_FORM(rvk3ChannelWarpPerspectiveu8_v2)
    (src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, matrix, RAVIK_INTERPOLATION_BILINEAR,
     RAVIK_BORDER_CONSTANT, kZero);
}

rvkStatus RVK_FORM(rvk3ChannelWarpPerspectiveu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dst, uint32_t dstWidth,
                                                    uint32_t dstHeight, uint32_t dstStride, const float32_t* matrix,
                                                    uint32_t interpolation, uint32_t borderType,
                                                    const uint8_t* borderValue)
{
    warpPerspective<3>({src,
                        srcWidth,
                        srcHeight,
                        srcStride,
                        interpolation,
                        borderType,
                        {borderValue[0], borderValue[1], borderValue[2]}},
                       dstWidth, dstHeight, {dst, dstStride}, matrix);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvk2PlaneWarpPerspectiveu8)(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t src1Stride, const uint8_t* src2, uint32_t src2Stride,
                                               uint8_t* dst1, uint32_t dstWidth, uint32_t dstHeight,
                                               uint32_t dst1Stride, uint8_t* dst2, uint32_t dst2Stride,
                                               const float32_t* matrix, uint32_t interpolation, uint32_t borderType,
                                               uint8_t borderValue)
{
    RVK_FORM(rvkWarpPerspectiveu8_v4)
    (src1, srcWidth, srcHeight, src1Stride, dst1, dstWidth, dstHeight, dst1Stride, matrix, interpolation, borderType,
     borderValue);
    return RVK_FORM(rvkWarpPerspectiveu8_v4)(src2, srcWidth, srcHeight, src2Stride, dst2, dstWidth, dstHeight,
                                             dst2Stride, matrix, interpolation, borderType, borderValue);
}

void RVK_FORM(rvkRemapu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, const float32_t* mapX,
                          const float32_t* mapY, uint32_t mapStride)
{
    RVK_FORM(rvkRemapu8_v2)
    (src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, mapX, mapY, mapStride,
     RAVIK_INTERPOLATION_BILINEAR, RAVIK_BORDER_CONSTANT, 0);
}

rvkStatus RVK_FORM(rvkRemapu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float32_t* mapX, const float32_t* mapY, uint32_t mapStride,
                                  uint32_t interpolation, uint32_t borderType, uint8_t borderValue)
{
    remap<1>({src, srcWidth, srcHeight, srcStride, interpolation, borderType, {borderValue}}, dstWidth, dstHeight,
             {dst, dstStride}, {mapX, mapStride}, {mapY, mapStride});
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkRemapRGBA8888NNu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                    const float32_t* mapX, const float32_t* mapY, uint32_t mapStride)
{
    remap<4>({src, srcWidth, srcHeight, srcStride, RAVIK_INTERPOLATION_NEAREST, RAVIK_BORDER_CONSTANT, {}}, dstWidth,
             dstHeight, {dst, dstStride}, {mapX, mapStride}, {mapY, mapStride});
}

void RVK_FORM(rvkRemapRGBA8888BLu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                    const float32_t* mapX, const float32_t* mapY, uint32_t mapStride)
{
    remap<4>({src, srcWidth, srcHeight, srcStride, RAVIK_INTERPOLATION_BILINEAR, RAVIK_BORDER_CONSTANT, {}}, dstWidth,
             dstHeight, {dst, dstStride}, {mapX, mapStride}, {mapY, mapStride});
}

} // namespace RVK_ROOM

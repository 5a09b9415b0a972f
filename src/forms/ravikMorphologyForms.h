// Dilation and erosion, by the drivers filter3x3<Extreme> and filterNxN<Extreme> of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkFilterDilate3x3u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride)
{
    filter3x3<Largest>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, Largest::neutral);
}

rvkStatus RVK_FORM(rvkFilterDilate3x3u8_v3)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint32_t borderType,
                                            uint8_t borderValue)
{
    filter3x3<Largest>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride},
                       outsideValue<Largest>(borderType, borderValue));
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkFilterErode3x3u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride)
{
    filter3x3<Smallest>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, Smallest::neutral);
}

rvkStatus RVK_FORM(rvkFilterErode3x3u8_v3)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint32_t borderType,
                                           uint8_t borderValue)
{
    filter3x3<Smallest>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride},
                        outsideValue<Smallest>(borderType, borderValue));
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkFilterDilateNxNu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint32_t N, uint8_t* dst, uint32_t dstStride)
{
    return filterNxN<Largest>(srcWidth, srcHeight, {src, srcStride}, N, {dst, dstStride});
}

rvkStatus RVK_FORM(rvkFilterErodeNxNu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint32_t N, uint8_t* dst, uint32_t dstStride)
{
    return filterNxN<Smallest>(srcWidth, srcHeight, {src, srcStride}, N, {dst, dstStride});
}

} // namespace RVK_ROOM

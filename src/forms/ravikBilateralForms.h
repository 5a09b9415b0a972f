// The bilateral filters of windows, by the driver filterWindows<radius> of either room.
#pragma once

#include "cpu/ravikBilateralC.h"
#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkBilateralFilter5x5u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                               float32_t sigmaColor, float32_t sigmaSpace)
{
    filterWindows<2>(src, srcWidth, srcHeight, srcStride, dst, dstStride, sigmaColor, sigmaSpace);
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkBilateralFilter5x5u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride)
{
    filterWindows<2>(src, srcWidth, srcHeight, srcStride, dst, dstStride, kBilateralSigmaColor, bilateralSigmaSpace(2));
}

rvkStatus RVK_FORM(rvkBilateralFilter7x7u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                               float32_t sigmaColor, float32_t sigmaSpace)
{
    filterWindows<3>(src, srcWidth, srcHeight, srcStride, dst, dstStride, sigmaColor, sigmaSpace);
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkBilateralFilter7x7u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride)
{
    filterWindows<3>(src, srcWidth, srcHeight, srcStride, dst, dstStride, kBilateralSigmaColor, bilateralSigmaSpace(3));
}

rvkStatus RVK_FORM(rvkBilateralFilter9x9u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                               float32_t sigmaColor, float32_t sigmaSpace)
{
    filterWindows<4>(src, srcWidth, srcHeight, srcStride, dst, dstStride, sigmaColor, sigmaSpace);
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkBilateralFilter9x9u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride)
{
    filterWindows<4>(src, srcWidth, srcHeight, srcStride, dst, dstStride, kBilateralSigmaColor, bilateralSigmaSpace(4));
}

} // namespace RVK_ROOM

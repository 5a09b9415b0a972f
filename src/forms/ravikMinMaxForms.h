// The searches for the smallest and largest element, by the driver minMaxLoc<T> of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkMinMaxLocu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* minVal, uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                              uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void RVK_FORM(rvkMinMaxLocu16)(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint16_t* minVal, uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                               uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void RVK_FORM(rvkMinMaxLocs16)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               int16_t* minVal, int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                               uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void RVK_FORM(rvkMinMaxLocu32)(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint32_t* minVal, uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                               uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void RVK_FORM(rvkMinMaxLocs32)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               int32_t* minVal, int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                               uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

void RVK_FORM(rvkMinMaxLocf32)(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               float32_t* minVal, float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                               uint32_t* maxLocX, uint32_t* maxLocY)
{
    minMaxLoc(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
}

rvkStatus RVK_FORM(rvkMinMaxLocu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* minVal, uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                      uint32_t* maxLocX, uint32_t* maxLocY)
{
    RVK_FORM(rvkMinMaxLocu8)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkMinMaxLocu16_v2)(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint16_t* minVal, uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                       uint32_t* maxLocX, uint32_t* maxLocY)
{
    RVK_FORM(rvkMinMaxLocu16)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkMinMaxLocs16_v2)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int16_t* minVal, int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                       uint32_t* maxLocX, uint32_t* maxLocY)
{
    RVK_FORM(rvkMinMaxLocs16)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkMinMaxLocu32_v2)(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint32_t* minVal, uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                       uint32_t* maxLocX, uint32_t* maxLocY)
{
    RVK_FORM(rvkMinMaxLocu32)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkMinMaxLocs32_v2)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int32_t* minVal, int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                       uint32_t* maxLocX, uint32_t* maxLocY)
{
    RVK_FORM(rvkMinMaxLocs32)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkMinMaxLocf32_v2)(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       float32_t* minVal, float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                       uint32_t* maxLocX, uint32_t* maxLocY)
{
    RVK_FORM(rvkMinMaxLocf32)(src, srcWidth, srcHeight, srcStride, minVal, maxVal, minLocX, minLocY, maxLocX, maxLocY);
    return RAVIK_SUCCESS;
}

} // namespace RVK_ROOM

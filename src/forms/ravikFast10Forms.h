// FAST corners of arcs of 10 pixels by one driver of either room: `fast10`.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkCornerFast10u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int32_t barrier, uint32_t border, uint32_t* xy, uint32_t nCornersMax,
                                 uint32_t* nCorners)
{
    fast10({src, srcWidth, srcHeight, srcStride, barrier, border}, nullptr, {xy, nullptr, nCornersMax, nCorners},
           nullptr);
}

void RVK_FORM(rvkCornerFast10InMasku8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int32_t barrier, uint32_t border, uint32_t* xy, uint32_t nCornersMax,
                                       uint32_t* nCorners, const uint8_t* mask, uint32_t maskWidth, uint32_t maskHeight)
{
    const BitMask bits(mask, maskWidth, maskHeight, srcWidth, srcHeight);
    fast10({src, srcWidth, srcHeight, srcStride, barrier, border}, &bits, {xy, nullptr, nCornersMax, nCorners},
           nullptr);
}

void RVK_FORM(rvkCornerFast10Scoreu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                      uint32_t nCornersMax, uint32_t* nCorners, uint32_t nmsEnabled, uint32_t* tempBuf)
{
    fast10({src, srcWidth, srcHeight, srcStride, barrier, border}, nullptr, {xy, scores, nCornersMax, nCorners},
           suppressionBuffer(kFast10, nmsEnabled, tempBuf));
}

void RVK_FORM(rvkCornerFast10InMaskScoreu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, int32_t barrier, uint32_t border, uint32_t* xy,
                                            uint32_t* scores, uint32_t nCornersMax, uint32_t* nCorners,
                                            const uint8_t* mask, uint32_t maskWidth, uint32_t maskHeight,
                                            uint32_t nmsEnabled, uint32_t* tempBuf)
{
    const BitMask bits(mask, maskWidth, maskHeight, srcWidth, srcHeight);
    fast10({src, srcWidth, srcHeight, srcStride, barrier, border}, &bits, {xy, scores, nCornersMax, nCorners},
           suppressionBuffer(kFast10, nmsEnabled, tempBuf));
}

} // namespace RVK_ROOM

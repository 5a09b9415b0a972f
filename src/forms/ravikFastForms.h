// FAST corners of arcs of 9 pixels by one driver of either room: `fast9`.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkCornerFast9u8)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, int32_t barrier,
                                uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners)
{
    fast9({src, width, height, stride, barrier, border}, nullptr, {xy, nullptr, nCornersMax, numcorners}, nullptr);
}

void RVK_FORM(rvkCornerFast9InMasku8)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                      int32_t barrier, uint32_t border, uint32_t* xy, uint32_t nCornersMax,
                                      uint32_t* numcorners, const uint8_t* bitMask, uint32_t maskWidth,
                                      uint32_t maskHeight)
{
    const BitMask mask(bitMask, maskWidth, maskHeight, width, height);
    fast9({src, width, height, stride, barrier, border}, &mask, {xy, nullptr, nCornersMax, numcorners}, nullptr);
}

void RVK_FORM(rvkCornerFast9Scoreu8)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                     int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                     uint32_t nCornersMax, uint32_t* numcorners)
{
    fast9({src, width, height, stride, barrier, border}, nullptr, {xy, scores, nCornersMax, numcorners}, nullptr);
}

void RVK_FORM(rvkCornerFast9InMaskScoreu8)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                           int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                           uint32_t nCornersMax, uint32_t* numcorners, const uint8_t* bitMask,
                                           uint32_t maskWidth, uint32_t maskHeight)
{
    const BitMask mask(bitMask, maskWidth, maskHeight, width, height);
    fast9({src, width, height, stride, barrier, border}, &mask, {xy, scores, nCornersMax, numcorners}, nullptr);
}

void RVK_FORM(rvkCornerFast9Scoreu8_v2)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                        int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                        uint32_t nCornersMax, uint32_t* numcorners, uint32_t nmsEnabled,
                                        uint32_t* tempBuf)
{
    fast9({src, width, height, stride, barrier, border}, nullptr, {xy, scores, nCornersMax, numcorners},
          suppressionBuffer(kFast9, nmsEnabled, tempBuf));
}

void RVK_FORM(rvkCornerFast9InMaskScoreu8_v2)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                              int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                              uint32_t nCornersMax, uint32_t* numcorners, const uint8_t* bitMask,
                                              uint32_t maskWidth, uint32_t maskHeight, uint32_t nmsEnabled,
                                              uint32_t* tempBuf)
{
    const BitMask mask(bitMask, maskWidth, maskHeight, width, height);
    fast9({src, width, height, stride, barrier, border}, &mask, {xy, scores, nCornersMax, numcorners},
          suppressionBuffer(kFast9, nmsEnabled, tempBuf));
}

} // namespace RVK_ROOM

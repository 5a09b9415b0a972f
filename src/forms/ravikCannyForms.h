// The detectors without a status.
#pragma once

#include "forms/form.h"
#include "log.h"

namespace RVK_ROOM {

void RVK_FORM(rvkFilterCanny3x3u8)(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                   int32_t lowThreshold, int32_t highThreshold)
{
    logIfOutOfScratch("rvkFilterCanny3x3u8", RVK_FORM(rvkFilterCanny3x3u8_v3)(src, width, height, width, dst, width,
                                                                              lowThreshold, highThreshold));
}

void RVK_FORM(rvkFilterCanny3x3u8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride, int32_t lowThreshold, int32_t highThreshold)
{
    logIfOutOfScratch("rvkFilterCanny3x3u8_v2",
                      RVK_FORM(rvkFilterCanny3x3u8_v3)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                       lowThreshold, highThreshold));
}

} // namespace RVK_ROOM

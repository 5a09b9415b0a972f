// Copies, by the driver copy of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkCopy)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                       uint32_t dstStride)
{
    copy(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void RVK_FORM(irvkCopy)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstStride)
{
    copy(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

} // namespace RVK_ROOM

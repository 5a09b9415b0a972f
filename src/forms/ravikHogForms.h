// HOG: the public function does what the internal operation does.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkExtractHOGu16)(const rvkHOG* hog, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                     uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    return RVK_FORM(irvkExtractHOGu16)(hog, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

} // namespace RVK_ROOM

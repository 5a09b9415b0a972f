// The conversions to HSV and Lab, by the drivers of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkColorRGB888ToHSV888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb888, Hsv888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGBA8888ToLABu8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgba8888, Lab888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(irvkRowRGBToLab)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgba8888, Lab888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

} // namespace RVK_ROOM

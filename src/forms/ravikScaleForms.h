// Scalers that only forward, by the drivers of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

void RVK_FORM(rvkScaleDownBy2Gaussian5x5f32)(const float32_t* srcImg, uint32_t width, uint32_t height, float32_t* dst)
{
    constexpr uint32_t size = sizeof(float32_t);
    RVK_FORM(rvkScaleDownBy2Gaussian5x5f32_v2)(srcImg, width, height, width * size, dst, width / 2 * size);
}

} // namespace RVK_ROOM

// Flood fill from one seed.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkFloodfillSimpleu8)(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                         uint32_t seedX, uint32_t seedY, uint8_t newValue, uint32_t connectivity,
                                         rvkConnectedComponent* component)
{
    const uint32_t seed[] = {seedX, seedY};
    return RVK_FORM(rvkFloodfillMergedu8)(dst, dstWidth, dstHeight, dstStride, seed, 1, 0, 0, newValue, connectivity,
                                          component);
}

} // namespace RVK_ROOM

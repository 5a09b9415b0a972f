// Local maxima: what either room needs of one pixel.
#pragma once

#include <ravik/harris.h>

namespace rvk {

struct MaximaList
{
    uint32_t *xy, *values; // values may be null
    uint32_t most, count;
};

// False when the list is full; then nothing is added.
bool addMaximum(MaximaList& list, uint32_t x, uint32_t y, uint8_t value);

// Whether a pixel is above all others of its window that exist.
bool isMaximum(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t radius, uint32_t x,
               uint32_t y);

} // namespace rvk

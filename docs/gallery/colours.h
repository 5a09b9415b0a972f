// A colour for each label of a region.
#pragma once

#include "picture.h"

inline Colour colourOfLabel(uint32_t label)
{
    const uint32_t bits = label * 2654435761u;
    const auto bright = [](uint32_t byte) { return static_cast<uint8_t>(byte | 64); };
    return label ? Colour{bright(bits >> 24), bright(bits >> 16), bright(bits >> 8)} : Colour{0, 0, 0};
}

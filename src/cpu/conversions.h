// What the references of colour conversions and of channels share: the rows of a conversion.
#pragma once

#include "color.h"
#include "cpu/image.h"

namespace rvk {

inline uint8_t* rowOf(const TargetPlane& plane, size_t y)
{
    return Plane{plane.data, plane.stride}.row(y);
}
inline const uint8_t* rowOf(const SourcePlane& plane, size_t y)
{
    return Plane{plane.data, plane.stride}.row(y);
}

using ConvertRow = void (*)(const uint8_t* src, uint32_t width, uint8_t* dst);

template <class From, class To>
void forEachRow(const Conversion<From, To>& c, ConvertRow convertRow)
{
    for (size_t y = 0; y < c.height; ++y)
        convertRow(rowOf(c.src[0], y), c.width, rowOf(c.dst[0], y));
}

} // namespace rvk

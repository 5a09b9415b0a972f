// What the references of colour conversions and of channels share: planes of a conversion, and rows of chroma.
#pragma once

#include "color.h"
#include "cpu/image.h"

namespace rvk {

struct Chroma
{
    uint8_t cb, cr;
};

template <class Byte>
struct ChromaRow
{
    Byte *cb, *cr;
    size_t step; // between samples of one component

    Chroma operator[](size_t i) const { return {cb[i * step], cr[i * step]}; }
    void set(size_t i, Chroma chroma) const
    {
        cb[i * step] = chroma.cb;
        cr[i * step] = chroma.cr;
    }
};

template <class Byte>
ChromaRow(Byte*, Byte*, int) -> ChromaRow<Byte>;

inline uint8_t* rowOf(const TargetPlane& plane, size_t y)
{
    return Plane{plane.data, plane.stride}.row(y);
}
inline const uint8_t* rowOf(const SourcePlane& plane, size_t y)
{
    return Plane{plane.data, plane.stride}.row(y);
}

template <class S, class AnyPlane>
auto chromaRow(Planar<S>, const AnyPlane (&planes)[3], size_t y)
{
    return ChromaRow{rowOf(planes[1], y), rowOf(planes[2], y), 1};
}
template <class S, bool crFirst, class AnyPlane>
auto chromaRow(PseudoPlanar<S, crFirst>, const AnyPlane (&planes)[2], size_t y)
{
    auto* const pairs = rowOf(planes[1], y);
    return ChromaRow{pairs + crFirst, pairs + !crFirst, 2};
}

using ConvertRow = void (*)(const uint8_t* src, uint32_t width, uint8_t* dst);

template <class From, class To>
void forEachRow(const Conversion<From, To>& c, ConvertRow convertRow)
{
    for (size_t y = 0; y < c.height; ++y)
        convertRow(rowOf(c.src[0], y), c.width, rowOf(c.dst[0], y));
}

} // namespace rvk

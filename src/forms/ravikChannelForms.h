// Between which formats the functions on chroma and channels go, by the driver convert of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

// ---- YCbCr to YCbCr ---------------------------------------------------------------------------------------------------

void RVK_FORM(rvkColorYCbCr444PlanarToYCbCr422Planaru8)(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert(Conversion<Planar<S444>, Planar<S422>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr444PlanarToYCbCr420Planaru8)(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert(Conversion<Planar<S444>, Planar<S420>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr444PlanarToYCbCr444PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S444>, PseudoPlanar<S444>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr444PlanarToYCbCr422PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S444>, PseudoPlanar<S422>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr444PlanarToYCbCr420PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S444>, PseudoPlanar<S420>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr422PlanarToYCbCr444Planaru8)(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert(Conversion<Planar<S422>, Planar<S444>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr422PlanarToYCbCr420Planaru8)(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert(Conversion<Planar<S422>, Planar<S420>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr422PlanarToYCbCr444PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S422>, PseudoPlanar<S444>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr422PlanarToYCbCr422PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S422>, PseudoPlanar<S422>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr422PlanarToYCbCr420PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S422>, PseudoPlanar<S420>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr420PlanarToYCbCr444Planaru8)(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert(Conversion<Planar<S420>, Planar<S444>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr420PlanarToYCbCr422Planaru8)(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert(Conversion<Planar<S420>, Planar<S422>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr420PlanarToYCbCr444PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S420>, PseudoPlanar<S444>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr420PlanarToYCbCr422PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S420>, PseudoPlanar<S422>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr420PlanarToYCbCr420PseudoPlanaru8)(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert(Conversion<Planar<S420>, PseudoPlanar<S420>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr444PseudoPlanarToYCbCr444Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S444>, Planar<S444>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr444PseudoPlanarToYCbCr422Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S444>, Planar<S422>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr444PseudoPlanarToYCbCr420Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S444>, Planar<S420>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr444PseudoPlanarToYCbCr422PseudoPlanaru8)(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert(Conversion<PseudoPlanar<S444>, PseudoPlanar<S422>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8)(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert(Conversion<PseudoPlanar<S444>, PseudoPlanar<S420>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr422PseudoPlanarToYCbCr444Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S422>, Planar<S444>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr422PseudoPlanarToYCbCr422Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S422>, Planar<S422>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr422PseudoPlanarToYCbCr420Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S422>, Planar<S420>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr422PseudoPlanarToYCbCr444PseudoPlanaru8)(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert(Conversion<PseudoPlanar<S422>, PseudoPlanar<S444>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr422PseudoPlanarToYCbCr420PseudoPlanaru8)(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert(Conversion<PseudoPlanar<S422>, PseudoPlanar<S420>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr420PseudoPlanarToYCbCr444Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S420>, Planar<S444>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr420PseudoPlanarToYCbCr422Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S420>, Planar<S422>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr420PseudoPlanarToYCbCr420Planaru8)(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert(Conversion<PseudoPlanar<S420>, Planar<S420>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8)(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert(Conversion<PseudoPlanar<S420>, PseudoPlanar<S444>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorYCbCr420PseudoPlanarToYCbCr422PseudoPlanaru8)(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert(Conversion<PseudoPlanar<S420>, PseudoPlanar<S422>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

// ---- Channels ---------------------------------------------------------------------------------------------------------

void RVK_FORM(rvkColorCbCrSwapu8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Interleaved<2>, SwappedPairs>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkInterleaveu8)(RVK_FROM_TWO, RVK_TO_PACKED)
{
    convert(Conversion<Channels<2>, Interleaved<2>>{RVK_TWO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkDeinterleaveu8)(RVK_FROM_PACKED, RVK_TO_TWO)
{
    convert(Conversion<Interleaved<2>, Channels<2>>{RVK_PACKED_SRC, RVK_TWO_DST});
}

rvkStatus RVK_FORM(rvkChannelCombine2Planesu8)(RVK_FROM_TWO, RVK_TO_PACKED)
{
    convert(Conversion<Channels<2>, Interleaved<2>>{RVK_TWO_SRC, RVK_PACKED_DST});
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkChannelCombine3Planesu8)(RVK_FROM_THREE, RVK_TO_PACKED)
{
    convert(Conversion<Channels<3>, Interleaved<3>>{RVK_THREE_SRC, RVK_PACKED_DST});
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkChannelCombine4Planesu8)(RVK_FROM_FOUR, RVK_TO_PACKED)
{
    convert(Conversion<Channels<4>, Interleaved<4>>{RVK_FOUR_SRC, RVK_PACKED_DST});
    return RAVIK_SUCCESS;
}

} // namespace RVK_ROOM

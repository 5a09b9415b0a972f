// Conversions between colour spaces and layouts of RGB: the public functions.
#include "conversions.h"

#include <ravik/color.h>

using namespace rvk;

// ---- RGB to YCbCr ---------------------------------------------------------------------------------------------------

void rvkColorRGB565ToYCbCr444Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGB565ToYCbCr444Planaru8>(__func__,
                                                    Conversion<Rgb565, Planar<S444>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGB565ToYCbCr422Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGB565ToYCbCr422Planaru8>(__func__,
                                                    Conversion<Rgb565, Planar<S422>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGB565ToYCbCr420Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGB565ToYCbCr420Planaru8>(__func__,
                                                    Conversion<Rgb565, Planar<S420>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGB565ToYCbCr444PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGB565ToYCbCr444PseudoPlanaru8>(
        __func__, Conversion<Rgb565, PseudoPlanar<S444>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void rvkColorRGB565ToYCbCr422PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGB565ToYCbCr422PseudoPlanaru8>(
        __func__, Conversion<Rgb565, PseudoPlanar<S422>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void rvkColorRGB565ToYCbCr420PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGB565ToYCbCr420PseudoPlanaru8>(
        __func__, Conversion<Rgb565, PseudoPlanar<S420>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void rvkColorRGB888ToYCbCr444Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGB888ToYCbCr444Planaru8>(__func__,
                                                    Conversion<Bgr888, Planar<S444>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGB888ToYCbCr422Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGB888ToYCbCr422Planaru8>(__func__,
                                                    Conversion<Bgr888, Planar<S422>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGB888ToYCbCr420Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGB888ToYCbCr420Planaru8>(__func__,
                                                    Conversion<Bgr888, Planar<S420>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGB888ToYCbCr444PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGB888ToYCbCr444PseudoPlanaru8>(
        __func__, Conversion<Bgr888, PseudoPlanar<S444>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void rvkColorRGB888ToYCbCr422PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGB888ToYCbCr422PseudoPlanaru8>(
        __func__, Conversion<Bgr888, PseudoPlanar<S422>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void rvkColorRGB888ToYCbCr420PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGB888ToYCbCr420PseudoPlanaru8>(
        __func__, Conversion<Bgr888, PseudoPlanar<S420>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void rvkColorRGBA8888ToYCbCr444Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGBA8888ToYCbCr444Planaru8>(
        __func__, Conversion<Bgra8888, Planar<S444>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGBA8888ToYCbCr422Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGBA8888ToYCbCr422Planaru8>(
        __func__, Conversion<Bgra8888, Planar<S422>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGBA8888ToYCbCr420Planaru8(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorRGBA8888ToYCbCr420Planaru8>(
        __func__, Conversion<Bgra8888, Planar<S420>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void rvkColorRGBA8888ToYCbCr444PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGBA8888ToYCbCr444PseudoPlanaru8>(
        __func__, Conversion<Bgra8888, PseudoPlanar<S444>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void rvkColorRGBA8888ToYCbCr422PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGBA8888ToYCbCr422PseudoPlanaru8>(
        __func__, Conversion<Bgra8888, PseudoPlanar<S422>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void rvkColorRGBA8888ToYCbCr420PseudoPlanaru8(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorRGBA8888ToYCbCr420PseudoPlanaru8>(
        __func__, Conversion<Bgra8888, PseudoPlanar<S420>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

// ---- YCbCr to RGB ---------------------------------------------------------------------------------------------------

void rvkColorYCbCr444PlanarToRGB565u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr444PlanarToRGB565u8>(__func__,
                                                    Conversion<Planar<S444>, Rgb565>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr444PlanarToRGB888u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr444PlanarToRGB888u8>(__func__,
                                                    Conversion<Planar<S444>, Rgb888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr444PlanarToRGBA8888u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr444PlanarToRGBA8888u8>(
        __func__, Conversion<Planar<S444>, Rgba8888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr422PlanarToRGB565u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr422PlanarToRGB565u8>(__func__,
                                                    Conversion<Planar<S422>, Rgb565>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr422PlanarToRGB888u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr422PlanarToRGB888u8>(__func__,
                                                    Conversion<Planar<S422>, Rgb888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr422PlanarToRGBA8888u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr422PlanarToRGBA8888u8>(
        __func__, Conversion<Planar<S422>, Rgba8888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr420PlanarToRGB565u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr420PlanarToRGB565u8>(__func__,
                                                    Conversion<Planar<S420>, Rgb565>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr420PlanarToRGB888u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr420PlanarToRGB888u8>(__func__,
                                                    Conversion<Planar<S420>, Rgb888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr420PlanarToRGBA8888u8(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr420PlanarToRGBA8888u8>(
        __func__, Conversion<Planar<S420>, Rgba8888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr444PseudoPlanarToRGB565u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr444PseudoPlanarToRGB565u8>(
        __func__, Conversion<PseudoPlanar<S444>, Rgb565>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr444PseudoPlanarToRGB888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr444PseudoPlanarToRGB888u8>(
        __func__, Conversion<PseudoPlanar<S444>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr444PseudoPlanarToRGBA8888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr444PseudoPlanarToRGBA8888u8>(
        __func__, Conversion<PseudoPlanar<S444>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr422PseudoPlanarToRGB565u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr422PseudoPlanarToRGB565u8>(
        __func__, Conversion<PseudoPlanar<S422>, Rgb565>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr422PseudoPlanarToRGB888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr422PseudoPlanarToRGB888u8>(
        __func__, Conversion<PseudoPlanar<S422>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr422PseudoPlanarToRGBA8888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr422PseudoPlanarToRGBA8888u8>(
        __func__, Conversion<PseudoPlanar<S422>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr420PseudoPlanarToRGB565u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr420PseudoPlanarToRGB565u8>(
        __func__, Conversion<PseudoPlanar<S420>, Rgb565>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr420PseudoPlanarToRGB888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr420PseudoPlanarToRGB888u8>(
        __func__, Conversion<PseudoPlanar<S420>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCbCr420PseudoPlanarToRGBA8888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCbCr420PseudoPlanarToRGBA8888u8>(
        __func__, Conversion<PseudoPlanar<S420>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCrCbH1V1toRGB888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCrCbH1V1toRGB888u8>(__func__,
                                               Conversion<CrCb<S444>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCrCbH2V1toRGB888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCrCbH2V1toRGB888u8>(__func__,
                                               Conversion<CrCb<S422>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCrCbH2V2toRGB888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCrCbH2V2toRGB888u8>(__func__,
                                               Conversion<CrCb<S420>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCrCbH1V2toRGB888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCrCbH1V2toRGB888u8>(__func__,
                                               Conversion<CrCb<S440>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYCrCb420PseudoPlanarToRGB8888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYCrCb420PseudoPlanarToRGB8888u8>(
        __func__, Conversion<CrCb<S420>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYUV420toRGB565u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYUV420toRGB565u8>(__func__, Conversion<CrCb<S420>, Rgb565>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYUV420toRGB565u8Rotate180(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYUV420toRGB565u8Rotate180>(
        __func__, Conversion<CrCb<S420>, Rotated180<Rgb565>>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void rvkColorYUV420toRGB8888u8(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert<Slot::rvkColorYUV420toRGB8888u8>(__func__,
                                             Conversion<CrCb<S420>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

// ---- Layouts of RGB -------------------------------------------------------------------------------------------------

void rvkColorRGB565ToRGB888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB565ToRGB888u8>(__func__, Conversion<Rgb565, Rgb888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB565ToRGBA8888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB565ToRGBA8888u8>(__func__, Conversion<Rgb565, Rgba8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB565ToBGR565u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB565ToBGR565u8>(__func__, Conversion<Rgb565, Bgr565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB565ToBGR888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB565ToBGR888u8>(__func__, Conversion<Rgb565, Bgr888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB565ToBGRA8888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB565ToBGRA8888u8>(__func__, Conversion<Rgb565, Bgra8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB888ToRGB565u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888ToRGB565u8>(__func__, Conversion<Rgb888, Rgb565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB888ToRGBA8888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888ToRGBA8888u8>(__func__, Conversion<Rgb888, Rgba8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB888ToBGR565u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888ToBGR565u8>(__func__, Conversion<Rgb888, Bgr565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB888ToBGR888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888ToBGR888u8>(__func__, Conversion<Rgb888, Bgr888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB888ToBGRA8888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888ToBGRA8888u8>(__func__, Conversion<Rgb888, Bgra8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGBA8888ToRGB565u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGBA8888ToRGB565u8>(__func__, Conversion<Rgba8888, Rgb565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGBA8888ToRGB888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGBA8888ToRGB888u8>(__func__, Conversion<Rgba8888, Rgb888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGBA8888ToBGR565u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGBA8888ToBGR565u8>(__func__, Conversion<Rgba8888, Bgr565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGBA8888ToBGR888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGBA8888ToBGR888u8>(__func__, Conversion<Rgba8888, Bgr888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGBA8888ToBGRA8888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGBA8888ToBGRA8888u8>(__func__,
                                                Conversion<Rgba8888, Bgra8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB888ToRGB565Rotate180u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888ToRGB565Rotate180u8>(
        __func__, Conversion<Rgb888, Rotated180<Rgb565>>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

// ---- Other colour spaces --------------------------------------------------------------------------------------------

void rvkColorRGB888ToGrayu8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888ToGrayu8>(__func__, Conversion<Rgb888, Grey>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGB888toYCrCbu8_v2(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888toYCrCbu8_v2>(__func__, Conversion<Bgr888, YCrCb888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

// The first generation: packed rows.
void rvkColorRGB888toYCrCbu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst)
{
    convert<Slot::rvkColorRGB888toYCrCbu8_v2>(
        __func__, Conversion<Bgr888, YCrCb888>{srcWidth, srcHeight, {{src, 0}}, {{dst, 0}}});
}

void rvkColorRGB888ToHSV888u8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGB888ToHSV888u8>(__func__, Conversion<Rgb888, Hsv888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkColorRGBA8888ToLABu8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorRGBA8888ToLABu8>(__func__, Conversion<Rgba8888, Lab888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

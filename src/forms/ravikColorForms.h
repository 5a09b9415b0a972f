// Between which formats the conversions of colour go, by the driver convert of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

// ---- RGB to YCbCr ---------------------------------------------------------------------------------------------------

void RVK_FORM(rvkColorRGB565ToYCbCr444Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Rgb565, Planar<S444>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGB565ToYCbCr422Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Rgb565, Planar<S422>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGB565ToYCbCr420Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Rgb565, Planar<S420>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGB565ToYCbCr444PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Rgb565, PseudoPlanar<S444>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorRGB565ToYCbCr422PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Rgb565, PseudoPlanar<S422>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorRGB565ToYCbCr420PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Rgb565, PseudoPlanar<S420>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorRGB888ToYCbCr444Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Bgr888, Planar<S444>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGB888ToYCbCr422Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Bgr888, Planar<S422>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGB888ToYCbCr420Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Bgr888, Planar<S420>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGB888ToYCbCr444PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Bgr888, PseudoPlanar<S444>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorRGB888ToYCbCr422PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Bgr888, PseudoPlanar<S422>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorRGB888ToYCbCr420PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Bgr888, PseudoPlanar<S420>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorRGBA8888ToYCbCr444Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Bgra8888, Planar<S444>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGBA8888ToYCbCr422Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Bgra8888, Planar<S422>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGBA8888ToYCbCr420Planaru8)(RVK_FROM_PACKED, RVK_TO_PLANAR)
{
    convert(Conversion<Bgra8888, Planar<S420>>{RVK_PACKED_SRC, RVK_PLANAR_DST});
}

void RVK_FORM(rvkColorRGBA8888ToYCbCr444PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Bgra8888, PseudoPlanar<S444>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorRGBA8888ToYCbCr422PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Bgra8888, PseudoPlanar<S422>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

void RVK_FORM(rvkColorRGBA8888ToYCbCr420PseudoPlanaru8)(RVK_FROM_PACKED, RVK_TO_PSEUDO)
{
    convert(Conversion<Bgra8888, PseudoPlanar<S420>>{RVK_PACKED_SRC, RVK_PSEUDO_DST});
}

// ---- YCbCr to RGB ---------------------------------------------------------------------------------------------------

void RVK_FORM(rvkColorYCbCr444PlanarToRGB565u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S444>, Rgb565>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr444PlanarToRGB888u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S444>, Rgb888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr444PlanarToRGBA8888u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S444>, Rgba8888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr422PlanarToRGB565u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S422>, Rgb565>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr422PlanarToRGB888u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S422>, Rgb888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr422PlanarToRGBA8888u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S422>, Rgba8888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr420PlanarToRGB565u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S420>, Rgb565>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr420PlanarToRGB888u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S420>, Rgb888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr420PlanarToRGBA8888u8)(RVK_FROM_PLANAR, RVK_TO_PACKED)
{
    convert(Conversion<Planar<S420>, Rgba8888>{RVK_PLANAR_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr444PseudoPlanarToRGB565u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S444>, Rgb565>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr444PseudoPlanarToRGB888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S444>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr444PseudoPlanarToRGBA8888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S444>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr422PseudoPlanarToRGB565u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S422>, Rgb565>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr422PseudoPlanarToRGB888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S422>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr422PseudoPlanarToRGBA8888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S422>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr420PseudoPlanarToRGB565u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S420>, Rgb565>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr420PseudoPlanarToRGB888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S420>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCbCr420PseudoPlanarToRGBA8888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<PseudoPlanar<S420>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCrCbH1V1toRGB888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<CrCb<S444>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCrCbH2V1toRGB888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<CrCb<S422>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCrCbH2V2toRGB888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<CrCb<S420>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCrCbH1V2toRGB888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<CrCb<S440>, Rgb888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYCrCb420PseudoPlanarToRGB8888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<CrCb<S420>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYUV420toRGB565u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<CrCb<S420>, Rgb565>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYUV420toRGB565u8Rotate180)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<CrCb<S420>, Rotated180<Rgb565>>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorYUV420toRGB8888u8)(RVK_FROM_PSEUDO, RVK_TO_PACKED)
{
    convert(Conversion<CrCb<S420>, Rgba8888>{RVK_PSEUDO_SRC, RVK_PACKED_DST});
}

// ---- Layouts of RGB -------------------------------------------------------------------------------------------------

void RVK_FORM(rvkColorRGB565ToRGB888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb565, Rgb888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB565ToRGBA8888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb565, Rgba8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB565ToBGR565u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb565, Bgr565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB565ToBGR888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb565, Bgr888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB565ToBGRA8888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb565, Bgra8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB888ToRGB565u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb888, Rgb565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB888ToRGBA8888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb888, Rgba8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB888ToBGR565u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb888, Bgr565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB888ToBGR888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb888, Bgr888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB888ToBGRA8888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb888, Bgra8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGBA8888ToRGB565u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgba8888, Rgb565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGBA8888ToRGB888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgba8888, Rgb888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGBA8888ToBGR565u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgba8888, Bgr565>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGBA8888ToBGR888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgba8888, Bgr888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGBA8888ToBGRA8888u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgba8888, Bgra8888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB888ToRGB565Rotate180u8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb888, Rotated180<Rgb565>>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

// ---- Other colour spaces --------------------------------------------------------------------------------------------

void RVK_FORM(rvkColorRGB888ToGrayu8)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Rgb888, Grey>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void RVK_FORM(rvkColorRGB888toYCrCbu8_v2)(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert(Conversion<Bgr888, YCrCb888>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

// ---- rows: pictures of one row, or two -----------------------------------------------------------------------------

void RVK_FORM(irvkRowRGB565ToYUV)(const uint8_t* src, uint32_t width, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr)
{
    convert(Conversion<Rgb565, Planar<S422>>{width, 1, {{src, 0}}, {{dstY, 0}, {dstCb, 0}, {dstCr, 0}}});
}

void RVK_FORM(irvkRowRGB565ToYYUV)(const uint8_t* src, uint32_t width, uint32_t srcStride, uint8_t* dstY,
                                   uint32_t dstYStride, uint8_t* dstC)
{
    convert(Conversion<Rgb565, PseudoPlanar<S420>>{width, 2, {{src, srcStride}}, {{dstY, dstYStride}, {dstC, 0}}});
}

void RVK_FORM(irvkRowRGB565ToY)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    toLuma<Rgb565>(src, width, dst);
}

void RVK_FORM(irvkRowRGB888ToYUV)(const uint8_t* src, uint32_t width, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr)
{
    convert(Conversion<Bgr888, Planar<S422>>{width, 1, {{src, 0}}, {{dstY, 0}, {dstCb, 0}, {dstCr, 0}}});
}

void RVK_FORM(irvkRowRGB888ToYYUV)(const uint8_t* src, uint32_t width, uint32_t srcStride, uint8_t* dstY,
                                   uint32_t dstYStride, uint8_t* dstC)
{
    convert(Conversion<Bgr888, PseudoPlanar<S420>>{width, 2, {{src, srcStride}}, {{dstY, dstYStride}, {dstC, 0}}});
}

void RVK_FORM(irvkRowRGB888ToY)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    toLuma<Bgr888>(src, width, dst);
}

void RVK_FORM(irvkRowRGBA8888ToYUV)(const uint8_t* src, uint32_t width, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr)
{
    convert(Conversion<Bgra8888, Planar<S422>>{width, 1, {{src, 0}}, {{dstY, 0}, {dstCb, 0}, {dstCr, 0}}});
}

void RVK_FORM(irvkRowRGBA8888ToYYUV)(const uint8_t* src, uint32_t width, uint32_t srcStride, uint8_t* dstY,
                                     uint32_t dstYStride, uint8_t* dstC)
{
    convert(Conversion<Bgra8888, PseudoPlanar<S420>>{width, 2, {{src, srcStride}}, {{dstY, dstYStride}, {dstC, 0}}});
}

void RVK_FORM(irvkRowRGBA8888ToY)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    toLuma<Bgra8888>(src, width, dst);
}

void RVK_FORM(irvkRowRGB565ToBGR565)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb565, Bgr565>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB565ToRGB888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb565, Rgb888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB565ToBGR888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb565, Bgr888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB565ToRGBA8888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb565, Rgba8888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB565ToBGRA8888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb565, Bgra8888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB888ToRGB565)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb888, Rgb565>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB888ToBGR565)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb888, Bgr565>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB888ToBGR888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb888, Bgr888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB888ToRGBA8888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb888, Rgba8888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGB888ToBGRA8888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgb888, Bgra8888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGBA8888ToRGB565)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgba8888, Rgb565>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGBA8888ToBGR565)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgba8888, Bgr565>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGBA8888ToRGB888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgba8888, Rgb888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGBA8888ToBGR888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgba8888, Bgr888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowRGBA8888ToBGRA8888)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Rgba8888, Bgra8888>{width, 1, {{src, 0}}, {{dst, 0}}});
}

} // namespace RVK_ROOM

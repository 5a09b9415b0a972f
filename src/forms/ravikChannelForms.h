// Between which formats the functions on chroma and channels go, by the driver convert of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

// ---- YCbCr to YCbCr -------------------------------------------------------------------------------------------------

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

// ---- Channels -------------------------------------------------------------------------------------------------------

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

rvkStatus RVK_FORM(rvkChannelExtractu8)(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                                        const uint8_t* src2, uint32_t src2Stride, uint32_t format, uint32_t channel,
                                        uint8_t* dst, uint32_t dstStride)
{
    const Samples samples = samplesOf(format, channel);
    extract(samples, srcWidth, srcHeight, samples.plane ? SourcePlane{src2, src2Stride} : SourcePlane{src1, src1Stride},
            {dst, dstStride});
    return RAVIK_SUCCESS;
}

// ---- rows: pictures of one row, or two, of which only the chroma counts ---------------------------------------------

void RVK_FORM(irvkRowDownsampleBy2)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    resamplePlane<S444, S422>(width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkRowDownsampleBy2Deinterleave)(const uint8_t* src, uint32_t width, uint8_t* dst1, uint8_t* dst2)
{
    resample(Conversion<PseudoPlanar<S444>, Planar<S422>>{width, 1, {{}, {src, 0}}, {{}, {dst1, 0}, {dst2, 0}}});
}

void RVK_FORM(irvkRowUpsampleBy2)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    resamplePlane<S422, S444>(width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkRowUpsampleBy2Interleave)(const uint8_t* src1, const uint8_t* src2, uint32_t width, uint8_t* dst)
{
    resample(Conversion<Planar<S422>, PseudoPlanar<S444>>{width, 1, {{}, {src1, 0}, {src2, 0}}, {{}, {dst, 0}}});
}

void RVK_FORM(irvkChromaUpsampleVertical)(const uint8_t* src, uint32_t width, uint8_t* dst, uint32_t dstStride)
{
    resample(Conversion<PseudoPlanar<S440>, PseudoPlanar<S444>>{width, 2, {{}, {src, 0}}, {{}, {dst, dstStride}}});
}

void RVK_FORM(irvkChromaUpsampleHorizontal)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    resample(Conversion<PseudoPlanar<S422>, PseudoPlanar<S444>>{width, 1, {{}, {src, 0}}, {{}, {dst, 0}}});
}

void RVK_FORM(irvkChromaUpsample2D)(const uint8_t* src, uint32_t width, uint8_t* dst, uint32_t dstStride)
{
    resample(Conversion<PseudoPlanar<S420>, PseudoPlanar<S444>>{width, 2, {{}, {src, 0}}, {{}, {dst, dstStride}}});
}

void RVK_FORM(irvkChromaUpsamplePlanar)(const uint8_t* src, uint32_t width, uint8_t* dst, uint32_t dstStride)
{
    resamplePlane<S420, S444>(width, 2, {src, 0}, {dst, dstStride});
}

void RVK_FORM(irvkRowInterleaveUV)(const uint8_t* src1, const uint8_t* src2, uint32_t width, uint8_t* dst)
{
    convert(Conversion<Channels<2>, Interleaved<2>>{width, 1, {{src1, 0}, {src2, 0}}, {{dst, 0}}});
}

void RVK_FORM(irvkRowDeinterleaveUV)(const uint8_t* src, uint32_t width, uint8_t* dst1, uint8_t* dst2)
{
    convert(Conversion<Interleaved<2>, Channels<2>>{width, 1, {{src, 0}}, {{dst1, 0}, {dst2, 0}}});
}

void RVK_FORM(irvkExtractYFromNV12)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_NV12, RAVIK_CHANNEL_Y), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractUFromNV12)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_NV12, RAVIK_CHANNEL_U), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractVFromNV12)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_NV12, RAVIK_CHANNEL_V), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractYFromNV21)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_NV21, RAVIK_CHANNEL_Y), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractUFromNV21)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_NV21, RAVIK_CHANNEL_U), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractVFromNV21)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_NV21, RAVIK_CHANNEL_V), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractYFromUYVY)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_UYVY, RAVIK_CHANNEL_Y), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractUFromUYVY)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_UYVY, RAVIK_CHANNEL_U), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractVFromUYVY)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_UYVY, RAVIK_CHANNEL_V), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractYFromYUYV)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_YUYV, RAVIK_CHANNEL_Y), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractUFromYUYV)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_YUYV, RAVIK_CHANNEL_U), width, 1, {src, 0}, {dst, 0});
}

void RVK_FORM(irvkExtractVFromYUYV)(const uint8_t* src, uint32_t width, uint8_t* dst)
{
    extract(samplesOf(RAVIK_FORMAT_YUYV, RAVIK_CHANNEL_V), width, 1, {src, 0}, {dst, 0});
}

} // namespace RVK_ROOM

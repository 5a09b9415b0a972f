// Sampling and layout of chroma, channels of interleaved pixels: the public functions.
#include "conversions.h"

#include <ravik/channel.h>

using namespace rvk;

// ---- YCbCr to YCbCr -------------------------------------------------------------------------------------------------

void rvkColorYCbCr444PlanarToYCbCr422Planaru8(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr444PlanarToYCbCr422Planaru8>(
        __func__, Conversion<Planar<S444>, Planar<S422>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr444PlanarToYCbCr420Planaru8(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr444PlanarToYCbCr420Planaru8>(
        __func__, Conversion<Planar<S444>, Planar<S420>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr444PlanarToYCbCr444PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr444PlanarToYCbCr444PseudoPlanaru8>(
        __func__, Conversion<Planar<S444>, PseudoPlanar<S444>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr444PlanarToYCbCr422PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr444PlanarToYCbCr422PseudoPlanaru8>(
        __func__, Conversion<Planar<S444>, PseudoPlanar<S422>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr444PlanarToYCbCr420PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr444PlanarToYCbCr420PseudoPlanaru8>(
        __func__, Conversion<Planar<S444>, PseudoPlanar<S420>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr422PlanarToYCbCr444Planaru8(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr422PlanarToYCbCr444Planaru8>(
        __func__, Conversion<Planar<S422>, Planar<S444>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr422PlanarToYCbCr420Planaru8(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr422PlanarToYCbCr420Planaru8>(
        __func__, Conversion<Planar<S422>, Planar<S420>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr422PlanarToYCbCr444PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr422PlanarToYCbCr444PseudoPlanaru8>(
        __func__, Conversion<Planar<S422>, PseudoPlanar<S444>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr422PlanarToYCbCr422PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr422PlanarToYCbCr422PseudoPlanaru8>(
        __func__, Conversion<Planar<S422>, PseudoPlanar<S422>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr422PlanarToYCbCr420PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr422PlanarToYCbCr420PseudoPlanaru8>(
        __func__, Conversion<Planar<S422>, PseudoPlanar<S420>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr420PlanarToYCbCr444Planaru8(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr420PlanarToYCbCr444Planaru8>(
        __func__, Conversion<Planar<S420>, Planar<S444>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr420PlanarToYCbCr422Planaru8(RVK_FROM_PLANAR, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr420PlanarToYCbCr422Planaru8>(
        __func__, Conversion<Planar<S420>, Planar<S422>>{RVK_PLANAR_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr420PlanarToYCbCr444PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr420PlanarToYCbCr444PseudoPlanaru8>(
        __func__, Conversion<Planar<S420>, PseudoPlanar<S444>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr420PlanarToYCbCr422PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr420PlanarToYCbCr422PseudoPlanaru8>(
        __func__, Conversion<Planar<S420>, PseudoPlanar<S422>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr420PlanarToYCbCr420PseudoPlanaru8(RVK_FROM_PLANAR, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr420PlanarToYCbCr420PseudoPlanaru8>(
        __func__, Conversion<Planar<S420>, PseudoPlanar<S420>>{RVK_PLANAR_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr444PseudoPlanarToYCbCr444Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr444PseudoPlanarToYCbCr444Planaru8>(
        __func__, Conversion<PseudoPlanar<S444>, Planar<S444>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr444PseudoPlanarToYCbCr422Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr444PseudoPlanarToYCbCr422Planaru8>(
        __func__, Conversion<PseudoPlanar<S444>, Planar<S422>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr444PseudoPlanarToYCbCr420Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr444PseudoPlanarToYCbCr420Planaru8>(
        __func__, Conversion<PseudoPlanar<S444>, Planar<S420>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr444PseudoPlanarToYCbCr422PseudoPlanaru8(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr444PseudoPlanarToYCbCr422PseudoPlanaru8>(
        __func__, Conversion<PseudoPlanar<S444>, PseudoPlanar<S422>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8>(
        __func__, Conversion<PseudoPlanar<S444>, PseudoPlanar<S420>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr422PseudoPlanarToYCbCr444Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr422PseudoPlanarToYCbCr444Planaru8>(
        __func__, Conversion<PseudoPlanar<S422>, Planar<S444>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr422PseudoPlanarToYCbCr422Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr422PseudoPlanarToYCbCr422Planaru8>(
        __func__, Conversion<PseudoPlanar<S422>, Planar<S422>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr422PseudoPlanarToYCbCr420Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr422PseudoPlanarToYCbCr420Planaru8>(
        __func__, Conversion<PseudoPlanar<S422>, Planar<S420>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr422PseudoPlanarToYCbCr444PseudoPlanaru8(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr422PseudoPlanarToYCbCr444PseudoPlanaru8>(
        __func__, Conversion<PseudoPlanar<S422>, PseudoPlanar<S444>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr422PseudoPlanarToYCbCr420PseudoPlanaru8(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr422PseudoPlanarToYCbCr420PseudoPlanaru8>(
        __func__, Conversion<PseudoPlanar<S422>, PseudoPlanar<S420>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr420PseudoPlanarToYCbCr444Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr420PseudoPlanarToYCbCr444Planaru8>(
        __func__, Conversion<PseudoPlanar<S420>, Planar<S444>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr420PseudoPlanarToYCbCr422Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr420PseudoPlanarToYCbCr422Planaru8>(
        __func__, Conversion<PseudoPlanar<S420>, Planar<S422>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr420PseudoPlanarToYCbCr420Planaru8(RVK_FROM_PSEUDO, RVK_TO_PLANAR)
{
    convert<Slot::rvkColorYCbCr420PseudoPlanarToYCbCr420Planaru8>(
        __func__, Conversion<PseudoPlanar<S420>, Planar<S420>>{RVK_PSEUDO_SRC, RVK_PLANAR_DST});
}

void rvkColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8>(
        __func__, Conversion<PseudoPlanar<S420>, PseudoPlanar<S444>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

void rvkColorYCbCr420PseudoPlanarToYCbCr422PseudoPlanaru8(RVK_FROM_PSEUDO, RVK_TO_PSEUDO)
{
    convert<Slot::rvkColorYCbCr420PseudoPlanarToYCbCr422PseudoPlanaru8>(
        __func__, Conversion<PseudoPlanar<S420>, PseudoPlanar<S422>>{RVK_PSEUDO_SRC, RVK_PSEUDO_DST});
}

// ---- Channels -------------------------------------------------------------------------------------------------------

void rvkColorCbCrSwapu8(RVK_FROM_PACKED, RVK_TO_PACKED)
{
    convert<Slot::rvkColorCbCrSwapu8>(__func__,
                                      Conversion<Interleaved<2>, SwappedPairs>{RVK_PACKED_SRC, RVK_PACKED_DST});
}

void rvkInterleaveu8(RVK_FROM_TWO, RVK_TO_PACKED)
{
    convert<Slot::rvkInterleaveu8>(__func__, Conversion<Channels<2>, Interleaved<2>>{RVK_TWO_SRC, RVK_PACKED_DST});
}

void rvkDeinterleaveu8(RVK_FROM_PACKED, RVK_TO_TWO)
{
    convert<Slot::rvkDeinterleaveu8>(__func__, Conversion<Interleaved<2>, Channels<2>>{RVK_PACKED_SRC, RVK_TWO_DST});
}

rvkStatus rvkChannelCombine2Planesu8(RVK_FROM_TWO, RVK_TO_PACKED)
{
    return convert<Slot::rvkChannelCombine2Planesu8>(
        __func__, Conversion<Channels<2>, Interleaved<2>>{RVK_TWO_SRC, RVK_PACKED_DST});
}

rvkStatus rvkChannelCombine3Planesu8(RVK_FROM_THREE, RVK_TO_PACKED)
{
    return convert<Slot::rvkChannelCombine3Planesu8>(
        __func__, Conversion<Channels<3>, Interleaved<3>>{RVK_THREE_SRC, RVK_PACKED_DST});
}

rvkStatus rvkChannelCombine4Planesu8(RVK_FROM_FOUR, RVK_TO_PACKED)
{
    return convert<Slot::rvkChannelCombine4Planesu8>(
        __func__, Conversion<Channels<4>, Interleaved<4>>{RVK_FOUR_SRC, RVK_PACKED_DST});
}

rvkStatus rvkChannelExtractu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                              const uint8_t* src2, uint32_t src2Stride, uint32_t format, uint32_t channel, uint8_t* dst,
                              uint32_t dstStride)
{
    constexpr Slot slot = Slot::rvkChannelExtractu8;
    const Samples samples = samplesOf(format, channel);
    const uint32_t dstWidth = sampled(srcWidth, samples.xShift), dstHeight = sampled(srcHeight, samples.yShift);
    const uint64_t row1 = rowSizeOf(format, srcWidth), row2 = uint64_t{2} * sampled(srcWidth, 1);
    src1Stride = packedRowIfZero(src1Stride, row1);
    src2Stride = packedRowIfZero(src2Stride, row2);
    dstStride = packedRowIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(8, src1, src1Stride, dst, dstStride) &&
               (!hasChromaPlane(format) || aligned(8, src2, src2Stride)) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src1 && dst && srcWidth && srcHeight && samples.step && (src1Stride >= row1) &&
                      (dstStride >= dstWidth));
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, !hasChromaPlane(format) || (src2 && (src2Stride >= row2)));
    const Extent written{dst, dstStride, dstHeight, dstWidth};
    if (overlap({src1, src1Stride, srcHeight, row1}, written) ||
        (hasChromaPlane(format) && overlap({src2, src2Stride, sampled(srcHeight, 1), row2}, written)))
        return refuse<slot>({__func__, kNoOverlap});
    return implementation<slot>(target)(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, format, channel, dst,
                                        dstStride);
}

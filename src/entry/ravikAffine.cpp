// Affine and perspective transforms: the public functions.
#include "bodies.h"
#include "cpu/ravikAffineC.h"

#include <algorithm>
#include <cmath>

using namespace rvk;

// ---- patches --------------------------------------------------------------------------------------------------------

rvkStatus rvkTransformAffineu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, const float32_t* position,
                               const float32_t* affine, uint8_t* patch, uint32_t patchWidth, uint32_t patchHeight)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkTransformAffineu8_v2);
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && position && affine && patch && patchWidth && patchHeight);
    return implementation<Slot::rvkTransformAffineu8_v2>(target)(src, srcWidth, srcHeight, srcWidth, position, affine,
                                                                 patch, patchWidth, patchHeight, patchWidth);
}

rvkStatus rvkTransformAffineu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  const float32_t* position, const float32_t* affine, uint8_t* patch,
                                  uint32_t patchWidth, uint32_t patchHeight, uint32_t patchStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    patchStride = packedIfZero(patchStride, patchWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkTransformAffineu8_v2);
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && position && affine && patch &&
                     patchWidth && patchHeight && patchStride >= patchWidth);
    return implementation<Slot::rvkTransformAffineu8_v2>(target)(src, srcWidth, srcHeight, srcStride, position, affine,
                                                                 patch, patchWidth, patchHeight, patchStride);
}

rvkStatus rvkTransformAffine8x8u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, const float32_t* position,
                                  const float32_t* affine, uint8_t* patch)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkTransformAffine8x8u8);
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && position && affine && patch);
    return implementation<Slot::rvkTransformAffine8x8u8>(target)(src, srcWidth, srcHeight, position, affine, patch);
}

rvkStatus rvkTransformAffine8x8u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     const float32_t* position, const float32_t* affine, uint8_t* patch,
                                     uint32_t patchStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    patchStride = packedIfZero(patchStride, 8);
    const RVK_IMPL target = chooseTarget(Slot::rvkTransformAffine8x8u8_v2);
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && position && affine && patch &&
                     patchStride >= 8);
    return implementation<Slot::rvkTransformAffine8x8u8_v2>(target)(src, srcWidth, srcHeight, srcStride, position,
                                                                    affine, patch, patchStride);
}

// ---- clipped transforms of pictures ---------------------------------------------------------------------------------

namespace {

bool areFinite(const float32_t* position, const float32_t* affine)
{
    return std::isfinite(position[0]) && std::isfinite(position[1]) &&
           std::all_of(affine, affine + 4, [](float32_t element) { return std::isfinite(element); });
}

// `rulesAreGood` tells of interpolation and border.
template <Slot slot, uint32_t channels, class... Rules>
ResultOf<slot> transformClipped(Words words, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                uint32_t srcStride, const float32_t* position, const float32_t* affine, uint8_t* dst,
                                uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, bool rulesAreGood,
                                Rules... rules)
{
    srcStride = packedIfZero(srcStride, srcWidth, channels);
    dstStride = packedIfZero(dstStride, dstWidth, channels);
    const RVK_IMPL target = chooseTarget(
        slot, [&] { return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight); });
    if (!(src && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, channels) && position && affine && dst &&
          dstWidth && dstHeight && dstStride >= rowSize(dstWidth, channels) && rulesAreGood))
        return refuse<slot>(words);
    if (srcWidth > kMostClippedSize || srcHeight > kMostClippedSize)
        return refuse<slot>({words.function, "srcWidth <= kMostClippedSize && srcHeight <= kMostClippedSize"});
    if (!areFinite(position, affine))
        return refuse<slot>({words.function, "areFinite(position, affine)"});
    if (src == dst)
        return refuse<slot>({words.function, "src != dst"});
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, position, affine, dst, dstWidth, dstHeight,
                                        dstStride, rules...);
}

} // namespace

void rvkTransformAffineClippedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const float32_t* position, const float32_t* affine, uint8_t* dst, uint32_t dstWidth,
                                 uint32_t dstHeight, uint32_t dstStride)
{
    transformClipped<Slot::rvkTransformAffineClippedu8, 1>(
        {__func__, "src && dst && position && affine && srcWidth && srcHeight && dstWidth && dstHeight && "
                   "(srcStride >= srcWidth) && (dstStride >= dstWidth)"},
        src, srcWidth, srcHeight, srcStride, position, affine, dst, dstWidth, dstHeight, dstStride, true);
}

rvkStatus rvkTransformAffineClippedu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         const float32_t* position, const float32_t* affine, uint8_t* dst,
                                         uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint32_t borderType,
                                         uint8_t borderValue)
{
    return transformClipped<Slot::rvkTransformAffineClippedu8_v2, 1>(
        kSilent, src, srcWidth, srcHeight, srcStride, position, affine, dst, dstWidth, dstHeight, dstStride,
        borderType <= RAVIK_BORDER_REPLICATE, borderType, borderValue);
}

rvkStatus rvkTransformAffineClippedu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         const float32_t* position, const float32_t* affine, uint8_t* dst,
                                         uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                         uint32_t interpolation, uint32_t borderType, uint8_t borderValue)
{
    return transformClipped<Slot::rvkTransformAffineClippedu8_v3, 1>(
        kSilent, src, srcWidth, srcHeight, srcStride, position, affine, dst, dstWidth, dstHeight, dstStride,
        interpolation <= RAVIK_INTERPOLATION_BILINEAR && borderType <= RAVIK_BORDER_REPLICATE, interpolation,
        borderType, borderValue);
}

rvkStatus rvk3ChannelTransformAffineClippedBCu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const float32_t* position, const float32_t* affine,
                                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                                uint32_t borderType, const uint8_t* borderValue)
{
    return transformClipped<Slot::rvk3ChannelTransformAffineClippedBCu8, 3>(
        kSilent, src, srcWidth, srcHeight, srcStride, position, affine, dst, dstWidth, dstHeight, dstStride,
        borderType <= RAVIK_BORDER_REPLICATE && borderValue, borderType, borderValue);
}

// ---- transforms from points, inverses -------------------------------------------------------------------------------

rvkStatus rvkGetPerspectiveTransformf32(const float32_t* src, const float32_t* dst, float32_t* matrix)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkGetPerspectiveTransformf32);
    RVK_CHECK_STATUS(src && dst && matrix);
    return implementation<Slot::rvkGetPerspectiveTransformf32>(target)(src, dst, matrix);
}

rvkStatus rvkInvertAffineTransformf32(const float32_t* matrix, float32_t* inverse)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkInvertAffineTransformf32);
    RVK_CHECK_STATUS(matrix && inverse);
    return implementation<Slot::rvkInvertAffineTransformf32>(target)(matrix, inverse);
}

// ---- depth ----------------------------------------------------------------------------------------------------------

rvkStatus rvkUndistortDisparityConvertDepthf32(const float32_t* disparity, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, const float32_t* camera, const float32_t* distortion,
                                               float32_t baseline, float32_t* depth, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkUndistortDisparityConvertDepthf32, [&] {
        return aligned(4, disparity, depth, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 4);
    });
    RVK_CHECK_STATUS(disparity && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(float32_t)) &&
                     camera && depth && dstStride >= rowSize(srcWidth, sizeof(float32_t)));
    return implementation<Slot::rvkUndistortDisparityConvertDepthf32>(target)(
        disparity, srcWidth, srcHeight, srcStride, camera, distortion, baseline, depth, dstStride);
}

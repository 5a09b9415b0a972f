// Scalers by fixed ratios: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

// How many of the source's columns, and rows, become how many of the destination's. The DSP takes pictures that hold
// the window.
struct Ratio
{
    uint32_t from, to, window = 1;
};

// A source of which nothing would be left is refused.
template <Slot slot>
ResultOf<slot> scaleDown(Ratio ratio, Words words, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                         uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    const uint32_t dstWidth = srcWidth / ratio.from * ratio.to;
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(8, src, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight) &&
               srcHeight >= ratio.window;
    });
    if (!(src && dst && srcWidth >= ratio.from && srcHeight >= ratio.from && srcStride >= srcWidth &&
          dstStride >= dstWidth))
        return refuse<slot>(words);
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// Each pixel of pixelSize bytes, or what comes of it, `across` times in each of `down` rows.
template <Slot slot>
void scaleUp(uint32_t pixelSize, uint32_t across, Words words, const uint8_t* src, uint32_t srcWidth,
             uint32_t srcHeight, uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, pixelSize);
    dstStride = packedIfZero(dstStride, srcWidth, pixelSize * across);
    const RVK_IMPL target = chooseTarget(
        slot, [&] { return aligned(8, src, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight); });
    if (!(src && dst && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, pixelSize) &&
          dstStride >= rowSize(srcWidth, pixelSize * across)))
        return refuse<slot>(words);
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

} // namespace

// ---- fixed ratios: down ---------------------------------------------------------------------------------------------

int32_t rvkScaleDownBy2u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride)
{
    return scaleDown<Slot::rvkScaleDownBy2u8>({2, 1}, kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

int32_t rvkScaleDownBy2u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    return scaleDown<Slot::rvkScaleDownBy2u8_v2>({2, 1}, kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

int32_t rvkScaleDownBy4u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride)
{
    return scaleDown<Slot::rvkScaleDownBy4u8>({4, 1}, kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

int32_t rvkScaleDownBy4u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    return scaleDown<Slot::rvkScaleDownBy4u8_v2>({4, 1}, kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkScaleDown3To2u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstStride)
{
    scaleDown<Slot::rvkScaleDown3To2u8>({3, 2},
                                        {__func__, "src && dst && (srcWidth > 2) && (srcHeight > 2) && "
                                                   "(srcStride >= srcWidth) && (dstStride >= srcWidth / 3 * 2)"},
                                        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkScaleDownBy2Gaussian3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride)
{
    return scaleDown<Slot::rvkScaleDownBy2Gaussian3x3u8>({2, 1, 3}, kSilent, src, srcWidth, srcHeight, srcStride, dst,
                                                         dstStride);
}

void rvkScaleDownBy2Gaussian5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst)
{
    scaleDown<Slot::rvkScaleDownBy2Gaussian5x5u8_v2>(
        {2, 1, 5}, {__func__, "src && dst && (srcWidth > 1) && (srcHeight > 1)"}, src, srcWidth, srcHeight, 0, dst, 0);
}

void rvkScaleDownBy2Gaussian5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride)
{
    scaleDown<Slot::rvkScaleDownBy2Gaussian5x5u8_v2>(
        {2, 1, 5},
        {__func__, "src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) && "
                   "(dstStride >= srcWidth / 2)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkScaleDownBy2Gaussian5x5f32(const float32_t* srcImg, uint32_t width, uint32_t height, float32_t* dst)
{
    const auto halve = internalImplementation<InternalSlot::rvkScaleDownBy2Gaussian5x5f32>();
    RVK_CHECK_ARGS(srcImg && width && height && ((width & 1) == 0 ) && ((height & 1) == 0));
    RVK_CHECK_ARGS(dst);
    RVK_CHECK_ARGS(rowFits(width, sizeof(float32_t)));
    halve(srcImg, width, height, dst);
}

void rvkScaleDownBy2Gaussian5x5f32_v2(const float32_t* srcImg, uint32_t width, uint32_t height, uint32_t srcStride,
                                      float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, width, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, width / 2, sizeof(float32_t));
    const auto halve = internalImplementation<InternalSlot::rvkScaleDownBy2Gaussian5x5f32_v2>();
    RVK_CHECK_ARGS(rowFits(width, sizeof(float32_t)));
    RVK_CHECK_ARGS(srcImg && dst && (width > 1) && (height > 1) && (srcStride >= width * sizeof(float32_t)) && (dstStride >= width / 2 * sizeof(float32_t)));
    halve(srcImg, width, height, srcStride, dst, dstStride);
}

// ---- fixed ratios: up -----------------------------------------------------------------------------------------------

void rvkScaleUpBy2Gaussian5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst)
{
    scaleUp<Slot::rvkScaleUpBy2Gaussian5x5u8_v2>(
        1, 2, {__func__, "src && dst && srcWidth && srcHeight && rowFits(srcWidth, 2)"}, src, srcWidth, srcHeight, 0,
        dst, 0);
}

void rvkScaleUpBy2Gaussian5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride)
{
    scaleUp<Slot::rvkScaleUpBy2Gaussian5x5u8_v2>(
        1, 2,
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth * 2)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkUpsampleVerticalu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride)
{
    scaleUp<Slot::rvkUpsampleVerticalu8>(
        1, 1, {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkUpsampleHorizontalu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    scaleUp<Slot::rvkUpsampleHorizontalu8>(
        1, 2,
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth * 2)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkUpsample2Du8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride)
{
    scaleUp<Slot::rvkUpsample2Du8>(
        1, 2,
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth * 2)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkUpsampleVerticalInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride)
{
    scaleUp<Slot::rvkUpsampleVerticalInterleavedu8>(
        2, 1,
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth * 2) && (dstStride >= srcWidth * 2)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkUpsampleHorizontalInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride)
{
    scaleUp<Slot::rvkUpsampleHorizontalInterleavedu8>(
        2, 2,
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth * 2) && (dstStride >= srcWidth * 4)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkUpsample2DInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride)
{
    scaleUp<Slot::rvkUpsample2DInterleavedu8>(
        2, 2,
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth * 2) && (dstStride >= srcWidth * 4)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

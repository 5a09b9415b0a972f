// Smoothing filters and local normalisation: the public functions.
#include "dispatch.h"

using namespace rvk;

// The conditions between "clang-format off" and "on" are logged as they stand there.

// ---- Gaussians. The forms without strides call the cell of their _v2 form -----------------------

void rvkFilterGaussian3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, uint32_t blurBorder)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian3x3u8_v2, [&] {
        return aligned(8, src, dst, width) && enoughWork(width, height) && width >= 4 && height >= 3;
    });
    RVK_CHECK_ARGS(src && dst && width && height);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian3x3u8_v2>(target)(src, width, height, width, dst, width, blurBorder);
}

void rvkFilterGaussian3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian3x3u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcWidth >= 4 &&
               srcHeight >= 3;
    });
    RVK_CHECK_ARGS(src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) &&
                   (dstStride >= srcWidth));
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian3x3u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                            blurBorder);
}

rvkStatus rvkFilterGaussian3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian3x3u8_v3, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcWidth >= 4 &&
               srcHeight >= 3;
    });
    RVK_CHECK_STATUS(src && dst && srcWidth > 1 && srcHeight > 1 && srcStride >= srcWidth && dstStride >= srcWidth &&
                     src != dst);
    return implementation<Slot::rvkFilterGaussian3x3u8_v3>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                   borderType, borderValue);
}

void rvkFilterGaussian5x5u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, uint32_t blurBorder)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian5x5u8_v2, [&] {
        return aligned(8, src, dst, width) && enoughWork(width, height) && height >= 5;
    });
    RVK_CHECK_ARGS(src && dst && width && height && height > 4 && width > 4);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian5x5u8_v2>(target)(src, width, height, width, dst, width, blurBorder);
}

void rvkFilterGaussian5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian5x5u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 4 &&
                   srcWidth > 4);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian5x5u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                            blurBorder);
}

void rvkFilterGaussian5x5s16(const int16_t* src, uint32_t width, uint32_t height, int16_t* dst, uint32_t blurBorder)
{
    const uint32_t stride = packedIfZero(0, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian5x5s16_v2, [&] {
        return aligned(4, src, dst, stride) && enoughWork(width, height) && height >= 5;
    });
    RVK_CHECK_SIZED_ARGS(rowFits(width, 2), src && dst && width && height && height > 1);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian5x5s16_v2>(target)(src, width, height, stride, dst, stride, blurBorder);
}

void rvkFilterGaussian5x5s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                int16_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian5x5s16_v2, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 2),
                         src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int16_t)) &&
                             (dstStride >= srcWidth*sizeof(int16_t)) && srcHeight > 1);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian5x5s16_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                             blurBorder);
}

void rvkFilterGaussian5x5s32(const int32_t* src, uint32_t width, uint32_t height, int32_t* dst, uint32_t blurBorder)
{
    const uint32_t stride = packedIfZero(0, width, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian5x5s32_v2, [&] {
        return aligned(4, src, dst, stride) && enoughWork(width, height) && height >= 5;
    });
    RVK_CHECK_SIZED_ARGS(rowFits(width, 4), src && dst && width && height && width > 4 && height > 4);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian5x5s32_v2>(target)(src, width, height, stride, dst, stride, blurBorder);
}

void rvkFilterGaussian5x5s32_v2(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                int32_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian5x5s32_v2, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4),
                         src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int32_t)) &&
                             (dstStride >= srcWidth*sizeof(int32_t)) && srcWidth > 4 && srcHeight > 4);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian5x5s32_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                             blurBorder);
}

void rvkFilterGaussian11x11u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, uint32_t blurBorder)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian11x11u8_v2, [&] {
        return aligned(8, src, dst, width) && enoughWork(width, height) && height >= 11;
    });
    RVK_CHECK_ARGS(src && dst && width && height && height > 10 && width > 10);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian11x11u8_v2>(target)(src, width, height, width, dst, width, blurBorder);
}

void rvkFilterGaussian11x11u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterGaussian11x11u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 11;
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 10 &&
                   srcWidth > 10);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterGaussian11x11u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                              blurBorder);
}

// ---- box filters --------------------------------------------------------------------------------

void rvkBoxFilter3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                       uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBoxFilter3x3u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) &&
                   srcWidth > 2 && srcHeight > 2);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkBoxFilter3x3u8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkBoxFilter3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBoxFilter3x3u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_STATUS(src && dst && srcWidth > 2 && srcHeight > 2 && srcStride >= srcWidth && dstStride >= srcWidth &&
                     src != dst);
    return implementation<Slot::rvkBoxFilter3x3u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                              borderType, borderValue);
}

void rvkBoxFilter5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                       uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBoxFilter5x5u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) &&
                   srcWidth > 4 && srcHeight > 4);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkBoxFilter5x5u8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkBoxFilter11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                         uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBoxFilter11x11u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 11;
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) &&
                   srcWidth > 10 && srcHeight > 10);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkBoxFilter11x11u8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkBoxFilterNxNf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t N, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkBoxFilterNxNf32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OR(RAVIK_EBADPARAM, rowFits(srcWidth, 4),
                            src && dst && srcWidth && srcHeight && (N > 1) &&
                                ((src == dst && srcStride == dstStride) || (src != dst)) &&
                                (srcStride >=srcWidth*4) && (dstStride >=srcWidth*4) && srcWidth > 4 && srcHeight > 4);
    // clang-format on
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, N <= srcWidth && N <= srcHeight);
    return implementation<Slot::rvkBoxFilterNxNf32>(target)(src, srcWidth, srcHeight, srcStride, N, dst, dstStride);
}

// ---- local normalisation ------------------------------------------------------------------------

namespace {

bool fitsAsWindow(uint32_t size, uint32_t pictureSize)
{
    return size % 2 == 1 && size <= pictureSize;
}

} // namespace

rvkStatus rvkNormalizeLocalBoxu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t windowWidth, uint32_t windowHeight, uint8_t* dst, uint32_t dstStride)
{
    constexpr uint32_t mostPixels = UINT32_MAX / (255 * 255); // whose squares' sum fits 32 bits
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkNormalizeLocalBoxu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) &&
               srcHeight >= windowHeight;
    });
    RVK_CHECK_STATUS(src && dst && srcStride >= srcWidth && dstStride >= srcWidth && src != dst &&
                     fitsAsWindow(windowWidth, srcWidth) && fitsAsWindow(windowHeight, srcHeight) &&
                     windowWidth <= mostPixels / windowHeight);
    return implementation<Slot::rvkNormalizeLocalBoxu8>(target)(src, srcWidth, srcHeight, srcStride, windowWidth,
                                                                windowHeight, dst, dstStride);
}

rvkStatus rvkNormalizeLocalBoxf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint32_t windowWidth, uint32_t windowHeight, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkNormalizeLocalBoxf32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) &&
               srcHeight >= windowHeight;
    });
    RVK_CHECK_STATUS(src && dst && rowFits(srcWidth, 4) && srcStride >= srcWidth * 4 && dstStride >= srcWidth * 4 &&
                     src != dst && fitsAsWindow(windowWidth, srcWidth) && fitsAsWindow(windowHeight, srcHeight));
    return implementation<Slot::rvkNormalizeLocalBoxf32>(target)(src, srcWidth, srcHeight, srcStride, windowWidth,
                                                                 windowHeight, dst, dstStride);
}

// Smoothing filters and local normalisation: the public functions.
#include "bodies.h"

using namespace rvk;

// ---- Gaussians. The forms without strides call the cell of their _v2 form -----------------------

void rvkFilterGaussian3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian3x3u8_v2>({.dspWidth = 4, .dspHeight = 3},
                                            {__func__, "src && dst && width && height"}, src, width, height, 0, dst, 0,
                                            blurBorder);
}

void rvkFilterGaussian3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian3x3u8_v2>(
        {.leastWidth = 2, .leastHeight = 2, .dspWidth = 4, .dspHeight = 3},
        {__func__, "src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) && "
                   "(dstStride >= srcWidth)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

rvkStatus rvkFilterGaussian3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    return filter<Slot::rvkFilterGaussian3x3u8_v3>({.leastWidth = 2, .leastHeight = 2, .dspWidth = 4, .dspHeight = 3},
                                                   kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                   borderType, borderValue);
}

void rvkFilterGaussian5x5u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian5x5u8_v2>(windowOf(5),
                                            {__func__, "src && dst && width && height && height > 4 && width > 4"}, src,
                                            width, height, 0, dst, 0, blurBorder);
}

void rvkFilterGaussian5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian5x5u8_v2>(
        withAnyDstStride(windowOf(5)),
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 4 && "
                   "srcWidth > 4"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

void rvkFilterGaussian5x5s16(const int16_t* src, uint32_t width, uint32_t height, int16_t* dst, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian5x5s16_v2>({.leastHeight = 2, .dspHeight = 5},
                                             {__func__, "src && dst && width && height && height > 1"}, src, width,
                                             height, 0, dst, 0, blurBorder);
}

void rvkFilterGaussian5x5s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                int16_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian5x5s16_v2>(
        {.leastHeight = 2, .dspHeight = 5},
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int16_t)) && "
                   "(dstStride >= srcWidth*sizeof(int16_t)) && srcHeight > 1"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

void rvkFilterGaussian5x5s32(const int32_t* src, uint32_t width, uint32_t height, int32_t* dst, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian5x5s32_v2>(windowOf(5),
                                             {__func__, "src && dst && width && height && width > 4 && height > 4"},
                                             src, width, height, 0, dst, 0, blurBorder);
}

void rvkFilterGaussian5x5s32_v2(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                int32_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian5x5s32_v2>(
        windowOf(5),
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int32_t)) && "
                   "(dstStride >= srcWidth*sizeof(int32_t)) && srcWidth > 4 && srcHeight > 4"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

void rvkFilterGaussian11x11u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian11x11u8_v2>(windowOf(11),
                                              {__func__, "src && dst && width && height && height > 10 && width > 10"},
                                              src, width, height, 0, dst, 0, blurBorder);
}

void rvkFilterGaussian11x11u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride, uint32_t blurBorder)
{
    filter<Slot::rvkFilterGaussian11x11u8_v2>(
        withAnyDstStride(windowOf(11)),
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 10 && "
                   "srcWidth > 10"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, blurBorder);
}

// ---- box filters --------------------------------------------------------------------------------

void rvkBoxFilter3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                       uint32_t dstStride)
{
    filter<Slot::rvkBoxFilter3x3u8>(
        windowOf(3),
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) && "
                   "srcWidth > 2 && srcHeight > 2"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkBoxFilter3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    return filter<Slot::rvkBoxFilter3x3u8_v2>(windowOf(3), kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                              borderType, borderValue);
}

void rvkBoxFilter5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                       uint32_t dstStride)
{
    filter<Slot::rvkBoxFilter5x5u8>(
        windowOf(5),
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) && "
                   "srcWidth > 4 && srcHeight > 4"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkBoxFilter11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                         uint32_t dstStride)
{
    filter<Slot::rvkBoxFilter11x11u8>(
        windowOf(11),
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) && "
                   "srcWidth > 10 && srcHeight > 10"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkBoxFilterNxNf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t N, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkBoxFilterNxNf32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, src && dst && srcWidth && srcHeight && (N > 1) && ((src == dst &&
                                       srcStride == dstStride) || (src != dst)) && (srcStride >=srcWidth*4) &&
                                       (dstStride >=srcWidth*4) && srcWidth > 4 && srcHeight > 4);
    RVK_CHECK_ARGS_OR(RAVIK_EBADPARAM, rowFits(srcWidth, 4));
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
    RVK_CHECK_STATUS(src && dst && srcStride >= rowSize(srcWidth, 4) && dstStride >= rowSize(srcWidth, 4) &&
                     src != dst && fitsAsWindow(windowWidth, srcWidth) && fitsAsWindow(windowHeight, srcHeight));
    return implementation<Slot::rvkNormalizeLocalBoxf32>(target)(src, srcWidth, srcHeight, srcStride, windowWidth,
                                                                 windowHeight, dst, dstStride);
}

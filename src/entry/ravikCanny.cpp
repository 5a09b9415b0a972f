// Canny edges: the public functions.
#include "dispatch.h"

using namespace rvk;

// The working memory of a picture: four bytes a pixel must have a size that 32 bits hold.
static bool pixelsFit(uint32_t width, uint32_t height)
{
    return uint64_t{width} * height <= UINT32_MAX / 4;
}

void rvkFilterCanny3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, int32_t lowThreshold,
                         int32_t highThreshold)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCanny3x3u8, [&] {
        return aligned(8, src, dst, width) && enoughWork(width, height) && height >= 5;
    });
    RVK_CHECK_ARGS(src && width && height && dst);
    RVK_CHECK_ARGS(pixelsFit(width, height));
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterCanny3x3u8>(target)(src, width, height, dst, lowThreshold, highThreshold);
}

void rvkFilterCanny3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride, int32_t lowThreshold, int32_t highThreshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCanny3x3u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    RVK_CHECK_ARGS(src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth));
    RVK_CHECK_ARGS(pixelsFit(srcWidth, srcHeight));
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterCanny3x3u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                         lowThreshold, highThreshold);
}

rvkStatus rvkFilterCanny3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride, int32_t lowThreshold, int32_t highThreshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCanny3x3u8_v3, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 5;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && dst && dstStride >= srcWidth &&
                     src != dst && pixelsFit(srcWidth, srcHeight));
    return implementation<Slot::rvkFilterCanny3x3u8_v3>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                lowThreshold, highThreshold);
}

rvkStatus rvkFilterCannyu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           uint32_t apertureSize, int32_t lowThreshold, int32_t highThreshold, uint32_t normType,
                           uint8_t* dst, uint32_t dstStride, int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    dxyStride = packedIfZero(dxyStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCannyu8, [&] {
        return aligned(8, src, dst, dx, dy, srcStride, dstStride, dxyStride) && enoughWork(srcWidth, srcHeight) &&
               srcHeight >= 5 && srcHeight >= apertureSize;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && dst && dstStride >= srcWidth &&
                     (!dx || dx != dy) && src != dst && pixelsFit(srcWidth, srcHeight) &&
                     dxyStride >= rowSize(srcWidth, sizeof(int16_t)));
    RVK_CHECK_STATUS(apertureSize == 3 || apertureSize == 5 || apertureSize == 7);
    return implementation<Slot::rvkFilterCannyu8>(target)(src, srcWidth, srcHeight, srcStride, apertureSize,
                                                          lowThreshold, highThreshold, normType, dst, dstStride, dx, dy,
                                                          dxyStride);
}

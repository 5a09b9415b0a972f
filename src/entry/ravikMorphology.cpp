// Dilation and erosion: the public functions.
#include "dispatch.h"

using namespace rvk;

// ---- 3x3. The forms without strides call the cell of their _v2 form.
// -------------------------------------------------

void rvkFilterDilate3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterDilate3x3u8_v2, [&] {
        return aligned(8, src, dst, width) && enoughWork(width, height) && height >= 3;
    });
    RVK_CHECK_ARGS(src && width && height && dst);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterDilate3x3u8_v2>(target)(src, width, height, width, dst, width);
}

void rvkFilterDilate3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterDilate3x3u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_ARGS(src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth));
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterDilate3x3u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkFilterDilate3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterDilate3x3u8_v3, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && dst && dstStride >= srcWidth &&
                     src != dst);
    return implementation<Slot::rvkFilterDilate3x3u8_v3>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                 borderType, borderValue);
}

void rvkFilterErode3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterErode3x3u8_v2, [&] {
        return aligned(8, src, dst, width) && enoughWork(width, height) && height >= 3;
    });
    RVK_CHECK_ARGS(src && width && height && dst);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterErode3x3u8_v2>(target)(src, width, height, width, dst, width);
}

void rvkFilterErode3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterErode3x3u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_ARGS(src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth));
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterErode3x3u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkFilterErode3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterErode3x3u8_v3, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && dst && dstStride >= srcWidth &&
                     src != dst);
    return implementation<Slot::rvkFilterErode3x3u8_v3>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                borderType, borderValue);
}

// ---- NxN
// -------------------------------------------------------------------------------------------------------------

rvkStatus rvkFilterDilateNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint32_t N, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterDilateNxNu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && rowFits(srcStride, srcHeight) && dst &&
                     dstStride >= srcWidth && src != dst && N && N <= srcWidth && N <= srcHeight);
    return implementation<Slot::rvkFilterDilateNxNu8>(target)(src, srcWidth, srcHeight, srcStride, N, dst, dstStride);
}

rvkStatus rvkFilterErodeNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t N,
                              uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterErodeNxNu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && rowFits(srcStride, srcHeight) && dst &&
                     dstStride >= srcWidth && src != dst && N && N <= srcWidth && N <= srcHeight);
    return implementation<Slot::rvkFilterErodeNxNu8>(target)(src, srcWidth, srcHeight, srcStride, N, dst, dstStride);
}

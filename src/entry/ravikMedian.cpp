// Median filters: the public functions.
#include "dispatch.h"

using namespace rvk;

// Has no slot: it calls the cell of its _v2 form.
void rvkFilterMedian3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterMedian3x3u8_v2, [&] {
        return aligned(8, src, dst, srcWidth) && enoughWork(srcWidth, srcHeight) && srcHeight >= 4;
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterMedian3x3u8_v2>(target)(src, srcWidth, srcHeight, srcWidth, dst, srcWidth);
}

void rvkFilterMedian3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterMedian3x3u8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 4;
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride);
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkFilterMedian3x3u8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkFilterMedian3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterMedian3x3u8_v3, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 4;
    });
    RVK_CHECK_STATUS(src && dst && srcWidth && srcHeight && srcStride >= srcWidth && dstStride >= srcWidth &&
                     src != dst);
    return implementation<Slot::rvkFilterMedian3x3u8_v3>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                 borderType, borderValue);
}

rvkStatus rvkFilterMedianMxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint32_t M, uint32_t N, int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterMedianMxNs16, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(rowFits(srcWidth, sizeof(int16_t)) && src && dst && srcWidth && srcHeight &&
                     srcStride >= srcWidth * sizeof(int16_t) && dstStride >= srcWidth * sizeof(int16_t) && src != dst);
    RVK_CHECK_STATUS(M && N && M <= srcWidth && N <= srcHeight && uint64_t{M} * N <= INT32_MAX);
    return implementation<Slot::rvkFilterMedianMxNs16>(target)(src, srcWidth, srcHeight, srcStride, M, N, dst,
                                                               dstStride);
}

// Median filters: the public functions.
#include "bodies.h"

using namespace rvk;

// Has no slot: it calls the cell of its _v2 form.
void rvkFilterMedian3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst)
{
    filter<Slot::rvkFilterMedian3x3u8_v2>({.dspHeight = 4}, {__func__, "src && dst && srcWidth && srcHeight"}, src,
                                          srcWidth, srcHeight, 0, dst, 0);
}

void rvkFilterMedian3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    filter<Slot::rvkFilterMedian3x3u8_v2>(
        {.dspHeight = 4, .anyDstStride = true},
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride"}, src, srcWidth,
        srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkFilterMedian3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    return filter<Slot::rvkFilterMedian3x3u8_v3>({.dspHeight = 4}, kSilent, src, srcWidth, srcHeight, srcStride, dst,
                                                 dstStride, borderType, borderValue);
}

rvkStatus rvkFilterMedianMxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint32_t M, uint32_t N, int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterMedianMxNs16, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(src && dst && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(int16_t)) &&
                     dstStride >= rowSize(srcWidth, sizeof(int16_t)) && src != dst);
    RVK_CHECK_STATUS(M && N && M <= srcWidth && N <= srcHeight && uint64_t{M} * N <= INT32_MAX);
    return implementation<Slot::rvkFilterMedianMxNs16>(target)(src, srcWidth, srcHeight, srcStride, M, N, dst,
                                                               dstStride);
}

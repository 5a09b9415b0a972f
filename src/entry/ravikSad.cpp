// Sums of absolute differences: the public functions, and the internal operations.
#include "dispatch.h"

using namespace rvk;

uint32_t rvkSumOfAbsoluteDiff8x8u8(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2, uint32_t src2Stride)
{
    src1Stride = packedIfZero(src1Stride, 8);
    src2Stride = packedIfZero(src2Stride, 8);
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfAbsoluteDiff8x8u8);
    RVK_CHECK_ARGS_OR(0, src1 && src2 && src1Stride >= 8 && src2Stride >= 8);
    return implementation<Slot::rvkSumOfAbsoluteDiff8x8u8>(target)(src1, src1Stride, src2, src2Stride);
}

uint32_t rvkSumOfAbsoluteDiff16x16u8(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2, uint32_t src2Stride)
{
    src1Stride = packedIfZero(src1Stride, 16);
    src2Stride = packedIfZero(src2Stride, 16);
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfAbsoluteDiff16x16u8);
    RVK_CHECK_ARGS_OR(0, src1 && src2 && src1Stride >= 16 && src2Stride >= 16);
    return implementation<Slot::rvkSumOfAbsoluteDiff16x16u8>(target)(src1, src1Stride, src2, src2Stride);
}

namespace {

bool suitsDsp(uint32_t patchSize, const uint8_t* patch, const uint8_t* src, uint32_t width, uint32_t height,
              uint32_t stride)
{
    return aligned(8, patch, src, stride) && enoughWork(width, height) && height >= patchSize;
}

// The bytes of a row of results.
uint64_t resultRowSize(uint32_t srcWidth, uint32_t patchSize)
{
    return rowSize(srcWidth - patchSize + 1, sizeof(uint16_t));
}

} // namespace

void rvkSumOfAbsoluteDiffs8x8u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                uint32_t srcStride, uint16_t* dst)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfAbsoluteDiffs8x8u8,
                                         [&] { return suitsDsp(8, patch, src, srcWidth, srcHeight, srcStride); });
    RVK_CHECK_ARGS(patch && src && dst && srcWidth >= 8 && srcHeight >= 8 && srcStride >= srcWidth);
    RVK_CHECK_ARGS(resultRowSize(srcWidth, 8) <= UINT32_MAX);
    implementation<Slot::rvkSumOfAbsoluteDiffs8x8u8>(target)(patch, src, srcWidth, srcHeight, srcStride, dst);
}

void rvkSumOfAbsoluteDiffs8x8u8_v2(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                   uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth - 7, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfAbsoluteDiffs8x8u8_v2,
                                         [&] { return suitsDsp(8, patch, src, srcWidth, srcHeight, srcStride); });
    RVK_CHECK_ARGS(patch && src && dst && srcWidth >= 8 && srcHeight >= 8 && srcStride >= srcWidth);
    RVK_CHECK_ARGS(dstStride >= resultRowSize(srcWidth, 8));
    implementation<Slot::rvkSumOfAbsoluteDiffs8x8u8_v2>(target)(patch, src, srcWidth, srcHeight, srcStride, dst,
                                                                dstStride);
}

void rvkSumOfAbsoluteDiffs16x16u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                  uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth - 15, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfAbsoluteDiffs16x16u8,
                                         [&] { return suitsDsp(16, patch, src, srcWidth, srcHeight, srcStride); });
    RVK_CHECK_ARGS(patch && src && dst && srcWidth >= 16 && srcHeight >= 16 && srcStride >= srcWidth);
    RVK_CHECK_ARGS(dstStride >= resultRowSize(srcWidth, 16));
    implementation<Slot::rvkSumOfAbsoluteDiffs16x16u8>(target)(patch, src, srcWidth, srcHeight, srcStride, dst,
                                                               dstStride);
}

// ---- internal operations ------------------------------------------------------------------------

uint32_t rvk::irvkSumOfAbsoluteDiff8x8u8(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                         uint32_t src2Stride)
{
    return internalImplementation<InternalSlot::irvkSumOfAbsoluteDiff8x8u8>()(src1, src1Stride, src2, src2Stride);
}

uint32_t rvk::irvkSumOfAbsoluteDiff16x16u8(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                           uint32_t src2Stride)
{
    return internalImplementation<InternalSlot::irvkSumOfAbsoluteDiff16x16u8>()(src1, src1Stride, src2, src2Stride);
}

void rvk::irvkSumOfAbsoluteDiffs16x16u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    internalImplementation<InternalSlot::irvkSumOfAbsoluteDiffs16x16u8>()(patch, src, srcWidth, srcHeight, srcStride,
                                                                          dst, dstStride);
}

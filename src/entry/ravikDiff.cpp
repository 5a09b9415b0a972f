// Absolute and signed differences: the public functions.
#include "dispatch.h"

using namespace rvk;

void rvkAbsDiffu8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                  uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffu8, [&] {
        return aligned(8, src1, src2, dst, srcStride) && enoughWork(srcWidth, srcHeight) && aligned(8, dstStride) &&
               srcWidth >= 32;
    });
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride);
    implementation<Slot::rvkAbsDiffu8>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkAbsDiffs32(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                   int32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffs32, [&] {
        return aligned(4, src1, src2, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 8);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src1 && src2 && dst && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(int32_t)) &&
                                                   (dstStride >= srcWidth * sizeof(int32_t)));
    implementation<Slot::rvkAbsDiffs32>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkAbsDifff32(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                   uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDifff32, [&] {
        return aligned(4, src1, src2, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 8);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src1 && src2 && dst && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(float32_t)) &&
                                                   (dstStride >= srcWidth * sizeof(float32_t)));
    implementation<Slot::rvkAbsDifff32>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkAbsDiffVu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value,
                   uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    implementation<Slot::rvkAbsDiffVu8>(target)(src, srcWidth, srcHeight, srcStride, value, dst, dstStride);
}

void rvkAbsDiffVs32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value,
                    int32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVs32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 4);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src && dst && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(int32_t)) &&
                                                   (dstStride >= srcWidth * sizeof(int32_t)));
    implementation<Slot::rvkAbsDiffVs32>(target)(src, srcWidth, srcHeight, srcStride, value, dst, dstStride);
}

void rvkAbsDiffVf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t value,
                    float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVf32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 4);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src && dst && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(float32_t)) &&
                                                   (dstStride >= srcWidth * sizeof(float32_t)));
    implementation<Slot::rvkAbsDiffVf32>(target)(src, srcWidth, srcHeight, srcStride, value, dst, dstStride);
}

void rvkAbsDiffVc3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value1,
                     uint8_t value2, uint8_t value3, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, 3);
    dstStride = packedIfZero(dstStride, srcWidth, 3);
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVc3u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 3);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 3), src && dst && srcWidth && srcHeight && (srcStride >= srcWidth * 3) &&
                                                   (dstStride >= srcWidth * 3));
    implementation<Slot::rvkAbsDiffVc3u8>(target)(src, srcWidth, srcHeight, srcStride, value1, value2, value3, dst,
                                                  dstStride);
}

void rvkAbsDiffVc3s32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value1,
                      int32_t value2, int32_t value3, int32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, 3 * sizeof(int32_t));
    dstStride = packedIfZero(dstStride, srcWidth, 3 * sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVc3s32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 12);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 12), src && dst && srcWidth && srcHeight &&
                                                    (srcStride >= srcWidth * 3 * sizeof(int32_t)) &&
                                                    (dstStride >= srcWidth * 3 * sizeof(int32_t)));
    implementation<Slot::rvkAbsDiffVc3s32>(target)(src, srcWidth, srcHeight, srcStride, value1, value2, value3, dst,
                                                   dstStride);
}

void rvkAbsDiffVc3f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t value1,
                      float32_t value2, float32_t value3, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, 3 * sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, 3 * sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVc3f32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 12);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 12), src && dst && srcWidth && srcHeight &&
                                                    (srcStride >= srcWidth * 3 * sizeof(float32_t)) &&
                                                    (dstStride >= srcWidth * 3 * sizeof(float32_t)));
    implementation<Slot::rvkAbsDiffVc3f32>(target)(src, srcWidth, srcHeight, srcStride, value1, value2, value3, dst,
                                                   dstStride);
}

void rvkAbsDiffVc4u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value1,
                     uint8_t value2, uint8_t value3, uint8_t value4, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, 4);
    dstStride = packedIfZero(dstStride, srcWidth, 4);
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVc4u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 4);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src && dst && srcWidth && srcHeight && (srcStride >= srcWidth * 4) &&
                                                   (dstStride >= srcWidth * 4));
    implementation<Slot::rvkAbsDiffVc4u8>(target)(src, srcWidth, srcHeight, srcStride, value1, value2, value3, value4,
                                                  dst, dstStride);
}

void rvkAbsDiffVc4s32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value1,
                      int32_t value2, int32_t value3, int32_t value4, int32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, 4 * sizeof(int32_t));
    dstStride = packedIfZero(dstStride, srcWidth, 4 * sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVc4s32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 16);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 16), src && dst && srcWidth && srcHeight &&
                                                    (srcStride >= srcWidth * 4 * sizeof(int32_t)) &&
                                                    (dstStride >= srcWidth * 4 * sizeof(int32_t)));
    implementation<Slot::rvkAbsDiffVc4s32>(target)(src, srcWidth, srcHeight, srcStride, value1, value2, value3, value4,
                                                   dst, dstStride);
}

void rvkAbsDiffVc4f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t value1,
                      float32_t value2, float32_t value3, float32_t value4, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, 4 * sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, 4 * sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAbsDiffVc4f32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 16);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 16), src && dst && srcWidth && srcHeight &&
                                                    (srcStride >= srcWidth * 4 * sizeof(float32_t)) &&
                                                    (dstStride >= srcWidth * 4 * sizeof(float32_t)));
    implementation<Slot::rvkAbsDiffVc4f32>(target)(src, srcWidth, srcHeight, srcStride, value1, value2, value3, value4,
                                                   dst, dstStride);
}

void rvkImageDiffu8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkImageDiffu8_v2, [&] {
        return aligned(8, src1, src2, dst, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight);
    implementation<Slot::rvkImageDiffu8_v2>(target)(src1, src2, srcWidth, srcHeight, srcWidth, dst, srcWidth);
}

void rvkImageDiffu8_v2(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                       uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageDiffu8_v2, [&] {
        return aligned(8, src1, src2, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    implementation<Slot::rvkImageDiffu8_v2>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkImageDiffs16(const int16_t* src1, const int16_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                     uint32_t srcStride, int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageDiffs16, [&] {
        return aligned(8, src1, src2, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 2), src1 && src2 && dst && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(int16_t)) &&
                                                   (dstStride >= srcWidth * sizeof(int16_t)));
    implementation<Slot::rvkImageDiffs16>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkImageDifff32(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                     uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageDifff32, [&] {
        return aligned(4, src1, src2, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 8);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src1 && src2 && dst && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth * sizeof(float32_t)) &&
                                                   (dstStride >= srcWidth * sizeof(float32_t)));
    implementation<Slot::rvkImageDifff32>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkImageDiffu8f32(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                       uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageDiffu8f32, [&] {
        return aligned(8, src1, src2, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4), src1 && src2 && dst && srcWidth && srcHeight &&
                                                   (srcStride >= srcWidth) &&
                                                   (dstStride >= srcWidth * sizeof(float32_t)));
    implementation<Slot::rvkImageDiffu8f32>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkImageDiffu8s8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, int8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageDiffu8s8, [&] {
        return aligned(8, src1, src2, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    implementation<Slot::rvkImageDiffu8s8>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// Bitwise logic and fills: the public functions.
#include "dispatch.h"

using namespace rvk;

void rvkBitwiseAndu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                     const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, srcWidth);
    src2Stride = packedIfZero(src2Stride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBitwiseAndu8, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(srcWidth, srcHeight) &&
               srcWidth >= 32;
    });
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight && (src1Stride >= srcWidth) &&
                   (src2Stride >= srcWidth) && (dstStride >= srcWidth));
    implementation<Slot::rvkBitwiseAndu8>(target)(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, dst,
                                                  dstStride);
}

void rvkBitwiseNotu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBitwiseNotu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    implementation<Slot::rvkBitwiseNotu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkBitwiseOrs32(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                     uint32_t srcStride, int32_t* dst, uint32_t dstStride, const uint8_t* mask, uint32_t maskStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int32_t));
    maskStride = packedIfZero(maskStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBitwiseOrs32, [&] {
        return aligned(4, src1, src2, dst, srcStride, dstStride) && (!mask || aligned(4, mask, maskStride)) &&
               enoughWork(srcWidth, srcHeight, 8);
    });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4),
                         src1 && src2 && dst && srcWidth && srcHeight && (srcStride >= srcWidth * sizeof(int32_t)) &&
                             (dstStride >= srcWidth * sizeof(int32_t)) && (!mask || (maskStride >= srcWidth)));
    implementation<Slot::rvkBitwiseOrs32>(target)(src1, src2, srcWidth, srcHeight, srcStride, dst, dstStride, mask,
                                                  maskStride);
}

void rvkBitwiseOru8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                    const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride, const uint8_t* mask,
                    uint32_t maskStride)
{
    src1Stride = packedIfZero(src1Stride, srcWidth);
    src2Stride = packedIfZero(src2Stride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    maskStride = packedIfZero(maskStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBitwiseOru8, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) &&
               (!mask || aligned(8, mask, maskStride)) && enoughWork(srcWidth, srcHeight) && srcWidth >= 32;
    });
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight && (src1Stride >= srcWidth) &&
                   (src2Stride >= srcWidth) && (dstStride >= srcWidth) && (!mask || (maskStride >= srcWidth)));
    implementation<Slot::rvkBitwiseOru8>(target)(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, dst,
                                                 dstStride, mask, maskStride);
}

void rvkBitwiseXoru8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                     const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, srcWidth);
    src2Stride = packedIfZero(src2Stride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBitwiseXoru8, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(srcWidth, srcHeight) &&
               srcWidth >= 32;
    });
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight && (src1Stride >= srcWidth) &&
                   (src2Stride >= srcWidth) && (dstStride >= srcWidth));
    implementation<Slot::rvkBitwiseXoru8>(target)(src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, dst,
                                                  dstStride);
}

void rvkSetElementsu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value,
                      const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth);
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementsu8);
    RVK_CHECK_ARGS(dst && dstWidth && dstHeight && (dstStride >= dstWidth) && (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementsu8>(target)(dst, dstWidth, dstHeight, dstStride, value, mask, maskStride);
}

void rvkSetElementss32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value,
                       const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth, sizeof(int32_t));
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementss32);
    RVK_CHECK_SIZED_ARGS(rowFits(dstWidth, 4), dst && dstWidth && dstHeight &&
                                                   (dstStride >= dstWidth * sizeof(int32_t)) &&
                                                   (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementss32>(target)(dst, dstWidth, dstHeight, dstStride, value, mask, maskStride);
}

void rvkSetElementsf32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value,
                       const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth, sizeof(float32_t));
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementsf32);
    RVK_CHECK_SIZED_ARGS(rowFits(dstWidth, 4), dst && dstWidth && dstHeight &&
                                                   (dstStride >= dstWidth * sizeof(float32_t)) &&
                                                   (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementsf32>(target)(dst, dstWidth, dstHeight, dstStride, value, mask, maskStride);
}

void rvkSetElementsc3u8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value1,
                        uint8_t value2, uint8_t value3, const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth, 3);
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementsc3u8);
    RVK_CHECK_SIZED_ARGS(rowFits(dstWidth, 3), dst && dstWidth && dstHeight && (dstStride >= dstWidth * 3) &&
                                                   (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementsc3u8>(target)(dst, dstWidth, dstHeight, dstStride, value1, value2, value3, mask,
                                                     maskStride);
}

void rvkSetElementsc3s32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value1,
                         int32_t value2, int32_t value3, const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth, 3 * sizeof(int32_t));
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementsc3s32);
    RVK_CHECK_SIZED_ARGS(rowFits(dstWidth, 12), dst && dstWidth && dstHeight &&
                                                    (dstStride >= dstWidth * 3 * sizeof(int32_t)) &&
                                                    (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementsc3s32>(target)(dst, dstWidth, dstHeight, dstStride, value1, value2, value3, mask,
                                                      maskStride);
}

void rvkSetElementsc3f32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value1,
                         float32_t value2, float32_t value3, const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth, 3 * sizeof(float32_t));
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementsc3f32);
    RVK_CHECK_SIZED_ARGS(rowFits(dstWidth, 12), dst && dstWidth && dstHeight &&
                                                    (dstStride >= dstWidth * 3 * sizeof(float32_t)) &&
                                                    (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementsc3f32>(target)(dst, dstWidth, dstHeight, dstStride, value1, value2, value3, mask,
                                                      maskStride);
}

void rvkSetElementsc4u8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value1,
                        uint8_t value2, uint8_t value3, uint8_t value4, const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth, 4);
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementsc4u8);
    RVK_CHECK_SIZED_ARGS(rowFits(dstWidth, 4), dst && dstWidth && dstHeight && (dstStride >= dstWidth * 4) &&
                                                   (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementsc4u8>(target)(dst, dstWidth, dstHeight, dstStride, value1, value2, value3,
                                                     value4, mask, maskStride);
}

void rvkSetElementsc4s32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value1,
                         int32_t value2, int32_t value3, int32_t value4, const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth, 4 * sizeof(int32_t));
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementsc4s32);
    RVK_CHECK_SIZED_ARGS(rowFits(dstWidth, 16), dst && dstWidth && dstHeight &&
                                                    (dstStride >= dstWidth * 4 * sizeof(int32_t)) &&
                                                    (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementsc4s32>(target)(dst, dstWidth, dstHeight, dstStride, value1, value2, value3,
                                                      value4, mask, maskStride);
}

void rvkSetElementsc4f32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value1,
                         float32_t value2, float32_t value3, float32_t value4, const uint8_t* mask, uint32_t maskStride)
{
    dstStride = packedIfZero(dstStride, dstWidth, 4 * sizeof(float32_t));
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkSetElementsc4f32);
    RVK_CHECK_SIZED_ARGS(rowFits(dstWidth, 16), dst && dstWidth && dstHeight &&
                                                    (dstStride >= dstWidth * 4 * sizeof(float32_t)) &&
                                                    (!mask || (maskStride >= dstWidth)));
    implementation<Slot::rvkSetElementsc4f32>(target)(dst, dstWidth, dstHeight, dstStride, value1, value2, value3,
                                                      value4, mask, maskStride);
}

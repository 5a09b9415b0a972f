// Element-wise arithmetic: the public functions.
#include "dispatch.h"

using namespace rvk;

// The conditions between "clang-format off" and "on" are logged as they stand there.

rvkStatus rvkAddScalarf32(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t scalar,
                          float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, width, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, width, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAddScalarf32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(width, height, 4);
    });
    RVK_CHECK_STATUS(rowFits(width, 4) && src && dst && width && height && (srcStride >= width * 4) &&
                     (dstStride >= width * 4));
    return implementation<Slot::rvkAddScalarf32>(target)(src, width, height, srcStride, scalar, dst, dstStride);
}

rvkStatus rvkAddScalars16(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                          int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(
        Slot::rvkAddScalars16, [&] { return aligned(8, src, dst, srcStride, dstStride) && enoughWork(width, height); });
    RVK_CHECK_STATUS(rowFits(width, 2) && src && dst && width && height && (srcStride >= width * 2) &&
                     (dstStride >= width * 2));
    return implementation<Slot::rvkAddScalars16>(target)(src, width, height, srcStride, scalar, dst, dstStride);
}

rvkStatus rvkAddSquaredu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                             const uint16_t* src2, uint32_t src2Stride, int32_t scale, uint16_t* dst,
                             uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width, sizeof(uint16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAddSquaredu8u16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src1 && src2 && dst && width && height && (src1Stride >= width) &&
                     (src2Stride >= width * 2) && (dstStride >= width * 2));
    return implementation<Slot::rvkAddSquaredu8u16>(target)(src1, width, height, src1Stride, src2, src2Stride, scale,
                                                            dst, dstStride);
}

rvkStatus rvkAddWeightedu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                           const uint8_t* src2, uint32_t src2Stride, float32_t alpha, float32_t beta, uint8_t* dst,
                           uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkAddWeightedu8, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(src1 && src2 && dst && width && height && (src1Stride >= width) && (src2Stride >= width) &&
                     (dstStride >= width));
    return implementation<Slot::rvkAddWeightedu8>(target)(src1, width, height, src1Stride, src2, src2Stride, alpha,
                                                          beta, dst, dstStride);
}

rvkStatus rvkAddf32(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const float32_t* src2,
                    uint32_t src2Stride, float32_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width, sizeof(float32_t));
    src2Stride = packedIfZero(src2Stride, width, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, width, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAddf32, [&] {
        return aligned(4, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height, 8);
    });
    RVK_CHECK_STATUS(rowFits(width, 4) && src1 && src2 && dst && width && height && (src1Stride >= width * 4) &&
                     (src2Stride >= width * 4) && (dstStride >= width * 4));
    return implementation<Slot::rvkAddf32>(target)(src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

rvkStatus rvkAdds16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const int16_t* src2,
                    uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width, sizeof(int16_t));
    src2Stride = packedIfZero(src2Stride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAdds16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OR(RAVIK_EBADPARAM, rowFits(width, 2),
                            src1 && src2 && dst && width && height && (src1Stride >= width*2) &&
                            (src2Stride >= width*2) && (dstStride >= width*2));
    // clang-format on
    return implementation<Slot::rvkAdds16>(target)(src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

rvkStatus rvkAdds16_v2(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const int16_t* src2,
                       uint32_t src2Stride, uint32_t policy, int16_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width, sizeof(int16_t));
    src2Stride = packedIfZero(src2Stride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAdds16_v2, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src1 && src2 && dst && width && height && (src1Stride >= width * 2) &&
                     (src2Stride >= width * 2) && (dstStride >= width * 2));
    return implementation<Slot::rvkAdds16_v2>(target)(src1, width, height, src1Stride, src2, src2Stride, policy, dst,
                                                      dstStride);
}

rvkStatus rvkAddu16u8u16(const uint16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                         const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint16_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width, sizeof(uint16_t));
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAddu16u8u16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src1 && src2 && dst && width && height && (src1Stride >= width * 2) &&
                     (src2Stride >= width) && (dstStride >= width * 2));
    return implementation<Slot::rvkAddu16u8u16>(target)(src1, width, height, src1Stride, src2, src2Stride, policy, dst,
                                                        dstStride);
}

rvkStatus rvkAddu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                   uint32_t src2Stride, uint32_t policy, uint8_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkAddu8, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(src1 && src2 && dst && width && height && (src1Stride >= width) && (src2Stride >= width) &&
                     (dstStride >= width));
    return implementation<Slot::rvkAddu8>(target)(src1, width, height, src1Stride, src2, src2Stride, policy, dst,
                                                  dstStride);
}

rvkStatus rvkAddu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                      uint32_t src2Stride, uint16_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkAddu8u16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src1 && src2 && dst && width && height && (src1Stride >= width) &&
                     (src2Stride >= width) && (dstStride >= width * 2));
    return implementation<Slot::rvkAddu8u16>(target)(src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

void rvkAverages32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* average)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(
        Slot::rvkAverages32, [&] { return aligned(4, src, srcStride) && enoughWork(srcWidth, srcHeight, 4); });
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4),
                         src && average && srcWidth && srcHeight && (srcStride >= srcWidth * sizeof(int32_t)));
    implementation<Slot::rvkAverages32>(target)(src, srcWidth, srcHeight, srcStride, average);
}

void rvkAverageu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* average)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(
        Slot::rvkAverageu8, [&] { return aligned(8, src, srcStride, srcWidth) && enoughWork(srcWidth, srcHeight); });
    RVK_CHECK_ARGS(src && average && srcWidth && srcHeight && (srcStride >= srcWidth));
    implementation<Slot::rvkAverageu8>(target)(src, srcWidth, srcHeight, srcStride, average);
}

rvkStatus rvkElementMultiplyf32(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                const float32_t* src2, uint32_t src2Stride, float32_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width, sizeof(float32_t));
    src2Stride = packedIfZero(src2Stride, width, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, width, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkElementMultiplyf32, [&] {
        return aligned(4, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height, 8);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OR(RAVIK_EBADPARAM, rowFits(width, 4),
                            src1 && src2 && dst && width && height && (src1Stride >= width*4) &&
                            (src2Stride >= width*4) && (dstStride >= width*4));
    // clang-format on
    return implementation<Slot::rvkElementMultiplyf32>(target)(src1, width, height, src1Stride, src2, src2Stride, dst,
                                                               dstStride);
}

rvkStatus rvkElementMultiplys16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                const int16_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, int16_t* dst,
                                uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width, sizeof(int16_t));
    src2Stride = packedIfZero(src2Stride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkElementMultiplys16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src1 && src2 && dst && width && height && (src1Stride >= width * 2) &&
                     (src2Stride >= width * 2) && (dstStride >= width * 2));
    return implementation<Slot::rvkElementMultiplys16>(target)(src1, width, height, src1Stride, src2, src2Stride,
                                                               policy, scale, dst, dstStride);
}

rvkStatus rvkElementMultiplyu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                               const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, uint8_t* dst,
                               uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkElementMultiplyu8, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(src1 && src2 && dst && width && height && (src1Stride >= width) && (src2Stride >= width) &&
                     (dstStride >= width));
    return implementation<Slot::rvkElementMultiplyu8>(target)(src1, width, height, src1Stride, src2, src2Stride, policy,
                                                              scale, dst, dstStride);
}

rvkStatus rvkElementMultiplyu8s16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                  const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale,
                                  int16_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkElementMultiplyu8s16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src1 && src2 && dst && width && height && (src1Stride >= width) &&
                     (src2Stride >= width) && (dstStride >= width * 2));
    return implementation<Slot::rvkElementMultiplyu8s16>(target)(src1, width, height, src1Stride, src2, src2Stride,
                                                                 policy, scale, dst, dstStride);
}

rvkStatus rvkElementMultiplyu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                  const uint8_t* src2, uint32_t src2Stride, uint16_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkElementMultiplyu8u16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS_OR(RAVIK_EBADPARAM, rowFits(width, 2),
                            src1 && src2 && dst && width && height && (src1Stride >= width) &&
                            (src2Stride >= width) && (dstStride >= width*2));
    // clang-format on
    return implementation<Slot::rvkElementMultiplyu8u16>(target)(src1, width, height, src1Stride, src2, src2Stride, dst,
                                                                 dstStride);
}

rvkStatus rvkMultiplyScalarf32(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                               float32_t scalar, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, width, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, width, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMultiplyScalarf32, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(width, height, 4);
    });
    RVK_CHECK_STATUS(rowFits(width, 4) && src && dst && width && height && (srcStride >= width * 4) &&
                     (dstStride >= width * 4));
    return implementation<Slot::rvkMultiplyScalarf32>(target)(src, width, height, srcStride, scalar, dst, dstStride);
}

rvkStatus rvkMultiplyScalars16(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                               int32_t scale, int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkMultiplyScalars16, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src && dst && width && height && (srcStride >= width * 2) &&
                     (dstStride >= width * 2));
    return implementation<Slot::rvkMultiplyScalars16>(target)(src, width, height, srcStride, scalar, scale, dst,
                                                              dstStride);
}

rvkStatus rvkSubtracts16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const int16_t* src2,
                         uint32_t src2Stride, uint32_t policy, int16_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width, sizeof(int16_t));
    src2Stride = packedIfZero(src2Stride, width, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkSubtracts16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height);
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src1 && src2 && dst && width && height && (src1Stride >= width * 2) &&
                     (src2Stride >= width * 2) && (dstStride >= width * 2));
    return implementation<Slot::rvkSubtracts16>(target)(src1, width, height, src1Stride, src2, src2Stride, policy, dst,
                                                        dstStride);
}

rvkStatus rvkSubtractu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                        uint32_t src2Stride, uint32_t policy, uint8_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkSubtractu8, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(src1 && src2 && dst && width && height && (src1Stride >= width) && (src2Stride >= width) &&
                     (dstStride >= width));
    return implementation<Slot::rvkSubtractu8>(target)(src1, width, height, src1Stride, src2, src2Stride, policy, dst,
                                                       dstStride);
}

rvkStatus rvkSubtractu8s16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                           const uint8_t* src2, uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    src1Stride = packedIfZero(src1Stride, width);
    src2Stride = packedIfZero(src2Stride, width);
    dstStride = packedIfZero(dstStride, width, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkSubtractu8s16, [&] {
        return aligned(8, src1, src2, dst, src1Stride, src2Stride, dstStride) && enoughWork(width, height) &&
               width >= 32;
    });
    RVK_CHECK_STATUS(rowFits(width, 2) && src1 && src2 && dst && width && height && (src1Stride >= width) &&
                     (src2Stride >= width) && (dstStride >= width * 2));
    return implementation<Slot::rvkSubtractu8s16>(target)(src1, width, height, src1Stride, src2, src2Stride, dst,
                                                          dstStride);
}

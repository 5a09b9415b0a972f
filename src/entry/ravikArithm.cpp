// Element-wise arithmetic: the public functions.
#include "bodies.h"

using namespace rvk;

rvkStatus rvkAddScalarf32(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t scalar,
                          float32_t* dst, uint32_t dstStride)
{
    return combineWithNumbers<Slot::rvkAddScalarf32>(kSilent, src, width, height, srcStride, dst, dstStride, scalar);
}

rvkStatus rvkAddScalars16(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                          int16_t* dst, uint32_t dstStride)
{
    return combineWithNumbers<Slot::rvkAddScalars16>(kSilent, src, width, height, srcStride, dst, dstStride, scalar);
}

rvkStatus rvkAddSquaredu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                             const uint16_t* src2, uint32_t src2Stride, int32_t scale, uint16_t* dst,
                             uint32_t dstStride)
{
    return combine<Slot::rvkAddSquaredu8u16>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride,
                                             scale);
}

rvkStatus rvkAddWeightedu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                           const uint8_t* src2, uint32_t src2Stride, float32_t alpha, float32_t beta, uint8_t* dst,
                           uint32_t dstStride)
{
    return combine<Slot::rvkAddWeightedu8>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride,
                                           alpha, beta);
}

rvkStatus rvkAddf32(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const float32_t* src2,
                    uint32_t src2Stride, float32_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkAddf32>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

rvkStatus rvkAdds16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const int16_t* src2,
                    uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkAdds16>(
        {__func__, "src1 && src2 && dst && width && height && (src1Stride >= width*2) && (src2Stride >= width*2) && "
                   "(dstStride >= width*2)"},
        src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

rvkStatus rvkAdds16_v2(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const int16_t* src2,
                       uint32_t src2Stride, uint32_t policy, int16_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkAdds16_v2>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride,
                                       policy);
}

rvkStatus rvkAddu16u8u16(const uint16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                         const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint16_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkAddu16u8u16>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride,
                                         policy);
}

rvkStatus rvkAddu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                   uint32_t src2Stride, uint32_t policy, uint8_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkAddu8>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride, policy);
}

rvkStatus rvkAddu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                      uint32_t src2Stride, uint16_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkAddu8u16>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

void rvkAverages32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* average)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int32_t));
    const RVK_IMPL target = chooseTarget(
        Slot::rvkAverages32, [&] { return aligned(4, src, srcStride) && enoughWork(srcWidth, srcHeight, 4); });
    RVK_CHECK_ARGS(src && average && srcWidth && srcHeight && (srcStride >= srcWidth * sizeof(int32_t)));
    RVK_CHECK_ARGS(rowFits(srcWidth, 4));
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
    return combine<Slot::rvkElementMultiplyf32>(
        {__func__, "src1 && src2 && dst && width && height && (src1Stride >= width*4) && (src2Stride >= width*4) && "
                   "(dstStride >= width*4)"},
        src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

rvkStatus rvkElementMultiplys16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                const int16_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, int16_t* dst,
                                uint32_t dstStride)
{
    return combine<Slot::rvkElementMultiplys16>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst,
                                                dstStride, policy, scale);
}

rvkStatus rvkElementMultiplyu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                               const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, uint8_t* dst,
                               uint32_t dstStride)
{
    return combine<Slot::rvkElementMultiplyu8>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst,
                                               dstStride, policy, scale);
}

rvkStatus rvkElementMultiplyu8s16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                  const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale,
                                  int16_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkElementMultiplyu8s16>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst,
                                                  dstStride, policy, scale);
}

rvkStatus rvkElementMultiplyu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                  const uint8_t* src2, uint32_t src2Stride, uint16_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkElementMultiplyu8u16>(
        {__func__, "src1 && src2 && dst && width && height && (src1Stride >= width) && (src2Stride >= width) && "
                   "(dstStride >= width*2)"},
        src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

rvkStatus rvkMultiplyScalarf32(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                               float32_t scalar, float32_t* dst, uint32_t dstStride)
{
    return combineWithNumbers<Slot::rvkMultiplyScalarf32>(kSilent, src, width, height, srcStride, dst, dstStride,
                                                          scalar);
}

rvkStatus rvkMultiplyScalars16(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                               int32_t scale, int16_t* dst, uint32_t dstStride)
{
    return combineWithNumbers<Slot::rvkMultiplyScalars16>(kSilent, src, width, height, srcStride, dst, dstStride,
                                                          scalar, scale);
}

rvkStatus rvkSubtracts16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const int16_t* src2,
                         uint32_t src2Stride, uint32_t policy, int16_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkSubtracts16>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride,
                                         policy);
}

rvkStatus rvkSubtractu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                        uint32_t src2Stride, uint32_t policy, uint8_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkSubtractu8>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride,
                                        policy);
}

rvkStatus rvkSubtractu8s16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                           const uint8_t* src2, uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    return combine<Slot::rvkSubtractu8s16>(kSilent, src1, width, height, src1Stride, src2, src2Stride, dst, dstStride);
}

// Bitwise logic and fills: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

template <Slot slot, uint32_t channels, class T, class... Values>
void setElements(Words words, T* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, const uint8_t* mask,
                 uint32_t maskStride, Values... values)
{
    dstStride = packedIfZero(dstStride, dstWidth, channels * sizeof(T));
    maskStride = packedIfZero(maskStride, dstWidth);
    const RVK_IMPL target = chooseTarget(slot);
    if (!(dst && dstWidth && dstHeight && dstStride >= rowSize(dstWidth, channels * sizeof(T)) &&
          (!mask || maskStride >= dstWidth)))
        return refuse<slot>(words);
    implementation<slot>(target)(dst, dstWidth, dstHeight, dstStride, values..., mask, maskStride);
}

// Conditions as the log quotes them.
constexpr char kLogic[] = "src1 && src2 && dst && srcWidth && srcHeight && (src1Stride >= srcWidth) && "
                          "(src2Stride >= srcWidth) && (dstStride >= srcWidth)";

#define RVK_MASKED_IMAGE(size)                                        \
    "dst && dstWidth && dstHeight && (dstStride >= dstWidth" size ")" \
    " && (!mask || (maskStride >= dstWidth))"

} // namespace

void rvkBitwiseAndu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                     const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride)
{
    combine<Slot::rvkBitwiseAndu8>({__func__, kLogic}, src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, dst,
                                   dstStride);
}

void rvkBitwiseNotu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride)
{
    mapBytes<Slot::rvkBitwiseNotu8>(
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth)"}, src,
        srcWidth, srcHeight, srcStride, dst, dstStride);
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
    RVK_CHECK_ARGS(src1 && src2 && dst && srcWidth && srcHeight && (srcStride >= srcWidth * sizeof(int32_t)) &&
                   (dstStride >= srcWidth * sizeof(int32_t)) && (!mask || (maskStride >= srcWidth)));
    RVK_CHECK_ARGS(rowFits(srcWidth, 4));
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
    combine<Slot::rvkBitwiseXoru8>({__func__, kLogic}, src1, srcWidth, srcHeight, src1Stride, src2, src2Stride, dst,
                                   dstStride);
}

void rvkSetElementsu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value,
                      const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementsu8, 1>({__func__, RVK_MASKED_IMAGE("")}, dst, dstWidth, dstHeight, dstStride, mask,
                                           maskStride, value);
}

void rvkSetElementss32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value,
                       const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementss32, 1>({__func__, RVK_MASKED_IMAGE(" * sizeof(int32_t)")}, dst, dstWidth,
                                            dstHeight, dstStride, mask, maskStride, value);
}

void rvkSetElementsf32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value,
                       const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementsf32, 1>({__func__, RVK_MASKED_IMAGE(" * sizeof(float32_t)")}, dst, dstWidth,
                                            dstHeight, dstStride, mask, maskStride, value);
}

void rvkSetElementsc3u8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value1,
                        uint8_t value2, uint8_t value3, const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementsc3u8, 3>({__func__, RVK_MASKED_IMAGE(" * 3")}, dst, dstWidth, dstHeight, dstStride,
                                             mask, maskStride, value1, value2, value3);
}

void rvkSetElementsc3s32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value1,
                         int32_t value2, int32_t value3, const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementsc3s32, 3>({__func__, RVK_MASKED_IMAGE(" * 3 * sizeof(int32_t)")}, dst, dstWidth,
                                              dstHeight, dstStride, mask, maskStride, value1, value2, value3);
}

void rvkSetElementsc3f32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value1,
                         float32_t value2, float32_t value3, const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementsc3f32, 3>({__func__, RVK_MASKED_IMAGE(" * 3 * sizeof(float32_t)")}, dst, dstWidth,
                                              dstHeight, dstStride, mask, maskStride, value1, value2, value3);
}

void rvkSetElementsc4u8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value1,
                        uint8_t value2, uint8_t value3, uint8_t value4, const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementsc4u8, 4>({__func__, RVK_MASKED_IMAGE(" * 4")}, dst, dstWidth, dstHeight, dstStride,
                                             mask, maskStride, value1, value2, value3, value4);
}

void rvkSetElementsc4s32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value1,
                         int32_t value2, int32_t value3, int32_t value4, const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementsc4s32, 4>({__func__, RVK_MASKED_IMAGE(" * 4 * sizeof(int32_t)")}, dst, dstWidth,
                                              dstHeight, dstStride, mask, maskStride, value1, value2, value3, value4);
}

void rvkSetElementsc4f32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value1,
                         float32_t value2, float32_t value3, float32_t value4, const uint8_t* mask, uint32_t maskStride)
{
    setElements<Slot::rvkSetElementsc4f32, 4>({__func__, RVK_MASKED_IMAGE(" * 4 * sizeof(float32_t)")}, dst, dstWidth,
                                              dstHeight, dstStride, mask, maskStride, value1, value2, value3, value4);
}

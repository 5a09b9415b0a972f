// Dot products: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

template <Slot slot, class T>
auto multiply(const char* function, const T* A, const T* B) -> decltype(implementation<slot>(RVK_IMPL_CPU)(A, B))
{
    const RVK_IMPL target = chooseTarget(slot);
    if (!(A && B)) {
        logArgumentAssertion(function, "A && B");
        return 0;
    }
    return implementation<slot>(target)(A, B);
}

template <Slot slot, class T, class Product>
void multiplyByFour(const char* function, const T* A, const T* B, const T* C, const T* D, const T* E,
                    Product* dotProducts)
{
    const RVK_IMPL target = chooseTarget(slot);
    if (!(A && B && C && D && E && dotProducts)) {
        logArgumentAssertion(function, "A && B && C && D && E && dotProducts");
        return;
    }
    implementation<slot>(target)(A, B, C, D, E, dotProducts);
}

template <Slot slot, class T>
void multiplyAndScale(const char* function, const T* A, float32_t invLenA, const T* vB0, const T* vB1, const T* vB2,
                      const T* vB3, const float32_t* invLengthsB, float32_t* dotProducts)
{
    const RVK_IMPL target = chooseTarget(slot);
    if (!(A && vB0 && vB1 && vB2 && vB3 && invLengthsB && dotProducts)) {
        logArgumentAssertion(function, "A && vB0 && vB1 && vB2 && vB3 && invLengthsB && dotProducts");
        return;
    }
    implementation<slot>(target)(A, invLenA, vB0, vB1, vB2, vB3, invLengthsB, dotProducts);
}

// Blocks of T, and a number of type D for each.
template <Slot slot, class T, class D>
rvkStatus multiplyBlocks(const T* src1, const T* src2, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                         uint32_t src2Stride, uint32_t blockWidth, uint32_t blockHeight, D* dst, uint32_t dstStride)
{
    const uint32_t blocksAcross = blockWidth && srcWidth ? (srcWidth - 1) / blockWidth + 1 : 0;
    src1Stride = packedIfZero(src1Stride, srcWidth, sizeof(T));
    src2Stride = packedIfZero(src2Stride, srcWidth, sizeof(T));
    dstStride = packedIfZero(dstStride, blocksAcross, sizeof(D));
    const RVK_IMPL target = chooseTarget(slot);
    RVK_CHECK_STATUS(src1 && src2 && dst && blocksAcross && srcHeight && blockHeight &&
                     src1Stride >= rowSize(srcWidth, sizeof(T)) && src2Stride >= rowSize(srcWidth, sizeof(T)) &&
                     dstStride >= rowSize(blocksAcross, sizeof(D)));
    return implementation<slot>(target)(src1, src2, srcWidth, srcHeight, src1Stride, src2Stride, blockWidth,
                                        blockHeight, dst, dstStride);
}

} // namespace

int32_t rvkDotProduct36x1s8(const int8_t* A, const int8_t* B)
{
    return multiply<Slot::rvkDotProduct36x1s8>(__func__, A, B);
}

uint32_t rvkDotProduct36x1u8(const uint8_t* A, const uint8_t* B)
{
    return multiply<Slot::rvkDotProduct36x1u8>(__func__, A, B);
}

int32_t rvkDotProduct64x1s8(const int8_t* A, const int8_t* B)
{
    return multiply<Slot::rvkDotProduct64x1s8>(__func__, A, B);
}

uint32_t rvkDotProduct64x1u8(const uint8_t* A, const uint8_t* B)
{
    return multiply<Slot::rvkDotProduct64x1u8>(__func__, A, B);
}

int32_t rvkDotProduct128x1s8(const int8_t* A, const int8_t* B)
{
    return multiply<Slot::rvkDotProduct128x1s8>(__func__, A, B);
}

uint32_t rvkDotProduct128x1u8(const uint8_t* A, const uint8_t* B)
{
    return multiply<Slot::rvkDotProduct128x1u8>(__func__, A, B);
}

uint32_t rvkDotProduct8x8u8(const uint8_t* A, const uint8_t* B)
{
    return multiply<Slot::rvkDotProduct8x8u8>(__func__, A, B);
}

uint32_t rvkDotProduct11x12u8(const uint8_t* A, const uint8_t* B)
{
    return multiply<Slot::rvkDotProduct11x12u8>(__func__, A, B);
}

void rvkDotProduct36x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                         int32_t* dotProducts)
{
    multiplyByFour<Slot::rvkDotProduct36x4s8>(__func__, A, B, C, D, E, dotProducts);
}

void rvkDotProduct36x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D, const uint8_t* E,
                         uint32_t* dotProducts)
{
    multiplyByFour<Slot::rvkDotProduct36x4u8>(__func__, A, B, C, D, E, dotProducts);
}

void rvkDotProduct64x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                         int32_t* dotProducts)
{
    multiplyByFour<Slot::rvkDotProduct64x4s8>(__func__, A, B, C, D, E, dotProducts);
}

void rvkDotProduct64x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D, const uint8_t* E,
                         uint32_t* dotProducts)
{
    multiplyByFour<Slot::rvkDotProduct64x4u8>(__func__, A, B, C, D, E, dotProducts);
}

void rvkDotProduct128x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                          int32_t* dotProducts)
{
    multiplyByFour<Slot::rvkDotProduct128x4s8>(__func__, A, B, C, D, E, dotProducts);
}

void rvkDotProduct128x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D, const uint8_t* E,
                          uint32_t* dotProducts)
{
    multiplyByFour<Slot::rvkDotProduct128x4u8>(__func__, A, B, C, D, E, dotProducts);
}

void rvkDotProductNorm36x4s8(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                             const int8_t* vB2, const int8_t* vB3, const float32_t* invLengthsB, float32_t* dotProducts)
{
    multiplyAndScale<Slot::rvkDotProductNorm36x4s8>(__func__, A, invLenA, vB0, vB1, vB2, vB3, invLengthsB, dotProducts);
}

void rvkDotProductNorm36x4u8(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                             const uint8_t* vB2, const uint8_t* vB3, const float32_t* invLengthsB,
                             float32_t* dotProducts)
{
    multiplyAndScale<Slot::rvkDotProductNorm36x4u8>(__func__, A, invLenA, vB0, vB1, vB2, vB3, invLengthsB, dotProducts);
}

void rvkDotProductNorm64x4s8(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                             const int8_t* vB2, const int8_t* vB3, const float32_t* invLengthsB, float32_t* dotProducts)
{
    multiplyAndScale<Slot::rvkDotProductNorm64x4s8>(__func__, A, invLenA, vB0, vB1, vB2, vB3, invLengthsB, dotProducts);
}

void rvkDotProductNorm64x4u8(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                             const uint8_t* vB2, const uint8_t* vB3, const float32_t* invLengthsB,
                             float32_t* dotProducts)
{
    multiplyAndScale<Slot::rvkDotProductNorm64x4u8>(__func__, A, invLenA, vB0, vB1, vB2, vB3, invLengthsB, dotProducts);
}

void rvkDotProductNorm128x4s8(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                              const int8_t* vB2, const int8_t* vB3, const float32_t* invLengthsB,
                              float32_t* dotProducts)
{
    multiplyAndScale<Slot::rvkDotProductNorm128x4s8>(__func__, A, invLenA, vB0, vB1, vB2, vB3, invLengthsB,
                                                     dotProducts);
}

void rvkDotProductNorm128x4u8(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                              const uint8_t* vB2, const uint8_t* vB3, const float32_t* invLengthsB,
                              float32_t* dotProducts)
{
    multiplyAndScale<Slot::rvkDotProductNorm128x4u8>(__func__, A, invLenA, vB0, vB1, vB2, vB3, invLengthsB,
                                                     dotProducts);
}

int32_t rvkDotProducts8(const int8_t* a, const int8_t* b, uint32_t length)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkDotProducts8);
    RVK_CHECK_ARGS_OR(0, a && b);
    return implementation<Slot::rvkDotProducts8>(target)(a, b, length);
}

uint32_t rvkDotProductu8(const uint8_t* a, const uint8_t* b, uint32_t length)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkDotProductu8);
    RVK_CHECK_ARGS_OR(0, a && b);
    return implementation<Slot::rvkDotProductu8>(target)(a, b, length);
}

float32_t rvkDotProductf32(const float32_t* a, const float32_t* b, uint32_t length)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkDotProductf32);
    RVK_CHECK_ARGS_OR(0, a && b);
    return implementation<Slot::rvkDotProductf32>(target)(a, b, length);
}

rvkStatus rvkBlockDotProductu8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                               uint32_t src1Stride, uint32_t src2Stride, uint32_t blockWidth, uint32_t blockHeight,
                               uint32_t* dst, uint32_t dstStride)
{
    return multiplyBlocks<Slot::rvkBlockDotProductu8>(src1, src2, srcWidth, srcHeight, src1Stride, src2Stride,
                                                      blockWidth, blockHeight, dst, dstStride);
}

rvkStatus rvkBlockDotProductf32(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                                uint32_t src1Stride, uint32_t src2Stride, uint32_t blockWidth, uint32_t blockHeight,
                                float32_t* dst, uint32_t dstStride)
{
    return multiplyBlocks<Slot::rvkBlockDotProductf32>(src1, src2, srcWidth, srcHeight, src1Stride, src2Stride,
                                                       blockWidth, blockHeight, dst, dstStride);
}

// Dot products of a fixed number of elements, by the drivers dot<n> and dotFour<n> of either room, and of blocks, by the
// driver dotEachBlock.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {
namespace {

// In single precision and in this order, which no compiler may change.
template <uint32_t n, class T>
void dotFourScaled(const T* A, float32_t invLenA, const T* const (&candidates)[4], const float32_t* invLengthsB,
                   float32_t* dotProducts)
{
    Dot<T> dots[4];
    dotFour<n>(A, candidates, dots);
    for (size_t k = 0; k < 4; ++k)
        dotProducts[k] = (static_cast<float32_t>(dots[k]) * invLenA) * invLengthsB[k];
}

} // namespace

int32_t RVK_FORM(rvkDotProduct36x1s8)(const int8_t* A, const int8_t* B)
{
    return dot<36>(A, B);
}

uint32_t RVK_FORM(rvkDotProduct36x1u8)(const uint8_t* A, const uint8_t* B)
{
    return dot<36>(A, B);
}

int32_t RVK_FORM(rvkDotProduct64x1s8)(const int8_t* A, const int8_t* B)
{
    return dot<64>(A, B);
}

uint32_t RVK_FORM(rvkDotProduct64x1u8)(const uint8_t* A, const uint8_t* B)
{
    return dot<64>(A, B);
}

int32_t RVK_FORM(rvkDotProduct128x1s8)(const int8_t* A, const int8_t* B)
{
    return dot<128>(A, B);
}

uint32_t RVK_FORM(rvkDotProduct128x1u8)(const uint8_t* A, const uint8_t* B)
{
    return dot<128>(A, B);
}

uint32_t RVK_FORM(rvkDotProduct8x8u8)(const uint8_t* A, const uint8_t* B)
{
    return dot<8 * 8>(A, B);
}

uint32_t RVK_FORM(rvkDotProduct11x12u8)(const uint8_t* A, const uint8_t* B)
{
    return dot<11 * 12>(A, B);
}

void RVK_FORM(rvkDotProduct36x4s8)(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                                   int32_t* dotProducts)
{
    dotFour<36>(A, {B, C, D, E}, dotProducts);
}

void RVK_FORM(rvkDotProduct36x4u8)(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                   const uint8_t* E, uint32_t* dotProducts)
{
    dotFour<36>(A, {B, C, D, E}, dotProducts);
}

void RVK_FORM(rvkDotProduct64x4s8)(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                                   int32_t* dotProducts)
{
    dotFour<64>(A, {B, C, D, E}, dotProducts);
}

void RVK_FORM(rvkDotProduct64x4u8)(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                   const uint8_t* E, uint32_t* dotProducts)
{
    dotFour<64>(A, {B, C, D, E}, dotProducts);
}

void RVK_FORM(rvkDotProduct128x4s8)(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                                    int32_t* dotProducts)
{
    dotFour<128>(A, {B, C, D, E}, dotProducts);
}

void RVK_FORM(rvkDotProduct128x4u8)(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                    const uint8_t* E, uint32_t* dotProducts)
{
    dotFour<128>(A, {B, C, D, E}, dotProducts);
}

void RVK_FORM(rvkDotProductNorm36x4s8)(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                                       const int8_t* vB2, const int8_t* vB3, const float32_t* invLengthsB,
                                       float32_t* dotProducts)
{
    dotFourScaled<36>(A, invLenA, {vB0, vB1, vB2, vB3}, invLengthsB, dotProducts);
}

void RVK_FORM(rvkDotProductNorm36x4u8)(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                                       const uint8_t* vB2, const uint8_t* vB3, const float32_t* invLengthsB,
                                       float32_t* dotProducts)
{
    dotFourScaled<36>(A, invLenA, {vB0, vB1, vB2, vB3}, invLengthsB, dotProducts);
}

void RVK_FORM(rvkDotProductNorm64x4s8)(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                                       const int8_t* vB2, const int8_t* vB3, const float32_t* invLengthsB,
                                       float32_t* dotProducts)
{
    dotFourScaled<64>(A, invLenA, {vB0, vB1, vB2, vB3}, invLengthsB, dotProducts);
}

void RVK_FORM(rvkDotProductNorm64x4u8)(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                                       const uint8_t* vB2, const uint8_t* vB3, const float32_t* invLengthsB,
                                       float32_t* dotProducts)
{
    dotFourScaled<64>(A, invLenA, {vB0, vB1, vB2, vB3}, invLengthsB, dotProducts);
}

void RVK_FORM(rvkDotProductNorm128x4s8)(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                                        const int8_t* vB2, const int8_t* vB3, const float32_t* invLengthsB,
                                        float32_t* dotProducts)
{
    dotFourScaled<128>(A, invLenA, {vB0, vB1, vB2, vB3}, invLengthsB, dotProducts);
}

void RVK_FORM(rvkDotProductNorm128x4u8)(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                                        const uint8_t* vB2, const uint8_t* vB3, const float32_t* invLengthsB,
                                        float32_t* dotProducts)
{
    dotFourScaled<128>(A, invLenA, {vB0, vB1, vB2, vB3}, invLengthsB, dotProducts);
}

int32_t RVK_FORM(irvkDotProductN)(const int8_t* a, const int8_t* b, uint32_t n)
{
    return RVK_FORM(rvkDotProducts8)(a, b, n);
}

rvkStatus RVK_FORM(rvkBlockDotProductu8)(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth,
                                         uint32_t srcHeight, uint32_t src1Stride, uint32_t src2Stride,
                                         uint32_t blockWidth, uint32_t blockHeight, uint32_t* dst, uint32_t dstStride)
{
    return dotEachBlock(srcWidth, srcHeight, Plane{src1, src1Stride}, Plane{src2, src2Stride}, blockWidth, blockHeight,
                        Plane{dst, dstStride});
}

rvkStatus RVK_FORM(rvkBlockDotProductf32)(const float32_t* src1, const float32_t* src2, uint32_t srcWidth,
                                          uint32_t srcHeight, uint32_t src1Stride, uint32_t src2Stride,
                                          uint32_t blockWidth, uint32_t blockHeight, float32_t* dst, uint32_t dstStride)
{
    return dotEachBlock(srcWidth, srcHeight, Plane{src1, src1Stride}, Plane{src2, src2Stride}, blockWidth, blockHeight,
                        Plane{dst, dstStride});
}

} // namespace RVK_ROOM

/* Ravik: dot products of descriptors, of vectors of any length and of blocks of pictures.
 *
 * Common to all functions of this header:
 *   Shapes     the names of the fixed forms say how many elements a descriptor has, and whether the first, `A`, is
 *              multiplied with one other or with four. Patches of 8x8 and 11x12 pixels are their rows one after the
 *              other. `length` may be any number; 0 gives 0.
 *   Result     of bytes exact: products are summed modulo 2^32, which only lengths above 66051 can reach. The scaled
 *              forms give (dot * invLenA) * invLengthsB[k] in single precision, in this order: the cosine of the angle
 *              when the factors are one over the lengths of the descriptors.
 *   Alignment  bytes may stand anywhere, floats and results are aligned to 4.
 *   Overlap    the inputs may be the same memory or overlap; result arrays must not overlap them.
 *   Errors     on null pointers "Assertion failed @<function>: <condition>" is logged, the result is 0, and no array is
 *              written. */
#ifndef RAVIK_DOTPRODUCT_H
#define RAVIK_DOTPRODUCT_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* A with one other. */
RVK_API int32_t rvkDotProduct36x1s8(const int8_t* A, const int8_t* B);
RVK_API uint32_t rvkDotProduct36x1u8(const uint8_t* A, const uint8_t* B);
RVK_API int32_t rvkDotProduct64x1s8(const int8_t* A, const int8_t* B);
RVK_API uint32_t rvkDotProduct64x1u8(const uint8_t* A, const uint8_t* B);
RVK_API int32_t rvkDotProduct128x1s8(const int8_t* A, const int8_t* B);
RVK_API uint32_t rvkDotProduct128x1u8(const uint8_t* A, const uint8_t* B);

/* A with four others: dotProducts[0] of A and B, ... dotProducts[3] of A and E. */
RVK_API void rvkDotProduct36x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                                 int32_t dotProducts[4]);
RVK_API void rvkDotProduct36x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                 const uint8_t* E, uint32_t dotProducts[4]);
RVK_API void rvkDotProduct64x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                                 int32_t dotProducts[4]);
RVK_API void rvkDotProduct64x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                 const uint8_t* E, uint32_t dotProducts[4]);
RVK_API void rvkDotProduct128x4s8(const int8_t* A, const int8_t* B, const int8_t* C, const int8_t* D, const int8_t* E,
                                  int32_t dotProducts[4]);
RVK_API void rvkDotProduct128x4u8(const uint8_t* A, const uint8_t* B, const uint8_t* C, const uint8_t* D,
                                  const uint8_t* E, uint32_t dotProducts[4]);

/* The same, scaled: dotProducts[k] of A and vBk. */
RVK_API void rvkDotProductNorm36x4s8(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                                     const int8_t* vB2, const int8_t* vB3, const float32_t invLengthsB[4],
                                     float32_t dotProducts[4]);
RVK_API void rvkDotProductNorm36x4u8(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                                     const uint8_t* vB2, const uint8_t* vB3, const float32_t invLengthsB[4],
                                     float32_t dotProducts[4]);
RVK_API void rvkDotProductNorm64x4s8(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                                     const int8_t* vB2, const int8_t* vB3, const float32_t invLengthsB[4],
                                     float32_t dotProducts[4]);
RVK_API void rvkDotProductNorm64x4u8(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                                     const uint8_t* vB2, const uint8_t* vB3, const float32_t invLengthsB[4],
                                     float32_t dotProducts[4]);
RVK_API void rvkDotProductNorm128x4s8(const int8_t* A, float32_t invLenA, const int8_t* vB0, const int8_t* vB1,
                                      const int8_t* vB2, const int8_t* vB3, const float32_t invLengthsB[4],
                                      float32_t dotProducts[4]);
RVK_API void rvkDotProductNorm128x4u8(const uint8_t* A, float32_t invLenA, const uint8_t* vB0, const uint8_t* vB1,
                                      const uint8_t* vB2, const uint8_t* vB3, const float32_t invLengthsB[4],
                                      float32_t dotProducts[4]);

/* Of two patches. */
RVK_API uint32_t rvkDotProduct8x8u8(const uint8_t* A, const uint8_t* B);
RVK_API uint32_t rvkDotProduct11x12u8(const uint8_t* A, const uint8_t* B);

/* Of any length. */
RVK_API int32_t rvkDotProducts8(const int8_t* a, const int8_t* b, uint32_t length);
RVK_API uint32_t rvkDotProductu8(const uint8_t* a, const uint8_t* b, uint32_t length);

/* The same of floats, in single precision. The reference adds the products in the order of the elements; vector
 * implementations add them in another order, and their result differs by at most length * 2^-23 of the sum of the
 * products' magnitudes where no sum overflows. On 32-bit Arm they take subnormal numbers as zero. */
RVK_API float32_t rvkDotProductf32(const float32_t* a, const float32_t* b, uint32_t length);

/* The dot product of each block of one picture with the block at its place in the other. The blocks, blockWidth x
 * blockHeight pixels, are laid side by side from the upper left corner on; those at the right and lower edges are as
 * large as what is left. dst has one number for each: ceil(srcWidth / blockWidth) x ceil(srcHeight / blockHeight).
 *
 * Sums of bytes are modulo 2^32, which only blocks of more than 66051 pixels can reach. Sums of floats are in single
 * precision: each column from top to bottom, then the columns' sums from left to right, with the same bits on all
 * targets, but that vector code on 32-bit Arm takes subnormal numbers as zero.
 *
 * Strides are in bytes; 0 means packed rows. The pictures may be the same memory or overlap, dst must not overlap them.
 * Null pointers, sizes of 0 and strides shorter than a row are refused with RAVIK_EBADPARAM, and nothing is written. */
RVK_API rvkStatus rvkBlockDotProductu8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                                       uint32_t src1Stride, uint32_t src2Stride, uint32_t blockWidth,
                                       uint32_t blockHeight, uint32_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkBlockDotProductf32(const float32_t* src1, const float32_t* src2, uint32_t srcWidth,
                                        uint32_t srcHeight, uint32_t src1Stride, uint32_t src2Stride,
                                        uint32_t blockWidth, uint32_t blockHeight, float32_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

/* Ravik: sums of absolute differences, of blocks and of a patch everywhere in a picture.
 *
 * Common to all functions of this header:
 *   Shapes     the names say how large blocks and patches are: 8x8 or 16x16 pixels. Strides are in bytes; 0 means
 *              packed rows.
 *   Result     the sum over all pixels of |a - b|, exactly: at most 16320 for 8x8 pixels and 65280 for 16x16.
 *   Alignment  pixels may stand anywhere, `dst` is aligned to 2. The work of the functions on pictures may run on the
 *              DSP only when `patch`, `src` and its stride are multiples of 8.
 *   Overlap    inputs may be the same memory or overlap; `dst` must not overlap them.
 *   Errors     on bad arguments "Assertion failed @<function>: <condition>" is logged, a result is 0 and nothing is
 *              written: null pointers, strides shorter than a row, pictures smaller than the patch. */
#ifndef RAVIK_SAD_H
#define RAVIK_SAD_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Of two blocks. */
RVK_API uint32_t rvkSumOfAbsoluteDiff8x8u8(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                           uint32_t src2Stride);
RVK_API uint32_t rvkSumOfAbsoluteDiff16x16u8(const uint8_t* src1, uint32_t src1Stride, const uint8_t* src2,
                                             uint32_t src2Stride);

/* Of a packed patch and the part of the picture under it, wherever it fits: dst(x, y) for the patch with its first
 * pixel at column x and row y. `dst` measures (srcWidth - 7) x (srcHeight - 7), or - 15 for 16x16; packed without a
 * stride. */
RVK_API void rvkSumOfAbsoluteDiffs8x8u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint16_t* dst);
RVK_API void rvkSumOfAbsoluteDiffs8x8u8_v2(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                           uint32_t srcHeight, uint32_t srcStride, uint16_t* dst, uint32_t dstStride);
RVK_API void rvkSumOfAbsoluteDiffs16x16u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                          uint32_t srcHeight, uint32_t srcStride, uint16_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

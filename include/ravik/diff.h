/* Ravik: absolute and signed differences of images.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows (width x
 *              channels x size of an element). Strides of 16- and 32-bit images are rounded down to a multiple of the
 *              element size. Where two images are subtracted both have the stride `srcStride`.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. The work may run on the DSP only
 *              when pointers and strides are multiples of 8 (8-bit) or 4 (32-bit).
 *   In place   `dst` may be one of the sources when both have the same stride and element size. Otherwise images must
 *              not overlap.
 *   Errors     on bad arguments "Assertion failed @<function>: <condition>" is logged and nothing is written.
 *   Floats     on 32-bit Arm the vector code reads and writes subnormal numbers as zero; the rest is exact IEEE. */
#ifndef RAVIK_DIFF_H
#define RAVIK_DIFF_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* dst = |src1 - src2|, 0..255, exact. A `dstStride` below the width makes rows overlap; the later row wins. */
RVK_API void rvkAbsDiffu8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                          uint32_t srcStride, uint8_t* dst, uint32_t dstStride);

/* dst = |src1 - src2| formed modulo 2^32: d = src1 - src2 wrapped to 32 bits, then d or -d, whichever is not negative.
 * Exact while the true difference fits 31 bits; a wrapped difference of -2^31 stays -2^31. */
RVK_API void rvkAbsDiffs32(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                           uint32_t srcStride, int32_t* dst, uint32_t dstStride);

/* dst = fabsf(src1 - src2). */
RVK_API void rvkAbsDifff32(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                           uint32_t srcStride, float32_t* dst, uint32_t dstStride);

/* dst = |src - value|: the functions above with one number in place of the second image. */
RVK_API void rvkAbsDiffVu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value,
                           uint8_t* dst, uint32_t dstStride);
RVK_API void rvkAbsDiffVs32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            int32_t value, int32_t* dst, uint32_t dstStride);
RVK_API void rvkAbsDiffVf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            float32_t value, float32_t* dst, uint32_t dstStride);

/* The same on three interleaved channels, with one number for each. */
RVK_API void rvkAbsDiffVc3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t value1, uint8_t value2, uint8_t value3, uint8_t* dst, uint32_t dstStride);
RVK_API void rvkAbsDiffVc3s32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              int32_t value1, int32_t value2, int32_t value3, int32_t* dst, uint32_t dstStride);
RVK_API void rvkAbsDiffVc3f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              float32_t value1, float32_t value2, float32_t value3, float32_t* dst, uint32_t dstStride);

/* The same on four interleaved channels. */
RVK_API void rvkAbsDiffVc4u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t value1, uint8_t value2, uint8_t value3, uint8_t value4, uint8_t* dst,
                             uint32_t dstStride);
RVK_API void rvkAbsDiffVc4s32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              int32_t value1, int32_t value2, int32_t value3, int32_t value4, int32_t* dst,
                              uint32_t dstStride);
RVK_API void rvkAbsDiffVc4f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              float32_t value1, float32_t value2, float32_t value3, float32_t value4, float32_t* dst,
                              uint32_t dstStride);

/* dst = max(src1 - src2, 0), packed rows. */
RVK_API void rvkImageDiffu8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                            uint8_t* dst);

/* dst = max(src1 - src2, 0). */
RVK_API void rvkImageDiffu8_v2(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                               uint32_t srcStride, uint8_t* dst, uint32_t dstStride);

/* dst = src1 - src2, clamped to -32768..32767. */
RVK_API void rvkImageDiffs16(const int16_t* src1, const int16_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, int16_t* dst, uint32_t dstStride);

/* dst = src1 - src2. */
RVK_API void rvkImageDifff32(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, float32_t* dst, uint32_t dstStride);

/* dst = src1 - src2 as a float; exact. */
RVK_API void rvkImageDiffu8f32(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                               uint32_t srcStride, float32_t* dst, uint32_t dstStride);

/* dst = (src1 >> 1) - (src2 >> 1), which always fits: -127..127. */
RVK_API void rvkImageDiffu8s8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                              uint32_t srcStride, int8_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

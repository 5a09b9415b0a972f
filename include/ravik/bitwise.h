/* Ravik: bitwise logic on images, and fills.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes, at least a packed row, and 0
 *              means just that (width x channels x size of an element). Strides of 32-bit images are rounded down to
 *              a multiple of 4.
 *   Masks      a mask has one byte per pixel, whatever the image's element type and number of channels; a pixel is
 *              selected where its byte is not 0. `mask` may be null: every pixel is selected, and `maskStride` is not
 *              read.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. Bitwise logic may run on the DSP
 *              only when pointers and strides are multiples of 8 (8-bit) or 4 (32-bit).
 *   In place   `dst` may be one of the sources when both have the same stride. Otherwise images must not overlap.
 *   Errors     on bad arguments "Assertion failed @<function>: <condition>" is logged and nothing is written. */
#ifndef RAVIK_BITWISE_H
#define RAVIK_BITWISE_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* dst = src1 & src2. */
RVK_API void rvkBitwiseAndu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                             const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride);

/* dst = ~src. */
RVK_API void rvkBitwiseNotu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride);

/* dst = src1 | src2 where the mask selects the pixel, 0 elsewhere. Both sources have the stride `srcStride`. */
RVK_API void rvkBitwiseOrs32(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                             uint32_t srcStride, int32_t* dst, uint32_t dstStride, const uint8_t* mask,
                             uint32_t maskStride);

/* dst = src1 | src2 where the mask selects the pixel, 0 elsewhere. */
RVK_API void rvkBitwiseOru8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                            const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride,
                            const uint8_t* mask, uint32_t maskStride);

/* dst = src1 ^ src2. */
RVK_API void rvkBitwiseXoru8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                             const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride);

/* dst = value where the mask selects the pixel; the other pixels stay as they are. Floats are copied bit for bit. Fills
 * always run on the CPU. */
RVK_API void rvkSetElementsu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value,
                              const uint8_t* mask, uint32_t maskStride);
RVK_API void rvkSetElementss32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value,
                               const uint8_t* mask, uint32_t maskStride);
RVK_API void rvkSetElementsf32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                               float32_t value, const uint8_t* mask, uint32_t maskStride);

/* The same on pixels of three interleaved channels, with one value for each. */
RVK_API void rvkSetElementsc3u8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value1,
                                uint8_t value2, uint8_t value3, const uint8_t* mask, uint32_t maskStride);
RVK_API void rvkSetElementsc3s32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                 int32_t value1, int32_t value2, int32_t value3, const uint8_t* mask,
                                 uint32_t maskStride);
RVK_API void rvkSetElementsc3f32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                 float32_t value1, float32_t value2, float32_t value3, const uint8_t* mask,
                                 uint32_t maskStride);

/* The same on pixels of four interleaved channels. */
RVK_API void rvkSetElementsc4u8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value1,
                                uint8_t value2, uint8_t value3, uint8_t value4, const uint8_t* mask,
                                uint32_t maskStride);
RVK_API void rvkSetElementsc4s32(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                 int32_t value1, int32_t value2, int32_t value3, int32_t value4, const uint8_t* mask,
                                 uint32_t maskStride);
RVK_API void rvkSetElementsc4f32(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                 float32_t value1, float32_t value2, float32_t value3, float32_t value4,
                                 const uint8_t* mask, uint32_t maskStride);

RVK_EXTERN_C_END

#endif

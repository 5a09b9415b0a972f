/* Ravik: grey-scale dilation and erosion with square structuring elements.
 *
 * Dilation gives every pixel the largest value of the window around it, erosion the smallest.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows.
 *   Alignment  none is needed. The work may run on the DSP only when pointers and strides are multiples of 8.
 *   In place   not possible: images must not overlap, and dst == src is refused.
 *   Border     the whole picture is written. Pixels outside it do not take part, unless the function says otherwise.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. */
#ifndef RAVIK_MORPHOLOGY_H
#define RAVIK_MORPHOLOGY_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The window is 3x3. Packed rows. */
RVK_API void rvkFilterDilate3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);
RVK_API void rvkFilterErode3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);

/* The same with strides. */
RVK_API void rvkFilterDilate3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);
RVK_API void rvkFilterErode3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride);

/* The same with a choice of border: with RAVIK_BORDER_CONSTANT the pixels outside the picture have the value
 * `borderValue`, with any other type they do not take part (which is what replicating the nearest pixel would give). */
RVK_API rvkStatus rvkFilterDilate3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue);
RVK_API rvkStatus rvkFilterErode3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue);

/* The window is N x N, N odd or even, from 1 to the width and height of the picture; its first row and column are N / 2
 * before the pixel's own. The time does not depend on N but for its logarithm (van Herk, "A fast algorithm for local
 * minimum and maximum filters on rectangular and octagonal kernels", 1992; Gil and Werman, "Computing 2-D min, median,
 * and max filters", 1993). Takes scratch memory, up to about the size of the picture; RAVIK_ENORES, and nothing
 * written, when it cannot be had. Pictures of srcStride x srcHeight above 2^32 - 1 bytes are refused. */
RVK_API rvkStatus rvkFilterDilateNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint32_t N, uint8_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkFilterErodeNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint32_t N, uint8_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

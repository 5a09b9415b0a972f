/* Ravik: edges after Canny, "A Computational Approach to Edge Detection", 1986, without its smoothing, which is the
 * caller's choice (rvkFilterGaussian5x5u8, for instance).
 *
 * Gradient: dx and dy are Sobel's derivatives, not scaled; dx is right minus left, dy lower minus upper. The kernels
 * are products of a smoothing and a derivative part: 1 2 1 and -1 0 1 (3x3), 1 4 6 4 1 and -1 -2 0 2 1 (5x5),
 * 1 6 15 20 15 6 1 and -1 -4 -5 0 5 4 1 (7x7). Pixels outside the picture have the value of the nearest one inside. 7x7
 * sums, up to 163200, enter the detection as sixteenths, rounded to the nearest, halves to the even one; that is what
 * "dx" and "dy" mean below.
 *
 * Magnitude: |dx| + |dy|, or dx^2 + dy^2 where the function has a choice of norm; 0 outside the picture.
 *
 * Thinning: a pixel stays when its magnitude is the largest of three, its own and those of its two neighbours in the
 * direction of the gradient. There are four directions. The gradient is horizontal when |dy| * 32768 <= |dx| * 13573
 * (22.5 degrees) and vertical when |dy| * 32768 > |dx| * 79109 (67.5 degrees); then the magnitude must be above that of
 * the left or upper neighbour and not below that of the other. In between it is diagonal, and the magnitude must be
 * above both.
 *
 * Hysteresis: pixels that stay and whose magnitude is above the high threshold are edges; so are those above the low
 * threshold that are connected to them, in eight directions, through pixels of their kind. Edges become 255, all other
 * pixels 0.
 *
 * Thresholds: their absolute values count, at most 32767, and are compared with gradients that are not scaled: a
 * magnitude of sixteenths is above a threshold when 16 times the one is above the other. When the low one is above the
 * high one, they change places.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1, pictures have at most 2^30 - 1 pixels. Strides are in
 *              bytes; 0 means packed rows. The stride of dx and dy is rounded down to a multiple of 2.
 *   Alignment  8-bit images need none, dx and dy are aligned to their elements. The work may run on the DSP only when
 *              pointers and strides are multiples of 8.
 *   In place   not possible: images must not overlap, and dst == src is refused.
 *   Memory     the C reference takes up to 9 bytes of scratch memory per pixel, vector implementations a quarter of a
 *              byte, but up to 128 bytes a row at least, and some rows. Without it functions return RAVIK_ENORES, or log
 *              "Error: <function> - no scratch memory".
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM. Whatever the error, nothing is written. */
#ifndef RAVIK_CANNY_H
#define RAVIK_CANNY_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The gradient's magnitude. */
#define RAVIK_CANNY_NORM_L1 0u /* |dx| + |dy|; all values but 1 */
#define RAVIK_CANNY_NORM_L2 1u /* dx^2 + dy^2, against the squares of the thresholds */

/* 3x3 gradient, |dx| + |dy|. Packed rows. */
RVK_API void rvkFilterCanny3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                 int32_t lowThreshold, int32_t highThreshold);

/* The same with strides. */
RVK_API void rvkFilterCanny3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride, int32_t lowThreshold, int32_t highThreshold);

/* The same, and tells when scratch memory cannot be had: RAVIK_ENORES. */
RVK_API rvkStatus rvkFilterCanny3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t* dst, uint32_t dstStride, int32_t lowThreshold, int32_t highThreshold);

/* With a choice of gradient and norm. apertureSize is 3, 5 or 7; RAVIK_EBADPARAM for any other. normType is a
 * RAVIK_CANNY_NORM_... dx and dy, srcWidth x srcHeight elements with one stride between them, receive the gradient of
 * all pixels, not scaled; 7x7 sums saturate there, as those of rvkFilterSobel7x7u8s16 do. A null pointer leaves that
 * plane out. RAVIK_ENORES when scratch memory cannot be had. */
RVK_API rvkStatus rvkFilterCannyu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint32_t apertureSize, int32_t lowThreshold, int32_t highThreshold,
                                   uint32_t normType, uint8_t* dst, uint32_t dstStride, int16_t* dx, int16_t* dy,
                                   uint32_t dxyStride);

RVK_EXTERN_C_END

#endif

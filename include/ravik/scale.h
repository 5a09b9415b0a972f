/* Ravik: pictures made smaller and larger.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows. A function that
 *              is not given the size of the destination says what it is; sources of which nothing would be left are
 *              refused, and so are sizes that 32 bits do not hold.
 *   Alignment  none is needed. The work on bytes may run on the DSP only when pointers, strides and the source's width
 *              are multiples of 8.
 *   In place   no: images must not overlap.
 *   Errors     null pointers, empty images and rows longer than their stride are refused, and nothing is written:
 *              functions without a result log "Assertion failed @<function>: <condition>", those with a status return
 *              RAVIK_EBADPARAM, those with a plain integer -1. Otherwise the result is 0. */
#ifndef RAVIK_SCALE_H
#define RAVIK_SCALE_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- fixed ratios: down -------------------------------------------------------------------------------------------- */

/* Half of the width and height: srcWidth / 2 x srcHeight / 2 pixels, an odd last column or row of the source counts in its
 * neighbours' windows only. Pixel (x, y) is the binomial mean of the window around the source's pixel (2x, 2y): weights 1 2
 * 1 or 1 4 6 4 1 in each direction (Burt and Adelson, "The Laplacian Pyramid as a Compact Image Code", 1983). Of windows
 * that reach beyond the picture, the pixels that exist make the mean: it is floor(1/2 + S * r) for their weighted sum S and
 * the single-precision reciprocal r of their weights' sum; so it rounds halves upward, but for a few sums of weights whose
 * reciprocal is rounded down. From 2x2 pixels. */
RVK_API rvkStatus rvkScaleDownBy2Gaussian3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
RVK_API void rvkScaleDownBy2Gaussian5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst);
RVK_API void rvkScaleDownBy2Gaussian5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, uint8_t* dst, uint32_t dstStride);

/* The same of floats, S * r in single precision; the first takes even sizes only. A sum of five elements is formed as
 * (a + e) + 4 (b + d) + 6 c, along the rows first, with 0 for what does not exist. */
RVK_API void rvkScaleDownBy2Gaussian5x5f32(const float32_t* srcImg, uint32_t width, uint32_t height, float32_t* dst);
RVK_API void rvkScaleDownBy2Gaussian5x5f32_v2(const float32_t* srcImg, uint32_t width, uint32_t height,
                                              uint32_t srcStride, float32_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

/* Ravik: bilateral filters. They smooth within regions and keep the edges between them, because a pixel counts the
 * less the more its grey level differs from that of the pixel in question.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels. Strides are in bytes, at least the width; 0 means packed rows.
 *   Alignment  none is needed. The work may run on the DSP only when pointers and strides are multiples of 8.
 *   In place   not possible: images must not overlap, and dst == src is refused.
 *   Sigmas     positive and finite, or the function returns RAVIK_EBADPARAM.
 *   Errors     on bad arguments nothing is written. Functions with windows log "Assertion failed @<function>:
 *              <condition>"; functions with a result return RAVIK_EBADPARAM. */
#ifndef RAVIK_BILATERAL_H
#define RAVIK_BILATERAL_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- windows -------------------------------------------------------------------------------------------------------
 *
 * After Tomasi and Manduchi, "Bilateral Filtering for Gray and Color Images", 1998. Each pixel becomes the mean of its
 * window. That is, as is usual, the disc that the square of the name encloses: the 13, 29 or 49 pixels at most 2, 3 or
 * 4 away, so that all directions are smoothed alike. The weights are
 *
 *     exp(-(distance^2) / (2 sigmaSpace^2)) * exp(-(difference of grey levels)^2 / (2 sigmaColor^2))
 *
 * with sigmaSpace in pixels and sigmaColor in grey levels. Pixels outside the picture do not take part: at the edges
 * the mean is that of fewer pixels. Pictures are at least as wide and as high as the window.
 *
 * Arithmetic. All numbers have 15 bits; a . b is their product, (a * b + 2^14) >> 15. The weight begins as a parabola,
 *
 *     w = rest . rest + 15485 with rest = max(23797 - s - t . min(2 t, 2^15 - 1), 0),
 *
 * and is squared four times, w = w . w. That is (1 - u + 0.474 u^2)^16 with u the exponent / 16, which differs from the
 * Gaussian by less than 0.001. In it
 *
 *     s = 2^15 * sqrt(0.474) * distance^2 / (32 sigmaSpace^2), so that 23797 - s is rounded to nearest and at least 0
 *     t = (min(difference, limit) * factor) . scale, about 2^15 * 0.474^(1/4) * difference / (8 sigmaColor)
 *     limit = ceil(5.74 sigmaColor), of weight 0; factor = floor((2^15 - 1) / limit); scale is what t needs, rounded to
 *     nearest, at most 2^15 - 1
 *
 * A sigmaColor above 2048 acts as 2048, which hardly tells grey levels apart.
 *
 * Result: pixel + sum(w * (neighbour - pixel)) / sum(w). The sums are exact; they are rounded to float, and so is their
 * quotient, which then is rounded to the nearest integer, halves to even. It is at most one grey level off the result
 * of exact arithmetic. */

/* sigmaColor is 25, sigmaSpace half the window's radius: 1, 1.5 and 2. */
RVK_API void rvkBilateralFilter5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);
RVK_API void rvkBilateralFilter7x7u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);
RVK_API void rvkBilateralFilter9x9u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);

/* With a choice of sigmas. */
RVK_API rvkStatus rvkBilateralFilter5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, uint8_t* dst, uint32_t dstStride, float32_t sigmaColor,
                                             float32_t sigmaSpace);
RVK_API rvkStatus rvkBilateralFilter7x7u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, uint8_t* dst, uint32_t dstStride, float32_t sigmaColor,
                                             float32_t sigmaSpace);
RVK_API rvkStatus rvkBilateralFilter9x9u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, uint8_t* dst, uint32_t dstStride, float32_t sigmaColor,
                                             float32_t sigmaSpace);

/* ---- recursive -----------------------------------------------------------------------------------------------------
 *
 * After Yang, "Recursive Bilateral Filtering", 2012: its cost does not depend on the sigmas. Pictures have any size of
 * at most 2^30 - 1 pixels.
 *
 * Along each row a recursive filter runs to the right and another one to the left, and the result is their mean:
 *
 *     y[0] = x[0], y[i] = w y[i - 1] + (1 - w) x[i] with w = space * range[|x[i] - x[i - 1]|]
 *
 * and likewise from the other end. The same down and up the columns of that, with w by the differences of the source.
 *
 *     range[d] = e(-d / (sigmaColor * 255)): sigmaColor is a fraction of the range of grey levels
 *     space = e(-1.4142 / (size * sigmaSpace)), size being the width for rows and the height for columns, on purpose:
 *     sigmaSpace is a fraction of the picture, too
 *     e(x) is the float with the bits of (max(x * 1.442695, -126) + 126.942696) * 2^23, truncated: exp(x) within 6 %
 *
 * All in floats, each operation rounded; results are rounded to the nearest integer, halves up. Needs scratch memory
 * for two pictures of floats (C) or for one and up to 48 rows and 128 columns (VECTA): RAVIK_ENORES, and nothing
 * written, when it cannot be had. */
RVK_API rvkStatus rvkBilateralFilterRecursiveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                                float32_t sigmaColor, float32_t sigmaSpace);

RVK_EXTERN_C_END

#endif

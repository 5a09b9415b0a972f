/* Ravik: smoothing with binomial ("Gaussian") and box kernels, and local normalisation.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels. Strides are in bytes; 0 means packed rows. Strides of 16- and 32-bit
 *              images are rounded down to a multiple of the element size. Functions without strides work on packed
 *              rows.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. The work may run on the DSP only
 *              when pointers and strides are multiples of 8 (8-bit) or 4 (all others).
 *   In place   not possible, except with rvkBoxFilterNxNf32: images must not overlap, and dst == src is refused.
 *   Overlap    where a function takes any `dstStride`, one below the width makes rows overlap; their contents are then
 *              unspecified, but nothing outside them is touched.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written.
 *   Interior   of a kernel of radius r are the pixels whose whole window lies in the image: all but a ring r pixels
 *              wide.
 *
 * Kernels are separable: the weight of a pixel is the product of the weights of its row and its column. */
#ifndef RAVIK_BLUR_H
#define RAVIK_BLUR_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Binomial kernels: 3x3 of weights 1 2 1, 5x5 of 1 4 6 4 1, 11x11 of 1 10 45 120 210 252 210 120 45 10 1. An interior
 * pixel is the weighted sum divided by the sum of the weights (16, 256, 1048576), rounded down, also below zero. Sums
 * are exact for every input.
 *
 * blurBorder: 1 fills the ring, too, from the pixels that exist: their weighted sum divided by the sum of their
 * weights, rounded towards zero. Other values leave the ring of `dst` as it is. */

/* From 1x1 pixels. */
RVK_API void rvkFilterGaussian3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                    uint32_t blurBorder);

/* From 2x2 pixels. */
RVK_API void rvkFilterGaussian3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, uint32_t blurBorder);

/* The same with a choice of border: RAVIK_BORDER_CONSTANT takes `borderValue` for the pixels outside the image,
 * RAVIK_BORDER_REPLICATE the nearest pixel inside; both then compute the ring as the interior. Any other type computes
 * the ring from the pixels that exist, as blurBorder 1 does. */
RVK_API rvkStatus rvkFilterGaussian3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint32_t borderType,
                                            uint8_t borderValue);

/* From 5x5 pixels. */
RVK_API void rvkFilterGaussian5x5u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                    uint32_t blurBorder);
RVK_API void rvkFilterGaussian5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, uint32_t blurBorder);

/* From 1x2 pixels; narrow or low pictures are all ring. */
RVK_API void rvkFilterGaussian5x5s16(const int16_t* src, uint32_t width, uint32_t height, int16_t* dst,
                                     uint32_t blurBorder);
RVK_API void rvkFilterGaussian5x5s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        int16_t* dst, uint32_t dstStride, uint32_t blurBorder);

/* From 5x5 pixels. With a blurBorder other than 1 these two write nothing at all. */
RVK_API void rvkFilterGaussian5x5s32(const int32_t* src, uint32_t width, uint32_t height, int32_t* dst,
                                     uint32_t blurBorder);
RVK_API void rvkFilterGaussian5x5s32_v2(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        int32_t* dst, uint32_t dstStride, uint32_t blurBorder);

/* From 11x11 pixels. */
RVK_API void rvkFilterGaussian11x11u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                      uint32_t blurBorder);
RVK_API void rvkFilterGaussian11x11u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t* dst, uint32_t dstStride, uint32_t blurBorder);

/* Box filters: the mean of the window as (sum * k + 32768) >> 16 with k = 7282 for 3x3, 2621 for 5x5 and 542 for 11x11.
 * k is 65536 / (pixels of the window) rounded: the result is within one of the rounded mean, and a constant picture
 * keeps its value. The whole picture is written. Pixels outside it count as 0, while the divisor stays that of the
 * whole window, so the ring darkens towards the edge. From pictures of the size of the window. */
RVK_API void rvkBoxFilter3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride);
RVK_API void rvkBoxFilter5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride);
RVK_API void rvkBoxFilter11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride);

/* As rvkBoxFilter3x3u8 with a choice of border: RAVIK_BORDER_CONSTANT takes `borderValue` for the pixels outside the
 * image, RAVIK_BORDER_REPLICATE the nearest pixel inside, any other type 0. */
RVK_API rvkStatus rvkBoxFilter3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue);

/* The mean of the N x N window whose first row and column are N / 2 before the pixel's own; N is odd or even, from 2 to
 * the width and height of the picture, which is at least 5x5. Pixels outside take the value of the nearest pixel
 * inside. In place when the strides are equal.
 *
 * Every window is summed on its own, nothing is carried along a row: rows pairwise, columns in two runs of at most N.
 * So the result does not depend on what lies outside the window, be it huge or not a number, and |result - exact mean|
 * <= (N + log2 N + 3) * 2^-24 * mean of the |values| of the window, at every position of a picture of any size (as long
 * as the sum does not overflow). The time does not depend on N but for its logarithm. Takes N + 3 rows of scratch
 * memory; RAVIK_ENORES, and nothing written, when they cannot be had. Bad arguments are logged, too. */
RVK_API rvkStatus rvkBoxFilterNxNf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint32_t N, float32_t* dst, uint32_t dstStride);

/* Local normalisation: how many standard deviations a pixel lies above the mean of the window around it,
 *     z = (pixel - mean) / max(deviation, floor),
 * which takes light and contrast out of a picture. The window is windowWidth x windowHeight, both odd and at most the
 * picture's; outside the picture it repeats the nearest pixel inside. The deviation is that of the window as a
 * population (divided by the number of its pixels). The floor keeps the noise of flat windows small.
 *
 * RAVIK_ENORES, and nothing written, when scratch memory (rows of the picture, in number proportional to windowHeight)
 * cannot be had. */

/* dst = 128 + 32 z rounded and clamped to 0..255, so 4 deviations below the mean are 0; the floor is a deviation of 1.
 * Within one of the exact value. The window has at most 66051 pixels (257x257). */
RVK_API rvkStatus rvkNormalizeLocalBoxu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint32_t windowWidth, uint32_t windowHeight, uint8_t* dst, uint32_t dstStride);

/* dst = z; the floor is 2^-20 of the mean's magnitude, and a window of one value gives 0. Sums are formed in double
 * precision. */
RVK_API rvkStatus rvkNormalizeLocalBoxf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                          uint32_t srcStride, uint32_t windowWidth, uint32_t windowHeight,
                                          float32_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

/* Ravik: pictures made smaller and larger.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows. A function
 *              that is not given the size of the destination says what it is; sources of which nothing would be left
 *              are refused, and so are sizes that 32 bits do not hold.
 *   Alignment  floats are aligned to 4 bytes, bytes need none. The work on bytes may run on the DSP only when pointers,
 *              strides and the source's width are multiples of 8.
 *   In place   no: images must not overlap.
 *   Floats     on 32-bit Arm the vector code reads and writes subnormal numbers as zero; the rest is exact IEEE.
 *   Errors     null pointers, empty images and rows longer than their stride are refused, and nothing is written:
 *              functions without a result log "Assertion failed @<function>: <condition>", those with a status return
 *              RAVIK_EBADPARAM, those with a plain integer -1. Otherwise the result is 0. */
#ifndef RAVIK_SCALE_H
#define RAVIK_SCALE_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- fixed ratios: down ------------------------------------------------------------------------------------------ */

/* The mean of each block of 2x2 or 4x4 pixels, rounded down: srcWidth / 2 x srcHeight / 2 pixels, or quarters. What is
 * left of the source on the right and below is ignored. From 2x2 and 4x4 pixels. */
RVK_API int32_t rvkScaleDownBy2u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride);
RVK_API int32_t rvkScaleDownBy2u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);
RVK_API int32_t rvkScaleDownBy4u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride);
RVK_API int32_t rvkScaleDownBy4u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);

/* Two pixels for three in each direction: srcWidth / 3 * 2 x srcHeight / 3 * 2 pixels. Each block of 3x3 pixels becomes
 * one of 2x2, of which each pixel has its corner of the block: (9 * corner + 3 * the corner's neighbours in the block's
 * edges + centre) / 16, rounded down. What is left of the source is ignored. From 3x3 pixels. */
RVK_API void rvkScaleDown3To2u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride);

/* Half of the width and height: srcWidth / 2 x srcHeight / 2 pixels; an odd last column or row of the source counts in
 * its neighbours' windows only. Pixel (x, y) is the binomial mean of the window around the source's pixel (2x, 2y):
 * weights 1 2 1 or 1 4 6 4 1 in each direction (Burt and Adelson, "The Laplacian Pyramid as a Compact Image Code",
 * 1983). Of windows that reach beyond the picture, the pixels that exist make the mean: floor(1/2 + S * r) for their
 * weighted sum S and the single-precision reciprocal r of their weights' sum, which rounds halves upward. From 2x2
 * pixels. */
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

/* ---- fixed ratios: up -------------------------------------------------------------------------------------------- */

/* Twice the width and height, between the pixels by the weights of the binomial window: pixel 2i of a row is
 * (p[i - 1] + 6 p[i] + p[i + 1]) / 8, pixel 2i + 1 (4 p[i] + 4 p[i + 1]) / 8, columns alike, and rounded once, halves
 * upward. At the edges the pixels that exist make the mean, as in rvkScaleDownBy2Gaussian5x5u8. */
RVK_API void rvkScaleUpBy2Gaussian5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst);
RVK_API void rvkScaleUpBy2Gaussian5x5u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, uint8_t* dst, uint32_t dstStride);

/* Each pixel twice: in two rows (Vertical), beside each other (Horizontal), or both (2D). Interleaved pixels are pairs
 * of bytes; widths then count pairs. */
RVK_API void rvkUpsampleVerticalu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride);
RVK_API void rvkUpsampleHorizontalu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);
RVK_API void rvkUpsample2Du8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride);
RVK_API void rvkUpsampleVerticalInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
RVK_API void rvkUpsampleHorizontalInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
RVK_API void rvkUpsample2DInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride);

/* ---- any ratio --------------------------------------------------------------------------------------------------- */

/* Centres lie on centres: that of column x of the destination is at (x + 1/2) * srcWidth / dstWidth - 1/2 among the
 * columns of the source, and rows are alike. Rows and columns have at most 2^31 - 1 bytes, a source has at most 2^55
 * pixels; dst == src is refused. What needs scratch memory and gets none is slower; the result is the same.
 *
 *   Nearest   the pixel that contains the centre; the one to the right, or below, when the centre lies on an edge.
 *   Bilinear  positions are rounded half up to 1/8192 of a pixel. Values between columns are rounded half up to 1/128,
 *             those between rows as well, and then half up to an integer. So a value deviates by less than 0.55 from
 *             the exact one, and is that, rounded half up, where fractions of positions are multiples of 1/8. A
 *             neighbour of weight 0 is not read.
 *   Area      the mean of the exact area that the pixel covers, in integers, rounded half up. It may be less than a
 *             pixel of the source. */

/* Nearest, to a destination that is not larger. */
RVK_API void rvkScaleDownNNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);

/* Bilinear, to a destination that is not larger. */
RVK_API void rvkScaleDownBLu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);

/* Area, to a destination that is not larger. Rows of the first are packed. */
RVK_API void rvkScaleDownu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst, uint32_t dstWidth,
                            uint32_t dstHeight);
RVK_API rvkStatus rvkScaleDownu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);

/* To a larger or smaller destination, by RAVIK_INTERPOLATION_NEAREST, _BILINEAR or _AREA. Neighbours outside of the
 * picture have the value of the nearest pixel inside. */
RVK_API rvkStatus rvkScaleu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                             uint32_t interpolation);

/* The same with a border, which bilinear interpolation meets where it enlarges: neighbours outside have the value of
 * the nearest pixel (RAVIK_BORDER_REPLICATE) or borderValue (_CONSTANT), or pixels that need one stay as they are
 * (_NONE). */
RVK_API rvkStatus rvkScaleu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                uint32_t interpolation, uint32_t borderType, uint8_t borderValue);

/* Cubic, to a destination that is not smaller: Catmull and Rom's spline through 4 x 4 pixels (Keys, "Cubic Convolution
 * Interpolation for Digital Image Processing", 1981, a = -1/2), clamped; neighbours outside have the value of the
 * nearest pixel. Positions are as bilinear ones, weights have 12 bits and make 1 in sum, values between columns 6 bits
 * of a fraction; the result is rounded half up. Pixels of the second are pairs of bytes, in which its widths are. */
RVK_API void rvkScaleUpPolyu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);
RVK_API void rvkScaleUpPolyInterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);

/* Means of whole pixels, to a destination that is not larger: column x is the mean of columns
 * floor(x * srcWidth / dstWidth) to floor((x + 1) * srcWidth / dstWidth) - 1, rows are alike; rounded half up. Pixels
 * of the second are pairs of bytes, in which its widths are. */
RVK_API void rvkScaleDownMNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);
RVK_API void rvkScaleDownMNInterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

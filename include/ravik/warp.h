/* Ravik: perspective warps and remaps.
 *
 * Each pixel of the destination takes the value that the source has at a position of its own, between its pixels.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1; sources and destinations may differ. Sources measure at
 *              most 65535 x 65535 pixels. Strides are in bytes; 0 means packed rows.
 *   Positions  (x, y) in pixels of the source; the centres of its pixels are at whole numbers, that of the first one at
 *              (0, 0). Both are rounded towards 0 to multiples of 2^-15.
 *   Values     RAVIK_INTERPOLATION_NEAREST takes the pixel whose square holds the position, halves rounded up;
 *              RAVIK_INTERPOLATION_BILINEAR weighs the four around it, along x, then along y, in steps of 1/64 of a
 *              grey level, and rounds half up. Results are within one grey level of real arithmetic. A neighbour with
 *              the weight 0 is not looked at.
 *   Outside    RAVIK_BORDER_CONSTANT takes borderValue for each pixel outside the source, so that its edges are blended
 *              with it; RAVIK_BORDER_REPLICATE takes the nearest pixel inside; RAVIK_BORDER_NONE leaves the pixels of
 *              the destination that need one outside. Functions without a border type take 0. Positions that are not
 *              numbers are outside, before the first pixel.
 *   Alignment  maps and matrices as floats, images none. The work may run on the DSP only when image pointers and
 *              strides are multiples of 8.
 *   In place   no two images may overlap; a destination that begins where a source or a map does is refused.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. Rows longer than their stride are refused,
 *              and so are interpolations and border types other than these. */
#ifndef RAVIK_WARP_H
#define RAVIK_WARP_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Perspective warps. The matrix, 3 x 3 by rows, maps the pixel (X, Y) of the destination to the source:
 *   x = (m0 X + m1 Y + m2) / w,  y = (m3 X + m4 Y + m5) / w,  w = m6 X + m7 Y + m8
 * in single precision, as (m0 * X + (m1 * Y + m2)) * (1 / w). To warp by a matrix that maps the source to the
 * destination, pass its inverse. Translations by whole pixels are exact. Coefficients must be finite; those below
 * 2^-100 of the largest count as 0. Singular matrices are taken as they are: where w is 0 the position is outside.
 * Destinations measure at most 2^24 x 2^24 pixels. */

/* Bilinear; outside is 0. */
RVK_API void rvkWarpPerspectiveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float32_t* matrix);
RVK_API rvkStatus rvkWarpPerspectiveu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                          const float32_t* matrix);

/* Bilinear, with a border rule. */
RVK_API rvkStatus rvkWarpPerspectiveu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                          const float32_t* matrix, uint32_t borderType, uint8_t borderValue);

/* With a border rule, nearest or bilinear. */
RVK_API rvkStatus rvkWarpPerspectiveu8_v4(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                          const float32_t* matrix, uint32_t interpolation, uint32_t borderType,
                                          uint8_t borderValue);

/* The same of interleaved pixels of three bytes. `borderValue` has one for each channel. */
RVK_API void rvk3ChannelWarpPerspectiveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                          const float32_t* matrix);
RVK_API rvkStatus rvk3ChannelWarpPerspectiveu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                  uint32_t srcStride, uint8_t* dst, uint32_t dstWidth,
                                                  uint32_t dstHeight, uint32_t dstStride, const float32_t* matrix,
                                                  uint32_t interpolation, uint32_t borderType,
                                                  const uint8_t* borderValue);

/* The same of two planes of one size. */
RVK_API rvkStatus rvk2PlaneWarpPerspectiveu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t src1Stride, const uint8_t* src2, uint32_t src2Stride,
                                             uint8_t* dst1, uint32_t dstWidth, uint32_t dstHeight, uint32_t dst1Stride,
                                             uint8_t* dst2, uint32_t dst2Stride, const float32_t* matrix,
                                             uint32_t interpolation, uint32_t borderType, uint8_t borderValue);

/* Remaps. The positions stand in two maps of the destination's size, whose rows are `mapStride` bytes apart. They may
 * be any floats. */

/* Bilinear; outside is 0. */
RVK_API void rvkRemapu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, const float32_t* mapX,
                        const float32_t* mapY, uint32_t mapStride);

/* With a border rule, nearest or bilinear. */
RVK_API rvkStatus rvkRemapu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                const float32_t* mapX, const float32_t* mapY, uint32_t mapStride,
                                uint32_t interpolation, uint32_t borderType, uint8_t borderValue);

/* RGBA8888, all four channels alike: nearest, and bilinear; outside is 0 0 0 0. */
RVK_API void rvkRemapRGBA8888NNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float32_t* mapX, const float32_t* mapY, uint32_t mapStride);
RVK_API void rvkRemapRGBA8888BLu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float32_t* mapX, const float32_t* mapY, uint32_t mapStride);

RVK_EXTERN_C_END

#endif

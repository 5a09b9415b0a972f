/* Ravik: integral images, whose entries are sums over all pixels above and left of them (Crow, "Summed-Area Tables for
 * Texture Mapping", 1984). The sum over a rectangle is then that of four entries.
 *
 * Two layouts differ on purpose:
 *   exclusive  has one column and one row more than the picture. The first of both are 0; entry (x + 1, y + 1) is the
 *              sum over the columns 0 to x and the rows 0 to y.
 *   inclusive  is as large as the picture; entry (x, y) is that sum.
 *
 * Common to all functions of this header:
 *   Sums       are modulo 2^32, squares' sums of 64 bits modulo 2^64; sums of rectangles stay exact where they fit.
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes, rounded down to whole entries; 0
 *              means packed rows.
 *   Alignment  outputs have that of their entries; nothing more is needed.
 *   In place   never: images must not overlap, and two outputs of one type at one address are refused.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. */
#ifndef RAVIK_INTEGRAL_H
#define RAVIK_INTEGRAL_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The exclusive integral. Rows are packed in the first form. It may run on the DSP only when pointers and strides, in
 * the first form the width, are multiples of 8. */
RVK_API void rvkIntegrateImageu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t* dst);
RVK_API void rvkIntegrateImageu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint32_t* dst, uint32_t dstStride);

/* The inclusive integrals of the pixels and of their squares. */
RVK_API void rvkIntegrateImageu8u64(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint32_t* dstIntgrl, uint64_t* dstIntgrlSqrd, uint32_t dstIntgrlStride,
                                    uint32_t dstIntgrlSqrdStride);

/* The exclusive integrals of a patch of width x height pixels at (left, top), and of its squares, both packed. A stride
 * of 0 means that rows end where the patch does, left + width; a patch that is not within the stride is refused. */
RVK_API void rvkIntegratePatchu8(const uint8_t* src, uint32_t srcStride, uint32_t left, uint32_t top, uint32_t width,
                                 uint32_t height, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut);

/* The same with strides; the patch must lie in the picture. */
RVK_API rvkStatus rvkIntegratePatchu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint32_t left, uint32_t top, uint32_t width, uint32_t height,
                                         uint32_t* intgrlImgOut, uint32_t intgrlStride, uint32_t* intgrlSqrdImgOut,
                                         uint32_t intgrlSqrdStride);

/* The same of 12x12 and of 18x18 pixels, packed: 13x13 and 19x19 entries. */
RVK_API void rvkIntegratePatch12x12u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint32_t left, uint32_t top, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut);
RVK_API void rvkIntegratePatch18x18u8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                      uint32_t left, uint32_t top, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut);

/* The inclusive integrals of luma, and of Cb and Cr at half the size, rounded down: of srcWidth / 2 x srcHeight / 2
 * pairs, of pictures from 2x2 pixels on. `srcC` has (srcWidth + 1) / 2 pairs of Cb and Cr a row when it is packed. */
RVK_API void rvkIntegrateImageYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                     uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                     uint32_t* integralY, uint32_t* integralCb, uint32_t* integralCr,
                                                     uint32_t integralYStride, uint32_t integralCbStride,
                                                     uint32_t integralCrStride);

/* The integral turned by 45 degrees (Lienhart and Maydt, "An Extended Set of Haar-like Features for Rapid Object
 * Detection", 2002), of one column and row more than the picture: entry (x, y) is the sum over the pixels (i, j) above
 * it, j < y, with |i - x + 1| <= y - j - 1: a triangle that grows upwards from pixel (x - 1, y - 1) by one pixel a row
 * to either side. Sums of 2^31 and more wrap. */
RVK_API void rvkTiltedIntegralu8s32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int32_t* dst, uint32_t dstStride);

/* The running sums of one row: dst[x] is the sum of src[0] to src[x], of `width` pixels and of 64. */
RVK_API void rvkIntegrateImageLineu8(const uint8_t* src, uint32_t width, uint32_t* dst);
RVK_API void rvkIntegrateImageLine64u8(const uint8_t* src, uint32_t* dst);

/* How many of the pixels above and left of each are foreground: the inclusive integral of pixels that are 1 where
 *     |Y - backgroundY| + |Cb - backgroundCb| + |Cr - backgroundCr| > threshold,
 * else 0. Two by two pixels share the pair of Cb and Cr in `srcC`, which has (srcWidth + 1) / 2 a row, and half as many
 * rows, rounded up. */
RVK_API void rvkFindForegroundIntegrateImageYCbCr420u32(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                        uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                        uint8_t backgroundY, uint8_t backgroundCb, uint8_t backgroundCr,
                                                        uint32_t threshold, uint32_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

/* Ravik: local binary patterns (Ojala, Pietikainen, Maenpaa, "Multiresolution Gray-Scale and Rotation Invariant Texture
 * Classification with Local Binary Patterns", 2002). */
#ifndef RAVIK_LBP_H
#define RAVIK_LBP_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* For each pixel that lies at least `radius` pixels inside the picture: bit k of its code is 1 when the k-th of
 * `neighbors` points, evenly spaced on a circle of that radius around it, is not darker than the pixel itself. Point 0
 * lies below the pixel, the others follow clockwise, by way of the left.
 *
 *   Points     between pixels are interpolated in integers: the position has 15 bits after the point, each of the four
 *              weights is rounded down to 24 bits, and 1020 of 2^24 is added to their sum, more than rounding takes, so
 *              that what equals the pixel is never darker. Results are the same on all targets, bit for bit.
 *   Shapes     dst is (srcWidth - 2 * radius) x (srcHeight - 2 * radius); its pixel (0, 0) belongs to the picture's
 *              (radius, radius). Strides are in bytes; 0 means packed rows. neighbors is 1 to 8; a radius of 0 compares
 *              each pixel with itself.
 *   Alignment  both may stand anywhere. Bytes of dst between its rows are left alone.
 *   Overlap    dst must not overlap src.
 *   Errors     null pointers, sizes of 0, strides shorter than a row, other numbers of neighbours and pictures without
 *              such pixels are refused with RAVIK_EBADPARAM, and nothing is written.
 *
 * It may run on the DSP only when src, dst and srcStride are multiples of 8. */
RVK_API rvkStatus rvkGLBPu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t radius, uint32_t neighbors, uint8_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

/* Ravik: moments of pictures.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows.
 *   Alignment  pixels and `moments` are aligned to their elements.
 *   Overlap    `moments` must not overlap the picture.
 *   Errors     RAVIK_EBADPARAM for null pointers, sizes of 0 and strides shorter than a row; nothing is written. */
#ifndef RAVIK_MOMENTS_H
#define RAVIK_MOMENTS_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Moments up to the third order (Hu, "Visual Pattern Recognition by Moment Invariants", 1962). For pixels v(x, y), with
 * columns and rows counted from 0:
 *     mpq   the raw ones, sums of v * x^p * y^q
 *     mupq  the central ones, sums of v * (x - m10 / m00)^p * (y - m01 / m00)^q
 *     nupq  the normalised ones, mupq / |m00|^(1 + (p + q) / 2)
 * Where m00 is 0 or not finite, the central and the normalised ones are 0. */
typedef struct rvkMoments
{
    float32_t m00, m10, m01, m20, m11, m02, m30, m21, m12, m03;
    float32_t mu20, mu11, mu02, mu30, mu21, mu12, mu03;
    float32_t nu20, nu11, nu02, nu30, nu21, nu12, nu03;
} rvkMoments;

/* The moments of a picture; with `binary` other than 0 every pixel that is not 0 counts as 1.
 *
 * They are the sums of those of tiles of 32x32 pixels, in double precision, row of tiles by row of tiles, and rounded
 * to single precision at the end. In a tile sums of integers are exact. Floats are summed in single precision down each
 * column, weighted by 1, y, y^2 and y^3, and from left to right in double precision. On 32-bit Arm the vector code
 * takes subnormal floats as zero, but for `binary`. */
RVK_API rvkStatus rvkImageMomentsu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint32_t binary, rvkMoments* moments);
RVK_API rvkStatus rvkImageMomentss32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint32_t binary, rvkMoments* moments);
RVK_API rvkStatus rvkImageMomentsf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint32_t binary, rvkMoments* moments);

RVK_EXTERN_C_END

#endif

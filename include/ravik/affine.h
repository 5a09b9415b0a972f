/* Ravik: affine and perspective transforms, found and applied.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows.
 *   Positions  of pixels are those of their centres: x columns and y rows from the first pixel.
 *   Alignment  pointers are aligned to their element type; nothing more is needed.
 *   In place   images must not overlap.
 *   Errors     RAVIK_EBADPARAM on bad arguments, RAVIK_EFAIL where the functions say so; nothing is written then. */
#ifndef RAVIK_AFFINE_H
#define RAVIK_AFFINE_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The perspective transform that maps four points to four others, x and y of each in turn: a 3 x 3 matrix, row by row,
 * whose last element is 1, with
 *     (dst.x * w, dst.y * w, w) = matrix * (src.x, src.y, 1)
 * for each of the four (Heckbert, "Fundamentals of Texture Mapping and Image Warping", 1989). It is computed in double
 * precision. RAVIK_EFAIL where there is no such matrix or more than one: when three of the points on one side are on a
 * line, when the transform has no point for (0, 0), or when a coordinate or the result is not finite. */
RVK_API rvkStatus rvkGetPerspectiveTransformf32(const float32_t* src, const float32_t* dst, float32_t* matrix);

/* The inverse of an affine transform of 2 x 3 elements, row by row: where (u, v) = matrix * (x, y, 1), it is
 * (x, y) = inverse * (u, v, 1). It is computed in double precision and may replace the matrix. RAVIK_EFAIL when the
 * matrix is singular, or it or its inverse is not finite. */
RVK_API rvkStatus rvkInvertAffineTransformf32(const float32_t* matrix, float32_t* inverse);

/* The depth of each pixel of an ideal camera from the disparity that a real one, with a lens, measured.
 *
 * `camera` is the focal lengths and the centre of both, fx, fy, cx, cy, in pixels; `distortion` that of the lens, k1, k2,
 * p1, p2, k3 (Brown, "Close-Range Camera Calibration", 1971), null for none. The lens puts the point that the ideal camera
 * has at (column, row) to (u, v):
 *     x = (column - cx) / fx    y = (row - cy) / fy    r2 = x^2 + y^2
 *     radial = 1 + k1 * r2 + k2 * r2^2 + k3 * r2^3
 *     u = fx * (x * radial + 2 * p1 * x * y + p2 * (r2 + 2 * x^2)) + cx
 *     v = fy * (y * radial + p1 * (r2 + 2 * y^2) + 2 * p2 * x * y) + cy
 * in single precision. Of the disparities the nearest is taken, halves rounded up: mixing them across edges would invent
 * depths. depth = fx * baseline / disparity, in the unit of the baseline; 0 where the disparity is 0, negative or no
 * number, and where there is none because (u, v) lies outside of the picture or is not finite.
 *
 * Strides that are not a multiple of 4 are rounded down to one. The work may run on the DSP only when pointers and strides
 * are multiples of 4. */
RVK_API rvkStatus rvkUndistortDisparityConvertDepthf32(const float32_t* disparity, uint32_t srcWidth,
                                                       uint32_t srcHeight, uint32_t srcStride, const float32_t* camera,
                                                       const float32_t* distortion, float32_t baseline,
                                                       float32_t* depth, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

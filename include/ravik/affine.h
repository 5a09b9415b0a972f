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

/* Affine patches: pixel (i, j) of the patch, column and row, is the picture at
 *     (position.x + m0 * (i - patchWidth / 2) + m1 * (j - patchHeight / 2),
 *      position.y + m2 * (i - patchWidth / 2) + m3 * (j - patchHeight / 2))
 * with a matrix `affine` of m0, m1, m2, m3, bilinear, in single precision. The sample of (x, y) with x = ix + fx, y =
 * iy + fy is, without the pixels that have no weight,
 *     top = p(ix, iy) + fx * (p(ix + 1, iy) - p(ix, iy))        bottom = the same of row iy + 1
 *     top + fy * (bottom - top)                                 its fraction dropped
 * Each row starts from its own position, j times (m1, m3) from the first; along it (m0, m2) is added again and again.
 * What these sums round to beyond the edge of the picture counts as the edge.
 *
 * RAVIK_EFAIL when one of the patch's corners, each computed from the position, lies outside of the picture, by however
 * little, or is not a number. */
RVK_API rvkStatus rvkTransformAffineu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                       const float32_t* position, const float32_t* affine, uint8_t* patch,
                                       uint32_t patchWidth, uint32_t patchHeight);
RVK_API rvkStatus rvkTransformAffineu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          const float32_t* position, const float32_t* affine, uint8_t* patch,
                                          uint32_t patchWidth, uint32_t patchHeight, uint32_t patchStride);

/* The same of 8 x 8 pixels. */
RVK_API rvkStatus rvkTransformAffine8x8u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                          const float32_t* position, const float32_t* affine, uint8_t* patch);
RVK_API rvkStatus rvkTransformAffine8x8u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, const float32_t* position, const float32_t* affine,
                                             uint8_t* patch, uint32_t patchStride);

/* Clipped affine transforms of whole pictures: pixel (i, j) of the destination takes the value that the source has at
 *     (position.x + m0 * (i - dstWidth / 2) + m1 * (j - dstHeight / 2),
 *      position.y + m2 * (i - dstWidth / 2) + m3 * (j - dstHeight / 2))
 * with a matrix `affine` of m0, m1, m2, m3, so that the centre of the destination shows what is around `position`.
 *
 * Which positions are inside the source, from (0, 0) to its last column and row, is decided in double precision. Those
 * of a row are carried in fixed point: steps of 16 bits of fraction, truncated, and every 64 columns of the destination
 * anew from a position of 32 bits. Translations by whole pixels are exact; other results are within one grey
 * level of real arithmetic.
 *
 * Values are bilinear or, with RAVIK_INTERPOLATION_NEAREST, the pixel nearest to the position, halves rounded up.
 * Bilinear ones are weighted along y with 15 bits, rounded to 1/128 of a grey level, then along x with 16 bits,
 * truncated to that; then they are rounded half up. Where y is whole that is p0 + ((fx * (p1 - p0) + 32768) >> 16).
 * Pixels without weight are not read. Sources of up to 2^20 pixels are faster with scratch memory of twice their size;
 * without it the result is the same.
 *
 * Pixels whose position is outside the source: RAVIK_BORDER_NONE leaves them as they are, RAVIK_BORDER_CONSTANT makes
 * them borderValue, RAVIK_BORDER_REPLICATE gives them the value at the nearest position inside.
 *
 * Sources measure at most 32767 x 32767 pixels; position and matrix must be finite, but may lie or lead outside by any
 * amount, and the matrix may be singular. The work may run on the DSP only when pointers and strides are multiples of
 * 8. */

/* Bilinear; what is outside is left. Logs "Assertion failed @<function>: <condition>" on bad arguments. */
RVK_API void rvkTransformAffineClippedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         const float32_t* position, const float32_t* affine, uint8_t* dst,
                                         uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride);

/* Bilinear, with a border rule. */
RVK_API rvkStatus rvkTransformAffineClippedu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, const float32_t* position, const float32_t* affine,
                                                 uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                                 uint32_t dstStride, uint32_t borderType, uint8_t borderValue);

/* With a border rule, nearest or bilinear. */
RVK_API rvkStatus rvkTransformAffineClippedu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, const float32_t* position, const float32_t* affine,
                                                 uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                                 uint32_t dstStride, uint32_t interpolation, uint32_t borderType,
                                                 uint8_t borderValue);

/* The same of interleaved pixels of three bytes, bicubic (Keys, "Cubic Convolution Interpolation for Digital Image
 * Processing", 1981, with a = -1/2): the 4 x 4 pixels around the position, the nearest one where there is none, are
 * weighted along y, rounded to 1/64 of a grey level, then along x; the result is rounded and clamped. Weights have 14
 * bits and are exact sums of 1. `borderValue` has one for each channel, and is needed whatever the rule. */
RVK_API rvkStatus rvk3ChannelTransformAffineClippedBCu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                        uint32_t srcStride, const float32_t* position,
                                                        const float32_t* affine, uint8_t* dst, uint32_t dstWidth,
                                                        uint32_t dstHeight, uint32_t dstStride, uint32_t borderType,
                                                        const uint8_t* borderValue);

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
 * `camera` is the focal lengths and the centre of both, fx, fy, cx, cy, in pixels; `distortion` that of the lens, k1,
 * k2, p1, p2, k3 (Brown, "Close-Range Camera Calibration", 1971), null for none. The lens puts the point that the ideal
 * camera has at (column, row) to (u, v):
 *     x = (column - cx) / fx    y = (row - cy) / fy    r2 = x^2 + y^2
 *     radial = 1 + k1 * r2 + k2 * r2^2 + k3 * r2^3
 *     u = fx * (x * radial + 2 * p1 * x * y + p2 * (r2 + 2 * x^2)) + cx
 *     v = fy * (y * radial + p1 * (r2 + 2 * y^2) + 2 * p2 * x * y) + cy
 * in single precision, with the reciprocals of fx and fy. Of the disparities the nearest is taken, halves rounded up:
 * mixing them across edges would invent depths. depth = fx * baseline / disparity, in the unit of the baseline; 0 where
 * the disparity is 0, negative or no number, and where there is none because (u, v) lies outside of the picture or is
 * not finite.
 *
 * Strides that are not a multiple of 4 are rounded down to one. The work may run on the DSP only when pointers and
 * strides are multiples of 4. */
RVK_API rvkStatus rvkUndistortDisparityConvertDepthf32(const float32_t* disparity, uint32_t srcWidth,
                                                       uint32_t srcHeight, uint32_t srcStride, const float32_t* camera,
                                                       const float32_t* distortion, float32_t baseline,
                                                       float32_t* depth, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

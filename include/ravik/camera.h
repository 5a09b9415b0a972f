/* Ravik: points through the lens of a camera, and back.
 *
 * Common to all functions of this header:
 *   Camera      fx, fy, cx, cy: focal lengths and centre in pixels. All are finite, fx and fy positive.
 *   Distortion  k1, k2, p1, p2, k3 of the lens (Brown, "Close-Range Camera Calibration", 1971); null for none.
 *   Points      x, y or x, y, z, one after the other; `distorted`, `undistorted` and `projected` get x, y. Strides are
 *               in bytes from point to point, multiples of 4; 0 means packed ones. No points are as good as any number.
 *               A list has less than 2^31 bytes.
 *   Alignment   that of floats.
 *   In place    `points` may be the result where the strides are equal; otherwise the two must not overlap.
 *   Rounding    everything is computed in double precision and rounded once; but on 32-bit Arm the vector
 *               implementations of lists may be off: pixels by 2^-19 of the formula with the magnitudes of all terms,
 *               normalised coordinates by 2^-18 * (1 + |x| + |y|).
 *   Errors      RAVIK_EBADPARAM for null pointers, strides and cameras that are none, and a result in the place of
 *               points of another stride; nothing is written then. RAVIK_EFAIL when there are points that have no
 *               result: these get not-a-numbers, the others theirs. The result must be finite. */
#ifndef RAVIK_CAMERA_H
#define RAVIK_CAMERA_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* From normalised coordinates, which an ideal camera of focal length 1 sees, to pixels:
 *     r2 = x^2 + y^2        s = 1 + k1 * r2 + k2 * r2^2 + k3 * r2^3
 *     u = fx * (x * s + 2 * p1 * x * y + p2 * (r2 + 2 * x^2)) + cx
 *     v = fy * (y * s + p1 * (r2 + 2 * y^2) + 2 * p2 * x * y) + cy */
RVK_API rvkStatus rvkGeomDistortPoint2x1f32(const float32_t* camera, const float32_t* distortion,
                                            const float32_t* point, float32_t* distorted);
RVK_API rvkStatus rvkGeomDistortPoint2xNf32(const float32_t* camera, const float32_t* distortion,
                                            const float32_t* points, uint32_t srcStride, uint32_t numPoints,
                                            float32_t* distorted, uint32_t dstStride);

/* From pixels to normalised coordinates: the inverse of the above, by Newton's method from where the point were without
 * distortion, with at most 20 steps; the last one is at most 2^-22 * (1 + |x| + |y|). Where it has begun the lens must
 * be one that can be inverted: s and the determinant of the derivatives of (u / fx, v / fy) must be positive. */
RVK_API rvkStatus rvkGeomUndistortPoint2x1f32(const float32_t* camera, const float32_t* distortion,
                                              const float32_t* point, float32_t* undistorted);
RVK_API rvkStatus rvkGeomUndistortPoint2xNf32(const float32_t* camera, const float32_t* distortion,
                                              const float32_t* points, uint32_t srcStride, uint32_t numPoints,
                                              float32_t* undistorted, uint32_t dstStride);

/* From the world to pixels: q = R * point + t with a `pose` of 3 x 4 elements, row by row, [R | t]; then the distortion
 * of (q.x / q.z, q.y / q.z). Points must be in front of the camera, that is q.z > 0. */
RVK_API rvkStatus rvkGeomProjectPoint3x1f32(const float32_t* camera, const float32_t* distortion, const float32_t* pose,
                                            const float32_t* point, float32_t* projected);
RVK_API rvkStatus rvkGeomProjectPoint3xNf32(const float32_t* camera, const float32_t* distortion, const float32_t* pose,
                                            const float32_t* points, uint32_t srcStride, uint32_t numPoints,
                                            float32_t* projected, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

/* Ravik: pictures of depths and what is made of them, and pictures of another bit depth.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows, or points.
 *              Pictures of 2^31 bytes are refused.
 *   Alignment  pointers are aligned to their element type; strides are multiples of its size.
 *   In place   outputs must not overlap anything else, but where a function says so.
 *   Positions  of pixels are those of their centres; the pixel nearest to u is floor(u + 0.5).
 *   Cameras    fx, fy, cx, cy: the focal lengths, which are positive, and the centre, in pixels; all finite.
 *   Poses      3 x 4 elements [R | t], row by row, from the world to the camera: q = R * X + t.
 *   Depths     floats in metres; those that are not finite or not positive mean that there is none.
 *   Precision  double; results are rounded once, where they are stored.
 *   Errors     RAVIK_EBADPARAM on bad arguments, without log, RAVIK_EFAIL where a pose is not finite or a function says
 *              so; nothing is written then. */
#ifndef RAVIK_DEPTH_H
#define RAVIK_DEPTH_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- bit depth ---- */

/* dst = src << shift, of 0 to 7 bits. The work may run on the DSP only when pointers and strides are multiples of 8. */
RVK_API rvkStatus rvkConvertDepthu8s16(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       uint32_t shift, int16_t* dst, uint32_t dstStride);

/* dst = src >> shift, of 0 to 15 bits, by the policy: RAVIK_POLICY_SATURATE clamps it to 0..255, RAVIK_POLICY_WRAP
 * keeps its low 8 bits. The work may run on the DSP only when pointers and strides are multiples of 8. */
RVK_API rvkStatus rvkConvertDepths16u8(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       uint32_t policy, uint32_t shift, uint8_t* dst, uint32_t dstStride);

/* ---- pictures of depths ---- */

/* The points that a picture shows, x, y and z of each pixel in turn, in the camera's coordinates:
 *     ((column - cx) * d / fx, (row - cy) * d / fy, d)
 * within 2^-21 of each number; three not-a-numbers where there is no depth. A `dstStride` of 0 means 12 * srcWidth. The
 * work may run on the DSP only when pointers and strides are multiples of 4. */
RVK_API rvkStatus rvkConvertDepthImageToPointCloudf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcStride, const float32_t* camera, float32_t* dst,
                                                      uint32_t dstStride);

/* The depths as another camera sees them: each is taken back to its point in the first camera's coordinates, moved by
 * the pose to q, and q.z is stored at the pixel of `dst` that is nearest to where the second camera has it, if q.z > 0
 * and there is one. The smallest of a pixel stays; pixels without any get 0. */
RVK_API rvkStatus rvkRegisterDepthImagef32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, const float32_t* srcCamera, const float32_t* pose,
                                           const float32_t* dstCamera, float32_t* dst, uint32_t dstWidth,
                                           uint32_t dstHeight, uint32_t dstStride);

/* Fuses a picture of depths into a volume of truncated signed distances (Curless, Levoy, "A Volumetric Method for
 * Building Complex Models from Range Images", 1996), of which blocks of 8 x 8 x 8 voxels are stored: `distances` and
 * `weights` 512 elements for each block, x fastest, then y; `blocks` its three coordinates.
 *
 * The centre of voxel i of block b is at (8 * b + i + 0.5) * voxelSize in each direction of the world, and at q in the
 * camera. Where q.z > 0 and there is a depth d at the pixel nearest to q's projection, f = d - q.z is how far the voxel
 * lies before the surface. Voxels with f < -truncation are hidden and stay; the others become
 *     W = max(weight, 0)    s = min(1, f / truncation) * 32767
 *     distance = (distance * W + s) / (W + 1)    weight = min(W + 1, maxWeight)
 * with s and the distance rounded to whole numbers, halves away from zero. `voxelSize`, `truncation` and `maxWeight`
 * are positive; there may be no blocks. A block that is listed twice is fused twice. */
RVK_API rvkStatus rvkDepthFusion8x8x8xNs16(int16_t* distances, int16_t* weights, const int32_t* blocks,
                                           uint32_t numBlocks, float32_t voxelSize, float32_t truncation,
                                           int16_t maxWeight, const float32_t* depth, uint32_t width, uint32_t height,
                                           uint32_t stride, const float32_t* camera, const float32_t* pose);

/* ---- alignment ----
 *
 * What a step of Gauss and Newton needs: with the error e and the Jacobian J of each pixel or point, `jtj` the sum of
 * J^T * J, all rows of the symmetric matrix, `jte` the sum of J^T * e, `sumSquares` that of e^2, and how many there
 * are, which may be none. Sums are within 2^-17 of the sum of the magnitudes. RAVIK_EFAIL when one of them is too large
 * for a float. */

/* Of two pictures, by a rotation and a translation in the plane (Baker, Matthews, "Lucas-Kanade 20 Years On", 2004):
 *     e = warped - reference
 *     J = (dx, dy, dy * (column - (width - 1) / 2) - dx * (row - (height - 1) / 2))
 * so `jtj` has 9 elements and `jte` 3. Pixels at which one of the four pictures is not finite are left out. */
RVK_API rvkStatus rvkJacobianSE2f32(const float32_t* warped, const float32_t* reference, uint32_t width,
                                    uint32_t height, uint32_t srcStride, const float32_t* dx, const float32_t* dy,
                                    uint32_t dxyStride, float32_t* jtj, float32_t* jte, float32_t* sumSquares,
                                    uint32_t* numPixels);

/* Of points and a surface that a camera has seen, as maps of three floats for each pixel, vertexMap and normalMap; by
 * distances from the tangent planes (Chen, Medioni, "Object Modelling by Registration of Multiple Range Images", 1992).
 * A point X belongs to the point v and the normal n at the pixel nearest to the projection of q = R * X + t; it is left
 * out when q.z <= 0, when there is no such pixel, when v.z <= 0, when v or n is not finite, or when |q - v| exceeds
 * `maxDistance`, which is positive. For the others
 *     e = n * (q - v)    J = (n, q x n)
 * so `jtj` has 36 elements and `jte` 6: first the translation, then the rotation vector. There may be no points. */
RVK_API rvkStatus rvkICPJacobianErrorSE3f32(const float32_t* points, uint32_t numPoints, uint32_t pointStride,
                                            const float32_t* vertexMap, const float32_t* normalMap, uint32_t width,
                                            uint32_t height, uint32_t mapStride, const float32_t* camera,
                                            const float32_t* pose, float32_t maxDistance, float32_t* jtj,
                                            float32_t* jte, float32_t* sumSquares, uint32_t* numMatched);

RVK_EXTERN_C_END

#endif

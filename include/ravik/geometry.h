/* Ravik: maps of points fitted to correspondences, and how far correspondences lie from them.
 *
 * Common to all functions of this header:
 *   Models     maps of src to dst:
 *                affine      2x3 row-major: u = a0 x + a1 y + a2, v = a3 x + a4 y + a5
 *                homography  3x3 row-major: u = (h0 x + h1 y + h2) / w, v = (h3 x + h4 y + h5) / w,
 *                            w = h6 x + h7 y + h8
 *                pose        3x4 row-major [R | t], world to camera: q = R X + t, u = q.x / q.z, v = q.y / q.z; dst is
 *                            measured in the camera's normalised coordinates, that is without distortion, focal
 *                            lengths and centre
 *   Pairs      rvkaCorrespondences, or its parts one by one; strides in bytes, multiples of 4, 0 for packed points;
 *              each list spans less than 2^31 bytes. The mask may be null: all pairs count.
 *   Floats     results are computed in double precision, without functions of the C library but the square root, and
 *              rounded once; they have the same bits on all targets, except where rvkGeomXxxEvaluatef32 says otherwise.
 *   Alignment  floats are aligned to their size, masks may stand anywhere.
 *   Overlap    outputs must not overlap anything.
 *   Errors     bad arguments, among them thresholds that are negative or no numbers, give RAVIK_EBADPARAM, or a count
 *              of 0; a fit that does not exist, RAVIK_EFAIL. Nothing is written then. */
#ifndef RAVIK_GEOMETRY_H
#define RAVIK_GEOMETRY_H

#include "correspondences.h"

RVK_EXTERN_C_BEGIN

/* ---- how far pairs lie from a model ----------------------------------------------------------------------------
 *
 * squaredErrors[i] = |model(src) - dst|^2 for every pair of the list, those that the mask leaves out included. A pair
 * is an inlier, inliers[i] = 1, when the stored error is at most maxSquaredError and the mask has the pair; the others
 * have
 * 0. Both arrays may be null. What has a denominator of 0, lies behind the camera (q.z <= 0) or is not finite has the
 * error +infinity and is no inlier, whatever maxSquaredError is. They return the number of inliers, 0 for an empty
 * list.
 *
 * Inliers are the same on all targets. Vector code stores squared errors of which the root, the distance, is within
 * 2^-19 of the exact one, relative to what the formula gives with the magnitudes of all terms. */
RVK_API uint32_t rvkGeomAffineEvaluatef32(const rvkaCorrespondences* pairs, const float32_t affine[6],
                                          float32_t maxSquaredError, float32_t* squaredErrors, uint8_t* inliers);
RVK_API uint32_t rvkGeomHomographyEvaluatef32(const rvkaCorrespondences* pairs, const float32_t homography[9],
                                              float32_t maxSquaredError, float32_t* squaredErrors, uint8_t* inliers);
RVK_API uint32_t rvkGeomPoseEvaluatef32(const rvkaCorrespondences* pairs, const float32_t pose[12],
                                        float32_t maxSquaredError, float32_t* squaredErrors, uint8_t* inliers);
/* The same with the number as an output. */
RVK_API rvkStatus rvkGeomHomographyEvaluatef32_v2(const float32_t* src, uint32_t srcStride, const float32_t* dst,
                                                  uint32_t dstStride, uint32_t count, const float32_t homography[9],
                                                  float32_t maxSquaredError, float32_t* squaredErrors, uint8_t* inliers,
                                                  uint32_t* numInliers);

/* ---- fits to all pairs -----------------------------------------------------------------------------------------
 *
 * RAVIK_EFAIL, too, when a coordinate or an element of the result is not finite. */

/* The affine map with the least sum of squared errors, of at least 3 pairs. RAVIK_EFAIL when src lies on a line: the
 * smaller eigenvalue of its scatter matrix is at most 2^-40 of the larger. */
RVK_API rvkStatus rvkGeomAffineFitf32(const rvkaCorrespondences* pairs, float32_t affine[6]);

/* The normalised direct linear transform (Hartley, "In defense of the eight-point algorithm", 1997), of at least 4
 * pairs: src and dst are moved and scaled so that their centroid is 0 and their mean distance from it the root of 2;
 * the homography there is the eigenvector of the smallest eigenvalue of the normal matrix, found by Jacobi's rotations.
 * RAVIK_EFAIL when that is not unique, the second smallest eigenvalue being at most 2^-40 of the largest, or when the
 * map is singular: its determinant at most 2^-30, for elements with a sum of squares of 1.
 *
 * The result is scaled so that homography[8] is 1; where that is at most 2^-20 of the largest element, so that the
 * largest is 1. */
RVK_API rvkStatus rvkGeomHomographyFitf32(const rvkaCorrespondences* pairs, float32_t homography[9]);
RVK_API rvkStatus rvkGeomHomographyFitf32_v2(const float32_t* src, uint32_t srcStride, const float32_t* dst,
                                             uint32_t dstStride, uint32_t count, const uint8_t* mask,
                                             float32_t homography[9]);

/* ---- a fit to most pairs ---------------------------------------------------------------------------------------
 *
 * RANSAC (Fischler, Bolles, "Random sample consensus", 1981) over the n pairs that the mask has. A sample is 4 pairs.
 * Each is drawn by xorshift32 (left 13, right 17, left 5), which starts with `seed`, or 1 for 0: number
 * (state * n) >> 32, anew when the sample has it. It is fitted as by rvkGeomHomographyFitf32; one that cannot be counts
 * as an iteration, and 1000 of these in a row end the search. The inliers are those of rvkGeomHomographyEvaluatef32. A
 * model with strictly more than the best takes its place, and the search ends before iteration
 * ceil(log(1 - confidence) / log(1 - (inliers / n)^4)), that is as soon as (1 - (inliers / n)^4)^iterations is at most
 * 1 - confidence, or after maxIterations. A confidence of 1 runs them all.
 *
 * At the end, up to ten times: all inliers are fitted, and the model is taken unless it has fewer; it ends when their
 * set stays.
 *
 * maxIterations is at least 1, confidence in (0, 1]. inliers, a byte for each pair of the list, and numInliers may be
 * null. RAVIK_EFAIL with fewer than 4 pairs, or when no model has an inlier; RAVIK_ENORES without scratch memory. The
 * same input gives the same result on all targets. */
RVK_API rvkStatus rvkGeomHomographyRobustFitf32(const rvkaCorrespondences* pairs, float32_t maxSquaredError,
                                                uint32_t maxIterations, float32_t confidence, uint32_t seed,
                                                float32_t homography[9], uint8_t* inliers, uint32_t* numInliers);
RVK_API rvkStatus rvkGeomHomographyRobustFitf32_v2(const float32_t* src, uint32_t srcStride, const float32_t* dst,
                                                   uint32_t dstStride, uint32_t count, const uint8_t* mask,
                                                   float32_t maxSquaredError, uint32_t maxIterations,
                                                   float32_t confidence, uint32_t seed, float32_t homography[9],
                                                   uint8_t* inliers, uint32_t* numInliers);

RVK_EXTERN_C_END

#endif

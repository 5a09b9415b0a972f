/* Ravik: poses of a camera, from points in the world and where it sees them.
 *
 * Common to all functions of this header:
 *   Poses       3 x 4 elements, row by row, [R | t], which bring points of the world to the camera: q = R * X + t.
 *   Points      of the camera are normalised: (q.x / q.z, q.y / q.z), as rvkGeomUndistortPoint2xNf32 gives them. Pairs
 *               have a point of the world in `src` and the one of the camera in `dst`.
 *   Motions     xi = (v, w), a translation and a rotation vector; exp(xi) is the motion of the rigid body along them
 *               for a unit of time. It is done after the pose, in the coordinates of the camera.
 *   Alignment   that of floats.
 *   In place    where the functions say so; otherwise results must not overlap arguments.
 *   Rounding    everything is computed in double precision and rounded once.
 *   Errors      RAVIK_EBADPARAM for null pointers, strides that are none, and scalars that are not a number or out of
 *               their range; RAVIK_EFAIL where there is no result, or it or an argument is not finite. Whatever the
 *               error, nothing is written. */
#ifndef RAVIK_POSE_H
#define RAVIK_POSE_H

#include "correspondences.h"

RVK_EXTERN_C_BEGIN

/* The poses that three points in the world, points3D, can be seen from at points2D of a camera, packed, all of them in
 * front of it (Grunert, "Das Pothenotische Problem in erweiterter Gestalt", 1841; Haralick et al., "Review and analysis
 * of solutions of the three point perspective pose estimation problem", 1994). *numPoses of them, 0 to 4, stand in
 * `poses`, which has room for 4, by ascending distance of the first point from the camera, then of the second.
 * Solutions whose distances differ by a factor of less than 1 + 1e-5 are one. They are polished by Newton's method and
 * project the points within 2^-16, as long as their triangle is not small beside its distance from the origin of the
 * world, nor large beside theirs from the camera: the poses are floats. RAVIK_EFAIL for points on a line: when the
 * triangle's height is below 2^-19 of its longest side. */
RVK_API rvkStatus rvkGeom3PointPoseEstimatef32(const float32_t* points3D, const float32_t* points2D, float32_t* poses,
                                               uint32_t* numPoses);

/* Where a pose puts points, less where they are: two numbers for each pair, whatever the mask, in `residuals`, which
 * may be null; and meanSquaredError, of their lengths, over the pairs of the mask, 0 where there are none. What is not
 * in front of the camera, that is q.z > 0, or not finite has two residuals of +infinity, and so is the mean with it. */
RVK_API rvkStatus rvkGeomPoseEvaluateErrorf32(const rvkaCorrespondences* pairs, const float32_t* pose,
                                              float32_t* residuals, float32_t* meanSquaredError);

/* exp(xi) * pose, whose rotation is then made one again, row by row (Gram and Schmidt), the third row being the cross
 * product of the first two. `updated` may be the pose. RAVIK_EFAIL when the first two rows are parallel or 0. Turns of
 * more than a radian take sine and cosine from the system's mathematical library. */
RVK_API rvkStatus rvkGeomPoseUpdatef32(const float32_t* pose, const float32_t* xi, float32_t* updated);

/* The pose of least squared residuals near one that is given, by the method of Gauss and Newton. A step is halved, at
 * most 10 times, until the cost does not rise and all points stay in front of the camera. That failing, the search
 * ends, and so it does after a step |xi| <= epsilon, after maxIterations of them, when the normal equations have no
 * solution and when the cost has fallen by less than 2^-40 of itself. `refined` may be `pose`, and is the same with
 * maxIterations 0; otherwise the rotation that the search begins with is made one as by rvkGeomPoseUpdatef32. epsilon
 * >= 0.
 *
 * RAVIK_EFAIL for less than 3 pairs, a point that is not in front at the start, and normal equations that do not define
 * a step there: a pivot of their decomposition by Cholesky at most 2^-40 of its diagonal element. */
RVK_API rvkStatus rvkGeomPoseRefineGNf32(const rvkaCorrespondences* pairs, const float32_t* pose,
                                         uint32_t maxIterations, float32_t epsilon, float32_t* refined);

/* The same in place, for residuals of which some are outliers: the sum of the losses of Huber ("Robust estimation of a
 * location parameter", 1964) is to be least, which is |r|^2 / 2 up to |r| = huber and grows linearly from there on.
 * Each step weighs pairs by min(1, huber / |r|). huber > 0; infinity makes the squares of above. `cost`, the sum of the
 * losses in the end, and `numIterations`, the number of steps taken, may be null. */
RVK_API rvkStatus rvkGeomPoseOptimizeGNf32(const rvkaCorrespondences* pairs, float32_t huber, uint32_t maxIterations,
                                           float32_t epsilon, float32_t* pose, float32_t* cost,
                                           uint32_t* numIterations);

RVK_EXTERN_C_END

#endif

/* Ravik: Lucas-Kanade tracking: where points of one picture are in the next, to fractions of a pixel.
 *
 * Lucas and Kanade, "An Iterative Image Registration Technique with an Application to Stereo Vision", 1981, on pyramids
 * as Bouguet, "Pyramidal Implementation of the Lucas Kanade Feature Tracker", 2000, has it. From the smallest level to
 * level 0, a window of the first picture I around the point, winWidth x winHeight samples a pixel apart, is looked for
 * in the second, J, from where the level before has found it:
 *     G = sum over the window of (dx dx, dx dy; dx dy, dy dy),
 *     flow += G^-1 sum over the window of (I - J) (dx, dy),
 * until a step is shorter than `epsilon` pixels, at most maxIterations times (of which no more than 1000 are made). dx
 * and dy are the derivatives of I by Scharr's weights 3 10 3, divided by 32: x grows to the right, y down. Between
 * levels the flow doubles.
 *
 * Samples between pixels are bilinear, at positions rounded to 2^-16 pixel; outside of the picture they have the values
 * of the nearest pixels. Samples, derivatives and the sums of a column of the window are in single precision, sums of
 * columns and the flow in double; the result is within 0.02 pixel of what double precision throughout gives, and the
 * same on every target.
 *
 * Common to all functions of this header:
 *   Pyramids   pyr1 and pyr2 have numLevels levels each, 1 to 32, as rvkPyramidCreateu8 and rvkPyramidCreatef32 make
 *              them: level k shows the same at half the size of level k - 1. Those of both pyramids have the same
 *              sizes; the grey levels of floats may have any range. rvkPyramidLevel is packed; the stride of
 *              rvkPyramidLevel_v2 is in bytes, 0 means packed.
 *   Points     x and y in turn, packed, in pixels of level 0: whole numbers are the centres of pixels.
 *   Windows    winWidth and winHeight are odd, 3 to 255.
 *   Result     status[i] is 1 where point i was found and 0 where it is lost; points2[i] is where it is, and that of a
 *              lost one points1[i]; errors[i] is the mean of |I - J| over the window there, +infinity for a lost one.
 *              `errors` may be null.
 *   Lost       are points outside of [0, width - 1] x [0, height - 1], at the start or at the end; points whose window
 *              is too flat on level 0: the smaller eigenvalue of G / (winWidth winHeight) is below minEigenvalue (grey
 *              levels squared), or G has no inverse; and whatever leads to numbers that are not finite. On other levels
 *              a window that is too flat changes nothing.
 *   Alignment  floats are aligned to 4 bytes.
 *   Overlap    inputs may overlap; points2, status and errors must not overlap anything.
 *   Errors     null pointers, levels without memory, empty, of different sizes, of 2^31 bytes or more, or with strides
 *              below a row; windows of other sizes; maxIterations 0; epsilon or minEigenvalue negative or not a number;
 *              useGuess above 1: RAVIK_EBADPARAM. RAVIK_ENORES when there is no scratch memory. Nothing is written
 *              then. No points are success. */
#ifndef RAVIK_LUCASKANADE_H
#define RAVIK_LUCASKANADE_H

#include "pyramid.h"

RVK_EXTERN_C_BEGIN

/* With minEigenvalue 0.1 and without errors. Bad arguments log "Assertion failed @<function>: <condition>", missing
 * scratch memory "Error: <function> - no scratch memory". */
RVK_API void rvkTrackLKOpticalFlowu8(const rvkPyramidLevel* pyr1, const rvkPyramidLevel* pyr2, uint32_t numLevels,
                                     const float32_t* points1, float32_t* points2, uint32_t numPoints,
                                     uint32_t winWidth, uint32_t winHeight, uint32_t maxIterations, float32_t epsilon,
                                     uint8_t* status);
RVK_API rvkStatus rvkTrackLKOpticalFlowu8_v2(const rvkPyramidLevel* pyr1, const rvkPyramidLevel* pyr2,
                                             uint32_t numLevels, const float32_t* points1, float32_t* points2,
                                             uint32_t numPoints, uint32_t winWidth, uint32_t winHeight,
                                             uint32_t maxIterations, float32_t epsilon, float32_t minEigenvalue,
                                             uint8_t* status, float32_t* errors);

/* With useGuess 1 the search for each point begins where points2 has it, with 0 at its old place. */
RVK_API rvkStatus rvkTrackLKOpticalFlowu8_v3(const rvkPyramidLevel_v2* pyr1, const rvkPyramidLevel_v2* pyr2,
                                             uint32_t numLevels, const float32_t* points1, float32_t* points2,
                                             uint32_t numPoints, uint32_t winWidth, uint32_t winHeight,
                                             uint32_t maxIterations, float32_t epsilon, float32_t minEigenvalue,
                                             uint8_t* status, float32_t* errors, uint32_t useGuess);

/* Levels of floats. */
RVK_API rvkStatus rvkTrackLKOpticalFlowf32(const rvkPyramidLevel* pyr1, const rvkPyramidLevel* pyr2, uint32_t numLevels,
                                           const float32_t* points1, float32_t* points2, uint32_t numPoints,
                                           uint32_t winWidth, uint32_t winHeight, uint32_t maxIterations,
                                           float32_t epsilon, float32_t minEigenvalue, uint8_t* status,
                                           float32_t* errors);

RVK_EXTERN_C_END

#endif

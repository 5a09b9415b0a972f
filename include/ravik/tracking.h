/* Ravik: tracking: optical flow of blocks, mean shift, adaptive tracking, motion history.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows.
 *   Alignment  pixels, structures and results are aligned to their elements.
 *   Overlap    what is written must not overlap what is read, nor anything else that is written.
 *   Errors     each function says how it refuses bad arguments; nothing is written then. */
#ifndef RAVIK_TRACKING_H
#define RAVIK_TRACKING_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- optical flow -------------------------------------------------------------------------------
 *
 * How blocks of 16x16 pixels moved from one picture, `src1`, to the next, `src2`, by an exhaustive search. Both measure
 * srcWidth x srcHeight.
 *
 * Blocks are shiftSize columns and rows apart, beginning at roiLeft and roiTop rounded down to a multiple of it, while
 * they begin at roiRight and roiBottom rounded up to one at most and lie in the picture; row by row. A block that has
 * the sum S of its pixels and mean-removed differences (each less the whole parts of the means) that sum up to Z from
 * what is at the same place in `src2` is left out when Z < 1280 + floor(8 S / 100), since then it hardly changed, or
 * when S < 5120.
 *
 * It is looked for at its own place first, then at those up to searchWidth columns and searchHeight rows away, as far
 * as they lie in the picture, of which from the first one on every searchStep-th column and row is tried, row by row;
 * with a searchStep of 2 or more then at the 3x3 places around the best one. The best place is the first with the least
 * sum d of absolute differences. It counts when it is not the block's own, d < S / 2, and d is below half, rounded
 * down, of the largest sum met.
 *
 * Each block that moved gives an element of four lists: where it was, (locX, locY), and where it is, (mvX, mvY), by its
 * first pixel. *numMv is how many there are; the lists must have room for every block.
 *
 * RAVIK_EUNALIGNPARAM: pictures smaller than 16x16, srcStride < srcWidth, roiRight or roiBottom beyond the picture,
 * roiRight - roiLeft or roiBottom - roiTop below 16 (modulo 2^32), shiftSize 0. RAVIK_EBADPARAM: null pointers,
 * searchStep 0. `flags` has no meaning. */
RVK_API rvkStatus rvkTrackBMOpticalFlow16x16u8(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth,
                                               uint32_t srcHeight, uint32_t srcStride, uint32_t roiLeft,
                                               uint32_t roiTop, uint32_t roiRight, uint32_t roiBottom,
                                               uint32_t shiftSize, uint32_t searchWidth, uint32_t searchHeight,
                                               uint32_t searchStep, uint32_t flags, uint32_t* numMv, uint32_t* locX,
                                               uint32_t* locY, uint32_t* mvX, uint32_t* mvY);

/* ---- mean shift ---------------------------------------------------------------------------------
 *
 * Moves a window to the centre of mass of what it sees of a picture of weights (Comaniciu, Ramesh, Meer, "Real-Time
 * Tracking of Non-Rigid Objects Using Mean Shift", 2000), step by step. In a step the window is first clamped: its
 * column and row to those of the picture, its size, taken as unsigned, to what the picture has from there, 1 at least.
 * With the moments of the window (rvkImageMoments, single precision), the step is, across and down,
 *     m10 / m00 - width / 2,  m01 / m00 - height / 2,
 * each rounded to the nearest integer, halves away from zero; it does not leave the picture. The search ends when the
 * squared length of a step is below `epsilon` squared and rounded (a not-a-number counts as 0: never), when the window
 * is empty, |m00| < 2.220446e-16, or has no centre that is a number, or after maxIterations steps.
 *
 * A window begins at y * srcStride bytes, rounded down to whole pixels, so strides should be of whole pixels.
 *
 * Returns how many steps came before the one with which it ended: 0 for a window that is where it belongs; or
 * maxIterations. The window is clamped at the beginning of a step only, so at the end it may reach beyond the right or
 * bottom edge. However large maxIterations is, a search that goes round in circles takes no longer than some rounds.
 *
 * On bad arguments "Assertion failed @<function>: <condition>" is logged and the result is 0: null pointers, sizes of 0
 * or above 2^31 - 1, strides shorter than a row. */
RVK_API uint32_t rvkMeanShiftu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                rvkRectangle* window, uint32_t maxIterations, float32_t epsilon);
RVK_API uint32_t rvkMeanShifts32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 rvkRectangle* window, uint32_t maxIterations, float32_t epsilon);
RVK_API uint32_t rvkMeanShiftf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 rvkRectangle* window, uint32_t maxIterations, float32_t epsilon);

/* The same, and the size and the orientation of what the window found (Bradski, "Computer Vision Face Tracking For Use
 * in a Perceptual User Interface", 1998): mean shift, then the moments of the window grown by 10 pixels on each side,
 * as far as the picture reaches. *box is around the ellipse that has these moments of the second order when it is
 * filled evenly: its axes are 4 times the standard deviations along them. The window becomes the upright rectangle
 * around the ellipse, clipped to the picture, for the next picture of a sequence.
 *
 * Without a mass that is positive and finite, *box is all 0 and the window what mean shift made of it. Angles are those
 * of the standard library's atan2 in double precision, rounded to single. Refusals are those of mean shift. */
RVK_API uint32_t rvkConAdaTracku8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box);
RVK_API uint32_t rvkConAdaTracks32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box);
RVK_API uint32_t rvkConAdaTrackf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box);

/* ---- motion history -----------------------------------------------------------------------------
 *
 * Notes in `dst` when each pixel last moved (Davis and Bobick, "The Representation and Recognition of Action Using
 * Temporal Templates", 1997): pixels of the mask `src` that are not 0 make it timeStamp; of the others those that are
 * older than maxHistory, dst + maxHistory < timeStamp, become 0 and the rest stays. The sum wraps. `dst` has srcWidth x
 * srcHeight elements; what its stride has beyond whole ones does not count. Bad arguments log "Assertion failed
 * @<function>: <condition>". */
RVK_API void rvkUpdateMotionHistoryu8s32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         int32_t* dst, uint32_t dstStride, int32_t timeStamp, int32_t maxHistory);

RVK_EXTERN_C_END

#endif

/* Ravik: lines and circles by Hough transforms, edge pixels and line segments.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1, pictures have at most 2^30 - 1 pixels; sides are at
 *              most 16384 where a function says so. y goes down. Strides are in bytes; 0 means packed rows.
 *   Lists      a function writes no more entries than there is room for, which may be none, and tells how many it
 *              wrote. A full list ends the output without an error: what has no room comes later in the stated order.
 *              Entries behind the last one written are left alone.
 *   Alignment  lists are aligned to their elements, pictures need none.
 *   In place   not possible: lists must not overlap the picture or each other.
 *   Errors     RAVIK_EBADPARAM for bad arguments, RAVIK_ENORES when scratch memory cannot be had. Nothing is written
 *              then. Nothing is logged. */
#ifndef RAVIK_HOUGH_H
#define RAVIK_HOUGH_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The line of the points with x cos(theta) + y sin(theta) = rho, in pixels and radians, and how many pixels lie on
 * it. */
typedef struct rvkLine
{
    float32_t rho, theta;
    uint32_t votes;
} rvkLine;

/* A circle around the centre of pixel (x, y), and how many edge pixels lie on it. */
typedef struct rvkCircle
{
    uint32_t x, y, radius, support;
} rvkCircle;

/* A line segment between the centres of two pixels or places between them, in pixels, and how many edge pixels it was
 * made of. */
typedef struct rvkLineSegment
{
    float32_t x1, y1, x2, y2;
    uint32_t support;
} rvkLineSegment;

/* Lines through the non-zero pixels, which are mostly edges (rvkFilterCannyu8): Duda and Hart, "Use of the Hough
 * Transformation to Detect Lines and Curves in Pictures", 1972.
 *
 * Angle k of nAngles is k pi / nAngles. With c and s, 32768 cos / rhoStep and 32768 sin / rhoStep rounded to the
 * nearest integer (halves to the even one), a pixel votes at each angle for bin r = floor((x c + y s + 16384) / 32768).
 *
 * A line is a bin with at least `threshold` votes, more than those of its neighbours (k, r - 1), (k, r + 1), (k - 1,
 * r), (k + 1, r) that come before it in the order of k, then r, and no fewer than the others'. The neighbour (-1, r) is
 * (nAngles - 1, -r), and (nAngles, r) is (0, -r), the same lines; a bin is not its own neighbour. rho is r * rhoStep,
 * theta the angle, within 1e-6. Most votes first, then by k, then by r.
 *
 * nAngles and threshold are at least 1, rhoStep is finite and at least 0.5, sides are at most 16384. All bins together,
 * at four bytes each, must have a size that 32 bits hold: RAVIK_ENORES, too, when they do not. */
RVK_API rvkStatus rvkHoughLineu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t nAngles, float32_t rhoStep, uint32_t threshold, rvkLine* lines,
                                 uint32_t nLinesMax, uint32_t* nLines);

/* Circles by their edges' gradients: Yuen, Princen, Illingworth and Kittler, "Comparative study of Hough Transform
 * methods for circle finding", 1990.
 *
 * Edge pixels and their gradients are those of rvkFilterCannyu8 with apertureSize 3, RAVIK_CANNY_NORM_L1 and the
 * thresholds edgeThreshold / 2 and edgeThreshold. Each votes along its gradient in both directions: with u and v,
 * 65536 dx / sqrt(dx^2 + dy^2) and 65536 dy / sqrt(dx^2 + dy^2) rounded to the nearest integer (halves to the even
 * one), for the cell (floor((65536 x + r u + 32768) / 65536), floor((65536 y + r v + 32768) / 65536)) and for that with
 * -r, for r = minRadius, minRadius + 1, ... maxRadius, until the cell leaves the picture; once for successive r that
 * have the same cell.
 *
 * The score of a cell is the sum over the 3x3 cells around it. Centres are cells with a score of at least
 * centerThreshold, above those of the neighbours before it in raster order, not below those of the neighbours after it.
 * By score from the highest down, then in raster order, each centre that is no nearer than minDistance to one of a
 * circle already found gets its radius: of the distances minRadius to maxRadius, to the nearest integer, that which
 * most edge pixels have for their number divided by the distance; the smaller one of equals. That number is the
 * support; the circle counts when it is at least centerThreshold.
 *
 * edgeThreshold is 1 to 32767, centerThreshold at least 1, minRadius at least 1 and not above maxRadius, which may be
 * larger than any circle in the picture. */
RVK_API rvkStatus rvkHoughCircleu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint32_t edgeThreshold, uint32_t minRadius, uint32_t maxRadius,
                                   uint32_t centerThreshold, uint32_t minDistance, rvkCircle* circles,
                                   uint32_t nCirclesMax, uint32_t* nCircles);

/* The pixels that the thinning of canny.h (3x3 gradient, |dx| + |dy|) keeps and whose magnitude is above `threshold`,
 * in raster order. `xy` receives pairs of x and y. `gradients` receives pairs of dx and dy unless it is null. */
RVK_API rvkStatus rvkImageDetectEdgePixelsu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, uint32_t threshold, uint32_t* xy, uint32_t nPixelsMax,
                                             uint32_t* nPixels, int16_t* gradients);

/* Straight edges: Burns, Hanson and Riseman, "Extracting Straight Lines", 1986.
 *
 * The edge pixels of rvkImageDetectEdgePixelsu8 are parted by the direction of their gradient, the full circle, in two
 * ways: into floor(angle / 45 degrees), and by the nearest multiple of 45 degrees (by the two slopes of canny.h).
 * Support regions are edge pixels of one part that are connected in eight directions. A pixel votes for the larger of
 * its two regions, of equals for that of the first partition. A region with the votes of more than half of its pixels
 * makes a segment of these pixels: the line with the least sum of squared distances (of equal ones the horizontal one),
 * between the extreme projections, directed so that the brighter side is on the right, on the screen, from (x1, y1) to
 * (x2, y2). It is kept when it is at least minLength long and the root of the mean squared distance is at most
 * maxError, in pixels; neither is negative or not a number. In the order of their first pixels in the picture.
 * Positions are good to 1e-3 pixel. */
RVK_API rvkStatus rvkImageDetectLineSegmentsu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint32_t threshold, float32_t minLength,
                                               float32_t maxError, rvkLineSegment* segments, uint32_t nSegmentsMax,
                                               uint32_t* nSegments);

RVK_EXTERN_C_END

#endif

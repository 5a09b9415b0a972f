/* Ravik: corners of grey pictures: Harris, good features to track, places between pixels, local maxima.
 *
 * Common to all functions of this header:
 *   Shapes     widths, heights, borders, radii and coordinates are in pixels, strides in bytes; 0 means packed rows.
 *   Lists      pairs of x and y, one after the other, in raster order: from the top row down, each from left to right.
 *              A list that is full ends the search; nothing but the count tells of it.
 *   Corners    with I the picture, central differences Ix = (I(x + 1, y) - I(x - 1, y)) >> 1 and Iy, down, likewise
 *              (>> rounds down), make three products, Ix Ix, Iy Iy and Ix Iy, and binomial windows of 5x5 pixels
 *              smooth them: A, B and C, each (sum of weighted products) >> 8. A corner is a pixel whose response is
 *              above the threshold and above those of the 24 other pixels of its 5x5 window: of equal neighbours none
 *              is. Corners keep `border` pixels, and 5 at least, from the edges of the picture; where that leaves
 *              nothing there are none. A list for 0 corners takes the first one that is found, too.
 *   Alignment  bytes may stand anywhere, numbers of 32 bits are aligned to 4.
 *   Overlap    outputs must not overlap each other or the picture.
 *   Errors     null pointers, sizes of 0, strides below the width and what the functions say are refused, and nothing
 *              is written: functions without a status log "Assertion failed @<function>: <condition>", the others
 *              return RAVIK_EBADPARAM. Without scratch memory, which is proportional to the width, functions with a
 *              status return RAVIK_ENORES and the others log it; both write nothing. Only rvkCornerHarrisu8 ends the
 *              process then, with status 1, after a line in the log. */
#ifndef RAVIK_HARRIS_H
#define RAVIK_HARRIS_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- Harris corners ---------------------------------------------------------------------------------------------- */

/* The response is A B - C C - ((A + B)^2 >> 4), exact: that of Harris and Stephens, "A Combined Corner and Edge
 * Detector", 1988, with k = 1/16. Edges have negative ones, even surfaces 0. Pictures have more than 4 columns and
 * rows. xy has room for nCornersMax pairs, and one at least; *numcorners is their number. */
RVK_API void rvkCornerHarrisu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t border,
                               uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners, int32_t threshold);

/* Without the pixels that a mask takes out. It has a bit for each pixel, rows of whole bytes one after the other, the
 * leftmost pixel in the most significant bit; 1 takes it out, but still counts among the neighbours of others. The
 * mask is as large as the picture, or 2, 4 or 8 times or a 2nd, 4th or 8th of it in both directions: of a larger one
 * the top left bit of each block counts. With masks of other sizes there are no corners. */
RVK_API void rvkCornerHarrisInMasku8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                     uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners,
                                     int32_t threshold, const uint8_t* bitMask, uint32_t maskWidth,
                                     uint32_t maskHeight);

/* With the response of each corner, negative ones in two's complement. */
RVK_API void rvkCornerHarrisScoreu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                    uint32_t border, uint32_t* xy, uint32_t* scores, uint32_t nCornersMax,
                                    uint32_t* numcorners, int32_t threshold);

/* Lowers the threshold until the list is full: what it exceeds minThreshold by is halved, rounded down, each time, and
 * at minThreshold it ends. The list is that of rvkCornerHarrisu8 for the threshold that was reached. A threshold below
 * minThreshold begins there. Scratch memory holds as many corners as the picture has room for, at 12 bytes for each nine
 * pixels, or 33 times nCornersMax of them where that is less. */
RVK_API void rvkCornerHarrisAdaptiveu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                                       uint32_t border, uint32_t* xy, uint32_t nCornersMax, uint32_t* numcorners,
                                       int32_t threshold, int32_t minThreshold);

/* maxResponse is the largest of a patch, at (maxX, maxY), of equal ones the first. Of pixels whose windows lie in the
 * patch, those 3 or more from its edges: patches smaller than 7x7 are refused. */
RVK_API rvkStatus rvkLocalHarrisMaxu8(const uint8_t* patch, uint32_t width, uint32_t height, uint32_t stride,
                                      uint32_t* maxX, uint32_t* maxY, int32_t* maxResponse);

/* ---- good features to track -------------------------------------------------------------------------------------- */

/* The response is the smaller eigenvalue of the smoothed products, that of Shi and Tomasi, "Good Features to Track",
 * 1994: with a = 0.5 A and c = 0.5 B it is a + c - sqrt((a - c)^2 + C^2), each operation rounded to single precision,
 * the same on every target. Of two corners less than minDistance apart the later one is left out, also when it is the
 * stronger; minDistance up to 1 leaves all. minDistance and threshold must be numbers. */
RVK_API rvkStatus rvkGoodFeatureToTracku8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          float32_t minDistance, uint32_t border, float32_t threshold, uint32_t* xy,
                                          uint32_t nCornersMax, uint32_t* nCorners);

/* ---- corners between pixels -------------------------------------------------------------------------------------- */

/* Moves nCorners corners, pairs of x and y with pixel centres at whole numbers, to the point that is nearest to the
 * lines along which the grey values of its window go: where the gradients are orthogonal to the way from there, in
 * least squares (Foerstner and Guelch, "A Fast Operator for Detection and Precise Location of Distinct Points, Corners
 * and Centres of Circular Features", 1987).
 *
 * The window reaches windowRadiusX and windowRadiusY pixels, 1 at least, to each side of the corner, and must fit the
 * picture. Gradients are differences of the samples one pixel to either side; samples are bilinear, at places rounded
 * to 2^-14, and the picture goes on beyond its edges with its nearest pixels. They weigh exp(-(dx / windowRadiusX)^2 -
 * (dy / windowRadiusY)^2), but nothing where both |dx| <= deadRadiusX and |dy| <= deadRadiusY; a negative radius means
 * that there is no such dead zone. Sums are of single precision, down each column and then over the columns from left
 * to right, the same on every target.
 *
 * Each corner is moved until a step is no longer than epsilon, which must be a number, but maxIterations times at most,
 * and never more than 100 times. A corner stays as it was given when it is not in the picture, when a step leads out of
 * the picture or of the window around its first place, or when the window does not determine a point. */
RVK_API rvkStatus rvkCornerRefineSubPixu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          float32_t* xy, uint32_t nCorners, uint32_t windowRadiusX,
                                          uint32_t windowRadiusY, int32_t deadRadiusX, int32_t deadRadiusY,
                                          uint32_t maxIterations, float32_t epsilon);

/* ---- maxima ------------------------------------------------------------------------------------------------------ */

/* The pixels above the threshold and above all others of the (2 radius + 1) x (2 radius + 1) pixels around them that
 * exist; radius is 1 to 15. `values` gets theirs, unless it is null. A list for 0 maxima gets none. */
RVK_API rvkStatus rvkFindMultipleMaximau8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint32_t radius, uint8_t threshold, uint32_t* xy, uint32_t* values,
                                          uint32_t nMaximaMax, uint32_t* nMaxima);

RVK_EXTERN_C_END

#endif

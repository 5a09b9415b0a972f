/* Ravik: closed polygons drawn into pictures.
 *
 *   Points     pairs x, y of -2^29 to 2^29 - 1, anywhere in the picture or outside of it. `contourSizes` has the
 *              numbers of points of nContours contours, which follow each other in `points`; a contour of no points
 *              draws nothing, one of a single point a point. The time does not grow with the coordinates.
 *   Lines      from p to q there are n = max(|dx|, |dy|) steps; pixel k, 0 <= k <= n, is p + sign * floor((2 k |d| + n)
 *              / (2 n)) in each coordinate (Bresenham, "Algorithm for computer control of a digital plotter", 1965;
 *              halves away from p). What lies outside of the picture is left out and changes nothing inside.
 *   thickness  1 to 255: in the place of each pixel of the lines there is a square of this side, whose first row and
 *              column are thickness / 2 before the pixel's. RAVIK_DRAW_FILLED: lines of thickness 1, and what they
 *              enclose: the pixels with an odd number of crossings strictly to the right in their row, of the edges of
 *              all contours together. An edge crosses the rows from its upper end to the one before its lower end. So
 *              the borders of holes leave the holes open.
 *   Shapes     widths and heights are in pixels and at least 1, strides in bytes; 0 means packed rows. Pictures of
 *              dstStride x dstHeight above 2^32 - 1 bytes are refused.
 *   Alignment  pictures may stand anywhere, points and sizes are aligned to 4.
 *   Overlap    pictures must not overlap the points and sizes, nor planes each other.
 *   Errors     RAVIK_EBADPARAM; RAVIK_ENORES without scratch memory, of which filling takes up to a bit a pixel.
 *              Whatever the error, nothing is written. */
#ifndef RAVIK_DRAWING_H
#define RAVIK_DRAWING_H

#include "types.h"

RVK_EXTERN_C_BEGIN

#define RAVIK_DRAW_FILLED 0u /* as the thickness */

/* Draws contours with one value. */
RVK_API rvkStatus rvkDrawContouru8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                   const int32_t* points, const uint32_t* contourSizes, uint32_t nContours,
                                   uint32_t thickness, uint8_t value);

/* Three interleaved channels, and three planes with one stride. */
RVK_API rvkStatus rvkDrawContourInterleavedu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                              const int32_t* points, const uint32_t* contourSizes, uint32_t nContours,
                                              uint32_t thickness, uint8_t value1, uint8_t value2, uint8_t value3);
RVK_API rvkStatus rvkDrawContourPlanaru8(uint8_t* dst1, uint8_t* dst2, uint8_t* dst3, uint32_t dstWidth,
                                         uint32_t dstHeight, uint32_t dstStride, const int32_t* points,
                                         const uint32_t* contourSizes, uint32_t nContours, uint32_t thickness,
                                         uint8_t value1, uint8_t value2, uint8_t value3);

/* Fills each row from the leftmost to the rightmost pixel of the closed outline, which is the whole of a convex
 * polygon. Any polygon of at least one point may be given. Takes scratch memory of eight bytes a row. */
RVK_API rvkStatus rvkFillConvexPolyu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                      const int32_t* points, uint32_t nPoints, uint8_t value);

RVK_EXTERN_C_END

#endif

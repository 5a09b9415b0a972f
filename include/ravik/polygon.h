/* Ravik: what encloses points, and where points lie.
 *
 * Points are pairs x, y of -2^29 to 2^29 - 1, with y growing downwards; there is at least one.
 *
 *   Alignment  that of the elements.
 *   Overlap    results must not overlap the points, but for the hull, which may be in their place.
 *   Errors     RAVIK_EBADPARAM for null pointers, no points, points out of range and queries that are not finite;
 *              RAVIK_ENORES without scratch memory. Whatever the error, nothing is written. */
#ifndef RAVIK_POLYGON_H
#define RAVIK_POLYGON_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The least upright rectangle of pixels that holds all points. */
RVK_API rvkStatus rvkBoundingRectangle(const int32_t* points, uint32_t nPoints, rvkRectangle* rectangle);

/* The corners of the convex hull, clockwise on the screen from the one with the smallest x and of those the smallest y
 * (Andrew, "Another efficient algorithm for convex hulls in two dimensions", 1979): no point twice, and none on the
 * line between two others. Equal points have one corner, points on one line two. `hull` has room for nPoints points and
 * may be `points`; what lies behind the *nHull corners is not written. Takes 16 bytes of scratch memory a point. */
RVK_API rvkStatus rvkFindConvexHull(const int32_t* points, uint32_t nPoints, int32_t* hull, uint32_t* nHull);

/* Where (x, y) lies: 1 inside of the closed polygon (an odd number of its edges crosses the row to one side), 0 on an
 * edge or a corner, -1 outside. With measureDistance other than 0, that sign times the distance to the nearest edge.
 * One or two points have no inside. x and y are finite. It computes in double: the sign is exact for multiples of 1/16
 * when no coordinate exceeds 2^20, the distance good to a millionth. */
RVK_API rvkStatus rvkPointPolygonTest(const int32_t* points, uint32_t nPoints, float32_t x, float32_t y,
                                      uint32_t measureDistance, float32_t* distance);

RVK_EXTERN_C_END

#endif

/* Ravik: the borders of what is set in a picture, as lists of points; the clean-up of foreground masks by them.
 *
 * Borders are followed after Suzuki and Abe, "Topological Structural Analysis of Digitized Binary Images by Border
 * Following", 1985, Algorithm 1. Pixels that are not 0 are foreground, connected in eight directions; the others and
 * all that lies outside of the picture are background, connected in four. A component of the foreground has one outer
 * border and one border for each of its holes. Both are made of pixels of the component.
 *
 *   Points     pairs x, y. Outer borders run counter-clockwise on the screen, those of holes clockwise. A point is
 *              listed each time the border comes by: a row of three pixels is 0 1 2 1. A lone pixel is one point.
 *   Order      of contours: raster order of their first points, that is the component's first pixel, and the pixel left
 *              of the hole's first.
 *   Selection  External: outer borders that lie in no other component. List: all borders. Ccomp: all, the parent of a
 *              hole is the outer border of its component; outer borders have none. Tree: the same, and the parent of an
 *              outer border is the hole that it lies in.
 *   hierarchy  four numbers a contour: the next and the previous one of the same parent, the first child, the parent,
 *              in the order of contours; -1 for none. External and List know no parents.
 *   Alignment  pictures may stand anywhere, lists are aligned to their elements.
 *   Overlap    lists must not overlap the picture or each other.
 *   Errors     RAVIK_EBADPARAM for null pointers that are not said to be allowed, sizes of 0, strides shorter than a
 *              row and what the functions say; RAVIK_ENORES without scratch memory. Whatever the error, nothing is
 *              written. */
#ifndef RAVIK_CONTOUR_H
#define RAVIK_CONTOUR_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Which points of a border are listed. */
#define RAVIK_CONTOUR_ALL_POINTS 0u /* all */
#define RAVIK_CONTOUR_CORNERS 1u    /* those where the closed walk changes its direction */

/* What a mask is filled with. */
#define RAVIK_MASK_CONTOURS 0u /* the contours, without their holes */
#define RAVIK_MASK_HULLS 1u    /* their convex hulls */

/* The working memory of the functions below, for those who call them often. One call at a time. */
typedef struct rvkContourWorkspace rvkContourWorkspace;

/* For pictures of at most maxWidth x maxHeight pixels: about six bytes for each. Null when a size is 0, too large, or
 * memory is exhausted. */
RVK_API rvkContourWorkspace* rvkFindContoursAllocate(uint32_t maxWidth, uint32_t maxHeight);

/* Releases it; null is passed over. */
RVK_API void rvkFindContoursDelete(rvkContourWorkspace* workspace);

/* Finds the contours of a picture. `contourSizes` has room for nContoursMax numbers of points, `points` for nPointsMax
 * points, contour after contour; `hierarchy`, which may be null, for nContoursMax times four numbers. There may be no
 * room at all. A contour that does not fit in one of the lists ends the output: *nContours counts those before it,
 * links name no others, and what lies behind them is not written. `approximation` is a RAVIK_CONTOUR_... `workspace`
 * must have been made for a picture of at least this size; with null the call takes scratch memory. The stride is in
 * bytes, 0 means packed rows; srcStride x srcHeight is at most 2^32 - 1. */
RVK_API rvkStatus rvkFindContoursExternalu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint32_t approximation, uint32_t* contourSizes,
                                            uint32_t nContoursMax, uint32_t* nContours, int32_t* points,
                                            uint32_t nPointsMax, int32_t* hierarchy, rvkContourWorkspace* workspace);
RVK_API rvkStatus rvkFindContoursListu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                        uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                        rvkContourWorkspace* workspace);
RVK_API rvkStatus rvkFindContoursCcompu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                         uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                         rvkContourWorkspace* workspace);
RVK_API rvkStatus rvkFindContoursTreeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                        uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                        rvkContourWorkspace* workspace);

/* Cleans up a foreground mask in place (Bradski and Kaehler, "Learning OpenCV", 2008). Pixels that are not 0 are set.
 * The picture is opened, then closed, with 3x3 pixels, of which those outside of the picture take no part. Of the outer
 * borders that lie in no other component those stay whose length is at least (dstWidth + dstHeight) / perimeterScale: 1
 * for each step along a row or column of the closed walk, the square root of 2 for diagonal ones, 0 for a lone pixel.
 * They are filled with 255 as `shape`, a RAVIK_MASK_..., says; all other pixels become 0. perimeterScale is finite and
 * above 0. The stride is in bytes, 0 means packed rows. The DSP takes it when pointer and stride are multiples of 8. */
RVK_API rvkStatus rvkSegmentFGMasku8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                     uint32_t shape, float32_t perimeterScale);

RVK_EXTERN_C_END

#endif

/* Ravik: maximally stable extremal regions (MSER). Matas, Chum, Urban and Pajdla, "Robust Wide Baseline Stereo from
 * Maximally Stable Extremal Regions", 2002; found by flooding in linear time: Nister and Stewenius, "Linear Time
 * Maximally Stable Extremal Regions", 2008.
 *
 * Passes: the dark pass finds dark regions on bright ground, in g = src; the bright pass finds bright ones on dark
 * ground, in g = 255 - src. A region is a connected component of the pixels with g <= t that has a pixel with g = t,
 * its level. Its parent region is the next larger one around it. The whole picture is a region, too.
 *
 * Stability: the variation of a region of area A is (G - A) / A, where G is the area of the component around it at the
 * level t + delta, at most 255. A region is stable when its variation is not above that of its parent region and below
 * that of each region whose parent it is; compared exactly.
 *
 * Selection: from the largest regions to the smallest, stable ones are kept with minArea <= A <= maxArea and
 * G - A <= maxVariation * A, unless B - A < minDiversity * B, where B is the area of the nearest kept region of the
 * pass around it; these products are in double.
 *
 * Order: the regions of the bright pass, then those of the dark one; within each by t from the highest down, and among
 * regions of one level by their first pixels, row by row. So each region comes after those around it.
 *
 * Lists: `bounds` and `areas`, or `regions`, have room for nRegionsMax elements; *nRegions tells how many there are.
 * `pixels` may be null; otherwise it has room for nPixelsMax pairs x, y and gets the pixels of each region row by row,
 * region after region: as many as its area. The first region that does not fit ends the lists.
 *
 * Neighbours: 4, those that share a side, where nothing else is said.
 *
 * Parameters: delta 1 to 255, 1 <= minArea <= maxArea in pixels, maxVariation at least 0, minDiversity 0 to 1.
 *
 * Common to all functions of this header:
 *   Result     1; or 0, with nothing written, for bad arguments (not logged) or when there is no scratch memory.
 *   Shapes     widths and heights are in pixels and at least 1, pictures have at most 2^30 - 1 pixels. Strides are in
 *              bytes; 0 means packed rows.
 *   Alignment  that of the elements.
 *   Overlap    lists must not overlap the picture or each other.
 *   Threads    the dark pass runs on a thread of its own, or after the bright one when none can be started.
 *   Memory     22 bytes of scratch memory a pixel for each pass, and about 100 bytes for each region that is kept. */
#ifndef RAVIK_MSER_H
#define RAVIK_MSER_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The bits of `polarities`. */
#define RAVIK_MSER_BRIGHT 1u /* regions brighter than what is around them */
#define RAVIK_MSER_DARK 2u   /* darker ones */

/* All that is known of a region. */
typedef struct rvkMserRegion
{
    rvkRectangle bounds; /* the smallest upright rectangle around it */
    uint32_t area;       /* in pixels */
    int32_t polarity;    /* 1 of the bright pass, -1 of the dark one */
    uint32_t level;      /* as a value of src */
    float32_t variation; /* within 1e-6 of its size */
    int32_t parent;      /* index in the list of the nearest region around it, or -1 */
} rvkMserRegion;

/* Packed rows: the bounds and areas of regions, or all that is known of them. */
RVK_API uint32_t rvkMseru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t delta, uint32_t minArea,
                           uint32_t maxArea, float32_t maxVariation, float32_t minDiversity, rvkRectangle* bounds,
                           uint32_t* areas, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                           uint32_t nPixelsMax);
RVK_API uint32_t rvkMserExtu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t delta,
                              uint32_t minArea, uint32_t maxArea, float32_t maxVariation, float32_t minDiversity,
                              rvkMserRegion* regions, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                              uint32_t nPixelsMax);

/* The same with a stride. */
RVK_API uint32_t rvkMseru8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                              float32_t minDiversity, rvkRectangle* bounds, uint32_t* areas, uint32_t nRegionsMax,
                              uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax);
RVK_API uint32_t rvkMserExtu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                                 float32_t minDiversity, rvkMserRegion* regions, uint32_t nRegionsMax,
                                 uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax);

/* With a choice of neighbours, 4 or 8 (those that share a corner, too), and of passes: RAVIK_MSER_BRIGHT,
 * RAVIK_MSER_DARK or both. */
RVK_API uint32_t rvkMserExtu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                                 float32_t minDiversity, uint32_t connectivity, uint32_t polarities,
                                 rvkMserRegion* regions, uint32_t nRegionsMax, uint32_t* nRegions, uint32_t* pixels,
                                 uint32_t nPixelsMax);

/* A list for each pass: brightRegions with brightPixels, darkRegions with darkPixels. */
RVK_API uint32_t rvkMserSplitExtu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint32_t delta, uint32_t minArea, uint32_t maxArea, float32_t maxVariation,
                                   float32_t minDiversity, rvkMserRegion* brightRegions, uint32_t nBrightRegionsMax,
                                   uint32_t* nBrightRegions, uint32_t* brightPixels, uint32_t nBrightPixelsMax,
                                   rvkMserRegion* darkRegions, uint32_t nDarkRegionsMax, uint32_t* nDarkRegions,
                                   uint32_t* darkPixels, uint32_t nDarkPixelsMax);

/* ---- 8 neighbours, with memory of their own ---------------------------------------------------------------------- */

/* Makes *handle one that holds the parameters and the working memory, 44 bytes a pixel, for pictures that are at most
 * maxWidth wide and maxHeight high. It serves one call at a time; rvkMemFree releases it. Only what is kept for each
 * region takes scratch memory then. */
RVK_API uint32_t rvkMserNN8Init(uint32_t maxWidth, uint32_t maxHeight, uint32_t delta, uint32_t minArea,
                                uint32_t maxArea, float32_t maxVariation, float32_t minDiversity, void** handle);

/* Both passes with 8 neighbours. */
RVK_API uint32_t rvkMserNN8u8(void* handle, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                              uint32_t srcStride, rvkRectangle* bounds, uint32_t* areas, uint32_t nRegionsMax,
                              uint32_t* nRegions, uint32_t* pixels, uint32_t nPixelsMax);
RVK_API uint32_t rvkMserExtNN8u8(void* handle, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                 uint32_t srcStride, rvkMserRegion* regions, uint32_t nRegionsMax, uint32_t* nRegions,
                                 uint32_t* pixels, uint32_t nPixelsMax);

RVK_EXTERN_C_END

#endif

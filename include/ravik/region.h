/* Ravik: regions of pixels that belong together. Flood fill from given pixels; segmentation of a picture into regions
 * by colour, or from given pixels by grey value.
 *
 * Connectivity: 4 (pixels that share a side are neighbours) or 8 (those that share a corner, too).
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1, pictures have at most 2^30 - 1 pixels. Strides are in
 *              bytes; 0 means packed rows. Those of labels and 16-bit pictures are rounded down to whole elements.
 *   Alignment  that of the elements.
 *   Seeds      u32 pairs x, y of pixels in the picture, at least one.
 *   Memory     takes scratch memory: RAVIK_ENORES without it. Flood fill takes up to 5 bytes a pixel, vector
 *              implementations half a byte; growing by colour 8 bytes, growing from seeds 8 bytes for 4 neighbours and
 *              16 for 8, 16 bytes for each seed, and 8 bytes for each step of maxDifference.
 *   In place   flood fill works in place; labels must not overlap the picture.
 *   Errors     bad arguments give RAVIK_EBADPARAM, of rvkImageSegmentationRegionGrow RAVIK_EFAIL. Whatever the error,
 *              nothing is written. */
#ifndef RAVIK_REGION_H
#define RAVIK_REGION_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* ---- flood fill -------------------------------------------------------------------------------------------------- */

/* The pixels that a fill reached, whether it changed them or not. */
typedef struct rvkConnectedComponent
{
    rvkRectangle bounds;
    uint32_t area; /* in pixels */
} rvkConnectedComponent;

/* The pixels that are connected to the seed and have its value become newValue. `component` may be null. */
RVK_API rvkStatus rvkFloodfillSimpleu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                       uint32_t seedX, uint32_t seedY, uint8_t newValue, uint32_t connectivity,
                                       rvkConnectedComponent* component);

/* Each seed collects the pixels that are connected to it and whose values, before the call, are at most lowDifference
 * below and highDifference above that of the seed. What all of them collected becomes newValue. `component` may be
 * null; it tells of all seeds together. */
RVK_API rvkStatus rvkFloodfillMergedu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                       const uint32_t* seeds, uint32_t nSeeds, uint8_t lowDifference,
                                       uint8_t highDifference, uint8_t newValue, uint32_t connectivity,
                                       rvkConnectedComponent* component);

/* ---- region growing ---------------------------------------------------------------------------------------------- */

/* A region of a picture of three channels. */
typedef struct rvkRegion
{
    rvkRectangle bounds;
    uint32_t area;   /* in pixels */
    uint8_t mean[4]; /* of each channel, rounded to the nearest, halves up; the last one is 0 */
} rvkRegion;

/* Regions of a picture of three interleaved channels by single linkage (Haralick and Shapiro, "Image Segmentation
 * Techniques", 1985): neighbours belong to one region when no channel of theirs differs by more than `threshold`.
 * Regions of at least minArea pixels are numbered from 1 in the order of their first pixels, row by row, and `labels`
 * gets these numbers; 0 marks the pixels of smaller regions. `regions` gets the first nRegionsMax of them; it may be
 * null when that is 0. *nRegions counts all that have a number. Two passes with labels joined in an array: Wu, Otoo and
 * Suzuki, "Optimizing two-pass connected-component labeling algorithms", 2009.
 *
 * The work may run on the DSP only when srcStride is a multiple of 24, srcWidth and src are multiples of 8, labels and
 * regions of 16, and srcStride * srcHeight is at least 25345. */
RVK_API rvkStatus rvkImageSegmentationRegionGrow(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, uint32_t threshold, uint32_t minArea,
                                                 uint32_t connectivity, uint32_t* labels, uint32_t labelStride,
                                                 rvkRegion* regions, uint32_t nRegionsMax, uint32_t* nRegions);

/* Regions that grow from seeds (Adams and Bischof, "Seeded Region Growing", 1994). The pixel of seed i gets label i +
 * 1, of several seeds on one pixel the first. Then, seed by seed, each region offers to take its neighbours without a
 * label: up, left, right, down, then the diagonal ones row by row. An offer's price is floor(|n v - S| / n), where v is
 * the pixel's value and n and S are the region's number of pixels and their sum at that time; above maxDifference
 * nothing is offered. The cheapest offer, of equal ones the earliest, is taken when its pixel still has no label, and
 * then the region makes offers to the neighbours of that pixel, until there are none left. Pixels that no region took
 * get 0. */
RVK_API rvkStatus rvkImageSegmentationSeedRegionGrows16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                        uint32_t srcStride, const uint32_t* seeds, uint32_t nSeeds,
                                                        uint32_t maxDifference, uint32_t connectivity, uint32_t* labels,
                                                        uint32_t labelStride);

RVK_EXTERN_C_END

#endif

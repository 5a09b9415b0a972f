/* Ravik: statistics of grey values, and pictures changed by tables of them.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows. A rectangle
 *              begins at the pixel (xBegin, yBegin); its source is not told its size, so a stride of 0 means that rows
 *              end where the rectangle does, xBegin + recWidth. What does not fit the stride is refused.
 *   Alignment  images need none, tables of counts that of their elements. Tables that are written must not overlap what
 *              is read.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. */
#ifndef RAVIK_STATISTICS_H
#define RAVIK_STATISTICS_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* What the sum of squared differences from the mean is divided by, for n pixels. */
#define RAVIK_VARIANCE_UNBIASED 0 /* n - 1 */
#define RAVIK_VARIANCE_BIASED 1   /* n */

/* The mean and the variance of a rectangle, the latter divided by the number of pixels. Rows are packed, of srcWidth
 * pixels.
 *
 * With the exact sum and sum of squares of n pixels, each rounded to single precision first,
 *     mean = sum / n,  variance = (squares - mean * sum) / n,
 * every operation rounded to single precision. Of large and nearly constant rectangles the difference is inexact and
 * may be a little below 0. */
RVK_API void rvkImageIntensityStats(const uint8_t* src, uint32_t srcWidth, uint32_t xBegin, uint32_t yBegin,
                                    uint32_t recWidth, uint32_t recHeight, float32_t* mean, float32_t* variance);

/* The same; varianceEstimator is RAVIK_VARIANCE_UNBIASED or RAVIK_VARIANCE_BIASED. The unbiased variance of one pixel
 * is not a number. With any other estimator "rvkImageIntensityStats_v2 error invalid varianceEstimator <number>" is
 * logged, RAVIK_EBADPARAM returned and nothing written. */
RVK_API rvkStatus rvkImageIntensityStats_v2(const uint8_t* src, uint32_t srcStride, uint32_t xBegin, uint32_t yBegin,
                                            uint32_t recWidth, uint32_t recHeight, float32_t* mean, float32_t* variance,
                                            int32_t varianceEstimator);

/* histogram[v] = how many pixels of the rectangle are v, for the 256 values, modulo 2^32. Large rectangles are faster
 * with 64 KiB of scratch memory; without it the result is the same. */
RVK_API void rvkImageIntensityHistogram(const uint8_t* src, uint32_t srcStride, uint32_t xBegin, uint32_t yBegin,
                                        uint32_t recWidth, uint32_t recHeight, uint32_t* histogram);

/* The histograms of the cells of a grid, of cellsAcross x cellsDown cells, row by row, 256 counts each. Cell i of n
 * across has the columns floor(i * srcWidth / n) to floor((i + 1) * srcWidth / n) - 1, and rows alike, so that sizes
 * differ by one pixel at most. There are at most as many cells as pixels, in each direction, and the histograms of a
 * row of cells are below 2^32 bytes. */
RVK_API void rvkImageSpatialHistogramu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint32_t cellsAcross, uint32_t cellsDown, uint32_t* histograms);

/* The same for cells of cellWidth x cellHeight pixels, the last ones of a row or column as much smaller as the picture
 * asks for. A histogram begins histogramStride bytes after the one before it, rounded down to whole counts; 0 means
 * 1024, one after the other, and less is refused; so is a row of cells whose histograms have 2^32 bytes or more. */
RVK_API rvkStatus rvkImageSpatialHistogramu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint32_t cellWidth, uint32_t cellHeight,
                                                uint32_t* histograms, uint32_t histogramStride);

/* Makes all grey values about equally frequent: a pixel v becomes floor(255 * c / n + 1 / 2), where c of the picture's
 * n pixels are v or less. `dst` may be `src` when the strides are equal. Pictures have at most 2^32 - 1 pixels. It may
 * run on the DSP only when pointers, strides and the width are multiples of 8. */
RVK_API void rvkImageHistogramEqualizeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t* dst, uint32_t dstStride);

/* dst = table[src], for a table of 256 bytes. `dst` may be `src` when the strides are equal. It may run on the DSP only
 * when the pointers of images, strides and the width are multiples of 8. */
RVK_API rvkStatus rvkTableLookupu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   const uint8_t* table, uint8_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

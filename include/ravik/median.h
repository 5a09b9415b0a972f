/* Ravik: median filters. They take away single outliers and keep edges.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. The work may run on the DSP only
 *              when pointers and strides are multiples of 8.
 *   In place   not possible: images must not overlap, and dst == src is refused.
 *   Interior   the pixels whose whole window lies in the picture. The others are the ring.
 *   Result     the exact median: no value appears that is not in the window.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. */
#ifndef RAVIK_MEDIAN_H
#define RAVIK_MEDIAN_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Windows of 3x3. The ring of `dst`, one pixel wide, stays as it is; so does all of a picture that is less than three
 * pixels wide or high. Packed rows. */
RVK_API void rvkFilterMedian3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst);

/* The same with strides. A `dstStride` below the width makes rows overlap: their contents are then unspecified, but
 * nothing outside them is touched. */
RVK_API void rvkFilterMedian3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);

/* The same with a choice of border: RAVIK_BORDER_CONSTANT takes `borderValue` for the pixels outside the picture,
 * RAVIK_BORDER_REPLICATE the nearest pixel inside; both fill the ring, too. Any other type leaves it as it is. */
RVK_API rvkStatus rvkFilterMedian3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue);

/* Windows M pixels wide and N high, odd or even, from 1 to the size of the picture; the first column and row are M / 2
 * and N / 2 before the pixel's own. Of an even number of values the lower one in the middle counts. The ring, M / 2
 * columns and N / 2 rows at each side, is copied from `src`.
 *
 * The vector implementations have sorting networks for 3x3 and 5x5; in other windows they bisect the range of the
 * values and count the whole window at each step. The reference selects in M * N elements of scratch memory (Hoare,
 * "Algorithm 65: Find", 1961), as do they where the window has more than 65535 pixels or the interior is narrower than
 * a vector: RAVIK_ENORES, and nothing written, when it cannot be had. Windows of 2^31 pixels or more are refused. */
RVK_API rvkStatus rvkFilterMedianMxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint32_t M, uint32_t N, int16_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

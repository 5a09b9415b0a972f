/* Ravik: copies of pictures and of turned patches of them.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows.
 *   Alignment  none is needed. rvkCopy may run on the DSP only when pointers, strides and the width are multiples of 8.
 *   In place   images must not overlap.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. Rows longer than their stride are refused. */
#ifndef RAVIK_COPY_H
#define RAVIK_COPY_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* dst = src. What lies between the rows of the destination stays as it is. */
RVK_API void rvkCopy(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride);

/* The patch of 17 x 17 pixels around (x, y), turned by `orientation` steps of 10 degrees, 0 to 35, as an orientation
 * from the x axis towards the y axis asks for it: the patch's pixel i columns and j rows from its centre, both -8 to 8,
 * is the picture's pixel nearest to
 *     (x + i * cos - j * sin, y + i * sin + j * cos),
 * halves rounded up, with sine and cosine in 14 fraction bits. The rows of `patch` are packed. RAVIK_EFAIL when one of
 * its pixels lies outside of the picture; then nothing is written. */
RVK_API rvkStatus rvkCopyRotated17x17u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint32_t x, uint32_t y, uint32_t orientation, uint8_t* patch);

RVK_EXTERN_C_END

#endif

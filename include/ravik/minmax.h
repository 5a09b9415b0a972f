/* Ravik: smallest and largest element of an image, with their places.
 *
 * Common to all functions of this header:
 *   Result     `*minVal` is the smallest element and (`*minLocX`, `*minLocY`) its column and row; `*maxVal`, `*maxLocX`
 *              and `*maxLocY` tell the same of the largest. Of equal elements the first in row-major order counts.
 *   Shapes     width and height are in elements and at least 1. The stride is in bytes; 0 means packed rows. Strides of
 *              16- and 32-bit images are rounded down to a multiple of the element size.
 *   Alignment  pointers are aligned to their element type; nothing more is needed.
 *   Floats     an element counts only when the comparison with the best so far is true: a NaN replaces nothing, a NaN
 *              as the first element of the image is replaced by nothing (both values are that NaN, both places (0, 0)),
 *              and -0 equals +0. Infinities and subnormal numbers are ordinary values, on every target.
 *   Errors     all six results are required. On bad arguments nothing is written; the first forms log
 *              "Assertion failed @<function>: <condition>", the _v2 forms return RAVIK_EBADPARAM without a log line. */
#ifndef RAVIK_MINMAX_H
#define RAVIK_MINMAX_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The smallest and the largest element and their places. */
RVK_API void rvkMinMaxLocu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint8_t* minVal, uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                            uint32_t* maxLocY);
RVK_API void rvkMinMaxLocu16(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint16_t* minVal, uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY);
RVK_API void rvkMinMaxLocs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int16_t* minVal, int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                             uint32_t* maxLocY);
RVK_API void rvkMinMaxLocu32(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t* minVal, uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY);
RVK_API void rvkMinMaxLocs32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             int32_t* minVal, int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY, uint32_t* maxLocX,
                             uint32_t* maxLocY);
RVK_API void rvkMinMaxLocf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             float32_t* minVal, float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                             uint32_t* maxLocX, uint32_t* maxLocY);

/* The same with a status: RAVIK_SUCCESS, or RAVIK_EBADPARAM on bad arguments. */
RVK_API rvkStatus rvkMinMaxLocu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* minVal, uint8_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                    uint32_t* maxLocX, uint32_t* maxLocY);
RVK_API rvkStatus rvkMinMaxLocu16_v2(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint16_t* minVal, uint16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                     uint32_t* maxLocX, uint32_t* maxLocY);
RVK_API rvkStatus rvkMinMaxLocs16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     int16_t* minVal, int16_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                     uint32_t* maxLocX, uint32_t* maxLocY);
RVK_API rvkStatus rvkMinMaxLocu32_v2(const uint32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint32_t* minVal, uint32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                     uint32_t* maxLocX, uint32_t* maxLocY);
RVK_API rvkStatus rvkMinMaxLocs32_v2(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     int32_t* minVal, int32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                     uint32_t* maxLocX, uint32_t* maxLocY);
RVK_API rvkStatus rvkMinMaxLocf32_v2(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     float32_t* minVal, float32_t* maxVal, uint32_t* minLocX, uint32_t* minLocY,
                                     uint32_t* maxLocX, uint32_t* maxLocY);

RVK_EXTERN_C_END

#endif

/* Ravik: magnitude and direction of gradients, weights of edges.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows. Strides of
 *              16-bit images are rounded down to a multiple of 2.
 *   Gradients  a plane dx and a plane dy, as the planar functions of gradient.h write them, each with its own stride.
 *              All values are allowed, -32768 too.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. The work may run on the DSP only
 *              when pointers and strides are multiples of 8.
 *   In place   16-bit results may replace a source whose stride they share; another stride is refused. Otherwise images
 *              must not overlap.
 *   Errors     RAVIK_EBADPARAM on bad arguments; nothing is written then. */
#ifndef RAVIK_MAGNITUDE_H
#define RAVIK_MAGNITUDE_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* dst = sqrt(dx^2 + dy^2), rounded to the nearest integer (a sum of squares never has its root halfway between two) and
 * saturated to 32767. Exact. */
RVK_API rvkStatus rvkMagnitudes16(const int16_t* dx, uint32_t width, uint32_t height, uint32_t dxStride,
                                  const int16_t* dy, uint32_t dyStride, int16_t* dst, uint32_t dstStride);

/* dst = the angle from the direction of dx towards that of dy, atan2(dy, dx), in 1/256 of a full turn, rounded to the
 * nearest and modulo 256: 0 for (1, 0), 64 for (0, 1), 128 for (-1, 0), 192 for (0, -1). As dy points down the picture,
 * angles grow clockwise. Exact: the rounding is that of the true angle, which never lies halfway between two. Where dx
 * and dy are 0 there is no direction; dst is 0 there. */
RVK_API rvkStatus rvkPhases16(const int16_t* dx, uint32_t width, uint32_t height, uint32_t dxStride, const int16_t* dy,
                              uint32_t dyStride, uint8_t* dst, uint32_t dstStride);

/* Weights a plane of signed edge values (a derivative, or a picture less its smoothed copy) for edge enhancement:
 * coring, gain and limit. What does not exceed `threshold` counts as noise and becomes 0, and edges lose as much, so
 * that there is no jump; then they are weighted and limited:
 *
 *     dst = sign(src) * min((max(|src| - threshold, 0) * weight + 128) / 256, limit)        the quotient rounded down
 *
 * weight is in 1/256: 256 keeps sizes, up to nearly 256 times. A limit above 32767 is one of 32767. (Soft thresholding:
 * Donoho, "De-noising by soft-thresholding", 1995.) */
RVK_API rvkStatus rvkEdgeWeightings16(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                      uint16_t threshold, uint16_t weight, uint16_t limit, int16_t* dst,
                                      uint32_t dstStride);

RVK_EXTERN_C_END

#endif

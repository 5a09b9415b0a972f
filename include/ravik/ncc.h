/* Ravik: normalised cross-correlation: where in a picture a patch fits best, whatever the light.
 *
 * Lewis, "Fast Normalized Cross-Correlation", 1995, with the means removed. Of a patch p of n pixels and the window i
 * of the picture under it,
 *     score = N / sqrt(P I),  N = n sum(p i) - sum(p) sum(i),
 *     P = n sum(p p) - sum(p)^2,  I = n sum(i i) - sum(i)^2,
 * which is 1 where the window is the patch, brighter or darker and with more or less contrast, and -1 where it is its
 * negative. N, P and I are whole numbers; they are converted to double, and the product, its root and the quotient
 * rounded as IEEE double precision says.
 *
 * Common to all functions of this header:
 *   Shapes     pixels are bytes. Widths and heights are in pixels, strides in bytes; 0 means packed rows.
 *   Positions  a position is the pixel of the picture under the patch's pixel (patchWidth / 2, patchHeight / 2), (4, 4)
 *              of 8x8. Only those count where the whole patch lies in the picture; they are tried row by row.
 *   Result     the first position with the greatest score, bestX and bestY, and the score, bestScore, rounded to float.
 *              Windows of one grey level, I = 0, are left out. With no position to try, or a patch of one grey level,
 *              the position is (0xFFFFFFFF, 0xFFFFFFFF) and the score 0.
 *   Alignment  pixels may stand anywhere. The work of the 8x8 forms may run on the DSP only when the patch, the picture
 *              and their strides are multiples of 8.
 *   Overlap    inputs may overlap; results must not overlap anything.
 *   Errors     null pointers, sizes of 0, strides shorter than a row, pictures smaller than the patch: -1 from the 8x8
 *              forms and RAVIK_EBADPARAM from the other, and nothing is written. */
#ifndef RAVIK_NCC_H
#define RAVIK_NCC_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* A patch of 8x8 pixels around a point, which may lie outside of the picture: at all positions that are at most
 * `radius` away from it, (x - centerX)^2 + (y - centerY)^2 <= radius^2, or at most `radius` columns and rows. A radius
 * of 0 is the point itself. The results are 0 when a position was found, 1 when there was nothing to compare, and -1.
 * Without strides, patch and picture are packed. */
RVK_API int32_t rvkNCCPatchOnCircle8x8u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                         uint32_t srcHeight, uint32_t centerX, uint32_t centerY, uint32_t radius,
                                         uint32_t* bestX, uint32_t* bestY, float32_t* bestScore);
RVK_API int32_t rvkNCCPatchOnCircle8x8u8_v2(const uint8_t* patch, uint32_t patchStride, const uint8_t* src,
                                            uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t centerX,
                                            uint32_t centerY, uint32_t radius, uint32_t* bestX, uint32_t* bestY,
                                            float32_t* bestScore);
RVK_API int32_t rvkNCCPatchOnSquare8x8u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                         uint32_t srcHeight, uint32_t centerX, uint32_t centerY, uint32_t radius,
                                         uint32_t* bestX, uint32_t* bestY, float32_t* bestScore);
RVK_API int32_t rvkNCCPatchOnSquare8x8u8_v2(const uint8_t* patch, uint32_t patchStride, const uint8_t* src,
                                            uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t centerX,
                                            uint32_t centerY, uint32_t radius, uint32_t* bestX, uint32_t* bestY,
                                            float32_t* bestScore);

/* patchCount patches of one size, one below the other: patch k begins at row k * patchHeight of `patches`. Each is
 * looked for at the positions inside a rectangle from (rectX, rectY) on, which may reach beyond the picture, and gets
 * its own element of the three lists of results, bestScores among them. Nothing to compare is success. A patch has
 * 65536 pixels at most; more are RAVIK_EBADPARAM. RAVIK_ENORES when there is no scratch memory; nothing is written
 * then. */
RVK_API rvkStatus rvkNCCPatchesOnRectu8(const uint8_t* patches, uint32_t patchCount, uint32_t patchWidth,
                                        uint32_t patchHeight, uint32_t patchStride, const uint8_t* src,
                                        uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t rectX,
                                        uint32_t rectY, uint32_t rectWidth, uint32_t rectHeight, uint32_t* bestX,
                                        uint32_t* bestY, float32_t* bestScores);

RVK_EXTERN_C_END

#endif

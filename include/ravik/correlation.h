/* Ravik: correlation and convolution with kernels of the caller.
 *
 * Correlation weighs the window around a pixel with the kernel as it is given; convolution with the kernel turned by
 * 180 degrees. A separable kernel is given as a row of weights and a column of weights; the weight of a pixel is the
 * product of the two.
 *
 * Common to all functions of this header:
 *   Shapes       widths and heights are in pixels. Strides are in bytes; 0 means packed rows. Strides of 16- and 32-bit
 *                images are rounded down to a multiple of the element size. Functions without strides work on packed
 *                rows.
 *   Kernels      M columns by N rows, or N by N; both odd, from 1 to the width and the height of the picture. Weights
 *                stand row by row. kernelX has the M weights of a row, kernelY the N weights of a column.
 *   Border       the whole picture is written. Pixels outside it take the value of the nearest pixel inside.
 *                (rvkConvValids16 writes the pixels whose window lies in the picture and no others.)
 *   Fixed point  products are summed in 32 bits and the sum is shifted right arithmetically, which rounds down; the
 *                result saturates where it is stored. So weights are numbers times 2^shift; shifts are 0 to 31. Sums
 *                wrap modulo 2^32: none does as long as the magnitudes of the weights add up to at most 65535 (16-bit
 *                pictures) or 8421504 (8-bit pictures). Separable filters first sum along the rows: these sums, shifted
 *                right by shiftX, saturate to 16 bits. Their sums down the columns are shifted right by shiftY. Where
 *                the row sums fit 16 bits as they are, a shiftX of 0 with the whole shift in shiftY keeps the result
 *                exact.
 *   Alignment    pointers are aligned to their element type; nothing more is needed. The work may run on the DSP only
 *                when pointers and strides are multiples of 8 (8-bit sources) or 4 (16-bit sources).
 *   In place     not possible: images must not overlap, and dst == src is refused.
 *   Errors       RAVIK_EBADPARAM for bad arguments, without a log line, and for images of 2^32 bytes or more (stride
 *                times height). RAVIK_ENORES when scratch memory cannot be had; it grows with the width of the picture
 *                and the size of the kernel, not with the height. In either case nothing is written. */
#ifndef RAVIK_CORRELATION_H
#define RAVIK_CORRELATION_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Correlation of an 8-bit picture with a kernel of 3x3 signed bytes. From 3x3 pixels. */
RVK_API rvkStatus rvkFilterCorr3x3s8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, const int8_t* kernel,
                                     uint32_t shift, uint8_t* dst);
RVK_API rvkStatus rvkFilterCorr3x3s8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        const int8_t* kernel, uint32_t shift, uint8_t* dst, uint32_t dstStride);

/* Correlation with an N x N kernel, to 8 or 16 bits. */
RVK_API rvkStatus rvkFilterCorrNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     const int16_t* kernel, uint32_t N, uint32_t shift, uint8_t* dst,
                                     uint32_t dstStride);
RVK_API rvkStatus rvkFilterCorrNxNu8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        const int16_t* kernel, uint32_t N, uint32_t shift, int16_t* dst,
                                        uint32_t dstStride);

/* Correlation with an N x N kernel in single precision: products rounded, then added one after the other in the order
 * of the weights, from 0 on. */
RVK_API rvkStatus rvkFilterCorrNxNu8f32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        const float32_t* kernel, uint32_t N, float32_t* dst, uint32_t dstStride);

/* Convolution with an M x N kernel, to 8 or 16 bits. */
RVK_API rvkStatus rvkFilterConvolveMxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, uint8_t* dst,
                                         uint32_t dstStride);
RVK_API rvkStatus rvkFilterConvolveMxNu8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, const int16_t* kernel, uint32_t M, uint32_t N,
                                            uint32_t shift, int16_t* dst, uint32_t dstStride);

/* Convolution of a 16-bit picture with an M x N kernel where the kernel lies wholly in the picture: dst has
 * srcWidth - M + 1 by srcHeight - N + 1 elements, the first of which belongs to the window in the picture's first
 * corner. A dstStride of 0 means packed rows of that width. */
RVK_API rvkStatus rvkConvValids16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, int16_t* dst,
                                  uint32_t dstStride);

/* Separable correlation of 8-bit pictures. */
RVK_API rvkStatus rvkFilterCorrSepMxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N,
                                        uint32_t shiftX, uint32_t shiftY, uint8_t* dst, uint32_t dstStride);

/* Separable convolution and correlation of 16-bit pictures. */
RVK_API rvkStatus rvkFilterConvSepMxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N,
                                         uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkFilterCorrSepNxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         const int16_t* kernelX, const int16_t* kernelY, uint32_t N, uint32_t shiftX,
                                         uint32_t shiftY, int16_t* dst, uint32_t dstStride);

/* The same for fixed sizes of the kernel, which picture and weights must have at least. */
RVK_API rvkStatus rvkFilterCorrSep9x9s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                         const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX,
                                         uint32_t shiftY, int16_t* dst);
RVK_API rvkStatus rvkFilterCorrSep9x9s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                            uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkFilterCorrSep11x11s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX,
                                           uint32_t shiftY, int16_t* dst);
RVK_API rvkStatus rvkFilterCorrSep11x11s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                              uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkFilterCorrSep13x13s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX,
                                           uint32_t shiftY, int16_t* dst);
RVK_API rvkStatus rvkFilterCorrSep13x13s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                              uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkFilterCorrSep15x15s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX,
                                           uint32_t shiftY, int16_t* dst);
RVK_API rvkStatus rvkFilterCorrSep15x15s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                              uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkFilterCorrSep17x17s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX,
                                           uint32_t shiftY, int16_t* dst);
RVK_API rvkStatus rvkFilterCorrSep17x17s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                              uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

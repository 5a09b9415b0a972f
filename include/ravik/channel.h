/* Ravik: sampling and layout of YCbCr pictures, and the channels of interleaved pixels.
 *
 * Formats are those of color.h. Common to all functions of this header:
 *   Shapes     `srcWidth` and `srcHeight` are in pixels of the picture and at least 1, odd ones too. Strides are in
 *              bytes; 0 means packed rows. Planes of halved chroma are (srcWidth + 1) / 2 samples wide, and where it is
 *              halved vertically (srcHeight + 1) / 2 high.
 *   Alignment  none is needed. The work may run on the DSP only when pointers and strides are multiples of 8.
 *   In place   rvkColorCbCrSwapu8, with equal strides. Otherwise images must not overlap,
 *              destinations among each other neither; pictures side by side in rows of one stride do not.
 *   Errors     null pointers, empty images, strides below a row of their plane and images that overlap are refused:
 *              "Assertion failed @<function>: <condition>" is logged and nothing is written. Functions with a status
 *              return RAVIK_EBADPARAM then, otherwise RAVIK_SUCCESS. */
#ifndef RAVIK_CHANNEL_H
#define RAVIK_CHANNEL_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* YCbCr in another sampling or layout. Luma is copied. More chroma is made by repeating samples; less by the mean of
 * the samples that go into one, 2 or 4 or as many as there are at the edges, rounded, halves upward. */
RVK_API void rvkColorYCbCr444PlanarToYCbCr422Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                      const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dstY,
                                                      uint32_t dstYStride, uint8_t* dstCb, uint32_t dstCbStride,
                                                      uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorYCbCr444PlanarToYCbCr420Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                      const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dstY,
                                                      uint32_t dstYStride, uint8_t* dstCb, uint32_t dstCbStride,
                                                      uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorYCbCr444PlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr444PlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr444PlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr422PlanarToYCbCr444Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                      const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dstY,
                                                      uint32_t dstYStride, uint8_t* dstCb, uint32_t dstCbStride,
                                                      uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorYCbCr422PlanarToYCbCr420Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                      const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dstY,
                                                      uint32_t dstYStride, uint8_t* dstCb, uint32_t dstCbStride,
                                                      uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorYCbCr422PlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr422PlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr422PlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr420PlanarToYCbCr444Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                      const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dstY,
                                                      uint32_t dstYStride, uint8_t* dstCb, uint32_t dstCbStride,
                                                      uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorYCbCr420PlanarToYCbCr422Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, const uint8_t* srcCb, uint32_t srcCbStride,
                                                      const uint8_t* srcCr, uint32_t srcCrStride, uint8_t* dstY,
                                                      uint32_t dstYStride, uint8_t* dstCb, uint32_t dstCbStride,
                                                      uint8_t* dstCr, uint32_t dstCrStride);
RVK_API void rvkColorYCbCr420PlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr420PlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr420PlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcCb,
                                                            uint32_t srcCbStride, const uint8_t* srcCr,
                                                            uint32_t srcCrStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstC, uint32_t dstCStride);
RVK_API void rvkColorYCbCr444PseudoPlanarToYCbCr444Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr444PseudoPlanarToYCbCr422Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr444PseudoPlanarToYCbCr420Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr444PseudoPlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth,
                                                                  uint32_t srcHeight, uint32_t srcYStride,
                                                                  const uint8_t* srcC, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint32_t dstYStride, uint8_t* dstC,
                                                                  uint32_t dstCStride);
RVK_API void rvkColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth,
                                                                  uint32_t srcHeight, uint32_t srcYStride,
                                                                  const uint8_t* srcC, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint32_t dstYStride, uint8_t* dstC,
                                                                  uint32_t dstCStride);
RVK_API void rvkColorYCbCr422PseudoPlanarToYCbCr444Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr422PseudoPlanarToYCbCr422Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr422PseudoPlanarToYCbCr420Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr422PseudoPlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth,
                                                                  uint32_t srcHeight, uint32_t srcYStride,
                                                                  const uint8_t* srcC, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint32_t dstYStride, uint8_t* dstC,
                                                                  uint32_t dstCStride);
RVK_API void rvkColorYCbCr422PseudoPlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth,
                                                                  uint32_t srcHeight, uint32_t srcYStride,
                                                                  const uint8_t* srcC, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint32_t dstYStride, uint8_t* dstC,
                                                                  uint32_t dstCStride);
RVK_API void rvkColorYCbCr420PseudoPlanarToYCbCr444Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr420PseudoPlanarToYCbCr422Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr420PseudoPlanarToYCbCr420Planaru8(const uint8_t* srcY, uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, const uint8_t* srcC,
                                                            uint32_t srcCStride, uint8_t* dstY, uint32_t dstYStride,
                                                            uint8_t* dstCb, uint32_t dstCbStride, uint8_t* dstCr,
                                                            uint32_t dstCrStride);
RVK_API void rvkColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth,
                                                                  uint32_t srcHeight, uint32_t srcYStride,
                                                                  const uint8_t* srcC, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint32_t dstYStride, uint8_t* dstC,
                                                                  uint32_t dstCStride);
RVK_API void rvkColorYCbCr420PseudoPlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, uint32_t srcWidth,
                                                                  uint32_t srcHeight, uint32_t srcYStride,
                                                                  const uint8_t* srcC, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint32_t dstYStride, uint8_t* dstC,
                                                                  uint32_t dstCStride);

/* The bytes of each pair change places: CbCr becomes CrCb. Widths are in pairs. */
RVK_API void rvkColorCbCrSwapu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride);

/* Planes to interleaved pixels, whose first bytes are of the first plane, and back. Widths are in pixels. */
RVK_API void rvkInterleaveu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                             const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride);
RVK_API void rvkDeinterleaveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst1, uint32_t dst1Stride, uint8_t* dst2, uint32_t dst2Stride);
RVK_API rvkStatus rvkChannelCombine2Planesu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t src1Stride, const uint8_t* src2, uint32_t src2Stride,
                                             uint8_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkChannelCombine3Planesu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t src1Stride, const uint8_t* src2, uint32_t src2Stride,
                                             const uint8_t* src3, uint32_t src3Stride, uint8_t* dst,
                                             uint32_t dstStride);
RVK_API rvkStatus rvkChannelCombine4Planesu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t src1Stride, const uint8_t* src2, uint32_t src2Stride,
                                             const uint8_t* src3, uint32_t src3Stride, const uint8_t* src4,
                                             uint32_t src4Stride, uint8_t* dst, uint32_t dstStride);

/* One channel of a picture as a plane. `format` is one of RAVIK_FORMAT_x, `channel` one of RAVIK_CHANNEL_x that the
 * format has: R, G, B of RGB and RGBA, and A of RGBA, else Y, U (Cb), V (Cr). NV12 and NV21 have their luma in `src1`
 * and the pairs of chroma, Cb first and Cr first, in `src2`; all others are in `src1` alone, and `src2` and
 * `src2Stride` are not looked at. UYVY and YUYV hold two pixels in four bytes, in the order of their names; rows of odd
 * width end with a whole group. `srcWidth` and `srcHeight` measure the picture; planes of chroma are (srcWidth + 1) / 2
 * wide, and of NV12 and NV21 (srcHeight + 1) / 2 high. Another format, or a channel that it does not have, is
 * refused. */
RVK_API rvkStatus rvkChannelExtractu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                                      const uint8_t* src2, uint32_t src2Stride, uint32_t format, uint32_t channel,
                                      uint8_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

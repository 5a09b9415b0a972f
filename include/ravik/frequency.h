/* Ravik: frequency transforms and wavelets: cosine transforms of blocks, Fourier transforms, the 5/3 and Haar wavelets.
 *
 * Common to all functions of this header:
 *   Shapes     `srcWidth` and `srcHeight` are in pixels, pairs or coefficients and at least 1; some must be multiples
 *              or powers of two, as said below. Strides are in bytes; 0 means packed rows. Strides of 16- and 32-bit
 *              data are rounded down to a multiple of the element size. A row has less than 2^32 bytes.
 *   Order      the results of wavelets lie in quadrants, low frequencies first:
 *
 *                  LL HL        HL: high across, low down. Of N samples ceil(N / 2) are low, floor(N / 2) high.
 *                  LH HH
 *
 *   Transposed forward forms write the transpose of the coefficients; inverse forms take that transpose and give the
 *              upright picture. `dst` is `srcHeight` wide and `srcWidth` high then.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. All but Fourier transforms may run
 *              on the DSP only when pointers, strides and `srcWidth` are multiples of 8.
 *   In place   the 5/3 wavelets that are not transposed, with `dst` equal to `src` and equal strides. Other functions
 *              refuse `dst` equal to `src`. Otherwise images must not overlap.
 *   Errors     RAVIK_EBADPARAM on bad arguments, RAVIK_ENORES when there is no scratch memory; nothing is written then.
 *   Same bits  all but Fourier transforms give the same bits everywhere. */
#ifndef RAVIK_FREQUENCY_H
#define RAVIK_FREQUENCY_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* The orthonormal DCT-II of each block of 8x8 pixels (ITU-T T.81, A.3.3, without its level shift: the coefficient of
 * zero frequency is 8 times the mean). A block's coefficients lie where its pixels are; the row is the vertical
 * frequency. Rounded; within 1 of the exact value, 0.7 in fact. Width and height are multiples of 8. */
RVK_API rvkStatus rvkDCTu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                           uint32_t dstStride);

/* The inverse of rvkDCTu8. Coefficients are clamped to -2048..2047 first, pixels to 0..255. Rounded; within 1 of the
 * exact value, and within 1.5 in blocks whose coefficients have magnitudes of more than 16384 in all. */
RVK_API rvkStatus rvkIDCTs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride);

/* The discrete Fourier transform of a picture (Cooley and Tukey, "An algorithm for the machine calculation of complex
 * Fourier series", 1965):
 *
 *     F(u, v) = sum of f(x, y) * exp(-2 pi i (u x / srcWidth + v y / srcHeight))
 *
 * not scaled. `dst` gets all srcWidth x srcHeight values as pairs re im; a packed row has 8 * srcWidth bytes. Width and
 * height are powers of two up to 32768. The errors of all values together, as a root of their squares, are at most 1e-6
 * of that of the values. */
RVK_API rvkStatus rvkFFTu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           float32_t* dst, uint32_t dstStride);

/* The inverse of rvkFFTu8: the real part of
 *
 *     f(x, y) = sum of F(u, v) * exp(2 pi i (u x / srcWidth + v y / srcHeight)) / (srcWidth * srcHeight)
 *
 * rounded, halves up, and clamped to 0..255. `src` has pairs re im, of any values: they need not be the transform of a
 * picture. `srcWidth` is in pairs. Within 0.5 + 1e-6 L of the exact value, clamped, where L is the root of the sum of
 * the squares of all exact complex values f. Every picture up to 1024x1024 comes back from its transform unchanged.
 * Where a value of F is infinite or not a number, no f is a number, and all pixels become 0. */
RVK_API rvkStatus rvkIFFTf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride);

/* One level of the reversible 5/3 wavelet (Le Gall and Tabatabai, "Sub-band coding of digital images using symmetric
 * short kernel filters and arithmetic coding techniques", 1988) by lifting, as JPEG 2000 does it:
 *
 *     d[n] = x[2n + 1] - floor((x[2n] + x[2n + 2]) / 2)          high
 *     s[n] = x[2n] + floor((d[n - 1] + d[n] + 2) / 4)            low
 *
 * Samples beyond the ends are those inside, mirrored about the first and the last one. Columns first, then rows; the
 * inverse undoes rows first. A line of one sample stays as it is. Sums have 32 bits, each s and d wraps to 16: the
 * inverse gives back every source. Any width and height. */
RVK_API rvkStatus rvkDWT53Tabs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkIDWT53Tabs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkDWT53TabTransposes16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkIDWT53TabTransposes16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, int16_t* dst, uint32_t dstStride);

/* One level of the Haar wavelet, not scaled, of each block of 2x2 pixels
 *
 *     a b        LL = a + b + c + d        HL = a - b + c - d
 *     c d        LH = a + b - c - d        HH = a - b - c + d
 *
 * Exact. Width and height are even. */
RVK_API rvkStatus rvkDWTHaaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkDWTHaarTransposeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        int16_t* dst, uint32_t dstStride);

/* Its inverse: a = (LL + HL + LH + HH + 2) >> 2 and so on, in 32 bits, clamped to 0..255. Width and height are even. */
RVK_API rvkStatus rvkIDWTHaars16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkIDWTHaarTransposes16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

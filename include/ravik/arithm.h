/* Ravik: sums, differences, products and averages of images, element by element.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows (width x size
 *              of an element). Strides of 16- and 32-bit images are rounded down to a multiple of the element size.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. The work may run on the DSP only
 *              when pointers and strides are multiples of 8 (8- and 16-bit) or 4 (32-bit).
 *   In place   `dst` may be a source of the same element size and stride. Otherwise images must not overlap; where no
 *              source has the element size of `dst`, they never may.
 *   Policy     what becomes of a result that does not fit the destination: RAVIK_POLICY_WRAP keeps its low bits,
 *              RAVIK_POLICY_SATURATE clamps it to the range of the destination.
 *   Scale      multiplies by 2^-scale. With scale >= 1 the exact product is divided by 2^scale and rounded to nearest,
 *              halves upward: (product + 2^(scale-1)) >> scale. With scale <= 0 it is multiplied by 2^-scale. The
 *              policy applies to the exact value of that. Shifts go by the low 8 bits of |scale|: 32..255 give 0
 *              everywhere, and 256 is 0 again.
 *   Errors     null pointers, empty images, strides below a row and unknown policies give RAVIK_EBADPARAM, and nothing
 *              is written. The averages, rvkAdds16, rvkElementMultiplyu8u16 and rvkElementMultiplyf32 also log
 *              "Assertion failed @<function>: <condition>".
 *   Floats     on 32-bit Arm the vector code reads and writes subnormal numbers as zero; everything else is exact
 *              IEEE. */
#ifndef RAVIK_ARITHM_H
#define RAVIK_ARITHM_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* dst = src + scalar. */
RVK_API rvkStatus rvkAddScalarf32(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                  float32_t scalar, float32_t* dst, uint32_t dstStride);

/* dst = src + scalar, clamped to -32768..32767. */
RVK_API rvkStatus rvkAddScalars16(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                  int16_t scalar, int16_t* dst, uint32_t dstStride);

/* dst = min(src2 + s, 65535), s being the scaled square of src1. With scale >= 1 the rounded square is cut to 16 bits
 * before the shift: s = ((src1 * src1 + 2^(scale-1)) mod 65536) >> scale, so that from scale 10 on squares of
 * 65536 - 2^(scale-1) and more wrap. With scale <= 0, s = src1 * src1 * 2^-scale. `dst` may be `src2`. */
RVK_API rvkStatus rvkAddSquaredu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                     const uint16_t* src2, uint32_t src2Stride, int32_t scale, uint16_t* dst,
                                     uint32_t dstStride);

/* dst = src1 * alpha + src2 * beta, rounded to nearest with halves upward, clamped to 0..255. The weights are first
 * rounded to multiples of 1/256, halves away from zero, and clamped to -128..127 255/256; a NaN counts as 0. */
RVK_API rvkStatus rvkAddWeightedu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                   const uint8_t* src2, uint32_t src2Stride, float32_t alpha, float32_t beta,
                                   uint8_t* dst, uint32_t dstStride);

/* dst = src1 + src2. */
RVK_API rvkStatus rvkAddf32(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const float32_t* src2, uint32_t src2Stride, float32_t* dst, uint32_t dstStride);

/* dst = src1 + src2, clamped to -32768..32767. */
RVK_API rvkStatus rvkAdds16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const int16_t* src2, uint32_t src2Stride, int16_t* dst, uint32_t dstStride);

/* dst = src1 + src2 by the policy. */
RVK_API rvkStatus rvkAdds16_v2(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                               const int16_t* src2, uint32_t src2Stride, uint32_t policy, int16_t* dst,
                               uint32_t dstStride);

/* dst = src1 + src2 by the policy. `dst` may be `src1`. */
RVK_API rvkStatus rvkAddu16u8u16(const uint16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                 const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint16_t* dst,
                                 uint32_t dstStride);

/* dst = src1 + src2 by the policy. */
RVK_API rvkStatus rvkAddu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                           const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint8_t* dst, uint32_t dstStride);

/* dst = src1 + src2, exact. */
RVK_API rvkStatus rvkAddu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                              const uint8_t* src2, uint32_t src2Stride, uint16_t* dst, uint32_t dstStride);

/* average = the sum of all pixels, formed in 64 bits and rounded to a float, divided by their number in float
 * arithmetic. */
RVK_API void rvkAverages32(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           float32_t* average);

/* The same with the sum formed modulo 2^32, which holds any image of up to 16843009 pixels (4096 x 4096, for instance);
 * larger ones wrap when they are bright. */
RVK_API void rvkAverageu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          float32_t* average);

/* dst = src1 * src2. */
RVK_API rvkStatus rvkElementMultiplyf32(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                        const float32_t* src2, uint32_t src2Stride, float32_t* dst, uint32_t dstStride);

/* dst = src1 * src2 * 2^-scale by the policy. */
RVK_API rvkStatus rvkElementMultiplys16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                        const int16_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale,
                                        int16_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkElementMultiplyu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                       const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale,
                                       uint8_t* dst, uint32_t dstStride);
RVK_API rvkStatus rvkElementMultiplyu8s16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                          const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale,
                                          int16_t* dst, uint32_t dstStride);

/* dst = src1 * src2, exact. */
RVK_API rvkStatus rvkElementMultiplyu8u16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                          const uint8_t* src2, uint32_t src2Stride, uint16_t* dst, uint32_t dstStride);

/* dst = src * scalar. */
RVK_API rvkStatus rvkMultiplyScalarf32(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       float32_t scalar, float32_t* dst, uint32_t dstStride);

/* dst = src * scalar * 2^-scale, clamped to -32768..32767. */
RVK_API rvkStatus rvkMultiplyScalars16(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       int16_t scalar, int32_t scale, int16_t* dst, uint32_t dstStride);

/* dst = src1 - src2 by the policy. */
RVK_API rvkStatus rvkSubtracts16(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                 const int16_t* src2, uint32_t src2Stride, uint32_t policy, int16_t* dst,
                                 uint32_t dstStride);
RVK_API rvkStatus rvkSubtractu8(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint8_t* dst,
                                uint32_t dstStride);

/* dst = src1 - src2, exact. */
RVK_API rvkStatus rvkSubtractu8s16(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                   const uint8_t* src2, uint32_t src2Stride, int16_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

/* Ravik: image derivatives: central differences, Sobel and Scharr operators.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels. Strides are in bytes; 0 means packed rows. Strides of 16- and 32-bit
 *              images are rounded down to a multiple of the element size. The names without a version do what those
 *              with the lowest version do.
 *   Signs      dx is right minus left, dy is lower row minus upper row.
 *   Outputs    planar: a plane dx and a plane dy of the source's size, with one stride; the derivatives of pixel (x, y)
 *              are at (x, y). Interleaved: pairs dx dy of the pixels that have eight neighbours, and of those only:
 *              srcWidth - 2 pairs in a row, srcHeight - 2 rows, the first of them for pixel (1, 1); packed rows have
 *              that many pairs, too. From 2 pixels wide.
 *   Ring       operators of 3x3 pixels compute the pixels that have eight neighbours. Planes keep their outer ring as
 *              it was, unless the function says otherwise; pictures below 3x3 have nothing else.
 *   Alignment  pointers are aligned to their element type; nothing more is needed. The work may run on the DSP only
 *              when sources and their strides are multiples of 4 and outputs of 8.
 *   In place   not possible unless the function says so: images must not overlap.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. */
#ifndef RAVIK_GRADIENT_H
#define RAVIK_GRADIENT_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* Central differences, not divided: dx = p(x + 1, y) - p(x - 1, y), dy = p(x, y + 1) - p(x, y - 1); -255..255. */
RVK_API void rvkImageGradientInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, int16_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientInterleaveds16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, int16_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientInterleavedf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, float32_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientInterleavedf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, float32_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientPlanars16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       int16_t* dx, int16_t* dy, uint32_t dxyStride);
RVK_API void rvkImageGradientPlanars16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          int16_t* dx, int16_t* dy, uint32_t dxyStride);
RVK_API void rvkImageGradientPlanarf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       float32_t* dx, float32_t* dy, uint32_t dxyStride);
RVK_API void rvkImageGradientPlanarf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          float32_t* dx, float32_t* dy, uint32_t dxyStride);

/* The Sobel operator, 3x3: differences across, weighted 1 2 1 along; -1020..1020. The 16-bit forms up to _v2 and the
 * 8-bit forms store the sums divided by 8 and rounded down; -128..127. */
RVK_API void rvkImageGradientSobelInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, int16_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientSobelInterleaveds16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, int16_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientSobelPlanars16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, int16_t* dx, int16_t* dy, uint32_t dxyStride);
RVK_API void rvkImageGradientSobelPlanars16_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, int16_t* dx, int16_t* dy, uint32_t dxyStride);
RVK_API void rvkImageGradientSobelPlanars8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, int8_t* dx, int8_t* dy, uint32_t dxyStride);
RVK_API void rvkImageGradientSobelPlanars8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, int8_t* dx, int8_t* dy, uint32_t dxyStride);

/* The same sums, not divided. */
RVK_API rvkStatus rvkImageGradientSobelInterleaveds16_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                         uint32_t srcStride, int16_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientSobelInterleavedf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, float32_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientSobelInterleavedf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, float32_t* gradients, uint32_t gradStride);
RVK_API void rvkImageGradientSobelPlanarf32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, float32_t* dx, float32_t* dy, uint32_t dxyStride);
RVK_API void rvkImageGradientSobelPlanarf32_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, float32_t* dx, float32_t* dy, uint32_t dxyStride);

/* The same of either plane alone, too: a null pointer leaves that plane out. RAVIK_EBADPARAM when both are null. */
RVK_API rvkStatus rvkImageGradientSobelPlanars16_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, int16_t* dx, int16_t* dy, uint32_t dxyStride);

/* The same of a picture of floats: dx = (upper difference + 2 * middle difference) + lower difference, dy = (left
 * difference + 2 * middle difference) + right difference, each operation rounded to float. On 32-bit Arm the vector
 * code takes subnormal numbers as zero. */
RVK_API void rvkImageGradientSobelPlanarf32f32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, float32_t* dx, float32_t* dy, uint32_t dxyStride);
RVK_API void rvkImageGradientSobelPlanarf32f32_v2(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                  uint32_t srcStride, float32_t* dx, float32_t* dy, uint32_t dxyStride);

/* The Scharr operator, 3x3: as the Sobel operator with the weights 3 10 3, not divided; -4080..4080. (Scharr, "Optimal
 * operators in digital image processing", 2000.) */
RVK_API void rvkImageGradientScharrInterleaveds16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                  uint32_t srcStride, int16_t* gradients, uint32_t gradStride);

/* Edge strength: min(|dx| + |dy|, 255) of the Sobel sums, a plane of the source's size. */
RVK_API void rvkFilterSobel3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride);
RVK_API void rvkFilterSobel3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride);

/* Sobel derivatives of 3x3, 5x5 and 7x7 pixels with a choice of border, planar. Each is separable: smoothing weights
 * along, differences across the direction of the derivative, not divided; 7x7 sums beyond -32768..32767 saturate.
 *
 *     size   smoothing           differences (right minus left, lower minus upper)
 *     3      1 2 1               1 * 1 pixel away
 *     5      1 4 6 4 1           1 * 2 pixels away + 2 * 1 pixel away
 *     7      1 6 15 20 15 6 1    1 * 3 pixels away + 4 * 2 pixels away + 5 * 1 pixel away
 *
 * borderType: RAVIK_BORDER_CONSTANT takes `borderValue` for the pixels outside the picture, RAVIK_BORDER_REPLICATE the
 * nearest pixel inside; both compute the whole plane, from 1x1 pixels. Any other type computes the pixels whose window
 * lies in the picture and leaves the ring of the planes as it is.
 *
 * A null pointer leaves that plane out; RAVIK_EFAIL when both are null. */
RVK_API rvkStatus rvkFilterSobel3x3u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                         uint8_t borderValue);
RVK_API rvkStatus rvkFilterSobel5x5u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                         uint8_t borderValue);
RVK_API rvkStatus rvkFilterSobel7x7u8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         int16_t* dx, int16_t* dy, uint32_t dxyStride, uint32_t borderType,
                                         uint8_t borderValue);

RVK_EXTERN_C_END

#endif

/* Ravik: thresholds.
 *
 * Common to all functions of this header:
 *   Shapes     widths and heights are in pixels and at least 1. Strides are in bytes; 0 means packed rows.
 *   Alignment  none is needed. The work may run on the DSP only when pointers, strides and the width are multiples of
 *              8.
 *   In place   `dst` may be `src` when the strides are equal. Otherwise images must not overlap.
 *   Errors     functions without a result log "Assertion failed @<function>: <condition>" on bad arguments, the others
 *              return RAVIK_EBADPARAM; in either case nothing is written. Rows longer than their stride are refused. */
#ifndef RAVIK_THRESHOLD_H
#define RAVIK_THRESHOLD_H

#include "types.h"

RVK_EXTERN_C_BEGIN

/* How a comparison becomes a picture. */
#define RAVIK_THRESHOLD_BINARY 0u         /* the maximum value where the pixel passes, else 0 */
#define RAVIK_THRESHOLD_BINARY_INVERSE 1u /* 0 where the pixel passes, else the maximum value */

/* dst = 255 where src >= threshold, else 0. Thresholds above 255 count as 255, so that pixels of 255 always pass;
 * those of 2^31 and above are refused. */
RVK_API void rvkFilterThresholdu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t threshold);

/* The same; the strides must be equal. */
RVK_API void rvkFilterThresholdu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, uint32_t threshold);

/* dst = trueValue where src > threshold, else falseValue. Nothing exceeds a threshold of 255 or more. */
RVK_API rvkStatus rvkFilterThresholdu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstStride, uint32_t threshold, uint8_t trueValue,
                                          uint8_t falseValue);

/* dst = 255 where lowThreshold <= src <= highThreshold, else 0. A range whose low end is above its high end is empty.
 */
RVK_API rvkStatus rvkFilterThresholdRangeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold,
                                            uint32_t highThreshold);

/* dst = trueValue where lowThreshold <= src <= highThreshold, else falseValue. */
RVK_API rvkStatus rvkFilterThresholdRangeu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                               uint32_t lowThreshold, uint32_t highThreshold, uint8_t trueValue,
                                               uint8_t falseValue);

/* dst = 255 where src >= T, else 0, with the threshold T that separates the picture's pixels best: the variance between
 * the class below T and the class from T on is the largest (Otsu, "A Threshold Selection Method from Gray-Level
 * Histograms", 1979); of several such T the smallest. A picture of one value has no two classes: T is 1. The largest T
 * is 255. With a thresholdType of RAVIK_THRESHOLD_BINARY_INVERSE 255 and 0 change places; any other type is binary.
 *
 * The strides must be equal. Pictures have at most 2^31 - 1 pixels. Large ones are faster with 128 KiB of scratch
 * memory; without it the result is the same. */
RVK_API void rvkFilterThresholdOtsuu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride, uint32_t thresholdType);

/* Adaptive thresholds: a pixel passes when it is above the mean of its window less `value`, src > mean - value, in
 * exact integers. RAVIK_THRESHOLD_BINARY gives `maxValue` where it passes, else 0, RAVIK_THRESHOLD_BINARY_INVERSE 0
 * where it passes, else `maxValue`. With any other type all dstStride x srcHeight bytes of the destination become 0,
 * those behind the rows, too. dst == src is refused, and so are destinations above 2^32 - 1 bytes.
 *
 * The mean is that of rvkFilterGaussian3x3u8 and so on with blurBorder 1: at the edges of the picture the mean of the
 * pixels that exist. From 2x2, 5x5 and 11x11 pixels. */
RVK_API void rvkAdaptiveThresholdGaussian3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                               int32_t value, uint8_t* dst, uint32_t dstStride);
RVK_API void rvkAdaptiveThresholdGaussian5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                               int32_t value, uint8_t* dst, uint32_t dstStride);
RVK_API void rvkAdaptiveThresholdGaussian11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                                 int32_t value, uint8_t* dst, uint32_t dstStride);

/* The mean is that of rvkBoxFilter3x3u8 and so on: pixels outside the picture count as 0, so that at the edges more
 * pixels pass. From 3x3, 5x5 and 11x11 pixels. */
RVK_API void rvkAdaptiveThresholdMean3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType, int32_t value,
                                           uint8_t* dst, uint32_t dstStride);
RVK_API void rvkAdaptiveThresholdMean5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType, int32_t value,
                                           uint8_t* dst, uint32_t dstStride);
RVK_API void rvkAdaptiveThresholdMean11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                             int32_t value, uint8_t* dst, uint32_t dstStride);

RVK_EXTERN_C_END

#endif

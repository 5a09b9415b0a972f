// Thresholds by three drivers of either room: `threshold` tells pixels from `least` on from the others, `range` those
// from low to high, `adaptive` compares pixels with the picture that a filter writes to the destination.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

decltype(::rvkFilterGaussian3x3u8_v2) RVK_FORM(rvkFilterGaussian3x3u8_v2);
decltype(::rvkFilterGaussian5x5u8_v2) RVK_FORM(rvkFilterGaussian5x5u8_v2);
decltype(::rvkFilterGaussian11x11u8_v2) RVK_FORM(rvkFilterGaussian11x11u8_v2);
decltype(::rvkBoxFilter3x3u8) RVK_FORM(rvkBoxFilter3x3u8);
decltype(::rvkBoxFilter5x5u8) RVK_FORM(rvkBoxFilter5x5u8);
decltype(::rvkBoxFilter11x11u8) RVK_FORM(rvkBoxFilter11x11u8);

void RVK_FORM(rvkFilterThresholdu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride, uint32_t value)
{
    threshold(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, value < 255 ? value : 255, 255, 0);
}

void RVK_FORM(rvkFilterThresholdu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, uint32_t value)
{
    RVK_FORM(rvkFilterThresholdu8)(src, srcWidth, srcHeight, srcStride, dst, dstStride, value);
}

rvkStatus RVK_FORM(rvkFilterThresholdu8_v3)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                            uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint32_t value,
                                            uint8_t trueValue, uint8_t falseValue)
{
    threshold(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, value < 255 ? value + 1 : 256, trueValue,
              falseValue);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkFilterThresholdRangeu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                              uint32_t lowThreshold, uint32_t highThreshold)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, lowThreshold, highThreshold, 255, 0);
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkFilterThresholdRangeu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, uint8_t* dst, uint32_t dstStride,
                                                 uint32_t lowThreshold, uint32_t highThreshold, uint8_t trueValue,
                                                 uint8_t falseValue)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, lowThreshold, highThreshold, trueValue, falseValue);
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkAdaptiveThresholdGaussian3x3u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                                 int32_t value, uint8_t* dst, uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value, [=] {
        RVK_FORM(rvkFilterGaussian3x3u8_v2)(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
    });
}

void RVK_FORM(rvkAdaptiveThresholdGaussian5x5u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                                 int32_t value, uint8_t* dst, uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value, [=] {
        RVK_FORM(rvkFilterGaussian5x5u8_v2)(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
    });
}

void RVK_FORM(rvkAdaptiveThresholdGaussian11x11u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                   uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                                   int32_t value, uint8_t* dst, uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value, [=] {
        RVK_FORM(rvkFilterGaussian11x11u8_v2)(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
    });
}

void RVK_FORM(rvkAdaptiveThresholdMean3x3u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                             int32_t value, uint8_t* dst, uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value, [=] {
        RVK_FORM(rvkBoxFilter3x3u8)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    });
}

void RVK_FORM(rvkAdaptiveThresholdMean5x5u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                             int32_t value, uint8_t* dst, uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value, [=] {
        RVK_FORM(rvkBoxFilter5x5u8)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    });
}

void RVK_FORM(rvkAdaptiveThresholdMean11x11u8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t maxValue, uint32_t thresholdType,
                                               int32_t value, uint8_t* dst, uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value, [=] {
        RVK_FORM(rvkBoxFilter11x11u8)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    });
}

} // namespace RVK_ROOM

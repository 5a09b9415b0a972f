// Thresholds: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

bool suitsDsp(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    return aligned(8, src, dst, srcStride, dstStride, width) && enoughWork(width, height);
}

// What every threshold asks of its images, whether its condition says so or not.
bool rowsFitStrides(uint32_t width, uint32_t height, uint32_t srcStride, uint32_t dstStride)
{
    return width && height && srcStride >= width && dstStride >= width;
}

bool countFitsInt32(uint32_t width, uint32_t height)
{
    return uint64_t{width} * height <= INT32_MAX;
}

} // namespace

// The conditions between "clang-format off" and "on" are logged as they stand there.

void rvkFilterThresholdu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride, uint32_t threshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterThresholdu8,
                                         [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    RVK_CHECK_SIZED_ARGS(rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride),
                         src && dst && (signed)threshold >= 0);
    implementation<Slot::rvkFilterThresholdu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride, threshold);
}

void rvkFilterThresholdu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride, uint32_t threshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterThresholdu8_v2,
                                         [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(srcWidth && srcHeight,
                         src && dst && dstStride && srcStride && (srcStride >=srcWidth) && (signed)threshold >= 0);
    // clang-format on
    RVK_CHECK_ARGS(srcStride == dstStride);
    implementation<Slot::rvkFilterThresholdu8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                          threshold);
}

rvkStatus rvkFilterThresholdu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t threshold, uint8_t trueValue,
                                  uint8_t falseValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterThresholdu8_v3,
                                         [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    RVK_CHECK_STATUS(src && dst && rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride));
    return implementation<Slot::rvkFilterThresholdu8_v3>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                 threshold, trueValue, falseValue);
}

rvkStatus rvkFilterThresholdRangeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold, uint32_t highThreshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterThresholdRangeu8,
                                         [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    RVK_CHECK_STATUS(src && dst && rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride));
    return implementation<Slot::rvkFilterThresholdRangeu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                                   lowThreshold, highThreshold);
}

rvkStatus rvkFilterThresholdRangeu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold, uint32_t highThreshold,
                                       uint8_t trueValue, uint8_t falseValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterThresholdRangeu8_v2,
                                         [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    RVK_CHECK_STATUS(src && dst && rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride));
    return implementation<Slot::rvkFilterThresholdRangeu8_v2>(target)(
        src, srcWidth, srcHeight, srcStride, dst, dstStride, lowThreshold, highThreshold, trueValue, falseValue);
}

void rvkFilterThresholdOtsuu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstStride, uint32_t thresholdType)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterThresholdOtsuu8,
                                         [&] { return suitsDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    RVK_CHECK_SIZED_ARGS(srcWidth && srcHeight && countFitsInt32(srcWidth, srcHeight),
                         src && dst && srcStride >= srcWidth && dstStride >= srcWidth);
    RVK_CHECK_ARGS(srcStride == dstStride);
    implementation<Slot::rvkFilterThresholdOtsuu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                           thresholdType);
}

// ---- adaptive -----------------------------------------------------------------------------------

namespace {

bool suitsDspAdaptive(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride, uint32_t windowSize)
{
    return aligned(8, src, dst, srcStride, dstStride) && enoughWork(width, height) && height >= windowSize;
}

} // namespace

void rvkAdaptiveThresholdGaussian3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                       uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAdaptiveThresholdGaussian3x3u8, [&] {
        return suitsDspAdaptive(src, srcWidth, srcHeight, srcStride, dst, dstStride, 3);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride) && rowFits(dstStride, srcHeight),
                         src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkAdaptiveThresholdGaussian3x3u8>(target)(src, srcWidth, srcHeight, srcStride, maxValue,
                                                                    thresholdType, value, dst, dstStride);
}

void rvkAdaptiveThresholdGaussian5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                       uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAdaptiveThresholdGaussian5x5u8, [&] {
        return suitsDspAdaptive(src, srcWidth, srcHeight, srcStride, dst, dstStride, 5);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride) && rowFits(dstStride, srcHeight),
                         src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 4 && srcWidth > 4);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkAdaptiveThresholdGaussian5x5u8>(target)(src, srcWidth, srcHeight, srcStride, maxValue,
                                                                    thresholdType, value, dst, dstStride);
}

void rvkAdaptiveThresholdGaussian11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                         uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAdaptiveThresholdGaussian11x11u8, [&] {
        return suitsDspAdaptive(src, srcWidth, srcHeight, srcStride, dst, dstStride, 11);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride) && rowFits(dstStride, srcHeight),
                         src && dst && srcWidth > 10 && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 10);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkAdaptiveThresholdGaussian11x11u8>(target)(src, srcWidth, srcHeight, srcStride, maxValue,
                                                                      thresholdType, value, dst, dstStride);
}

void rvkAdaptiveThresholdMean3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                   uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAdaptiveThresholdMean3x3u8, [&] {
        return suitsDspAdaptive(src, srcWidth, srcHeight, srcStride, dst, dstStride, 3);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride) && rowFits(dstStride, srcHeight),
                         src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth ) && srcWidth > 2 && srcHeight > 2);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkAdaptiveThresholdMean3x3u8>(target)(src, srcWidth, srcHeight, srcStride, maxValue,
                                                                thresholdType, value, dst, dstStride);
}

void rvkAdaptiveThresholdMean5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                   uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAdaptiveThresholdMean5x5u8, [&] {
        return suitsDspAdaptive(src, srcWidth, srcHeight, srcStride, dst, dstStride, 5);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride) && rowFits(dstStride, srcHeight),
                         src && dst && srcWidth && srcHeight && srcStride && dstStride && (srcStride >=srcWidth) && srcWidth > 4 && srcHeight > 4);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkAdaptiveThresholdMean5x5u8>(target)(src, srcWidth, srcHeight, srcStride, maxValue,
                                                                thresholdType, value, dst, dstStride);
}

void rvkAdaptiveThresholdMean11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                     uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkAdaptiveThresholdMean11x11u8, [&] {
        return suitsDspAdaptive(src, srcWidth, srcHeight, srcStride, dst, dstStride, 11);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowsFitStrides(srcWidth, srcHeight, srcStride, dstStride) && rowFits(dstStride, srcHeight),
                         src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth) && srcWidth > 10 && srcHeight > 10);
    // clang-format on
    RVK_CHECK_ARGS(src != dst);
    implementation<Slot::rvkAdaptiveThresholdMean11x11u8>(target)(src, srcWidth, srcHeight, srcStride, maxValue,
                                                                  thresholdType, value, dst, dstStride);
}

// Thresholds: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

bool bytesSuitDsp(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                  uint32_t dstStride)
{
    return aligned(8, src, dst, srcStride, dstStride, width) && enoughWork(width, height);
}

bool countFitsInt32(uint32_t width, uint32_t height)
{
    return uint64_t{width} * height <= INT32_MAX;
}

} // namespace

void rvkFilterThresholdu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride, uint32_t threshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(
        Slot::rvkFilterThresholdu8, [&] { return bytesSuitDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    RVK_CHECK_ARGS(src && dst && (signed)threshold >= 0);
    RVK_CHECK_ARGS(srcWidth && srcHeight && srcStride >= srcWidth && dstStride >= srcWidth);
    implementation<Slot::rvkFilterThresholdu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride, threshold);
}

void rvkFilterThresholdu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride, uint32_t threshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterThresholdu8_v2, [&] {
        return bytesSuitDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    });
    RVK_CHECK_ARGS(src && dst && dstStride && srcStride && (srcStride >=srcWidth) && (signed)threshold >= 0);
    RVK_CHECK_ARGS(srcWidth && srcHeight);
    RVK_CHECK_ARGS(srcStride == dstStride);
    implementation<Slot::rvkFilterThresholdu8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                          threshold);
}

rvkStatus rvkFilterThresholdu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t threshold, uint8_t trueValue,
                                  uint8_t falseValue)
{
    return mapBytes<Slot::rvkFilterThresholdu8_v3>(kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                   threshold, trueValue, falseValue);
}

rvkStatus rvkFilterThresholdRangeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold, uint32_t highThreshold)
{
    return mapBytes<Slot::rvkFilterThresholdRangeu8>(kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                     lowThreshold, highThreshold);
}

rvkStatus rvkFilterThresholdRangeu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold, uint32_t highThreshold,
                                       uint8_t trueValue, uint8_t falseValue)
{
    return mapBytes<Slot::rvkFilterThresholdRangeu8_v2>(kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                        lowThreshold, highThreshold, trueValue, falseValue);
}

void rvkFilterThresholdOtsuu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstStride, uint32_t thresholdType)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterThresholdOtsuu8, [&] {
        return bytesSuitDsp(src, srcWidth, srcHeight, srcStride, dst, dstStride);
    });
    RVK_CHECK_ARGS(src && dst && srcStride >= srcWidth && dstStride >= srcWidth);
    RVK_CHECK_ARGS(srcWidth && srcHeight && countFitsInt32(srcWidth, srcHeight));
    RVK_CHECK_ARGS(srcStride == dstStride);
    implementation<Slot::rvkFilterThresholdOtsuu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                           thresholdType);
}

// ---- adaptive -----------------------------------------------------------------------------------

namespace {

template <Slot slot>
void adaptiveThreshold(FilterSizes sizes, Words words, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                       uint32_t srcStride, uint8_t* dst, uint32_t dstStride, uint8_t maxValue, uint32_t thresholdType,
                       int32_t value)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target =
        chooseTarget(slot, [&] { return suitsDsp(sizes, src, srcWidth, srcHeight, srcStride, dst, dstStride); });
    if (!accepts(sizes, src, srcWidth, srcHeight, srcStride, dst, dstStride))
        return refuse<slot>(words);
    if (dstStride < srcWidth) // which not all words ask for
        return refuse<slot>({words.function, "dstStride >= srcWidth"});
    if (!rowFits(dstStride, srcHeight))
        return refuse<slot>({words.function, "rowFits(dstStride, srcHeight)"});
    if (src == dst)
        return refuse<slot>({words.function, "src != dst"});
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, maxValue, thresholdType, value, dst, dstStride);
}

} // namespace

void rvkAdaptiveThresholdGaussian3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                       uint32_t dstStride)
{
    adaptiveThreshold<Slot::rvkAdaptiveThresholdGaussian3x3u8>(
        {.leastWidth = 2, .leastHeight = 2, .dspHeight = 3},
        {__func__, "src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) && "
                   "(dstStride >= srcWidth)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, maxValue, thresholdType, value);
}

void rvkAdaptiveThresholdGaussian5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                       uint32_t dstStride)
{
    adaptiveThreshold<Slot::rvkAdaptiveThresholdGaussian5x5u8>(
        withAnyDstStride(windowOf(5)),
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 4 && "
                   "srcWidth > 4"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, maxValue, thresholdType, value);
}

void rvkAdaptiveThresholdGaussian11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                         uint32_t dstStride)
{
    adaptiveThreshold<Slot::rvkAdaptiveThresholdGaussian11x11u8>(
        withAnyDstStride(windowOf(11)),
        {__func__,
         "src && dst && srcWidth > 10 && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 10"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, maxValue, thresholdType, value);
}

void rvkAdaptiveThresholdMean3x3u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                   uint32_t dstStride)
{
    adaptiveThreshold<Slot::rvkAdaptiveThresholdMean3x3u8>(
        withAnyDstStride(windowOf(3)),
        {__func__, "src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth ) && "
                   "srcWidth > 2 && srcHeight > 2"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, maxValue, thresholdType, value);
}

void rvkAdaptiveThresholdMean5x5u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                   uint32_t dstStride)
{
    adaptiveThreshold<Slot::rvkAdaptiveThresholdMean5x5u8>(
        withAnyDstStride(windowOf(5)),
        {__func__, "src && dst && srcWidth && srcHeight && srcStride && dstStride && (srcStride >=srcWidth) && "
                   "srcWidth > 4 && srcHeight > 4"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, maxValue, thresholdType, value);
}

void rvkAdaptiveThresholdMean11x11u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                     uint32_t dstStride)
{
    adaptiveThreshold<Slot::rvkAdaptiveThresholdMean11x11u8>(
        withAnyDstStride(windowOf(11)),
        {__func__, "src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth) && "
                   "srcWidth > 10 && srcHeight > 10"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride, maxValue, thresholdType, value);
}

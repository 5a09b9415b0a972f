// Vector implementations of the thresholds.
#include "cpu/ravikThresholdC.h"
#include "vecta/simd/histogram.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// dst = inside where low <= src <= high, else outside. Of the ends of a range one comparison is left: the distance from
// `low`, modulo 256, must not be above that of `high`.
RVK_INLINE void range(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint32_t low,
                      uint32_t high, uint8_t inside, uint8_t outside)
{
    if (low > high || low > 255)
        low = high = 0, inside = outside;
    if (high > 255)
        high = 255;
    const Vec<uint8_t> first = splat(static_cast<uint8_t>(low)), last = splat(static_cast<uint8_t>(high - low));
    const Vec<uint8_t> within = splat(inside), beyond = splat(outside);
    mapImage(
        width, height, dst,
        [=](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return select(greater(v - first, last), beyond, within); }, src);
}

// `filter` writes the picture of the means to the destination, where the comparison replaces it.
template <class Filter>
RVK_INLINE void adaptive(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint8_t maxValue,
                         uint32_t type, int32_t value, Filter filter)
{
    if (type != RAVIK_THRESHOLD_BINARY && type != RAVIK_THRESHOLD_BINARY_INVERSE) {
        __builtin_memset(dst.data, 0, size_t{dst.stride} * height);
        return;
    }
    uint8_t passed = type == RAVIK_THRESHOLD_BINARY ? maxValue : 0, failed = static_cast<uint8_t>(maxValue - passed);
    if (value > 255) // all pass
        value = 255, failed = passed;
    else if (value < -255) // none passes
        value = -255, passed = failed;
    filter();

    const Plane<const uint8_t> means{dst.data, dst.stride};
    const Vec<uint8_t> yes = splat(passed), no = splat(failed);
    const Vec<uint8_t> distance = splat(static_cast<uint8_t>(value < 0 ? -value : value));
    if (value > 0) // the mean is less than `value` above the pixel
        mapImage(
            width, height, dst,
            [=](Vec<uint8_t> pixel, Vec<uint8_t> mean)
                RVK_INLINE_LAMBDA { return select(greater(distance, subSat(mean, pixel)), yes, no); },
            src, means);
    else // the pixel is more than -`value` above the mean
        mapImage(
            width, height, dst,
            [=](Vec<uint8_t> pixel, Vec<uint8_t> mean)
                RVK_INLINE_LAMBDA { return select(greater(subSat(pixel, mean), distance), yes, no); },
            src, means);
}

} // namespace

void rvkFilterThresholdu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride, uint32_t threshold)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, threshold < 255 ? threshold : 255, 255, 255, 0);
}

void rvkFilterThresholdu8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstStride, uint32_t threshold)
{
    rvkFilterThresholdu8V(src, srcWidth, srcHeight, srcStride, dst, dstStride, threshold);
}

rvkStatus rvkFilterThresholdu8_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride, uint32_t threshold, uint8_t trueValue,
                                   uint8_t falseValue)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, 0, threshold, falseValue, trueValue);
    return RAVIK_SUCCESS;
}

rvkStatus rvkFilterThresholdRangeu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold, uint32_t highThreshold)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, lowThreshold, highThreshold, 255, 0);
    return RAVIK_SUCCESS;
}

rvkStatus rvkFilterThresholdRangeu8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold, uint32_t highThreshold,
                                        uint8_t trueValue, uint8_t falseValue)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, lowThreshold, highThreshold, trueValue, falseValue);
    return RAVIK_SUCCESS;
}

void rvkFilterThresholdOtsuu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t thresholdType)
{
    const Plane<const uint8_t> source{src, srcStride};
    uint32_t histogram[256];
    countBytes(srcWidth, srcHeight, source, histogram);
    const uint32_t threshold = otsuThreshold(histogram, srcWidth * srcHeight); // 1 or more
    const Vec<uint8_t> last = splat(static_cast<uint8_t>(threshold < 255 ? threshold - 1 : 254));
    const Vec<uint8_t> below = splat<uint8_t>(thresholdType == RAVIK_THRESHOLD_BINARY_INVERSE ? 255 : 0);
    mapImage(
        srcWidth, srcHeight, Plane{dst, dstStride},
        [=](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return toVec(greater(v, last)) ^ below; }, source);
}

void rvkAdaptiveThresholdGaussian3x3u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                        uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=]() RVK_INLINE_LAMBDA {
                 rvkFilterGaussian3x3u8_v2V(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
             });
}

void rvkAdaptiveThresholdGaussian5x5u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                        uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=]() RVK_INLINE_LAMBDA {
                 rvkFilterGaussian5x5u8_v2V(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
             });
}

void rvkAdaptiveThresholdGaussian11x11u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                          uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=]() RVK_INLINE_LAMBDA {
                 rvkFilterGaussian11x11u8_v2V(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1);
             });
}

void rvkAdaptiveThresholdMean3x3u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                    uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=]() RVK_INLINE_LAMBDA { rvkBoxFilter3x3u8V(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
}

void rvkAdaptiveThresholdMean5x5u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                    uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=]() RVK_INLINE_LAMBDA { rvkBoxFilter5x5u8V(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
}

void rvkAdaptiveThresholdMean11x11u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                      uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=]() RVK_INLINE_LAMBDA { rvkBoxFilter11x11u8V(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
}

} // namespace rvk::vecta::RVK_ISA

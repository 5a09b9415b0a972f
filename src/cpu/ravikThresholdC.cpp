// C references of the thresholds.
#include "cpu/ravikThresholdC.h"
#include "cpu/image.h"
#include "functions.h"

#include <algorithm>
#include <cstring>

namespace rvk {

uint32_t otsuThreshold(const uint32_t (&histogram)[256], uint32_t count)
{
    // Classes with less than this share of the pixels are none. It is FLT_EPSILON.
    constexpr double leastShare = 1.1920928955078125e-7, mostShare = 0.9999998807907104;

    double mean = 0;
    for (uint32_t value = 0; value < 256; ++value)
        mean += static_cast<double>(value) * histogram[value];
    mean /= count;

    // The pixels up to `value` are a share of the picture and have a mean.
    double share = 0, meanBelow = 0, largestVariance = 0;
    uint32_t best = 0;
    for (uint32_t value = 0; value < 256; ++value) {
        const double previousShare = share, p = static_cast<double>(histogram[value]) / count;
        share += p;
        const double shareAbove = 1.0 - share;
        if (std::min(share, shareAbove) < leastShare || std::max(share, shareAbove) > mostShare)
            continue;
        meanBelow = (meanBelow * previousShare + value * p) / share;
        const double difference = meanBelow + (share * meanBelow - mean) / shareAbove; // of the means of the classes
        const double variance = share * shareAbove * difference * difference;
        if (variance > largestVariance) {
            largestVariance = variance;
            best = value;
        }
    }
    return best + 1;
}

namespace {

// dst = inside where low <= src <= high, else outside.
void range(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint32_t low, uint32_t high,
           uint8_t inside, uint8_t outside)
{
    mapElements(
        width, height, dst, [=](uint8_t pixel) { return low <= pixel && pixel <= high ? inside : outside; }, src);
}

// `filter` writes the picture of the means to the destination, where the comparison replaces it.
template <class Filter>
void adaptive(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint8_t maxValue,
              uint32_t type, int64_t value, Filter filter)
{
    if (type != RAVIK_THRESHOLD_BINARY && type != RAVIK_THRESHOLD_BINARY_INVERSE) {
        memset(dst.data, 0, size_t{dst.stride} * height);
        return;
    }
    filter();
    const bool isInverse = type == RAVIK_THRESHOLD_BINARY_INVERSE;
    mapElements(
        width, height, dst,
        [=](uint8_t pixel, uint8_t mean) { return (pixel > mean - value) != isInverse ? maxValue : uint8_t{0}; }, src,
        dst);
}

} // namespace

void rvkFilterThresholdu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride, uint32_t threshold)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, std::min(threshold, 255u), 255, 255, 0);
}

void rvkFilterThresholdu8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint8_t* dst, uint32_t dstStride, uint32_t threshold)
{
    rvkFilterThresholdu8C(src, srcWidth, srcHeight, srcStride, dst, dstStride, threshold);
}

rvkStatus rvkFilterThresholdu8_v3C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride, uint32_t threshold, uint8_t trueValue,
                                   uint8_t falseValue)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, 0, threshold, falseValue, trueValue);
    return RAVIK_SUCCESS;
}

rvkStatus rvkFilterThresholdRangeu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold, uint32_t highThreshold)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, lowThreshold, highThreshold, 255, 0);
    return RAVIK_SUCCESS;
}

rvkStatus rvkFilterThresholdRangeu8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride, uint32_t lowThreshold, uint32_t highThreshold,
                                        uint8_t trueValue, uint8_t falseValue)
{
    range(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, lowThreshold, highThreshold, trueValue, falseValue);
    return RAVIK_SUCCESS;
}

void rvkFilterThresholdOtsuu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t thresholdType)
{
    const Plane<const uint8_t> source{src, srcStride};
    uint32_t histogram[256] = {};
    for (size_t y = 0; y < srcHeight; ++y)
        for (size_t x = 0; x < srcWidth; ++x)
            ++histogram[source.row(y)[x]];

    const uint32_t threshold = std::min(otsuThreshold(histogram, srcWidth * srcHeight), 255u);
    const bool isInverse = thresholdType == RAVIK_THRESHOLD_BINARY_INVERSE;
    range(srcWidth, srcHeight, source, {dst, dstStride}, threshold, 255, isInverse ? 0 : 255, isInverse ? 255 : 0);
}

void rvkAdaptiveThresholdGaussian3x3u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                        uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=] { rvkFilterGaussian3x3u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1); });
}

void rvkAdaptiveThresholdGaussian5x5u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                        uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=] { rvkFilterGaussian5x5u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1); });
}

void rvkAdaptiveThresholdGaussian11x11u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                          uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=] { rvkFilterGaussian11x11u8_v2C(src, srcWidth, srcHeight, srcStride, dst, dstStride, 1); });
}

void rvkAdaptiveThresholdMean3x3u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                    uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=] { rvkBoxFilter3x3u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
}

void rvkAdaptiveThresholdMean5x5u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                    uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=] { rvkBoxFilter5x5u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
}

void rvkAdaptiveThresholdMean11x11u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                      uint32_t dstStride)
{
    adaptive(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, maxValue, thresholdType, value,
             [=] { rvkBoxFilter11x11u8C(src, srcWidth, srcHeight, srcStride, dst, dstStride); });
}

} // namespace rvk

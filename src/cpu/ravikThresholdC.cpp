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

// dst = passed where src >= least, else failed.
void threshold(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint32_t least,
               uint8_t passed, uint8_t failed)
{
    mapElements(
        width, height, dst, [=](uint8_t pixel) { return pixel >= least ? passed : failed; }, src);
}

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

void rvkFilterThresholdOtsuu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstStride, uint32_t thresholdType)
{
    const Plane<const uint8_t> source{src, srcStride};
    uint32_t histogram[256] = {};
    for (size_t y = 0; y < srcHeight; ++y)
        for (size_t x = 0; x < srcWidth; ++x)
            ++histogram[source.row(y)[x]];

    const uint32_t least = std::min(otsuThreshold(histogram, srcWidth * srcHeight), 255u);
    const bool isInverse = thresholdType == RAVIK_THRESHOLD_BINARY_INVERSE;
    threshold(srcWidth, srcHeight, source, {dst, dstStride}, least, isInverse ? 0 : 255, isInverse ? 255 : 0);
}

} // namespace rvk

#include "forms/ravikThresholdForms.h"

// Vector implementations of the thresholds.
#include "cpu/ravikThresholdC.h"
#include "vecta/simd/histogram.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/blur.h>
#include <ravik/threshold.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// dst = passed where src >= least, else failed. `least` is 0 to 256.
RVK_INLINE void threshold(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, uint32_t least,
                          uint8_t passed, uint8_t failed)
{
    const Vec<uint8_t> last = splat(static_cast<uint8_t>(least ? least - 1 : 0)); // that fails
    const Vec<uint8_t> yes = splat(passed), no = splat(least ? failed : passed);
    mapImage(
        width, height, dst, [=](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return select(greater(v, last), yes, no); }, src);
}

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

// dst, where the means are, = passed where the pixel is more than the mean less `value`, which is -255 to 255, else
// failed.
RVK_NOINLINE void compareWithMeans(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst,
                                   int32_t value, uint8_t passed, uint8_t failed)
{
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
    compareWithMeans(width, height, src, dst, value, passed, failed);
}

} // namespace

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

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikThresholdForms.h"

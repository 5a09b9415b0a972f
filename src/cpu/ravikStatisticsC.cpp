// C references of the statistics of grey values, and of pictures changed by tables of them.
#include "cpu/ravikStatisticsC.h"

#include "cpu/image.h"
#include "functions.h"
#include "log.h"

#include <ravik/statistics.h>

namespace rvk {

bool divisorOf(int32_t varianceEstimator, uint64_t pixels, uint64_t& divisor)
{
    if (varianceEstimator != RAVIK_VARIANCE_UNBIASED && varianceEstimator != RAVIK_VARIANCE_BIASED) {
        logLibraryError("rvkImageIntensityStats_v2 error invalid varianceEstimator %d", varianceEstimator);
        return false;
    }
    divisor = varianceEstimator == RAVIK_VARIANCE_UNBIASED ? pixels - 1 : pixels;
    return true;
}

void storeStatistics(const PixelSums& sums, uint64_t divisor, float32_t* mean, float32_t* variance)
{
    const auto sum = static_cast<float32_t>(sums.sum);
    const float32_t average = sum / static_cast<float32_t>(sums.pixels);
    *mean = average;
    *variance = (static_cast<float32_t>(sums.squares) - average * sum) / static_cast<float32_t>(divisor);
}

void equalizingTable(const uint32_t (&histogram)[256], uint64_t pixels, uint8_t (&table)[256])
{
    uint64_t count = 0; // of pixels up to the value
    for (size_t value = 0; value < 256; ++value) {
        count += histogram[value];
        table[value] = static_cast<uint8_t>((2 * 255 * count + pixels) / (2 * pixels));
    }
}

namespace {

PixelSums sumsOf(size_t width, size_t height, Plane<const uint8_t> src)
{
    PixelSums sums = {uint64_t{width} * height, 0, 0};
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x) {
            const uint32_t pixel = src.row(y)[x];
            sums.sum += pixel;
            sums.squares += pixel * pixel;
        }
    return sums;
}

void countPixels(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    std::fill_n(histogram, 256, 0u);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            ++histogram[src.row(y)[x]];
}

void lookUp(size_t width, size_t height, Plane<const uint8_t> src, const uint8_t (&table)[256], Plane<uint8_t> dst)
{
    mapElements(
        width, height, dst, [&](uint8_t pixel) { return table[pixel]; }, src);
}

} // namespace
} // namespace rvk

#include "forms/ravikStatisticsForms.h"

// C references of the scalers by fixed ratios, a pixel of the destination at a time.
#include "cpu/image.h"
#include "functions.h"

namespace rvk {
namespace {

// ---- binomial means at every second pixel ---------------------------------------------------------------------------

constexpr int binomial(int radius, int offset)
{
    constexpr int weights[2][3] = {{2, 1}, {6, 4, 1}};
    return weights[radius - 1][offset < 0 ? -offset : offset];
}

// The weights of a window around `centre` that lie on a line of `size` pixels, summed.
template <int radius>
uint32_t weightsInside(int64_t centre, int64_t size)
{
    uint32_t sum = 0;
    for (int i = -radius; i <= radius; ++i)
        sum += centre + i >= 0 && centre + i < size ? static_cast<uint32_t>(binomial(radius, i)) : 0;
    return sum;
}

float reciprocal(uint32_t weights)
{
    return 1.0f / static_cast<float>(weights);
}

// What does not exist counts as 0.
template <int radius>
uint32_t weightedSum(const BorderedImage<uint8_t>& image, int64_t x, int64_t y)
{
    int sum = 0;
    for (int j = -radius; j <= radius; ++j)
        for (int i = -radius; i <= radius; ++i)
            sum += binomial(radius, j) * binomial(radius, i) * image.at(x + i, y + j);
    return static_cast<uint32_t>(sum);
}

uint8_t meanOf(uint32_t sum, uint32_t weights)
{
    return static_cast<uint8_t>(0.5 + sum * static_cast<double>(reciprocal(weights)));
}

// The order of additions is part of the result.
float weightedSum(float a, float b, float c, float d, float e)
{
    return ((a + e) + 4.0f * (b + d)) + 6.0f * c;
}

template <int radius>
float weightedSum(const BorderedImage<float>& image, int64_t x, int64_t y)
{
    static_assert(radius == 2);
    const auto row = [&](int64_t at) {
        return weightedSum(image.at(x - 2, at), image.at(x - 1, at), image.at(x, at), image.at(x + 1, at),
                           image.at(x + 2, at));
    };
    return weightedSum(row(y - 2), row(y - 1), row(y), row(y + 1), row(y + 2));
}

float meanOf(float sum, uint32_t weights)
{
    return sum * reciprocal(weights);
}

template <int radius, class T>
void halveBinomial(uint32_t width, uint32_t height, Plane<const T> src, Plane<T> dst)
{
    const BorderedImage<T> image(src, width, height, false, 0);
    for (uint32_t y = 0; y < height / 2; ++y)
        for (uint32_t x = 0; x < width / 2; ++x) {
            const int64_t centreX = int64_t{2} * x, centreY = int64_t{2} * y;
            const uint32_t weights = weightsInside<radius>(centreX, width) * weightsInside<radius>(centreY, height);
            dst.row(y)[x] = meanOf(weightedSum<radius>(image, centreX, centreY), weights);
        }
}

} // namespace

rvkStatus rvkScaleDownBy2Gaussian3x3u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint8_t* dst, uint32_t dstStride)
{
    halveBinomial<1>(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
    return RAVIK_SUCCESS;
}

void rvkScaleDownBy2Gaussian5x5u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride)
{
    halveBinomial<2>(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
}

void rvkScaleDownBy2Gaussian5x5f32_v2C(const float32_t* srcImg, uint32_t width, uint32_t height, uint32_t srcStride,
                                       float32_t* dst, uint32_t dstStride)
{
    halveBinomial<2>(width, height, Plane{srcImg, srcStride}, Plane{dst, dstStride});
}

} // namespace rvk

#include "forms/ravikScaleForms.h"

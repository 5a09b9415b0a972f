// C references of the scalers by fixed ratios, a pixel of the destination at a time.
#include "cpu/image.h"
#include "functions.h"

namespace rvk {
namespace {

// ---- blocks of pixels -----------------------------------------------------------------------------------------------

// The mean of each block of size x size pixels, rounded down.
template <uint32_t size>
int32_t scaleDown(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    for (size_t y = 0; y < height / size; ++y)
        for (size_t x = 0; x < width / size; ++x) {
            uint32_t sum = 0;
            for (size_t i = 0; i < size * size; ++i)
                sum += src.row(size * y + i / size)[size * x + i % size];
            dst.row(y)[x] = static_cast<uint8_t>(sum / (size * size));
        }
    return 0;
}

// Each pixel of pixelSize bytes, `across` times in each of `down` rows.
template <uint32_t pixelSize, uint32_t across, uint32_t down>
void repeat(uint32_t width, uint32_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    for (size_t y = 0; y < size_t{height} * down; ++y)
        for (size_t x = 0; x < size_t{width} * across; ++x)
            for (size_t i = 0; i < pixelSize; ++i)
                dst.row(y)[x * pixelSize + i] = src.row(y / down)[x / across * pixelSize + i];
}

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

// ---- binomial means between pixels ----------------------------------------------------------------------------------

// The weights of pixels x / 2 - 1, x / 2 and x / 2 + 1 in pixel x of a line that is twice as long.
constexpr uint32_t interpolation(size_t x, int offset)
{
    constexpr uint32_t weights[2][3] = {{1, 6, 1}, {0, 4, 4}};
    return weights[x % 2][offset + 1];
}

uint8_t interpolate(const BorderedImage<uint8_t>& image, size_t x, size_t y)
{
    uint32_t sum = 0, weights = 0;
    for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i) {
            const int64_t column = static_cast<int64_t>(x / 2) + i, row = static_cast<int64_t>(y / 2) + j;
            const bool exists = column >= 0 && column <= image.right && row >= 0 && row <= image.bottom;
            const uint32_t weight = exists ? interpolation(x, i) * interpolation(y, j) : 0;
            sum += weight * image.at(column, row);
            weights += weight;
        }
    return meanOf(sum, weights);
}

} // namespace

// ---- down -------------------------------------------------------------------------------------------------------------

int32_t rvkScaleDownBy2u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride)
{
    return scaleDown<2>(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
}

int32_t rvkScaleDownBy4u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride)
{
    return scaleDown<4>(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
}

void rvkScaleDown3To2u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                         uint32_t dstStride)
{
    const Plane in{src, srcStride};
    const Plane out{dst, dstStride};
    for (size_t y = 0; y < srcHeight / 3 * 2; ++y)
        for (size_t x = 0; x < srcWidth / 3 * 2; ++x) {
            const size_t left = x / 2 * 3, top = y / 2 * 3; // of the block
            const size_t column = left + x % 2 * 2, row = top + y % 2 * 2;
            const int corner = in.row(row)[column], centre = in.row(top + 1)[left + 1];
            const int edges = in.row(row)[left + 1] + in.row(top + 1)[column];
            out.row(y)[x] = static_cast<uint8_t>((9 * corner + 3 * edges + centre) >> 4);
        }
}

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

// ---- up ---------------------------------------------------------------------------------------------------------------

void rvkScaleUpBy2Gaussian5x5u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride)
{
    const BorderedImage<uint8_t> image(Plane{src, srcStride}, srcWidth, srcHeight, false, 0);
    const Plane out{dst, dstStride};
    for (size_t y = 0; y < size_t{2} * srcHeight; ++y)
        for (size_t x = 0; x < size_t{2} * srcWidth; ++x)
            out.row(y)[x] = interpolate(image, x, y);
}

} // namespace rvk

#include "forms/ravikScaleForms.h"

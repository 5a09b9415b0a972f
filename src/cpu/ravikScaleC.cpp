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

// ---- means of windows, as far as they lie in the picture ------------------------------------------------------------

// Where a window around `centre` meets a line of `size` pixels, as offsets from its centre.
struct Offsets
{
    int first, last;

    Offsets(size_t centre, size_t size, int radius)
        : first(-static_cast<int>(std::min<size_t>(centre, static_cast<size_t>(radius)))),
          last(static_cast<int>(std::min<size_t>(size - 1 - centre, static_cast<size_t>(radius))))
    {
    }

    template <class Weight>
    uint32_t sum(Weight weight) const
    {
        uint32_t all = 0;
        for (int i = first; i <= last; ++i)
            all += weight(i);
        return all;
    }
};

float reciprocal(uint32_t weights)
{
    return 1.0f / static_cast<float>(weights);
}

// A pixel of the window weighs across(its offset) * down(its offset).
template <class Across, class Down>
uint8_t weightedMean(const uint8_t* centre, uint32_t stride, Offsets columns, Offsets rows, Across across, Down down)
{
    const uint32_t sum = rows.sum([&](int j) {
        const uint8_t* const row = centre + static_cast<ptrdiff_t>(stride) * j;
        return down(j) * columns.sum([&](int i) { return across(i) * row[i]; });
    });
    const uint32_t weights = columns.sum(across) * rows.sum(down);
    return static_cast<uint8_t>(0.5 + sum * static_cast<double>(reciprocal(weights)));
}

// ---- binomial means at every second pixel ---------------------------------------------------------------------------

constexpr uint32_t kBinomial[2][3] = {{2, 1}, {6, 4, 1}}; // by the radius and the distance from the centre

template <int radius>
uint32_t binomial(int offset)
{
    return kBinomial[radius - 1][offset < 0 ? -offset : offset];
}

template <int radius>
void halveBinomial(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    for (size_t y = 0; y < height / 2; ++y)
        for (size_t x = 0; x < width / 2; ++x)
            dst.row(y)[x] = weightedMean(src.row(2 * y) + 2 * x, src.stride, {2 * x, width, radius},
                                         {2 * y, height, radius}, binomial<radius>, binomial<radius>);
}

// Of floats. The order of additions is part of the result.
float weightedSum(float a, float b, float c, float d, float e)
{
    return ((a + e) + 4.0f * (b + d)) + 6.0f * c;
}

float weightedSum(const BorderedImage<float>& image, int64_t x, int64_t y)
{
    const auto row = [&](int64_t at) {
        return weightedSum(image.at(x - 2, at), image.at(x - 1, at), image.at(x, at), image.at(x + 1, at),
                           image.at(x + 2, at));
    };
    return weightedSum(row(y - 2), row(y - 1), row(y), row(y + 1), row(y + 2));
}

void halveBinomial5x5(size_t width, size_t height, Plane<const float> src, Plane<float> dst)
{
    const BorderedImage<float> image(src, width, height, false, 0);
    for (size_t y = 0; y < height / 2; ++y)
        for (size_t x = 0; x < width / 2; ++x) {
            const uint32_t weights =
                Offsets(2 * x, width, 2).sum(binomial<2>) * Offsets(2 * y, height, 2).sum(binomial<2>);
            dst.row(y)[x] =
                weightedSum(image, static_cast<int64_t>(2 * x), static_cast<int64_t>(2 * y)) * reciprocal(weights);
        }
}

// ---- binomial means between pixels ----------------------------------------------------------------------------------

// The weights of pixels x / 2 - 1, x / 2 and x / 2 + 1 in pixel x of a line that is twice as long.
uint32_t interpolation(size_t x, int offset)
{
    constexpr uint32_t weights[2][3] = {{1, 6, 1}, {0, 4, 4}};
    return weights[x % 2][offset + 1];
}

void doubleBinomial(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    for (size_t y = 0; y < 2 * height; ++y)
        for (size_t x = 0; x < 2 * width; ++x)
            dst.row(y)[x] = weightedMean(
                src.row(y / 2) + x / 2, src.stride, {x / 2, width, 1}, {y / 2, height, 1},
                [=](int offset) { return interpolation(x, offset); },
                [=](int offset) { return interpolation(y, offset); });
}

} // namespace

// ---- down -----------------------------------------------------------------------------------------------------------

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
    halveBinomial5x5(width, height, Plane{srcImg, srcStride}, Plane{dst, dstStride});
}

// ---- up -------------------------------------------------------------------------------------------------------------

void rvkScaleUpBy2Gaussian5x5u8_v2C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride)
{
    doubleBinomial(srcWidth, srcHeight, Plane{src, srcStride}, Plane{dst, dstStride});
}

} // namespace rvk

#include "forms/ravikScaleForms.h"

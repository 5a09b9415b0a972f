// Pictures of interleaved bytes between their pixels: what a position is, how the pixels around it are weighted, and
// what lies outside. Warps, affine transforms and remaps share this definition; vecta/simd/sampling.h is the same in
// vectors.
#pragma once

#include "cpu/image.h"

#include <ravik/types.h>

namespace rvk {

// Coordinates are fixed point numbers with 15 bits of fraction; whole ones are the centres of pixels.
constexpr uint32_t kPositionBits = 15;
constexpr int32_t kPositionOne = 1 << kPositionBits;
constexpr uint32_t kMostSampledSize = 65535; // columns, and rows, of which 32 bits hold the coordinates
constexpr uint32_t kGreyBits = 6;            // of fraction, of what is between pixels

struct SampledImage
{
    const uint8_t* data;
    uint32_t width, height; // at most kMostSampledSize
    uint32_t stride;
    uint32_t interpolation; // nearest or bilinear
    uint32_t borderType;
    uint8_t borderValue[4]; // of each channel
};

// The fixed point number of a coordinate in units of which a pixel has `one`, a power of two; rounded towards 0.
// Coordinates that are more than a pixel outside the picture are one pixel outside, and so is what is not a number:
// before the first pixel.
inline int32_t fixedPosition(float32_t coordinate, uint32_t size, int32_t one = 1)
{
    const float32_t begin = static_cast<float32_t>(-one),
                    end = static_cast<float32_t>(size) * static_cast<float32_t>(one);
    const float32_t near = coordinate > begin ? (coordinate < end ? coordinate : end) : begin;
    return static_cast<int32_t>(near * static_cast<float32_t>(kPositionOne / one));
}

// between / 2^15 of the way from one number to the other, which have 15 bits, rounded half up.
inline int32_t interpolate(int32_t from, int32_t to, int32_t between)
{
    return from + (((to - from) * between + kPositionOne / 2) >> kPositionBits);
}

template <size_t channels>
class Sampler
{
public:
    explicit Sampler(const SampledImage& image) : m_image(image) {}

    // Writes the value at a position, any 32-bit numbers, to a pixel of the destination, unless the border rule leaves
    // it.
    void sample(int32_t x, int32_t y, uint8_t* dst) const
    {
        if (m_image.interpolation == RAVIK_INTERPOLATION_NEAREST)
            takeNearest(nearest(x), nearest(y), dst);
        else
            weighFour(x >> kPositionBits, y >> kPositionBits, x & (kPositionOne - 1), y & (kPositionOne - 1), dst);
    }

private:
    static int32_t nearest(int32_t coordinate)
    {
        return static_cast<int32_t>((int64_t{coordinate} + kPositionOne / 2) >> kPositionBits);
    }

    bool exists(int32_t column, int32_t row) const
    {
        return column >= 0 && row >= 0 && static_cast<uint32_t>(column) < m_image.width &&
               static_cast<uint32_t>(row) < m_image.height;
    }

    int32_t at(int32_t column, int32_t row, size_t channel) const
    {
        if (!exists(column, row) && m_image.borderType == RAVIK_BORDER_CONSTANT)
            return m_image.borderValue[channel];
        const int32_t x = std::clamp(column, 0, static_cast<int32_t>(m_image.width) - 1);
        const int32_t y = std::clamp(row, 0, static_cast<int32_t>(m_image.height) - 1);
        return m_image.data[static_cast<size_t>(y) * m_image.stride + static_cast<size_t>(x) * channels + channel];
    }

    void takeNearest(int32_t column, int32_t row, uint8_t* dst) const
    {
        if (m_image.borderType == RAVIK_BORDER_NONE && !exists(column, row))
            return;
        for (size_t channel = 0; channel < channels; ++channel)
            dst[channel] = static_cast<uint8_t>(at(column, row, channel));
    }

    // Along x, in both rows, then along y, in steps of 1/64 of a grey level; then rounded half up to a whole one.
    void weighFour(int32_t column, int32_t row, int32_t toRight, int32_t toBottom, uint8_t* dst) const
    {
        // Neighbours without weight need not exist.
        const bool allExist = exists(column, row) && exists(column + (toRight > 0), row + (toBottom > 0));
        if (m_image.borderType == RAVIK_BORDER_NONE && !allExist)
            return;
        for (size_t channel = 0; channel < channels; ++channel) {
            const auto along = [&](int32_t y) {
                return interpolate(at(column, y, channel) << kGreyBits, at(column + 1, y, channel) << kGreyBits,
                                   toRight);
            };
            constexpr int32_t kHalfGrey = 1 << (kGreyBits - 1);
            dst[channel] =
                static_cast<uint8_t>((interpolate(along(row), along(row + 1), toBottom) + kHalfGrey) >> kGreyBits);
        }
    }

    SampledImage m_image;
};

} // namespace rvk

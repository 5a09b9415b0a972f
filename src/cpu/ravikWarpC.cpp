// C references of the perspective warps and remaps.
#include "cpu/ravikWarpC.h"
#include "cpu/sampling.h"
#include "functions.h"

#include <algorithm>
#include <cmath>

namespace rvk {

Homography scaledHomography(const float32_t* matrix)
{
    float32_t largest = 0;
    for (int i = 0; i < 9; ++i)
        largest = std::max(largest, std::fabs(matrix[i]));
    int exponent;
    std::frexp(largest, &exponent);
    Homography h;
    for (int i = 0; i < 9; ++i) {
        const double scaled = std::ldexp(double{matrix[i]}, -exponent);
        h.m[i] = std::fabs(scaled) < 0x1p-101 ? 0.0f : static_cast<float32_t>(scaled);
    }
    return h;
}

namespace {

struct Position
{
    float32_t x, y;
};

// Of the pixel (x, y) of the destination in the source, in fractions of its pixels as fixed point numbers have. The
// order of the operations is part of the definition. Where the divisor is 0 neither number is finite.
Position sourceOf(const Homography& h, float32_t x, float32_t y)
{
    const auto& m = h.m;
    const float32_t divisor = m[6] * x + (m[7] * y + m[8]), factor = kPositionOne / divisor;
    return {(m[0] * x + (m[1] * y + m[2])) * factor, (m[3] * x + (m[4] * y + m[5])) * factor};
}

// Each pixel of the destination is the source's value at positionOf(x, y), in units of which a pixel has `one`.
template <size_t channels, class PositionOf>
void sampleImage(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst, int32_t one,
                 PositionOf positionOf)
{
    const Sampler<channels> sampler(src);
    for (size_t y = 0; y < dstHeight; ++y)
        for (size_t x = 0; x < dstWidth; ++x) {
            const Position p = positionOf(x, y);
            sampler.sample(fixedPosition(p.x, src.width, one), fixedPosition(p.y, src.height, one),
                           dst.row(y) + channels * x);
        }
}

template <size_t channels>
void warpPerspective(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                     const float32_t* matrix)
{
    const Homography h = scaledHomography(matrix);
    sampleImage<channels>(src, dstWidth, dstHeight, dst, kPositionOne, [&](size_t x, size_t y) {
        return sourceOf(h, static_cast<float32_t>(x), static_cast<float32_t>(y));
    });
}

template <size_t channels>
void remap(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
           Plane<const float32_t> mapX, Plane<const float32_t> mapY)
{
    sampleImage<channels>(src, dstWidth, dstHeight, dst, 1, [&](size_t x, size_t y) {
        return Position{mapX.row(y)[x], mapY.row(y)[x]};
    });
}

} // namespace
} // namespace rvk

#include "forms/ravikWarpForms.h"

// C references of the absolute and signed differences.
#include "cpu/image.h"
#include "functions.h"

#include <cmath>

namespace rvk {
namespace {

uint8_t absoluteDifference(uint8_t a, uint8_t b)
{
    return static_cast<uint8_t>(a < b ? b - a : a - b);
}

// Modulo 2^32: the sign is that of the wrapped difference.
int32_t absoluteDifference(int32_t a, int32_t b)
{
    const uint32_t difference = static_cast<uint32_t>(a) - static_cast<uint32_t>(b);
    const bool negative = static_cast<int32_t>(difference) < 0;
    return static_cast<int32_t>(negative ? 0 - difference : difference);
}

float absoluteDifference(float a, float b)
{
    return std::fabs(a - b);
}

template <class T>
void absDiff(const T* src1, const T* src2, uint32_t width, uint32_t height, uint32_t srcStride, T* dst,
             uint32_t dstStride)
{
    mapElements(
        width, height, Plane{dst, dstStride}, [](T a, T b) { return absoluteDifference(a, b); }, Plane{src1, srcStride},
        Plane{src2, srcStride});
}

// Interleaved channels, one value for each.
template <class T, size_t channels>
void absDiffValues(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, const T (&values)[channels],
                   T* dst, uint32_t dstStride)
{
    for (size_t y = 0; y < height; ++y) {
        const T* in = Plane{src, srcStride}.row(y);
        T* out = Plane{dst, dstStride}.row(y);
        for (size_t x = 0; x < width; ++x)
            for (size_t c = 0; c < channels; ++c)
                out[x * channels + c] = absoluteDifference(in[x * channels + c], values[c]);
    }
}

} // namespace

void rvkImageDiffu8_v2C(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride},
        [](int a, int b) { return static_cast<uint8_t>(a > b ? a - b : 0); }, Plane{src1, srcStride},
        Plane{src2, srcStride});
}

void rvkImageDiffs16C(const int16_t* src1, const int16_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, int16_t* dst, uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](int a, int b) { return saturate<int16_t>(a - b); },
        Plane{src1, srcStride}, Plane{src2, srcStride});
}

void rvkImageDifff32C(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](float a, float b) { return a - b; }, Plane{src1, srcStride},
        Plane{src2, srcStride});
}

void rvkImageDiffu8f32C(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                        uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride},
        [](uint8_t a, uint8_t b) { return static_cast<float>(a) - static_cast<float>(b); }, Plane{src1, srcStride},
        Plane{src2, srcStride});
}

void rvkImageDiffu8s8C(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                       uint32_t srcStride, int8_t* dst, uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride},
        [](int a, int b) { return static_cast<int8_t>((a >> 1) - (b >> 1)); }, Plane{src1, srcStride},
        Plane{src2, srcStride});
}

} // namespace rvk

#include "forms/ravikDiffForms.h"

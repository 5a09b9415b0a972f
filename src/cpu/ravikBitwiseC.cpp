// C references of bitwise logic and fills.
#include "cpu/image.h"
#include "functions.h"

namespace rvk {
namespace {

// Without a mask every element is taken.
template <class T>
void orImage(uint32_t width, uint32_t height, Plane<const T> src1, Plane<const T> src2, Plane<T> dst,
             Plane<const uint8_t> mask)
{
    if (mask.data)
        mapElements(
            width, height, dst, [](T a, T b, uint8_t selected) { return selected ? a | b : 0; }, src1, src2, mask);
    else
        mapElements(
            width, height, dst, [](T a, T b) { return a | b; }, src1, src2);
}

template <class T, size_t channels>
void fillSelected(uint32_t width, uint32_t height, Plane<T> dst, const T (&values)[channels], Plane<const uint8_t> mask)
{
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            if (!mask.data || mask.row(y)[x])
                for (size_t c = 0; c < channels; ++c)
                    dst.row(y)[x * channels + c] = values[c];
}

} // namespace

void rvkBitwiseAndu8C(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                      const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](uint8_t a, uint8_t b) { return a & b; }, Plane{src1, src1Stride},
        Plane{src2, src2Stride});
}

void rvkBitwiseNotu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](uint8_t a) { return static_cast<uint8_t>(~a); },
        Plane{src, srcStride});
}

void rvkBitwiseXoru8C(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                      const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](uint8_t a, uint8_t b) { return a ^ b; }, Plane{src1, src1Stride},
        Plane{src2, src2Stride});
}

} // namespace rvk

#include "forms/ravikBitwiseForms.h"

// C references of bitwise logic and fills.
#include "cpu/image.h"
#include "functions.h"

namespace rvk {
namespace {

// Without a mask every element is taken.
template <class T>
void orSelected(uint32_t width, uint32_t height, Plane<const T> src1, Plane<const T> src2, Plane<T> dst,
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

void rvkBitwiseOrs32C(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, int32_t* dst, uint32_t dstStride, const uint8_t* mask, uint32_t maskStride)
{
    orSelected(srcWidth, srcHeight, Plane{src1, srcStride}, Plane{src2, srcStride}, Plane{dst, dstStride},
               Plane{mask, maskStride});
}

void rvkBitwiseOru8C(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                     const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride, const uint8_t* mask,
                     uint32_t maskStride)
{
    orSelected(srcWidth, srcHeight, Plane{src1, src1Stride}, Plane{src2, src2Stride}, Plane{dst, dstStride},
               Plane{mask, maskStride});
}

void rvkBitwiseXoru8C(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                      const uint8_t* src2, uint32_t src2Stride, uint8_t* dst, uint32_t dstStride)
{
    mapElements(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](uint8_t a, uint8_t b) { return a ^ b; }, Plane{src1, src1Stride},
        Plane{src2, src2Stride});
}

void rvkSetElementsu8C(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value,
                       const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value}, Plane{mask, maskStride});
}

void rvkSetElementss32C(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value,
                        const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value}, Plane{mask, maskStride});
}

void rvkSetElementsf32C(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value,
                        const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value}, Plane{mask, maskStride});
}

void rvkSetElementsc3u8C(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value1,
                         uint8_t value2, uint8_t value3, const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3}, Plane{mask, maskStride});
}

void rvkSetElementsc3s32C(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value1,
                          int32_t value2, int32_t value3, const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3}, Plane{mask, maskStride});
}

void rvkSetElementsc3f32C(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value1,
                          float32_t value2, float32_t value3, const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3}, Plane{mask, maskStride});
}

void rvkSetElementsc4u8C(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint8_t value1,
                         uint8_t value2, uint8_t value3, uint8_t value4, const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3, value4}, Plane{mask, maskStride});
}

void rvkSetElementsc4s32C(int32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, int32_t value1,
                          int32_t value2, int32_t value3, int32_t value4, const uint8_t* mask, uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3, value4}, Plane{mask, maskStride});
}

void rvkSetElementsc4f32C(float32_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, float32_t value1,
                          float32_t value2, float32_t value3, float32_t value4, const uint8_t* mask,
                          uint32_t maskStride)
{
    fillSelected(dstWidth, dstHeight, Plane{dst, dstStride}, {value1, value2, value3, value4}, Plane{mask, maskStride});
}

} // namespace rvk

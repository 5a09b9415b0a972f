// Vector implementations of the absolute and signed differences.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr auto absoluteDifference = [](auto a, auto b) RVK_INLINE_LAMBDA { return absDiff(a, b); };

} // namespace

void rvkAbsDiffu8V(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                   uint8_t* dst, uint32_t dstStride)
{
    mapImage(srcWidth, srcHeight, Plane{dst, dstStride}, absoluteDifference, Plane{src1, srcStride},
             Plane{src2, srcStride});
}

void rvkAbsDiffs32V(const int32_t* src1, const int32_t* src2, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                    int32_t* dst, uint32_t dstStride)
{
    mapImage(srcWidth, srcHeight, Plane{dst, dstStride}, absoluteDifference, Plane{src1, srcStride},
             Plane{src2, srcStride});
}

void rvkAbsDifff32V(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                    uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    mapImage(srcWidth, srcHeight, Plane{dst, dstStride}, absoluteDifference, Plane{src1, srcStride},
             Plane{src2, srcStride});
}

void rvkAbsDiffVu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value,
                    uint8_t* dst, uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride}, {value}, absoluteDifference);
}

void rvkAbsDiffVs32V(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value,
                     int32_t* dst, uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride}, {value}, absoluteDifference);
}

void rvkAbsDiffVf32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t value,
                     float32_t* dst, uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride}, {value}, absoluteDifference);
}

void rvkAbsDiffVc3u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value1,
                      uint8_t value2, uint8_t value3, uint8_t* dst, uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride}, {value1, value2, value3},
                       absoluteDifference);
}

void rvkAbsDiffVc3s32V(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value1,
                       int32_t value2, int32_t value3, int32_t* dst, uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride}, {value1, value2, value3},
                       absoluteDifference);
}

void rvkAbsDiffVc3f32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                       float32_t value1, float32_t value2, float32_t value3, float32_t* dst, uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride}, {value1, value2, value3},
                       absoluteDifference);
}

void rvkAbsDiffVc4u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t value1,
                      uint8_t value2, uint8_t value3, uint8_t value4, uint8_t* dst, uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride},
                       {value1, value2, value3, value4}, absoluteDifference);
}

void rvkAbsDiffVc4s32V(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t value1,
                       int32_t value2, int32_t value3, int32_t value4, int32_t* dst, uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride},
                       {value1, value2, value3, value4}, absoluteDifference);
}

void rvkAbsDiffVc4f32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                       float32_t value1, float32_t value2, float32_t value3, float32_t value4, float32_t* dst,
                       uint32_t dstStride)
{
    mapImageWithValues(srcWidth, srcHeight, Plane{dst, dstStride}, Plane{src, srcStride},
                       {value1, value2, value3, value4}, absoluteDifference);
}

void rvkImageDiffu8_v2V(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    mapImage(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](auto a, auto b) RVK_INLINE_LAMBDA { return subSat(a, b); },
        Plane{src1, srcStride}, Plane{src2, srcStride});
}

void rvkImageDiffs16V(const int16_t* src1, const int16_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, int16_t* dst, uint32_t dstStride)
{
    mapImage(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](auto a, auto b) RVK_INLINE_LAMBDA { return subSat(a, b); },
        Plane{src1, srcStride}, Plane{src2, srcStride});
}

void rvkImageDifff32V(const float32_t* src1, const float32_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                      uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    mapImage(
        srcWidth, srcHeight, Plane{dst, dstStride}, [](auto a, auto b) RVK_INLINE_LAMBDA { return a - b; },
        Plane{src1, srcStride}, Plane{src2, srcStride});
}

void rvkImageDiffu8f32V(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                        uint32_t srcStride, float32_t* dst, uint32_t dstStride)
{
    // The difference fits 9 bits, so it is formed in 16-bit integers and converted once.
    const auto formula = [](Vec<uint8_t> a, Vec<uint8_t> b) RVK_INLINE_LAMBDA {
        const Vecs<int16_t, 2> difference = subtractWide(a, b);
        const Vecs<int32_t, 2> low = widen(difference[0]), high = widen(difference[1]);
        return Vecs<float, 4>{toFloat(low[0]), toFloat(low[1]), toFloat(high[0]), toFloat(high[1])};
    };
    mapImage(srcWidth, srcHeight, Plane{dst, dstStride}, formula, Plane{src1, srcStride}, Plane{src2, srcStride});
}

void rvkImageDiffu8s8V(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth, uint32_t srcHeight,
                       uint32_t srcStride, int8_t* dst, uint32_t dstStride)
{
    const auto formula = [](auto a, auto b)
                             RVK_INLINE_LAMBDA { return bitCast<int8_t>(shiftRight(a, 1) - shiftRight(b, 1)); };
    mapImage(srcWidth, srcHeight, Plane{dst, dstStride}, formula, Plane{src1, srcStride}, Plane{src2, srcStride});
}

} // namespace rvk::vecta::RVK_ISA

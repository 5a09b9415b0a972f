// Vector implementations of the absolute and signed differences.
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/diff.h>

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr auto absoluteDifference = [](auto a, auto b) RVK_INLINE_LAMBDA { return absDiff(a, b); };

template <class T>
RVK_INLINE void absDiff(const T* src1, const T* src2, uint32_t width, uint32_t height, uint32_t srcStride, T* dst,
                        uint32_t dstStride)
{
    mapImage(width, height, Plane{dst, dstStride}, absoluteDifference, Plane{src1, srcStride}, Plane{src2, srcStride});
}

// Interleaved channels, one value for each.
template <class T, size_t channels>
RVK_INLINE void absDiffValues(const T* src, uint32_t width, uint32_t height, uint32_t srcStride,
                              const T (&values)[channels], T* dst, uint32_t dstStride)
{
    mapImageWithValues(width, height, Plane{dst, dstStride}, Plane{src, srcStride}, values, absoluteDifference);
}

} // namespace

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

#include "forms/ravikDiffForms.h"

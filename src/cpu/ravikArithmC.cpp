// C references of the element-wise arithmetic.
#include "cpu/arithm.h"
#include "cpu/image.h"
#include "functions.h"

#include <cmath>

namespace rvk {
namespace {

// Exact: bytes and 16-bit integers are promoted.
constexpr auto plus = [](auto a, auto b) { return a + b; };
constexpr auto minus = [](auto a, auto b) { return a - b; };
constexpr auto times = [](auto a, auto b) { return a * b; };

// dst = formula(sources...), wrapped or clamped to the range of the destination. The formula gives an exact integer.
template <class D, class Formula, class... S>
rvkStatus mapByPolicy(uint32_t width, uint32_t height, uint32_t policy, Plane<D> dst, Formula formula,
                      Plane<S>... sources)
{
    if (policy == RAVIK_POLICY_WRAP)
        mapElements(
            width, height, dst, [&](auto... v) { return static_cast<D>(formula(v...)); }, sources...);
    else if (policy == RAVIK_POLICY_SATURATE)
        mapElements(
            width, height, dst, [&](auto... v) { return saturate<D>(formula(v...)); }, sources...);
    else
        return RAVIK_EBADPARAM;
    return RAVIK_SUCCESS;
}

// The sum of all elements, modulo 2^32 or 2^64: that of 32-bit integers in 64 bits, that of bytes in 32.
int64_t totalOf(uint32_t width, uint32_t height, Plane<const int32_t> src)
{
    uint64_t total = 0; // unsigned, so that no sum is undefined
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            total += static_cast<uint64_t>(src.row(y)[x]);
    return static_cast<int64_t>(total);
}

uint32_t totalOf(uint32_t width, uint32_t height, Plane<const uint8_t> src)
{
    uint32_t total = 0;
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            total += src.row(y)[x];
    return total;
}

// The scale argument of the products: a right shift where it is positive, else a left shift, by the low 8 bits of its
// magnitude.
class Scale
{
public:
    explicit Scale(int32_t scale)
        : m_left(scale <= 0), m_count((m_left ? 0u - static_cast<uint32_t>(scale) : static_cast<uint32_t>(scale)) & 255)
    {
    }

    // Half of what the last bit stands for after the right shift.
    int64_t rounding() const { return m_left || m_count == 0 || m_count >= 32 ? 0 : int64_t{1} << (m_count - 1); }
    int64_t shift(int64_t value) const
    {
        if (m_count >= 32)
            return 0;
        return m_left ? value * (int64_t{1} << m_count) : value >> m_count;
    }
    int64_t apply(int64_t value) const { return shift(value + rounding()); }

private:
    bool m_left;
    uint32_t m_count;
};

} // namespace

int32_t fixedPointWeight(float weight)
{
    return std::isnan(weight) ? 0 : saturate<int16_t>(std::round(weight * 256.0f));
}

float averageOf(int64_t sum, uint32_t width, uint32_t height)
{
    return static_cast<float>(sum) / static_cast<float>(uint64_t{width} * height);
}

rvkStatus rvkAddScalarf32C(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, float32_t scalar,
                           float32_t* dst, uint32_t dstStride)
{
    mapElements(
        width, height, Plane{dst, dstStride}, [&](float v) { return v + scalar; }, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkAddScalars16C(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                           int16_t* dst, uint32_t dstStride)
{
    return mapByPolicy(
        width, height, RAVIK_POLICY_SATURATE, Plane{dst, dstStride}, [&](int v) { return v + scalar; },
        Plane{src, srcStride});
}

rvkStatus rvkAddSquaredu8u16C(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                              const uint16_t* src2, uint32_t src2Stride, int32_t scale, uint16_t* dst,
                              uint32_t dstStride)
{
    const Scale scaled(scale);
    const auto formula = [&](int a, int b) { return b + scaled.shift((a * a + scaled.rounding()) & 0xffff); };
    return mapByPolicy(width, height, RAVIK_POLICY_SATURATE, Plane{dst, dstStride}, formula, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkAddWeightedu8C(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const uint8_t* src2, uint32_t src2Stride, float32_t alpha, float32_t beta, uint8_t* dst,
                            uint32_t dstStride)
{
    const int32_t weight1 = fixedPointWeight(alpha), weight2 = fixedPointWeight(beta);
    const auto formula = [&](int a, int b) { return (a * weight1 + b * weight2 + 128) >> 8; };
    return mapByPolicy(width, height, RAVIK_POLICY_SATURATE, Plane{dst, dstStride}, formula, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkAddf32C(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const float32_t* src2,
                     uint32_t src2Stride, float32_t* dst, uint32_t dstStride)
{
    mapElements(width, height, Plane{dst, dstStride}, plus, Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkAddu16u8u16C(const uint16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                          const uint8_t* src2, uint32_t src2Stride, uint32_t policy, uint16_t* dst, uint32_t dstStride)
{
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, plus, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkAddu8u16C(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
                       uint32_t src2Stride, uint16_t* dst, uint32_t dstStride)
{
    return mapByPolicy(width, height, RAVIK_POLICY_WRAP, Plane{dst, dstStride}, plus, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyf32C(const float32_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                 const float32_t* src2, uint32_t src2Stride, float32_t* dst, uint32_t dstStride)
{
    mapElements(width, height, Plane{dst, dstStride}, times, Plane{src1, src1Stride}, Plane{src2, src2Stride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkElementMultiplys16C(const int16_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                 const int16_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, int16_t* dst,
                                 uint32_t dstStride)
{
    const auto scaledProduct = [scaled = Scale(scale)](int a, int b) { return scaled.apply(a * b); };
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, scaledProduct, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyu8C(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale, uint8_t* dst,
                                uint32_t dstStride)
{
    const auto scaledProduct = [scaled = Scale(scale)](int a, int b) { return scaled.apply(a * b); };
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, scaledProduct, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyu8s16C(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                   const uint8_t* src2, uint32_t src2Stride, uint32_t policy, int32_t scale,
                                   int16_t* dst, uint32_t dstStride)
{
    const auto scaledProduct = [scaled = Scale(scale)](int a, int b) { return scaled.apply(a * b); };
    return mapByPolicy(width, height, policy, Plane{dst, dstStride}, scaledProduct, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkElementMultiplyu8u16C(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                                   const uint8_t* src2, uint32_t src2Stride, uint16_t* dst, uint32_t dstStride)
{
    return mapByPolicy(width, height, RAVIK_POLICY_WRAP, Plane{dst, dstStride}, times, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

rvkStatus rvkMultiplyScalarf32C(const float32_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                float32_t scalar, float32_t* dst, uint32_t dstStride)
{
    mapElements(
        width, height, Plane{dst, dstStride}, [&](float v) { return v * scalar; }, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkMultiplyScalars16C(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t scalar,
                                int32_t scale, int16_t* dst, uint32_t dstStride)
{
    const Scale scaled(scale);
    return mapByPolicy(
        width, height, RAVIK_POLICY_SATURATE, Plane{dst, dstStride}, [&](int v) { return scaled.apply(v * scalar); },
        Plane{src, srcStride});
}

rvkStatus rvkSubtractu8s16C(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride,
                            const uint8_t* src2, uint32_t src2Stride, int16_t* dst, uint32_t dstStride)
{
    return mapByPolicy(width, height, RAVIK_POLICY_WRAP, Plane{dst, dstStride}, minus, Plane{src1, src1Stride},
                       Plane{src2, src2Stride});
}

} // namespace rvk

#include "forms/ravikArithmForms.h"

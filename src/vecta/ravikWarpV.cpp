// Vector implementations of the perspective warps and remaps.
#include "cpu/ravikWarpC.h"
#include "vecta/simd/sampling.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// The positions of the pixels of a row, by the operations of the reference.
using WarpedPositions = Positions<float, kPositionBits>;
class PerspectiveRow
{
public:
    RVK_INLINE PerspectiveRow(const Homography& h, float y)
    {
        for (size_t i = 0; i < 3; ++i) {
            m_factor[i] = splat(h.m[3 * i]);
            m_start[i] = splat(h.m[3 * i + 1] * y + h.m[3 * i + 2]);
        }
    }

    RVK_INLINE WarpedPositions operator()(size_t x, size_t) const
    {
        const Vecs<float, 2> numbers = iotaSplit<float>();
        WarpedPositions p;
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
            const Vec<float> column = numbers[i] + splat(static_cast<float>(x));
            const Vec<float> factor =
                divide(splat(static_cast<float>(kPositionOne)), column * m_factor[2] + m_start[2]);
            p.x[i] = (column * m_factor[0] + m_start[0]) * factor;
            p.y[i] = (column * m_factor[1] + m_start[1]) * factor;
        });
        return p;
    }

private:
    Vec<float> m_factor[3], m_start[3];
};

template <size_t channels, uint32_t interpolation>
RVK_NOINLINE void warpPerspectiveBy(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                                    const Homography& h)
{
    sampleImage<channels, interpolation>(src, dstWidth, dstHeight, dst, [&](size_t y) RVK_INLINE_LAMBDA {
        return PerspectiveRow(h, static_cast<float>(y));
    });
}

template <uint32_t interpolation>
RVK_NOINLINE void warpTwoBy(const SampledImage& src1, const SampledImage& src2, uint32_t dstWidth, uint32_t dstHeight,
                            Plane<uint8_t> dst1, Plane<uint8_t> dst2, const Homography& h)
{
    using Sampler = StepSampler<1, interpolation, float, kPositionBits>;
    const Sampler first(src1), second(src2);
    const auto rows = [&](size_t y) RVK_INLINE_LAMBDA { return PerspectiveRow(h, static_cast<float>(y)); };
    if (dstWidth < kSampleStep)
        for (size_t y = 0; y < dstHeight; ++y) {
            first.sampleAny(rows(y)(0, dstWidth), dst1.row(y), dstWidth);
            second.sampleAny(rows(y)(0, dstWidth), dst2.row(y), dstWidth);
        }
    else
        forSteps(
            dstWidth, dstHeight, rows,
            [&](const auto& p) RVK_INLINE_LAMBDA { return first.areInside(p) && second.areInside(p); },
            [&](const auto& p, size_t x, size_t y) RVK_INLINE_LAMBDA {
                first.sampleInside(p, dst1.row(y) + x);
                second.sampleInside(p, dst2.row(y) + x);
            },
            [&](const auto& p, size_t x, size_t y) RVK_INLINE_LAMBDA {
                first.sampleAny(p, dst1.row(y) + x);
                second.sampleAny(p, dst2.row(y) + x);
            });
}

template <size_t channels>
RVK_INLINE void warpPerspective(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                                const float32_t* matrix)
{
    const Homography h = scaledHomography(matrix);
    if (src.interpolation == RAVIK_INTERPOLATION_NEAREST)
        warpPerspectiveBy<channels, RAVIK_INTERPOLATION_NEAREST>(src, dstWidth, dstHeight, dst, h);
    else
        warpPerspectiveBy<channels, RAVIK_INTERPOLATION_BILINEAR>(src, dstWidth, dstHeight, dst, h);
}

// Both pictures at the same positions.
RVK_INLINE void warpTwo(const SampledImage& src1, const SampledImage& src2, uint32_t dstWidth, uint32_t dstHeight,
                        Plane<uint8_t> dst1, Plane<uint8_t> dst2, const float32_t* matrix)
{
    const Homography h = scaledHomography(matrix);
    if (src1.interpolation == RAVIK_INTERPOLATION_NEAREST)
        warpTwoBy<RAVIK_INTERPOLATION_NEAREST>(src1, src2, dstWidth, dstHeight, dst1, dst2, h);
    else
        warpTwoBy<RAVIK_INTERPOLATION_BILINEAR>(src1, src2, dstWidth, dstHeight, dst1, dst2, h);
}

template <size_t channels, uint32_t interpolation>
RVK_NOINLINE void remapBy(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                          Plane<const float32_t> mapX, Plane<const float32_t> mapY)
{
    sampleImage<channels, interpolation>(src, dstWidth, dstHeight, dst, [=](size_t y) RVK_INLINE_LAMBDA {
        const float* const xs = mapX.row(y);
        const float* const ys = mapY.row(y);
        return [=](size_t x, size_t n) RVK_INLINE_LAMBDA {
            return Positions<float, 0>{loadCoordinates(xs + x, n), loadCoordinates(ys + x, n)};
        };
    });
}

template <size_t channels>
RVK_INLINE void remap(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                      Plane<const float32_t> mapX, Plane<const float32_t> mapY)
{
    if (src.interpolation == RAVIK_INTERPOLATION_NEAREST)
        remapBy<channels, RAVIK_INTERPOLATION_NEAREST>(src, dstWidth, dstHeight, dst, mapX, mapY);
    else
        remapBy<channels, RAVIK_INTERPOLATION_BILINEAR>(src, dstWidth, dstHeight, dst, mapX, mapY);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikWarpForms.h"

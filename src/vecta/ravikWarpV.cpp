// Vector implementations of the perspective warps and remaps.
#include "cpu/ravikWarpC.h"
#include "vecta/simd/sampling.h"
#include "vecta/vecta.h"

#include <ravik/warp.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// The positions of the pixels of a row, by the operations of the reference.
using WarpedPositions = Positions<kPositionBits>;
template <size_t channels>
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
        const Vecs<float, 2> numbers = numbersOfStep<channels>();
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
        return PerspectiveRow<channels>(h, static_cast<float>(y));
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

template <size_t channels, uint32_t interpolation>
RVK_NOINLINE void remapBy(const SampledImage& src, uint32_t dstWidth, uint32_t dstHeight, Plane<uint8_t> dst,
                          Plane<const float32_t> mapX, Plane<const float32_t> mapY)
{
    sampleImage<channels, interpolation>(src, dstWidth, dstHeight, dst, [=](size_t y) RVK_INLINE_LAMBDA {
        const float* const xs = mapX.row(y);
        const float* const ys = mapY.row(y);
        return [=](size_t x, size_t n) RVK_INLINE_LAMBDA {
            return Positions<0>{loadCoordinates<channels>(xs + x, n), loadCoordinates<channels>(ys + x, n)};
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

// C references of magnitude and direction of gradients, and of weights of edges.
#include "cpu/image.h"
#include "functions.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace rvk {

// A double holds the sum of squares exactly. The root of an integer n lies at least 1 / (8 sqrt(n)) from the nearest
// half, so that its rounding in double precision does not change the integer.
rvkStatus rvkMagnitudes16C(const int16_t* dx, uint32_t width, uint32_t height, uint32_t dxStride, const int16_t* dy,
                           uint32_t dyStride, int16_t* dst, uint32_t dstStride)
{
    const auto magnitude = [](double x, double y) { return saturate<int16_t>(std::lround(std::sqrt(x * x + y * y))); };
    mapElements(width, height, Plane{dst, dstStride}, magnitude, Plane{dx, dxStride}, Plane{dy, dyStride});
    return RAVIK_SUCCESS;
}

// No two 16-bit numbers have an angle within 1e-10 of a half, in which double precision could go wrong.
rvkStatus rvkPhases16C(const int16_t* dx, uint32_t width, uint32_t height, uint32_t dxStride, const int16_t* dy,
                       uint32_t dyStride, uint8_t* dst, uint32_t dstStride)
{
    const auto phase = [](double x, double y) {
        constexpr double unitsOfRadian = 128 / 3.14159265358979323846;
        return static_cast<uint8_t>(std::lround(std::atan2(y, x) * unitsOfRadian));
    };
    mapElements(width, height, Plane{dst, dstStride}, phase, Plane{dx, dxStride}, Plane{dy, dyStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkEdgeWeightings16C(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                               uint16_t threshold, uint16_t weight, uint16_t limit, int16_t* dst, uint32_t dstStride)
{
    const auto weighted = [=](int edge) {
        const auto size = static_cast<uint32_t>(std::max(std::abs(edge) - threshold, 0));
        const int result = static_cast<int>(std::min<uint32_t>({(size * weight + 128) / 256, limit, INT16_MAX}));
        return static_cast<int16_t>(edge < 0 ? -result : result);
    };
    mapElements(width, height, Plane{dst, dstStride}, weighted, Plane{src, srcStride});
    return RAVIK_SUCCESS;
}

} // namespace rvk

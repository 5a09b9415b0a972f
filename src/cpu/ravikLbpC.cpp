// C references of local binary patterns.
#include "cpu/ravikLbpC.h"
#include "cpu/image.h"
#include "functions.h"

#include <cstdlib>

namespace rvk {
namespace {

// Cosines and sines of the points, in 2^-15: those of patterns of n points from n * (n - 1) / 2 on. Not all are rounded
// to the nearest; results depend on them as they are.
constexpr int16_t kCosines[36] = {
    32767,                                                      // 1 point
    32767, -32768,                                              // 2
    32767, -16384, -16384,                                      // 3
    32767, 0,      -32768, 0,                                   // 4
    32767, 10126,  -26510, -26510, 10126,                       // 5
    32767, 16383,  -16384, -32768, -16384, 16383,               // 6
    32767, 20430,  -7292,  -29523, -29523, -7292,  20430,       // 7
    32767, 23170,  0,      -23170, -32768, -23170, 0,     23170 // 8
};
constexpr int16_t kSines[36] = {
    0,                                                        // 1 point
    0, 0,                                                     // 2
    0, 28377, -28378,                                         // 3
    0, 32767, 0,      -32768,                                 // 4
    0, 31163, 19260,  -19261, -31164,                         // 5
    0, 28377, 28377,  0,      -28378, -28378,                 // 6
    0, 25618, 31945,  14217,  -14218, -31946, -25619,         // 7
    0, 23170, 32767,  23170,  0,      -23170, -32768, -23170, // 8
};

// A position of 15 bits after the point: the whole numbers around it, and where it lies between them.
struct Between
{
    int32_t low, high;
    uint32_t fraction;

    explicit Between(int64_t position)
        : low(static_cast<int32_t>(position >> 15)), high(static_cast<int32_t>((position + 32767) >> 15)),
          fraction(static_cast<uint32_t>(position & 32767))
    {
    }
};

bool isNotDarker(const CirclePoint& point, Plane<const uint8_t> src, size_t x, size_t y)
{
    const auto at = [&](int32_t dx, int32_t dy) -> uint32_t {
        return src.row(y + static_cast<size_t>(dy))[x + static_cast<size_t>(dx)]; // modulo 2^32 or 2^64
    };
    const uint32_t value = point.w00 * at(point.x0, point.y0) + point.w01 * at(point.x1, point.y0) +
                           point.w10 * at(point.x0, point.y1) + point.w11 * at(point.x1, point.y1) + kBiasOfCircle;
    return value >= at(0, 0) << 24;
}

} // namespace

CirclePoint circlePoint(uint32_t neighbors, uint32_t k, uint32_t radius)
{
    if (neighbors < 1 || neighbors > 8)
        std::abort(); // no such pattern
    const uint32_t entry = neighbors * (neighbors - 1) / 2 + k;
    const Between x(-int64_t{kSines[entry]} * radius), y(int64_t{kCosines[entry]} * radius);
    const auto weight = [](uint32_t a, uint32_t b) { return (a * b) >> 6; };
    return {.x0 = x.low,
            .y0 = y.low,
            .x1 = x.high,
            .y1 = y.high,
            .w00 = weight(32768 - x.fraction, 32768 - y.fraction),
            .w01 = weight(x.fraction, 32768 - y.fraction),
            .w10 = weight(32768 - x.fraction, y.fraction),
            .w11 = weight(x.fraction, y.fraction)};
}

rvkStatus rvkGLBPu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t radius,
                     uint32_t neighbors, uint8_t* dst, uint32_t dstStride)
{
    const Plane from{src, srcStride};
    const Plane to{dst, dstStride};
    const size_t width = srcWidth - 2 * radius, height = srcHeight - 2 * radius;
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            to.row(y)[x] = 0;
    for (uint32_t k = 0; k < neighbors; ++k) {
        const CirclePoint point = circlePoint(neighbors, k, radius);
        for (size_t y = 0; y < height; ++y)
            for (size_t x = 0; x < width; ++x)
                if (isNotDarker(point, from, x + radius, y + radius))
                    to.row(y)[x] = static_cast<uint8_t>(to.row(y)[x] | 1u << k);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk

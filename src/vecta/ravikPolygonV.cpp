// Vector implementation of the geometry of polygons.
#include "vecta/simd/simd.h"
#include "vecta/vecta.h"

#include <ravik/polygon.h>

namespace rvk::vecta::RVK_ISA {

// Vectors hold whole points, so their even lanes are columns and their odd ones rows.
rvkStatus rvkBoundingRectangleV(const int32_t* points, uint32_t nPoints, rvkRectangle* rectangle)
{
    constexpr size_t lanes = Vec<int32_t>::lanes, together = 4;
    const size_t count = 2 * size_t{nPoints};
    int32_t least[lanes], most[lanes];
    if (count >= lanes) {
        Vecs<int32_t, together> low, high;
        unrolled<together>([&](auto k) RVK_INLINE_LAMBDA { low[k] = high[k] = load(points + count - lanes); });
        size_t i = 0;
        for (; i + together * lanes <= count; i += together * lanes)
            unrolled<together>([&](auto k) RVK_INLINE_LAMBDA {
                const Vec<int32_t> v = load(points + i + k * lanes);
                low[k] = min(low[k], v);
                high[k] = max(high[k], v);
            });
        for (; i + lanes <= count; i += lanes) {
            low[0] = min(low[0], load(points + i));
            high[0] = max(high[0], load(points + i));
        }
        store(least, min(min(low[0], low[1]), min(low[2], low[3])));
        store(most, max(max(high[0], high[1]), max(high[2], high[3])));
    } else {
        for (size_t i = 0; i < lanes; ++i)
            least[i] = most[i] = points[i % count];
    }
    int32_t extremes[4] = {least[0], least[1], most[0], most[1]};
    for (size_t i = 2; i < lanes; ++i) {
        int32_t &low = extremes[i % 2], &high = extremes[2 + i % 2];
        low = least[i] < low ? least[i] : low;
        high = most[i] > high ? most[i] : high;
    }
    *rectangle = {extremes[0], extremes[1], extremes[2] - extremes[0] + 1, extremes[3] - extremes[1] + 1};
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

// Vector implementation of the refinement of corners: columns of the window side by side.
#include "cpu/ravikSubPixC.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

using Floats = Vec<float>;
static_assert(Floats::lanes <= kSubPixLanes);

RVK_INLINE Floats between(Floats a, Floats b, Floats fraction)
{
    return a + fraction * (b - a);
}

// The samples of a row from the one left of the columns on. The last but two have no pixels for them and do not count.
struct Samples
{
    Floats first, second;

    static RVK_INLINE Samples across(const uint8_t* p, Floats fraction)
    {
        const Floats a = toFloat(loadWiden<uint32_t>(p)), b = toFloat(loadWiden<uint32_t>(p + Floats::lanes));
        return {between(a, extract<1>(a, b), fraction), between(b, extract<1>(b, b), fraction)};
    }
    static RVK_INLINE Samples down(const Samples& upper, const Samples& lower, Floats fraction)
    {
        return {between(upper.first, lower.first, fraction), between(upper.second, lower.second, fraction)};
    }

    RVK_INLINE Floats inColumns() const { return extract<1>(first, second); }
    RVK_INLINE Floats acrossColumns() const
    {
        return extract<2>(first, second) - first;
    } // right of each less left of it
};

struct Sums
{
    Floats xx = zero<float>(), xy = xx, yy = xx, xyTimesRow = xx, yyTimesRow = xx;

    RVK_INLINE void add(Floats dx, Floats dy, Floats weight, Floats distance)
    {
        const Floats weightedX = dx * weight, weightedY = dy * weight;
        const Floats mixed = weightedX * dy, down = weightedY * dy;
        xx = xx + weightedX * dx;
        xy = xy + mixed;
        yy = yy + down;
        xyTimesRow = xyTimesRow + mixed * distance;
        yyTimesRow = yyTimesRow + down * distance;
    }
};

void sumColumns(const SubPixWindow& window, const SubPixPatch& patch, const SubPixSums& sums)
{
    const Floats right = splat(patch.right), below = splat(patch.below);
    for (size_t column = 0; column < window.columns; column += Floats::lanes) {
        const uint8_t* p = patch.bytes + column;
        Samples upper = Samples::across(p, right);
        const auto nextRow = [&]() RVK_INLINE_LAMBDA {
            p += patch.pitch;
            const Samples lower = Samples::across(p, right);
            const Samples row = Samples::down(upper, lower, below);
            upper = lower;
            return row;
        };
        const Floats isAlive = load(window.isAlive + column);
        Sums sum;
        Floats above = nextRow().inColumns();
        Samples here = nextRow();
        Floats distance = splat(-static_cast<float>(window.rows / 2));
        for (size_t row = 0; row < window.rows; ++row) {
            const Samples next = nextRow();
            Floats weight = splat(window.rowWeights[row]);
            if (row >= window.deadTop && row < window.deadBottom)
                weight = weight * isAlive;
            sum.add(here.acrossColumns(), next.inColumns() - above, weight, distance);
            distance = distance + splat(1.0f);
            above = here.inColumns();
            here = next;
        }
        store(sums.xx + column, sum.xx);
        store(sums.xy + column, sum.xy);
        store(sums.yy + column, sum.yy);
        store(sums.xyTimesRow + column, sum.xyTimesRow);
        store(sums.yyTimesRow + column, sum.yyTimesRow);
    }
}

} // namespace

rvkStatus rvkCornerRefineSubPixu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   float32_t* xy, uint32_t nCorners, uint32_t windowRadiusX, uint32_t windowRadiusY,
                                   int32_t deadRadiusX, int32_t deadRadiusY, uint32_t maxIterations, float32_t epsilon)
{
    return refineCorners(sumColumns, src, srcWidth, srcHeight, srcStride, xy, nCorners,
                         {windowRadiusX, windowRadiusY, deadRadiusX, deadRadiusY, maxIterations, epsilon});
}

} // namespace rvk::vecta::RVK_ISA

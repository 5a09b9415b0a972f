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

// The samples of a row left of the columns, in them and right of them.
struct Samples
{
    Floats v[3];

    static RVK_INLINE Samples across(const uint8_t* p, Floats fraction)
    {
        Floats pixels[4];
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { pixels[i] = toFloat(loadWiden<uint32_t>(p + i)); });
        Samples row;
        unrolled<3>([&](auto i) RVK_INLINE_LAMBDA { row.v[i] = between(pixels[i], pixels[i + 1], fraction); });
        return row;
    }
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
            Samples row;
            unrolled<3>([&](auto i) RVK_INLINE_LAMBDA { row.v[i] = between(upper.v[i], lower.v[i], below); });
            upper = lower;
            return row;
        };
        const Floats isAlive = load(window.isAlive + column);
        Sums sum;
        Floats above = nextRow().v[1];
        Samples here = nextRow();
        for (size_t row = 0; row < window.rows; ++row) {
            const Samples next = nextRow();
            Floats weight = splat(window.rowWeights[row]);
            if (row >= window.deadTop && row < window.deadBottom)
                weight = weight * isAlive;
            const float distance = static_cast<float>(row) - static_cast<float>(window.rows / 2);
            sum.add(here.v[2] - here.v[0], next.v[1] - above, weight, splat(distance));
            above = here.v[1];
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

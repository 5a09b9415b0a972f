// Vector implementation of residuals of poses: the reference's operations in its order, where there are vectors of
// doubles.
#include "cpu/ravikCameraC.h"
#include "vecta/simd/doubles.h"
#include "vecta/vecta.h"

#include <ravik/pose.h>

namespace rvk {
decltype(::rvkGeomPoseEvaluateErrorf32) rvkGeomPoseEvaluateErrorf32C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {

rvkStatus rvkGeomPoseEvaluateErrorf32V(const rvkaCorrespondences* pairs, const float32_t* pose, float32_t* residuals,
                                       float32_t* meanSquaredError)
{
    constexpr size_t lanes = Doubles::lanes;
    if constexpr (lanes == 1)
        return rvkGeomPoseEvaluateErrorf32C(pairs, pose, residuals, meanSquaredError);
    const size_t srcStep = pairs->srcStride / sizeof(float), dstStep = pairs->dstStride / sizeof(float);
    const Doubles infinity = splatDouble(__builtin_inf()), largest = splatDouble(kLargestFloat);
    const PoseMatrix matrix(pose);
    double sum = 0;
    uint32_t used = 0;
    for (size_t i = 0; i < pairs->count; i += lanes) {
        const size_t left = pairs->count - i, n = left < lanes ? left : lanes;
        const DoublePoints<3> from = loadPoints<3>(pairs->src + i * srcStep, srcStep, left);
        const DoublePoints<2> to = loadPoints<2>(pairs->dst + i * dstStep, dstStep, left);
        const auto row = [&](int r) RVK_INLINE_LAMBDA {
            return splatDouble(matrix.m[r][0]) * from[0] + splatDouble(matrix.m[r][1]) * from[1] +
                   splatDouble(matrix.m[r][2]) * from[2] + splatDouble(matrix.m[r][3]);
        };
        const Doubles z = row(2), right = row(0) / z - to[0], bottom = row(1) / z - to[1];
        const DoubleMask isInFront =
            greater(z, splatDouble(0)) & notGreater(abs(right), largest) & notGreater(abs(bottom), largest);
        if (residuals)
            storePoints(residuals + 2 * i,
                        DoublePoints<2>{select(isInFront, right, infinity), select(isInFront, bottom, infinity)}, 2, n);
        double squares[lanes];
        storeDoubles(squares, select(isInFront, right * right + bottom * bottom, infinity));
        for (size_t k = 0; k < n; ++k)
            if (!pairs->mask || pairs->mask[i + k]) {
                sum += squares[k];
                ++used;
            }
    }
    const double mean = used ? sum / used : 0;
    *meanSquaredError = mean <= kLargestFloat ? static_cast<float>(mean) : __builtin_inff();
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

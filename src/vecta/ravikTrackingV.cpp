// Vector implementations of the trackers.
#include "cpu/ravikTrackingC.h"
#include "vecta/ravikMomentsV.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/tracking.h>

namespace rvk::vecta::RVK_ISA {

void rvkUpdateMotionHistoryu8s32V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int32_t* dst, uint32_t dstStride, int32_t timeStamp, int32_t maxHistory)
{
    const Vec<int32_t> now = splat(timeStamp), history = splat(maxHistory), none = zero<int32_t>();
    mapImage(
        srcWidth, srcHeight, Plane{dst, dstStride},
        [=](Vec<uint8_t> moves, Vecs<int32_t, 4> stamps) RVK_INLINE_LAMBDA {
            const Masks<int16_t, 2> still = widen(equal(bitCast<int8_t>(moves), zero<int8_t>()));
            unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
                const Vec<int32_t> kept = select(less(stamps[i] + history, now), none, stamps[i]);
                stamps[i] = select(widen(still[i / 2])[i % 2], kept, now);
            });
            return stamps;
        },
        Plane{src, srcStride}, Plane<const int32_t>{dst, dstStride});
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikTrackingForms.h"

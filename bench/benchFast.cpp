// FAST corners.
#include "bench.h"

#include <ravik/fast.h>

#if RVK_BENCH_OPENCV_FEATURES2D
#include <opencv2/features2d.hpp>
#endif

namespace {

using namespace bench;

constexpr s32 kBarrier = 20;
constexpr u32 kMostCorners = 50000;

// Corners, scores, the count and the memory for suppression.
struct Lists
{
    u32 *xy, *scores, *count, *tempBuf;
    const u8* mask; // all bits 0

    explicit Lists(const Picture& p)
        : xy(p.out<u32>(0)), scores(p.out<u32>(1)), count(p.out<u32>(2)), tempBuf(p.out<u32>(3)), mask(p.out<u8>(4))
    {
    }
};

#if RVK_BENCH_OPENCV_FEATURES2D
template <bool suppresses>
void opencvFast9(const Picture& p)
{
    static std::vector<cv::KeyPoint> corners;
    cv::FAST(p.matIn<u8>(), corners, kBarrier, suppresses, cv::FastFeatureDetector::TYPE_9_16);
}
constexpr Work kOpencvFast9 = opencvFast9<false>, kOpencvFast9Maxima = opencvFast9<true>;
#else
constexpr Work kOpencvFast9 = nullptr, kOpencvFast9Maxima = nullptr;
#endif

constexpr Row kRows[] = {
    {"rvkCornerFast9u8", "FAST-9", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p);
           rvkCornerFast9u8(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, kMostCorners, l.count)),
     kOpencvFast9},
    {"rvkCornerFast9InMasku8", "FAST-9", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p); rvkCornerFast9InMasku8(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, kMostCorners,
                                                    l.count, l.mask, p.width, p.height)),
     kOpencvFast9},
    {"rvkCornerFast9Scoreu8", "FAST-9", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p);
           rvkCornerFast9Scoreu8(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, l.scores, kMostCorners, l.count)),
     kOpencvFast9},
    {"rvkCornerFast9InMaskScoreu8", "FAST-9", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p); rvkCornerFast9InMaskScoreu8(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, l.scores,
                                                         kMostCorners, l.count, l.mask, p.width, p.height)),
     kOpencvFast9},
    {"rvkCornerFast9Scoreu8_v2", "FAST-9 nonmax", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p); rvkCornerFast9Scoreu8_v2(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, l.scores,
                                                      kMostCorners, l.count, 1, l.tempBuf)),
     kOpencvFast9Maxima},
    {"rvkCornerFast9InMaskScoreu8_v2", "FAST-9 nonmax", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p);
           rvkCornerFast9InMaskScoreu8_v2(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, l.scores, kMostCorners,
                                          l.count, l.mask, p.width, p.height, 1, l.tempBuf)),
     kOpencvFast9Maxima},
    {"rvkCornerFast10u8", "FAST-10", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p);
           rvkCornerFast10u8(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, kMostCorners, l.count))},
    {"rvkCornerFast10InMasku8", "FAST-10", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p); rvkCornerFast10InMasku8(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, kMostCorners,
                                                     l.count, l.mask, p.width, p.height))},
    {"rvkCornerFast10Scoreu8", "FAST-10 nonmax", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p); rvkCornerFast10Scoreu8(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, l.scores,
                                                    kMostCorners, l.count, 1, l.tempBuf))},
    {"rvkCornerFast10InMaskScoreu8", "FAST-10 nonmax", trafficOnNatural(1, 0),
     RAVIK(const Lists l(p);
           rvkCornerFast10InMaskScoreu8(p.in<u8>(), p.width, p.height, 0, kBarrier, 0, l.xy, l.scores, kMostCorners,
                                        l.count, l.mask, p.width, p.height, 1, l.tempBuf))},
};
const Rows registered(kRows);

} // namespace

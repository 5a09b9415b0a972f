// Moments and trackers.
#include "bench.h"

#include <ravik/moments.h>
#include <ravik/tracking.h>

namespace {

using namespace bench;

template <class T>
void takeMoments(const Picture& p, rvkStatus (*function)(const T*, u32, u32, u32, u32, rvkMoments*))
{
    function(p.in<T>(), p.width, p.height, 0, 0, reinterpret_cast<rvkMoments*>(p.out<f32>()));
}

// One step of a window as large as the picture.
template <class T>
void shift(const Picture& p, u32 (*function)(const T*, u32, u32, u32, rvkRectangle*, u32, f32))
{
    rvkRectangle window = {0, 0, static_cast<s32>(p.width), static_cast<s32>(p.height)};
    function(p.in<T>(), p.width, p.height, 0, &window, 1, 1);
}

// And its box.
template <class T>
void track(const Picture& p, u32 (*function)(const T*, u32, u32, u32, rvkRectangle*, u32, f32, rvkRotatedBox*))
{
    rvkRectangle window = {0, 0, static_cast<s32>(p.width), static_cast<s32>(p.height)};
    function(p.in<T>(), p.width, p.height, 0, &window, 1, 1, reinterpret_cast<rvkRotatedBox*>(p.out<f32>()));
}

// Between pictures that have nothing in common: nearly all blocks are looked for.
constexpr u32 kSearch = 8;

void trackBlocks(const Picture& p)
{
    u32 count;
    rvkTrackBMOpticalFlow16x16u8(p.in<u8>(0), p.in<u8>(1), p.width, p.height, 0, 0, 0, p.width, p.height, 16, kSearch,
                                 kSearch, 1, 0, &count, p.out<u32>(0), p.out<u32>(1), p.out<u32>(2), p.out<u32>(3));
}

#if RVK_BENCH_OPENCV
// Squared differences, of all blocks.
void trackBlocksByOpenCv(const Picture& p)
{
    const cv::Mat src1 = p.matIn<u8>(0), src2 = p.matIn<u8>(1);
    const cv::Rect all(0, 0, src1.cols, src1.rows);
    cv::Mat distances;
    u32 i = 0;
    for (int y = 0; y + 16 <= src1.rows; y += 16)
        for (int x = 0; x + 16 <= src1.cols; x += 16) {
            constexpr int reach = kSearch, side = 16 + 2 * reach;
            cv::matchTemplate(src2(cv::Rect(x - reach, y - reach, side, side) & all), src1(cv::Rect(x, y, 16, 16)),
                              distances, cv::TM_SQDIFF);
            cv::Point best;
            cv::minMaxLoc(distances, nullptr, nullptr, &best);
            p.out<s32>()[i++] = best.x + best.y;
        }
}
#endif

constexpr Row kRows[] = {
    {"rvkImageMomentsu8", nullptr, traffic(1, 0), RAVIK(takeMoments(p, rvkImageMomentsu8)),
     OPENCV(p.out<f32>()[0] = static_cast<f32>(cv::moments(p.matIn<u8>()).m00))},
    {"rvkImageMomentss32", nullptr, traffic(4, 0), RAVIK(takeMoments(p, rvkImageMomentss32))},
    {"rvkImageMomentsf32", nullptr, traffic(4, 0), RAVIK(takeMoments(p, rvkImageMomentsf32)),
     OPENCV(p.out<f32>()[0] = static_cast<f32>(cv::moments(p.matIn<f32>()).m00))},
    {"rvkMeanShiftu8", nullptr, traffic(1, 0), RAVIK(shift(p, rvkMeanShiftu8))},
    {"rvkMeanShifts32", nullptr, traffic(4, 0), RAVIK(shift(p, rvkMeanShifts32))},
    {"rvkMeanShiftf32", nullptr, traffic(4, 0), RAVIK(shift(p, rvkMeanShiftf32))},
    {"rvkConAdaTracku8", nullptr, traffic(2, 0), RAVIK(track(p, rvkConAdaTracku8))},
    {"rvkConAdaTracks32", nullptr, traffic(8, 0), RAVIK(track(p, rvkConAdaTracks32))},
    {"rvkConAdaTrackf32", nullptr, traffic(8, 0), RAVIK(track(p, rvkConAdaTrackf32))},
    {"rvkTrackBMOpticalFlow16x16u8", nullptr, trafficOnNatural(2, 0), trackBlocks, OPENCV(trackBlocksByOpenCv(p))},
    {"rvkUpdateMotionHistoryu8s32", nullptr, streaming(5, 4),
     RAVIK(rvkUpdateMotionHistoryu8s32(p.in<u8>(), p.width, p.height, 0, p.out<s32>(), 0, 1000, 300))},
};
const Rows registered(kRows);

} // namespace

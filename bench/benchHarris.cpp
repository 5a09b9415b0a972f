// Corners. OpenCV has the responses of its Harris detector alone, where ours gives the list of corners.
#include "bench.h"

#include <algorithm>
#include <ravik/harris.h>
#if RVK_BENCH_OPENCV
#include <vector>
#endif

namespace {

using namespace bench;

constexpr u32 kMost = 5000;
constexpr s32 kThreshold = 2000;
constexpr f32 kEigenvalue = 20;

// A corner somewhere in each of many fields of a picture.
struct Places
{
    static constexpr u32 across = 40, down = 25, count = across * down, width = 640, height = 480;
    f32 xy[2 * count];
    Places()
    {
        for (u32 i = 0; i < count; ++i) {
            xy[2 * i] = static_cast<f32>(16 + i % across * 15) + static_cast<f32>(i * 7 % 16) / 16;
            xy[2 * i + 1] = static_cast<f32>(16 + i / across * 18) + static_cast<f32>(i * 11 % 16) / 16;
        }
    }
};
const Places& places()
{
    static const Places all;
    return all;
}
const u8* photo()
{
    return naturalInput<u8>(0, Places::width, Places::height);
}

void refine(const Picture& p)
{
    f32* const xy = p.out<f32>();
    std::copy_n(places().xy, 2 * Places::count, xy);
    rvkCornerRefineSubPixu8(photo(), Places::width, Places::height, 0, xy, Places::count, 5, 5, -1, -1, 10, 0.01f);
}

constexpr Row kRows[] = {
    {"rvkCornerHarrisu8", nullptr, trafficOnNatural(1, 1),
     RAVIK(rvkCornerHarrisu8(p.in<u8>(), p.width, p.height, 0, 0, p.out<u32>(), kMost, p.out<u32>(1), kThreshold)),
     OPENCV(cv::cornerHarris(p.matIn<u8>(), p.matOut<f32>(), 5, 3, 0.0625))},
    {"rvkCornerHarrisInMasku8", nullptr, trafficOnNatural(1, 1),
     RAVIK(rvkCornerHarrisInMasku8(p.in<u8>(), p.width, p.height, 0, 0, p.out<u32>(), kMost, p.out<u32>(1), kThreshold,
                                   p.out<u8>(2), p.width, p.height))},
    {"rvkCornerHarrisScoreu8", nullptr, trafficOnNatural(1, 1),
     RAVIK(rvkCornerHarrisScoreu8(p.in<u8>(), p.width, p.height, 0, 0, p.out<u32>(), p.out<u32>(2), kMost,
                                  p.out<u32>(1), kThreshold))},
    {"rvkCornerHarrisAdaptiveu8", nullptr, trafficOnNatural(1, 1),
     RAVIK(rvkCornerHarrisAdaptiveu8(p.in<u8>(), p.width, p.height, 0, 0, p.out<u32>(), 500, p.out<u32>(1),
                                     16 * kThreshold, kThreshold))},
    {"rvkLocalHarrisMaxu8", nullptr, trafficOnNatural(1, 1),
     RAVIK(rvkLocalHarrisMaxu8(p.in<u8>(), p.width, p.height, 0, p.out<u32>(), p.out<u32>(1), p.out<s32>(2)))},
    {"rvkGoodFeatureToTracku8", nullptr, trafficOnNatural(1, 1),
     RAVIK(rvkGoodFeatureToTracku8(p.in<u8>(), p.width, p.height, 0, 8, 0, kEigenvalue, p.out<u32>(), kMost,
                                   p.out<u32>(1))),
     OPENCV(std::vector<cv::Point2f> corners;
            cv::goodFeaturesToTrack(p.matIn<u8>(), corners, kMost, 0.05, 8, cv::noArray(), 5))},
    {"rvkFindMultipleMaximau8", nullptr, trafficOnNatural(1, 1),
     RAVIK(rvkFindMultipleMaximau8(p.in<u8>(), p.width, p.height, 0, 3, 128, p.out<u32>(), p.out<u32>(2), kMost,
                                   p.out<u32>(1))),
     OPENCV(const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, {7, 7}); cv::Mat largest = p.matOut<u8>(3);
            cv::dilate(p.matIn<u8>(), largest, kernel); cv::compare(p.matIn<u8>(), largest, largest, cv::CMP_EQ);
            std::vector<cv::Point> maxima; cv::findNonZero(largest, maxima))},
    {"rvkCornerRefineSubPixu8",
     nullptr,
     traffic(8, 8),
     RAVIK(refine(p)),
     OPENCV(std::vector<cv::Point2f> corners(Places::count); std::copy_n(places().xy, 2 * Places::count, &corners[0].x);
            cv::cornerSubPix(cv::Mat(Places::height, Places::width, CV_8U, const_cast<u8*>(photo())), corners, {5, 5},
                             {-1, -1}, {cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 10, 0.01})),
     nullptr,
     {Places::count, 1}},
};
const Rows registered(kRows);

} // namespace

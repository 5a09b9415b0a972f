// Patches by normalised cross-correlation: around points, a search each, and everywhere in a picture.
#include "bench.h"

#include <ravik/ncc.h>

namespace {

using namespace bench;

// Points of a picture, and a patch for each from another picture.
constexpr Picture kPoints = {200, 1};
constexpr u32 kWidth = 640, kHeight = 480, kRadius = 16;

const u8* photo(unsigned index)
{
    return naturalInput<u8>(index, kWidth, kHeight);
}
u32 columnOf(u32 point)
{
    return 24 + point % 20 * 31;
}
u32 rowOf(u32 point)
{
    return 24 + point / 20 * 48;
}

template <class Function>
void searchAroundPoints(const Picture& p, Function function)
{
    for (u32 i = 0; i < p.width; ++i) {
        const u8* const patch = photo(1) + size_t{rowOf(i)} * kWidth + columnOf(i);
        u32* const best = p.out<u32>() + 2 * i;
        function(patch, kWidth, photo(0), kWidth, kHeight, 0, columnOf(i), rowOf(i), kRadius, best, best + 1,
                 p.out<f32>(1) + i);
    }
}

#if RVK_BENCH_OPENCV
void storeBest(const Picture& p, u32 i, const cv::Mat& scores)
{
    double most;
    cv::Point at;
    cv::minMaxLoc(scores, nullptr, &most, nullptr, &at);
    p.out<f32>()[i] = static_cast<f32>(most) + static_cast<f32>(at.x + at.y);
}

cv::Mat photoMat(unsigned index)
{
    return cv::Mat(kHeight, kWidth, CV_8U, const_cast<u8*>(photo(index)));
}

void searchSquaresByOpenCv(const Picture& p)
{
    constexpr int side = 2 * kRadius + 8;
    cv::Mat scores;
    for (u32 i = 0; i < p.width; ++i) {
        const cv::Point at(static_cast<int>(columnOf(i)), static_cast<int>(rowOf(i)));
        const cv::Point first = at - cv::Point(kRadius + 4, kRadius + 4);
        cv::matchTemplate(photoMat(0)({first, cv::Size(side, side)}), photoMat(1)({at, cv::Size(8, 8)}), scores,
                          cv::TM_CCOEFF_NORMED);
        storeBest(p, i, scores);
    }
}

void searchEverywhereByOpenCv(const Picture& p)
{
    cv::Mat scores;
    cv::matchTemplate(p.matIn<u8>(), p.matIn<u8>(1)({200, 100, 8, 8}), scores, cv::TM_CCOEFF_NORMED);
    storeBest(p, 0, scores);
}
#endif

constexpr Row kRows[] = {
    {"rvkNCCPatchOnCircle8x8u8_v2", nullptr, traffic(64, 12), RAVIK(searchAroundPoints(p, rvkNCCPatchOnCircle8x8u8_v2)),
     nullptr, nullptr, kPoints},
    {"rvkNCCPatchOnSquare8x8u8_v2", nullptr, traffic(64, 12), RAVIK(searchAroundPoints(p, rvkNCCPatchOnSquare8x8u8_v2)),
     OPENCV(searchSquaresByOpenCv(p)), nullptr, kPoints},
    {"rvkNCCPatchesOnRectu8", nullptr, trafficOnNatural(1, 0),
     RAVIK(rvkNCCPatchesOnRectu8(p.in<u8>(1) + 100 * p.width + 200, 1, 8, 8, p.width, p.in<u8>(), p.width, p.height, 0,
                                 0, 0, p.width, p.height, p.out<u32>(), p.out<u32>(1), p.out<f32>(2))),
     OPENCV(searchEverywhereByOpenCv(p))},
};
const Rows registered(kRows);

} // namespace

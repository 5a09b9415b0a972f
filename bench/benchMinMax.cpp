#include "bench.h"

#include <ravik/minmax.h>

namespace {

using namespace bench;

template <class T, auto function>
void search(const Picture& p)
{
    T low, high;
    u32 at[4];
    function(p.in<T>(), p.width, p.height, 0, &low, &high, &at[0], &at[1], &at[2], &at[3]);
}

#if RVK_BENCH_OPENCV
template <class T>
void searchOpencv(const Picture& p)
{
    double low, high;
    cv::Point lowAt, highAt;
    cv::minMaxLoc(p.matIn<T>(), &low, &high, &lowAt, &highAt);
}
#define OPENCV_SEARCH(T) searchOpencv<T>
#else
#define OPENCV_SEARCH(T) nullptr
#endif

constexpr Row kRows[] = {
    {"rvkMinMaxLocu8", "min max with location u8", trafficByContent(1, 0), search<u8, rvkMinMaxLocu8>,
     OPENCV_SEARCH(u8)},
    {"rvkMinMaxLocu16", nullptr, trafficByContent(2, 0), search<u16, rvkMinMaxLocu16>, OPENCV_SEARCH(u16)},
    {"rvkMinMaxLocs16", "min/max s16", trafficByContent(2, 0), search<s16, rvkMinMaxLocs16>, OPENCV_SEARCH(s16)},
    {"rvkMinMaxLocu32", nullptr, trafficByContent(4, 0), search<u32, rvkMinMaxLocu32>},
    {"rvkMinMaxLocs32", nullptr, trafficByContent(4, 0), search<s32, rvkMinMaxLocs32>, OPENCV_SEARCH(s32)},
    {"rvkMinMaxLocf32", "min/max f32", trafficByContent(4, 0), search<f32, rvkMinMaxLocf32>, OPENCV_SEARCH(f32)},
    {"rvkMinMaxLocu8_v2", "min/max u8", trafficByContent(1, 0), search<u8, rvkMinMaxLocu8_v2>, OPENCV_SEARCH(u8)},
    {"rvkMinMaxLocu16_v2", nullptr, trafficByContent(2, 0), search<u16, rvkMinMaxLocu16_v2>, OPENCV_SEARCH(u16)},
    {"rvkMinMaxLocs16_v2", "min/max s16", trafficByContent(2, 0), search<s16, rvkMinMaxLocs16_v2>, OPENCV_SEARCH(s16)},
    {"rvkMinMaxLocu32_v2", nullptr, trafficByContent(4, 0), search<u32, rvkMinMaxLocu32_v2>},
    {"rvkMinMaxLocs32_v2", nullptr, trafficByContent(4, 0), search<s32, rvkMinMaxLocs32_v2>, OPENCV_SEARCH(s32)},
    {"rvkMinMaxLocf32_v2", "min/max f32", trafficByContent(4, 0), search<f32, rvkMinMaxLocf32_v2>, OPENCV_SEARCH(f32)},
};
const Rows registered(kRows);

} // namespace

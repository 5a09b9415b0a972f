// Median filters.
#include "bench.h"

#include <ravik/median.h>

namespace {

using namespace bench;

constexpr Row kRows[] = {
    {"rvkFilterMedian3x3u8_v2", "median 3x3 u8", trafficByContent(1, 1),
     RAVIK(rvkFilterMedian3x3u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::medianBlur(p.matIn<u8>(), p.matOut<u8>(), 3))},
    {"rvkFilterMedian3x3u8_v3, replicate", "median 3x3 u8", trafficByContent(1, 1),
     RAVIK(rvkFilterMedian3x3u8_v3(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, RAVIK_BORDER_REPLICATE, 0)),
     OPENCV(cv::medianBlur(p.matIn<u8>(), p.matOut<u8>(), 3))},
    {"rvkFilterMedianMxNs16, 3x3", "median 3x3 s16", trafficByContent(2, 2),
     RAVIK(rvkFilterMedianMxNs16(p.in<s16>(), p.width, p.height, 0, 3, 3, p.out<s16>(), 0)),
     OPENCV(cv::medianBlur(p.matIn<s16>(), p.matOut<s16>(), 3))},
    {"rvkFilterMedianMxNs16, 5x5", "median 5x5 s16", trafficByContent(2, 2),
     RAVIK(rvkFilterMedianMxNs16(p.in<s16>(), p.width, p.height, 0, 5, 5, p.out<s16>(), 0)),
     OPENCV(cv::medianBlur(p.matIn<s16>(), p.matOut<s16>(), 5))},
    {"rvkFilterMedianMxNs16, 7x7", "median 7x7 s16", trafficByContent(2, 2),
     RAVIK(rvkFilterMedianMxNs16(p.in<s16>(), p.width, p.height, 0, 7, 7, p.out<s16>(), 0))},
};
const Rows registered(kRows);

} // namespace

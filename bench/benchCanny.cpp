// Canny edges. rvkFilterCannyu8 gives the gradient as well, OpenCV's function does not.
#include "bench.h"

#include <ravik/canny.h>

namespace {

using namespace bench;

// Thresholds as those of the 3x3 rows, in units of the larger kernels' gain.
constexpr int kLow5 = 100 * 12, kHigh5 = 200 * 12, kLow7 = 100 * 160, kHigh7 = 200 * 160;

void ravik(const Picture& p, u32 aperture, s32 low, s32 high, u32 norm)
{
    rvkFilterCannyu8(p.in<u8>(), p.width, p.height, 0, aperture, low, high, norm, p.out<u8>(), 0, p.out<s16>(0),
                     p.out<s16>(1), 0);
}

constexpr Row kRows[] = {
    {"rvkFilterCanny3x3u8", "Canny 3x3 L1", trafficByContent(1, 1),
     RAVIK(rvkFilterCanny3x3u8(p.in<u8>(), p.width, p.height, p.out<u8>(), 100, 200)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), 100, 200, 3))},
    {"rvkFilterCanny3x3u8_v2", "Canny 3x3 L1", trafficByContent(1, 1),
     RAVIK(rvkFilterCanny3x3u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100, 200)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), 100, 200, 3))},
    {"rvkFilterCanny3x3u8_v3", "Canny 3x3 L1", trafficByContent(1, 1),
     RAVIK(rvkFilterCanny3x3u8_v3(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100, 200)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), 100, 200, 3))},
    {"rvkFilterCannyu8, 3x3 L1", nullptr, trafficByContent(1, 5), RAVIK(ravik(p, 3, 100, 200, RAVIK_CANNY_NORM_L1)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), 100, 200, 3))},
    {"rvkFilterCannyu8, 3x3 L2", nullptr, trafficByContent(1, 5), RAVIK(ravik(p, 3, 100, 200, RAVIK_CANNY_NORM_L2)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), 100, 200, 3, true))},
    {"rvkFilterCannyu8, 5x5 L1", nullptr, trafficByContent(1, 5),
     RAVIK(ravik(p, 5, kLow5, kHigh5, RAVIK_CANNY_NORM_L1)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), kLow5, kHigh5, 5))},
    {"rvkFilterCannyu8, 5x5 L2", nullptr, trafficByContent(1, 5),
     RAVIK(ravik(p, 5, kLow5, kHigh5, RAVIK_CANNY_NORM_L2)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), kLow5, kHigh5, 5, true))},
    {"rvkFilterCannyu8, 7x7 L1", nullptr, trafficByContent(1, 5),
     RAVIK(ravik(p, 7, kLow7, kHigh7, RAVIK_CANNY_NORM_L1)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), kLow7, kHigh7, 7))},
    {"rvkFilterCannyu8, 7x7 L2", nullptr, trafficByContent(1, 5),
     RAVIK(ravik(p, 7, kLow7, kHigh7, RAVIK_CANNY_NORM_L2)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), kLow7, kHigh7, 7, true))},
};
const Rows registered(kRows);

} // namespace

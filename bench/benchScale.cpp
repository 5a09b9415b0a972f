// Scalers by fixed ratios. OpenCV and libyuv get destinations of their own size.
#include "bench.h"

#include <ravik/scale.h>

namespace {

using namespace bench;

#if RVK_BENCH_OPENCV
// A picture of `to` pixels for each `from`, across and down.
template <class T>
cv::Mat matScaled(const Picture& p, uint32_t from, uint32_t to)
{
    return Picture{p.width / from * to, p.height / from * to}.matOut<T>();
}
#endif

constexpr Row kRows[] = {
    {"rvkScaleDownBy2Gaussian3x3u8", nullptr, traffic(1, 0.25),
     RAVIK(rvkScaleDownBy2Gaussian3x3u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0))},
    {"rvkScaleDownBy2Gaussian5x5u8", "pyrDown 5x5 u8", traffic(1, 0.25),
     RAVIK(rvkScaleDownBy2Gaussian5x5u8(p.in<u8>(), p.width, p.height, p.out<u8>())),
     OPENCV(cv::Mat dst = matScaled<u8>(p, 2, 1); cv::pyrDown(p.matIn<u8>(), dst, dst.size()))},
    {"rvkScaleDownBy2Gaussian5x5f32", nullptr, traffic(4, 1),
     RAVIK(rvkScaleDownBy2Gaussian5x5f32(p.in<f32>(), p.width, p.height, p.out<f32>())),
     OPENCV(cv::Mat dst = matScaled<f32>(p, 2, 1); cv::pyrDown(p.matIn<f32>(), dst, dst.size()))},
};
const Rows registered(kRows);

} // namespace

// Magnitude and direction of gradients, weights of edges. OpenCV has the first two for floats only: its columns convert
// there and back, and its angles are good to 0.3 degrees.
#include "bench.h"

#include <ravik/magnitude.h>

namespace {

using namespace bench;

#if RVK_BENCH_OPENCV
using OfFloats = void (*)(cv::InputArray, cv::InputArray, cv::OutputArray);

void byFloats(const Picture& p, OfFloats function, cv::Mat dst, double scale)
{
    cv::Mat dx = p.matOut<f32>(1), dy = p.matOut<f32>(2), result = p.matOut<f32>(3);
    p.matIn<s16>(0).convertTo(dx, CV_32F);
    p.matIn<s16>(1).convertTo(dy, CV_32F);
    function(dx, dy, result);
    result.convertTo(dst, dst.type(), scale);
}

void phase(cv::InputArray dx, cv::InputArray dy, cv::OutputArray degrees)
{
    cv::phase(dx, dy, degrees, true);
}
#endif

constexpr Row kRows[] = {
    {"rvkEdgeWeightings16", nullptr, traffic(2, 2),
     RAVIK(rvkEdgeWeightings16(p.in<s16>(), p.width, p.height, 0, 20, 384, 4000, p.out<s16>(), 0))},
    {"rvkMagnitudes16", nullptr, traffic(4, 2),
     RAVIK(rvkMagnitudes16(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, p.out<s16>(), 0)),
     OPENCV(byFloats(p, cv::magnitude, p.matOut<s16>(), 1))},
    {"rvkPhases16", nullptr, traffic(4, 1),
     RAVIK(rvkPhases16(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, p.out<u8>(), 0)),
     OPENCV(byFloats(p, phase, p.matOut<u8>(), 256 / 360.0))},
};
const Rows registered(kRows);

} // namespace

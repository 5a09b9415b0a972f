// Magnitude and direction of gradients, weights of edges. The nearest that OpenCV has are functions of floats: a root
// that is not rounded, and an angle in degrees that is good to 0.3.
#include "bench.h"

#include <ravik/magnitude.h>

namespace {

using namespace bench;

constexpr Row kRows[] = {
    {"rvkEdgeWeightings16", nullptr, streaming(2, 2),
     RAVIK(rvkEdgeWeightings16(p.in<s16>(), p.width, p.height, 0, 20, 384, 4000, p.out<s16>(), 0))},
    {"rvkMagnitudes16", nullptr, traffic(4, 2),
     RAVIK(rvkMagnitudes16(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, p.out<s16>(), 0)),
     OPENCV(cv::magnitude(p.matIn<f32>(0), p.matIn<f32>(1), p.matOut<f32>()))},
    {"rvkPhases16", nullptr, traffic(4, 1),
     RAVIK(rvkPhases16(p.in<s16>(0), p.width, p.height, 0, p.in<s16>(1), 0, p.out<u8>(), 0)),
     OPENCV(cv::phase(p.matIn<f32>(0), p.matIn<f32>(1), p.matOut<f32>(), true))},
};
const Rows registered(kRows);

} // namespace

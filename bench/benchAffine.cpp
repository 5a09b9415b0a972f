// Affine and perspective transforms.
#include "bench.h"

#include <ravik/affine.h>

namespace {

using namespace bench;

constexpr f32 kCamera[4] = {500, 500, 320, 240}, kLens[5] = {0.1f, -0.05f, 0.001f, 0.002f, 0.01f};

constexpr Row kRows[] = {
    {"rvkUndistortDisparityConvertDepthf32", nullptr, traffic(4, 4),
     RAVIK(rvkUndistortDisparityConvertDepthf32(p.in<f32>(), p.width, p.height, 0, kCamera, kLens, 0.1f, p.out<f32>(),
                                                0))},
};
const Rows registered(kRows);

} // namespace

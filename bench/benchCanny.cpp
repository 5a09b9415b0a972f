// Canny edges.
#include "bench.h"

#include <ravik/canny.h>

namespace {

using namespace bench;

constexpr Row kRows[] = {
    {"rvkFilterCanny3x3u8", "Canny 3x3 L1", traffic(1, 1),
     RAVIK(rvkFilterCanny3x3u8(p.in<u8>(), p.width, p.height, p.out<u8>(), 100, 200)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), 100, 200, 3))},
    {"rvkFilterCanny3x3u8_v2", "Canny 3x3 L1", traffic(1, 1),
     RAVIK(rvkFilterCanny3x3u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100, 200)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), 100, 200, 3))},
    {"rvkFilterCanny3x3u8_v3", "Canny 3x3 L1", traffic(1, 1),
     RAVIK(rvkFilterCanny3x3u8_v3(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 100, 200)),
     OPENCV(cv::Canny(p.matIn<u8>(), p.matOut<u8>(), 100, 200, 3))},
};
const Rows registered(kRows);

} // namespace

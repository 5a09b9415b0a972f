// Bilateral filters.
#include "bench.h"

#include <ravik/bilateral.h>

namespace {

using namespace bench;

// OpenCV's window is the disc in the square, about half of its pixels.
constexpr Row kRows[] = {
    {"rvkBilateralFilter5x5u8", "bilateral 5x5 u8", traffic(1, 1),
     RAVIK(rvkBilateralFilter5x5u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::bilateralFilter(p.matIn<u8>(), p.matOut<u8>(), 5, 25, 1))},
    {"rvkBilateralFilter5x5u8_v2", "bilateral 5x5 u8", traffic(1, 1),
     RAVIK(rvkBilateralFilter5x5u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 50, 2)),
     OPENCV(cv::bilateralFilter(p.matIn<u8>(), p.matOut<u8>(), 5, 50, 2))},
    {"rvkBilateralFilter7x7u8", nullptr, traffic(1, 1),
     RAVIK(rvkBilateralFilter7x7u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::bilateralFilter(p.matIn<u8>(), p.matOut<u8>(), 7, 25, 1.5))},
    {"rvkBilateralFilter7x7u8_v2", nullptr, traffic(1, 1),
     RAVIK(rvkBilateralFilter7x7u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 50, 2)),
     OPENCV(cv::bilateralFilter(p.matIn<u8>(), p.matOut<u8>(), 7, 50, 2))},
    {"rvkBilateralFilter9x9u8", nullptr, traffic(1, 1),
     RAVIK(rvkBilateralFilter9x9u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::bilateralFilter(p.matIn<u8>(), p.matOut<u8>(), 9, 25, 2))},
    {"rvkBilateralFilter9x9u8_v2", nullptr, traffic(1, 1),
     RAVIK(rvkBilateralFilter9x9u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 50, 2)),
     OPENCV(cv::bilateralFilter(p.matIn<u8>(), p.matOut<u8>(), 9, 50, 2))},
    {"rvkBilateralFilterRecursiveu8", nullptr, traffic(1, 1),
     RAVIK(rvkBilateralFilterRecursiveu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 0.1f, 0.03f))},
};
const Rows registered(kRows);

} // namespace

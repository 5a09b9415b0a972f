// Dilation and erosion.
#include "bench.h"

#include <ravik/morphology.h>

namespace {

using namespace bench;

#if RVK_BENCH_OPENCV
cv::Mat square(int size)
{
    return cv::getStructuringElement(cv::MORPH_RECT, {size, size});
}
#endif

constexpr Row kRows[] = {
    {"rvkFilterDilate3x3u8", "dilate 3x3 u8", traffic(1, 1),
     RAVIK(rvkFilterDilate3x3u8(p.in<u8>(), p.width, p.height, p.out<u8>())),
     OPENCV(cv::dilate(p.matIn<u8>(), p.matOut<u8>(), square(3)))},
    {"rvkFilterDilate3x3u8_v2", "dilate 3x3 u8", traffic(1, 1),
     RAVIK(rvkFilterDilate3x3u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::dilate(p.matIn<u8>(), p.matOut<u8>(), square(3)))},
    {"rvkFilterDilate3x3u8_v3", "dilate 3x3 u8", traffic(1, 1),
     RAVIK(rvkFilterDilate3x3u8_v3(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, RAVIK_BORDER_CONSTANT, 9)),
     OPENCV(cv::dilate(p.matIn<u8>(), p.matOut<u8>(), square(3), {-1, -1}, 1, cv::BORDER_CONSTANT, cv::Scalar(9)))},
    {"rvkFilterErode3x3u8", "erode 3x3 u8", traffic(1, 1),
     RAVIK(rvkFilterErode3x3u8(p.in<u8>(), p.width, p.height, p.out<u8>())),
     OPENCV(cv::erode(p.matIn<u8>(), p.matOut<u8>(), square(3)))},
    {"rvkFilterErode3x3u8_v2", "erode 3x3 u8", traffic(1, 1),
     RAVIK(rvkFilterErode3x3u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(cv::erode(p.matIn<u8>(), p.matOut<u8>(), square(3)))},
    {"rvkFilterErode3x3u8_v3", "erode 3x3 u8", traffic(1, 1),
     RAVIK(rvkFilterErode3x3u8_v3(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, RAVIK_BORDER_CONSTANT, 9)),
     OPENCV(cv::erode(p.matIn<u8>(), p.matOut<u8>(), square(3), {-1, -1}, 1, cv::BORDER_CONSTANT, cv::Scalar(9)))},

    {"rvkFilterDilateNxNu8 9x9", "dilate 9x9 u8", traffic(1, 1),
     RAVIK(rvkFilterDilateNxNu8(p.in<u8>(), p.width, p.height, 0, 9, p.out<u8>(), 0)),
     OPENCV(cv::dilate(p.matIn<u8>(), p.matOut<u8>(), square(9)))},
    {"rvkFilterDilateNxNu8 5x5", "dilate 5x5 u8", traffic(1, 1),
     RAVIK(rvkFilterDilateNxNu8(p.in<u8>(), p.width, p.height, 0, 5, p.out<u8>(), 0)),
     OPENCV(cv::dilate(p.matIn<u8>(), p.matOut<u8>(), square(5)))},
    {"rvkFilterDilateNxNu8 15x15", "dilate 15x15 u8", traffic(1, 1),
     RAVIK(rvkFilterDilateNxNu8(p.in<u8>(), p.width, p.height, 0, 15, p.out<u8>(), 0)),
     OPENCV(cv::dilate(p.matIn<u8>(), p.matOut<u8>(), square(15)))},
    {"rvkFilterErodeNxNu8 3x3", nullptr, traffic(1, 1),
     RAVIK(rvkFilterErodeNxNu8(p.in<u8>(), p.width, p.height, 0, 3, p.out<u8>(), 0)),
     OPENCV(cv::erode(p.matIn<u8>(), p.matOut<u8>(), square(3)))},
    {"rvkFilterErodeNxNu8 5x5", "erode 5x5 u8", traffic(1, 1),
     RAVIK(rvkFilterErodeNxNu8(p.in<u8>(), p.width, p.height, 0, 5, p.out<u8>(), 0)),
     OPENCV(cv::erode(p.matIn<u8>(), p.matOut<u8>(), square(5)))},
    {"rvkFilterErodeNxNu8 9x9", "erode 9x9 u8", traffic(1, 1),
     RAVIK(rvkFilterErodeNxNu8(p.in<u8>(), p.width, p.height, 0, 9, p.out<u8>(), 0)),
     OPENCV(cv::erode(p.matIn<u8>(), p.matOut<u8>(), square(9)))},
    {"rvkFilterErodeNxNu8 41x41", nullptr, traffic(1, 1),
     RAVIK(rvkFilterErodeNxNu8(p.in<u8>(), p.width, p.height, 0, 41, p.out<u8>(), 0)),
     OPENCV(cv::erode(p.matIn<u8>(), p.matOut<u8>(), square(41)))},
};
const Rows registered(kRows);

} // namespace

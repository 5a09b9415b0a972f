// Smoothing filters and local normalisation. All with borders, as the peers have them. OpenCV's Gaussian of a given
// sigma is the same separable work on other weights; its box filters replicate the border.
#include "bench.h"

#include <ravik/blur.h>

namespace {

using namespace bench;

#if RVK_BENCH_OPENCV
template <class T>
void gaussian(const Picture& p, int size)
{
    cv::GaussianBlur(p.matIn<T>(), p.matOut<T>(), cv::Size(size, size), 0, 0, cv::BORDER_REPLICATE);
}

template <class T>
void box(const Picture& p, int size, int border)
{
    cv::boxFilter(p.matIn<T>(), p.matOut<T>(), -1, cv::Size(size, size), cv::Point(-1, -1), true, border);
}

// (pixel - mean) / deviation, as OpenCV's parts would be put together.
void normalise(const cv::Mat& picture, const cv::Mat& result, double scale, double offset)
{
    cv::Mat value, mean, squares, deviation;
    const cv::Size window(11, 11);
    picture.convertTo(value, CV_32F);
    cv::boxFilter(value, mean, CV_32F, window, cv::Point(-1, -1), true, cv::BORDER_REPLICATE);
    cv::sqrBoxFilter(value, squares, CV_32F, window, cv::Point(-1, -1), true, cv::BORDER_REPLICATE);
    cv::sqrt(squares - mean.mul(mean), deviation);
    cv::divide(value - mean, deviation, value);
    value.convertTo(result, result.type(), scale, offset);
}
#endif

constexpr Row kRows[] = {
    {"rvkBoxFilter11x11u8", "box 11x11 u8", traffic(1, 1),
     RAVIK(rvkBoxFilter11x11u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(box<u8>(p, 11, cv::BORDER_CONSTANT))},
    {"rvkBoxFilter3x3u8", "box 3x3 u8", traffic(1, 1),
     RAVIK(rvkBoxFilter3x3u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(box<u8>(p, 3, cv::BORDER_CONSTANT))},
    {"rvkBoxFilter3x3u8_v2, replicate", "box 3x3 u8", traffic(1, 1),
     RAVIK(rvkBoxFilter3x3u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, RAVIK_BORDER_REPLICATE, 0)),
     OPENCV(box<u8>(p, 3, cv::BORDER_REPLICATE))},
    {"rvkBoxFilter5x5u8", "box 5x5 u8", traffic(1, 1),
     RAVIK(rvkBoxFilter5x5u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(box<u8>(p, 5, cv::BORDER_CONSTANT))},
    {"rvkBoxFilterNxNf32, 5x5", nullptr, traffic(4, 4),
     RAVIK(rvkBoxFilterNxNf32(p.in<f32>(), p.width, p.height, 0, 5, p.out<f32>(), 0)),
     OPENCV(box<f32>(p, 5, cv::BORDER_REPLICATE))},
    {"rvkBoxFilterNxNf32, 31x31", nullptr, traffic(4, 4),
     RAVIK(rvkBoxFilterNxNf32(p.in<f32>(), p.width, p.height, 0, 31, p.out<f32>(), 0)),
     OPENCV(box<f32>(p, 31, cv::BORDER_REPLICATE))},
    {"rvkFilterGaussian11x11u8_v2", "Gaussian 11x11 u8", traffic(1, 1),
     RAVIK(rvkFilterGaussian11x11u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 1)),
     OPENCV(gaussian<u8>(p, 11))},
    {"rvkFilterGaussian3x3u8_v2", "Gaussian 3x3 u8", traffic(1, 1),
     RAVIK(rvkFilterGaussian3x3u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 1)), OPENCV(gaussian<u8>(p, 3))},
    {"rvkFilterGaussian3x3u8_v3, replicate", "Gaussian 3x3 u8", traffic(1, 1),
     RAVIK(rvkFilterGaussian3x3u8_v3(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, RAVIK_BORDER_REPLICATE, 0)),
     OPENCV(gaussian<u8>(p, 3))},
    {"rvkFilterGaussian5x5s16_v2", nullptr, traffic(2, 2),
     RAVIK(rvkFilterGaussian5x5s16_v2(p.in<s16>(), p.width, p.height, 0, p.out<s16>(), 0, 1)),
     OPENCV(gaussian<s16>(p, 5))},
    {"rvkFilterGaussian5x5s32_v2", nullptr, traffic(4, 4),
     RAVIK(rvkFilterGaussian5x5s32_v2(p.in<s32>(), p.width, p.height, 0, p.out<s32>(), 0, 1))},
    {"rvkFilterGaussian5x5u8_v2", "Gaussian 5x5 u8", traffic(1, 1),
     RAVIK(rvkFilterGaussian5x5u8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, 1)), OPENCV(gaussian<u8>(p, 5))},
    {"rvkNormalizeLocalBoxf32, 11x11", nullptr, traffic(4, 4),
     RAVIK(rvkNormalizeLocalBoxf32(p.in<f32>(), p.width, p.height, 0, 11, 11, p.out<f32>(), 0)),
     OPENCV(normalise(p.matIn<f32>(), p.matOut<f32>(), 1, 0))},
    {"rvkNormalizeLocalBoxu8, 11x11", nullptr, traffic(1, 1),
     RAVIK(rvkNormalizeLocalBoxu8(p.in<u8>(), p.width, p.height, 0, 11, 11, p.out<u8>(), 0)),
     OPENCV(normalise(p.matIn<u8>(), p.matOut<u8>(), 32, 128))},
};
const Rows registered(kRows);

} // namespace

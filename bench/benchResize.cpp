// Scaling by any ratio. The picture is the source of what makes it smaller, and the destination of what makes it
// larger.
#include "bench.h"

#include <ravik/scale.h>

namespace {

using namespace bench;

template <auto function, u32 numerator, u32 denominator>
void shrink(const Picture& p)
{
    function(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width * numerator / denominator,
             p.height * numerator / denominator, 0);
}

// The second number is that of pixels of the source.
template <u32 numerator, u32 denominator>
void enlarge(const Picture& p)
{
    rvkScaleu8(p.in<u8>(), p.width * denominator / numerator, p.height * denominator / numerator, 0, p.out<u8>(),
               p.width, p.height, 0, RAVIK_INTERPOLATION_BILINEAR);
}

constexpr double square(double a)
{
    return a * a;
}
constexpr Traffic shrinking(double ratio)
{
    return traffic(1, square(ratio));
}
constexpr Traffic enlarging(double ratio)
{
    return traffic(1 / square(ratio), 1);
}

#if RVK_BENCH_OPENCV
template <int interpolation, u32 numerator, u32 denominator, int channels = 1>
void resizeOpencv(const Picture& p)
{
    const auto smaller = [](u32 size, u32 n, u32 d) { return static_cast<int>(n < d ? size * n / d : size * d / n); };
    const int width = smaller(p.width, numerator, denominator), height = smaller(p.height, numerator, denominator);
    const int type = CV_8UC(channels);
    const bool shrinks = numerator < denominator;
    cv::Mat small(height, width, type, shrinks ? p.out<u8>() : const_cast<u8*>(p.in<u8>()));
    cv::Mat large = shrinks ? p.matIn<u8>(0, channels) : p.matOut<u8>(0, channels);
    cv::resize(shrinks ? large : small, shrinks ? small : large, (shrinks ? small : large).size(), 0, 0, interpolation);
}
#define OPENCV_WORK(...) __VA_ARGS__
#else
#define OPENCV_WORK(...) nullptr
#endif

#if RVK_BENCH_LIBYUV
template <libyuv::FilterMode filter, u32 numerator, u32 denominator>
void resizeLibyuv(const Picture& p)
{
    constexpr bool shrinks = numerator < denominator;
    const int width = int(p.width), height = int(p.height);
    const int otherWidth = int(shrinks ? p.width * numerator / denominator : p.width * denominator / numerator);
    const int otherHeight = int(shrinks ? p.height * numerator / denominator : p.height * denominator / numerator);
    if (shrinks)
        libyuv::ScalePlane(p.in<u8>(), width, width, height, p.out<u8>(), otherWidth, otherWidth, otherHeight, filter);
    else
        libyuv::ScalePlane(p.in<u8>(), otherWidth, otherWidth, otherHeight, p.out<u8>(), width, width, height, filter);
}
#define LIBYUV_WORK(...) __VA_ARGS__
#else
#define LIBYUV_WORK(...) nullptr
#endif

constexpr Row kRows[] = {
    {"rvkScaleDownNNu8 3/4", nullptr, shrinking(3. / 4), shrink<rvkScaleDownNNu8, 3, 4>,
     OPENCV_WORK(resizeOpencv<cv::INTER_NEAREST, 3, 4>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterNone, 3, 4>)},
    {"rvkScaleDownNNu8 1/3", nullptr, shrinking(1. / 3), shrink<rvkScaleDownNNu8, 1, 3>,
     OPENCV_WORK(resizeOpencv<cv::INTER_NEAREST, 1, 3>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterNone, 1, 3>)},
    {"rvkScaleDownBLu8 3/4", "resize 3/4 bilinear u8", shrinking(3. / 4), shrink<rvkScaleDownBLu8, 3, 4>,
     OPENCV_WORK(resizeOpencv<cv::INTER_LINEAR, 3, 4>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBilinear, 3, 4>)},
    {"rvkScaleDownBLu8 2/3", "resize 2/3 bilinear u8", shrinking(2. / 3), shrink<rvkScaleDownBLu8, 2, 3>,
     OPENCV_WORK(resizeOpencv<cv::INTER_LINEAR, 2, 3>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBilinear, 2, 3>)},
    {"rvkScaleDownBLu8 1/2", nullptr, shrinking(1. / 2), shrink<rvkScaleDownBLu8, 1, 2>,
     OPENCV_WORK(resizeOpencv<cv::INTER_LINEAR, 1, 2>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBilinear, 1, 2>)},
    {"rvkScaleDownBLu8 3/8", nullptr, shrinking(3. / 8), shrink<rvkScaleDownBLu8, 3, 8>,
     OPENCV_WORK(resizeOpencv<cv::INTER_LINEAR, 3, 8>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBilinear, 3, 8>)},
    {"rvkScaleu8 x1.5", "resize x1.5 bilinear u8", enlarging(3. / 2), enlarge<3, 2>,
     OPENCV_WORK(resizeOpencv<cv::INTER_LINEAR, 3, 2>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBilinear, 3, 2>)},
    {"rvkScaleu8 x2", "resize x2 bilinear u8", enlarging(2), enlarge<2, 1>,
     OPENCV_WORK(resizeOpencv<cv::INTER_LINEAR, 2, 1>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBilinear, 2, 1>)},
    {"rvkScaleu8 x4", "resize x4 bilinear u8", enlarging(4), enlarge<4, 1>,
     OPENCV_WORK(resizeOpencv<cv::INTER_LINEAR, 4, 1>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBilinear, 4, 1>)},
    {"rvkScaleDownu8_v2 3/4", nullptr, shrinking(3. / 4), shrink<rvkScaleDownu8_v2, 3, 4>,
     OPENCV_WORK(resizeOpencv<cv::INTER_AREA, 3, 4>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBox, 3, 4>)},
    {"rvkScaleDownu8_v2 2/3", nullptr, shrinking(2. / 3), shrink<rvkScaleDownu8_v2, 2, 3>,
     OPENCV_WORK(resizeOpencv<cv::INTER_AREA, 2, 3>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBox, 2, 3>)},
    {"rvkScaleDownu8_v2 1/2", "resize half area u8", shrinking(1. / 2), shrink<rvkScaleDownu8_v2, 1, 2>,
     OPENCV_WORK(resizeOpencv<cv::INTER_AREA, 1, 2>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBox, 1, 2>)},
    {"rvkScaleDownu8_v2 1/4", "resize quarter area u8", shrinking(1. / 4), shrink<rvkScaleDownu8_v2, 1, 4>,
     OPENCV_WORK(resizeOpencv<cv::INTER_AREA, 1, 4>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBox, 1, 4>)},
    {"rvkScaleDownu8_v2 3/10", nullptr, shrinking(3. / 10), shrink<rvkScaleDownu8_v2, 3, 10>,
     OPENCV_WORK(resizeOpencv<cv::INTER_AREA, 3, 10>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBox, 3, 10>)},
    {"rvkScaleDownMNu8 1/3", nullptr, shrinking(1. / 3), shrink<rvkScaleDownMNu8, 1, 3>,
     OPENCV_WORK(resizeOpencv<cv::INTER_AREA, 1, 3>), LIBYUV_WORK(resizeLibyuv<libyuv::kFilterBox, 1, 3>)},
    {"rvkScaleDownMNInterleaveu8 1/3", nullptr, traffic(2, 2. / 9), shrink<rvkScaleDownMNInterleaveu8, 1, 3>,
     OPENCV_WORK(resizeOpencv<cv::INTER_AREA, 1, 3, 2>)},
    {"rvkScaleUpPolyu8 x2", nullptr, enlarging(2),
     RAVIK(rvkScaleUpPolyu8(p.in<u8>(), p.width / 2, p.height / 2, 0, p.out<u8>(), p.width, p.height, 0)),
     OPENCV_WORK(resizeOpencv<cv::INTER_CUBIC, 2, 1>)},
    {"rvkScaleUpPolyInterleaveu8 x2", nullptr, traffic(1. / 2, 2),
     RAVIK(rvkScaleUpPolyInterleaveu8(p.in<u8>(), p.width / 2, p.height / 2, 0, p.out<u8>(), p.width, p.height, 0)),
     OPENCV_WORK(resizeOpencv<cv::INTER_CUBIC, 2, 1, 2>)},
};
const Rows registered(kRows);

} // namespace

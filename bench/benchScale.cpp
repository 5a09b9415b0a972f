// Scalers by fixed ratios. OpenCV and libyuv get destinations of their own size.
#include "bench.h"

#include <ravik/scale.h>

namespace {

using namespace bench;

// A picture of `to` pixels for each `from`, across and down. What becomes larger begins as a half of the row's size.
constexpr Picture scaled(const Picture& p, uint32_t from, uint32_t to)
{
    return {p.width / from * to, p.height / from * to, p.content};
}
constexpr Picture half(const Picture& p)
{
    return scaled(p, 2, 1);
}

#if RVK_BENCH_OPENCV
template <class T>
void resize(const Picture& from, const Picture& to, int interpolation, int channels = 1)
{
    cv::Mat dst = to.matOut<T>(0, channels);
    cv::resize(from.matIn<T>(0, channels), dst, dst.size(), 0, 0, interpolation);
}

template <class T>
void halveByOpenCv(const Picture& p)
{
    cv::Mat dst = half(p).matOut<T>();
    cv::pyrDown(p.matIn<T>(), dst, dst.size());
}

void doubleByOpenCv(const Picture& p)
{
    cv::Mat dst = p.matOut<u8>();
    cv::pyrUp(half(p).matIn<u8>(), dst, dst.size());
}
#endif

#if RVK_BENCH_LIBYUV
void scalePlane(const Picture& from, const Picture& to, libyuv::FilterMode filter)
{
    const auto size = [](uint32_t n) { return static_cast<int>(n); };
    libyuv::ScalePlane(from.in<u8>(), size(from.width), size(from.width), size(from.height), to.out<u8>(),
                       size(to.width), size(to.width), size(to.height), filter);
}
#endif

constexpr Row kRows[] = {
    {"rvkScaleDownBy2u8", "resize half area u8", traffic(1, 0.25),
     RAVIK(rvkScaleDownBy2u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>(p, half(p), cv::INTER_AREA)), LIBYUV(scalePlane(p, half(p), libyuv::kFilterBox))},
    {"rvkScaleDownBy4u8", "resize quarter area u8", traffic(1, 1.0 / 16),
     RAVIK(rvkScaleDownBy4u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>(p, scaled(p, 4, 1), cv::INTER_AREA)),
     LIBYUV(scalePlane(p, scaled(p, 4, 1), libyuv::kFilterBox))},
    {"rvkScaleDown3To2u8", "resize 2/3 bilinear u8", traffic(1, 4.0 / 9),
     RAVIK(rvkScaleDown3To2u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>(p, scaled(p, 3, 2), cv::INTER_LINEAR)),
     LIBYUV(scalePlane(p, scaled(p, 3, 2), libyuv::kFilterBilinear))},
    {"rvkScaleDownBy2Gaussian3x3u8", nullptr, traffic(1, 0.25),
     RAVIK(rvkScaleDownBy2Gaussian3x3u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0))},
    {"rvkScaleDownBy2Gaussian5x5u8", "pyrDown 5x5 u8", traffic(1, 0.25),
     RAVIK(rvkScaleDownBy2Gaussian5x5u8(p.in<u8>(), p.width, p.height, p.out<u8>())), OPENCV(halveByOpenCv<u8>(p))},
    {"rvkScaleDownBy2Gaussian5x5f32", nullptr, traffic(4, 1),
     RAVIK(rvkScaleDownBy2Gaussian5x5f32(p.in<f32>(), p.width, p.height, p.out<f32>())), OPENCV(halveByOpenCv<f32>(p))},
    {"rvkScaleUpBy2Gaussian5x5u8", "resize x2 bilinear u8", traffic(0.25, 1),
     RAVIK(rvkScaleUpBy2Gaussian5x5u8(p.in<u8>(), p.width / 2, p.height / 2, p.out<u8>())), OPENCV(doubleByOpenCv(p))},
    {"rvkUpsampleVerticalu8", nullptr, traffic(0.5, 1),
     RAVIK(rvkUpsampleVerticalu8(p.in<u8>(), p.width, p.height / 2, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>({p.width, p.height / 2}, p, cv::INTER_NEAREST)),
     LIBYUV(scalePlane({p.width, p.height / 2}, p, libyuv::kFilterNone))},
    {"rvkUpsampleHorizontalu8", nullptr, traffic(0.5, 1),
     RAVIK(rvkUpsampleHorizontalu8(p.in<u8>(), p.width / 2, p.height, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>({p.width / 2, p.height}, p, cv::INTER_NEAREST)),
     LIBYUV(scalePlane({p.width / 2, p.height}, p, libyuv::kFilterNone))},
    {"rvkUpsample2Du8", nullptr, traffic(0.25, 1),
     RAVIK(rvkUpsample2Du8(p.in<u8>(), p.width / 2, p.height / 2, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>(half(p), p, cv::INTER_NEAREST)), LIBYUV(scalePlane(half(p), p, libyuv::kFilterNone))},
    {"rvkUpsampleVerticalInterleavedu8", nullptr, traffic(1, 2),
     RAVIK(rvkUpsampleVerticalInterleavedu8(p.in<u8>(), p.width, p.height / 2, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>({p.width, p.height / 2}, p, cv::INTER_NEAREST, 2))},
    {"rvkUpsampleHorizontalInterleavedu8", nullptr, traffic(1, 2),
     RAVIK(rvkUpsampleHorizontalInterleavedu8(p.in<u8>(), p.width / 2, p.height, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>({p.width / 2, p.height}, p, cv::INTER_NEAREST, 2))},
    {"rvkUpsample2DInterleavedu8", nullptr, traffic(0.5, 2),
     RAVIK(rvkUpsample2DInterleavedu8(p.in<u8>(), p.width / 2, p.height / 2, 0, p.out<u8>(), 0)),
     OPENCV(resize<u8>(half(p), p, cv::INTER_NEAREST, 2))},
};
const Rows registered(kRows);

} // namespace

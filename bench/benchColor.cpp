// Conversions between formats: each kind at least once. OpenCV's YCbCr is of limited range and its decimated chroma a
// mean, libyuv's chroma is a mean, and it interpolates where ours repeats; README.md says more.
#include "bench.h"
#include "color.h"

#include <ravik/channel.h>
#include <ravik/color.h>

#include <tuple>
#include <type_traits>
#include <utility>

namespace {

using namespace bench;
using namespace rvk;

template <class Format>
constexpr double kBytes = [] {
    uint64_t ofFourPixels = 0;
    for (uint32_t plane = 0; plane < Format::planes; plane++)
        ofFourPixels += Format::rowSize(plane, 2) * Format::rows(plane, 2);
    return static_cast<double>(ofFourPixels) / 4;
}();

template <size_t count>
using Planes = std::make_index_sequence<count>;

template <auto function, size_t... i, size_t... j>
void call(const Picture& p, std::index_sequence<0, i...>, std::index_sequence<j...>)
{
    std::apply(function, std::tuple_cat(std::tuple(p.in<u8>(0), p.width, p.height, 0u), std::tuple(p.in<u8>(i), 0u)...,
                                        std::tuple(p.out<u8>(j), 0u)...));
}
template <auto function, class From, class To>
void convert(const Picture& p)
{
    call<function>(p, Planes<From::planes>(), Planes<To::planes>());
}

template <u32 format, u32 channel>
void extract(const Picture& p)
{
    rvkChannelExtractu8(p.in<u8>(0), p.width, p.height, 0, p.in<u8>(1), 0, format, channel, p.out<u8>(), 0);
}

constexpr auto none = nullptr;

#if RVK_BENCH_LIBYUV
template <class Format>
int strideOf(size_t plane, const Picture& p)
{
    return static_cast<int>(Format::rowSize(static_cast<u32>(plane), p.width));
}
template <auto function, class From, class To, size_t... i, size_t... j>
void callLibyuv(const Picture& p, std::index_sequence<i...>, std::index_sequence<j...>)
{
    const int width = static_cast<int>(p.width), height = static_cast<int>(p.height);
    const auto planes = std::tuple_cat(std::tuple(p.in<u8>(i), strideOf<From>(i, p))...,
                                       std::tuple(p.out<u8>(j), strideOf<To>(j, p))...);
    std::apply(
        [&](auto... plane) {
            if constexpr (std::is_invocable_v<decltype(function), decltype(plane)..., int, int>)
                function(plane..., width, height);
            else
                function(plane..., &libyuv::kYuvJPEGConstants, width, height);
        },
        planes);
}
template <auto function, class From, class To>
constexpr Work libyuvWork()
{
    if constexpr (std::is_null_pointer_v<decltype(function)>)
        return nullptr;
    else
        return
            [](const Picture& p) { callLibyuv<function, From, To>(p, Planes<From::planes>(), Planes<To::planes>()); };
}
#define LIBYUV_WORK(function, From, To) libyuvWork<function, From, To>()
#else
#define LIBYUV_WORK(...) nullptr
#endif

#if RVK_BENCH_OPENCV
cv::Mat with(const Picture& p, const cv::Mat& first, double rows, double columns, int channels)
{
    return cv::Mat(static_cast<int>(p.height * rows), static_cast<int>(p.width * columns), CV_8UC(channels),
                   first.data);
}
template <int code, int srcChannels, int dstChannels>
void cvtColor(const Picture& p)
{
    cv::Mat dst = p.matOut<u8>(0, dstChannels);
    cv::cvtColor(p.matIn<u8>(0, srcChannels), dst, code);
}
// Planes of 4:2:0 one below the other.
template <int code, int dstChannels>
void fromI420(const Picture& p)
{
    cv::Mat dst = p.matOut<u8>(0, dstChannels);
    cv::cvtColor(with(p, p.matIn<u8>(), 1.5, 1, 1), dst, code);
}
template <int code, int srcChannels>
void toI420(const Picture& p)
{
    cv::Mat dst = with(p, p.matOut<u8>(), 1.5, 1, 1);
    cv::cvtColor(p.matIn<u8>(0, srcChannels), dst, code);
}
template <int code, int dstChannels>
void fromTwoPlanes(const Picture& p)
{
    cv::Mat dst = p.matOut<u8>(0, dstChannels);
    cv::cvtColorTwoPlane(p.matIn<u8>(0), with(p, p.matIn<u8>(1), 0.5, 0.5, 2), dst, code);
}
template <unsigned... i>
void merge(const Picture& p)
{
    const cv::Mat planes[] = {p.matIn<u8>(i)...};
    cv::Mat dst = p.matOut<u8>(0, sizeof...(i));
    cv::merge(planes, sizeof...(i), dst);
}
void split2(const Picture& p)
{
    cv::Mat planes[] = {p.matOut<u8>(0), p.matOut<u8>(1)};
    cv::split(p.matIn<u8>(0, 2), planes);
}
template <int channels>
void extractChannel(const Picture& p)
{
    cv::Mat dst = p.matOut<u8>();
    cv::extractChannel(p.matIn<u8>(0, channels), dst, 1);
}
#define OPENCV_WORK(...) __VA_ARGS__
#else
#define OPENCV_WORK(...) nullptr
#endif

// A row by its formats; `libyuvFunction` may be none. MOVING: bytes change their places and nothing else.
#define CONVERSION(function, best, From, To, opencvWork, libyuvFunction)                                              \
    {                                                                                                                 \
#function, best, traffic(kBytes <From>, kBytes <To>), convert < function, From, To>, OPENCV_WORK(opencvWork), \
            LIBYUV_WORK(libyuvFunction, From, To)                                                                     \
    }
#define MOVING(function, best, From, To, opencvWork, libyuvFunction)                           \
    {                                                                                          \
#function, best, streaming(kBytes <From>, kBytes <To>), convert < function, From, To>, \
            OPENCV_WORK(opencvWork), LIBYUV_WORK(libyuvFunction, From, To)                     \
    }

using Nv12 = PseudoPlanar<S420>;
using I420 = Planar<S420>;
using I422 = Planar<S422>;
using I444 = Planar<S444>;

constexpr Row kRows[] = {
    // YCbCr to RGB
    CONVERSION(rvkColorYCbCr420PseudoPlanarToRGB888u8, "NV12 to RGB888", Nv12, Rgb888,
               (fromTwoPlanes<cv::COLOR_YUV2RGB_NV12, 3>), libyuv::NV12ToRGB24Matrix),
    CONVERSION(rvkColorYCbCr420PseudoPlanarToRGBA8888u8, "NV12 to RGBA8888", Nv12, Rgba8888,
               (fromTwoPlanes<cv::COLOR_YUV2RGBA_NV12, 4>), libyuv::NV12ToARGBMatrix),
    CONVERSION(rvkColorYCbCr420PseudoPlanarToRGB565u8, nullptr, Nv12, Rgb565, nullptr, libyuv::NV12ToRGB565Matrix),
    CONVERSION(rvkColorYUV420toRGB565u8Rotate180, nullptr, Nv12, Rgb565, nullptr, none),
    CONVERSION(rvkColorYCbCr420PlanarToRGB888u8, "YUV420 planar to RGB888", I420, Rgb888,
               (fromI420<cv::COLOR_YUV2RGB_I420, 3>), libyuv::I420ToRGB24Matrix),
    CONVERSION(rvkColorYCbCr420PlanarToRGBA8888u8, "YUV420 planar to RGBA8888", I420, Rgba8888,
               (fromI420<cv::COLOR_YUV2RGBA_I420, 4>), libyuv::I420ToARGBMatrix),
    CONVERSION(rvkColorYCbCr420PlanarToRGB565u8, nullptr, I420, Rgb565, nullptr, libyuv::I420ToRGB565Matrix),
    CONVERSION(rvkColorYCbCr422PlanarToRGB888u8, nullptr, I422, Rgb888, nullptr, libyuv::I422ToRGB24Matrix),
    CONVERSION(rvkColorYCbCr422PseudoPlanarToRGBA8888u8, nullptr, PseudoPlanar<S422>, Rgba8888, nullptr, none),
    CONVERSION(rvkColorYCbCr444PlanarToRGB888u8, nullptr, I444, Rgb888, nullptr, libyuv::I444ToRGB24Matrix),
    CONVERSION(rvkColorYCbCr444PseudoPlanarToRGB888u8, nullptr, PseudoPlanar<S444>, Rgb888, nullptr, none),
    CONVERSION(rvkColorYCrCbH1V2toRGB888u8, nullptr, CrCb<S440>, Rgb888, nullptr, none),

    // RGB to YCbCr
    CONVERSION(rvkColorRGB888ToYCbCr420Planaru8, "RGB888 to YUV420 planar", Bgr888, I420,
               (toI420<cv::COLOR_BGR2YUV_I420, 3>), libyuv::RGB24ToJ420),
    CONVERSION(rvkColorRGB888ToYCbCr420PseudoPlanaru8, "RGB888 to NV12", Bgr888, Nv12, nullptr, libyuv::RAWToJNV21),
    CONVERSION(rvkColorRGB888ToYCbCr422Planaru8, nullptr, Bgr888, I422, nullptr, none),
    CONVERSION(rvkColorRGB888ToYCbCr444Planaru8, nullptr, Bgr888, I444, nullptr, none),
    CONVERSION(rvkColorRGB888ToYCbCr444PseudoPlanaru8, nullptr, Bgr888, PseudoPlanar<S444>, nullptr, none),
    CONVERSION(rvkColorRGBA8888ToYCbCr420Planaru8, nullptr, Bgra8888, I420, (toI420<cv::COLOR_BGRA2YUV_I420, 4>),
               libyuv::ARGBToJ420),
    CONVERSION(rvkColorRGBA8888ToYCbCr420PseudoPlanaru8, nullptr, Bgra8888, Nv12, nullptr, libyuv::ARGBToNV12),
    CONVERSION(rvkColorRGBA8888ToYCbCr422Planaru8, nullptr, Bgra8888, I422, nullptr, libyuv::ARGBToJ422),
    CONVERSION(rvkColorRGBA8888ToYCbCr444Planaru8, nullptr, Bgra8888, I444, nullptr, libyuv::ARGBToI444),
    CONVERSION(rvkColorRGB565ToYCbCr420Planaru8, nullptr, Rgb565, I420, nullptr, libyuv::RGB565ToI420),
    CONVERSION(rvkColorRGB888toYCrCbu8_v2, "RGB888 to YCrCb888", Bgr888, YCrCb888,
               (cvtColor<cv::COLOR_BGR2YCrCb, 3, 3>), none),
    CONVERSION(rvkColorRGB888ToGrayu8, "RGB888 to grey", Rgb888, Grey, (cvtColor<cv::COLOR_RGB2GRAY, 3, 1>),
               libyuv::RAWToJ400),

    CONVERSION(rvkColorRGB888ToHSV888u8, "RGB888 to HSV", Rgb888, Hsv888, (cvtColor<cv::COLOR_RGB2HSV_FULL, 3, 3>),
               none),
    CONVERSION(rvkColorRGBA8888ToLABu8, nullptr, Rgba8888, Lab888, (cvtColor<cv::COLOR_RGB2Lab, 4, 3>), none),

    // Layouts of RGB
    CONVERSION(rvkColorRGB565ToRGB888u8, nullptr, Rgb565, Rgb888, (cvtColor<cv::COLOR_BGR5652RGB, 2, 3>), none),
    CONVERSION(rvkColorRGB565ToRGBA8888u8, nullptr, Rgb565, Rgba8888, (cvtColor<cv::COLOR_BGR5652RGBA, 2, 4>),
               libyuv::RGB565ToARGB),
    CONVERSION(rvkColorRGB565ToBGR565u8, nullptr, Rgb565, Bgr565, nullptr, none),
    CONVERSION(rvkColorRGB888ToRGB565u8, "RGB888 to RGB565", Rgb888, Rgb565, (cvtColor<cv::COLOR_RGB2BGR565, 3, 2>),
               none),
    CONVERSION(rvkColorRGB888ToRGB565Rotate180u8, nullptr, Rgb888, Rgb565, nullptr, none),
    CONVERSION(rvkColorRGBA8888ToRGB565u8, nullptr, Rgba8888, Rgb565, (cvtColor<cv::COLOR_RGBA2BGR565, 4, 2>),
               libyuv::ARGBToRGB565),
    MOVING(rvkColorRGB888ToBGR888u8, "RGB888 to BGR888", Rgb888, Bgr888, (cvtColor<cv::COLOR_RGB2BGR, 3, 3>),
           libyuv::RAWToRGB24),
    MOVING(rvkColorRGB888ToRGBA8888u8, "RGB888 to RGBA8888", Rgb888, Rgba8888, (cvtColor<cv::COLOR_RGB2RGBA, 3, 4>),
           libyuv::RGB24ToARGB),
    MOVING(rvkColorRGB888ToBGRA8888u8, "RGB888 to BGRA8888", Rgb888, Bgra8888, (cvtColor<cv::COLOR_RGB2BGRA, 3, 4>),
           libyuv::RAWToARGB),
    MOVING(rvkColorRGBA8888ToRGB888u8, "RGBA8888 to RGB888", Rgba8888, Rgb888, (cvtColor<cv::COLOR_RGBA2RGB, 4, 3>),
           libyuv::ARGBToRGB24),
    MOVING(rvkColorRGBA8888ToBGR888u8, "RGBA8888 to BGR888", Rgba8888, Bgr888, (cvtColor<cv::COLOR_RGBA2BGR, 4, 3>),
           libyuv::ARGBToRAW),
    MOVING(rvkColorRGBA8888ToBGRA8888u8, "RGBA8888 to BGRA8888", Rgba8888, Bgra8888,
           (cvtColor<cv::COLOR_RGBA2BGRA, 4, 4>), libyuv::ABGRToARGB),

    // Sampling and layout of chroma
    MOVING(rvkColorYCbCr420PlanarToYCbCr420PseudoPlanaru8, nullptr, I420, Nv12, nullptr, libyuv::I420ToNV12),
    MOVING(rvkColorYCbCr420PseudoPlanarToYCbCr420Planaru8, nullptr, Nv12, I420, nullptr, libyuv::NV12ToI420),
    MOVING(rvkColorYCbCr420PlanarToYCbCr422Planaru8, nullptr, I420, I422, nullptr, libyuv::I420ToI422),
    MOVING(rvkColorYCbCr420PlanarToYCbCr444Planaru8, nullptr, I420, I444, nullptr, libyuv::I420ToI444),
    MOVING(rvkColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8, nullptr, Nv12, PseudoPlanar<S444>, nullptr,
           libyuv::NV12ToNV24),
    MOVING(rvkColorYCbCr422PlanarToYCbCr420Planaru8, nullptr, I422, I420, nullptr, libyuv::I422ToI420),
    MOVING(rvkColorYCbCr422PlanarToYCbCr444Planaru8, nullptr, I422, I444, nullptr, libyuv::I422ToI444),
    MOVING(rvkColorYCbCr444PlanarToYCbCr420Planaru8, nullptr, I444, I420, nullptr, libyuv::I444ToI420),
    MOVING(rvkColorYCbCr444PlanarToYCbCr420PseudoPlanaru8, nullptr, I444, Nv12, nullptr, libyuv::I444ToNV12),
    MOVING(rvkColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8, nullptr, PseudoPlanar<S444>, Nv12, nullptr, none),
    MOVING(rvkColorYCbCr444PseudoPlanarToYCbCr422Planaru8, nullptr, PseudoPlanar<S444>, I422, nullptr, none),
    MOVING(rvkColorCbCrSwapu8, nullptr, Interleaved<2>, SwappedPairs, nullptr, libyuv::SwapUVPlane),

    // Channels
    MOVING(rvkInterleaveu8, "merge 2 planes", Channels<2>, Interleaved<2>, (merge<0, 1>), libyuv::MergeUVPlane),
    MOVING(rvkDeinterleaveu8, "split 2 planes", Interleaved<2>, Channels<2>, split2, libyuv::SplitUVPlane),
    MOVING(rvkChannelCombine2Planesu8, "merge 2 planes", Channels<2>, Interleaved<2>, (merge<0, 1>),
           libyuv::MergeUVPlane),
    MOVING(rvkChannelCombine3Planesu8, "merge 3 planes", Channels<3>, Interleaved<3>, (merge<0, 1, 2>),
           libyuv::MergeRGBPlane),
    MOVING(rvkChannelCombine4Planesu8, "merge 4 planes", Channels<4>, Interleaved<4>, (merge<0, 1, 2, 3>),
           libyuv::MergeARGBPlane),
    {"rvkChannelExtractu8 RGB G", nullptr, streaming(3, 1), extract<RAVIK_FORMAT_RGB, RAVIK_CHANNEL_G>,
     OPENCV_WORK(extractChannel<3>)},
    {"rvkChannelExtractu8 RGBA G", nullptr, streaming(4, 1), extract<RAVIK_FORMAT_RGBA, RAVIK_CHANNEL_G>,
     OPENCV_WORK(extractChannel<4>)},
    {"rvkChannelExtractu8 NV12 U", nullptr, streaming(0.5, 0.25), extract<RAVIK_FORMAT_NV12, RAVIK_CHANNEL_U>},
    {"rvkChannelExtractu8 UYVY Y", nullptr, streaming(2, 1), extract<RAVIK_FORMAT_UYVY, RAVIK_CHANNEL_Y>,
     OPENCV_WORK(extractChannel<2>)},
    {"rvkChannelExtractu8 YUYV V", nullptr, streaming(2, 0.5), extract<RAVIK_FORMAT_YUYV, RAVIK_CHANNEL_V>},
};
const Rows registered(kRows);

} // namespace

#include "bench.h"

#include <ravik/transform.h>

namespace {

using namespace bench;

template <class T, auto function, u32 dir>
void flip(const Picture& p)
{
    function(p.in<T>(), p.width, p.height, 0, p.out<T>(), 0, dir);
}

template <auto function, u32 rotation>
void rotate(const Picture& p)
{
    function(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0, rotation);
}

#if RVK_BENCH_OPENCV
template <class T, int channels = 1>
void transposeOpencv(const Picture& p)
{
    cv::Mat turned = p.matOutTurned<T>(0, channels);
    cv::transpose(p.matIn<T>(0, channels), turned);
}
template <class T, int code, int channels = 1>
void flipOpencv(const Picture& p)
{
    cv::Mat flipped = p.matOut<T>(0, channels);
    cv::flip(p.matIn<T>(0, channels), flipped, code);
}
template <class T, int code, int channels = 1>
void rotateOpencv(const Picture& p)
{
    cv::Mat rotated = code == cv::ROTATE_180 ? p.matOut<T>(0, channels) : p.matOutTurned<T>(0, channels);
    cv::rotate(p.matIn<T>(0, channels), rotated, code);
}
#define OPENCV_WORK(...) __VA_ARGS__
#else
#define OPENCV_WORK(...) nullptr
#endif

#if RVK_BENCH_LIBYUV
template <libyuv::RotationMode mode>
void rotateLibyuv(const Picture& p)
{
    const int width = static_cast<int>(p.width), height = static_cast<int>(p.height);
    const int dstStride = mode == libyuv::kRotate180 ? width : height;
    libyuv::RotatePlane(p.in<u8>(), width, p.out<u8>(), dstStride, width, height, mode);
}
#endif

constexpr Row kRows[] = {
    {"rvkTransposeu8", "transpose u8", traffic(1, 1),
     RAVIK(rvkTransposeu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)), OPENCV_WORK(transposeOpencv<u8>),
     LIBYUV(libyuv::TransposePlane(p.in<u8>(), int(p.width), p.out<u8>(), int(p.height), int(p.width), int(p.height)))},
    {"rvkTransposeu16", "transpose u16", traffic(2, 2),
     RAVIK(rvkTransposeu16(p.in<u16>(), p.width, p.height, 0, p.out<u16>(), 0)), OPENCV_WORK(transposeOpencv<u16>)},
    {"rvkTransposef32", "transpose f32", traffic(4, 4),
     RAVIK(rvkTransposef32(p.in<f32>(), p.width, p.height, 0, p.out<f32>(), 0)), OPENCV_WORK(transposeOpencv<f32>)},
    {"rvkTransposeRGB888u8", "transpose RGB888", traffic(3, 3),
     RAVIK(rvkTransposeRGB888u8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV_WORK(transposeOpencv<u8, 3>)},
    {"rvkFlipu8 horizontal", "flip horizontal u8", streaming(1, 1), flip<u8, rvkFlipu8, 1>,
     OPENCV_WORK(flipOpencv<u8, 1>),
     LIBYUV(libyuv::MirrorPlane(p.in<u8>(), int(p.width), p.out<u8>(), int(p.width), int(p.width), int(p.height)))},
    {"rvkFlipu8 vertical", nullptr, streaming(1, 1), flip<u8, rvkFlipu8, 2>, OPENCV_WORK(flipOpencv<u8, 0>),
     LIBYUV(libyuv::CopyPlane(p.in<u8>(), int(p.width), p.out<u8>(), int(p.width), int(p.width), -int(p.height)))},
    {"rvkFlipu8 both", nullptr, streaming(1, 1), flip<u8, rvkFlipu8, 3>, OPENCV_WORK(flipOpencv<u8, -1>)},
    {"rvkFlipu16 horizontal", nullptr, streaming(2, 2), flip<u16, rvkFlipu16, 1>, OPENCV_WORK(flipOpencv<u16, 1>)},
    {"rvkFlipRGB888u8 horizontal", nullptr, streaming(3, 3), flip<u8, rvkFlipRGB888u8, 1>,
     OPENCV_WORK(flipOpencv<u8, 1, 3>),
     LIBYUV(libyuv::RGB24Mirror(p.in<u8>(), 3 * int(p.width), p.out<u8>(), 3 * int(p.width), int(p.width),
                                int(p.height)))},
    {"rvkRotateImageu8 90", "rotate 90 clockwise u8", traffic(1, 1), rotate<rvkRotateImageu8, 1>,
     OPENCV_WORK(rotateOpencv<u8, cv::ROTATE_90_CLOCKWISE>), LIBYUV(rotateLibyuv<libyuv::kRotate90>(p))},
    {"rvkRotateImageu8 180", nullptr, traffic(1, 1), rotate<rvkRotateImageu8, 2>,
     OPENCV_WORK(rotateOpencv<u8, cv::ROTATE_180>), LIBYUV(rotateLibyuv<libyuv::kRotate180>(p))},
    {"rvkRotateImageu8 270", "rotate 270 u8", traffic(1, 1), rotate<rvkRotateImageu8, 3>,
     OPENCV_WORK(rotateOpencv<u8, cv::ROTATE_90_COUNTERCLOCKWISE>), LIBYUV(rotateLibyuv<libyuv::kRotate270>(p))},
    {"rvkRotateImageInterleavedu8 90", "rotate 90 pairs of u8", traffic(2, 2), rotate<rvkRotateImageInterleavedu8, 1>,
     OPENCV_WORK(rotateOpencv<u8, cv::ROTATE_90_CLOCKWISE, 2>)},
};
const Rows registered(kRows);

} // namespace

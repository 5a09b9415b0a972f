// Affine and perspective transforms.
#include "bench.h"

#include <ravik/affine.h>

namespace {

using namespace bench;

constexpr f32 kCamera[4] = {500, 500, 320, 240}, kLens[5] = {0.1f, -0.05f, 0.001f, 0.002f, 0.01f};

constexpr u32 kPatches = 1000;
constexpr f32 kPatchMatrix[4] = {0.9f, -0.3f, 0.3f, 0.9f};

// Calls extract(x, y) for patches all over a picture of 640 x 480 pixels.
template <class Extract>
void extractAll(Extract extract)
{
    for (u32 i = 0; i < kPatches; ++i)
        extract(50.3f + f32(i * 61 % 540), 50.7f + f32(i * 37 % 380));
}

void extract8x8(const Picture& p)
{
    extractAll([&](f32 x, f32 y) {
        const f32 position[2] = {x, y};
        rvkTransformAffine8x8u8_v2(p.in<u8>(), 640, 480, 0, position, kPatchMatrix, p.out<u8>(), 0);
    });
}

void extract32x32(const Picture& p)
{
    extractAll([&](f32 x, f32 y) {
        const f32 position[2] = {x, y};
        rvkTransformAffineu8_v2(p.in<u8>(), 640, 480, 0, position, kPatchMatrix, p.out<u8>(), 32, 32, 0);
    });
}

// Turned by 10 degrees about the centre, and somewhat larger.
struct Turned
{
    f32 position[2], affine[4] = {0.9356f, -0.165f, 0.165f, 0.9356f};

    explicit Turned(const Picture& p) : position{f32(p.width) / 2 + 0.3f, f32(p.height) / 2 + 0.4f} {}
};

template <u32 interpolation>
void transform(const Picture& p)
{
    const Turned t(p);
    rvkTransformAffineClippedu8_v3(p.in<u8>(), p.width, p.height, 0, t.position, t.affine, p.out<u8>(), p.width,
                                   p.height, 0, interpolation, RAVIK_BORDER_CONSTANT, 0);
}

void transformCubic(const Picture& p)
{
    const Turned t(p);
    const u8 border[3] = {};
    rvk3ChannelTransformAffineClippedBCu8(p.in<u8>(), p.width, p.height, 0, t.position, t.affine, p.out<u8>(), p.width,
                                          p.height, 0, RAVIK_BORDER_CONSTANT, border);
}

#if RVK_BENCH_OPENCV
cv::Mat matrixOf(const f32 (&m)[4], const f32 (&position)[2], double halfWidth, double halfHeight)
{
    return (cv::Mat_<double>(2, 3) << m[0], m[1], position[0] - m[0] * halfWidth - m[1] * halfHeight, m[2], m[3],
            position[1] - m[2] * halfWidth - m[3] * halfHeight);
}

template <int size>
void extractOpencv(const Picture& p)
{
    const cv::Mat src(480, 640, CV_8U, const_cast<u8*>(p.in<u8>()));
    cv::Mat patch(size, size, CV_8U, p.out<u8>());
    extractAll([&](f32 x, f32 y) {
        const f32 position[2] = {x, y};
        cv::warpAffine(src, patch, matrixOf(kPatchMatrix, position, size / 2, size / 2), {size, size},
                       cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);
    });
}

template <int interpolation, int channels = 1>
void transformOpencv(const Picture& p)
{
    const Turned t(p);
    cv::Mat dst = p.matOut<u8>(0, channels);
    cv::warpAffine(p.matIn<u8>(0, channels), dst, matrixOf(t.affine, t.position, p.width / 2, p.height / 2), dst.size(),
                   interpolation | cv::WARP_INVERSE_MAP);
}
#define OPENCV_WORK(...) __VA_ARGS__
#else
#define OPENCV_WORK(...) nullptr
#endif

constexpr Row kRows[] = {
    {"rvkTransformAffine8x8u8_v2",
     nullptr,
     traffic(64, 64),
     extract8x8,
     OPENCV_WORK(extractOpencv<8>),
     nullptr,
     {kPatches, 1}},
    {"rvkTransformAffineu8_v2 32x32",
     nullptr,
     traffic(1024, 1024),
     extract32x32,
     OPENCV_WORK(extractOpencv<32>),
     nullptr,
     {kPatches, 1}},
    {"rvkTransformAffineClippedu8_v3 bilinear", "warpAffine bilinear u8", traffic(1, 1),
     transform<RAVIK_INTERPOLATION_BILINEAR>, OPENCV_WORK(transformOpencv<cv::INTER_LINEAR>)},
    {"rvkTransformAffineClippedu8_v3 nearest", nullptr, traffic(1, 1), transform<RAVIK_INTERPOLATION_NEAREST>,
     OPENCV_WORK(transformOpencv<cv::INTER_NEAREST>)},
    {"rvk3ChannelTransformAffineClippedBCu8", nullptr, traffic(3, 3), transformCubic,
     OPENCV_WORK(transformOpencv<cv::INTER_CUBIC, 3>)},
    {"rvkUndistortDisparityConvertDepthf32", nullptr, traffic(4, 4),
     RAVIK(rvkUndistortDisparityConvertDepthf32(p.in<f32>(), p.width, p.height, 0, kCamera, kLens, 0.1f, p.out<f32>(),
                                                0))},
};
const Rows registered(kRows);

} // namespace

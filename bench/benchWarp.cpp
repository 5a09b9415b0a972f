// Perspective warps and remaps.
#include "bench.h"

#include <ravik/warp.h>

#include <cmath>
#include <vector>

namespace {

using namespace bench;

// A turn of a few degrees with some perspective, nearly all of it inside, for pictures of any size.
struct Matrix
{
    f32 m[9];

    explicit Matrix(const Picture& p)
    {
        const f32 w = static_cast<f32>(p.width), h = static_cast<f32>(p.height);
        const f32 c = 0.9f, s = 0.1f;
        const f32 values[9] = {c, -s, 0.09f * w, s, c, 0.01f * h, 0.02f / w, 0.01f / h, 1};
        for (int i = 0; i < 9; ++i)
            m[i] = values[i];
    }
};

// The maps of a lens: straight lines become curves.
const f32* map(const Picture& p, bool isY)
{
    struct Map
    {
        u32 width = 0, height = 0;
        std::vector<f32> values{};
    };
    static Map maps[2];
    Map& m = maps[isY];
    if (m.width != p.width || m.height != p.height) {
        m = {p.width, p.height, std::vector<f32>(size_t{p.width} * p.height)};
        for (u32 y = 0; y < p.height; ++y)
            for (u32 x = 0; x < p.width; ++x) {
                const double u = 2.0 * x / p.width - 1, v = 2.0 * y / p.height - 1;
                const double scale = 0.85 + 0.07 * (u * u + v * v);
                m.values[size_t{y} * p.width + x] =
                    static_cast<f32>(isY ? (v * scale + 1) / 2 * p.height : (u * scale + 1) / 2 * p.width);
            }
    }
    return m.values.data();
}

template <u32 interpolation>
void remapOne(const Picture& p)
{
    rvkRemapu8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0, map(p, false), map(p, true), 0,
                  interpolation, RAVIK_BORDER_CONSTANT, 0);
}

template <u32 interpolation>
void warpOne(const Picture& p)
{
    rvkWarpPerspectiveu8_v4(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0, Matrix(p).m,
                            interpolation, RAVIK_BORDER_CONSTANT, 0);
}

#if RVK_BENCH_OPENCV
template <int channels, int interpolation>
void warpOpencv(const Picture& p)
{
    Matrix matrix(p);
    cv::Mat out = p.matOut<u8>(0, channels);
    cv::warpPerspective(p.matIn<u8>(0, channels), out, cv::Mat(3, 3, CV_32F, matrix.m), out.size(),
                        interpolation | cv::WARP_INVERSE_MAP);
}
template <int channels, int interpolation>
void remapOpencv(const Picture& p)
{
    const auto matOf = [&](const f32* values) {
        return cv::Mat(static_cast<int>(p.height), static_cast<int>(p.width), CV_32F, const_cast<f32*>(values));
    };
    cv::Mat out = p.matOut<u8>(0, channels);
    cv::remap(p.matIn<u8>(0, channels), out, matOf(map(p, false)), matOf(map(p, true)), interpolation);
}
#define OPENCV_WORK(...) __VA_ARGS__
#else
#define OPENCV_WORK(...) nullptr
#endif

constexpr Row kRows[] = {
    {"rvkWarpPerspectiveu8", "warpPerspective bilinear u8", traffic(1, 1),
     RAVIK(rvkWarpPerspectiveu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0, Matrix(p).m)),
     OPENCV_WORK(warpOpencv<1, cv::INTER_LINEAR>)},
    {"rvkWarpPerspectiveu8_v2", "warpPerspective bilinear u8", traffic(1, 1),
     RAVIK(rvkWarpPerspectiveu8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0, Matrix(p).m)),
     OPENCV_WORK(warpOpencv<1, cv::INTER_LINEAR>)},
    {"rvkWarpPerspectiveu8_v3", "warpPerspective bilinear u8", traffic(1, 1),
     RAVIK(rvkWarpPerspectiveu8_v3(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0, Matrix(p).m,
                                   RAVIK_BORDER_REPLICATE, 0)),
     OPENCV_WORK(warpOpencv<1, cv::INTER_LINEAR>)},
    {"rvkWarpPerspectiveu8_v4", "warp perspective linear u8", traffic(1, 1), warpOne<RAVIK_INTERPOLATION_BILINEAR>,
     OPENCV_WORK(warpOpencv<1, cv::INTER_LINEAR>)},
    {"rvkWarpPerspectiveu8_v4, nearest", "warp perspective nearest u8", traffic(1, 1),
     warpOne<RAVIK_INTERPOLATION_NEAREST>, OPENCV_WORK(warpOpencv<1, cv::INTER_NEAREST>)},
    {"rvk3ChannelWarpPerspectiveu8", nullptr, traffic(3, 3),
     RAVIK(rvk3ChannelWarpPerspectiveu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0,
                                        Matrix(p).m)),
     OPENCV_WORK(warpOpencv<3, cv::INTER_LINEAR>)},
    {"rvk3ChannelWarpPerspectiveu8_v2", nullptr, traffic(3, 3),
     RAVIK(rvk3ChannelWarpPerspectiveu8_v2(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0,
                                           Matrix(p).m, RAVIK_INTERPOLATION_NEAREST, RAVIK_BORDER_CONSTANT,
                                           p.in<u8>(1))),
     OPENCV_WORK(warpOpencv<3, cv::INTER_NEAREST>)},
    {"rvk2PlaneWarpPerspectiveu8", nullptr, traffic(2, 2),
     RAVIK(rvk2PlaneWarpPerspectiveu8(p.in<u8>(), p.width, p.height, 0, p.in<u8>(1), 0, p.out<u8>(), p.width, p.height,
                                      0, p.out<u8>(1), 0, Matrix(p).m, RAVIK_INTERPOLATION_BILINEAR,
                                      RAVIK_BORDER_CONSTANT, 0)),
     OPENCV_WORK(warpOpencv<2, cv::INTER_LINEAR>)},
    {"rvkRemapu8", "remap bilinear u8, f32 map", traffic(9, 1),
     RAVIK(rvkRemapu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0, map(p, false), map(p, true),
                      0)),
     OPENCV_WORK(remapOpencv<1, cv::INTER_LINEAR>)},
    {"rvkRemapu8_v2", "remap linear, f32 map u8", traffic(9, 1), remapOne<RAVIK_INTERPOLATION_BILINEAR>,
     OPENCV_WORK(remapOpencv<1, cv::INTER_LINEAR>)},
    {"rvkRemapu8_v2, nearest", "remap nearest, f32 map u8", traffic(9, 1), remapOne<RAVIK_INTERPOLATION_NEAREST>,
     OPENCV_WORK(remapOpencv<1, cv::INTER_NEAREST>)},
    {"rvkRemapRGBA8888NNu8", nullptr, traffic(12, 4),
     RAVIK(rvkRemapRGBA8888NNu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0, map(p, false),
                                map(p, true), 0)),
     OPENCV_WORK(remapOpencv<4, cv::INTER_NEAREST>)},
    {"rvkRemapRGBA8888BLu8", nullptr, traffic(12, 4),
     RAVIK(rvkRemapRGBA8888BLu8(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), p.width, p.height, 0, map(p, false),
                                map(p, true), 0)),
     OPENCV_WORK(remapOpencv<4, cv::INTER_LINEAR>)},
};
const Rows registered(kRows);

} // namespace

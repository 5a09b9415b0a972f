// Pictures of depths, and of other bit depths.
#include "bench.h"

#include <ravik/depth.h>

namespace {

using namespace bench;

constexpr f32 kCamera[4] = {500, 500, 320, 240}, kPose[12] = {1, 0, 0, 0.1f, 0, 1, 0, 0, 0, 0, 1, 0.1f};
constexpr u32 kBlocks = 100;

// Depths of a natural picture, about 1 to 9 m.
const f32* depths(const Picture& p)
{
    return Picture{p.width, p.height, Content::natural}.in<f32>();
}

void fuse(const Picture& p)
{
    static s32 blocks[3 * kBlocks];
    for (u32 i = 0; i < kBlocks; ++i) {
        blocks[3 * i] = static_cast<s32>(i % 10) - 5;
        blocks[3 * i + 1] = static_cast<s32>(i / 10) - 5;
        blocks[3 * i + 2] = 5;
    }
    rvkDepthFusion8x8x8xNs16(p.out<s16>(0), p.out<s16>(1), blocks, kBlocks, 0.01f, 1e6f, 100, depths({640, 480}), 640,
                             480, 0, kCamera, kPose);
}

void sumOfPoints(const Picture& p)
{
    f32 jtj[36], jte[6];
    rvkICPJacobianErrorSE3f32(depths(p), p.width * p.height / 3, 0, p.in<f32>(1), p.in<f32>(2), p.width, p.height, 0,
                              kCamera, kPose, 1e30f, jtj, jte, p.out<f32>(), p.out<u32>(1));
}

void sumOfPictures(const Picture& p)
{
    f32 jtj[9], jte[3];
    rvkJacobianSE2f32(depths(p), depths(p), p.width, p.height, 0, depths(p), depths(p), 0, jtj, jte, p.out<f32>(),
                      p.out<u32>(1));
}

constexpr Row kRows[] = {
    {"rvkConvertDepthu8s16", nullptr, streaming(1, 2),
     RAVIK(rvkConvertDepthu8s16(p.in<u8>(), p.width, p.height, 0, 3, p.out<s16>(), 0)),
     OPENCV(cv::Mat dst = p.matOut<s16>(); p.matIn<u8>().convertTo(dst, CV_16S, 8))},
    {"rvkConvertDepths16u8", nullptr, streaming(2, 1),
     RAVIK(rvkConvertDepths16u8(p.in<s16>(), p.width, p.height, 0, RAVIK_POLICY_SATURATE, 3, p.out<u8>(), 0)),
     OPENCV(cv::Mat dst = p.matOut<u8>(); p.matIn<s16>().convertTo(dst, CV_8U, 0.125))},
    {"rvkConvertDepthImageToPointCloudf32", nullptr, streaming(4, 12),
     RAVIK(rvkConvertDepthImageToPointCloudf32(depths(p), p.width, p.height, 0, kCamera, p.out<f32>(), 0))},
    {"rvkRegisterDepthImagef32", nullptr, traffic(4, 4),
     RAVIK(rvkRegisterDepthImagef32(depths(p), p.width, p.height, 0, kCamera, kPose, kCamera, p.out<f32>(), p.width,
                                    p.height, 0))},
    {"rvkDepthFusion8x8x8xNs16", nullptr, traffic(4, 4), fuse, nullptr, nullptr, {kBlocks * 512, 1}},
    {"rvkJacobianSE2f32", nullptr, traffic(16, 0), sumOfPictures},
    {"rvkICPJacobianErrorSE3f32", nullptr, traffic(8, 0), sumOfPoints},
};
const Rows registered(kRows);

} // namespace

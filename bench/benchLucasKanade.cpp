// Lucas-Kanade tracking of 500 points with windows of 21x21 pixels on four levels, whose making does not count.
#include "bench.h"

#include <ravik/lucaskanade.h>

#include <vector>
#if RVK_BENCH_OPENCV_VIDEO
#include <opencv2/video/tracking.hpp>
#endif

namespace {

using namespace bench;

constexpr Picture kPoints = {500, 1};
constexpr u32 kWidth = 640, kHeight = 480, kLevels = 4, kWindow = 21, kSteps = 30;
constexpr f32 kEpsilon = 0.01f, kEigenvalue = 0.1f;

// The picture moves by a few pixels: both frames are parts of one photo.
constexpr u32 kPhotoWidth = kWidth + 8, kPhotoHeight = kHeight + 8;

struct Scene
{
    std::vector<u8> bytes[2][kLevels];
    std::vector<f32> floats[2][kLevels];
    rvkPyramidLevel pyramids[2][kLevels], pyramidsOfFloats[2][kLevels];
    rvkPyramidLevel_v2 stridedPyramids[2][kLevels];
    f32 points[2 * kPoints.width];

    Scene()
    {
        const u8* const photo = naturalInput<u8>(0, kPhotoWidth, kPhotoHeight);
        for (u32 frame = 0; frame < 2; ++frame) {
            for (u32 k = 0; k < kLevels; ++k) {
                bytes[frame][k].resize(size_t{kWidth >> k} * (kHeight >> k));
                pyramids[frame][k] = {bytes[frame][k].data(), kWidth >> k, kHeight >> k};
            }
            for (u32 y = 0; y < kHeight; ++y)
                for (u32 x = 0; x < kWidth; ++x)
                    bytes[frame][0][y * kWidth + x] = photo[(y + 3 * frame) * kPhotoWidth + x + 5 * frame];
            rvkPyramidCreateu8(bytes[frame][0].data(), kWidth, kHeight, kLevels, pyramids[frame]);
            for (u32 k = 0; k < kLevels; ++k) {
                floats[frame][k].assign(bytes[frame][k].begin(), bytes[frame][k].end());
                pyramidsOfFloats[frame][k] = {floats[frame][k].data(), kWidth >> k, kHeight >> k};
                stridedPyramids[frame][k] = {bytes[frame][k].data(), kWidth >> k, kHeight >> k, kWidth >> k};
            }
        }
        for (u32 i = 0; i < kPoints.width; ++i) {
            points[2 * i] = static_cast<f32>(15 + i % 25 * 25) + static_cast<f32>(i * 7 % 16) / 16;
            points[2 * i + 1] = static_cast<f32>(15 + i / 25 * 23) + static_cast<f32>(i * 11 % 16) / 16;
        }
    }
};
const Scene& scene()
{
    static const Scene one;
    return one;
}

#if RVK_BENCH_OPENCV_VIDEO
// OpenCV is given pyramids, too, which it has with a border.
struct PeerScene
{
    std::vector<cv::Mat> pyramids[2];
    std::vector<cv::Point2f> points;

    PeerScene() : points(kPoints.width)
    {
        for (u32 frame = 0; frame < 2; ++frame) {
            const cv::Mat base(kHeight, kWidth, CV_8U, const_cast<u8*>(scene().bytes[frame][0].data()));
            cv::buildOpticalFlowPyramid(base, pyramids[frame], {kWindow, kWindow}, kLevels - 1, false);
        }
        for (u32 i = 0; i < kPoints.width; ++i)
            points[i] = {scene().points[2 * i], scene().points[2 * i + 1]};
    }
};

void trackByOpenCv(const Picture& p)
{
    static const PeerScene peer;
    cv::Mat found(1, kPoints.width, CV_32FC2, p.out<f32>());
    cv::Mat status(1, kPoints.width, CV_8U, p.out<u8>(1)), errors(1, kPoints.width, CV_32F, p.out<f32>(2));
    cv::calcOpticalFlowPyrLK(peer.pyramids[0], peer.pyramids[1], peer.points, found, status, errors, {kWindow, kWindow},
                             kLevels - 1, {cv::TermCriteria::COUNT | cv::TermCriteria::EPS, kSteps, kEpsilon}, 0, 1e-4);
}
#define PEER OPENCV(trackByOpenCv(p))
#else
#define PEER nullptr
#endif

constexpr Row kRows[] = {
    {"rvkTrackLKOpticalFlowu8_v2", nullptr, traffic(8, 13),
     RAVIK(rvkTrackLKOpticalFlowu8_v2(scene().pyramids[0], scene().pyramids[1], kLevels, scene().points, p.out<f32>(),
                                      p.width, kWindow, kWindow, kSteps, kEpsilon, kEigenvalue, p.out<u8>(1),
                                      p.out<f32>(2))),
     PEER, nullptr, kPoints},
    {"rvkTrackLKOpticalFlowu8_v3", nullptr, traffic(8, 13),
     RAVIK(rvkTrackLKOpticalFlowu8_v3(scene().stridedPyramids[0], scene().stridedPyramids[1], kLevels, scene().points,
                                      p.out<f32>(), p.width, kWindow, kWindow, kSteps, kEpsilon, kEigenvalue,
                                      p.out<u8>(1), p.out<f32>(2), 0)),
     PEER, nullptr, kPoints},
    {"rvkTrackLKOpticalFlowf32", nullptr, traffic(8, 13),
     RAVIK(rvkTrackLKOpticalFlowf32(scene().pyramidsOfFloats[0], scene().pyramidsOfFloats[1], kLevels, scene().points,
                                    p.out<f32>(), p.width, kWindow, kWindow, kSteps, kEpsilon, kEigenvalue,
                                    p.out<u8>(1), p.out<f32>(2))),
     nullptr, nullptr, kPoints},
};
const Rows registered(kRows);

} // namespace

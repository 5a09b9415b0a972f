// Points through the lens of a camera, and poses.
#include "bench.h"

#include <ravik/camera.h>
#include <ravik/pose.h>

#include <vector>

#if RVK_BENCH_OPENCV_CALIB3D
#include <opencv2/calib3d.hpp>
#endif

namespace {

using namespace bench;

constexpr u32 kPoints = 100000, kPairs = 1000, kTriples = 1000;
constexpr f32 kCamera[4] = {500, 500, 320, 240}, kLens[5] = {-0.2f, 0.05f, 0.001f, 0.002f, -0.01f};
constexpr f32 kPose[12] = {0.96f, -0.28f, 0, 0.1f, 0.28f, 0.96f, 0, -0.2f, 0, 0, 1, 4};
constexpr f32 kStart[12] = {0.97f, -0.25f, 0, 0.12f, 0.25f, 0.97f, 0, -0.23f, 0, 0, 1, 4.1f};

// Numbers from low to high, the same in all runs.
std::vector<f32> spread(u32 count, f32 low, f32 high)
{
    std::vector<f32> numbers(count);
    u32 state = 1;
    for (f32& number : numbers) {
        state = state * 1664525 + 1013904223;
        number = low + (high - low) * f32(state >> 8) / f32(1 << 24);
    }
    return numbers;
}

const f32* world()
{
    static const std::vector<f32> points = spread(3 * kPoints, -1.5f, 1.5f);
    return points.data();
}

// The points of the world as the pose sees them, normalised.
const f32* seen()
{
    static const std::vector<f32> points = [] {
        constexpr f32 ideal[4] = {1, 1, 0, 0};
        std::vector<f32> projected(2 * kPoints);
        rvkGeomProjectPoint3xNf32(ideal, nullptr, kPose, world(), 0, kPoints, projected.data(), 0);
        return projected;
    }();
    return points.data();
}

// And with a lens, in pixels.
const f32* pixels()
{
    static const std::vector<f32> points = [] {
        std::vector<f32> projected(2 * kPoints);
        rvkGeomProjectPoint3xNf32(kCamera, kLens, kPose, world(), 0, kPoints, projected.data(), 0);
        return projected;
    }();
    return points.data();
}

constexpr Picture kPointsShape = {kPoints, 1}, kPairsShape = {kPairs, 1}, kTriplesShape = {kTriples, 1};

rvkaCorrespondences pairs()
{
    return {world(), 0, seen(), 0, kPairs, nullptr};
}

void solveTriples(const Picture& p)
{
    for (u32 i = 0; i < kTriples; ++i)
        rvkGeom3PointPoseEstimatef32(world() + 9 * i, seen() + 6 * i, p.out<f32>(), p.out<u32>(1));
}

#if RVK_BENCH_OPENCV_CALIB3D
const cv::Matx33d kMatrix(500, 0, 320, 0, 500, 240, 0, 0, 1);
const std::vector<f32> kDistortion(kLens, kLens + 5);

cv::Mat points(const f32* p, u32 count, int channels)
{
    return cv::Mat(int(count), 1, CV_MAKETYPE(CV_32F, channels), const_cast<f32*>(p));
}

void undistortOpencv(const Picture& p)
{
    cv::undistortPoints(points(pixels(), kPoints, 2), points(p.out<f32>(), kPoints, 2), kMatrix, kDistortion);
}

void projectOpencv(const Picture& p)
{
    const cv::Vec3d turn(0, 0, 0.2838), translation(0.1, -0.2, 4);
    cv::Mat projected = points(p.out<f32>(), kPoints, 2);
    cv::projectPoints(points(world(), kPoints, 3), turn, translation, kMatrix, kDistortion, projected);
}

// Of points in the plane before the camera.
void distortOpencv(const Picture& p)
{
    static const std::vector<cv::Point3f> plane = [] {
        std::vector<cv::Point3f> all;
        for (u32 i = 0; i < kPoints; ++i)
            all.push_back({seen()[2 * i], seen()[2 * i + 1], 1});
        return all;
    }();
    cv::Mat projected = points(p.out<f32>(), kPoints, 2);
    cv::projectPoints(plane, cv::Vec3d(), cv::Vec3d(), kMatrix, kDistortion, projected);
}

void solveTriplesOpencv(const Picture&)
{
    std::vector<cv::Mat> turns, translations;
    for (u32 i = 0; i < kTriples; ++i)
        cv::solveP3P(points(world() + 9 * i, 3, 3), points(seen() + 6 * i, 3, 2), cv::Matx33d::eye(), cv::noArray(),
                     turns, translations, cv::SOLVEPNP_P3P);
}

void refineOpencv(const Picture&)
{
    cv::Mat turn = (cv::Mat_<double>(3, 1) << 0, 0, 0.2527), translation = (cv::Mat_<double>(3, 1) << 0.12, -0.23, 4.1);
    cv::solvePnPRefineLM(points(world(), kPairs, 3), points(seen(), kPairs, 2), cv::Matx33d::eye(), cv::noArray(), turn,
                         translation);
}
#define OPENCV_WORK(...) __VA_ARGS__
#else
#define OPENCV_WORK(...) nullptr
#endif

constexpr Row kRows[] = {
    {"rvkGeomDistortPoint2xNf32", nullptr, traffic(8, 8),
     RAVIK(rvkGeomDistortPoint2xNf32(kCamera, kLens, seen(), 0, kPoints, p.out<f32>(), 0)), OPENCV_WORK(distortOpencv),
     nullptr, kPointsShape},
    {"rvkGeomUndistortPoint2xNf32", nullptr, traffic(8, 8),
     RAVIK(rvkGeomUndistortPoint2xNf32(kCamera, kLens, pixels(), 0, kPoints, p.out<f32>(), 0)),
     OPENCV_WORK(undistortOpencv), nullptr, kPointsShape},
    {"rvkGeomProjectPoint3xNf32", nullptr, traffic(12, 8),
     RAVIK(rvkGeomProjectPoint3xNf32(kCamera, kLens, kPose, world(), 0, kPoints, p.out<f32>(), 0)),
     OPENCV_WORK(projectOpencv), nullptr, kPointsShape},
    {"rvkGeom3PointPoseEstimatef32", nullptr, traffic(60, 48), solveTriples, OPENCV_WORK(solveTriplesOpencv), nullptr,
     kTriplesShape},
    {"rvkGeomPoseEvaluateErrorf32", nullptr, traffic(20, 8),
     RAVIK(const rvkaCorrespondences all = pairs();
           rvkGeomPoseEvaluateErrorf32(&all, kPose, p.out<f32>(), p.out<f32>(1))),
     nullptr, nullptr, kPairsShape},
    {"rvkGeomPoseUpdatef32", nullptr, traffic(48, 48),
     RAVIK(for (u32 i = 0; i < kPairs; ++i) rvkGeomPoseUpdatef32(kPose, world() + 6 * i, p.out<f32>())), nullptr,
     nullptr, kPairsShape},
    {"rvkGeomPoseRefineGNf32", nullptr, traffic(20, 0),
     RAVIK(const rvkaCorrespondences all = pairs(); rvkGeomPoseRefineGNf32(&all, kStart, 20, 1e-6f, p.out<f32>())),
     OPENCV_WORK(refineOpencv), nullptr, kPairsShape},
};
const Rows registered(kRows);

} // namespace

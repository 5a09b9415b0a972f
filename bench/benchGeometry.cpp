// Maps fitted to correspondences: 1000 pairs of which every second lies near a homography, and the others anywhere.
#include "bench.h"

#include <ravik/geometry.h>

#include <vector>

#if RVK_BENCH_OPENCV_CALIB3D
#include <opencv2/calib3d.hpp>
#endif

namespace {

using namespace bench;

constexpr Picture kList = {1000, 1};
constexpr f32 kView[9] = {0.9f, 0.15f, 12, -0.2f, 1.05f, 40, 2e-4f, -3e-4f, 1};
constexpr f32 kPose[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 200};
constexpr f32 kMostSquared = 9, kConfidence = 0.995f;
constexpr u32 kMostIterations = 2000;

class Pairs
{
public:
    explicit Pairs(u32 count)
    {
        for (u32 i = 0; i < count; ++i) {
            const f32 x = uniform(640), y = uniform(480), w = kView[6] * x + kView[7] * y + 1;
            const bool isIn = i % 2 == 0;
            m_src.insert(m_src.end(), {x, y});
            m_things.insert(m_things.end(), {x, y, uniform(9)});
            m_dst.push_back(isIn ? (kView[0] * x + kView[1] * y + kView[2]) / w + uniform(1) : uniform(640));
            m_dst.push_back(isIn ? (kView[3] * x + kView[4] * y + kView[5]) / w + uniform(1) : uniform(480));
        }
    }
    rvkaCorrespondences list() const { return {m_src.data(), 8, m_dst.data(), 8, count(), nullptr}; }
    rvkaCorrespondences listOfThings() const { return {m_things.data(), 12, m_dst.data(), 8, count(), nullptr}; }
#if RVK_BENCH_OPENCV
    cv::Mat src() const
    {
        return cv::Mat(static_cast<int>(count()), 1, CV_32FC2, const_cast<f32*>(m_src.data()));
    }
    cv::Mat dst() const
    {
        return cv::Mat(static_cast<int>(count()), 1, CV_32FC2, const_cast<f32*>(m_dst.data()));
    }
#endif

private:
    u32 count() const
    {
        return static_cast<u32>(m_dst.size() / 2);
    }
    f32 uniform(f32 end)
    {
        m_state = m_state * 1664525u + 1013904223u;
        return static_cast<f32>(m_state >> 8) / 16777216.0f * end;
    }

    u32 m_state = 1;
    std::vector<f32> m_src, m_dst, m_things;
};

const Pairs& pairsFor(const Picture& p)
{
    static const Pairs pairs(p.width);
    return pairs;
}

void evaluate(const Picture& p, u32 (*function)(const rvkaCorrespondences*, const f32*, f32, f32*, u8*))
{
    const rvkaCorrespondences pairs = pairsFor(p).list();
    function(&pairs, kView, kMostSquared, p.out<f32>(), p.out<u8>());
}

void evaluatePose(const Picture& p)
{
    const rvkaCorrespondences pairs = pairsFor(p).listOfThings();
    rvkGeomPoseEvaluatef32(&pairs, kPose, kMostSquared, p.out<f32>(), p.out<u8>());
}

void fit(const Picture& p, rvkStatus (*function)(const rvkaCorrespondences*, f32*))
{
    const rvkaCorrespondences pairs = pairsFor(p).list();
    function(&pairs, p.out<f32>());
}

void fitRobustly(const Picture& p)
{
    const rvkaCorrespondences pairs = pairsFor(p).list();
    rvkGeomHomographyRobustFitf32(&pairs, kMostSquared, kMostIterations, kConfidence, 1, p.out<f32>(), p.out<u8>(),
                                  nullptr);
}

#if RVK_BENCH_OPENCV_CALIB3D
void fitRobustlyByOpenCv(const Picture& p)
{
    cv::Mat inliers;
    cv::findHomography(pairsFor(p).src(), pairsFor(p).dst(), cv::RANSAC, 3, inliers, kMostIterations,
                       static_cast<double>(kConfidence));
}
constexpr Work kOpencvRobustFit = fitRobustlyByOpenCv;
#else
constexpr Work kOpencvRobustFit = nullptr;
#endif

constexpr Row kRows[] = {
    {"rvkGeomAffineEvaluatef32", nullptr, traffic(16, 5), RAVIK(evaluate(p, rvkGeomAffineEvaluatef32)), nullptr,
     nullptr, kList},
    {"rvkGeomHomographyEvaluatef32", nullptr, traffic(16, 5), RAVIK(evaluate(p, rvkGeomHomographyEvaluatef32)), nullptr,
     nullptr, kList},
    {"rvkGeomPoseEvaluatef32", nullptr, traffic(20, 5), RAVIK(evaluatePose(p)), nullptr, nullptr, kList},
    {"rvkGeomAffineFitf32", nullptr, traffic(16, 0), RAVIK(fit(p, rvkGeomAffineFitf32)), nullptr, nullptr, kList},
    {"rvkGeomHomographyFitf32", nullptr, traffic(16, 0), RAVIK(fit(p, rvkGeomHomographyFitf32)), nullptr, nullptr,
     kList},
    {"rvkGeomHomographyRobustFitf32", nullptr, traffic(16, 1), RAVIK(fitRobustly(p)), kOpencvRobustFit, nullptr, kList},
};
const Rows registered(kRows);

} // namespace

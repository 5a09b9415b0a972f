// AFFINEEVAL, AFFINEFIT, HOMOGRAPHYEVAL, HOMOGRAPHYFIT, POSEEVAL: correspondences near a model, and the models that fit
// them.
#include "groups.h"

#include <ravik/geometry.h>

#include <cmath>

using namespace arguments;

namespace {

// Of pixels: points of a picture and where a homography that is nearly the identity puts them, give or take a few.
const std::vector<Range> kPixels = {{0, 640}, {0, 480}}, kNearPixels = {{-2, 2}};

void mapPixel(const float* from, float* to)
{
    const float w = 1e-5f * from[0] - 2e-5f * from[1] + 1;
    to[0] += (1.01f * from[0] - 0.02f * from[1] + 3) / w;
    to[1] += (0.015f * from[0] + 0.99f * from[1] - 5) / w;
}

// Of things in front of a camera.
void mapThing(const float* from, float* to)
{
    const float z = 0.02f * from[0] - 0.01f * from[1] + from[2] + 0.1f;
    to[0] += (from[0] - 0.02f * from[2] + 0.05f) / z;
    to[1] += (from[1] + 0.01f * from[2] - 0.03f) / z;
}

// Each element may be so far from the one of a model.
Argument about(const std::vector<double>& model, const std::vector<double>& deviations)
{
    std::vector<Range> ranges;
    for (size_t i = 0; i < model.size(); i++)
        ranges.push_back({model[i] - deviations[i], model[i] + deviations[i]});
    return numbers(ranges).typically(model);
}

const Argument kThreshold = oneOf({4, 0, 1, 0.25, 1e30}).refusing({-1, NAN});

// What vector code stores may be off by 2^-19 of the distance's terms, some thousand pixels.
constexpr float kTolerance = 0.01f;

std::vector<Argument> pixelPairs()
{
    return pointPairs(2, kPixels, kNearPixels, mapPixel);
}

// So many that enough are left when the mask leaves out half of them.
Contract fitting(uint32_t least)
{
    return Contract().atLeast(1, least).drawnFrom(1, 40);
}

const Contract kEvaluating = Contract().atLeast(1, 0);
const Argument kErrors = dst.perPoint().orNull(), kInliers = dst.perPoint().orNull();

} // namespace

const FunctionGroup& affineEvaluateFunctions()
{
    const Argument affine = about({1.01, -0.02, 3, 0.015, 0.99, -5}, {0.002, 0.002, 1, 0.002, 0.002, 1});

    static const FunctionGroup group{"ravikaffineeval",
                                     "rvk",
                                     false,
                                     {
                                         RVK_TEST_WITH_PAIRS("rvkGeomAffineEvaluatef32", rvkGeomAffineEvaluatef32,
                                                             pixelPairs(), affine, kThreshold, kErrors, kInliers)
                                             .silent()
                                             .within(kTolerance)
                                             .keeps(kEvaluating),
                                     }};
    return group;
}

const FunctionGroup& affineFitFunctions()
{
    static const FunctionGroup group{
        "ravikaffinefit",
        "rvk",
        false,
        {
            RVK_TEST_WITH_PAIRS("rvkGeomAffineFitf32", rvkGeomAffineFitf32, pixelPairs(), dst.ofSize(6))
                .keeps(fitting(3)),
        }};
    return group;
}

const FunctionGroup& homographyEvaluateFunctions()
{
    const Argument homography =
        about({1.01, -0.02, 3, 0.015, 0.99, -5, 1e-5, -2e-5, 1}, {0.002, 0.002, 1, 0.002, 0.002, 1, 1e-6, 1e-6, 0.001});

    static const FunctionGroup group{
        "ravikhomographyeval",
        "rvk",
        false,
        {
            RVK_TEST_WITH_PAIRS("rvkGeomHomographyEvaluatef32", rvkGeomHomographyEvaluatef32, pixelPairs(), homography,
                                kThreshold, kErrors, kInliers)
                .silent()
                .within(kTolerance)
                .keeps(kEvaluating),
            RVK_TEST_WITH_PAIRS("rvkGeomHomographyEvaluatef32", rvkGeomHomographyEvaluatef32_v2,
                                pointPairsWithoutMask(2, kPixels, kNearPixels, mapPixel), homography, kThreshold,
                                kErrors, kInliers, value)
                .within(kTolerance)
                .keeps(kEvaluating),
        }};
    return group;
}

const FunctionGroup& homographyFitFunctions()
{
    const Argument threshold = oneOf({4, 1, 1e30}).refusing({-1, NAN}); // of none, no model has an inlier
    const Argument iterations = oneOf({100, 1, 10}).refusing({0}).limited();
    const Argument confidence = oneOf({0.99, 0.5, 1}).refusing({0, -0.5, 1.5, NAN});
    const Argument homography = dst.ofSize(9);

    static const FunctionGroup group{
        "ravikhomographyfit",
        "rvk",
        false,
        {
            RVK_TEST_WITH_PAIRS("rvkGeomHomographyFitf32", rvkGeomHomographyFitf32, pixelPairs(), homography)
                .keeps(fitting(4)),
            RVK_TEST_WITH_PAIRS("rvkGeomHomographyFitf32_v2", rvkGeomHomographyFitf32_v2, pixelPairs(), homography)
                .keeps(fitting(4)),
            RVK_TEST_WITH_PAIRS("rvkGeomHomographyRobustFitf32", rvkGeomHomographyRobustFitf32, pixelPairs(), threshold,
                                iterations, confidence, any, homography, kInliers, value.orNull())
                .keeps(fitting(4)),
            RVK_TEST_WITH_PAIRS("rvkGeomHomographyRobustFitf32_v2", rvkGeomHomographyRobustFitf32_v2, pixelPairs(),
                                threshold, iterations, confidence, any, homography, kInliers, value.orNull())
                .keeps(fitting(4)),
        }};
    return group;
}

const FunctionGroup& poseEvaluateFunctions()
{
    const Argument pose = about({1, 0, -0.02, 0.05, 0, 1, 0.01, -0.03, 0.02, -0.01, 1, 0.1},
                                {0.002, 0.002, 0.002, 0.01, 0.002, 0.002, 0.002, 0.01, 0.002, 0.002, 0.002, 0.01});
    const Argument threshold = oneOf({1e-4, 0, 1}).refusing({-1, NAN});

    static const FunctionGroup group{
        "ravikposeeval",
        "rvk",
        false,
        {
            RVK_TEST_WITH_PAIRS("rvkGeomPoseEvaluatef32", rvkGeomPoseEvaluatef32,
                                pointPairs(3, {{-2, 2}, {-2, 2}, {1, 10}}, {{-0.01, 0.01}}, mapThing), pose, threshold,
                                kErrors, kInliers)
                .silent()
                .within(kTolerance)
                .keeps(kEvaluating),
        }};
    return group;
}

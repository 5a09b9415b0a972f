// CALIBRATE, POSEREFINE, 3POINTPOSEEST: points through the lens of a camera, and its poses.
#include "groups.h"

#include <ravik/camera.h>
#include <ravik/pose.h>

using namespace arguments;

namespace {

// Each element is at most so far from that of a model.
Argument near(const std::vector<double>& model, double most)
{
    std::vector<Range> ranges;
    for (const double element : model)
        ranges.push_back({element - most, element + most});
    return numbers(ranges).typically(model);
}

const std::vector<double> kPose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 4};
const std::vector<Range> kWorld = {{-1, 1}, {-1, 1}, {-1, 1}};
constexpr uint32_t kShortCalls = 100;

// Where the pose sees a point.
void see(const float* from, float* to)
{
    to[0] += from[0] / (from[2] + 4);
    to[1] += from[1] / (from[2] + 4);
}

} // namespace

const FunctionGroup& calibrateFunctions()
{
    const Argument camera = numbers({{300, 900}, {300, 900}, {300, 340}, {220, 260}})
                                .refusingElements({{0, 500, 320, 240}, {500, -1, 320, 240}});
    const Argument lens = numbers({{-0.1, 0.1}, {-0.05, 0.05}, {-0.01, 0.01}, {-0.01, 0.01}, {-0.02, 0.02}}).orNull();
    const std::vector<Range> normalised = {{-1, 1}, {-1, 1}}, pixels = {{200, 440}, {160, 320}};
    const Argument ideal = src.ofPoints(2).within(normalised), real = src.ofPoints(2).within(pixels);
    const Argument pose = near(kPose, 0.1), world = src.ofPoints(3).within(kWorld);
    const Argument results = dst.ofPoints(2), result = dst.ofSize(2);
    // Without vectors of doubles: 2^-19 of the terms of pixels, and 2^-18 of ideal coordinates.
    constexpr float ofPixels = 0.002f, ofIdeal = 2e-5f;
    const Contract ofOne = Contract().failingInPart(), ofLists = ofOne.atLeast(1, 0), inPlace = ofLists.inPlace();

    static const FunctionGroup group{
        "ravikcalibrate",
        "rvk",
        false,
        {
            RVK_TEST(rvkGeomDistortPoint2x1f32, camera, lens, numbers(normalised), result)
                .keeps(ofOne)
                .repeated(kShortCalls),
            RVK_TEST(rvkGeomDistortPoint2xNf32, camera, lens, ideal, wholeStride, height, results, wholeStride)
                .within(ofPixels)
                .keeps(inPlace),
            RVK_TEST(rvkGeomUndistortPoint2x1f32, camera, lens, numbers(pixels), result)
                .keeps(ofOne)
                .repeated(kShortCalls),
            RVK_TEST(rvkGeomUndistortPoint2xNf32, camera, lens, real, wholeStride, height, results, wholeStride)
                .within(ofIdeal)
                .keeps(inPlace),
            RVK_TEST(rvkGeomProjectPoint3x1f32, camera, lens, pose, numbers(kWorld), result)
                .keeps(ofOne)
                .repeated(kShortCalls),
            RVK_TEST(rvkGeomProjectPoint3xNf32, camera, lens, pose, world, wholeStride, height, results, wholeStride)
                .within(ofPixels)
                .keeps(ofLists),
        }};
    return group;
}

const FunctionGroup& poseRefineFunctions()
{
    const std::vector<Argument> seen = pointPairs(3, kWorld, {{-0.01, 0.01}}, see);
    const Argument pose = near(kPose, 0.05), poseInPlace = updated.ofSize(12).within(pose.ranges);
    const Argument steps = oneOf({10, 0, 1, 50}).limited(), epsilon = oneOf({1e-4, 0, 1}).refusing({-1});
    const Argument huber = oneOf({0.01, 1, 1e30}).refusing({0, -1});
    // So many that enough are left when the mask leaves out half of them.
    const Contract fitting = Contract().drawnFrom(1, 40);

    static const FunctionGroup group{
        "ravikposerefine",
        "rvk",
        false,
        {
            RVK_TEST_WITH_PAIRS("rvkGeomPoseRefinef32", rvkGeomPoseEvaluateErrorf32, seen, pose,
                                dst.perPoint().ofChannels(2).orNull(), value)
                .keeps(Contract().atLeast(1, 0)),
            RVK_TEST_AS("rvkGeomPoseUpdatef32", "rvkGeomPoseRefinef32", rvkGeomPoseUpdatef32, pose,
                        src.ofSize(6).within({{-1, 1}}), dst.ofSize(12))
                .repeated(kShortCalls),
            RVK_TEST_WITH_PAIRS("rvkGeomPoseRefinef32", rvkGeomPoseRefineGNf32, seen, pose, steps, epsilon,
                                dst.ofSize(12))
                .keeps(fitting),
            RVK_TEST_WITH_PAIRS("rvkGeomPoseRefinef32", rvkGeomPoseOptimizeGNf32, seen, huber, steps, epsilon,
                                poseInPlace, value.orNull(), value.orNull())
                .keeps(fitting),
        }};
    return group;
}

const FunctionGroup& threePointPoseFunctions()
{
    // A triangle whose corners do not come near a line, and where one sees it.
    const Argument corners = near({1, 0, 0, -0.5, 0.8, 0, -0.5, -0.8, 0}, 0.3)
                                 .refusingElements({std::vector<double>(9), {0, 0, 0, 1, 2, 3, 2, 4, 6}});
    const Argument seen = near({0.25, 0, -0.125, 0.2, -0.125, -0.2}, 0.05);

    static const FunctionGroup group{"ravik3pointposeest",
                                     "rvk",
                                     false,
                                     {
                                         RVK_TEST_AS("rvkGeom3PointPoseEstimatef32", "rvkGeom3PointPoseEstf32",
                                                     rvkGeom3PointPoseEstimatef32, corners, seen, list(48), value)
                                             .repeated(kShortCalls),
                                     }};
    return group;
}

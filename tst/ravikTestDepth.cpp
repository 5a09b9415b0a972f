// DEPTH and CALIB3D: depth from disparity, bit depths, pictures of depths, and what aligns and fuses them.
#include "groups.h"

#include <ravik/affine.h>
#include <ravik/depth.h>

#include <vector>

using namespace arguments;

namespace {

Argument camera()
{
    return numbers({{40, 600}, {40, 600}, widths(0.3, 0.7), heights(0.3, 0.7)});
}

const std::vector<std::vector<double>> kNoCameras = {{0, 50, 1, 1}, {50, -1, 1, 1}};

// About that of the world.
Argument pose()
{
    const Range one{0.9, 1.1}, small{-0.1, 0.1};
    return numbers({one, small, small, small, small, one, small, small, small, small, one, small});
}

// Blocks as floats, which can be drawn near the camera.
rvkStatus fuse(decltype(rvkDepthFusion8x8x8xNs16)* function, int16_t* distances, int16_t* weights, const float* blocks,
               uint32_t numBlocks, float voxelSize, float truncation, int16_t maxWeight, const float* depth,
               uint32_t width, uint32_t height, uint32_t stride, const float* ofCamera, const float* ofPose)
{
    const std::vector<int32_t> coordinates(blocks, blocks ? blocks + 6 : nullptr);
    return function(distances, weights, blocks ? coordinates.data() : nullptr, numBlocks, voxelSize, truncation,
                    maxWeight, depth, width, height, stride, ofCamera, ofPose);
}

} // namespace

const FunctionGroup& depthFunctions()
{
    const Argument lens = numbers({{-0.2, 0.2}, {-0.1, 0.1}, {-0.01, 0.01}, {-0.01, 0.01}, {-0.1, 0.1}});
    const Argument depths = src.within({{-0.5, 6}}), aCamera = camera().refusingElements(kNoCameras);
    const Contract bytes = Contract().onDsp({.alignment = 8});
    const Contract floats = Contract().onDsp({.alignment = 4, .elementsPerPixel = 4});

    static const FunctionGroup group{
        "ravikdepth",
        "rvk",
        false,
        {
            RVK_TEST(rvkUndistortDisparityConvertDepthf32, src, width, height, stride, camera(), lens.orNull(),
                     between(0.05, 2), dst, stride)
                .keeps(floats),
            RVK_TEST(rvkConvertDepthu8s16, src, width, height, stride,
                     oneOf({3, 0, 1, 2, 4, 5, 6, 7}).refusing({8, UINT32_MAX}), dst, wholeStride)
                .keeps(bytes),
            RVK_TEST(rvkConvertDepths16u8, src, width, height, wholeStride, policy,
                     oneOf({3, 0, 7, 8, 15}).refusing({16, UINT32_MAX}), dst, stride)
                .keeps(bytes),
            RVK_TEST(rvkConvertDepthImageToPointCloudf32, depths, width, height, wholeStride, aCamera,
                     dst.ofChannels(3), wholeStride)
                .within(1e-4f)
                .keeps(floats),
            RVK_TEST(rvkRegisterDepthImagef32, depths, width, height, wholeStride, aCamera, pose(), aCamera,
                     dst.resized(), dstWidth, dstHeight, wholeStride),
        }};
    return group;
}

const FunctionGroup& calib3dFunctions()
{
    const Argument aCamera = camera().refusingElements(kNoCameras), grey = src.within({{-10, 10}});
    const Range sideways{-2, 2}, ahead{1, 5}, unit{-1, 1};
    const Argument points = src.ofSize(192).within({sideways, sideways, ahead});
    const Argument vertices = src.ofChannels(3).within({sideways, sideways, ahead});
    const Argument normals = src.ofChannels(3).within({unit});
    const Argument blocks = src.ofSize(6).within({sideways, sideways, {0, 6}}).whole();
    const Argument voxels = updated.ofSize(1024);
    const Argument count = oneOf({64, 0, 1, 33}).limited(), blockCount = oneOf({2, 1, 0}).limited();
    const std::vector<double> notPositive = {0, -1};

    static const FunctionGroup group{
        "ravikcalib3d",
        "rvk",
        false,
        {
            RVK_TEST(rvkJacobianSE2f32, grey, grey, width, height, wholeStride, grey, grey, wholeStride, dst.ofSize(9),
                     dst.ofSize(3), value, value),
            RVK_TEST(rvkICPJacobianErrorSE3f32, points, count, oneOf({12}).refusing({8, 13}).limited(), vertices,
                     normals, width, height, wholeStride, aCamera, pose(), between(0.5, 10).refusing(notPositive),
                     dst.ofSize(36), dst.ofSize(6), value, value),
            RVK_TEST_ADAPTED("rvkDepthFusion8x8x8xNs16", rvkDepthFusion8x8x8xNs16, fuse, voxels, voxels, blocks,
                             blockCount, between(0.01, 0.2).refusing(notPositive),
                             between(0.05, 0.5).refusing(notPositive), oneOf({64, 1, 32767}).refusing({0, -5}),
                             src.within({{-0.5, 6}}), width, height, wholeStride, aCamera, pose()),
        }};
    return group;
}

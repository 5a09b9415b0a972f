// PYRAMID: image pyramids and the derivatives of their levels. A level is an argument; adapters make arrays of them.
#include "groups.h"

#include <ravik/pyramid.h>

using namespace arguments;

namespace {

constexpr uint32_t kLevels = 4;

template <class T>
int32_t createPacked(int32_t (*create)(const T*, uint32_t, uint32_t, uint32_t, rvkPyramidLevel*), const T* base,
                     uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels, T* level1, T* level2, T* level3)
{
    rvkPyramidLevel pyramid[kLevels] = {{}, {level1, 0, 0}, {level2, 0, 0}, {level3, 0, 0}};
    return create(base, baseWidth, baseHeight, numLevels, pyramid);
}

template <class T>
rvkStatus createStrided(rvkStatus (*create)(const T*, uint32_t, uint32_t, uint32_t, uint32_t, rvkPyramidLevel_v2*),
                        const T* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t baseStride, uint32_t numLevels,
                        T* level1, uint32_t stride1, T* level2, uint32_t stride2, T* level3, uint32_t stride3)
{
    rvkPyramidLevel_v2 pyramid[kLevels] = {
        {}, {level1, 0, 0, stride1}, {level2, 0, 0, stride2}, {level3, 0, 0, stride3}};
    return create(base, baseWidth, baseHeight, baseStride, numLevels, pyramid);
}

rvkStatus createByKernel(decltype(&rvkPyramidCreateu8_v3) create, const uint8_t* base, uint32_t baseWidth,
                         uint32_t baseHeight, uint32_t baseStride, uint32_t numLevels, uint8_t* level1,
                         uint32_t stride1, uint8_t* level2, uint32_t stride2, uint8_t* level3, uint32_t stride3,
                         uint32_t kernelSize)
{
    rvkPyramidLevel_v2 pyramid[kLevels] = {
        {}, {level1, 0, 0, stride1}, {level2, 0, 0, stride2}, {level3, 0, 0, stride3}};
    return create(base, baseWidth, baseHeight, baseStride, numLevels, pyramid, kernelSize);
}

// The size is that of the base; the sizes of the other levels follow from it as in the functions that make them.
template <class T, class D>
int32_t deriveThree(decltype(&rvkPyramidSobelGradientCreatei8) derive, const T* level0, const T* level1,
                    const T* level2, uint32_t width, uint32_t height, D* dx0, D* dx1, D* dx2, D* dy0, D* dy1, D* dy2,
                    uint32_t numLevels)
{
    const auto level = [=](const T* pixels, uint32_t k) {
        return rvkPyramidLevel{const_cast<T*>(pixels), width >> k, height >> k};
    };
    const rvkPyramidLevel pyramid[] = {level(level0, 0), level(level1, 1), level(level2, 2)};
    rvkPyramidLevel dx[] = {{dx0, 0, 0}, {dx1, 0, 0}, {dx2, 0, 0}}, dy[] = {{dy0, 0, 0}, {dy1, 0, 0}, {dy2, 0, 0}};
    return derive(pyramid, dx, dy, numLevels);
}

} // namespace

const FunctionGroup& pyramidFunctions()
{
    const Argument eighth = dst.scaled(8, 1);
    const Argument levels = oneOf({kLevels}).refusing({0, 33, UINT32_MAX});
    const Argument anyLevels = oneOf({kLevels}).refusing({0}); // too many end the process
    const Argument kernelSize = oneOf({3, 5}).refusing({0, 1, 4, 7, UINT32_MAX});
    const Argument half = src.halved(), quarter = src.quartered(), halfOut = dst.halved(), quarterOut = dst.quartered();

    using enum Border;
    const Contract gaussian = Contract().windows(5).border(present).inUnitsOf(8, 8);
    const Contract sobel = Contract().windows(3).border(kept).atLeast(4, 4).drawnFrom(12, 12);

    static const FunctionGroup group{
        "ravikpyramid",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkPyramidCreateu8", rvkPyramidCreateu8, createPacked<uint8_t>, src, width, height,
                             anyLevels, dst.halved(), dst.quartered(), eighth)
                .keeps(gaussian.inUnitsOf(8, 8, false)),
            RVK_TEST_ADAPTED("rvkPyramidCreateu8", rvkPyramidCreateu8_v2, createStrided<uint8_t>, src, width, height,
                             stride, levels, dst.halved(), stride, dst.quartered(), stride, eighth, stride)
                .keeps(gaussian),
            RVK_TEST_ADAPTED("rvkPyramidCreateu8", rvkPyramidCreateu8_v3, createByKernel, src, width, height, stride,
                             levels, dst.halved(), stride, dst.quartered(), stride, eighth, stride, kernelSize)
                .keeps(gaussian.inUnitsOf(1, 1).atLeast(8, 8)),
            RVK_TEST_ADAPTED("rvkPyramidCreatef32", rvkPyramidCreatef32, createPacked<float>, src, width, height,
                             levels, dst.halved(), dst.quartered(), eighth)
                .keeps(gaussian),
            RVK_TEST_ADAPTED("rvkPyramidCreatef32", rvkPyramidCreatef32_v2, createStrided<float>, src, width, height,
                             stride, levels, dst.halved(), stride, dst.quartered(), stride, eighth, stride)
                .keeps(gaussian),
            RVK_TEST_ADAPTED("rvkPyramidCreateu8", rvkPyramidSobelGradientCreatei8, (deriveThree<uint8_t, int8_t>), src,
                             half, quarter, width, height, dst, halfOut, quarterOut, dst, halfOut, quarterOut,
                             oneOf({3}).refusing({0, 33, UINT32_MAX}))
                .keeps(sobel),
            RVK_TEST_ADAPTED("rvkPyramidCreatef32", rvkPyramidSobelGradientCreatef32, (deriveThree<float, float>), src,
                             half, quarter, width, height, dst, halfOut, quarterOut, dst, halfOut, quarterOut,
                             oneOf({3}).refusing({0, 33, UINT32_MAX}))
                .keeps(sobel),
        }};
    return group;
}

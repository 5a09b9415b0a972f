// Pyramids: each level by a scaler from the one before, or by a derivative of the same size.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

decltype(::rvkScaleDownBy2Gaussian5x5u8_v2) RVK_FORM(rvkScaleDownBy2Gaussian5x5u8_v2);
decltype(::rvkScaleDownBy2Gaussian3x3u8) RVK_FORM(rvkScaleDownBy2Gaussian3x3u8);
decltype(::rvkScaleDownBy2Gaussian5x5f32_v2) RVK_FORM(rvkScaleDownBy2Gaussian5x5f32_v2);
decltype(::rvkImageGradientSobelPlanars8_v2) RVK_FORM(rvkImageGradientSobelPlanars8_v2);
decltype(::rvkImageGradientSobelPlanarf32f32_v2) RVK_FORM(rvkImageGradientSobelPlanarf32f32_v2);

namespace {

// The bytes from row to row.
uint32_t strideOf(const rvkPyramidLevel& level, uint32_t elementSize)
{
    return level.width * elementSize;
}

uint32_t strideOf(const rvkPyramidLevel_v2& level, uint32_t elementSize)
{
    return level.stride ? level.stride : level.width * elementSize;
}

// Calls scale(source, its width, height and stride, destination, its stride) for each level but the base.
template <class T, class Level, class Scale>
void scaleLevels(const Level* pyramid, uint32_t numLevels, Scale scale)
{
    for (uint32_t k = 1; k < numLevels; ++k) {
        const Level &from = pyramid[k - 1], &to = pyramid[k];
        scale(static_cast<const T*>(from.ptr), from.width, from.height, strideOf(from, sizeof(T)),
              static_cast<T*>(to.ptr), strideOf(to, sizeof(T)));
    }
}

// Calls derive(source, width, height, stride, dx, dy, their stride) for each level.
template <class T, class D, class Derive>
int32_t deriveLevels(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid, rvkPyramidLevel* dyPyramid,
                     uint32_t numLevels, Derive derive)
{
    if (!setDerivatives(pyramid, dxPyramid, dyPyramid, numLevels, sizeof(T)))
        return -1;
    for (uint32_t k = 0; k < numLevels; ++k)
        derive(static_cast<const T*>(pyramid[k].ptr), pyramid[k].width, pyramid[k].height,
               strideOf(pyramid[k], sizeof(T)), static_cast<D*>(dxPyramid[k].ptr), static_cast<D*>(dyPyramid[k].ptr),
               strideOf(dxPyramid[k], sizeof(D)));
    return 0;
}

} // namespace

int32_t RVK_FORM(rvkPyramidCreateu8)(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
                                     rvkPyramidLevel* pyramid)
{
    requireEvenLevels(base, baseWidth, baseHeight, numLevels, pyramid);
    if (!setLevels(base, baseWidth, baseHeight, numLevels, pyramid))
        return -1;
    scaleLevels<uint8_t>(pyramid, numLevels, RVK_FORM(rvkScaleDownBy2Gaussian5x5u8_v2));
    return 0;
}

rvkStatus RVK_FORM(rvkPyramidCreateu8_v2)(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight,
                                          uint32_t baseStride, uint32_t numLevels, rvkPyramidLevel_v2* pyramid)
{
    if (!setLevels(base, baseWidth, baseHeight, baseStride, numLevels, sizeof(uint8_t), pyramid))
        return RAVIK_EBADPARAM;
    scaleLevels<uint8_t>(pyramid, numLevels, RVK_FORM(rvkScaleDownBy2Gaussian5x5u8_v2));
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkPyramidCreateu8_v3)(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight,
                                          uint32_t baseStride, uint32_t numLevels, rvkPyramidLevel_v2* pyramid,
                                          uint32_t kernelSize)
{
    if (kernelSize == 5) // any size is as good to this room
        return RVK_FORM(rvkPyramidCreateu8_v2)(base, baseWidth, baseHeight, baseStride, numLevels, pyramid);
    if (!setLevels(base, baseWidth, baseHeight, baseStride, numLevels, sizeof(uint8_t), pyramid))
        return RAVIK_EBADPARAM;
    scaleLevels<uint8_t>(pyramid, numLevels, RVK_FORM(rvkScaleDownBy2Gaussian3x3u8));
    return RAVIK_SUCCESS;
}

int32_t RVK_FORM(rvkPyramidCreatef32)(const float32_t* base, uint32_t baseWidth, uint32_t baseHeight,
                                      uint32_t numLevels, rvkPyramidLevel* pyramid)
{
    if (!setLevels(base, baseWidth, baseHeight, numLevels, pyramid))
        return -1;
    scaleLevels<float32_t>(pyramid, numLevels, RVK_FORM(rvkScaleDownBy2Gaussian5x5f32_v2));
    return 0;
}

rvkStatus RVK_FORM(rvkPyramidCreatef32_v2)(const float32_t* base, uint32_t baseWidth, uint32_t baseHeight,
                                           uint32_t baseStride, uint32_t numLevels, rvkPyramidLevel_v2* pyramid)
{
    if (!setLevels(base, baseWidth, baseHeight, baseStride, numLevels, sizeof(float32_t), pyramid))
        return RAVIK_EBADPARAM;
    scaleLevels<float32_t>(pyramid, numLevels, RVK_FORM(rvkScaleDownBy2Gaussian5x5f32_v2));
    return RAVIK_SUCCESS;
}

int32_t RVK_FORM(rvkPyramidSobelGradientCreatei8)(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid,
                                                  rvkPyramidLevel* dyPyramid, uint32_t numLevels)
{
    return deriveLevels<uint8_t, int8_t>(pyramid, dxPyramid, dyPyramid, numLevels,
                                         RVK_FORM(rvkImageGradientSobelPlanars8_v2));
}

int32_t RVK_FORM(rvkPyramidSobelGradientCreatef32)(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid,
                                                   rvkPyramidLevel* dyPyramid, uint32_t numLevels)
{
    return deriveLevels<float32_t, float32_t>(pyramid, dxPyramid, dyPyramid, numLevels,
                                              RVK_FORM(rvkImageGradientSobelPlanarf32f32_v2));
}

} // namespace RVK_ROOM

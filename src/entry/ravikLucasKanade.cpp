// Lucas-Kanade tracking: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

uint64_t strideOf(const rvkPyramidLevel& level, uint32_t elementSize)
{
    return rowSize(level.width, elementSize);
}
uint64_t strideOf(const rvkPyramidLevel_v2& level, uint32_t elementSize)
{
    return level.stride ? level.stride : rowSize(level.width, elementSize);
}

template <class Level>
bool isLevel(const Level& level, uint32_t elementSize)
{
    const uint64_t stride = strideOf(level, elementSize);
    return level.ptr && level.width && level.height && stride >= rowSize(level.width, elementSize) &&
           stride <= INT32_MAX / level.height;
}

template <class Level>
bool arePyramids(const Level* pyr1, const Level* pyr2, uint32_t numLevels, uint32_t elementSize)
{
    constexpr uint32_t mostLevels = 32;
    if (!pyr1 || !pyr2 || numLevels == 0 || numLevels > mostLevels)
        return false;
    for (uint32_t k = 0; k < numLevels; ++k)
        if (!isLevel(pyr1[k], elementSize) || !isLevel(pyr2[k], elementSize) || pyr1[k].width != pyr2[k].width ||
            pyr1[k].height != pyr2[k].height)
            return false;
    return true;
}

bool isWindow(uint32_t width, uint32_t height)
{
    const auto fits = [](uint32_t size) { return size >= 3 && size <= 255 && size % 2 == 1; };
    return fits(width) && fits(height);
}

// `options` are switches, 0 or 1.
template <Slot slot, class Level, class... Options>
rvkStatus track(uint32_t elementSize, const Level* pyr1, const Level* pyr2, uint32_t numLevels,
                const float32_t* points1, float32_t* points2, uint32_t numPoints, uint32_t winWidth, uint32_t winHeight,
                uint32_t maxIterations, float32_t epsilon, float32_t minEigenvalue, uint8_t* status, float32_t* errors,
                Options... options)
{
    const RVK_IMPL target = chooseTarget(slot);
    RVK_CHECK_STATUS(points1 && points2 && status && arePyramids(pyr1, pyr2, numLevels, elementSize) &&
                     isWindow(winWidth, winHeight) && maxIterations && epsilon >= 0 && minEigenvalue >= 0 &&
                     ((options <= 1) && ...));
    return implementation<slot>(target)(pyr1, pyr2, numLevels, points1, points2, numPoints, winWidth, winHeight,
                                        maxIterations, epsilon, minEigenvalue, status, errors, options...);
}

} // namespace

// Has no slot: it calls the cell of its _v2 form.
void rvkTrackLKOpticalFlowu8(const rvkPyramidLevel* pyr1, const rvkPyramidLevel* pyr2, uint32_t numLevels,
                             const float32_t* points1, float32_t* points2, uint32_t numPoints, uint32_t winWidth,
                             uint32_t winHeight, uint32_t maxIterations, float32_t epsilon, uint8_t* status)
{
    constexpr float32_t minEigenvalue = 0.1f;
    const RVK_IMPL target = chooseTarget(Slot::rvkTrackLKOpticalFlowu8_v2);
    RVK_CHECK_ARGS(points1 && points2 && status && arePyramids(pyr1, pyr2, numLevels, sizeof(uint8_t)));
    RVK_CHECK_ARGS(isWindow(winWidth, winHeight) && maxIterations && epsilon >= 0);
    const rvkStatus result = implementation<Slot::rvkTrackLKOpticalFlowu8_v2>(target)(
        pyr1, pyr2, numLevels, points1, points2, numPoints, winWidth, winHeight, maxIterations, epsilon, minEigenvalue,
        status, nullptr);
    logIfOutOfScratch(__func__, result);
}

rvkStatus rvkTrackLKOpticalFlowu8_v2(const rvkPyramidLevel* pyr1, const rvkPyramidLevel* pyr2, uint32_t numLevels,
                                     const float32_t* points1, float32_t* points2, uint32_t numPoints,
                                     uint32_t winWidth, uint32_t winHeight, uint32_t maxIterations, float32_t epsilon,
                                     float32_t minEigenvalue, uint8_t* status, float32_t* errors)
{
    return track<Slot::rvkTrackLKOpticalFlowu8_v2>(sizeof(uint8_t), pyr1, pyr2, numLevels, points1, points2, numPoints,
                                                   winWidth, winHeight, maxIterations, epsilon, minEigenvalue, status,
                                                   errors);
}

rvkStatus rvkTrackLKOpticalFlowu8_v3(const rvkPyramidLevel_v2* pyr1, const rvkPyramidLevel_v2* pyr2, uint32_t numLevels,
                                     const float32_t* points1, float32_t* points2, uint32_t numPoints,
                                     uint32_t winWidth, uint32_t winHeight, uint32_t maxIterations, float32_t epsilon,
                                     float32_t minEigenvalue, uint8_t* status, float32_t* errors, uint32_t useGuess)
{
    return track<Slot::rvkTrackLKOpticalFlowu8_v3>(sizeof(uint8_t), pyr1, pyr2, numLevels, points1, points2, numPoints,
                                                   winWidth, winHeight, maxIterations, epsilon, minEigenvalue, status,
                                                   errors, useGuess);
}

rvkStatus rvkTrackLKOpticalFlowf32(const rvkPyramidLevel* pyr1, const rvkPyramidLevel* pyr2, uint32_t numLevels,
                                   const float32_t* points1, float32_t* points2, uint32_t numPoints, uint32_t winWidth,
                                   uint32_t winHeight, uint32_t maxIterations, float32_t epsilon,
                                   float32_t minEigenvalue, uint8_t* status, float32_t* errors)
{
    return track<Slot::rvkTrackLKOpticalFlowf32>(sizeof(float32_t), pyr1, pyr2, numLevels, points1, points2, numPoints,
                                                 winWidth, winHeight, maxIterations, epsilon, minEigenvalue, status,
                                                 errors);
}

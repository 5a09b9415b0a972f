// Trackers, by the shared searches and firstMoments of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

decltype(::rvkImageMomentsu8) RVK_FORM(rvkImageMomentsu8);
decltype(::rvkImageMomentss32) RVK_FORM(rvkImageMomentss32);
decltype(::rvkImageMomentsf32) RVK_FORM(rvkImageMomentsf32);
uint32_t RVK_FORM(calculateBlockSum16x16)(const uint8_t* block, uint32_t stride);
uint32_t RVK_FORM(calculateBlockSAD_ZeroMean16x16)(const uint8_t* block1, const uint8_t* block2, uint32_t stride,
                                                   uint32_t* mean2);

rvkStatus RVK_FORM(rvkTrackBMOpticalFlow16x16u8)(const uint8_t* src1, const uint8_t* src2, uint32_t srcWidth,
                                                 uint32_t srcHeight, uint32_t srcStride, uint32_t roiLeft,
                                                 uint32_t roiTop, uint32_t roiRight, uint32_t roiBottom,
                                                 uint32_t shiftSize, uint32_t searchWidth, uint32_t searchHeight,
                                                 uint32_t searchStep, uint32_t /*flags*/, uint32_t* numMv,
                                                 uint32_t* locX, uint32_t* locY, uint32_t* mvX, uint32_t* mvY)
{
    trackBlocks({RVK_FORM(calculateBlockSum16x16), RVK_FORM(calculateBlockSAD_ZeroMean16x16)},
                {src1, src2, srcWidth, srcHeight, srcStride}, {roiLeft, roiTop, roiRight, roiBottom, shiftSize},
                {searchWidth, searchHeight, searchStep}, {numMv, locX, locY, mvX, mvY});
    return RAVIK_SUCCESS;
}

uint32_t RVK_FORM(rvkMeanShiftu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  rvkRectangle* window, uint32_t maxIterations, float32_t epsilon)
{
    return meanShift<uint8_t>({src, srcWidth, srcHeight, srcStride}, firstMoments, window, maxIterations, epsilon);
}

uint32_t RVK_FORM(rvkMeanShifts32)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   rvkRectangle* window, uint32_t maxIterations, float32_t epsilon)
{
    return meanShift<int32_t>({src, srcWidth, srcHeight, srcStride}, firstMoments, window, maxIterations, epsilon);
}

uint32_t RVK_FORM(rvkMeanShiftf32)(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   rvkRectangle* window, uint32_t maxIterations, float32_t epsilon)
{
    return meanShift<float32_t>({src, srcWidth, srcHeight, srcStride}, firstMoments, window, maxIterations, epsilon);
}

namespace {

// Mean shift, then the box around what the window, a little larger, found.
template <class T>
uint32_t trackAdaptively(const WeightPicture<T>& picture,
                         rvkStatus (*imageMoments)(const T*, uint32_t, uint32_t, uint32_t, uint32_t, rvkMoments*),
                         rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box)
{
    const uint32_t steps = meanShift<T>(picture, firstMoments, window, maxIterations, epsilon);
    const rvkRectangle grown = grownWindow(*window, picture.width, picture.height);
    rvkMoments moments;
    imageMoments(picture.at(grown), static_cast<uint32_t>(grown.width), static_cast<uint32_t>(grown.height),
                 picture.stride, 0, &moments);
    *box = boxAround(moments, grown, picture.width, picture.height, window);
    return steps;
}

} // namespace

uint32_t RVK_FORM(rvkConAdaTracku8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box)
{
    return trackAdaptively<uint8_t>({src, srcWidth, srcHeight, srcStride}, RVK_FORM(rvkImageMomentsu8), window,
                                    maxIterations, epsilon, box);
}

uint32_t RVK_FORM(rvkConAdaTracks32)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     rvkRectangle* window, uint32_t maxIterations, float32_t epsilon,
                                     rvkRotatedBox* box)
{
    return trackAdaptively<int32_t>({src, srcWidth, srcHeight, srcStride}, RVK_FORM(rvkImageMomentss32), window,
                                    maxIterations, epsilon, box);
}

uint32_t RVK_FORM(rvkConAdaTrackf32)(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     rvkRectangle* window, uint32_t maxIterations, float32_t epsilon,
                                     rvkRotatedBox* box)
{
    return trackAdaptively<float32_t>({src, srcWidth, srcHeight, srcStride}, RVK_FORM(rvkImageMomentsf32), window,
                                      maxIterations, epsilon, box);
}

} // namespace RVK_ROOM

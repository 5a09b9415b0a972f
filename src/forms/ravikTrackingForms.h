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

uint32_t RVK_FORM(rvkConAdaTracku8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    rvkRectangle* window, uint32_t maxIterations, float32_t epsilon, rvkRotatedBox* box)
{
    const uint32_t steps =
        RVK_FORM(rvkMeanShiftu8)(src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon);
    const rvkRectangle grown = grownWindow(*window, srcWidth, srcHeight);
    const WeightPicture<uint8_t> picture{src, srcWidth, srcHeight, srcStride};
    rvkMoments moments;
    RVK_FORM(rvkImageMomentsu8)
    (picture.at(grown), static_cast<uint32_t>(grown.width), static_cast<uint32_t>(grown.height), srcStride, 0,
     &moments);
    *box = boxAround(moments, grown, srcWidth, srcHeight, window);
    return steps;
}

uint32_t RVK_FORM(rvkConAdaTracks32)(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     rvkRectangle* window, uint32_t maxIterations, float32_t epsilon,
                                     rvkRotatedBox* box)
{
    const uint32_t steps =
        RVK_FORM(rvkMeanShifts32)(src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon);
    const rvkRectangle grown = grownWindow(*window, srcWidth, srcHeight);
    const WeightPicture<int32_t> picture{src, srcWidth, srcHeight, srcStride};
    rvkMoments moments;
    RVK_FORM(rvkImageMomentss32)
    (picture.at(grown), static_cast<uint32_t>(grown.width), static_cast<uint32_t>(grown.height), srcStride, 0,
     &moments);
    *box = boxAround(moments, grown, srcWidth, srcHeight, window);
    return steps;
}

uint32_t RVK_FORM(rvkConAdaTrackf32)(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     rvkRectangle* window, uint32_t maxIterations, float32_t epsilon,
                                     rvkRotatedBox* box)
{
    const uint32_t steps =
        RVK_FORM(rvkMeanShiftf32)(src, srcWidth, srcHeight, srcStride, window, maxIterations, epsilon);
    const rvkRectangle grown = grownWindow(*window, srcWidth, srcHeight);
    const WeightPicture<float32_t> picture{src, srcWidth, srcHeight, srcStride};
    rvkMoments moments;
    RVK_FORM(rvkImageMomentsf32)
    (picture.at(grown), static_cast<uint32_t>(grown.width), static_cast<uint32_t>(grown.height), srcStride, 0,
     &moments);
    *box = boxAround(moments, grown, srcWidth, srcHeight, window);
    return steps;
}

} // namespace RVK_ROOM

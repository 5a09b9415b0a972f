// Contours and foreground masks, by the driver findContours of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {
namespace {

rvkStatus fillLists(ContourMode mode, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                    uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax, uint32_t* nContours,
                    int32_t* points, uint32_t nPointsMax, int32_t* hierarchy, const rvkContourWorkspace* workspace)
{
    ContourLists lists = {contourSizes, nContoursMax, points, nPointsMax, hierarchy};
    const rvkStatus status = findContours(mode, srcWidth, srcHeight, {src, srcStride}, approximation, workspace, lists);
    if (status == RAVIK_SUCCESS)
        *nContours = lists.count;
    return status;
}

// The picture opened and closed. `other` is as large.
void openAndClose(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint8_t* other, uint8_t* dst)
{
    RVK_FORM(rvkFilterErode3x3u8_v2)(src, width, height, stride, dst, width);
    RVK_FORM(rvkFilterDilate3x3u8_v2)(dst, width, height, width, other, width);
    RVK_FORM(rvkFilterDilate3x3u8_v2)(other, width, height, width, dst, width);
    RVK_FORM(rvkFilterErode3x3u8_v2)(dst, width, height, width, other, width);
    __builtin_memcpy(dst, other, size_t{width} * height);
}

} // namespace

rvkStatus RVK_FORM(rvkFindContoursExternalu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint32_t approximation, uint32_t* contourSizes,
                                              uint32_t nContoursMax, uint32_t* nContours, int32_t* points,
                                              uint32_t nPointsMax, int32_t* hierarchy, rvkContourWorkspace* workspace)
{
    return fillLists(ContourMode::external, src, srcWidth, srcHeight, srcStride, approximation, contourSizes,
                     nContoursMax, nContours, points, nPointsMax, hierarchy, workspace);
}

rvkStatus RVK_FORM(rvkFindContoursListu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                          uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                          rvkContourWorkspace* workspace)
{
    return fillLists(ContourMode::list, src, srcWidth, srcHeight, srcStride, approximation, contourSizes, nContoursMax,
                     nContours, points, nPointsMax, hierarchy, workspace);
}

rvkStatus RVK_FORM(rvkFindContoursCcompu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, uint32_t approximation, uint32_t* contourSizes,
                                           uint32_t nContoursMax, uint32_t* nContours, int32_t* points,
                                           uint32_t nPointsMax, int32_t* hierarchy, rvkContourWorkspace* workspace)
{
    return fillLists(ContourMode::ccomp, src, srcWidth, srcHeight, srcStride, approximation, contourSizes, nContoursMax,
                     nContours, points, nPointsMax, hierarchy, workspace);
}

rvkStatus RVK_FORM(rvkFindContoursTreeu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
                                          uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy,
                                          rvkContourWorkspace* workspace)
{
    return fillLists(ContourMode::tree, src, srcWidth, srcHeight, srcStride, approximation, contourSizes, nContoursMax,
                     nContours, points, nPointsMax, hierarchy, workspace);
}

rvkStatus RVK_FORM(rvkSegmentFGMasku8)(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                       uint32_t shape, float32_t perimeterScale)
{
    const Scratch<uint8_t> clean(dstHeight, dstWidth), other(dstHeight, dstWidth);
    if (!clean || !other)
        return RAVIK_ENORES;
    openAndClose(dst, dstWidth, dstHeight, dstStride, other.get(), clean.get());

    const auto find = [&](ContourLists& lists) {
        return findContours(ContourMode::external, dstWidth, dstHeight, {clean.get(), dstWidth},
                            RAVIK_CONTOUR_ALL_POINTS, nullptr, lists);
    };
    ContourLists counts = {};
    rvkStatus status = find(counts);
    if (status != RAVIK_SUCCESS)
        return status;
    const Scratch<uint32_t> sizes(uint64_t{counts.count} + 1);
    const Scratch<int32_t> points(counts.pointCount + 1, 2);
    if (!sizes || !points)
        return RAVIK_ENORES;
    ContourLists lists = {sizes.get(), counts.count, points.get(), static_cast<uint32_t>(counts.pointCount), nullptr};
    status = find(lists);
    __builtin_memset(other.get(), 0, size_t{dstWidth} * dstHeight);
    if (status == RAVIK_SUCCESS)
        status = drawForeground(other.get(), dstWidth, dstHeight, shape, perimeterScale, lists);
    if (status != RAVIK_SUCCESS)
        return status;
    for (size_t y = 0; y < dstHeight; ++y)
        __builtin_memcpy(dst + y * dstStride, other.get() + y * dstWidth, dstWidth);
    return RAVIK_SUCCESS;
}

} // namespace RVK_ROOM

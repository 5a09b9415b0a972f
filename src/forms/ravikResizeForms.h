// Scaling by any ratio, by the drivers of either room: scaleNearest, scaleBilinear, scaleArea, scaleCubic; means by
// scaleMeansAtOnce, which does all rows or nothing, or row by row by their kernel.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

decltype(::rvkScaleu8_v2) RVK_FORM(rvkScaleu8_v2);

void RVK_FORM(rvkScaleDownNNu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    scaleNearest({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
}

void RVK_FORM(rvkScaleDownBLu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    scaleBilinear({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, RAVIK_BORDER_REPLICATE,
                  0);
}

void RVK_FORM(rvkScaleDownu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint8_t* dst,
                              uint32_t dstWidth, uint32_t dstHeight)
{
    scaleArea({src, srcWidth, srcHeight, srcWidth, dst, dstWidth, dstHeight, dstWidth});
}

rvkStatus RVK_FORM(rvkScaleDownu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    scaleArea({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride});
    return RAVIK_SUCCESS;
}

rvkStatus RVK_FORM(rvkScaleu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                               uint32_t interpolation)
{
    return RVK_FORM(rvkScaleu8_v2)(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride,
                                   interpolation, RAVIK_BORDER_REPLICATE, 0);
}

rvkStatus RVK_FORM(rvkScaleu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  uint32_t interpolation, uint32_t borderType, uint8_t borderValue)
{
    const Resizing picture = {src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride};
    if (interpolation == RAVIK_INTERPOLATION_NEAREST)
        scaleNearest(picture);
    else if (interpolation == RAVIK_INTERPOLATION_BILINEAR)
        scaleBilinear(picture, borderType, borderValue);
    else
        scaleArea(picture);
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkScaleUpPolyu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    scaleCubic({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, 1);
}

void RVK_FORM(rvkScaleUpPolyInterleaveu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    scaleCubic({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, 2);
}

namespace {

void scaleMeans(const Resizing& r, uint32_t pixelSize)
{
    if (scaleMeansAtOnce(r, pixelSize))
        return;
    const Axis rows = rowsOf(r);
    for (uint32_t y = 0; y < r.dstHeight; ++y) {
        const uint32_t begin = firstWholePixel(rows, y), end = firstWholePixel(rows, y + 1);
        RVK_FORM(irvkScaleDownMNCore)
        (r.src + size_t{begin} * r.srcStride, r.srcWidth, end - begin, r.srcStride, pixelSize,
         r.dst + size_t{y} * r.dstStride, r.dstWidth);
    }
}

} // namespace

void RVK_FORM(rvkScaleDownMNu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    scaleMeans({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, 1);
}

void RVK_FORM(rvkScaleDownMNInterleaveu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride)
{
    scaleMeans({src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, 2);
}

} // namespace RVK_ROOM

// The statistics of grey values, and pictures changed by tables of them, by the drivers sumsOf, countPixels and lookUp
// of either room.
#pragma once

#include "cpu/ravikStatisticsC.h"
#include "forms/form.h"

namespace RVK_ROOM {

rvkStatus RVK_FORM(rvkImageIntensityStats_v2)(const uint8_t* src, uint32_t srcStride, uint32_t xBegin, uint32_t yBegin,
                                              uint32_t recWidth, uint32_t recHeight, float32_t* mean,
                                              float32_t* variance, int32_t varianceEstimator)
{
    uint64_t divisor;
    if (!divisorOf(varianceEstimator, uint64_t{recWidth} * recHeight, divisor))
        return RAVIK_EBADPARAM;
    const Plane<const uint8_t> rectangle{Plane<const uint8_t>{src, srcStride}.row(yBegin) + xBegin, srcStride};
    storeStatistics(sumsOf(recWidth, recHeight, rectangle), divisor, mean, variance);
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkImageIntensityStats)(const uint8_t* src, uint32_t srcWidth, uint32_t xBegin, uint32_t yBegin,
                                      uint32_t recWidth, uint32_t recHeight, float32_t* mean, float32_t* variance)
{
    RVK_FORM(rvkImageIntensityStats_v2)
    (src, srcWidth, xBegin, yBegin, recWidth, recHeight, mean, variance, RAVIK_VARIANCE_BIASED);
}

void RVK_FORM(rvkImageIntensityHistogram)(const uint8_t* src, uint32_t srcStride, uint32_t xBegin, uint32_t yBegin,
                                          uint32_t recWidth, uint32_t recHeight, uint32_t* histogram)
{
    const Plane<const uint8_t> rectangle{Plane<const uint8_t>{src, srcStride}.row(yBegin) + xBegin, srcStride};
    countPixels(recWidth, recHeight, rectangle, *reinterpret_cast<uint32_t(*)[256]>(histogram));
}

void RVK_FORM(rvkImageSpatialHistogramu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint32_t cellsAcross, uint32_t cellsDown, uint32_t* histograms)
{
    const auto edge = [](uint64_t i, uint32_t size, uint32_t cells) { return static_cast<uint32_t>(i * size / cells); };
    for (uint32_t row = 0; row < cellsDown; ++row) {
        const uint32_t top = edge(row, srcHeight, cellsDown);
        const uint32_t height = edge(uint64_t{row} + 1, srcHeight, cellsDown) - top;
        for (uint32_t column = 0; column < cellsAcross; ++column) {
            const uint32_t left = edge(column, srcWidth, cellsAcross);
            const uint32_t width = edge(uint64_t{column} + 1, srcWidth, cellsAcross) - left;
            RVK_FORM(rvkImageIntensityHistogram)(src, srcStride, left, top, width, height, histograms);
            histograms += 256;
        }
    }
}

rvkStatus RVK_FORM(rvkImageSpatialHistogramu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                  uint32_t srcStride, uint32_t cellWidth, uint32_t cellHeight,
                                                  uint32_t* histograms, uint32_t histogramStride)
{
    const auto rest = [](uint32_t begin, uint32_t most, uint32_t size) {
        return size - begin < most ? size - begin : most;
    };
    for (uint64_t top = 0; top < srcHeight; top += cellHeight)
        for (uint64_t left = 0; left < srcWidth; left += cellWidth) {
            const auto x = static_cast<uint32_t>(left), y = static_cast<uint32_t>(top);
            RVK_FORM(rvkImageIntensityHistogram)
            (src, srcStride, x, y, rest(x, cellWidth, srcWidth), rest(y, cellHeight, srcHeight), histograms);
            histograms += histogramStride / sizeof(uint32_t);
        }
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkImageHistogramEqualizeu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    const Plane<const uint8_t> source{src, srcStride};
    uint32_t histogram[256];
    countPixels(srcWidth, srcHeight, source, histogram);
    uint8_t table[256];
    equalizingTable(histogram, uint64_t{srcWidth} * srcHeight, table);
    lookUp(srcWidth, srcHeight, source, table, Plane<uint8_t>{dst, dstStride});
}

rvkStatus RVK_FORM(rvkTableLookupu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     const uint8_t* table, uint8_t* dst, uint32_t dstStride)
{
    lookUp(srcWidth, srcHeight, Plane<const uint8_t>{src, srcStride}, *reinterpret_cast<const uint8_t(*)[256]>(table),
           Plane<uint8_t>{dst, dstStride});
    return RAVIK_SUCCESS;
}

} // namespace RVK_ROOM

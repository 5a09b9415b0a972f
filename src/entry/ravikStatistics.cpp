// Statistics of grey values, and pictures changed by tables of them: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

// Where a row of a rectangle ends.
uint64_t rowEnd(uint32_t xBegin, uint32_t recWidth)
{
    return uint64_t{xBegin} + recWidth;
}

// Rows of a picture whose width is not known end with the rectangle. One that does not fit 32 bits becomes a stride
// that is too short for it.
uint32_t packedToRectangle(uint32_t stride, uint32_t xBegin, uint32_t recWidth)
{
    if (stride != 0)
        return stride;
    return rowEnd(xBegin, recWidth) <= UINT32_MAX ? xBegin + recWidth : UINT32_MAX;
}

} // namespace

void rvkImageIntensityStats(const uint8_t* src, uint32_t srcWidth, uint32_t xBegin, uint32_t yBegin, uint32_t recWidth,
                            uint32_t recHeight, float32_t* mean, float32_t* variance)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkImageIntensityStats);
    RVK_CHECK_ARGS(src && mean && variance && srcWidth && recWidth && recHeight);
    RVK_CHECK_ARGS(rowEnd(xBegin, recWidth) <= srcWidth);
    implementation<Slot::rvkImageIntensityStats>(target)(src, srcWidth, xBegin, yBegin, recWidth, recHeight, mean,
                                                         variance);
}

rvkStatus rvkImageIntensityStats_v2(const uint8_t* src, uint32_t srcStride, uint32_t xBegin, uint32_t yBegin,
                                    uint32_t recWidth, uint32_t recHeight, float32_t* mean, float32_t* variance,
                                    int32_t varianceEstimator)
{
    srcStride = packedToRectangle(srcStride, xBegin, recWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageIntensityStats_v2);
    RVK_CHECK_STATUS(src && mean && variance && recWidth && recHeight && rowEnd(xBegin, recWidth) <= srcStride);
    return implementation<Slot::rvkImageIntensityStats_v2>(target)(src, srcStride, xBegin, yBegin, recWidth, recHeight,
                                                                   mean, variance, varianceEstimator);
}

void rvkImageIntensityHistogram(const uint8_t* src, uint32_t srcStride, uint32_t xBegin, uint32_t yBegin,
                                uint32_t recWidth, uint32_t recHeight, uint32_t* histogram)
{
    srcStride = packedToRectangle(srcStride, xBegin, recWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageIntensityHistogram);
    RVK_CHECK_ARGS(src && histogram && recWidth && recHeight);
    RVK_CHECK_ARGS(rowEnd(xBegin, recWidth) <= srcStride);
    implementation<Slot::rvkImageIntensityHistogram>(target)(src, srcStride, xBegin, yBegin, recWidth, recHeight,
                                                             histogram);
}

void rvkImageSpatialHistogramu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint32_t cellsAcross, uint32_t cellsDown, uint32_t* histograms)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageSpatialHistogramu8);
    RVK_CHECK_ARGS(src && histograms && srcWidth && srcHeight && (srcStride >= srcWidth) && cellsAcross && cellsDown &&
                   (cellsAcross <= srcWidth) && (cellsDown <= srcHeight));
    RVK_CHECK_ARGS(rowFits(cellsAcross, 256 * sizeof(uint32_t)));
    implementation<Slot::rvkImageSpatialHistogramu8>(target)(src, srcWidth, srcHeight, srcStride, cellsAcross,
                                                             cellsDown, histograms);
}

rvkStatus rvkImageSpatialHistogramu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                        uint32_t cellWidth, uint32_t cellHeight, uint32_t* histograms,
                                        uint32_t histogramStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    histogramStride = packedIfZero(histogramStride, 256, sizeof(uint32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageSpatialHistogramu8_v2);
    RVK_CHECK_STATUS(src && histograms && srcWidth && srcHeight && (srcStride >= srcWidth) && cellWidth && cellHeight &&
                     (histogramStride >= 256 * sizeof(uint32_t)) &&
                     rowFits((srcWidth - 1) / cellWidth + 1, histogramStride));
    return implementation<Slot::rvkImageSpatialHistogramu8_v2>(target)(src, srcWidth, srcHeight, srcStride, cellWidth,
                                                                       cellHeight, histograms, histogramStride);
}

void rvkImageHistogramEqualizeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkImageHistogramEqualizeu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    RVK_CHECK_ARGS(uint64_t{srcWidth} * srcHeight <= UINT32_MAX);
    implementation<Slot::rvkImageHistogramEqualizeu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkTableLookupu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           const uint8_t* table, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkTableLookupu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_STATUS(src && table && dst && srcWidth && srcHeight && (srcStride >= srcWidth) &&
                     (dstStride >= srcWidth));
    return implementation<Slot::rvkTableLookupu8>(target)(src, srcWidth, srcHeight, srcStride, table, dst, dstStride);
}

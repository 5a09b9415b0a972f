// Flood fill and region growing: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

// The working memory of a picture: four bytes a pixel must have a size that 32 bits hold.
bool pixelsFit(uint32_t width, uint32_t height)
{
    return uint64_t{width} * height <= UINT32_MAX / 4;
}

bool isConnectivity(uint32_t connectivity)
{
    return connectivity == 4 || connectivity == 8;
}

bool areInside(const uint32_t* seeds, uint32_t nSeeds, uint32_t width, uint32_t height)
{
    for (size_t i = 0; i < nSeeds; ++i)
        if (seeds[2 * i] >= width || seeds[2 * i + 1] >= height)
            return false;
    return true;
}

} // namespace

// ---- flood fill ----------------------------------------------------------------------------------

rvkStatus rvkFloodfillSimpleu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, uint32_t seedX,
                               uint32_t seedY, uint8_t newValue, uint32_t connectivity,
                               rvkConnectedComponent* component)
{
    dstStride = packedIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFloodfillSimpleu8);
    RVK_CHECK_STATUS(dst && dstWidth && dstHeight && dstStride >= dstWidth && pixelsFit(dstWidth, dstHeight) &&
                     seedX < dstWidth && seedY < dstHeight && isConnectivity(connectivity));
    return implementation<Slot::rvkFloodfillSimpleu8>(target)(dst, dstWidth, dstHeight, dstStride, seedX, seedY,
                                                              newValue, connectivity, component);
}

rvkStatus rvkFloodfillMergedu8(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                               const uint32_t* seeds, uint32_t nSeeds, uint8_t lowDifference, uint8_t highDifference,
                               uint8_t newValue, uint32_t connectivity, rvkConnectedComponent* component)
{
    dstStride = packedIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFloodfillMergedu8);
    RVK_CHECK_STATUS(dst && dstWidth && dstHeight && dstStride >= dstWidth && pixelsFit(dstWidth, dstHeight) && seeds &&
                     nSeeds && areInside(seeds, nSeeds, dstWidth, dstHeight) && isConnectivity(connectivity));
    return implementation<Slot::rvkFloodfillMergedu8>(target)(dst, dstWidth, dstHeight, dstStride, seeds, nSeeds,
                                                              lowDifference, highDifference, newValue, connectivity,
                                                              component);
}

// ---- region growing ------------------------------------------------------------------------------

rvkStatus rvkImageSegmentationRegionGrow(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint32_t threshold, uint32_t minArea, uint32_t connectivity, uint32_t* labels,
                                         uint32_t labelStride, rvkRegion* regions, uint32_t nRegionsMax,
                                         uint32_t* nRegions)
{
    srcStride = packedIfZero(srcStride, srcWidth, 3);
    labelStride = packedIfZero(labelStride, srcWidth, sizeof(uint32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageSegmentationRegionGrow, [&] {
        return srcStride % 24 == 0 && aligned(8, src, srcWidth) && aligned(16, labels, regions) &&
               enoughWork(srcStride, srcHeight);
    });
    if (!(src && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, 3) && pixelsFit(srcWidth, srcHeight) &&
          isConnectivity(connectivity) && labels && labelStride >= rowSize(srcWidth, sizeof(uint32_t)) &&
          (regions || !nRegionsMax) && nRegions))
        return RAVIK_EFAIL;
    return implementation<Slot::rvkImageSegmentationRegionGrow>(target)(src, srcWidth, srcHeight, srcStride, threshold,
                                                                        minArea, connectivity, labels, labelStride,
                                                                        regions, nRegionsMax, nRegions);
}

rvkStatus rvkImageSegmentationSeedRegionGrows16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const uint32_t* seeds, uint32_t nSeeds,
                                                uint32_t maxDifference, uint32_t connectivity, uint32_t* labels,
                                                uint32_t labelStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    labelStride = packedIfZero(labelStride, srcWidth, sizeof(uint32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkImageSegmentationSeedRegionGrows16);
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, sizeof(int16_t)) &&
                     pixelsFit(srcWidth, srcHeight) && seeds && nSeeds &&
                     areInside(seeds, nSeeds, srcWidth, srcHeight) && isConnectivity(connectivity) && labels &&
                     labelStride >= rowSize(srcWidth, sizeof(uint32_t)));
    return implementation<Slot::rvkImageSegmentationSeedRegionGrows16>(target)(
        src, srcWidth, srcHeight, srcStride, seeds, nSeeds, maxDifference, connectivity, labels, labelStride);
}

// FLOODFILL: flood fill. IMGSEGMENTATION: region growing. Seeds are arguments of their own; adapters make lists of them.
#include "groups.h"

#include <ravik/region.h>

using namespace arguments;

namespace {

// Results that are structures of 32-bit words.
constexpr uint32_t kComponentWords = sizeof(rvkConnectedComponent) / 4, kRegionWords = sizeof(rvkRegion) / 4;

rvkStatus fillSimple(decltype(&rvkFloodfillSimpleu8) fill, uint8_t* dst, uint32_t width, uint32_t height,
                     uint32_t stride, uint32_t seedX, uint32_t seedY, uint8_t newValue, uint32_t connectivity,
                     uint32_t* component)
{
    return fill(dst, width, height, stride, seedX, seedY, newValue, connectivity,
                reinterpret_cast<rvkConnectedComponent*>(component));
}

rvkStatus fillMerged(decltype(&rvkFloodfillMergedu8) fill, uint8_t* dst, uint32_t width, uint32_t height,
                     uint32_t stride, uint32_t seed1X, uint32_t seed1Y, uint32_t seed2X, uint32_t seed2Y,
                     uint8_t lowDifference, uint8_t highDifference, uint8_t newValue, uint32_t connectivity,
                     uint32_t* component)
{
    const uint32_t seeds[] = {seed1X, seed1Y, seed2X, seed2Y};
    return fill(dst, width, height, stride, seeds, 2, lowDifference, highDifference, newValue, connectivity,
                reinterpret_cast<rvkConnectedComponent*>(component));
}

rvkStatus growByColor(decltype(&rvkImageSegmentationRegionGrow) grow, const uint8_t* src, uint32_t width,
                      uint32_t height, uint32_t stride, uint32_t threshold, uint32_t minArea, uint32_t connectivity,
                      uint32_t* labels, uint32_t labelStride, uint32_t* regions, uint32_t nRegionsMax,
                      uint32_t* nRegions)
{
    return grow(src, width, height, stride, threshold, minArea, connectivity, labels, labelStride,
                reinterpret_cast<rvkRegion*>(regions), nRegionsMax, nRegions);
}

rvkStatus growFromSeeds(decltype(&rvkImageSegmentationSeedRegionGrows16) grow, const int16_t* src, uint32_t width,
                        uint32_t height, uint32_t stride, uint32_t seed1X, uint32_t seed1Y, uint32_t seed2X,
                        uint32_t seed2Y, uint32_t maxDifference, uint32_t connectivity, uint32_t* labels,
                        uint32_t labelStride)
{
    const uint32_t seeds[] = {seed1X, seed1Y, seed2X, seed2Y};
    return grow(src, width, height, stride, seeds, 2, maxDifference, connectivity, labels, labelStride);
}

const Argument seedX = at(columns(0, 0)).refusing({UINT32_MAX}), seedY = at(rows(0, 0)).refusing({UINT32_MAX});
const Argument connectivity = oneOf({4, 8}).refusing({0, 6, UINT32_MAX});
const Contract ofLimitedSize = Contract().upToPixels(UINT32_MAX / 4);

} // namespace

const FunctionGroup& floodFillFunctions()
{
    const Argument component = dst.ofSize(kComponentWords).orNull(), picture = updated.natural();
    const Argument difference = between(0, 40);

    static const FunctionGroup group{
        "ravikfloodfill",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkFloodfillSimpleu8", rvkFloodfillSimpleu8, fillSimple, picture, width, height, stride,
                             seedX, seedY, any, connectivity, component)
                .keeps(ofLimitedSize),
            RVK_TEST_ADAPTED("rvkFloodfillMergedu8", rvkFloodfillMergedu8, fillMerged, picture, width, height, stride,
                             seedX, seedY, seedX, seedY, difference, difference, any, connectivity, component)
                .keeps(ofLimitedSize),
        }};
    return group;
}

const FunctionGroup& segmentationFunctions()
{
    constexpr uint32_t mostRegions = 20;
    const Argument picture = src.ofChannels(3).natural(), regions = list(mostRegions * kRegionWords);
    const Argument minArea = between(0, 12), threshold = between(0, 60), maxDifference = between(0, 70000);

    static const FunctionGroup group{
        "ravikimgsegmentation",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkImageSegmentationRegionGrow", rvkImageSegmentationRegionGrow, growByColor, picture,
                             width, height, stride, threshold, minArea, connectivity, dst, stride, regions,
                             capacity(0, mostRegions), value)
                .keeps(ofLimitedSize.onDsp({.alignment = 8,
                                            .outputAlignment = 16,
                                            .strideMultiple = 24,
                                            .widthMultiple = 8,
                                            .elementsPerPixel = 3})),
            RVK_TEST_ADAPTED("rvkImageSegmentationSeedRegionGrows16", rvkImageSegmentationSeedRegionGrows16,
                             growFromSeeds, src, width, height, stride, seedX, seedY, seedX, seedY, maxDifference,
                             connectivity, dst, stride)
                .keeps(ofLimitedSize),
        }};
    return group;
}

// IMGINTENSITY: statistics and histograms of grey values.
#include "groups.h"

#include <ravik/statistics.h>

#include <algorithm>

using namespace arguments;

const FunctionGroup& imageIntensityFunctions()
{
    // The unbiased one makes no number of one pixel.
    const Argument estimator = oneOf({RAVIK_VARIANCE_BIASED, RAVIK_VARIANCE_UNBIASED});
    const Argument twoOrWider = rectangleWidth.atLeast(2);
    // Cells are windows beside each other: the sizes of some, or as many as there are.
    const Argument across = windowWidth({3, 2, 7}).refusing({0}), down = windowHeight({2, 3, 5}).refusing({0});
    const Argument cellWidth = windowWidth({32, 17}).refusing({0}), cellHeight = windowHeight({16, 9}).refusing({0});
    const Argument histograms = dst.measuring({[](const CaseSizes& s) {
                                                   return ImageSize{uint64_t{256} * s.window.width, s.window.height};
                                               },
                                               "per cell"});
    const Argument rowsOfHistograms = dst.measuring(
        {[](const CaseSizes& s) {
             const auto cells = [](uint64_t pixels, uint32_t ofCell) {
                 return (pixels + ofCell - 1) / std::max(ofCell, 1u);
             };
             return ImageSize{256, cells(s.picture.columns, s.window.width) * cells(s.picture.rows, s.window.height)};
         },
         "per cell"});

    static const FunctionGroup group{
        "ravikimgintensity",
        "rvk",
        false,
        {
            RVK_TEST(rvkImageIntensityStats, src, width, left, top, rectangleWidth, rectangleHeight, value, value),
            RVK_TEST_AS("rvkImageIntensityStats_v2", "rvkImageIntensityStats", rvkImageIntensityStats_v2, src, stride,
                        left, top, twoOrWider, rectangleHeight, value, value, estimator)
                .keeps(Contract().drawnFrom(2, 1)),
            RVK_TEST(rvkImageIntensityHistogram, src, stride, left, top, rectangleWidth, rectangleHeight,
                     dst.ofSize(256)),
            RVK_TEST(rvkImageSpatialHistogramu8, src, width, height, stride, across, down, histograms),
            RVK_TEST(rvkImageSpatialHistogramu8_v2, src, width, height, stride, cellWidth, cellHeight, rowsOfHistograms,
                     stride)
                .keeps(Contract().ofSmallPictures()),
        }};
    return group;
}

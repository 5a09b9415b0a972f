// IMGINTENSITY: statistics and histograms of grey values.
#include "groups.h"

#include <ravik/statistics.h>

using namespace arguments;

const FunctionGroup& imageIntensityFunctions()
{
    const Argument estimator = oneOf({RAVIK_VARIANCE_BIASED}); // the other one makes no number of one pixel
    const Argument across = oneOf({3}).refusing({0}), down = oneOf({2}).refusing({0});
    const Argument cellWidth = oneOf({32}).refusing({0}), cellHeight = oneOf({16}).refusing({0});
    const Argument packed = oneOf({0, 1024, 1026}).refusing({1, 1023});

    static const FunctionGroup group{
        "ravikimgintensity",
        "rvk",
        false,
        {
            RVK_TEST(rvkImageIntensityStats, src, width, left, top, rectangleWidth, rectangleHeight, value, value),
            RVK_TEST_AS("rvkImageIntensityStats_v2", "rvkImageIntensityStats", rvkImageIntensityStats_v2, src, stride,
                        left, top, rectangleWidth, rectangleHeight, value, value, estimator),
            RVK_TEST(rvkImageIntensityHistogram, src, stride, left, top, rectangleWidth, rectangleHeight,
                     dst.ofSize(256)),
            RVK_TEST(rvkImageSpatialHistogramu8, src, width, height, stride, across, down, dst.ofSize(3 * 2 * 256))
                .keeps(Contract().atLeast(3, 2)),
            RVK_TEST(rvkImageSpatialHistogramu8_v2, src, width, height, stride, cellWidth, cellHeight,
                     dst.ofChannels(256).sampled(5, 4), packed),
        }};
    return group;
}

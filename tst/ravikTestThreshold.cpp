// THRESH: dilation and erosion.
#include "groups.h"

#include <ravik/morphology.h>

using namespace arguments;

const FunctionGroup& thresholdFunctions()
{
    const Argument borderType = oneOf({RAVIK_BORDER_CONSTANT, RAVIK_BORDER_REPLICATE, 0});
    const Argument windowSize = oneOf({9, 5, 1, 2, 3, 0}); // refused: 0, and more than the picture has

    static const FunctionGroup group{
        "ravikthresh",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterDilate3x3u8, src, width, height, dst),
            RVK_TEST_AS("rvkFilterDilate3x3u8_v2", "rvkFilterDilate3x3u8", rvkFilterDilate3x3u8_v2, src, width, height,
                        stride, dst, stride),
            RVK_TEST(rvkFilterDilate3x3u8_v3, src, width, height, stride, dst, stride, borderType, any),
            RVK_TEST(rvkFilterDilateNxNu8, src, width, height, stride, windowSize, dst, stride),
            RVK_TEST(rvkFilterErode3x3u8, src, width, height, dst),
            RVK_TEST_AS("rvkFilterErode3x3u8_v2", "rvkFilterErode3x3u8", rvkFilterErode3x3u8_v2, src, width, height,
                        stride, dst, stride),
            RVK_TEST(rvkFilterErode3x3u8_v3, src, width, height, stride, dst, stride, borderType, any),
            RVK_TEST(rvkFilterErodeNxNu8, src, width, height, stride, windowSize, dst, stride),
        }};
    return group;
}

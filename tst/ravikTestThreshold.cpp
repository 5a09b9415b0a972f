// THRESH and ADAPTTHRESH: thresholds, dilation and erosion.
#include "groups.h"

#include <ravik/morphology.h>
#include <ravik/threshold.h>

using namespace arguments;

const FunctionGroup& thresholdFunctions()
{
    const Argument threshold = oneOf({100, 0, 1, 128, 254, 255, 300});
    const Argument type = oneOf({RAVIK_THRESHOLD_BINARY, RAVIK_THRESHOLD_BINARY_INVERSE, 2});
    const Argument borderType = oneOf({RAVIK_BORDER_CONSTANT, RAVIK_BORDER_REPLICATE, 0});
    const Argument windowSize = oneOf({9, 5, 1, 2, 3, 0}); // refused: 0, and more than the picture has

    static const FunctionGroup group{
        "ravikthresh",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterThresholdu8, src, width, height, stride, dst, stride, threshold),
            // In place, because the strides must be equal.
            RVK_TEST_AS("rvkFilterThresholdu8_v2", "rvkFilterThresholdu8", rvkFilterThresholdu8_v2, sameAs(4), width,
                        height, stride, updated, stride, threshold),
            RVK_TEST_AS("rvkFilterThresholdu8_v3", "rvkFilterThresholdu8", rvkFilterThresholdu8_v3, src, width, height,
                        stride, dst, stride, threshold, any, any),
            RVK_TEST(rvkFilterThresholdOtsuu8, sameAs(4), width, height, stride, updated, stride, type),
            RVK_TEST(rvkFilterThresholdRangeu8, src, width, height, stride, dst, stride, threshold, threshold),
            RVK_TEST(rvkFilterThresholdRangeu8_v2, src, width, height, stride, dst, stride, threshold, threshold, any,
                     any),
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

const FunctionGroup& adaptiveThresholdFunctions()
{
    const Argument type = oneOf({RAVIK_THRESHOLD_BINARY, RAVIK_THRESHOLD_BINARY_INVERSE});
    const Argument offset = oneOf({5, 0, -1, 1, -254, -255, 255, 256, -300, 20, -20});

    static const FunctionGroup group{
        "ravikadaptthresh",
        "rvk",
        false,
        {
            RVK_TEST(rvkAdaptiveThresholdGaussian3x3u8, src, width, height, stride, any, type, offset, dst, stride),
            RVK_TEST(rvkAdaptiveThresholdGaussian5x5u8, src, width, height, stride, any, type, offset, dst, stride),
            RVK_TEST(rvkAdaptiveThresholdGaussian11x11u8, src, width, height, stride, any, type, offset, dst, stride),
            RVK_TEST(rvkAdaptiveThresholdMean3x3u8, src, width, height, stride, any, type, offset, dst, stride),
            RVK_TEST(rvkAdaptiveThresholdMean5x5u8, src, width, height, stride, any, type, offset, dst, stride),
            RVK_TEST(rvkAdaptiveThresholdMean11x11u8, src, width, height, stride, any, type, offset, dst, stride),
        }};
    return group;
}

// THRESH and ADAPTTHRESH: thresholds, dilation and erosion.
#include "groups.h"

#include <ravik/morphology.h>
#include <ravik/threshold.h>

using namespace arguments;

const FunctionGroup& thresholdFunctions()
{
    const Argument threshold = oneOf({100, 0, 1, 128, 254, 255, 300});
    const Argument signedThreshold = threshold.refusing({2147483648.0, UINT32_MAX});
    const Argument type = oneOf({RAVIK_THRESHOLD_BINARY, RAVIK_THRESHOLD_BINARY_INVERSE, 2});
    const Argument borderType = oneOf({RAVIK_BORDER_CONSTANT, RAVIK_BORDER_REPLICATE, 0});
    const Argument size = windowSize({9, 5, 1, 2, 3}).refusing({0});

    using enum Border;
    const Contract otsu = Contract().upToPixels(INT32_MAX).onDsp({.alignment = 8, .widthMultiple = 8});
    const Contract binary = Contract().inPlace().onDsp({.alignment = 8, .widthMultiple = 8});
    const Contract morphology = Contract().border(present).refusingInPlace().onDsp({.alignment = 8});
    constexpr uint32_t mostBytes = UINT32_MAX;

    static const FunctionGroup group{
        "ravikthresh",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterThresholdu8, src, width, height, stride, dst, stride, signedThreshold).keeps(binary),
            // In place, because the strides must be equal.
            RVK_TEST_AS("rvkFilterThresholdu8_v2", "rvkFilterThresholdu8", rvkFilterThresholdu8_v2, sameAs(4), width,
                        height, stride, updated, stride, signedThreshold)
                .keeps(binary),
            RVK_TEST_AS("rvkFilterThresholdu8_v3", "rvkFilterThresholdu8", rvkFilterThresholdu8_v3, src, width, height,
                        stride, dst, stride, threshold, any, any)
                .keeps(binary),
            RVK_TEST(rvkFilterThresholdOtsuu8, sameAs(4), width, height, stride, updated, stride, type).keeps(otsu),
            RVK_TEST(rvkFilterThresholdRangeu8, src, width, height, stride, dst, stride, threshold, threshold)
                .keeps(binary),
            RVK_TEST(rvkFilterThresholdRangeu8_v2, src, width, height, stride, dst, stride, threshold, threshold, any,
                     any)
                .keeps(binary),
            RVK_TEST(rvkFilterDilate3x3u8, src, width, height, dst).keeps(morphology.windows(3)),
            RVK_TEST_AS("rvkFilterDilate3x3u8_v2", "rvkFilterDilate3x3u8", rvkFilterDilate3x3u8_v2, src, width, height,
                        stride, dst, stride)
                .keeps(morphology.windows(3)),
            RVK_TEST(rvkFilterDilate3x3u8_v3, src, width, height, stride, dst, stride, borderType, any)
                .keeps(morphology.windows(3).border(chosen)),
            RVK_TEST(rvkFilterDilateNxNu8, src, width, height, stride, size, dst, stride)
                .keeps(morphology.upToPixels(mostBytes)),
            RVK_TEST(rvkFilterErode3x3u8, src, width, height, dst).keeps(morphology.windows(3)),
            RVK_TEST_AS("rvkFilterErode3x3u8_v2", "rvkFilterErode3x3u8", rvkFilterErode3x3u8_v2, src, width, height,
                        stride, dst, stride)
                .keeps(morphology.windows(3)),
            RVK_TEST(rvkFilterErode3x3u8_v3, src, width, height, stride, dst, stride, borderType, any)
                .keeps(morphology.windows(3).border(chosen)),
            RVK_TEST(rvkFilterErodeNxNu8, src, width, height, stride, size, dst, stride)
                .keeps(morphology.upToPixels(mostBytes)),
        }};
    return group;
}

const FunctionGroup& adaptiveThresholdFunctions()
{
    const Argument type = oneOf({RAVIK_THRESHOLD_BINARY, RAVIK_THRESHOLD_BINARY_INVERSE});
    const Argument offset = oneOf({5, 0, -1, 1, -254, -255, 255, 256, -300, 20, -20});

    using enum Border;
    const Contract adaptive = Contract().refusingInPlace().upToPixels(UINT32_MAX).onDsp({.alignment = 8});

    static const FunctionGroup group{
        "ravikadaptthresh",
        "rvk",
        false,
        {
            RVK_TEST(rvkAdaptiveThresholdGaussian3x3u8, src, width, height, stride, any, type, offset, dst, stride)
                .keeps(adaptive.windows(3).atLeast(2, 2).border(present)),
            RVK_TEST(rvkAdaptiveThresholdGaussian5x5u8, src, width, height, stride, any, type, offset, dst, stride)
                .keeps(adaptive.wholeWindows(5).border(present)),
            RVK_TEST(rvkAdaptiveThresholdGaussian11x11u8, src, width, height, stride, any, type, offset, dst, stride)
                .keeps(adaptive.wholeWindows(11).border(present)),
            RVK_TEST(rvkAdaptiveThresholdMean3x3u8, src, width, height, stride, any, type, offset, dst, stride)
                .keeps(adaptive.wholeWindows(3).border(zero)),
            RVK_TEST(rvkAdaptiveThresholdMean5x5u8, src, width, height, stride, any, type, offset, dst, stride)
                .keeps(adaptive.wholeWindows(5).border(zero)),
            RVK_TEST(rvkAdaptiveThresholdMean11x11u8, src, width, height, stride, any, type, offset, dst, stride)
                .keeps(adaptive.wholeWindows(11).border(zero)),
        }};
    return group;
}

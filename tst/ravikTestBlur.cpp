// BLUR: medians, Gaussians, box filters and local normalisation; the median filter before an operation mode is set.
#include "groups.h"

#include <ravik/blur.h>
#include <ravik/median.h>

#include <algorithm>

using namespace arguments;

const FunctionGroup& blurFunctions()
{
    const Argument ringKept = oneOf({0}); // the names with _BDR fill it
    const Argument ringFilled = oneOf({1});
    const Argument borderType = oneOf({RAVIK_BORDER_CONSTANT, RAVIK_BORDER_REPLICATE, 0});
    const Argument windowSize = oneOf({5, 3, 2, 7, 1}); // refused: 1

    const Argument medianSize = oneOf({5, 3, 4, 7, 0}); // refused: 0

    static const FunctionGroup group{
        "ravikblur",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterMedian3x3u8, src, width, height, dst),
            RVK_TEST_AS("rvkFilterMedian3x3u8_v2", "rvkFilterMedian3x3u8", rvkFilterMedian3x3u8_v2, src, width, height,
                        stride, dst, stride),
            RVK_TEST(rvkFilterMedian3x3u8_v3, src, width, height, stride, dst, stride, borderType, any),
            RVK_TEST(rvkFilterMedianMxNs16, src, width, height, stride, medianSize, medianSize, dst, stride),
            RVK_TEST(rvkFilterGaussian3x3u8, src, width, height, dst, ringKept),
            RVK_TEST_AS("rvkFilterGaussian3x3u8_BDR", "rvkFilterGaussian3x3u8_BDR", rvkFilterGaussian3x3u8, src, width,
                        height, dst, ringFilled),
            RVK_TEST_AS("rvkFilterGaussian3x3u8_v2", "rvkFilterGaussian3x3u8", rvkFilterGaussian3x3u8_v2, src, width,
                        height, stride, dst, stride, oneOf({1, 0})),
            RVK_TEST(rvkFilterGaussian3x3u8_v3, src, width, height, stride, dst, stride, borderType, any),
            RVK_TEST(rvkFilterGaussian5x5u8, src, width, height, dst, ringKept),
            RVK_TEST_AS("rvkFilterGaussian5x5u8_BDR", "rvkFilterGaussian5x5u8_BDR", rvkFilterGaussian5x5u8, src, width,
                        height, dst, ringFilled),
            RVK_TEST_AS("rvkFilterGaussian5x5u8_v2", "rvkFilterGaussian5x5u8", rvkFilterGaussian5x5u8_v2, src, width,
                        height, stride, dst, stride, oneOf({1, 0})),
            RVK_TEST(rvkFilterGaussian11x11u8, src, width, height, dst, ringKept),
            RVK_TEST_AS("rvkFilterGaussian11x11u8_BDR", "rvkFilterGaussian11x11u8_BDR", rvkFilterGaussian11x11u8, src,
                        width, height, dst, ringFilled),
            RVK_TEST_AS("rvkFilterGaussian11x11u8_v2", "rvkFilterGaussian11x11u8", rvkFilterGaussian11x11u8_v2, src,
                        width, height, stride, dst, stride, oneOf({1, 0})),
            RVK_TEST(rvkFilterGaussian5x5s16, src, width, height, dst, ringKept),
            RVK_TEST_AS("rvkFilterGaussian5x5s16_BDR", "rvkFilterGaussian5x5s16_BDR", rvkFilterGaussian5x5s16, src,
                        width, height, dst, ringFilled),
            RVK_TEST_AS("rvkFilterGaussian5x5s16_v2", "rvkFilterGaussian5x5s16", rvkFilterGaussian5x5s16_v2, src, width,
                        height, stride, dst, stride, oneOf({1, 0})),
            // These compute nothing but for the flag 1.
            RVK_TEST_AS("rvkFilterGaussian5x5s32_BDR", "rvkFilterGaussian5x5s32_BDR", rvkFilterGaussian5x5s32, src,
                        width, height, dst, ringFilled),
            RVK_TEST(rvkFilterGaussian5x5s32, src, width, height, dst, ringKept),
            RVK_TEST_AS("rvkFilterGaussian5x5s32_v2", "rvkFilterGaussian5x5s32", rvkFilterGaussian5x5s32_v2, src, width,
                        height, stride, dst, stride, oneOf({1, 0})),
            RVK_TEST(rvkBoxFilter3x3u8, src, width, height, stride, dst, stride),
            RVK_TEST(rvkBoxFilter3x3u8_v2, src, width, height, stride, dst, stride, borderType, any),
            RVK_TEST(rvkBoxFilter5x5u8, src, width, height, stride, dst, stride),
            RVK_TEST(rvkBoxFilter11x11u8, src, width, height, stride, dst, stride),
            RVK_TEST(rvkBoxFilterNxNf32, src, width, height, stride, windowSize, dst, stride),
            RVK_TEST(rvkNormalizeLocalBoxu8, src, width, height, stride, windowSize, windowSize, dst, stride),
            RVK_TEST(rvkNormalizeLocalBoxf32, src, width, height, stride, windowSize, windowSize, dst, stride),
        }};
    return group;
}

// The stored vectors alone: random cases would set the mode of the reference.
int RAVIK_TEST_UNSET_MODE_Median3x3u8(const char* dataDirectory)
{
    FunctionGroup stored = blurFunctions();
    stored.isStored = true;
    const auto function = std::find_if(stored.functions.begin(), stored.functions.end(),
                                       [](const FunctionTest& f) { return f.name == "rvkFilterMedian3x3u8"; });
    return unitTest(stored, *function, dataDirectory, kTargetC, 0, RAVIK_TEST_UNIT, 0, nullptr);
}

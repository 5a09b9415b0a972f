// BLUR: medians, Gaussians, box filters and local normalisation.
#include "groups.h"

#include <ravik/blur.h>
#include <ravik/median.h>

using namespace arguments;

const FunctionGroup& blurFunctions()
{
    const Argument ringKept = oneOf({0}); // the names with _BDR fill it
    const Argument ringFilled = oneOf({1});
    const Argument borderType = oneOf({RAVIK_BORDER_CONSTANT, RAVIK_BORDER_REPLICATE, 0});
    const Argument ringByFlag = oneOf({1, 0});
    const Argument boxSize = windowSize({5, 3, 2, 7}).refusing({1, 0});
    const Argument boxWidth = windowWidth({5, 3, 7, 1}).refusing({2, 0}),
                   boxHeight = windowHeight({5, 3, 7, 1}).refusing({4});
    const Argument medianWidth = windowWidth({5, 3, 4, 7}).refusing({0}),
                   medianHeight = windowHeight({5, 3, 4, 7}).refusing({0});

    using enum Border;
    const OffloadRule words{.alignment = 4};
    const Contract filter = Contract().refusingInPlace().onDsp({.alignment = 8});
    const Contract window3 = filter.wholeWindows(3), window5 = filter.wholeWindows(5),
                   window11 = filter.wholeWindows(11);
    const Contract median3 = filter.windows(3).onDsp({.alignment = 8, .leastHeight = 4});
    const Contract gaussian3 = filter.windows(3).onDsp({.alignment = 8, .leastWidth = 4});
    const Contract gaussian5s16 = filter.windows(5).atLeast(1, 2).onDsp(words), gaussian5s32 = window5.onDsp(words);
    const Contract meanOfFloats = Contract().atLeast(5, 5).inPlace().logging().onDsp(words);

    static const FunctionGroup group{
        "ravikblur",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterMedian3x3u8, src, width, height, dst).keeps(median3.border(kept)),
            RVK_TEST_AS("rvkFilterMedian3x3u8_v2", "rvkFilterMedian3x3u8", rvkFilterMedian3x3u8_v2, src, width, height,
                        stride, dst, overlappingStride)
                .keeps(median3.border(kept)),
            RVK_TEST(rvkFilterMedian3x3u8_v3, src, width, height, stride, dst, stride, borderType, any)
                .keeps(median3.border(chosen)),
            RVK_TEST(rvkFilterMedianMxNs16, src, width, height, stride, medianWidth, medianHeight, dst, stride)
                .keeps(filter.border(copied)),
            RVK_TEST(rvkFilterGaussian3x3u8, src, width, height, dst, ringKept).keeps(gaussian3.border(kept)),
            RVK_TEST_AS("rvkFilterGaussian3x3u8_BDR", "rvkFilterGaussian3x3u8_BDR", rvkFilterGaussian3x3u8, src, width,
                        height, dst, ringFilled)
                .keeps(gaussian3.border(present)),
            RVK_TEST_AS("rvkFilterGaussian3x3u8_v2", "rvkFilterGaussian3x3u8", rvkFilterGaussian3x3u8_v2, src, width,
                        height, stride, dst, stride, ringByFlag)
                .keeps(gaussian3.atLeast(2, 2).border(chosen)),
            RVK_TEST(rvkFilterGaussian3x3u8_v3, src, width, height, stride, dst, stride, borderType, any)
                .keeps(gaussian3.atLeast(2, 2).border(chosen)),
            RVK_TEST(rvkFilterGaussian5x5u8, src, width, height, dst, ringKept).keeps(window5.border(kept)),
            RVK_TEST_AS("rvkFilterGaussian5x5u8_BDR", "rvkFilterGaussian5x5u8_BDR", rvkFilterGaussian5x5u8, src, width,
                        height, dst, ringFilled)
                .keeps(window5.border(present)),
            RVK_TEST_AS("rvkFilterGaussian5x5u8_v2", "rvkFilterGaussian5x5u8", rvkFilterGaussian5x5u8_v2, src, width,
                        height, stride, dst, overlappingStride, ringByFlag)
                .keeps(window5.border(chosen)),
            RVK_TEST(rvkFilterGaussian11x11u8, src, width, height, dst, ringKept).keeps(window11.border(kept)),
            RVK_TEST_AS("rvkFilterGaussian11x11u8_BDR", "rvkFilterGaussian11x11u8_BDR", rvkFilterGaussian11x11u8, src,
                        width, height, dst, ringFilled)
                .keeps(window11.border(present)),
            RVK_TEST_AS("rvkFilterGaussian11x11u8_v2", "rvkFilterGaussian11x11u8", rvkFilterGaussian11x11u8_v2, src,
                        width, height, stride, dst, overlappingStride, ringByFlag)
                .keeps(window11.border(chosen)),
            RVK_TEST(rvkFilterGaussian5x5s16, src, width, height, dst, ringKept).keeps(gaussian5s16.border(kept)),
            RVK_TEST_AS("rvkFilterGaussian5x5s16_BDR", "rvkFilterGaussian5x5s16_BDR", rvkFilterGaussian5x5s16, src,
                        width, height, dst, ringFilled)
                .keeps(gaussian5s16.border(present)),
            RVK_TEST_AS("rvkFilterGaussian5x5s16_v2", "rvkFilterGaussian5x5s16", rvkFilterGaussian5x5s16_v2, src, width,
                        height, stride, dst, stride, ringByFlag)
                .keeps(gaussian5s16.border(chosen)),
            // These compute nothing but for the flag 1.
            RVK_TEST_AS("rvkFilterGaussian5x5s32_BDR", "rvkFilterGaussian5x5s32_BDR", rvkFilterGaussian5x5s32, src,
                        width, height, dst, ringFilled)
                .keeps(gaussian5s32.border(present)),
            RVK_TEST(rvkFilterGaussian5x5s32, src, width, height, dst, ringKept)
                .keeps(gaussian5s32.writingNothing().border(kept)),
            RVK_TEST_AS("rvkFilterGaussian5x5s32_v2", "rvkFilterGaussian5x5s32", rvkFilterGaussian5x5s32_v2, src, width,
                        height, stride, dst, stride, ringFilled)
                .keeps(gaussian5s32.border(chosen)),
            RVK_TEST(rvkBoxFilter3x3u8, src, width, height, stride, dst, stride).keeps(window3.border(zero)),
            RVK_TEST(rvkBoxFilter3x3u8_v2, src, width, height, stride, dst, stride, borderType, any)
                .keeps(window3.border(chosen)),
            RVK_TEST(rvkBoxFilter5x5u8, src, width, height, stride, dst, stride).keeps(window5.border(zero)),
            RVK_TEST(rvkBoxFilter11x11u8, src, width, height, stride, dst, stride).keeps(window11.border(zero)),
            RVK_TEST(rvkBoxFilterNxNf32, src, width, height, stride, boxSize, dst, stride)
                .keeps(meanOfFloats.border(replicated)),
            RVK_TEST(rvkNormalizeLocalBoxu8, src, width, height, stride, boxWidth, boxHeight, dst, stride)
                .keeps(filter.border(replicated)),
            RVK_TEST(rvkNormalizeLocalBoxf32, src, width, height, stride, boxWidth, boxHeight, dst, stride)
                .keeps(filter.onDsp(words).border(replicated)),
        }};
    return group;
}

// FIR: correlation and convolution filters.
#include "groups.h"

#include <ravik/correlation.h>

using namespace arguments;

const FunctionGroup& firFunctions()
{
    const Argument size = windowSize({5, 3, 7, 1}).refusing({4, 0}); // as wide as high
    const Argument M = windowWidth({5, 3, 7, 1}).refusing({4, 0}), N = windowHeight({5, 3, 7, 1}).refusing({2, 0});
    const Argument square = weights(7 * 7), row = rowOfWeights(7), column = columnOfWeights(7);
    const Argument across = rowOfWeights(17), down = columnOfWeights(17); // for the largest of the fixed sizes
    const Argument shift = oneOf({14, 0, 8, 31}).refusing({32, UINT32_MAX});
    const Contract filter = Contract().border(Border::replicated).refusingInPlace().upToPixels(UINT32_MAX);
    const Contract bytes = filter.onDsp({.alignment = 8}), shorts = filter.onDsp({.alignment = 4});

    static const FunctionGroup group{
        "ravikfir",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterCorr3x3s8, src, width, height, weights(9), shift, dst).keeps(bytes.wholeWindows(3)),
            RVK_TEST_AS("rvkFilterCorr3x3s8_v2", "rvkFilterCorr3x3s8", rvkFilterCorr3x3s8_v2, src, width, height,
                        stride, weights(9), shift, dst, stride)
                .keeps(bytes.wholeWindows(3)),
            RVK_TEST(rvkFilterCorrNxNu8, src, width, height, stride, square, size, shift, dst, stride).keeps(bytes),
            RVK_TEST(rvkFilterCorrNxNu8s16, src, width, height, stride, square, size, shift, dst, stride).keeps(bytes),
            RVK_TEST(rvkFilterCorrNxNu8f32, src, width, height, stride, square, size, dst, stride).keeps(bytes),
            RVK_TEST(rvkFilterConvolveMxNu8, src, width, height, stride, square, M, N, shift, dst, stride).keeps(bytes),
            RVK_TEST(rvkFilterConvolveMxNu8s16, src, width, height, stride, square, M, N, shift, dst, stride)
                .keeps(bytes),
            RVK_TEST(rvkConvValids16, src, width, height, stride, square, M, N, shift, dst.interior(), stride)
                .keeps(shorts.border(Border::unwritten)),
            RVK_TEST(rvkFilterCorrSepMxNu8, src, width, height, stride, row, M, column, N, shift, shift, dst, stride)
                .keeps(bytes),
            RVK_TEST(rvkFilterConvSepMxNs16, src, width, height, stride, row, M, column, N, shift, shift, dst, stride)
                .keeps(shorts),
            RVK_TEST(rvkFilterCorrSepNxNs16, src, width, height, stride, row, column, size, shift, shift, dst, stride)
                .keeps(shorts),
            RVK_TEST(rvkFilterCorrSep9x9s16, src, width, height, across, down, shift, shift, dst)
                .keeps(shorts.wholeWindows(9)),
            RVK_TEST_AS("rvkFilterCorrSep9x9s16_v2", "rvkFilterCorrSep9x9s16", rvkFilterCorrSep9x9s16_v2, src, width,
                        height, stride, across, down, shift, shift, dst, stride)
                .keeps(shorts.wholeWindows(9)),
            RVK_TEST(rvkFilterCorrSep11x11s16, src, width, height, across, down, shift, shift, dst)
                .keeps(shorts.wholeWindows(11)),
            RVK_TEST_AS("rvkFilterCorrSep11x11s16_v2", "rvkFilterCorrSep11x11s16", rvkFilterCorrSep11x11s16_v2, src,
                        width, height, stride, across, down, shift, shift, dst, stride)
                .keeps(shorts.wholeWindows(11)),
            RVK_TEST(rvkFilterCorrSep13x13s16, src, width, height, across, down, shift, shift, dst)
                .keeps(shorts.wholeWindows(13)),
            RVK_TEST_AS("rvkFilterCorrSep13x13s16_v2", "rvkFilterCorrSep13x13s16", rvkFilterCorrSep13x13s16_v2, src,
                        width, height, stride, across, down, shift, shift, dst, stride)
                .keeps(shorts.wholeWindows(13)),
            RVK_TEST(rvkFilterCorrSep15x15s16, src, width, height, across, down, shift, shift, dst)
                .keeps(shorts.wholeWindows(15)),
            RVK_TEST_AS("rvkFilterCorrSep15x15s16_v2", "rvkFilterCorrSep15x15s16", rvkFilterCorrSep15x15s16_v2, src,
                        width, height, stride, across, down, shift, shift, dst, stride)
                .keeps(shorts.wholeWindows(15)),
            RVK_TEST(rvkFilterCorrSep17x17s16, src, width, height, across, down, shift, shift, dst)
                .keeps(shorts.wholeWindows(17)),
            RVK_TEST_AS("rvkFilterCorrSep17x17s16_v2", "rvkFilterCorrSep17x17s16", rvkFilterCorrSep17x17s16_v2, src,
                        width, height, stride, across, down, shift, shift, dst, stride)
                .keeps(shorts.wholeWindows(17)),
        }};
    return group;
}

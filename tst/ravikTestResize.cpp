// SCALE: any ratio, after the fixed ones of ravikTestScale.cpp.
#include "groups.h"

#include <ravik/scale.h>

using namespace arguments;

static std::vector<FunctionTest> resizeFunctions()
{
    const Argument resized = dst.resized(), pairs = src.ofChannels(2), resizedPairs = dst.ofChannels(2).resized();
    const Argument lessWidth = dstWidth.noLarger(), lessHeight = dstHeight.noLarger();
    const Argument moreWidth = dstWidth.noSmaller(), moreHeight = dstHeight.noSmaller();
    const Argument interpolation =
        oneOf({RAVIK_INTERPOLATION_BILINEAR, RAVIK_INTERPOLATION_AREA, RAVIK_INTERPOLATION_NEAREST})
            .refusing({3, UINT32_MAX});
    const Argument borderType =
        oneOf({RAVIK_BORDER_CONSTANT, RAVIK_BORDER_REPLICATE, RAVIK_BORDER_NONE}).refusing({3, UINT32_MAX});

    const Contract bytes = Contract().refusingInPlace().onDsp({.alignment = 8, .widthMultiple = 8});
    const Contract pairsOfBytes =
        Contract().refusingInPlace().onDsp({.alignment = 8, .widthMultiple = 8, .elementsPerPixel = 2});

    return {
        RVK_TEST(rvkScaleDownNNu8, src, width, height, stride, resized, lessWidth, lessHeight, stride).keeps(bytes),
        RVK_TEST(rvkScaleDownBLu8, src, width, height, stride, resized, lessWidth, lessHeight, stride).keeps(bytes),
        RVK_TEST(rvkScaleDownu8, src, width, height, resized, lessWidth, lessHeight).keeps(bytes),
        RVK_TEST_AS("rvkScaleDownu8_v2", "rvkScaleDownu8", rvkScaleDownu8_v2, src, width, height, stride, resized,
                    lessWidth, lessHeight, stride)
            .keeps(bytes),
        RVK_TEST(rvkScaleu8, src, width, height, stride, resized, dstWidth, dstHeight, stride, interpolation)
            .keeps(bytes),
        RVK_TEST_AS("rvkScaleu8_v2", "rvkScaleu8", rvkScaleu8_v2, src, width, height, stride, resized, dstWidth,
                    dstHeight, stride, interpolation, borderType, any)
            .keeps(bytes.border(Border::chosen).drawnFrom(2, 2)), // one pixel alone may lack all neighbours
        RVK_TEST(rvkScaleUpPolyu8, src, width, height, stride, resized, moreWidth, moreHeight, stride).keeps(bytes),
        RVK_TEST(rvkScaleUpPolyInterleaveu8, pairs, width, height, stride, resizedPairs, moreWidth, moreHeight, stride)
            .keeps(pairsOfBytes),
        RVK_TEST(rvkScaleDownMNu8, src, width, height, stride, resized, lessWidth, lessHeight, stride).keeps(bytes),
        RVK_TEST(rvkScaleDownMNInterleaveu8, pairs, width, height, stride, resizedPairs, lessWidth, lessHeight, stride)
            .keeps(pairsOfBytes),
    };
}

const FunctionGroup& scaleAndResizeFunctions()
{
    static const FunctionGroup group = [] {
        FunctionGroup all = scaleFunctions();
        const std::vector<FunctionTest> resizing = resizeFunctions();
        all.functions.insert(all.functions.end(), resizing.begin(), resizing.end());
        return all;
    }();
    return group;
}

// SMOOTH: bilateral filters.
#include "groups.h"

#include <ravik/bilateral.h>

using namespace arguments;

const FunctionGroup& smoothFunctions()
{
    const Argument sigmaColor = oneOf({25, 0.5, 70, 1000}).refusing({0, -1});
    const Argument sigmaSpace = oneOf({1.5, 0.25, 4, 100}).refusing({0, -1});

    const Contract recursive =
        Contract().refusingInPlace().upToPixels(UINT32_MAX / sizeof(float)).onDsp({.alignment = 8});
    const Contract bilateral = Contract().border(Border::present).refusingInPlace().onDsp({.alignment = 8});

    static const FunctionGroup group{
        "raviksmooth",
        "rvk",
        false,
        {
            RVK_TEST(rvkBilateralFilter5x5u8, src, width, height, stride, dst, stride).keeps(bilateral.wholeWindows(5)),
            RVK_TEST(rvkBilateralFilter7x7u8, src, width, height, stride, dst, stride).keeps(bilateral.wholeWindows(7)),
            RVK_TEST(rvkBilateralFilter9x9u8, src, width, height, stride, dst, stride).keeps(bilateral.wholeWindows(9)),
            RVK_TEST(rvkBilateralFilter5x5u8_v2, src, width, height, stride, dst, stride, sigmaColor, sigmaSpace)
                .keeps(bilateral.wholeWindows(5).logging()),
            RVK_TEST(rvkBilateralFilter7x7u8_v2, src, width, height, stride, dst, stride, sigmaColor, sigmaSpace)
                .keeps(bilateral.wholeWindows(7).logging()),
            RVK_TEST(rvkBilateralFilter9x9u8_v2, src, width, height, stride, dst, stride, sigmaColor, sigmaSpace)
                .keeps(bilateral.wholeWindows(9).logging()),
            RVK_TEST(rvkBilateralFilterRecursiveu8, src, width, height, stride, dst, stride,
                     oneOf({0.1, 0.02, 1}).refusing({-1, 0}), oneOf({0.03, 0.2, 4}).refusing({0}))
                .keeps(recursive),
        }};
    return group;
}

// SMOOTH: bilateral filters.
#include "groups.h"

#include <ravik/bilateral.h>

using namespace arguments;

const FunctionGroup& smoothFunctions()
{
    const Argument sigmaColor = oneOf({25, 0.5, 70, 1000, 0}); // refused: 0
    const Argument sigmaSpace = oneOf({1.5, 0.25, 4, 100});

    static const FunctionGroup group{
        "raviksmooth",
        "rvk",
        false,
        {
            RVK_TEST(rvkBilateralFilter5x5u8, src, width, height, stride, dst, stride),
            RVK_TEST(rvkBilateralFilter7x7u8, src, width, height, stride, dst, stride),
            RVK_TEST(rvkBilateralFilter9x9u8, src, width, height, stride, dst, stride),
            RVK_TEST(rvkBilateralFilter5x5u8_v2, src, width, height, stride, dst, stride, sigmaColor, sigmaSpace),
            RVK_TEST(rvkBilateralFilter7x7u8_v2, src, width, height, stride, dst, stride, sigmaColor, sigmaSpace),
            RVK_TEST(rvkBilateralFilter9x9u8_v2, src, width, height, stride, dst, stride, sigmaColor, sigmaSpace),
            RVK_TEST(rvkBilateralFilterRecursiveu8, src, width, height, stride, dst, stride, oneOf({0.1, 0.02, 1, -1}),
                     oneOf({0.03, 0.2, 4})),
        }};
    return group;
}

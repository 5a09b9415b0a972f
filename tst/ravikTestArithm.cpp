// ARITHM and AVERAGE: sums, differences, products and averages.
#include "groups.h"

#include <ravik/arithm.h>

using namespace arguments;

const FunctionGroup& arithmeticFunctions()
{
    const Argument scale = oneOf({8, 0, 1, 4, 7, 15, 16, 31, 40, -1, -8});
    const Argument weight = between(-2, 2);

    static const FunctionGroup group{
        "ravikarithm",
        "rvk",
        false,
        {
            RVK_TEST(rvkElementMultiplys16, src, width, height, stride, src, stride, policy, scale, dst, stride),
            RVK_TEST(rvkElementMultiplyu8, src, width, height, stride, src, stride, policy, scale, dst, stride),
            RVK_TEST(rvkElementMultiplyu8s16, src, width, height, stride, src, stride, policy, scale, dst, stride),
            RVK_TEST(rvkElementMultiplyu8u16, src, width, height, stride, src, stride, dst, stride),
            RVK_TEST(rvkElementMultiplyf32, src, width, height, stride, src, stride, dst, stride),
            RVK_TEST(rvkAddu8u16, src, width, height, stride, src, stride, dst, stride),
            RVK_TEST(rvkAdds16, src, width, height, stride, src, stride, dst, stride),
            RVK_TEST(rvkAddf32, src, width, height, stride, src, stride, dst, stride),
            RVK_TEST(rvkAddu8, src, width, height, stride, src, stride, policy, dst, stride),
            RVK_TEST(rvkAdds16_v2, src, width, height, stride, src, stride, policy, dst, stride),
            RVK_TEST(rvkAddu16u8u16, src, width, height, stride, src, stride, policy, dst, stride),
            RVK_TEST(rvkSubtractu8, src, width, height, stride, src, stride, policy, dst, stride),
            RVK_TEST(rvkSubtracts16, src, width, height, stride, src, stride, policy, dst, stride),
            RVK_TEST(rvkSubtractu8s16, src, width, height, stride, src, stride, dst, stride),
            RVK_TEST(rvkAddScalars16, src, width, height, stride, any, dst, stride),
            RVK_TEST(rvkAddScalarf32, src, width, height, stride, any, dst, stride),
            RVK_TEST(rvkAddSquaredu8u16, src, width, height, stride, src, stride, scale, dst, stride),
            RVK_TEST(rvkAddWeightedu8, src, width, height, stride, src, stride, weight, weight, dst, stride),
            RVK_TEST(rvkMultiplyScalars16, src, width, height, stride, any, scale, dst, stride),
            RVK_TEST(rvkMultiplyScalarf32, src, width, height, stride, any, dst, stride),
        }};
    return group;
}

const FunctionGroup& averageFunctions()
{
    static const FunctionGroup group{"ravikaverage",
                                     "rvk",
                                     false,
                                     {
                                         RVK_TEST(rvkAverages32, src, width, height, stride, value),
                                         RVK_TEST(rvkAverageu8, src, width, height, stride, value),
                                     }};
    return group;
}

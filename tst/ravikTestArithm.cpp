// ARITHM and AVERAGE: sums, differences, products and averages.
#include "groups.h"

#include <ravik/arithm.h>
#include <ravik/linearalgebra.h>

using namespace arguments;

const FunctionGroup& arithmeticFunctions()
{
    const Argument scale = oneOf({8, 0, 1, 4, 7, 15, 16, 31, 40, -1, -8});
    const Argument weight = between(-2, 2);
    const Contract widened = Contract().onDsp({.alignment = 8, .leastWidth = 32}), bytes = widened.inPlace();
    const Contract shorts = Contract().inPlace().onDsp({.alignment = 8});
    const Contract oneFloat = Contract().inPlace().onDsp({.alignment = 4, .elementsPerPixel = 4});
    const Contract twoFloats = Contract().inPlace().onDsp({.alignment = 4, .elementsPerPixel = 8});

    Argument columns = dstWidth.upTo(0.2); // of the second matrix
    columns.leastPart = 0.16;
    const Argument second = src.measuring({[](const CaseSizes& s) {
                                               return ImageSize{s.second.width, s.picture.columns};
                                           },
                                           "of a second width,"});
    const Argument product = dst.measuring({[](const CaseSizes& s) {
                                                return ImageSize{s.second.width, s.picture.rows};
                                            },
                                            "of a second width,"});

    static const FunctionGroup group{
        "ravikarithm",
        "rvk",
        false,
        {
            RVK_TEST(rvkElementMultiplys16, src, width, height, stride, src, stride, policy, scale, dst, stride)
                .keeps(shorts),
            RVK_TEST(rvkElementMultiplyu8, src, width, height, stride, src, stride, policy, scale, dst, stride)
                .keeps(bytes),
            RVK_TEST(rvkElementMultiplyu8s16, src, width, height, stride, src, stride, policy, scale, dst, stride)
                .keeps(widened),
            RVK_TEST(rvkElementMultiplyu8u16, src, width, height, stride, src, stride, dst, stride)
                .keeps(widened.logging()),
            RVK_TEST(rvkElementMultiplyf32, src, width, height, stride, src, stride, dst, stride)
                .keeps(twoFloats.logging()),
            RVK_TEST(rvkMatrixMultiplys8s32, src, width, height, stride, second, columns, stride, product, wholeStride),
            RVK_TEST(rvkMatrixMultiplyf32, src, width, height, wholeStride, second, columns, wholeStride, product,
                     wholeStride),
            RVK_TEST(rvkAddu8u16, src, width, height, stride, src, stride, dst, stride).keeps(widened),
            RVK_TEST(rvkAdds16, src, width, height, stride, src, stride, dst, stride).keeps(shorts.logging()),
            RVK_TEST(rvkAddf32, src, width, height, stride, src, stride, dst, stride).keeps(twoFloats),
            RVK_TEST(rvkAddu8, src, width, height, stride, src, stride, policy, dst, stride).keeps(bytes),
            RVK_TEST(rvkAdds16_v2, src, width, height, stride, src, stride, policy, dst, stride).keeps(shorts),
            RVK_TEST(rvkAddu16u8u16, src, width, height, stride, src, stride, policy, dst, stride).keeps(bytes),
            RVK_TEST(rvkSubtractu8, src, width, height, stride, src, stride, policy, dst, stride).keeps(bytes),
            RVK_TEST(rvkSubtracts16, src, width, height, stride, src, stride, policy, dst, stride).keeps(shorts),
            RVK_TEST(rvkSubtractu8s16, src, width, height, stride, src, stride, dst, stride).keeps(widened),
            RVK_TEST(rvkAddScalars16, src, width, height, stride, any, dst, stride).keeps(shorts),
            RVK_TEST(rvkAddScalarf32, src, width, height, stride, any, dst, stride).keeps(oneFloat),
            RVK_TEST(rvkAddSquaredu8u16, src, width, height, stride, src, stride, scale, dst, stride).keeps(bytes),
            RVK_TEST(rvkAddWeightedu8, src, width, height, stride, src, stride, weight, weight, dst, stride)
                .keeps(bytes),
            RVK_TEST(rvkMultiplyScalars16, src, width, height, stride, any, scale, dst, stride).keeps(shorts),
            RVK_TEST(rvkMultiplyScalarf32, src, width, height, stride, any, dst, stride).keeps(oneFloat),
        }};
    return group;
}

const FunctionGroup& averageFunctions()
{
    const Contract words = Contract().onDsp({.alignment = 4, .elementsPerPixel = 4});
    const Contract bytes = Contract().onDsp({.alignment = 8, .widthMultiple = 8});

    static const FunctionGroup group{"ravikaverage",
                                     "rvk",
                                     false,
                                     {
                                         RVK_TEST(rvkAverages32, src, width, height, stride, value).keeps(words),
                                         RVK_TEST(rvkAverageu8, src, width, height, stride, value).keeps(bytes),
                                     }};
    return group;
}

// SAD: sums of absolute differences.
#include "groups.h"

#include <ravik/sad.h>

using namespace arguments;

const FunctionGroup& sadFunctions()
{
    const auto blockOf = [](uint32_t size) {
        return src.measuring({[=](const CaseSizes&) {
                                  return ImageSize{size, size};
                              },
                              std::to_string(size) + "x" + std::to_string(size)});
    };
    const Argument block8 = blockOf(8), block16 = blockOf(16), patch8 = src.ofSize(64), patch16 = src.ofSize(256);
    const Argument places = dst.interior();
    const Contract everywhere8 =
        Contract().wholeWindows(8).border(Border::unwritten).onDsp({.alignment = 8, .outputAlignment = 1});
    const Contract everywhere16 = everywhere8.wholeWindows(16);
    constexpr uint32_t shortCalls = 1000;

    static const FunctionGroup group{
        "raviksad",
        "rvk",
        false,
        {
            RVK_TEST(rvkSumOfAbsoluteDiff8x8u8, block8, stride, block8, stride).repeated(shortCalls),
            RVK_TEST(rvkSumOfAbsoluteDiff16x16u8, block16, stride, block16, stride).repeated(shortCalls),
            RVK_TEST(rvkSumOfAbsoluteDiffs8x8u8, patch8, src, width, height, stride, places).keeps(everywhere8),
            RVK_TEST_AS("rvkSumOfAbsoluteDiffs8x8u8_v2", "rvkSumOfAbsoluteDiffs8x8u8", rvkSumOfAbsoluteDiffs8x8u8_v2,
                        patch8, src, width, height, stride, places, stride)
                .keeps(everywhere8),
            RVK_TEST(rvkSumOfAbsoluteDiffs16x16u8, patch16, src, width, height, stride, places, stride)
                .keeps(everywhere16),
        }};
    return group;
}

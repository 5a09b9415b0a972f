// BITWISEOP and SET: bitwise logic and fills.
#include "groups.h"

#include <ravik/bitwise.h>

using namespace arguments;

const FunctionGroup& bitwiseFunctions()
{
    const Contract oneByte = Contract().inPlace().onDsp({.alignment = 8, .widthMultiple = 8});
    const Contract twoBytes = Contract().inPlace().onDsp({.alignment = 8, .leastWidth = 32});
    const Contract words = Contract().inPlace().onDsp({.alignment = 4, .elementsPerPixel = 8});

    static const FunctionGroup group{
        "ravikbitwiseop",
        "rvk",
        false,
        {
            RVK_TEST(rvkBitwiseOru8, src, width, height, stride, src, stride, dst, stride, mask.orNull(), stride)
                .keeps(twoBytes),
            RVK_TEST_AS("rvkBitwiseOru8_no_mask", "rvkBitwiseOru8", rvkBitwiseOru8, src, width, height, stride, src,
                        stride, dst, stride, null, stride)
                .keeps(twoBytes),
            RVK_TEST(rvkBitwiseOrs32, src, src, width, height, stride, dst, stride, mask.orNull(), stride).keeps(words),
            RVK_TEST_AS("rvkBitwiseOrs32_no_mask", "rvkBitwiseOrs32", rvkBitwiseOrs32, src, src, width, height, stride,
                        dst, stride, null, stride)
                .keeps(words),
            RVK_TEST(rvkBitwiseAndu8, src, width, height, stride, src, stride, dst, stride).keeps(twoBytes),
            RVK_TEST(rvkBitwiseXoru8, src, width, height, stride, src, stride, dst, stride).keeps(twoBytes),
            RVK_TEST(rvkBitwiseNotu8, src, width, height, stride, dst, stride).keeps(oneByte),
        }};
    return group;
}

// Two tests of a fill: with a mask, and with none. `image` is what it fills.
#define FILL_TESTS(function, noMaskTable, image, ...)                                                             \
    RVK_TEST(function, image, width, height, stride, __VA_ARGS__, mask.orNull(), stride),                         \
        RVK_TEST_AS(#function "_no_mask", noMaskTable, function, image, width, height, stride, __VA_ARGS__, null, \
                    stride)

const FunctionGroup& fillFunctions()
{
    const Argument three = updated.ofChannels(3), four = updated.ofChannels(4);

    static const FunctionGroup group{
        "ravikset",
        "rvk",
        false,
        {
            FILL_TESTS(rvkSetElementsu8, "rvkSetElementsu8", updated, any),
            FILL_TESTS(rvkSetElementss32, "rvkSetElementss32_no_mask", updated, any),
            FILL_TESTS(rvkSetElementsf32, "rvkSetElementsf32_no_mask", updated, any),
            FILL_TESTS(rvkSetElementsc4u8, "rvkSetElementsc4u8", four, any, any, any, any),
            FILL_TESTS(rvkSetElementsc4s32, "rvkSetElementsc4s32_no_mask", four, any, any, any, any),
            FILL_TESTS(rvkSetElementsc4f32, "rvkSetElementsc4f32_no_mask", four, any, any, any, any),
            FILL_TESTS(rvkSetElementsc3u8, "rvkSetElementsc3u8", three, any, any, any),
            FILL_TESTS(rvkSetElementsc3s32, "rvkSetElementsc3s32_no_mask", three, any, any, any),
            FILL_TESTS(rvkSetElementsc3f32, "rvkSetElementsc3f32_no_mask", three, any, any, any),
        }};
    return group;
}

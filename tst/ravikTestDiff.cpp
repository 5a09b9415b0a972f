// ABSDIFF and IDIFF: absolute and signed differences.
#include "groups.h"

#include <ravik/diff.h>

using namespace arguments;

const FunctionGroup& absDiffFunctions()
{
    const auto words = [](uint32_t perPixel) {
        return Contract().inPlace().onDsp({.alignment = 4, .elementsPerPixel = perPixel});
    };
    const auto bytes = [](uint32_t perPixel) {
        return Contract().inPlace().onDsp({.alignment = 8, .elementsPerPixel = perPixel});
    };
    const Contract twoBytes = Contract().inPlace().onDsp({.alignment = 8, .leastWidth = 32});

    static const FunctionGroup group{
        "ravikabsdiff",
        "rvkAbsDiff",
        true,
        {
            RVK_TEST(rvkAbsDiffu8, src, src, width, height, stride, dst, overlappingStride).keeps(twoBytes),
            RVK_TEST(rvkAbsDiffs32, src, src, width, height, stride, dst, stride).keeps(words(8)),
            RVK_TEST(rvkAbsDifff32, src, src, width, height, stride, dst, stride).keeps(words(8)),
            RVK_TEST(rvkAbsDiffVu8, src, width, height, stride, any, dst, stride).keeps(bytes(1)),
            RVK_TEST(rvkAbsDiffVs32, src, width, height, stride, any, dst, stride).keeps(words(4)),
            RVK_TEST(rvkAbsDiffVf32, src, width, height, stride, any, dst, stride).keeps(words(4)),
            RVK_TEST(rvkAbsDiffVc3u8, src.ofChannels(3), width, height, stride, any, any, any, dst.ofChannels(3),
                     stride)
                .keeps(bytes(3)),
            RVK_TEST(rvkAbsDiffVc3s32, src.ofChannels(3), width, height, stride, any, any, any, dst.ofChannels(3),
                     stride)
                .keeps(words(12)),
            RVK_TEST(rvkAbsDiffVc3f32, src.ofChannels(3), width, height, stride, any, any, any, dst.ofChannels(3),
                     stride)
                .keeps(words(12)),
            RVK_TEST(rvkAbsDiffVc4u8, src.ofChannels(4), width, height, stride, any, any, any, any, dst.ofChannels(4),
                     stride)
                .keeps(bytes(4)),
            RVK_TEST(rvkAbsDiffVc4s32, src.ofChannels(4), width, height, stride, any, any, any, any, dst.ofChannels(4),
                     stride)
                .keeps(words(16)),
            RVK_TEST(rvkAbsDiffVc4f32, src.ofChannels(4), width, height, stride, any, any, any, any, dst.ofChannels(4),
                     stride)
                .keeps(words(16)),
        }};
    return group;
}

const FunctionGroup& imageDiffFunctions()
{
    const Contract widened = Contract().onDsp({.alignment = 8, .widthMultiple = 8}), bytes = widened.inPlace();
    const Contract shorts = Contract().inPlace().onDsp({.alignment = 8});
    const Contract floats = Contract().inPlace().onDsp({.alignment = 4, .elementsPerPixel = 8});

    static const FunctionGroup group{
        "ravikidiff",
        "rvk",
        false,
        {
            RVK_TEST(rvkImageDiffu8, src, src, width, height, dst).keeps(bytes),
            RVK_TEST_AS("rvkImageDiffu8_v2", "rvkImageDiffu8", rvkImageDiffu8_v2, src, src, width, height, stride, dst,
                        stride)
                .keeps(bytes),
            RVK_TEST(rvkImageDiffs16, src, src, width, height, stride, dst, stride).keeps(shorts),
            RVK_TEST(rvkImageDifff32, src, src, width, height, stride, dst, stride).keeps(floats),
            RVK_TEST(rvkImageDiffu8f32, src, src, width, height, stride, dst, stride).keeps(widened),
            RVK_TEST(rvkImageDiffu8s8, src, src, width, height, stride, dst, stride).keeps(bytes),
        }};
    return group;
}

// ABSDIFF and IDIFF: absolute and signed differences.
#include "groups.h"

#include <ravik/diff.h>

using namespace arguments;

const FunctionGroup& absDiffFunctions()
{
    static const FunctionGroup group{"ravikabsdiff",
                                     "rvkAbsDiff",
                                     true,
                                     {
                                         RVK_TEST(rvkAbsDiffu8, src, src, width, height, stride, dst, stride),
                                         RVK_TEST(rvkAbsDiffs32, src, src, width, height, stride, dst, stride),
                                         RVK_TEST(rvkAbsDifff32, src, src, width, height, stride, dst, stride),
                                         RVK_TEST(rvkAbsDiffVu8, src, width, height, stride, any, dst, stride),
                                         RVK_TEST(rvkAbsDiffVs32, src, width, height, stride, any, dst, stride),
                                         RVK_TEST(rvkAbsDiffVf32, src, width, height, stride, any, dst, stride),
                                         RVK_TEST(rvkAbsDiffVc3u8, src.ofChannels(3), width, height, stride, any, any,
                                                  any, dst.ofChannels(3), stride),
                                         RVK_TEST(rvkAbsDiffVc3s32, src.ofChannels(3), width, height, stride, any, any,
                                                  any, dst.ofChannels(3), stride),
                                         RVK_TEST(rvkAbsDiffVc3f32, src.ofChannels(3), width, height, stride, any, any,
                                                  any, dst.ofChannels(3), stride),
                                         RVK_TEST(rvkAbsDiffVc4u8, src.ofChannels(4), width, height, stride, any, any,
                                                  any, any, dst.ofChannels(4), stride),
                                         RVK_TEST(rvkAbsDiffVc4s32, src.ofChannels(4), width, height, stride, any, any,
                                                  any, any, dst.ofChannels(4), stride),
                                         RVK_TEST(rvkAbsDiffVc4f32, src.ofChannels(4), width, height, stride, any, any,
                                                  any, any, dst.ofChannels(4), stride),
                                     }};
    return group;
}

const FunctionGroup& imageDiffFunctions()
{
    static const FunctionGroup group{"ravikidiff",
                                     "rvk",
                                     false,
                                     {
                                         RVK_TEST(rvkImageDiffu8, src, src, width, height, dst),
                                         RVK_TEST_AS("rvkImageDiffu8_v2", "rvkImageDiffu8", rvkImageDiffu8_v2, src, src,
                                                     width, height, stride, dst, stride),
                                         RVK_TEST(rvkImageDiffs16, src, src, width, height, stride, dst, stride),
                                         RVK_TEST(rvkImageDifff32, src, src, width, height, stride, dst, stride),
                                         RVK_TEST(rvkImageDiffu8f32, src, src, width, height, stride, dst, stride),
                                         RVK_TEST(rvkImageDiffu8s8, src, src, width, height, stride, dst, stride),
                                     }};
    return group;
}

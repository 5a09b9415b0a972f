// SCALE and UPSAMPLE: pictures made smaller and larger.
#include "groups.h"

#include <ravik/scale.h>

using namespace arguments;

const FunctionGroup& scaleFunctions()
{
    using enum Border;
    const Contract bytes = Contract().onDsp({.alignment = 8, .widthMultiple = 8});
    const Contract halves = bytes.atLeast(2, 2), floatHalves = Contract().atLeast(2, 2);
    const Argument half = dst.halved();

    static const FunctionGroup group{
        "ravikscale",
        "rvk",
        false,
        {
            RVK_TEST(rvkScaleDownBy2u8, src, width, height, stride, half, stride).keeps(halves),
            RVK_TEST_AS("rvkScaleDownBy2u8_v2", "rvkScaleDownBy2u8", rvkScaleDownBy2u8_v2, src, width, height, stride,
                        half, stride)
                .keeps(halves),
            RVK_TEST(rvkScaleDownBy4u8, src, width, height, stride, dst.quartered(), stride).keeps(bytes.atLeast(4, 4)),
            RVK_TEST_AS("rvkScaleDownBy4u8_v2", "rvkScaleDownBy4u8", rvkScaleDownBy4u8_v2, src, width, height, stride,
                        dst.quartered(), stride)
                .keeps(bytes.atLeast(4, 4)),
            RVK_TEST(rvkScaleDown3To2u8, src, width, height, stride, dst.scaled(3, 2), stride)
                .keeps(bytes.atLeast(3, 3)),
            RVK_TEST(rvkScaleDownBy2Gaussian3x3u8, src, width, height, stride, half, stride)
                .keeps(halves.windows(3).border(present)),
            RVK_TEST(rvkScaleDownBy2Gaussian5x5u8, src, width, height, half).keeps(halves.windows(5).border(present)),
            RVK_TEST_AS("rvkScaleDownBy2Gaussian5x5u8_v2", "rvkScaleDownBy2Gaussian5x5u8",
                        rvkScaleDownBy2Gaussian5x5u8_v2, src, width, height, stride, half, stride)
                .keeps(halves.windows(5).border(present)),
            RVK_TEST_AS("rvkScaleDownBy2Gaussian5x5f32", "rvkScaleDownBy2Gaussian5x5u8", rvkScaleDownBy2Gaussian5x5f32,
                        src, width, height, half)
                .keeps(floatHalves.inUnitsOf(2, 2).windows(5).border(present)),
            RVK_TEST_AS("rvkScaleDownBy2Gaussian5x5f32_v2", "rvkScaleDownBy2Gaussian5x5u8",
                        rvkScaleDownBy2Gaussian5x5f32_v2, src, width, height, stride, half, stride)
                .keeps(floatHalves.windows(5).border(present)),
            RVK_TEST(rvkScaleUpBy2Gaussian5x5u8, src, width, height, dst.doubled()).keeps(bytes.border(present)),
            RVK_TEST_AS("rvkScaleUpBy2Gaussian5x5u8_v2", "rvkScaleUpBy2Gaussian5x5u8", rvkScaleUpBy2Gaussian5x5u8_v2,
                        src, width, height, stride, dst.doubled(), stride)
                .keeps(bytes.border(present)),
        }};
    return group;
}

const FunctionGroup& upsampleFunctions()
{
    const Contract bytes = Contract().onDsp({.alignment = 8, .widthMultiple = 8});
    const Argument pairs = src.ofChannels(2), dstPairs = dst.ofChannels(2);

    static const FunctionGroup group{
        "ravikupsample",
        "rvkUpsample",
        false,
        {
            RVK_TEST(rvkUpsampleVerticalu8, src, width, height, stride, dst.scaled(1, 1, 1, 2), stride).keeps(bytes),
            RVK_TEST(rvkUpsampleHorizontalu8, src, width, height, stride, dst.scaled(1, 2, 1, 1), stride).keeps(bytes),
            RVK_TEST(rvkUpsample2Du8, src, width, height, stride, dst.doubled(), stride).keeps(bytes),
            RVK_TEST(rvkUpsampleVerticalInterleavedu8, pairs, width, height, stride, dstPairs.scaled(1, 1, 1, 2),
                     stride)
                .keeps(bytes),
            RVK_TEST(rvkUpsampleHorizontalInterleavedu8, pairs, width, height, stride, dstPairs.scaled(1, 2, 1, 1),
                     stride)
                .keeps(bytes),
            RVK_TEST(rvkUpsample2DInterleavedu8, pairs, width, height, stride, dstPairs.doubled(), stride).keeps(bytes),
        }};
    return group;
}

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
        }};
    return group;
}

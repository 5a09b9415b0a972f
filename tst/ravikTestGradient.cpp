// EDGES and SCHARR: image derivatives; magnitude and direction of gradients, weights of edges.
#include "groups.h"

#include <ravik/gradient.h>
#include <ravik/magnitude.h>

using namespace arguments;

// What the gradients take on the DSP.
constexpr OffloadRule kPairsOfRows{.alignment = 4, .outputAlignment = 8, .heightMultiple = 2, .leastHeight = 4};

const FunctionGroup& edgesFunctions()
{
    const Argument pairs = dst.ofChannels(2).interior();
    const Argument borderType = oneOf({RAVIK_BORDER_REPLICATE, RAVIK_BORDER_CONSTANT, 0});
    const Argument dxOrNull = dst.orNull(), dyOrNull = dst.orNull();

    using enum Border;
    const Contract plane = Contract().onDsp({.alignment = 8});
    const Contract planar = Contract().windows(3).border(kept).onDsp(kPairsOfRows);
    const Contract interleaved = Contract().windows(3).border(unwritten).atLeast(2, 1).onDsp(kPairsOfRows);

    static const FunctionGroup group{
        "ravikedges",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterSobel3x3u8, src, width, height, stride, dst, stride)
                .keeps(plane.windows(3).border(kept).refusingInPlace()),
            RVK_TEST_AS("rvkFilterSobel3x3u8_v2", "rvkFilterSobel3x3u8", rvkFilterSobel3x3u8_v2, src, width, height,
                        stride, dst, stride)
                .keeps(plane.windows(3).border(kept).refusingInPlace()),
            RVK_TEST(rvkImageGradientInterleaveds16, src, width, height, stride, pairs, stride).keeps(interleaved),
            RVK_TEST_AS("rvkImageGradientInterleaveds16_v2", "rvkImageGradientInterleaveds16",
                        rvkImageGradientInterleaveds16_v2, src, width, height, stride, pairs, stride)
                .keeps(interleaved),
            RVK_TEST(rvkImageGradientInterleavedf32, src, width, height, stride, pairs, stride).keeps(interleaved),
            RVK_TEST_AS("rvkImageGradientInterleavedf32_v2", "rvkImageGradientInterleavedf32",
                        rvkImageGradientInterleavedf32_v2, src, width, height, stride, pairs, stride)
                .keeps(interleaved),
            RVK_TEST(rvkImageGradientPlanars16, src, width, height, stride, dst, dst, stride).keeps(planar),
            RVK_TEST_AS("rvkImageGradientPlanars16_v2", "rvkImageGradientPlanars16", rvkImageGradientPlanars16_v2, src,
                        width, height, stride, dst, dst, stride)
                .keeps(planar),
            RVK_TEST(rvkImageGradientPlanarf32, src, width, height, stride, dst, dst, stride).keeps(planar),
            RVK_TEST_AS("rvkImageGradientPlanarf32_v2", "rvkImageGradientPlanarf32", rvkImageGradientPlanarf32_v2, src,
                        width, height, stride, dst, dst, stride)
                .keeps(planar),
            RVK_TEST(rvkImageGradientSobelPlanarf32, src, width, height, stride, dst, dst, stride).keeps(planar),
            RVK_TEST_AS("rvkImageGradientSobelPlanarf32_v2", "rvkImageGradientSobelPlanarf32",
                        rvkImageGradientSobelPlanarf32_v2, src, width, height, stride, dst, dst, stride)
                .keeps(planar),
            RVK_TEST(rvkImageGradientSobelPlanars16, src, width, height, stride, dst, dst, stride).keeps(planar),
            RVK_TEST_AS("rvkImageGradientSobelPlanars16_v2", "rvkImageGradientSobelPlanars16",
                        rvkImageGradientSobelPlanars16_v2, src, width, height, stride, dst, dst, stride)
                .keeps(planar),
            RVK_TEST_AS("rvkImageGradientSobelPlanars16_v3", "rvkImageGradientSobelPlanars16",
                        rvkImageGradientSobelPlanars16_v3, src, width, height, stride, dxOrNull, dyOrNull, stride)
                .keeps(planar),
            RVK_TEST_AS("rvkImageGradientSobelPlanars16_v3_dx", "rvkImageGradientSobelPlanars16",
                        rvkImageGradientSobelPlanars16_v3, src, width, height, stride, dst, null, stride)
                .keeps(planar),
            RVK_TEST_AS("rvkImageGradientSobelPlanars16_v3_dy", "rvkImageGradientSobelPlanars16",
                        rvkImageGradientSobelPlanars16_v3, src, width, height, stride, null, dst, stride)
                .keeps(planar),
            RVK_TEST(rvkImageGradientSobelInterleaveds16, src, width, height, stride, pairs, stride).keeps(interleaved),
            RVK_TEST_AS("rvkImageGradientSobelInterleaveds16_v2", "rvkImageGradientSobelInterleaveds16",
                        rvkImageGradientSobelInterleaveds16_v2, src, width, height, stride, pairs, stride)
                .keeps(interleaved),
            RVK_TEST_AS("rvkImageGradientSobelInterleaveds16_v3", "rvkImageGradientSobelInterleaveds16",
                        rvkImageGradientSobelInterleaveds16_v3, src, width, height, stride, pairs, stride)
                .keeps(interleaved),
            RVK_TEST(rvkImageGradientSobelInterleavedf32, src, width, height, stride, pairs, stride).keeps(interleaved),
            RVK_TEST_AS("rvkImageGradientSobelInterleavedf32_v2", "rvkImageGradientSobelInterleavedf32",
                        rvkImageGradientSobelInterleavedf32_v2, src, width, height, stride, pairs, stride)
                .keeps(interleaved),
            RVK_TEST(rvkImageGradientSobelPlanars8, src, width, height, stride, dst, dst, stride).keeps(planar),
            RVK_TEST_AS("rvkImageGradientSobelPlanars8_v2", "rvkImageGradientSobelPlanars8",
                        rvkImageGradientSobelPlanars8_v2, src, width, height, stride, dst, dst, stride)
                .keeps(planar),
            RVK_TEST(rvkImageGradientSobelPlanarf32f32, src, width, height, stride, dst, dst, stride)
                .keeps(planar.refusingInPlace()),
            RVK_TEST_AS("rvkImageGradientSobelPlanarf32f32_v2", "rvkImageGradientSobelPlanarf32f32",
                        rvkImageGradientSobelPlanarf32f32_v2, src, width, height, stride, dst, dst, stride)
                .keeps(planar.refusingInPlace()),
            RVK_TEST(rvkFilterSobel3x3u8s16, src, width, height, stride, dxOrNull, dyOrNull, stride, borderType, any)
                .keeps(plane.windows(3).border(chosen)),
            RVK_TEST(rvkFilterSobel5x5u8s16, src, width, height, stride, dxOrNull, dyOrNull, stride, borderType, any)
                .keeps(plane.windows(5).border(chosen)),
            RVK_TEST(rvkFilterSobel7x7u8s16, src, width, height, stride, dxOrNull, dyOrNull, stride, borderType, any)
                .keeps(plane.windows(7).border(chosen)),
            RVK_TEST(rvkMagnitudes16, src, width, height, stride, src, stride, dst, stride).keeps(plane.inPlace()),
            RVK_TEST(rvkPhases16, src, width, height, stride, src, stride, dst, stride).keeps(plane.refusingInPlace()),
            RVK_TEST(rvkEdgeWeightings16, src, width, height, stride, between(0, 300), any, any, dst, stride)
                .keeps(plane.inPlace()),
        }};
    return group;
}

const FunctionGroup& scharrFunctions()
{
    const Contract pairsOfScharr = Contract().windows(3).border(Border::unwritten).atLeast(2, 1).onDsp(kPairsOfRows);

    static const FunctionGroup group{"ravikscharr",
                                     "rvk",
                                     false,
                                     {RVK_TEST(rvkImageGradientScharrInterleaveds16, src, width, height, stride,
                                               dst.ofChannels(2).interior(), stride)
                                          .keeps(pairsOfScharr)}};
    return group;
}

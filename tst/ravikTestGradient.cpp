// EDGES and SCHARR: image derivatives; magnitude and direction of gradients, weights of edges.
#include "groups.h"

#include <ravik/gradient.h>
#include <ravik/magnitude.h>

using namespace arguments;

const FunctionGroup& edgesFunctions()
{
    const Argument pairs = dst.ofChannels(2); // of the picture's size; two columns and two rows of it are not written
    const Argument borderType = oneOf({RAVIK_BORDER_REPLICATE, RAVIK_BORDER_CONSTANT, 0});

    static const FunctionGroup group{
        "ravikedges",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterSobel3x3u8, src, width, height, stride, dst, stride),
            RVK_TEST_AS("rvkFilterSobel3x3u8_v2", "rvkFilterSobel3x3u8", rvkFilterSobel3x3u8_v2, src, width, height,
                        stride, dst, stride),
            RVK_TEST(rvkImageGradientInterleaveds16, src, width, height, stride, pairs, stride),
            RVK_TEST_AS("rvkImageGradientInterleaveds16_v2", "rvkImageGradientInterleaveds16",
                        rvkImageGradientInterleaveds16_v2, src, width, height, stride, pairs, stride),
            RVK_TEST(rvkImageGradientInterleavedf32, src, width, height, stride, pairs, stride),
            RVK_TEST_AS("rvkImageGradientInterleavedf32_v2", "rvkImageGradientInterleavedf32",
                        rvkImageGradientInterleavedf32_v2, src, width, height, stride, pairs, stride),
            RVK_TEST(rvkImageGradientPlanars16, src, width, height, stride, dst, dst, stride),
            RVK_TEST_AS("rvkImageGradientPlanars16_v2", "rvkImageGradientPlanars16", rvkImageGradientPlanars16_v2, src,
                        width, height, stride, dst, dst, stride),
            RVK_TEST(rvkImageGradientPlanarf32, src, width, height, stride, dst, dst, stride),
            RVK_TEST_AS("rvkImageGradientPlanarf32_v2", "rvkImageGradientPlanarf32", rvkImageGradientPlanarf32_v2, src,
                        width, height, stride, dst, dst, stride),
            RVK_TEST(rvkImageGradientSobelPlanarf32, src, width, height, stride, dst, dst, stride),
            RVK_TEST_AS("rvkImageGradientSobelPlanarf32_v2", "rvkImageGradientSobelPlanarf32",
                        rvkImageGradientSobelPlanarf32_v2, src, width, height, stride, dst, dst, stride),
            RVK_TEST(rvkImageGradientSobelPlanars16, src, width, height, stride, dst, dst, stride),
            RVK_TEST_AS("rvkImageGradientSobelPlanars16_v2", "rvkImageGradientSobelPlanars16",
                        rvkImageGradientSobelPlanars16_v2, src, width, height, stride, dst, dst, stride),
            RVK_TEST_AS("rvkImageGradientSobelPlanars16_v3", "rvkImageGradientSobelPlanars16",
                        rvkImageGradientSobelPlanars16_v3, src, width, height, stride, dst, dst, stride),
            RVK_TEST_AS("rvkImageGradientSobelPlanars16_v3_dx", "rvkImageGradientSobelPlanars16",
                        rvkImageGradientSobelPlanars16_v3, src, width, height, stride, dst, null, stride),
            RVK_TEST_AS("rvkImageGradientSobelPlanars16_v3_dy", "rvkImageGradientSobelPlanars16",
                        rvkImageGradientSobelPlanars16_v3, src, width, height, stride, null, dst, stride),
            RVK_TEST(rvkImageGradientSobelInterleaveds16, src, width, height, stride, pairs, stride),
            RVK_TEST_AS("rvkImageGradientSobelInterleaveds16_v2", "rvkImageGradientSobelInterleaveds16",
                        rvkImageGradientSobelInterleaveds16_v2, src, width, height, stride, pairs, stride),
            RVK_TEST_AS("rvkImageGradientSobelInterleaveds16_v3", "rvkImageGradientSobelInterleaveds16",
                        rvkImageGradientSobelInterleaveds16_v3, src, width, height, stride, pairs, stride),
            RVK_TEST(rvkImageGradientSobelInterleavedf32, src, width, height, stride, pairs, stride),
            RVK_TEST_AS("rvkImageGradientSobelInterleavedf32_v2", "rvkImageGradientSobelInterleavedf32",
                        rvkImageGradientSobelInterleavedf32_v2, src, width, height, stride, pairs, stride),
            RVK_TEST(rvkImageGradientSobelPlanars8, src, width, height, stride, dst, dst, stride),
            RVK_TEST_AS("rvkImageGradientSobelPlanars8_v2", "rvkImageGradientSobelPlanars8",
                        rvkImageGradientSobelPlanars8_v2, src, width, height, stride, dst, dst, stride),
            RVK_TEST(rvkImageGradientSobelPlanarf32f32, src, width, height, stride, dst, dst, stride),
            RVK_TEST_AS("rvkImageGradientSobelPlanarf32f32_v2", "rvkImageGradientSobelPlanarf32f32",
                        rvkImageGradientSobelPlanarf32f32_v2, src, width, height, stride, dst, dst, stride),
            RVK_TEST(rvkFilterSobel3x3u8s16, src, width, height, stride, dst, dst, stride, borderType, any),
            RVK_TEST(rvkFilterSobel5x5u8s16, src, width, height, stride, dst, dst, stride, borderType, any),
            RVK_TEST(rvkFilterSobel7x7u8s16, src, width, height, stride, dst, dst, stride, borderType, any),
            RVK_TEST(rvkMagnitudes16, src, width, height, stride, src, stride, dst, stride),
            RVK_TEST(rvkPhases16, src, width, height, stride, src, stride, dst, stride),
            RVK_TEST(rvkEdgeWeightings16, src, width, height, stride, between(0, 300), any, any, dst, stride),
        }};
    return group;
}

const FunctionGroup& scharrFunctions()
{
    static const FunctionGroup group{
        "ravikscharr",
        "rvk",
        false,
        {RVK_TEST(rvkImageGradientScharrInterleaveds16, src, width, height, stride, dst.ofChannels(2), stride)}};
    return group;
}

// EDGE: Canny edges.
#include "groups.h"

#include <ravik/canny.h>

using namespace arguments;

const FunctionGroup& edgeFunctions()
{
    const Argument lowThreshold = oneOf({100, 0, 400, -250, 1000});
    const Argument highThreshold = oneOf({200, 0, 800, 700, INT32_MIN});
    const Argument apertureSize = windowSize({3, 5, 7}).refusing({4, 1, 9});
    const Argument normType = oneOf({RAVIK_CANNY_NORM_L1, RAVIK_CANNY_NORM_L2, 2});
    const Contract canny = Contract()
                               .windows(3)
                               .border(Border::replicated)
                               .refusingInPlace()
                               .upToPixels(UINT32_MAX / 4)
                               .onDsp({.alignment = 8, .leastHeight = 5});

    static const FunctionGroup group{
        "ravikedge",
        "rvk",
        false,
        {
            RVK_TEST(rvkFilterCanny3x3u8, src, width, height, dst, lowThreshold, highThreshold).keeps(canny),
            RVK_TEST_AS("rvkFilterCanny3x3u8_v2", "rvkFilterCanny3x3u8", rvkFilterCanny3x3u8_v2, src, width, height,
                        stride, dst, stride, lowThreshold, highThreshold)
                .keeps(canny),
            RVK_TEST(rvkFilterCanny3x3u8_v3, src, width, height, stride, dst, stride, lowThreshold, highThreshold)
                .keeps(canny),
            RVK_TEST(rvkFilterCannyu8, src, width, height, stride, apertureSize, lowThreshold, highThreshold, normType,
                     dst, stride, dst, dst, stride)
                .keeps(canny.ofSmallPictures()),
        }};
    return group;
}

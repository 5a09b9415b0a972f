// LBP: local binary patterns.
#include "groups.h"

#include <ravik/lbp.h>

using namespace arguments;

namespace {

// The window is as large as the circle, centre and all.
rvkStatus codeWithin(decltype(rvkGLBPu8)* function, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                     uint32_t srcStride, uint32_t window, uint32_t neighbors, uint8_t* dst, uint32_t dstStride)
{
    return function(src, srcWidth, srcHeight, srcStride, window / 2, neighbors, dst, dstStride);
}

} // namespace

const FunctionGroup& lbpFunctions()
{
    const Argument window = windowSize({3, 5, 1, 7, 13}), neighbors = oneOf({8, 1, 2, 3, 4, 5, 6, 7}).refusing({0, 9});

    static const FunctionGroup group{
        "raviklbp",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkGLBPu8", rvkGLBPu8, codeWithin, src, width, height, stride, window, neighbors,
                             dst.interior(), stride)
                .keeps(Contract().border(Border::unwritten).onDsp({.alignment = 8, .outputAlignment = 8})),
        }};
    return group;
}

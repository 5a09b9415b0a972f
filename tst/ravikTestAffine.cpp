// PERSPTRANSFORM and DEPTH: transforms from points, their inverses, and depth from disparity.
#include "groups.h"

#include <ravik/affine.h>

using namespace arguments;

const FunctionGroup& perspectiveTransformFunctions()
{
    const Argument corners =
        numbers({{-10, 10}, {-10, 10}, {90, 110}, {-10, 10}, {90, 110}, {90, 110}, {-10, 10}, {90, 110}});
    const Argument onALine = corners.refusingElements({{0, 0, 1, 1, 2, 2, 5, 0}, std::vector<double>(8)});

    static const FunctionGroup group{
        "ravikpersptransform",
        "rvk",
        false,
        {
            RVK_TEST_AS("rvkGetPerspectiveTransformf32", "rvkGetPerspectiveTransform", rvkGetPerspectiveTransformf32,
                        onALine, onALine, dst.ofSize(9))
                .repeated(100),
            RVK_TEST(rvkInvertAffineTransformf32, src.ofSize(6), dst.ofSize(6)).repeated(1000),
        }};
    return group;
}

const FunctionGroup& depthFunctions()
{
    const Argument camera = numbers({{40, 600}, {40, 600}, widths(0.3, 0.7), heights(0.3, 0.7)});
    const Argument lens = numbers({{-0.2, 0.2}, {-0.1, 0.1}, {-0.01, 0.01}, {-0.01, 0.01}, {-0.1, 0.1}});

    static const FunctionGroup group{"ravikdepth",
                                     "rvk",
                                     false,
                                     {
                                         RVK_TEST(rvkUndistortDisparityConvertDepthf32, src, width, height, stride,
                                                  camera, lens.orNull(), between(0.05, 2), dst, stride)
                                             .keeps(Contract().onDsp({.alignment = 4, .elementsPerPixel = 4})),
                                     }};
    return group;
}

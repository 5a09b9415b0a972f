// PERSPTRANSFORM: transforms from points and their inverses.
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

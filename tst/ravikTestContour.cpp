// CONTOUR and SFGMASK: borders in pictures, and masks cleaned up by them.
#include "groups.h"

#include <ravik/contour.h>

using namespace arguments;

namespace {

constexpr uint32_t kMostContours = 1000, kMostPoints = 10000;

// Without a workspace, which is no memory of the caller's.
rvkStatus find(decltype(rvkFindContoursListu8)* function, const uint8_t* src, uint32_t width, uint32_t height,
               uint32_t srcStride, uint32_t approximation, uint32_t* contourSizes, uint32_t nContoursMax,
               uint32_t* nContours, int32_t* points, uint32_t nPointsMax, int32_t* hierarchy)
{
    return function(src, width, height, srcStride, approximation, contourSizes, nContoursMax, nContours, points,
                    nPointsMax, hierarchy, nullptr);
}

#define CONTOUR_TEST(function)                                                                                  \
    RVK_TEST_ADAPTED(#function, function, find, mask, width, height, stride, approximation, sizes, room, value, \
                     points, roomForPoints, links)

} // namespace

const FunctionGroup& contourFunctions()
{
    const Argument approximation = oneOf({RAVIK_CONTOUR_ALL_POINTS, RAVIK_CONTOUR_CORNERS}).refusing({2, UINT32_MAX});
    const Argument sizes = list(kMostContours), room = capacity(0, kMostContours);
    const Argument points = list(2 * kMostPoints), roomForPoints = capacity(0, kMostPoints);
    const Argument links = list(4 * kMostContours).orNull();

    static const FunctionGroup group{"ravikcontour",
                                     "rvk",
                                     false,
                                     {
                                         CONTOUR_TEST(rvkFindContoursExternalu8),
                                         CONTOUR_TEST(rvkFindContoursListu8),
                                         CONTOUR_TEST(rvkFindContoursCcompu8),
                                         CONTOUR_TEST(rvkFindContoursTreeu8),
                                     }};
    return group;
}

const FunctionGroup& foregroundMaskFunctions()
{
    const Argument shape = oneOf({RAVIK_MASK_CONTOURS, RAVIK_MASK_HULLS}).refusing({2, UINT32_MAX});
    const Argument perimeterScale = oneOf({4, 0.25, 100}).refusing({0, -1});

    static const FunctionGroup group{
        "raviksfgmask",
        "rvk",
        false,
        {
            RVK_TEST(rvkSegmentFGMasku8, mask.as(Argument::Role::updated), width, height, stride, shape, perimeterScale)
                .keeps(Contract().onDsp({.alignment = 8})),
        }};
    return group;
}

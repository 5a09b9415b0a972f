// DRAWCONTOUR: contours drawn into pictures. Coordinates are made of bytes: some lie in the picture, others outside of it.
#include "groups.h"

#include "polygonArguments.h"

#include <ravik/drawing.h>

using namespace arguments;

namespace {

// Of so many points each.
constexpr uint32_t kSizes[] = {3, 0, 7, 1, 2, 19};
constexpr uint32_t kContours = 6;
static_assert(3 + 0 + 7 + 1 + 2 + 19 == kTestPoints);

rvkStatus draw(decltype(rvkDrawContouru8)* function, uint8_t* dst, uint32_t width, uint32_t height, uint32_t stride,
               const int8_t* coordinates, uint32_t nContours, uint32_t thickness, uint8_t value)
{
    return function(dst, width, height, stride, TestPolygon(coordinates).points(), kSizes, nContours, thickness, value);
}

rvkStatus drawInterleaved(decltype(rvkDrawContourInterleavedu8)* function, uint8_t* dst, uint32_t width,
                          uint32_t height, uint32_t stride, const int8_t* coordinates, uint32_t nContours,
                          uint32_t thickness, uint8_t value1, uint8_t value2, uint8_t value3)
{
    return function(dst, width, height, stride, TestPolygon(coordinates).points(), kSizes, nContours, thickness, value1,
                    value2, value3);
}

rvkStatus drawPlanar(decltype(rvkDrawContourPlanaru8)* function, uint8_t* dst1, uint8_t* dst2, uint8_t* dst3,
                     uint32_t width, uint32_t height, uint32_t stride, const int8_t* coordinates, uint32_t nContours,
                     uint32_t thickness, uint8_t value1, uint8_t value2, uint8_t value3)
{
    return function(dst1, dst2, dst3, width, height, stride, TestPolygon(coordinates).points(), kSizes, nContours,
                    thickness, value1, value2, value3);
}

} // namespace

const FunctionGroup& drawContourFunctions()
{
    const Argument coordinates = src.ofSize(2 * kTestPoints), nContours = capacity(0, kContours);
    const Argument thickness = oneOf({RAVIK_DRAW_FILLED, 1, 2, 5, 255}).refusing({256, UINT32_MAX});

    static const FunctionGroup group{
        "ravikdrawcontour",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkDrawContouru8", rvkDrawContouru8, draw, updated, width, height, stride, coordinates,
                             nContours, thickness, any),
            RVK_TEST_ADAPTED("rvkDrawContourInterleavedu8", rvkDrawContourInterleavedu8, drawInterleaved,
                             updated.ofChannels(3), width, height, stride, coordinates, nContours, thickness, any, any,
                             any),
            RVK_TEST_ADAPTED("rvkDrawContourPlanaru8", rvkDrawContourPlanaru8, drawPlanar, updated, updated, updated,
                             width, height, stride, coordinates, nContours, thickness, any, any, any),
        }};
    return group;
}

// BOUNDRECT and POLYGON: what encloses points, where points lie, and convex polygons filled.
#include "groups.h"

#include "polygonArguments.h"

#include <ravik/drawing.h>
#include <ravik/polygon.h>

using namespace arguments;

namespace {

rvkStatus bound(decltype(rvkBoundingRectangle)* function, const int8_t* coordinates, uint32_t nPoints,
                int32_t* rectangle)
{
    return function(TestPolygon(coordinates).points(), nPoints, reinterpret_cast<rvkRectangle*>(rectangle));
}

rvkStatus findHull(decltype(rvkFindConvexHull)* function, const int8_t* coordinates, uint32_t nPoints, int32_t* hull,
                   uint32_t* nHull)
{
    return function(TestPolygon(coordinates).points(), nPoints, hull, nHull);
}

rvkStatus test(decltype(rvkPointPolygonTest)* function, const int8_t* coordinates, uint32_t nPoints, float x, float y,
               uint32_t measureDistance, float* distance)
{
    return function(TestPolygon(coordinates).points(), nPoints, x, y, measureDistance, distance);
}

rvkStatus fill(decltype(rvkFillConvexPolyu8)* function, uint8_t* dst, uint32_t width, uint32_t height, uint32_t stride,
               const int8_t* coordinates, uint32_t nPoints, uint8_t value)
{
    return function(dst, width, height, stride, TestPolygon(coordinates).points(), nPoints, value);
}

const Argument kCoordinates = src.ofSize(2 * kTestPoints);
const Argument kCount = oneOf({kTestPoints, 1, 2, 3, 5, 17}).refusing({0}).limited();

} // namespace

const FunctionGroup& boundingRectangleFunctions()
{
    static const FunctionGroup group{
        "ravikboundrect",
        "rvk",
        false,
        {RVK_TEST_ADAPTED("rvkBoundingRect", rvkBoundingRectangle, bound, kCoordinates, kCount, dst.ofSize(4))}};
    return group;
}

const FunctionGroup& polygonFunctions()
{
    static const FunctionGroup group{
        "ravikpolygon",
        "rvk",
        false,
        {
            RVK_TEST_ADAPTED("rvkFillConvexPolyu8", rvkFillConvexPolyu8, fill, updated, width, height, stride,
                             kCoordinates, kCount, any),
            RVK_TEST_ADAPTED("rvkPointPolygonTest", rvkPointPolygonTest, test, kCoordinates, kCount, between(-50, 250),
                             between(-50, 250), oneOf({0, 1}), value),
            RVK_TEST_ADAPTED("rvkFindConvexHull", rvkFindConvexHull, findHull, kCoordinates, kCount,
                             list(2 * kTestPoints), value),
        }};
    return group;
}

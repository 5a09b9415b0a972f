// The geometry of polygons: the public functions.
#include "cpu/ravikPolygonC.h"
#include "dispatch.h"

#include <cmath>

using namespace rvk;

rvkStatus rvkBoundingRectangle(const int32_t* points, uint32_t nPoints, rvkRectangle* rectangle)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkBoundingRectangle);
    RVK_CHECK_STATUS(points && nPoints && rectangle && pointsAreInRange(points, nPoints));
    return implementation<Slot::rvkBoundingRectangle>(target)(points, nPoints, rectangle);
}

rvkStatus rvkFindConvexHull(const int32_t* points, uint32_t nPoints, int32_t* hull, uint32_t* nHull)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFindConvexHull);
    RVK_CHECK_STATUS(points && nPoints && hull && nHull && pointsAreInRange(points, nPoints));
    return implementation<Slot::rvkFindConvexHull>(target)(points, nPoints, hull, nHull);
}

rvkStatus rvkPointPolygonTest(const int32_t* points, uint32_t nPoints, float32_t x, float32_t y,
                              uint32_t measureDistance, float32_t* distance)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkPointPolygonTest);
    RVK_CHECK_STATUS(points && nPoints && std::isfinite(x) && std::isfinite(y) && distance &&
                     pointsAreInRange(points, nPoints));
    return implementation<Slot::rvkPointPolygonTest>(target)(points, nPoints, x, y, measureDistance, distance);
}

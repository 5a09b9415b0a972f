// C references of the geometry of polygons.
#include "cpu/ravikPolygonC.h"

#include "functions.h"
#include "scratch.h"

#include <ravik/polygon.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace rvk {

bool pointsAreInRange(const int32_t* points, uint64_t nPoints)
{
    // The upper three bits of a number in range are equal. A point at a time, whose halves do not disturb each other.
    constexpr uint64_t upper = 0xC0000000'C0000000;
    uint64_t changes = 0;
    for (size_t i = 0; i < nPoints; ++i) {
        uint64_t point;
        memcpy(&point, points + 2 * i, sizeof point);
        changes |= point ^ point << 1;
    }
    return (changes & upper) == 0;
}

rvkStatus rvkBoundingRectangleC(const int32_t* points, uint32_t nPoints, rvkRectangle* rectangle)
{
    int32_t left = points[0], right = left, top = points[1], bottom = top;
    for (size_t i = 1; i < nPoints; ++i) {
        left = std::min(left, points[2 * i]);
        right = std::max(right, points[2 * i]);
        top = std::min(top, points[2 * i + 1]);
        bottom = std::max(bottom, points[2 * i + 1]);
    }
    *rectangle = {left, top, right - left + 1, bottom - top + 1};
    return RAVIK_SUCCESS;
}

// ---- convex hull ---------------------------------------------------------------------------------------------------

namespace {

// A point as a number: in the order of columns, and down each column.
using Key = uint64_t;
constexpr uint32_t kSign = 1u << 31;

Key keyOf(int32_t x, int32_t y)
{
    return Key{static_cast<uint32_t>(x) ^ kSign} << 32 | (static_cast<uint32_t>(y) ^ kSign);
}
int32_t columnOf(Key key)
{
    return static_cast<int32_t>(static_cast<uint32_t>(key >> 32) ^ kSign);
}
int32_t rowOf(Key key)
{
    return static_cast<int32_t>(static_cast<uint32_t>(key) ^ kSign);
}

// Whether a walk from a to b to c turns clockwise on the screen at b.
bool turnsClockwise(Key a, Key b, Key c)
{
    const auto across = [=](Key p) { return int64_t{columnOf(p)} - columnOf(a); };
    const auto down = [=](Key p) { return int64_t{rowOf(p)} - rowOf(a); };
    return across(b) * down(c) > down(b) * across(c);
}

// Appends a point to a chain that begins at `first`; points that it makes needless go. Returns the new end.
Key* append(Key* first, Key* end, Key point)
{
    while (end - first >= 2 && !turnsClockwise(end[-2], end[-1], point))
        --end;
    *end++ = point;
    return end;
}

} // namespace

rvkStatus rvkFindConvexHullC(const int32_t* points, uint32_t nPoints, int32_t* hull, uint32_t* nHull)
{
    const Scratch<Key> sorted(nPoints), chain(uint64_t{nPoints} + 1);
    if (!sorted || !chain)
        return RAVIK_ENORES;
    for (size_t i = 0; i < nPoints; ++i)
        sorted[i] = keyOf(points[2 * i], points[2 * i + 1]);
    std::sort(sorted.get(), sorted.get() + nPoints);
    const Key* const last = std::unique(sorted.get(), sorted.get() + nPoints) - 1;

    // There along the upper side, and back along the lower one, which ends with the first point again.
    Key* end = chain.get();
    for (const Key* point = sorted.get(); point <= last; ++point)
        end = append(chain.get(), end, *point);
    Key* const lower = end - 1;
    for (const Key* point = last; point > sorted.get(); --point)
        end = append(lower, end, point[-1]);
    if (end - chain.get() > 1)
        --end;
    *nHull = static_cast<uint32_t>(end - chain.get());
    for (size_t i = 0; i < *nHull; ++i) {
        hull[2 * i] = columnOf(chain[i]);
        hull[2 * i + 1] = rowOf(chain[i]);
    }
    return RAVIK_SUCCESS;
}

// ---- where a point lies --------------------------------------------------------------------------------------------

namespace {

struct Vector
{
    double x, y;

    double lengthSquared() const { return x * x + y * y; }
};

double dot(Vector a, Vector b)
{
    return a.x * b.x + a.y * b.y;
}
double cross(Vector a, Vector b)
{
    return a.x * b.y - a.y * b.x;
}

// The square of the distance from the origin to the edge from p to q.
double distanceSquared(Vector p, Vector q)
{
    const Vector edge = {q.x - p.x, q.y - p.y};
    const double length = edge.lengthSquared(), along = -dot(p, edge); // of the origin, from p on, times the length
    if (along <= 0)
        return p.lengthSquared();
    if (along >= length)
        return q.lengthSquared();
    const double area = cross(p, edge);
    return area * area / length;
}

} // namespace

rvkStatus rvkPointPolygonTestC(const int32_t* points, uint32_t nPoints, float32_t x, float32_t y,
                               uint32_t measureDistance, float32_t* distance)
{
    const auto corner = [=](size_t i) { return Vector{points[2 * i] - double{x}, points[2 * i + 1] - double{y}}; };
    bool isInside = false, isOnEdge = false;
    double nearest = INFINITY;
    Vector p = corner(nPoints - size_t{1});
    for (size_t i = 0; i < nPoints; ++i) {
        const Vector q = corner(i);
        const bool isAbove = p.y < 0 && q.y<0, isBelow = p.y> 0 && q.y > 0;
        if (!isAbove && !isBelow) {
            const double side = cross(p, q);
            if ((p.y > 0) != (q.y > 0)) // it crosses the row of the point, at the column side / (q.y - p.y)
                isInside ^= side != 0 && (side > 0) == (q.y > 0);
            isOnEdge |= side == 0 && dot(p, q) <= 0;
        }
        if (measureDistance)
            nearest = std::min(nearest, distanceSquared(p, q));
        p = q;
    }
    const double sign = isOnEdge ? 0 : isInside ? 1 : -1;
    *distance = static_cast<float32_t>(measureDistance && !isOnEdge ? sign * std::sqrt(nearest) : sign);
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "support/windows.h"

#include <cmath>

using namespace test;

namespace {

using Bytes = Picture<uint8_t>;

struct Point
{
    int64_t x, y;
};
using Polygon = std::vector<Point>;

// Whether (x, y) is a pixel of the line, by its definition.
bool isOnLine(Point p, Point q, int64_t x, int64_t y)
{
    const int64_t dx = q.x - p.x, dy = q.y - p.y, n = std::max(std::abs(dx), std::abs(dy));
    const int64_t k = std::abs(dx) == n ? std::abs(x - p.x) : std::abs(y - p.y);
    const auto at = [=](int64_t start, int64_t d) {
        return start + (d < 0 ? -1 : 1) * (n ? (2 * k * std::abs(d) + n) / (2 * n) : 0);
    };
    return k <= n && x == at(p.x, dx) && y == at(p.y, dy);
}

template <class F>
void forEachEdge(const std::vector<Polygon>& polygons, F visit)
{
    for (const Polygon& polygon : polygons)
        for (size_t i = 0; i < polygon.size(); ++i)
            visit(polygon[i], polygon[(i + 1) % polygon.size()]);
}

bool isDrawn(const std::vector<Polygon>& polygons, int64_t thickness, int64_t x, int64_t y)
{
    bool isSet = false;
    const int64_t side = std::max<int64_t>(thickness, 1);
    forEachEdge(polygons, [&](Point p, Point q) {
        for (int64_t v = y + side / 2 - side + 1; v <= y + side / 2; ++v)
            for (int64_t u = x + side / 2 - side + 1; u <= x + side / 2; ++u)
                isSet |= isOnLine(p, q, u, v);
    });
    int crossings = 0;
    forEachEdge(polygons, [&](Point p, Point q) {
        if (p.y > q.y)
            std::swap(p, q);
        crossings += p.y <= y && y < q.y && (p.x - x) * (q.y - p.y) + (y - p.y) * (q.x - p.x) > 0;
    });
    return isSet || (thickness == 0 && crossings % 2);
}

// Polygons of points within `reach` of the picture, some of them equal.
std::vector<Polygon> drawPolygons(Random& random, int width, int height, uint32_t reach)
{
    std::vector<Polygon> polygons(random.below(4));
    for (Polygon& polygon : polygons)
        for (uint32_t i = random.below(7); i > 0; --i) {
            const auto coordinate = [&](int size) {
                return std::clamp<int64_t>(int64_t{random.below(2 * reach + static_cast<uint32_t>(size))} - reach,
                                           -(1 << 29), (1 << 29) - 1);
            };
            polygon.push_back(
                {coordinate(width), random.below(4) || polygon.empty() ? coordinate(height) : polygon[0].y});
        }
    return polygons;
}

struct Lists
{
    std::vector<int32_t> points = {0, 0};
    std::vector<uint32_t> sizes = {0};

    explicit Lists(const std::vector<Polygon>& polygons)
    {
        for (const Polygon& polygon : polygons) {
            sizes.insert(sizes.end() - 1, static_cast<uint32_t>(polygon.size()));
            for (const Point p : polygon)
                points.insert(points.end() - 2, {static_cast<int32_t>(p.x), static_cast<int32_t>(p.y)});
        }
    }
};

TEST(Drawing, FollowsTheDefinition)
{
    Random random(1);
    for (int trial = 0; trial < 60; ++trial) {
        const int width = 1 + static_cast<int>(random.below(50)), height = 1 + static_cast<int>(random.below(16));
        const uint32_t reach = trial % 4 == 0 ? 1u << 29 : trial % 4 == 1 ? 0 : 1 + random.below(60);
        const auto polygons = drawPolygons(random, width, height, reach);
        const Lists lists(polygons);
        const auto count = static_cast<uint32_t>(polygons.size());
        for (const uint32_t thickness : {0u, 1u, 2u, 5u}) {
            const auto expected = pictureOf<uint8_t>(
                width, height, [&](int x, int y) { return isDrawn(polygons, thickness, x, y) ? 9 : 0; });
            Bytes grey(width, height), planes[3] = {grey, grey, grey}, pixels(width * 3, height);
            ASSERT_EQ(rvkDrawContouru8(grey.pixels.data(), grey.columns(), grey.rows(), 0, lists.points.data(),
                                       lists.sizes.data(), count, thickness, 9),
                      RAVIK_SUCCESS);
            ASSERT_EQ(grey, expected) << "trial " << trial << ", thickness " << thickness;
            ASSERT_EQ(rvkDrawContourPlanaru8(planes[0].pixels.data(), planes[1].pixels.data(), planes[2].pixels.data(),
                                             grey.columns(), grey.rows(), 0, lists.points.data(), lists.sizes.data(),
                                             count, thickness, 9, 18, 27),
                      RAVIK_SUCCESS);
            ASSERT_EQ(rvkDrawContourInterleavedu8(pixels.pixels.data(), grey.columns(), grey.rows(), 0,
                                                  lists.points.data(), lists.sizes.data(), count, thickness, 9, 18, 27),
                      RAVIK_SUCCESS);
            for (int channel = 0; channel < 3; ++channel) {
                const auto scaled =
                    pictureOf<uint8_t>(width, height, [&](int x, int y) { return (channel + 1) * expected.at(x, y); });
                ASSERT_EQ(planes[channel], scaled);
                ASSERT_EQ(
                    pictureOf<uint8_t>(width, height, [&](int x, int y) { return pixels.at(3 * x + channel, y); }),
                    scaled);
            }
        }
    }
}

TEST(Drawing, ConvexFillsReachFromEdgeToEdge)
{
    Random random(2);
    for (int trial = 0; trial < 50; ++trial) {
        const int width = 1 + static_cast<int>(random.below(60)), height = 1 + static_cast<int>(random.below(20)),
                  reach = 60;
        const auto polygons = drawPolygons(random, width, height, reach);
        if (polygons.empty() || polygons[0].empty())
            continue;
        const auto expected = pictureOf<uint8_t>(width, height, [&](int x, int y) {
            bool isLeft = false, isRight = false;
            forEachEdge({polygons[0]}, [&](Point p, Point q) {
                for (int u = -reach; u < width + reach; ++u)
                    if (isOnLine(p, q, u, y)) {
                        isLeft |= u <= x;
                        isRight |= u >= x;
                    }
            });
            return isLeft && isRight;
        });
        Bytes filled(width, height);
        ASSERT_EQ(rvkFillConvexPolyu8(filled.pixels.data(), filled.columns(), filled.rows(), 0,
                                      Lists(polygons).points.data(), static_cast<uint32_t>(polygons[0].size()), 1),
                  RAVIK_SUCCESS);
        ASSERT_EQ(filled, expected) << "trial " << trial;
    }
}

TEST(Drawing, RefusesPointsTooFarOutside)
{
    uint8_t pixel = 7;
    const uint32_t sizes[] = {2, UINT32_MAX, UINT32_MAX};
    for (const int32_t coordinate : {(1 << 29), -(1 << 29) - 1, INT32_MIN, INT32_MAX}) {
        const int32_t points[] = {0, 0, 0, coordinate};
        EXPECT_EQ(rvkDrawContouru8(&pixel, 1, 1, 0, points, sizes, 1, 1, 1), RAVIK_EBADPARAM);
        EXPECT_EQ(rvkFillConvexPolyu8(&pixel, 1, 1, 0, points, 2, 1), RAVIK_EBADPARAM);
    }
    const int32_t points[] = {0, 0, 0, 0};
    EXPECT_EQ(rvkDrawContouru8(&pixel, 1, 1, 0, points, sizes, 3, 1, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(pixel, 7);
}

} // namespace

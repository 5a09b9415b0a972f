#include "support/implementations.h"
#include "support/random.h"

#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

std::vector<int32_t> drawPoints(Random& random, uint32_t reach)
{
    std::vector<int32_t> points(2 * (1 + random.below(random.below(3) ? 12 : 200)));
    for (int32_t& coordinate : points)
        coordinate = static_cast<int32_t>(random.below(2 * reach)) - static_cast<int32_t>(reach);
    return points;
}

uint32_t count(const std::vector<int32_t>& points)
{
    return static_cast<uint32_t>(points.size() / 2);
}

TEST(Polygon, RectanglesHoldAllPoints)
{
    Random random(1);
    for (int trial = 0; trial < 300; ++trial) {
        const auto points = drawPoints(random, trial % 2 ? 20 : 1 << 29);
        int32_t ends[2][2] = {{points[0], points[0]}, {points[1], points[1]}};
        for (size_t i = 0; i < points.size(); ++i) {
            ends[i % 2][0] = std::min(ends[i % 2][0], points[i]);
            ends[i % 2][1] = std::max(ends[i % 2][1], points[i]);
        }
        forEachImplementation<Slot::rvkBoundingRectangle>([&](const char* name, auto function) {
            rvkRectangle r = {};
            EXPECT_EQ(function(points.data(), count(points), &r), RAVIK_SUCCESS);
            EXPECT_TRUE(r.x == ends[0][0] && r.y == ends[1][0] && r.x + r.width - 1 == ends[0][1] &&
                        r.y + r.height - 1 == ends[1][1])
                << name;
        });
    }
}

TEST(Polygon, OnePointOrTwoHaveNoInside)
{
    const int32_t points[] = {3, 4, 7, 4};
    const auto test = [&](uint32_t n, float x, float y) {
        float distance = 77;
        EXPECT_EQ(rvkPointPolygonTest(points, n, x, y, 1, &distance), RAVIK_SUCCESS);
        return distance;
    };
    EXPECT_EQ(test(1, 3, 4), 0);
    EXPECT_EQ(test(1, 6, 8), -5);
    EXPECT_EQ(test(2, 5, 4), 0);
    EXPECT_EQ(test(2, 5, 2.5f), -1.5f);
    float distance = 77;
    EXPECT_EQ(rvkPointPolygonTest(points, 2, NAN, 0, 1, &distance), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkPointPolygonTest(points, 2, 0, INFINITY, 1, &distance), RAVIK_EBADPARAM);
    EXPECT_EQ(distance, 77);
}

#if RVK_TEST_OPENCV
std::vector<cv::Point> asCv(const std::vector<int32_t>& points)
{
    std::vector<cv::Point> theirs;
    for (size_t i = 0; i < points.size(); i += 2)
        theirs.emplace_back(points[i], points[i + 1]);
    return theirs;
}

TEST(Polygon, HullsAgreeWithOpenCv)
{
    Random random(2);
    for (int trial = 0; trial < 600; ++trial) {
        auto points = drawPoints(random, trial % 3 == 0 ? 3 : trial % 3 == 1 ? 100 : 1 << 20);
        std::vector<cv::Point> theirs;
        cv::convexHull(asCv(points), theirs, true);
        std::reverse(theirs.begin(), theirs.end());
        const auto least = std::min_element(
            theirs.begin(), theirs.end(), [](cv::Point a, cv::Point b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
        std::rotate(theirs.begin(), least, theirs.end());
        if (cv::contourArea(theirs) < 0 || cv::contourArea(theirs, true) < 0)
            std::reverse(theirs.begin() + 1, theirs.end());
        uint32_t corners = 0;
        const auto before = points;
        ASSERT_EQ(rvkFindConvexHull(points.data(), count(points), points.data(), &corners), RAVIK_SUCCESS); // in place
        EXPECT_TRUE(std::equal(points.begin() + 2 * corners, points.end(), before.begin() + 2 * corners))
            << "the rest is not written";
        points.resize(2 * corners);
        ASSERT_EQ(asCv(points), theirs) << "trial " << trial;
    }
}

TEST(Polygon, TestsAgreeWithOpenCv)
{
    Random random(3);
    for (int trial = 0; trial < 2000; ++trial) {
        const uint32_t reach = trial % 2 ? 6 : 1 << 19;
        const auto points = drawPoints(random, reach);
        const auto coordinate = [&] {
            return static_cast<float>(random.below(32 * reach)) / 16 - static_cast<float>(reach);
        };
        const float x = coordinate(), y = coordinate();
        const auto expected = [&](bool measures) {
            return cv::pointPolygonTest(asCv(points), cv::Point2f(x, y), measures);
        };
        float side = 77, distance = 77;
        ASSERT_EQ(rvkPointPolygonTest(points.data(), count(points), x, y, 0, &side), RAVIK_SUCCESS);
        ASSERT_EQ(rvkPointPolygonTest(points.data(), count(points), x, y, 1, &distance), RAVIK_SUCCESS);
        EXPECT_EQ(side, expected(false)) << "trial " << trial << ": " << x << ", " << y;
        EXPECT_NEAR(distance, expected(true), std::abs(distance) * 1e-5) << "trial " << trial;
    }
}
#endif

} // namespace

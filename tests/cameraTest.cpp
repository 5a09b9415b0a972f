#include "support/guarded.h"
#include "support/implementations.h"
#include "support/random.h"

#include <ravik/camera.h>

#include <array>
#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/calib3d.hpp>
#endif

using namespace test;

namespace {

using Real = long double;
using Camera = std::array<float, 4>;
using Lens = std::array<float, 5>;
using Pose = std::array<float, 12>;
using Points = std::vector<float>;

float uniform(Random& random, double low, double high)
{
    return static_cast<float>(low + (high - low) * random.below(1 << 24) / (1 << 24));
}

Points uniformPoints(Random& random, size_t count, std::vector<std::array<double, 2>> ranges)
{
    Points points;
    for (size_t i = 0; i < count; ++i)
        for (const auto& [low, high] : ranges)
            points.push_back(uniform(random, low, high));
    return points;
}

Camera randomCamera(Random& random)
{
    return {uniform(random, 300, 900), uniform(random, 300, 900), uniform(random, 280, 360), uniform(random, 200, 280)};
}

Lens randomLens(Random& random)
{
    return {uniform(random, -0.3, 0.3), uniform(random, -0.1, 0.1), uniform(random, -0.01, 0.01),
            uniform(random, -0.01, 0.01), uniform(random, -0.03, 0.03)};
}

// ---- the formula, with more digits ----

struct Exact
{
    Real u, v, du, dv; // and the formula of the magnitudes of all terms
};

Exact distorted(const Camera& c, const Lens& k, Real x, Real y)
{
    const auto formula = [](auto camera, auto lens, Real px, Real py) {
        const Real r2 = px * px + py * py;
        const Real s = 1 + lens(0) * r2 + lens(1) * r2 * r2 + lens(4) * r2 * r2 * r2;
        return std::array{camera(0) * (px * s + 2 * lens(2) * px * py + lens(3) * (r2 + 2 * px * px)) + camera(2),
                          camera(1) * (py * s + lens(2) * (r2 + 2 * py * py) + 2 * lens(3) * px * py) + camera(3)};
    };
    const auto value = formula([&](size_t i) -> Real { return c[i]; }, [&](size_t i) -> Real { return k[i]; }, x, y);
    const auto size = formula([&](size_t i) -> Real { return std::fabs(c[i]); },
                              [&](size_t i) -> Real { return std::fabs(k[i]); }, std::fabs(x), std::fabs(y));
    return {value[0], value[1], size[0], size[1]};
}

// Calls of lists, of all implementations, with wide strides.
template <Slot slot, class Check, class... Model>
void forEachList(const Points& points, size_t coordinates, Check check, const Model&... model)
{
    const size_t count = points.size() / coordinates, wide = coordinates + 2;
    Points spaced(count * wide);
    for (size_t i = 0; i < points.size(); ++i)
        spaced[i / coordinates * wide + i % coordinates] = points[i];
    forEachImplementation<slot>([&](const char* name, auto function) {
        Points packed(2 * count), far(5 * count, 7);
        const auto stride = [](size_t floats) { return static_cast<uint32_t>(floats * sizeof(float)); };
        const auto number = static_cast<uint32_t>(count);
        const rvkStatus status =
            function(model..., points.data(), stride(coordinates), number, packed.data(), stride(2));
        EXPECT_EQ(function(model..., spaced.data(), stride(wide), number, far.data(), stride(5)), status) << name;
        for (size_t i = 0; i < count; ++i) {
            ASSERT_TRUE(sameFloat(far[5 * i], packed[2 * i]) && sameFloat(far[5 * i + 1], packed[2 * i + 1]) &&
                        far[5 * i + 2] == 7)
                << name << ", strides, point " << i;
            check(name, status, i, packed[2 * i], packed[2 * i + 1]);
        }
    });
}

// Pixels of normalised points, with more digits than a float has, have these as their inverses.
TEST(Camera, UndistortedPointsAreTheInverse)
{
    Random random(2);
    for (int trial = 0; trial < 20; ++trial) {
        const Camera camera = randomCamera(random);
        const Lens lens = trial ? randomLens(random) : Lens{};
        const Points points = uniformPoints(random, 43, {{-0.6, 0.6}, {-0.6, 0.6}});
        Points pixels;
        for (size_t i = 0; i < points.size(); i += 2) {
            const Exact e = distorted(camera, lens, points[i], points[i + 1]);
            pixels.push_back(static_cast<float>(e.u));
            pixels.push_back(static_cast<float>(e.v));
        }
        forEachList<Slot::rvkGeomUndistortPoint2xNf32>(
            pixels, 2,
            [&](const char* name, rvkStatus status, size_t i, float x, float y) {
                EXPECT_EQ(status, RAVIK_SUCCESS);
                // A pixel is known to its last bit, at most 1024 * 2^-24; the inverse makes at most four times as much.
                const double allowed = 0x1p-18 * (1 + std::fabs(x) + std::fabs(y));
                EXPECT_NEAR(x, points[2 * i], allowed + 4 * 0x1p-14 / camera[0]) << name;
                EXPECT_NEAR(y, points[2 * i + 1], allowed + 4 * 0x1p-14 / camera[1]) << name;
            },
            camera.data(), trial ? lens.data() : nullptr);
    }
}

// Those of a pose before them; distorted alone, points of the plane at the distance 1.
TEST(Camera, PixelsAreThoseOfTheFormula)
{
    Random random(3);
    for (int trial = 0; trial < 40; ++trial) {
        const Camera camera = randomCamera(random);
        const Lens lens = trial > 1 ? randomLens(random) : Lens{};
        const float* const distortion = trial > 1 ? lens.data() : nullptr;
        const bool isProjected = trial % 2;
        const size_t coordinates = isProjected ? 3 : 2;
        const double extent = trial % 3 ? 2 : 1e4; // the latter beyond what floats are good for
        Pose pose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
        if (isProjected)
            for (float& element : pose)
                element = uniform(random, -0.5, 0.5);
        pose[11] = isProjected ? 4 : 0;
        const auto points = isProjected ? uniformPoints(random, 43, {{-extent, extent}, {-extent, extent}, {-1, 1}})
                                        : uniformPoints(random, 43, {{-extent, extent}, {-extent, extent}});
        const auto check = [&](const char* name, rvkStatus, size_t i, float u, float v) {
            const auto row = [&](size_t r) {
                Real sum = pose[4 * r + 3];
                for (size_t k = 0; k < 3; ++k)
                    sum += Real{pose[4 * r + k]} * (k < coordinates ? points[coordinates * i + k] : 1);
                return sum;
            };
            const Exact e = distorted(camera, lens, row(0) / row(2), row(1) / row(2));
            EXPECT_EQ(std::isnan(u), row(2) <= 0) << name;
            if (row(2) > 0) {
                EXPECT_NEAR(u, static_cast<double>(e.u), static_cast<double>(e.du * 0x1p-19L)) << name;
                EXPECT_NEAR(v, static_cast<double>(e.v), static_cast<double>(e.dv * 0x1p-19L)) << name;
            }
        };
        if (isProjected)
            forEachList<Slot::rvkGeomProjectPoint3xNf32>(points, 3, check, camera.data(), distortion, pose.data());
        else
            forEachList<Slot::rvkGeomDistortPoint2xNf32>(points, 2, check, camera.data(), distortion);
    }
}

// Points without a result, one at a time among good ones.
template <Slot slot, class... Model>
void expectNone(std::vector<float> good, const std::vector<std::vector<float>>& bad, const Model&... model)
{
    const size_t coordinates = good.size();
    for (const std::vector<float>& one : bad)
        for (const size_t at : {0u, 1u, 17u}) {
            Points points;
            for (size_t i = 0; i < 19; ++i)
                points.insert(points.end(), i == at ? one.begin() : good.begin(), i == at ? one.end() : good.end());
            forEachList<slot>(
                points, coordinates,
                [&](const char* name, rvkStatus status, size_t i, float u, float v) {
                    EXPECT_EQ(status, RAVIK_EFAIL) << name;
                    EXPECT_EQ(std::isnan(u) && std::isnan(v), i == at)
                        << name << ", point " << i << " of " << one[0] << ", " << one[1];
                },
                model...);
        }
}

TEST(Camera, PointsWithoutAResultAreNotANumber)
{
    const Camera camera = {500, 500, 320, 240};
    const float none = NAN, far = INFINITY;
    expectNone<Slot::rvkGeomDistortPoint2xNf32>({1, 1}, {{none, 0}, {0, none}, {far, 0}, {0, -far}, {1e38f, 1}},
                                                camera.data(), static_cast<const float*>(nullptr));
    // The radius grows to 0.577 times 2/3 and falls again, so that nothing is seen beyond 0.385 * 500 pixels.
    const Lens barrel = {-1, 0, 0, 0, 0};
    expectNone<Slot::rvkGeomUndistortPoint2xNf32>({400, 240}, {{none, 0}, {0, far}, {520, 240}, {320, 900}, {1e38f, 1}},
                                                  camera.data(), barrel.data());
    const Pose pose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
    const Lens lens = {0.1f, 0, 0, 0, 0};
    expectNone<Slot::rvkGeomProjectPoint3xNf32>(
        {1, 1, 4}, {{1, 1, 0}, {1, 1, -1}, {none, 0, 1}, {0, far, 1}, {0, 0, far}, {0, 0, none}, {1e38f, 1, 1}},
        camera.data(), lens.data(), pose.data());
    const Lens notANumber = {none, 0, 0, 0, 0};
    float point[2] = {1, 1};
    EXPECT_EQ(rvkGeomDistortPoint2x1f32(camera.data(), notANumber.data(), point, point), RAVIK_EFAIL);
    EXPECT_TRUE(std::isnan(point[0]) && std::isnan(point[1]));
}

// Lenses that lead Newton's method astray: it ends, and what it finds is an inverse.
TEST(Camera, WhatIsFoundIsAnInverse)
{
    Random random(4);
    const Camera camera = {500, 400, 320, 240};
    int found = 0, lost = 0;
    for (int trial = 0; trial < 400; ++trial) {
        Lens lens;
        for (float& number : lens)
            number = uniform(random, -2, 2);
        const Points pixels = uniformPoints(random, 17, {{0, 640}, {0, 480}});
        forEachList<Slot::rvkGeomUndistortPoint2xNf32>(
            pixels, 2,
            [&](const char* name, rvkStatus, size_t i, float x, float y) {
                (std::isnan(x) ? lost : found) += 1;
                if (std::isnan(x))
                    return;
                const Exact e = distorted(camera, lens, x, y);
                const double limit = 1e-5 * static_cast<double>(e.du + e.dv);
                EXPECT_NEAR(static_cast<double>(e.u), pixels[2 * i], limit) << name;
                EXPECT_NEAR(static_cast<double>(e.v), pixels[2 * i + 1], limit) << name;
            },
            camera.data(), lens.data());
    }
    EXPECT_GT(found, 1000);
    EXPECT_GT(lost, 1000);
}

TEST(Camera, PixelsMayReplaceTheWorld)
{
    const Camera camera = {500, 500, 320, 240};
    const Pose pose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 2};
    Random random(5);
    const Points world = uniformPoints(random, 37, {{-1, 1}, {-1, 1}, {-1, 1}});
    Points expected(2 * 37), inPlace = world;
    const auto project = [&](Points& to, uint32_t dstStride) {
        const float* const from = &to == &inPlace ? to.data() : world.data();
        return rvkGeomProjectPoint3xNf32(camera.data(), nullptr, pose.data(), from, 0, 37, to.data(), dstStride);
    };
    ASSERT_EQ(project(expected, 0), RAVIK_SUCCESS);
    EXPECT_EQ(project(inPlace, 8), RAVIK_EBADPARAM);
    EXPECT_EQ(inPlace, world);
    ASSERT_EQ(project(inPlace, 12), RAVIK_SUCCESS);
    for (size_t i = 0; i < 37; ++i)
        EXPECT_TRUE(inPlace[3 * i] == expected[2 * i] && inPlace[3 * i + 1] == expected[2 * i + 1] &&
                    inPlace[3 * i + 2] == world[3 * i + 2]);
}

TEST(Camera, CamerasAreFinite)
{
    float point[3] = {1, 1, 1};
    for (size_t i = 0; i < 4; ++i)
        for (const float bad : {NAN, INFINITY, -INFINITY}) {
            Camera camera = {500, 500, 320, 240};
            camera[i] = bad;
            EXPECT_EQ(rvkGeomDistortPoint2x1f32(camera.data(), nullptr, point, point), RAVIK_EBADPARAM);
            EXPECT_EQ(rvkGeomUndistortPoint2xNf32(camera.data(), nullptr, point, 0, 1, point, 0), RAVIK_EBADPARAM);
        }
    const Camera camera = {500, 500, 320, 240}; // 2^31 bytes of points
    EXPECT_EQ(rvkGeomDistortPoint2xNf32(camera.data(), nullptr, point, 0, 1u << 28, point, 0), RAVIK_EBADPARAM);
    EXPECT_TRUE(point[0] == 1 && point[1] == 1 && point[2] == 1);
}

#if RVK_TEST_OPENCV
TEST(Camera, AgreesWithOpenCv)
{
    Random random(6);
    for (int trial = 0; trial < 10; ++trial) {
        const Camera camera = randomCamera(random);
        const Lens lens = randomLens(random);
        const cv::Matx33d matrix(camera[0], 0, camera[2], 0, camera[1], camera[3], 0, 0, 1);
        const std::vector<float> distortion(lens.begin(), lens.end());
        std::vector<cv::Point2f> pixels(50), expected;
        for (cv::Point2f& p : pixels)
            p = {uniform(random, 100, 540), uniform(random, 80, 400)};
        cv::undistortPoints(pixels, expected, matrix, distortion, cv::noArray(), cv::noArray(),
                            cv::TermCriteria(cv::TermCriteria::MAX_ITER | cv::TermCriteria::EPS, 100, 1e-9));
        std::vector<cv::Point2f> actual(50);
        ASSERT_EQ(rvkGeomUndistortPoint2xNf32(camera.data(), lens.data(), &pixels[0].x, 0, 50, &actual[0].x, 0),
                  RAVIK_SUCCESS);
        for (size_t i = 0; i < 50; ++i) {
            EXPECT_NEAR(actual[i].x, expected[i].x, 1e-5f);
            EXPECT_NEAR(actual[i].y, expected[i].y, 1e-5f);
        }
    }
}
#endif

} // namespace

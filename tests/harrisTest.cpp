#include "support/blurs.h"
#include "support/logCapture.h"
#include "support/scarceMemory.h"

#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

using Corners = std::vector<uint32_t>; // x and y by turns

// Boxes of random greys, and some noise.
Picture<uint8_t> boxes(Random& random, int width, int height)
{
    std::vector<uint32_t> greys(1024);
    for (uint32_t& grey : greys)
        grey = random.below(250);
    return pictureOf<uint8_t>(width, height, [&](int x, int y) {
        return greys[static_cast<size_t>(x / 7 * 31 + y / 9) % 1024] + random.below(6);
    });
}

// ---- the reference against the definition, over whole pictures ----

struct Smoothed
{
    Picture<int16_t> xx, yy, xy; // right where the windows exist

    explicit Smoothed(const Picture<uint8_t>& src)
        : xx(means(src, [](int64_t dx, int64_t) { return dx * dx; })),
          yy(means(src, [](int64_t, int64_t dy) { return dy * dy; })),
          xy(means(src, [](int64_t dx, int64_t dy) { return dx * dy; }))
    {
    }

private:
    template <class Product>
    static Picture<int16_t> means(const Picture<uint8_t>& src, Product product)
    {
        const auto half = [](int difference) { return static_cast<int64_t>(std::floor(difference / 2.0)); };
        return binomialMeans(pictureOf<int16_t>(src.width, src.height,
                                                [&](int x, int y) {
                                                    return product(half(src.nearest(x + 1, y) - src.nearest(x - 1, y)),
                                                                   half(src.nearest(x, y + 1) - src.nearest(x, y - 1)));
                                                }),
                             5, Ring::nearest);
    }
};

Picture<int32_t> harrisResponses(const Picture<uint8_t>& src)
{
    const Smoothed s(src);
    return pictureOf<int32_t>(src.width, src.height, [&](int x, int y) {
        const int32_t xx = s.xx.at(x, y), yy = s.yy.at(x, y), xy = s.xy.at(x, y);
        return xx * yy - xy * xy - (xx + yy) * (xx + yy) / 16;
    });
}

template <class T, class Accept>
Corners expectedCorners(const Picture<T>& responses, int border, T threshold, Accept accept)
{
    Corners corners;
    for (int y = std::max(border, 5); y < responses.height - std::max(border, 5); ++y)
        for (int x = std::max(border, 5); x < responses.width - std::max(border, 5); ++x) {
            const auto window = windowOf(responses, x, y, 5, 5, Beyond::nearest);
            const auto reaching = [&](T other) { return other >= responses.at(x, y); };
            if (responses.at(x, y) > threshold && std::count_if(window.begin(), window.end(), reaching) == 1 &&
                accept(x, y))
                corners.insert(corners.end(), {static_cast<uint32_t>(x), static_cast<uint32_t>(y)});
        }
    return corners;
}

// What call(xy, count) finds.
template <class Call>
Corners found(uint32_t most, Call call)
{
    Corners xy(2 * most + 2);
    uint32_t count = 77;
    call(xy.data(), &count);
    xy.resize(2 * count);
    return xy;
}

Corners harris(const Picture<uint8_t>& src, uint32_t border, uint32_t most, int32_t threshold)
{
    return found(most, [&](uint32_t* xy, uint32_t* count) {
        rvkCornerHarrisu8(src.pixels.data(), src.columns(), src.rows(), 0, border, xy, most, count, threshold);
    });
}

TEST(Harris, FollowsTheDefinition)
{
    Random random(1);
    for (int trial = 0; trial < 20; ++trial) {
        const auto src =
            boxes(random, 12 + static_cast<int>(random.below(200)), 12 + static_cast<int>(random.below(50)));
        const uint8_t* const pixels = src.pixels.data();
        const uint32_t width = src.columns(), height = src.rows(), border = random.below(9), most = 400;
        const int32_t threshold = static_cast<int32_t>(random.below(30000)) - 1000;
        const auto responses = harrisResponses(src);
        const auto all = [](int, int) { return true; };
        const auto expected = [&](int32_t above) {
            return expectedCorners(responses, static_cast<int>(border), above, all);
        };
        const Corners corners = expected(threshold);
        forEachImplementation<Slot::rvkCornerHarrisScoreu8>([&](const char* name, auto function) {
            std::vector<uint32_t> scores(most);
            ASSERT_EQ(found(most,
                            [&](uint32_t* xy, uint32_t* count) {
                                function(pixels, width, height, width, border, xy, scores.data(), most, count,
                                         threshold);
                            }),
                      corners)
                << name;
            for (size_t i = 0; i < corners.size() / 2; ++i)
                ASSERT_EQ(static_cast<int32_t>(scores[i]),
                          responses.at(static_cast<int>(corners[2 * i]), static_cast<int>(corners[2 * i + 1])));
        });
        const std::vector<uint8_t> mask((width + 7) / 8 * height, 0x3c);
        forEachImplementation<Slot::rvkCornerHarrisInMasku8>([&](const char* name, auto function) {
            const auto outside = [](int x, int) { return x % 8 < 2 || x % 8 > 5; };
            ASSERT_EQ(found(most,
                            [&](uint32_t* xy, uint32_t* count) {
                                function(pixels, width, height, width, border, xy, most, count, threshold, mask.data(),
                                         width, height);
                            }),
                      expectedCorners(responses, static_cast<int>(border), threshold, outside))
                << name;
        });
        const uint32_t wanted = 1 + random.below(30);
        int32_t reached = threshold + 1'000'000;
        while (reached > threshold && expected(reached).size() / 2 < wanted)
            reached = threshold + (reached - threshold) / 2;
        forEachImplementation<Slot::rvkCornerHarrisAdaptiveu8>([&](const char* name, auto function) {
            ASSERT_EQ(found(wanted,
                            [&](uint32_t* xy, uint32_t* count) {
                                function(pixels, width, height, width, border, xy, wanted, count, threshold + 1'000'000,
                                         threshold);
                            }),
                      harris(src, border, wanted, reached))
                << name;
        });
        const auto inner =
            pictureOf<int32_t>(src.width - 6, src.height - 6, [&](int x, int y) { return responses.at(x + 3, y + 3); });
        const auto largest = std::max_element(inner.pixels.begin(), inner.pixels.end());
        forEachImplementation<Slot::rvkLocalHarrisMaxu8>([&](const char* name, auto function) {
            uint32_t x = 0, y = 0;
            int32_t response = 0;
            EXPECT_EQ(function(pixels, width, height, width, &x, &y, &response), RAVIK_SUCCESS);
            EXPECT_EQ(response, *largest) << name;
            EXPECT_EQ((y - 3) * (width - 6) + x - 3, largest - inner.pixels.begin()) << name;
        });
    }
}

TEST(Harris, FillsListsUpToTheirEnd)
{
    Random random(2);
    const auto src = boxes(random, 80, 60);
    const Corners all = harris(src, 5, 200, 1000);
    ASSERT_GT(all.size(), 40u);
    EXPECT_EQ(harris(src, 0, 200, 1000), all);
    for (const uint32_t most : {0u, 1u, 2u, 7u}) // none lets the first one in
        EXPECT_EQ(harris(src, 0, most, 1000), Corners(all.begin(), all.begin() + 2 * std::max(most, 1u)));
    EXPECT_EQ(harris(src, 30, 200, -1000), Corners());
    EXPECT_EQ(harris(src, UINT32_MAX, 200, -1000), Corners());
    EXPECT_EQ(harris(Picture<uint8_t>(80, 60, 100), 0, 200, -1), Corners()); // neighbours are equal
}

void searchWithoutMemory(decltype(rvkCornerHarrisu8)* function)
{
    const ScarceMemory memory(0);
    const std::vector<uint8_t> src(20 * 20);
    uint32_t xy[2], count;
    clearLog();
    atexit([] { fputs(logLines.empty() ? "nothing" : logLines.front().c_str(), stderr); });
    function(src.data(), 20, 20, 20, 0, xy, 1, &count, 0);
}

TEST(Harris, EndsTheProcessWithoutMemory)
{
    forEachImplementation<Slot::rvkCornerHarrisu8>([](const char* name, auto function) {
        EXPECT_EXIT(searchWithoutMemory(function), testing::ExitedWithCode(1),
                    "6 ravik_lib_log: src/cpu/ravikHarrisC@193: corner && grads && blurgrads Assertion failed\n")
            << name;
    });
}

TEST(GoodFeatures, FollowTheDefinition)
{
    Random random(3);
    for (int trial = 0; trial < 20; ++trial) {
        const auto src =
            boxes(random, 12 + static_cast<int>(random.below(200)), 12 + static_cast<int>(random.below(50)));
        const Smoothed s(src);
        const auto responses = pictureOf<float>(src.width, src.height, [&](int x, int y) {
            const float a = static_cast<float>(s.xx.at(x, y)) / 2, c = static_cast<float>(s.yy.at(x, y)) / 2;
            const float across = (a - c) * (a - c), b = static_cast<float>(s.xy.at(x, y)), mixed = b * b;
            return a + c - std::sqrt(across + mixed);
        });
        const float distance = static_cast<float>(random.below(60)) / 3;
        const float thresholds[] = {0, 40.5f, 300, -0.25f, -1e-40f, 1e-40f, -3e38f, INFINITY};
        const float threshold = thresholds[random.below(std::size(thresholds))];
        Corners accepted;
        const auto isFar = [&](int x, int y) {
            for (size_t i = 0; i < accepted.size(); i += 2) {
                const int dx = x - static_cast<int>(accepted[i]), dy = y - static_cast<int>(accepted[i + 1]);
                if (distance > 1 && distance * distance > static_cast<float>(dx * dx + dy * dy))
                    return false;
            }
            accepted.insert(accepted.end(), {static_cast<uint32_t>(x), static_cast<uint32_t>(y)});
            return true;
        };
        const Corners expected = expectedCorners(responses, 6, threshold, isFar);
        forEachImplementation<Slot::rvkGoodFeatureToTracku8>([&](const char* name, auto function) {
            const auto find = [&](uint32_t* xy, uint32_t* count) {
                EXPECT_EQ(function(src.pixels.data(), src.columns(), src.rows(), src.columns(), distance, 6, threshold,
                                   xy, 400, count),
                          RAVIK_SUCCESS);
            };
            ASSERT_EQ(found(400, find), expected) << name << ", " << threshold << ", " << distance;
        });
    }
}

TEST(GoodFeatures, RefuseWhatIsNoNumber)
{
    const std::vector<uint8_t> src(400);
    uint32_t xy[2], count = 7;
    for (const auto& [distance, threshold] : {std::pair(NAN, 1.0f), std::pair(1.0f, NAN)})
        EXPECT_EQ(rvkGoodFeatureToTracku8(src.data(), 20, 20, 0, distance, 0, threshold, xy, 1, &count),
                  RAVIK_EBADPARAM);
    float corner[2] = {9, 9};
    EXPECT_EQ(rvkCornerRefineSubPixu8(src.data(), 20, 20, 0, corner, 1, 3, 3, -1, -1, 9, NAN), RAVIK_EBADPARAM);
    EXPECT_EQ(count, 7u);
}

// ---- corners between pixels ----

// A checkerboard, turned and seen through a lens, and where its corners are.
struct Checkerboard
{
    static constexpr double angle = 0.3, field = 22, left = 7.3, top = 4.6, blur = 1.1;
    Picture<uint8_t> picture{260, 200};
    std::vector<float> corners;

    Checkerboard()
    {
        picture = pictureOf<uint8_t>(260, 200, [](int px, int py) {
            // Each edge as the lens smooths a straight one.
            const double x = px - left, y = py - top;
            const double u = (x * std::cos(angle) + y * std::sin(angle)) / field;
            const double v = (y * std::cos(angle) - x * std::sin(angle)) / field;
            const auto side = [](double at) {
                const double nearest = std::round(at);
                const double edge = std::erf((at - nearest) * field / (blur * std::sqrt(2.0)));
                return static_cast<int>(nearest) % 2 ? -edge : edge;
            };
            return std::lround(128 + 90 * side(u) * side(v));
        });
        for (int row = -20; row < 20; ++row)
            for (int column = 0; column < 20; ++column) {
                const double x = left + field * (column * std::cos(angle) - row * std::sin(angle));
                const double y = top + field * (column * std::sin(angle) + row * std::cos(angle));
                if (x > 9 && x < 250 && y > 9 && y < 190)
                    corners.insert(corners.end(), {static_cast<float>(x), static_cast<float>(y)});
            }
    }
};

float farthest(const std::vector<float>& a, const std::vector<float>& b)
{
    float distance = 0;
    for (size_t i = 0; i < a.size(); i += 2)
        distance = std::max(distance, std::hypot(a[i] - b[i], a[i + 1] - b[i + 1]));
    return distance;
}

TEST(CornerSubPix, FindsTheCornersOfACheckerboard)
{
    const Checkerboard board;
    ASSERT_GT(board.corners.size(), 100u);
    std::vector<float> start = board.corners;
    Random random(5);
    for (float& at : start)
        at += static_cast<float>(random.below(2001)) / 1000 - 1;
    for (const int32_t dead : {-1, 0, 1}) {
        std::vector<float> peers = start;
#if RVK_TEST_OPENCV
        std::vector<cv::Point2f> points(start.size() / 2);
        std::copy(start.begin(), start.end(), &points[0].x);
        cv::cornerSubPix(cv::Mat(200, 260, CV_8U, const_cast<uint8_t*>(board.picture.pixels.data())), points, {6, 5},
                         {dead, dead}, {cv::TermCriteria::COUNT | cv::TermCriteria::EPS, 40, 0.001});
        std::copy_n(&points[0].x, peers.size(), peers.begin());
#endif
        forEachImplementation<Slot::rvkCornerRefineSubPixu8>([&](const char* name, auto function) {
            std::vector<float> corners = start;
            EXPECT_EQ(function(board.picture.pixels.data(), 260, 200, 260, corners.data(),
                               static_cast<uint32_t>(corners.size() / 2), 6, 5, dead, dead, 40, 0.001f),
                      RAVIK_SUCCESS);
            EXPECT_LT(farthest(corners, board.corners), 0.05f) << name << ", dead zone " << dead;
#if RVK_TEST_OPENCV
            EXPECT_LT(farthest(corners, peers), 0.02f) << name << ", dead zone " << dead;
#endif
        });
    }
}

TEST(CornerSubPix, WhatLeadsNowhereStays)
{
    const auto edge = pictureOf<uint8_t>(60, 40, [](int x, int) { return x < 28 ? 20 : 200; });
    const std::vector<float> given = {26.5f, 20, 5, 5, -1, 3, 60, 3, NAN, 3, INFINITY, -INFINITY, 1e30f, 9};
    forEachImplementation<Slot::rvkCornerRefineSubPixu8>([&](const char* name, auto function) {
        std::vector<float> corners = given;
        EXPECT_EQ(function(edge.pixels.data(), 60, 40, 60, corners.data(), 7, 4, 4, -1, -1, 20, 0.0f), RAVIK_SUCCESS);
        EXPECT_TRUE(std::equal(given.begin(), given.end(), corners.begin(), sameFloat)) << name;
    });
}

// ---- maxima ----

TEST(MultipleMaxima, AreAboveAllTheirWindow)
{
    Picture<uint8_t> src(90, 12, 10);
    src.at(0, 0) = 90, src.at(89, 11) = 91; // at the ends
    src.at(30, 5) = 80, src.at(33, 5) = 70; // 3 apart
    src.at(60, 5) = 50, src.at(64, 9) = 50; // equal, 4 apart
    const auto maxima = [&](auto function, uint32_t radius, uint8_t threshold, uint32_t most, uint32_t* values) {
        return found(most, [&](uint32_t* xy, uint32_t* count) {
            EXPECT_EQ(function(src.pixels.data(), 90, 12, 90, radius, threshold, xy, values, most, count),
                      RAVIK_SUCCESS);
        });
    };
    forEachImplementation<Slot::rvkFindMultipleMaximau8>([&](const char* name, auto function) {
        uint32_t values[9];
        const Corners near = {0, 0, 30, 5, 33, 5, 60, 5, 64, 9, 89, 11}, far = {0, 0, 30, 5, 89, 11};
        EXPECT_EQ(maxima(function, 2, 10, 9, values), near) << name;
        EXPECT_EQ(std::vector(values, values + 6), (std::vector<uint32_t>{90, 80, 70, 50, 50, 91})) << name;
        EXPECT_EQ(maxima(function, 4, 49, 9, nullptr), far) << name;
        EXPECT_EQ(maxima(function, 15, 80, 9, nullptr), (Corners{0, 0, 89, 11})) << name;
        EXPECT_EQ(maxima(function, 2, 10, 2, nullptr), Corners(near.begin(), near.begin() + 4)) << name;
        EXPECT_EQ(maxima(function, 2, 10, 0, nullptr), Corners()) << name;
    });
}

} // namespace

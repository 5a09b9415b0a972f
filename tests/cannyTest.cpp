#include "support/windows.h"

#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

// Blobs, so that there are edges of all directions and strengths; and noise below `noise`.
Picture<uint8_t> blobs(int width, int height, Random& random, uint32_t noise = 12)
{
    struct
    {
        int x, y, radius, value;
    } blob[12];
    for (auto& b : blob)
        b = {static_cast<int>(random.below(static_cast<uint32_t>(width))),
             static_cast<int>(random.below(static_cast<uint32_t>(height))), static_cast<int>(2 + random.below(12)),
             static_cast<int>(random.below(256))};
    return pictureOf<uint8_t>(width, height, [&](int x, int y) {
        int value = static_cast<int>(random.below(noise));
        for (const auto& b : blob)
            if ((x - b.x) * (x - b.x) + (y - b.y) * (y - b.y) <= b.radius * b.radius)
                value += b.value;
        return std::min(value, 255);
    });
}

// ---- the reference against the definition, in floating point and without any shortcut ----

struct Edges
{
    Picture<int16_t> dx, dy;
    Picture<uint8_t> edges;
    bool operator==(const Edges&) const = default;
};

Edges expectedEdges(const Picture<uint8_t>& src, int aperture, double low, double high, bool squared)
{
    const auto gradient = [&](const std::vector<int>& ofRows, const std::vector<int>& ofColumns) {
        const std::vector<int> weights = productWeights(ofRows, ofColumns);
        return pictureOf<double>(src.width, src.height, [&](int x, int y) {
            return weightedSum(windowOf(src, x, y, aperture, aperture, Beyond::nearest), weights);
        });
    };
    const auto horizontal = gradient(sobelSmoothing(aperture), sobelDifference(aperture));
    const auto vertical = gradient(sobelDifference(aperture), sobelSmoothing(aperture));
    // What the detection knows of the gradient at a place.
    const auto known = [&](double g) { return aperture == 7 ? 16 * std::nearbyint(g / 16) : g; };
    const auto magnitude = [&](int x, int y) {
        if (!src.has(x, y))
            return 0.0;
        const double h = known(horizontal.at(x, y)), v = known(vertical.at(x, y));
        return squared ? std::hypot(h, v) : std::abs(h) + std::abs(v);
    };
    const auto stored = [&](const Picture<double>& plane) {
        return pictureOf<int16_t>(src.width, src.height,
                                  [&](int x, int y) { return std::clamp(plane.at(x, y), -32768.0, 32767.0); });
    };

    Picture<uint8_t> candidates(src.width, src.height);
    Edges result = {stored(horizontal), stored(vertical), Picture<uint8_t>(src.width, src.height)};
    for (int y = 0; y < src.height; ++y)
        for (int x = 0; x < src.width; ++x) {
            // The gradient's direction, as one of eight neighbours: the one to the right or below.
            const double angle = std::atan2(known(vertical.at(x, y)), known(horizontal.at(x, y))) * 180 / M_PI;
            const int sector = (static_cast<int>(std::floor((angle + 180 + 22.5) / 45)) + 8) % 4;
            static const int stepX[] = {1, 1, 0, -1}, stepY[] = {0, 1, 1, 1};
            const double m = magnitude(x, y), before = magnitude(x - stepX[sector], y - stepY[sector]),
                         after = magnitude(x + stepX[sector], y + stepY[sector]);
            const bool largest = m > before && (sector % 2 ? m > after : m >= after);
            candidates.at(x, y) = largest && m > low;
            result.edges.at(x, y) = largest && m > high ? 255 : 0;
        }
    for (bool grown = true; grown;) {
        grown = false;
        for (int y = 0; y < src.height; ++y)
            for (int x = 0; x < src.width; ++x) {
                if (!candidates.at(x, y) || result.edges.at(x, y))
                    continue;
                const auto around = windowOf(result.edges, x, y, 3, 3, Beyond::constant);
                if (std::count(around.begin(), around.end(), 255) == 0)
                    continue;
                result.edges.at(x, y) = 255;
                grown = true;
            }
    }
    return result;
}

// Calls with gradients.
template <class Function>
Edges edgesOf(Function function, const Picture<uint8_t>& src, uint32_t aperture, int low, int high, uint32_t norm)
{
    Edges result = {{src.width, src.height}, {src.width, src.height}, {src.width, src.height}};
    EXPECT_EQ(function(src.pixels.data(), src.columns(), src.rows(), src.stride(), aperture, low, high, norm,
                       result.edges.pixels.data(), src.stride(), result.dx.pixels.data(), result.dy.pixels.data(),
                       result.dx.stride()),
              RAVIK_SUCCESS);
    return result;
}

TEST(Canny, FollowsTheDefinition)
{
    Random random(1);
    const auto size = [&](uint32_t least, uint32_t range) { return static_cast<int>(least + random.below(range)); };
    for (const uint32_t aperture : {3u, 5u, 7u})
        for (const uint32_t norm : {RAVIK_CANNY_NORM_L1, RAVIK_CANNY_NORM_L2, 7u})
            for (int trial = 0; trial < 6; ++trial) {
                const auto src = blobs(trial ? size(30, 90) : size(1, 8), size(1, 40), random, trial % 2 ? 12 : 1);
                const int low = static_cast<int>(random.below(aperture * aperture * 20)), high = low * 2;
                const Edges expected =
                    expectedEdges(src, static_cast<int>(aperture), low, high, norm == RAVIK_CANNY_NORM_L2);
                forEachImplementation<Slot::rvkFilterCannyu8>([&](const char* name, auto function) {
                    ASSERT_TRUE(edgesOf(function, src, aperture, low, high, norm) == expected)
                        << name << ": " << aperture << ", norm " << norm << ", trial " << trial;
                });
                forEachImplementation<Slot::rvkFilterCannyu8>([&](const char* name, auto function) {
                    Edges some = {{src.width, src.height}, {src.width, src.height}, {src.width, src.height}};
                    const bool wantsDx = trial % 3 == 0, wantsDy = trial % 3 == 1;
                    EXPECT_EQ(function(src.pixels.data(), src.columns(), src.rows(), src.stride(), aperture, low, high,
                                       norm, some.edges.pixels.data(), src.stride(),
                                       wantsDx ? some.dx.pixels.data() : nullptr,
                                       wantsDy ? some.dy.pixels.data() : nullptr, some.dx.stride()),
                              RAVIK_SUCCESS);
                    EXPECT_TRUE(some.edges == expected.edges && (!wantsDx || some.dx == expected.dx) &&
                                (!wantsDy || some.dy == expected.dy))
                        << name << " without all gradients: " << aperture << ", norm " << norm;
                });
                if (aperture != 3 || norm == RAVIK_CANNY_NORM_L2)
                    continue;
                const auto expectEdges = [&](const char* name, auto function) {
                    EXPECT_EQ(filtered<uint8_t>(function, src, low, high), expected.edges) << name;
                };
                forEachImplementation<Slot::rvkFilterCanny3x3u8>(expectEdges);
                forEachImplementation<Slot::rvkFilterCanny3x3u8_v2>(expectEdges);
                forEachImplementation<Slot::rvkFilterCanny3x3u8_v3>(expectEdges);
            }
}

TEST(Canny, OneEdgeForAStep)
{
    // Both pixels at the step have a gradient of 1020; the first stays, also at the ends of the columns.
    const auto src = pictureOf<uint8_t>(8, 5, [](int x, int) { return x < 4 ? 0 : 255; });
    const auto expected = pictureOf<uint8_t>(8, 5, [](int x, int) { return x == 3 ? 255 : 0; });
    const Picture<uint8_t> none(8, 5);
    const auto edges = [&](int32_t low, int32_t high) {
        return filtered<uint8_t>(rvkFilterCanny3x3u8C, src, low, high);
    };
    EXPECT_EQ(edges(0, 0), expected);
    EXPECT_EQ(edges(100, 1019), expected);
    EXPECT_EQ(edges(100, 1020), none);
    EXPECT_EQ(edges(-100, -1019), expected); // absolute values
    EXPECT_EQ(edges(1019, 100), expected);   // in either order
    EXPECT_EQ(edges(1020, 100), none);
    EXPECT_EQ(edges(0, INT32_MIN), none); // 32767
}

// ---- what the field calls Canny ----

#if RVK_TEST_OPENCV
// The share of the edge pixels of `edges` that have one of `others` within one pixel.
double shareNear(const Picture<uint8_t>& edges, const Picture<uint8_t>& others)
{
    int count = 0, near = 0;
    for (int y = 0; y < edges.height; ++y)
        for (int x = 0; x < edges.width; ++x) {
            if (!edges.at(x, y))
                continue;
            const auto around = windowOf(others, x, y, 3, 3, Beyond::constant);
            ++count;
            near += std::count(around.begin(), around.end(), 255) != 0;
        }
    return count ? static_cast<double>(near) / count : 1;
}

TEST(Canny, AgreesWithOpenCv)
{
    Random random(3);
    size_t edgePixels = 0;
    const auto compare = [&](Picture<uint8_t> src, uint32_t aperture, int low, int high, uint32_t norm) {
        const auto ours = edgesOf(rvkFilterCannyu8C, src, aperture, low, high, norm).edges;
        auto theirs = ours;
        const auto mat = [](Picture<uint8_t>& p) { return cv::Mat(p.height, p.width, CV_8U, p.pixels.data()); };
        cv::Mat theirEdges = mat(theirs);
        cv::Canny(mat(src), theirEdges, low, high, static_cast<int>(aperture), norm == RAVIK_CANNY_NORM_L2);
        EXPECT_GE(std::min(shareNear(ours, theirs), shareNear(theirs, ours)), 0.98)
            << aperture << "x" << aperture << ", norm " << norm << ", thresholds " << low << " and " << high;
        edgePixels += static_cast<size_t>(std::count(theirs.pixels.begin(), theirs.pixels.end(), 255));
    };
    for (const auto& [aperture, gain] : {std::pair(3u, 1), std::pair(5u, 12), std::pair(7u, 160)})
        for (const uint32_t norm : {RAVIK_CANNY_NORM_L1, RAVIK_CANNY_NORM_L2})
            for (const uint32_t noise : {1u, 40u, 256u})
                for (int trial = 0; trial < 4; ++trial) {
                    const int low = gain * (10 + static_cast<int>(random.below(90)));
                    const int high = std::min(low * (2 + trial), 32767);
                    compare(blobs(160, 120, random, noise), aperture, low, high, norm);
                }
    EXPECT_GT(edgePixels, 20000u);
}
#endif

// ---- vector implementations ----

// Edges of pictures that are not noise; and a faint spiral through the whole picture that is strong at its middle
// alone.
TEST(Canny, VectaTracksLikeReference)
{
    Random random(2);
    std::vector<Picture<uint8_t>> pictures;
    for (int i = 0; i < 6; ++i)
        pictures.push_back(blobs(150 + static_cast<int>(random.below(200)), 60 + static_cast<int>(random.below(60)),
                                 random, i % 2 ? 12 : 1));
    pictures.push_back(pictureOf<uint8_t>(261, 220, [](int column, int row) {
        const int x = column - 130, y = row - 110;
        return y == 0 && x >= 10 && x < 18 ? 255
                                           : std::lround(80 + 60 * std::sin(std::hypot(x, y) / 3 - std::atan2(y, x)));
    }));
    for (const auto& src : pictures) {
        const auto expected = filtered<uint8_t>(rvkFilterCanny3x3u8_v3C, src, 60, 450);
        EXPECT_GT(std::count(expected.pixels.begin(), expected.pixels.end(), 255),
                  &src == &pictures.back() ? 2500 : 100);
        forEachVecta<Slot::rvkFilterCanny3x3u8_v3>([&](const char* name, auto function) {
            EXPECT_TRUE(filtered<uint8_t>(function, src, 60, 450) == expected)
                << name << ", " << src.width << "x" << src.height;
        });
    }
}

} // namespace

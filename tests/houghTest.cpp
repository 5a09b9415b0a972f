// Hough transforms, edge pixels and line segments: lines against their definition, circles and segments against what was
// drawn, edge pixels against Canny's. Vector implementations are compared with the references in contractTest.
#include "support/kernelModes.h"
#include "support/windows.h"

#include <cmath>
#include <cstring>
#include <map>

using namespace test;

namespace {

// What a detector lists of a picture.
template <class Entry, class Function, class... Arguments>
std::vector<Entry> listed(Function find, const Picture<uint8_t>& src, uint32_t capacity, Arguments... arguments)
{
    std::vector<Entry> entries(capacity + 1);
    uint32_t count = 77;
    EXPECT_EQ(find(src.pixels.data(), src.columns(), src.rows(), src.stride(), arguments..., entries.data(), capacity,
                   &count),
              RAVIK_SUCCESS);
    entries.resize(std::min(count, capacity));
    return entries;
}

// ---- lines ----

std::vector<rvkLine> expectedLines(const Picture<uint8_t>& src, int n, double step, uint32_t threshold)
{
    std::map<std::pair<int, int>, uint32_t> bins;
    for (int k = 0; k < n; ++k) {
        const auto unit = [&](double v) { return static_cast<int64_t>(std::nearbyint(32768 * v / step)); };
        const int64_t c = unit(std::cos(k * M_PI / n)), s = unit(std::sin(k * M_PI / n));
        for (int y = 0; y < src.height; ++y)
            for (int x = 0; x < src.width; ++x)
                if (src.at(x, y))
                    ++bins[{k, static_cast<int>(std::floor(static_cast<double>(x * c + y * s + 16384) / 32768))}];
    }
    std::vector<std::pair<uint32_t, std::pair<int, int>>> peaks;
    for (const auto& entry : bins) {
        const auto bin = entry.first;
        const uint32_t votes = entry.second;
        const auto [k, r] = bin;
        const std::pair<int, int> neighbours[] = {{k, r - 1},
                                                  {k, r + 1},
                                                  k > 0 ? std::pair(k - 1, r) : std::pair(n - 1, -r),
                                                  k + 1 < n ? std::pair(k + 1, r) : std::pair(0, -r)};
        const bool isPeak = std::all_of(std::begin(neighbours), std::end(neighbours), [&](const auto& other) {
            const auto found = bins.find(other);
            const uint32_t otherVotes = found == bins.end() ? 0 : found->second;
            return other == bin || (other < bin ? votes > otherVotes : votes >= otherVotes);
        });
        if (isPeak && votes >= threshold)
            peaks.push_back({~votes, bin});
    }
    std::sort(peaks.begin(), peaks.end());
    std::vector<rvkLine> lines;
    for (const auto& [votes, bin] : peaks)
        lines.push_back({static_cast<float>(bin.second * step), static_cast<float>(bin.first * M_PI / n), ~votes});
    return lines;
}

TEST(Hough, LinesFollowTheDefinition)
{
    Random random(1);
    for (int trial = 0; trial < 40; ++trial) {
        const bool isLarge = trial == 0;
        const int width = static_cast<int>(isLarge ? 300 : 1 + random.below(trial % 2 ? 150 : 12));
        const int height = static_cast<int>(isLarge ? 150 : 1 + random.below(40));
        const uint32_t density = isLarge ? 1 : 1 + random.below(20), n = 1 + random.below(trial % 4 ? 40 : 3);
        const auto src = pictureOf<uint8_t>(width, height, [&](int, int) { return random.below(density) == 0; });
        const float step = 0.5f + static_cast<float>(random.below(8)) / 4;
        const uint32_t threshold = 1 + random.below(4);
        const auto expected = expectedLines(src, static_cast<int>(n), step, threshold);
        const auto capacity = random.below(3) ? static_cast<uint32_t>(expected.size()) + 1 : random.below(6);
        forEachImplementation<Slot::rvkHoughLineu8>([&](const char* name, auto find) {
            const auto lines = listed<rvkLine>(find, src, capacity, n, step, threshold);
            ASSERT_EQ(lines.size(), std::min<size_t>(expected.size(), capacity)) << name << ", trial " << trial;
            for (size_t i = 0; i < lines.size(); ++i) {
                EXPECT_EQ(lines[i].votes, expected[i].votes);
                EXPECT_NEAR(lines[i].rho, expected[i].rho, 1e-4);
                EXPECT_NEAR(lines[i].theta, expected[i].theta, 1e-6) << name << ", trial " << trial << ", line " << i;
            }
        });
    }
}

TEST(Hough, DrawnLinesAreFound)
{
    for (int k = 0; k < 180; k += 7) {
        const double theta = k * M_PI / 180, rho = 200 * std::cos(theta) + 150 * std::sin(theta) + k % 41 - 20;
        const auto src = pictureOf<uint8_t>(
            400, 300, [&](int x, int y) { return std::abs(x * std::cos(theta) + y * std::sin(theta) - rho) <= 0.5; });
        forEachImplementation<Slot::rvkHoughLineu8>([&](const char* name, auto find) {
            const auto lines = listed<rvkLine>(find, src, 1, 180u, 1.0f, 100u);
            ASSERT_EQ(lines.size(), 1u) << name;
            EXPECT_NEAR(lines[0].theta, theta, 1.01 * M_PI / 180) << name;
            EXPECT_NEAR(lines[0].rho, rho, 1.01) << name << ", " << k;
        });
    }
}

TEST(Hough, AccumulationKernel)
{
    std::vector<uint32_t> pixels, expected(4000), votes;
    for (uint32_t i = 0; i < 133; ++i)
        pixels.push_back(i * 97 % 1000 | i * 31 % 700 << 16);
    for (const uint32_t pixel : pixels)
        ++expected[static_cast<size_t>(2000 + std::floor(pixel % 65536 * -0.5 + pixel / 65536 * 0.75 + 0.5))];
    inBothModes(Kernel::irvkHoughAccumulateArea, "irvkHoughAccumulateArea", [&] {
        votes.assign(4000, 0);
        kernel<Kernel::irvkHoughAccumulateArea>()(pixels.data(), 133, -16384, 24576, votes.data() + 2000);
        EXPECT_EQ(votes, expected);
    });
}

// ---- circles ----

// A disc with a soft outline.
double discAt(int x, int y, double centreX, double centreY, double radius)
{
    return 180 * std::clamp(radius - std::hypot(x - centreX, y - centreY) + 0.5, 0.0, 1.0);
}

TEST(Hough, DrawnDiscsAreFound)
{
    Random random(2);
    for (int trial = 0; trial < 12; ++trial) {
        const double x = 70 + random.below(600) / 10.0, y = 60 + random.below(400) / 10.0;
        const double radius = 6 + random.below(400) / 10.0;
        const auto src =
            pictureOf<uint8_t>(200, 160, [&](int column, int row) { return 40 + discAt(column, row, x, y, radius); });
        forEachImplementation<Slot::rvkHoughCircleu8>([&](const char* name, auto find) {
            const auto circles = listed<rvkCircle>(find, src, 1, 300u, 5u, trial % 2 ? 60u : UINT32_MAX, 20u, 20u);
            ASSERT_EQ(circles.size(), 1u) << name << ", trial " << trial;
            EXPECT_NEAR(circles[0].x, x, 1) << name;
            EXPECT_NEAR(circles[0].y, y, 1) << name;
            EXPECT_NEAR(circles[0].radius, radius, 1) << name;
            EXPECT_GT(circles[0].support, 3 * radius) << name;
        });
    }
}

TEST(Hough, CirclesAreNoNearerThanTheCallerWants)
{
    const auto src =
        pictureOf<uint8_t>(150, 100, [](int x, int y) { return discAt(x, y, 40, 50, 25) + discAt(x, y, 90, 50, 18); });
    forEachImplementation<Slot::rvkHoughCircleu8>([&](const char* name, auto find) {
        EXPECT_EQ(listed<rvkCircle>(find, src, 9, 300u, 10u, 40u, 50u, 50u).size(), 2u) << name;
        const auto one = listed<rvkCircle>(find, src, 9, 300u, 10u, 40u, 50u, 51u);
        ASSERT_EQ(one.size(), 1u) << name;
        EXPECT_EQ(one[0].radius, 25u) << name;
    });
}

// Circles by all implementations; how many there are.
template <class... Arguments>
size_t circlesLikeReference(const Picture<uint8_t>& src, Arguments... arguments)
{
    const auto circles = [&](auto find) { return listed<rvkCircle>(find, src, 9000, arguments...); };
    const auto expected = circles(referenceOf<Slot::rvkHoughCircleu8>());
    forEachVecta<Slot::rvkHoughCircleu8>([&](const char* name, auto find) {
        const auto actual = circles(find);
        ASSERT_EQ(actual.size(), expected.size()) << name;
        EXPECT_EQ(memcmp(actual.data(), expected.data(), expected.size() * sizeof(rvkCircle)), 0) << name;
    });
    return expected.size();
}

// More edge pixels than 16 bits count, and more centres than most pictures have.
TEST(Hough, VectaFindsCirclesInNoiseLikeReference)
{
    Random random(4);
    const auto src = pictureOf<uint8_t>(700, 500, [&](int, int) { return random.next(); });
    EXPECT_GT(circlesLikeReference(src, 60u, 2u, 6u, 9u, 3u), 4096u);
}

// All edges point to one centre: from all distances, they give it a score that 16 bits do not hold.
TEST(Hough, VectaFindsTheCentreOfRingsLikeReference)
{
    const auto src = pictureOf<uint8_t>(
        420, 410, [](int x, int y) { return 128 + 120 * std::sin(std::hypot(x - 210, y - 205) / 2); });
    EXPECT_EQ(circlesLikeReference(src, 100u, 60u, 100u, 200u, 1000u), 1u);
    EXPECT_EQ(circlesLikeReference(src, 100u, 60u, UINT32_MAX, 200u, 1000u), 1u);
}

// ---- edge pixels and line segments ----

// A convex polygon of three to six corners, without steps along its edges; clockwise on the screen.
struct Polygon
{
    std::vector<std::pair<double, double>> corners;

    // How far to the right of edge i.
    double inside(size_t i, double x, double y) const
    {
        const auto [x1, y1] = corners[i];
        const auto [x2, y2] = corners[(i + 1) % corners.size()];
        return ((x2 - x1) * (y - y1) - (y2 - y1) * (x - x1)) / std::hypot(x2 - x1, y2 - y1);
    }
    Picture<uint8_t> drawn(int width, int height) const
    {
        return pictureOf<uint8_t>(width, height, [&](int x, int y) {
            double least = 1;
            for (size_t i = 0; i < corners.size(); ++i)
                least = std::min(least, inside(i, x, y) + 0.5);
            return 30 + 200 * std::max(least, 0.0);
        });
    }
};

TEST(Hough, EdgePixelsAreThoseOfCanny)
{
    Random random(3);
    for (int trial = 0; trial < 20; ++trial) {
        const auto src = randomPicture<uint8_t>(random, 1 + static_cast<int>(random.below(150)), 1 + trial);
        const uint32_t threshold = random.below(900);
        const auto limit = static_cast<int32_t>(threshold);
        auto edges = src;
        Picture<int16_t> dx(src.width, src.height), dy = dx;
        rvkFilterCannyu8C(src.pixels.data(), src.columns(), src.rows(), src.stride(), 3, limit, limit, 0,
                          edges.pixels.data(), src.stride(), dx.pixels.data(), dy.pixels.data(), dx.stride());
        std::vector<uint32_t> expected;
        std::vector<int16_t> expectedGradients;
        for (uint32_t i = 0; i < src.columns() * src.rows(); ++i)
            if (edges.pixels[i]) {
                expected.insert(expected.end(), {i % src.columns(), i / src.columns()});
                expectedGradients.insert(expectedGradients.end(), {dx.pixels[i], dy.pixels[i]});
            }
        forEachImplementation<Slot::rvkImageDetectEdgePixelsu8>([&](const char* name, auto find) {
            const uint32_t capacity = trial % 3 ? src.columns() * src.rows() : random.below(20);
            std::vector<uint32_t> xy(2 * capacity + 2);
            std::vector<int16_t> gradients(2 * capacity + 2);
            uint32_t count = 0;
            EXPECT_EQ(find(src.pixels.data(), src.columns(), src.rows(), src.stride(), threshold, xy.data(), capacity,
                           &count, gradients.data()),
                      RAVIK_SUCCESS);
            ASSERT_EQ(count, std::min(capacity, static_cast<uint32_t>(expected.size() / 2))) << name;
            EXPECT_TRUE(std::equal(xy.begin(), xy.begin() + 2 * count, expected.begin())) << name;
            EXPECT_TRUE(std::equal(gradients.begin(), gradients.begin() + 2 * count, expectedGradients.begin()));
        });
    }
}

TEST(Hough, SegmentsAreTheEdgesOfPolygons)
{
    for (int trial = 0; trial < 20; ++trial) {
        Polygon polygon;
        for (int i = 0; i < 3 + trial % 4; ++i) {
            const double angle = trial * 0.37 + i * 2 * M_PI / (3 + trial % 4);
            polygon.corners.push_back({100.3 + 80 * std::cos(angle), 99.6 + 80 * std::sin(angle)});
        }
        const auto src = polygon.drawn(200, 200);
        forEachImplementation<Slot::rvkImageDetectLineSegmentsu8>([&](const char* name, auto find) {
            std::vector<double> covered(polygon.corners.size());
            for (const auto& s : listed<rvkLineSegment>(find, src, 50, 60u, 10.0f, 0.5f)) {
                size_t i = 0;
                const auto distance = [&] {
                    return std::max(std::abs(polygon.inside(i, s.x1, s.y1)), std::abs(polygon.inside(i, s.x2, s.y2)));
                };
                while (i < covered.size() && distance() > 0.5)
                    ++i;
                ASSERT_LT(i, covered.size()) << name << ", trial " << trial << ": no edge near " << s.x1 << "," << s.y1
                                             << " to " << s.x2 << "," << s.y2;
                const auto [x1, y1] = polygon.corners[i];
                const auto [x2, y2] = polygon.corners[(i + 1) % covered.size()];
                covered[i] += ((s.x2 - s.x1) * (x2 - x1) + (s.y2 - s.y1) * (y2 - y1)) /
                              ((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1)); // directed as the polygon
            }
            for (const double share : covered)
                EXPECT_NEAR(share, 0.95, 0.06) << name << ", trial " << trial;
        });
    }
}

// ---- arguments that only these functions refuse ----

TEST(Hough, RefusedArguments)
{
    const std::vector<uint8_t> src(20000, 1);
    rvkLine line = {};
    rvkLineSegment segment = {};
    uint32_t count = 77;
    const auto lines = [&](uint32_t width, uint32_t height, uint32_t nAngles, float step) {
        return rvkHoughLineu8(src.data(), width, height, 0, nAngles, step, 1, &line, 1, &count);
    };
    EXPECT_EQ(lines(16385, 1, 9, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(lines(1, 16385, 9, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(lines(9, 9, 9, NAN), RAVIK_EBADPARAM);
    EXPECT_EQ(lines(9, 9, 9, INFINITY), RAVIK_EBADPARAM);
    for (const auto mode : {RAVIK_OP_CPU_PERFORMANCE + 1, RAVIK_OP_CPU_PERFORMANCE}) {
        rvkSetOperationMode(mode);
        EXPECT_EQ(lines(9, 9, UINT32_MAX, 1), RAVIK_ENORES); // 2^32 angles are too many bins
    }
    const auto segments = [&](float minLength, float maxError) {
        return rvkImageDetectLineSegmentsu8(src.data(), 9, 9, 0, 1, minLength, maxError, &segment, 1, &count);
    };
    EXPECT_EQ(segments(NAN, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(segments(1, NAN), RAVIK_EBADPARAM);
    EXPECT_EQ(count, 77u);
}

} // namespace

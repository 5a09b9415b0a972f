#include "memory.h"
#include "support/logCapture.h"
#include "support/trial.h"

#include <algorithm>
#include <climits>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

struct Picture
{
    uint32_t width, height;
    std::vector<uint8_t> pixels;

    uint8_t at(int x, int y) const // continued by the nearest pixel
    {
        const int u = std::clamp(x, 0, static_cast<int>(width) - 1), v = std::clamp(y, 0, static_cast<int>(height) - 1);
        return pixels[static_cast<size_t>(v) * width + static_cast<size_t>(u)];
    }
};

// Blobs, so that there are edges of all directions and strengths; and noise below `noise`.
Picture blobs(uint32_t width, uint32_t height, Random& random, uint32_t noise = 12)
{
    Picture picture{width, height, std::vector<uint8_t>(size_t{width} * height)};
    struct
    {
        int x, y, radius, value;
    } blob[12];
    for (auto& b : blob)
        b = {static_cast<int>(random.below(width)), static_cast<int>(random.below(height)),
             static_cast<int>(2 + random.below(12)), static_cast<int>(random.below(256))};
    for (int y = 0; y < static_cast<int>(height); ++y)
        for (int x = 0; x < static_cast<int>(width); ++x) {
            int value = static_cast<int>(random.below(noise));
            for (const auto& b : blob)
                if ((x - b.x) * (x - b.x) + (y - b.y) * (y - b.y) <= b.radius * b.radius)
                    value += b.value;
            picture.pixels[static_cast<size_t>(y) * width + static_cast<size_t>(x)] =
                static_cast<uint8_t>(std::min(value, 255));
        }
    return picture;
}

// ---- the reference against the definition, in floating point and without any shortcut ----

struct Oracle
{
    std::vector<int> dx, dy;
    std::vector<uint8_t> edges;
};

Oracle detect(const Picture& picture, uint32_t aperture, double low, double high, bool squared)
{
    static const std::vector<int> smoothing[] = {{1, 2, 1}, {1, 4, 6, 4, 1}, {1, 6, 15, 20, 15, 6, 1}};
    static const std::vector<int> derivative[] = {{-1, 0, 1}, {-1, -2, 0, 2, 1}, {-1, -4, -5, 0, 5, 4, 1}};
    const std::vector<int>&s = smoothing[aperture / 2 - 1], &d = derivative[aperture / 2 - 1];
    const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
    const int radius = static_cast<int>(aperture / 2);
    const auto place = [=](int x, int y) { return static_cast<size_t>(y * width + x); };

    Oracle result;
    std::vector<double> horizontal, vertical, magnitudes; // what the detection knows of the gradient
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int dx = 0, dy = 0;
            for (int v = 0; v <= 2 * radius; ++v)
                for (int u = 0; u <= 2 * radius; ++u) {
                    const int pixel = picture.at(x + u - radius, y + v - radius);
                    dx += pixel * d[static_cast<size_t>(u)] * s[static_cast<size_t>(v)];
                    dy += pixel * s[static_cast<size_t>(u)] * d[static_cast<size_t>(v)];
                }
            result.dx.push_back(std::clamp(dx, -32768, 32767));
            result.dy.push_back(std::clamp(dy, -32768, 32767));
            const double scale = aperture == 7 ? 16 : 1;
            const double h = scale * std::nearbyint(dx / scale), v = scale * std::nearbyint(dy / scale);
            horizontal.push_back(h);
            vertical.push_back(v);
            magnitudes.push_back(squared ? std::hypot(h, v) : std::abs(h) + std::abs(v));
        }

    std::vector<bool> candidate(magnitudes.size());
    result.edges.resize(magnitudes.size());
    const auto magnitude = [&](int x, int y) {
        return x < 0 || y < 0 || x >= width || y >= height ? 0.0 : magnitudes[place(x, y)];
    };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const size_t i = place(x, y);
            // The gradient's direction, as one of eight neighbours: the one to the right or below.
            const double angle = std::atan2(vertical[i], horizontal[i]) * 180 / M_PI;
            const int sector = (static_cast<int>(std::floor((angle + 180 + 22.5) / 45)) + 8) % 4;
            static const int stepX[] = {1, 1, 0, -1}, stepY[] = {0, 1, 1, 1};
            const double m = magnitudes[i], before = magnitude(x - stepX[sector], y - stepY[sector]),
                         after = magnitude(x + stepX[sector], y + stepY[sector]);
            const bool largest = m > before && (sector % 2 ? m > after : m >= after);
            candidate[i] = largest && m > low;
            result.edges[i] = largest && m > high ? 255 : 0;
        }
    for (bool grown = true; grown;) {
        grown = false;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int v = std::max(y - 1, 0); v <= std::min(y + 1, height - 1); ++v)
                    for (int u = std::max(x - 1, 0); u <= std::min(x + 1, width - 1); ++u)
                        if (candidate[place(x, y)] && !result.edges[place(x, y)] && result.edges[place(u, v)]) {
                            result.edges[place(x, y)] = 255;
                            grown = true;
                        }
    }
    return result;
}

TEST(Canny, ReferenceFollowsTheDefinition)
{
    Random random(1);
    for (const uint32_t aperture : {3u, 5u, 7u})
        for (const uint32_t norm : {RAVIK_CANNY_NORM_L1, RAVIK_CANNY_NORM_L2, 7u})
            for (int trial = 0; trial < 6; ++trial) {
                const Picture picture =
                    blobs(trial ? 30 + random.below(40) : 1 + random.below(8), 1 + random.below(40), random);
                const size_t count = picture.pixels.size();
                const int low = static_cast<int>(random.below(aperture * aperture * 20)), high = low * 2;
                std::vector<uint8_t> edges(count);
                std::vector<int16_t> dx(count), dy(count);
                ASSERT_EQ(rvkFilterCannyu8C(picture.pixels.data(), picture.width, picture.height, picture.width,
                                            aperture, low, high, norm, edges.data(), picture.width, dx.data(),
                                            dy.data(), picture.width * 2),
                          RAVIK_SUCCESS);
                const Oracle oracle = detect(picture, aperture, low, high, norm == RAVIK_CANNY_NORM_L2);
                EXPECT_TRUE(std::equal(dx.begin(), dx.end(), oracle.dx.begin()));
                EXPECT_TRUE(std::equal(dy.begin(), dy.end(), oracle.dy.begin()));
                ASSERT_EQ(edges, oracle.edges) << aperture << ", norm " << norm << ", trial " << trial;
                if (aperture == 3 && norm != RAVIK_CANNY_NORM_L2) {
                    std::vector<uint8_t> plain(count);
                    rvkFilterCanny3x3u8C(picture.pixels.data(), picture.width, picture.height, plain.data(), low, high);
                    EXPECT_EQ(plain, edges);
                }
            }
}

TEST(Canny, OneEdgeForAStep)
{
    // Both pixels at the step have a gradient of 1020; the first stays, also at the ends of the columns.
    constexpr uint32_t width = 8, height = 5;
    std::vector<uint8_t> src(width * height), dst(width * height, 9), expected(width * height);
    for (size_t i = 0; i < src.size(); ++i) {
        src[i] = i % width < 4 ? 0 : 255;
        expected[i] = i % width == 3 ? 255 : 0;
    }
    const auto edges = [&](int32_t low, int32_t high) {
        rvkFilterCanny3x3u8C(src.data(), width, height, dst.data(), low, high);
        return dst;
    };
    const std::vector<uint8_t> none(width * height);
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
double shareNear(const Picture& picture, const std::vector<uint8_t>& edges, const std::vector<uint8_t>& others)
{
    const Picture other = {picture.width, picture.height, others};
    int count = 0, near = 0;
    for (int y = 0; y < static_cast<int>(picture.height); ++y)
        for (int x = 0; x < static_cast<int>(picture.width); ++x) {
            if (!edges[static_cast<size_t>(y) * picture.width + static_cast<size_t>(x)])
                continue;
            bool isNear = false;
            for (int i = 0; i < 9; ++i)
                isNear |= other.at(x + i % 3 - 1, y + i / 3 - 1) != 0;
            ++count;
            near += isNear;
        }
    return count ? static_cast<double>(near) / count : 1;
}

TEST(Canny, AgreesWithOpenCv)
{
    Random random(3);
    size_t edgePixels = 0;
    const auto compare = [&](const Picture& picture, uint32_t aperture, int low, int high, uint32_t norm) {
        std::vector<uint8_t> ours(picture.pixels.size()), theirs = ours;
        std::vector<int16_t> dx(ours.size()), dy(ours.size());
        ASSERT_EQ(rvkFilterCannyu8C(picture.pixels.data(), picture.width, picture.height, picture.width, aperture, low,
                                    high, norm, ours.data(), picture.width, dx.data(), dy.data(), picture.width * 2),
                  RAVIK_SUCCESS);
        const auto mat = [&](const std::vector<uint8_t>& pixels) {
            return cv::Mat(static_cast<int>(picture.height), static_cast<int>(picture.width), CV_8U,
                           const_cast<uint8_t*>(pixels.data()));
        };
        cv::Mat theirEdges = mat(theirs);
        cv::Canny(mat(picture.pixels), theirEdges, low, high, static_cast<int>(aperture), norm == RAVIK_CANNY_NORM_L2);
        EXPECT_GE(std::min(shareNear(picture, ours, theirs), shareNear(picture, theirs, ours)), 0.98)
            << aperture << "x" << aperture << ", norm " << norm << ", thresholds " << low << " and " << high;
        edgePixels += static_cast<size_t>(std::count(theirs.begin(), theirs.end(), 255));
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

TEST(Canny, VectaEqualsReference)
{
    const auto thresholds = [](Trial& t) { // low ones for dense pictures, in which edges run far
        const int32_t low = static_cast<int32_t>(t.below(t.below(2) ? 8 : 900));
        return std::pair(low, low + static_cast<int32_t>(t.below(1200)) - 60);
    };
    expectVectaEqualsReference<Slot::rvkFilterCanny3x3u8>([&](auto function, Trial& t) {
        auto src = t.inputOf<uint8_t>(t.width * t.height, 1);
        auto dst = t.outputOf<uint8_t>(t.width * t.height, 1);
        const auto [low, high] = thresholds(t);
        function(src.data, t.width, t.height, dst.data, low, high);
    });
    expectVectaEqualsReference<Slot::rvkFilterCanny3x3u8_v2>([&](auto function, Trial& t) {
        auto src = t.input<uint8_t>();
        auto dst = t.output<uint8_t>();
        const auto [low, high] = thresholds(t);
        function(src.data, t.width, t.height, src.stride, dst.data, dst.stride, low, high);
    });
    expectVectaEqualsReference<Slot::rvkFilterCanny3x3u8_v3>([&](auto function, Trial& t) {
        auto src = t.input<uint8_t>();
        auto dst = t.output<uint8_t>();
        const auto [low, high] = thresholds(t);
        t.result(function(src.data, t.width, t.height, src.stride, dst.data, dst.stride, low, high));
    });
    expectVectaEqualsReference<Slot::rvkFilterCannyu8>(
        [&](auto function, Trial& t) {
            auto src = t.input<uint8_t>();
            auto dst = t.output<uint8_t>();
            auto dx = t.output<int16_t>(), dy = t.output<int16_t>();
            const uint32_t aperture = 2 + t.below(7); // 2, 4, 6 and 8 are refused
            const auto [low, high] = thresholds(t);
            const auto scale = static_cast<int32_t>(aperture > 4 ? aperture * aperture : 1);
            t.result(function(src.data, t.width, t.height, src.stride, aperture, low * scale, high * scale, t.below(3),
                              dst.data, dst.stride, dx.data, dy.data, dx.stride));
        },
        400);
}

// Edges of pictures that are not noise; and a faint spiral through the whole picture that is strong at its middle
// alone.
TEST(Canny, VectaTracksLikeReference)
{
    Random random(2);
    std::vector<Picture> pictures;
    for (int i = 0; i < 6; ++i)
        pictures.push_back(blobs(150 + random.below(200), 60 + random.below(60), random));
    Picture spiral{261, 220, {}};
    for (int y = -110; y < 110; ++y)
        for (int x = -130; x <= 130; ++x)
            spiral.pixels.push_back(
                static_cast<uint8_t>(std::lround(80 + 60 * std::sin(std::hypot(x, y) / 3 - std::atan2(y, x)))));
    for (int x = 10; x < 18; ++x)
        spiral.pixels[110 * 261 + 130 + static_cast<size_t>(x)] = 255;
    pictures.push_back(spiral);
    for (const Picture& picture : pictures) {
        std::vector<uint8_t> expected(picture.pixels.size());
        const auto run = [&](auto function, std::vector<uint8_t>& dst) {
            return function(picture.pixels.data(), picture.width, picture.height, picture.width, dst.data(),
                            picture.width, 60, 450);
        };
        ASSERT_EQ(run(rvkFilterCanny3x3u8_v3C, expected), RAVIK_SUCCESS);
        EXPECT_GT(std::count(expected.begin(), expected.end(), 255), &picture == &pictures.back() ? 2500 : 100);
        forEachVecta<Slot::rvkFilterCanny3x3u8_v3>([&](const char* name, auto function) {
            std::vector<uint8_t> actual(picture.pixels.size());
            ASSERT_EQ(run(function, actual), RAVIK_SUCCESS);
            EXPECT_TRUE(actual == expected) << name << ", " << picture.width << "x" << picture.height;
        });
    }
}

// ---- the public functions ----

TEST(Canny, RefusesBadArguments)
{
    uint8_t src[64] = {}, dst[64];
    int16_t gradients[128];
    memset(dst, 77, sizeof dst);
    std::fill_n(gradients, 128, int16_t{77});
    const char* condition =
        "6 ravik_lib_log: Assertion failed @rvkFilterCanny3x3u8_v2: src && srcWidth && srcHeight && "
        "(srcStride >= srcWidth) && dst && (dstStride >= srcWidth)\n";
    const auto isLogged = [](const std::string& line, auto call) {
        clearLog();
        call();
        return logHas(line);
    };
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterCanny3x3u8_v2(nullptr, 8, 8, 8, dst, 8, 1, 2); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterCanny3x3u8_v2(src, 0, 8, 8, dst, 8, 1, 2); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterCanny3x3u8_v2(src, 8, 8, 7, dst, 8, 1, 2); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterCanny3x3u8_v2(src, 8, 8, 8, dst, 7, 1, 2); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterCanny3x3u8_v2(src, 32768, 32768, 0, dst, 0, 1, 2); }));
    EXPECT_TRUE(isLogged("6 ravik_lib_log: Assertion failed @rvkFilterCanny3x3u8: src && width && height && dst\n",
                         [&] { rvkFilterCanny3x3u8(src, 8, 0, dst, 1, 2); }));
    EXPECT_TRUE(isLogged("6 ravik_lib_log: Assertion failed @rvkFilterCanny3x3u8: src != dst\n",
                         [&] { rvkFilterCanny3x3u8(src, 8, 8, src, 1, 2); }));
    clearLog();
    EXPECT_EQ(rvkFilterCanny3x3u8_v3(src, 8, 8, 7, dst, 8, 1, 2), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCanny3x3u8_v3(src, 8, 8, 8, src, 8, 1, 2), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterCanny3x3u8_v3(src, 65536, 65536, 0, dst, 0, 1, 2), RAVIK_EBADPARAM);
    const auto detect = [&](uint32_t aperture, uint8_t* edges, int16_t* dx, int16_t* dy, uint32_t dxyStride) {
        return rvkFilterCannyu8(src, 8, 8, 8, aperture, 1, 2, 0, edges, 8, dx, dy, dxyStride);
    };
    EXPECT_EQ(detect(4, dst, gradients, gradients + 64, 16), RAVIK_EBADPARAM);
    EXPECT_EQ(detect(9, dst, gradients, gradients + 64, 16), RAVIK_EBADPARAM);
    EXPECT_EQ(detect(3, dst, nullptr, gradients, 16), RAVIK_EBADPARAM);
    EXPECT_EQ(detect(3, dst, gradients, nullptr, 16), RAVIK_EBADPARAM);
    EXPECT_EQ(detect(3, dst, gradients, gradients, 16), RAVIK_EBADPARAM);
    EXPECT_EQ(detect(3, dst, gradients, gradients + 64, 15), RAVIK_EBADPARAM);
    EXPECT_EQ(detect(3, src, gradients, gradients + 64, 16), RAVIK_EBADPARAM);
    EXPECT_TRUE(logLines.empty());
    EXPECT_TRUE(std::all_of(dst, dst + 64, [](uint8_t d) { return d == 77; }));
    EXPECT_TRUE(std::all_of(gradients, gradients + 128, [](int16_t g) { return g == 77; }));
    EXPECT_EQ(detect(7, dst, gradients, gradients + 64, 0), RAVIK_SUCCESS); // strides of 0: packed rows
    EXPECT_TRUE(std::all_of(gradients, gradients + 128, [](int16_t g) { return g == 0; }));
}

// Each scratch buffer fails in turn: nothing is written, nothing stays taken.
TEST(Canny, ReportsMissingScratchMemory)
{
    static int allowed, live;
    static const SystemAllocator system = systemAllocator;
    const uint8_t src[25] = {9};
    uint8_t dst[25];
    int16_t gradients[50];
    const auto expectFailures = [&](auto call) {
        rvkStatus status = RAVIK_ENORES;
        for (int allocations = 0; status == RAVIK_ENORES && allocations < 9; ++allocations) {
            memset(dst, 77, sizeof dst);
            std::fill_n(gradients, 50, int16_t{77});
            allowed = allocations;
            live = 0;
            systemAllocator = {[](size_t size) -> void* { return allowed-- > 0 ? ++live, malloc(size) : nullptr; },
                               [](void* block) {
                                   live -= block != nullptr;
                                   free(block);
                               }};
            status = call();
            systemAllocator = system;
            EXPECT_EQ(live, 0);
            const bool untouched = std::all_of(dst, dst + 25, [](uint8_t d) { return d == 77; }) &&
                                   std::all_of(gradients, gradients + 50, [](int16_t g) { return g == 77; });
            EXPECT_EQ(untouched, status == RAVIK_ENORES);
            EXPECT_TRUE(allocations > 0 || status == RAVIK_ENORES);
        }
        EXPECT_EQ(status, RAVIK_SUCCESS);
    };
    const auto small = [&](auto function) { expectFailures([&] { return function(src, 5, 5, 5, dst, 5, 1, 2); }); };
    const auto full = [&](auto function) {
        expectFailures([&] { return function(src, 5, 5, 5, 7, 1, 2, 0, dst, 5, gradients, gradients + 25, 10); });
    };
    small(rvkFilterCanny3x3u8_v3C);
    full(rvkFilterCannyu8C);
    forEachVecta<Slot::rvkFilterCanny3x3u8_v3>([&](const char*, auto function) { small(function); });
    forEachVecta<Slot::rvkFilterCannyu8>([&](const char*, auto function) { full(function); });
}

} // namespace

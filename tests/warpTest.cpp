#include "support/guarded.h"
#include "support/implementations.h"
#include "support/logCapture.h"
#include "support/windows.h"

#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

using Bytes = Picture<uint8_t>;

struct Rules
{
    uint32_t interpolation, borderType;
    uint8_t borderValue;
};

constexpr uint8_t kLeft = 77; // what stands in the destination before

// ---- real arithmetic ----

double pixelOr(const Bytes& src, double x, double y, const Rules& rules)
{
    if (rules.borderType == RAVIK_BORDER_REPLICATE)
        x = std::clamp(x, 0.0, src.width - 1.0), y = std::clamp(y, 0.0, src.height - 1.0);
    const bool exists = x >= 0 && y >= 0 && x < src.width && y < src.height;
    return exists ? src.at(static_cast<int>(x), static_cast<int>(y)) : rules.borderValue;
}

double sampled(const Bytes& src, double x, double y, const Rules& rules)
{
    if (!std::isfinite(x) || !std::isfinite(y))
        return rules.borderValue;
    if (rules.interpolation == RAVIK_INTERPOLATION_NEAREST)
        return pixelOr(src, std::floor(x + 0.5), std::floor(y + 0.5), rules);
    const double left = std::floor(x), top = std::floor(y), right = x - left, bottom = y - top;
    const auto along = [&](double row) {
        return (1 - right) * pixelOr(src, left, row, rules) + right * pixelOr(src, left + 1, row, rules);
    };
    return (1 - bottom) * along(top) + bottom * along(top + 1);
}

// ---- calls ----

Bytes warped(decltype(&rvkWarpPerspectiveu8_v4) function, const Bytes& src, int width, int height, const float* matrix,
             const Rules& rules)
{
    Bytes dst(width, height, kLeft);
    const GuardedMemory source = guardedCopy(src.pixels);
    EXPECT_EQ(function(source.data(), src.columns(), src.rows(), src.stride(), dst.pixels.data(), dst.columns(),
                       dst.rows(), dst.stride(), matrix, rules.interpolation, rules.borderType, rules.borderValue),
              RAVIK_SUCCESS);
    return dst;
}

Bytes remapped(decltype(&rvkRemapu8_v2) function, const Bytes& src, const Picture<float>& x, const Picture<float>& y,
               const Rules& rules)
{
    Bytes dst(x.width, x.height, kLeft);
    const GuardedMemory source = guardedCopy(src.pixels), mapX = guardedCopy(x.pixels), mapY = guardedCopy(y.pixels);
    const auto floats = [](const GuardedMemory& map) { return reinterpret_cast<const float*>(map.data()); };
    EXPECT_EQ(function(source.data(), src.columns(), src.rows(), src.stride(), dst.pixels.data(), dst.columns(),
                       dst.rows(), dst.stride(), floats(mapX), floats(mapY), x.stride(), rules.interpolation,
                       rules.borderType, rules.borderValue),
              RAVIK_SUCCESS);
    return dst;
}

Bytes randomBytes(Random& random, int width, int height)
{
    return pictureOf<uint8_t>(width, height, [&](int, int) { return random.below(256); });
}

float between(Random& random, float low, float high)
{
    return low + (high - low) * static_cast<float>(random.below(1 << 20)) / (1 << 20);
}

// A rotation, a scale and some perspective that take the middle of a picture to that of another.
std::vector<float> randomHomography(Random& random, int dstWidth, int dstHeight, const Bytes& src)
{
    const float angle = between(random, 0, 6.2f), scale = between(random, 0.3f, 1.5f);
    const float c = scale * std::cos(angle), s = scale * std::sin(angle);
    const float u = between(random, -0.002f, 0.002f), v = between(random, -0.002f, 0.002f);
    const float x0 = static_cast<float>(dstWidth) / 2, y0 = static_cast<float>(dstHeight) / 2;
    const float x1 = static_cast<float>(src.width) / 2, y1 = static_cast<float>(src.height) / 2;
    return {c, -s, x1 - c * x0 + s * y0, s, c, y1 - s * x0 - c * y0, u, v, 1};
}

TEST(Warp, IsWithinOneGreyLevelOfRealArithmetic)
{
    Random random(1);
    for (int trial = 0; trial < 60; ++trial) {
        const Bytes src =
            randomBytes(random, 1 + static_cast<int>(random.below(150)), 1 + static_cast<int>(random.below(90)));
        const int width = 1 + static_cast<int>(random.below(120)), height = 1 + static_cast<int>(random.below(60));
        const auto m = randomHomography(random, width, height, src);
        const Rules rules{RAVIK_INTERPOLATION_BILINEAR, 1 + random.below(2), static_cast<uint8_t>(random.below(256))};
        forEachImplementation<Slot::rvkWarpPerspectiveu8_v4>([&](const char* name, auto function) {
            const Bytes actual = warped(function, src, width, height, m.data(), rules);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const double w = double{m[6]} * x + double{m[7]} * y + m[8];
                    const double sx = (double{m[0]} * x + double{m[1]} * y + m[2]) / w;
                    const double sy = (double{m[3]} * x + double{m[4]} * y + m[5]) / w;
                    ASSERT_NEAR(actual.at(x, y), std::floor(sampled(src, sx, sy, rules) + 0.5), 1)
                        << name << ", (" << x << ", " << y << ") from (" << sx << ", " << sy << ")";
                }
        });
    }
}

// Whole pixels, whatever the scale of the matrix; and no neighbour that has no weight is needed.
TEST(Warp, TranslationsAreExact)
{
    Random random(2);
    for (int trial = 0; trial < 60; ++trial) {
        const Bytes src =
            randomBytes(random, 40 + static_cast<int>(random.below(90)), 1 + static_cast<int>(random.below(20)));
        const int left = static_cast<int>(random.below(9)) - 4, top = static_cast<int>(random.below(9)) - 4;
        const float scale = std::ldexp(1.0f, static_cast<int>(random.below(220)) - 110);
        const float m[9] = {scale, 0,    static_cast<float>(left) * scale, 0, scale, static_cast<float>(top) * scale, 0,
                            0,     scale};
        const Rules rules{random.below(2), random.below(3), 9};
        const Bytes expected = pictureOf<uint8_t>(70, 20, [&](int x, int y) {
            const bool isLeft = rules.borderType == RAVIK_BORDER_NONE && !src.has(x + left, y + top);
            return isLeft ? kLeft : pixelOr(src, x + left, y + top, rules);
        });
        forEachImplementation<Slot::rvkWarpPerspectiveu8_v4>([&](const char* name, auto function) {
            EXPECT_EQ(warped(function, src, 70, 20, m, rules), expected) << name << " by " << left << ", " << top;
        });
    }
}

// Exact values: halves are rounded up, edges are blended with the border, positions that are no numbers are outside.
TEST(Warp, WorkedPositions)
{
    constexpr float inf = INFINITY;
    struct Case
    {
        float x, y;
        uint8_t nearest[3], bilinear[3]; // none, constant 100, replicate
    };
    // 10 20
    // 31 40
    static constexpr Case cases[] = {
        {0, 0, {10, 10, 10}, {10, 10, 10}},
        {1, 1, {40, 40, 40}, {40, 40, 40}},
        {0.5f, 0, {20, 20, 20}, {15, 15, 15}},
        {0, 0.5f, {31, 31, 31}, {21, 21, 21}}, // 20.5
        {0.49f, 0.25f, {10, 10, 10}, {20, 20, 20}},
        {0.5f, 0.5f, {40, 40, 40}, {25, 25, 25}},
        {1.25f, 0, {20, 20, 20}, {kLeft, 40, 20}},
        {1.5f, 0, {kLeft, 100, 20}, {kLeft, 60, 20}},
        {-0.5f, 1, {31, 31, 31}, {kLeft, 66, 31}}, // 65.5
        {-0.75f, 1, {kLeft, 100, 31}, {kLeft, 83, 31}},
        {-1e-9f, 1e-40f, {10, 10, 10}, {10, 10, 10}},
        {2, 0, {kLeft, 100, 20}, {kLeft, 100, 20}},
        {1e30f, 1e30f, {kLeft, 100, 40}, {kLeft, 100, 40}},
        {inf, -inf, {kLeft, 100, 20}, {kLeft, 100, 20}},
        {NAN, 1, {kLeft, 100, 31}, {kLeft, 100, 31}},
        {-NAN, NAN, {kLeft, 100, 10}, {kLeft, 100, 10}},
    };
    Bytes src(2, 2);
    src.pixels = {10, 20, 31, 40};
    for (const Case& c : cases)
        for (uint32_t border = 0; border < 3; ++border)
            for (uint32_t interpolation = 0; interpolation < 2; ++interpolation)
                for (const int width : {1, 67}) // one pixel, and whole vectors
                    forEachImplementation<Slot::rvkRemapu8_v2>([&](const char* name, auto function) {
                        const Picture<float> x(width, 1, c.x), y(width, 1, c.y);
                        EXPECT_EQ(remapped(function, src, x, y, {interpolation, border, 100}),
                                  Bytes(width, 1, interpolation ? c.bilinear[border] : c.nearest[border]))
                            << name << ", (" << c.x << ", " << c.y << "), border " << border;
                    });
}

// The corners of a rectangle come from those of the quadrilateral that its matrix was made from.
TEST(Warp, QuadrilateralsBecomeRectangles)
{
    constexpr float quad[8] = {12, 9, 70, 14, 61, 50, 5, 41}, rectangle[8] = {0, 0, 47, 0, 47, 31, 0, 31};
    float m[9];
    ASSERT_EQ(rvkGetPerspectiveTransformf32(rectangle, quad, m), RAVIK_SUCCESS);
    const Bytes src = pictureOf<uint8_t>(80, 60, [&](int x, int y) { // the number of the corner around which a pixel is
        for (int i = 0; i < 4; ++i)
            if (std::hypot(quad[2 * i] - static_cast<float>(x), quad[2 * i + 1] - static_cast<float>(y)) < 2)
                return i + 1;
        return 0;
    });
    forEachImplementation<Slot::rvkWarpPerspectiveu8_v4>([&](const char* name, auto function) {
        const Bytes dst = warped(function, src, 48, 32, m, {1, RAVIK_BORDER_CONSTANT, 9});
        for (size_t i = 0; i < 4; ++i)
            EXPECT_EQ(dst.at(static_cast<int>(rectangle[2 * i]), static_cast<int>(rectangle[2 * i + 1])), i + 1)
                << name;
    });
}

TEST(Warp, SingularMatricesFollowTheBorderRule)
{
    Random random(3);
    const Bytes src = randomBytes(random, 50, 40);
    const float zero[9] = {}, vanishing[9] = {1, 0, 5, 0, 1, 5, 1, 0, -30}; // w = 0 at x = 30
    forEachImplementation<Slot::rvkWarpPerspectiveu8_v4>([&](const char* name, auto function) {
        EXPECT_EQ(warped(function, src, 60, 3, zero, {1, RAVIK_BORDER_CONSTANT, 9}), Bytes(60, 3, 9)) << name;
        EXPECT_EQ(warped(function, src, 60, 3, zero, {1, RAVIK_BORDER_NONE, 9}), Bytes(60, 3, kLeft)) << name;
        EXPECT_EQ(warped(function, src, 60, 3, vanishing, {1, RAVIK_BORDER_CONSTANT, 9}).at(30, 2), 9) << name;
    });
}

// The pictures of the single channels of interleaved pixels.
Bytes channelOf(const Bytes& pixels, int channels, int channel)
{
    return pictureOf<uint8_t>(pixels.width / channels, pixels.height,
                              [&](int x, int y) { return pixels.at(x * channels + channel, y); });
}

// Pixels of several bytes are sampled as their channels are, and planes together as alone; positions of a matrix may as
// well stand in maps.
TEST(Warp, ChannelsPlanesAndMapsAreAlike)
{
    Random random(4);
    for (int trial = 0; trial < 60; ++trial) {
        const int columns = 3 + static_cast<int>(random.below(trial % 2 ? 150 : 8)),
                  rows = 2 + static_cast<int>(random.below(60));
        const int width = 1 + static_cast<int>(random.below(100)), height = 10;
        const auto m = randomHomography(random, width, height, Bytes(columns, rows));
        const auto position = [&](size_t row) {
            return pictureOf<float>(width, height, [&, row](int x, int y) {
                const auto at = [&](size_t i) {
                    return m[i] * static_cast<float>(x) + (m[i + 1] * static_cast<float>(y) + m[i + 2]);
                };
                return at(3 * row) * (1 / at(6));
            });
        };
        const Picture<float> mapX = position(0), mapY = position(1);
        const uint32_t interpolation = random.below(2), border = random.below(3);
        const uint8_t values[] = {5, 80, 255, 7};
        const auto expectAlike = [&](const char* name, int channels, uint32_t borderType, const uint8_t* borderValues,
                                     auto call) {
            const Bytes src = randomBytes(random, columns * channels, rows);
            Bytes dst(width * channels, height, kLeft);
            call(src, dst);
            for (int c = 0; c < channels; ++c)
                EXPECT_EQ(channelOf(dst, channels, c),
                          warped(referenceOf<Slot::rvkWarpPerspectiveu8_v4>(), channelOf(src, channels, c), width,
                                 height, m.data(), {interpolation, borderType, borderValues[c]}))
                    << name << ", channel " << c << " of " << channels;
        };
        const auto w = static_cast<uint32_t>(width), h = static_cast<uint32_t>(height);
        const auto sw = static_cast<uint32_t>(columns), sh = static_cast<uint32_t>(rows);
        forEachImplementation<Slot::rvk3ChannelWarpPerspectiveu8_v2>([&](const char* name, auto function) {
            expectAlike(name, 3, border, values, [&](const Bytes& src, Bytes& dst) {
                function(src.pixels.data(), sw, sh, src.stride(), dst.pixels.data(), w, h, dst.stride(), m.data(),
                         interpolation, border, values);
            });
        });
        const auto remapRgba = [&](const char* name, auto function) {
            const uint8_t zeros[4] = {};
            expectAlike(name, 4, RAVIK_BORDER_CONSTANT, zeros, [&](const Bytes& src, Bytes& dst) {
                function(src.pixels.data(), sw, sh, src.stride(), dst.pixels.data(), w, h, dst.stride(),
                         mapX.pixels.data(), mapY.pixels.data(), mapX.stride());
            });
        };
        if (interpolation == RAVIK_INTERPOLATION_NEAREST)
            forEachImplementation<Slot::rvkRemapRGBA8888NNu8>(remapRgba);
        else
            forEachImplementation<Slot::rvkRemapRGBA8888BLu8>(remapRgba);
        const Bytes first = randomBytes(random, columns, rows), second = randomBytes(random, columns, rows);
        const Rules rules{interpolation, border, 80};
        const auto expected = [&](const Bytes& src) {
            return warped(referenceOf<Slot::rvkWarpPerspectiveu8_v4>(), src, width, height, m.data(), rules);
        };
        forEachImplementation<Slot::rvk2PlaneWarpPerspectiveu8>([&](const char* name, auto function) {
            Bytes dst1(width, height, kLeft), dst2(width, height, kLeft);
            function(first.pixels.data(), sw, sh, sw, second.pixels.data(), sw, dst1.pixels.data(), w, h, w,
                     dst2.pixels.data(), w, m.data(), interpolation, border, 80);
            EXPECT_EQ(dst1, expected(first)) << name;
            EXPECT_EQ(dst2, expected(second)) << name;
        });
        forEachImplementation<Slot::rvkRemapu8_v2>([&](const char* name, auto function) {
            EXPECT_EQ(remapped(function, first, mapX, mapY, rules), expected(first)) << name;
        });
    }
}

// Neighbours in a map may be far from each other in the picture, at its edges or anywhere else.
TEST(Warp, MapsMayJump)
{
    Random random(5);
    for (int trial = 0; trial < 40; ++trial) {
        const Bytes src =
            randomBytes(random, 8 + static_cast<int>(random.below(90)), 8 + static_cast<int>(random.below(40)));
        const float right = static_cast<float>(src.width - 1), bottom = static_cast<float>(src.height - 1);
        const float jumps[] = {0, -1e-9f, -0.75f, right, bottom, right - 0.25f, bottom + 0.5f, 1e30f, NAN, -INFINITY};
        const int width = 64 + static_cast<int>(random.below(80)), height = 4 + static_cast<int>(random.below(9));
        const float step = between(random, -2.5f, 2.5f);
        const auto map = [&](float end) {
            const float start = between(random, 0, end);
            return pictureOf<float>(width, height, [&, start](int x, int y) {
                return random.below(60) ? start + step * static_cast<float>(x % 16) + static_cast<float>(y % 4)
                                        : jumps[random.below(std::size(jumps))];
            });
        };
        const Picture<float> x = map(right), y = map(bottom);
        const Rules rules{random.below(2), random.below(3), 9};
        const Bytes expected = remapped(referenceOf<Slot::rvkRemapu8_v2>(), src, x, y, rules);
        forEachImplementation<Slot::rvkRemapu8_v2>([&](const char* name, auto function) {
            EXPECT_EQ(remapped(function, src, x, y, rules), expected) << name;
        });
    }
}

TEST(Warp, RefusedArguments)
{
    std::vector<uint8_t> pixels(8 * 8), dst(8 * 8, kLeft);
    const std::vector<float> map(8 * 8), identity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    const auto expectRefused = [&](rvkStatus status) {
        EXPECT_EQ(status, RAVIK_EBADPARAM);
        EXPECT_EQ(dst, std::vector<uint8_t>(8 * 8, kLeft));
    };
    const uint8_t* const src = pixels.data();
    const float* const m = identity.data();
    expectRefused(rvkWarpPerspectiveu8_v2(src, 65536, 1, 0, dst.data(), 8, 8, 0, m));
    expectRefused(rvkWarpPerspectiveu8_v2(src, 1, 65536, 0, dst.data(), 8, 8, 0, m));
    expectRefused(rvkWarpPerspectiveu8_v2(src, 8, 8, 0, dst.data(), (1 << 24) + 1, 1, 0, m));
    expectRefused(rvkRemapu8_v2(src, 8, 8, 0, dst.data(), 8, 8, 0, map.data(), map.data(), 31, 0, 0, 0));
    expectRefused(rvk2PlaneWarpPerspectiveu8(src, 8, 8, 0, dst.data(), 0, pixels.data() + 32, 8, 4, 0, dst.data(), 0, m,
                                             0, 0, 0)); // the second destination is the second source
}

#if RVK_TEST_OPENCV

// OpenCV rounds positions to 1/32 of a pixel, which on a soft picture is less than two grey levels.
TEST(Warp, AgreesWithOpenCv)
{
    const int width = 640, height = 480;
    const Bytes src = pictureOf<uint8_t>(width, height, [](int x, int y) {
        return 127.5 + 60 * std::sin(x * 0.11) + 60 * std::cos(y * 0.07 + x * 0.02);
    });
    const float m[9] = {0.9f, -0.2f, 50, 0.15f, 0.95f, -20, 1e-4f, -5e-5f, 1};
    const cv::Mat in(height, width, CV_8U, const_cast<uint8_t*>(src.pixels.data()));
    const cv::Mat matrix(3, 3, CV_32F, const_cast<float*>(m));
    cv::Mat warpedByCv, remappedByCv;
    cv::warpPerspective(in, warpedByCv, matrix, in.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_CONSTANT,
                        90);
    const auto mapX = pictureOf<float>(width, height, [](int x, int y) { return x + 9 * std::sin(y * 0.03) - 4; });
    const auto mapY = pictureOf<float>(width, height, [](int x, int y) { return y + 9 * std::cos(x * 0.02); });
    const auto map = [](const Picture<float>& p) {
        return cv::Mat(p.height, p.width, CV_32F, const_cast<float*>(p.pixels.data()));
    };
    cv::remap(in, remappedByCv, map(mapX), map(mapY), cv::INTER_LINEAR, cv::BORDER_CONSTANT, 90);
    const auto expectNear = [&](const Bytes& actual, const cv::Mat& expected) {
        int far = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                far += std::abs(actual.at(x, y) - expected.at<uint8_t>(y, x)) > 2;
        EXPECT_LE(far, width * height / 1000);
    };
    const Rules rules{RAVIK_INTERPOLATION_BILINEAR, RAVIK_BORDER_CONSTANT, 90};
    expectNear(warped(rvkWarpPerspectiveu8_v4, src, width, height, m, rules), warpedByCv);
    expectNear(remapped(rvkRemapu8_v2, src, mapX, mapY, rules), remappedByCv);
}

#endif

} // namespace

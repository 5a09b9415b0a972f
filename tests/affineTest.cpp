#include "support/windows.h"

#include <ravik/affine.h>

#include <array>
#include <cmath>

using namespace test;

namespace {

float uniform(Random& random, float low, float high)
{
    return low + (high - low) * static_cast<float>(random.below(1 << 24)) / static_cast<float>(1 << 24);
}

// ---- transforms from points, inverses ----

using Points = std::array<float, 8>;

TEST(Affine, PerspectiveTransformsMapTheirPoints)
{
    Random random(1);
    for (int trial = 0; trial < 2000; ++trial) {
        const float far = trial % 2 ? 1e5f : 0, size = trial % 3 || far > 0 ? 500 : 0.01f;
        Points src, dst;
        for (size_t i = 0; i < 8; ++i) { // corners of squares that are not quite ones
            const float corner = i == 2 || i == 4 || i == 5 || i == 7;
            src[i] = far + size * (corner + uniform(random, -0.2f, 0.2f));
            dst[i] = 100 * (corner + uniform(random, -0.2f, 0.2f));
        }
        float matrix[9];
        ASSERT_EQ(rvkGetPerspectiveTransformf32(src.data(), dst.data(), matrix), RAVIK_SUCCESS);
        EXPECT_EQ(matrix[8], 1);
        if (far > 0)
            continue; // where a matrix of floats has not the digits to tell the points apart
        for (size_t i = 0; i < 8; i += 2) {
            const auto row = [&](size_t j) { return matrix[j] * src[i] + matrix[j + 1] * src[i + 1] + matrix[j + 2]; };
            EXPECT_NEAR(row(0) / row(6), dst[i], 0.01f);
            EXPECT_NEAR(row(3) / row(6), dst[i + 1], 0.01f);
        }
    }
}

TEST(Affine, PerspectiveTransformsThatAreNoneAreRefused)
{
    const Points square = {0, 0, 8, 0, 8, 8, 0, 8}, onLine = {0, 0, 1, 2, 3, 6, 5, 1}, same = {0, 0, 8, 0, 8, 8, 8, 8};
    const Points notFinite = {0, 0, 8, NAN, 8, 8, 0, 8}, infinite = {0, 0, 8, 0, 8, INFINITY, 0, 8};
    const auto expectStatus = [](rvkStatus expected, const Points& src, const Points& dst) {
        std::array<float, 9> matrix;
        matrix.fill(7);
        EXPECT_EQ(rvkGetPerspectiveTransformf32(src.data(), dst.data(), matrix.data()), expected);
        EXPECT_EQ(matrix[0] == 7, expected != RAVIK_SUCCESS) << "written, or not";
    };
    expectStatus(RAVIK_SUCCESS, square, square);
    for (const Points& wrong : {onLine, same, notFinite, infinite}) {
        expectStatus(RAVIK_EFAIL, wrong, square);
        expectStatus(RAVIK_EFAIL, square, wrong);
    }
    // x' = 1 / x, y' = y / x: nothing is where 0 goes to.
    expectStatus(RAVIK_EFAIL, {1, 0, 2, 0, 1, 1, 2, 2}, {1, 0, 0.5f, 0, 1, 1, 0.5f, 1});
}

TEST(Affine, InversesUndoTheTransform)
{
    Random random(2);
    for (int trial = 0; trial < 1000; ++trial) {
        float m[6], inverse[6];
        for (float& element : m)
            element = uniform(random, -3, 3);
        if (std::fabs(m[0] * m[4] - m[1] * m[3]) < 0.1f)
            continue;
        ASSERT_EQ(rvkInvertAffineTransformf32(m, inverse), RAVIK_SUCCESS);
        const float x = uniform(random, -9, 9), y = uniform(random, -9, 9);
        const float u = m[0] * x + m[1] * y + m[2], v = m[3] * x + m[4] * y + m[5];
        EXPECT_NEAR(inverse[0] * u + inverse[1] * v + inverse[2], x, 0.01f);
        EXPECT_NEAR(inverse[3] * u + inverse[4] * v + inverse[5], y, 0.01f);
        EXPECT_EQ(rvkInvertAffineTransformf32(m, m), RAVIK_SUCCESS);
        EXPECT_TRUE(std::equal(m, m + 6, inverse)) << "in place";
    }
    float untouched[6] = {7, 7, 7, 7, 7, 7};
    for (const std::array<float, 6>& m : {std::array<float, 6>{1, 2, 0, 2, 4, 0},
                                          {0, 0, 1, 0, 0, 1},
                                          {1, 0, INFINITY, 0, 1, 0},
                                          {NAN, 0, 0, 0, 1, 0},
                                          {1e-39f, 0, 1, 0, 1e-39f, 1}})
        EXPECT_EQ(rvkInvertAffineTransformf32(m.data(), untouched), RAVIK_EFAIL);
    EXPECT_TRUE(std::all_of(untouched, untouched + 6, [](float f) { return f == 7; }));
}

// ---- depth ----

// The lens in double precision, beside all implementations; but where a position is about halfway between two pixels.
TEST(Affine, DepthIsThatOfTheDisparityWhereTheLensPutIt)
{
    Random random(3);
    for (int trial = 0; trial < 12; ++trial) {
        const int width = 1 + static_cast<int>(random.below(trial % 2 ? 300 : 40)),
                  height = 1 + static_cast<int>(random.below(30));
        auto src =
            pictureOf<float>(width, height, [&](int, int) { return random.below(5) ? uniform(random, 0, 64) : 0; });
        src.pixels[0] = -3, src.pixels.back() = NAN;
        const float camera[4] = {uniform(random, 50, 90), uniform(random, 50, 90), uniform(random, 0, 200),
                                 uniform(random, 0, 30)};
        const bool hasLens = trial > 0;
        float lens[5] = {};
        for (float& number : lens)
            number = hasLens ? uniform(random, -0.05f, 0.05f) : 0;
        const float baseline = uniform(random, 0.1f, 3);
        forEachImplementation<Slot::rvkUndistortDisparityConvertDepthf32>([&](const char* name, auto function) {
            const auto depth = filtered<float>(function, src, camera, hasLens ? lens : nullptr, baseline);
            for (int j = 0; j < height; ++j)
                for (int i = 0; i < width; ++i) {
                    const double x = (i - double{camera[2]}) / camera[0], y = (j - double{camera[3]}) / camera[1],
                                 r2 = x * x + y * y;
                    const double radial = 1 + lens[0] * r2 + lens[1] * std::pow(r2, 2) + lens[4] * std::pow(r2, 3);
                    const double u =
                        camera[0] * (x * radial + 2 * lens[2] * x * y + lens[3] * (r2 + 2 * x * x)) + camera[2];
                    const double v =
                        camera[1] * (y * radial + lens[2] * (r2 + 2 * y * y) + 2 * lens[3] * x * y) + camera[3];
                    const auto isHalfway = [](double p) { return std::fabs(p + 0.5 - std::round(p + 0.5)) < 1e-3; };
                    if (isHalfway(u) || isHalfway(v))
                        continue;
                    const int column = static_cast<int>(std::floor(u + 0.5)),
                              row = static_cast<int>(std::floor(v + 0.5));
                    const float disparity = src.has(column, row) ? src.at(column, row) : 0;
                    const float expected = disparity > 0 ? camera[0] * baseline / disparity : 0;
                    ASSERT_EQ(depth.at(i, j), expected) << name << ", column " << i << " of row " << j;
                }
        });
    }
}

// Cameras and lenses that are no numbers see nothing; disparities have their quotients, however small or large.
TEST(Affine, DepthOfExtremes)
{
    const auto src = pictureOf<float>(20, 2, [](int x, int) {
        constexpr float values[] = {1, INFINITY, NAN, 1e-30f, 1e30f, -0.0f, -1};
        return values[x % 7];
    });
    const float straight[4] = {4, 4, 10, 1};
    forEachImplementation<Slot::rvkUndistortDisparityConvertDepthf32>([&](const char* name, auto function) {
        const auto depth = filtered<float>(function, src, straight, nullptr, 2.0f);
        const float expected[] = {8, 0, 0, 8 / 1e-30f, 8 / 1e30f, 0, 0};
        for (int x = 0; x < 20; ++x)
            EXPECT_EQ(depth.at(x, 1), expected[x % 7]) << name << ", column " << x;
        for (const float wrong : {NAN, INFINITY, -INFINITY, 1e38f})
            for (int element = 0; element < 9; ++element) {
                float camera[4] = {4, 4, 10, 1}, lens[5] = {};
                (element < 4 ? camera[element] : lens[element - 4]) = wrong;
                const auto nothing = filtered<float>(function, src, camera, lens, 2.0f);
                if (!std::isfinite(wrong)) {
                    EXPECT_EQ(nothing, Picture<float>(20, 2)) << name << ", element " << element << " is " << wrong;
                }
            }
    });
}

} // namespace

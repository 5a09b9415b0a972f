#include "support/logCapture.h"
#include "support/windows.h"

#include <cmath>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

// ---- the references ----

// Regions with noise, single outliers and an edge: what the filter is for.
Picture<uint8_t> noisyRegions(Random& random, int width, int height, uint32_t noise)
{
    return pictureOf<uint8_t>(width, height, [&](int x, int y) {
        const uint32_t region = x < width / 2 ? 60 : y < height / 2 ? 110 : 190;
        return random.below(50) ? region + random.below(noise + 1) - noise / 2 : random.below(256);
    });
}

using Filter = decltype(rvkBilateralFilter5x5u8_v2);

// The mean with the true weights.
double trueMean(const Picture<uint8_t>& src, int radius, double sigmaColor, double sigmaSpace, int x, int y)
{
    double sum = 0, total = 0;
    for (int v = y - radius; v <= y + radius; ++v)
        for (int u = x - radius; u <= x + radius; ++u) {
            if (!src.has(u, v) || std::hypot(u - x, v - y) > radius)
                continue;
            const double far = std::hypot(u - x, v - y) / sigmaSpace;
            const double different = (src.at(u, v) - src.at(x, y)) / sigmaColor;
            const double weight = std::exp(-(far * far + different * different) / 2);
            sum += weight * src.at(u, v);
            total += weight;
        }
    return sum / total;
}

void expectTrueMeans(Filter* filter, int radius, const Picture<uint8_t>& src, float sigmaColor, float sigmaSpace)
{
    const auto dst = filtered<uint8_t>(filter, src, sigmaColor, sigmaSpace);
    for (int y = 0; y < src.height; ++y)
        for (int x = 0; x < src.width; ++x)
            ASSERT_NEAR(dst.at(x, y), std::round(trueMean(src, radius, sigmaColor, sigmaSpace, x, y)), 1)
                << "radius " << radius << ", sigmas " << sigmaColor << " and " << sigmaSpace << ", at " << x << ", "
                << y << " of " << src.width << "x" << src.height;
}

TEST(Bilateral, ReferenceIsTheMeanWithGaussianWeights)
{
    Random random(7);
    for (int trial = 0; trial < 60; ++trial) {
        const int width = 9 + static_cast<int>(random.below(20)), height = 9 + static_cast<int>(random.below(20));
        const auto src = trial % 2 ? randomPicture<uint8_t>(random, width, height)
                                   : noisyRegions(random, width, height, random.below(60));
        // From sigmas that keep everything to such that nearly make it a mean.
        const float sigmaColor = std::exp2(static_cast<float>(random.below(90)) / 10 - 1);
        const float sigmaSpace = std::exp2(static_cast<float>(random.below(60)) / 10 - 1);
        expectTrueMeans(rvkBilateralFilter5x5u8_v2C, 2, src, sigmaColor, sigmaSpace);
        expectTrueMeans(rvkBilateralFilter7x7u8_v2C, 3, src, sigmaColor, sigmaSpace);
        expectTrueMeans(rvkBilateralFilter9x9u8_v2C, 4, src, sigmaColor, sigmaSpace);
        if (HasFatalFailure())
            return;
    }
}

// One pixel among equal ones: with few differences the weight alone decides.
TEST(Bilateral, WeightsAreGaussian)
{
    for (const float sigmaColor : {0.3f, 1.0f, 2.5f, 7.0f, 25.0f, 80.0f, 300.0f, 2048.0f})
        for (int difference = 0; difference < 256; ++difference) {
            Picture<uint8_t> src(5, 5, static_cast<uint8_t>(difference));
            src.at(2, 2) = 0;
            const double weight = std::exp(-difference * difference / (2.0 * sigmaColor * sigmaColor));
            const double expected = difference * 12 * weight / (1 + 12 * weight);
            const uint8_t pixel = filtered<uint8_t>(rvkBilateralFilter5x5u8_v2C, src, sigmaColor, 1e6f).at(2, 2);
            // A weight that is off by 0.001 moves the mean by this much; half a level is rounding.
            const double slack = 0.5 + difference * 12 * 0.001 / std::pow(1 + 12 * weight, 2);
            ASSERT_NEAR(pixel, expected, slack) << "difference " << difference << ", sigma " << sigmaColor;
        }
}

#if RVK_TEST_OPENCV
// Inside the picture: outside it OpenCV continues the picture.
TEST(Bilateral, AgreesWithOpenCv)
{
    Random random(12);
    const auto expectAgreement = [](Filter* filter, int radius, Picture<uint8_t> src, float sigmaColor,
                                    float sigmaSpace) {
        const auto ours = filtered<uint8_t>(filter, src, sigmaColor, sigmaSpace);
        cv::Mat theirs;
        cv::bilateralFilter(cv::Mat(src.height, src.width, CV_8U, src.pixels.data()), theirs, 2 * radius + 1,
                            static_cast<double>(sigmaColor), static_cast<double>(sigmaSpace));
        for (int y = radius; y < src.height - radius; ++y)
            for (int x = radius; x < src.width - radius; ++x)
                ASSERT_NEAR(ours.at(x, y), theirs.at<uint8_t>(y, x), 1)
                    << "radius " << radius << ", sigmas " << sigmaColor << " and " << sigmaSpace;
    };
    for (const float sigmaColor : {5.0f, 25.0f, 100.0f})
        for (const float sigmaSpace : {0.7f, 2.0f, 50.0f}) {
            const auto src = noisyRegions(random, 120, 80, 50);
            expectAgreement(rvkBilateralFilter5x5u8_v2, 2, src, sigmaColor, sigmaSpace);
            expectAgreement(rvkBilateralFilter7x7u8_v2, 3, src, sigmaColor, sigmaSpace);
            expectAgreement(rvkBilateralFilter9x9u8_v2, 4, src, sigmaColor, sigmaSpace);
        }
}
#endif

TEST(Bilateral, TinySigmasChangeNothingAndHugeOnesDoNotOverflow)
{
    const Picture<uint8_t> flat(9, 9, 255);
    EXPECT_EQ(filtered<uint8_t>(rvkBilateralFilter9x9u8_v2C, flat, 5000.0f, 1e30f), flat);
    Random random(9);
    const auto src = randomPicture<uint8_t>(random, 12, 10);
    for (const float tiny : {1e-45f, 1e-30f, 0.05f}) {
        EXPECT_EQ(filtered<uint8_t>(rvkBilateralFilter5x5u8_v2C, src, tiny, 2.0f), src);
        EXPECT_EQ(filtered<uint8_t>(rvkBilateralFilter5x5u8_v2C, src, 50.0f, tiny), src);
    }
}

TEST(Bilateral, FormsWithoutSigmasHaveTheDocumentedOnes)
{
    Random random(10);
    const auto src = noisyRegions(random, 30, 20, 40);
    const auto expectSigmas = [&](auto filter, Filter* withSigmas, float sigmaSpace) {
        const auto dst = filtered<uint8_t>(filter, src);
        EXPECT_EQ(dst, filtered<uint8_t>(withSigmas, src, 25.0f, sigmaSpace));
        EXPECT_NE(dst, filtered<uint8_t>(withSigmas, src, 26.0f, sigmaSpace));
    };
    expectSigmas(rvkBilateralFilter5x5u8, rvkBilateralFilter5x5u8_v2, 1);
    expectSigmas(rvkBilateralFilter7x7u8, rvkBilateralFilter7x7u8_v2, 1.5f);
    expectSigmas(rvkBilateralFilter9x9u8, rvkBilateralFilter9x9u8_v2, 2);
}

// ---- the recursive filter ----

// e(x) of the header.
float fastExp(float x)
{
    const auto bits = static_cast<uint32_t>((std::fmax(x * 1.442695f, -126.0f) + 126.942696f) * 8388608.0f);
    float result;
    memcpy(&result, &bits, sizeof result);
    return result;
}

// One way along a line, in double precision but for the weights.
std::vector<double> oneWay(const std::vector<double>& values, const std::vector<int>& pixels, double space, float sigma)
{
    std::vector<double> y{values[0]};
    for (size_t i = 1; i < values.size(); ++i) {
        const auto difference = static_cast<float>(std::abs(pixels[i] - pixels[i - 1]));
        const double w = space * static_cast<double>(fastExp(-difference / (sigma * 255)));
        y.push_back(w * y.back() + (1 - w) * values[i]);
    }
    return y;
}

std::vector<double> bothWays(std::vector<double> values, std::vector<int> pixels, float sigmaColor, float sigmaSpace)
{
    const double space = static_cast<double>(fastExp(-1.4142f / (static_cast<float>(values.size()) * sigmaSpace)));
    std::vector<double> result = oneWay(values, pixels, space, sigmaColor);
    std::reverse(values.begin(), values.end());
    std::reverse(pixels.begin(), pixels.end());
    const std::vector<double> back = oneWay(values, pixels, space, sigmaColor);
    for (size_t i = 0; i < result.size(); ++i)
        result[i] = (result[i] + back[result.size() - 1 - i]) / 2;
    return result;
}

TEST(Bilateral, RecursiveReferenceFollowsItsFormula)
{
    Random random(11);
    for (int trial = 0; trial < 60; ++trial) {
        const int width = 1 + static_cast<int>(random.below(30)), height = 1 + static_cast<int>(random.below(30));
        const auto src =
            trial % 2 ? randomPicture<uint8_t>(random, width, height) : noisyRegions(random, width, height, 30);
        const float sigmaColor = std::exp2(static_cast<float>(random.below(80)) / 10 - 7);
        const float sigmaSpace = std::exp2(static_cast<float>(random.below(80)) / 10 - 7);
        std::vector<std::vector<double>> rows;
        for (int y = 0; y < src.height; ++y) {
            const auto begin = src.pixels.begin() + y * src.width;
            rows.push_back(bothWays({begin, begin + src.width}, {begin, begin + src.width}, sigmaColor, sigmaSpace));
        }
        const auto dst = filtered<uint8_t>(rvkBilateralFilterRecursiveu8C, src, sigmaColor, sigmaSpace);
        for (int x = 0; x < src.width; ++x) {
            std::vector<double> values;
            std::vector<int> pixels;
            for (int y = 0; y < src.height; ++y) {
                values.push_back(rows[static_cast<size_t>(y)][static_cast<size_t>(x)]);
                pixels.push_back(src.at(x, y));
            }
            values = bothWays(values, pixels, sigmaColor, sigmaSpace);
            for (int y = 0; y < src.height; ++y)
                ASSERT_NEAR(dst.at(x, y), values[static_cast<size_t>(y)], 0.501)
                    << width << "x" << height << " at " << x << ", " << y;
        }
    }
}

TEST(Bilateral, VectaEqualsReferenceForSigmasFarOut)
{
    const auto drawSigmas = [](Random& random, const auto&) {
        static constexpr float colors[] = {25, 1e-30f, 0.5f, 3, 60, 250, 5000, 3e38f};
        static constexpr float spaces[] = {1, 1e-30f, 0.4f, 2.5f, 10, 3e38f};
        return std::tuple(colors[random.below(8)], spaces[random.below(6)]);
    };
    expectVectaEqualsReference<Slot::rvkBilateralFilter5x5u8_v2, uint8_t>(5, drawSigmas);
    expectVectaEqualsReference<Slot::rvkBilateralFilter7x7u8_v2, uint8_t>(7, drawSigmas);
    expectVectaEqualsReference<Slot::rvkBilateralFilter9x9u8_v2, uint8_t>(9, drawSigmas);
    expectVectaEqualsReference<Slot::rvkBilateralFilterRecursiveu8, uint8_t>(1, [](Random& random, const auto&) {
        static constexpr float sigmas[] = {0.1f, 1e-30f, 0.01f, 0.5f, 20, 3e38f};
        const float sigmaColor = sigmas[random.below(6)];
        return std::tuple(sigmaColor, sigmas[random.below(6)]);
    });
}

TEST(Bilateral, SigmasMustBePositiveNumbers)
{
    const uint8_t src[100] = {9};
    uint8_t dst[100] = {77};
    for (const float bad : {0.0f, -1.0f, INFINITY, -INFINITY, NAN}) {
        for (const auto filter : {rvkBilateralFilter5x5u8_v2, rvkBilateralFilter7x7u8_v2, rvkBilateralFilter9x9u8_v2,
                                  rvkBilateralFilterRecursiveu8}) {
            EXPECT_EQ(filter(src, 10, 10, 10, dst, 10, bad, 2), RAVIK_EBADPARAM);
            EXPECT_EQ(filter(src, 10, 10, 10, dst, 10, 25, bad), RAVIK_EBADPARAM);
        }
    }
    EXPECT_EQ(dst[0], 77);
}

} // namespace

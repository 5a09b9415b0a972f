#include "support/blurs.h"
#include "support/logCapture.h"

#include <array>
#include <cmath>
#include <numeric>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

// What a function makes of a picture, `width` x `height` pixels.
template <class T, class Function>
Picture<T> scaled(Function function, const Picture<T>& src, int width, int height)
{
    Picture<T> dst(width, height, T{77});
    function(src.pixels.data(), src.columns(), src.rows(), src.stride(), dst.pixels.data(), dst.stride());
    return dst;
}

// Every implementation makes `expected(picture)` of random pictures from least x least pixels on.
template <auto slot, class T, class Expected>
void expectScaled(int least, Expected expected)
{
    Random random(static_cast<uint32_t>(slot));
    for (int trial = 0; trial < 40 && !::testing::Test::HasFailure(); ++trial) {
        const int width = least + static_cast<int>(random.below(trial % 2 ? 12 : 400));
        const int height = least + static_cast<int>(random.below(trial % 3 ? 6 : 75));
        const Picture<T> src = randomPicture<T>(random, width, height);
        const Picture<T> wanted = expected(src);
        forEachImplementation<slot>([&](const char* name, auto function) {
            EXPECT_EQ(scaled(function, src, wanted.width, wanted.height), wanted)
                << nameOf(slot) << " on " << name << ", " << width << "x" << height;
        });
    }
}

// ---- blocks ----

Picture<uint8_t> blockMeans(const Picture<uint8_t>& src, int size)
{
    return pictureOf<uint8_t>(src.width / size, src.height / size, [&](int x, int y) {
        const auto block = windowOf(src, x * size + size / 2, y * size + size / 2, size, size, Beyond::constant);
        return std::accumulate(block.begin(), block.end(), 0) / (size * size);
    });
}

TEST(Scale, HalvesAndQuartersAreMeansOfBlocksRoundedDown)
{
    expectScaled<Slot::rvkScaleDownBy2u8, uint8_t>(2, [](const auto& src) { return blockMeans(src, 2); });
    expectScaled<Slot::rvkScaleDownBy2u8_v2, uint8_t>(2, [](const auto& src) { return blockMeans(src, 2); });
    expectScaled<Slot::rvkScaleDownBy4u8, uint8_t>(4, [](const auto& src) { return blockMeans(src, 4); });
    expectScaled<Slot::rvkScaleDownBy4u8_v2, uint8_t>(4, [](const auto& src) { return blockMeans(src, 4); });
    const uint8_t src[] = {1, 2, 9, 3, 3, 9, 9, 9, 9};
    uint8_t dst[2] = {0, 77};
    EXPECT_EQ(rvkScaleDownBy2u8(src, 3, 3, 0, dst, 0), 0);
    EXPECT_EQ(dst[0], 2); // 9 / 4
    EXPECT_EQ(rvkScaleDownBy2u8(src, 1, 9, 0, dst, 0), -1);
    EXPECT_EQ(rvkScaleDownBy4u8(src, 3, 3, 0, dst, 0), -1);
    EXPECT_EQ(dst[1], 77);
}

TEST(Scale, TwoOfThreeWeighTheCornersOfBlocks)
{
    expectScaled<Slot::rvkScaleDown3To2u8, uint8_t>(3, [](const auto& src) {
        return pictureOf<uint8_t>(src.width / 3 * 2, src.height / 3 * 2, [&](int x, int y) {
            int sum = 0; // of the 3x3 pixels of the block, the nearer weighing 3, the farther 1, in each direction
            for (int j = 0; j < 3; ++j)
                for (int i = 0; i < 3; ++i) {
                    const auto weight = [](int at, int end) { return at == end ? 3 : at == 1 ? 1 : 0; };
                    sum += weight(i, x % 2 * 2) * weight(j, y % 2 * 2) * src.at(x / 2 * 3 + i, y / 2 * 3 + j);
                }
            return sum / 16;
        });
    });
    Picture<uint8_t> corner(3, 3);
    corner.at(0, 0) = 16;
    EXPECT_EQ(scaled(referenceOf<Slot::rvkScaleDown3To2u8>(), corner, 2, 2).pixels, (std::vector<uint8_t>{9, 0, 0, 0}));
}

template <Slot slot, size_t size>
void expectRepeated(int across, int down)
{
    using Pixel = std::array<uint8_t, size>;
    Random random(9);
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(7, 3), std::pair(200, 2)}) {
        Picture<Pixel> src(width, height), dst(width * across, height * down);
        for (Pixel& pixel : src.pixels)
            for (uint8_t& byte : pixel)
                byte = static_cast<uint8_t>(random.next());
        forEachImplementation<slot>([&, w = width, h = height](const char* name, auto function) {
            function(src.pixels[0].data(), static_cast<uint32_t>(w), static_cast<uint32_t>(h), src.stride(),
                     dst.pixels[0].data(), dst.stride());
            EXPECT_EQ(
                dst, pictureOf<Pixel>(w * across, h * down, [&](int x, int y) { return src.at(x / across, y / down); }))
                << nameOf(slot) << " on " << name;
        });
    }
}

TEST(Scale, UpsamplingRepeatsPixels)
{
    expectRepeated<Slot::rvkUpsampleVerticalu8, 1>(1, 2);
    expectRepeated<Slot::rvkUpsampleHorizontalu8, 1>(2, 1);
    expectRepeated<Slot::rvkUpsample2Du8, 1>(2, 2);
    expectRepeated<Slot::rvkUpsampleVerticalInterleavedu8, 2>(1, 2);
    expectRepeated<Slot::rvkUpsampleHorizontalInterleavedu8, 2>(2, 1);
    expectRepeated<Slot::rvkUpsample2DInterleavedu8, 2>(2, 2);
}

// ---- binomial means at every second pixel ----

float reciprocalOf(int64_t weights)
{
    return 1.0f / static_cast<float>(weights);
}

Picture<uint8_t> binomialHalf(const Picture<uint8_t>& src, int size)
{
    const std::vector<int> weights = productWeights(binomials(size - 1), binomials(size - 1));
    const Picture<uint8_t> ones(src.width, src.height, 1);
    return pictureOf<uint8_t>(src.width / 2, src.height / 2, [&](int x, int y) {
        const auto sumOf = [&](const auto& p) {
            return weightedSum(windowOf(p, 2 * x, 2 * y, size, size, Beyond::constant), weights);
        };
        const int64_t sum = sumOf(src), existing = sumOf(ones);
        const double mean = std::floor(0.5 + static_cast<double>(sum) * static_cast<double>(reciprocalOf(existing)));
        EXPECT_LE(std::abs(mean - static_cast<double>(sum) / static_cast<double>(existing)), 0.50001);
        return mean;
    });
}

TEST(Scale, GaussianHalvesAreMeansOfWindows)
{
    expectScaled<Slot::rvkScaleDownBy2Gaussian3x3u8, uint8_t>(2, [](const auto& src) { return binomialHalf(src, 3); });
    expectScaled<Slot::rvkScaleDownBy2Gaussian5x5u8_v2, uint8_t>(2,
                                                                 [](const auto& src) { return binomialHalf(src, 5); });
    EXPECT_EQ(reciprocalOf(121), 0.0082644625f);
    EXPECT_EQ(reciprocalOf(176), 0.0056818184f);
}

TEST(Scale, GaussianHalvesOfFloatsAreMeansOfWindowsInThisOrder)
{
    const auto add = [](float a, float b, float c, float d, float e) {
        volatile float ends = a + e, next = b + d, fours = 4 * next, sixes = 6 * c, most = ends + fours;
        return most + sixes;
    };
    const auto half = [=](const Picture<float>& src) {
        const Picture<uint8_t> ones(src.width, src.height, 1);
        const std::vector<int> weights = productWeights(binomials(4), binomials(4));
        return pictureOf<float>(src.width / 2, src.height / 2, [&](int x, int y) {
            const auto p = windowOf(src, 2 * x, 2 * y, 5, 5, Beyond::constant);
            const auto row = [&](size_t i) { return add(p[i], p[i + 1], p[i + 2], p[i + 3], p[i + 4]); };
            const int64_t existing = weightedSum(windowOf(ones, 2 * x, 2 * y, 5, 5, Beyond::constant), weights);
            return add(row(0), row(5), row(10), row(15), row(20)) * reciprocalOf(existing);
        });
    };
    expectScaled<InternalSlot::rvkScaleDownBy2Gaussian5x5f32_v2, float>(2, half);

    Random random(3);
    const auto src = randomPicture<float>(random, 90, 42);
    forEachImplementation<InternalSlot::rvkScaleDownBy2Gaussian5x5f32>([&](const char* name, auto function) {
        Picture<float> dst(45, 21);
        function(src.pixels.data(), 90, 42, dst.pixels.data());
        EXPECT_EQ(dst, half(src)) << name;
    });
    float untouched[4] = {9, 9, 9, 9};
    for (const auto& [width, height] : {std::pair(3u, 2u), std::pair(2u, 3u), std::pair(0u, 2u)}) {
        clearLog();
        rvkScaleDownBy2Gaussian5x5f32(src.pixels.data(), width, height, untouched);
        EXPECT_TRUE(
            logHas("6 ravik_lib_log: Assertion failed @rvkScaleDownBy2Gaussian5x5f32: srcImg && width && height "
                   "&& ((width & 1) == 0 ) && ((height & 1) == 0)\n"));
    }
    rvkScaleDownBy2Gaussian5x5f32(src.pixels.data(), 4, 2, nullptr);
    EXPECT_EQ(std::count(untouched, untouched + 4, 9.0f), 4);
}

// A binomial window on the pixels set two apart, with nothing between them and beyond the edges.
TEST(Scale, GaussianDoublesInterpolate)
{
    expectScaled<Slot::rvkScaleUpBy2Gaussian5x5u8_v2, uint8_t>(1, [](const auto& src) {
        const auto spread = [&](const auto& p) {
            return pictureOf<uint8_t>(2 * src.width, 2 * src.height,
                                      [&](int x, int y) { return x % 2 || y % 2 ? 0 : p.at(x / 2, y / 2); });
        };
        const auto pixels = spread(src), ones = spread(Picture<uint8_t>(src.width, src.height, 1));
        const std::vector<int> weights = productWeights(binomials(4), binomials(4));
        return pictureOf<uint8_t>(2 * src.width, 2 * src.height, [&](int x, int y) {
            const auto sumOf = [&](const auto& p) {
                return weightedSum(windowOf(p, x, y, 5, 5, Beyond::constant), weights);
            };
            return std::floor(0.5 +
                              static_cast<double>(sumOf(pixels)) * static_cast<double>(reciprocalOf(sumOf(ones))));
        });
    });
}

#if RVK_TEST_OPENCV
// The field's pyramid step takes other pixels beyond the edges.
TEST(Scale, GaussianHalfAgreesWithOpenCv)
{
    Random random(4);
    for (const auto& [width, height] : {std::pair(64, 48), std::pair(321, 201)}) {
        auto src = randomPicture<uint8_t>(random, width, height);
        const auto ours = scaled(referenceOf<Slot::rvkScaleDownBy2Gaussian5x5u8_v2>(), src, width / 2, height / 2);
        cv::Mat theirs;
        cv::pyrDown(cv::Mat(height, width, CV_8U, src.pixels.data()), theirs);
        for (int y = 1; y < ours.height - 1; ++y)
            for (int x = 1; x < ours.width - 1; ++x)
                EXPECT_LE(std::abs(ours.at(x, y) - theirs.at<uint8_t>(y, x)), 1) << x << ", " << y;
    }
}
#endif

} // namespace

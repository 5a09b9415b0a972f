#include "support/blurs.h"
#include "support/logCapture.h"

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
        return pictureOf<float>(src.width / 2, src.height / 2, [&](int x, int y) {
            const auto p = windowOf(src, 2 * x, 2 * y, 5, 5, Beyond::constant);
            const auto row = [&](size_t i) { return add(p[i], p[i + 1], p[i + 2], p[i + 3], p[i + 4]); };
            const Picture<float> ones(src.width, src.height, 1);
            const auto existing = windowOf(ones, 2 * x, 2 * y, 5, 5, Beyond::constant);
            float weights = 0;
            for (size_t i = 0; i < 25; ++i)
                weights += existing[i] * static_cast<float>(binomials(4)[i / 5] * binomials(4)[i % 5]);
            return add(row(0), row(5), row(10), row(15), row(20)) * (1 / weights);
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

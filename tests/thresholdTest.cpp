#include "support/blurs.h"
#include "support/logCapture.h"
#include "support/scarceMemory.h"

using namespace test;

namespace {

// ---- the references: every pixel value beside its result ----

// All implementations make of 0 to 255 `inside` for the values from `low` to `high` and `outside` for the others.
template <Slot slot, class... Arguments>
void expectRange(int low, int high, uint8_t inside, uint8_t outside, Arguments... arguments)
{
    const auto src = pictureOf<uint8_t>(256, 1, [](int x, int) { return x; });
    const auto expected =
        pictureOf<uint8_t>(256, 1, [=](int x, int) { return x >= low && x <= high ? inside : outside; });
    forEachImplementation<slot>([&](const char* name, auto function) {
        EXPECT_EQ(filtered<uint8_t>(function, src, arguments...), expected)
            << nameOf(slot) << " on " << name << ", " << low << " to " << high;
    });
}

TEST(Threshold, WorkedValues)
{
    const auto expectThreshold = [](int low, uint32_t threshold) {
        expectRange<Slot::rvkFilterThresholdu8>(low, 255, 255, 0, threshold);
        expectRange<Slot::rvkFilterThresholdu8_v2>(low, 255, 255, 0, threshold);
    };
    for (const int threshold : {0, 1, 100, 127, 128, 254, 255})
        expectThreshold(threshold, static_cast<uint32_t>(threshold));
    for (const uint32_t threshold : {256u, 300u, uint32_t{INT32_MAX}})
        expectThreshold(255, threshold);
    expectRange<Slot::rvkFilterThresholdu8_v3>(1, 255, 7, 9, 0u, uint8_t{7}, uint8_t{9});
    expectRange<Slot::rvkFilterThresholdu8_v3>(255, 255, 7, 9, 254u, uint8_t{7}, uint8_t{9});
    expectRange<Slot::rvkFilterThresholdu8_v3>(256, 256, 7, 9, 255u, uint8_t{7}, uint8_t{9});
    expectRange<Slot::rvkFilterThresholdu8_v3>(256, 256, 7, 9, 300u, uint8_t{7}, uint8_t{9});
    expectRange<Slot::rvkFilterThresholdRangeu8>(10, 20, 255, 0, 10u, 20u);
    expectRange<Slot::rvkFilterThresholdRangeu8>(0, 255, 255, 0, 0u, UINT32_MAX);
    expectRange<Slot::rvkFilterThresholdRangeu8>(256, 256, 255, 0, 20u, 10u);
    expectRange<Slot::rvkFilterThresholdRangeu8>(256, 256, 255, 0, 256u, 300u);
    expectRange<Slot::rvkFilterThresholdRangeu8_v2>(0, 0, 3, 200, 0u, 0u, uint8_t{3}, uint8_t{200});
    expectRange<Slot::rvkFilterThresholdRangeu8_v2>(255, 255, 3, 200, 255u, 1000u, uint8_t{3}, uint8_t{200});
}

// ---- Otsu ----

// All implementations separate these pixels at a threshold; of those between two values of the pixels each will do.
void expectOtsuSplits(const std::vector<uint8_t>& pixels, uint32_t threshold)
{
    Picture<uint8_t> src(static_cast<int>(pixels.size()), 1);
    src.pixels = pixels;
    for (const uint32_t type : {RAVIK_THRESHOLD_BINARY, RAVIK_THRESHOLD_BINARY_INVERSE, 2u}) {
        const auto expected = pictureOf<uint8_t>(src.width, 1, [&](int x, int) {
            return (src.at(x, 0) >= threshold) == (type != RAVIK_THRESHOLD_BINARY_INVERSE) ? 255 : 0;
        });
        forEachImplementation<Slot::rvkFilterThresholdOtsuu8>([&](const char* name, auto function) {
            EXPECT_EQ(filtered<uint8_t>(function, src, type), expected) << name << ", threshold " << threshold;
        });
    }
}

TEST(Threshold, OtsuSeparatesTheClasses)
{
    expectOtsuSplits({10, 10, 200, 200}, 11);
    expectOtsuSplits({0, 0, 0, 0}, 1); // one value: no classes
    expectOtsuSplits({200, 200}, 1);
    expectOtsuSplits({254, 254, 254, 255}, 255);
    expectOtsuSplits({253, 253, 254, 254}, 254);
    expectOtsuSplits({0, 96, 96, 192}, 1); // the variance for 97 is the same
    expectOtsuSplits({0, 1}, 1);
}

// The variance between the classes, in whole numbers: n^2 * variance = (n * sum0 - n0 * sum)^2 / (n0 * n1).
TEST(Threshold, OtsuMaximisesTheVarianceBetweenTheClasses)
{
    Random random(3);
    for (int trial = 0; trial < 200; ++trial) {
        std::vector<uint8_t> pixels(2 + random.below(200));
        const uint32_t low = random.below(128), high = 128 + random.below(128), spread = 1 + random.below(60);
        for (uint8_t& pixel : pixels)
            pixel = static_cast<uint8_t>(std::min(255u, (random.below(3) ? low : high) + random.below(spread)));
        long double largest = 0;
        uint32_t best = 0;
        for (uint32_t t = 0; t < 255; ++t) {
            int64_t n0 = 0, n1 = 0, sum0 = 0, sum1 = 0;
            for (const uint8_t pixel : pixels)
                (pixel <= t ? n0 : n1)++, (pixel <= t ? sum0 : sum1) += pixel;
            if (n0 == 0 || n1 == 0)
                continue;
            const int64_t difference = n1 * sum0 - n0 * sum1;
            const long double variance = static_cast<long double>(difference) * difference / (n0 * n1);
            if (variance > largest * (1 + 1e-12L)) {
                largest = variance;
                best = t;
            }
        }
        expectOtsuSplits(pixels, best + 1);
    }
}

// Pictures of sizes at which pixels are counted in pairs: counters fill up, and the memory for them may be missing.
TEST(Threshold, OtsuOfLargePicturesEqualsReference)
{
    constexpr uint32_t width = 515, height = 700, stride = 520;
    Random random(4);
    const auto expectEqual = [&](auto pixelAt) {
        std::vector<uint8_t> src(stride * height), expected(stride * height, 1);
        for (uint32_t i = 0; i < stride * height; ++i)
            src[i] = static_cast<uint8_t>(pixelAt(i));
        rvkFilterThresholdOtsuu8C(src.data(), width, height, stride, expected.data(), stride, 0);
        forEachVecta<Slot::rvkFilterThresholdOtsuu8>([&](const char* variant, auto function) {
            for (const int buffers : {0, 30}) {
                const ScarceMemory memory(buffers);
                std::vector<uint8_t> actual(stride * height, 1);
                function(src.data(), width, height, stride, actual.data(), stride, 0);
                EXPECT_EQ(actual, expected) << variant << " with " << buffers << " buffers";
            }
        });
    };
    expectEqual([&](uint32_t) { return random.next(); });
    expectEqual([&](uint32_t i) { return i / stride < 450 ? 200 : 20 + random.below(9); });
    for (int trial = 0; trial < 10; ++trial) { // three values: the counts decide between which of them the threshold is
        const uint32_t first = random.below(height), second = first + random.below(height - first);
        expectEqual([=](uint32_t i) { return i / stride < first ? 0 : i / stride < second ? 128 : 255; });
    }
}

// ---- adaptive ----

// A pixel passes when it is above the mean of its window less `value`.
template <Slot slot, class Means>
void expectAdaptive(int least, Means means)
{
    static constexpr int32_t values[] = {INT32_MIN, -256, -255, -254, -9, -1, 0, 1, 9, 254, 255, 256, INT32_MAX};
    expectFiltered<slot, uint8_t>(
        least,
        [](Random& random, auto&) {
            const int32_t any = static_cast<int32_t>(random.below(41)) - 20;
            return std::tuple(uint8_t{99}, random.below(2), random.below(2) ? any : values[random.below(13)]);
        },
        [=](const auto& src, uint8_t maxValue, uint32_t type, int32_t value) {
            const auto mean = means(src);
            return pictureOf<uint8_t>(src.width, src.height, [&](int x, int y) {
                const bool passes = int64_t{src.at(x, y)} > int64_t{mean.at(x, y)} - value;
                return passes == (type == RAVIK_THRESHOLD_BINARY) ? maxValue : 0;
            });
        },
        30);
}

TEST(Threshold, AdaptiveComparesWithTheMean)
{
    const auto binomial = [](int size) {
        return [=](const auto& src) { return binomialMeans(src, size, Ring::existing); };
    };
    const auto box = [](int size) { return [=](const auto& src) { return boxMeans(src, size, Ring::constant); }; };
    expectAdaptive<Slot::rvkAdaptiveThresholdGaussian3x3u8>(2, binomial(3));
    expectAdaptive<Slot::rvkAdaptiveThresholdGaussian5x5u8>(5, binomial(5));
    expectAdaptive<Slot::rvkAdaptiveThresholdGaussian11x11u8>(11, binomial(11));
    expectAdaptive<Slot::rvkAdaptiveThresholdMean3x3u8>(3, box(3));
    expectAdaptive<Slot::rvkAdaptiveThresholdMean5x5u8>(5, box(5));
    expectAdaptive<Slot::rvkAdaptiveThresholdMean11x11u8>(11, box(11));
}

TEST(Threshold, AdaptiveOfAnotherTypeClearsWhatLiesBehindTheRowsToo)
{
    const uint8_t src[9] = {9};
    forEachImplementation<Slot::rvkAdaptiveThresholdMean3x3u8>([&](const char* name, auto function) {
        std::vector<uint8_t> dst(13, 5), expected(13, 0);
        expected[12] = 5;
        function(src, 3, 3, 3, 99, 2, 0, dst.data(), 4);
        EXPECT_EQ(dst, expected) << name;
    });
}

// ---- arguments that only these functions refuse ----

TEST(Threshold, RefusedArguments)
{
    const uint8_t src[144] = {200};
    std::vector<uint8_t> dst(144, 77);
    uint8_t* const d = dst.data();
    clearLog();
    rvkFilterThresholdu8(src, 8, 8, 8, d, 8, 0x80000000u);
    rvkFilterThresholdu8_v2(src, 4, 4, 8, d, 4, 9); // strides must be equal
    EXPECT_TRUE(logHas("6 ravik_lib_log: Assertion failed @rvkFilterThresholdu8_v2: srcStride == dstStride\n"));
    rvkFilterThresholdOtsuu8(src, 4, 4, 8, d, 4, 0);
    rvkFilterThresholdOtsuu8(src, 0x8000, 0x10000, 0, d, 0, 0);              // 2^31 pixels
    rvkAdaptiveThresholdGaussian5x5u8(src, 8, 8, 8, 9, 2, 0, d, 0x20000000); // 2^32 bytes
    EXPECT_EQ(logLines.size(), 5u);
    EXPECT_EQ(dst, std::vector<uint8_t>(144, 77));
}

} // namespace

#include "memory.h"
#include "support/logCapture.h"
#include "support/trial.h"

#include <algorithm>

using namespace test;

namespace {

// ---- the references: every pixel value beside its result ----

using Ramp = std::array<uint8_t, 256>;

Ramp ramp()
{
    Ramp values;
    for (size_t i = 0; i < 256; ++i)
        values[i] = static_cast<uint8_t>(i);
    return values;
}

// function(0 to 255) is `inside` for the values from `low` to `high` and `outside` for the others.
template <class Function, class... Arguments>
void expectRange(int low, int high, uint8_t inside, uint8_t outside, Function function, Arguments... arguments)
{
    Ramp expected, actual, src = ramp();
    for (int i = 0; i < 256; ++i)
        expected[static_cast<size_t>(i)] = i >= low && i <= high ? inside : outside;
    function(src.data(), 64, 4, 64, actual.data(), 64, arguments...);
    EXPECT_EQ(actual, expected) << low << " to " << high;
}

TEST(Threshold, ReferenceWorkedValues)
{
    for (const auto function : {rvkFilterThresholdu8C, rvkFilterThresholdu8_v2C}) {
        expectRange(0, 255, 255, 0, function, 0);
        expectRange(1, 255, 255, 0, function, 1);
        expectRange(100, 255, 255, 0, function, 100);
        expectRange(254, 255, 255, 0, function, 254);
        expectRange(255, 255, 255, 0, function, 255);
        expectRange(255, 255, 255, 0, function, 300);
        expectRange(255, 255, 255, 0, function, UINT32_MAX);
    }
    expectRange(1, 255, 7, 9, rvkFilterThresholdu8_v3C, 0, 7, 9);
    expectRange(255, 255, 7, 9, rvkFilterThresholdu8_v3C, 254, 7, 9);
    expectRange(256, 256, 7, 9, rvkFilterThresholdu8_v3C, 255, 7, 9);
    expectRange(256, 256, 7, 9, rvkFilterThresholdu8_v3C, 300, 7, 9);
    expectRange(10, 20, 255, 0, rvkFilterThresholdRangeu8C, 10, 20);
    expectRange(0, 255, 255, 0, rvkFilterThresholdRangeu8C, 0, UINT32_MAX);
    expectRange(256, 256, 255, 0, rvkFilterThresholdRangeu8C, 20, 10);
    expectRange(256, 256, 255, 0, rvkFilterThresholdRangeu8C, 256, 300);
    expectRange(0, 0, 3, 200, rvkFilterThresholdRangeu8_v2C, 0, 0, 3, 200);
    expectRange(255, 255, 3, 200, rvkFilterThresholdRangeu8_v2C, 255, 1000, 3, 200);
}

// The threshold that the function chose for these pixels: what it made of all values, behind them in the picture, would
// change the choice, so it is read off the pixels themselves.
void expectOtsuSplits(const std::vector<uint8_t>& pixels, uint32_t threshold)
{
    const uint32_t count = static_cast<uint32_t>(pixels.size());
    std::vector<uint8_t> dst(count), inverse(count);
    rvkFilterThresholdOtsuu8C(pixels.data(), count, 1, count, dst.data(), count, RAVIK_THRESHOLD_BINARY);
    rvkFilterThresholdOtsuu8C(pixels.data(), count, 1, count, inverse.data(), count, RAVIK_THRESHOLD_BINARY_INVERSE);
    for (size_t i = 0; i < count; ++i) {
        ASSERT_EQ(dst[i], pixels[i] >= threshold ? 255 : 0) << +pixels[i] << ", threshold " << threshold;
        ASSERT_EQ(inverse[i], pixels[i] < threshold ? 255 : 0) << +pixels[i] << ", threshold " << threshold;
    }
}

TEST(Threshold, OtsuSeparatesTheClasses)
{
    expectOtsuSplits({10, 10, 200, 200}, 11);
    expectOtsuSplits({0, 0, 0, 0}, 1); // one value: no classes
    expectOtsuSplits({200, 200}, 1);
    expectOtsuSplits({254, 254, 254, 255}, 255);
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

// ---- VECTA ----

// Any threshold, and those around the ends of the range of a pixel.
uint32_t drawThreshold(Trial& t)
{
    static const uint32_t ends[] = {0, 1, 2, 127, 128, 254, 255, 256, 300, INT32_MAX};
    return t.below(2) ? t.below(256) : ends[t.below(10)];
}

// In every fourth trial in place. `arguments` draws what follows the images.
template <Slot slot, class Arguments>
void expectThreshold(Arguments arguments)
{
    expectVectaEqualsReference<slot>([&](auto function, Trial& t) {
        const auto rest = arguments(t);
        const bool inPlace = t.below(4) == 0;
        const auto a = t.inOut<uint8_t>();
        const auto d = inPlace ? a : t.output<uint8_t>();
        std::apply([&](auto... values) { function(a.data, t.width, t.height, a.stride, d.data, d.stride, values...); },
                   rest);
    });
}

TEST(Threshold, VectaEqualsReference)
{
    const auto threshold = [](Trial& t) { return std::tuple(drawThreshold(t)); };
    expectThreshold<Slot::rvkFilterThresholdu8>(threshold);
    expectThreshold<Slot::rvkFilterThresholdu8_v2>(threshold);
    expectThreshold<Slot::rvkFilterThresholdu8_v3>([](Trial& t) {
        const uint32_t value = drawThreshold(t);
        return std::tuple(value, t.value<uint8_t>(), t.value<uint8_t>());
    });
    expectThreshold<Slot::rvkFilterThresholdRangeu8>([](Trial& t) {
        const uint32_t low = drawThreshold(t);
        return std::tuple(low, drawThreshold(t));
    });
    expectThreshold<Slot::rvkFilterThresholdRangeu8_v2>([](Trial& t) {
        const uint32_t low = drawThreshold(t), high = drawThreshold(t);
        return std::tuple(low, high, t.value<uint8_t>(), t.value<uint8_t>());
    });
    expectThreshold<Slot::rvkFilterThresholdOtsuu8>([](Trial& t) { return std::tuple(t.below(3)); });
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
            static const SystemAllocator system = systemAllocator;
            for (const bool hasMemory : {true, false}) {
                std::vector<uint8_t> actual(stride * height, 1);
                if (!hasMemory)
                    systemAllocator.allocate = [](size_t) -> void* { return nullptr; };
                function(src.data(), width, height, stride, actual.data(), stride, 0);
                systemAllocator = system;
                EXPECT_EQ(actual, expected) << variant << (hasMemory ? "" : ", without memory");
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

// ---- entries ----

TEST(Threshold, BadArgumentsAreRefusedAndWriteNothing)
{
    const uint8_t src[64] = {200};
    uint8_t dst[64];
    memset(dst, 77, sizeof dst);
    const auto isLogged = [](const std::string& what, auto call) {
        clearLog();
        call();
        return logHas("6 ravik_lib_log: Assertion failed @" + what + "\n");
    };
    const std::string first = "rvkFilterThresholdu8: src && dst && (signed)threshold >= 0";
    EXPECT_TRUE(isLogged(first, [&] { rvkFilterThresholdu8(nullptr, 8, 8, 8, dst, 8, 9); }));
    EXPECT_TRUE(isLogged(first, [&] { rvkFilterThresholdu8(src, 8, 8, 8, dst, 8, 0x80000000u); }));
    EXPECT_TRUE(isLogged(first, [&] { rvkFilterThresholdu8(src, 8, 8, 7, dst, 8, 9); }));
    EXPECT_TRUE(isLogged(first, [&] { rvkFilterThresholdu8(src, 8, 8, 8, dst, 7, 9); }));
    EXPECT_TRUE(isLogged(first, [&] { rvkFilterThresholdu8(src, 0, UINT32_MAX, 8, dst, 8, 9); }));
    const std::string second =
        "rvkFilterThresholdu8_v2: src && dst && dstStride && srcStride && (srcStride >=srcWidth) && "
        "(signed)threshold >= 0";
    EXPECT_TRUE(isLogged(second, [&] { rvkFilterThresholdu8_v2(src, 8, 8, 8, nullptr, 8, 9); }));
    EXPECT_TRUE(isLogged(second, [&] { rvkFilterThresholdu8_v2(src, 8, 8, 7, dst, 7, 9); }));
    EXPECT_TRUE(isLogged("rvkFilterThresholdu8_v2: srcStride == dstStride",
                         [&] { rvkFilterThresholdu8_v2(src, 4, 4, 8, dst, 4, 9); }));
    const std::string otsu = "rvkFilterThresholdOtsuu8: src && dst && srcStride >= srcWidth && dstStride >= srcWidth";
    EXPECT_TRUE(isLogged(otsu, [&] { rvkFilterThresholdOtsuu8(src, 8, 8, 8, dst, 7, 0); }));
    EXPECT_TRUE(isLogged(otsu, [&] { rvkFilterThresholdOtsuu8(src, 8, 0, 8, dst, 8, 0); }));
    EXPECT_TRUE(isLogged(otsu, [&] { rvkFilterThresholdOtsuu8(src, 0x8000, 0x10000, 0, dst, 0, 0); })); // 2^31 pixels
    EXPECT_TRUE(isLogged("rvkFilterThresholdOtsuu8: srcStride == dstStride",
                         [&] { rvkFilterThresholdOtsuu8(src, 4, 4, 8, dst, 4, 0); }));
    clearLog();
    EXPECT_EQ(rvkFilterThresholdu8_v3(src, 8, 8, 8, nullptr, 8, 9, 1, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterThresholdRangeu8(nullptr, 8, 8, 8, dst, 8, 9, 10), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterThresholdRangeu8(src, 8, 0, 8, dst, 8, 9, 10), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterThresholdRangeu8_v2(src, 8, 8, 8, dst, 7, 9, 10, 1, 0), RAVIK_EBADPARAM);
    EXPECT_TRUE(logLines.empty());
    EXPECT_TRUE(std::all_of(dst, dst + 64, [](uint8_t d) { return d == 77; }));

    rvkFilterThresholdu8(src, 8, 8, 0, dst, 0, 200);
    EXPECT_TRUE(logLines.empty());
    EXPECT_EQ(dst[0], 255);
    EXPECT_EQ(dst[63], 0);
}

// ---- adaptive ----

TEST(Threshold, AdaptiveReferenceFollowsItsRule)
{
    constexpr uint32_t width = 13, height = 12;
    Random random(5);
    uint8_t src[width * height], means[width * height], dst[width * height];
    for (uint8_t& pixel : src)
        pixel = drawElement<uint8_t>(random, random.below(2) ? Content::extremes : Content::uniform);
    const auto expectRule = [&](auto function) {
        for (const int32_t value : {INT32_MIN, -256, -255, -254, -9, -1, 0, 1, 9, 254, 255, 256, INT32_MAX})
            for (const uint32_t type : {RAVIK_THRESHOLD_BINARY, RAVIK_THRESHOLD_BINARY_INVERSE}) {
                function(src, width, height, width, 99, type, value, dst, width);
                for (size_t i = 0; i < sizeof src; ++i) {
                    const bool passes = int64_t{src[i]} + value > means[i];
                    ASSERT_EQ(dst[i], passes == (type == RAVIK_THRESHOLD_BINARY) ? 99 : 0) << value << ", pixel " << i;
                }
            }
    };
    rvkFilterGaussian3x3u8_v2C(src, width, height, width, means, width, 1);
    expectRule(rvkAdaptiveThresholdGaussian3x3u8C);
    rvkFilterGaussian5x5u8_v2C(src, width, height, width, means, width, 1);
    expectRule(rvkAdaptiveThresholdGaussian5x5u8C);
    rvkFilterGaussian11x11u8_v2C(src, width, height, width, means, width, 1);
    expectRule(rvkAdaptiveThresholdGaussian11x11u8C);
    rvkBoxFilter3x3u8C(src, width, height, width, means, width);
    expectRule(rvkAdaptiveThresholdMean3x3u8C);
    rvkBoxFilter5x5u8C(src, width, height, width, means, width);
    expectRule(rvkAdaptiveThresholdMean5x5u8C);
    rvkBoxFilter11x11u8C(src, width, height, width, means, width);
    expectRule(rvkAdaptiveThresholdMean11x11u8C);

    memset(dst, 5, sizeof dst);
    rvkAdaptiveThresholdMean3x3u8C(src, 3, 3, 13, 99, 2, 0, dst, 4); // clears what lies behind the rows, too
    EXPECT_EQ(std::count(dst, dst + 12, 0), 12);
    EXPECT_EQ(dst[12], 5);
}

template <Slot slot, uint32_t leastSize>
void expectAdaptive()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        t.width = std::max(t.width, leastSize);
        t.height = std::max(t.height, leastSize);
        const uint32_t type = t.below(2);
        const int32_t value = static_cast<int32_t>(t.below(t.below(2) ? 21 : 601)) - (t.below(2) ? 10 : 300);
        const auto a = t.input<uint8_t>();
        const auto d = t.output<uint8_t>();
        function(a.data, t.width, t.height, a.stride, t.value<uint8_t>(), type, value, d.data, d.stride);
    });
}

TEST(Threshold, AdaptiveVectaEqualsReference)
{
    expectAdaptive<Slot::rvkAdaptiveThresholdGaussian3x3u8, 2>();
    expectAdaptive<Slot::rvkAdaptiveThresholdGaussian5x5u8, 5>();
    expectAdaptive<Slot::rvkAdaptiveThresholdGaussian11x11u8, 11>();
    expectAdaptive<Slot::rvkAdaptiveThresholdMean3x3u8, 3>();
    expectAdaptive<Slot::rvkAdaptiveThresholdMean5x5u8, 5>();
    expectAdaptive<Slot::rvkAdaptiveThresholdMean11x11u8, 11>();
}

TEST(Threshold, AdaptiveRefusesBadArguments)
{
    uint8_t src[144] = {9}, dst[144] = {77};
    const auto isLogged = [](const std::string& what, auto call) {
        clearLog();
        call();
        return logHas("6 ravik_lib_log: Assertion failed @rvkAdaptiveThreshold" + what + "\n");
    };
    const std::string five =
        "Gaussian5x5u8: src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && "
        "srcHeight > 4 && srcWidth > 4";
    EXPECT_TRUE(isLogged(five, [&] { rvkAdaptiveThresholdGaussian5x5u8(nullptr, 8, 8, 8, 9, 0, 0, dst, 8); }));
    EXPECT_TRUE(isLogged(five, [&] { rvkAdaptiveThresholdGaussian5x5u8(src, 4, 8, 8, 9, 0, 0, dst, 8); }));
    EXPECT_TRUE(isLogged(five, [&] { rvkAdaptiveThresholdGaussian5x5u8(src, 8, 8, 8, 9, 0, 0, dst, 7); }));
    EXPECT_TRUE(isLogged(five, [&] { rvkAdaptiveThresholdGaussian5x5u8(src, 8, 8, 8, 9, 2, 0, dst, 0x20000000); }));
    EXPECT_TRUE(isLogged("Mean3x3u8: src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride "
                         ">=srcWidth ) && srcWidth > 2 && srcHeight > 2",
                         [&] { rvkAdaptiveThresholdMean3x3u8(src, 8, 2, 8, 9, 0, 0, dst, 8); }));
    EXPECT_TRUE(
        isLogged("Mean11x11u8: src != dst", [&] { rvkAdaptiveThresholdMean11x11u8(src, 12, 12, 0, 9, 0, 0, src, 0); }));
    EXPECT_EQ(src[0], 9);
    EXPECT_EQ(dst[0], 77);
}

} // namespace

#include "support/windows.h"

#include <cmath>

using namespace test;

namespace {

// ---- the definition -----------------------------------------------------------------------------

// The weights of the window's pixels.
struct Operator
{
    int size;
    std::vector<int> dx, dy;
};

Operator separable(const std::vector<int>& smooth, const std::vector<int>& difference)
{
    return {static_cast<int>(smooth.size()), productWeights(smooth, difference), productWeights(difference, smooth)};
}
Operator sobel(int size)
{
    return separable(sobelSmoothing(size), sobelDifference(size));
}

const Operator central = separable({0, 1, 0}, {-1, 0, 1});
const Operator sobel3 = sobel(3);
const Operator scharr = separable({3, 10, 3}, {-1, 0, 1});

using Store = int64_t(int64_t); // what is stored of a sum
int64_t asItIs(int64_t sum)
{
    return sum;
}
int64_t eighth(int64_t sum)
{
    return static_cast<int64_t>(std::floor(static_cast<double>(sum) / 8));
}

template <class T>
struct Planes
{
    Picture<T> dx, dy;
    bool operator==(const Planes&) const = default;
};

template <class T>
Planes<T> derivatives(const Operator& op, Store store, const Picture<uint8_t>& src, uint32_t border = 0,
                      uint8_t outside = 0)
{
    const bool isWhole = border == RAVIK_BORDER_CONSTANT || border == RAVIK_BORDER_REPLICATE;
    const Beyond beyond = border == RAVIK_BORDER_REPLICATE ? Beyond::nearest : Beyond::constant;
    const auto plane = [&](const std::vector<int>& weights) {
        return pictureOf<T>(src.width, src.height, [&](int x, int y) {
            return isWhole || src.hasWindow(x, y, op.size, op.size)
                       ? store(weightedSum(windowOf(src, x, y, op.size, op.size, beyond, outside), weights))
                       : 77;
        });
    };
    return {plane(op.dx), plane(op.dy)};
}

// check(picture) for pictures from 1x1 pixels on, some of them wider than vectors.
template <class Check>
void forPictures(Check check)
{
    Random random(1);
    for (int trial = 0; trial < 30 && !::testing::Test::HasFailure(); ++trial) {
        const auto size = [&](uint32_t range) { return 1 + static_cast<int>(random.below(range)); };
        check(randomPicture<uint8_t>(random, size(trial % 2 ? 5 : 90), size(trial % 3 ? 5 : 25)), random);
    }
}

// What a planar function makes of a picture of S.
template <class T, class S, class Function, class... Arguments>
Planes<T> planesOf(Function function, const Picture<S>& src, Arguments... arguments)
{
    Planes<T> planes = {{src.width, src.height, T{77}}, {src.width, src.height, T{77}}};
    function(src.pixels.data(), src.columns(), src.rows(), src.stride(), planes.dx.pixels.data(),
             planes.dy.pixels.data(), planes.dx.stride(), arguments...);
    return planes;
}

template <Slot slot, class T>
void expectPlanar(const Operator& op, Store store)
{
    forPictures([&](const Picture<uint8_t>& src, Random&) {
        const Planes<T> expected = derivatives<T>(op, store, src);
        forEachImplementation<slot>([&](const char* name, auto function) {
            if constexpr (std::is_invocable_v<decltype(function), const float*, uint32_t, uint32_t, uint32_t, T*, T*,
                                              uint32_t>) { // whole numbers below 2^24 are exact in floats, too
                Picture<float> floats(src.width, src.height);
                std::copy(src.pixels.begin(), src.pixels.end(), floats.pixels.begin());
                EXPECT_TRUE(planesOf<T>(function, floats) == expected) << nameOf(slot) << " on " << name;
            } else {
                EXPECT_TRUE(planesOf<T>(function, src) == expected) << nameOf(slot) << " on " << name;
            }
        });
    });
}

template <Slot slot, class T>
void expectInterleaved(const Operator& op, Store store)
{
    forPictures([&](const Picture<uint8_t>& src, Random&) {
        if (src.width < 3 || src.height < 3)
            return;
        const Planes<T> planes = derivatives<T>(op, store, src);
        const int width = src.width - 2, height = src.height - 2;
        const auto expected = pictureOf<T>(
            2 * width, height, [&](int i, int y) { return (i % 2 ? planes.dy : planes.dx).at(i / 2 + 1, y + 1); });
        forEachImplementation<slot>([&](const char* name, auto function) {
            Picture<T> pairs(2 * width, height);
            function(src.pixels.data(), src.columns(), src.rows(), src.stride(), pairs.pixels.data(), pairs.stride());
            EXPECT_EQ(pairs, expected) << nameOf(slot) << " on " << name;
        });
    });
}

TEST(Gradient, FollowsTheDefinition)
{
    expectInterleaved<Slot::rvkImageGradientInterleaveds16_v2, int16_t>(central, asItIs);
    expectInterleaved<Slot::rvkImageGradientInterleavedf32_v2, float>(central, asItIs);
    expectPlanar<Slot::rvkImageGradientPlanars16_v2, int16_t>(central, asItIs);
    expectPlanar<Slot::rvkImageGradientPlanarf32_v2, float>(central, asItIs);
    expectInterleaved<Slot::rvkImageGradientSobelInterleaveds16_v2, int16_t>(sobel3, eighth);
    expectInterleaved<Slot::rvkImageGradientSobelInterleaveds16_v3, int16_t>(sobel3, asItIs);
    expectInterleaved<Slot::rvkImageGradientSobelInterleavedf32_v2, float>(sobel3, asItIs);
    expectPlanar<Slot::rvkImageGradientSobelPlanars16_v2, int16_t>(sobel3, eighth);
    expectPlanar<Slot::rvkImageGradientSobelPlanars16_v3, int16_t>(sobel3, asItIs);
    expectPlanar<Slot::rvkImageGradientSobelPlanars8_v2, int8_t>(sobel3, eighth);
    expectPlanar<Slot::rvkImageGradientSobelPlanarf32_v2, float>(sobel3, asItIs);
    expectPlanar<Slot::rvkImageGradientSobelPlanarf32f32_v2, float>(sobel3, asItIs);
    expectInterleaved<Slot::rvkImageGradientScharrInterleaveds16, int16_t>(scharr, asItIs);
}

TEST(Gradient, EdgeStrengthIsTheSaturatedSum)
{
    forPictures([](const Picture<uint8_t>& src, Random&) {
        const Planes<int> planes = derivatives<int>(sobel3, asItIs, src);
        const auto expected = pictureOf<uint8_t>(src.width, src.height, [&](int x, int y) {
            return src.hasWindow(x, y, 3, 3)
                       ? std::min(std::abs(planes.dx.at(x, y)) + std::abs(planes.dy.at(x, y)), 255)
                       : 77;
        });
        forEachImplementation<Slot::rvkFilterSobel3x3u8_v2>(
            [&](const char* name, auto function) { EXPECT_EQ(filtered<uint8_t>(function, src), expected) << name; });
    });
}

template <Slot slot>
void expectBordered(int size)
{
    const auto saturated = [](int64_t sum) { return std::clamp<int64_t>(sum, -32768, 32767); };
    forPictures([&](const Picture<uint8_t>& src, Random& random) {
        const uint32_t border = random.below(4);
        const auto outside = static_cast<uint8_t>(random.next());
        const auto expected = derivatives<int16_t>(sobel(size), saturated, src, border, outside);
        forEachImplementation<slot>([&](const char* name, auto function) {
            EXPECT_TRUE(planesOf<int16_t>(function, src, border, outside) == expected)
                << nameOf(slot) << " on " << name << ", " << src.width << "x" << src.height << ", border " << border;
        });
    });
}

TEST(Gradient, SobelOfAnySizeFollowsTheDefinition)
{
    expectBordered<Slot::rvkFilterSobel3x3u8s16>(3);
    expectBordered<Slot::rvkFilterSobel5x5u8s16>(5);
    expectBordered<Slot::rvkFilterSobel7x7u8s16>(7);
}

TEST(Gradient, WorkedValues)
{
    const auto step = pictureOf<uint8_t>(5, 5, [](int x, int) { return x < 2 ? 0 : 255; });
    const auto ramp = pictureOf<uint8_t>(5, 5, [](int x, int) { return x; });
    const auto whole = planesOf<int16_t>(rvkImageGradientSobelPlanars16_v3, step);
    EXPECT_EQ(whole.dx.at(1, 2), 1020);
    EXPECT_EQ(whole.dx.at(2, 2), 1020);
    EXPECT_EQ(whole.dy.at(2, 2), 0);
    EXPECT_EQ(planesOf<int16_t>(rvkImageGradientSobelPlanars16, step).dx.at(2, 2), 127);
    EXPECT_EQ(filtered<uint8_t>(rvkFilterSobel3x3u8, step).at(2, 2), 255);
    int16_t pairs[18] = {};
    rvkImageGradientInterleaveds16(ramp.pixels.data(), 5, 5, 0, pairs, 0);
    EXPECT_EQ(pairs[8], 2);
    EXPECT_EQ(pairs[9], 0);
    rvkImageGradientScharrInterleaveds16(ramp.pixels.data(), 5, 5, 0, pairs, 0);
    EXPECT_EQ(pairs[8], 32);
    Picture<uint8_t> corner(3, 3); // the quotient is rounded down
    corner.at(0, 0) = 255;
    EXPECT_EQ(planesOf<int8_t>(rvkImageGradientSobelPlanars8, corner).dx.at(1, 1), -32);
    corner.at(0, 0) = 1;
    EXPECT_EQ(planesOf<int8_t>(rvkImageGradientSobelPlanars8, corner).dy.at(1, 1), -1);
}

TEST(Gradient, PlanesMayNotBothBeMissing)
{
    const uint8_t src[9] = {9};
    for (const auto function : {rvkFilterSobel3x3u8s16, rvkFilterSobel5x5u8s16, rvkFilterSobel7x7u8s16})
        EXPECT_EQ(function(src, 3, 3, 0, nullptr, nullptr, 0, 1, 0), RAVIK_EFAIL);
    EXPECT_EQ(rvkImageGradientSobelPlanars16_v3(src, 3, 3, 0, nullptr, nullptr, 0), RAVIK_EBADPARAM);
}

} // namespace

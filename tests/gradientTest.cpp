#include "support/logCapture.h"
#include "support/trial.h"

#include <algorithm>
#include <array>
#include <functional>

using namespace test;

namespace {

// ---- the references against the definition ------------------------------------------------------

// The weights of the window's pixels, row by row.
struct Operator
{
    int size;
    std::vector<int> dx, dy;
};

Operator separable(std::vector<int> smooth, std::vector<int> difference)
{
    Operator result = {static_cast<int>(smooth.size()), {}, {}};
    for (size_t row = 0; row < smooth.size(); ++row)
        for (size_t column = 0; column < smooth.size(); ++column) {
            result.dx.push_back(smooth[row] * difference[column]);
            result.dy.push_back(difference[row] * smooth[column]);
        }
    return result;
}

const Operator central = {3, {0, 0, 0, -1, 0, 1, 0, 0, 0}, {0, -1, 0, 0, 0, 0, 0, 1, 0}};
const Operator sobel3 = separable({1, 2, 1}, {-1, 0, 1});
const Operator sobel5 = separable({1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1});
const Operator sobel7 = separable({1, 6, 15, 20, 15, 6, 1}, {-1, -4, -5, 0, 5, 4, 1});
const Operator scharr = separable({3, 10, 3}, {-1, 0, 1});

struct Picture
{
    int width, height;
    std::vector<uint8_t> pixels;

    uint8_t at(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
};

Picture randomPicture(Random& random, int least)
{
    const uint32_t range = random.below(2) ? 3 : 25;
    const int width = least + static_cast<int>(random.below(range)),
              height = least + static_cast<int>(random.below(range));
    Picture picture = {width, height, std::vector<uint8_t>(static_cast<size_t>(width * height))};
    const auto content = static_cast<Content>(random.below(static_cast<uint32_t>(Content::constant)));
    for (uint8_t& pixel : picture.pixels)
        pixel = drawElement<uint8_t>(random, content);
    return picture;
}

int sumOf(const std::vector<int>& weights, int size, const Picture& p, int x, int y, uint32_t border, uint8_t outside)
{
    int sum = 0;
    for (int j = 0; j < size; ++j)
        for (int i = 0; i < size; ++i) {
            const int column = x + i - size / 2, row = y + j - size / 2;
            const int nearestColumn = std::clamp(column, 0, p.width - 1), nearestRow = std::clamp(row, 0, p.height - 1);
            const bool exists = column == nearestColumn && row == nearestRow;
            sum += weights[static_cast<size_t>(j * size + i)] *
                   (exists || border == RAVIK_BORDER_REPLICATE ? p.at(nearestColumn, nearestRow) : outside);
        }
    return sum;
}

using Store = std::function<double(int)>; // what is stored of a sum
const Store asItIs = [](int sum) { return sum; };
const Store eighth = [](int sum) { return std::floor(sum / 8.0); };
const Store saturated = [](int sum) { return std::clamp(sum, -32768, 32767); };

// Planes of T as the operator makes them from what is in them.
template <class T>
struct Planes
{
    std::vector<T> dx, dy;
    bool operator==(const Planes&) const = default;
};

template <class T>
Planes<T> expectedPlanes(const Operator& op, const Store& store, const Picture& p, T before, uint32_t border = 0,
                         uint8_t outside = 0)
{
    Planes<T> planes = {std::vector<T>(p.pixels.size(), before), std::vector<T>(p.pixels.size(), before)};
    const int margin = border == RAVIK_BORDER_CONSTANT || border == RAVIK_BORDER_REPLICATE ? 0 : op.size / 2;
    for (int y = margin; y < p.height - margin; ++y)
        for (int x = margin; x < p.width - margin; ++x) {
            const auto i = static_cast<size_t>(y * p.width + x);
            planes.dx[i] = static_cast<T>(store(sumOf(op.dx, op.size, p, x, y, border, outside)));
            planes.dy[i] = static_cast<T>(store(sumOf(op.dy, op.size, p, x, y, border, outside)));
        }
    return planes;
}

template <class T, class Function>
void expectPlanar(const Operator& op, const Store& store, Function function)
{
    Random random(1);
    for (int trial = 0; trial < 30; ++trial) {
        const Picture p = randomPicture(random, 1);
        Planes<T> planes = {std::vector<T>(p.pixels.size(), 77), std::vector<T>(p.pixels.size(), 77)};
        function(p.pixels.data(), static_cast<uint32_t>(p.width), static_cast<uint32_t>(p.height), 0, planes.dx.data(),
                 planes.dy.data(), 0);
        ASSERT_EQ(planes, expectedPlanes<T>(op, store, p, 77)) << p.width << "x" << p.height;
    }
}

template <class T, class Function>
void expectInterleaved(const Operator& op, const Store& store, Function function)
{
    Random random(2);
    for (int trial = 0; trial < 30; ++trial) {
        const Picture p = randomPicture(random, 2);
        const Planes<T> planes = expectedPlanes<T>(op, store, p, 0);
        std::vector<T> pairs(2 * p.pixels.size(), 77), expected = pairs;
        auto next = expected.begin();
        for (int y = 1; y + 1 < p.height; ++y)
            for (int x = 1; x + 1 < p.width; ++x) {
                *next++ = planes.dx[static_cast<size_t>(y * p.width + x)];
                *next++ = planes.dy[static_cast<size_t>(y * p.width + x)];
            }
        function(p.pixels.data(), static_cast<uint32_t>(p.width), static_cast<uint32_t>(p.height), 0, pairs.data(), 0);
        ASSERT_EQ(pairs, expected) << p.width << "x" << p.height;
    }
}

TEST(Gradient, ReferencesFollowTheDefinition)
{
    expectInterleaved<int16_t>(central, asItIs, rvkImageGradientInterleaveds16);
    expectInterleaved<int16_t>(central, asItIs, rvkImageGradientInterleaveds16_v2);
    expectInterleaved<float>(central, asItIs, rvkImageGradientInterleavedf32);
    expectInterleaved<float>(central, asItIs, rvkImageGradientInterleavedf32_v2);
    expectPlanar<int16_t>(central, asItIs, rvkImageGradientPlanars16);
    expectPlanar<int16_t>(central, asItIs, rvkImageGradientPlanars16_v2);
    expectPlanar<float>(central, asItIs, rvkImageGradientPlanarf32);
    expectPlanar<float>(central, asItIs, rvkImageGradientPlanarf32_v2);

    expectInterleaved<int16_t>(sobel3, eighth, rvkImageGradientSobelInterleaveds16);
    expectInterleaved<int16_t>(sobel3, eighth, rvkImageGradientSobelInterleaveds16_v2);
    expectInterleaved<int16_t>(sobel3, asItIs, rvkImageGradientSobelInterleaveds16_v3);
    expectInterleaved<float>(sobel3, asItIs, rvkImageGradientSobelInterleavedf32);
    expectInterleaved<float>(sobel3, asItIs, rvkImageGradientSobelInterleavedf32_v2);
    expectPlanar<int16_t>(sobel3, eighth, rvkImageGradientSobelPlanars16);
    expectPlanar<int16_t>(sobel3, eighth, rvkImageGradientSobelPlanars16_v2);
    expectPlanar<int16_t>(sobel3, asItIs, rvkImageGradientSobelPlanars16_v3);
    expectPlanar<int8_t>(sobel3, eighth, rvkImageGradientSobelPlanars8);
    expectPlanar<int8_t>(sobel3, eighth, rvkImageGradientSobelPlanars8_v2);
    expectPlanar<float>(sobel3, asItIs, rvkImageGradientSobelPlanarf32);
    expectPlanar<float>(sobel3, asItIs, rvkImageGradientSobelPlanarf32_v2);
    expectInterleaved<int16_t>(scharr, asItIs, rvkImageGradientScharrInterleaveds16);

    // Whole numbers below 2^24 are exact in floats, too.
    const auto ofFloats = [](auto function) {
        return [=](const uint8_t* src, uint32_t width, uint32_t height, uint32_t, float* dx, float* dy, uint32_t) {
            const std::vector<float> floats(src, src + width * height);
            function(floats.data(), width, height, 0, dx, dy, 0);
        };
    };
    expectPlanar<float>(sobel3, asItIs, ofFloats(rvkImageGradientSobelPlanarf32f32));
    expectPlanar<float>(sobel3, asItIs, ofFloats(rvkImageGradientSobelPlanarf32f32_v2));
}

TEST(Gradient, EdgeStrengthIsTheSaturatedSum)
{
    Random random(3);
    for (int trial = 0; trial < 30; ++trial) {
        const Picture p = randomPicture(random, 1);
        const Planes<int> planes = expectedPlanes<int>(sobel3, asItIs, p, -1);
        std::vector<uint8_t> expected(p.pixels.size(), 77), first = expected, second = expected;
        for (size_t i = 0; i < expected.size(); ++i)
            if (planes.dx[i] != -1 || planes.dy[i] != -1)
                expected[i] = static_cast<uint8_t>(std::min(std::abs(planes.dx[i]) + std::abs(planes.dy[i]), 255));
        const auto width = static_cast<uint32_t>(p.width), height = static_cast<uint32_t>(p.height);
        rvkFilterSobel3x3u8(p.pixels.data(), width, height, 0, first.data(), 0);
        rvkFilterSobel3x3u8_v2(p.pixels.data(), width, height, 0, second.data(), 0);
        for (int y = 1; y + 1 < p.height; ++y) // a pixel whose derivatives are both -1 was taken for the ring
            for (int x = 1; x + 1 < p.width; ++x) {
                const auto i = static_cast<size_t>(y * p.width + x);
                if (planes.dx[i] == -1 && planes.dy[i] == -1)
                    expected[i] = 2;
            }
        ASSERT_EQ(first, expected);
        ASSERT_EQ(second, expected);
    }
}

TEST(Gradient, SobelOfAnySizeFollowsTheDefinition)
{
    Random random(4);
    for (int trial = 0; trial < 60; ++trial) {
        const Picture p = randomPicture(random, 1);
        const auto border = random.below(4);
        const auto outside = static_cast<uint8_t>(random.below(256));
        const auto expect = [&](const Operator& op, auto function) {
            Planes<int16_t> planes = {std::vector<int16_t>(p.pixels.size(), 77),
                                      std::vector<int16_t>(p.pixels.size(), 77)};
            ASSERT_EQ(function(p.pixels.data(), static_cast<uint32_t>(p.width), static_cast<uint32_t>(p.height), 0,
                               planes.dx.data(), planes.dy.data(), 0, border, outside),
                      RAVIK_SUCCESS);
            ASSERT_EQ(planes, expectedPlanes<int16_t>(op, saturated, p, 77, border, outside))
                << p.width << "x" << p.height << ", size " << op.size << ", border " << border;
        };
        expect(sobel3, rvkFilterSobel3x3u8s16);
        expect(sobel5, rvkFilterSobel5x5u8s16);
        expect(sobel7, rvkFilterSobel7x7u8s16);
    }
}

TEST(Gradient, WorkedValues)
{
    uint8_t step[25], ramp[25];
    for (uint8_t i = 0; i < 25; ++i) {
        step[i] = i % 5 < 2 ? 0 : 255;
        ramp[i] = i % 5;
    }
    int16_t dx[25] = {}, dy[25] = {}, pairs[18] = {};
    rvkImageGradientSobelPlanars16_v3(step, 5, 5, 0, dx, dy, 0);
    EXPECT_EQ(dx[2 * 5 + 1], 1020);
    EXPECT_EQ(dx[2 * 5 + 2], 1020);
    EXPECT_EQ(dy[2 * 5 + 2], 0);
    rvkImageGradientSobelPlanars16(step, 5, 5, 0, dx, dy, 0);
    EXPECT_EQ(dx[2 * 5 + 2], 127);
    uint8_t strength[25] = {};
    rvkFilterSobel3x3u8(step, 5, 5, 0, strength, 0);
    EXPECT_EQ(strength[2 * 5 + 2], 255);
    rvkImageGradientInterleaveds16(ramp, 5, 5, 0, pairs, 0);
    EXPECT_EQ(pairs[8], 2);
    EXPECT_EQ(pairs[9], 0);
    rvkImageGradientScharrInterleaveds16(ramp, 5, 5, 0, pairs, 0);
    EXPECT_EQ(pairs[8], 32);

    const uint8_t least[9] = {255, 0, 0, 0, 0, 0, 0, 0, 0}; // the quotient is rounded down
    int8_t small[2][9] = {};
    rvkImageGradientSobelPlanars8(least, 3, 3, 0, small[0], small[1], 0);
    EXPECT_EQ(small[0][4], -32);
    const uint8_t one[9] = {1};
    rvkImageGradientSobelPlanars8(one, 3, 3, 0, small[0], small[1], 0);
    EXPECT_EQ(small[1][4], -1);
}

// ---- VECTA --------------------------------------------------------------------------------------

// Sizes of the trial, and now and then pictures wider and higher than the strips and blocks that they are worked on in.
void drawSize(Trial& t)
{
    if (t.below(25) != 0)
        return;
    t.width = 900 + t.below(1400);
    t.height = 1 + t.below(80);
}

template <Slot slot, class S, class T>
void expectSamePlanes()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        drawSize(t);
        const auto src = t.input<S>();
        const auto dx = t.output<T>(), dy = t.output<T>();
        function(src.data, t.width, t.height, src.stride, dx.data, dy.data, dx.stride);
    });
}

template <Slot slot, class T>
void expectSamePairs()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        drawSize(t);
        if (t.width < 3 || t.height < 3)
            return;
        const auto src = t.input<uint8_t>();
        const auto pairs = t.outputOf<T>(2 * (t.width - 2), t.height - 2);
        function(src.data, t.width, t.height, src.stride, pairs.data, pairs.stride);
    });
}

TEST(Gradient, VectaEqualsReference)
{
    expectSamePairs<Slot::rvkImageGradientInterleaveds16_v2, int16_t>();
    expectSamePairs<Slot::rvkImageGradientInterleavedf32_v2, float>();
    expectSamePlanes<Slot::rvkImageGradientPlanars16_v2, uint8_t, int16_t>();
    expectSamePlanes<Slot::rvkImageGradientPlanarf32_v2, uint8_t, float>();
    expectSamePairs<Slot::rvkImageGradientSobelInterleaveds16_v2, int16_t>();
    expectSamePairs<Slot::rvkImageGradientSobelInterleaveds16_v3, int16_t>();
    expectSamePairs<Slot::rvkImageGradientSobelInterleavedf32_v2, float>();
    expectSamePlanes<Slot::rvkImageGradientSobelPlanars16_v2, uint8_t, int16_t>();
    expectSamePlanes<Slot::rvkImageGradientSobelPlanars8_v2, uint8_t, int8_t>();
    expectSamePlanes<Slot::rvkImageGradientSobelPlanarf32_v2, uint8_t, float>();
    expectSamePlanes<Slot::rvkImageGradientSobelPlanarf32f32_v2, float, float>();
    expectSamePairs<Slot::rvkImageGradientScharrInterleaveds16, int16_t>();
    expectVectaEqualsReference<Slot::rvkFilterSobel3x3u8_v2>([](auto function, Trial& t) {
        drawSize(t);
        const auto src = t.input<uint8_t>();
        const auto dst = t.output<uint8_t>();
        function(src.data, t.width, t.height, src.stride, dst.data, dst.stride);
    });
}

TEST(Gradient, VectaEqualsReferenceWithEitherPlaneAlone)
{
    const auto planes = [](Trial& t) {
        const auto dx = t.output<int16_t>(), dy = t.output<int16_t>();
        const uint32_t kind = t.below(4);
        return std::array<Image<int16_t>, 2>{
            {{kind == 1 ? nullptr : dx.data, dx.stride}, {kind == 2 ? nullptr : dy.data, dy.stride}}};
    };
    expectVectaEqualsReference<Slot::rvkImageGradientSobelPlanars16_v3>([=](auto function, Trial& t) {
        drawSize(t);
        const auto src = t.input<uint8_t>();
        const auto [dx, dy] = planes(t);
        t.result(function(src.data, t.width, t.height, src.stride, dx.data, dy.data, dx.stride));
    });
    const auto bordered = [=](auto function, Trial& t) {
        drawSize(t);
        const auto src = t.input<uint8_t>();
        const auto [dx, dy] = planes(t);
        const uint32_t border = t.below(4);
        t.result(
            function(src.data, t.width, t.height, src.stride, dx.data, dy.data, dx.stride, border, t.value<uint8_t>()));
    };
    expectVectaEqualsReference<Slot::rvkFilterSobel3x3u8s16>(bordered);
    expectVectaEqualsReference<Slot::rvkFilterSobel5x5u8s16>(bordered);
    expectVectaEqualsReference<Slot::rvkFilterSobel7x7u8s16>(bordered);
}

// ---- entries ------------------------------------------------------------------------------------

TEST(Gradient, BadArgumentsAreLoggedAndWriteNothing)
{
    const std::vector<uint8_t> src(64 * 64, 9);
    std::vector<int16_t> dst(src.size(), 77);
    const std::vector<int16_t> untouched = dst;
    int16_t *const dx = dst.data(), *const dy = dx + 2048;
    const auto refused = [&](const std::string& line, auto call) {
        clearLog();
        call(src.data());
        return logHas("6 ravik_lib_log: Assertion failed @" + line + "\n") && logLines.size() == 1 && dst == untouched;
    };
    const std::string compact = "rvkImageGradientScharrInterleaveds16: src && srcWidth && srcHeight && (srcStride >= "
                                "srcWidth)&& gradients && (gradStride >= ((srcWidth-2)*2*sizeof(int16_t)))";
    const auto scharrOf = [=](auto s, uint32_t width, uint32_t height, uint32_t stride, int16_t* d, uint32_t dStride) {
        rvkImageGradientScharrInterleaveds16(s, width, height, stride, d, dStride);
    };
    EXPECT_TRUE(refused(compact, [=](auto) { scharrOf(nullptr, 9, 9, 0, dx, 0); }));
    EXPECT_TRUE(refused(compact, [=](auto s) { scharrOf(s, 0, 9, 0, dx, 0); }));
    EXPECT_TRUE(refused(compact, [=](auto s) { scharrOf(s, 1, 9, 0, dx, 0); }));
    EXPECT_TRUE(refused(compact, [=](auto s) { scharrOf(s, 9, 0, 0, dx, 0); }));
    EXPECT_TRUE(refused(compact, [=](auto s) { scharrOf(s, 9, 9, 8, dx, 0); }));
    EXPECT_TRUE(refused(compact, [=](auto s) { scharrOf(s, 9, 9, 0, nullptr, 0); }));
    EXPECT_TRUE(refused(compact, [=](auto s) { scharrOf(s, 9, 9, 0, dx, 27); }));
    EXPECT_TRUE(refused(compact, [=](auto s) { scharrOf(s, 0x40000005, 3, 0, dx, 0); })); // a row wraps to 12 bytes

    float* const floats = reinterpret_cast<float*>(dx);
    EXPECT_TRUE(refused("rvkImageGradientSobelPlanarf32_v2: src && srcWidth && srcHeight && (srcStride >= srcWidth) && "
                        "dx && dy && (dxyStride >= (srcWidth*sizeof(float)))",
                        [=](auto s) { rvkImageGradientSobelPlanarf32_v2(s, 9, 9, 0, floats, floats + 512, 35); }));
    EXPECT_TRUE(refused("rvkImageGradientSobelPlanars8: src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx "
                        "&& dy && (dxyStride >= srcWidth)",
                        [=](auto s) { rvkImageGradientSobelPlanars8(s, 9, 9, 0, nullptr, nullptr, 0); }));
    EXPECT_TRUE(refused("rvkImageGradientPlanars16: dx != dy",
                        [=](auto s) { rvkImageGradientPlanars16(s, 9, 9, 0, dx, dx, 0); }));
    EXPECT_TRUE(refused("rvkImageGradientSobelPlanarf32f32: src != dx && src != dy && dx != dy",
                        [=](auto) { rvkImageGradientSobelPlanarf32f32(floats, 9, 9, 0, floats + 512, floats, 0); }));
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(dx);
    EXPECT_TRUE(refused("rvkFilterSobel3x3u8: src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && "
                        "(dstStride >= srcWidth)",
                        [=](auto s) { rvkFilterSobel3x3u8(s, 9, 9, 0, bytes, 8); }));
    EXPECT_TRUE(
        refused("rvkFilterSobel3x3u8_v2: src != dst", [=](auto) { rvkFilterSobel3x3u8_v2(bytes, 9, 9, 0, bytes, 0); }));

    clearLog();
    const uint8_t* const s = src.data();
    EXPECT_EQ(rvkImageGradientSobelInterleaveds16_v3(s, 1, 9, 0, dx, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkImageGradientSobelInterleaveds16_v3(s, 9, 9, 0, dx, 27), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkImageGradientSobelPlanars16_v3(s, 9, 9, 0, nullptr, nullptr, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkImageGradientSobelPlanars16_v3(s, 9, 9, 0, dx, dx, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkImageGradientSobelPlanars16_v3(s, 9, 9, 0, dx, dy, 17), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterSobel3x3u8s16(s, 9, 9, 8, dx, dy, 0, 1, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterSobel5x5u8s16(s, 9, 9, 0, dx, dx, 0, 1, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterSobel7x7u8s16(s, 0x80000009, 1, 0, dx, dy, 0, 1, 0), RAVIK_EBADPARAM);
    for (auto function : {rvkFilterSobel3x3u8s16, rvkFilterSobel5x5u8s16, rvkFilterSobel7x7u8s16})
        EXPECT_EQ(function(s, 9, 9, 0, nullptr, nullptr, 0, 1, 0), RAVIK_EFAIL);
    EXPECT_EQ(dst, untouched);
    EXPECT_TRUE(logLines.empty());
}

} // namespace

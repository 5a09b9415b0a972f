#include "scratch.h"
#include "support/logCapture.h"
#include "support/trial.h"

#include <functional>

using namespace test;

namespace {

// ---- the references against the definition, pixel by pixel --------------------------------------

enum class Border { leave, renormalise, constant, replicate };

template <class T>
struct Filter
{
    std::vector<int64_t> weights;                                    // of the rows and columns of the window
    std::function<int64_t(int64_t sum, int64_t weightOfAll)> result; // ring pixels may weigh less than the interior
    Border border;
    T outside = 0;
};

std::vector<int64_t> binomials(int n)
{
    std::vector<int64_t> row = {1};
    for (; n > 0; --n) {
        row.push_back(1);
        for (size_t k = row.size() - 2; k > 0; --k)
            row[k] += row[k - 1];
    }
    return row;
}

int64_t floorOf(int64_t a, int64_t b)
{
    return a / b - (a % b < 0);
}

template <class T>
Filter<T> gaussian(int size, Border border, T outside = 0)
{
    const int64_t whole = int64_t{1} << 2 * (size - 1);
    return {binomials(size - 1),
            [=](int64_t sum, int64_t weights) { return weights == whole ? floorOf(sum, whole) : sum / weights; },
            border, outside};
}

Filter<uint8_t> box(int size, int64_t reciprocal, Border border, uint8_t outside = 0)
{
    return {std::vector<int64_t>(static_cast<size_t>(size), 1),
            [=](int64_t sum, int64_t) { return (sum * reciprocal + 32768) >> 16; }, border, outside};
}

template <class T>
std::vector<T> expectedOf(const Filter<T>& filter, const std::vector<T>& src, int width, int height, std::vector<T> dst)
{
    const int size = static_cast<int>(filter.weights.size()), radius = size / 2;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int64_t sum = 0, weights = 0;
            bool interior = true;
            for (int j = 0; j < size; ++j)
                for (int i = 0; i < size; ++i) {
                    const int row = y + j - radius, column = x + i - radius;
                    const bool exists = row >= 0 && row < height && column >= 0 && column < width;
                    interior = interior && exists;
                    if (!exists && filter.border == Border::renormalise)
                        continue;
                    const int nearest = std::clamp(row, 0, height - 1) * width + std::clamp(column, 0, width - 1);
                    const int64_t pixel = exists || filter.border == Border::replicate
                                              ? src[static_cast<size_t>(nearest)]
                                              : filter.outside;
                    const int64_t weight =
                        filter.weights[static_cast<size_t>(j)] * filter.weights[static_cast<size_t>(i)];
                    sum += weight * pixel;
                    weights += weight;
                }
            if (interior || filter.border != Border::leave)
                dst[static_cast<size_t>(y * width + x)] = static_cast<T>(filter.result(sum, weights));
        }
    return dst;
}

// function(src, width, height, stride, dst, stride, arguments...) on sizes from the smallest on, with all kinds of
// contents.
template <class T, class Function, class... Arguments>
void expectFilter(const char* name, const Filter<T>& filter, int least, Function function, Arguments... arguments)
{
    Random random(7);
    for (int trial = 0; trial < 60; ++trial) {
        const int width = least + static_cast<int>(random.below(trial < 20 ? 3 : 30));
        const int height = least + static_cast<int>(random.below(trial < 20 ? 3 : 30));
        const auto content = static_cast<Content>(random.below(static_cast<uint32_t>(Content::count)));
        std::vector<T> src(static_cast<size_t>(width * height)), dst(src.size(), 77);
        const T constant = drawElement<T>(random, Content::uniform);
        for (T& pixel : src)
            pixel = content == Content::constant ? constant : drawElement<T>(random, content);
        const std::vector<T> expected = expectedOf(filter, src, width, height, dst);
        const uint32_t stride = static_cast<uint32_t>(width) * static_cast<uint32_t>(sizeof(T));
        function(src.data(), static_cast<uint32_t>(width), static_cast<uint32_t>(height), stride, dst.data(), stride,
                 arguments...);
        ASSERT_EQ(dst, expected) << name << ", " << width << "x" << height << ", trial " << trial;
    }
}

TEST(Blur, ReferencesFollowTheDefinition)
{
    using enum Border;
    for (const uint32_t flag : {0u, 2u, 1u}) {
        const Border border = flag == 1 ? renormalise : leave;
        expectFilter("3x3", gaussian<uint8_t>(3, border), 1, rvkFilterGaussian3x3u8_v2C, flag);
        expectFilter("5x5", gaussian<uint8_t>(5, border), 5, rvkFilterGaussian5x5u8_v2C, flag);
        expectFilter("5x5 s16", gaussian<int16_t>(5, border), 1, rvkFilterGaussian5x5s16_v2C, flag);
        expectFilter("11x11", gaussian<uint8_t>(11, border), 11, rvkFilterGaussian11x11u8_v2C, flag);
    }
    expectFilter("5x5 s32", gaussian<int32_t>(5, renormalise), 5, rvkFilterGaussian5x5s32_v2C, 1u);
    expectFilter("3x3 constant", gaussian<uint8_t>(3, constant, 200), 2, rvkFilterGaussian3x3u8_v3C, 1u, uint8_t{200});
    expectFilter("3x3 replicate", gaussian<uint8_t>(3, replicate), 2, rvkFilterGaussian3x3u8_v3C, 2u, uint8_t{200});
    expectFilter("3x3 other", gaussian<uint8_t>(3, renormalise), 2, rvkFilterGaussian3x3u8_v3C, 0u, uint8_t{200});

    expectFilter("box 3x3", box(3, 7282, constant), 3, rvkBoxFilter3x3u8C);
    expectFilter("box 3x3 constant", box(3, 7282, constant, 200), 3, rvkBoxFilter3x3u8_v2C, 1u, uint8_t{200});
    expectFilter("box 3x3 replicate", box(3, 7282, replicate), 3, rvkBoxFilter3x3u8_v2C, 2u, uint8_t{200});
    expectFilter("box 3x3 other", box(3, 7282, constant), 3, rvkBoxFilter3x3u8_v2C, 3u, uint8_t{200});
    expectFilter("box 5x5", box(5, 2621, constant), 5, rvkBoxFilter5x5u8C);
    expectFilter("box 11x11", box(11, 542, constant), 11, rvkBoxFilter11x11u8C);
}

TEST(Blur, WorkedValues)
{
    // A constant picture: the corner, the middle of the top edge, and the centre.
    const auto constant = [](uint8_t value, uint32_t size, auto filter) {
        const std::vector<uint8_t> src(size * size, value);
        std::vector<uint8_t> dst(size * size, 1);
        filter(src.data(), size, dst.data());
        return std::vector<int>{dst[0], dst[size / 2], dst[size * size / 2]};
    };
    using Values = std::vector<int>;
    EXPECT_EQ(constant(90, 9, [](auto* s, uint32_t n, auto* d) { rvkFilterGaussian3x3u8(s, n, n, d, 1); }),
              (Values{90, 90, 90}));
    EXPECT_EQ(constant(90, 9, [](auto* s, uint32_t n, auto* d) { rvkFilterGaussian3x3u8(s, n, n, d, 0); }),
              (Values{1, 1, 90}));
    EXPECT_EQ(constant(16, 9, [](auto* s, uint32_t n, auto* d) { rvkFilterGaussian3x3u8_v3(s, n, n, 0, d, 0, 1, 0); }),
              (Values{9, 12, 16}));
    EXPECT_EQ(constant(255, 9, [](auto* s, uint32_t n, auto* d) { rvkBoxFilter3x3u8(s, n, n, 0, d, 0); }),
              (Values{113, 170, 255}));
    EXPECT_EQ(constant(100, 9, [](auto* s, uint32_t n, auto* d) { rvkBoxFilter5x5u8(s, n, n, 0, d, 0); }),
              (Values{36, 60, 100}));
    EXPECT_EQ(constant(255, 31, [](auto* s, uint32_t n, auto* d) { rvkBoxFilter11x11u8(s, n, n, 0, d, 0); }),
              (Values{76, 139, 255}));

    const int16_t below[25] = {-1}; // rounded down in the interior, towards zero in the ring
    int16_t result[25];
    rvkFilterGaussian5x5s16(below, 5, 5, result, 1);
    EXPECT_EQ(result[12], -1);
    EXPECT_EQ(result[6], 0);
}

// ---- the float box filter -----------------------------------------------------------------------

// The mean of the window in long double, and the mean of the magnitudes.
struct ExactMean
{
    long double mean, magnitude;
};
ExactMean exactMean(const std::vector<float>& src, int width, int height, int x, int y, int size)
{
    ExactMean result = {0, 0};
    for (int j = 0; j < size; ++j)
        for (int i = 0; i < size; ++i) {
            const int row = std::clamp(y + j - size / 2, 0, height - 1),
                      column = std::clamp(x + i - size / 2, 0, width - 1);
            const long double value = src[static_cast<size_t>(row * width + column)];
            result.mean += value / (size * size);
            result.magnitude += std::fabs(value) / (size * size);
        }
    return result;
}

TEST(Blur, FloatBoxFilterKeepsItsErrorBoundEverywhere)
{
    Random random(1);
    // A wide picture in which the values vary by 16 powers of two, and small ones of every parity of N.
    struct Size
    {
        int width, height, n;
    };
    for (const Size s :
         {Size{4096, 12, 11}, Size{4096, 6, 2}, Size{5, 5, 5}, Size{6, 5, 4}, Size{5, 9, 3}, Size{40, 33, 31}}) {
        std::vector<float> src(static_cast<size_t>(s.width * s.height)), dst(src.size());
        for (float& value : src)
            value = std::ldexp(static_cast<float>(random.below(2001)) - 1000, static_cast<int>(random.below(16)));
        for (const uint32_t mode : {uint32_t{RAVIK_OP_EXPERT | RAVIK_UNIT_ARM}, uint32_t{RAVIK_OP_CPU_PERFORMANCE}}) {
            rvkSetOperationMode(static_cast<rvkOperationMode>(mode));
            ASSERT_EQ(rvkBoxFilterNxNf32(src.data(), static_cast<uint32_t>(s.width), static_cast<uint32_t>(s.height), 0,
                                         static_cast<uint32_t>(s.n), dst.data(), 0),
                      RAVIK_SUCCESS);
            const double bound = (s.n + std::log2(s.n) + 3) * 0x1p-24;
            for (int y = 0; y < s.height; ++y)
                for (int x = 0; x < s.width; ++x) {
                    const ExactMean exact = exactMean(src, s.width, s.height, x, y, s.n);
                    ASSERT_LE(std::fabs(dst[static_cast<size_t>(y * s.width + x)] - exact.mean),
                              bound * exact.magnitude)
                        << s.width << "x" << s.height << " N " << s.n << " at " << x << ", " << y;
                }
        }
    }
    rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_ARM));
}

TEST(Blur, FloatBoxFilterForgetsWhatLeavesTheWindow)
{
    std::vector<float> src(40 * 30, 3.0f), dst(src.size());
    src[15 * 40 + 20] = NAN;
    src[5 * 40 + 5] = 1e30f;
    for (const uint32_t mode : {uint32_t{RAVIK_OP_EXPERT | RAVIK_UNIT_ARM}, uint32_t{RAVIK_OP_CPU_PERFORMANCE}}) {
        rvkSetOperationMode(static_cast<rvkOperationMode>(mode));
        ASSERT_EQ(rvkBoxFilterNxNf32(src.data(), 40, 30, 0, 5, dst.data(), 0), RAVIK_SUCCESS);
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x) {
                const float value = dst[static_cast<size_t>(y * 40 + x)];
                const bool hasNan = std::abs(y - 15) <= 2 && std::abs(x - 20) <= 2;
                const bool hasHuge = std::abs(y - 5) <= 2 && std::abs(x - 5) <= 2;
                ASSERT_TRUE(hasNan ? std::isnan(value) : hasHuge ? value > 1e28f : value == 3.0f) << x << ", " << y;
            }
    }
    rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_ARM));
}

// ---- local normalisation ------------------------------------------------------------------------

// (pixel - mean) / max(deviation, floor), the window continued by the nearest pixels.
template <class T>
double expectedNormalised(const std::vector<T>& src, int width, int height, int x, int y, int windowWidth,
                          int windowHeight, double floorOfMean, double floor)
{
    std::vector<double> window;
    for (int j = 0; j < windowHeight; ++j)
        for (int i = 0; i < windowWidth; ++i) {
            const int row = std::clamp(y + j - windowHeight / 2, 0, height - 1);
            const int column = std::clamp(x + i - windowWidth / 2, 0, width - 1);
            window.push_back(src[static_cast<size_t>(row * width + column)]);
        }
    double mean = 0, variance = 0;
    for (const double value : window)
        mean += value / static_cast<double>(window.size());
    for (const double value : window)
        variance += (value - mean) * (value - mean) / static_cast<double>(window.size());
    const double deviation = std::max({std::sqrt(variance), floorOfMean * std::fabs(mean), floor});
    return (src[static_cast<size_t>(y * width + x)] - mean) / deviation;
}

TEST(Blur, LocalNormalisationFollowsTheDefinition)
{
    Random random(3);
    for (int trial = 0; trial < 60; ++trial) {
        const int width = 1 + static_cast<int>(random.below(24)), height = 1 + static_cast<int>(random.below(24));
        const int w = 1 + 2 * static_cast<int>(random.below(static_cast<uint32_t>(width + 1) / 2));
        const int h = 1 + 2 * static_cast<int>(random.below(static_cast<uint32_t>(height + 1) / 2));
        const uint32_t range = trial % 3 == 0 ? 256 : trial % 3 == 1 ? 5 : 1;
        std::vector<uint8_t> bytes(static_cast<size_t>(width * height)), normalised(bytes.size());
        std::vector<float> floats(bytes.size()), normalisedFloats(bytes.size());
        for (size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<uint8_t>(random.below(range) + (256 - range));
            floats[i] = 1e-20f * (1000.0f + bytes[i]);
        }
        const auto u = [](int n) { return static_cast<uint32_t>(n); };
        ASSERT_EQ(rvkNormalizeLocalBoxu8(bytes.data(), u(width), u(height), 0, u(w), u(h), normalised.data(), 0), 0);
        ASSERT_EQ(
            rvkNormalizeLocalBoxf32(floats.data(), u(width), u(height), 0, u(w), u(h), normalisedFloats.data(), 0), 0);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const size_t i = static_cast<size_t>(y * width + x);
                const double z = expectedNormalised(bytes, width, height, x, y, w, h, 0, 1);
                ASSERT_NEAR(normalised[i], std::clamp(128 + 32 * z, 0.0, 255.0), 0.51) << trial;
                const double zf = expectedNormalised(floats, width, height, x, y, w, h, 0x1p-20, 0);
                ASSERT_NEAR(normalisedFloats[i], std::isnan(zf) ? 0 : zf, 1e-5) << trial;
            }
    }
}

TEST(Blur, LocalNormalisationOfTheLargestWindowsDoesNotOverflow)
{
    constexpr uint32_t size = 257;
    std::vector<uint8_t> src(size * size, 255), dst(src.size());
    for (size_t i = 0; i < src.size(); i += 2)
        src[i] = 0; // 33025 of 66049
    for (const uint32_t mode : {uint32_t{RAVIK_OP_EXPERT | RAVIK_UNIT_ARM}, uint32_t{RAVIK_OP_CPU_PERFORMANCE}}) {
        rvkSetOperationMode(static_cast<rvkOperationMode>(mode));
        ASSERT_EQ(rvkNormalizeLocalBoxu8(src.data(), size, size, 0, size, size, dst.data(), 0), RAVIK_SUCCESS);
        EXPECT_EQ(dst[128 * size + 128], 96); // one deviation below the mean
        EXPECT_EQ(dst[128 * size + 129], 160);
    }
    EXPECT_EQ(rvkNormalizeLocalBoxu8(src.data(), 273, 243, 0, 273, 243, dst.data(), 0), RAVIK_EBADPARAM);
    rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_ARM));
}

// ---- VECTA --------------------------------------------------------------------------------------

// Sizes of the trial, and now and then pictures wider and higher than the strips and tiles that they are worked on in.
void drawSize(Trial& t)
{
    if (t.below(25) != 0)
        return;
    t.width = 900 + t.below(1400);
    t.height = 1 + t.below(150);
}

template <Slot slot, class T, class... Arguments>
void expectSameFilter(uint32_t least, Arguments... arguments)
{
    expectVectaEqualsReference<slot>([=](auto function, Trial& t) {
        drawSize(t);
        const auto src = t.input<T>();
        const auto dst = t.output<T>();
        if (t.width >= least && t.height >= least)
            function(src.data, t.width, t.height, src.stride, dst.data, dst.stride, arguments...);
    });
}

TEST(Blur, VectaEqualsReference)
{
    for (const uint32_t flag : {0u, 1u}) {
        expectSameFilter<Slot::rvkFilterGaussian3x3u8_v2, uint8_t>(1, flag);
        expectSameFilter<Slot::rvkFilterGaussian5x5u8_v2, uint8_t>(5, flag);
        expectSameFilter<Slot::rvkFilterGaussian5x5s16_v2, int16_t>(1, flag);
        expectSameFilter<Slot::rvkFilterGaussian5x5s32_v2, int32_t>(5, flag);
        expectSameFilter<Slot::rvkFilterGaussian11x11u8_v2, uint8_t>(11, flag);
    }
    for (const uint32_t border : {0u, 1u, 2u}) {
        expectSameFilter<Slot::rvkFilterGaussian3x3u8_v3, uint8_t>(2, border, uint8_t{201});
        expectSameFilter<Slot::rvkBoxFilter3x3u8_v2, uint8_t>(3, border, uint8_t{201});
    }
    expectSameFilter<Slot::rvkBoxFilter3x3u8, uint8_t>(3);
    expectSameFilter<Slot::rvkBoxFilter5x5u8, uint8_t>(5);
    expectSameFilter<Slot::rvkBoxFilter11x11u8, uint8_t>(11);
}

TEST(Blur, VectaEqualsReferenceForWindowsOfAnySize)
{
    expectVectaEqualsReference<Slot::rvkBoxFilterNxNf32>([](auto function, Trial& t) {
        const uint32_t most = std::min({t.width, t.height, 40u});
        if (t.width < 5 || t.height < 5)
            return;
        const uint32_t n = 2 + t.below(most - 1);
        const auto image = t.inOut<float>();
        const auto dst = t.below(3) == 0 ? image : t.output<float>();
        t.result(function(image.data, t.width, t.height, image.stride, n, dst.data, dst.stride));
    });
    const auto window = [](Trial& t, uint32_t size) { return 1 + 2 * t.below(std::min(size + 1, 40u) / 2); };
    expectVectaEqualsReference<Slot::rvkNormalizeLocalBoxu8>([=](auto function, Trial& t) {
        const uint32_t width = window(t, t.width), height = window(t, t.height);
        const auto src = t.input<uint8_t>();
        const auto dst = t.output<uint8_t>();
        t.result(function(src.data, t.width, t.height, src.stride, width, height, dst.data, dst.stride));
    });
    expectVectaEqualsReference<Slot::rvkNormalizeLocalBoxf32>([=](auto function, Trial& t) {
        const uint32_t width = window(t, t.width), height = window(t, t.height);
        const auto src = t.input<float>();
        const auto dst = t.output<float>();
        t.result(function(src.data, t.width, t.height, src.stride, width, height, dst.data, dst.stride));
    });
}

TEST(Blur, ExhaustedScratchMemoryIsReportedAndWritesNothing)
{
    rvkMemInit();
    void* buffers[32];
    const uint32_t kept = 3; // enough for the first buffers of a function, not for all
    for (uint32_t left = 0; left <= kept; ++left) {
        for (uint32_t i = left; i < 32; ++i)
            buffers[i] = getScratchUnaligned(1);
        const auto expectNone = [](auto function, auto src, uint32_t n, uint32_t m) {
            std::vector<decltype(src)> in(81, src), out(81, 77);
            rvkStatus status;
            constexpr uint32_t stride = 9 * sizeof src;
            if constexpr (requires { function(in.data(), 9, 9, stride, n, m, out.data(), stride); })
                status = function(in.data(), 9, 9, stride, n, m, out.data(), stride);
            else
                status = function(in.data(), 9, 9, stride, n, out.data(), stride);
            EXPECT_TRUE(status == RAVIK_SUCCESS || (status == RAVIK_ENORES && out == decltype(out)(81, 77)));
            return status;
        };
        const auto all = [&](auto expectStatus) {
            expectStatus(expectNone(rvkBoxFilterNxNf32C, 1.0f, 3, 3));
            expectStatus(expectNone(rvkNormalizeLocalBoxf32C, 1.0f, 3, 3));
            const auto vecta = [&](auto, auto function) { expectStatus(expectNone(function, 1.0f, 3, 3)); };
            forEachVecta<Slot::rvkBoxFilterNxNf32>(vecta);
            forEachVecta<Slot::rvkNormalizeLocalBoxf32>(vecta);
            if (left == 0)
                forEachVecta<Slot::rvkNormalizeLocalBoxu8>(
                    [&](auto, auto function) { expectStatus(expectNone(function, uint8_t{1}, 3, 3)); });
        };
        if (left <= 1) // every one takes two or more, or one
            all([](rvkStatus status) { EXPECT_EQ(status, RAVIK_ENORES); });
        else
            all([](rvkStatus) {});
        for (uint32_t i = left; i < 32; ++i)
            releaseScratch(buffers[i]);
        all([](rvkStatus status) { EXPECT_EQ(status, RAVIK_SUCCESS); }); // everything was released
    }
    rvkMemDeInit();
}

// ---- entries ------------------------------------------------------------------------------------

TEST(Blur, BadArgumentsAreLoggedAndWriteNothing)
{
    const std::vector<uint8_t> src(64 * 64, 9);
    std::vector<uint8_t> dst(src.size(), 77);
    const std::vector<uint8_t> untouched = dst;
    const auto refused = [&](const std::string& line, auto call) {
        clearLog();
        call(src.data(), dst.data());
        return logHas("6 ravik_lib_log: Assertion failed @" + line + "\n") && logLines.size() == 1 && dst == untouched;
    };
    const std::string g3 =
        "rvkFilterGaussian3x3u8_v2: src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= "
        "srcWidth) && (dstStride >= srcWidth)";
    EXPECT_TRUE(refused(g3, [](auto, auto d) { rvkFilterGaussian3x3u8_v2(nullptr, 9, 9, 0, d, 0, 1); }));
    EXPECT_TRUE(refused(g3, [](auto s, auto) { rvkFilterGaussian3x3u8_v2(s, 9, 9, 0, nullptr, 0, 1); }));
    EXPECT_TRUE(refused(g3, [](auto s, auto d) { rvkFilterGaussian3x3u8_v2(s, 1, 9, 0, d, 0, 1); }));
    EXPECT_TRUE(refused(g3, [](auto s, auto d) { rvkFilterGaussian3x3u8_v2(s, 9, 1, 0, d, 0, 1); }));
    EXPECT_TRUE(refused(g3, [](auto s, auto d) { rvkFilterGaussian3x3u8_v2(s, 9, 9, 8, d, 0, 1); }));
    EXPECT_TRUE(refused(g3, [](auto s, auto d) { rvkFilterGaussian3x3u8_v2(s, 9, 9, 0, d, 8, 1); }));
    EXPECT_TRUE(refused("rvkFilterGaussian3x3u8: src && dst && width && height",
                        [](auto s, auto d) { rvkFilterGaussian3x3u8(s, 0, 9, d, 1); }));
    EXPECT_TRUE(
        refused("rvkFilterGaussian3x3u8: src != dst", [](auto, auto d) { rvkFilterGaussian3x3u8(d, 9, 9, d, 1); }));
    EXPECT_TRUE(refused("rvkFilterGaussian5x5u8: src && dst && width && height && height > 4 && width > 4",
                        [](auto s, auto d) { rvkFilterGaussian5x5u8(s, 4, 9, d, 1); }));
    EXPECT_TRUE(refused("rvkFilterGaussian5x5u8_v2: src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && "
                        "dstStride && srcHeight > 4 && srcWidth > 4",
                        [](auto s, auto d) { rvkFilterGaussian5x5u8_v2(s, 9, 4, 0, d, 0, 1); }));
    EXPECT_TRUE(refused("rvkFilterGaussian11x11u8: src && dst && width && height && height > 10 && width > 10",
                        [](auto s, auto d) { rvkFilterGaussian11x11u8(s, 11, 10, d, 1); }));
    EXPECT_TRUE(
        refused("rvkFilterGaussian11x11u8_v2: src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && "
                "dstStride && srcHeight > 10 && srcWidth > 10",
                [](auto s, auto d) { rvkFilterGaussian11x11u8_v2(s, 10, 11, 0, d, 0, 1); }));
    EXPECT_TRUE(refused("rvkBoxFilter3x3u8: src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && "
                        "(dstStride >= srcWidth) && srcWidth > 2 && srcHeight > 2",
                        [](auto s, auto d) { rvkBoxFilter3x3u8(s, 2, 9, 0, d, 0); }));
    EXPECT_TRUE(
        refused("rvkBoxFilter11x11u8: src != dst", [](auto, auto d) { rvkBoxFilter11x11u8(d, 20, 20, 0, d, 0); }));

    int16_t shorts[100] = {};
    int32_t ints[100] = {};
    const auto wide = [](int16_t* s) {
        rvkFilterGaussian5x5s16_v2(s, 0x80000001, 2, 0, s + 50, 0, 1);
    }; // x 2 wraps to 2
    EXPECT_TRUE(refused("rvkFilterGaussian5x5s16_v2: src && dst && srcWidth && srcHeight && (srcStride >= "
                        "srcWidth*sizeof(int16_t)) && (dstStride >= srcWidth*sizeof(int16_t)) && srcHeight > 1",
                        [&](auto, auto) { wide(shorts); }));
    EXPECT_TRUE(refused("rvkFilterGaussian5x5s32: src && dst && width && height && width > 4 && height > 4",
                        [&](auto, auto) { rvkFilterGaussian5x5s32(ints, 0x40000005, 5, ints + 50, 1); }));

    float floats[100] = {};
    const std::string box =
        "rvkBoxFilterNxNf32: src && dst && srcWidth && srcHeight && (N > 1) && ((src == dst && srcStride "
        "== dstStride) || (src != dst)) && (srcStride >=srcWidth*4) && (dstStride >=srcWidth*4) && "
        "srcWidth > 4 && srcHeight > 4";
    const auto boxFilter = [&](uint32_t width, uint32_t n, uint32_t dstStride) {
        EXPECT_EQ(rvkBoxFilterNxNf32(floats, width, 5, 0, n, floats, dstStride), RAVIK_EBADPARAM);
    };
    EXPECT_TRUE(refused(box, [&](auto, auto) { boxFilter(5, 1, 0); }));
    EXPECT_TRUE(refused(box, [&](auto, auto) { boxFilter(4, 2, 0); }));
    EXPECT_TRUE(refused(box, [&](auto, auto) { boxFilter(5, 2, 24); }));
    EXPECT_TRUE(refused(box, [&](auto, auto) { boxFilter(0x40000005, 2, 0); }));
    EXPECT_TRUE(
        refused("rvkBoxFilterNxNf32: N <= srcWidth && N <= srcHeight", [&](auto, auto) { boxFilter(6, 6, 0); }));
}

TEST(Blur, StatusFunctionsRefuseSilently)
{
    const std::vector<uint8_t> src(900, 9);
    std::vector<uint8_t> dst(src.size(), 77);
    const std::vector<uint8_t> untouched = dst;
    const std::vector<float> floats(900, 1);
    std::vector<float> results(900, 7);
    clearLog();
    const auto gauss = [&](auto s, uint32_t width, uint32_t srcStride, auto d) {
        return rvkFilterGaussian3x3u8_v3(s, width, 9, srcStride, d, 0, 1, 0);
    };
    EXPECT_EQ(gauss(nullptr, 9, 0, dst.data()), RAVIK_EBADPARAM);
    EXPECT_EQ(gauss(src.data(), 9, 0, nullptr), RAVIK_EBADPARAM);
    EXPECT_EQ(gauss(src.data(), 1, 0, dst.data()), RAVIK_EBADPARAM);
    EXPECT_EQ(gauss(src.data(), 9, 8, dst.data()), RAVIK_EBADPARAM);
    EXPECT_EQ(gauss(dst.data(), 9, 0, dst.data()), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkBoxFilter3x3u8_v2(src.data(), 9, 2, 0, dst.data(), 0, 1, 0), RAVIK_EBADPARAM);
    const auto normalise = [&](uint32_t windowWidth, uint32_t windowHeight) {
        const rvkStatus status =
            rvkNormalizeLocalBoxu8(src.data(), 30, 30, 0, windowWidth, windowHeight, dst.data(), 0);
        EXPECT_EQ(rvkNormalizeLocalBoxf32(floats.data(), 30, 30, 0, windowWidth, windowHeight, results.data(), 0),
                  status);
        return status;
    };
    EXPECT_EQ(normalise(0, 3), RAVIK_EBADPARAM);
    EXPECT_EQ(normalise(3, 4), RAVIK_EBADPARAM);
    EXPECT_EQ(normalise(31, 3), RAVIK_EBADPARAM);
    EXPECT_EQ(dst, untouched);
    EXPECT_EQ(results, std::vector<float>(900, 7));
    EXPECT_TRUE(logLines.empty());
}

TEST(Blur, FormsWithoutStridesWorkOnPackedRows)
{
    Random random(5);
    std::vector<int32_t> ints(15 * 13), intResult(ints.size()), intExpected(ints.size());
    for (int32_t& value : ints)
        value = static_cast<int32_t>(random.next());
    const auto* bytes = reinterpret_cast<const uint8_t*>(ints.data());
    const auto* shorts = reinterpret_cast<const int16_t*>(ints.data());
    const auto same = [&](auto packed, auto strided) {
        intResult.assign(ints.size(), 7);
        intExpected.assign(ints.size(), 7);
        packed(intResult.data());
        strided(intExpected.data());
        return intResult == intExpected && intResult != std::vector<int32_t>(ints.size(), 7);
    };
    const auto asBytes = [](int32_t* p) { return reinterpret_cast<uint8_t*>(p); };
    const auto asShorts = [](int32_t* p) { return reinterpret_cast<int16_t*>(p); };
    EXPECT_TRUE(same([&](auto d) { rvkFilterGaussian3x3u8(bytes, 15, 13, asBytes(d), 1); },
                     [&](auto d) { rvkFilterGaussian3x3u8_v2(bytes, 15, 13, 15, asBytes(d), 15, 1); }));
    EXPECT_TRUE(same([&](auto d) { rvkFilterGaussian5x5u8(bytes, 15, 13, asBytes(d), 0); },
                     [&](auto d) { rvkFilterGaussian5x5u8_v2(bytes, 15, 13, 0, asBytes(d), 0, 0); }));
    EXPECT_TRUE(same([&](auto d) { rvkFilterGaussian11x11u8(bytes, 15, 13, asBytes(d), 1); },
                     [&](auto d) { rvkFilterGaussian11x11u8_v2(bytes, 15, 13, 0, asBytes(d), 0, 1); }));
    EXPECT_TRUE(same([&](auto d) { rvkFilterGaussian5x5s16(shorts, 15, 13, asShorts(d), 1); },
                     [&](auto d) { rvkFilterGaussian5x5s16_v2(shorts, 15, 13, 30, asShorts(d), 30, 1); }));
    EXPECT_TRUE(same([&](auto d) { rvkFilterGaussian5x5s32(ints.data(), 15, 13, d, 1); },
                     [&](auto d) { rvkFilterGaussian5x5s32_v2(ints.data(), 15, 13, 60, d, 60, 1); }));
}

} // namespace

#include "support/blurs.h"
#include "support/logCapture.h"

#include <cmath>

using namespace test;

namespace {

// ---- binomial and box filters -------------------------------------------------------------------

template <Slot slot, class T, class... Arguments>
void expectBinomial(int least, int size, Ring ring, Arguments... arguments)
{
    expectFiltered<slot, T>(least, std::tuple(arguments...),
                            [=](const auto& src) { return binomialMeans(src, size, ring, T{201}); });
}

template <Slot slot, class... Arguments>
void expectBox(int size, Ring ring, uint8_t outside, Arguments... arguments)
{
    expectFiltered<slot, uint8_t>(size, std::tuple(arguments...),
                                  [=](const auto& src) { return boxMeans(src, size, ring, outside); });
}

TEST(Blur, FollowsTheDefinition)
{
    for (const uint32_t flag : {0u, 2u, 1u}) {
        const Ring ring = flag == 1 ? Ring::existing : Ring::left;
        expectBinomial<Slot::rvkFilterGaussian3x3u8_v2, uint8_t>(1, 3, ring, flag);
        expectBinomial<Slot::rvkFilterGaussian5x5u8_v2, uint8_t>(5, 5, ring, flag);
        expectBinomial<Slot::rvkFilterGaussian5x5s16_v2, int16_t>(1, 5, ring, flag);
        expectBinomial<Slot::rvkFilterGaussian11x11u8_v2, uint8_t>(11, 11, ring, flag);
    }
    expectBinomial<Slot::rvkFilterGaussian5x5s32_v2, int32_t>(5, 5, Ring::existing, 1u);
    expectFiltered<Slot::rvkFilterGaussian5x5s32_v2, int32_t>(
        5, std::tuple(0u), [](const auto& src) { return Picture<int32_t>(src.width, src.height, 77); });
    expectBinomial<Slot::rvkFilterGaussian3x3u8_v3, uint8_t>(2, 3, Ring::constant, 1u, uint8_t{201});
    expectBinomial<Slot::rvkFilterGaussian3x3u8_v3, uint8_t>(2, 3, Ring::nearest, 2u, uint8_t{201});
    expectBinomial<Slot::rvkFilterGaussian3x3u8_v3, uint8_t>(2, 3, Ring::existing, 0u, uint8_t{201});

    expectBox<Slot::rvkBoxFilter3x3u8>(3, Ring::constant, 0);
    expectBox<Slot::rvkBoxFilter3x3u8_v2>(3, Ring::constant, 201, 1u, uint8_t{201});
    expectBox<Slot::rvkBoxFilter3x3u8_v2>(3, Ring::nearest, 0, 2u, uint8_t{201});
    expectBox<Slot::rvkBoxFilter3x3u8_v2>(3, Ring::constant, 0, 3u, uint8_t{201});
    expectBox<Slot::rvkBoxFilter5x5u8>(5, Ring::constant, 0);
    expectBox<Slot::rvkBoxFilter11x11u8>(11, Ring::constant, 0);
}

TEST(Blur, WorkedValues)
{
    // A constant picture: the corner, the middle of the top edge, and the centre.
    const auto constant = [](uint8_t value, int size, auto filter, auto... arguments) {
        const auto dst = filtered<uint8_t>(filter, Picture<uint8_t>(size, size, value), arguments...);
        return std::vector<int>{dst.at(0, 0), dst.at(size / 2, 0), dst.at(size / 2, size / 2)};
    };
    using Values = std::vector<int>;
    EXPECT_EQ(constant(90, 9, rvkFilterGaussian3x3u8, 1u), (Values{90, 90, 90}));
    EXPECT_EQ(constant(90, 9, rvkFilterGaussian3x3u8, 0u), (Values{77, 77, 90}));
    EXPECT_EQ(constant(16, 9, rvkFilterGaussian3x3u8_v3, 1u, uint8_t{0}), (Values{9, 12, 16}));
    EXPECT_EQ(constant(255, 9, rvkBoxFilter3x3u8), (Values{113, 170, 255}));
    EXPECT_EQ(constant(100, 9, rvkBoxFilter5x5u8), (Values{36, 60, 100}));
    EXPECT_EQ(constant(255, 31, rvkBoxFilter11x11u8), (Values{76, 139, 255}));

    Picture<int16_t> below(5, 5); // rounded down in the interior, towards zero in the ring
    below.at(0, 0) = -1;
    const auto result = filtered<int16_t>(rvkFilterGaussian5x5s16, below, 1u);
    EXPECT_EQ(result.at(2, 2), -1);
    EXPECT_EQ(result.at(1, 1), 0);
}

// ---- the float box filter -----------------------------------------------------------------------

TEST(Blur, FloatBoxFilterKeepsItsErrorBoundEverywhere)
{
    Random random(1);
    // A wide picture in which the values vary by 16 powers of two, and small ones of every parity of N.
    struct Size
    {
        int width, height, n;
    };
    for (const Size s :
         {Size{2048, 12, 11}, Size{4096, 6, 2}, Size{5, 5, 5}, Size{6, 5, 4}, Size{5, 9, 3}, Size{40, 33, 31}}) {
        const auto src = pictureOf<float>(s.width, s.height, [&](int, int) {
            return std::ldexp(static_cast<float>(random.below(2001)) - 1000, static_cast<int>(random.below(16)));
        });
        auto means = pictureOf<long double>(s.width, s.height, [](int, int) { return 0; }), magnitudes = means;
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x)
                for (const float value : windowOf(src, x, y, s.n, s.n, Beyond::nearest)) {
                    means.at(x, y) += static_cast<long double>(value) / (s.n * s.n);
                    magnitudes.at(x, y) += static_cast<long double>(std::fabs(value)) / (s.n * s.n);
                }
        const double bound = (s.n + std::log2(s.n) + 3) * 0x1p-24;
        forEachImplementation<Slot::rvkBoxFilterNxNf32>([&](const char* name, auto function) {
            const auto dst = filtered<float>(function, src, static_cast<uint32_t>(s.n));
            for (size_t i = 0; i < dst.pixels.size(); ++i)
                ASSERT_LE(std::fabs(dst.pixels[i] - means.pixels[i]), bound * magnitudes.pixels[i])
                    << name << ", " << s.width << "x" << s.height << " N " << s.n << ", pixel " << i;
        });
    }
}

TEST(Blur, FloatBoxFilterForgetsWhatLeavesTheWindow)
{
    Picture<float> src(40, 30, 3.0f);
    src.at(20, 15) = NAN;
    src.at(5, 5) = 1e30f;
    forEachImplementation<Slot::rvkBoxFilterNxNf32>([&](const char* name, auto function) {
        const auto dst = filtered<float>(function, src, 5u);
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x) {
                const bool hasNan = std::abs(y - 15) <= 2 && std::abs(x - 20) <= 2;
                const bool hasHuge = std::abs(y - 5) <= 2 && std::abs(x - 5) <= 2;
                const float value = dst.at(x, y);
                ASSERT_TRUE(hasNan    ? std::isnan(value)
                            : hasHuge ? value > 1e28f
                                      : value == 3.0f)
                    << name << ": " << x << ", " << y;
            }
    });
}

TEST(Blur, InPlaceTheFloatBoxFilterNeedsEqualStrides)
{
    float image[60] = {7};
    EXPECT_EQ(rvkBoxFilterNxNf32(image, 5, 5, 20, 2, image, 24), RAVIK_EBADPARAM);
    EXPECT_EQ(image[0], 7);
}

// ---- local normalisation ------------------------------------------------------------------------

// (pixel - mean) / max(deviation, floor), the window continued by the nearest pixels.
template <class T>
double expectedNormalised(const Picture<T>& src, int x, int y, int M, int N, double floorOfMean, double floor)
{
    const std::vector<T> window = windowOf(src, x, y, M, N, Beyond::nearest);
    double mean = 0, variance = 0;
    for (const T value : window)
        mean += static_cast<double>(value) / (M * N);
    for (const T value : window)
        variance += std::pow(static_cast<double>(value) - mean, 2) / (M * N);
    const double deviation = std::max({std::sqrt(variance), floorOfMean * std::fabs(mean), floor});
    return (static_cast<double>(src.at(x, y)) - mean) / deviation;
}

TEST(Blur, LocalNormalisationFollowsTheDefinition)
{
    Random random(3);
    for (int trial = 0; trial < 60; ++trial) {
        const int width = 1 + static_cast<int>(random.below(24)), height = 1 + static_cast<int>(random.below(24));
        const uint32_t M = 1 + 2 * random.below(static_cast<uint32_t>(width + 1) / 2);
        const uint32_t N = 1 + 2 * random.below(static_cast<uint32_t>(height + 1) / 2);
        const uint32_t range = trial % 3 == 0 ? 256 : trial % 3 == 1 ? 5 : 1;
        const auto bytes =
            pictureOf<uint8_t>(width, height, [&](int, int) { return random.below(range) + (256 - range); });
        const auto floats =
            pictureOf<float>(width, height, [&](int x, int y) { return 1e-20f * (1000.0f + bytes.at(x, y)); });
        const auto normalised = filtered<uint8_t>(rvkNormalizeLocalBoxu8C, bytes, M, N);
        const auto normalisedFloats = filtered<float>(rvkNormalizeLocalBoxf32C, floats, M, N);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int m = static_cast<int>(M), n = static_cast<int>(N);
                const double z = expectedNormalised(bytes, x, y, m, n, 0, 1);
                ASSERT_NEAR(normalised.at(x, y), std::clamp(128 + 32 * z, 0.0, 255.0), 0.51) << trial;
                const double zf = expectedNormalised(floats, x, y, m, n, 0x1p-20, 0);
                ASSERT_NEAR(static_cast<double>(normalisedFloats.at(x, y)), std::isnan(zf) ? 0 : zf, 1e-5) << trial;
            }
    }
}

TEST(Blur, LocalNormalisationOfTheLargestWindowsDoesNotOverflow)
{
    const auto src = pictureOf<uint8_t>(257, 257, [](int x, int y) { return (x + y) % 2 ? 255 : 0; }); // 33025 of 66049
    forEachImplementation<Slot::rvkNormalizeLocalBoxu8>([&](const char* name, auto function) {
        const auto dst = filtered<uint8_t>(function, src, 257u, 257u);
        EXPECT_EQ(dst.at(128, 128), 96) << name; // one deviation below the mean
        EXPECT_EQ(dst.at(129, 128), 160) << name;
    });
    Picture<uint8_t> larger(273, 243), dst = larger; // would overflow
    EXPECT_EQ(rvkNormalizeLocalBoxu8(larger.pixels.data(), 273, 243, 0, 273, 243, dst.pixels.data(), 0),
              RAVIK_EBADPARAM);
}

// ---- windows that no descriptor draws -----------------------------------------------------------

TEST(Blur, VectaEqualsReferenceForWindowsOfAnySize)
{
    expectVectaEqualsReference<Slot::rvkBoxFilterNxNf32, float>(5, [](Random& random, const auto& src) {
        return std::tuple(2 + random.below(std::min({src.columns(), src.rows(), 40u}) - 1));
    });
    const auto drawWindow = [](Random& random, const auto& src) {
        const auto odd = [&](uint32_t size) { return 1 + 2 * random.below(std::min(size + 1, 40u) / 2); };
        const uint32_t width = odd(src.columns());
        return std::tuple(width, odd(src.rows()));
    };
    expectVectaEqualsReference<Slot::rvkNormalizeLocalBoxu8, uint8_t>(1, drawWindow);
    expectVectaEqualsReference<Slot::rvkNormalizeLocalBoxf32, float>(1, drawWindow);
}

} // namespace

#include "support/implementations.h"

#include <algorithm>
#include <cmath>

using namespace test;

namespace {

constexpr uint32_t kWrap = RAVIK_POLICY_WRAP, kSaturate = RAVIK_POLICY_SATURATE;

// ---- the references ----

// function(a, b, options...) on single pixels.
template <class D, class A, class B, class Function, class... Options>
D pixel(Function function, A a, B b, Options... options)
{
    D d = 99;
    EXPECT_EQ(function(&a, 1, 1, sizeof a, &b, sizeof b, options..., &d, sizeof d), RAVIK_SUCCESS);
    return d;
}
constexpr auto bytes = [](auto function, int a, int b, auto... options) {
    return pixel<uint8_t>(function, static_cast<uint8_t>(a), static_cast<uint8_t>(b), options...);
};
constexpr auto shorts = [](auto function, int a, int b, auto... options) {
    return pixel<int16_t>(function, static_cast<int16_t>(a), static_cast<int16_t>(b), options...);
};

TEST(Arithm, SumsAndDifferencesWrapOrSaturate)
{
    EXPECT_EQ(bytes(rvkAddu8C, 200, 100, kWrap), 44);
    EXPECT_EQ(bytes(rvkAddu8C, 200, 100, kSaturate), 255);
    EXPECT_EQ(bytes(rvkSubtractu8C, 3, 5, kWrap), 254);
    EXPECT_EQ(bytes(rvkSubtractu8C, 3, 5, kSaturate), 0);
    EXPECT_EQ(shorts(rvkAdds16C, 32767, 1), 32767);
    EXPECT_EQ(shorts(rvkAdds16C, -32768, -1), -32768);
    EXPECT_EQ(shorts(rvkAdds16_v2C, 32767, 1, kWrap), -32768);
    EXPECT_EQ(shorts(rvkAdds16_v2C, 32767, 1, kSaturate), 32767);
    EXPECT_EQ(shorts(rvkSubtracts16C, -32768, 1, kWrap), 32767);
    EXPECT_EQ(shorts(rvkSubtracts16C, 0, -32768, kSaturate), 32767);
    EXPECT_EQ(pixel<uint16_t>(rvkAddu16u8u16C, uint16_t{65535}, uint8_t{2}, kWrap), 1);
    EXPECT_EQ(pixel<uint16_t>(rvkAddu16u8u16C, uint16_t{65535}, uint8_t{2}, kSaturate), 65535);
    EXPECT_EQ(pixel<uint16_t>(rvkAddu8u16C, uint8_t{255}, uint8_t{255}), 510);
    EXPECT_EQ(pixel<int16_t>(rvkSubtractu8s16C, uint8_t{0}, uint8_t{255}), -255);
    EXPECT_EQ(pixel<uint16_t>(rvkElementMultiplyu8u16C, uint8_t{255}, uint8_t{255}), 65025);
    EXPECT_EQ(pixel<float>(rvkAddf32C, 1.5f, -4.0f), -2.5f);
    EXPECT_EQ(pixel<float>(rvkElementMultiplyf32C, 1.5f, -4.0f), -6.0f);

    const int16_t s[2] = {-32768, 32000};
    int16_t d[2];
    EXPECT_EQ(rvkAddScalars16C(s, 2, 1, 4, 1000, d, 4), RAVIK_SUCCESS);
    EXPECT_EQ(d[0], -31768);
    EXPECT_EQ(d[1], 32767);
    EXPECT_EQ(rvkMultiplyScalars16C(s, 2, 1, 4, -3, 2, d, 4), RAVIK_SUCCESS);
    EXPECT_EQ(d[0], 24576);
    EXPECT_EQ(d[1], -24000);
    const float f = 3;
    float product = 0, sum = 0;
    EXPECT_EQ(rvkMultiplyScalarf32C(&f, 1, 1, 4, 0.5f, &product, 4), RAVIK_SUCCESS);
    EXPECT_EQ(rvkAddScalarf32C(&f, 1, 1, 4, 0.5f, &sum, 4), RAVIK_SUCCESS);
    EXPECT_EQ(product, 1.5f);
    EXPECT_EQ(sum, 3.5f);
}

TEST(Arithm, ScaledProductsOfWorkedValues)
{
    EXPECT_EQ(shorts(rvkElementMultiplys16C, 3, 1, kSaturate, 1), 2);   // 1.5 goes up
    EXPECT_EQ(shorts(rvkElementMultiplys16C, -3, 1, kSaturate, 1), -1); // and so does -1.5
    EXPECT_EQ(shorts(rvkElementMultiplys16C, 300, 300, kSaturate, 0), 32767);
    EXPECT_EQ(shorts(rvkElementMultiplys16C, 300, 300, kWrap, 0), 90000 - 65536);
    EXPECT_EQ(bytes(rvkElementMultiplyu8C, 2, 3, kSaturate, -5), 192);
    EXPECT_EQ(pixel<int16_t>(rvkElementMultiplyu8s16C, uint8_t{255}, uint8_t{255}, kWrap, 0), 65025 - 65536);
    EXPECT_EQ(shorts(rvkElementMultiplys16C, -300, 300, kSaturate, 32), 0);
    EXPECT_EQ(shorts(rvkElementMultiplys16C, -30, 30, kSaturate, INT32_MIN), -900); // the low 8 bits are 0
    EXPECT_EQ(shorts(rvkElementMultiplys16C, 3, 1, kSaturate, -257), 6);
}

// The same result in floating-point arithmetic, which holds all these values exactly.
template <class D>
D scaledProduct(int a, int b, uint32_t policy, int32_t scale)
{
    const double limit = std::ldexp(1.0, 8 * sizeof(D));
    const auto shift = static_cast<int>(scale % 256); // the sign stays
    double r = std::floor(std::ldexp(static_cast<double>(a) * b, -shift) + 0.5);
    if (std::abs(shift) >= 32)
        r = 0;
    if (policy == kSaturate)
        r = std::clamp(r, static_cast<double>(std::numeric_limits<D>::min()),
                       static_cast<double>(std::numeric_limits<D>::max()));
    return static_cast<D>(static_cast<int64_t>(r - limit * std::floor(r / limit)));
}

std::vector<int32_t> scales()
{
    std::vector<int32_t> all = {128, 255, 256, 257, 300, 544, -128, -255, -256, -257, -300, -544, INT32_MIN, INT32_MAX};
    for (int32_t scale = -34; scale <= 34; ++scale)
        all.push_back(scale);
    return all;
}

// In rows wider than vectors.
template <Slot slot, class S, class D>
void expectScaledProducts(const std::vector<S>& values)
{
    std::vector<S> row;
    while (row.size() < 150)
        row.insert(row.end(), values.begin(), values.end());
    const uint32_t n = static_cast<uint32_t>(row.size());
    std::vector<D> expected(n), d(n);
    for (const S a : values) {
        const std::vector<S> as(n, a);
        for (const int32_t scale : scales())
            for (const uint32_t policy : {kWrap, kSaturate}) {
                for (uint32_t i = 0; i < n; ++i)
                    expected[i] =
                        i < values.size() ? scaledProduct<D>(a, row[i], policy, scale) : expected[i - values.size()];
                forEachImplementation<slot>([&](const char* name, auto function) {
                    ASSERT_EQ(function(as.data(), n, 1, n * sizeof(S), row.data(), n * sizeof(S), policy, scale,
                                       d.data(), n * sizeof(D)),
                              RAVIK_SUCCESS);
                    ASSERT_EQ(d, expected) << name << ": times " << +a << ", scale " << scale << ", policy " << policy;
                });
            }
    }
}

TEST(Arithm, ScaledProductsEqualFloatingPoint)
{
    std::vector<uint8_t> u8s;
    for (int i = 0; i < 256; i += i < 8 || i > 248 ? 1 : 7)
        u8s.push_back(static_cast<uint8_t>(i));
    const std::vector<int16_t> s16s = {-32768, -32767, -12345, -257, -256, -255, -3,  -2,    -1,   0,
                                       1,      2,      3,      127,  181,  182,  256, 32766, 32767};
    expectScaledProducts<Slot::rvkElementMultiplyu8, uint8_t, uint8_t>(u8s);
    expectScaledProducts<Slot::rvkElementMultiplyu8s16, uint8_t, int16_t>(u8s);
    expectScaledProducts<Slot::rvkElementMultiplys16, int16_t, int16_t>(s16s);
    const uint32_t n = static_cast<uint32_t>(s16s.size());
    for (const int16_t scalar : s16s)
        for (const int32_t scale : scales())
            forEachImplementation<Slot::rvkMultiplyScalars16>([&](const char* name, auto function) {
                std::vector<int16_t> d(n);
                ASSERT_EQ(function(s16s.data(), n, 1, 2 * n, scalar, scale, d.data(), 2 * n), RAVIK_SUCCESS);
                for (uint32_t i = 0; i < n; ++i)
                    ASSERT_EQ(d[i], scaledProduct<int16_t>(s16s[i], scalar, kSaturate, scale))
                        << name << ": " << s16s[i] << " * " << scalar << ", scale " << scale;
            });
}

TEST(Arithm, SquaresAreCutTo16BitsBeforeTheirShift)
{
    const auto add = [](int a, int b, int32_t scale) {
        return pixel<uint16_t>(rvkAddSquaredu8u16C, static_cast<uint8_t>(a), static_cast<uint16_t>(b), scale);
    };
    EXPECT_EQ(add(255, 0, 1), 32513); // 65026 / 2
    EXPECT_EQ(add(255, 0, 9), 127);   // (65025 + 256) / 512
    EXPECT_EQ(add(255, 7, 10), 7);    // 65025 + 512 is 1 in 16 bits
    EXPECT_EQ(add(254, 0, 10), 63);   // 64516 + 512 just fits
    EXPECT_EQ(add(255, 0, 16), 0);
    EXPECT_EQ(add(3, 0, 1), 5); // 4.5 goes up
    EXPECT_EQ(add(255, 1000, 0), 65535);
    EXPECT_EQ(add(255, 510, 0), 65535);
    EXPECT_EQ(add(255, 509, 0), 65534);
    EXPECT_EQ(add(128, 0, -2), 65535);
    EXPECT_EQ(add(127, 0, -2), 64516);
    EXPECT_EQ(add(1, 5, -16), 65535);
    EXPECT_EQ(add(255, 5, -32), 5);
    EXPECT_EQ(add(255, 5, 32), 5);
}

TEST(Arithm, WeightsAreFixedPoint)
{
    const auto add = [](int a, int b, float alpha, float beta) { return bytes(rvkAddWeightedu8C, a, b, alpha, beta); };
    EXPECT_EQ(add(10, 21, 0.5f, 0.5f), 16); // 15.5 goes up
    EXPECT_EQ(add(200, 100, 1.0f, 1.0f), 255);
    EXPECT_EQ(add(10, 100, 1.0f, -1.0f), 0);
    EXPECT_EQ(add(100, 10, 1.0f, -1.0f), 90);
    EXPECT_EQ(add(0, 77, 5.0f, 1.0f), 77);
    // Weights round half away from zero: 0.5/256 is 1/256, and -0.5/256 is -1/256.
    EXPECT_EQ(add(128, 0, 0.5f / 256, 0), 1);
    EXPECT_EQ(add(128, 0, 0.49f / 256, 0), 0);
    EXPECT_EQ(add(255, 1, -0.5f / 256, 1.5f), 1); // (-255 + 384 + 128) / 256
    EXPECT_EQ(add(255, 1, -0.49f / 256, 1.5f), 2);
    // A weight that 16 bits do not hold, from 128 on, becomes the largest that they hold, 127 255/256 or -128.
    EXPECT_EQ(add(1, 0, 1e30f, 0), 128);
    EXPECT_EQ(add(2, 1, -INFINITY, INFINITY), 0);
    EXPECT_EQ(add(255, 255, INFINITY, -INFINITY), 0);
    EXPECT_EQ(add(1, 2, -1e9f, 1e9f), 128);
    EXPECT_EQ(add(255, 9, NAN, 1), 9);

    for (const auto& [alpha, beta] : {std::pair{0.3f, 0.7f}, {0.75f, 0.5f}, {-0.25f, 1.3f}, {3.0f, -2.5f}}) {
        const double A = std::floor(std::abs(alpha) * 256 + 0.5) * (alpha < 0 ? -1 : 1);
        const double B = std::floor(std::abs(beta) * 256 + 0.5) * (beta < 0 ? -1 : 1);
        for (int a = 0; a < 256; ++a)
            for (int b = 0; b < 256; b += 3)
                ASSERT_EQ(add(a, b, alpha, beta), std::clamp(std::floor((a * A + b * B) / 256 + 0.5), 0.0, 255.0));
    }
}

TEST(Arithm, AveragesRoundTheSumOnce)
{
    float average = -1;
    const uint8_t u8s[8] = {1, 2, 3, 200, 5, 6, 7, 200}; // 3 x 2 with a gap
    rvkAverageu8C(u8s, 3, 2, 4, &average);
    EXPECT_EQ(average, 4);
    const int32_t s32s[3] = {INT32_MIN, INT32_MIN, 7};
    rvkAverages32C(s32s, 2, 1, 8, &average);
    EXPECT_EQ(average, -2147483648.0f);
    const int32_t odd[2] = {16777217, 0}; // the sum becomes 16777216 as a float
    rvkAverages32C(odd, 2, 1, 8, &average);
    EXPECT_EQ(average, 8388608.0f);
    const int32_t opposite[4] = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    rvkAverages32C(opposite, 2, 2, 8, &average);
    EXPECT_EQ(average, -0.5f);
}

TEST(Arithm, ByteSumsWrapAt32Bits)
{
    const uint32_t width = 16843010; // x 255 is 2^32 + 254
    const std::vector<uint8_t> white(width, 255);
    const auto average = [&](auto function) {
        float result = -1;
        function(white.data(), width, 1, width, &result);
        return result;
    };
    const float expected = 254.0f / static_cast<float>(width);
    EXPECT_EQ(average(rvkAverageu8C), expected);
    forEachVecta<Slot::rvkAverageu8>(
        [&](const char* variant, auto function) { EXPECT_EQ(average(function), expected) << variant; });
}

// ---- what random options would not meet ----

// In 1/256: around the weights that need only 16 bits, around those that split into bytes, and far out.
constexpr float kWeights[][2] = {{128, 128},  {64, 192},      {255, 1},         {256, 0},        {129, 128},
                                 {384, -128}, {-1, 257},      {-64, 63},        {16319, -16448}, {16320, 0},
                                 {0, -16449}, {32767, 25000}, {-32768, -12800}, {-32768, 32767}, {NAN, 7e9f}};

// All pairs of bytes.
template <Slot slot, class D, class... Options>
void expectSameForAllBytes(Options... options)
{
    std::vector<uint8_t> a(65536), b(65536);
    for (uint32_t i = 0; i < 65536; ++i) {
        a[i] = static_cast<uint8_t>(i);
        b[i] = static_cast<uint8_t>(i >> 8);
    }
    const auto run = [&](auto function) {
        std::vector<D> d(65536);
        EXPECT_EQ(function(a.data(), 256, 256, 256, b.data(), 256, options..., d.data(), 256 * sizeof(D)),
                  RAVIK_SUCCESS);
        return d;
    };
    const std::vector<D> expected = run(referenceOf<slot>());
    forEachVecta<slot>([&](const char* variant, auto function) {
        EXPECT_EQ(run(function), expected)
            << nameOf(slot) << " on " << variant << ::testing::PrintToString(std::tuple(options...));
    });
}

TEST(Arithm, VectaEqualsReferenceForAllBytes)
{
    for (int32_t scale = -17; scale <= 18; ++scale)
        for (const uint32_t policy : {kWrap, kSaturate}) {
            expectSameForAllBytes<Slot::rvkElementMultiplyu8, uint8_t>(policy, scale);
            expectSameForAllBytes<Slot::rvkElementMultiplyu8s16, int16_t>(policy, scale);
        }
    for (const auto& [alpha, beta] : kWeights)
        expectSameForAllBytes<Slot::rvkAddWeightedu8, uint8_t>(alpha / 256, beta / 256);
}

} // namespace

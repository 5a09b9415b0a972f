#include "support/logCapture.h"
#include "support/trial.h"

#include <algorithm>

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
    EXPECT_EQ(shorts(rvkElementMultiplys16C, -32768, -32768, kSaturate, 31), 1);
    EXPECT_EQ(shorts(rvkElementMultiplys16C, 300, 300, kSaturate, 0), 32767);
    EXPECT_EQ(shorts(rvkElementMultiplys16C, 300, 300, kWrap, 0), 90000 - 65536);
    EXPECT_EQ(shorts(rvkElementMultiplys16C, -1, 1, kSaturate, -31), -32768);
    EXPECT_EQ(shorts(rvkElementMultiplys16C, -1, 1, kWrap, -31), 0);
    EXPECT_EQ(bytes(rvkElementMultiplyu8C, 255, 255, kSaturate, 16), 1);
    EXPECT_EQ(bytes(rvkElementMultiplyu8C, 255, 255, kWrap, 0), 1);
    EXPECT_EQ(bytes(rvkElementMultiplyu8C, 2, 3, kSaturate, -5), 192);
    EXPECT_EQ(pixel<int16_t>(rvkElementMultiplyu8s16C, uint8_t{255}, uint8_t{255}, kSaturate, 0), 32767);
    EXPECT_EQ(pixel<int16_t>(rvkElementMultiplyu8s16C, uint8_t{255}, uint8_t{255}, kWrap, 0), 65025 - 65536);

    for (const int32_t scale : {32, 128, 255, -32, -128, -255, 32 + 512, -32 - 512})
        EXPECT_EQ(shorts(rvkElementMultiplys16C, -300, 300, kSaturate, scale), 0) << scale;
    for (const int32_t scale : {256, -256, INT32_MIN, 0}) // the low 8 bits are 0
        EXPECT_EQ(shorts(rvkElementMultiplys16C, -30, 30, kSaturate, scale), -900) << scale;
    EXPECT_EQ(shorts(rvkElementMultiplys16C, 3, 1, kSaturate, 257), 2);
    EXPECT_EQ(shorts(rvkElementMultiplys16C, 3, 1, kSaturate, -257), 6);
}

// The same result in floating-point arithmetic, which holds all these values exactly.
template <class D>
D scaledProduct(int a, int b, uint32_t policy, int32_t scale)
{
    const double limit = std::ldexp(1.0, 8 * sizeof(D));
    double r = std::ldexp(static_cast<double>(a) * b, -scale);
    if (scale >= 1)
        r = std::floor(r + 0.5);
    if (std::abs(scale) >= 32)
        r = 0;
    if (policy == kSaturate)
        r = std::clamp(r, static_cast<double>(std::numeric_limits<D>::min()),
                       static_cast<double>(std::numeric_limits<D>::max()));
    return static_cast<D>(static_cast<int64_t>(r - limit * std::floor(r / limit)));
}

template <class S, class D, class Function>
void expectScaledProducts(Function function, const std::vector<S>& values)
{
    const uint32_t n = static_cast<uint32_t>(values.size());
    std::vector<D> d(n);
    for (const S a : values) {
        const std::vector<S> as(n, a);
        for (int32_t scale = -40; scale <= 40; ++scale)
            for (const uint32_t policy : {kWrap, kSaturate}) {
                ASSERT_EQ(function(as.data(), n, 1, n * sizeof(S), values.data(), n * sizeof(S), policy, scale,
                                   d.data(), n * sizeof(D)),
                          RAVIK_SUCCESS);
                for (uint32_t i = 0; i < n; ++i)
                    ASSERT_EQ(d[i], scaledProduct<D>(a, values[i], policy, scale))
                        << +a << " * " << +values[i] << ", scale " << scale << ", policy " << policy;
            }
    }
}

TEST(Arithm, ScaledProductsEqualFloatingPoint)
{
    std::vector<uint8_t> u8s;
    for (int i = 0; i < 256; i += i < 20 || i > 240 ? 1 : 7)
        u8s.push_back(static_cast<uint8_t>(i));
    const std::vector<int16_t> s16s = {-32768, -32767, -12345, -257, -256, -255, -3,  -2,    -1,   0,
                                       1,      2,      3,      127,  181,  182,  256, 32766, 32767};
    expectScaledProducts<uint8_t, uint8_t>(rvkElementMultiplyu8C, u8s);
    expectScaledProducts<uint8_t, int16_t>(rvkElementMultiplyu8s16C, u8s);
    expectScaledProducts<int16_t, int16_t>(rvkElementMultiplys16C, s16s);
    for (const int16_t scalar : s16s)
        for (int32_t scale = -40; scale <= 40; ++scale) {
            int16_t d[32];
            const uint32_t n = static_cast<uint32_t>(s16s.size());
            ASSERT_EQ(rvkMultiplyScalars16C(s16s.data(), n, 1, 2 * n, scalar, scale, d, 2 * n), RAVIK_SUCCESS);
            for (uint32_t i = 0; i < n; ++i)
                ASSERT_EQ(d[i], scaledProduct<int16_t>(s16s[i], scalar, kSaturate, scale)) << scalar << ' ' << scale;
        }
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
    // What 16 bits do not hold is clamped: 128 would give 128, 127 255/256 does as well, and 255 of it less 255 nearly
    // 0.
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

// ---- VECTA ----

// A second source with a stride of its own.
template <class T>
Image<const T> secondInput(Trial& t)
{
    return t.inputOf<T>(t.width + t.below(2) * t.below(40), t.height);
}

// Draws the options of a call and hands them on in order.
constexpr auto noOptions = [](Trial&, auto call) { call(); };
constexpr auto drawPolicy = [](Trial& t, auto call) { call(t.below(8) ? t.below(2) : 2); };
int32_t drawScale(Trial& t)
{
    static const int32_t odd[] = {256, -256, 263, -263, INT32_MIN, INT32_MAX, 300, -300};
    return t.below(8) ? static_cast<int32_t>(t.below(52)) - 18 : odd[t.below(8)];
}
constexpr auto drawOnlyScale = [](Trial& t, auto call) { call(drawScale(t)); };
constexpr auto drawPolicyAndScale = [](Trial& t, auto call) {
    const uint32_t policy = t.below(8) ? t.below(2) : 2;
    call(policy, drawScale(t));
};
// In 1/256: around the weights that need only 16 bits, around those that split into bytes, and far out.
constexpr float kWeights[][2] = {{128, 128},  {64, 192},      {255, 1},         {256, 0},        {129, 128},
                                 {384, -128}, {-1, 257},      {-64, 63},        {16319, -16448}, {16320, 0},
                                 {0, -16449}, {32767, 25000}, {-32768, -12800}, {-32768, 32767}, {NAN, 7e9f}};
constexpr auto drawWeights = [](Trial& t, auto call) {
    const auto& pair = kWeights[t.below(std::size(kWeights))];
    call(pair[0] / 256, pair[1] / 256);
};

template <Slot slot, class S1, class S2, class D, class Options>
void expectTwoSources(Options options)
{
    expectVectaEqualsReference<slot>([&](auto function, Trial& t) {
        options(t, [&](auto... option) {
            Image<S1> a = t.inOut<S1>();
            const auto b = secondInput<S2>(t);
            Image<D> d = t.output<D>();
            if constexpr (std::is_same_v<S1, D>)
                if (t.below(4) == 0)
                    d = a;
            t.result(static_cast<int>(
                function(a.data, t.width, t.height, a.stride, b.data, b.stride, option..., d.data, d.stride)));
        });
    });
    if constexpr (std::is_same_v<S2, D>)
        expectVectaEqualsReference<slot>(
            [&](auto function, Trial& t) { // in the place of the second source
                options(t, [&](auto... option) {
                    const auto a = secondInput<S1>(t);
                    const auto b = t.inOut<S2>();
                    function(a.data, t.width, t.height, a.stride, b.data, b.stride, option..., b.data, b.stride);
                });
            },
            60);
}

template <Slot slot, class T, class Options>
void expectScalar(Options options)
{
    expectVectaEqualsReference<slot>([&](auto function, Trial& t) {
        options(t, [&](auto... option) {
            const T scalar = t.value<T>();
            const auto a = t.inOut<T>();
            const auto d = t.below(4) ? t.output<T>() : a;
            t.result(
                static_cast<int>(function(a.data, t.width, t.height, a.stride, scalar, option..., d.data, d.stride)));
        });
    });
}

template <Slot slot, class T>
void expectAverage()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        const auto a = t.input<T>();
        float average = -1;
        function(a.data, t.width, t.height, a.stride, &average);
        t.result(average);
    });
}

TEST(Arithm, VectaSumsEqualReference)
{
    expectTwoSources<Slot::rvkAddSquaredu8u16, uint8_t, uint16_t, uint16_t>(drawOnlyScale);
    expectTwoSources<Slot::rvkAddWeightedu8, uint8_t, uint8_t, uint8_t>(drawWeights);
    expectTwoSources<Slot::rvkAddf32, float, float, float>(noOptions);
    expectTwoSources<Slot::rvkAdds16, int16_t, int16_t, int16_t>(noOptions);
    expectTwoSources<Slot::rvkAdds16_v2, int16_t, int16_t, int16_t>(drawPolicy);
    expectTwoSources<Slot::rvkAddu16u8u16, uint16_t, uint8_t, uint16_t>(drawPolicy);
    expectTwoSources<Slot::rvkAddu8, uint8_t, uint8_t, uint8_t>(drawPolicy);
    expectTwoSources<Slot::rvkAddu8u16, uint8_t, uint8_t, uint16_t>(noOptions);
    expectTwoSources<Slot::rvkSubtracts16, int16_t, int16_t, int16_t>(drawPolicy);
    expectTwoSources<Slot::rvkSubtractu8, uint8_t, uint8_t, uint8_t>(drawPolicy);
    expectTwoSources<Slot::rvkSubtractu8s16, uint8_t, uint8_t, int16_t>(noOptions);
    expectScalar<Slot::rvkAddScalarf32, float>(noOptions);
    expectScalar<Slot::rvkAddScalars16, int16_t>(noOptions);
    expectAverage<Slot::rvkAverages32, int32_t>();
    expectAverage<Slot::rvkAverageu8, uint8_t>();
}

TEST(Arithm, VectaProductsEqualReference)
{
    expectTwoSources<Slot::rvkElementMultiplyf32, float, float, float>(noOptions);
    expectTwoSources<Slot::rvkElementMultiplys16, int16_t, int16_t, int16_t>(drawPolicyAndScale);
    expectTwoSources<Slot::rvkElementMultiplyu8, uint8_t, uint8_t, uint8_t>(drawPolicyAndScale);
    expectTwoSources<Slot::rvkElementMultiplyu8s16, uint8_t, uint8_t, int16_t>(drawPolicyAndScale);
    expectTwoSources<Slot::rvkElementMultiplyu8u16, uint8_t, uint8_t, uint16_t>(noOptions);
    expectScalar<Slot::rvkMultiplyScalarf32, float>(noOptions);
    expectScalar<Slot::rvkMultiplyScalars16, int16_t>(drawOnlyScale);
}

// All pairs of bytes, which random trials would not meet at the limits of the options.
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

// ---- entries ----

// A 5 x 3 image whose rows are `padding` elements longer.
template <class T>
struct Padded
{
    explicit Padded(uint32_t padding, int first = 1) : stride((5 + padding) * sizeof(T)), data((5 + padding) * 3)
    {
        for (T& v : data)
            v = static_cast<T>(first++);
    }
    uint32_t stride;
    std::vector<T> data;
};

// The public function against its reference, with a different stride for each image, and packed rows for stride 0.
template <class S1, class S2, class D, class Function, class... Options>
void expectEntry(Function entry, Function reference, Options... options)
{
    for (const uint32_t padding : {0u, 3u}) {
        const Padded<S1> a(padding, 7);
        const Padded<S2> b(2 * padding, 40);
        Padded<D> expected(4 * padding, 99), actual = expected;
        const auto stride = [&](const auto& image) { return padding ? image.stride : 0; };
        EXPECT_EQ(reference(a.data.data(), 5, 3, a.stride, b.data.data(), b.stride, options..., expected.data.data(),
                            expected.stride),
                  RAVIK_SUCCESS);
        EXPECT_EQ(entry(a.data.data(), 5, 3, stride(a), b.data.data(), stride(b), options..., actual.data.data(),
                        stride(actual)),
                  RAVIK_SUCCESS);
        EXPECT_EQ(actual.data, expected.data);
    }
    // One fault at a time; nothing is written.
    Padded<S1> a(3);
    Padded<S2> b(3);
    Padded<D> d(3);
    const std::vector<D> before = d.data;
    const auto call = [&](auto... changed) { return entry(changed...); };
    const auto expectRefused = [&](const S1* p1, uint32_t width, uint32_t height, uint32_t s1, const S2* p2,
                                   uint32_t s2, D* p3, uint32_t s3) {
        EXPECT_EQ(call(p1, width, height, s1, p2, s2, options..., p3, s3), RAVIK_EBADPARAM);
        EXPECT_EQ(d.data, before);
    };
    S1* pa = a.data.data();
    S2* pb = b.data.data();
    D* pd = d.data.data();
    expectRefused(nullptr, 5, 3, a.stride, pb, b.stride, pd, d.stride);
    expectRefused(pa, 5, 3, a.stride, nullptr, b.stride, pd, d.stride);
    expectRefused(pa, 5, 3, a.stride, pb, b.stride, nullptr, d.stride);
    expectRefused(pa, 0, 3, a.stride, pb, b.stride, pd, d.stride);
    expectRefused(pa, 5, 0, a.stride, pb, b.stride, pd, d.stride);
    expectRefused(pa, 5, 3, 5 * sizeof(S1) - 1, pb, b.stride, pd, d.stride);
    expectRefused(pa, 5, 3, a.stride, pb, 5 * sizeof(S2) - 1, pd, d.stride);
    expectRefused(pa, 5, 3, a.stride, pb, b.stride, pd, 5 * sizeof(D) - 1);
    if constexpr (sizeof(D) > 1)
        expectRefused(pa, UINT32_MAX / sizeof(D) + 2, 1, UINT32_MAX, pb, UINT32_MAX, pd, 8); // a row of 2^32 bytes
}

template <class T, class Function, class... Options>
void expectScalarEntry(Function entry, Function reference, T scalar, Options... options)
{
    const Padded<T> a(3, 7);
    Padded<T> expected(5, 99), actual = expected;
    const uint32_t packed = 5 * sizeof(T);
    EXPECT_EQ(reference(a.data.data(), 5, 3, a.stride, scalar, options..., expected.data.data(), expected.stride),
              RAVIK_SUCCESS);
    EXPECT_EQ(entry(a.data.data(), 5, 3, a.stride, scalar, options..., actual.data.data(), actual.stride),
              RAVIK_SUCCESS);
    EXPECT_EQ(actual.data, expected.data);
    reference(a.data.data(), 5, 3, packed, scalar, options..., expected.data.data(), packed);
    entry(a.data.data(), 5, 3, 0, scalar, options..., actual.data.data(), 0);
    EXPECT_EQ(actual.data, expected.data);

    const T *pa = a.data.data(), *none = nullptr;
    T* pd = actual.data.data();
    EXPECT_EQ(entry(none, 5, 3, a.stride, scalar, options..., pd, actual.stride), RAVIK_EBADPARAM);
    EXPECT_EQ(entry(pa, 5, 3, a.stride, scalar, options..., nullptr, actual.stride), RAVIK_EBADPARAM);
    EXPECT_EQ(entry(pa, 0, 3, a.stride, scalar, options..., pd, actual.stride), RAVIK_EBADPARAM);
    EXPECT_EQ(entry(pa, 5, 0, a.stride, scalar, options..., pd, actual.stride), RAVIK_EBADPARAM);
    EXPECT_EQ(entry(pa, 5, 3, packed - 1, scalar, options..., pd, actual.stride), RAVIK_EBADPARAM);
    EXPECT_EQ(entry(pa, 5, 3, a.stride, scalar, options..., pd, packed - 1), RAVIK_EBADPARAM);
    EXPECT_EQ(entry(pa, UINT32_MAX / sizeof(T) + 2, 1, 0, scalar, options..., pd, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(actual.data, expected.data);
}

TEST(Arithm, EntriesCheckAndPassOnTheirArguments)
{
    clearLog();
    expectEntry<uint8_t, uint16_t, uint16_t>(rvkAddSquaredu8u16, rvkAddSquaredu8u16C, 1);
    expectEntry<uint8_t, uint8_t, uint8_t>(rvkAddWeightedu8, rvkAddWeightedu8C, 0.3f, 1.2f);
    expectEntry<float, float, float>(rvkAddf32, rvkAddf32C);
    expectEntry<int16_t, int16_t, int16_t>(rvkAdds16_v2, rvkAdds16_v2C, kSaturate);
    expectEntry<uint16_t, uint8_t, uint16_t>(rvkAddu16u8u16, rvkAddu16u8u16C, kSaturate);
    expectEntry<uint8_t, uint8_t, uint8_t>(rvkAddu8, rvkAddu8C, kWrap);
    expectEntry<uint8_t, uint8_t, uint16_t>(rvkAddu8u16, rvkAddu8u16C);
    expectEntry<int16_t, int16_t, int16_t>(rvkElementMultiplys16, rvkElementMultiplys16C, kSaturate, 2);
    expectEntry<uint8_t, uint8_t, uint8_t>(rvkElementMultiplyu8, rvkElementMultiplyu8C, kWrap, 3);
    expectEntry<uint8_t, uint8_t, int16_t>(rvkElementMultiplyu8s16, rvkElementMultiplyu8s16C, kWrap, -3);
    expectEntry<int16_t, int16_t, int16_t>(rvkSubtracts16, rvkSubtracts16C, kWrap);
    expectEntry<uint8_t, uint8_t, uint8_t>(rvkSubtractu8, rvkSubtractu8C, kSaturate);
    expectEntry<uint8_t, uint8_t, int16_t>(rvkSubtractu8s16, rvkSubtractu8s16C);
    expectScalarEntry<float>(rvkAddScalarf32, rvkAddScalarf32C, 2.5f);
    expectScalarEntry<int16_t>(rvkAddScalars16, rvkAddScalars16C, -3);
    expectScalarEntry<float>(rvkMultiplyScalarf32, rvkMultiplyScalarf32C, 2.5f);
    expectScalarEntry<int16_t>(rvkMultiplyScalars16, rvkMultiplyScalars16C, -3, 1);
    EXPECT_TRUE(logLines.empty());

    // These log as well.
    const auto logged = [](const char* function, const char* strides) {
        return std::string("6 ravik_lib_log: Assertion failed @") + function +
               ": src1 && src2 && dst && width && height && " + strides + "\n";
    };
    expectEntry<int16_t, int16_t, int16_t>(rvkAdds16, rvkAdds16C);
    EXPECT_TRUE(
        logHas(logged("rvkAdds16", "(src1Stride >= width*2) && (src2Stride >= width*2) && (dstStride >= width*2)")));
    expectEntry<uint8_t, uint8_t, uint16_t>(rvkElementMultiplyu8u16, rvkElementMultiplyu8u16C);
    EXPECT_TRUE(logHas(
        logged("rvkElementMultiplyu8u16", "(src1Stride >= width) && (src2Stride >= width) && (dstStride >= width*2)")));
    expectEntry<float, float, float>(rvkElementMultiplyf32, rvkElementMultiplyf32C);
    EXPECT_TRUE(logHas(logged("rvkElementMultiplyf32",
                              "(src1Stride >= width*4) && (src2Stride >= width*4) && (dstStride >= width*4)")));
    EXPECT_EQ(logLines.size(), 8u + 9u + 9u + 1u);
}

TEST(Arithm, UnknownPoliciesAreRefused)
{
    const uint8_t a[4] = {200, 1, 2, 3};
    const int16_t b[4] = {200, 1, 2, 3};
    const uint16_t c[4] = {200, 1, 2, 3};
    uint8_t d8[4] = {1, 2, 3, 4};
    int16_t d16[4] = {1, 2, 3, 4};
    uint16_t u16[4] = {1, 2, 3, 4};
    for (const uint32_t policy : {2u, UINT32_MAX}) {
        EXPECT_EQ(rvkAddu8(a, 2, 2, 0, a, 0, policy, d8, 0), RAVIK_EBADPARAM);
        EXPECT_EQ(rvkSubtractu8(a, 2, 2, 0, a, 0, policy, d8, 0), RAVIK_EBADPARAM);
        EXPECT_EQ(rvkElementMultiplyu8(a, 2, 2, 0, a, 0, policy, 0, d8, 0), RAVIK_EBADPARAM);
        EXPECT_EQ(rvkAdds16_v2(b, 2, 2, 0, b, 0, policy, d16, 0), RAVIK_EBADPARAM);
        EXPECT_EQ(rvkSubtracts16(b, 2, 2, 0, b, 0, policy, d16, 0), RAVIK_EBADPARAM);
        EXPECT_EQ(rvkElementMultiplys16(b, 2, 2, 0, b, 0, policy, 0, d16, 0), RAVIK_EBADPARAM);
        EXPECT_EQ(rvkElementMultiplyu8s16(a, 2, 2, 0, a, 0, policy, 0, d16, 0), RAVIK_EBADPARAM);
        EXPECT_EQ(rvkAddu16u8u16(c, 2, 2, 0, a, 0, policy, u16, 0), RAVIK_EBADPARAM);
    }
    EXPECT_TRUE(d8[0] == 1 && d8[3] == 4 && d16[0] == 1 && d16[3] == 4 && u16[0] == 1 && u16[3] == 4);
}

TEST(Arithm, AverageEntries)
{
    const uint8_t u8s[4] = {1, 2, 3, 4};
    const int32_t s32s[4] = {1, 2, 3, 4};
    float average = -1;
    clearLog();
    rvkAverageu8(u8s, 2, 2, 0, &average);
    EXPECT_EQ(average, 2.5f);
    rvkAverages32(s32s, 2, 2, 0, &average);
    EXPECT_EQ(average, 2.5f);
    EXPECT_TRUE(logLines.empty());

    average = -1;
    rvkAverageu8(nullptr, 2, 2, 0, &average);
    rvkAverageu8(u8s, 0, 2, 0, &average);
    rvkAverageu8(u8s, 2, 0, 0, &average);
    rvkAverageu8(u8s, 2, 2, 1, &average);
    rvkAverageu8(u8s, 2, 2, 0, nullptr);
    rvkAverages32(nullptr, 2, 2, 0, &average);
    rvkAverages32(s32s, 2, 2, 7, &average);
    rvkAverages32(s32s, 2, 2, 0, nullptr);
    rvkAverages32(s32s, 0x40000001, 1, 0, &average);
    EXPECT_EQ(average, -1);
    EXPECT_EQ(logLines.size(), 9u);
}

// ---- what may run on the DSP ----

// The target that a call logs while its function is on the DSP.
template <class Call>
std::string targetOnDsp(Slot slot, Call call)
{
    uint32_t& target = dispatchState.targets[static_cast<uint32_t>(slot)];
    const uint32_t before = target;
    target = RVK_IMPL_NDSP; // whose cell holds the reference as long as there is no companion library
    dispatchState.runtimeLog = 1;
    clearLog();
    call();
    dispatchState.runtimeLog = 0;
    target = before;
    const std::string head = std::string("6 ravik_runtime_log: ") + nameOf(slot) + "_";
    return logLines.size() == 1 && logLines[0].starts_with(head) ? logLines[0].substr(head.size()) : "?";
}

// One function of each kind.
TEST(Arithm, DspRunsLargeAlignedImages)
{
    alignas(8) static uint8_t u8s[3][28 * 1024];
    const auto addBytes = [&](uint32_t width, uint32_t height, uint32_t stride, int misaligned = -1) {
        uint32_t off[6] = {};
        if (misaligned >= 0)
            off[misaligned] = 4;
        return targetOnDsp(Slot::rvkAddu8, [&] {
            rvkAddu8(u8s[0] + off[0], width, height, stride + off[1], u8s[1] + off[2], stride + off[3], kWrap,
                     u8s[2] + off[4], stride + off[5]);
        });
    };
    EXPECT_EQ(addBytes(137, 185, 144), "NDSP"); // 25345 pixels
    EXPECT_EQ(addBytes(144, 176, 144), "VECTA");
    EXPECT_EQ(addBytes(31, 818, 32), "VECTA");
    for (int misaligned = 0; misaligned < 6; ++misaligned)
        EXPECT_EQ(addBytes(160, 160, 160, misaligned), "VECTA") << misaligned;
    const auto averageBytes = [&](uint32_t width, uint32_t height, uint32_t stride) {
        float average;
        return targetOnDsp(Slot::rvkAverageu8, [&] { rvkAverageu8(u8s[0], width, height, stride, &average); });
    };
    EXPECT_EQ(averageBytes(160, 159, 160), "NDSP");
    EXPECT_EQ(averageBytes(160, 158, 160), "VECTA");
    EXPECT_EQ(averageBytes(156, 165, 160), "VECTA"); // the width counts, too

    alignas(8) static int16_t s16s[25352];
    const auto addShorts = [&](uint32_t width, uint32_t height, uint32_t stride) {
        return targetOnDsp(Slot::rvkAdds16,
                           [&] { rvkAdds16(s16s, width, height, stride, s16s, stride, s16s, stride); });
    };
    EXPECT_EQ(addShorts(25345, 1, 2 * 25352), "NDSP");
    EXPECT_EQ(addShorts(25344, 1, 2 * 25352), "VECTA");
    EXPECT_EQ(addShorts(8, 3169, 16), "NDSP"); // narrow is fine
    EXPECT_EQ(addShorts(25345, 1, 2 * 25352 + 4), "VECTA");

    static float f32s[6337];
    const auto addFloats = [&](uint32_t width, uint32_t stride) {
        return targetOnDsp(Slot::rvkAddf32, [&] { rvkAddf32(f32s, width, 1, 0, f32s, 0, f32s, stride); });
    };
    EXPECT_EQ(addFloats(3169, 0), "NDSP");
    EXPECT_EQ(addFloats(3168, 0), "VECTA");
    EXPECT_EQ(addFloats(3169, 4 * 3169 + 2), "VECTA");
    const auto scaleFloats = [&](uint32_t width) {
        return targetOnDsp(Slot::rvkMultiplyScalarf32, [&] { rvkMultiplyScalarf32(f32s, width, 1, 0, 2, f32s, 0); });
    };
    EXPECT_EQ(scaleFloats(6337), "NDSP");
    EXPECT_EQ(scaleFloats(6336), "VECTA");
}

} // namespace

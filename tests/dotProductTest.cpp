#include "support/implementations.h"
#include "support/random.h"

#include <cmath>
#include <numeric>

using namespace test;

namespace {

// A query and four others, and their dot products in 64 bits.
template <class T>
struct Descriptors
{
    std::vector<T> v[5];

    Descriptors(size_t n, Random& random)
    {
        for (auto& descriptor : v) {
            const Content content = drawContent(random);
            for (size_t i = 0; i < n; ++i)
                descriptor.push_back(drawElement<T>(random, content));
        }
    }

    int64_t dot(size_t k) const { return std::inner_product(v[0].begin(), v[0].end(), v[k + 1].begin(), int64_t{0}); }
};

template <uint32_t n, class T, Slot one, Slot four, Slot scaled>
void expectDots()
{
    using Dot = std::conditional_t<std::is_signed_v<T>, int32_t, uint32_t>;
    Random random(n);
    for (int trial = 0; trial < 20; ++trial) {
        const Descriptors<T> d(n, random);
        const auto& v = d.v;
        forEachImplementation<one>([&](const char* name, auto function) {
            EXPECT_EQ(function(v[0].data(), v[1].data()), d.dot(0)) << nameOf(one) << " on " << name;
        });
        forEachImplementation<four>([&](const char* name, auto function) {
            Dot dots[4];
            function(v[0].data(), v[1].data(), v[2].data(), v[3].data(), v[4].data(), dots);
            for (size_t k = 0; k < 4; ++k)
                EXPECT_EQ(dots[k], d.dot(k)) << nameOf(four) << " on " << name;
        });
        const float factor = 0.3f, factors[4] = {0.01f, 3, 1e-6f, 0};
        forEachImplementation<scaled>([&](const char* name, auto function) {
            float dots[4];
            function(v[0].data(), factor, v[1].data(), v[2].data(), v[3].data(), v[4].data(), factors, dots);
            for (size_t k = 0; k < 4; ++k)
                EXPECT_EQ(dots[k], static_cast<float>(d.dot(k)) * factor * factors[k]) << nameOf(scaled) << name;
        });
    }
}

TEST(DotProduct, OfDescriptors)
{
    expectDots<36, int8_t, Slot::rvkDotProduct36x1s8, Slot::rvkDotProduct36x4s8, Slot::rvkDotProductNorm36x4s8>();
    expectDots<36, uint8_t, Slot::rvkDotProduct36x1u8, Slot::rvkDotProduct36x4u8, Slot::rvkDotProductNorm36x4u8>();
    expectDots<64, int8_t, Slot::rvkDotProduct64x1s8, Slot::rvkDotProduct64x4s8, Slot::rvkDotProductNorm64x4s8>();
    expectDots<64, uint8_t, Slot::rvkDotProduct64x1u8, Slot::rvkDotProduct64x4u8, Slot::rvkDotProductNorm64x4u8>();
    expectDots<128, int8_t, Slot::rvkDotProduct128x1s8, Slot::rvkDotProduct128x4s8, Slot::rvkDotProductNorm128x4s8>();
    expectDots<128, uint8_t, Slot::rvkDotProduct128x1u8, Slot::rvkDotProduct128x4u8, Slot::rvkDotProductNorm128x4u8>();
}

// Lengths around whole vectors, and sums that wrap.
TEST(DotProduct, OfAnyLength)
{
    Random random(1);
    for (const uint32_t n : {0u, 1u, 15u, 31u, 63u, 64u, 65u, 127u, 129u, 192u, 1000u, 70000u}) {
        Descriptors<int8_t> s(n, random);
        Descriptors<uint8_t> u(n, random);
        if (n == 70000)
            u.v[0] = u.v[1] = std::vector<uint8_t>(n, 255);
        forEachImplementation<Slot::rvkDotProducts8>([&](const char* name, auto function) {
            EXPECT_EQ(function(s.v[0].data(), s.v[1].data(), n), s.dot(0)) << n << " on " << name;
        });
        forEachImplementation<Slot::rvkDotProductu8>([&](const char* name, auto function) {
            EXPECT_EQ(function(u.v[0].data(), u.v[1].data(), n), static_cast<uint32_t>(u.dot(0)))
                << n << " on " << name;
        });
    }
}

// Of floats within length * 2^-23 of the sum of magnitudes, which the exact product is, too.
TEST(DotProduct, OfFloats)
{
    Random random(3);
    for (const uint32_t n : {0u, 1u, 3u, 16u, 31u, 63u, 64u, 100u, 128u, 1000u}) {
        std::vector<float> a(n + 1), b(n + 1);
        double exact = 0, magnitudes = 0;
        for (size_t i = 0; i < n; ++i) {
            a[i] = static_cast<float>(static_cast<int32_t>(random.next())) * (i % 5 ? 1e-9f : 1e3f);
            b[i] = static_cast<float>(static_cast<int32_t>(random.next())) * 1e-7f;
            exact += double{a[i]} * b[i];
            magnitudes += std::fabs(double{a[i]} * b[i]);
        }
        const float reference = referenceOf<Slot::rvkDotProductf32>()(a.data(), b.data(), n);
        forEachImplementation<Slot::rvkDotProductf32>([&](const char* name, auto function) {
            const double product = function(a.data(), b.data(), n), tolerance = n * 0x1p-23 * magnitudes;
            EXPECT_LE(std::fabs(product - exact), tolerance) << n << " on " << name;
            EXPECT_LE(std::fabs(product - reference), tolerance) << n << " on " << name;
        });
    }
    const float ones[4] = {1e8f, 1, -1e8f, 1}, one[4] = {1, 1, 1, 1};
    EXPECT_EQ(referenceOf<Slot::rvkDotProductf32>()(ones, one, 4), 1) << "in the order of the elements";
}

template <Slot slot, class T, class D>
void expectBlockProducts(T largest)
{
    const uint32_t width = 301, height = 5, stride = 310; // longer than what is summed at a time
    for (const uint32_t blockWidth : {1u, 2u, 3u, 4u, 7u, 64u, 299u, 4000u}) {
        const std::vector<T> a(stride * height, largest), b(stride * height, 3);
        const uint32_t across = (width + blockWidth - 1) / blockWidth;
        forEachImplementation<slot>([&](const char* name, auto function) {
            std::vector<D> dst(3 * (across + 1), 77);
            EXPECT_EQ(function(a.data(), b.data(), width, height, stride * sizeof(T), stride * sizeof(T), blockWidth, 2,
                               dst.data(), (across + 1) * sizeof(D)),
                      RAVIK_SUCCESS);
            for (uint32_t y = 0; y < 3; y++)
                for (uint32_t x = 0; x <= across; x++) {
                    const uint32_t columns = std::min(blockWidth, width - std::min(width, x * blockWidth));
                    const D expected = x < across ? static_cast<D>(3 * largest * columns * (y < 2 ? 2 : 1)) : D{77};
                    EXPECT_EQ(dst[y * (across + 1) + x], expected) << nameOf(slot) << " on " << name << ", " << x;
                }
        });
    }
}

TEST(DotProduct, OfBlocks)
{
    expectBlockProducts<Slot::rvkBlockDotProductu8, uint8_t, uint32_t>(255);
    expectBlockProducts<Slot::rvkBlockDotProductf32, float, float>(-5);
    // Columns first.
    const float a[4] = {1e8f, 1, -1e8f, 1}, ones[4] = {1, 1, 1, 1};
    forEachImplementation<Slot::rvkBlockDotProductf32>([&](const char* name, auto function) {
        float dot = 77;
        EXPECT_EQ(function(a, ones, 2, 2, 8, 8, 2, 2, &dot, 4), RAVIK_SUCCESS);
        EXPECT_EQ(dot, 2) << name;
    });
}

TEST(DotProduct, OfPatches)
{
    Random random(2);
    const Descriptors<uint8_t> square(64, random), tall(132, random);
    forEachImplementation<Slot::rvkDotProduct8x8u8>([&](const char* name, auto function) {
        EXPECT_EQ(function(square.v[0].data(), square.v[1].data()), square.dot(0)) << name;
    });
    forEachImplementation<Slot::rvkDotProduct11x12u8>([&](const char* name, auto function) {
        EXPECT_EQ(function(tall.v[0].data(), tall.v[1].data()), tall.dot(0)) << name;
    });
}

} // namespace

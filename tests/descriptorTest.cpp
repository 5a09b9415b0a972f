#include "support/implementations.h"
#include "support/kernelModes.h"
#include "support/random.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

using namespace test;

namespace {

// ---- distances ------------------------------------------------------------------------------------------------------

std::vector<int8_t> unit(size_t axis, int8_t value = 100)
{
    std::vector<int8_t> v(36);
    v[axis] = value;
    return v;
}

TEST(SquaredDiffs, OfUnitVectors)
{
    const auto a = unit(0), same = unit(0), opposite = unit(0, -100), other = unit(35), longer = unit(0, 120);
    const float inverse = 0.01f, inverses[4] = {inverse, inverse, inverse, 1 / 120.0f};
    forEachImplementation<Slot::rvkSumOfSquaredDiffs36x4s8>([&](const char* name, auto function) {
        float d[4];
        function(a.data(), inverse, same.data(), opposite.data(), other.data(), longer.data(), inverses, d);
        EXPECT_NEAR(d[0], 0, 1e-6f) << name;
        EXPECT_NEAR(d[1], 4, 1e-6f) << name;
        EXPECT_EQ(d[2], 2) << name;
        EXPECT_NEAR(d[3], 0, 1e-6f) << name;
        EXPECT_FALSE(std::signbit(d[0]) || std::signbit(d[3])) << name;
    });
}

// Groups of four and single ones; a null pointer has the dot product -1, wherever it stands.
TEST(SquaredDiffs, OfListsWithGaps)
{
    const auto a = unit(3), b = unit(3, 50);
    const float factors[11] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    for (const size_t gap : {0, 3, 5, 8, 10, 11}) {
        std::vector<const int8_t*> list(11, b.data());
        if (gap < list.size())
            list[gap] = nullptr;
        forEachImplementation<Slot::rvkSumOfSquaredDiffs36xNs8>([&](const char* name, auto function) {
            for (const uint32_t count : {11u, 8u, 3u}) {
                std::vector<float> distances(12, -7);
                function(a.data(), 0.5f, list.data(), factors, count, distances.data());
                for (size_t k = 0; k < distances.size(); k++) {
                    const float dot = k == gap ? -1 : 5000;
                    EXPECT_EQ(distances[k], k < count ? std::fabs(2 - factors[k] * dot) : -7)
                        << name << ", " << k << " of " << count << ", gap " << gap;
                }
            }
        });
    }
}

template <Slot slot, class T>
void expectDistancesOfAnyLength(T largest)
{
    for (const uint32_t length : {0u, 1u, 70u, 300u}) {
        const std::vector<T> a(length + 1, largest), b(length + 1, 2);
        const T* const list[2] = {a.data(), b.data()};
        const float inverses[2] = {0.5f, -0.25f};
        const auto dot = [=](double x, double y) { return static_cast<float>(length * x * y); };
        forEachImplementation<slot>([&](const char* name, auto function) {
            float d[2];
            function(a.data(), 0.125f, length, list, inverses, 2, d);
            EXPECT_EQ(d[0], std::fabs(2 - 0.125f * dot(largest, largest))) << nameOf(slot) << " on " << name;
            EXPECT_EQ(d[1], std::fabs(2 + 0.0625f * dot(largest, 2))) << nameOf(slot) << " on " << name;
        });
    }
}

TEST(SquaredDiffs, OfAnyLength)
{
    expectDistancesOfAnyLength<Slot::rvkSumOfSquaredDiffsu8, uint8_t>(255);
    expectDistancesOfAnyLength<Slot::rvkSumOfSquaredDiffss8, int8_t>(-128);
    expectDistancesOfAnyLength<Slot::rvkSumOfSquaredDiffsf32, float>(3);
}

TEST(SquaredDiffs, RefuseGapsInOtherLists)
{
    const uint8_t a[3] = {};
    const uint8_t* const list[2] = {a, nullptr};
    const float inverses[2] = {};
    float d[2] = {7, 7};
    rvkSumOfSquaredDiffsu8(a, 1, 3, list, inverses, 2, d);
    EXPECT_EQ(d[0], 7);
    rvkSumOfSquaredDiffsu8(a, 1, 3, list, inverses, 1, d);
    EXPECT_EQ(d[0], 2);
}

TEST(DotProductKernel, MultipliesInBothModes)
{
    const std::vector<int8_t> a(100, -128), b(100, 127);
    inBothModes(Kernel::irvkDotProductN, "irvkDotProductN", [&] {
        for (const uint32_t n : {0u, 1u, 36u, 100u})
            EXPECT_EQ(kernel<Kernel::irvkDotProductN>()(a.data(), b.data(), n), -128 * 127 * static_cast<int32_t>(n));
    });
}

// ---- sorting --------------------------------------------------------------------------------------------------------

bool haveSameBits(const float* a, const float* b)
{
    return memcmp(a, b, 8 * sizeof *a) == 0;
}

TEST(Sort8Scores, OrdersAndKeepsAllOfThem)
{
    Random random(3);
    for (int trial = 0; trial < 3000; trial++) {
        float in[8];
        for (float& score : in) {
            const float some[] = {0, -0.0f, INFINITY, -INFINITY, 1e-40f, trial % 3 ? 2.0f : NAN};
            score = random.below(2) ? some[random.below(6)] : static_cast<float>(random.below(7)) - 3;
        }
        // Equal scores: those of the second half first, and in their order.
        float expected[8];
        std::rotate_copy(in, in + 4, in + 8, expected);
        const bool areNumbers = std::none_of(in, in + 8, [](float score) { return std::isnan(score); });
        if (areNumbers)
            std::stable_sort(expected, expected + 8);
        else
            referenceOf<Slot::rvkSort8Scoresf32>()(in, expected);
        forEachImplementation<Slot::rvkSort8Scoresf32>([&](const char* name, auto function) {
            float out[8];
            function(in, out);
            EXPECT_TRUE(haveSameBits(out, expected)) << name;
            memcpy(out, in, sizeof in);
            function(out, out);
            EXPECT_TRUE(haveSameBits(out, expected)) << name << " in place";
        });
        const auto count = [](const float* v) {
            return std::count_if(v, v + 8, [](float x) { return std::isnan(x); });
        };
        EXPECT_EQ(count(in), count(expected));
    }
}

// ---- scaled descriptors ---------------------------------------------------------------------------------------------

TEST(VecNormalize, MultipliesEachByItsFactor)
{
    std::vector<int8_t> src(2 * 40);
    std::iota(src.begin(), src.end(), int8_t{-40});
    src[0] = -128;
    const float factors[2] = {0.3f, -7};
    forEachImplementation<Slot::rvkVecNormalize36s8f32>([&](const char* name, auto function) {
        std::vector<float> dst(2 * 37, 77);
        EXPECT_EQ(function(src.data(), 40, factors, 2, dst.data(), 37 * sizeof(float)), RAVIK_SUCCESS);
        for (size_t k = 0; k < 2; k++)
            for (size_t i = 0; i < 37; i++)
                EXPECT_EQ(dst[k * 37 + i], i < 36 ? static_cast<float>(src[k * 40 + i]) * factors[k] : 77) << name;
    });
}

// ---- the descriptor of a patch --------------------------------------------------------------------------------------

using Patch = std::vector<uint8_t>; // 17 x 17

struct Made
{
    std::vector<int8_t> elements = std::vector<int8_t>(36);
    float invLength = -1;
};

// Each pixel cut into 6x6 parts, of which 17x17 make a cell; in floating point.
Made madeByParts(const Patch& patch)
{
    double cells[36] = {};
    for (size_t y = 0; y < 102; y++)
        for (size_t x = 0; x < 102; x++)
            cells[y / 17 * 6 + x / 17] += patch[y / 6 * 17 + x / 6];
    const double mean = std::accumulate(cells, cells + 36, 0.0) / 36;
    double largest = 0, squares = 0;
    for (double& cell : cells)
        largest = std::max(largest, std::fabs(cell -= mean));
    Made made;
    for (size_t i = 0; i < 36; i++) {
        made.elements[i] = static_cast<int8_t>(largest > 0 ? std::round(cells[i] * 127 / largest) : 0);
        squares += made.elements[i] * made.elements[i];
    }
    made.invLength = squares > 0 ? static_cast<float>(1 / std::sqrt(squares)) : 0;
    return made;
}

TEST(Descriptor17x17, IsThatOfPartsOfPixels)
{
    Random random(4);
    for (int trial = 0; trial < 300; trial++) {
        const Content content = static_cast<Content>(trial % 4);
        Patch patch(17 * 17);
        for (uint8_t& pixel : patch)
            pixel = trial % 7 ? drawElement<uint8_t>(random, content) : static_cast<uint8_t>(200 + trial % 2);
        patch[random.below(289)] ^= trial % 14 ? 255 : 0; // now and then quite flat
        const Made expected = madeByParts(patch);
        forEachImplementation<Slot::rvkDescriptor17x17u8To36s8>([&](const char* name, auto function) {
            Made made;
            EXPECT_EQ(function(patch.data(), 17, made.elements.data(), &made.invLength), RAVIK_SUCCESS);
            EXPECT_EQ(made.elements, expected.elements) << name << ", trial " << trial;
            EXPECT_NEAR(made.invLength, expected.invLength, 1e-7f) << name;
        });
    }
}

// ---- means and variances --------------------------------------------------------------------------------------------

TEST(SampledMeanAndVar, WorkedValues)
{
    std::vector<float> src(3 * 36);
    for (size_t i = 0; i < 36; i++)
        for (size_t k = 0; k < 3; k++)
            src[k * 36 + i] = static_cast<float>(i + 3 * k * k); // i, i + 3, i + 12
    forEachImplementation<Slot::rvkDescriptorSampledMeanAndVar36f32>([&](const char* name, auto function) {
        std::vector<float> means(36), variances(36);
        EXPECT_EQ(function(src.data(), 3, 144, means.data(), variances.data()), RAVIK_SUCCESS);
        for (size_t i = 0; i < 36; i++) {
            EXPECT_EQ(means[i], static_cast<float>(i + 5)) << name;
            EXPECT_EQ(variances[i], 39) << name; // (25 + 4 + 49) / 2
        }
        EXPECT_EQ(function(src.data() + 36, 1, 144, means.data(), variances.data()), RAVIK_SUCCESS);
        EXPECT_EQ(means[35], 38) << name;
        EXPECT_EQ(variances[35], 0) << name;
    });
}

} // namespace

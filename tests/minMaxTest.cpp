#include "support/implementations.h"
#include "support/logCapture.h"

#include <cmath>

using namespace test;

namespace {

struct Place
{
    uint32_t x, y;
    bool operator==(const Place&) const = default;
};

template <class T>
struct Found
{
    T low, high;
    Place lowAt, highAt;
};

template <class Function, class T>
Found<T> search(Function function, const T* src, uint32_t width, uint32_t height, uint32_t stride)
{
    Found<T> f = {};
    function(src, width, height, stride, &f.low, &f.high, &f.lowAt.x, &f.lowAt.y, &f.highAt.x, &f.highAt.y);
    return f;
}

TEST(MinMax, WorkedValues)
{
    forEachImplementation<Slot::rvkMinMaxLocu8>([](const char* name, auto function) {
        SCOPED_TRACE(name);
        uint8_t ties[2][8] = {{9, 9, 9, 200, 9, 3, 9, 3}, {9, 3, 9, 200, 9, 3, 9, 3}};
        const Found<uint8_t> f = search(function, ties[0], 8, 2, 8);
        EXPECT_EQ(f.low, 3);
        EXPECT_EQ(f.lowAt, (Place{5, 0}));
        EXPECT_EQ(f.high, 200);
        EXPECT_EQ(f.highAt, (Place{3, 0}));
        // The stride skips the column that holds the extremes.
        const uint8_t padded[3][3] = {{5, 5, 0}, {5, 5, 255}, {4, 6, 0}};
        const Found<uint8_t> g = search(function, padded[0], 2, 3, 3);
        EXPECT_EQ(g.lowAt, (Place{0, 2}));
        EXPECT_EQ(g.highAt, (Place{1, 2}));
        const std::vector<uint8_t> constant(300 * 70, 17);
        const Found<uint8_t> h = search(function, constant.data(), 300, 70, 300);
        EXPECT_EQ(h.lowAt, (Place{0, 0}));
        EXPECT_EQ(h.highAt, (Place{0, 0}));
    });
    forEachImplementation<Slot::rvkMinMaxLocs16_v2>([](const char* name, auto function) {
        SCOPED_TRACE(name);
        const int16_t rows[3][4] = {{1, -5, 3, 99}, {7, -5, 7, -99}, {0, 0, 0, 0}};
        const Found<int16_t> f = search(function, rows[0], 3, 2, 9); // the stride is 8 in fact
        EXPECT_EQ(f.low, -5);
        EXPECT_EQ(f.lowAt, (Place{1, 0}));
        EXPECT_EQ(f.high, 7);
        EXPECT_EQ(f.highAt, (Place{0, 1}));
    });
}

// Every place of an image that spans several chunks holds the only extreme once.
TEST(MinMax, FindsAnExtremeWhereverItStands)
{
    forEachImplementation<Slot::rvkMinMaxLocu16>([](const char* name, auto function) {
        for (const uint32_t stride : {2 * 131u, 2 * 140u}) {
            std::vector<uint16_t> image(stride / 2 * 40, 1000);
            for (uint32_t place = 0; place < 131 * 40; ++place) {
                const Place at = {place % 131, place / 131};
                uint16_t& element = image[at.y * stride / 2 + at.x];
                element = 999;
                const Found<uint16_t> f = search(function, image.data(), 131, 40, stride);
                ASSERT_EQ(f.lowAt, at) << name;
                ASSERT_EQ(f.highAt, (place == 0 ? Place{1, 0} : Place{0, 0})) << name;
                element = 1001;
                ASSERT_EQ(search(function, image.data(), 131, 40, stride).highAt, at) << name;
                element = 1000;
            }
        }
    });
}

TEST(MinMax, FloatsThatAreNotOrdinary)
{
    forEachImplementation<Slot::rvkMinMaxLocf32>([](const char* name, auto function) {
        SCOPED_TRACE(name);
        const auto found = [&](const std::vector<float>& row) {
            return search(function, row.data(), static_cast<uint32_t>(row.size()), 1,
                          4 * static_cast<uint32_t>(row.size()));
        };
        // A NaN of either sign never counts, but as the first element it stays.
        const Found<float> late = found({2, NAN, 1, -NAN, 3, NAN});
        EXPECT_EQ(late.low, 1.0f);
        EXPECT_EQ(late.lowAt.x, 2u);
        EXPECT_EQ(late.high, 3.0f);
        EXPECT_EQ(late.highAt.x, 4u);
        const Found<float> infinite = found({NAN - NAN, 1, -2, 3, INFINITY, -INFINITY});
        EXPECT_TRUE(std::isnan(infinite.low) && std::isnan(infinite.high));
        EXPECT_EQ(infinite.lowAt.x, 0u);
        EXPECT_EQ(infinite.highAt.x, 0u);
        const Found<float> both = found({1, -NAN, INFINITY, NAN, -INFINITY});
        EXPECT_EQ(both.low, -INFINITY);
        EXPECT_EQ(both.high, INFINITY);
        // The zeros are equal: the first one stays, with its sign.
        const Found<float> zeros = found({0.0f, -0.0f, 0.0f, -0.0f});
        EXPECT_FALSE(std::signbit(zeros.low) || std::signbit(zeros.high));
        EXPECT_EQ(zeros.lowAt.x, 0u);
        EXPECT_EQ(zeros.highAt.x, 0u);
        const Found<float> negativeZero = found({-1.0f, -0.0f, 0.0f});
        EXPECT_TRUE(std::signbit(negativeZero.high));
        EXPECT_EQ(negativeZero.highAt.x, 1u);
        // Subnormal numbers are ordinary.
        const Found<float> tiny = found({0.0f, 1e-42f, -1e-42f, 2e-42f, -2e-42f, 1e-42f});
        EXPECT_EQ(tiny.low, -2e-42f);
        EXPECT_EQ(tiny.lowAt.x, 4u);
        EXPECT_EQ(tiny.high, 2e-42f);
        EXPECT_EQ(tiny.highAt.x, 3u);
    });
}

TEST(MinMax, TheReferenceEndsTheProcessOnBadArguments)
{
    const uint8_t src[4] = {};
    uint8_t value;
    uint32_t place;
    const auto printLogAtExit = [] {
        for (const std::string& line : logLines)
            fputs(line.c_str(), stderr);
    };
    EXPECT_EXIT((atexit(printLogAtExit), rvkMinMaxLocu8C(src, 4, 1, 3, &value, &value, &place, &place, &place, &place)),
                ::testing::ExitedWithCode(1),
                "6 ravik_lib_log: src/cpu/ravikArithmC@[0-9]+: src && .*srcStride >= srcWidth.* Assertion failed");
}

} // namespace

#include "support/implementations.h"
#include "support/logCapture.h"

#include <cmath>
#include <cstring>

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

// The bits of floats count, but any NaN equals any other.
template <class T>
bool same(T a, T b)
{
    return memcmp(&a, &b, sizeof a) == 0 || (a != a && b != b);
}

template <class Function, class T>
void expectFound(Function function, const std::vector<T>& src, uint32_t width, uint32_t height, uint32_t stride,
                 const Found<T>& expected)
{
    const Found<T> f = search(function, src.data(), width, height, stride);
    EXPECT_TRUE(same(f.low, expected.low) && f.lowAt == expected.lowAt)
        << +f.low << " in " << ::testing::PrintToString(src);
    EXPECT_TRUE(same(f.high, expected.high) && f.highAt == expected.highAt)
        << +f.high << " in " << ::testing::PrintToString(src);
}

TEST(MinMax, WorkedValues)
{
    forEachImplementation<Slot::rvkMinMaxLocu8>([](const char* name, auto function) {
        SCOPED_TRACE(name);
        const auto expect = [&](const std::vector<uint8_t>& src, uint32_t width, uint32_t height, uint32_t stride,
                                const Found<uint8_t>& found) {
            expectFound(function, src, width, height, stride, found);
        };
        expect({9, 9, 9, 200, 9, 3, 9, 3, 9, 3, 9, 200, 9, 3, 9, 3}, 8, 2, 8, {3, 200, {5, 0}, {3, 0}});
        expect({5, 5, 0, 5, 5, 255, 4, 6, 0}, 2, 3, 3, {4, 6, {0, 2}, {1, 2}}); // the last column is none
        expect(std::vector<uint8_t>(300 * 70, 17), 300, 70, 300, {17, 17, {0, 0}, {0, 0}});
    });
    forEachImplementation<Slot::rvkMinMaxLocs16_v2>([](const char* name, auto function) {
        SCOPED_TRACE(name);
        const std::vector<int16_t> rows = {1, -5, 3, 99, 7, -5, 7, -99};
        expectFound(function, rows, 3, 2, 9, {-5, 7, {1, 0}, {0, 1}}); // the stride is 8 in fact
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
        const auto expect = [&](const std::vector<float>& row, float low, uint32_t lowX, float high, uint32_t highX) {
            const auto width = static_cast<uint32_t>(row.size());
            expectFound(function, row, width, 1, 4 * width, {low, high, {lowX, 0}, {highX, 0}});
        };
        // A NaN of either sign never counts, but as the first element it stays.
        expect({2, NAN, 1, -NAN, 3, NAN}, 1, 2, 3, 4);
        expect({NAN, 1, -2, 3, INFINITY, -INFINITY}, NAN, 0, NAN, 0);
        expect({1, -NAN, INFINITY, NAN, -INFINITY}, -INFINITY, 4, INFINITY, 2);
        // The zeros are equal: the first one stays, with its sign.
        expect({0.0f, -0.0f, 0.0f, -0.0f}, 0.0f, 0, 0.0f, 0);
        expect({-1.0f, -0.0f, 0.0f}, -1.0f, 0, -0.0f, 1);
        // Subnormal numbers are ordinary.
        expect({0.0f, 1e-42f, -1e-42f, 2e-42f, -2e-42f, 1e-42f}, -2e-42f, 4, 2e-42f, 3);
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

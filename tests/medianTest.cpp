#include "support/windows.h"

using namespace test;

namespace {

enum class Ring { left, copied, constant, nearest };

// Sorts every window on its own; of an even number of values the lower one in the middle counts.
template <class T>
Picture<T> medians(const Picture<T>& src, uint32_t M, uint32_t N, Ring ring, T outside = 0)
{
    const int m = static_cast<int>(M), n = static_cast<int>(N);
    return pictureOf<T>(src.width, src.height, [&](int x, int y) {
        const bool isRing = x < m / 2 || x + m / 2 >= src.width || y < n / 2 || y + n / 2 >= src.height;
        if (isRing && ring <= Ring::copied)
            return ring == Ring::left ? T{77} : src.at(x, y);
        std::vector<T> window =
            windowOf(src, x, y, m, n, ring == Ring::constant ? Beyond::constant : Beyond::nearest, outside);
        std::sort(window.begin(), window.end());
        return window[(window.size() - 1) / 2];
    });
}

template <Slot slot, class... Arguments>
void expect3x3(Ring ring, Arguments... arguments)
{
    expectFiltered<slot, uint8_t>(1, std::tuple(arguments...),
                                  [=](const auto& src) { return medians(src, 3, 3, ring, uint8_t{99}); });
}

TEST(Median, SortsEveryWindow)
{
    expect3x3<Slot::rvkFilterMedian3x3u8_v2>(Ring::left);
    expect3x3<Slot::rvkFilterMedian3x3u8_v3>(Ring::left, 0u, uint8_t{99});
    expect3x3<Slot::rvkFilterMedian3x3u8_v3>(Ring::constant, uint32_t{RAVIK_BORDER_CONSTANT}, uint8_t{99});
    expect3x3<Slot::rvkFilterMedian3x3u8_v3>(Ring::nearest, uint32_t{RAVIK_BORDER_REPLICATE}, uint8_t{99});
    const auto expectMxN = [](auto draw) {
        expectFiltered<Slot::rvkFilterMedianMxNs16, int16_t>(
            1, draw, [](const auto& src, uint32_t M, uint32_t N) { return medians(src, M, N, Ring::copied); }, 60);
    };
    expectMxN([](Random& random, const auto& src) {
        return std::tuple(1 + random.below(std::min(src.columns(), 9u)), 1 + random.below(std::min(src.rows(), 9u)));
    });
    expectMxN([](Random& random, const auto& src) { // some have code of their own
        const uint32_t size = std::min({3 + 2 * random.below(3), src.columns(), src.rows()});
        return std::tuple(size, size);
    });
}

TEST(Median, TakesTheLowerOfTwoMiddleValuesAndCopiesTheRing)
{
    const int16_t src[9] = {1, 2, 3, 4, -5, 6, 7, 8, 9};
    const int16_t expected[9] = {1, 2, 3, 4, 1, 6, 7, 8, 9}; // of -5, 1, 2, 4
    int16_t dst[9];
    EXPECT_EQ(rvkFilterMedianMxNs16(src, 3, 3, 0, 2, 2, dst, 0), RAVIK_SUCCESS);
    EXPECT_EQ(memcmp(dst, expected, sizeof dst), 0);
    EXPECT_EQ(rvkFilterMedianMxNs16(src, 0x10000, 0x10000, 0, 0x8000, 0x10000, dst, 0), RAVIK_EBADPARAM); // of 2^31
}

// Counts of up to 65535 values, and more than the vector implementations count.
TEST(Median, VectaEqualsReferenceInLargeWindows)
{
    Random random(9);
    const auto src = randomPicture<int16_t>(random, 300, 258);
    for (const uint32_t N : {255u, 257u}) {
        const auto expected = filtered<int16_t>(rvkFilterMedianMxNs16C, src, 257u, N);
        forEachVecta<Slot::rvkFilterMedianMxNs16>([&](const char* variant, auto function) {
            EXPECT_TRUE(filtered<int16_t>(function, src, 257u, N) == expected) << variant << ", 257x" << N;
        });
    }
}

} // namespace

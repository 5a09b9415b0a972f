#include "support/windows.h"

using namespace test;

namespace {

// Every window searched on its own. What lies outside does not take part, which is what a constant of the neutral value
// gives.
Picture<uint8_t> dilated(const Picture<uint8_t>& src, uint32_t N, uint8_t outside = 0)
{
    const int n = static_cast<int>(N);
    return pictureOf<uint8_t>(src.width, src.height, [&](int x, int y) {
        const auto window = windowOf(src, x, y, n, n, Beyond::constant, outside);
        return *std::max_element(window.begin(), window.end());
    });
}
Picture<uint8_t> eroded(const Picture<uint8_t>& src, uint32_t N, uint8_t outside = 255)
{
    const int n = static_cast<int>(N);
    return pictureOf<uint8_t>(src.width, src.height, [&](int x, int y) {
        const auto window = windowOf(src, x, y, n, n, Beyond::constant, outside);
        return *std::min_element(window.begin(), window.end());
    });
}

TEST(Morphology, SearchesEveryWindow)
{
    const auto dilated3 = [](const auto& src) { return dilated(src, 3); };
    const auto eroded3 = [](const auto& src) { return eroded(src, 3); };
    expectFiltered<Slot::rvkFilterDilate3x3u8_v2, uint8_t>(1, std::tuple(), dilated3);
    expectFiltered<Slot::rvkFilterErode3x3u8_v2, uint8_t>(1, std::tuple(), eroded3);
    for (const uint32_t type : {0u, uint32_t{RAVIK_BORDER_REPLICATE}}) {
        expectFiltered<Slot::rvkFilterDilate3x3u8_v3, uint8_t>(1, std::tuple(type, uint8_t{200}), dilated3);
        expectFiltered<Slot::rvkFilterErode3x3u8_v3, uint8_t>(1, std::tuple(type, uint8_t{50}), eroded3);
    }
    const std::tuple constant(uint32_t{RAVIK_BORDER_CONSTANT}, uint8_t{130});
    expectFiltered<Slot::rvkFilterDilate3x3u8_v3, uint8_t>(1, constant,
                                                           [](const auto& src) { return dilated(src, 3, 130); });
    expectFiltered<Slot::rvkFilterErode3x3u8_v3, uint8_t>(1, constant,
                                                          [](const auto& src) { return eroded(src, 3, 130); });

    const auto drawSize = [](Random& random, const auto& src) { // 3 and 5 have code of their own
        const uint32_t most = std::min(src.columns(), src.rows());
        return std::tuple(std::min(most, random.below(2) ? 3 + 2 * random.below(2) : 1 + random.below(most)));
    };
    expectFiltered<Slot::rvkFilterDilateNxNu8, uint8_t>(
        1, drawSize, [](const auto& src, uint32_t N) { return dilated(src, N); }, 60);
    expectFiltered<Slot::rvkFilterErodeNxNu8, uint8_t>(
        1, drawSize, [](const auto& src, uint32_t N) { return eroded(src, N); }, 60);
}

TEST(Morphology, WorkedValues)
{
    Picture<uint8_t> src(3, 2);
    src.pixels = {10, 20, 30, 40, 50, 60};
    using Pixels = std::vector<uint8_t>;
    EXPECT_EQ(filtered<uint8_t>(rvkFilterErode3x3u8, src).pixels, (Pixels{10, 10, 20, 10, 10, 20}));
    EXPECT_EQ(filtered<uint8_t>(rvkFilterDilate3x3u8, src).pixels, (Pixels{50, 60, 60, 50, 60, 60}));
    // The window of an even N lies above and to the left.
    EXPECT_EQ(filtered<uint8_t>(rvkFilterDilateNxNu8, src, 2u).pixels, (Pixels{10, 20, 30, 40, 50, 60}));
    EXPECT_EQ(filtered<uint8_t>(rvkFilterErodeNxNu8, src, 2u).pixels, (Pixels{10, 10, 20, 10, 10, 20}));
}

TEST(Morphology, RefusesImagesOf4GiB)
{
    const uint8_t src[9] = {9};
    uint8_t dst[9] = {77};
    EXPECT_EQ(rvkFilterDilateNxNu8(src, 3, 0x1000, 0x100000, 3, dst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(dst[0], 77);
}

} // namespace

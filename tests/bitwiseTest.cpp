#include "support/implementations.h"

#include <cmath>

using namespace test;

namespace {

TEST(Bitwise, ReferenceWorkedValues)
{
    const uint8_t a[4] = {0x0f, 0xf0, 0xff, 0x00}, b[4] = {0x3c, 0x3c, 0xff, 0x00};
    uint8_t dst[4];
    const auto expect = [&](uint8_t v0, uint8_t v1, uint8_t v2, uint8_t v3) {
        EXPECT_EQ(std::vector<uint8_t>(dst, dst + 4), (std::vector<uint8_t>{v0, v1, v2, v3}));
    };
    rvkBitwiseAndu8C(a, 4, 1, 4, b, 4, dst, 4);
    expect(0x0c, 0x30, 0xff, 0x00);
    rvkBitwiseXoru8C(a, 4, 1, 4, b, 4, dst, 4);
    expect(0x33, 0xcc, 0x00, 0x00);
    rvkBitwiseNotu8C(a, 4, 1, 4, dst, 4);
    expect(0xf0, 0x0f, 0x00, 0xff);
    rvkBitwiseOru8C(a, 4, 1, 4, b, 4, dst, 4, nullptr, 0);
    expect(0x3f, 0xfc, 0xff, 0x00);

    // Two rows of two: any mask byte but 0 selects; what is not selected becomes 0.
    const uint8_t mask[5] = {0, 1, 99, 128, 0};
    rvkBitwiseOru8C(a, 2, 2, 2, b, 2, dst, 2, mask, 3);
    expect(0, 0xfc, 0xff, 0);
    const int32_t wide[4] = {1, 2, -2147483647 - 1, 4}, bits[4] = {8, 8, 1, 8};
    int32_t wideDst[4];
    rvkBitwiseOrs32C(wide, bits, 2, 2, 8, wideDst, 8, mask, 3);
    EXPECT_EQ(std::vector<int32_t>(wideDst, wideDst + 4), (std::vector<int32_t>{0, 10, -2147483647, 0}));
}

TEST(Bitwise, ReferenceFillsSelectedPixels)
{
    const uint8_t mask[6] = {0, 1, 77, 255, 0, 0}; // rows of 2 pixels, 3 bytes apart
    uint8_t dst[14] = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
    rvkSetElementsc3u8C(dst, 2, 2, 7, 1, 2, 3, mask, 3);
    EXPECT_EQ(std::vector<uint8_t>(dst, dst + 14), (std::vector<uint8_t>{9, 9, 9, 1, 2, 3, 9, 1, 2, 3, 9, 9, 9, 9}));

    float floats[8] = {};
    rvkSetElementsc4f32C(floats, 2, 1, 32, 1, -0.0f, 3, 4, nullptr, 0);
    EXPECT_EQ(floats[4], 1);
    EXPECT_TRUE(std::signbit(floats[5]));
    EXPECT_EQ(floats[6], 3);
    EXPECT_EQ(floats[7], 4);
}

TEST(Bitwise, WithoutAMaskItsStrideSaysNothing)
{
    const uint8_t src[4] = {1, 2, 3, 4};
    uint8_t dst[4] = {};
    rvkBitwiseOru8(src, 2, 2, 0, src, 0, dst, 0, nullptr, 1);
    EXPECT_EQ(dst[3], 4);
    rvkSetElementsu8(dst, 2, 2, 0, 5, nullptr, 1);
    EXPECT_EQ(dst[3], 5);
}

} // namespace

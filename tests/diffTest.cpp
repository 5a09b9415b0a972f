#include "support/implementations.h"

using namespace test;

namespace {

template <class Function, class S, class D>
D onePixel(Function function, S a, S b, D)
{
    D d = D{99};
    function(&a, &b, 1, 1, sizeof(S), &d, sizeof(D));
    return d;
}

TEST(Diff, ReferenceWorkedValues)
{
    EXPECT_EQ(onePixel(rvkAbsDiffu8C, uint8_t{0}, uint8_t{255}, uint8_t{}), 255);
    EXPECT_EQ(onePixel(rvkAbsDiffu8C, uint8_t{255}, uint8_t{0}, uint8_t{}), 255);
    EXPECT_EQ(onePixel(rvkAbsDiffs32C, 5, -7, int32_t{}), 12);
    EXPECT_EQ(onePixel(rvkAbsDiffs32C, INT32_MAX, -1, int32_t{}), INT32_MIN); // wraps to -2^31, which has no positive
    EXPECT_EQ(onePixel(rvkAbsDiffs32C, INT32_MAX, -2, int32_t{}), INT32_MAX); // -2^31 + 1 in wrapped arithmetic
    EXPECT_EQ(onePixel(rvkAbsDifff32C, 1.5f, 4.0f, float{}), 2.5f);
    EXPECT_EQ(onePixel(rvkImageDiffu8_v2C, uint8_t{3}, uint8_t{9}, uint8_t{}), 0);
    EXPECT_EQ(onePixel(rvkImageDiffu8_v2C, uint8_t{9}, uint8_t{3}, uint8_t{}), 6);
    EXPECT_EQ(onePixel(rvkImageDiffs16C, int16_t{-32768}, int16_t{1}, int16_t{}), -32768);
    EXPECT_EQ(onePixel(rvkImageDiffs16C, int16_t{32767}, int16_t{-1}, int16_t{}), 32767);
    EXPECT_EQ(onePixel(rvkImageDifff32C, 1.0f, 2.5f, float{}), -1.5f);
    EXPECT_EQ(onePixel(rvkImageDiffu8f32C, uint8_t{0}, uint8_t{255}, float{}), -255.0f);
    EXPECT_EQ(onePixel(rvkImageDiffu8s8C, uint8_t{255}, uint8_t{0}, int8_t{}), 127);
    EXPECT_EQ(onePixel(rvkImageDiffu8s8C, uint8_t{0}, uint8_t{255}, int8_t{}), -127);
    EXPECT_EQ(onePixel(rvkImageDiffu8s8C, uint8_t{3}, uint8_t{2}, int8_t{}), 0); // each is halved first
}

TEST(Diff, ReferenceAppliesEachValueToItsChannel)
{
    const uint8_t src[2][6] = {{10, 20, 30, 40, 50, 60}, {0, 0, 0, 255, 255, 255}};
    uint8_t dst[2][6];
    rvkAbsDiffVc3u8C(src[0], 2, 2, 6, 15, 20, 25, dst[0], 6);
    const uint8_t expected[2][6] = {{5, 0, 5, 25, 30, 35}, {15, 20, 25, 240, 235, 230}};
    EXPECT_EQ(memcmp(dst, expected, sizeof dst), 0);

    const float src4[4] = {1, 2, 3, 4};
    float dst4[4];
    rvkAbsDiffVc4f32C(src4, 1, 1, 16, 2, 2, 2, -2, dst4, 16);
    EXPECT_EQ(dst4[0], 1);
    EXPECT_EQ(dst4[1], 0);
    EXPECT_EQ(dst4[2], 1);
    EXPECT_EQ(dst4[3], 6);
}

TEST(Diff, ReferenceRoundsStridesDownToTheElementSize)
{
    const int32_t src[4] = {1, 2, 3, 4};
    int32_t dst[4];
    rvkAbsDiffVs32C(src, 2, 2, 11, 1, dst, 9); // both strides are 8 in fact
    EXPECT_EQ(dst[0], 0);
    EXPECT_EQ(dst[1], 1);
    EXPECT_EQ(dst[2], 2);
    EXPECT_EQ(dst[3], 3);
}

} // namespace

#include "support/logCapture.h"
#include "support/trial.h"

using namespace test;

namespace {

// ---- the references, on worked values ----

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

// ---- VECTA ----

template <Slot slot, class S, class D>
void expectTwoImageForm()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        const auto a = t.input<S>(), b = t.input<S>();
        const auto d = t.output<D>();
        function(a.data, b.data, t.width, t.height, a.stride, d.data, d.stride);
    });
}

// Destination in the place of either source.
template <Slot slot, class T>
void expectInPlace()
{
    expectVectaEqualsReference<slot>(
        [](auto function, Trial& t) {
            const auto a = t.input<T>();
            const auto b = t.inOut<T>();
            if (t.below(2))
                function(a.data, b.data, t.width, t.height, a.stride, b.data, b.stride);
            else
                function(b.data, a.data, t.width, t.height, a.stride, b.data, b.stride);
        },
        60);
}

template <Slot slot, class T, uint32_t channels>
void expectValueForm()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        const bool inPlace = t.below(4) == 0;
        const T v[4] = {t.value<T>(), t.value<T>(), t.value<T>(), t.value<T>()};
        const auto a = t.inOut<T>(channels);
        const auto d = inPlace ? a : t.output<T>(channels);
        if constexpr (channels == 1)
            function(a.data, t.width, t.height, a.stride, v[0], d.data, d.stride);
        else if constexpr (channels == 3)
            function(a.data, t.width, t.height, a.stride, v[0], v[1], v[2], d.data, d.stride);
        else
            function(a.data, t.width, t.height, a.stride, v[0], v[1], v[2], v[3], d.data, d.stride);
    });
}

TEST(Diff, VectaEqualsReference)
{
    expectTwoImageForm<Slot::rvkAbsDiffu8, uint8_t, uint8_t>();
    expectTwoImageForm<Slot::rvkAbsDiffs32, int32_t, int32_t>();
    expectTwoImageForm<Slot::rvkAbsDifff32, float, float>();
    expectTwoImageForm<Slot::rvkImageDiffu8_v2, uint8_t, uint8_t>();
    expectTwoImageForm<Slot::rvkImageDiffs16, int16_t, int16_t>();
    expectTwoImageForm<Slot::rvkImageDifff32, float, float>();
    expectTwoImageForm<Slot::rvkImageDiffu8f32, uint8_t, float>();
    expectTwoImageForm<Slot::rvkImageDiffu8s8, uint8_t, int8_t>();

    expectInPlace<Slot::rvkAbsDiffu8, uint8_t>();
    expectInPlace<Slot::rvkAbsDiffs32, int32_t>();
    expectInPlace<Slot::rvkAbsDifff32, float>();
    expectInPlace<Slot::rvkImageDiffu8_v2, uint8_t>();
    expectInPlace<Slot::rvkImageDiffs16, int16_t>();
    expectInPlace<Slot::rvkImageDifff32, float>();

    expectValueForm<Slot::rvkAbsDiffVu8, uint8_t, 1>();
    expectValueForm<Slot::rvkAbsDiffVs32, int32_t, 1>();
    expectValueForm<Slot::rvkAbsDiffVf32, float, 1>();
    expectValueForm<Slot::rvkAbsDiffVc3u8, uint8_t, 3>();
    expectValueForm<Slot::rvkAbsDiffVc3s32, int32_t, 3>();
    expectValueForm<Slot::rvkAbsDiffVc3f32, float, 3>();
    expectValueForm<Slot::rvkAbsDiffVc4u8, uint8_t, 4>();
    expectValueForm<Slot::rvkAbsDiffVc4s32, int32_t, 4>();
    expectValueForm<Slot::rvkAbsDiffVc4f32, float, 4>();
}

// ---- entries ----

TEST(Diff, BadArgumentsAreLoggedAndWriteNothing)
{
    const uint8_t src[128] = {9};
    uint8_t dst[128] = {77};
    const std::string condition = "6 ravik_lib_log: Assertion failed @rvkAbsDiffu8: src1 && src2 && dst && srcWidth && "
                                  "srcHeight && (srcStride >= srcWidth) && dstStride\n";
    const auto refused = [&](auto call) {
        clearLog();
        call();
        return logHas(condition) && dst[0] == 77;
    };
    EXPECT_TRUE(refused([&] { rvkAbsDiffu8(src, src, 64, 2, 63, dst, 64); }));
    EXPECT_TRUE(refused([&] { rvkAbsDiffu8(nullptr, src, 64, 2, 64, dst, 64); }));
    EXPECT_TRUE(refused([&] { rvkAbsDiffu8(src, nullptr, 64, 2, 64, dst, 64); }));
    EXPECT_TRUE(refused([&] { rvkAbsDiffu8(src, src, 64, 2, 64, nullptr, 64); }));
    EXPECT_TRUE(refused([&] { rvkAbsDiffu8(src, src, 0, 2, 0, dst, 0); }));
    EXPECT_TRUE(refused([&] { rvkAbsDiffu8(src, src, 64, 0, 64, dst, 64); }));
    clearLog();
    rvkAbsDiffu8(src, src, 64, 2, 0, dst, 0);
    EXPECT_TRUE(logLines.empty());
    EXPECT_EQ(dst[0], 0);
}

TEST(Diff, WidthsWhoseRowsDoNotFit32BitsAreRefused)
{
    int32_t pixel = 5;
    const uint32_t width = 0x40000001; // x 4 wraps to 4
    clearLog();
    rvkAbsDiffs32(&pixel, &pixel, width, 1, 0, &pixel, 0);
    rvkAbsDiffVc4s32(&pixel, 0x10000001, 1, 0, 1, 2, 3, 4, &pixel, 0);
    EXPECT_EQ(logLines.size(), 2u);
    EXPECT_EQ(pixel, 5);
}

TEST(Diff, FirstGenerationWorksOnPackedRows)
{
    const uint8_t a[6] = {10, 20, 30, 40, 50, 60}, b[6] = {1, 25, 3, 45, 5, 65};
    uint8_t packed[6], strided[6];
    rvkImageDiffu8(a, b, 3, 2, packed);
    rvkImageDiffu8_v2(a, b, 3, 2, 0, strided, 0);
    EXPECT_EQ(memcmp(packed, strided, sizeof packed), 0);
    EXPECT_EQ(packed[4], 45);
}

} // namespace

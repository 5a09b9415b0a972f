#include "support/logCapture.h"
#include "support/trial.h"

using namespace test;

namespace {

// ---- the references, on worked values ----

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

// ---- VECTA ----

// About a third of the pixels are not selected. Null in one trial of four. (An "output", so that its padding is not
// that of the inputs.)
Image<const uint8_t> drawMask(Trial& t)
{
    const Image<uint8_t> mask = t.output<uint8_t>();
    for (uint32_t y = 0; y < t.height; ++y)
        for (uint32_t x = 0; x < t.width; ++x)
            mask.data[y * mask.stride + x] = static_cast<uint8_t>(t.below(3) ? 1 + t.below(255) : 0);
    return {t.below(4) ? mask.data : nullptr, mask.stride};
}

// A second source, whose stride is another than that of the first.
Image<const uint8_t> drawSecondSource(Trial& t)
{
    return t.inputOf<uint8_t>(t.width + t.below(2) * t.below(40), t.height);
}

template <Slot slot>
void expectTwoImageForm()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        const auto a = t.inOut<uint8_t>();
        const auto b = drawSecondSource(t);
        const auto d = t.below(3) ? t.output<uint8_t>() : a;
        if constexpr (slot == Slot::rvkBitwiseOru8) {
            const auto mask = drawMask(t);
            function(a.data, t.width, t.height, a.stride, b.data, b.stride, d.data, d.stride, mask.data, mask.stride);
        } else {
            function(a.data, t.width, t.height, a.stride, b.data, b.stride, d.data, d.stride);
        }
    });
}

template <Slot slot, class T, uint32_t channels>
void expectFill()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        const T v[4] = {t.value<T>(), t.value<T>(), t.value<T>(), t.value<T>()};
        const auto d = t.inOut<T>(channels);
        const auto mask = drawMask(t);
        if constexpr (channels == 1)
            function(d.data, t.width, t.height, d.stride, v[0], mask.data, mask.stride);
        else if constexpr (channels == 3)
            function(d.data, t.width, t.height, d.stride, v[0], v[1], v[2], mask.data, mask.stride);
        else
            function(d.data, t.width, t.height, d.stride, v[0], v[1], v[2], v[3], mask.data, mask.stride);
    });
}

TEST(Bitwise, VectaEqualsReference)
{
    expectTwoImageForm<Slot::rvkBitwiseAndu8>();
    expectTwoImageForm<Slot::rvkBitwiseOru8>();
    expectTwoImageForm<Slot::rvkBitwiseXoru8>();
    expectVectaEqualsReference<Slot::rvkBitwiseNotu8>([](auto function, Trial& t) {
        const auto a = t.inOut<uint8_t>();
        const auto d = t.below(3) ? t.output<uint8_t>() : a;
        function(a.data, t.width, t.height, a.stride, d.data, d.stride);
    });
    expectVectaEqualsReference<Slot::rvkBitwiseOrs32>([](auto function, Trial& t) {
        const auto a = t.input<int32_t>();
        const auto b = t.inOut<int32_t>();
        const auto d = t.below(3) ? t.output<int32_t>() : b;
        const auto mask = drawMask(t);
        function(a.data, b.data, t.width, t.height, a.stride, d.data, d.stride, mask.data, mask.stride);
    });

    expectFill<Slot::rvkSetElementsu8, uint8_t, 1>();
    expectFill<Slot::rvkSetElementss32, int32_t, 1>();
    expectFill<Slot::rvkSetElementsf32, float, 1>();
    expectFill<Slot::rvkSetElementsc3u8, uint8_t, 3>();
    expectFill<Slot::rvkSetElementsc3s32, int32_t, 3>();
    expectFill<Slot::rvkSetElementsc3f32, float, 3>();
    expectFill<Slot::rvkSetElementsc4u8, uint8_t, 4>();
    expectFill<Slot::rvkSetElementsc4s32, int32_t, 4>();
    expectFill<Slot::rvkSetElementsc4f32, float, 4>();
}

// ---- entries ----

TEST(Bitwise, BadArgumentsAreLoggedAndWriteNothing)
{
    const uint8_t src[128] = {9}, mask[128] = {1};
    alignas(4) uint8_t dst[512] = {77};
    int32_t* const dst32 = reinterpret_cast<int32_t*>(dst);
    float* const dstf = reinterpret_cast<float*>(dst);
    const auto refused = [&](auto call) {
        clearLog();
        call();
        return logLines.size() == 1 && dst[0] == 77;
    };
    EXPECT_TRUE(refused([&] { rvkBitwiseOru8(src, 8, 2, 8, src, 8, dst, 8, mask, 7); }));
    EXPECT_TRUE(
        logHas("6 ravik_lib_log: Assertion failed @rvkBitwiseOru8: src1 && src2 && dst && srcWidth && srcHeight && "
               "(src1Stride >= srcWidth) && (src2Stride >= srcWidth) && (dstStride >= srcWidth) && "
               "(!mask || (maskStride >= srcWidth))\n"));
    EXPECT_TRUE(refused([&] { rvkBitwiseAndu8(src, 8, 2, 8, src, 7, dst, 8); }));
    EXPECT_TRUE(refused([&] { rvkBitwiseAndu8(src, 8, 0, 8, src, 8, dst, 8); }));
    EXPECT_TRUE(refused([&] { rvkBitwiseXoru8(src, 8, 2, 7, src, 8, dst, 8); }));
    EXPECT_TRUE(refused([&] { rvkBitwiseXoru8(src, 8, 2, 8, nullptr, 8, dst, 8); }));
    EXPECT_TRUE(refused([&] { rvkBitwiseNotu8(src, 8, 2, 8, dst, 7); }));
    EXPECT_TRUE(refused([&] { rvkBitwiseNotu8(src, 8, 2, 8, nullptr, 8); }));
    EXPECT_TRUE(refused([&] { rvkBitwiseOrs32(dst32, dst32, 8, 2, 31, dst32, 32, nullptr, 0); }));
    EXPECT_TRUE(refused([&] { rvkSetElementsu8(dst, 0, 2, 8, 1, nullptr, 0); }));
    EXPECT_TRUE(refused([&] { rvkSetElementsc3u8(dst, 8, 2, 23, 1, 2, 3, nullptr, 0); }));
    EXPECT_TRUE(refused([&] { rvkSetElementsc4f32(dstf, 8, 2, 128, 1, 2, 3, 4, mask, 7); }));
    // Widths whose rows do not fit 32 bits: the packed stride would wrap to 16.
    EXPECT_TRUE(refused([&] { rvkSetElementsc4s32(dst32, 0x10000001, 1, 0, 1, 2, 3, 4, nullptr, 0); }));
    EXPECT_TRUE(refused([&] { rvkBitwiseOrs32(dst32, dst32, 0x40000004, 1, 0, dst32, 0, nullptr, 0); }));
}

TEST(Bitwise, StridesOfZeroMeanPackedRows)
{
    const uint8_t mask[6] = {1, 0, 1, 0, 1, 0};
    const int32_t src[6] = {1, 2, 3, 4, 5, 6};
    int32_t dst[6];
    clearLog();
    rvkBitwiseOrs32(src, src, 3, 2, 0, dst, 0, mask, 0);
    EXPECT_EQ(std::vector<int32_t>(dst, dst + 6), (std::vector<int32_t>{1, 0, 3, 0, 5, 0}));
    uint8_t pixels[18] = {};
    rvkSetElementsc3u8(pixels, 3, 2, 0, 7, 8, 9, mask, 0);
    EXPECT_EQ(std::vector<uint8_t>(pixels, pixels + 18),
              (std::vector<uint8_t>{7, 8, 9, 0, 0, 0, 7, 8, 9, 0, 0, 0, 7, 8, 9, 0, 0, 0}));
    rvkSetElementsu8(pixels, 3, 2, 0, 5, nullptr, 1); // without a mask its stride says nothing
    EXPECT_EQ(pixels[5], 5);
    EXPECT_TRUE(logLines.empty());
}

} // namespace

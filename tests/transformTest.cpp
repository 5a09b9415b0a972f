#include "support/implementations.h"
#include "support/logCapture.h"

#include <array>

using namespace test;

namespace {

struct Size
{
    uint32_t width, height;
};

constexpr auto turned = [](Size s) { return Size{s.height, s.width}; };
constexpr auto same = [](Size s) { return s; };

// Where a pixel of the source goes.
struct Place
{
    uint32_t x, y;
};
constexpr auto transposed = [](Place p, Size) { return Place{p.y, p.x}; };
constexpr auto mirrored = [](Place p, Size s) { return Place{s.width - 1 - p.x, p.y}; };
constexpr auto upsideDown = [](Place p, Size s) { return Place{p.x, s.height - 1 - p.y}; };
constexpr auto by90 = [](Place p, Size s) { return Place{s.height - 1 - p.y, p.x}; };
constexpr auto by180 = [](Place p, Size s) { return Place{s.width - 1 - p.x, s.height - 1 - p.y}; };
constexpr auto by270 = [](Place p, Size s) { return Place{p.y, s.width - 1 - p.x}; };

// Moves pixels that are all different and looks where each of them has gone. T is the type of the function's images.
template <Slot slot, class T, class SizeAfter, class PlaceAfter, class... Argument>
void expectMoves(uint32_t pixel, SizeAfter sizeAfter, PlaceAfter placeAfter, Argument... argument)
{
    for (const Size size : {Size{1, 1}, {1, 9}, {9, 1}, {5, 3}, {4, 4}, {37, 21}, {130, 75}, {64, 128}}) {
        const Size after = sizeAfter(size);
        const uint32_t srcStride = size.width * pixel + 4 * pixel, dstStride = after.width * pixel + 8 * pixel;
        std::vector<T> src(srcStride * size.height / sizeof(T));
        uint8_t* const in = reinterpret_cast<uint8_t*>(src.data());
        for (uint32_t y = 0; y < size.height; ++y)
            for (uint32_t x = 0; x < size.width; ++x)
                for (uint32_t byte = 0; byte < pixel; ++byte)
                    in[y * srcStride + x * pixel + byte] = static_cast<uint8_t>(x + y * 151 + byte * 77);
        forEachImplementation<slot>([&](const char* name, auto function) {
            std::vector<T> dst(dstStride * after.height / sizeof(T));
            function(src.data(), size.width, size.height, srcStride, dst.data(), dstStride, argument...);
            const uint8_t* out = reinterpret_cast<const uint8_t*>(dst.data());
            for (uint32_t y = 0; y < size.height; ++y) {
                for (uint32_t x = 0; x < size.width; ++x) {
                    const Place to = placeAfter({x, y}, size);
                    ASSERT_EQ(memcmp(in + y * srcStride + x * pixel, out + to.y * dstStride + to.x * pixel, pixel), 0)
                        << nameOf(slot) << " on " << name << ", " << size.width << "x" << size.height << ", pixel " << x
                        << ", " << y;
                }
            }
        });
    }
}

template <Slot slot, class T>
void expectFlips(uint32_t pixel)
{
    expectMoves<slot, T>(pixel, same, mirrored, RAVIK_FLIP_HORIZONTAL);
    expectMoves<slot, T>(pixel, same, upsideDown, RAVIK_FLIP_VERTICAL);
    expectMoves<slot, T>(pixel, same, by180, RAVIK_FLIP_BOTH);
}

template <Slot slot>
void expectRotations(uint32_t pixel)
{
    expectMoves<slot, uint8_t>(pixel, turned, by90, RAVIK_ROTATE_90);
    expectMoves<slot, uint8_t>(pixel, same, by180, RAVIK_ROTATE_180);
    expectMoves<slot, uint8_t>(pixel, turned, by270, RAVIK_ROTATE_270);
}

TEST(Transform, EveryPixelArrives)
{
    expectMoves<Slot::rvkTransposeu8, uint8_t>(1, turned, transposed);
    expectMoves<Slot::rvkTransposeu16, uint16_t>(2, turned, transposed);
    expectMoves<Slot::rvkTransposef32, float>(4, turned, transposed);
    expectMoves<Slot::rvkTransposeRGB888u8, uint8_t>(3, turned, transposed);
    expectFlips<Slot::rvkFlipu8, uint8_t>(1);
    expectFlips<Slot::rvkFlipu16, uint16_t>(2);
    expectFlips<Slot::rvkFlipRGB888u8, uint8_t>(3);
    expectRotations<Slot::rvkRotateImageu8>(1);
    expectRotations<Slot::rvkRotateImageInterleavedu8>(2);
}

TEST(Transform, WorkedValues)
{
    const uint8_t src[2][3] = {{1, 2, 3}, {4, 5, 6}};
    uint8_t dst[6];
    const auto is = [&](std::array<uint8_t, 6> expected) { return memcmp(dst, expected.data(), 6) == 0; };
    rvkTransposeu8(src[0], 3, 2, 0, dst, 0);
    EXPECT_TRUE(is({1, 4, 2, 5, 3, 6}));
    EXPECT_EQ(rvkRotateImageu8(src[0], 3, 2, 0, dst, 0, 1), RAVIK_SUCCESS); // clockwise
    EXPECT_TRUE(is({4, 1, 5, 2, 6, 3}));
    EXPECT_EQ(rvkRotateImageu8(src[0], 3, 2, 0, dst, 0, 2), RAVIK_SUCCESS);
    EXPECT_TRUE(is({6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(rvkRotateImageu8(src[0], 3, 2, 0, dst, 0, 3), RAVIK_SUCCESS);
    EXPECT_TRUE(is({3, 6, 2, 5, 1, 4}));
    rvkFlipu8(src[0], 3, 2, 0, dst, 0, 1);
    EXPECT_TRUE(is({3, 2, 1, 6, 5, 4}));
    rvkFlipu8(src[0], 3, 2, 0, dst, 0, 2);
    EXPECT_TRUE(is({4, 5, 6, 1, 2, 3}));
    rvkFlipRGB888u8(src[0], 2, 1, 0, dst, 0, 1);
    EXPECT_TRUE(is({4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(rvkRotateImageInterleavedu8(src[0], 3, 1, 0, dst, 0, 3), RAVIK_SUCCESS);
    EXPECT_TRUE(is({5, 6, 3, 4, 1, 2}));
}

// ---- arguments that only these functions refuse ----

TEST(Transform, InPlaceWithTwoStridesIsRefused)
{
    const auto expectRefused = [](auto function, auto zero, const char* flipName, uint32_t how) {
        std::vector<decltype(zero)> image(64), before;
        image[1] = 1;
        before = image;
        clearLog();
        function(image.data(), 5, 3, 24, image.data(), 24 + 6, how);
        EXPECT_EQ(image, before) << flipName;
        EXPECT_TRUE(logHas(std::string("6 ravik_lib_log: Error: ") + flipName +
                           " - Try to do in place but srcStride != dstStride\n"));
    };
    for (const uint32_t dir : {1u, 2u, 3u}) {
        forEachImplementation<Slot::rvkFlipu8>(
            [&](auto, auto function) { expectRefused(function, uint8_t{}, "rvkFlipu8", dir); });
        forEachImplementation<Slot::rvkFlipu16>(
            [&](auto, auto function) { expectRefused(function, uint16_t{}, "rvkFlipu16", dir); });
        forEachImplementation<Slot::rvkFlipRGB888u8>(
            [&](auto, auto function) { expectRefused(function, uint8_t{}, "rvkFlipRGB888u8", dir); });
    }
    forEachImplementation<Slot::rvkRotateImageu8>(
        [&](auto, auto function) { expectRefused(function, uint8_t{}, "rvkFlipu8", 2); });
    forEachImplementation<Slot::rvkRotateImageInterleavedu8>(
        [&](auto, auto function) { expectRefused(function, uint8_t{}, "rvkFlipu16", 2); });
    uint8_t image[64] = {};
    EXPECT_EQ(rvkRotateImageu8(image, 5, 3, 8, image, 9, 2), RAVIK_EBADPARAM);
}

TEST(Transform, UnknownRotationsDoNothing)
{
    const uint8_t src[16] = {1, 2, 3};
    uint8_t dst[16] = {77};
    for (const auto function : {rvkRotateImageu8, rvkRotateImageInterleavedu8})
        for (const uint32_t other : {0u, 4u, UINT32_MAX})
            EXPECT_EQ(function(src, 4, 2, 0, dst, 0, other), RAVIK_SUCCESS);
    EXPECT_EQ(dst[0], 77);
}

TEST(Transform, TheRgbReferenceEndsTheProcessOnBadArguments)
{
    const uint8_t src[6] = {};
    uint8_t dst[6];
    const auto printLogAtExit = [] {
        for (const std::string& line : logLines)
            fputs(line.c_str(), stderr);
    };
    EXPECT_EXIT((atexit(printLogAtExit), rvkTransposeRGB888u8C(src, 2, 1, 5, dst, 3)), ::testing::ExitedWithCode(1),
                "6 ravik_lib_log: src/cpu/ravikArithmC@[0-9]+: src && dst && .* Assertion failed");
}

} // namespace

#include "support/logCapture.h"
#include "support/trial.h"

#include <algorithm>
#include <array>
#include <type_traits>

using namespace test;

namespace {

struct Size
{
    uint32_t width, height;
};

Size turned(Size s)
{
    return {s.height, s.width};
}
Size same(Size s)
{
    return s;
}

// Where the pixel (x, y) of the source goes.
struct Place
{
    uint32_t x, y;
};
Place transposed(Place p, Size)
{
    return {p.y, p.x};
}
Place mirrored(Place p, Size s)
{
    return {s.width - 1 - p.x, p.y};
}
Place upsideDown(Place p, Size s)
{
    return {p.x, s.height - 1 - p.y};
}
Place by90(Place p, Size s)
{
    return {s.height - 1 - p.y, p.x};
}
Place by180(Place p, Size s)
{
    return {s.width - 1 - p.x, s.height - 1 - p.y};
}
Place by270(Place p, Size s)
{
    return {p.y, s.width - 1 - p.x};
}

// Runs `check(name, function)` for the reference and every vector variant.
template <Slot slot, class Check>
void forEachImplementation(Check check)
{
    check("C", referenceOf<slot>());
    forEachVecta<slot>(check);
}

// Moves pixels that are all different and looks where each of them has gone. T is the type of the function's images.
template <Slot slot, class T, class... Argument>
void expectMoves(uint32_t pixel, Size (*sizeAfter)(Size), Place (*placeAfter)(Place, Size), Argument... argument)
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

TEST(Transform, EveryPixelArrives)
{
    expectMoves<Slot::rvkTransposeu8, uint8_t>(1, turned, transposed);
    expectMoves<Slot::rvkTransposeu16, uint16_t>(2, turned, transposed);
    expectMoves<Slot::rvkTransposef32, float>(4, turned, transposed);
    expectMoves<Slot::rvkTransposeRGB888u8, uint8_t>(3, turned, transposed);
    expectMoves<Slot::rvkFlipu8, uint8_t>(1, same, mirrored, RAVIK_FLIP_HORIZONTAL);
    expectMoves<Slot::rvkFlipu8, uint8_t>(1, same, upsideDown, RAVIK_FLIP_VERTICAL);
    expectMoves<Slot::rvkFlipu8, uint8_t>(1, same, by180, RAVIK_FLIP_BOTH);
    expectMoves<Slot::rvkFlipu16, uint16_t>(2, same, mirrored, RAVIK_FLIP_HORIZONTAL);
    expectMoves<Slot::rvkFlipu16, uint16_t>(2, same, upsideDown, RAVIK_FLIP_VERTICAL);
    expectMoves<Slot::rvkFlipu16, uint16_t>(2, same, by180, RAVIK_FLIP_BOTH);
    expectMoves<Slot::rvkFlipRGB888u8, uint8_t>(3, same, mirrored, RAVIK_FLIP_HORIZONTAL);
    expectMoves<Slot::rvkFlipRGB888u8, uint8_t>(3, same, upsideDown, RAVIK_FLIP_VERTICAL);
    expectMoves<Slot::rvkFlipRGB888u8, uint8_t>(3, same, by180, RAVIK_FLIP_BOTH);
    expectMoves<Slot::rvkRotateImageu8, uint8_t>(1, turned, by90, RAVIK_ROTATE_90);
    expectMoves<Slot::rvkRotateImageu8, uint8_t>(1, same, by180, RAVIK_ROTATE_180);
    expectMoves<Slot::rvkRotateImageu8, uint8_t>(1, turned, by270, RAVIK_ROTATE_270);
    expectMoves<Slot::rvkRotateImageInterleavedu8, uint8_t>(2, turned, by90, RAVIK_ROTATE_90);
    expectMoves<Slot::rvkRotateImageInterleavedu8, uint8_t>(2, same, by180, RAVIK_ROTATE_180);
    expectMoves<Slot::rvkRotateImageInterleavedu8, uint8_t>(2, turned, by270, RAVIK_ROTATE_270);
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

// ---- VECTA: random sizes, strides and alignments; strides that are no multiple of the element ----

// A source image of t.width x t.height pixels. Now and then, `wideRow` pixels are from row to row: so many that rows
// collide in caches.
template <class T>
Image<T> source(Trial& t, uint32_t channels, uint32_t wideRow)
{
    if (t.below(8) != 0)
        return t.inOut<T>(channels);
    t.width = wideRow;
    const Image<T> image = t.inOut<T>(channels);
    t.width -= t.below(wideRow);
    return image;
}

template <Slot slot, class T, uint32_t channels = 1>
void expectTranspose(uint32_t wideRow)
{
    expectVectaEqualsReference<slot>([&](auto function, Trial& t) {
        const auto src = source<T>(t, channels, wideRow);
        const auto dst = t.outputOf<T>(t.height * channels, t.width);
        const uint32_t srcExtra = t.below(sizeof(T)), dstExtra = t.below(sizeof(T));
        function(src.data, t.width, t.height, src.stride + srcExtra, dst.data, dst.stride + dstExtra);
    });
}

template <Slot slot, class T, uint32_t channels = 1>
void expectFlip()
{
    expectVectaEqualsReference<slot>(
        [&](auto function, Trial& t) {
            const uint32_t dir = 1 + t.below(3), inPlace = t.below(2), extra = t.below(sizeof(T));
            const auto src = t.inOut<T>(channels);
            const auto dst = inPlace ? src : t.output<T>(channels);
            function(src.data, t.width, t.height, src.stride + extra, dst.data, dst.stride + extra, dir);
        },
        400);
}

template <Slot slot, uint32_t channels>
void expectRotation(uint32_t wideRow)
{
    expectVectaEqualsReference<slot>(
        [&](auto function, Trial& t) {
            const uint32_t rotation = t.below(5), inPlace = t.below(2);
            const auto src = source<uint8_t>(t, channels, wideRow);
            if (rotation == RAVIK_ROTATE_90 || rotation == RAVIK_ROTATE_270) {
                const auto dst = t.outputOf<uint8_t>(t.height * channels, t.width);
                t.result(function(src.data, t.width, t.height, src.stride, dst.data, dst.stride, rotation));
            } else {
                const auto dst = inPlace ? src : t.output<uint8_t>(channels);
                t.result(function(src.data, t.width, t.height, src.stride, dst.data, dst.stride, rotation));
            }
        },
        400);
}

TEST(Transform, VectaEqualsReference)
{
    expectTranspose<Slot::rvkTransposeu8, uint8_t>(1024);
    expectTranspose<Slot::rvkTransposeu16, uint16_t>(1024);
    expectTranspose<Slot::rvkTransposef32, float>(1024);
    expectTranspose<Slot::rvkTransposeRGB888u8, uint8_t, 3>(4096);
    expectFlip<Slot::rvkFlipu8, uint8_t>();
    expectFlip<Slot::rvkFlipu16, uint16_t>();
    expectFlip<Slot::rvkFlipRGB888u8, uint8_t, 3>();
    expectRotation<Slot::rvkRotateImageu8, 1>(2048);
    expectRotation<Slot::rvkRotateImageInterleavedu8, 2>(1024);
}

// ---- arguments ----

template <Slot slot, class T>
void expectInPlaceWithTwoStridesRefused(uint32_t pixel, const std::string& flipName, uint32_t argument)
{
    const uint32_t stride = 8 * pixel;
    forEachImplementation<slot>([&](const char* name, auto function) {
        std::vector<T> image(stride * 4 / sizeof(T));
        for (size_t i = 0; i < image.size(); ++i)
            image[i] = static_cast<T>(i);
        const std::vector<T> before = image;
        clearLog();
        function(image.data(), 5, 3, stride, image.data(), stride + pixel, argument);
        EXPECT_EQ(image, before) << name;
        EXPECT_TRUE(
            logHas("6 ravik_lib_log: Error: " + flipName + " - Try to do in place but srcStride != dstStride\n"))
            << name;
    });
}

TEST(Transform, InPlaceWithTwoStridesIsRefused)
{
    for (const uint32_t dir : {1u, 2u, 3u}) {
        expectInPlaceWithTwoStridesRefused<Slot::rvkFlipu8, uint8_t>(1, "rvkFlipu8", dir);
        expectInPlaceWithTwoStridesRefused<Slot::rvkFlipu16, uint16_t>(2, "rvkFlipu16", dir);
        expectInPlaceWithTwoStridesRefused<Slot::rvkFlipRGB888u8, uint8_t>(3, "rvkFlipRGB888u8", dir);
    }
    expectInPlaceWithTwoStridesRefused<Slot::rvkRotateImageu8, uint8_t>(1, "rvkFlipu8", 2);
    expectInPlaceWithTwoStridesRefused<Slot::rvkRotateImageInterleavedu8, uint8_t>(2, "rvkFlipu16", 2);
    uint8_t image[64] = {};
    EXPECT_EQ(rvkRotateImageu8(image, 5, 3, 8, image, 9, 2), RAVIK_EBADPARAM);
}

// Calls of a logging function that must each log `condition` and write nothing.
class Refusals
{
public:
    explicit Refusals(const std::string& condition) : m_line("6 ravik_lib_log: Assertion failed @" + condition + "\n")
    {
    }

    template <class Function, class T, class... Argument>
    void expect(Function function, const T* src, uint32_t width, uint32_t height, uint32_t srcStride, bool withDst,
                uint32_t dstStride, Argument... argument)
    {
        T dst[64] = {T{77}};
        clearLog();
        function(src, width, height, srcStride, withDst ? dst : nullptr, dstStride, argument...);
        EXPECT_TRUE(logHas(m_line)) << m_line << width << "x" << height << " " << srcStride << " " << dstStride;
        EXPECT_EQ(logLines.size(), 1u);
        EXPECT_EQ(dst[0], T{77});
    }

    // Every class of bad argument, for images of 4 x 2 pixels.
    template <class T, class... Argument>
    void expectAll(void (*function)(const T*, uint32_t, uint32_t, uint32_t, T*, uint32_t, Argument...), uint32_t pixel,
                   uint32_t dstWidth, std::type_identity_t<Argument>... argument)
    {
        const T src[64] = {};
        expect(function, static_cast<const T*>(nullptr), 4, 2, 0, true, 0, argument...);
        expect(function, src, 4, 2, 0, false, 0, argument...);
        expect(function, src, 0, 2, 0, true, 0, argument...);
        expect(function, src, 4, 0, 0, true, 0, argument...);
        expect(function, src, 4, 2, 4 * pixel - 1, true, 0, argument...);
        expect(function, src, 4, 2, 0, true, dstWidth * pixel - 1, argument...);
        if (pixel > 1) // rows whose size wraps to a small one
            expect(function, src, UINT32_MAX / pixel + 2, 1, 0, true, 0, argument...);
    }

private:
    std::string m_line;
};

TEST(Transform, BadArgumentsAreLoggedAndWriteNothing)
{
    const std::string both = "src && dst && srcWidth && srcHeight && ";
    Refusals("rvkTransposeu8: " + both + "(srcStride >= srcWidth) && (dstStride >= srcHeight)")
        .expectAll(rvkTransposeu8, 1, 2);
    Refusals("rvkTransposeu16: " + both + "(srcStride >= srcWidth*2) && (dstStride >= srcHeight*2)")
        .expectAll(rvkTransposeu16, 2, 2);
    Refusals("rvkTransposef32: " + both + "(srcStride >= srcWidth*4) && (dstStride >= srcHeight*4)")
        .expectAll(rvkTransposef32, 4, 2);
    Refusals("rvkTransposeRGB888u8: " + both + "(srcStride >= srcWidth*3) && (dstStride >= srcHeight*3)")
        .expectAll(rvkTransposeRGB888u8, 3, 2);
    const std::string dir = " && dir >= 1 && dir <= 3";
    Refusals flipu8("rvkFlipu8: " + both + "(srcStride >= srcWidth) && (dstStride >= srcWidth)" + dir);
    flipu8.expectAll(rvkFlipu8, 1, 4, 1);
    const uint8_t src[8] = {};
    flipu8.expect(rvkFlipu8, src, 4, 2, 4, true, 4, 0u);
    flipu8.expect(rvkFlipu8, src, 4, 2, 4, true, 4, 4u);
    Refusals("rvkFlipu16: " + both + "(srcStride >= srcWidth*2) && (dstStride >= srcWidth*2)" + dir)
        .expectAll(rvkFlipu16, 2, 4, 2);
    Refusals("rvkFlipRGB888u8: " + both + "(srcStride >= srcWidth*3) && (dstStride >= srcWidth*3)" + dir)
        .expectAll(rvkFlipRGB888u8, 3, 4, 3);
}

TEST(Transform, RotationsReturnTheirStatus)
{
    const uint8_t src[64] = {1};
    uint8_t dst[64];
    const auto check = [&](auto function, uint32_t pixel) {
        const auto status = [&](const uint8_t* in, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* out,
                                uint32_t dstStride, uint32_t rotation) {
            memset(dst, 77, sizeof dst);
            clearLog();
            const rvkStatus result = function(in, width, height, srcStride, out, dstStride, rotation);
            EXPECT_TRUE(logLines.empty());
            if (result != RAVIK_SUCCESS) {
                EXPECT_EQ(std::count(dst, dst + sizeof dst, 77), 64);
            }
            return result;
        };
        EXPECT_EQ(status(nullptr, 4, 2, 0, dst, 0, 1), RAVIK_EBADPARAM);
        EXPECT_EQ(status(src, 4, 2, 0, nullptr, 0, 1), RAVIK_EBADPARAM);
        EXPECT_EQ(status(src, 0, 2, 0, dst, 0, 1), RAVIK_EBADPARAM);
        EXPECT_EQ(status(src, 4, 0, 0, dst, 0, 1), RAVIK_EBADPARAM);
        EXPECT_EQ(status(src, 4, 2, 4 * pixel - 1, dst, 0, 1), RAVIK_EBADPARAM);
        EXPECT_EQ(status(src, 4, 2, 0, dst, 2 * pixel - 1, 3), RAVIK_EBADPARAM);
        EXPECT_EQ(status(src, 4, 2, 0, dst, 4 * pixel - 1, 2), RAVIK_EBADPARAM);
        EXPECT_EQ(status(dst, 2, 2, 0, dst, 0, 1), RAVIK_EBADPARAM); // quarter turns cannot run in place
        EXPECT_EQ(status(dst, 2, 2, 0, dst, 0, 3), RAVIK_EBADPARAM);
        EXPECT_EQ(status(src, 4, 2, 0, dst, 2 * pixel, 1), RAVIK_SUCCESS);
        for (const uint32_t other : {0u, 4u, UINT32_MAX}) {
            EXPECT_EQ(status(src, 4, 2, 0, dst, 0, other), RAVIK_SUCCESS);
            EXPECT_EQ(std::count(dst, dst + sizeof dst, 77), 64);
        }
    };
    check(rvkRotateImageu8, 1);
    check(rvkRotateImageInterleavedu8, 2);
    EXPECT_EQ(rvkRotateImageInterleavedu8(src, 0x80000001u, 1, 0, dst, 0, 2), RAVIK_EBADPARAM); // x 2 wraps to 2
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

#include "memory.h"
#include "support/logCapture.h"
#include "support/trial.h"

#include <algorithm>

using namespace test;

namespace {

// ---- the references ----

TEST(Morphology, ReferenceSpreadsOnePixelOverItsWindow)
{
    constexpr uint32_t width = 7, height = 6;
    const auto spread = [](auto function, uint32_t x, uint32_t y, uint8_t background, uint8_t pixel, auto... border) {
        std::vector<uint8_t> src(width * height, background), dst(width * height, 99);
        src[y * width + x] = pixel;
        function(src.data(), width, height, width, dst.data(), width, border...);
        return dst;
    };
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x) {
            std::vector<uint8_t> block(width * height, 255);
            for (uint32_t v = 0; v < height; ++v)
                for (uint32_t u = 0; u < width; ++u)
                    if (std::max(x, u) - std::min(x, u) <= 1 && std::max(y, v) - std::min(y, v) <= 1)
                        block[v * width + u] = 0;
            EXPECT_EQ(spread(rvkFilterErode3x3u8_v2C, x, y, 255, 0), block) << x << ", " << y;
            EXPECT_EQ(spread(rvkFilterErode3x3u8_v3C, x, y, 255, 0, RAVIK_BORDER_REPLICATE, 9), block);
            EXPECT_EQ(spread(rvkFilterErode3x3u8_v3C, x, y, 255, 0, RAVIK_BORDER_CONSTANT, 255), block);
            for (uint8_t& b : block)
                b = static_cast<uint8_t>(255 - b);
            EXPECT_EQ(spread(rvkFilterDilate3x3u8_v2C, x, y, 0, 255), block) << x << ", " << y;
            EXPECT_EQ(spread(rvkFilterDilate3x3u8_v3C, x, y, 0, 255, 0, 9), block);
        }
}

TEST(Morphology, ReferenceTakesTheConstantBorder)
{
    const uint8_t src[9] = {50, 60, 50, 60, 70, 60, 50, 60, 50};
    uint8_t dst[9];
    EXPECT_EQ(rvkFilterErode3x3u8_v3C(src, 3, 3, 3, dst, 3, RAVIK_BORDER_CONSTANT, 40), RAVIK_SUCCESS);
    const uint8_t eroded[9] = {40, 40, 40, 40, 50, 40, 40, 40, 40};
    EXPECT_EQ(memcmp(dst, eroded, 9), 0);
    EXPECT_EQ(rvkFilterDilate3x3u8_v3C(src, 3, 3, 3, dst, 3, RAVIK_BORDER_CONSTANT, 80), RAVIK_SUCCESS);
    const uint8_t dilated[9] = {80, 80, 80, 80, 70, 80, 80, 80, 80};
    EXPECT_EQ(memcmp(dst, dilated, 9), 0);
}

// Every window searched on its own.
TEST(Morphology, ReferenceNxNEqualsTheDefinition)
{
    Random random(7);
    for (int trial = 0; trial < 60; ++trial) {
        const uint32_t width = 1 + random.below(40), height = 1 + random.below(40);
        const uint32_t N = 1 + random.below(std::min(width, height)), stride = width + random.below(5);
        std::vector<uint8_t> src(stride * height), largest(width * height), smallest(width * height);
        for (uint8_t& pixel : src)
            pixel = static_cast<uint8_t>(random.next());
        ASSERT_EQ(rvkFilterDilateNxNu8C(src.data(), width, height, stride, N, largest.data(), width), RAVIK_SUCCESS);
        ASSERT_EQ(rvkFilterErodeNxNu8C(src.data(), width, height, stride, N, smallest.data(), width), RAVIK_SUCCESS);
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x) {
                const uint32_t before = N / 2, left = x < before ? 0 : x - before, top = y < before ? 0 : y - before;
                const uint32_t right = std::min(width, x - before + N), bottom = std::min(height, y - before + N);
                uint8_t low = 255, high = 0;
                for (uint32_t v = top; v < bottom; ++v)
                    for (uint32_t u = left; u < right; ++u) {
                        low = std::min(low, src[v * stride + u]);
                        high = std::max(high, src[v * stride + u]);
                    }
                ASSERT_EQ(largest[y * width + x], high)
                    << width << "x" << height << ", N " << N << ": " << x << ", " << y;
                ASSERT_EQ(smallest[y * width + x], low)
                    << width << "x" << height << ", N " << N << ": " << x << ", " << y;
            }
    }
}

// ---- VECTA ----

template <Slot slot>
void expect3x3()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        const auto a = t.input<uint8_t>();
        const auto d = t.output<uint8_t>();
        function(a.data, t.width, t.height, a.stride, d.data, d.stride);
    });
}

template <Slot slot>
void expect3x3WithBorder()
{
    expectVectaEqualsReference<slot>([](auto function, Trial& t) {
        const uint32_t type = t.below(3);
        const uint8_t border = static_cast<uint8_t>(t.below(256));
        const auto a = t.input<uint8_t>();
        const auto d = t.output<uint8_t>();
        t.result(function(a.data, t.width, t.height, a.stride, d.data, d.stride, type, border));
    });
}

template <Slot slot, class ChooseN>
void expectNxN(ChooseN chooseN)
{
    expectVectaEqualsReference<slot>([=](auto function, Trial& t) {
        const uint32_t most = std::min(t.width, t.height), N = std::min(most, chooseN(t, most));
        const auto a = t.input<uint8_t>();
        const auto d = t.output<uint8_t>();
        t.result(function(a.data, t.width, t.height, a.stride, N, d.data, d.stride));
    });
}

TEST(Morphology, VectaEqualsReference)
{
    expect3x3<Slot::rvkFilterDilate3x3u8_v2>();
    expect3x3<Slot::rvkFilterErode3x3u8_v2>();
    expect3x3WithBorder<Slot::rvkFilterDilate3x3u8_v3>();
    expect3x3WithBorder<Slot::rvkFilterErode3x3u8_v3>();
    const auto expectAnyN = [](auto chooseN) {
        expectNxN<Slot::rvkFilterDilateNxNu8>(chooseN);
        expectNxN<Slot::rvkFilterErodeNxNu8>(chooseN);
    };
    expectAnyN([](Trial&, uint32_t) { return 3u; }); // has code of its own
    expectAnyN([](Trial&, uint32_t) { return 5u; }); // likewise
    expectAnyN([](Trial& t, uint32_t most) { return 1 + t.below(t.below(2) ? 12 : most); });
}

// ---- entries ----

TEST(Morphology, BadArgumentsAreRefusedAndWriteNothing)
{
    uint8_t src[64] = {9}, dst[64];
    memset(dst, 77, sizeof dst);
    const std::string condition =
        "6 ravik_lib_log: Assertion failed @rvkFilterErode3x3u8_v2: src && srcWidth && srcHeight "
        "&& (srcStride >= srcWidth) && dst && (dstStride >= srcWidth)\n";
    const auto isLogged = [](const std::string& line, auto call) {
        clearLog();
        call();
        return logHas(line);
    };
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterErode3x3u8_v2(nullptr, 8, 8, 8, dst, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterErode3x3u8_v2(src, 8, 8, 8, nullptr, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterErode3x3u8_v2(src, 0, 8, 8, dst, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterErode3x3u8_v2(src, 8, 0, 8, dst, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterErode3x3u8_v2(src, 8, 8, 7, dst, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterErode3x3u8_v2(src, 8, 8, 8, dst, 7); }));
    EXPECT_TRUE(isLogged("6 ravik_lib_log: Assertion failed @rvkFilterDilate3x3u8: src && width && height && dst\n",
                         [&] { rvkFilterDilate3x3u8(src, 8, 0, dst); }));
    EXPECT_TRUE(isLogged("6 ravik_lib_log: Assertion failed @rvkFilterDilate3x3u8: src != dst\n",
                         [&] { rvkFilterDilate3x3u8(src, 8, 8, src); }));
    clearLog();
    const auto erode = [&](const uint8_t* in, uint32_t height, uint32_t srcStride, uint32_t N, uint8_t* out) {
        return rvkFilterErodeNxNu8(in, 8, height, srcStride, N, out, 8);
    };
    EXPECT_EQ(rvkFilterErode3x3u8_v3(src, 8, 8, 7, dst, 8, 0, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterDilate3x3u8_v3(src, 8, 8, 8, src, 8, 0, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(erode(nullptr, 8, 8, 3, dst), RAVIK_EBADPARAM);
    EXPECT_EQ(erode(src, 8, 8, 3, nullptr), RAVIK_EBADPARAM);
    EXPECT_EQ(erode(src, 8, 8, 3, src), RAVIK_EBADPARAM);
    EXPECT_EQ(erode(src, 8, 8, 0, dst), RAVIK_EBADPARAM);
    EXPECT_EQ(erode(src, 8, 8, 9, dst), RAVIK_EBADPARAM);
    EXPECT_EQ(erode(src, 7, 8, 8, dst), RAVIK_EBADPARAM);
    EXPECT_EQ(erode(src, 0x20000000, 8, 3, dst), RAVIK_EBADPARAM); // 2^32 bytes
    EXPECT_EQ(rvkFilterDilateNxNu8(src, 8, 8, 8, 9, dst, 8), RAVIK_EBADPARAM);
    EXPECT_TRUE(logLines.empty());
    EXPECT_TRUE(std::all_of(dst, dst + 64, [](uint8_t d) { return d == 77; }));
}

TEST(Morphology, StridesOfZeroMeanPackedRows)
{
    const uint8_t src[6] = {10, 20, 30, 40, 50, 60};
    const uint8_t eroded[6] = {10, 10, 20, 10, 10, 20};
    uint8_t packed[6], strided[6], window[4];
    rvkFilterErode3x3u8(src, 3, 2, packed);
    rvkFilterErode3x3u8_v2(src, 3, 2, 0, strided, 0);
    EXPECT_EQ(memcmp(packed, eroded, 6), 0);
    EXPECT_EQ(memcmp(strided, eroded, 6), 0);
    EXPECT_EQ(rvkFilterDilateNxNu8(src, 2, 2, 0, 2, window, 0), RAVIK_SUCCESS);
    const uint8_t dilated[4] = {10, 20, 30, 40}; // the window of an even N lies above and to the left
    EXPECT_EQ(memcmp(window, dilated, 4), 0);
}

// Each scratch buffer fails in turn: nothing is written, nothing stays taken.
template <Slot slot>
void expectNoResources()
{
    static int allowed, live;
    static const SystemAllocator system = systemAllocator;
    const uint8_t src[25] = {9};
    const auto runWith = [&](int allocations, auto function) {
        uint8_t dst[25];
        memset(dst, 77, sizeof dst);
        allowed = allocations;
        live = 0;
        systemAllocator = {[](size_t size) -> void* { return allowed-- > 0 ? ++live, malloc(size) : nullptr; },
                           [](void* block) {
                               live -= block != nullptr;
                               free(block);
                           }};
        const rvkStatus status = function(src, 5, 5, 5, 4, dst, 5); // VECTA needs none for 3
        systemAllocator = system;
        EXPECT_EQ(live, 0);
        EXPECT_EQ(std::all_of(dst, dst + 25, [](uint8_t d) { return d == 77; }), status == RAVIK_ENORES);
        return status;
    };
    const auto expectFailures = [&](auto function) {
        int allocations = 0;
        while (runWith(allocations, function) == RAVIK_ENORES)
            ASSERT_LT(++allocations, 9);
        EXPECT_GT(allocations, 0);
    };
    expectFailures(referenceOf<slot>());
    forEachVecta<slot>([&](const char*, auto function) { expectFailures(function); });
}

TEST(Morphology, ReportsMissingScratchMemory)
{
    expectNoResources<Slot::rvkFilterDilateNxNu8>();
    expectNoResources<Slot::rvkFilterErodeNxNu8>();
}

} // namespace

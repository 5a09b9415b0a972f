#include "memory.h"
#include "support/logCapture.h"
#include "support/trial.h"

#include <algorithm>

using namespace test;

namespace {

// ---- the references ----

enum class Border { leave, constant, replicate, copy };

// Sorts every window on its own.
template <class T>
std::vector<T> expectedOf(const std::vector<T>& src, int width, int height, int M, int N, Border border, T outside)
{
    std::vector<T> dst(src.size(), T{77});
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            std::vector<T> window;
            for (int v = y - N / 2; v < y - N / 2 + N; ++v)
                for (int u = x - M / 2; u < x - M / 2 + M; ++u) {
                    const int nearestX = std::clamp(u, 0, width - 1), nearestY = std::clamp(v, 0, height - 1);
                    const bool exists = u == nearestX && v == nearestY;
                    const T nearest = src[static_cast<size_t>(nearestY * width + nearestX)];
                    window.push_back(exists || border != Border::constant ? nearest : outside);
                }
            std::sort(window.begin(), window.end());
            const auto place = static_cast<size_t>(y * width + x);
            const bool ring = x < M / 2 || x + M / 2 >= width || y < N / 2 || y + N / 2 >= height;
            if (ring && border == Border::copy)
                dst[place] = src[place];
            else if (!ring || border != Border::leave)
                dst[place] = window[(window.size() - 1) / 2];
        }
    return dst;
}

template <class T>
std::vector<T> randomPicture(Random& random, uint32_t width, uint32_t height)
{
    const auto content = static_cast<Content>(random.below(static_cast<uint32_t>(Content::count)));
    std::vector<T> src(width * height);
    for (T& pixel : src)
        pixel = drawElement<T>(random, content);
    return src;
}

TEST(Median, Reference3x3SortsEveryWindow)
{
    Random random(5);
    for (int trial = 0; trial < 60; ++trial) {
        const uint32_t width = 1 + random.below(trial < 30 ? 5 : 30), height = 1 + random.below(trial < 30 ? 5 : 30);
        const auto src = randomPicture<uint8_t>(random, width, height);
        const auto expect = [&](uint32_t borderType, Border border) {
            const auto outside = static_cast<uint8_t>(random.next());
            const int w = static_cast<int>(width), h = static_cast<int>(height);
            std::vector<uint8_t> dst(src.size(), 77);
            EXPECT_EQ(
                rvkFilterMedian3x3u8_v3C(src.data(), width, height, width, dst.data(), width, borderType, outside),
                RAVIK_SUCCESS);
            EXPECT_EQ(dst, expectedOf(src, w, h, 3, 3, border, outside))
                << width << "x" << height << ", " << borderType;
        };
        expect(RAVIK_BORDER_CONSTANT, Border::constant);
        expect(RAVIK_BORDER_REPLICATE, Border::replicate);
        expect(0, Border::leave);
        std::vector<uint8_t> dst(src.size(), 77), others(dst);
        rvkFilterMedian3x3u8_v2C(src.data(), width, height, width, dst.data(), width);
        rvkFilterMedian3x3u8_v3C(src.data(), width, height, width, others.data(), width, 3, 0);
        EXPECT_EQ(dst, others);
    }
}

TEST(Median, ReferenceMxNSortsEveryWindow)
{
    Random random(6);
    for (int trial = 0; trial < 150; ++trial) {
        const uint32_t width = 1 + random.below(20), height = 1 + random.below(20);
        const uint32_t M = 1 + random.below(std::min(width, 9u)), N = 1 + random.below(std::min(height, 9u));
        const auto src = randomPicture<int16_t>(random, width, height);
        std::vector<int16_t> dst(src.size(), 77);
        ASSERT_EQ(rvkFilterMedianMxNs16C(src.data(), width, height, 2 * width, M, N, dst.data(), 2 * width),
                  RAVIK_SUCCESS);
        ASSERT_EQ(dst, expectedOf(src, static_cast<int>(width), static_cast<int>(height), static_cast<int>(M),
                                  static_cast<int>(N), Border::copy, int16_t{0}))
            << width << "x" << height << ", window " << M << "x" << N;
    }
}

TEST(Median, TakesTheLowerOfTwoMiddleValuesAndCopiesTheRing)
{
    const int16_t src[9] = {1, 2, 3, 4, -5, 6, 7, 8, 9};
    const int16_t expected[9] = {1, 2, 3, 4, 1, 6, 7, 8, 9}; // of -5, 1, 2, 4
    int16_t dst[9];
    EXPECT_EQ(rvkFilterMedianMxNs16(src, 3, 3, 0, 2, 2, dst, 0), RAVIK_SUCCESS);
    EXPECT_EQ(memcmp(dst, expected, sizeof dst), 0);
}

// ---- VECTA ----

TEST(Median, VectaEqualsReference)
{
    expectVectaEqualsReference<Slot::rvkFilterMedian3x3u8_v2>([](auto function, Trial& t) {
        const auto a = t.input<uint8_t>();
        const auto d = t.output<uint8_t>();
        function(a.data, t.width, t.height, a.stride, d.data, d.stride);
    });
    expectVectaEqualsReference<Slot::rvkFilterMedian3x3u8_v3>([](auto function, Trial& t) {
        const uint32_t type = t.below(3);
        const auto outside = static_cast<uint8_t>(t.below(256));
        const auto a = t.input<uint8_t>();
        const auto d = t.output<uint8_t>();
        t.result(function(a.data, t.width, t.height, a.stride, d.data, d.stride, type, outside));
    });
    expectVectaEqualsReference<Slot::rvkFilterMedianMxNs16>(
        [](auto function, Trial& t) {
            static constexpr uint32_t sizes[][2] = {{3, 3}, {5, 5}, {4, 4}, {1, 5}, {6, 3}, {7, 7}, {2, 1}, {9, 9}};
            const auto* const size = sizes[t.below(8)];
            const uint32_t M = std::min(size[0], t.width), N = std::min(size[1], t.height);
            const auto a = t.input<int16_t>();
            const auto d = t.output<int16_t>();
            t.result(function(a.data, t.width, t.height, a.stride, M, N, d.data, d.stride));
        },
        300);
}

// Counts of up to 65535 values, and more than the vector implementations count.
TEST(Median, VectaEqualsReferenceInLargeWindows)
{
    constexpr uint32_t width = 300, height = 258;
    Random random(9);
    const auto src = randomPicture<int16_t>(random, width, height);
    for (const uint32_t N : {255u, 257u}) {
        std::vector<int16_t> expected(src.size());
        rvkFilterMedianMxNs16C(src.data(), width, height, 2 * width, 257, N, expected.data(), 2 * width);
        forEachVecta<Slot::rvkFilterMedianMxNs16>([&](const char* variant, auto function) {
            std::vector<int16_t> dst(src.size());
            function(src.data(), width, height, 2 * width, 257, N, dst.data(), 2 * width);
            EXPECT_TRUE(dst == expected) << variant << ", 257x" << N;
        });
    }
}

// ---- entries ----

TEST(Median, BadArgumentsAreRefusedAndWriteNothing)
{
    uint8_t src[64] = {9}, dst[64];
    int16_t wideSrc[64] = {9}, wideDst[64];
    memset(dst, 77, sizeof dst);
    memset(wideDst, 77, sizeof wideDst);
    const std::string condition =
        "6 ravik_lib_log: Assertion failed @rvkFilterMedian3x3u8_v2: src && dst && srcWidth && "
        "srcHeight && (srcStride >= srcWidth) && dstStride\n";
    const auto isLogged = [](const std::string& line, auto call) {
        clearLog();
        call();
        return logHas(line);
    };
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterMedian3x3u8_v2(nullptr, 8, 8, 8, dst, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterMedian3x3u8_v2(src, 8, 8, 8, nullptr, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterMedian3x3u8_v2(src, 0, 8, 8, dst, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterMedian3x3u8_v2(src, 8, 0, 8, dst, 8); }));
    EXPECT_TRUE(isLogged(condition, [&] { rvkFilterMedian3x3u8_v2(src, 8, 8, 7, dst, 8); }));
    EXPECT_TRUE(
        isLogged("6 ravik_lib_log: Assertion failed @rvkFilterMedian3x3u8: src && dst && srcWidth && srcHeight\n",
                 [&] { rvkFilterMedian3x3u8(src, 8, 0, dst); }));
    EXPECT_TRUE(isLogged("6 ravik_lib_log: Assertion failed @rvkFilterMedian3x3u8: src != dst\n",
                         [&] { rvkFilterMedian3x3u8(src, 8, 8, src); }));
    clearLog();
    EXPECT_EQ(rvkFilterMedian3x3u8_v3(src, 8, 8, 7, dst, 8, 0, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterMedian3x3u8_v3(src, 8, 8, 8, dst, 7, 0, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkFilterMedian3x3u8_v3(src, 8, 8, 8, src, 8, 0, 0), RAVIK_EBADPARAM);
    const auto filter = [&](const int16_t* in, uint32_t width, uint32_t srcStride, uint32_t M, uint32_t N,
                            int16_t* out) { return rvkFilterMedianMxNs16(in, width, 8, srcStride, M, N, out, 16); };
    EXPECT_EQ(filter(nullptr, 8, 16, 3, 3, wideDst), RAVIK_EBADPARAM);
    EXPECT_EQ(filter(wideSrc, 8, 16, 3, 3, nullptr), RAVIK_EBADPARAM);
    EXPECT_EQ(filter(wideSrc, 8, 16, 3, 3, wideSrc), RAVIK_EBADPARAM);
    EXPECT_EQ(filter(wideSrc, 8, 15, 3, 3, wideDst), RAVIK_EBADPARAM);
    EXPECT_EQ(filter(wideSrc, 8, 16, 0, 3, wideDst), RAVIK_EBADPARAM);
    EXPECT_EQ(filter(wideSrc, 8, 16, 3, 0, wideDst), RAVIK_EBADPARAM);
    EXPECT_EQ(filter(wideSrc, 8, 16, 9, 3, wideDst), RAVIK_EBADPARAM);
    EXPECT_EQ(filter(wideSrc, 8, 16, 3, 9, wideDst), RAVIK_EBADPARAM);
    EXPECT_EQ(filter(wideSrc, 0x80000004, 8, 3, 3, wideDst), RAVIK_EBADPARAM); // 2^32 + 8 bytes in a row
    EXPECT_EQ(rvkFilterMedianMxNs16(wideSrc, 0x10000, 0x10000, 0, 0x8000, 0x10000, wideDst, 0), RAVIK_EBADPARAM);
    EXPECT_TRUE(logLines.empty());
    EXPECT_TRUE(std::all_of(dst, dst + 64, [](uint8_t d) { return d == 77; }));
    EXPECT_TRUE(std::all_of(wideDst, wideDst + 64, [](int16_t d) { return d == 77 * 257; }));
}

TEST(Median, StridesOfZeroMeanPackedRows)
{
    const uint8_t src[9] = {1, 9, 2, 8, 3, 7, 4, 6, 5};
    const uint8_t expected[9] = {0, 0, 0, 0, 5, 0, 0, 0, 0};
    uint8_t packed[9] = {}, strided[9] = {};
    rvkFilterMedian3x3u8(src, 3, 3, packed);
    rvkFilterMedian3x3u8_v2(src, 3, 3, 0, strided, 0);
    EXPECT_EQ(memcmp(packed, expected, 9), 0);
    EXPECT_EQ(memcmp(strided, expected, 9), 0);
}

TEST(Median, ReportsMissingScratchMemory)
{
    const int16_t src[16] = {9};
    const SystemAllocator system = systemAllocator;
    const auto expectFailure = [&](auto function) {
        int16_t dst[16] = {};
        systemAllocator.allocate = [](size_t) -> void* { return nullptr; };
        EXPECT_EQ(function(src, 4, 4, 8, 2, 3, dst, 8), RAVIK_ENORES);
        systemAllocator = system;
        EXPECT_EQ(dst[0], 0) << "copied the ring";
    };
    expectFailure(referenceOf<Slot::rvkFilterMedianMxNs16>());
    forEachVecta<Slot::rvkFilterMedianMxNs16>([&](const char*, auto function) { expectFailure(function); });
}

} // namespace

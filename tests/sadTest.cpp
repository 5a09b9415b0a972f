#include "internal.h"
#include "support/kernelModes.h"
#include "support/windows.h"

#include <cstdlib>

using namespace test;

namespace {

uint32_t distance(const Picture<uint8_t>& a, int ax, int ay, const Picture<uint8_t>& b, int bx, int by, int size)
{
    int sum = 0;
    for (int i = 0; i < size * size; ++i)
        sum += std::abs(a.at(ax + i % size, ay + i / size) - b.at(bx + i % size, by + i / size));
    return static_cast<uint32_t>(sum);
}

// Blocks in pictures of different widths, also as different as can be.
template <Slot slot>
void expectDistances(int size)
{
    Random random(1);
    for (int trial = 0; trial < 20; ++trial) {
        const auto a = randomPicture<uint8_t>(random, size + trial, size), b = randomPicture<uint8_t>(random, 30, 20);
        forEachImplementation<slot>([&](const char* name, auto function) {
            EXPECT_EQ(function(a.pixels.data() + trial, a.stride(), b.pixels.data() + 33, b.stride()),
                      distance(a, trial, 0, b, 3, 1, size))
                << name;
        });
    }
    const auto n = static_cast<uint32_t>(size);
    const std::vector<uint8_t> black(n * n, 0), white(n * n, 255);
    forEachImplementation<slot>([&](const char* name, auto function) {
        EXPECT_EQ(function(black.data(), n, white.data(), n), 255 * n * n) << name;
    });
}

TEST(Sad, OfBlocks)
{
    expectDistances<Slot::rvkSumOfAbsoluteDiff8x8u8>(8);
    expectDistances<Slot::rvkSumOfAbsoluteDiff16x16u8>(16);
}

Picture<uint16_t> distances(const Picture<uint8_t>& patch, const Picture<uint8_t>& src)
{
    return pictureOf<uint16_t>(src.width - patch.width + 1, src.height - patch.width + 1,
                               [&](int x, int y) { return distance(patch, 0, 0, src, x, y, patch.width); });
}

// Rows of few places, of some vectors of them, and of one more.
TEST(Sad, OfPatchesEverywhere)
{
    Random random(2);
    for (const int across : {1, 2, 15, 16, 17, 31, 33, 63, 64, 65, 100, 129, 200}) {
        const int down = 1 + static_cast<int>(random.below(70));
        const auto patch8 = randomPicture<uint8_t>(random, 8, 8),
                   src8 = randomPicture<uint8_t>(random, across + 7, down + 7);
        const auto patch16 = pictureOf<uint8_t>(16, 16, [&](int x, int) { return across % 2 ? 255 : x; });
        const auto src16 = randomPicture<uint8_t>(random, across + 15, down + 15);
        const auto expected8 = distances(patch8, src8), expected16 = distances(patch16, src16);
        Picture<uint16_t> dst8(across, down), dst16(across, down);
        const auto call8 = [&](auto function, auto... dstStride) {
            function(patch8.pixels.data(), src8.pixels.data(), src8.columns(), src8.rows(), src8.stride(),
                     dst8.pixels.data(), dstStride...);
        };
        forEachImplementation<Slot::rvkSumOfAbsoluteDiffs8x8u8>([&](const char* name, auto function) {
            call8(function);
            EXPECT_EQ(dst8, expected8) << name;
        });
        forEachImplementation<Slot::rvkSumOfAbsoluteDiffs8x8u8_v2>([&](const char* name, auto function) {
            dst8 = Picture<uint16_t>(across, down);
            call8(function, dst8.stride());
            EXPECT_EQ(dst8, expected8) << name;
        });
        forEachImplementation<Slot::rvkSumOfAbsoluteDiffs16x16u8>([&](const char* name, auto function) {
            function(patch16.pixels.data(), src16.pixels.data(), src16.columns(), src16.rows(), src16.stride(),
                     dst16.pixels.data(), dst16.stride());
            EXPECT_EQ(dst16, expected16) << name;
        });
    }
}

TEST(Sad, InternalOperationsDoTheSame)
{
    Random random(3);
    const auto a = randomPicture<uint8_t>(random, 16, 16), b = randomPicture<uint8_t>(random, 40, 20);
    for (const auto mode : {RAVIK_OP_CPU_PERFORMANCE + 1, RAVIK_OP_CPU_PERFORMANCE}) { // references, vectors
        ASSERT_EQ(rvkSetOperationMode(mode), 0);
        const uint8_t *p = a.pixels.data(), *q = b.pixels.data();
        EXPECT_EQ(irvkSumOfAbsoluteDiff8x8u8(p, 16, q, 40), distance(a, 0, 0, b, 0, 0, 8));
        EXPECT_EQ(irvkSumOfAbsoluteDiff16x16u8(p, 16, q, 40), distance(a, 0, 0, b, 0, 0, 16));
        Picture<uint16_t> dst(25, 5);
        irvkSumOfAbsoluteDiffs16x16u8(p, q, 40, 20, 40, dst.pixels.data(), 50);
        EXPECT_EQ(dst, distances(a, b));
    }
}

TEST(Sad, KernelsOfBlockMatching)
{
    Random random(4);
    for (int trial = 0; trial < 30; ++trial) {
        const auto a = randomPicture<uint8_t>(random, 20, 16), b = randomPicture<uint8_t>(random, 20, 16);
        int sumA = 0, sumB = 0, expected = 0;
        for (int i = 0; i < 256; ++i)
            sumA += a.at(i % 16, i / 16), sumB += b.at(i % 16, i / 16);
        for (int i = 0; i < 256; ++i)
            expected += std::abs((a.at(i % 16, i / 16) - sumA / 256) - (b.at(i % 16, i / 16) - sumB / 256));
        inBothModes(Kernel::calculateBlockSum16x16, "calculateBlockSum16x16", [&] {
            EXPECT_EQ(kernel<Kernel::calculateBlockSum16x16>()(a.pixels.data(), 20), static_cast<uint32_t>(sumA));
        });
        inBothModes(Kernel::calculateBlockSAD_ZeroMean16x16, "calculateBlockSAD_ZeroMean16x16", [&] {
            uint32_t mean = 0;
            const auto function = kernel<Kernel::calculateBlockSAD_ZeroMean16x16>();
            EXPECT_EQ(function(a.pixels.data(), b.pixels.data(), 20, &mean), static_cast<uint32_t>(expected));
            EXPECT_EQ(mean, static_cast<uint32_t>(sumB / 256));
        });
    }
}

} // namespace

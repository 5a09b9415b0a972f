// What functions on chroma and channels do that the contract test does not reach: the inner kernels by their pointers,
// in the modes of references and of vectors, and large pictures.
#include "support/guarded.h"
#include "support/kernelModes.h"
#include "support/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ravik/ravik.h>
#include <vector>

using namespace rvk;
using namespace test;

namespace {

// ---- kernels: every byte they write is the rounded mean of two bytes of a source row --------------------------------

using Source = const uint8_t* const*;
using Target = uint8_t* const*;

struct Origin
{
    size_t row, first, second;
};

struct RowKernel
{
    Kernel kernel;
    const char* name;
    size_t sources, targets; // rows
    size_t (*sourceBytes)(size_t width);
    size_t (*targetBytes)(size_t width);
    void (*call)(Source src, uint32_t width, Target dst, uint32_t dstStride);
    Origin (*origin)(size_t width, size_t target, size_t i); // of byte i of a target row
};

size_t half(size_t width)
{
    return (width + 1) / 2;
}
size_t once(size_t width)
{
    return width;
}
size_t twice(size_t width)
{
    return 2 * width;
}
size_t pairOfEveryTwo(size_t width)
{
    return 2 * half(width);
}
size_t wholeGroups(size_t width)
{
    return 4 * half(width);
}

size_t nextTo(size_t i, size_t width)
{
    return std::min(i + 1, width - 1);
}

Origin same(size_t row, size_t i)
{
    return {row, i, i};
}

// What takes one row and writes one, byte i of which is byte `step` * i + `offset`.
template <Kernel row, size_t step, size_t offset>
constexpr RowKernel picking(const char* name, size_t (*sourceBytes)(size_t), size_t (*targetBytes)(size_t))
{
    return {row,
            name,
            1,
            1,
            sourceBytes,
            targetBytes,
            [](Source src, uint32_t width, Target dst, uint32_t) { kernel<row>()(src[0], width, dst[0]); },
            [](size_t, size_t, size_t i) { return same(0, step * i + offset); }};
}

constexpr RowKernel kRowKernels[] = {
    {Kernel::irvkRowDownsampleBy2, "irvkRowDownsampleBy2", 1, 1, once, half,
     [](Source src, uint32_t width, Target dst, uint32_t) {
         kernel<Kernel::irvkRowDownsampleBy2>()(src[0], width, dst[0]);
     },
     [](size_t width, size_t, size_t i) {
         return Origin{0, 2 * i, nextTo(2 * i, width)};
     }},
    {Kernel::irvkRowDownsampleBy2Deinterleave, "irvkRowDownsampleBy2Deinterleave", 1, 2, twice, half,
     [](Source src, uint32_t width, Target dst, uint32_t) {
         kernel<Kernel::irvkRowDownsampleBy2Deinterleave>()(src[0], width, dst[0], dst[1]);
     },
     [](size_t width, size_t target, size_t i) {
         return Origin{0, 4 * i + target, 2 * nextTo(2 * i, width) + target};
     }},
    {Kernel::irvkRowUpsampleBy2, "irvkRowUpsampleBy2", 1, 1, half, once,
     [](Source src, uint32_t width, Target dst, uint32_t) {
         kernel<Kernel::irvkRowUpsampleBy2>()(src[0], width, dst[0]);
     },
     [](size_t, size_t, size_t i) { return same(0, i / 2); }},
    {Kernel::irvkRowUpsampleBy2Interleave, "irvkRowUpsampleBy2Interleave", 2, 1, half, twice,
     [](Source src, uint32_t width, Target dst, uint32_t) {
         kernel<Kernel::irvkRowUpsampleBy2Interleave>()(src[0], src[1], width, dst[0]);
     },
     [](size_t, size_t, size_t i) { return same(i % 2, i / 4); }},
    {Kernel::irvkChromaUpsampleVertical, "irvkChromaUpsampleVertical", 1, 2, twice, twice,
     [](Source src, uint32_t width, Target dst, uint32_t dstStride) {
         kernel<Kernel::irvkChromaUpsampleVertical>()(src[0], width, dst[0], dstStride);
     },
     [](size_t, size_t, size_t i) { return same(0, i); }},
    {Kernel::irvkChromaUpsampleHorizontal, "irvkChromaUpsampleHorizontal", 1, 1, pairOfEveryTwo, twice,
     [](Source src, uint32_t width, Target dst, uint32_t) {
         kernel<Kernel::irvkChromaUpsampleHorizontal>()(src[0], width, dst[0]);
     },
     [](size_t, size_t, size_t i) { return same(0, i / 4 * 2 + i % 2); }},
    {Kernel::irvkChromaUpsample2D, "irvkChromaUpsample2D", 1, 2, pairOfEveryTwo, twice,
     [](Source src, uint32_t width, Target dst, uint32_t dstStride) {
         kernel<Kernel::irvkChromaUpsample2D>()(src[0], width, dst[0], dstStride);
     },
     [](size_t, size_t, size_t i) { return same(0, i / 4 * 2 + i % 2); }},
    {Kernel::irvkChromaUpsamplePlanar, "irvkChromaUpsamplePlanar", 1, 2, half, once,
     [](Source src, uint32_t width, Target dst, uint32_t dstStride) {
         kernel<Kernel::irvkChromaUpsamplePlanar>()(src[0], width, dst[0], dstStride);
     },
     [](size_t, size_t, size_t i) { return same(0, i / 2); }},
    {Kernel::irvkRowInterleaveUV, "irvkRowInterleaveUV", 2, 1, once, twice,
     [](Source src, uint32_t width, Target dst, uint32_t) {
         kernel<Kernel::irvkRowInterleaveUV>()(src[0], src[1], width, dst[0]);
     },
     [](size_t, size_t, size_t i) { return same(i % 2, i / 2); }},
    {Kernel::irvkRowDeinterleaveUV, "irvkRowDeinterleaveUV", 1, 2, twice, once,
     [](Source src, uint32_t width, Target dst, uint32_t) {
         kernel<Kernel::irvkRowDeinterleaveUV>()(src[0], width, dst[0], dst[1]);
     },
     [](size_t, size_t target, size_t i) { return same(0, 2 * i + target); }},
    picking<Kernel::irvkExtractYFromNV12, 1, 0>("irvkExtractYFromNV12", once, once),
    picking<Kernel::irvkExtractUFromNV12, 2, 0>("irvkExtractUFromNV12", pairOfEveryTwo, half),
    picking<Kernel::irvkExtractVFromNV12, 2, 1>("irvkExtractVFromNV12", pairOfEveryTwo, half),
    picking<Kernel::irvkExtractYFromNV21, 1, 0>("irvkExtractYFromNV21", once, once),
    picking<Kernel::irvkExtractUFromNV21, 2, 1>("irvkExtractUFromNV21", pairOfEveryTwo, half),
    picking<Kernel::irvkExtractVFromNV21, 2, 0>("irvkExtractVFromNV21", pairOfEveryTwo, half),
    picking<Kernel::irvkExtractYFromUYVY, 2, 1>("irvkExtractYFromUYVY", wholeGroups, once),
    picking<Kernel::irvkExtractUFromUYVY, 4, 0>("irvkExtractUFromUYVY", wholeGroups, half),
    picking<Kernel::irvkExtractVFromUYVY, 4, 2>("irvkExtractVFromUYVY", wholeGroups, half),
    picking<Kernel::irvkExtractYFromYUYV, 2, 0>("irvkExtractYFromYUYV", wholeGroups, once),
    picking<Kernel::irvkExtractUFromYUYV, 4, 1>("irvkExtractUFromYUYV", wholeGroups, half),
    picking<Kernel::irvkExtractVFromYUYV, 4, 3>("irvkExtractVFromYUYV", wholeGroups, half),
};

void callOnGuardedRows(const RowKernel& tested, uint32_t width, GuardedMemory::Flush flush)
{
    constexpr size_t gap = 5; // after each target row but the last
    constexpr uint8_t untouched = 0xa5;
    const size_t sourceBytes = tested.sourceBytes(width), targetBytes = tested.targetBytes(width);
    const size_t stride = targetBytes + gap, targetSize = tested.targets * stride - gap;
    const GuardedMemory sources[2] = {{sourceBytes, flush}, {sourceBytes, flush}};
    const GuardedMemory target(targetSize, flush);
    const uint8_t* const src[] = {sources[0].data(), sources[1].data()};
    uint8_t* const dst[] = {target.data(), target.data() + stride};
    Random random(width);
    for (const GuardedMemory& source : sources)
        std::generate_n(source.data(), sourceBytes, [&] { return static_cast<uint8_t>(random.below(256)); });
    std::fill_n(target.data(), targetSize, untouched);
    tested.call(src, width, dst, static_cast<uint32_t>(stride));
    for (size_t k = 0; k < targetSize; ++k) {
        const Origin o = tested.origin(width, k / stride, k % stride);
        const uint32_t expected =
            k % stride < targetBytes ? (src[o.row][o.first] + src[o.row][o.second] + 1u) / 2 : untouched;
        ASSERT_EQ(target.data()[k], expected) << tested.name << " of width " << width << ", byte " << k;
    }
}

void callAtAllWidths(const RowKernel& tested)
{
    for (uint32_t width = 1; width < 300; ++width)
        for (const auto flush : {GuardedMemory::Flush::toStart, GuardedMemory::Flush::toEnd})
            callOnGuardedRows(tested, width, flush);
}

TEST(ChannelKernels, GiveTheBytesOrMeansTheyAreNamedForInBothModes)
{
    for (const RowKernel& tested : kRowKernels)
        inBothModes(tested.kernel, tested.name, [&] { callAtAllWidths(tested); });
}

// ---- pictures larger than the caches, which some processors write past them -----------------------------------------

#if defined(__x86_64__)
constexpr uint32_t kHeight = 6;
#else
constexpr uint32_t kHeight = 1; // no processor does, and emulation takes its time
#endif
constexpr uint32_t kWidth = 1024 * 1024 + 77;
constexpr size_t kSourceStride = kWidth + 3;

std::vector<uint8_t> drawnBytes(size_t size)
{
    Random random(size);
    std::vector<uint8_t> bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<uint8_t>(random.below(256)); });
    return bytes;
}

// Planes lie one after the other, rows at odd addresses.
void expectCombined(size_t channels,
                    void (*combine)(const uint8_t* planes, size_t planeSize, uint8_t* dst, uint32_t stride))
{
    const size_t planeSize = kSourceStride * kHeight, stride = channels * kWidth + 1;
    const std::vector<uint8_t> planes = drawnBytes(channels * planeSize);
    std::vector<uint8_t> dst(stride * kHeight + 1, 0), expected = dst;
    for (size_t y = 0; y < kHeight; ++y)
        for (size_t i = 0; i < channels * kWidth; ++i)
            expected[1 + y * stride + i] = planes[i % channels * planeSize + y * kSourceStride + i / channels];
    combine(planes.data(), planeSize, dst.data() + 1, static_cast<uint32_t>(stride));
    EXPECT_EQ(std::memcmp(dst.data(), expected.data(), dst.size()), 0) << channels << " channels";
}

TEST(LargePictures, AreCombinedFromAndTakenApartToPlanes)
{
    ASSERT_EQ(rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE), 0);
    expectCombined(2, [](const uint8_t* p, size_t size, uint8_t* dst, uint32_t stride) {
        rvkChannelCombine2Planesu8(p, kWidth, kHeight, kSourceStride, p + size, kSourceStride, dst, stride);
    });
    expectCombined(3, [](const uint8_t* p, size_t size, uint8_t* dst, uint32_t stride) {
        rvkChannelCombine3Planesu8(p, kWidth, kHeight, kSourceStride, p + size, kSourceStride, p + 2 * size,
                                   kSourceStride, dst, stride);
    });
    expectCombined(4, [](const uint8_t* p, size_t size, uint8_t* dst, uint32_t stride) {
        rvkChannelCombine4Planesu8(p, kWidth, kHeight, kSourceStride, p + size, kSourceStride, p + 2 * size,
                                   kSourceStride, p + 3 * size, kSourceStride, dst, stride);
    });
    const std::vector<uint8_t> pairs = drawnBytes(2 * kSourceStride * kHeight);
    std::vector<uint8_t> first(kSourceStride * kHeight), second = first;
    rvkDeinterleaveu8(pairs.data(), kWidth, kHeight, 2 * kSourceStride, first.data(), kSourceStride, second.data(),
                      kSourceStride);
    for (size_t y = 0, wrong = 0; y < kHeight; ++y)
        for (size_t x = 0; x < kWidth && wrong < 5; ++x) {
            const size_t at = y * kSourceStride + x;
            if (first[at] != pairs[2 * at] || second[at] != pairs[2 * at + 1])
                ADD_FAILURE() << "wrong pair " << ++wrong << ": " << x << " of row " << y;
        }
}

} // namespace

// Blocks of pixels of which each makes pixels of the destination, and their means: steps over rows of blocks.
#pragma once

#include "vecta/simd/scaling.h"
#include "vecta/simd/steps.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// `across` x `down` blocks, each of srcRows rows of the source and dstRows of the destination.
template <class Step, size_t srcRows, size_t dstRows>
RVK_INLINE void mapBlocks(size_t across, size_t down, Plane<const uint8_t> src, Plane<uint8_t> dst)
{
    for (size_t y = 0; y < down; ++y) {
        Rows<const uint8_t, srcRows> from;
        Rows<uint8_t, dstRows> to;
        unrolled<srcRows>([&](auto i) RVK_INLINE_LAMBDA { from.row[i] = src.row(y * srcRows + i); });
        unrolled<dstRows>([&](auto i) RVK_INLINE_LAMBDA { to.row[i] = dst.row(y * dstRows + i); });
        mapRows<Step>(anyNumber(across), from, to);
    }
}

// Quarters of blocks, four to a block, that narrowing twice has left in the order of its four vectors.
RVK_INLINE Vec<uint8_t> orderPackedTwice(Vec<uint8_t> v)
{
    const Vec<uint32_t> quarters = bitCast<uint32_t>(v);
    return bitCast<uint8_t>(shuffle(quarters, quarters, [](size_t i) {
        constexpr size_t blocks = kBytes / 16;
        return i % blocks * 4 + i / blocks;
    }));
}

// Means of blocks of pixels: rounded down, or halves up.
enum class Rounding : uint8_t { down, halvesUp };

template <Rounding rounding>
struct MeanOf2x2 : WholeUnits
{
    static constexpr size_t vectors = kBytes == 16 ? 2 : 1; // a step is long enough to make little of its loop
    static constexpr size_t units = vectors * kBytes, in = 2, out = 1;

    RVK_INLINE static Vecs<uint8_t, vectors> take(const Rows<const uint8_t, 2>& src)
    {
        Vecs<uint8_t, vectors> means;
        unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA {
            const auto sums = [&](size_t at) RVK_INLINE_LAMBDA {
                return addNeighboursTo(addNeighbours(load(src.row[0] + at)), load(src.row[1] + at));
            };
            const Vecs<uint16_t, 2> pair = {sums(2 * kBytes * i), sums(2 * kBytes * i + kBytes)};
            if constexpr (rounding == Rounding::down)
                means[i] = narrowShifted<2>(pair);
            else
                means[i] = narrowRounded<uint8_t, 2>(pair);
        });
        return means;
    }
    RVK_INLINE static void put(const Vecs<uint8_t, vectors>& means, size_t, uint8_t* dst) { store(dst, means); }
};

template <Rounding rounding>
struct MeanOf4x4 : WholeUnits
{
    static constexpr size_t units = kBytes, in = 4, out = 1;

    RVK_INLINE static Vec<uint8_t> take(const Rows<const uint8_t, 4>& src)
    {
        const auto pairs = [&](size_t at) RVK_INLINE_LAMBDA {
            Vec<uint16_t> sums = addNeighbours(load(src.row[0] + at));
            unrolled<3>([&](auto i) RVK_INLINE_LAMBDA { sums = addNeighboursTo(sums, load(src.row[i + 1] + at)); });
            return sums;
        };
        const auto fours = [&](size_t at)
                               RVK_INLINE_LAMBDA { return addNeighboursInLanes(pairs(at), pairs(at + kBytes)); };
        const Vecs<uint16_t, 2> sums = {fours(0), fours(2 * kBytes)};
        if constexpr (rounding == Rounding::down)
            return orderPackedTwice(narrowShiftedInLanes<4>(sums));
        else
            return orderPackedTwice(narrowRoundedInLanes<uint8_t, 4>(sums));
    }
    RVK_INLINE static void put(Vec<uint8_t> means, size_t, uint8_t* dst) { store(dst, means); }
};

// Of blocks of 3 x 3 pixels four means: 9 corner + 3 (both neighbours of it) + centre, row by row.
struct Corners
{
    Vecs<uint16_t, 4> sums[2]; // of the upper and of the lower row
};
template <Rounding rounding>
struct CornersOf3x3 : WholeUnits
{
    static constexpr size_t units = kBytes, in = 3, out = 2;

    RVK_INLINE static Corners take(const Rows<const uint8_t, 3>& src)
    {
        const Vecs<uint16_t, 4> middle = thirdSums<3, 1>(src.row[1]);
        return {{addThirdSums<9, 3>(middle, src.row[0]), addThirdSums<9, 3>(middle, src.row[2])}};
    }
    RVK_INLINE static void put(const Corners& corners, size_t target, uint8_t* dst)
    {
        storeThirds<4, rounding == Rounding::halvesUp>(dst, corners.sums[target]);
    }
};

} // namespace
} // namespace rvk::vecta::RVK_ISA

// Means of areas that cover parts of pixels. Strips of columns as wide as a vector are walked down, a block of rows
// after the other, so that few rows of the source are read at a time. What a row of the source becomes stays in
// registers for the two rows of the destination that share it.
#pragma once

#include "vecta/simd/blocks.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

// Where the pixels that columns of a strip cover are, and their weights: of as many columns as a vector holds when each
// has `neighbours` pixels, two or four, then of the next ones.
template <size_t neighbours>
struct alignas(kBytes) AreaStrip
{
    static constexpr size_t vectors = neighbours, columns = kBytes / neighbours; // of a vector

    uint8_t indices[vectors][kBytes], weights[vectors][kBytes]; // in windows of a row
    uint32_t offsets[vectors];
};

// The weight of a row: a number of parts, twice, for 32 bits are cheaper to load into all lanes than 16, and what these
// parts are of an area.
struct AreaWeight
{
    uint32_t parts;
    float share;
};

// What a row of the destination is made of: a row of the source, whole ones that follow it, and one behind them, unless
// its weight has no parts.
struct AreaRow
{
    const uint8_t* first;
    size_t wholeRows;
    AreaWeight firstWeight, lastWeight;
    bool beginsWithLast; // row of the row before it
};

struct BlockOfAreas
{
    const AreaRow* rows;
    size_t count, srcStride;
    AreaWeight wholeWeight;
    uint8_t* dst;
    size_t dstStride;
};

// Areas of few parts, by words: rows are summed across and then down, and MeanOf makes means of them.
template <size_t neighbours, class MeanOf>
struct AreasByWords
{
    static constexpr size_t vectors = neighbours;
    static constexpr bool movesPixels = false;
    using Words = Vecs<int16_t, 2>;

    Vecs<int8_t, vectors> weights;
    MeanOf mean;

    RVK_INLINE AreasByWords(const AreaStrip<neighbours>& strip, const MeanOf& m)
        : weights(bitCast<int8_t>(loadVecs<vectors>(strip.weights[0]))), mean(m)
    {
    }
    RVK_INLINE Words lineOf(const Vecs<uint8_t, vectors>& pixels) const
    {
        if constexpr (neighbours == 2) {
            return {dotPairs(pixels[0], weights[0]), dotPairs(pixels[1], weights[1])};
        } else {
            const auto quads = [&](size_t i)
                                   RVK_INLINE_LAMBDA { return addDotQuads(zero<int32_t>(), pixels[i], weights[i]); };
            return {narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{quads(0), quads(1)}),
                    narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{quads(2), quads(3)})};
        }
    }
    RVK_INLINE Words weigh(const Words& line, const AreaWeight& weight) const
    {
        const Vec<int16_t> parts = bitCast<int16_t>(splat(weight.parts));
        return {line[0] * parts, line[1] * parts};
    }
    RVK_INLINE Words add(const Words& sums, const Words& line, const AreaWeight& weight) const
    {
        const Words more = weigh(line, weight);
        return {sums[0] + more[0], sums[1] + more[1]};
    }
    RVK_INLINE Vec<uint8_t> means(const Words& sums) const
    {
        const auto meanOf = [this](Vec<int16_t> sum)
                                RVK_INLINE_LAMBDA { return bitCast<int16_t>(mean(bitCast<uint16_t>(sum))); };
        const Vec<uint8_t> bytes = narrowSatInLanes<uint8_t>(Words{meanOf(sums[0]), meanOf(sums[1])});
        return neighbours == 2 ? orderPacked(bytes) : orderPackedTwice(bytes);
    }
};

// Areas of more parts, by floats: rows are summed across, exactly, and their shares of areas are added to what makes
// the sum right when it is rounded down. Weights are bytes: pixels are the signed bytes here, moved by -128.
struct AreasByShares
{
    static constexpr size_t vectors = 4;
    static constexpr bool movesPixels = true;
    using Shares = Vecs<float, vectors>;

    Vecs<uint8_t, vectors> weights;
    int32_t moved; // 128 times the sum of the weights
    float half;

    RVK_INLINE AreasByShares(const AreaStrip<vectors>& strip, uint32_t sumOfWeights, float h)
        : weights(loadVecs<vectors>(strip.weights[0])), moved(static_cast<int32_t>(128 * sumOfWeights)), half(h)
    {
    }
    RVK_INLINE Shares lineOf(const Vecs<uint8_t, vectors>& pixels) const
    {
        Shares line;
        unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA {
            line[i] = toFloat(addDotQuads(splat(moved), weights[i], bitCast<int8_t>(pixels[i])));
        });
        return line;
    }
    RVK_INLINE Shares weigh(const Shares& line, const AreaWeight& weight) const
    {
        const Vec<float> v = splat(half);
        return add({v, v, v, v}, line, weight);
    }
    RVK_INLINE Shares add(const Shares& sums, const Shares& line, const AreaWeight& weight) const
    {
        Shares more;
        unrolled<vectors>([&](auto i)
                              RVK_INLINE_LAMBDA { more[i] = multiplyAdd(line[i], splat(weight.share), sums[i]); });
        return more;
    }
    RVK_INLINE Vec<uint8_t> means(const Shares& sums) const
    {
        const auto pair = [&](size_t i) RVK_INLINE_LAMBDA {
            return narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{truncateToInt(sums[i]), truncateToInt(sums[i + 1])});
        };
        return orderPackedTwice(narrowSatInLanes<uint8_t>(Vecs<int16_t, 2>{pair(0), pair(2)}));
    }
};

// So many bytes at p, in the lower lanes, as they are or moved by -128.
template <size_t window, bool moves>
RVK_INLINE Vec<uint8_t> loadWindow(const uint8_t* p)
{
    if constexpr (window == kBytes) {
        return moves ? load(p) ^ splat<uint8_t>(128) : load(p);
    } else {
        const HalfRegister bytes = loadFraction<kBytes / window>(p);
        return vec<uint8_t>(_mm512_castsi256_si512(moves ? _mm256_xor_si256(bytes, _mm256_set1_epi8(-128)) : bytes));
    }
}

// The first columns of a strip. Windows of half a vector cross lines of the cache half as often.
template <size_t window, size_t neighbours, class Areas>
RVK_NOINLINE void averageStrip(const AreaStrip<neighbours>& strip, const Areas& given, const BlockOfAreas& givenBlock,
                               size_t columns)
{
    constexpr size_t vectors = Areas::vectors;
    const Areas areas = given; // which no store changes
    const BlockOfAreas block = givenBlock;
    const auto indices = loadVecs<vectors>(strip.indices[0]);
    size_t offsets[vectors];
    unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA { offsets[i] = strip.offsets[i]; });
    const auto lineOf = [&](const uint8_t* row) RVK_INLINE_LAMBDA {
        Vecs<uint8_t, vectors> pixels;
        unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA {
            const Vec<uint8_t> bytes = loadWindow<window, Areas::movesPixels>(row + offsets[i]);
            pixels[i] = vec<uint8_t>(_mm512_permutexvar_epi8(reg(indices[i]), reg(bytes)));
        });
        return areas.lineOf(pixels);
    };
    auto line = lineOf(block.rows->first);
    uint8_t* dst = block.dst;
    for (size_t y = 0; y < block.count; ++y, dst += block.dstStride) {
        const AreaRow& row = block.rows[y];
        const uint8_t* src = row.first;
        if (y > 0 && !row.beginsWithLast)
            line = lineOf(src);
        auto sums = areas.weigh(line, row.firstWeight);
        for (size_t i = row.wholeRows; i; --i)
            sums = areas.add(sums, lineOf(src += block.srcStride), block.wholeWeight);
        if (row.lastWeight.parts) {
            line = lineOf(src += block.srcStride);
            sums = areas.add(sums, line, row.lastWeight);
        }
        if (columns < kBytes) [[unlikely]]
            storePartial(dst, areas.means(sums), columns);
        else
            store(dst, areas.means(sums));
    }
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#endif

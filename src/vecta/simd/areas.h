// Means of areas that cover parts of pixels. Strips of columns as wide as a vector are walked down, a block of rows
// after the other, so that few rows of the source are read at a time. The pixels that columns cover stay in registers
// for the two rows of the destination that share a row of the source. They are multiplied by the weights of their
// columns times that of their row, bytes, so that sums of products are all that rows take.
#pragma once

#include "vecta/simd/blocks.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

// A byte for each of the pixels that a column covers, the first one in the lowest bits.
template <size_t neighbours>
struct BytesOfColumnOf
{
    using Type = uint32_t;
};
template <>
struct BytesOfColumnOf<2>
{
    using Type = uint16_t;
};
template <size_t neighbours>
using BytesOfColumn = typename BytesOfColumnOf<neighbours>::Type;

template <size_t neighbours>
RVK_INLINE Vecs<uint8_t, neighbours>
loadColumns(const BytesOfColumn<neighbours> (&columns)[neighbours][kBytes / neighbours])
{
    return bitCast<uint8_t>(loadVecs<neighbours>(columns[0]));
}

// Where the pixels that columns of a strip cover are: of as many columns as a vector holds when each has `neighbours`
// pixels, two or four, then of the next ones.
template <size_t neighbours>
struct alignas(kBytes) AreaStrip
{
    static constexpr size_t vectors = neighbours, columns = kBytes / neighbours; // of a vector

    BytesOfColumn<neighbours> indices[vectors][columns]; // in windows of a row
    uint32_t offsets[vectors];
};

// The weights of these pixels, times that of a row.
template <size_t neighbours>
struct alignas(kBytes) AreaWeights
{
    BytesOfColumn<neighbours> of[neighbours][kBytes / neighbours];
};

// What a row of the destination has of rows of the source: parts of the one that the row before it ends with, whole
// ones, and parts of one behind them.
struct AreaRow
{
    uint32_t partsOfShared, wholeRows, partsOfLast;
};

// Rows of the destination, of which `period` repeat. The source begins with what the first of them has a part of.
struct BlockOfAreas
{
    const AreaRow* rows;
    size_t period, first, count; // rows[first] is the first
    const uint8_t* src;
    size_t srcStride;
    uint8_t* dst;
    size_t dstStride;
};

// Areas of few parts, by words, of which MeanOf makes means. Of more of them weights take eight bits; then pixels are
// the signed bytes, moved by -128.
template <bool moves, class MeanOf>
class AreasByWords
{
public:
    static constexpr size_t neighbours = 2;
    static constexpr bool movesPixels = moves, multipliesWeights = true;
    using Line = Vecs<uint8_t, neighbours>;
    using Sums = Vecs<int16_t, neighbours>;

    RVK_INLINE AreasByWords(uint32_t area, const MeanOf& mean)
        : m_moved(static_cast<int16_t>(moves ? 128 * area : 0)), m_mean(mean)
    {
    }
    RVK_INLINE Sums start() const { return {splat(m_moved), splat(m_moved)}; }
    RVK_INLINE Line lineOf(const Vecs<uint8_t, neighbours>& pixels, const Vecs<uint8_t, neighbours>&) const
    {
        return pixels;
    }
    RVK_INLINE auto weightsOf(const AreaWeights<neighbours>* weights, size_t parts) const
    {
        return loadColumns<neighbours>(weights[parts - 1].of);
    }
    RVK_INLINE void add(Sums& sums, const Line& pixels, const Vecs<uint8_t, neighbours>& weights) const
    {
        unrolled<neighbours>([&](auto i) RVK_INLINE_LAMBDA {
            sums[i] = sums[i] + (moves ? dotPairs(weights[i], bitCast<int8_t>(pixels[i]))
                                       : dotPairs(pixels[i], bitCast<int8_t>(weights[i])));
        });
    }
    RVK_INLINE Vec<uint8_t> means(const Sums& sums) const
    {
        const auto meanOf = [this](Vec<int16_t> sum) RVK_INLINE_LAMBDA { return m_mean(bitCast<uint16_t>(sum)); };
        return narrow(Vecs<uint16_t, 2>{meanOf(sums[0]), meanOf(sums[1])});
    }

private:
    int16_t m_moved; // 128 times the area
    MeanOf m_mean;
};

// Quotients of sums by an area, rounded to the nearest number, by floats so large that their lower bits are that:
// halves up, since the reciprocal is a little more than that of the area. It may be up to 2^13.
class MeansByFloats
{
public:
    RVK_INLINE explicit MeansByFloats(uint32_t area) : m_reciprocal(static_cast<float>((1 + 0x1p-23) / area)) {}
    RVK_INLINE Vec<uint8_t> operator()(const Vecs<float, 4>& sums) const
    {
        const auto inLowBits = [this](Vec<float> sum) RVK_INLINE_LAMBDA {
            return bitCast<uint32_t>(multiplyAdd(sum, splat(m_reciprocal), splat(0x1p23f)));
        };
        const auto pair = [&](size_t i) RVK_INLINE_LAMBDA {
            return narrow(Vecs<uint32_t, 2>{inLowBits(sums[i]), inLowBits(sums[i + 1])});
        };
        return narrow(Vecs<uint16_t, 2>{pair(0), pair(2)});
    }

private:
    float m_reciprocal;
};

RVK_INLINE Vecs<float, 4> toFloats(const Vecs<int32_t, 4>& v)
{
    return {toFloat(v[0]), toFloat(v[1]), toFloat(v[2]), toFloat(v[3])};
}

// sums + each column's pixels, or those moved by -128, by their weights.
template <bool moved>
RVK_INLINE Vecs<int32_t, 4> addDots(Vecs<int32_t, 4> sums, const Vecs<uint8_t, 4>& pixels,
                                    const Vecs<uint8_t, 4>& weights)
{
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA {
        sums[i] = moved ? addDotQuads(sums[i], weights[i], bitCast<int8_t>(pixels[i]))
                        : addDotQuads(sums[i], pixels[i], bitCast<int8_t>(weights[i]));
    });
    return sums;
}

// Areas of more parts, by 32 bits.
class AreasByIntegers
{
public:
    static constexpr size_t neighbours = 4;
    static constexpr bool movesPixels = true, multipliesWeights = true;
    using Line = Vecs<uint8_t, neighbours>;
    using Sums = Vecs<int32_t, neighbours>;

    RVK_INLINE explicit AreasByIntegers(uint32_t area) : m_moved(static_cast<int32_t>(128 * area)), m_means(area) {}
    RVK_INLINE Sums start() const { return {splat(m_moved), splat(m_moved), splat(m_moved), splat(m_moved)}; }
    RVK_INLINE Line lineOf(const Vecs<uint8_t, neighbours>& pixels, const Vecs<uint8_t, neighbours>&) const
    {
        return pixels;
    }
    RVK_INLINE auto weightsOf(const AreaWeights<neighbours>* weights, size_t parts) const
    {
        return loadColumns<neighbours>(weights[parts - 1].of);
    }
    RVK_INLINE void add(Sums& sums, const Line& pixels, const Vecs<uint8_t, neighbours>& weights) const
    {
        sums = addDots<true>(sums, pixels, weights);
    }
    RVK_INLINE Vec<uint8_t> means(const Sums& sums) const { return m_means(toFloats(sums)); }

private:
    int32_t m_moved; // 128 times the area
    MeansByFloats m_means;
};

// Areas whose rows have weights that those of columns cannot be multiplied by: rows are summed across and then down, by
// floats, which hold all sums.
template <bool moves>
class AreasByFloats
{
public:
    static constexpr size_t neighbours = 4;
    static constexpr bool movesPixels = moves, multipliesWeights = false;
    using Line = Vecs<float, neighbours>;
    using Sums = Vecs<float, neighbours>;

    RVK_INLINE AreasByFloats(uint32_t area, uint32_t sumOfWeights)
        : m_moved(static_cast<int32_t>(moves ? 128 * sumOfWeights : 0)), m_means(area)
    {
    }
    RVK_INLINE Sums start() const { return {}; }
    RVK_INLINE Line lineOf(const Vecs<uint8_t, neighbours>& pixels, const Vecs<uint8_t, neighbours>& weights) const
    {
        const Vec<int32_t> v = splat(m_moved);
        return toFloats(addDots<moves>({v, v, v, v}, pixels, weights));
    }
    RVK_INLINE Vec<float> weightsOf(const AreaWeights<neighbours>*, size_t parts) const
    {
        return splat(static_cast<float>(static_cast<uint32_t>(parts)));
    }
    RVK_INLINE void add(Sums& sums, const Line& line, Vec<float> weight) const
    {
        unrolled<neighbours>([&](auto i) RVK_INLINE_LAMBDA { sums[i] = multiplyAdd(line[i], weight, sums[i]); });
    }
    RVK_INLINE Vec<uint8_t> means(const Sums& sums) const { return m_means(sums); }

private:
    int32_t m_moved; // 128 times the sum of a line's weights
    MeansByFloats m_means;
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

// The first columns of a strip; a row has `whole` parts. weights[0] are those of columns, and, where they are
// multiplied, weights[i] i + 1 times these. Windows of half a vector cross lines of the cache half as often.
template <size_t window, class Areas>
RVK_NOINLINE void averageStrip(const AreaStrip<Areas::neighbours>& strip, const AreaWeights<Areas::neighbours>* weights,
                               size_t whole, const Areas& given, const BlockOfAreas& givenBlock, size_t columns)
{
    constexpr size_t vectors = Areas::neighbours;
    const Areas areas = given; // which no store changes
    const BlockOfAreas block = givenBlock;
    const auto indices = loadColumns<vectors>(strip.indices), ofColumns = loadColumns<vectors>(weights->of);
    size_t offsets[vectors];
    unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA { offsets[i] = strip.offsets[i]; });
    const uint8_t* src = block.src;
    const auto nextLine = [&]() RVK_INLINE_LAMBDA {
        Vecs<uint8_t, vectors> pixels;
        unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA {
            const Vec<uint8_t> bytes = loadWindow<window, Areas::movesPixels>(src + offsets[i]);
            pixels[i] = vec<uint8_t>(_mm512_permutexvar_epi8(reg(indices[i]), reg(bytes)));
        });
        src += block.srcStride;
        return areas.lineOf(pixels, ofColumns);
    };
    const auto wholeWeights = areas.weightsOf(weights, whole);
    const AreaRow *row = block.rows + block.first, *const end = block.rows + block.period;
    typename Areas::Line line = {};
    if (row->partsOfShared)
        line = nextLine();
    uint8_t* dst = block.dst;
    for (size_t y = 0; y < block.count; ++y, dst += block.dstStride) {
        typename Areas::Sums sums = areas.start();
        if (row->partsOfShared)
            areas.add(sums, line, areas.weightsOf(weights, row->partsOfShared));
        for (size_t i = row->wholeRows; i; --i) {
            line = nextLine();
            areas.add(sums, line, wholeWeights);
        }
        if (row->partsOfLast) {
            line = nextLine();
            areas.add(sums, line, areas.weightsOf(weights, row->partsOfLast));
        }
        if (++row == end)
            row = block.rows;
        if (columns < kBytes) [[unlikely]]
            storePartial(dst, areas.means(sums), columns);
        else
            store(dst, areas.means(sums));
    }
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#endif

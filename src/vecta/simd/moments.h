// Sums of bytes weighted by powers of their columns and rows, where products are summed in one operation.
#pragma once

#include "vecta/simd/rows.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

struct FirstSums
{
    uint64_t s00, s10, s01; // weighted by 1, by columns and by rows
};

// Of a part of a picture. Rows are summed from left to right, and the sums up to each vector are added up: so a vector
// counts once more for each that follows it. The same is done with rows. A vector takes three operations.
class FirstSumsOfBlock
{
public:
    static constexpr size_t mostColumns = 1024, mostRows = 128; // so that sums fit 32 bits

    static RVK_INLINE FirstSums of(const uint8_t* p, size_t pitch, size_t width, size_t height)
    {
        FirstSumsOfBlock block;
        size_t y = 0;
        for (; y + together <= height; y += together)
            block.addRows<together>(p + y * pitch, pitch, width);
        for (; y < height; ++y)
            block.addRows<1>(p + y * pitch, pitch, width);
        return block.total(width, height);
    }

private:
    static constexpr size_t lanes = Vec<uint8_t>::lanes, together = 4;

    template <size_t rows>
    RVK_INLINE void addRows(const uint8_t* p, size_t pitch, size_t width)
    {
        Vec<int32_t> row[rows] = {};
        const auto addVectors = [&](auto loadFrom) RVK_INLINE_LAMBDA {
            unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA {
                const Vec<uint8_t> v = loadFrom(p + i * pitch);
                row[i] = addDotQuads(row[i], v, splat<int8_t>(1));
                m_inVectors[i] = addDotQuads(m_inVectors[i], v, iota<int8_t>());
                m_ofVectors = m_ofVectors + row[i];
            });
            p += lanes;
        };
        for (size_t vectors = width / lanes; vectors; --vectors)
            addVectors([](const uint8_t* q) RVK_INLINE_LAMBDA { return load(q); });
        if (const size_t rest = width % lanes)
            addVectors([=](const uint8_t* q) RVK_INLINE_LAMBDA { return loadPartial(q, rest); });
        unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA {
            m_sum = m_sum + row[i];
            m_ofRows = m_ofRows + m_sum;
        });
    }

    RVK_INLINE FirstSums total(size_t width, size_t height) const
    {
        const Vec<int32_t> inVectors = (m_inVectors[0] + m_inVectors[1]) + (m_inVectors[2] + m_inVectors[3]);
        uint32_t sums[4];
        storeSums(sums, bitCast<uint32_t>(Vecs<int32_t, 4>{m_sum, inVectors, m_ofVectors, m_ofRows}));
        const uint64_t sum = sums[0], vectors = (width + lanes - 1) / lanes;
        return {sum, sums[1] + lanes * (vectors * sum - sums[2]), height * sum - sums[3]};
    }

    Vec<int32_t> m_sum = {}, m_inVectors[together] = {}, m_ofVectors = {}, m_ofRows = {};
};

RVK_NOINLINE FirstSums firstSums(const uint8_t* src, size_t width, size_t height, size_t stride)
{
    FirstSums sums = {};
    for (size_t y = 0, rows; y < height; y += rows) {
        rows = least(height - y, FirstSumsOfBlock::mostRows);
        for (size_t x = 0, columns; x < width; x += columns) {
            columns = least(width - x, FirstSumsOfBlock::mostColumns);
            const FirstSums block = FirstSumsOfBlock::of(src + y * stride + x, stride, columns, rows);
            sums.s00 += block.s00;
            sums.s10 += block.s10 + x * block.s00;
            sums.s01 += block.s01 + y * block.s00;
        }
    }
    return sums;
}

// ---- up to the third order, of tiles --------------------------------------------------------------------------------
//
// Of tiles of 32x32 bytes, eight beside each other. Down the columns first: rows are zipped until each element has four
// bytes of a column, which takes two operations for 64 bytes, and four more sum them up with weights of each order. These
// are polynomials of the number of the row that fit a signed byte. What is left is an eighth as much.

constexpr size_t kTileSide = 32, kTilesBeside = 8;

struct RowWeights
{
    static constexpr size_t steps = kTileSide / 4;
    int8_t linear[steps][4] = {}, square[steps][4] = {}, cubic[steps][4] = {};
    int8_t restOfCubic[2][4] = {}; // what the last step has more

    // C(y, 3) - 13 C(y, 2) + 65 y - 93: of all such polynomials one that fits a byte in all but the last four rows.
    static constexpr int32_t cubicOf(int32_t y)
    {
        return y * (y - 1) * (y - 2) / 6 - 13 * (y * (y - 1) / 2) + 65 * y - 93;
    }

    constexpr RowWeights()
    {
        constexpr int32_t most = 127, rows = kTileSide;
        const auto byte = [](int32_t weight) { return static_cast<int8_t>(weight < most ? weight : most); };
        for (int32_t y = 0; y < rows; ++y) {
            linear[y / 4][y % 4] = byte(y - 16);
            square[y / 4][y % 4] = byte((y - 16) * (y - 15) / 2);
            cubic[y / 4][y % 4] = byte(cubicOf(y));
        }
        for (int32_t y = rows - 4; y < rows; ++y) {
            const int32_t rest = cubicOf(y) - cubic[y / 4][y % 4];
            restOfCubic[0][y % 4] = byte(rest);
            restOfCubic[1][y % 4] = byte(rest - restOfCubic[0][y % 4]);
        }
    }
};
constexpr RowWeights kRowWeights;
static_assert(RowWeights::cubicOf(27) <= 127 && RowWeights::cubicOf(31) <= 3 * 127);

// Powers of the columns of two tiles, in two vectors: of each 16 columns the first eight, and the others.
struct ColumnPowers
{
    int16_t of[4][2][kTileSide] = {};

    constexpr ColumnPowers()
    {
        for (size_t i = 0; i < kTileSide; ++i)
            for (size_t half = 0; half < 2; ++half) {
                const size_t x = i / 8 % 2 * 16 + 8 * half + i % 8;
                for (size_t power = 0, value = 1; power < 4; ++power, value *= x)
                    of[power][half][i] = static_cast<int16_t>(value);
            }
    }
};
constexpr ColumnPowers kColumnPowers;

// The sums of two tiles, one in each half of a vector, element by element: of the values times powers of columns (first
// digit) and one of the polynomials of rows (second digit).
struct TwoTiles
{
    Vec<int32_t> s00, s10, s20, s30, s01, s11, s21, s02, s12, s03;
};

// The sums of 64 columns. They come in four vectors: block b of vector v has columns 16 * b + 4 * v and on.
class TileColumns
{
public:
    static constexpr int32_t offset = 2040; // centres the linear sums: they fit 16 bits

    template <bool binary>
    RVK_INLINE void add(const uint8_t* p, size_t pitch, size_t columns, size_t rows)
    {
        const auto valuesOf = [](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return binary ? min(v, splat<uint8_t>(1)) : v; };
        if (columns >= lanes && rows == kTileSide)
            addRows(
                [=](size_t y) RVK_INLINE_LAMBDA {
                    const uint8_t* const row = p + y * pitch;
                    prefetch(row + lanes, 1); // of the next tiles
                    return valuesOf(load(row));
                },
                RowWeights::steps);
        else
            addRows(
                [=](size_t y) RVK_INLINE_LAMBDA {
                    const bool exists = y < rows;
                    return valuesOf(loadPartial(p + (exists ? y : 0) * pitch, exists ? least(columns, lanes) : 0));
                },
                (rows + 3) / 4);
    }

    RVK_INLINE TwoTiles sums() const
    {
        TwoTiles s;
        const Vecs<int16_t, 2> constants = halves(m_constant), linears = halves(m_linear);
        s.s00 = all(m_constant);
        s.s10 = weighted<1>(constants);
        s.s20 = weighted<2>(constants);
        s.s30 = weighted<3>(constants);
        s.s01 = all(m_linear);
        s.s11 = weighted<1>(linears);
        s.s21 = weighted<2>(linears);
        const Vecs<int32_t, 4>& c = m_square;
        const Vec<int32_t> fromLast = c[2] + c[3], fromSecond = c[1] + fromLast;
        const Vec<int32_t> firstColumn = (iota<int32_t>() & splat(3)) | shiftLeft(iota<int32_t>() & splat(4), 2);
        s.s02 = c[0] + fromSecond;
        s.s12 = shiftLeft(fromSecond + fromLast + c[3], 2) + firstColumn * s.s02;
        s.s03 = all(m_cubic);
        return s;
    }

private:
    static constexpr size_t lanes = Vec<uint8_t>::lanes;

    template <class RowAt>
    RVK_INLINE void addRows(RowAt rowAt, size_t steps)
    {
        Vecs<uint8_t, 4> v;
        for (size_t step = 0; step < steps; ++step) {
            const size_t y = 4 * step;
            v = fourRows(rowAt(y), rowAt(y + 1), rowAt(y + 2), rowAt(y + 3));
            addWeighted(m_constant, v, kOnes);
            addWeighted(m_linear, v, kRowWeights.linear[step]);
            addWeighted(m_square, v, kRowWeights.square[step]);
            addWeighted(m_cubic, v, kRowWeights.cubic[step]);
        }
        if (steps == RowWeights::steps)
            for (const auto& rest : kRowWeights.restOfCubic)
                addWeighted(m_cubic, v, rest);
    }
    static RVK_INLINE void addWeighted(Vecs<int32_t, 4>& sums, const Vecs<uint8_t, 4>& v, const int8_t (&weights)[4])
    {
        uint32_t four;
        __builtin_memcpy(&four, weights, sizeof four);
        unrolled<4>([&](auto i)
                        RVK_INLINE_LAMBDA { sums[i] = addDotQuads(sums[i], v[i], bitCast<int8_t>(splat(four))); });
    }
    static RVK_INLINE Vecs<uint8_t, 4> fourRows(Vec<uint8_t> a, Vec<uint8_t> b, Vec<uint8_t> c, Vec<uint8_t> d)
    {
        const Vecs<uint16_t, 2> ab = bitCast<uint16_t>(zipInLanes(a, b)), cd = bitCast<uint16_t>(zipInLanes(c, d));
        const Vecs<uint8_t, 2> low = bitCast<uint8_t>(zipInLanes(ab[0], cd[0]));
        const Vecs<uint8_t, 2> high = bitCast<uint8_t>(zipInLanes(ab[1], cd[1]));
        return {low[0], low[1], high[0], high[1]};
    }
    static RVK_INLINE Vecs<int16_t, 2> halves(const Vecs<int32_t, 4>& v)
    {
        return {narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{v[0], v[1]}),
                narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{v[2], v[3]})};
    }
    static RVK_INLINE Vec<int32_t> all(const Vecs<int32_t, 4>& v) { return (v[0] + v[1]) + (v[2] + v[3]); }
    template <size_t power>
    static RVK_INLINE Vec<int32_t> weighted(const Vecs<int16_t, 2>& v)
    {
        const auto& powers = kColumnPowers.of[power];
        return addDotPairs(dotPairs(v[0], load(powers[0])), v[1], load(powers[1]));
    }

    static constexpr int8_t kOnes[4] = {1, 1, 1, 1};

    Vecs<int32_t, 4> m_constant = {}, m_square = {}, m_cubic = {};
    Vecs<int32_t, 4> m_linear = {splat(offset), splat(offset), splat(offset), splat(offset)};
};

// The moments of tiles beside each other, a lane for each: two moments in the halves of a vector, or one in the first
// half; in each half the tiles with even numbers, then those with odd ones.
struct TileMoments
{
    Vec<uint32_t> m00m10, m01m11, m20m30, m02m12, m21, m03;
};

// Of kTilesBeside tiles, of which the first `columns` columns and `rows` rows exist. The others count as 0. The sums of
// tiles fit 32 bits: that they wrap on the way does not matter.
template <bool binary>
RVK_NOINLINE void takeTileMoments(const uint8_t* p, size_t pitch, size_t columns, size_t rows, TileMoments* moments)
{
    constexpr size_t pairs = kTilesBeside / 2, width = Vec<uint8_t>::lanes;
    TwoTiles of[pairs];
    for (size_t i = 0; i < pairs; ++i) {
        TileColumns sums;
        if (i * width < columns)
            sums.add<binary>(p + i * width, pitch, columns - i * width, rows);
        of[i] = sums.sums();
    }
    // Block b of a sum of four pairs of tiles is of the tile b / 2 of each pair.
    const auto sumsOfPairs = [&](Vec<int32_t> TwoTiles::*s) RVK_INLINE_LAMBDA {
        const Vecs<int32_t, 4> ofPairs = {of[0].*s, of[1].*s, of[2].*s, of[3].*s};
        return bitCast<uint64_t>(sumsOfBlocks(ofPairs));
    };
    const auto totals = [&](Vec<int32_t> TwoTiles::*first, Vec<int32_t> TwoTiles::*second) RVK_INLINE_LAMBDA {
        const Vec<uint64_t> a = sumsOfPairs(first), b = sumsOfPairs(second);
        const Vec<uint64_t> evenBlocks = shuffle(a, b, [](size_t i) { return i / 2 * 4 + i % 2; });
        const Vec<uint64_t> oddBlocks = shuffle(a, b, [](size_t i) { return i / 2 * 4 + i % 2 + 2; });
        return bitCast<uint32_t>(evenBlocks) + bitCast<uint32_t>(oddBlocks);
    };
    const auto times = [](uint32_t factor, Vec<uint32_t> v) RVK_INLINE_LAMBDA { return splat(factor) * v; };
    // What linear sums have too much: the offset, as often as the powers of a tile's columns make.
    constexpr uint32_t offset = TileColumns::offset;
    constexpr uint32_t more0 = offset * 32, more1 = offset * (31 * 32 / 2), more2 = offset * (31 * 32 * 63 / 6);
    const Vec<uint32_t> more01 =
        select(less(iota<uint32_t>(), splat<uint32_t>(kTilesBeside)), splat(more0), splat(more1));
    // y = (y - 16) + 16; y^2 = (y - 16) * (y - 15) + 31 y - 240; y^3 = 6 * cubic + 42 y^2 - 431 y + 558
    TileMoments& m = *moments;
    m.m00m10 = totals(&TwoTiles::s00, &TwoTiles::s10);
    m.m20m30 = totals(&TwoTiles::s20, &TwoTiles::s30);
    m.m01m11 = totals(&TwoTiles::s01, &TwoTiles::s11) + shiftLeft(m.m00m10, 4) - more01;
    m.m02m12 = shiftLeft(totals(&TwoTiles::s02, &TwoTiles::s12), 1) + times(31, m.m01m11) - times(240, m.m00m10);
    const Vec<uint32_t> s21s03 = totals(&TwoTiles::s21, &TwoTiles::s03);
    m.m21 = s21s03 + shiftLeft(m.m20m30, 4) - splat(more2);
    m.m03 = times(6, extract<kTilesBeside>(s21s03, s21s03)) + times(42, m.m02m12) - times(431, m.m01m11) +
            times(558, m.m00m10);
}

// The columns of eight tiles, a vector for each tile, become a vector for each column, or of floats for two: element i
// of the tiles, then element i + 1. Each round of zips rotates the bits of numbers: of vectors, followed by that of lanes.
template <class T>
RVK_INLINE void transposeTiles(Vec<T> (&v)[kTilesBeside])
{
    constexpr size_t half = kTilesBeside / 2;
    for (size_t round = 0; round < 3; ++round) {
        Vec<T> zipped[kTilesBeside];
        unrolled<half>([&](auto i) RVK_INLINE_LAMBDA {
            zipped[2 * i] = zipLow(v[i], v[i + half]);
            zipped[2 * i + 1] = zipHigh(v[i], v[i + half]);
        });
        unrolled<kTilesBeside>([&](auto i) RVK_INLINE_LAMBDA { v[i] = zipped[i]; });
    }
}

// Element i is the sum of the elements of v[i].
RVK_INLINE Vec<int32_t> sumsOf(const Vec<int32_t> (&v)[Vec<int32_t>::lanes])
{
    const auto blocks = [&](size_t i) RVK_INLINE_LAMBDA {
        return sumsOfBlocks(Vecs<int32_t, 4>{v[i], v[i + 1], v[i + 2], v[i + 3]});
    };
    const auto addHalves = [](Vec<int32_t> a, Vec<int32_t> b) RVK_INLINE_LAMBDA {
        return shuffle(a, b, [](size_t i) { return i < 8 ? i : i + 8; }) +
               shuffle(a, b, [](size_t i) { return i < 8 ? i + 8 : i + 16; });
    };
    const Vec<int32_t> a = addHalves(blocks(0), blocks(4)), b = addHalves(blocks(8), blocks(12));
    return shuffle(a, b, [](size_t i) { return i + i / 4 * 4; }) +
           shuffle(a, b, [](size_t i) { return i + i / 4 * 4 + 4; });
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#endif

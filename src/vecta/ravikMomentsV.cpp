// Vector implementations of the moments.
#include "vecta/ravikMomentsV.h"

#include "cpu/ravikMomentsC.h"
#include "vecta/simd/doubles.h"
#include "vecta/simd/moments.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Sums of integers first have the weights C(x, p) * C(y, q), binomial coefficients, which additions alone make: where
// each sum is added to the next one before the next row, from the last row to the first.
template <class Sum>
struct BinomialSums
{
    Sum s00, s10, s01, s20, s11, s02, s30, s21, s12, s03;

    // y = C(y, 1), y^2 = 2 C(y, 2) + C(y, 1), y^3 = 6 C(y, 3) + 6 C(y, 2) + C(y, 1); sums wrap on the way.
    template <class Moments, class Exact>
    RVK_INLINE Moments toMoments(Exact exact) const
    {
        const auto twice = [](Sum s) RVK_INLINE_LAMBDA { return s + s; };
        const auto six = [=](Sum s) RVK_INLINE_LAMBDA { return twice(s + twice(s)); };
        return {exact(s00),
                exact(s10),
                exact(s01),
                exact(twice(s20) + s10),
                exact(s11),
                exact(twice(s02) + s01),
                exact(six(s30 + s20) + s10),
                exact(twice(s21) + s11),
                exact(twice(s12) + s11),
                exact(six(s03 + s02) + s01)};
    }
    template <class Total>
    RVK_INLINE RawMoments toRawMoments() const
    {
        return toMoments<RawMoments>([](Sum sum)
                                         RVK_INLINE_LAMBDA { return static_cast<double>(static_cast<Total>(sum)); });
    }

    // Adds those of the column before the first of these, given its sums of each order.
    template <unsigned degree>
    RVK_INLINE void addColumnBefore(const Sum (&column)[degree + 1])
    {
        if constexpr (degree == 3) {
            s30 = s30 + s20, s20 = s20 + s10;
            s21 = s21 + s11, s11 = s11 + s01;
            s12 = s12 + s02;
            s02 = s02 + column[2];
            s03 = s03 + column[3];
        }
        s10 = s10 + s00;
        s00 = s00 + column[0];
        s01 = s01 + column[1];
    }
};

// f(p) for the rows of a tile from the last to the first, p the first of them.
template <class T, class F>
RVK_INLINE void forRowsUpwards(const T* p, size_t rowElements, size_t height, F f)
{
    constexpr size_t together = 4;
    p += (height - 1) * rowElements;
    for (; height >= together; height -= together)
        unrolled<together>([&](auto) RVK_INLINE_LAMBDA {
            f(p);
            p -= rowElements;
        });
    for (; height; --height, p -= rowElements)
        f(p);
}

// ---- bytes --------------------------------------------------------------------------------------

// C(x, p) for the columns of a tile, and 0 for as many before them, which do not count.
struct ColumnWeights
{
    uint16_t of[4][2 * kMomentTile] = {};

    constexpr ColumnWeights()
    {
        for (uint32_t x = 0; x < kMomentTile; ++x) {
            of[0][kMomentTile + x] = 1;
            for (uint32_t p = 1; p < 4; ++p) // C(x, p) = C(x - 1, p) + C(x - 1, p - 1)
                of[p][kMomentTile + x] =
                    static_cast<uint16_t>(of[p][kMomentTile + x - 1] + of[p - 1][kMomentTile + x - 1]);
        }
    }
};
constexpr ColumnWeights kColumnWeights;

using Halves = Vecs<uint32_t, 2>;

RVK_INLINE Halves addHalves(const Halves& a, const Halves& b)
{
    return both(a, b, [](auto x, auto y) RVK_INLINE_LAMBDA { return x + y; });
}

template <bool binary>
RVK_INLINE Vec<uint16_t> loadPixels(const uint8_t* p)
{
    const Vec<uint16_t> v = loadWiden<uint16_t>(p);
    return binary ? min(v, splat<uint16_t>(1)) : v;
}

// The sums down as many columns as a vector has 16-bit lanes, up to an order. Those of order 0 are below 2^15.
template <unsigned degree>
struct ByteColumns
{
    Vec<uint16_t> order0 = {};
    Halves higher[degree] = {};

    template <bool binary>
    RVK_INLINE void add(const uint8_t* p, size_t rowElements, size_t height)
    {
        forRowsUpwards(p, rowElements, height, [this](const uint8_t* row) RVK_INLINE_LAMBDA {
            unrolled<degree - 1>([this](auto i) RVK_INLINE_LAMBDA {
                constexpr size_t q = degree - 1 - i;
                higher[q] = addHalves(higher[q], higher[q - 1]);
            });
            higher[0] = addHalves(higher[0], widenInLanes(order0));
            order0 = order0 + loadPixels<binary>(row);
        });
    }
    template <size_t q>
    RVK_INLINE Halves order() const
    {
        return higher[q - 1];
    }
};

// The first order alone fits 16 bits, too, for 16 rows. What was summed before is that many rows farther from the first
// row then.
template <>
struct ByteColumns<1>
{
    Vec<uint16_t> order0 = {};
    Halves order1 = {};

    template <bool binary>
    RVK_INLINE void add(const uint8_t* p, size_t rowElements, size_t height)
    {
        constexpr size_t most = 16;
        if (height > most)
            addRows<binary>(p + most * rowElements, rowElements, height - most);
        addRows<binary>(p, rowElements, least(height, most));
    }
    template <size_t>
    RVK_INLINE Halves order() const
    {
        return order1;
    }

private:
    template <bool binary>
    RVK_INLINE void addRows(const uint8_t* p, size_t rowElements, size_t height)
    {
        order1 = addHalves(order1, widenInLanes(order0 * splat(static_cast<uint16_t>(height))));
        Vec<uint16_t> sum0 = zero<uint16_t>(), sum1 = zero<uint16_t>();
        forRowsUpwards(p, rowElements, height, [&](const uint8_t* row) RVK_INLINE_LAMBDA {
            sum1 = sum1 + sum0;
            sum0 = sum0 + loadPixels<binary>(row);
        });
        order0 = order0 + sum0;
        order1 = addHalves(order1, widenInLanes(sum1));
    }
};

template <unsigned degree, bool binary>
RVK_INLINE BinomialSums<uint32_t> binomialSums(const uint8_t* p, size_t rowElements, size_t height, size_t first,
                                               size_t /*end: what comes after it is 0*/)
{
    constexpr size_t lanes = Vec<uint16_t>::lanes, count = degree == 3 ? 10 : 3;
    Vecs<uint32_t, 12> sums = {}; // in the order of BinomialSums
    for (size_t column = 0; column < kMomentTile; column += lanes) {
        ByteColumns<degree> columns;
        columns.template add<binary>(p + column, rowElements, height);
        const auto weights = [=](size_t power) RVK_INLINE_LAMBDA {
            return load(kColumnWeights.of[power] + kMomentTile - first + column);
        };
        const Halves ones = widenInLanes(weights(0)); // and zeros
        const auto sumUp = [&](auto i, auto across, auto down) RVK_INLINE_LAMBDA {
            if constexpr (i >= count) {
                return;
            } else if constexpr (down == 0) {
                const Vec<int32_t> products =
                    dotPairs(bitCast<int16_t>(columns.order0), bitCast<int16_t>(weights(across)));
                sums[i] = sums[i] + bitCast<uint32_t>(products);
            } else {
                constexpr bool isOfColumns = across == 0;
                const Halves s = columns.template order<down>();
                const auto weighted = [=](auto half) RVK_INLINE_LAMBDA {
                    if constexpr (isOfColumns)
                        return s[half] & (zero<uint32_t>() - ones[half]);
                    else
                        return s[half] * widenInLanes(weights(across))[half];
                };
                sums[i] = sums[i] + (weighted(Constant<0>{}) + weighted(Constant<1>{}));
            }
        };
        sumUp(Constant<0>{}, Constant<0>{}, Constant<0>{});
        sumUp(Constant<1>{}, Constant<1>{}, Constant<0>{});
        sumUp(Constant<2>{}, Constant<0>{}, Constant<1>{});
        sumUp(Constant<3>{}, Constant<2>{}, Constant<0>{});
        sumUp(Constant<4>{}, Constant<1>{}, Constant<1>{});
        sumUp(Constant<5>{}, Constant<0>{}, Constant<2>{});
        sumUp(Constant<6>{}, Constant<3>{}, Constant<0>{});
        sumUp(Constant<7>{}, Constant<2>{}, Constant<1>{});
        sumUp(Constant<8>{}, Constant<1>{}, Constant<2>{});
        sumUp(Constant<9>{}, Constant<0>{}, Constant<3>{});
    }
    uint32_t s[12] = {};
    unrolled<(count + 3) / 4>([&](auto i) RVK_INLINE_LAMBDA {
        storeSums(s + 4 * i, Vecs<uint32_t, 4>{sums[4 * i], sums[4 * i + 1], sums[4 * i + 2], sums[4 * i + 3]});
    });
    return {s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], s[8], s[9]};
}

template <unsigned degree, bool binary>
RVK_INLINE RawMoments tileMoments(const uint8_t* p, size_t rowElements, size_t height, size_t first, size_t end)
{
    return binomialSums<degree, binary>(p, rowElements, height, first, end).template toRawMoments<uint32_t>();
}

// ---- 32-bit integers ----------------------------------------------------------------------------

// The sums of a column up to an order, of which the last ones are of the columns before.
template <unsigned degree, bool binary>
RVK_INLINE BinomialSums<uint64_t> binomialSums(const int32_t* p, size_t rowElements, size_t height, size_t first,
                                               size_t end)
{
    constexpr size_t lanes = Vec<int32_t>::lanes;
    MomentColumns<uint64_t> columns;
    for (size_t column = 0; column < kMomentTile; column += lanes) {
        Vecs<int64_t, 2> sums[degree + 1] = {};
        forRowsUpwards(p + column, rowElements, height, [&](const int32_t* row) RVK_INLINE_LAMBDA {
            Vec<int32_t> v = load(row);
            if constexpr (binary)
                v = select(equal(v, zero<int32_t>()), v, splat<int32_t>(1));
            const auto add = [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; };
            unrolled<degree>([&](auto i) RVK_INLINE_LAMBDA {
                constexpr size_t q = degree - i;
                sums[q] = both(sums[q], sums[q - 1], add);
            });
            sums[0] = both(sums[0], widen(v), add);
        });
        unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA { store(columns[q] + column, bitCast<uint64_t>(sums[q])); });
    }
    BinomialSums<uint64_t> s = {};
    for (size_t column = end; column-- > first;) {
        uint64_t ofColumn[degree + 1];
        unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA { ofColumn[q] = columns[q][column]; });
        s.addColumnBefore<degree>(ofColumn);
    }
    return s;
}

template <unsigned degree, bool binary>
RVK_INLINE RawMoments tileMoments(const int32_t* p, size_t rowElements, size_t height, size_t first, size_t end)
{
    return binomialSums<degree, binary>(p, rowElements, height, first, end).template toRawMoments<int64_t>();
}

// ---- floats -------------------------------------------------------------------------------------

// Whether a number is 0 is asked of its bits, because subnormals are not.
RVK_INLINE Vec<float> onesForNumbers(Vec<float> v)
{
    const Vec<uint32_t> magnitude = shiftLeft(bitCast<uint32_t>(v), 1);
    const Vec<uint32_t> one = bitCast<uint32_t>(splat(1.0f));
    return bitCast<float>(select(equal(magnitude, zero<uint32_t>()), zero<uint32_t>(), one));
}

#if defined(__arm__) // has no vectors of doubles

RVK_INLINE RawMoments sumColumns(const MomentColumns<float32_t>& columns, size_t first, size_t end)
{
    return momentsOfColumns(columns, first, end);
}

#else

// The same with the sums of an order beside each other: a third of the time of scalar sums.
RVK_INLINE RawMoments sumColumns(const MomentColumns<float32_t>& columns, size_t first, size_t end)
{
    using Four __attribute__((vector_size(32))) = double;
    Four order0 = {}, order1 = {}, order2 = {};
    double order3 = 0;
    for (size_t column = first; column < end; ++column) {
        const double x = static_cast<double>(column - first);
        const Four powers = {1, x, x * x, x * x * x};
        order0 += powers * static_cast<double>(columns[0][column]);
        order1 += powers * static_cast<double>(columns[1][column]);
        order2 += powers * static_cast<double>(columns[2][column]);
        order3 += columns[3][column];
    }
    return {order0[0], order0[1], order1[0], order0[2], order1[1], order2[0], order0[3], order1[2], order2[1], order3};
}

#endif

// Powers of the rows, or columns, of a tile.
template <class Number>
struct Powers
{
    Number of[kMomentTile][4] = {};

    constexpr Powers()
    {
        for (uint32_t i = 0; i < kMomentTile; ++i)
            for (uint32_t power = 0, value = 1; power < 4; ++power, value *= i)
                of[i][power] = static_cast<Number>(value);
    }
};
constexpr Powers<float> kPowers;

// Sums down some vectors of columns. loadPart(row, number) loads one of them.
template <unsigned degree, bool binary, size_t count, class Load>
RVK_INLINE void sumDown(const float32_t* row, size_t rowElements, size_t height, Vecs<float, count> (&sums)[degree + 1],
                        Load loadPart)
{
    for (size_t y = 0; y < height; ++y, row += rowElements) {
        const float* const weights = kPowers.of[y];
        unrolled<count>([&](auto part) RVK_INLINE_LAMBDA {
            Vec<float> v = loadPart(row, part);
            if constexpr (binary)
                v = onesForNumbers(v);
            sums[0][part] = sums[0][part] + v;
            unrolled<degree>(
                [&](auto q) RVK_INLINE_LAMBDA { sums[q + 1][part] = sums[q + 1][part] + splat(weights[q + 1]) * v; });
        });
    }
}

template <unsigned degree, bool binary>
RVK_INLINE RawMoments tileMoments(const float32_t* p, size_t rowElements, size_t height, size_t first, size_t end)
{
    constexpr size_t lanes = Vec<float>::lanes;
    MomentColumns<float32_t> columns = {};
    for (size_t column = 0; column < kMomentTile; column += 2 * lanes) {
        Vecs<float, 2> sums[degree + 1] = {};
        sumDown<degree, binary>(p + column, rowElements, height, sums,
                                [](const float* row, size_t part)
                                    RVK_INLINE_LAMBDA { return load(row + part * lanes); });
        unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA { store(columns[q] + column, sums[q]); });
    }
    return degree == 1 ? firstMomentsOfColumns(columns, first, end) : sumColumns(columns, first, end);
}

// ---- pictures -----------------------------------------------------------------------------------

// As addTile, of as much as the degree asks for.
template <unsigned degree>
RVK_INLINE void add(RawMoments& sums, const RawMoments& tile, uint32_t x, uint32_t y)
{
    if constexpr (degree == 3) {
        addTile(sums, tile, x, y);
    } else {
        sums.m00 += tile.m00;
        sums.m10 += tile.m10 + static_cast<double>(x) * tile.m00;
        sums.m01 += tile.m01 + static_cast<double>(y) * tile.m00;
    }
}

// A tile takes whole rows of kMomentTile columns: the last ones of a row begin where they end with the picture, and the
// columns before `first` do not count. Those of a narrower picture are copied.
template <unsigned degree, bool binary, class T>
RVK_NOINLINE RawMoments rawMoments(const T* src, uint32_t width, uint32_t height, uint32_t stride)
{
    const bool isNarrow = width < kMomentTile;
    T copy[kMomentTile * kMomentTile];
    if (isNarrow)
        __builtin_memset(copy, 0, sizeof copy);
    const Plane<const T> plane{src, stride};
    RawMoments sums = {};
    for (uint32_t y = 0; y < height;) {
        const uint32_t rows = height - y < kMomentTile ? height - y : kMomentTile;
        for (uint32_t x = 0; x < width;) {
            const uint32_t columns = width - x < kMomentTile ? width - x : kMomentTile;
            const uint32_t first = isNarrow ? 0 : kMomentTile - columns;
            const T* tile = plane.row(y) + x - first;
            size_t rowElements = stride / sizeof(T);
            if (isNarrow) {
                for (size_t i = 0; i < rows; ++i)
                    __builtin_memcpy(copy + i * kMomentTile, tile + i * rowElements, columns * sizeof(T));
                tile = copy;
                rowElements = kMomentTile;
            }
            add<degree>(sums, tileMoments<degree, binary>(tile, rowElements, rows, first, first + columns), x, y);
            x += columns;
        }
        y += rows;
    }
    return sums;
}

#if defined(__AVX512VNNI__) // a third to a half of the time of single tiles

// ---- the same of several tiles beside each other, a lane for each ----------------------------------------------------

struct MomentVectors
{
    Doubles m00, m10, m01, m20, m11, m02, m30, m21, m12, m03;
};

// Those of bytes have the even tiles first.
template <class T>
constexpr size_t laneOfTile(size_t tile)
{
    return isSame<T, uint8_t> ? tile / 2 + tile % 2 * (kTilesBeside / 2) : tile;
}

// The first columns of tiles, lane by lane.
template <class T>
struct LeftSides
{
    float of[kTilesBeside] = {};

    constexpr LeftSides()
    {
        for (size_t tile = 0; tile < kTilesBeside; ++tile)
            of[laneOfTile<T>(tile)] = static_cast<float>(tile * kMomentTile);
    }
};
template <class T>
constexpr LeftSides<T> kLeftSides;

// How many moments of a picture of numbers from 0 to `most`, in their order, are sums that doubles hold.
RVK_INLINE size_t exactMoments(size_t most, size_t width, size_t height)
{
    constexpr double held = 1ull << 53;
    constexpr size_t ofOrders[] = {0, 1, 3, 6, 10};
    const double side = static_cast<double>(width < height ? height : width);
    double sum = static_cast<double>(most) * static_cast<double>(width) * static_cast<double>(height);
    unsigned orders = 0;
    for (; orders < 4 && sum <= held * (orders + 1); ++orders) // of an order: at most sum / (order + 1)
        sum *= side;
    return ofOrders[orders];
}

// The sums of a picture. It does not matter in which order those are added that are exact: so each lane has its own.
// The others are added tile by tile, as by addTile.
template <class T>
class MomentSums
{
public:
    explicit RVK_INLINE MomentSums(size_t exact) : m_exact(exact) {}

    // Of tiles that do not exist, exact moments are 0.
    template <unsigned degree>
    RVK_INLINE void add(const MomentVectors& moments, size_t tiles)
    {
        Doubles of[kMoments];
        static_assert(sizeof of == sizeof moments);
        __builtin_memcpy(of, &moments, sizeof of);
        for (size_t i = 0; i < m_exact; ++i)
            m_lanes[i] = m_lanes[i] + of[i];
        for (size_t i = m_exact; i < (degree == 3 ? kMoments : 3); ++i)
            for (size_t tile = 0; tile < tiles; ++tile)
                m_sums[i] += of[i].raw[laneOfTile<T>(tile)];
    }
    RVK_INLINE RawMoments total() const
    {
        double s[kMoments];
        for (size_t i = 0; i < kMoments; ++i) {
            s[i] = m_sums[i];
            for (size_t lane = 0; lane < Doubles::lanes; ++lane)
                s[i] += m_lanes[i].raw[lane];
        }
        return {s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], s[8], s[9]};
    }

private:
    static constexpr size_t kMoments = sizeof(MomentVectors) / sizeof(Doubles);

    size_t m_exact;
    double m_sums[kMoments] = {};
    Doubles m_lanes[kMoments] = {};
};

// Bytes.
template <unsigned degree, bool binary>
RVK_INLINE MomentVectors momentsOfTiles(const uint8_t* p, size_t rowElements, size_t columns, size_t rows)
{
    TileMoments m;
    takeTileMoments<binary>(p, rowElements, columns, rows, &m);
    const auto first = [](Vec<uint32_t> v) RVK_INLINE_LAMBDA { return firstToDoubles(v); };
    const auto second = [](Vec<uint32_t> v) RVK_INLINE_LAMBDA { return firstToDoubles(extract<kTilesBeside>(v, v)); };
    return {first(m.m00m10), second(m.m00m10), first(m.m01m11), first(m.m20m30),  second(m.m01m11),
            first(m.m02m12), second(m.m20m30), first(m.m21),    second(m.m02m12), first(m.m03)};
}

constexpr Powers<double> kDoublePowers;

// Adds those of the next column, given its sums.
template <unsigned degree>
RVK_INLINE void addColumn(MomentVectors& m, const Doubles (&sums)[degree + 1], const double (&powers)[4])
{
    const auto add = [&](Doubles& moment, size_t power, size_t q)
                         RVK_INLINE_LAMBDA { moment = addExactProduct(moment, splatDouble(powers[power]), sums[q]); };
    m.m00 = m.m00 + sums[0];
    add(m.m10, 1, 0);
    m.m01 = m.m01 + sums[1];
    if constexpr (degree == 3) {
        add(m.m20, 2, 0);
        add(m.m11, 1, 1);
        m.m02 = m.m02 + sums[2];
        add(m.m30, 3, 0);
        add(m.m21, 2, 1);
        add(m.m12, 1, 2);
        m.m03 = m.m03 + sums[3];
    }
}

// Floats: what has been summed down the columns of each tile is transposed to be summed along its rows.
template <unsigned degree, bool binary>
RVK_INLINE MomentVectors momentsOfTiles(const float32_t* p, size_t rowElements, size_t columns, size_t rows)
{
    constexpr size_t lanes = Vec<float>::lanes;
    static_assert(kMomentTile == 2 * lanes && kTilesBeside == Doubles::lanes);
    Vec<float> down[degree + 1][2][kTilesBeside] = {}; // by order, half of the columns, and tile
    const auto sumTiles = [&](auto count, size_t tile, auto loadPart) RVK_INLINE_LAMBDA {
        Vecs<float, 2 * count> sums[degree + 1] = {};
        sumDown<degree, binary>(p + tile * kMomentTile, rowElements, rows, sums, loadPart);
        unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA {
            unrolled<2 * count>([&](auto i) RVK_INLINE_LAMBDA { down[q][i % 2][tile + i / 2] = sums[q][i]; });
        });
    };
    constexpr size_t together = degree == 1 ? 2 : 1; // or one sum would wait for the other
    for (size_t tile = 0; tile * kMomentTile < columns;) {
        const size_t available = columns - tile * kMomentTile;
        if (available >= together * kMomentTile) {
            sumTiles(Constant<together>{}, tile, [](const float* row, size_t part) RVK_INLINE_LAMBDA {
                const float* const at = row + part * lanes;
                if constexpr (degree == 3) // less is done before the next tile would have come
                    prefetch(at + kMomentTile, 1);
                return load(at);
            });
            tile += together;
        } else {
            sumTiles(Constant<1>{}, tile, [=](const float* row, size_t part) RVK_INLINE_LAMBDA {
                const size_t before = least(part * lanes, available);
                return loadPartial(row + before, least(available - before, lanes));
            });
            ++tile;
        }
    }
    unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA {
        transposeTiles(down[q][0]);
        transposeTiles(down[q][1]);
    });
    MomentVectors m = {};
    for (size_t column = 0, end = anyNumber(kMomentTile); column < end; ++column) {
        Doubles sums[degree + 1];
        unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA {
            sums[q] = loadToDoubles(reinterpret_cast<const float*>(down[q]) + column * kTilesBeside);
        });
        addColumn<degree>(m, sums, kDoublePowers.of[column]);
    }
    return m;
}

// C(y, p) for two rows of a tile, the upper one in the lower halves of words, and their sums over all rows before.
struct RowPairs
{
    static constexpr size_t count = kMomentTile / 2;
    uint32_t weights[count][4] = {};
    uint32_t sums[count + 1][4] = {};

    constexpr RowPairs()
    {
        uint32_t binomials[4] = {1, 0, 0, 0};
        for (size_t pair = 0; pair < count; ++pair)
            for (uint32_t row = 0; row < 2; ++row) {
                for (size_t p = 0; p < 4; ++p) {
                    weights[pair][p] |= binomials[p] << 16 * row;
                    sums[pair + 1][p] = (row ? sums[pair + 1][p] : sums[pair][p]) + binomials[p];
                }
                for (size_t p = 3; p > 0; --p)
                    binomials[p] += binomials[p - 1];
            }
    }
};
constexpr RowPairs kRowPairs;

// 32-bit integers. Their upper halves and their lower ones, less 2^15, are summed down each column apart, two rows at
// once, which fits 32 bits: in each 16 bytes both halves of a column, then those of the next one. Part i of 16 columns
// has the columns 4 * b + 2 * i and the one after it of each block b of 16 bytes.
struct SumsOfHalves
{
    static constexpr size_t orders = 4, parts = kMomentTile / Vec<int64_t>::lanes;
    Vec<int32_t> of[orders][parts];

    // loadAt(y, x) loads elements of the tile.
    template <bool binary, class Load>
    RVK_INLINE void take(size_t pairsOfRows, Load loadAt)
    {
        unrolled<orders>([&](auto q) RVK_INLINE_LAMBDA {
            for (Vec<int32_t>& sum : of[q])
                sum = bitCast<int32_t>(splat(uint64_t{kRowPairs.sums[pairsOfRows][q]} << 15));
        });
        for (size_t pair = 0; pair < pairsOfRows; ++pair)
            unrolled<parts / 2>([&](auto half) RVK_INLINE_LAMBDA {
                const auto halvesOf = [&](size_t y) RVK_INLINE_LAMBDA {
                    Vec<int32_t> v = loadAt(y, half * Vec<int32_t>::lanes);
                    if constexpr (binary)
                        v = select(equal(v, zero<int32_t>()), v, splat<int32_t>(1));
                    return bitCast<int16_t>(v ^ splat<int32_t>(1 << 15));
                };
                const Vecs<int16_t, 2> two = zipInLanes(halvesOf(2 * pair), halvesOf(2 * pair + 1));
                unrolled<orders>([&](auto q) RVK_INLINE_LAMBDA {
                    const Vec<int16_t> weights = bitCast<int16_t>(splat(kRowPairs.weights[pair][q]));
                    of[q][2 * half] = addDotPairs(of[q][2 * half], two[0], weights);
                    of[q][2 * half + 1] = addDotPairs(of[q][2 * half + 1], two[1], weights);
                });
            });
    }
};

RVK_INLINE Vec<int64_t> joinHalves(Vec<int32_t> v)
{
    const Vec<int64_t> halves = bitCast<int64_t>(v), low = splat<int64_t>(UINT32_MAX);
    return (halves & low) + shiftRight(halves & ~low, 16);
}

RVK_INLINE Doubles toDoubles(Vec<int64_t> v)
{
    return {__builtin_convertvector(v.raw, Doubles::Raw)};
}

// take(number, pairs of rows, loadAt) for the tiles of which the first columns and rows exist; loadAt(y, x) loads elements
// of one, zeros where there is none.
template <class Take>
RVK_INLINE void forTiles(const int32_t* p, size_t rowElements, size_t columns, size_t rows, Take take)
{
    constexpr size_t lanes = Vec<int32_t>::lanes;
    static_assert(kMomentTile == 2 * lanes);
    for (size_t tile = 0; tile < kTilesBeside; ++tile) {
        const size_t left = least(tile * kMomentTile, columns), available = columns - left;
        const int32_t* const first = p + left;
        const size_t pairsOfRows = available ? (rows + 1) / 2 : 0;
        if (available >= kMomentTile && rows % 2 == 0)
            take(tile, pairsOfRows, [=](size_t y, size_t x) RVK_INLINE_LAMBDA {
                const int32_t* const at = first + y * rowElements + x;
                prefetch(at + kMomentTile, 1); // of the next tile
                return load(at);
            });
        else
            take(tile, pairsOfRows, [=](size_t y, size_t x) RVK_INLINE_LAMBDA {
                const size_t before = least(x, available);
                const size_t count = y < rows ? least(available - before, lanes) : 0;
                return loadPartial(first + (count ? y * rowElements + before : 0), count);
            });
    }
}

template <unsigned degree, bool binary>
requires(degree == 3) RVK_INLINE MomentVectors
    momentsOfTiles(const int32_t* p, size_t rowElements, size_t columns, size_t rows)
{
    constexpr size_t parts = SumsOfHalves::parts;
    Vec<int64_t> down[degree + 1][parts][kTilesBeside]; // by order, part of the columns, and tile
    forTiles(p, rowElements, columns, rows, [&](size_t tile, size_t pairsOfRows, auto loadAt) RVK_INLINE_LAMBDA {
        SumsOfHalves sums;
        sums.take<binary>(pairsOfRows, loadAt);
        unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA {
            unrolled<parts>([&](auto i) RVK_INLINE_LAMBDA { down[q][i][tile] = joinHalves(sums.of[q][i]); });
        });
    });
    unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA {
        for (auto& part : down[q])
            transposeTiles(part);
    });
    BinomialSums<Vec<int64_t>> sums = {};
    for (size_t column = kMomentTile; column-- > 0;) {
        const size_t part = column / 16 * 2 + column / 2 % 2, lane = column % 16 / 4 * 2 + column % 2;
        Vec<int64_t> ofColumn[degree + 1];
        unrolled<degree + 1>([&](auto q) RVK_INLINE_LAMBDA { ofColumn[q] = down[q][part][lane]; });
        sums.template addColumnBefore<degree>(ofColumn);
    }
    return sums.template toMoments<MomentVectors>([](Vec<int64_t> sum) RVK_INLINE_LAMBDA { return toDoubles(sum); });
}

// Sums of 32-bit integers: of their upper halves, and of all modulo 2^32, which tells what the lower halves add to that,
// since it is less. An addition and half a sum of products for each.
struct SumInParts
{
    Vec<int32_t> upper = {}, low = {};

    RVK_INLINE Vec<int32_t> lower() const { return low - shiftLeft(upper, 16); }
};

// Down the columns of a tile, of which a vector has half: of elements, and of these times their rows.
struct FirstSumsOfColumns
{
    SumInParts all[2], down[2];

    // From the last two rows to the first, so that additions weigh by rows. loadAt(y, x) loads elements of the tile.
    template <class Load>
    RVK_INLINE void add(size_t pairsOfRows, Load loadAt)
    {
        while (pairsOfRows-- > 0) {
            const Vec<int16_t> weights = bitCast<int16_t>(splat(kRowPairs.weights[pairsOfRows][1]));
            unrolled<2>([&](auto half) RVK_INLINE_LAMBDA {
                const Vec<int32_t> above = loadAt(2 * pairsOfRows, half * Vec<int32_t>::lanes);
                const Vec<int32_t> below = loadAt(2 * pairsOfRows + 1, half * Vec<int32_t>::lanes);
                addRow(half, below);
                addRow(half, above);
                const Vec<int16_t> upper = joinUpperHalves(above, below);
                all[half].upper = addDotPairs(all[half].upper, upper, splat<int16_t>(1));
                down[half].upper = addDotPairs(down[half].upper, upper, weights);
            });
        }
    }

private:
    RVK_INLINE void addRow(size_t half, Vec<int32_t> row)
    {
        down[half].low = down[half].low + all[half].low;
        all[half].low = all[half].low + row;
    }
};

template <unsigned degree, bool binary>
requires(degree == 1) RVK_INLINE MomentVectors
    momentsOfTiles(const int32_t* p, size_t rowElements, size_t columns, size_t rows)
{
    // What is left to add up of each tile, of upper halves, then of lower ones: that fits 32 bits, too.
    Vec<int32_t> m00[2 * kTilesBeside], m10[2 * kTilesBeside], m01[2 * kTilesBeside];
    const Vec<int32_t> column = iota<int32_t>();
    forTiles(p, rowElements, columns, rows, [&](size_t tile, size_t pairsOfRows, auto loadAt) RVK_INLINE_LAMBDA {
        FirstSumsOfColumns sums;
        sums.add(pairsOfRows, loadAt);
        const auto put = [&](size_t i, Vec<int32_t> left, Vec<int32_t> right, Vec<int32_t> down) RVK_INLINE_LAMBDA {
            m00[i] = left + right;
            m10[i] = column * m00[i] + shiftLeft(right, 4);
            m01[i] = down;
        };
        const auto& [all, down] = sums;
        put(tile, all[0].upper, all[1].upper, down[0].upper + down[1].upper);
        put(kTilesBeside + tile, all[0].lower(), all[1].lower(), down[0].lower() + down[1].lower());
    });
    const auto total = [](const Vec<int32_t>(&m)[2 * kTilesBeside]) RVK_INLINE_LAMBDA {
        const DoublePoints<2> parts = toDoubles(sumsOf(m));
        return addExactProduct(parts[1], splatDouble(1 << 16), parts[0]);
    };
    MomentVectors m = {};
    m.m00 = total(m00);
    m.m10 = total(m10);
    m.m01 = total(m01);
    return m;
}

template <unsigned degree, bool binary, class T>
RVK_NOINLINE RawMoments sumOfTiles(const T* src, size_t width, size_t height, uint32_t stride)
{
    constexpr size_t columnsBeside = kTilesBeside * kMomentTile;
    const Plane<const T> plane{src, stride};
    MomentSums<T> sums(isSame<T, uint8_t> ? exactMoments(binary ? 1 : UINT8_MAX, width, height) : 0);
    for (size_t y = 0; y < height; y += kMomentTile)
        for (size_t x = 0; x < width; x += columnsBeside) {
            const size_t columns = least(width - x, columnsBeside), rows = least(height - y, kMomentTile);
            const MomentVectors tiles =
                momentsOfTiles<degree, binary>(plane.row(y) + x, stride / sizeof(T), columns, rows);
            const Doubles left = splatDouble(static_cast<double>(x)) + loadToDoubles(kLeftSides<T>.of);
            sums.template add<degree>(movedTile(tiles, left, splatDouble(static_cast<double>(y))),
                                      (columns + kMomentTile - 1) / kMomentTile);
        }
    return sums.total();
}

#endif

// By several tiles at once where there is a way to, and enough of them.
template <unsigned degree, bool binary, class T>
RVK_INLINE RawMoments momentsOf(const T* src, uint32_t width, uint32_t height, uint32_t stride)
{
#if defined(__AVX512VNNI__)
    constexpr bool isByte = isSame<T, uint8_t>;
    constexpr uint32_t fewestTiles = isByte ? 1 : isSame<T, float32_t> ? 2 : 4;
    if constexpr (!isByte || degree == 3)
        if (isByte || width > (fewestTiles - 1) * kMomentTile)
            return sumOfTiles<degree, binary>(src, width, height, stride);
#endif
    return rawMoments<degree, binary>(src, width, height, stride);
}

template <class T>
RVK_INLINE RawMoments allMoments(const T* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary)
{
    return binary ? momentsOf<3, true>(src, width, height, stride) : momentsOf<3, false>(src, width, height, stride);
}

template <class Sum>
RVK_INLINE FirstMoments rounded(Sum m00, Sum m10, Sum m01)
{
    return {static_cast<float32_t>(m00), static_cast<float32_t>(m10), static_cast<float32_t>(m01)};
}

template <class T>
RVK_INLINE FirstMoments roundedFirstMoments(const T* src, uint32_t width, uint32_t height, uint32_t stride)
{
    const RawMoments raw = momentsOf<1, false>(src, width, height, stride);
    return rounded(raw.m00, raw.m10, raw.m01);
}

} // namespace

FirstMoments firstMoments(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
#if defined(__AVX512VNNI__) // a third of the time: sums that doubles hold need no tiles
    constexpr uint32_t longestSide = 1 << 15;
    if (width <= longestSide && height <= longestSide) {
        const FirstSums sums = firstSums(src, width, height, stride);
        const auto exact = [](uint64_t sum) { return static_cast<double>(sum); };
        return rounded(exact(sums.s00), exact(sums.s10), exact(sums.s01));
    }
#endif
    return roundedFirstMoments(src, width, height, stride);
}

FirstMoments firstMoments(const int32_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    return roundedFirstMoments(src, width, height, stride);
}

FirstMoments firstMoments(const float32_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    return roundedFirstMoments(src, width, height, stride);
}

void irvkTileMomentsu8V(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                        RawMoments* moments)
{
    *moments = allMoments(src, width, height, stride, binary);
}

void irvkTileMomentss32V(const int32_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                         RawMoments* moments)
{
    *moments = allMoments(src, width, height, stride, binary);
}

void irvkTileMomentsf32V(const float32_t* src, uint32_t width, uint32_t height, uint32_t stride, uint32_t binary,
                         RawMoments* moments)
{
    *moments = allMoments(src, width, height, stride, binary);
}

rvkStatus rvkImageMomentsu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint32_t binary, rvkMoments* moments)
{
    storeMoments(allMoments(src, srcWidth, srcHeight, srcStride, binary), moments);
    return RAVIK_SUCCESS;
}

rvkStatus rvkImageMomentss32V(const int32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t binary, rvkMoments* moments)
{
    storeMoments(allMoments(src, srcWidth, srcHeight, srcStride, binary), moments);
    return RAVIK_SUCCESS;
}

rvkStatus rvkImageMomentsf32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t binary, rvkMoments* moments)
{
    storeMoments(allMoments(src, srcWidth, srcHeight, srcStride, binary), moments);
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

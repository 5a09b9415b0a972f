// Vector implementations of the scalers of any ratio.
//
// Which pixels make a column, and with which weights, is worked out once and kept in a table. A row of the source is scaled
// across by it once; rows of the destination are made of those, of which a ring is kept.
#include "cpu/ravikResizeC.h"
#include "scratch.h"
#include "vecta/simd/rows.h"
#include "vecta/simd/taps.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

RVK_INLINE const uint8_t* sourceRow(const Resizing& r, size_t y)
{
    return r.src + y * r.srcStride;
}
RVK_INLINE uint8_t* targetRow(const Resizing& r, size_t y)
{
    return r.dst + y * r.dstStride;
}

bool isCopy(const Resizing& r)
{
    return r.srcWidth == r.dstWidth && r.srcHeight == r.dstHeight;
}

void copyRows(const Resizing& r, size_t pixelSize)
{
    for (size_t y = 0; y < r.srcHeight; ++y)
        __builtin_memcpy(targetRow(r, y), sourceRow(r, y), r.srcWidth * pixelSize);
}

// ---- where pixels lie -----------------------------------------------------------------------------------------------

// first / denominator, (first + step) / denominator, ..., rounded down, with one division for all.
class Quotients
{
public:
    RVK_INLINE Quotients(int64_t first, int64_t step, int64_t denominator)
        : m_denominator(denominator), m_step(step / denominator), m_stepRest(step % denominator),
          m_value(first / denominator - (first % denominator < 0)), m_rest(first - m_value * denominator)
    {
    }
    RVK_INLINE int64_t value() const { return m_value; }
    RVK_INLINE int64_t rest() const { return m_rest; } // of the dividend
    RVK_INLINE void next()
    {
        m_value += m_step;
        m_rest += m_stepRest;
        if (m_rest >= m_denominator) {
            m_rest -= m_denominator;
            ++m_value;
        }
    }

private:
    int64_t m_denominator, m_step, m_stepRest, m_value, m_rest;
};

// What positionOf gives for 0, 1, 2, ...
class Positions : private Quotients
{
public:
    RVK_INLINE explicit Positions(Axis axis)
        : Quotients((int64_t{axis.from} - axis.to) * kFractions + axis.to, int64_t{axis.from} * (2 * kFractions),
                    2 * int64_t{axis.to})
    {
    }
    RVK_INLINE int64_t pixel() const { return value() >> kFractionBits; }
    RVK_INLINE uint32_t fraction() const { return static_cast<uint32_t>(value()) % kFractions; }
    using Quotients::next;
};

// The same of pixelAtCentre, and of firstWholePixel.
RVK_INLINE Quotients pixelsAtCentres(Axis axis)
{
    return {axis.from, 2 * int64_t{axis.from}, 2 * int64_t{axis.to}};
}
RVK_INLINE Quotients firstWholePixels(Axis axis)
{
    return {0, axis.from, axis.to};
}

// And of coverageOf.
class Coverages : private Quotients
{
public:
    RVK_INLINE explicit Coverages(Axis axis) : Quotients(0, axis.from, axis.to), m_axis(axis) {}
    RVK_INLINE size_t first() const { return static_cast<size_t>(value()); }
    RVK_INLINE uint32_t firstWeight() const
    {
        return static_cast<uint32_t>(least(m_axis.to - static_cast<size_t>(rest()), m_axis.from));
    }
    using Quotients::next;

private:
    Axis m_axis;
};

RVK_INLINE size_t inside(int64_t i, size_t size)
{
    return i < 0 ? 0 : least(static_cast<size_t>(i), size - 1);
}

// ---- rows scaled across ---------------------------------------------------------------------------------------------

constexpr size_t kWindowsOfStep = kBytes / kWindow;

// The bytes of a row of the destination as sums of bytes of a row of the source. Steps reach beyond the end, where they
// have the last column again and again.
template <class Sum>
class Columns
{
public:
    Columns(size_t rowBytes, size_t columns)
        : m_rowBytes(rowBytes), m_columns(columns), m_steps((columns + kColumns - 1) / kColumns),
          m_places(m_steps * Sum::pairs, kBytes), m_offsets(m_steps * Sum::pairs, kWindowsOfStep),
          m_taps(m_steps * Sum::pairs)
    {
    }
    bool exists() const { return m_places && m_offsets && m_taps; }
    size_t steps() const { return m_steps; }

    // One pair of bytes of a column, with their weights.
    RVK_INLINE void set(size_t column, size_t pair, size_t place0, size_t place1, int32_t weight0, int32_t weight1)
    {
        const size_t first = column / kColumns * Sum::pairs + pair, inStep = column % kColumns;
        uint32_t* const places = &m_places[first * kBytes];
        places[laneOfPair(inStep, 0)] = static_cast<uint32_t>(place0);
        places[laneOfPair(inStep, 1)] = static_cast<uint32_t>(place1);
        Sum::setWeights(m_taps[first], inStep, weight0, weight1);
    }
    // After the last one.
    void finish();

    bool hasWindows() const { return m_hasWindows; }

    void sum(const uint8_t* row0, const uint8_t* row1, int16_t* dst0, int16_t* dst1) const;

private:
    bool makeWindows();
    RVK_INLINE Vecs<uint8_t, Sum::pairs> fetch(const uint8_t* row, size_t step) const;
    template <class Fetch>
    RVK_INLINE void sumSteps(int16_t* dst0, int16_t* dst1, Fetch fetch) const;

    size_t m_rowBytes, m_columns, m_steps;
    Scratch<uint32_t> m_places, m_offsets; // for each lane of pairs its byte of the row; for each window its first one
    Scratch<TapsOfStep> m_taps;
    bool m_hasWindows = false;
};

template <class Sum>
void Columns<Sum>::finish()
{
    const size_t last = m_columns - 1;
    for (size_t column = m_columns; column < m_steps * kColumns; ++column)
        for (size_t pair = 0; pair < Sum::pairs; ++pair) {
            const uint32_t* const places = &m_places[(last / kColumns * Sum::pairs + pair) * kBytes];
            set(column, pair, places[laneOfPair(last % kColumns, 0)], places[laneOfPair(last % kColumns, 1)], 0, 0);
        }
    m_hasWindows = makeWindows();
}

// Whether each window holds all the bytes that are to be taken from it; then the indices are known.
template <class Sum>
bool Columns<Sum>::makeWindows()
{
    const size_t lastWindow = m_rowBytes < kWindow ? 0 : m_rowBytes - kWindow;
    for (size_t window = 0; window < m_steps * Sum::pairs * kWindowsOfStep; ++window) {
        const uint32_t* const places = &m_places[window * kWindow];
        uint32_t first = places[0], last = first;
        for (size_t i = 1; i < kWindow; ++i) {
            first = places[i] < first ? places[i] : first;
            last = places[i] > last ? places[i] : last;
        }
        if (last - first >= kWindow)
            return false;
        const uint32_t offset = static_cast<uint32_t>(least(first, lastWindow));
        m_offsets[window] = offset;
        uint8_t* const indices = m_taps[window / kWindowsOfStep].indices + window % kWindowsOfStep * kWindow;
        for (size_t i = 0; i < kWindow; ++i)
            indices[i] = static_cast<uint8_t>(places[i] - offset);
    }
    return true;
}

template <class Sum>
RVK_INLINE Vecs<uint8_t, Sum::pairs> Columns<Sum>::fetch(const uint8_t* row, size_t step) const
{
    Vecs<uint8_t, Sum::pairs> pixels;
    unrolled<Sum::pairs>([&](auto i) RVK_INLINE_LAMBDA {
        const size_t n = step * Sum::pairs + i;
        pixels[i] = lookupWindows<1>(row, &m_offsets[n * kWindowsOfStep], load(m_taps[n].indices));
    });
    return pixels;
}

template <class Sum>
template <class Fetch>
RVK_INLINE void Columns<Sum>::sumSteps(int16_t* dst0, int16_t* dst1, Fetch fetchStep) const
{
    for (size_t step = 0; step < m_steps; ++step) {
        const TapsOfStep* const taps = &m_taps[step * Sum::pairs];
        store(dst0 + step * kColumns, Sum::sum(fetchStep(0, step), taps));
        store(dst1 + step * kColumns, Sum::sum(fetchStep(1, step), taps));
    }
}

// Two rows at a time: they share what is read from the table.
template <class Sum>
RVK_NOINLINE void Columns<Sum>::sum(const uint8_t* row0, const uint8_t* row1, int16_t* dst0, int16_t* dst1) const
{
    uint8_t padded[2][kWindow] = {};
    if (m_rowBytes < kWindow) {
        __builtin_memcpy(padded[0], row0, m_rowBytes);
        __builtin_memcpy(padded[1], row1, m_rowBytes);
        row0 = padded[0];
        row1 = padded[1];
    }
    if (m_hasWindows) {
        sumSteps(dst0, dst1,
                 [&](size_t i, size_t step) RVK_INLINE_LAMBDA { return fetch(i == 0 ? row0 : row1, step); });
        return;
    }
    sumSteps(dst0, dst1, [&](size_t i, size_t step) RVK_INLINE_LAMBDA {
        const uint8_t* const row = i == 0 ? row0 : row1;
        const uint32_t* const places = &m_places[step * Sum::pairs * kBytes];
        uint8_t bytes[Sum::pairs * kBytes];
        for (size_t lane = 0; lane < Sum::pairs * kBytes; ++lane)
            bytes[lane] = row[places[lane]];
        return loadVecs<Sum::pairs>(bytes);
    });
}

// The last `count` rows that were scaled, and one more, since two are scaled at a time.
template <class Sum, size_t count>
class ScaledRows
{
public:
    ScaledRows(const Resizing& r, const Columns<Sum>& columns)
        : m_picture(r), m_columns(columns), m_stride(roundedUp(columns.steps() * kColumns, kBytes) + kBytes),
          m_rows(count, m_stride)
    {
        for (uint32_t& held : m_held)
            held = UINT32_MAX;
    }
    bool exists() const { return static_cast<bool>(m_rows); }

    // Row y of the source; stays until a row is wanted that is `count` - 1 further down.
    RVK_INLINE const int16_t* at(size_t y)
    {
        if (m_held[y % count] != y)
            scaleFrom(y);
        return &m_rows[y % count * m_stride];
    }

private:
    void scaleFrom(size_t y)
    {
        const size_t next = least(y + 1, m_picture.srcHeight - 1);
        m_columns.sum(sourceRow(m_picture, y), sourceRow(m_picture, next), &m_rows[y % count * m_stride],
                      &m_rows[(y + 1) % count * m_stride]);
        m_held[y % count] = static_cast<uint32_t>(y);
        m_held[(y + 1) % count] = static_cast<uint32_t>(y + 1);
    }

    const Resizing& m_picture;
    const Columns<Sum>& m_columns;
    size_t m_stride;
    Scratch<int16_t> m_rows;
    uint32_t m_held[count];
};

// dst = formula(x) for columns `begin` to `end` - 1, kBytes at a time; the last time fewer may count.
template <class Formula>
RVK_INLINE void mapColumns(size_t begin, size_t end, uint8_t* dst, Formula formula)
{
    size_t x = begin;
    for (; x + kBytes <= end; x += kBytes)
        store(dst + x, formula(x));
    if (x < end)
        storePartial(dst + x, formula(x), end - x);
}

// ---- bilinear -------------------------------------------------------------------------------------------------------

RVK_NOINLINE void interpolateRows(size_t begin, size_t end, const int16_t* upper, const int16_t* lower,
                                  uint32_t fraction, uint8_t* dst)
{
    const Vec<int16_t> weight = splat(static_cast<int16_t>(fraction << (15 - kFractionBits)));
    mapColumns(begin, end, dst, [=](size_t x) RVK_INLINE_LAMBDA {
        return narrowRounded<uint8_t, 7>(both(loadVecs<2>(upper + x), loadVecs<2>(lower + x),
                                              [=](auto a, auto b)
                                                  RVK_INLINE_LAMBDA { return Interpolation::between(a, b, weight); }));
    });
}

// False when there is no scratch memory.
bool interpolate(const Resizing& r, const Rectangle& part)
{
    Columns<Interpolation> columns(r.srcWidth, r.dstWidth);
    if (!columns.exists())
        return false;
    Positions column(columnsOf(r));
    for (size_t x = 0; x < r.dstWidth; ++x, column.next())
        columns.set(x, 0, inside(column.pixel(), r.srcWidth), inside(column.pixel() + 1, r.srcWidth), 0,
                    static_cast<int32_t>(column.fraction()));
    columns.finish();

    ScaledRows<Interpolation, 4> rows(r, columns);
    if (!rows.exists())
        return false;
    Positions row(rowsOf(r));
    for (size_t y = 0; y < part.bottom; ++y, row.next()) {
        if (y < part.top)
            continue;
        const size_t upper = inside(row.pixel(), r.srcHeight);
        const size_t lower = row.fraction() ? inside(row.pixel() + 1, r.srcHeight) : upper;
        const int16_t* const upperRow = rows.at(upper);
        interpolateRows(part.left, part.right, upperRow, rows.at(lower), row.fraction(), targetRow(r, y));
    }
    return true;
}

void scaleBilinear(const Resizing& r, uint32_t borderType, uint8_t borderValue)
{
    if (isCopy(r)) {
        copyRows(r, 1);
        return;
    }
    const uint32_t width = r.dstWidth, height = r.dstHeight;
    const Rectangle part = borderType == RAVIK_BORDER_REPLICATE ? Rectangle{0, 0, width, height} : interiorOf(r);
    if (!interpolate(r, part))
        interpolatePart(r, part, {true, 0});
    if (borderType == RAVIK_BORDER_CONSTANT) {
        const Outside outside = {false, borderValue};
        interpolatePart(r, {0, 0, width, part.top}, outside);
        interpolatePart(r, {0, part.top, part.left, part.bottom}, outside);
        interpolatePart(r, {part.right, part.top, width, part.bottom}, outside);
        interpolatePart(r, {0, part.bottom, width, height}, outside);
    }
}

// ---- cubic ----------------------------------------------------------------------------------------------------------

RVK_NOINLINE void interpolateCubicRows(size_t end, const int16_t* const (&rows)[4], const int16_t (&weights)[4],
                                       uint8_t* dst)
{
    const auto pairAt = [&](size_t k, size_t x) RVK_INLINE_LAMBDA {
        return Vecs<int16_t, 2>{load(rows[k] + x), load(rows[k + 1] + x)};
    };
    const Vecs<int16_t, 2> weights0 = {splat(weights[0]), splat(weights[1])};
    const Vecs<int16_t, 2> weights1 = {splat(weights[2]), splat(weights[3])};
    const auto columnsAt = [&](size_t x) RVK_INLINE_LAMBDA {
        const Vecs<int32_t, 2> sums = addDotInLanes(dotInLanes(pairAt(0, x), weights0), pairAt(2, x), weights1);
        return narrowSatInLanes<int16_t>(
            both(sums, [](auto half) RVK_INLINE_LAMBDA { return shiftRightRounded(half, 18); }));
    };
    mapColumns(0, end, dst, [&](size_t x) RVK_INLINE_LAMBDA {
        return narrowSat<uint8_t>(Vecs<int16_t, 2>{columnsAt(x), columnsAt(x + kColumns)});
    });
}

bool interpolateCubicInVectors(const Resizing& r, size_t pixelSize)
{
    Columns<CubicInterpolation> columns(r.srcWidth * pixelSize, r.dstWidth * pixelSize);
    if (!columns.exists())
        return false;
    int16_t weights[4];
    Positions column(columnsOf(r));
    for (size_t x = 0; x < r.dstWidth; ++x, column.next()) {
        cubicWeights(column.fraction(), weights);
        for (size_t channel = 0; channel < pixelSize; ++channel)
            for (size_t pair = 0; pair < 2; ++pair) {
                const int64_t pixel = column.pixel() - 1 + 2 * static_cast<int64_t>(pair);
                columns.set(x * pixelSize + channel, pair, inside(pixel, r.srcWidth) * pixelSize + channel,
                            inside(pixel + 1, r.srcWidth) * pixelSize + channel, weights[2 * pair],
                            weights[2 * pair + 1]);
            }
    }
    columns.finish();

    ScaledRows<CubicInterpolation, 8> rows(r, columns);
    if (!rows.exists())
        return false;
    Positions row(rowsOf(r));
    for (size_t y = 0; y < r.dstHeight; ++y, row.next()) {
        cubicWeights(row.fraction(), weights);
        const int16_t* four[4];
        for (int k = 0; k < 4; ++k)
            four[k] = rows.at(inside(row.pixel() - 1 + k, r.srcHeight));
        interpolateCubicRows(r.dstWidth * pixelSize, four, weights, targetRow(r, y));
    }
    return true;
}

void scaleCubic(const Resizing& r, uint32_t pixelSize)
{
    if (isCopy(r))
        copyRows(r, pixelSize);
    else if (!interpolateCubicInVectors(r, pixelSize))
        interpolateCubic(r, pixelSize);
}

// ---- area -----------------------------------------------------------------------------------------------------------

// (n + divisor / 2) / divisor for n up to 255 * divisor, by a multiplication where the divisor is below 2^23.
class Mean
{
public:
    RVK_INLINE explicit Mean(uint64_t divisor) : m_divisor(divisor), m_half(divisor / 2), m_factor(0), m_shift(32)
    {
        if (divisor > 1 && divisor < 1u << 23) {
            m_shift = 63 - static_cast<unsigned>(__builtin_clzll(divisor - 1)) + 32;
            m_factor = static_cast<uint32_t>(((uint64_t{1} << m_shift) + divisor - 1) / divisor);
        }
    }
    RVK_INLINE uint8_t operator()(uint64_t sum) const
    {
        const uint64_t n = sum + m_half;
        return static_cast<uint8_t>(m_factor ? n * m_factor >> m_shift : n / m_divisor);
    }

private:
    uint64_t m_divisor, m_half;
    uint32_t m_factor;
    unsigned m_shift;
};

// The same in vectors of 16 bits, where n + divisor / 2 fits and one of their multiplications gives the quotient.
struct Mean16
{
    uint16_t half = 0, factor = 0;
    unsigned shift = 0;

    RVK_INLINE explicit Mean16(uint64_t divisor)
    {
        if (divisor < 2 || divisor > 256)
            return;
        const uint64_t largest = 255 * divisor + divisor / 2;
        for (unsigned s = 0; s < 8; ++s) {
            const uint64_t power = uint64_t{1} << (16 + s), f = (power + divisor - 1) / divisor;
            if (f <= UINT16_MAX && largest * (f * divisor - power) < power) {
                half = static_cast<uint16_t>(divisor / 2);
                factor = static_cast<uint16_t>(f);
                shift = s;
            }
        }
    }
    RVK_INLINE bool exists() const { return factor != 0; }
    RVK_INLINE Vec<uint16_t> operator()(Vec<uint16_t> sum) const
    {
        return shiftRight(multiplyHigh(sum + splat(half), splat(factor)), shift);
    }
};

// Rows that one row of the destination is made of, at most.
constexpr size_t kMostRows = 7;

RVK_NOINLINE void averageRows(size_t end, size_t count, const int16_t* const (&rows)[kMostRows],
                              const uint16_t (&weights)[kMostRows], const Mean16& mean, uint8_t* dst)
{
    const auto rowAt = [&](size_t k, size_t x)
                           RVK_INLINE_LAMBDA { return bitCast<uint16_t>(load(rows[k] + x)) * splat(weights[k]); };
    mapColumns(0, end, dst, [&](size_t x) RVK_INLINE_LAMBDA {
        Vecs<uint16_t, 2> sums = {rowAt(0, x), rowAt(0, x + kColumns)};
        for (size_t k = 1; k < count; ++k)
            sums = {sums[0] + rowAt(k, x), sums[1] + rowAt(k, x + kColumns)};
        return narrow(Vecs<uint16_t, 2>{mean(sums[0]), mean(sums[1])});
    });
}

// Weights of the pixels of a coverage, the first of which has number 0.
RVK_INLINE uint32_t weightOf(const Coverages& c, Axis axis, size_t i)
{
    const size_t before = i == 0 ? 0 : c.firstWeight() + (i - 1) * axis.to;
    return i == 0                ? c.firstWeight()
           : before >= axis.from ? 0
                                 : static_cast<uint32_t>(least(axis.from - before, axis.to));
}

// The most pixels, or parts of them, that one of the destination covers.
RVK_INLINE size_t mostCovered(Axis axis)
{
    return axis.from % axis.to == 0 ? axis.from / axis.to : (axis.from - 1 + axis.to - 1) / axis.to + 1;
}

// Columns first, where sums fit 16 bits and few pixels make one. False when they do not, or without scratch memory.
template <size_t pairs>
bool averageColumnsFirst(const Resizing& r, Axis columnAxis, Axis rowAxis, const Mean16& mean)
{
    using Sum = WeightedSum<pairs>;
    Columns<Sum> columns(r.srcWidth, r.dstWidth);
    if (!columns.exists())
        return false;
    Coverages column(columnAxis);
    for (size_t x = 0; x < r.dstWidth; ++x, column.next())
        for (size_t pair = 0; pair < pairs; ++pair) {
            const size_t i = 2 * pair;
            columns.set(x, pair, least(column.first() + i, r.srcWidth - 1),
                        least(column.first() + i + 1, r.srcWidth - 1),
                        static_cast<int32_t>(weightOf(column, columnAxis, i)),
                        static_cast<int32_t>(weightOf(column, columnAxis, i + 1)));
        }
    columns.finish();
    ScaledRows<Sum, kMostRows + 1> rows(r, columns);
    if (!columns.hasWindows() || !rows.exists())
        return false;

    Coverages row(rowAxis);
    for (size_t y = 0; y < r.dstHeight; ++y, row.next()) {
        const int16_t* some[kMostRows];
        uint16_t weights[kMostRows];
        size_t count = 0;
        for (; count < kMostRows; ++count) {
            weights[count] = static_cast<uint16_t>(weightOf(row, rowAxis, count));
            if (weights[count] == 0)
                break;
            some[count] = rows.at(row.first() + count);
        }
        averageRows(r.dstWidth, count, some, weights, mean, targetRow(r, y));
    }
    return true;
}

// acc = weight * row, or that added to it.
void weighRow(size_t width, const uint8_t* __restrict row, uint32_t weight, bool isFirst, uint32_t* __restrict acc)
{
    if (isFirst)
        for (size_t x = 0; x < width; ++x)
            acc[x] = weight * row[x];
    else
        for (size_t x = 0; x < width; ++x)
            acc[x] += weight * row[x];
}

// Rows first, whatever the ratio, where sums of columns fit 32 bits. False when they do not, or without scratch memory.
bool averageRowsFirst(const Resizing& r, Axis columnAxis, Axis rowAxis)
{
    Scratch<uint32_t> sums(r.srcWidth);
    if (!sums || uint64_t{rowAxis.from} * 255 > UINT32_MAX)
        return false;
    const Mean mean(uint64_t{columnAxis.from} * rowAxis.from);
    Coverages row(rowAxis);
    for (size_t y = 0; y < r.dstHeight; ++y, row.next()) {
        for (size_t i = 0; const uint32_t weight = weightOf(row, rowAxis, i); ++i)
            weighRow(r.srcWidth, sourceRow(r, row.first() + i), weight, i == 0, sums.get());
        uint8_t* const dst = targetRow(r, y);
        Coverages column(columnAxis);
        for (size_t x = 0; x < r.dstWidth; ++x, column.next()) {
            const uint32_t* const covered = &sums[column.first()];
            uint64_t sum = uint64_t{column.firstWeight()} * covered[0];
            uint32_t rest = columnAxis.from - column.firstWeight();
            size_t i = 1;
            uint64_t whole = 0;
            for (; rest >= columnAxis.to; ++i, rest -= columnAxis.to)
                whole += covered[i];
            sum += whole * columnAxis.to;
            if (rest)
                sum += uint64_t{rest} * covered[i];
            dst[x] = mean(sum);
        }
    }
    return true;
}

void scaleArea(const Resizing& r)
{
    if (isCopy(r)) {
        copyRows(r, 1);
        return;
    }
    const Axis columns = reduced(columnsOf(r)), rows = reduced(rowsOf(r));
    const Mean16 mean(uint64_t{columns.from} * rows.from);
    const size_t pixels = mostCovered(columns);
    const bool columnsFirst = mean.exists() && columns.from < 128 && pixels <= 4 && mostCovered(rows) <= kMostRows;
    if (columnsFirst &&
        (pixels <= 2 ? averageColumnsFirst<1>(r, columns, rows, mean) : averageColumnsFirst<2>(r, columns, rows, mean)))
        return;
    if (!averageRowsFirst(r, columns, rows))
        averageAreas(r);
}

// ---- nearest --------------------------------------------------------------------------------------------------------

// For each byte of a row its byte of the source, and the windows in which that is.
class Places
{
public:
    Places(size_t rowBytes, size_t columns)
        : m_rowBytes(rowBytes), m_steps((columns + kBytes - 1) / kBytes), m_places(m_steps, kBytes),
          m_offsets(m_steps, kWindowsOfStep), m_indices(m_steps, kBytes)
    {
    }
    bool exists() const { return m_places && m_offsets && m_indices; }
    void fill(Axis axis);
    void pick(const uint8_t* row, size_t columns, uint8_t* dst) const;

private:
    bool makeWindows();

    size_t m_rowBytes, m_steps;
    Scratch<uint32_t> m_places, m_offsets;
    Scratch<uint8_t> m_indices;
    bool m_hasWindows = false;
};

void Places::fill(Axis axis)
{
    Quotients pixel = pixelsAtCentres(axis);
    for (size_t x = 0; x < m_steps * kBytes; ++x, pixel.next())
        m_places[x] = static_cast<uint32_t>(inside(pixel.value(), axis.from));
    m_hasWindows = m_rowBytes >= kWindow && makeWindows();
}

bool Places::makeWindows()
{
    for (size_t window = 0; window < m_steps * kWindowsOfStep; ++window) {
        const uint32_t* const places = &m_places[window * kWindow];
        if (places[kWindow - 1] - places[0] >= kWindow)
            return false;
        m_offsets[window] = static_cast<uint32_t>(least(places[0], m_rowBytes - kWindow));
        for (size_t i = 0; i < kWindow; ++i)
            m_indices[window * kWindow + i] = static_cast<uint8_t>(places[i] - m_offsets[window]);
    }
    return true;
}

RVK_NOINLINE void Places::pick(const uint8_t* row, size_t columns, uint8_t* dst) const
{
    if (!m_hasWindows) {
        for (size_t x = 0; x < columns; ++x)
            dst[x] = row[m_places[x]];
        return;
    }
    mapColumns(0, columns, dst, [&](size_t x) RVK_INLINE_LAMBDA {
        return lookupWindows<1>(row, &m_offsets[x / kWindow], load(&m_indices[x]));
    });
}

void scaleNearest(const Resizing& r)
{
    if (isCopy(r)) {
        copyRows(r, 1);
        return;
    }
    Places places(r.srcWidth, r.dstWidth);
    const bool hasPlaces = places.exists();
    if (hasPlaces)
        places.fill(columnsOf(r));
    Quotients row = pixelsAtCentres(rowsOf(r));
    int64_t previous = -1;
    for (size_t y = 0; y < r.dstHeight; ++y, row.next()) {
        const uint8_t* const src = sourceRow(r, static_cast<size_t>(row.value()));
        uint8_t* const dst = targetRow(r, y);
        if (row.value() == previous) {
            __builtin_memcpy(dst, targetRow(r, y - 1), r.dstWidth);
        } else if (hasPlaces) {
            places.pick(src, r.dstWidth, dst);
        } else {
            Quotients column = pixelsAtCentres(columnsOf(r));
            for (size_t x = 0; x < r.dstWidth; ++x, column.next())
                dst[x] = src[column.value()];
        }
        previous = row.value();
    }
}

// ---- means of whole pixels ------------------------------------------------------------------------------------------

// Bytes of a row whose columns are added at once.
constexpr size_t kChunk = 2048;

template <class T>
RVK_INLINE void addRows(const uint8_t* src, size_t srcStride, size_t rows, size_t bytes, T* __restrict sums)
{
    for (size_t i = 0; i < bytes; ++i)
        sums[i] = src[i];
    for (size_t y = 1; y < rows; ++y) {
        const uint8_t* __restrict row = src + y * srcStride;
        for (size_t i = 0; i < bytes; ++i)
            sums[i] = static_cast<T>(sums[i] + row[i]);
    }
}

// Sums of pixels that follow each other are added as long as they fit the chunk.
template <class T, size_t pixelSize>
void meansOfColumns(const uint8_t* src, Axis axis, size_t rows, size_t srcStride, uint8_t* dst)
{
    T sums[kChunk];
    const size_t narrow = axis.from / axis.to;
    const Mean means[2] = {Mean(uint64_t{rows} * narrow), Mean(uint64_t{rows} * (narrow + 1))};
    Quotients next = firstWholePixels(axis);
    next.next();
    size_t begin = 0;
    for (size_t x = 0; x < axis.to;) {
        const size_t count = least(kChunk / ((narrow + 1) * pixelSize), axis.to - x);
        const size_t bytes = least(count * (narrow + 1), axis.from - begin) * pixelSize;
        addRows(src + begin * pixelSize, srcStride, rows, bytes, sums);
        const T* column = sums;
        for (const size_t end = x + count; x < end; ++x, next.next()) {
            const size_t pixels = static_cast<size_t>(next.value()) - begin;
            for (size_t channel = 0; channel < pixelSize; ++channel) {
                uint32_t sum = 0;
                for (size_t i = 0; i < pixels; ++i)
                    sum += column[i * pixelSize + channel];
                dst[x * pixelSize + channel] = means[pixels - narrow](sum);
            }
            column += pixels * pixelSize;
            begin += pixels;
        }
    }
}

} // namespace

void irvkScaleDownMNCoreV(const uint8_t* src, uint32_t srcWidth, uint32_t rows, uint32_t srcStride, uint32_t pixelSize,
                          uint8_t* dst, uint32_t dstWidth)
{
    const Axis axis = {srcWidth, dstWidth};
    const size_t widest = (size_t{srcWidth} / dstWidth + 1) * pixelSize;
    if (widest > kChunk || uint64_t{rows} * 255 * widest > UINT32_MAX)
        irvkScaleDownMNCoreC(src, srcWidth, rows, srcStride, pixelSize, dst, dstWidth);
    else if (rows > 257)
        (pixelSize == 1 ? meansOfColumns<uint32_t, 1> : meansOfColumns<uint32_t, 2>)(src, axis, rows, srcStride, dst);
    else
        (pixelSize == 1 ? meansOfColumns<uint16_t, 1> : meansOfColumns<uint16_t, 2>)(src, axis, rows, srcStride, dst);
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikResizeForms.h"

// Vector implementations of the scalers of any ratio.
//
// Which pixels make a column, and with which weights, is worked out once and kept in a table. A row of the source is
// scaled across by it once; rows of the destination are made of those, of which a ring is kept, or, of bilinear ones,
// registers.
#include "cpu/ravikResizeC.h"
#include "scratch.h"
#include "vecta/simd/areas.h"
#include "vecta/simd/blocks.h"
#include "vecta/simd/rows.h"
#include "vecta/simd/taps.h"
#include "vecta/vecta.h"

#include <ravik/scale.h>

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

bool isReducedBy(const Resizing& r, uint32_t ratio)
{
    return r.srcWidth == ratio * uint64_t{r.dstWidth} && r.srcHeight == ratio * uint64_t{r.dstHeight};
}

// To half the size both bilinear values and areas are the rounded means of 2 x 2 pixels.
void halve(const Resizing& r)
{
    mapBlocks<MeanOf2x2<Rounding::halvesUp>, 2, 1>(r.dstWidth, r.dstHeight, {r.src, r.srcStride}, {r.dst, r.dstStride});
}

void quarter(const Resizing& r)
{
    mapBlocks<MeanOf4x4<Rounding::halvesUp>, 4, 1>(r.dstWidth, r.dstHeight, {r.src, r.srcStride}, {r.dst, r.dstStride});
}

// To two thirds, bilinear values have the same weights in all blocks of 3 x 3 pixels, and no more bits than they keep.
bool isReducedToTwoThirds(const Resizing& r)
{
    return 2 * uint64_t{r.srcWidth} == 3 * uint64_t{r.dstWidth} &&
           2 * uint64_t{r.srcHeight} == 3 * uint64_t{r.dstHeight};
}

void reduceToTwoThirds(const Resizing& r)
{
    mapBlocks<CornersOf3x3<Rounding::halvesUp>, 3, 2>(r.dstWidth / 2, r.dstHeight / 2, {r.src, r.srcStride},
                                                      {r.dst, r.dstStride});
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
    RVK_INLINE int64_t denominator() const { return m_denominator; }
    RVK_INLINE Quotients fromZero() const
    {
        Quotients same = *this;
        same.m_value = same.m_rest = 0;
        return same;
    }
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

// How far a quotient is from the ones behind it, which compilers make vectors of, where next() waits for the one before:
// i columns on it is pixels[i] and fractions[i] more, and another fraction where its rest is enough[i] or more. A pixel
// has 2^fractionBits fractions, denominators have 32 bits.
template <size_t columns, unsigned fractionBits>
struct Ahead
{
    uint32_t pixels[columns], fractions[columns], enough[columns];

    RVK_INLINE explicit Ahead(const Quotients& quotients)
    {
        Quotients next = quotients.fromZero();
        for (size_t i = 0; i < columns; ++i, next.next()) {
            pixels[i] = static_cast<uint32_t>(next.value() >> fractionBits);
            fractions[i] = static_cast<uint32_t>(next.value()) % (1u << fractionBits);
            enough[i] = static_cast<uint32_t>(next.denominator() - next.rest());
        }
    }
};

// What positionOf gives for begin, begin + apart, ...
class Positions : public Quotients
{
public:
    RVK_INLINE explicit Positions(Axis axis, size_t begin = 0, size_t apart = 1)
        : Quotients((int64_t{axis.from} - axis.to) * kFractions + axis.to + step(axis, begin), step(axis, apart),
                    2 * int64_t{axis.to})
    {
    }
    RVK_INLINE int64_t pixel() const { return value() >> kFractionBits; }
    RVK_INLINE uint32_t fraction() const { return static_cast<uint32_t>(value()) % kFractions; }

private:
    static RVK_INLINE int64_t step(Axis axis, size_t columns)
    {
        return int64_t{axis.from} * (2 * kFractions) * static_cast<int64_t>(columns);
    }
};

// Of n columns, or rows, from the first on: the pixels before their centres, from -1 on, and the weights of the pixels
// behind those, which have none where they alone are inside.
template <size_t n>
RVK_INLINE void findNeighbours(const Positions& first, const Ahead<n, kFractionBits>& ahead, int32_t (&pixels)[n],
                               uint32_t (&weights)[n])
{
    const auto pixel = static_cast<uint32_t>(first.pixel()), rest = static_cast<uint32_t>(first.rest());
    const uint32_t fraction = first.fraction();
    for (size_t i = 0; i < n; ++i) {
        const uint32_t fractions = fraction + ahead.fractions[i] + (rest >= ahead.enough[i]);
        pixels[i] = static_cast<int32_t>(pixel + ahead.pixels[i] + fractions / kFractions);
        weights[i] = pixels[i] < 0 ? 0 : fractions % kFractions;
    }
}

// The same of pixelAtCentre, and of firstWholePixel.
RVK_INLINE Quotients pixelsAtCentres(Axis axis, size_t apart = 1)
{
    return {axis.from, 2 * int64_t{axis.from} * static_cast<int64_t>(apart), 2 * int64_t{axis.to}};
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
    // Of those that the pixel before has a part of; none where it begins with a pixel.
    uint32_t sharedWeight() const { return rest() ? firstWeight() : 0; }
    using Quotients::next;

private:
    Axis m_axis;
};

RVK_INLINE size_t inside(int64_t i, size_t size)
{
    return i < 0 ? 0 : least(static_cast<size_t>(i), size - 1);
}

// ---- rows scaled across ---------------------------------------------------------------------------------------------

// Rows that were scaled: a batch, and those before it that are still wanted. They are few, to stay in the cache.
template <class Sum, size_t kRows>
class ScaledRows
{
public:
    ScaledRows(const Resizing& r, const Columns<Sum>& columns)
        : m_picture(r), m_columns(columns), m_scalesAll(r.srcHeight < 2 * uint64_t{r.dstHeight}),
          m_stride(roundedUp(columns.values(), kBytes * Sum::values) + kBytes * Sum::values), m_rows(kRows, m_stride)
    {
        for (uint32_t& held : m_held)
            held = UINT32_MAX;
    }
    bool exists() const { return static_cast<bool>(m_rows); }

    RVK_INLINE const int16_t* at(size_t y)
    {
        if (m_held[y % kRows] != y)
            scaleFrom(y);
        return &m_rows[y % kRows * m_stride];
    }

private:
    // Rows that will not be wanted are few in a batch: none where the ratio is less than 2.
    RVK_NOINLINE void scaleFrom(size_t y)
    {
        if (m_scalesAll)
            scaleBatch<kMostInBatch>(y);
        else
            scaleBatch<kMostInBatch / 2>(y);
    }
    template <size_t count>
    RVK_INLINE void scaleBatch(size_t y)
    {
        RowBatch batch;
        unrolled<count>([&](auto i) RVK_INLINE_LAMBDA {
            batch.src[i] = sourceRow(m_picture, least(y + i, m_picture.srcHeight - 1));
            batch.dst[i] = &m_rows[(y + i) % kRows * m_stride];
            m_held[(y + i) % kRows] = static_cast<uint32_t>(y + i);
        });
        m_columns.template sum<count>(batch);
    }

    const Resizing& m_picture;
    const Columns<Sum>& m_columns;
    bool m_scalesAll;
    size_t m_stride;
    Scratch<int16_t> m_rows;
    uint32_t m_held[kRows];
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

// ---- twice and four times as large ----------------------------------------------------------------------------------

// Bilinear values at odd multiples of 1 / (2 * times) of a pixel are sums of four pixels by whole weights.

// A row that is `part` parts of 2 * times below `upper`, as sums by weights in such parts. The sums before the first
// and behind the last one repeat those.
template <unsigned times>
RVK_INLINE void sumRows(const uint8_t* upper, const uint8_t* lower, uint8_t part, size_t width, uint16_t* sums)
{
    const Vec<uint8_t> lowerWeight = splat(part), upperWeight = splat(static_cast<uint8_t>(2 * times - part));
    const auto sumAt = [=](size_t x) RVK_INLINE_LAMBDA {
        return both(multiplyWide(load(upper + x), upperWeight), multiplyWide(load(lower + x), lowerWeight),
                    [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; });
    };
    for (size_t x = 0; x + kBytes < width; x += kBytes)
        store(sums + x, sumAt(x));
    store(sums + (width - kBytes), sumAt(width - kBytes));
    sums[-1] = sums[0];
    sums[width] = sums[width - 1];
}

// What pixels become: columns 1/4 of a pixel before and after their centres.
RVK_INLINE void storeEnlarged(Constant<2>, const uint16_t* sums, uint8_t* dst)
{
    const Vec<uint16_t> three = splat<uint16_t>(3);
    const auto column = [=](const uint16_t* beside) RVK_INLINE_LAMBDA {
        return both(loadVecs<2>(sums), loadVecs<2>(beside),
                    [=](auto a, auto b) RVK_INLINE_LAMBDA { return b + a * three; });
    };
    storeColumns<4>(dst, column(sums - 1), column(sums + 1));
}

// The same 3/8 and 1/8 before, and 1/8 and 3/8 after them.
RVK_INLINE void storeEnlarged(Constant<4>, const uint16_t* sums, uint8_t* dst)
{
    const auto column = [=](const uint16_t* beside, uint16_t weight) RVK_INLINE_LAMBDA {
        const Vec<uint16_t> besideWeight = splat(weight), weightHere = splat(static_cast<uint16_t>(8 - weight));
        return both(loadVecs<2>(sums), loadVecs<2>(beside),
                    [=](auto a, auto b) RVK_INLINE_LAMBDA { return a * weightHere + b * besideWeight; });
    };
    storeColumns<6>(dst, column(sums - 1, 3), column(sums - 1, 1), column(sums + 1, 1), column(sums + 1, 3));
}

bool isEnlarged(const Resizing& r, uint32_t times)
{
    return r.dstWidth == uint64_t{times} * r.srcWidth && r.dstHeight == uint64_t{times} * r.srcHeight;
}

// False when the picture is too narrow or there is no scratch memory.
template <unsigned times>
bool enlarge(const Resizing& r)
{
    const size_t width = r.srcWidth;
    Scratch<uint16_t> scratch(width + 2 * kColumns); // with room for one before the first
    if (!scratch || width < kBytes)
        return false;
    uint16_t* const sums = scratch.get() + kColumns;
    for (size_t y = 0; y < r.dstHeight; ++y) {
        const size_t parts = (2 * (y % times) + 1 + times) % (2 * times); // below the row above the centre
        const int64_t above = static_cast<int64_t>(y / times) - (y % times < times / 2);
        sumRows<times>(sourceRow(r, inside(above, r.srcHeight)), sourceRow(r, inside(above + 1, r.srcHeight)),
                       static_cast<uint8_t>(parts), width, sums);
        uint8_t* const dst = targetRow(r, y);
        for (size_t x = 0; x + kBytes < width; x += kBytes)
            storeEnlarged(Constant<times>{}, sums + x, dst + times * x);
        storeEnlarged(Constant<times>{}, sums + (width - kBytes), dst + times * (width - kBytes));
    }
    return true;
}

// ---- bilinear -------------------------------------------------------------------------------------------------------

// Strips of columns are walked down, a block of rows after the other, so that few rows of the source are read at a time.
// What a row of the source becomes stays in registers as long as a row of the destination lies beside it.

// A row of the destination. No lower row: it lies between those that the row before it lies between; no upper one: the
// lower one of that row is its upper one.
struct RowBetween
{
    const uint8_t *upper, *lower;
    uint32_t weights; // of the lower one, twice: 32 bits are cheaper to load into all lanes than 16
};

struct BlockOfRows
{
    const RowBetween* rows;
    size_t count;
    uint8_t* dst;
    size_t dstStride;
};

class InterpolatedColumns : public Columns<Interpolation>
{
public:
    // Of the destination's columns from `left` to `right` - 1.
    InterpolatedColumns(Axis axis, uint32_t left, uint32_t right)
        : Columns(axis.from, right - left, 1, kStepsOfStrip / 2), m_between(m_steps, 2 * kColumns)
    {
        if (exists())
            setNeighbours(axis, left);
    }
    bool exists() const { return Columns::exists() && m_between; }
    void put(const BlockOfRows& block) const;

private:
    void setNeighbours(Axis axis, uint32_t left);
    template <size_t steps>
    RVK_NOINLINE void putStrip(const BlockOfRows& block, size_t step) const;
    template <size_t steps, class Fetch>
    RVK_INLINE void walkStrip(const BlockOfRows& block, size_t step, Fetch fetch) const;
    template <size_t steps, size_t n>
    RVK_INLINE void walkStripOfWindows(const BlockOfRows& block, size_t step) const;

    Scratch<int16_t> m_between; // blocks: the last rows of strips, upper and lower one
};

// The pixels to the left of columns, and the weights of those to the right.
RVK_NOINLINE void InterpolatedColumns::setNeighbours(Axis axis, uint32_t left)
{
    const Ahead<kColumns, kFractionBits> ahead(Positions{axis});
    Positions first(axis, left, kColumns);
    const auto last = static_cast<int32_t>(axis.from - 1);
    for (size_t step = 0; step * kColumns < m_columns; ++step, first.next()) {
        int32_t pixels[kColumns];
        uint32_t weights[kColumns];
        findNeighbours(first, ahead, pixels, weights);
        PairsOfStep& pairs = pairsOfStep(step);
        for (size_t i = 0; i < kColumns; ++i) {
            pairs.places[i] = static_cast<uint32_t>(pixels[i] < 0 ? 0 : pixels[i] < last ? pixels[i] : last);
            pairs.weights[0][i] = 0;
            pairs.weights[1][i] = static_cast<int16_t>(weights[i]);
        }
    }
    finish();
}

void InterpolatedColumns::put(const BlockOfRows& block) const
{
    constexpr size_t most = kStepsOfStrip, half = most / 2;
    for (size_t step = 0; step < m_steps;) {
        const bool isNarrow = m_columns - step * kColumns <= half * kColumns;
        if (isNarrow)
            putStrip<half>(block, step);
        else
            putStrip<most>(block, step);
        step += isNarrow ? half : most;
    }
}

template <size_t steps>
RVK_NOINLINE void InterpolatedColumns::putStrip(const BlockOfRows& block, size_t step) const
{
    if (m_windowSize == 0)
        walkStrip<steps>(block, step, [=, this](const uint8_t* row, size_t i, const TapsOfStep*) RVK_INLINE_LAMBDA {
            uint8_t bytes[kBytes];
            fetchEach(row, m_given[step + i], bytes);
            return loadVecs<1>(bytes);
        });
    else if (m_rowBytes < kWindow)
        walkStrip<steps>(block, step, [=, this](const uint8_t* row, size_t, const TapsOfStep* taps) RVK_INLINE_LAMBDA {
            uint8_t padded[kWindow] = {};
            __builtin_memcpy(padded, row, m_rowBytes);
            const uint32_t offsets[kWindowsOfStep] = {};
            return Vecs<uint8_t, 1>{lookupWindows<1>(padded, offsets, load(taps->indices))};
        });
    else if (m_windowSize == 1)
        walkStripOfWindows<steps, 1>(block, step);
    else
        walkStripOfWindows<steps, 2>(block, step);
}

template <size_t steps, size_t n>
RVK_INLINE void InterpolatedColumns::walkStripOfWindows(const BlockOfRows& block, size_t step) const
{
    uint32_t offsets[steps * kWindowsOfStep];
    [[maybe_unused]] size_t ahead[steps]; // where the windows of the next strip end
    unrolled<steps * kWindowsOfStep>([&](auto i)
                                         RVK_INLINE_LAMBDA { offsets[i] = m_offsets[step * kWindowsOfStep + i]; });
    unrolled<steps>([&](auto i) RVK_INLINE_LAMBDA {
        ahead[i] = m_offsets[least(step + steps + i, m_steps - 1) * kWindowsOfStep] + n * kWindow - 1;
    });
    walkStrip<steps>(block, step, [=](const uint8_t* row, size_t i, const TapsOfStep* taps) RVK_INLINE_LAMBDA {
        if (kBytes == 64 || i == steps - 1)
            prefetch(row + ahead[i], 1);
        return fetchFromWindows<n, Interpolation>(row, offsets + i * kWindowsOfStep, taps);
    });
}

// fetch(row, i, its taps) gives the pairs of step i of the strip.
template <size_t steps, class Fetch>
RVK_INLINE void InterpolatedColumns::walkStrip(const BlockOfRows& block, size_t step, Fetch fetch) const
{
    using Line = Vecs<int16_t, steps>;
    TapsOfStep taps[steps]; // which no store changes
    unrolled<steps>([&](auto i) RVK_INLINE_LAMBDA { taps[i] = m_taps[step + i]; });
    const auto lineOf = [&](const uint8_t* row) RVK_INLINE_LAMBDA {
        Line line;
        unrolled<steps>([&](auto i)
                            RVK_INLINE_LAMBDA { line[i] = Interpolation::sum(fetch(row, i, &taps[i]), &taps[i]); });
        return line;
    };

    int16_t* const betweenBlocks = &m_between[step * 2 * kColumns];
    Line upper = loadVecs<steps>(betweenBlocks), lower = loadVecs<steps>(betweenBlocks + steps * kColumns);
    // Where stores have no masks, a strip that is too wide is copied from a block of its own.
    constexpr size_t width = steps * kColumns, vectors = (steps + 1) / 2;
    constexpr bool isHalf = width < vectors * kBytes, hasMasks = kBytes == 64;
    const size_t columns = least(width, m_columns - step * kColumns);
    const bool isCopied = !hasMasks && columns < width;
    uint8_t copied[hasMasks ? 1 : kRowsOfStrip * width];
    uint8_t* const target = block.dst + step * kColumns;
    uint8_t* dst = isCopied ? copied : target;
    const size_t dstStride = isCopied ? width : block.dstStride;
    const RowBetween* row = block.rows;
    for (size_t rows = block.count; rows; --rows, ++row, dst += dstStride) {
        if (row->lower) {
            upper = lower;
            if (row->upper) [[unlikely]]
                upper = lineOf(row->upper);
            lower = lineOf(row->lower);
        }
        const Vec<int16_t> weight = bitCast<int16_t>(splat(row->weights));
        Line between;
        unrolled<steps>([&](auto i)
                            RVK_INLINE_LAMBDA { between[i] = Interpolation::between(upper[i], lower[i], weight); });
        Vecs<uint8_t, vectors> bytes;
        unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA {
            constexpr size_t first = 2 * i, second = first + 1 < steps ? first + 1 : first;
            bytes[i] = Interpolation::pixels({between[first], between[second]});
        });
        if (hasMasks && (isHalf || columns < width)) [[unlikely]]
            storePartial(dst, bytes, columns);
        else if constexpr (isHalf)
            storePartial(dst, bytes, width);
        else
            store(dst, bytes);
    }
    if (isCopied)
        for (size_t y = 0; y < block.count; ++y)
            __builtin_memcpy(target + y * block.dstStride, copied + y * width, columns);
    store(betweenBlocks, upper);
    store(betweenBlocks + steps * kColumns, lower);
}

// Rows of the destination from `top` on.
RVK_NOINLINE void findRows(const Resizing& r, uint32_t top, size_t height, RowBetween* rows)
{
    constexpr size_t atOnce = 16;
    const Ahead<atOnce, kFractionBits> ahead(Positions{rowsOf(r)});
    Positions first(rowsOf(r), top, atOnce);
    uint32_t before = UINT32_MAX - 1; // none that is, or is beside one
    for (size_t y = 0; y < height; y += atOnce, first.next()) {
        int32_t pixels[atOnce];
        uint32_t weights[atOnce];
        findNeighbours(first, ahead, pixels, weights);
        for (size_t i = 0; i < least(atOnce, height - y); ++i) {
            const auto upper = static_cast<uint32_t>(pixels[i] < 0 ? 0 : pixels[i]);
            const uint8_t* const upperRow = sourceRow(r, upper);
            const uint8_t* const lowerRow = upper + 1 < r.srcHeight ? upperRow + r.srcStride : upperRow;
            const uint32_t weight = weights[i] << (15 - kFractionBits);
            rows[y + i] = {upper == before || upper == before + 1 ? nullptr : upperRow,
                           upper == before ? nullptr : lowerRow, weight << 16 | weight};
            before = upper;
        }
    }
}

// False when there is no scratch memory.
bool interpolate(const Resizing& r, const Rectangle& part)
{
    if (part.left == part.right || part.top == part.bottom)
        return true;
    const size_t height = part.bottom - part.top;
    const InterpolatedColumns columns(columnsOf(r), part.left, part.right);
    const Scratch<RowBetween> rows(height);
    if (!columns.exists() || !rows)
        return false;
    findRows(r, part.top, height, rows.get());
    for (size_t y = 0; y < height; y += kRowsOfStrip)
        columns.put({&rows[y], least(kRowsOfStrip, height - y), targetRow(r, part.top + y) + part.left, r.dstStride});
    return true;
}

void scaleBilinear(const Resizing& r, uint32_t borderType, uint8_t borderValue)
{
    if (isCopy(r)) {
        copyRows(r, 1);
        return;
    }
    if (isReducedBy(r, 2)) {
        halve(r);
        return;
    }
    if (isReducedToTwoThirds(r)) {
        reduceToTwoThirds(r);
        return;
    }
    const uint32_t width = r.dstWidth, height = r.dstHeight;
    const bool replicates = borderType == RAVIK_BORDER_REPLICATE;
    if (replicates && ((isEnlarged(r, 2) && enlarge<2>(r)) || (isEnlarged(r, 4) && enlarge<4>(r))))
        return;
    const Rectangle part = replicates ? Rectangle{0, 0, width, height} : interiorOf(r);
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
    Columns<CubicInterpolation> columns(r.srcWidth * pixelSize, r.dstWidth * pixelSize, pixelSize);
    if (!columns.exists())
        return false;
    int16_t weights[4];
    Positions column(columnsOf(r));
    for (size_t x = 0; x < r.dstWidth; ++x, column.next()) {
        cubicWeights(column.fraction(), weights);
        for (size_t pair = 0; pair < 2; ++pair) {
            const int64_t pixel = column.pixel() - 1 + 2 * static_cast<int64_t>(pair);
            const int32_t first = weights[2 * pair], second = weights[2 * pair + 1];
            const bool isOnePixel = pixel < 0; // to the left of the first column
            for (size_t channel = 0; channel < pixelSize; ++channel)
                columns.set(x * pixelSize + channel, pair, inside(pixel, r.srcWidth) * pixelSize + channel,
                            isOnePixel ? first + second : first, isOnePixel ? 0 : second);
        }
    }
    columns.finish();

    ScaledRows<CubicInterpolation, 3 + kMostInBatch> rows(r, columns);
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

// ---- nearest --------------------------------------------------------------------------------------------------------

// For each byte of a row its byte of the source. Every window of the source makes as many columns as the poorest does,
// but a whole vector is stored: the next columns overwrite what is too much.
class Places
{
public:
    explicit Places(Axis axis) : Places(axis, AheadOfWindow(pixelsAtCentres(axis))) {}
    bool exists() const { return static_cast<bool>(m_steps); }
    void pick(const uint8_t* row, uint8_t* dst) const;

private:
    using AheadOfWindow = Ahead<kWindow, 0>;
    struct alignas(kBytes) Step
    {
        uint8_t indices[kBytes];
        uint32_t offsets[kWindowsOfStep];
    };

    Places(Axis axis, const AheadOfWindow& ahead);
    static size_t columnsIn(size_t bytes, const AheadOfWindow& ahead);
    static bool isWide(Axis axis, const AheadOfWindow& ahead);
    size_t bytesOfStep() const { return (kWindowsOfStep - 1) * m_columns + kWindow; } // which are stored
    void fill(const AheadOfWindow& ahead);
    template <size_t n>
    RVK_INLINE void pickFromWindows(const uint8_t* row, uint8_t* dst) const;

    Axis m_axis;
    bool m_isWide;       // windows are two kWindow wide, not one
    size_t m_columns;    // of a window
    size_t m_wholeSteps; // that may store more than their columns
    Scratch<Step> m_steps;
};

Places::Places(Axis axis, const AheadOfWindow& ahead)
    : m_axis(axis), m_isWide(isWide(axis, ahead)), m_columns(columnsIn((m_isWide ? 2 : 1) * kWindow, ahead)),
      m_wholeSteps(axis.to < bytesOfStep() ? 0 : (axis.to - bytesOfStep()) / (m_columns * kWindowsOfStep) + 1),
      m_steps(roundedUp(axis.to, m_columns * kWindowsOfStep) / (m_columns * kWindowsOfStep))
{
    if (exists())
        fill(ahead);
}

// How many columns are made of so many bytes wherever they begin: one or more.
size_t Places::columnsIn(size_t bytes, const AheadOfWindow& ahead)
{
    size_t columns = kWindow;
    while (ahead.pixels[columns - 1] + (ahead.enough[columns - 1] < ahead.enough[0]) >= bytes)
        --columns;
    return columns;
}

// They are where they make more columns for what they cost.
bool Places::isWide(Axis axis, const AheadOfWindow& ahead)
{
    return axis.from >= 2 * kWindow &&
           columnsIn(2 * kWindow, ahead) * 8 > columnsIn(kWindow, ahead) * kEighthsOfWideWindow;
}

RVK_NOINLINE void Places::fill(const AheadOfWindow& ahead)
{
    const size_t bytes = m_isWide ? 2 * kWindow : kWindow, lastWindow = m_axis.from < bytes ? 0 : m_axis.from - bytes;
    Quotients first = pixelsAtCentres(m_axis, m_columns);
    for (size_t x = 0, step = 0; x < m_axis.to; x += m_columns * kWindowsOfStep, ++step)
        for (size_t window = 0; window < kWindowsOfStep; ++window, first.next()) {
            const size_t offset = least(static_cast<size_t>(first.value()), lastWindow);
            const uint32_t index = static_cast<uint32_t>(first.value() - static_cast<int64_t>(offset));
            const uint32_t rest = static_cast<uint32_t>(first.rest());
            uint8_t* __restrict const indices = m_steps[step].indices + window * kWindow;
            m_steps[step].offsets[window] = static_cast<uint32_t>(offset);
            for (size_t i = 0; i < kWindow; ++i)
                indices[i] = static_cast<uint8_t>(index + ahead.pixels[i] + (rest >= ahead.enough[i]));
        }
}

// The columns of each window at the heads of its lanes; here without what is between them.
RVK_INLINE Vec<uint8_t> joinWindows([[maybe_unused]] size_t columns, Vec<uint8_t> v)
{
    if constexpr (kWindowsOfStep == 1) {
        return v;
    } else {
        uint8_t joined[2 * kBytes];
        storeWindows(joined, columns, v);
        return load(joined);
    }
}

template <size_t n>
RVK_INLINE void Places::pickFromWindows(const uint8_t* row, uint8_t* dst) const
{
    const size_t apart = m_columns, columns = apart * kWindowsOfStep; // of a step
    const Step* step = m_steps.get();
    const auto pickStep = [=](const Step* from)
                              RVK_INLINE_LAMBDA { return lookupWindows<n>(row, from->offsets, load(from->indices)); };
    for (size_t steps = m_wholeSteps; steps; --steps, ++step, dst += columns)
        storeWindows(dst, apart, pickStep(step));
    for (size_t left = m_axis.to - m_wholeSteps * columns, count; left; left -= count, ++step, dst += count) {
        count = least(left, columns);
        storePartial(dst, joinWindows(apart, pickStep(step)), count);
    }
}

RVK_NOINLINE void Places::pick(const uint8_t* row, uint8_t* dst) const
{
    uint8_t padded[kWindow] = {};
    if (m_axis.from < kWindow)
        row = static_cast<uint8_t*>(__builtin_memcpy(padded, row, m_axis.from));
    if (m_isWide)
        pickFromWindows<2>(row, dst);
    else
        pickFromWindows<1>(row, dst);
}

void scaleNearest(const Resizing& r)
{
    if (isCopy(r)) {
        copyRows(r, 1);
        return;
    }
    const Places places(columnsOf(r));
    Quotients row = pixelsAtCentres(rowsOf(r));
    int64_t previous = -1;
    for (size_t y = 0; y < r.dstHeight; ++y, row.next()) {
        const uint8_t* const src = sourceRow(r, static_cast<size_t>(row.value()));
        uint8_t* const dst = targetRow(r, y);
        if (row.value() == previous) {
            __builtin_memcpy(dst, targetRow(r, y - 1), r.dstWidth);
        } else if (places.exists()) {
            prefetch(dst + r.dstStride, r.dstWidth); // stores would wait for the lines of the next row
            places.pick(src, dst);
        } else {
            Quotients column = pixelsAtCentres(columnsOf(r));
            for (size_t x = 0; x < r.dstWidth; ++x, column.next())
                dst[x] = src[column.value()];
        }
        previous = row.value();
    }
}

// ---- means ----------------------------------------------------------------------------------------------------------

// (n + divisor / 2) / divisor for n up to 255 * divisor, by a multiplication where the divisor is below 2^23.
class Mean
{
public:
    RVK_INLINE explicit Mean(uint64_t divisor)
        : m_divisor(divisor), m_half(divisor / 2), m_factor(1u << 31), m_shift(31)
    {
        if (divisor >= 1u << 23) {
            m_factor = 0;
        } else if (divisor > 1) {
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
        return shiftRightByVariable(multiplyHigh(sum + splat(half), splat(factor)), shift);
    }
};

// ---- means of whole pixels ------------------------------------------------------------------------------------------

// Bytes of a row whose columns are added at once.
constexpr size_t kChunk = 2048;

RVK_NOINLINE void addRows(const uint8_t* src, size_t srcStride, size_t rows, size_t bytes, uint32_t* __restrict sums)
{
    for (size_t i = 0; i < bytes; ++i)
        sums[i] = src[i];
    for (size_t y = 1; y < rows; ++y) {
        const uint8_t* __restrict row = src + y * srcStride;
        for (size_t i = 0; i < bytes; ++i)
            sums[i] += row[i];
    }
}

// Sums of `count` neighbours each, from sums of columns, for pixels of T: one or two sums of 16 bits.
template <size_t count, class T>
RVK_INLINE Vec<uint16_t> sumsOfNeighbours(const uint16_t* sums)
{
    const T* const p = reinterpret_cast<const T*>(sums);
    if constexpr (count == 1) {
        return load(sums);
    } else {
        const Vecs<T, count> v = loadInterleaved<count>(p);
        Vec<uint16_t> sum = bitCast<uint16_t>(v[0]);
        unrolled<count - 1>([&](auto i) RVK_INLINE_LAMBDA { sum = sum + bitCast<uint16_t>(v[i + 1]); });
        return sum;
    }
}

// Means of `count` x `rows` pixels, of which sums fit 16 bits. The bytes of the destination are at least one step.
template <size_t count, class T>
void meansOfBlocks(const uint8_t* src, size_t rows, size_t srcStride, const Mean16& mean, size_t bytes, uint8_t* dst)
{
    const auto meansAt = [&](size_t x) RVK_INLINE_LAMBDA {
        Vecs<uint16_t, count> columns = {};
        const uint8_t* row = src + count * x;
        for (size_t y = rows; y; --y, row += srcStride)
            unrolled<count>(
                [&](auto i) RVK_INLINE_LAMBDA { columns[i] = columns[i] + loadWiden<uint16_t>(row + i * kColumns); });
        alignas(T) uint16_t sums[count * kColumns];
        store(sums, columns);
        storeLowBytes(dst + x, mean(sumsOfNeighbours<count, T>(sums)));
    };
    for (size_t x = 0; x + kColumns < bytes; x += kColumns)
        meansAt(x);
    meansAt(bytes - kColumns);
}

// The function for a count; null where there is none.
using BlockMeans = void(const uint8_t* src, size_t rows, size_t srcStride, const Mean16& mean, size_t bytes,
                        uint8_t* dst);
template <class T>
RVK_INLINE BlockMeans* blockMeans(size_t count)
{
    switch (count) {
    case 1:
        return meansOfBlocks<1, T>;
    case 2:
        return meansOfBlocks<2, T>;
    case 3:
        return meansOfBlocks<3, T>;
    case 4:
        return meansOfBlocks<4, T>;
    default:
        return nullptr;
    }
}

template <class T>
bool averageRowOfBlocks(const uint8_t* src, Axis axis, size_t rows, size_t srcStride, uint8_t* dst)
{
    const size_t count = axis.from / axis.to, bytes = size_t{axis.to} * (sizeof(T) / sizeof(uint16_t));
    const Mean16 mean(count * rows);
    BlockMeans* const means = axis.from % axis.to ? nullptr : blockMeans<T>(count);
    if (!means || !mean.exists() || bytes < kColumns)
        return false;
    means(src, rows, srcStride, mean, bytes, dst);
    return true;
}

// Means of `count` columns of the destination, each of `narrow` pixels or one more; the first begins at pixel `begin`.
// Gives where the next one does.
template <size_t pixelSize, size_t fixedNarrow>
RVK_NOINLINE size_t meansOfChunk(const uint32_t* sums, Quotients& nextColumn, size_t begin, size_t narrow,
                                 const Mean (&means)[2], size_t count, uint8_t* dst)
{
    if (fixedNarrow)
        narrow = fixedNarrow;
    Quotients next = nextColumn; // which no store changes
    for (; count; --count, next.next()) {
        const size_t pixels = static_cast<size_t>(next.value()) - begin;
        const size_t isWide = pixels - narrow; // 0 or 1: no jumps, which would be taken by turns
        for (size_t channel = 0; channel < pixelSize; ++channel) {
            uint32_t sum = sums[narrow * pixelSize + channel] & (0 - static_cast<uint32_t>(isWide));
            for (size_t i = 0; i < narrow; ++i)
                sum += sums[i * pixelSize + channel];
            *dst++ = means[isWide](sum);
        }
        sums += pixels * pixelSize;
        begin += pixels;
    }
    nextColumn = next;
    return begin;
}

template <size_t pixelSize>
RVK_INLINE auto meansOfChunkFor(size_t narrow)
{
    switch (narrow) {
    case 1:
        return meansOfChunk<pixelSize, 1>;
    case 2:
        return meansOfChunk<pixelSize, 2>;
    case 3:
        return meansOfChunk<pixelSize, 3>;
    default:
        return meansOfChunk<pixelSize, 0>;
    }
}

// As many columns at once as the chunk holds.
template <size_t pixelSize>
void meansOfColumns(const uint8_t* src, Axis axis, size_t rows, size_t srcStride, uint8_t* dst)
{
    uint32_t sums[kChunk + pixelSize]; // and a pixel that exists for those that are no wider
    const size_t narrow = axis.from / axis.to;
    const Mean means[2] = {Mean(uint64_t{rows} * narrow), Mean(uint64_t{rows} * (narrow + 1))};
    Quotients next = firstWholePixels(axis);
    next.next();
    size_t begin = 0;
    for (size_t x = 0, count; x < axis.to; x += count) {
        count = least(kChunk / ((narrow + 1) * pixelSize), axis.to - x);
        const size_t bytes = least(count * (narrow + 1), axis.from - begin) * pixelSize;
        addRows(src + begin * pixelSize, srcStride, rows, bytes, sums);
        for (size_t channel = 0; channel < pixelSize; ++channel)
            sums[bytes + channel] = 0;
        begin = meansOfChunkFor<pixelSize>(narrow)(sums, next, begin, narrow, means, count, dst + x * pixelSize);
    }
}

// ---- area -----------------------------------------------------------------------------------------------------------

// The same of 32 bits, by way of floats, whose quotient is off by one at most. The divisor is below 2^23.
struct Mean32
{
    int32_t divisor;
    float reciprocal;

    RVK_INLINE explicit Mean32(uint64_t d) : divisor(static_cast<int32_t>(d)), reciprocal(1 / static_cast<float>(d)) {}
    RVK_INLINE Vec<int32_t> operator()(Vec<int32_t> sum) const
    {
        const Vec<int32_t> n = sum + splat(divisor / 2);
        const Vec<int32_t> quotient = truncateToInt(toFloat(n) * splat(reciprocal));
        const Vec<int32_t> rest = n - quotient * splat(divisor);
        return quotient + toVec(less(rest, zero<int32_t>())) - toVec(greater(rest, splat(divisor - 1)));
    }
};
constexpr uint64_t kMostOfMean32 = (1 << 23) - 1;

// The same of small divisors. What comes before the last rounding is off by less than 2^-14, and n + 1/2, which has the
// quotient of n, is at least that far from a multiple of the divisor.
struct MeanOfFloats
{
    float reciprocal, half;

    RVK_INLINE explicit MeanOfFloats(uint64_t divisor)
        : reciprocal(1 / static_cast<float>(divisor)),
          half((static_cast<float>(divisor / 2) + 0.5f) / static_cast<float>(divisor))
    {
    }
    RVK_INLINE Vec<int32_t> operator()(Vec<int32_t> sum) const
    {
        return truncateToInt(multiplyAdd(toFloat(sum), splat(reciprocal), splat(half)));
    }
};
constexpr uint64_t kMostOfMeanOfFloats = 1 << 13;

// The pixels that one of the destination covers, along an axis, the first of which has number 0, and their weights.
class Covered
{
public:
    RVK_INLINE Covered(const Coverages& c, Axis axis) : m_from(axis.from), m_to(axis.to), m_first(c.firstWeight()) {}
    RVK_INLINE uint32_t weight(size_t i) const
    {
        const size_t before = i == 0 ? 0 : m_first + (i - 1) * m_to;
        return i == 0 ? m_first : before >= m_from ? 0 : static_cast<uint32_t>(least(m_from - before, m_to));
    }

private:
    size_t m_from, m_to;
    uint32_t m_first;
};

// The most pixels, or parts of them, that one of the destination covers.
RVK_INLINE size_t mostCovered(Axis axis)
{
    return axis.from % axis.to == 0 ? axis.from / axis.to : (axis.from - 1 + axis.to - 1) / axis.to + 1;
}

// Rows that one row of the destination is made of, and their weights; in pairs, of which the last row may have none.
constexpr size_t kMostRows = 5;
struct WeighedRows
{
    const int16_t* row[kMostRows + 1];
    int16_t weight[kMostRows + 1];
};

template <size_t pairs>
RVK_INLINE Vec<uint8_t> averageOf(const WeighedRows& rows, size_t x, const Mean16& mean)
{
    const auto sumAt = [&](size_t column) RVK_INLINE_LAMBDA {
        Vec<int16_t> sum = {};
        unrolled<2 * pairs>([&](auto k)
                                RVK_INLINE_LAMBDA { sum = sum + load(rows.row[k] + column) * splat(rows.weight[k]); });
        return mean(bitCast<uint16_t>(sum));
    };
    return narrowSat<uint8_t>(bitCast<int16_t>(Vecs<uint16_t, 2>{sumAt(x), sumAt(x + kColumns)}));
}

// Each row has the coarse parts of the sums of a step and then the fine ones.
template <size_t pairs, class MeanOf32Bits>
RVK_INLINE Vec<uint8_t> averageOf(const WeighedRows& rows, size_t x, const MeanOf32Bits& mean)
{
    const auto sumAt = [&](size_t offset) RVK_INLINE_LAMBDA {
        Vecs<int32_t, 2> sums = {};
        unrolled<pairs>([&](auto pair) RVK_INLINE_LAMBDA {
            constexpr size_t k = 2 * pair;
            sums = addDotInLanes(sums, Vecs<int16_t, 2>{load(rows.row[k] + offset), load(rows.row[k + 1] + offset)},
                                 Vecs<int16_t, 2>{splat(rows.weight[k]), splat(rows.weight[k + 1])});
        });
        return sums;
    };
    const auto meanAt = [&](size_t column) RVK_INLINE_LAMBDA {
        return narrowSatInLanes<int16_t>(both(sumAt(2 * column), sumAt(2 * column + kColumns),
                                              [&](auto coarse, auto fine)
                                                  RVK_INLINE_LAMBDA { return mean(shiftLeft(coarse, 6) + fine); }));
    };
    return narrowSat<uint8_t>(Vecs<int16_t, 2>{meanAt(x), meanAt(x + kColumns)});
}

// Of areas, each where it is possible.
struct Means
{
    Mean16 ofShortSums;
    MeanOfFloats ofSmallSums;
    Mean32 ofSums;

    explicit Means(uint64_t area) : ofShortSums(area), ofSmallSums(area), ofSums(area) {}
};

using AverageRows = void(size_t end, const WeighedRows& rows, const Means& means, uint8_t* dst);
template <size_t pairs, auto kind>
RVK_NOINLINE void averageRows(size_t end, const WeighedRows& given, const Means& means, uint8_t* dst)
{
    const WeighedRows rows = given; // which no store changes
    const auto mean = means.*kind;
    mapColumns(0, end, dst, [&](size_t x) RVK_INLINE_LAMBDA { return averageOf<pairs>(rows, x, mean); });
}
template <auto kind>
constexpr AverageRows* kAverageRows[3] = {averageRows<1, kind>, averageRows<2, kind>, averageRows<3, kind>};

RVK_NOINLINE void setCoverages(ColumnTable& table, const Resizing& r, Axis axis, size_t pairs)
{
    Coverages column(axis);
    for (size_t x = 0; x < r.dstWidth; ++x, column.next()) {
        const Covered covered(column, axis);
        for (size_t i = 0; i < 2 * pairs; i += 2)
            table.set(x, i / 2, least(column.first() + i, r.srcWidth - 1), static_cast<int32_t>(covered.weight(i)),
                      static_cast<int32_t>(covered.weight(i + 1)));
    }
}

// Columns first, where few pixels make one. False when their windows are too narrow, or without scratch memory.
template <class Sum>
bool averageColumnsFirst(const Resizing& r, Axis columnAxis, Axis rowAxis, const Means& means,
                         AverageRows* const (&average)[3])
{
    Columns<Sum> columns(r.srcWidth, r.dstWidth);
    if (!columns.exists())
        return false;
    setCoverages(columns, r, columnAxis, Sum::pairs);
    columns.finish();
    // Where whole batches are scaled, at most three rows make one.
    ScaledRows<Sum, kMostRows - 1 + kMostInBatch / 2> scaled(r, columns);
    if (!columns.hasWindows() || !scaled.exists())
        return false;

    Coverages row(rowAxis);
    for (size_t y = 0; y < r.dstHeight; ++y, row.next()) {
        const Covered covered(row, rowAxis);
        WeighedRows rows;
        size_t count = 0;
        for (; const uint32_t weight = count < kMostRows ? covered.weight(count) : 0; ++count) {
            rows.row[count] = scaled.at(row.first() + count);
            rows.weight[count] = static_cast<int16_t>(weight);
        }
        if (count % 2) {
            rows.row[count] = rows.row[0];
            rows.weight[count++] = 0;
        }
        average[count / 2 - 1](r.dstWidth, rows, means, targetRow(r, y));
    }
    return true;
}

template <template <size_t> class Sum>
bool averageColumnsFirst(const Resizing& r, Axis columns, Axis rows, const Means& means,
                         AverageRows* const (&average)[3])
{
    return mostCovered(columns) <= 2 ? averageColumnsFirst<Sum<1>>(r, columns, rows, means, average)
                                     : averageColumnsFirst<Sum<2>>(r, columns, rows, means, average);
}

// Means of whole pixels by the same sums, all of whose weights are alike: of columns of `narrow` pixels and of those of
// one more.
struct PixelMeans
{
    Mean16 ofNarrow, ofWide;

    PixelMeans(uint64_t narrow, uint64_t rows) : ofNarrow(narrow * rows), ofWide((narrow + 1) * rows) {}
    bool exist() const { return ofNarrow.exists() && ofWide.exists(); }
};

using AveragePixels = void(size_t end, const WeighedRows& rows, const PixelMeans& means, const uint8_t* isWide,
                           uint8_t* dst);
template <size_t pairs>
RVK_NOINLINE void averagePixels(size_t end, const WeighedRows& given, const PixelMeans& givenMeans,
                                const uint8_t* isWide, uint8_t* dst)
{
    const WeighedRows rows = given; // which no store changes
    const PixelMeans means = givenMeans;
    mapColumns(0, end, dst, [&](size_t x) RVK_INLINE_LAMBDA {
        return select(greater(load(isWide + x), zero<uint8_t>()), averageOf<pairs>(rows, x, means.ofWide),
                      averageOf<pairs>(rows, x, means.ofNarrow));
    });
}

// Which pixels of a row are columns, and where these are wide.
template <class Sum>
RVK_NOINLINE void setPixels(Columns<Sum>& table, uint8_t* isWide, const Resizing& r, uint32_t pixelSize)
{
    const Axis axis = columnsOf(r);
    const size_t narrow = axis.from / axis.to;
    Quotients next = firstWholePixels(axis);
    for (size_t x = 0; x < r.dstWidth; ++x) {
        const auto begin = static_cast<size_t>(next.value());
        next.next();
        const size_t count = static_cast<size_t>(next.value()) - begin;
        for (size_t channel = 0; channel < pixelSize; ++channel) {
            const size_t column = x * pixelSize + channel;
            isWide[column] = count > narrow;
            for (size_t i = 0; i < 2 * Sum::pairs; i += 2)
                table.set(column, i / 2, least(begin + i, r.srcWidth - 1) * pixelSize + channel, i < count,
                          i + 1 < count);
        }
    }
    table.finish();
}

// False where windows are too narrow, or without scratch memory.
template <size_t pairs>
bool averagePixelsColumnsFirst(const Resizing& r, uint32_t pixelSize)
{
    constexpr AveragePixels* average[3] = {averagePixels<1>, averagePixels<2>, averagePixels<3>};
    using Sum = WeightedSum<pairs>;
    const Axis rowAxis = rowsOf(r);
    const size_t fewest = rowAxis.from / rowAxis.to, bytes = size_t{r.dstWidth} * pixelSize;
    const size_t narrow = r.srcWidth / r.dstWidth;
    const size_t unit = narrow * fewest == 1 ? 2 : 1; // of weights: there is no mean of one
    const PixelMeans means[2] = {{narrow, unit * fewest}, {narrow, unit * (fewest + 1)}};
    if (!means[0].exist() || !means[1].exist())
        return false;
    Columns<Sum> columns(size_t{r.srcWidth} * pixelSize, bytes, pixelSize);
    Scratch<uint8_t> isWide(roundedUp(bytes, kBytes));
    ScaledRows<Sum, kMostRows - 1 + kMostInBatch / 2> scaled(r, columns);
    if (!columns.exists() || !isWide || !scaled.exists())
        return false;
    setPixels(columns, isWide.get(), r, pixelSize);
    if (!columns.hasWindows())
        return false;
    for (uint32_t y = 0; y < r.dstHeight; ++y) {
        const uint32_t begin = firstWholePixel(rowAxis, y), count = firstWholePixel(rowAxis, y + 1) - begin;
        WeighedRows rows;
        for (uint32_t i = 0; i < count + count % 2; ++i) {
            rows.row[i] = i < count ? scaled.at(begin + i) : rows.row[0];
            rows.weight[i] = static_cast<int16_t>(i < count ? unit : 0);
        }
        average[(count - 1) / 2](bytes, rows, means[count - fewest], isWide.get(), targetRow(r, y));
    }
    return true;
}

// sums = first * row 0 + whole * the whole rows that follow + last * the one behind them, in columns of one vector.
struct RowWeights
{
    uint16_t first, whole, last;
    size_t wholeRows;
};
RVK_INLINE void sumRowsOfStep(const uint8_t* row, size_t stride, const RowWeights& w, uint32_t* sums)
{
    const auto weigh = [](const Vecs<uint16_t, 2>& v, uint16_t weight) RVK_INLINE_LAMBDA {
        const Vecs<uint32_t, 2> low = multiplyWide(v[0], splat(weight)), high = multiplyWide(v[1], splat(weight));
        return Vecs<uint32_t, 4>{low[0], low[1], high[0], high[1]};
    };
    Vecs<uint32_t, 4> all = weigh(widen(load(row)), w.first);
    const auto add = [&](const Vecs<uint32_t, 4>& more) RVK_INLINE_LAMBDA {
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { all[i] = all[i] + more[i]; });
    };
    row += stride;
    Vecs<uint16_t, 2> whole = {};
    for (size_t i = w.wholeRows; i; --i, row += stride)
        whole = both(whole, widen(load(row)), [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; });
    add(weigh(whole, w.whole));
    if (w.last)
        add(weigh(widen(load(row)), w.last));
    store(sums, all);
}

// The sums of a whole row, where whole rows fit 16 bits and so do the weights.
bool sumRowsInVectors(const Resizing& r, const Coverages& row, Axis axis, uint32_t* sums)
{
    const size_t rest = axis.from - row.firstWeight(), wholeRows = rest / axis.to;
    if (r.srcWidth < kBytes || wholeRows > 257 || axis.to > UINT16_MAX)
        return false;
    const RowWeights weights = {static_cast<uint16_t>(row.firstWeight()), static_cast<uint16_t>(axis.to),
                                static_cast<uint16_t>(rest % axis.to), wholeRows};
    const uint8_t* const first = sourceRow(r, row.first());
    for (size_t x = 0; x + kBytes < r.srcWidth; x += kBytes)
        sumRowsOfStep(first + x, r.srcStride, weights, sums + x);
    const size_t last = r.srcWidth - kBytes;
    sumRowsOfStep(first + last, r.srcStride, weights, sums + last);
    return true;
}

// The same whatever they are.
void sumRows(const Resizing& r, const Coverages& row, Axis axis, uint32_t* __restrict sums)
{
    if (sumRowsInVectors(r, row, axis, sums))
        return;
    const Covered covered(row, axis);
    const size_t width = r.srcWidth;
    for (size_t i = 0; const uint32_t weight = covered.weight(i); ++i) {
        const uint8_t* __restrict src = sourceRow(r, row.first() + i);
        for (size_t x = 0; x < width; ++x)
            sums[x] = (i == 0 ? 0 : sums[x]) + weight * src[x];
    }
}

// Means of areas from such sums; those of areas are of type T.
template <class T>
void averageSums(const uint32_t* sums, Axis axis, size_t count, const Mean& mean, uint8_t* dst)
{
    Coverages column(axis);
    for (size_t x = 0; x < count; ++x, column.next()) {
        const uint32_t* const covered = sums + column.first();
        const size_t rest = axis.from - column.firstWeight(), wholeColumns = rest / axis.to;
        T whole = 0;
        for (size_t i = 1; i <= wholeColumns; ++i)
            whole += covered[i];
        T sum = T{column.firstWeight()} * covered[0] + whole * axis.to;
        if (const size_t last = rest - wholeColumns * axis.to)
            sum += static_cast<T>(last) * covered[1 + wholeColumns];
        dst[x] = mean(sum);
    }
}

// Rows first, whatever the ratio, where sums of columns fit 32 bits. False when they do not, or without scratch memory.
bool averageRowsFirst(const Resizing& r, Axis columnAxis, Axis rowAxis)
{
    Scratch<uint32_t> sums(r.srcWidth);
    if (!sums || uint64_t{rowAxis.from} * 255 > UINT32_MAX)
        return false;
    const uint64_t area = uint64_t{columnAxis.from} * rowAxis.from;
    const Mean mean(area);
    Coverages row(rowAxis);
    for (size_t y = 0; y < r.dstHeight; ++y, row.next()) {
        sumRows(r, row, rowAxis, sums.get());
        if (area <= UINT32_MAX / 256)
            averageSums<uint32_t>(sums.get(), columnAxis, r.dstWidth, mean, targetRow(r, y));
        else
            averageSums<uint64_t>(sums.get(), columnAxis, r.dstWidth, mean, targetRow(r, y));
    }
    return true;
}

#if defined(__AVX512VNNI__) // a half to a quarter of the time
// Of a pixel of the source, that one of the destination has.
RVK_INLINE size_t mostParts(Axis axis)
{
    return least(size_t{axis.from}, axis.to);
}
// Rows of more parts have so many weights that loading those of their columns takes longer than floats.
constexpr size_t kMostMultiples = 8;

// The most bytes from the first to the last pixel of a vector.
template <size_t neighbours>
RVK_INLINE size_t bytesOfWindow(Axis axis)
{
    return (AreaStrip<neighbours>::columns - 1) * size_t{axis.from} / axis.to + 1 + mostCovered(axis);
}

// Strips of columns whose weights fit bytes, also times those of rows where Areas has it so.
template <class Areas>
class AreaColumns
{
public:
    static constexpr size_t neighbours = Areas::neighbours;
    using Strip = AreaStrip<neighbours>;
    using Weights = AreaWeights<neighbours>;

    // A row of the source has so many parts.
    AreaColumns(const Resizing& r, Axis axis, size_t partsOfRow)
        : m_axis(axis), m_srcWidth(r.srcWidth), m_columns(r.dstWidth), m_partsOfRow(partsOfRow),
          m_multiples(Areas::multipliesWeights ? partsOfRow : 1),
          m_window(bytesOfWindow<neighbours>(axis) <= kBytes / 2 ? kBytes / 2 : kBytes),
          m_strips(roundedUp(m_columns, kBytes) / kBytes),
          m_weights(roundedUp(m_columns, kBytes) / kBytes, m_multiples), m_fit(m_strips && m_weights && set())
    {
    }
    // False without scratch memory, or when weights do not fit.
    bool exist() const { return m_fit; }
    void average(const BlockOfAreas& block, const Areas& areas) const
    {
        BlockOfAreas part = block;
        for (size_t x = 0; x < m_columns; x += kBytes, part.dst += kBytes) {
            const size_t i = x / kBytes;
            (m_window == kBytes ? averageStrip<kBytes, Areas>
                                : averageStrip<kBytes / 2, Areas>)(m_strips[i], &m_weights[i * m_multiples],
                                                                   m_partsOfRow, areas, part,
                                                                   least(kBytes, m_columns - x));
        }
    }

private:
    bool set();

    Axis m_axis;
    size_t m_srcWidth, m_columns, m_partsOfRow, m_multiples, m_window;
    Scratch<Strip> m_strips;
    Scratch<Weights> m_weights;
    bool m_fit;
};

// Pixels of weights that are too large count as several.
template <class Areas>
RVK_NOINLINE bool AreaColumns<Areas>::set()
{
    using Column = BytesOfColumn<neighbours>;
    const uint32_t from = m_axis.from, to = m_axis.to;
    const auto most = static_cast<uint32_t>(UINT8_MAX / m_multiples);
    const size_t lastWindow = m_srcWidth - m_window;
    const Ahead<Strip::columns, 0> ahead(Quotients(0, from, to));
    Quotients first(0, int64_t{from} * Strip::columns, to);
    uint32_t lacking = 0;
    for (size_t x = 0; x < roundedUp(m_columns, kBytes); x += Strip::columns, first.next()) {
        const size_t strip = x / kBytes, vector = x / Strip::columns % Strip::vectors;
        const size_t offset = least(static_cast<size_t>(first.value()), lastWindow);
        const auto pixel = static_cast<uint32_t>(static_cast<size_t>(first.value()) - offset);
        const auto rest = static_cast<uint32_t>(first.rest());
        m_strips[strip].offsets[vector] = static_cast<uint32_t>(offset);
        uint32_t indices[Strip::columns], weights[Strip::columns];
        for (size_t i = 0; i < Strip::columns; ++i) {
            const bool isFarther = rest >= ahead.enough[i];
            uint32_t place = pixel + ahead.pixels[i] + isFarther, left = from;
            uint32_t leftOfPixel = ahead.enough[i] + (isFarther ? to : 0) - rest;
            indices[i] = weights[i] = 0;
            for (uint32_t k = 0; k < neighbours; ++k) { // of no weight where they lie beyond the window
                const uint32_t free = leftOfPixel < left ? leftOfPixel : left, weight = free < most ? free : most;
                indices[i] |= place % kBytes << 8 * k;
                weights[i] |= weight << 8 * k;
                left -= weight;
                leftOfPixel -= weight;
                place += leftOfPixel == 0;
                leftOfPixel = leftOfPixel == 0 ? to : leftOfPixel;
            }
            lacking |= left;
        }
        for (size_t i = 0; i < Strip::columns; ++i)
            m_strips[strip].indices[vector][i] = static_cast<Column>(indices[i]);
        for (uint32_t multiple = 1; multiple <= m_multiples; ++multiple) {
            Column(&products)[Strip::columns] = m_weights[strip * m_multiples + multiple - 1].of[vector];
            for (size_t i = 0; i < Strip::columns; ++i)
                products[i] = static_cast<Column>(multiple * weights[i]); // of all bytes
        }
    }
    return !lacking;
}

RVK_NOINLINE void setAreaRows(Axis axis, AreaRow* rows)
{
    Coverages row(axis);
    for (size_t y = 0; y < axis.to; ++y, row.next()) {
        const uint32_t shared = row.sharedWeight(), rest = axis.from - shared;
        rows[y] = {shared, rest / axis.to, rest % axis.to};
    }
}

// False without scratch memory, or when weights do not fit.
template <class Areas>
bool averageStrips(const Resizing& r, Axis columnAxis, Axis rowAxis, const Areas& areas)
{
    const AreaColumns<Areas> columns(r, columnAxis, mostParts(rowAxis));
    const Scratch<AreaRow> rows(rowAxis.to);
    if (!columns.exist() || !rows)
        return false;
    setAreaRows(rowAxis, rows.get());
    Quotients first(0, int64_t{rowAxis.from} * kRowsOfStrip, rowAxis.to);
    for (size_t y = 0; y < r.dstHeight; y += kRowsOfStrip, first.next())
        columns.average({rows.get(), rowAxis.to, y % rowAxis.to, least(kRowsOfStrip, r.dstHeight - y),
                         sourceRow(r, static_cast<size_t>(first.value())), r.srcStride, targetRow(r, y), r.dstStride},
                        areas);
    return true;
}

// False where areas have too many parts, too.
bool averageStrips(const Resizing& r, Axis columns, Axis rows, const Means& means)
{
    const size_t most = mostCovered(columns), largestWeight = columns.from * mostParts(rows);
    const auto area = static_cast<uint32_t>(uint64_t{columns.from} * rows.from);
    if (r.srcWidth < kBytes || most > 4 || uint64_t{columns.from} * rows.from > kMostOfMeanOfFloats)
        return false;
    if (most <= 2 && bytesOfWindow<2>(columns) <= kBytes && means.ofShortSums.exists()) {
        if (largestWeight <= INT8_MAX)
            return averageStrips(r, columns, rows, AreasByWords<false, Mean16>(area, means.ofShortSums));
        if (largestWeight <= UINT8_MAX)
            return averageStrips(r, columns, rows, AreasByWords<true, Mean16>(area, means.ofShortSums));
    }
    if (bytesOfWindow<4>(columns) > kBytes)
        return false;
    if (mostParts(rows) <= kMostMultiples && averageStrips(r, columns, rows, AreasByIntegers(area)))
        return true;
    return mostParts(columns) <= INT8_MAX ? averageStrips(r, columns, rows, AreasByFloats<false>(area, columns.from))
                                          : averageStrips(r, columns, rows, AreasByFloats<true>(area, columns.from));
}
#else
bool averageStrips(const Resizing&, Axis, Axis, const Means&)
{
    return false;
}
#endif

// Areas of whole pixels. False where they are too large.
bool averageBlocks(const Resizing& r, uint32_t across, uint32_t down, const Mean16& mean)
{
    const auto average = blockMeans<uint16_t>(across);
    if (!average || !mean.exists() || r.dstWidth < kColumns)
        return false;
    for (size_t y = 0; y < r.dstHeight; ++y)
        average(sourceRow(r, y * down), down, r.srcStride, mean, r.dstWidth, targetRow(r, y));
    return true;
}

void scaleArea(const Resizing& r)
{
    if (isCopy(r)) {
        copyRows(r, 1);
        return;
    }
    if (isReducedBy(r, 2)) {
        halve(r);
        return;
    }
    if (isReducedBy(r, 4)) {
        quarter(r);
        return;
    }
    const Axis columns = reduced(columnsOf(r)), rows = reduced(rowsOf(r));
    const uint64_t area = uint64_t{columns.from} * rows.from;
    if (area == 1) { // each pixel covers a part of one
        scaleNearest(r);
        return;
    }
    const Means means(area);
    if (columns.to == 1 && rows.to == 1 && averageBlocks(r, columns.from, rows.from, means.ofShortSums))
        return;
    bool done = averageStrips(r, columns, rows, means);
    if (!done && mostCovered(columns) <= 4 && mostCovered(rows) <= kMostRows) {
        if (means.ofShortSums.exists() && columns.from < 128)
            done = averageColumnsFirst<WeightedSum>(r, columns, rows, means, kAverageRows<&Means::ofShortSums>);
        else if (columns.from > kMostOfSplitSum || rows.from > INT16_MAX || area > kMostOfMean32)
            done = false;
        else
            done = averageColumnsFirst<SplitSum>(r, columns, rows, means,
                                                 area <= kMostOfMeanOfFloats ? kAverageRows<&Means::ofSmallSums>
                                                                             : kAverageRows<&Means::ofSums>);
    }
    if (!done && !averageRowsFirst(r, columns, rows))
        averageAreas(r);
}

bool scaleMeansAtOnce(const Resizing& r, uint32_t pixelSize)
{
    const Axis columns = columnsOf(r), rows = rowsOf(r);
    const size_t widest = (columns.from - 1) / columns.to + 1;
    const bool areBlocks = columns.from % columns.to == 0 && columns.from > columns.to; // which have a way of their own
    if (areBlocks || widest > 4 || (rows.from - 1) / rows.to >= kMostRows)
        return false;
    return (widest <= 2 ? averagePixelsColumnsFirst<1> : averagePixelsColumnsFirst<2>)(r, pixelSize);
}

} // namespace

void irvkScaleDownMNCoreV(const uint8_t* src, uint32_t srcWidth, uint32_t rows, uint32_t srcStride, uint32_t pixelSize,
                          uint8_t* dst, uint32_t dstWidth)
{
    const Axis axis = {srcWidth, dstWidth};
    const size_t widest = (size_t{srcWidth} / dstWidth + 1) * pixelSize;
    if (widest > kChunk || uint64_t{rows} * 255 * widest > UINT32_MAX)
        irvkScaleDownMNCoreC(src, srcWidth, rows, srcStride, pixelSize, dst, dstWidth);
    else if ((pixelSize == 1 ? averageRowOfBlocks<uint16_t> : averageRowOfBlocks<uint32_t>)(src, axis, rows, srcStride,
                                                                                            dst))
        return;
    else
        (pixelSize == 1 ? meansOfColumns<1> : meansOfColumns<2>)(src, axis, rows, srcStride, dst);
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikResizeForms.h"

// Polygons drawn into pictures, row by row: all that lies outside of the picture is left out by arithmetic.
#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <ravik/drawing.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace rvk {
namespace {

// ---- what is drawn with --------------------------------------------------------------------------------------------

// memset, which takes longer than the few bytes that most lines have in a row. `count` is not 0.
void fillBytes(uint8_t* p, size_t count, uint8_t value)
{
    const uint64_t eight = value * UINT64_C(0x0101010101010101);
    if (count > 2 * sizeof eight) {
        memset(p, value, count);
    } else if (count >= sizeof eight) {
        memcpy(p, &eight, sizeof eight);
        memcpy(p + count - sizeof eight, &eight, sizeof eight);
    } else if (count >= sizeof eight / 2) {
        memcpy(p, &eight, sizeof eight / 2);
        memcpy(p + count - sizeof eight / 2, &eight, sizeof eight / 2);
    } else {
        p[0] = p[count / 2] = p[count - 1] = value;
    }
}

// Each puts a pixel, or fills those from `left` to before `right` of row y.
struct GreyPen
{
    Plane<uint8_t> dst;
    uint8_t value;

    void put(size_t y, size_t x) const { dst.row(y)[x] = value; }
    void fill(size_t y, size_t left, size_t right) const { fillBytes(dst.row(y) + left, right - left, value); }
};

struct PlanarPen
{
    GreyPen pens[3];

    void put(size_t y, size_t x) const
    {
        for (const GreyPen& pen : pens)
            pen.put(y, x);
    }
    void fill(size_t y, size_t left, size_t right) const
    {
        for (const GreyPen& pen : pens)
            pen.fill(y, left, right);
    }
};

struct InterleavedPen
{
    static constexpr size_t kPixels = 64;
    Plane<uint8_t> dst;
    uint8_t pixels[3 * kPixels];

    InterleavedPen(Plane<uint8_t> picture, uint8_t value1, uint8_t value2, uint8_t value3) : dst(picture)
    {
        const uint8_t values[] = {value1, value2, value3};
        for (size_t i = 0; i < sizeof pixels; ++i)
            pixels[i] = values[i % 3];
    }
    void put(size_t y, size_t x) const
    {
        for (size_t i = 0; i < 3; ++i)
            dst.row(y)[3 * x + i] = pixels[i];
    }
    void fill(size_t y, size_t left, size_t right) const
    {
        for (size_t x = left; x < right; x += kPixels)
            memcpy(dst.row(y) + 3 * x, pixels, 3 * std::min(right - x, kPixels));
    }
};

// ---- lines ---------------------------------------------------------------------------------------------------------

struct Point
{
    int32_t x, y;
};

Point pointAt(const int32_t* points, size_t i)
{
    return {points[2 * i], points[2 * i + 1]};
}

// floor((first + i * step) / divisor) for i = index, index + 1, ... The divisor is below 2^31.
class Progression
{
public:
    Progression(uint64_t first, uint64_t step, uint64_t divisor, uint64_t index)
        : m_divisor(static_cast<uint32_t>(divisor)), m_value(divide(first + index * step, divisor, m_rest)),
          m_valueOfStep(divide(step, divisor, m_restOfStep))
    {
    }
    uint32_t value() const { return m_value; }
    void next()
    {
        m_value += m_valueOfStep;
        m_rest += m_restOfStep;
        if (m_rest >= m_divisor) {
            m_rest -= m_divisor;
            ++m_value;
        }
    }

private:
    // Divisions are slow, those of 64 bits above all where the machine has words of 32.
    static uint32_t divide(uint64_t number, uint64_t divisor, uint32_t& rest)
    {
        if (number < divisor) {
            rest = static_cast<uint32_t>(number);
            return 0;
        }
        if (number <= UINT32_MAX) {
            rest = static_cast<uint32_t>(number) % static_cast<uint32_t>(divisor);
            return static_cast<uint32_t>(number) / static_cast<uint32_t>(divisor);
        }
        rest = static_cast<uint32_t>(number % divisor);
        return static_cast<uint32_t>(number / divisor);
    }

    uint32_t m_divisor, m_rest = 0, m_restOfStep = 0;
    uint32_t m_value, m_valueOfStep;
};

// Columns from the first to the last.
struct Extent
{
    int32_t first, last;
};

Extent unite(Extent a, Extent b)
{
    return {std::min(a.first, b.first), std::max(a.last, b.last)};
}

// A line's pixels in one row after the other, from p's to q's, beginning with the `row`th. With n steps along the
// longer axis and m along the shorter one, step k has gone floor((2 k m + n) / (2 n)) along the latter; so the first
// step that has gone i is floor((n + 2 m - 1 + (i - 1) * 2 n) / (2 m)).
class LineRows
{
public:
    LineRows(Point p, Point q, uint64_t row)
        : m_start(p.x), m_goesRight(q.x >= p.x), m_columns(uint64_t(std::abs(int64_t{q.x} - p.x))),
          m_rows(uint64_t(std::abs(int64_t{q.y} - p.y))), m_isSteep(m_rows >= m_columns && m_rows > 0), m_row(row),
          m_begin(isSteep() || row == 0 ? 0 : firstStepOf(row).value()),
          m_steps(isSteep() ? Progression(m_rows, 2 * m_columns, 2 * m_rows, row) : firstStepOf(row + 1))
    {
    }
    Extent columns() const
    {
        const uint32_t first = isSteep() ? m_steps.value() : m_begin;
        const uint32_t last = isSteep()         ? first
                              : m_row == m_rows ? static_cast<uint32_t>(m_columns)
                                                : m_steps.value() - 1;
        const auto stepped = [this](uint32_t by) {
            return m_start + (m_goesRight ? 1 : -1) * static_cast<int32_t>(by);
        };
        return m_goesRight ? Extent{stepped(first), stepped(last)} : Extent{stepped(last), stepped(first)};
    }
    void next()
    {
        m_begin = m_steps.value();
        m_steps.next();
        ++m_row;
    }

private:
    bool isSteep() const { return m_isSteep; }
    // Of a flat line.
    Progression firstStepOf(uint64_t row) const
    {
        return m_rows ? Progression(m_columns + 2 * m_rows - 1, 2 * m_columns, 2 * m_rows, row - 1)
                      : Progression(0, 0, 1, 0);
    }

    int32_t m_start;
    bool m_goesRight;
    uint64_t m_columns, m_rows;
    bool m_isSteep;
    uint64_t m_row;
    uint32_t m_begin;    // the first step in this row of a flat line
    Progression m_steps; // that in the next row; the column in this row of a steep line
};

struct PictureSize
{
    int64_t width, height;

    bool has(Point p) const { return p.x >= 0 && p.x < width && p.y >= 0 && p.y < height; }
};

template <class Pen>
void fillClipped(const Pen& pen, PictureSize size, int64_t y, int64_t first, int64_t last)
{
    const int64_t left = std::max<int64_t>(first, 0), right = std::min(last + 1, size.width);
    if (left < right)
        pen.fill(static_cast<size_t>(y), static_cast<size_t>(left), static_cast<size_t>(right));
}

// visit(y, columns) for the rows of a line from p to q between `top` and `bottom`. With a thickness the pixels are squares:
// counted from p's end, row i is made of the line's rows i - thickness + 1 to i, as far as there are such, of all columns
// from the first to the last of these, since neighbours touch.
template <bool isThick, class F>
void forEachRow(Point p, Point q, int64_t top, int64_t bottom, int64_t thickness, F visit)
{
    const int64_t before = thickness / 2, behind = thickness - 1 - before;
    const int64_t lastRow = std::abs(int64_t{q.y} - p.y), down = q.y >= p.y ? 1 : -1;
    const int64_t origin = down > 0 ? p.y - before : p.y + behind;
    const int64_t begin = std::max<int64_t>(0, down > 0 ? top - origin : origin - (bottom - 1));
    const int64_t end = std::min(lastRow + thickness, down > 0 ? bottom - origin : origin - top + 1);
    if (begin >= end)
        return;
    LineRows lead(p, q, static_cast<uint64_t>(std::min(begin, lastRow)));
    LineRows trail = lead;
    if (isThick)
        trail = LineRows(p, q, static_cast<uint64_t>(std::max<int64_t>(0, begin - thickness + 1)));
    for (int64_t i = begin;;) {
        visit(origin + down * i, isThick ? unite(trail.columns(), lead.columns()) : lead.columns());
        if (++i == end)
            return;
        if (i <= lastRow)
            lead.next();
        if (isThick && i >= thickness)
            trail.next();
    }
}

template <class Pen>
void drawThickLine(const Pen& pen, PictureSize size, Point p, Point q, int64_t thickness)
{
    const int64_t before = thickness / 2, behind = thickness - 1 - before;
    if (std::max(p.x, q.x) + behind >= 0 && std::min(p.x, q.x) - before < size.width)
        forEachRow<true>(p, q, 0, size.height, thickness, [&](int64_t y, Extent columns) {
            fillClipped(pen, size, y, columns.first - before, columns.last + behind);
        });
}

// One coordinate of the pixels of a line of `steps` steps: step k is at start + sign * floor((2 k way + steps) / (2
// steps)).
struct Axis
{
    int64_t start, way, sign;

    Axis(int32_t from, int32_t to) : start(from), way(std::abs(int64_t{to} - from)), sign(to < from ? -1 : 1) {}

    // The first step that has gone so far; steps + 1 when none has.
    int64_t firstStep(int64_t gone, int64_t steps) const
    {
        if (gone <= 0 || way == steps)
            return std::clamp<int64_t>(gone, 0, steps + 1);
        return gone > way ? steps + 1 : (steps * (2 * gone - 1) + 2 * way - 1) / (2 * way);
    }
    // The steps from the first to before the last whose coordinate is 0 to size - 1.
    int64_t firstInside(int64_t size, int64_t steps) const
    {
        return firstStep(sign > 0 ? -start : start - (size - 1), steps);
    }
    int64_t firstBehind(int64_t size, int64_t steps) const
    {
        return firstStep((sign > 0 ? size - 1 - start : start) + 1, steps);
    }
};

// A line of thickness 1, but for p itself when q is its neighbour: in a closed polygon it ends another line.
template <class Pen>
void drawEdge(const Pen& pen, PictureSize size, Point p, Point q)
{
    const bool endsInside = size.has(p) && size.has(q);
    const Axis columns(p.x, q.x), rows(p.y, q.y);
    const int64_t steps = std::max(columns.way, rows.way);
    if (steps <= 1) {
        if (size.has(q))
            pen.put(static_cast<size_t>(q.y), static_cast<size_t>(q.x));
        return;
    }
    int64_t begin = 0, end = steps + 1;
    if (!endsInside) {
        begin = std::max(columns.firstInside(size.width, steps), rows.firstInside(size.height, steps));
        end = std::min(columns.firstBehind(size.width, steps), rows.firstBehind(size.height, steps));
    }
    if (begin >= end)
        return;
    // Along the longer axis each step goes on; along the other one it does when the rest reaches a whole.
    const bool isSteep = rows.way == steps;
    const Axis &longer = isSteep ? rows : columns, &shorter = isSteep ? columns : rows;
    const auto whole = static_cast<uint32_t>(2 * steps), part = static_cast<uint32_t>(2 * shorter.way);
    const uint64_t gone = static_cast<uint64_t>(begin) * part + static_cast<uint64_t>(steps);
    auto rest = static_cast<uint32_t>(begin ? gone % whole : gone);
    const auto signOfLonger = static_cast<size_t>(longer.sign), signOfShorter = static_cast<size_t>(shorter.sign);
    auto along = static_cast<size_t>(longer.start + longer.sign * begin);
    auto across = static_cast<size_t>(shorter.start + shorter.sign * static_cast<int64_t>(begin ? gone / whole : 0));
    for (auto left = static_cast<size_t>(end - begin); left > 0; --left) {
        pen.put(isSteep ? along : across, isSteep ? across : along);
        along += signOfLonger;
        rest += part;
        const bool goesOn = rest >= whole;
        rest -= goesOn ? whole : 0;
        across += goesOn ? signOfShorter : 0;
    }
}

// visit(p, q) for each edge of each contour, that back to the first point last.
template <class F>
void forEachEdge(const int32_t* points, const uint32_t* contourSizes, uint32_t nContours, F visit)
{
    for (size_t i = 0; i < nContours; ++i) {
        const size_t count = contourSizes[i];
        for (size_t k = 0; k + 1 < count; ++k)
            visit(pointAt(points, k), pointAt(points, k + 1));
        if (count)
            visit(pointAt(points, count - 1), pointAt(points, 0));
        points += 2 * count;
    }
}

// ---- what edges enclose --------------------------------------------------------------------------------------------

// The part of the picture that polygons can fill: rows and columns from the first to before the last.
struct Box
{
    int32_t left = INT32_MAX, top = INT32_MAX, right = INT32_MIN, bottom = INT32_MIN;

    void include(Point p)
    {
        left = std::min(left, p.x);
        right = std::max(right, p.x + 1);
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y + 1);
    }
    void clip(PictureSize size)
    {
        const auto clamped = [](int32_t v, int64_t most) {
            return static_cast<int32_t>(std::clamp<int64_t>(v, 0, most));
        };
        left = clamped(left, size.width);
        right = clamped(right, size.width);
        top = clamped(top, size.height);
        bottom = clamped(bottom, size.height);
        if (left >= right || top >= bottom)
            left = right = top = bottom = 0;
    }
    bool isEmpty() const { return top == bottom; }
    uint64_t rows() const { return static_cast<uint64_t>(bottom - top); }
    uint64_t columns() const { return static_cast<uint64_t>(right - left); }
};

// A bit for each column of a box, and one behind them: whether there is an odd number of crossings between this pixel
// and the one before. Each row begins with a bit for each of its words, whether there may be crossings in it.
class Crossings
{
public:
    using Word = size_t;
    static constexpr size_t kBits = sizeof(Word) * 8;

    explicit Crossings(const Box& box)
        : m_box(box), m_heads(wordsFor(wordsFor(box.columns() + 1))), m_pitch(m_heads + wordsFor(box.columns() + 1)),
          m_words(box.rows() + 1, m_pitch)
    {
        if (m_words)
            std::fill_n(m_words.get(), m_pitch * static_cast<size_t>(box.rows()), Word{0});
    }
    explicit operator bool() const { return static_cast<bool>(m_words); }

    void cross(Point p, Point q)
    {
        if (p.y > q.y)
            std::swap(p, q);
        const int64_t begin = std::max<int64_t>(p.y, m_box.top), end = std::min<int64_t>(q.y, m_box.bottom);
        if (begin >= end)
            return;
        Word* row = m_words.get() + static_cast<size_t>(begin - m_box.top) * m_pitch;
        if (q.y - p.y == 1)
            return flip(row, p.x);
        // The first column that is not left of the edge.
        const int64_t dx = int64_t{q.x} - p.x, dy = int64_t{q.y} - p.y;
        const bool goesRight = dx > 0;
        Progression steps(static_cast<uint64_t>(goesRight ? dy - 1 : 0), static_cast<uint64_t>(std::abs(dx)),
                          static_cast<uint64_t>(dy), static_cast<uint64_t>(begin - p.y));
        for (int64_t y = begin; y < end; ++y, row += m_pitch, steps.next())
            flip(row,
                 goesRight ? p.x + static_cast<int32_t>(steps.value()) : p.x - static_cast<int32_t>(steps.value()));
    }
    template <class Pen>
    void fill(const Pen& pen) const
    {
        for (size_t y = 0; y < m_box.rows(); ++y) {
            const Word* const row = m_words.get() + y * m_pitch;
            bool isInside = false;
            size_t begin = 0;
            forEachBit(row, m_heads, [&](size_t word) {
                forEachBit(row + m_heads + word, 1, [&](size_t bit) {
                    const size_t column = word * kBits + bit + static_cast<size_t>(m_box.left);
                    if (isInside)
                        pen.fill(y + static_cast<size_t>(m_box.top), begin, column);
                    begin = column;
                    isInside = !isInside;
                });
            });
        }
    }

private:
    static size_t wordsFor(uint64_t bits) { return static_cast<size_t>((bits + kBits - 1) / kBits); }
    template <class F>
    static void forEachBit(const Word* words, size_t count, F visit)
    {
        for (size_t i = 0; i < count; ++i)
            for (Word word = words[i]; word; word &= word - 1)
                visit(i * kBits + static_cast<size_t>(__builtin_ctzll(word)));
    }
    void flip(Word* row, int32_t x) const
    {
        const auto column = static_cast<size_t>(std::clamp(x, m_box.left, m_box.right) - m_box.left);
        const size_t word = column / kBits;
        row[word / kBits] |= Word{1} << word % kBits;
        row[m_heads + word] ^= Word{1} << column % kBits;
    }

    Box m_box;
    size_t m_heads, m_pitch;
    Scratch<Word> m_words;
};

template <class Pen>
rvkStatus drawContours(const Pen& pen, PictureSize size, const int32_t* points, const uint32_t* contourSizes,
                       uint32_t nContours, uint32_t thickness)
{
    if (thickness > 1) {
        forEachEdge(points, contourSizes, nContours,
                    [&](Point p, Point q) { drawThickLine(pen, size, p, q, thickness); });
        return RAVIK_SUCCESS;
    }
    if (thickness == RAVIK_DRAW_FILLED) {
        Box box;
        forEachEdge(points, contourSizes, nContours, [&](Point p, Point) { box.include(p); });
        box.clip(size);
        Crossings crossings(box);
        if (!crossings)
            return RAVIK_ENORES;
        if (!box.isEmpty()) {
            forEachEdge(points, contourSizes, nContours, [&](Point p, Point q) { crossings.cross(p, q); });
            crossings.fill(pen);
        }
    }
    forEachEdge(points, contourSizes, nContours, [&](Point p, Point q) { drawEdge(pen, size, p, q); });
    return RAVIK_SUCCESS;
}

} // namespace

rvkStatus rvkDrawContouru8C(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                            const int32_t* points, const uint32_t* contourSizes, uint32_t nContours, uint32_t thickness,
                            uint8_t value)
{
    return drawContours(GreyPen{{dst, dstStride}, value}, {dstWidth, dstHeight}, points, contourSizes, nContours,
                        thickness);
}

rvkStatus rvkDrawContourInterleavedu8C(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                       const int32_t* points, const uint32_t* contourSizes, uint32_t nContours,
                                       uint32_t thickness, uint8_t value1, uint8_t value2, uint8_t value3)
{
    return drawContours(InterleavedPen({dst, dstStride}, value1, value2, value3), {dstWidth, dstHeight}, points,
                        contourSizes, nContours, thickness);
}

rvkStatus rvkDrawContourPlanaru8C(uint8_t* dst1, uint8_t* dst2, uint8_t* dst3, uint32_t dstWidth, uint32_t dstHeight,
                                  uint32_t dstStride, const int32_t* points, const uint32_t* contourSizes,
                                  uint32_t nContours, uint32_t thickness, uint8_t value1, uint8_t value2,
                                  uint8_t value3)
{
    const PlanarPen pen = {{{{dst1, dstStride}, value1}, {{dst2, dstStride}, value2}, {{dst3, dstStride}, value3}}};
    return drawContours(pen, {dstWidth, dstHeight}, points, contourSizes, nContours, thickness);
}

rvkStatus rvkFillConvexPolyu8C(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                               const int32_t* points, uint32_t nPoints, uint8_t value)
{
    const PictureSize size = {dstWidth, dstHeight};
    Box box;
    for (size_t i = 0; i < nPoints; ++i)
        box.include(pointAt(points, i));
    box.clip(size);
    const Scratch<Extent> extents(box.rows() + 1);
    if (!extents)
        return RAVIK_ENORES;
    std::fill_n(extents.get(), static_cast<size_t>(box.rows()), Extent{INT32_MAX, INT32_MIN});
    forEachEdge(points, &nPoints, 1, [&](Point p, Point q) {
        forEachRow<false>(p, q, box.top, box.bottom, 1, [&](int64_t y, Extent columns) {
            Extent& extent = extents[static_cast<size_t>(y - box.top)];
            extent = unite(extent, columns);
        });
    });
    const GreyPen pen = {{dst, dstStride}, value};
    for (int64_t y = box.top; y < box.bottom; ++y) {
        const Extent& extent = extents[static_cast<size_t>(y - box.top)];
        fillClipped(pen, size, y, extent.first, extent.last);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk

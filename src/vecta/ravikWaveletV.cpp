// Vector implementations of the 5/3 and Haar wavelets. Both walk a picture by pairs of rows, once; what has to be
// transposed goes through strips that stay in the caches.
#include "scratch.h"
#include "vecta/simd/tiles.h"
#include "vecta/vecta.h"

#include <ravik/frequency.h>
#include <ravik/transform.h>

namespace rvk::vecta::RVK_ISA {

decltype(::rvkTransposeu8) rvkTransposeu8V;
decltype(::rvkTransposeu16) rvkTransposeu16V;

namespace {

// Rows of a strip of bytes: what a cache line of the transpose holds.
constexpr size_t kByteRows = 64;

using Samples = Vec<int16_t>;

// f(x, n) for vectors of coefficients at x, whole ones if there are as many; the last overlaps the one before it.
template <class F>
RVK_INLINE void forVectors(size_t width, F f)
{
    constexpr size_t lanes = Samples::lanes;
    if (width < lanes) {
        f(size_t{0}, width);
        return;
    }
    size_t x = 0;
    for (; x + lanes <= width; x += lanes)
        f(x, Constant<lanes>{});
    if (x < width)
        f(width - lanes, Constant<lanes>{});
}

// Vectors of which n elements are wanted: all of them where that is a constant.
template <class T>
RVK_INLINE Vec<T> loadSome(const T* p, Constant<Vec<T>::lanes>)
{
    return load(p);
}
template <class T>
RVK_INLINE Vec<T> loadSome(const T* p, size_t n)
{
    return loadPartial(p, n);
}
template <class T>
RVK_INLINE void storeSome(T* p, Vec<T> v, Constant<Vec<T>::lanes>)
{
    store(p, v);
}
template <class T>
RVK_INLINE void storeSome(T* p, Vec<T> v, size_t n)
{
    storePartial(p, v, n);
}
RVK_INLINE Constant<kBytes> twice(Constant<Samples::lanes>)
{
    return {};
}
RVK_INLINE size_t twice(size_t n)
{
    return 2 * n;
}

// ---- 5/3 ------------------------------------------------------------------------------------------------------------

// floor((a + b + 2) / 4).
RVK_INLINE Samples quarterSum(Samples a, Samples b)
{
    const Samples half = halfSum(a, b);
    return half - shiftRight(half, 1); // (half + 1) >> 1, which may have one bit more in between
}

// Each sample from its neighbours of the other kind.
constexpr auto toHigh = [](Samples odd, Samples before, Samples after)
                            RVK_INLINE_LAMBDA { return odd - halfSum(before, after); };
constexpr auto fromHigh = [](Samples high, Samples before, Samples after)
                              RVK_INLINE_LAMBDA { return high + halfSum(before, after); };
constexpr auto toLow = [](Samples even, Samples before, Samples after)
                           RVK_INLINE_LAMBDA { return even + quarterSum(before, after); };
constexpr auto fromLow = [](Samples low, Samples before, Samples after)
                             RVK_INLINE_LAMBDA { return low - quarterSum(before, after); };

RVK_INLINE void copyRow(int16_t* to, const int16_t* from, size_t width)
{
    __builtin_memcpy(to, from, width * sizeof *to);
}

RVK_NOINLINE void lift(bool high, bool forward, size_t width, int16_t* dst, const int16_t* src, const int16_t* before,
                       const int16_t* after)
{
    if (high && forward)
        mapRow(width, dst, toHigh, src, before, after);
    else if (high)
        mapRow(width, dst, fromHigh, src, before, after);
    else if (forward)
        mapRow(width, dst, toLow, src, before, after);
    else
        mapRow(width, dst, fromLow, src, before, after);
}

// Rows in scratch memory begin behind a margin and end before one, for whole vectors and mirrored samples.
constexpr size_t kMargin = 64;

RVK_INLINE size_t pitchOf(size_t width)
{
    return kMargin + roundedUp(width, 64) + 2 * kMargin;
}

// Stores at most `n` elements of the vector.
RVK_INLINE void storeUpTo(int16_t* p, Samples v, size_t n)
{
    if (n >= Samples::lanes)
        store(p, v);
    else
        storePartial(p, v, n);
}

// The low and the high values of a row in scratch memory.
RVK_NOINLINE void analyseRow(int16_t* x, size_t width, int16_t* low, int16_t* high)
{
    constexpr size_t lanes = Samples::lanes;
    if (width == 1) {
        low[0] = x[0];
        return;
    }
    const size_t lows = (width + 1) / 2, highs = width / 2;
    x[width] = x[width - 2];
    if (width % 2)
        x[width + 1] = x[width - 3];
    Vecs<int16_t, 2> pairs = load2(x);
    Samples before = splat(static_cast<int16_t>(x[1] - ((x[0] + x[2]) >> 1))); // the first high value, mirrored
    for (size_t i = 0; i < lows; i += lanes) {
        const Vecs<int16_t, 2> next = load2(x + 2 * (i + lanes));
        const Samples d = toHigh(pairs[1], pairs[0], extract<1>(pairs[0], next[0]));
        const Samples s = toLow(pairs[0], extract<lanes - 1>(before, d), d);
        storeUpTo(low + i, s, lows - i);
        if (i < highs)
            storeUpTo(high + i, d, highs - i);
        before = d;
        pairs = next;
    }
}

// Its inverse: `row` has the low values and then the high ones. `evens` and `highs` are rows in scratch memory.
RVK_NOINLINE void synthesiseRow(const int16_t* row, size_t width, int16_t* evens, int16_t* odds, int16_t* x)
{
    constexpr size_t lanes = Samples::lanes;
    if (width == 1) {
        x[0] = row[0];
        return;
    }
    const size_t lows = (width + 1) / 2, highs = width / 2;
    copyRow(odds, row + lows, highs);
    odds[-1] = odds[0];
    odds[highs] = odds[highs - 1];
    mapRow(lows, evens, fromLow, row, static_cast<const int16_t*>(odds) - 1, static_cast<const int16_t*>(odds));
    evens[lows] = evens[lows - 1];
    for (size_t i = 0; i < lows; i += lanes) {
        const Samples even = load(evens + i);
        store2(x + 2 * i, Vecs<int16_t, 2>{even, fromHigh(load(odds + i), even, load(evens + i + 1))});
    }
}

// Puts the low and the high row n where `rows(n)` says.
template <class Rows>
RVK_INLINE rvkStatus analysePicture(Plane<const int16_t> src, size_t width, size_t height, Rows rows)
{
    const Scratch<int16_t> lines(3, pitchOf(width));
    if (!lines)
        return RAVIK_ENORES;
    int16_t* const low = lines.get() + kMargin;
    int16_t* high = low + pitchOf(width);
    int16_t* before = high + pitchOf(width);
    for (size_t y = 0; y < height; y += 2) {
        const int16_t* const even = src.row(y);
        const Pair<int16_t*> to = rows(y / 2);
        if (y + 1 < height) {
            lift(true, true, width, high, src.row(y + 1), even, y + 2 < height ? src.row(y + 2) : even);
            lift(false, true, width, low, even, y ? before : high, high);
        } else if (y) {
            lift(false, true, width, low, even, before, before);
        } else {
            copyRow(low, even, width);
        }
        analyseRow(low, width, to.first, to.first + (width + 1) / 2);
        if (y + 1 < height)
            analyseRow(high, width, to.second, to.second + (width + 1) / 2);
        int16_t* const used = before;
        before = high;
        high = used;
    }
    return RAVIK_SUCCESS;
}

// Takes the low and the high row n from where `rows(n)` says. Row y of the picture is written after row y / 2 of both
// has been read.
template <class Rows>
RVK_INLINE rvkStatus synthesisePicture(Plane<int16_t> dst, size_t width, size_t height, Rows rows)
{
    const Scratch<int16_t> lines(5, pitchOf(width));
    if (!lines)
        return RAVIK_ENORES;
    int16_t* const low = lines.get() + kMargin;
    int16_t* const evens = low + pitchOf(width);
    int16_t* const odds = evens + pitchOf(width);
    int16_t* high = odds + pitchOf(width);
    int16_t* before = high + pitchOf(width);
    for (size_t y = 0; y < height; y += 2) {
        const Pair<const int16_t*> from = rows(y / 2);
        const bool hasHigh = y + 1 < height;
        synthesiseRow(from.first, width, evens, odds, low);
        if (hasHigh)
            synthesiseRow(from.second, width, evens, odds, high);
        if (height == 1)
            copyRow(dst.row(0), low, width);
        else
            lift(false, false, width, dst.row(y), low, y ? before : high, hasHigh ? high : before);
        if (y)
            lift(true, false, width, dst.row(y - 1), before, dst.row(y - 2), dst.row(y));
        int16_t* const used = before;
        before = high;
        high = used;
    }
    if (height % 2 == 0)
        lift(true, false, width, dst.row(height - 1), before, dst.row(height - 2), dst.row(height - 2));
    return RAVIK_SUCCESS;
}

// ---- 5/3, transposed: what lies across rows is lifted as rows are, before the transpose and after it, so that no
// lane has to meet its neighbour. A strip is as many columns of the upright picture as a cache line has; its transpose
// goes through the caches in pieces.

constexpr size_t kStrip = 32, kPiece = 32; // rows of a piece

struct StripPiece
{
    alignas(64) int16_t low[kPiece][kStrip], high[kPiece][kStrip];
};

// f(x, n) for vectors of elements at x, of which n count; none overlaps another, since what is known of them changes.
template <class F>
RVK_INLINE void forVectorsApart(size_t width, F f)
{
    size_t x = 0;
    for (; x + Samples::lanes <= width; x += Samples::lanes)
        f(x, Constant<Samples::lanes>{});
    if (x < width)
        f(x, width - x);
}

RVK_INLINE void transposePiece(const int16_t* src, size_t width, size_t height, size_t pitch, int16_t* dst,
                               size_t dstPitch)
{
    rvkTransposeu16V(reinterpret_cast<const uint16_t*>(src), static_cast<uint32_t>(width),
                     static_cast<uint32_t>(height), static_cast<uint32_t>(pitch * sizeof *src),
                     reinterpret_cast<uint16_t*>(dst), static_cast<uint32_t>(dstPitch * sizeof *dst));
}

// Takes the columns of a strip apart into low and high values, piece by piece.
class StripAnalysis
{
public:
    RVK_INLINE StripAnalysis(Plane<const int16_t> src, size_t height) : m_src(src), m_height(height) {}

    // Low and high values from number `first` on.
    RVK_NOINLINE void next(size_t first, size_t count, StripPiece& piece)
    {
        const size_t step = 2 * static_cast<size_t>(m_src.row(1) - m_src.row(0));
        const size_t whole = least(count, (m_height - 1) / 2 - first); // which have an even row after them
        forVectorsApart(kStrip, [&](size_t x, auto) RVK_INLINE_LAMBDA {
            const int16_t* p = m_src.row(2 * first) + x;
            const auto rowAfter = [&](size_t rows) RVK_INLINE_LAMBDA { return load(p + rows * (step / 2)); };
            Samples even = load(p), before = load(m_before + x);
            if (first == 0 && m_height > 1)
                before = toHigh(rowAfter(1), even, m_height > 2 ? rowAfter(2) : even);
            for (size_t i = 0; i < whole; ++i, p += step) {
                const Samples after = rowAfter(2), high = toHigh(rowAfter(1), even, after);
                store(piece.low[i] + x, toLow(even, before, high));
                store(piece.high[i] + x, high);
                before = high;
                even = after;
            }
            store(m_before + x, before);
            if (whole == count)
                return;
            const Samples high = m_height % 2 ? before : toHigh(rowAfter(1), even, even);
            store(piece.low[whole] + x, m_height == 1 ? even : toLow(even, before, high));
            store(piece.high[whole] + x, high);
        });
    }

private:
    Plane<const int16_t> m_src;
    size_t m_height;
    int16_t m_before[kStrip] = {}; // the last high values
};

// What analysis across rows keeps of the rows it has seen: the last pair, and the high row before it.
struct LastPair
{
    int16_t *even, *odd, *before;
};

// Rows first, first + 1, ... of `total` become low and high rows, but for the last pair, which waits for the row after
// it. `n` elements of each.
RVK_NOINLINE void analyseAcross(const int16_t (*rows)[kPiece], size_t first, size_t count, size_t total, size_t n,
                                LastPair last, Plane<int16_t> low, Plane<int16_t> high)
{
    const size_t step = static_cast<size_t>(low.row(1) - low.row(0)), firstPair = first ? first / 2 - 1 : 0;
    forVectorsApart(n, [&](size_t x, auto some) RVK_INLINE_LAMBDA {
        const int16_t* p = rows[first ? 0 : 2] + x;
        const auto row = [&](size_t i) RVK_INLINE_LAMBDA { return loadSome(p + i * kPiece, some); };
        int16_t *toLows = low.row(firstPair) + x, *toHighs = high.row(firstPair) + x;
        Samples even, odd, before;
        if (first > 0) {
            even = loadSome(last.even + x, some);
            odd = loadSome(last.odd + x, some);
            before = loadSome(last.before + x, some);
        } else {
            even = loadSome(rows[0] + x, some);
            odd = total > 1 ? loadSome(rows[1] + x, some) : even;
            before = toHigh(odd, even, total > 2 ? row(0) : even);
        }
        const auto finishPair = [&](Samples after) RVK_INLINE_LAMBDA {
            const Samples d = toHigh(odd, even, after);
            prefetch(toHighs + kPiece, Samples::lanes);
            prefetch(toLows + kPiece, Samples::lanes);
            storeSome(toHighs, d, some);
            storeSome(toLows, toLow(even, before, d), some);
            before = d;
            toHighs += step;
            toLows += step;
        };
        size_t i = first ? 0 : 2;
        for (; i + 1 < count; i += 2, p += 2 * kPiece) {
            finishPair(row(0));
            even = row(0);
            odd = row(1);
        }
        if (i < count) {
            finishPair(row(0));
            even = row(0);
        }
        if (first + count < total) {
            storeSome(last.even + x, even, some);
            storeSome(last.odd + x, odd, some);
            storeSome(last.before + x, before, some);
        } else if (total % 2 == 0) {
            finishPair(even);
        } else {
            storeSome(toLows, total == 1 ? even : toLow(even, before, before), some);
        }
    });
}

// The inverse of what becomes of a strip: puts columns together, of which `columns` are wanted.
class StripSynthesis
{
public:
    RVK_INLINE StripSynthesis(Plane<int16_t> dst, size_t columns, size_t height)
        : m_dst(dst), m_columns(columns), m_height(height)
    {
    }
    // Of the low and high values from number `first` on.
    RVK_NOINLINE void next(size_t first, size_t count, const StripPiece& piece)
    {
        const size_t step = static_cast<size_t>(m_dst.row(1) - m_dst.row(0));
        const size_t whole = least(count, m_height / 2 - first); // which have a high value
        forVectorsApart(m_columns, [&](size_t x, auto some) RVK_INLINE_LAMBDA {
            const int16_t *low = piece.low[0] + x, *high = piece.high[0] + x;
            int16_t* to = m_dst.row(2 * first) + x; // the next even row
            Samples even = load(m_even + x), before = load(m_before + x);
            const auto put = [&](Samples after) RVK_INLINE_LAMBDA {
                if constexpr (Samples::lanes < kStrip) { // no store covers a line, so that each has to be fetched
                    prefetch(to + 15 * step, Samples::lanes);
                    prefetch(to + 16 * step, Samples::lanes);
                }
                storeSome(to - step, fromHigh(before, even, after), some);
                storeSome(to, after, some);
                to += 2 * step;
                even = after;
            };
            size_t i = 0;
            if (first == 0) {
                before = load(high);
                even = m_height == 1 ? load(low) : fromLow(load(low), before, before);
                storeSome(to, even, some);
                to += 2 * step;
                i = 1;
            }
            for (; i < whole; ++i) {
                const Samples next = load(high + i * kStrip);
                put(fromLow(load(low + i * kStrip), before, next));
                before = next;
            }
            if (i < count)
                put(fromLow(load(low + i * kStrip), before, before));
            if (2 * (first + count) == m_height)
                storeSome(to - step, fromHigh(before, even, even), some);
            store(m_even + x, even);
            store(m_before + x, before);
        });
    }

private:
    Plane<int16_t> m_dst;
    size_t m_columns, m_height;
    int16_t m_even[kStrip] = {}, m_before[kStrip] = {}; // the last even row and the last high values
};

// Rows first, first + 1, ... of `total`, of which `low` has the low and `high` the high ones. `n` elements of each.
RVK_NOINLINE void synthesiseAcross(Plane<const int16_t> low, Plane<const int16_t> high, size_t first, size_t count,
                                   size_t total, size_t n, int16_t (*rows)[kPiece])
{
    const size_t pair = first / 2, lastHigh = total / 2 - 1;
    const size_t step = static_cast<size_t>(low.row(1) - low.row(0));
    const size_t whole = least(count / 2, total > 1 ? lastHigh - least(pair, lastHigh) : 0); // with a high row after
    forVectorsApart(n, [&](size_t x, auto some) RVK_INLINE_LAMBDA {
        const auto take = [&](const int16_t* p) RVK_INLINE_LAMBDA {
            prefetch(p + kPiece, Samples::lanes);
            return loadSome(p, some);
        };
        const int16_t* lowRow = low.row(pair) + x;
        int16_t* to = rows[0] + x;
        Samples even = take(lowRow);
        if (total == 1) {
            storeSome(to, even, some);
            return;
        }
        const int16_t* highRow = high.row(least(pair, lastHigh)) + x;
        Samples d = take(highRow);
        even = fromLow(even, pair ? loadSome(high.row(pair - 1) + x, some) : d, d);
        const auto putPair = [&](Samples after) RVK_INLINE_LAMBDA {
            storeSome(to, even, some);
            storeSome(to + kPiece, fromHigh(d, even, after), some);
            to += 2 * kPiece;
            even = after;
        };
        for (size_t i = 0; i < whole; ++i) {
            lowRow += step;
            highRow += step;
            const Samples next = take(highRow);
            putPair(fromLow(take(lowRow), d, next));
            d = next;
        }
        if (whole < count / 2) // the last pair
            putPair(total % 2 ? fromLow(take(lowRow + step), d, d) : even);
        if (count % 2)
            storeSome(to, even, some);
    });
}

} // namespace

rvkStatus rvkDWT53Tabs16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                          uint32_t dstStride)
{
    const Plane in{src, srcStride};
    const Plane out{dst, dstStride};
    const size_t lows = srcHeight - srcHeight / 2, highs = srcHeight / 2;
    if (src != dst)
        return analysePicture(in, srcWidth, srcHeight, [&](size_t n) RVK_INLINE_LAMBDA {
            return Pair<int16_t*>{out.row(n), out.row(lows + n)};
        });
    // High rows would lie on rows that are still needed.
    const Scratch<int16_t> high(highs + 1, srcWidth);
    if (!high)
        return RAVIK_ENORES;
    const rvkStatus status = analysePicture(in, srcWidth, srcHeight, [&](size_t n) RVK_INLINE_LAMBDA {
        return Pair<int16_t*>{out.row(n), high.get() + n * srcWidth};
    });
    if (status == RAVIK_SUCCESS)
        for (size_t n = 0; n < highs; ++n)
            copyRow(out.row(lows + n), high.get() + n * srcWidth, srcWidth);
    return status;
}

rvkStatus rvkIDWT53Tabs16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                           uint32_t dstStride)
{
    const Plane in{src, srcStride};
    const Plane out{dst, dstStride};
    const size_t lows = srcHeight - srcHeight / 2;
    if (src != dst)
        return synthesisePicture(out, srcWidth, srcHeight, [&](size_t n) RVK_INLINE_LAMBDA {
            return Pair<const int16_t*>{in.row(n), in.row(lows + n)};
        });
    // The picture would grow over low rows that are still needed; high rows are read before it reaches them.
    const Scratch<int16_t> low(lows, srcWidth);
    if (!low)
        return RAVIK_ENORES;
    for (size_t n = 0; n < lows; ++n)
        copyRow(low.get() + n * srcWidth, in.row(n), srcWidth);
    return synthesisePicture(out, srcWidth, srcHeight, [&](size_t n) RVK_INLINE_LAMBDA {
        return Pair<const int16_t*>{low.get() + n * srcWidth, in.row(lows + n)};
    });
}

rvkStatus rvkDWT53TabTransposes16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   int16_t* dst, uint32_t dstStride)
{
    const size_t width = srcWidth, height = srcHeight, lowsAcross = width - width / 2, lows = height - height / 2;
    const Scratch<int16_t> lastPair(3, height), padded(width % kStrip ? height : 1, kStrip);
    if (!lastPair || !padded)
        return RAVIK_ENORES;
    const auto rowsAt = [&](size_t row, size_t y) RVK_INLINE_LAMBDA {
        return Plane<int16_t>{Plane{dst, dstStride}.row(row) + y, dstStride};
    };
    StripPiece piece;
    alignas(64) int16_t rows[kStrip][kPiece];
    for (size_t first = 0; first < width; first += kStrip) {
        const size_t columns = least(width - first, kStrip);
        Plane<const int16_t> strip{src + first, srcStride};
        if (columns < kStrip) {
            for (size_t y = 0; y < height; ++y)
                copyRow(padded.get() + y * kStrip, strip.row(y), columns);
            strip = {padded.get(), kStrip * sizeof(int16_t)};
        }
        StripAnalysis analysis(strip, height);
        const auto finish = [&](const int16_t(&values)[kPiece][kStrip], size_t count, size_t y) RVK_INLINE_LAMBDA {
            transposePiece(values[0], kStrip, count, kStrip, rows[0], kPiece);
            int16_t* const last = lastPair.get() + y;
            analyseAcross(rows, first, columns, width, count, {last, last + height, last + 2 * height}, rowsAt(0, y),
                          rowsAt(lowsAcross, y));
        };
        for (size_t n = 0; n < lows; n += kPiece) {
            const size_t count = least(lows - n, kPiece);
            analysis.next(n, count, piece);
            finish(piece.low, count, n);
            if (n < height / 2)
                finish(piece.high, least(height / 2 - n, count), lows + n);
        }
    }
    return RAVIK_SUCCESS;
}

rvkStatus rvkIDWT53TabTransposes16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int16_t* dst, uint32_t dstStride)
{
    const size_t width = srcHeight, height = srcWidth, lowsAcross = width - width / 2, lows = height - height / 2;
    const auto rowsAt = [&](size_t row, size_t y) RVK_INLINE_LAMBDA {
        return Plane<const int16_t>{Plane{src, srcStride}.row(row) + y, srcStride};
    };
    StripPiece piece = {};
    alignas(64) int16_t rows[kStrip][kPiece] = {};
    for (size_t first = 0; first < width; first += kStrip) {
        const size_t columns = least(width - first, kStrip);
        StripSynthesis synthesis({dst + first, dstStride}, columns, height);
        const auto prepare = [&](size_t y, size_t count, int16_t(&values)[kPiece][kStrip]) RVK_INLINE_LAMBDA {
            synthesiseAcross(rowsAt(0, y), rowsAt(lowsAcross, y), first, columns, width, count, rows);
            transposePiece(rows[0], count, kStrip, kPiece, values[0], kStrip);
        };
        for (size_t n = 0; n < lows; n += kPiece) {
            const size_t count = least(lows - n, kPiece);
            prepare(n, count, piece.low);
            if (n < height / 2)
                prepare(lows + n, least(height / 2 - n, count), piece.high);
            synthesis.next(n, count, piece);
        }
    }
    return RAVIK_SUCCESS;
}

// ---- Haar -----------------------------------------------------------------------------------------------------------

namespace {

// Of a pair of rows, or of several of them: LL and HL one behind the other, and LH and HH.
template <class T>
struct HaarRows
{
    T *low, *high;
};

// The coefficients of pairs of columns: of their rows' sums, and of their differences.
struct HaarPairs
{
    Samples lowLow, highLow, lowHigh, highHigh; // HL is highLow: what is high along the rows

    RVK_INLINE HaarPairs(Vec<uint8_t> top, Vec<uint8_t> bottom)
    {
        const auto sums = [](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return bitCast<int16_t>(addNeighbours(v)); };
        const Samples sumTop = sums(top), sumBottom = sums(bottom);
        const Samples differenceTop = subtractNeighbours(top), differenceBottom = subtractNeighbours(bottom);
        lowLow = sumTop + sumBottom;
        highLow = differenceTop + differenceBottom;
        lowHigh = sumTop - sumBottom;
        highHigh = differenceTop - differenceBottom;
    }
};

RVK_INLINE void analyseRows(const uint8_t* top, const uint8_t* bottom, size_t half, HaarRows<int16_t> dst)
{
    forVectors(half, [&](size_t x, auto n) RVK_INLINE_LAMBDA {
        const HaarPairs pairs(loadSome(top + 2 * x, twice(n)), loadSome(bottom + 2 * x, twice(n)));
        storeSome(dst.low + x, pairs.lowLow, n);
        storeSome(dst.low + half + x, pairs.highLow, n);
        storeSome(dst.high + x, pairs.lowHigh, n);
        storeSome(dst.high + half + x, pairs.highHigh, n);
    });
}

// Pixels from sums of even and of odd columns. Sums that 16 bits do not hold are of pixels that are clamped anyway.
RVK_INLINE Vec<uint8_t> pixelsOf(const Vecs<int32_t, 2>& even, const Vecs<int32_t, 2>& odd)
{
    const Vecs<int16_t, 2> sums = {narrowSatInLanes<int16_t>(even), narrowSatInLanes<int16_t>(odd)};
    const Vec<uint8_t> pixels = narrowRoundedInLanes<uint8_t, 2>(sums); // in each block the even and then the odd ones
    return shuffle(pixels, pixels, [](size_t i) { return i / 16 * 16 + i % 16 / 2 + i % 2 * 8; });
}

RVK_INLINE void synthesiseRows(HaarRows<const int16_t> src, size_t half, uint8_t* top, uint8_t* bottom)
{
    const Samples one = splat<int16_t>(1), minusOne = splat<int16_t>(-1);
    const Vecs<int16_t, 2> sum = {one, one}, difference = {one, minusOne};
    const auto plus = [](Vec<int32_t> a, Vec<int32_t> b) RVK_INLINE_LAMBDA { return a + b; };
    const auto minus = [](Vec<int32_t> a, Vec<int32_t> b) RVK_INLINE_LAMBDA { return a - b; };
    forVectors(half, [&](size_t x, auto n) RVK_INLINE_LAMBDA {
        const Vecs<int16_t, 2> low = {loadSome(src.low + x, n), loadSome(src.low + half + x, n)};
        const Vecs<int16_t, 2> high = {loadSome(src.high + x, n), loadSome(src.high + half + x, n)};
        const Vecs<int32_t, 2> evenLow = dotInLanes(low, sum), oddLow = dotInLanes(low, difference);
        const Vecs<int32_t, 2> evenHigh = dotInLanes(high, sum), oddHigh = dotInLanes(high, difference);
        storeSome(top + 2 * x, pixelsOf(both(evenLow, evenHigh, plus), both(oddLow, oddHigh, plus)), twice(n));
        storeSome(bottom + 2 * x, pixelsOf(both(evenLow, evenHigh, minus), both(oddLow, oddHigh, minus)), twice(n));
    });
}

// Pairs of rows from pair `first` on, to or from the same pairs of the picture of coefficients with `lows` low rows.
RVK_NOINLINE void analysePairs(Plane<const uint8_t> src, size_t width, size_t pairs, Plane<int16_t> dst, size_t first,
                               size_t lows)
{
    for (size_t n = 0; n < pairs; ++n)
        analyseRows(src.row(2 * n), src.row(2 * n + 1), anyNumber(width / 2),
                    {dst.row(first + n), dst.row(lows + first + n)});
}

// The coefficients of a tile of pixels, transposed: columns of pairs of bytes become rows. Of the tile, `columns` and
// `rows` pairs are wanted. What the tile below it will write is fetched: the compulsory lines of a transpose are too
// far apart for the hardware to foresee them.
constexpr size_t kTileColumns = kBlock<uint16_t>, kTileRows = Samples::lanes;
template <class Rows>
RVK_INLINE void analyseTile(Plane<const uint8_t> src, size_t columns, Rows rows, Plane<int16_t> low,
                            Plane<int16_t> high, size_t half)
{
    const ptrdiff_t step = 2 * static_cast<ptrdiff_t>(src.stride);
    const auto top = loadColumns<uint16_t>(src.row(0), step), bottom = loadColumns<uint16_t>(src.row(1), step);
    unrolled<kTileColumns>([&](auto x) RVK_INLINE_LAMBDA {
        if (x >= columns)
            return;
        const HaarPairs pairs(bitCast<uint8_t>(top[x]), bitCast<uint8_t>(bottom[x]));
        const auto put = [&](int16_t* p, Samples values) RVK_INLINE_LAMBDA {
            prefetch(p + kTileRows, kTileRows);
            storeSome(p, values, rows);
        };
        put(low.row(x), pairs.lowLow);
        put(low.row(x) + half, pairs.lowHigh);
        put(high.row(x), pairs.highLow);
        put(high.row(x) + half, pairs.highHigh);
    });
}

// Of a picture of `across` x `down` pairs, in strips as wide as a cache line. The last tiles overlap those before them;
// what is narrower or lower than a tile is copied to one.
RVK_NOINLINE void analyseTransposed(Plane<const uint8_t> src, size_t across, size_t down, Plane<int16_t> dst)
{
    constexpr size_t strip = 32;
    const bool isWhole = across >= kTileColumns && down >= kTileRows;
    const size_t columns = least(across, kTileColumns), rows = least(down, kTileRows);
    const auto analyseAt = [&](size_t x, size_t y) RVK_INLINE_LAMBDA {
        const Plane<const uint8_t> pixels{src.row(2 * y) + 2 * x, src.stride};
        const Plane<int16_t> low{dst.row(x) + y, dst.stride}, high{dst.row(across + x) + y, dst.stride};
        if (isWhole) {
            analyseTile(pixels, kTileColumns, Constant<kTileRows>{}, low, high, down);
            return;
        }
        uint8_t tile[2 * kTileRows][2 * kTileColumns] = {};
        for (size_t i = 0; i < 2 * rows; ++i)
            __builtin_memcpy(tile[i], pixels.row(i), 2 * columns);
        analyseTile({tile[0], sizeof tile[0]}, columns, rows, low, high, down);
    };
    for (size_t first = 0; first < across; first += strip)
        for (size_t y = 0; y < down; y += kTileRows)
            for (size_t x = first; x < least(across, first + strip); x += kTileColumns)
                analyseAt(least(x, across - columns), least(y, down - rows));
}

RVK_NOINLINE void synthesisePairs(Plane<const int16_t> src, size_t first, size_t lows, size_t width, size_t pairs,
                                  Plane<uint8_t> dst)
{
    for (size_t n = 0; n < pairs; ++n)
        synthesiseRows({src.row(first + n), src.row(lows + first + n)}, anyNumber(width / 2), dst.row(2 * n),
                       dst.row(2 * n + 1));
}

// Rows of pixels on their way to or from their transpose.
struct ByteStrip
{
    Scratch<uint8_t> rows;
    uint32_t stride;

    RVK_INLINE explicit ByteStrip(uint32_t width)
        : rows(kByteRows, roundedUp(width, 64)), stride(static_cast<uint32_t>(roundedUp(width, 64)))
    {
    }
};

} // namespace

rvkStatus rvkDWTHaaru8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                        uint32_t dstStride)
{
    analysePairs({src, srcStride}, srcWidth, srcHeight / 2, {dst, dstStride}, 0, srcHeight / 2);
    return RAVIK_SUCCESS;
}

rvkStatus rvkIDWTHaars16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride)
{
    synthesisePairs({src, srcStride}, 0, srcHeight / 2, srcWidth, srcHeight / 2, {dst, dstStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkDWTHaarTransposeu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 int16_t* dst, uint32_t dstStride)
{
    analyseTransposed({src, srcStride}, srcWidth / 2, srcHeight / 2, {dst, dstStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkIDWTHaarTransposes16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride)
{
    const ByteStrip strip(srcWidth);
    if (!strip.rows)
        return RAVIK_ENORES;
    for (uint32_t y = 0; y < srcHeight; y += kByteRows) {
        const auto rows = static_cast<uint32_t>(least(srcHeight - y, kByteRows));
        synthesisePairs({src, srcStride}, y / 2, srcHeight / 2, srcWidth, rows / 2, {strip.rows.get(), strip.stride});
        rvkTransposeu8V(strip.rows.get(), srcWidth, rows, strip.stride, dst + y, dstStride);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

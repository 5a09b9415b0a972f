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

// Rows of a strip of bytes, and of 16-bit values: what a cache line of the transpose holds.
constexpr size_t kByteRows = 64, kShortRows = 32;

using Samples = Vec<int16_t>;

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

// Columns of a picture as rows, some at a time.
struct Strip
{
    Scratch<int16_t> rows;
    size_t pitch;

    RVK_INLINE explicit Strip(size_t height) : rows(kShortRows, pitchOf(height)), pitch(pitchOf(height)) {}
    RVK_INLINE int16_t* row(size_t n) const { return rows.get() + n % kShortRows * pitch; }
    // Column n and those behind it, of `end` columns.
    RVK_INLINE void take(Plane<const int16_t> src, size_t n, size_t end, size_t height) const
    {
        rvkTransposeu16V(reinterpret_cast<const uint16_t*>(src.data + n),
                         static_cast<uint32_t>(least(kShortRows, end - n)), static_cast<uint32_t>(height), src.stride,
                         reinterpret_cast<uint16_t*>(rows.get()), static_cast<uint32_t>(pitch * sizeof(int16_t)));
    }
};

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

// The transpose has the columns of the picture as rows: along them first, then across.
rvkStatus rvkDWT53TabTransposes16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   int16_t* dst, uint32_t dstStride)
{
    const Strip strip(srcHeight);
    const Scratch<int16_t> lines(3, srcHeight);
    if (!strip.rows || !lines)
        return RAVIK_ENORES;
    const Plane out{dst, dstStride};
    const size_t width = srcWidth, height = srcHeight, lows = width - width / 2;
    const auto analyseColumn = [&](size_t x, int16_t* to) RVK_INLINE_LAMBDA {
        if (x % kShortRows == 0)
            strip.take({src, srcStride}, x, width, height);
        analyseRow(strip.row(x), height, to, to + (height + 1) / 2);
    };
    int16_t* even = lines.get();
    int16_t* const odd = even + height;
    int16_t* next = odd + height;
    for (size_t x = 0; x < width; x += 2) {
        const size_t n = x / 2;
        if (x == 0)
            analyseColumn(x, even);
        if (x + 1 < width) {
            analyseColumn(x + 1, odd);
            if (x + 2 < width)
                analyseColumn(x + 2, next);
            lift(true, true, height, out.row(lows + n), odd, even, x + 2 < width ? next : even);
        }
        const size_t last = width / 2 - 1; // of the high rows, if there are any
        if (width == 1)
            copyRow(out.row(0), even, height);
        else
            lift(false, true, height, out.row(n), even, out.row(lows + (n ? n - 1 : 0)),
                 out.row(lows + least(n, last)));
        int16_t* const used = even;
        even = next;
        next = used;
    }
    return RAVIK_SUCCESS;
}

rvkStatus rvkIDWT53TabTransposes16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    int16_t* dst, uint32_t dstStride)
{
    const Strip low(srcHeight), high(srcHeight);
    if (!low.rows || !high.rows)
        return RAVIK_ENORES;
    const size_t width = srcWidth, lows = width - width / 2;
    return synthesisePicture(Plane{dst, dstStride}, srcHeight, srcWidth, [&](size_t n) RVK_INLINE_LAMBDA {
        if (n % kShortRows == 0) {
            low.take({src, srcStride}, n, lows, srcHeight);
            if (lows + n < width)
                high.take({src, srcStride}, lows + n, width, srcHeight);
        }
        return Pair<const int16_t*>{low.row(n), high.row(n)};
    });
}

// ---- Haar -----------------------------------------------------------------------------------------------------------

namespace {

// Of a pair of rows, or of several of them: LL and HL one behind the other, and LH and HH.
template <class T>
struct HaarRows
{
    T *low, *high;
};

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

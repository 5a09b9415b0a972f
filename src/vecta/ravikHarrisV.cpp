// Vector implementations of the corner detectors.
//
// Blocks of rows go through all steps while the caches have them: products of gradients, their smoothing, responses and
// the search for the largest of these, which stays two rows behind.
#include "cpu/ravikHarrisC.h"
#include "scratch.h"
#include "vecta/simd/binomials.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;
using Shorts = Vec<int16_t>;
using Words = Vec<int32_t>;
using Floats = Vec<float>;

constexpr size_t kProducts = 3; // of gradients: xx, yy and xy

using Smoothing = BinomialMeans5<>;
constexpr size_t kRowsBefore = Smoothing::rows - 1, kColumnsBefore = Smoothing::columns - 1; // in a window
constexpr size_t kRows = 16;                                                                 // of a block

// ---- gradients -----------------------------------------------------------------------------------------------------

// Of `n` pixels of the middle row, which has one more at either end.
RVK_INLINE void multiplyGradients(size_t n, const uint8_t* above, const uint8_t* row, const uint8_t* below,
                                  Plane<int16_t> products)
{
    const auto multiply = [=](size_t x, auto loadPixels) RVK_INLINE_LAMBDA {
        const Vec<int8_t> dx = halfDifference(loadPixels(row + x + 1), loadPixels(row + x - 1));
        const Vec<int8_t> dy = halfDifference(loadPixels(below + x), loadPixels(above + x));
        store(products.row(0) + x, multiplyWide(dx, dx));
        store(products.row(1) + x, multiplyWide(dy, dy));
        store(products.row(2) + x, multiplyWide(dx, dy));
    };
    if (n < kBytes) {
        multiply(0, [=](const uint8_t* p) RVK_INLINE_LAMBDA { return loadPartial(p, n); });
        return;
    }
    for (size_t next = 0; next < n; next += kBytes) {
        const size_t x = next + kBytes <= n ? next : n - kBytes; // the last step may overlap the one before it
        multiply(x, [](const uint8_t* p) RVK_INLINE_LAMBDA { return load(p); });
    }
}

// ---- responses, of a step of smoothed products ---------------------------------------------------------------------

// Neighbouring gradients cannot all be -128, so sums of two products fit 16 bits.
struct HarrisResponse
{
    RVK_INLINE Vecs<int32_t, 2> operator()(Shorts xx, Shorts yy, Shorts xy) const
    {
        const Shorts trace = xx + yy;
        const Vecs<int32_t, 2> determinant = dotInLanes({{xx, xy}}, {{yy, zero<int16_t>() - xy}});
        const Vecs<int32_t, 2> square = multiplyWideInLanes(trace, trace);
        return orderWidened(
            Vecs<int32_t, 2>{determinant[0] - shiftRight(square[0], 4), determinant[1] - shiftRight(square[1], 4)});
    }
};

// Twice the smaller eigenvalue, as a key in the order of the floats; where it certainly is not above the threshold the
// least key, because roots take long. Factors of 2 in all operations leave the bits of the rest what they are.
struct SmallerEigenvalue
{
    Floats threshold; // twice, and no subnormal number below 0

    RVK_INLINE Vecs<int32_t, 2> operator()(Shorts xx, Shorts yy, Shorts xy) const
    {
        const Vecs<int32_t, 2> sums = widen(xx + yy), differences = widen(xx - yy), mixed = widen(xy);
        Floats trace[2], square[2];
        Mask<float> mayExceed[2];
        unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
            const Floats difference = toFloat(differences[i]), twice = toFloat(mixed[i] + mixed[i]);
            trace[i] = toFloat(sums[i]);
            square[i] = difference * difference + twice * twice;
            // trace - sqrt(square) > threshold, with a margin for what is lost by rounding
            const Floats excess = trace[i] - threshold, margin = splat(1 + 1.0f / (1 << 20));
            mayExceed[i] = greater(excess, zero<float>()) & ~greater(square[i], excess * excess * margin);
        });
        if (!any(mayExceed[0] | mayExceed[1]))
            return {{splat(INT32_MIN), splat(INT32_MIN)}};
        return {{orderKeys(trace[0] - squareRoot(square[0])), orderKeys(trace[1] - squareRoot(square[1]))}};
    }
};

// ---- blocks --------------------------------------------------------------------------------------------------------

// Products of gradients of a part of a block that the first-level cache holds: all three of a row one after the other,
// each behind the last ones of the tile to the left.
struct Tile
{
    static constexpr size_t kColumns = 128, kLead = Shorts::lanes, kPitch = kLead + kColumns;
    static_assert(kColumns % kBytes == 0 && kLead >= kColumnsBefore);

    alignas(kBytes) int16_t products[kRows * kProducts * kPitch];

    RVK_INLINE explicit Tile(size_t rows) // at the left edge
    {
        for (size_t i = 0; i < rows * kProducts; ++i)
            store(products + i * kPitch, zero<int16_t>());
    }
    RVK_INLINE Plane<int16_t> row(size_t y)
    {
        return {products + y * kProducts * kPitch + kLead, kPitch * sizeof(int16_t)};
    }
    // Where the windows begin that end in column x and row y.
    RVK_INLINE const int16_t* window(size_t x, size_t y, size_t product) const
    {
        return products + (y * kProducts + product) * kPitch + kLead - kColumnsBefore + x;
    }
    RVK_INLINE void moveToTheRight(size_t rows)
    {
        for (size_t i = 0; i < rows * kProducts; ++i)
            store(products + i * kPitch, load(products + i * kPitch + kColumns));
    }
};

// What a step of columns hands down to the next block, which would have to begin four rows earlier without it.
struct Column
{
    Smoothing smoothing[kProducts] = {};
};

// The last rows of responses, each at the end of its window: row y and column x of gradients end the windows around row
// y - 1 and column x - 1 of the picture. Beside them stand, a byte for each step of a row, those that have a response
// above the threshold.
struct Responses
{
    static constexpr size_t kToCentre = 1, kLast = kRowsBefore + kRows;
    using Word = uint64_t; // so many bytes are looked at together

    int32_t* data;
    size_t pitch;
    Word* exceeding;
    size_t words; // of a row
    int32_t threshold;

    // By rows and columns of the picture.
    RVK_INLINE int32_t* row(size_t y) const { return data + (y + kToCentre) % kLast * pitch + kToCentre; }
    RVK_INLINE const Word* exceedingOf(size_t y) const { return exceeding + (y + kToCentre) % kLast * words; }
    // By those of gradients.
    RVK_INLINE void put(size_t x, size_t y, const Vecs<int32_t, 2>& v) const
    {
        store(data + y % kLast * pitch + x, v);
        uint8_t* const bytes = reinterpret_cast<uint8_t*>(exceeding + y % kLast * words);
        bytes[x / Smoothing::step] = any(greater(max(v[0], v[1]), splat(threshold)));
    }
};

// Where the registers can hold the sums of all products, nothing smoothed goes through memory. Of 16 they would be
// spilled: 40 % more instructions on 32-bit Arm. Of the 32 of AVX-512, too, since weights take a fifth of them: three
// times as many stores and loads as smoothed products take, and a seventh more time.
#if defined(__aarch64__)
constexpr bool kSmoothsAllAtOnce = true;
#else
constexpr bool kSmoothsAllAtOnce = false;
#endif

// f(y) for all rows, one at least, and maybe for one more: what goes from row to row then changes its registers half as
// often, and clang does not keep it twice for the case that there are no rows.
template <class F>
RVK_INLINE void forRows(size_t rows, F f)
{
    static_assert(kRows % 2 == 0);
    size_t y = 0;
    do {
        f(y);
        f(y + 1);
        y += 2;
    } while (y < rows);
}

// The responses of the windows that end in `n` x `m` gradients from (left, top) on, of which the tile has the products;
// n is a multiple of a step.
template <class Response>
RVK_INLINE void respondToTile(size_t left, size_t top, size_t n, size_t m, const Tile& tile, Column* columns,
                              const Responses& responses, Response response)
{
    constexpr size_t step = Smoothing::step;
    if constexpr (kSmoothsAllAtOnce) {
        for (size_t x = 0; x < n; x += step, ++columns) {
            Column column = *columns;
            forRows(m, [&](auto y) RVK_INLINE_LAMBDA {
                responses.put(left + x, top + y,
                              response(column.smoothing[0].next(tile.window(x, y, 0)),
                                       column.smoothing[1].next(tile.window(x, y, 1)),
                                       column.smoothing[2].next(tile.window(x, y, 2))));
            });
            *columns = column;
        }
    } else {
        alignas(kBytes) int16_t smoothed[kProducts][kRows][Tile::kColumns];
        for (size_t x = 0; x < n; x += step)
            for (size_t i = 0; i < kProducts; ++i) {
                Smoothing smoothing = columns[x / step].smoothing[i];
                forRows(m, [&](auto y)
                               RVK_INLINE_LAMBDA { store(smoothed[i][y] + x, smoothing.next(tile.window(x, y, i))); });
                columns[x / step].smoothing[i] = smoothing;
            }
        for (size_t y = 0; y < m; ++y)
            for (size_t x = 0; x < n; x += step)
                responses.put(left + x, top + y,
                              response(load(smoothed[0][y] + x), load(smoothed[1][y] + x), load(smoothed[2][y] + x)));
    }
}

// Computes the responses of the picture, a block of rows after the other: use(first, end, responses) gets those of rows
// `first` to `end`, and of kRowsBefore rows above. False ends it.
template <class Response, class Use>
RVK_INLINE rvkStatus respondInBlocks(const GreyImage& image, Response response, int32_t threshold, Use use)
{
    const size_t n = image.width - 2, m = image.height - 2; // that have gradients
    const size_t steps = roundedUp(n, Smoothing::step) / Smoothing::step;
    const size_t words = roundedUp(steps, sizeof(Responses::Word)) / sizeof(Responses::Word);
    const uint64_t pitch = roundedUp(image.width, kBytes) + uint64_t{2} * kBytes;
    const Scratch<int32_t> rows(Responses::kLast, pitch);
    const Scratch<Responses::Word> exceeding(Responses::kLast, words);
    const Scratch<Column> columns(steps);
    if (!rows || !exceeding || !columns)
        return RAVIK_ENORES;
    for (size_t i = 0; i < Responses::kLast * words; ++i)
        exceeding[i] = 0;
    for (size_t i = 0; i < steps; ++i)
        columns[i] = {};
    Tile tile(least(kRows, m + m % 2));
    const Plane src = {image.data, image.stride};
    const Responses responses = {rows.get(), static_cast<size_t>(pitch), exceeding.get(), words, threshold};
    for (size_t top = 0; top < m; top += kRows) {
        const size_t count = least(kRows, m - top);
        for (size_t left = 0; left < n; left += Tile::kColumns) {
            const size_t width = least(Tile::kColumns, n - left);
            for (size_t k = 0; k < count; ++k) {
                const size_t y = top + k, x = left + 1;
                multiplyGradients(width, src.row(y) + x, src.row(y + 1) + x, src.row(y + 2) + x, tile.row(k));
            }
            respondToTile(left, top, roundedUp(width, Smoothing::step), count, tile, &columns[left / Smoothing::step],
                          responses, response);
            tile.moveToTheRight(count);
        }
        if (!use(top ? top - Responses::kToCentre : kResponseBorder, top + count - Responses::kToCentre, responses))
            break;
    }
    return RAVIK_SUCCESS;
}

// ---- the largest responses -----------------------------------------------------------------------------------------

// The rows around a row of responses.
struct Neighbours
{
    const int32_t* row[5];
};

RVK_INLINE Words max5(const int32_t* p)
{
    return max(max(max(load(p - 2), load(p - 1)), max(load(p + 1), load(p + 2))), load(p));
}

// Those of a vector of responses that are above the threshold and their neighbours.
RVK_INLINE Mask<int32_t> largest(const Neighbours& rows, size_t x, Words threshold)
{
    const int32_t* const p = rows.row[2] + x;
    const Words centre = load(p);
    Mask<int32_t> mask = greater(centre, threshold);
    if (!any(mask))
        return mask;
    mask = mask & greater(centre, max(max(load(p - 2), load(p - 1)), max(load(p + 1), load(p + 2))));
    mask = mask & greater(centre, max(max5(rows.row[1] + x), max5(rows.row[3] + x)));
    if (!any(mask))
        return mask;
    return mask & greater(centre, max(max5(rows.row[0] + x), max5(rows.row[4] + x)));
}

// Gives the corners of row y from column x to `end`, at most a step, to the taker; false when it wants no more.
RVK_NOINLINE bool takeCorners(const Neighbours& rows, size_t x, size_t end, uint32_t y, int32_t threshold,
                              CornerTaker& taker)
{
    for (constexpr size_t lanes = Words::lanes; x < end; x += lanes) {
        const Mask<int32_t> mask = largest(rows, x, splat(threshold));
        if (!any(mask))
            continue;
        int32_t isCorner[lanes];
        store(isCorner, toVec(mask));
        for (size_t i = 0; i < lanes && x + i < end; ++i)
            if (isCorner[i] && !taker.take(static_cast<uint32_t>(x + i), y, rows.row[2][x + i]))
                return false;
    }
    return true;
}

RVK_INLINE bool takeCornersOfRow(const Responses& responses, const CornerArea& area, uint32_t y, CornerTaker& taker)
{
    constexpr size_t step = Smoothing::step, toCentre = Responses::kToCentre, bytes = sizeof(Responses::Word);
    const Neighbours rows = {
        {responses.row(y - 2), responses.row(y - 1), responses.row(y), responses.row(y + 1), responses.row(y + 2)}};
    const Responses::Word* const exceeding = responses.exceedingOf(y);
    for (size_t i = 0; i < responses.words; ++i)
        for (Responses::Word word = exceeding[i]; word; word &= word - 1) {
            const size_t x = (i * bytes + static_cast<size_t>(__builtin_ctzll(word)) / 8) * step;
            const size_t begin = x < area.left + toCentre ? area.left : x - toCentre;
            const size_t end = least(x + step - toCentre, area.right);
            if (begin < end && !takeCorners(rows, begin, end, y, responses.threshold, taker))
                return false;
        }
    return true;
}

template <class Response>
RVK_INLINE rvkStatus findCorners(const GreyImage& image, const CornerArea& area, int32_t threshold, CornerTaker& taker,
                                 Response response)
{
    const auto take = [&](size_t first, size_t end, const Responses& responses) RVK_INLINE_LAMBDA {
        const size_t bottom = least(end - 2, area.bottom);
        for (size_t y = first < area.top + 2 ? area.top : first - 2; y < bottom; ++y)
            if (!takeCornersOfRow(responses, area, static_cast<uint32_t>(y), taker))
                return false;
        return true;
    };
    return respondInBlocks(image, response, threshold, take);
}

RVK_NOINLINE rvkStatus findHarrisCorners(const GreyImage& image, const CornerArea& area, int32_t threshold,
                                         CornerTaker& taker)
{
    return findCorners(image, area, threshold, taker, HarrisResponse{});
}

int32_t orderKey(float v)
{
    return orderKeys(splat(v)).raw[0];
}

RVK_NOINLINE rvkStatus findGoodFeatures(const GreyImage& image, const CornerArea& area, float32_t threshold,
                                        CornerTaker& taker)
{
    constexpr float leastNormal = __FLT_MIN__;
    const float twice = threshold + threshold;
    const bool isSubnormal = -leastNormal < twice && twice < 0;
    return findCorners(image, area, orderKey(twice), taker,
                       SmallerEigenvalue{splat(isSubnormal ? -leastNormal : twice)});
}

} // namespace

rvkStatus rvkLocalHarrisMaxu8V(const uint8_t* patch, uint32_t width, uint32_t height, uint32_t stride, uint32_t* maxX,
                               uint32_t* maxY, int32_t* maxResponse)
{
    const size_t n = width - 2 * kResponseBorder;
    int32_t best = INT32_MIN;
    size_t bestX = 0, bestY = 0;
    const auto search = [&](size_t first, size_t end, const Responses& responses) RVK_INLINE_LAMBDA {
        for (size_t y = first; y < end; ++y) {
            int32_t* const row = responses.row(y) + kResponseBorder;
            store(row + n, splat(INT32_MIN)); // so that whole vectors have nothing else behind the last response
            Words most = load(row);
            for (size_t x = Words::lanes; x < n; x += Words::lanes)
                most = max(most, load(row + x));
            const int32_t largest = reduceMax(most);
            if (largest <= best)
                continue;
            best = largest;
            bestY = y;
            for (bestX = 0; row[bestX] != largest;)
                ++bestX;
        }
        return true;
    };
    const rvkStatus status = respondInBlocks({patch, width, height, stride}, HarrisResponse{}, INT32_MAX, search);
    if (status == RAVIK_SUCCESS) {
        *maxX = static_cast<uint32_t>(bestX + kResponseBorder);
        *maxY = static_cast<uint32_t>(bestY);
        *maxResponse = best;
    }
    return status;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikHarrisForms.h"

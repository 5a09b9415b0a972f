// Vector implementation of the correlation of patches. The sums of windows are made for a tile of places, row by row:
// those of the picture alone from sums down columns, which a row enters and another leaves; those of products by pairs
// of rows. Scores are compared in single precision first; what may be the best gets its score as the reference forms it.
#include "cpu/ravikNccC.h"
#include "scratch.h"
#include "vecta/simd/products.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr size_t kLanes = Vec<int16_t>::lanes;
constexpr size_t kTile = 256;            // places of a tile
constexpr size_t kSlack = 2 * kLanes;    // elements behind arrays that whole vectors read and write
constexpr uint32_t kMostInVectors = 363; // pixels of a patch for which N and I fit 32 bits: n^2 * 255^2 / 4 < 2^31

RVK_INLINE const uint8_t* pixelAt(const NccImage& image, size_t x, size_t y)
{
    return image.data + y * image.stride + x;
}

// ---- memory -------------------------------------------------------------------------------------

// Of a search for patches of one size.
struct Buffers
{
    uint32_t* columnValues; // of the pixels under each other in the windows of a row: sums
    uint32_t* columnSquares;
    uint32_t* doubled;
    uint32_t* values; // of windows: sums
    uint32_t* squares;
    uint32_t* products;
    int16_t* pair;    // two rows
    int32_t* weights; // of the patch, in pairs of rows

    static constexpr size_t columns(size_t patchWidth) { return kTile + patchWidth + kSlack; }
    static constexpr size_t words(size_t patchWidth, size_t patchHeight)
    {
        return 4 * columns(patchWidth) + 3 * (kTile + kSlack) + (patchHeight + 1) / 2 * patchWidth;
    }
};

RVK_INLINE Buffers buffersIn(uint32_t* memory, size_t patchWidth)
{
    const auto take = [&](size_t words) RVK_INLINE_LAMBDA {
        uint32_t* const taken = memory;
        memory += words;
        return taken;
    };
    Buffers b;
    b.columnValues = take(Buffers::columns(patchWidth));
    b.columnSquares = take(Buffers::columns(patchWidth));
    b.doubled = take(Buffers::columns(patchWidth));
    b.values = take(kTile + kSlack);
    b.squares = take(kTile + kSlack);
    b.products = take(kTile + kSlack);
    b.pair = reinterpret_cast<int16_t*>(take(Buffers::columns(patchWidth)));
    b.weights = reinterpret_cast<int32_t*>(take(0));
    return b;
}

// ---- the best place -----------------------------------------------------------------------------

RVK_INLINE double timesItsSize(double a)
{
    return a * (a < 0 ? -a : a);
}

// Scores are in the order of N |N| / I.
class Search
{
public:
    RVK_INLINE explicit Search(const NccImage& patch)
        : m_n(patch.width * patch.height), m_ofPatch(nccSumsOf(patch)),
          m_patchSpread(nccSpread(m_ofPatch, m_n)), m_best{}, m_limit(-__builtin_inf())
    {
    }
    RVK_INLINE bool isPossible() const { return m_patchSpread != 0; }
    RVK_INLINE const NccBest& best() const { return m_best; }

    // The places from `first` to before `end` of the tile that begins at (x, y).
    RVK_INLINE void offer(const Buffers& sums, size_t first, size_t end, uint32_t x, uint32_t y)
    {
        constexpr size_t lanes = Vec<int32_t>::lanes;
        const auto offerEach = [&](size_t from, size_t to) RVK_INLINE_LAMBDA {
            for (size_t i = from; i < to; ++i)
                offerOne(sums.products[i], sums.values[i], sums.squares[i], x + static_cast<uint32_t>(i), y);
        };
        if (m_n > kMostInVectors)
            return offerEach(first, end);
        for (size_t i = first; i < end; i += lanes)
            if (mayHaveABest(sums, i))
                offerEach(i, least(i + lanes, end));
    }

private:
    RVK_INLINE bool mayHaveABest(const Buffers& sums, size_t i) const
    {
        const Vec<uint32_t> n = splat(m_n), values = load(sums.values + i);
        const Vec<float> covariance =
            toFloat(bitCast<int32_t>(load(sums.products + i) * n - values * splat(m_ofPatch.values)));
        const Vec<float> spread = toFloat(bitCast<int32_t>(load(sums.squares + i) * n - values * values));
        constexpr double error = 0x1p-20; // more than that of three roundings
        const auto limit = static_cast<float>(m_limit - (m_limit < 0 ? -m_limit : m_limit) * error);
        return any(greater(covariance * abs(covariance), spread * splat(limit)));
    }

    RVK_NOINLINE void offerOne(uint32_t products, uint32_t values, uint32_t squares, uint32_t x, uint32_t y)
    {
        const int64_t spread = int64_t{m_n} * squares - int64_t{values} * values;
        const int64_t covariance = int64_t{m_n} * products - int64_t{m_ofPatch.values} * values;
        const double size = timesItsSize(static_cast<double>(covariance));
        if (spread == 0 || !(size > m_limit * static_cast<double>(spread)))
            return;
        const double score = nccScore(covariance, m_patchSpread, spread);
        const bool isEarlier = y < m_best.y || (y == m_best.y && x < m_best.x); // tiles come column by column
        if (m_best.exists && !(score > m_best.score || (score == m_best.score && isEarlier)))
            return;
        m_best = {score, x, y, true};
        // Below by more than what rounding can make of equal scores, and below 0.
        const double ratio = size / static_cast<double>(spread);
        m_limit = ratio - (ratio < 0 ? -ratio : ratio) * 0x1p-40 - 0x1p-60;
    }

    const uint32_t m_n;
    const NccSums m_ofPatch;
    const int64_t m_patchSpread;
    NccBest m_best;
    double m_limit; // of N |N| / I
};

// ---- sums of the picture ------------------------------------------------------------------------

// A row of pixels enters the windows; none of them leaves.
RVK_NOINLINE void addRow(const uint8_t* __restrict row, size_t n, uint32_t* __restrict values,
                         uint32_t* __restrict squares)
{
    for (size_t i = 0; i < n; ++i) {
        const uint32_t pixel = row[i];
        values[i] += pixel;
        squares[i] += pixel * pixel;
    }
}

// One row takes another's place.
RVK_NOINLINE void moveOn(const uint8_t* __restrict enters, const uint8_t* __restrict leaves, size_t n,
                         uint32_t* __restrict values, uint32_t* __restrict squares)
{
    for (size_t i = 0; i < n; ++i) {
        const uint32_t in = enters[i], out = leaves[i];
        values[i] += in - out;
        squares[i] += in * in - out * out;
    }
}

// sums[i] = columns[i] + ... + columns[i + n - 1] for `count` windows, from the sums of 1, 2, 4, ... columns.
RVK_NOINLINE void sumWindows(const uint32_t* columns, size_t n, size_t count, uint32_t* doubled, uint32_t* sums)
{
    constexpr size_t lanes = Vec<uint32_t>::lanes;
    const uint32_t* some = columns;
    bool isFirst = true;
    size_t done = 0;
    for (size_t width = 1;; width *= 2) {
        if (n & width) {
            for (size_t i = 0; i < count; i += lanes)
                store(sums + i, isFirst ? load(some + i) : load(sums + i) + load(some + i + done));
            isFirst = false;
            done += width;
        }
        if (done == n)
            return;
        for (size_t i = 0; i + 2 * width < count + n; i += lanes)
            store(doubled + i, load(some + i) + load(some + i + width));
        some = doubled;
    }
}

// ---- products -----------------------------------------------------------------------------------

RVK_INLINE void pairWeights(const NccImage& patch, int32_t* weights)
{
    for (size_t y = 0; y < patch.height; y += 2)
        for (size_t x = 0; x < patch.width; ++x)
            *weights++ = twoWeights(*pixelAt(patch, x, y), y + 1 < patch.height ? *pixelAt(patch, x, y + 1) : 0);
}

// Two rows of n pixels as a pair.
RVK_NOINLINE void pairRows(const uint8_t* first, const uint8_t* second, size_t n, size_t size, int16_t* pair)
{
    if (n < kLanes) {
        const auto some = [=](const uint8_t* p)
                              RVK_INLINE_LAMBDA { return bitCast<int16_t>(widen(loadPartial(p, n))[0]); };
        return storePair<true>(pair, 0, size, some(first), some(second));
    }
    const auto pairAt = [=](size_t x) RVK_INLINE_LAMBDA {
        storePair<true>(pair, x, size, loadShorts(first + x), loadShorts(second + x));
    };
    for (size_t x = 0; x < n - kLanes; x += kLanes)
        pairAt(x);
    pairAt(n - kLanes);
}

// Adds the products with `n` pairs of weights to the sums of windows from `first` to before `end`.
template <bool isFirst>
RVK_INLINE void addRowsOfProducts(const int16_t* pair, size_t size, const int32_t* weights, size_t n, size_t first,
                                  size_t end, uint32_t* products)
{
    for (size_t i = first; i < end; i += kLanes) {
        auto* const out = reinterpret_cast<int32_t*>(products + i);
        ProductSums sums = {};
        if constexpr (!isFirst)
            sums = loadVecs<2>(out);
        for (size_t x = 0; x < n; ++x)
            addProducts(sums, loadPair(pair, i + x, size), loadTwoWeights(weights + x));
        store(out, sums);
    }
}

// ---- the search ---------------------------------------------------------------------------------

struct Columns
{
    uint32_t first, end;
};

// The largest number whose square is at most v.
RVK_INLINE uint64_t rootOf(uint64_t v)
{
    const double guess = __builtin_sqrt(static_cast<double>(v));
    uint64_t root = guess < UINT32_MAX ? static_cast<uint64_t>(guess) : UINT32_MAX;
    while (root * root > v)
        --root;
    while (root < UINT32_MAX && (root + 1) * (root + 1) <= v)
        ++root;
    return root;
}

// Of the places in a row.
RVK_INLINE Columns columnsOf(const NccArea& area, uint32_t y)
{
    if (!area.isCircle)
        return {area.left, area.right};
    const int64_t dy = y - area.centerY;
    const auto down = static_cast<uint64_t>(dy < 0 ? -dy : dy);
    const auto reach = static_cast<int64_t>(rootOf(uint64_t{area.radius} * area.radius - down * down));
    const int64_t first = area.centerX - reach, end = area.centerX + reach + 1;
    return {first > area.left ? static_cast<uint32_t>(first) : area.left,
            end < area.right ? static_cast<uint32_t>(end) : area.right};
}

// The places of an area in columns x to x + count - 1.
RVK_NOINLINE void searchTile(const NccImage& patch, const NccImage& src, const NccArea& area, uint32_t x, size_t count,
                             const Buffers& buffers, Search& search)
{
    const size_t columns = count + patch.width - 1, size = Buffers::columns(patch.width);
    for (size_t i = 0; i < columns; ++i)
        buffers.columnValues[i] = buffers.columnSquares[i] = 0;
    for (size_t y = 0; y < patch.height; ++y)
        addRow(pixelAt(src, x, area.top + y), columns, buffers.columnValues, buffers.columnSquares);
    for (uint32_t y = area.top; y < area.bottom; ++y) {
        if (y > area.top)
            moveOn(pixelAt(src, x, size_t{y} + patch.height - 1), pixelAt(src, x, y - 1), columns, buffers.columnValues,
                   buffers.columnSquares);
        const Columns tried = columnsOf(area, y);
        const size_t first = tried.first > x ? tried.first - x : 0;
        const size_t end = tried.end > x ? least(tried.end - x, count) : 0;
        if (first >= end)
            continue;
        sumWindows(buffers.columnValues, patch.width, count, buffers.doubled, buffers.values);
        sumWindows(buffers.columnSquares, patch.width, count, buffers.doubled, buffers.squares);
        const int32_t* weights = buffers.weights;
        for (uint32_t row = 0; row < patch.height; row += 2, weights += patch.width) {
            const uint8_t* const upper = pixelAt(src, x, size_t{y} + row);
            const uint8_t* const lower = row + 1 < patch.height ? upper + src.stride : upper;
            pairRows(upper, lower, columns, size, buffers.pair);
            if (row == 0)
                addRowsOfProducts<true>(buffers.pair, size, weights, patch.width, first, end, buffers.products);
            else
                addRowsOfProducts<false>(buffers.pair, size, weights, patch.width, first, end, buffers.products);
        }
        search.offer(buffers, first, end, x, y);
    }
}

NccBest findPatch(const NccImage& patch, const NccImage& src, const NccArea& area, uint32_t* memory)
{
    Search search(patch);
    if (!search.isPossible() || area.right <= area.left || area.bottom <= area.top)
        return {};
    const Buffers buffers = buffersIn(memory, patch.width);
    pairWeights(patch, buffers.weights);
    for (size_t x = area.left; x < area.right; x += kTile)
        searchTile(patch, src, area, static_cast<uint32_t>(x), least(kTile, area.right - x), buffers, search);
    return search.best();
}

NccBest findPatch(const NccImage& patch, const NccImage& src, const NccArea& area)
{
    alignas(64) uint32_t memory[Buffers::words(kNccSide, kNccSide)];
    return findPatch(patch, src, area, memory);
}

} // namespace

rvkStatus rvkNCCPatchesOnRectu8V(const uint8_t* patches, uint32_t patchCount, uint32_t patchWidth, uint32_t patchHeight,
                                 uint32_t patchStride, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                 uint32_t srcStride, uint32_t rectX, uint32_t rectY, uint32_t rectWidth,
                                 uint32_t rectHeight, uint32_t* bestX, uint32_t* bestY, float32_t* bestScores)
{
    const Scratch<uint32_t> memory(Buffers::words(patchWidth, patchHeight));
    if (!memory)
        return RAVIK_ENORES;
    const NccImage picture = {src, srcWidth, srcHeight, srcStride};
    for (size_t k = 0; k < patchCount; ++k) {
        const NccImage patch = {patches + k * patchHeight * patchStride, patchWidth, patchHeight, patchStride};
        const NccArea area = nccRectangle(patch, picture, {rectX, rectY}, rectWidth, rectHeight);
        storeNccBest(findPatch(patch, picture, area, memory.get()), patch, bestX + k, bestY + k, bestScores + k);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikNccForms.h"

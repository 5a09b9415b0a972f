// Vector implementations of the bilateral filters.
#include "cpu/ravikBilateralC.h"

#include "scratch.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/bilateral.h>

namespace rvk::vecta::RVK_ISA {
namespace {

using Shorts = Vec<int16_t>;

// ---- windows: arithmetic -------------------------------------------------------------------------------------------

// Sums of as many pixels as a vector of 16-bit elements has, in the order that is cheapest.
using Sums = Vecs<int32_t, 2>;

// Weights and differences of two neighbours.
RVK_INLINE void addNeighbours(Sums& sum, Sums& total, const Vecs<int16_t, 2>& weights,
                              const Vecs<int16_t, 2>& differences)
{
    sum = addDotInLanes(sum, weights, differences);
    total = addBothInLanes(total, weights);
}

struct RangeVectors
{
    Shorts limit, factor, scale;

    // Several at a time, step by step, because each step waits for the one before it.
    template <size_t count>
    RVK_INLINE Vecs<int16_t, count> weights(const Shorts* atDistance, Vecs<int16_t, count> v) const
    {
        const auto forEach = [&](auto step) RVK_INLINE_LAMBDA {
            unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { v.v[i] = step(v.v[i], i); });
        };
        forEach([&](Shorts difference, auto) RVK_INLINE_LAMBDA { return min(difference, limit) * factor; });
        forEach([&](Shorts difference, auto) RVK_INLINE_LAMBDA { return multiplyRounded(difference, scale); });
        forEach([&](Shorts t, auto) RVK_INLINE_LAMBDA { return multiplyRounded(t, addSat(t, t)); });
        forEach([&](Shorts square, auto i) RVK_INLINE_LAMBDA {
            return bitCast<int16_t>(subSat(bitCast<uint16_t>(atDistance[i]), bitCast<uint16_t>(square)));
        });
        forEach([&](Shorts rest, auto) RVK_INLINE_LAMBDA { return multiplyRounded(rest, rest) + splat(kWeightFloor); });
        unrolled<kWeightSquarings>([&](auto) RVK_INLINE_LAMBDA {
            forEach([&](Shorts weight, auto) RVK_INLINE_LAMBDA { return multiplyRounded(weight, weight); });
        });
        return v;
    }
};

// ---- windows: strips -----------------------------------------------------------------------------------------------

// In the place of pixels that do not exist: so far from all others that the weight is 0.
constexpr int16_t kOutside = -32512;

struct Neighbour
{
    int dx, dy;
};

template <int radius>
consteval size_t pixelsInWindow()
{
    size_t count = 0;
    for (int dy = -radius; dy <= radius; ++dy)
        for (int dx = -radius; dx <= radius; ++dx)
            count += isInWindow(dx, dy, radius);
    return count;
}

// The neighbours after a pixel, in the order of the picture. Each has the same weight for the pixel as the pixel for
// it.
template <int radius>
struct Neighbours
{
    static constexpr size_t count = pixelsInWindow<radius>() / 2;
    Neighbour at[count] = {};

    consteval Neighbours()
    {
        size_t n = 0;
        for (int dy = 0; dy <= radius; ++dy)
            for (int dx = dy == 0 ? 1 : -radius; dx <= radius; ++dx)
                if (isInWindow(dx, dy, radius))
                    at[n++] = {dx, dy};
    }
};

struct Sigmas
{
    float32_t color, space;
};

// Columns of the picture, from top to bottom, with the pixels and the weights that the next rows need. Its rows begin
// and end with `radius` columns more, whose pixels are neighbours of those in the strip.
template <int radius>
class Strip
{
    static constexpr Neighbours<radius> neighbours = {};
    static constexpr size_t kNeighbours = Neighbours<radius>::count;
    static constexpr size_t side = 2 * radius + 1;
    static constexpr size_t kStep = Vec<uint8_t>::lanes;
    static constexpr size_t kSize = radius == 2 ? 256 : 128; // of a row
    static constexpr size_t kMargin = Shorts::lanes;         // before and after a row; keeps it aligned
    static constexpr size_t kTogether = radius == 2 ? 6 : radius == 3 ? 2 : 4; // neighbours that are weighed at a time
    static_assert(kSize % kStep == 0 && kMargin >= radius && kNeighbours % kTogether == 0);

public:
    static constexpr size_t columns = kSize - 2 * radius; // at most

    RVK_INLINE explicit Strip(Sigmas sigmas)
    {
        const RangeScale scale = rangeScale(sigmas.color);
        m_range = {splat(scale.limit), splat(scale.factor), splat(scale.scale)};
        for (size_t i = 0; i < kNeighbours; ++i)
            m_atDistance[i] = splat(weightAtDistance(neighbours.at[i].dx, neighbours.at[i].dy, sigmas.space));
    }

    // Columns x to x + count - 1.
    RVK_INLINE void filter(size_t x, size_t count, size_t width, size_t height, Plane<const uint8_t> src,
                           Plane<uint8_t> dst)
    {
        m_size = (count + 2 * radius + kStep - 1) / kStep * kStep;
        __builtin_memset(m_weights, 0, sizeof m_weights); // of the rows above the picture
        for (size_t i = 0; i < side; ++i)
            m_pixelRows[i] = m_pixels[i] + kMargin;
        for (size_t i = 0; i <= radius; ++i)
            m_weightRows[i] = m_weights + kMargin + i * kNeighbours * kSize;
        for (size_t i = 0; i < side - 1; ++i)
            takeRow(i < radius ? nullptr : src.row(i - radius), x, width);
        for (size_t y = 0; y < height; ++y) {
            takeRow(y + radius < height ? src.row(y + radius) : nullptr, x, width);
            pointAtNeighbours();
            addFollowing();
            addPreceding();
            __builtin_memcpy(dst.row(y) + x, m_means + radius, count);
        }
    }

private:
    RangeVectors m_range;
    Shorts m_atDistance[kNeighbours];
    size_t m_size; // of the rows, as far as this strip needs them
    // The last rows, the oldest first.
    int16_t* m_pixelRows[side];
    int16_t* m_weightRows[radius + 1]; // one after the other for each neighbour
    const int16_t* m_following[kNeighbours];
    const int16_t* m_preceding[kNeighbours];
    const int16_t* m_precedingWeights[kNeighbours];
    alignas(kBytes) int16_t m_pixels[side][kMargin + kSize + kMargin];
    alignas(kBytes) int16_t m_weights[kMargin + (radius + 1) * kNeighbours * kSize + kMargin];
    // Of the current row.
    alignas(kBytes) int32_t m_sums[kSize], m_totals[kSize];
    alignas(kBytes) uint8_t m_means[kSize];

    template <size_t count>
    static RVK_INLINE void rotate(int16_t* (&rows)[count])
    {
        int16_t* const oldest = rows[0];
        for (size_t i = 0; i + 1 < count; ++i)
            rows[i] = rows[i + 1];
        rows[count - 1] = oldest;
    }

    static RVK_INLINE void fill(int16_t* to, size_t count)
    {
        for (size_t i = 0; i < count; ++i)
            to[i] = kOutside;
    }

    // The next row of pixels; null above and below the picture.
    RVK_INLINE void takeRow(const uint8_t* row, size_t x, size_t width)
    {
        rotate(m_pixelRows);
        rotate(m_weightRows);
        int16_t* const to = m_pixelRows[side - 1] - radius;
        const size_t size = m_size + 2 * radius;
        if (!row)
            return fill(to, size);
        const size_t before = x < 2 * radius ? 2 * radius - x : 0, first = x + before - 2 * radius;
        const size_t inside = width - first < size - before ? width - first : size - before;
        fill(to, before);
        mapRow(
            inside, to + before, [](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return bitCast<int16_t>(widen(v)); },
            row + first);
        fill(to + before + inside, size - before - inside);
    }

    // For the pixels of the middle row.
    RVK_INLINE void pointAtNeighbours()
    {
        for (size_t n = 0; n < kNeighbours; ++n) {
            const Neighbour to = neighbours.at[n];
            m_following[n] = m_pixelRows[radius + to.dy] + to.dx;
            m_preceding[n] = m_pixelRows[radius - to.dy] - to.dx;
            m_precedingWeights[n] = m_weightRows[radius - to.dy] + n * kSize - to.dx;
        }
    }

    // Weighs the neighbours after the pixels of the middle row and begins the sums.
    RVK_INLINE void addFollowing()
    {
        const RangeVectors range = m_range;
        int16_t* const weights = m_weightRows[radius];
        for (size_t i = 0; i < m_size; i += Shorts::lanes) {
            const Shorts pixels = load(m_pixelRows[radius] + i);
            Sums sum = {zero<int32_t>(), zero<int32_t>()};
            Sums total = {splat<int32_t>(kOwnWeight), splat<int32_t>(kOwnWeight)};
            for (size_t n = 0; n < kNeighbours; n += kTogether) {
                Vecs<int16_t, kTogether> d, w;
                unrolled<kTogether>([&](auto k) RVK_INLINE_LAMBDA {
                    const Shorts others = load(m_following[n + k] + i);
                    d.v[k] = others - pixels;
                    w.v[k] = distance(others, pixels);
                });
                w = range.weights(m_atDistance + n, w);
                unrolled<kTogether>([&](auto k) RVK_INLINE_LAMBDA { store(weights + (n + k) * kSize + i, w.v[k]); });
                unrolled<kTogether / 2>([&](auto pair) RVK_INLINE_LAMBDA {
                    constexpr size_t k = 2 * pair;
                    addNeighbours(sum, total, {w.v[k], w.v[k + 1]}, {d.v[k], d.v[k + 1]});
                });
            }
            store(m_sums + i, sum);
            store(m_totals + i, total);
        }
    }

    // Adds the neighbours before the pixels of the middle row and ends the sums.
    RVK_INLINE void addPreceding()
    {
        for (size_t i = 0; i < m_size; i += kStep)
            store(m_means + i, narrowSat<uint8_t>(Vecs<int16_t, 2>{means(i), means(i + Shorts::lanes)}));
    }

    RVK_INLINE Shorts means(size_t i) const
    {
        const Shorts pixels = load(m_pixelRows[radius] + i);
        Sums sum = loadVecs<2>(m_sums + i), total = loadVecs<2>(m_totals + i);
        for (size_t n = 0; n < kNeighbours; n += 2)
            addNeighbours(sum, total, {load(m_precedingWeights[n] + i), load(m_precedingWeights[n + 1] + i)},
                          {load(m_preceding[n] + i) - pixels, load(m_preceding[n + 1] + i) - pixels});
        return pixels + narrowSatInLanes<int16_t>(Sums{roundToInt(divide(toFloat(sum[0]), toFloat(total[0]))),
                                                       roundToInt(divide(toFloat(sum[1]), toFloat(total[1])))});
    }
};

template <int radius>
RVK_NOINLINE void filterWindows(const uint8_t* src, size_t width, size_t height, uint32_t srcStride, uint8_t* dst,
                                uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    constexpr size_t columns = Strip<radius>::columns;
    Strip<radius> strip({sigmaColor, sigmaSpace});
    for (size_t x = 0; x < width; x += columns)
        strip.filter(x, width - x < columns ? width - x : columns, width, height, {src, srcStride}, {dst, dstStride});
}

// ---- recursive: weights --------------------------------------------------------------------------------------------

using Bytes = Vec<uint8_t>;
using Floats = Vec<float>;
// As many pixels as a vector has bytes.
using Quad = Vecs<float, 4>;

RVK_INLINE Quad toFloats(Bytes v)
{
    const Vecs<uint16_t, 2> wide = widen(v);
    const Vecs<uint32_t, 2> low = widen(wide[0]), high = widen(wide[1]);
    return {toFloat(low[0]), toFloat(low[1]), toFloat(high[0]), toFloat(high[1])};
}

#if defined(__arm__)

// Looked up, because there is no division of vectors: the filter takes 22.0 instructions a pixel, computed as below
// 34.6 (with g++; with clang 25.2 and 25.5), one of them a division.
class RecursiveWeights
{
public:
    RVK_INLINE RecursiveWeights(float32_t sigmaColor, float32_t sigmaSpace, uint32_t size)
    {
        recursiveWeights(m_weights, sigmaColor, sigmaSpace, size);
    }

    RVK_INLINE Quad of(Bytes differences) const
    {
        alignas(kBytes) uint8_t d[Bytes::lanes];
        store(d, differences);
        __asm__("" : "+m"(d)); // or g++ would take the bytes out of the vector one by one
        Quad weights;
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { weights[i] = lookup(d + i * Floats::lanes); });
        return weights;
    }

private:
    float m_weights[256];

    // The compilers would have the four meet in memory.
    RVK_INLINE Floats lookup(const uint8_t* d) const
    {
        float32x4_t four;
        __asm__("vmov %e0, %1, %2\n\tvmov %f0, %3, %4"
                : "=w"(four)
                : "r"(bits(d[0])), "r"(bits(d[1])), "r"(bits(d[2])), "r"(bits(d[3])));
        return vec(four);
    }

    RVK_INLINE uint32_t bits(uint8_t difference) const
    {
        uint32_t bits;
        __builtin_memcpy(&bits, m_weights + difference, sizeof bits);
        return bits;
    }
};

#else

// Computed by the operations of the reference, but for signs.
class RecursiveWeights
{
public:
    RVK_INLINE RecursiveWeights(float32_t sigmaColor, float32_t sigmaSpace, uint32_t size)
        : m_range(splat(sigmaColor * 255)), m_space(splat(recursiveSpace(sigmaSpace, size)))
    {
    }

    RVK_INLINE Quad of(Bytes differences) const
    {
        Quad weights = toFloats(differences);
        unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { weights[i] = m_space * expOfMinus(divide(weights[i], m_range)); });
        return weights;
    }

private:
    Floats m_range, m_space;

    static RVK_INLINE Floats expOfMinus(Floats x)
    {
        const Floats exponent = splat(126.942696f) - min(x * splat(1.442695f), splat(126.0f));
        return bitCast<float>(truncateToInt(exponent * splat(8388608.0f)));
    }
};

#endif

RVK_INLINE Floats blend(Floats weight, Floats before, Floats value)
{
    return weight * before + (splat(1.0f) - weight) * value;
}

RVK_INLINE Floats meanOf(Floats a, Floats b)
{
    return (a + b) * splat(0.5f);
}

// ---- recursive: strips ---------------------------------------------------------------------------------------------

// The results of the rows, for the columns: one strip of the picture after the other, each from top to bottom, so that
// columns run through memory without gaps.
struct Strips
{
    static constexpr size_t columns = Bytes::lanes;
    float* data;
    size_t width, height;

    // Of the strip that begins with column x, which is one of `columns` or, at the end, fewer.
    RVK_INLINE size_t columnsAt(size_t x) const { return least(columns, width - x); }
    RVK_INLINE float* at(size_t x, size_t y) const { return data + x * height + y * columnsAt(x); }
    // What is written and read behind the last strip, whose rows are shorter than vectors.
    static constexpr uint64_t sizeOf(uint64_t width, uint64_t height) { return width * height + columns; }
};

// ---- recursive: rows -----------------------------------------------------------------------------------------------

// One of the 16-byte blocks of v.
template <class T>
RVK_INLINE void storeBlock(T* p, Vec<T> v, [[maybe_unused]] size_t block)
{
    if constexpr (kBytes == 16)
        store(p, v);
    else
        __builtin_memcpy(p, reinterpret_cast<const char*>(&v) + 16 * block, 16);
}

// In each block: the first elements of all n vectors, the second elements, ... n is a power of two.
template <class T, size_t n>
RVK_INLINE void interleaveInLanes(Vec<T> (&v)[n])
{
    constexpr size_t rounds = __builtin_ctz(n);
    unrolled<rounds>([&](auto) RVK_INLINE_LAMBDA {
        Vec<T> zipped[n];
        unrolled<n / 2>([&](auto i) RVK_INLINE_LAMBDA {
            const Vecs<T, 2> z = zipInLanes(v[i], v[i + n / 2]);
            zipped[2 * i] = z[0];
            zipped[2 * i + 1] = z[1];
        });
        unrolled<n>([&](auto i) RVK_INLINE_LAMBDA { v[i] = zipped[i]; });
    });
}

// As many rows side by side as a vector has lanes: all rows' first pixels, second pixels, ... Weights at the edges of
// the picture are 0, and so the filters begin with the first pixel inside.
class RowBlock
{
    static constexpr size_t kRows = Floats::lanes;
    static constexpr size_t kBlocks = kBytes / 16;
    static constexpr size_t kStep = 4; // columns that are filtered at a time: as many as a block has floats

public:
    // In floats: two for each pixel, whose bytes fit in a third one.
    static constexpr uint64_t sizeOf(uint64_t width) { return 3 * (width + Bytes::lanes) * kRows; }

    RVK_INLINE RowBlock(float* memory, size_t width)
        : m_width(width), m_columns(roundedUp(width, kStep)), m_weights(memory),
          m_right(m_weights + (m_columns + 1) * kRows),
          m_pixels(reinterpret_cast<uint8_t*>(m_right + m_columns * kRows) + kRows)
    {
        for (uint8_t* left = m_pixels - kRows; left < m_pixels; ++left) // of the picture
            *left = 0;
    }

    // Rows top to top + count - 1. The others of the block repeat the first one.
    RVK_INLINE void take(Plane<const uint8_t> src, size_t top, size_t count) const
    {
        const uint8_t* rows[kRows];
        for (size_t i = 0; i < kRows; ++i)
            rows[i] = src.row(top + (i < count ? i : 0));
        size_t x = 0;
        for (; x + Bytes::lanes <= m_width; x += Bytes::lanes)
            takeColumns(x, [&](size_t i) RVK_INLINE_LAMBDA { return load(rows[i] + x); });
        if (x < m_width)
            takeColumns(x, [&](size_t i) RVK_INLINE_LAMBDA { return loadPartial(rows[i] + x, m_width - x); });
    }

    RVK_INLINE void weigh(const RecursiveWeights& weights) const
    {
        for (size_t i = 0; i < m_columns * kRows; i += Bytes::lanes)
            store(m_weights + i, weights.of(absDiff(load(m_pixels + i), load(m_pixels + i - kRows))));
        const size_t edges[] = {0, m_width, m_columns};
        for (const size_t x : edges)
            store(m_weights + x * kRows, zero<float>());
    }

    RVK_INLINE void filterToTheRight() const
    {
        Floats right = zero<float>();
        for (size_t i = 0; i < m_columns * kRows; i += Bytes::lanes) {
            Quad values = toFloats(load(m_pixels + i));
            const Quad weights = loadVecs<4>(m_weights + i);
            unrolled<kStep>([&](auto k) RVK_INLINE_LAMBDA {
                right = blend(weights[k], right, values[k]);
                values[k] = right;
            });
            store(m_right + i, values);
        }
    }

    // And gives the means of both ways for the first `count` rows.
    RVK_INLINE void filterToTheLeft(Strips results, size_t top, size_t count) const
    {
        Floats left = zero<float>();
        for (size_t x = m_columns; x > 0;) {
            const size_t begin = (x - 1) / Strips::columns * Strips::columns;
            while (x > begin) {
                x -= kStep;
                const Quad values = toFloats(load(m_pixels + x * kRows)), right = loadVecs<4>(m_right + x * kRows);
                const Quad weights = loadVecs<4>(m_weights + (x + 1) * kRows);
                Floats means[kStep];
                unrolled<kStep>([&](auto i) RVK_INLINE_LAMBDA {
                    constexpr size_t k = kStep - 1 - i;
                    left = blend(weights[k], left, values[k]);
                    means[k] = meanOf(right[k], left);
                });
                interleaveInLanes(means);
                give(means, results.at(begin, top) + (x - begin), results.columnsAt(begin), count);
            }
        }
    }

private:
    size_t m_width, m_columns;
    float* m_weights; // of each column for the one before it
    float* m_right;
    uint8_t* m_pixels;

    template <class Load>
    RVK_INLINE void takeColumns(size_t x, Load loadRow) const
    {
        Bytes v[kRows];
        unrolled<kRows>([&](auto i) RVK_INLINE_LAMBDA { v[i] = loadRow(i); });
        interleaveInLanes(v);
        unrolled<kRows>([&](auto i) RVK_INLINE_LAMBDA {
            for (size_t block = 0; block < kBlocks; ++block)
                storeBlock(m_pixels + (x + 16 * block) * kRows + 16 * i, v[i], block);
        });
    }

    // Rows of four columns. Where the picture has fewer, the rest is overwritten by the next row.
    static RVK_INLINE void give(const Floats (&rows)[kStep], float* to, size_t step, size_t count)
    {
        unrolled<kBlocks>([&](auto block) RVK_INLINE_LAMBDA {
            unrolled<kStep>([&](auto i) RVK_INLINE_LAMBDA {
                constexpr size_t row = block * kStep + i;
                if (row < count)
                    storeBlock(to + row * step, rows[i], block);
            });
        });
    }
};

// ---- recursive: columns --------------------------------------------------------------------------------------------

RVK_INLINE Quad blend(const Quad& weights, const Quad& before, const Quad& values)
{
    return {blend(weights[0], before[0], values[0]), blend(weights[1], before[1], values[1]),
            blend(weights[2], before[2], values[2]), blend(weights[3], before[3], values[3])};
}

// Halves up.
RVK_INLINE Bytes roundedMeans(const Quad& a, const Quad& b)
{
    Vecs<int32_t, 4> r;
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { r[i] = truncateToInt(meanOf(a[i], b[i]) + splat(0.5f)); });
    return narrowSat<uint8_t>(Vecs<int16_t, 2>{narrowSat<int16_t>(Vecs<int32_t, 2>{r[0], r[1]}),
                                               narrowSat<int16_t>(Vecs<int32_t, 2>{r[2], r[3]})});
}

// The columns of a strip.
class ColumnBlock
{
    static constexpr size_t kColumns = Strips::columns;

public:
    static constexpr uint64_t sizeOf(uint64_t height) { return 2 * height * kColumns; }

    RVK_INLINE ColumnBlock(float* memory, size_t height)
        : m_height(height), m_down(memory), m_weights(m_down + height * kColumns)
    {
    }

    template <class Load>
    RVK_INLINE void filterDown(const float* rows, size_t step, const RecursiveWeights& weights, Load loadPixels) const
    {
        Bytes above = loadPixels(0);
        Quad down = loadVecs<4>(rows);
        store(m_down, down);
        for (size_t y = 1; y < m_height; ++y) {
            const Bytes pixels = loadPixels(y);
            const Quad w = weights.of(absDiff(pixels, above));
            above = pixels;
            down = blend(w, down, loadVecs<4>(rows + y * step));
            store(m_weights + y * kColumns, w);
            store(m_down + y * kColumns, down);
        }
    }

    template <class Store>
    RVK_INLINE void filterUp(const float* rows, size_t step, Store storeMeans) const
    {
        size_t y = m_height - 1;
        Quad up = loadVecs<4>(rows + y * step);
        storeMeans(y, roundedMeans(loadVecs<4>(m_down + y * kColumns), up));
        for (; y > 0; --y) {
            up = blend(loadVecs<4>(m_weights + y * kColumns), up, loadVecs<4>(rows + (y - 1) * step));
            storeMeans(y - 1, roundedMeans(loadVecs<4>(m_down + (y - 1) * kColumns), up));
        }
    }

private:
    size_t m_height;
    float* m_down;
    float* m_weights; // of each row for the one above it
};

RVK_INLINE void filterRows(Plane<const uint8_t> src, Strips results, float* memory, const RecursiveWeights& weights)
{
    const RowBlock block(memory, results.width);
    for (size_t top = 0; top < results.height; top += Floats::lanes) {
        const size_t count = least(Floats::lanes, results.height - top);
        block.take(src, top, count);
        block.weigh(weights);
        block.filterToTheRight();
        block.filterToTheLeft(results, top, count);
    }
}

RVK_INLINE void filterColumns(Plane<const uint8_t> src, Strips rows, Plane<uint8_t> dst, float* memory,
                              const RecursiveWeights& weights)
{
    const ColumnBlock block(memory, rows.height);
    size_t x = 0;
    for (; x + Strips::columns <= rows.width; x += Strips::columns) {
        block.filterDown(rows.at(x, 0), Strips::columns, weights,
                         [=](size_t y) RVK_INLINE_LAMBDA { return load(src.row(y) + x); });
        block.filterUp(rows.at(x, 0), Strips::columns,
                       [=](size_t y, Bytes means) RVK_INLINE_LAMBDA { store(dst.row(y) + x, means); });
    }
    if (const size_t count = rows.width - x) {
        block.filterDown(rows.at(x, 0), count, weights,
                         [=](size_t y) RVK_INLINE_LAMBDA { return loadPartial(src.row(y) + x, count); });
        block.filterUp(rows.at(x, 0), count,
                       [=](size_t y, Bytes means) RVK_INLINE_LAMBDA { storePartial(dst.row(y) + x, means, count); });
    }
}

} // namespace

rvkStatus rvkBilateralFilterRecursiveu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    const size_t width = srcWidth, height = srcHeight;
    const Plane<const uint8_t> in = {src, srcStride};
    const Scratch<float> rows(Strips::sizeOf(width, height));
    const Scratch<float> rowBlock(RowBlock::sizeOf(width)), columnBlock(ColumnBlock::sizeOf(height));
    if (!rows || !rowBlock || !columnBlock)
        return RAVIK_ENORES;

    const Strips strips = {rows.get(), width, height};
    filterRows(in, strips, rowBlock.get(), {sigmaColor, sigmaSpace, srcWidth});
    filterColumns(in, strips, {dst, dstStride}, columnBlock.get(), {sigmaColor, sigmaSpace, srcHeight});
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikBilateralForms.h"

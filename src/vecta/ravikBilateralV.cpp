// Vector implementations of the bilateral filters.
#include "cpu/ravikBilateralC.h"

#include "scratch.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

using Shorts = Vec<int16_t>;

// ---- windows: arithmetic -------------------------------------------------------------------------------------------

// Sums of as many pixels as a vector of 16-bit elements has, in the order that is cheapest.
using Sums = Vecs<int32_t, 2>;

#if defined(__x86_64__)

// (a * b + 2^14) >> 15
RVK_INLINE Shorts multiplyRounded(Shorts a, Shorts b)
{
    return vec<int16_t>(RVK_MM(mulhrs_epi16)(reg(a), reg(b)));
}

RVK_INLINE Shorts distance(Shorts a, Shorts b)
{
    return abs(a - b);
}

// Weights and differences of two neighbours.
RVK_INLINE void addNeighbours(Sums& sum, Sums& total, Vecs<int16_t, 2> weights, Vecs<int16_t, 2> differences)
{
    const Vecs<int16_t, 2> w = zipInLanes(weights[0], weights[1]), d = zipInLanes(differences[0], differences[1]);
    const Shorts one = splat<int16_t>(1);
    sum = {sum[0] + dotPairs(w[0], d[0]), sum[1] + dotPairs(w[1], d[1])};
    total = {total[0] + dotPairs(w[0], one), total[1] + dotPairs(w[1], one)};
}

#else

RVK_INLINE Shorts multiplyRounded(Shorts a, Shorts b)
{
    return vec(vqrdmulhq_s16(reg(a), reg(b)));
}

RVK_INLINE Shorts distance(Shorts a, Shorts b)
{
    return absDiff(a, b);
}

RVK_INLINE void addNeighbours(Sums& sum, Sums& total, Vecs<int16_t, 2> weights, Vecs<int16_t, 2> differences)
{
    for (size_t i = 0; i < 2; ++i)
        sum = {vec(vmlal_s16(reg(sum[0]), lowHalf(weights[i]), lowHalf(differences[i]))),
               vec(vmlal_s16(reg(sum[1]), highHalf(weights[i]), highHalf(differences[i])))};
    const auto both = bitCast<uint16_t>(weights[0] + weights[1]); // below 2^16
    const Vecs<uint32_t, 2> t = {bitCast<uint32_t>(total[0]), bitCast<uint32_t>(total[1])};
    total = {bitCast<int32_t>(vec(vaddw_u16(reg(t[0]), lowHalf(both)))),
             bitCast<int32_t>(vec(vaddw_u16(reg(t[1]), highHalf(both))))};
}

#endif

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
            inside, to + before,
            [](Vec<uint8_t> v) RVK_INLINE_LAMBDA {
                const Vecs<uint16_t, 2> wide = widen(v);
                return Vecs<int16_t, 2>{bitCast<int16_t>(wide[0]), bitCast<int16_t>(wide[1])};
            },
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
RVK_INLINE void filterWindows(size_t width, size_t height, Plane<const uint8_t> src, Plane<uint8_t> dst, Sigmas sigmas)
{
    constexpr size_t columns = Strip<radius>::columns;
    Strip<radius> strip(sigmas);
    for (size_t x = 0; x < width; x += columns)
        strip.filter(x, width - x < columns ? width - x : columns, width, height, src, dst);
}

// ---- recursive: rows -----------------------------------------------------------------------------------------------

using Floats = Vec<float>;

RVK_INLINE Floats blend(Floats weight, Floats before, Floats value)
{
    return weight * before + (splat(1.0f) - weight) * value;
}

RVK_INLINE Floats meanOf(Floats a, Floats b)
{
    return (a + b) * splat(0.5f);
}

// As many rows side by side as a vector has lanes.
struct RowBlock
{
    float* values;  // of all rows' first pixels, second pixels, ...
    float* weights; // between those and the pixels before them
    size_t width;

    // Row `lane` of the block.
    RVK_INLINE void take(const uint8_t* row, size_t lane, const float (&weightOf)[256]) const
    {
        for (size_t x = 0; x < width; ++x) {
            values[x * Floats::lanes + lane] = row[x];
            const int difference = x ? row[x] - row[x - 1] : 0;
            weights[x * Floats::lanes + lane] = weightOf[difference < 0 ? -difference : difference];
        }
    }

    RVK_INLINE void give(float* row, size_t lane, const float* results) const
    {
        for (size_t x = 0; x < width; ++x)
            row[x] = results[x * Floats::lanes + lane];
    }

    RVK_INLINE void filter(float* results) const
    {
        constexpr size_t lanes = Floats::lanes;
        Floats right = load(values);
        store(results, right);
        for (size_t x = 1; x < width; ++x) {
            right = blend(load(weights + x * lanes), right, load(values + x * lanes));
            store(results + x * lanes, right);
        }
        const size_t last = width - 1;
        Floats left = load(values + last * lanes);
        store(results + last * lanes, meanOf(right, left));
        for (size_t x = last; x > 0; --x) {
            left = blend(load(weights + x * lanes), left, load(values + (x - 1) * lanes));
            store(results + (x - 1) * lanes, meanOf(load(results + (x - 1) * lanes), left));
        }
    }
};

// ---- recursive: columns --------------------------------------------------------------------------------------------

// Between the pixels of two rows.
RVK_INLINE void weighRows(size_t width, const uint8_t* a, const uint8_t* b, const float (&weightOf)[256],
                          float* weights)
{
    for (size_t x = 0; x < width; ++x) {
        const int difference = a[x] - b[x];
        weights[x] = weightOf[difference < 0 ? -difference : difference];
    }
}

RVK_INLINE void blendRows(size_t width, const float* weights, const float* before, const float* values, float* to)
{
    mapRow(
        width, to, [](Floats weight, Floats b, Floats value) RVK_INLINE_LAMBDA { return blend(weight, b, value); },
        weights, before, values);
}

// Halves up.
RVK_INLINE void roundMeans(size_t width, const float* a, const float* b, uint8_t* to)
{
    const auto rounded = [](Floats x, Floats y) RVK_INLINE_LAMBDA { return truncateToInt(meanOf(x, y) + splat(0.5f)); };
    mapRow(
        width, to,
        [=](Vecs<float, 4> x, Vecs<float, 4> y) RVK_INLINE_LAMBDA {
            const auto low = narrowSat<int16_t>(Vecs<int32_t, 2>{rounded(x[0], y[0]), rounded(x[1], y[1])});
            const auto high = narrowSat<int16_t>(Vecs<int32_t, 2>{rounded(x[2], y[2]), rounded(x[3], y[3])});
            return narrowSat<uint8_t>(Vecs<int16_t, 2>{low, high});
        },
        a, b);
}

} // namespace

#define RVK_BILATERAL_FILTER(name, radius)                                                                            \
    rvkStatus name##_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst, \
                         uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)                              \
    {                                                                                                                 \
        filterWindows<radius>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride}, {sigmaColor, sigmaSpace});     \
        return RAVIK_SUCCESS;                                                                                         \
    }                                                                                                                 \
    void name##V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,         \
                 uint32_t dstStride)                                                                                  \
    {                                                                                                                 \
        name##_v2V(src, srcWidth, srcHeight, srcStride, dst, dstStride, kBilateralSigmaColor,                         \
                   bilateralSigmaSpace(radius));                                                                      \
    }
RVK_BILATERAL_FILTER(rvkBilateralFilter5x5u8, 2)
RVK_BILATERAL_FILTER(rvkBilateralFilter7x7u8, 3)
RVK_BILATERAL_FILTER(rvkBilateralFilter9x9u8, 4)
#undef RVK_BILATERAL_FILTER

rvkStatus rvkBilateralFilterRecursiveu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                         uint8_t* dst, uint32_t dstStride, float32_t sigmaColor, float32_t sigmaSpace)
{
    constexpr size_t lanes = Floats::lanes;
    const size_t width = srcWidth, height = srcHeight;
    const Plane<const uint8_t> in = {src, srcStride};
    const Plane<uint8_t> out = {dst, dstStride};
    const Scratch<float> rows(width * height), down(width * height), block(3 * lanes * width);
    if (!rows || !down || !block)
        return RAVIK_ENORES;

    float weightOf[256];
    recursiveWeights(weightOf, sigmaColor, sigmaSpace, srcWidth);
    const RowBlock rowBlock = {block.get(), block.get() + lanes * width, width};
    float* const results = block.get() + 2 * lanes * width;
    for (size_t top = 0; top < height; top += lanes) {
        const size_t count = height - top < lanes ? height - top : lanes;
        for (size_t lane = 0; lane < lanes; ++lane)
            rowBlock.take(in.row(top + (lane < count ? lane : 0)), lane, weightOf);
        rowBlock.filter(results);
        for (size_t lane = 0; lane < count; ++lane)
            rowBlock.give(rows.get() + (top + lane) * width, lane, results);
    }

    recursiveWeights(weightOf, sigmaColor, sigmaSpace, srcHeight);
    float* const weights = block.get();
    float* const up = weights + width;
    __builtin_memcpy(down.get(), rows.get(), width * sizeof(float));
    for (size_t y = 1; y < height; ++y) {
        weighRows(width, in.row(y), in.row(y - 1), weightOf, weights);
        blendRows(width, weights, down.get() + (y - 1) * width, rows.get() + y * width, down.get() + y * width);
    }
    __builtin_memcpy(up, rows.get() + (height - 1) * width, width * sizeof(float));
    for (size_t y = height - 1;; --y) {
        roundMeans(width, down.get() + y * width, up, out.row(y));
        if (y == 0)
            return RAVIK_SUCCESS;
        weighRows(width, in.row(y), in.row(y - 1), weightOf, weights);
        blendRows(width, weights, up, rows.get() + (y - 1) * width, up);
    }
}

} // namespace rvk::vecta::RVK_ISA

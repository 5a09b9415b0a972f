// Vector implementations of the correlation and convolution filters.
//
// Products of 16-bit elements and weights are added in 32 bits, modulo 2^32, so that the order is free. x86 multiplies
// two pairs and adds the products in one instruction: rows lie in memory in pairs, an element of the one beside that of
// the other, and two rows of outputs are made at once, whose weights are one row apart. Arm multiplies and adds one
// product at a time; there the two rows of a pair lie one after the other.
//
// Pictures are filtered in strips of columns, whose pairs of rows go through a ring that has as many as a window
// covers. A pair stays where it is in the ring: the weights, which lie in memory twice, turn instead.
#include "scratch.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

using Shorts = Vec<int16_t>;
using Sums = Vecs<int32_t, 2>; // of as many outputs as Shorts has lanes

constexpr size_t kLanes = Shorts::lanes;
constexpr size_t kStep = 2 * kLanes; // outputs that are made at once in each of two rows
constexpr size_t kStrip = 512;       // columns of a strip: the first-level cache holds the ring of a large kernel

// ---- products -----------------------------------------------------------------------------------

// The weights of two neighbours in one word, the first in its low half.
RVK_INLINE int32_t twoWeights(int32_t first, int32_t second)
{
    return static_cast<int32_t>((static_cast<uint32_t>(first) & 0xffff) | static_cast<uint32_t>(second) << 16);
}

#if defined(__x86_64__)

using Weights = Shorts;

RVK_INLINE Weights loadWeights(const int32_t* two)
{
    return bitCast<int16_t>(splat(*two));
}

// Elements of two rows, the first row's in the low halves of words. In order, or, where `ordered` is false, as they
// come cheapest; sums are then to be narrowed likewise.
template <bool ordered>
RVK_INLINE void storePair(int16_t* pair, size_t x, size_t, Shorts first, Shorts second)
{
    store(pair + 2 * x, ordered ? zip(first, second) : zipInLanes(first, second));
}

RVK_INLINE Vecs<int16_t, 2> loadPair(const int16_t* pair, size_t x, size_t)
{
    return loadVecs<2>(pair + 2 * x);
}

RVK_INLINE void addProducts(Sums& sums, const Vecs<int16_t, 2>& pair, Weights weights)
{
    sums[0] = sums[0] + dotPairs(pair[0], weights);
    sums[1] = sums[1] + dotPairs(pair[1], weights);
}

template <bool ordered>
RVK_INLINE Shorts narrowSums(const Sums& sums)
{
    return ordered ? narrowSat<int16_t>(sums) : narrowSatInLanes<int16_t>(sums);
}

#else

using Weights = int16x4_t; // the two again and again

RVK_INLINE Weights loadWeights(const int32_t* two)
{
    return vreinterpret_s16_s32(vld1_dup_s32(two));
}

template <bool>
RVK_INLINE void storePair(int16_t* pair, size_t x, size_t size, Shorts first, Shorts second)
{
    store(pair + x, first);
    store(pair + size + x, second);
}

RVK_INLINE Vecs<int16_t, 2> loadPair(const int16_t* pair, size_t x, size_t size)
{
    return {{load(pair + x), load(pair + size + x)}};
}

RVK_INLINE void addProducts(Sums& sums, const Vecs<int16_t, 2>& pair, Weights weights)
{
    int32x4_t low = reg(sums[0]), high = reg(sums[1]);
    low = vmlal_lane_s16(low, lowHalf(pair[0]), weights, 0);
    high = vmlal_lane_s16(high, highHalf(pair[0]), weights, 0);
    low = vmlal_lane_s16(low, lowHalf(pair[1]), weights, 1);
    high = vmlal_lane_s16(high, highHalf(pair[1]), weights, 1);
    sums = {{vec(low), vec(high)}};
}

template <bool>
RVK_INLINE Shorts narrowSums(const Sums& sums)
{
    return narrowSat<int16_t>(sums);
}

#endif

RVK_INLINE Sums shiftRight(const Sums& sums, unsigned shift)
{
    return {{shiftRight(sums[0], shift), shiftRight(sums[1], shift)}};
}

// ---- kernels ------------------------------------------------------------------------------------

// Weights row by row, read from the first to the last for a correlation and from the last to the first for a
// convolution.
template <class Weight>
struct Taps
{
    const Weight* weights;
    size_t M, N; // columns and rows
    bool turned;

    RVK_INLINE int32_t at(size_t column, size_t row) const // 0 above and below the kernel
    {
        const size_t i = row * M + column;
        return row >= N ? 0 : weights[turned ? M * N - 1 - i : i];
    }
};

// Pairs of rows that the windows of two rows of outputs cover.
RVK_INLINE size_t pairsOf(size_t N)
{
    return (N + 1) / 2;
}

// For each pair of the kernel's rows and each column two words: the weights for the upper outputs, and those for the
// lower outputs, which are one row behind. `times` times one after the other.
template <class Weight>
void pairWeights(const Taps<Weight>& kernel, size_t times, int32_t* words)
{
    for (; times > 0; --times)
        for (size_t pair = 0; pair < pairsOf(kernel.N); ++pair)
            for (size_t column = 0; column < kernel.M; ++column) {
                const size_t row = 2 * pair; // the one before the first is a huge number
                *words++ = twoWeights(kernel.at(column, row), kernel.at(column, row + 1));
                *words++ = twoWeights(kernel.at(column, row - 1), kernel.at(column, row));
            }
}

// ---- rows ---------------------------------------------------------------------------------------

RVK_INLINE void convertElements(int16_t* dst, const int16_t* src, size_t n)
{
    __builtin_memcpy(dst, src, n * sizeof *dst);
}

// Widens bytes to T.
template <class T>
RVK_INLINE void convertElements(T* dst, const uint8_t* src, size_t n)
{
    using Wide = Vec<T>;
    const auto widened = [](const uint8_t* p) RVK_INLINE_LAMBDA {
        if constexpr (isSame<T, float>)
            return toFloat(loadWiden<uint32_t>(p));
        else
            return bitCast<T>(loadWiden<uint16_t>(p));
    };
    if (n < Wide::lanes) {
        for (size_t i = 0; i < n; ++i)
            dst[i] = static_cast<T>(src[i]);
        return;
    }
    for (size_t i = 0; i < n - Wide::lanes; i += Wide::lanes)
        store(dst + i, widened(src + i));
    store(dst + n - Wide::lanes, widened(src + n - Wide::lanes));
}

// `n` elements of a row from position x on, where positions begin `before` ahead of the picture.
template <class T, class S>
RVK_INLINE void copyRow(T* dst, const S* row, size_t width, size_t x, size_t before, size_t n)
{
    const size_t left = least(n, x < before ? before - x : 0); // elements before the picture, and behind it
    const size_t right = x + n > before + width ? least(n, x + n - before - width) : 0;
    if (n > left + right)
        convertElements(dst + left, row + (x + left - before), n - left - right);
    for (size_t i = 0; i < left; ++i)
        dst[i] = row[0];
    for (size_t i = n - right; i < n; ++i)
        dst[i] = row[width - 1];
}

// ---- two rows of outputs ------------------------------------------------------------------------

template <class D>
struct TwoRows
{
    D *upper, *lower;
};

RVK_INLINE auto outputs(int16_t*, Shorts a, Shorts b)
{
    return Vecs<int16_t, 2>{{a, b}};
}
RVK_INLINE auto outputs(uint8_t*, Shorts a, Shorts b)
{
    return narrowSat<uint8_t>(Vecs<int16_t, 2>{{a, b}});
}

template <class V, class D>
RVK_INLINE void storeFirst(D* dst, const V& v, size_t n)
{
    if (n >= kStep)
        store(dst, v);
    else
        storePartial(dst, v, n);
}

// A ring of pairs of rows of `size` elements. The windows have `columns` columns, or, when that is 0, `anyColumns`.
struct Ring
{
    const int16_t* pairs;
    size_t count, size, anyColumns;
};

// The first n outputs of the two rows from the ring; `weights` are those of the ring's first pair. Where rows are the
// same, the lower outputs are written over.
template <bool ordered, size_t columns, class D>
RVK_INLINE void sumWindows(const Ring& ring, const int32_t* weights, unsigned shift, size_t n, TwoRows<D> dst)
{
    for (size_t x = 0; x < n; x += kStep) {
        Sums upperLeft = {}, upperRight = {}, lowerLeft = {}, lowerRight = {};
        const int32_t* word = weights;
        const int16_t* pair = ring.pairs;
        for (size_t p = 0; p < ring.count; ++p, pair += 2 * ring.size)
            for (size_t j = 0; j < (columns ? columns : ring.anyColumns); ++j, word += 2) {
                const Weights upper = loadWeights(word), lower = loadWeights(word + 1);
                const Vecs<int16_t, 2> left = loadPair(pair, x + j, ring.size);
                const Vecs<int16_t, 2> right = loadPair(pair, x + kLanes + j, ring.size);
                addProducts(upperLeft, left, upper);
                addProducts(upperRight, right, upper);
                addProducts(lowerLeft, left, lower);
                addProducts(lowerRight, right, lower);
            }
        const auto result = [&](const Sums& left, const Sums& right) RVK_INLINE_LAMBDA {
            return outputs(dst.upper, narrowSums<ordered>(shiftRight(left, shift)),
                           narrowSums<ordered>(shiftRight(right, shift)));
        };
        storeFirst(dst.lower + x, result(lowerLeft, lowerRight), n - x);
        storeFirst(dst.upper + x, result(upperLeft, upperRight), n - x);
    }
}

// ---- pictures -----------------------------------------------------------------------------------

// What the windows of `width` x `height` outputs cover: they begin beforeX columns and beforeY rows ahead of the
// source.
template <class S>
struct Source
{
    Plane<const S> plane;
    size_t width, height;
    size_t M, N; // of the windows
    size_t beforeX, beforeY;
    size_t outputColumns, outputRows;
};

// A picture whose outputs are all its pixels.
template <class S>
RVK_INLINE Source<S> wholePicture(Plane<const S> plane, size_t width, size_t height, size_t M, size_t N)
{
    return {plane, width, height, M, N, M / 2, N / 2, width, height};
}

// Calls makePair(rows, slot of the ring) for all pairs of rows of the windows, and with each pair that completes the
// windows makeOutputs(slot of the windows' first pair, first row of the two).
template <class MakePair, class MakeOutputs>
RVK_INLINE void rollDown(size_t outputRows, size_t N, MakePair makePair, MakeOutputs makeOutputs)
{
    const size_t slots = pairsOf(N), last = pairsOf(outputRows) + slots - 1;
    for (size_t pair = 0, slot = 0; pair < last; ++pair) {
        makePair(2 * pair, slot);
        slot = slot + 1 == slots ? 0 : slot + 1; // which has the oldest pair
        if (pair + 1 >= slots)
            makeOutputs(slot, 2 * (pair + 1 - slots));
    }
}

template <class D>
RVK_INLINE TwoRows<D> twoRows(Plane<D> dst, size_t y, size_t height, size_t x)
{
    return {dst.row(y) + x, dst.row(y + 1 < height ? y + 1 : y) + x};
}

template <class S, class Weight, class D>
rvkStatus correlate(const Source<S>& src, Taps<Weight> kernel, unsigned shift, Plane<D> dst)
{
    const size_t M = kernel.M, slots = pairsOf(kernel.N);
    const size_t strip = roundedUp(least(src.outputColumns, kStrip), kStep);
    const size_t size = roundedUp(strip + M, kLanes); // of a row in the ring
    const Scratch<int16_t> rows((slots + 1) * 2, size);
    const Scratch<int32_t> words(2 * slots, M * 2);
    if (!rows || !words)
        return RAVIK_ENORES;
    pairWeights(kernel, 2, words.get());
    int16_t *first = rows.get(), *second = first + size, *pairs = second + size;
    for (size_t x = 0; x < src.outputColumns; x += strip) {
        const size_t n = least(strip, src.outputColumns - x), needed = n + M - 1;
        rollDown(
            src.outputRows, kernel.N,
            [&](size_t y, size_t slot) RVK_INLINE_LAMBDA {
                const S* upper = src.plane.row(nearest(y, src.beforeY, src.height));
                const S* lower = src.plane.row(nearest(y + 1, src.beforeY, src.height));
                copyRow(first, upper, src.width, x, src.beforeX, needed);
                copyRow(second, lower, src.width, x, src.beforeX, needed);
                int16_t* pair = pairs + slot * 2 * size;
                for (size_t i = 0; i < needed; i += kLanes)
                    storePair<true>(pair, i, size, load(first + i), load(second + i));
            },
            [&](size_t slot, size_t y) RVK_INLINE_LAMBDA {
                const int32_t* weights = words.get() + (slots - slot) % slots * M * 2;
                sumWindows<true, 0>({pairs, slots, size, M}, weights, shift, n, twoRows(dst, y, src.outputRows, x));
            });
    }
    return RAVIK_SUCCESS;
}

// ---- separable kernels --------------------------------------------------------------------------

// Weighted sums of neighbours along two rows, as a pair of the ring; `words` are the pairWeights of the weights.
RVK_INLINE void sumRows(const int16_t* first, const int16_t* second, size_t words, const int32_t* word, unsigned shift,
                        size_t n, int16_t* pair, size_t size)
{
    for (size_t x = 0; x < n; x += kLanes) {
        Sums upper = {}, lower = {};
#if defined(__x86_64__)
        // Even and odd outputs, whose weights are one element apart.
        for (size_t w = 0; w < words; ++w) {
            const Weights even = loadWeights(word + 2 * w), odd = loadWeights(word + 2 * w + 1);
            const Shorts a = load(first + x + 2 * w), b = load(second + x + 2 * w);
            upper[0] = upper[0] + dotPairs(a, even);
            upper[1] = upper[1] + dotPairs(a, odd);
            lower[0] = lower[0] + dotPairs(b, even);
            lower[1] = lower[1] + dotPairs(b, odd);
        }
        const auto result = [&](const Sums& sums) RVK_INLINE_LAMBDA {
            const Shorts v =
                narrowSatInLanes<int16_t>(shiftRight(sums, shift)); // even ones, then odd ones, in each block
            return shuffle(v, v, [](size_t i) { return i / 8 * 8 + i % 8 / 2 + i % 2 * 4; });
        };
#else
        for (size_t w = 0; w < words; ++w) {
            const Weights two = loadWeights(word + 2 * w);
            const int16_t *a = first + x + 2 * w, *b = second + x + 2 * w;
            addProducts(upper, {{load(a), load(a + 1)}}, two);
            addProducts(lower, {{load(b), load(b + 1)}}, two);
        }
        const auto result = [&](const Sums& sums)
                                RVK_INLINE_LAMBDA { return narrowSat<int16_t>(shiftRight(sums, shift)); };
#endif
        storePair<false>(pair, x, size, result(upper), result(lower));
    }
}

template <class S, class D>
rvkStatus correlateSeparably(const Source<S>& src, Taps<int16_t> kernelX, Taps<int16_t> kernelY, unsigned shiftX,
                             unsigned shiftY, Plane<D> dst)
{
    const size_t slots = pairsOf(src.N), wordsX = pairsOf(src.M);
    const size_t strip = roundedUp(least(src.width, kStrip), kStep);
    const size_t size = roundedUp(strip + src.M, kLanes);
    const Scratch<int16_t> rows((slots + 1) * 2, size);
    const Scratch<int32_t> words(2 * wordsX + 4 * slots);
    if (!rows || !words)
        return RAVIK_ENORES;
    int32_t *weightsX = words.get(), *weightsY = weightsX + 2 * wordsX;
    pairWeights(kernelX, 1, weightsX);
    pairWeights(kernelY, 2, weightsY);
    int16_t *first = rows.get(), *second = first + size, *pairs = second + size;
    for (size_t x = 0; x < src.width; x += strip) {
        const size_t n = least(strip, src.width - x);
        rollDown(
            src.height, src.N,
            [&](size_t y, size_t slot) RVK_INLINE_LAMBDA {
                const S* upper = src.plane.row(nearest(y, src.beforeY, src.height));
                const S* lower = src.plane.row(nearest(y + 1, src.beforeY, src.height));
                copyRow(first, upper, src.width, x, src.beforeX, n + src.M - 1);
                copyRow(second, lower, src.width, x, src.beforeX, n + src.M - 1);
                sumRows(first, second, wordsX, weightsX, shiftX, n, pairs + slot * 2 * size, size);
            },
            [&](size_t slot, size_t y) RVK_INLINE_LAMBDA {
                sumWindows<false, 1>({pairs, slots, size, 1}, weightsY + (slots - slot) % slots * 2, shiftY, n,
                                     twoRows(dst, y, src.height, x));
            });
    }
    return RAVIK_SUCCESS;
}

// Weights of one dimension, as a column: the words of rows and columns of weights are the same.
RVK_INLINE Taps<int16_t> weightsOf(const int16_t* weights, size_t count, bool turned)
{
    return {weights, 1, count, turned};
}

rvkStatus correlateSquare(size_t N, const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                          const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                          int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably(wholePicture(Plane{src, srcStride}, width, height, N, N), weightsOf(kernelX, N, false),
                              weightsOf(kernelY, N, false), shiftX, shiftY, Plane{dst, dstStride});
}

// ---- floats -------------------------------------------------------------------------------------

// The first n outputs of a row from a ring of N rows, whose first is row `top`. Products are added in the kernel's
// order.
RVK_INLINE void sumFloatWindows(const float* ring, size_t size, size_t top, size_t N, const float* kernel, size_t n,
                                float* dst)
{
    constexpr size_t lanes = Vec<float>::lanes, vectors = 4;
    for (size_t x = 0; x < n; x += vectors * lanes) {
        Vecs<float, vectors> sums = {};
        const float* weight = kernel;
        for (size_t k = 0, slot = top; k < N; ++k, slot = slot + 1 == N ? 0 : slot + 1)
            for (const float *p = ring + slot * size + x, *end = p + N; p < end; ++p) {
                const Vec<float> w = splat(*weight++);
                unrolled<vectors>([&](auto v) RVK_INLINE_LAMBDA { sums[v] = sums[v] + w * load(p + v * lanes); });
            }
        if (n - x >= vectors * lanes)
            store(dst + x, sums);
        else
            storePartial(dst + x, sums, n - x);
    }
}

} // namespace

// ---- kernels of two dimensions ------------------------------------------------------------------

rvkStatus rvkFilterCorr3x3s8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int8_t* kernel, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    return correlate(wholePicture(Plane{src, srcStride}, srcWidth, srcHeight, 3, 3), Taps<int8_t>{kernel, 3, 3, false},
                     shift, Plane{dst, dstStride});
}

rvkStatus rvkFilterCorrNxNu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              const int16_t* kernel, uint32_t N, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    return correlate(wholePicture(Plane{src, srcStride}, srcWidth, srcHeight, N, N), Taps<int16_t>{kernel, N, N, false},
                     shift, Plane{dst, dstStride});
}

rvkStatus rvkFilterCorrNxNu8s16V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int16_t* kernel, uint32_t N, uint32_t shift, int16_t* dst, uint32_t dstStride)
{
    return correlate(wholePicture(Plane{src, srcStride}, srcWidth, srcHeight, N, N), Taps<int16_t>{kernel, N, N, false},
                     shift, Plane{dst, dstStride});
}

rvkStatus rvkFilterCorrNxNu8f32V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const float32_t* kernel, uint32_t N, float32_t* dst, uint32_t dstStride)
{
    constexpr size_t step = 4 * Vec<float>::lanes;
    const size_t strip = roundedUp(least(srcWidth, kStrip), step), size = strip + roundedUp(N, Vec<float>::lanes);
    const Scratch<float> ring(N, size);
    if (!ring)
        return RAVIK_ENORES;
    for (size_t x = 0; x < srcWidth; x += strip) {
        const size_t n = least(strip, srcWidth - x);
        for (size_t y = 0, slot = 0; y < size_t{srcHeight} + N - 1; ++y) {
            const uint8_t* row = Plane{src, srcStride}.row(nearest(y, N / 2, srcHeight));
            copyRow(ring.get() + slot * size, row, srcWidth, x, N / 2, n + N - 1);
            slot = slot + 1 == N ? 0 : slot + 1;
            if (y + 1 >= N)
                sumFloatWindows(ring.get(), size, slot, N, kernel, n, Plane{dst, dstStride}.row(y + 1 - N) + x);
        }
    }
    return RAVIK_SUCCESS;
}

rvkStatus rvkFilterConvolveMxNu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, uint8_t* dst,
                                  uint32_t dstStride)
{
    return correlate(wholePicture(Plane{src, srcStride}, srcWidth, srcHeight, M, N), Taps<int16_t>{kernel, M, N, true},
                     shift, Plane{dst, dstStride});
}

rvkStatus rvkFilterConvolveMxNu8s16V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, int16_t* dst,
                                     uint32_t dstStride)
{
    return correlate(wholePicture(Plane{src, srcStride}, srcWidth, srcHeight, M, N), Taps<int16_t>{kernel, M, N, true},
                     shift, Plane{dst, dstStride});
}

rvkStatus rvkConvValids16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, int16_t* dst,
                           uint32_t dstStride)
{
    const Source<int16_t> valid = {Plane{src, srcStride},    srcWidth, srcHeight, M, N, 0, 0, size_t{srcWidth} - M + 1,
                                   size_t{srcHeight} - N + 1};
    return correlate(valid, Taps<int16_t>{kernel, M, N, true}, shift, Plane{dst, dstStride});
}

// ---- separable kernels --------------------------------------------------------------------------

rvkStatus rvkFilterCorrSepMxNu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N,
                                 uint32_t shiftX, uint32_t shiftY, uint8_t* dst, uint32_t dstStride)
{
    return correlateSeparably(wholePicture(Plane{src, srcStride}, srcWidth, srcHeight, M, N),
                              weightsOf(kernelX, M, false), weightsOf(kernelY, N, false), shiftX, shiftY,
                              Plane{dst, dstStride});
}

rvkStatus rvkFilterConvSepMxNs16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N,
                                  uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably(wholePicture(Plane{src, srcStride}, srcWidth, srcHeight, M, N),
                              weightsOf(kernelX, M, true), weightsOf(kernelY, N, true), shiftX, shiftY,
                              Plane{dst, dstStride});
}

rvkStatus rvkFilterCorrSepNxNs16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  const int16_t* kernelX, const int16_t* kernelY, uint32_t N, uint32_t shiftX,
                                  uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(N, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep9x9s16_v2V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                     int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(9, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep11x11s16_v2V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                       int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(11, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep13x13s16_v2V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                       int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(13, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep15x15s16_v2V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                       int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(15, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep17x17s16_v2V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                       int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(17, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}
} // namespace rvk::vecta::RVK_ISA

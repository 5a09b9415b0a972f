// Vector implementations of the correlation and convolution filters.
//
// Two rows of outputs are made at once, from pairs of rows: the weights of the two are one row apart. Pictures are
// filtered in strips of columns, so that the first-level cache holds the pairs that the windows cover.
#include "scratch.h"
#include "vecta/simd/products.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/correlation.h>

namespace rvk::vecta::RVK_ISA {
namespace {

using Shorts = Vec<int16_t>;

constexpr size_t kLanes = Shorts::lanes;
constexpr size_t kStep = 2 * kLanes; // outputs that are made at once in each of two rows
constexpr size_t kStrip = 512;       // columns of a strip of floats

// Columns of a strip of which the first-level cache holds `pairs` pairs of rows.
RVK_INLINE size_t stripColumns(size_t width, size_t pairs)
{
    constexpr size_t cacheBytes = 24576;
    return roundedUp(least(width, cacheBytes / (2 * sizeof(int16_t)) / pairs + 1), kStep);
}

// Weights row by row, read from the first to the last for a correlation and from the last to the first for a
// convolution.
template <class Weight>
struct Taps
{
    const Weight* weights;
    size_t M, N; // columns and rows
    bool turned;

    RVK_INLINE Weight operator[](size_t i) const { return weights[turned ? M * N - 1 - i : i]; }
    RVK_INLINE Weight at(size_t column, size_t row) const // 0 above and below the kernel
    {
        return row < N ? (*this)[row * M + column] : Weight{0};
    }
};

// Pairs of rows that the windows of two rows of outputs cover. N is odd.
RVK_INLINE size_t pairsOf(size_t N)
{
    return (N + 1) / 2;
}

// ---- rows ---------------------------------------------------------------------------------------

template <class T>
RVK_INLINE void convertElements(T* dst, const T* src, size_t n)
{
    __builtin_memcpy(dst, src, n * sizeof *dst);
}

RVK_INLINE void convertElements(float* dst, const uint8_t* src, size_t n)
{
    constexpr size_t lanes = Vec<float>::lanes;
    const auto converted = [](const uint8_t* p) RVK_INLINE_LAMBDA { return toFloat(loadWiden<uint32_t>(p)); };
    if (n < lanes) {
        for (size_t i = 0; i < n; ++i)
            dst[i] = static_cast<float>(src[i]);
        return;
    }
    for (size_t i = 0; i < n - lanes; i += lanes)
        store(dst + i, converted(src + i));
    store(dst + n - lanes, converted(src + n - lanes));
}

// `n` elements of a row from position x on, where positions begin `before` ahead of the picture.
template <class T, class S>
RVK_NOINLINE void copyRow(T* dst, const S* row, size_t width, size_t x, size_t before, size_t n)
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

RVK_INLINE auto outputs(int16_t*, const Vecs<int16_t, 2>& v)
{
    return v;
}
RVK_INLINE auto outputs(uint8_t*, const Vecs<int16_t, 2>& v)
{
    return narrowSat<uint8_t>(v);
}

template <class V, class D>
RVK_INLINE void storeFirst(D* dst, const V& v, size_t n)
{
    if (n >= kStep)
        store(dst, v);
    else
        storePartial(dst, v, n);
}

template <class D>
RVK_INLINE TwoRowsOf<D*> twoRows(Plane<D> dst, size_t y, size_t height, size_t x)
{
    return {dst.row(y) + x, dst.row(y + 1 < height ? y + 1 : y) + x};
}

// The first `n` of a step of outputs. Where rows are the same, the lower outputs are written over.
template <class D>
RVK_INLINE void putStep(const TwoRowsOf<Vecs<int16_t, 2>>& step, TwoRowsOf<D*> dst, size_t x, size_t n)
{
    storeFirst(dst.lower + x, outputs(dst.lower, step.lower), n);
    storeFirst(dst.upper + x, outputs(dst.upper, step.upper), n);
}

// ---- kernels of two dimensions ------------------------------------------------------------------

// What the windows of `outputColumns` x `outputRows` outputs cover: they begin beforeX columns and beforeY rows ahead
// of the source.
template <class S>
struct Source
{
    Plane<const S> plane;
    size_t width, height;
    size_t beforeX, beforeY;
    size_t outputColumns, outputRows;
};

// For each pair of the kernel's rows and each column two words: the weights for the upper outputs, and those for the
// lower outputs, which are one row behind. `times` times one after the other.
RVK_NOINLINE void pairWeights(const Taps<int16_t>& kernel, size_t times, int32_t* words)
{
    for (; times > 0; --times)
        for (size_t pair = 0; pair < pairsOf(kernel.N); ++pair)
            for (size_t column = 0; column < kernel.M; ++column) {
                const size_t row = 2 * pair; // the one before the first is a huge number
                *words++ = twoWeights(kernel.at(column, row), kernel.at(column, row + 1));
                *words++ = twoWeights(kernel.at(column, row - 1), kernel.at(column, row));
            }
}

// Pairs of rows of `size` elements, as many as the windows cover, in any order that is a ring. `weights` are those of
// the first.
struct Ring
{
    const int16_t* pairs;
    size_t count, size, columns; // of the windows
};

// The first n outputs of the two rows.
template <class D>
RVK_INLINE void sumWindows(Ring ring, const int32_t* weights, unsigned shift, size_t n, TwoRowsOf<D*> dst)
{
    for (size_t x = 0; x < n; x += kStep) {
        ProductSums upperLeft = {}, upperRight = {}, lowerLeft = {}, lowerRight = {};
        const int32_t* word = weights;
        const int16_t* pair = ring.pairs;
        for (size_t p = 0; p < ring.count; ++p, pair += 2 * ring.size)
            for (size_t j = 0; j < ring.columns; ++j, word += 2) {
                const TwoWeights upper = loadTwoWeights(word), lower = loadTwoWeights(word + 1);
                const Vecs<int16_t, 2> left = loadPair(pair, x + j, ring.size);
                const Vecs<int16_t, 2> right = loadPair(pair, x + kLanes + j, ring.size);
                addProducts(upperLeft, left, upper);
                addProducts(upperRight, right, upper);
                addProducts(lowerLeft, left, lower);
                addProducts(lowerRight, right, lower);
            }
        const auto narrowed = [=](const ProductSums& sums) RVK_INLINE_LAMBDA {
            return narrowSums<true>(sums, {shift, false});
        };
        putStep({{{narrowed(upperLeft), narrowed(upperRight)}}, {{narrowed(lowerLeft), narrowed(lowerRight)}}}, dst, x,
                n - x);
    }
}

// The pairs go through a ring that has as many as a window covers. A pair stays where it is: the weights, which lie in
// memory twice, turn instead.
template <class S, class D>
RVK_NOINLINE rvkStatus correlateSource(const Source<S>& src, const Taps<int16_t>& kernel, unsigned shift, Plane<D> dst)
{
    const size_t M = kernel.M, slots = pairsOf(kernel.N);
    const size_t strip = stripColumns(src.outputColumns, slots);
    const size_t size = roundedUp(strip + M, kLanes); // of a row in the ring
    const Scratch<S> rows(2, size);
    const Scratch<int16_t> ring(slots * 2, size);
    const Scratch<int32_t> weights(2 * slots, M * 2);
    if (!rows || !ring || !weights)
        return RAVIK_ENORES;
    pairWeights(kernel, 2, weights.get());
    S *first = rows.get(), *second = first + size;
    int16_t* const pairs = ring.get();
    for (size_t x = 0; x < src.outputColumns; x += strip) {
        const size_t n = least(strip, src.outputColumns - x), needed = n + M - 1;
        for (size_t y = 0, slot = 0; y < src.outputRows + kernel.N - 1; y += 2) {
            copyRow(first, src.plane.row(nearest(y, src.beforeY, src.height)), src.width, x, src.beforeX, needed);
            copyRow(second, src.plane.row(nearest(y + 1, src.beforeY, src.height)), src.width, x, src.beforeX, needed);
            for (size_t i = 0; i < needed; i += kLanes)
                storePair<true>(pairs + slot * 2 * size, i, size, loadShorts(first + i), loadShorts(second + i));
            slot = slot + 1 == slots ? 0 : slot + 1; // which has the oldest pair
            if (y + 1 >= kernel.N)
                sumWindows({pairs, slots, size, M}, weights.get() + (slots - slot) % slots * M * 2, shift, n,
                           twoRows(dst, y + 1 - kernel.N, src.outputRows, x));
        }
    }
    return RAVIK_SUCCESS;
}

// The whole picture.
template <class S, class D>
RVK_INLINE rvkStatus correlate(uint32_t width, uint32_t height, Plane<const S> src, const Taps<int16_t>& kernel,
                               uint32_t shift, Plane<D> dst)
{
    return correlateSource(Source<S>{src, width, height, kernel.M / 2, kernel.N / 2, width, height}, kernel, shift,
                           dst);
}

// The same by 3x3 weights.
RVK_INLINE rvkStatus correlate(uint32_t width, uint32_t height, Plane<const uint8_t> src, const Taps<int8_t>& kernel,
                               uint32_t shift, Plane<uint8_t> dst)
{
    int16_t weights[9];
    for (size_t i = 0; i < 9; ++i)
        weights[i] = kernel[i];
    return correlate(width, height, src, Taps<int16_t>{weights, 3, 3, false}, shift, dst);
}

// ---- separable kernels --------------------------------------------------------------------------

// Filters two rows, as a pair.
template <class Sums, class Line, class S>
RVK_NOINLINE void filterRows(const S* first, const S* second, size_t n, const AnyWeightLine& weights, SumShift shift,
                             int16_t* pair, size_t size)
{
    Line line(weights);
    for (size_t x = 0; x < n; x += kStep) {
        const auto a = filterAlong<Sums>(first + x, line, shift), b = filterAlong<Sums>(second + x, line, shift);
        storePair<false>(pair, x, size, a[0], b[0]);
        storePair<false>(pair, x + kLanes, size, a[1], b[1]);
    }
}

// Filters the columns of the pairs from the first on: two rows of outputs.
template <class Sums, class Line, class D>
RVK_NOINLINE void filterColumns(const int16_t* pairs, size_t size, size_t n, const AnyWeightLine& weights,
                                SumShift shift, TwoRowsOf<D*> dst)
{
    Line line(weights);
    for (size_t x = 0; x < n; x += kStep)
        putStep(filterDown<Sums>(pairs, x, size, line, shift), dst, x, n - x);
}

// Lines of up to `most` weights have code of their own, for the number of them.
template <size_t most, size_t count = 3, class Choice>
RVK_INLINE auto choiceFor(size_t weights, Choice choice)
{
    if constexpr (count > most)
        return choice(static_cast<AnyWeightLine*>(nullptr));
    else
        return weights == count ? choice(static_cast<WeightLine<count>*>(nullptr))
                                : choiceFor<most, count + 2>(weights, choice);
}

// What filters rows, and what filters columns.
template <class Sums, size_t most, class S>
RVK_INLINE auto rowFilterFor(size_t M, const S*)
{
    return choiceFor<most>(M, []<class Line>(Line*) { return &filterRows<Sums, Line, S>; });
}

template <class Sums, size_t most, class D>
RVK_INLINE auto columnFilterFor(size_t N, D*)
{
    return choiceFor<most>(N, []<class Line>(Line*) { return &filterColumns<Sums, Line, D>; });
}

struct Range
{
    int64_t lowest, highest;

    RVK_INLINE bool isWithin(int64_t least, int64_t most) const { return least <= lowest && highest <= most; }
};

template <class T>
constexpr Range kRangeOf = {isSigned<T> ? INT16_MIN : 0, isSigned<T> ? INT16_MAX : UINT8_MAX};

// Weights in order, with the zeros around them that are read, and what follows from their size.
struct ShiftedLine
{
    static constexpr size_t zerosBefore = 1, zerosBehind = 4;
    static RVK_INLINE size_t sizeFor(size_t count) { return zerosBefore + count + zerosBehind; }

    AnyWeightLine weights;
    SumShift shift;
    bool sumsAreShort;
    Range outputs;
};

RVK_INLINE Range rangeOfSums(const Taps<int16_t>& kernel, Range elements)
{
    Range sums = {0, 0};
    for (size_t i = 0; i < kernel.M * kernel.N; ++i) {
        const int64_t w = kernel[i];
        sums.lowest += w * (w < 0 ? elements.highest : elements.lowest);
        sums.highest += w * (w < 0 ? elements.lowest : elements.highest);
    }
    return sums;
}

// Whether weights that are shifted left are still weights, and sums of 32 bits hold their sums.
RVK_INLINE bool canShiftLeft(const Taps<int16_t>& kernel, Range sums, unsigned left)
{
    const int64_t factor = int64_t{1} << left;
    for (size_t i = 0; i < kernel.M * kernel.N; ++i)
        if (kernel[i] * factor < INT16_MIN || kernel[i] * factor > INT16_MAX)
            return false;
    return Range{sums.lowest * factor, sums.highest * factor}.isWithin(INT32_MIN, INT32_MAX);
}

// A filter does not amplify, as a rule. Then sums that are shifted left first, by way of the weights, still fit 32
// bits, and the shift to the right is 16. Small weights that are not negative even have sums of 16 bits on bytes.
RVK_NOINLINE ShiftedLine shiftedLine(const Taps<int16_t>& kernel, unsigned shift, Range elements, int16_t* to)
{
    const size_t count = kernel.M * kernel.N;
    const Range sums = rangeOfSums(kernel, elements);
    const Range shifted = {sums.lowest >> shift, sums.highest >> shift};
    const bool isShort = shift < 16 && sums.isWithin(0, UINT16_MAX) && shifted.isWithin(0, INT16_MAX);
    const bool takesHighHalves = !isShort && shift <= 16 && canShiftLeft(kernel, sums, 16 - shift);

    for (size_t i = 0; i < ShiftedLine::zerosBefore; ++i)
        *to++ = 0;
    for (size_t i = 0; i < count; ++i)
        to[i] = static_cast<int16_t>(kernel[i] * (takesHighHalves ? 1 << (16 - shift) : 1));
    for (size_t i = 0; i < ShiftedLine::zerosBehind; ++i)
        to[count + i] = 0;
    const bool isExact = shifted.isWithin(INT16_MIN, INT16_MAX) && sums.isWithin(INT32_MIN, INT32_MAX);
    return {
        {to, count}, {takesHighHalves ? 16 : shift, takesHighHalves}, isShort, isExact ? shifted : kRangeOf<int16_t>};
}

// The pairs lie one after the other; when there is no room for the next, those that are still needed move to the front.
template <class S, class D>
RVK_NOINLINE rvkStatus correlateSeparably(uint32_t width, uint32_t height, Plane<const S> src, Taps<int16_t> kernelX,
                                          Taps<int16_t> kernelY, uint32_t shiftX, uint32_t shiftY, Plane<D> dst)
{
    const size_t M = kernelX.M, N = kernelY.N;
    const size_t window = pairsOf(N), capacity = 2 * window + 1;
    const size_t strip = stripColumns(width, capacity);
    const size_t size = strip + kLanes;                               // of a filtered row
    const size_t rowSize = roundedUp(strip + M, kLanes) + 2 * kLanes; // of a row of the picture
    const Scratch<S> rows(2, rowSize);
    const Scratch<int16_t> filtered((capacity + 1) * 2, size); // one more, which zero weights see
    const Scratch<int16_t> weights(ShiftedLine::sizeFor(M) + ShiftedLine::sizeFor(N));
    if (!rows || !filtered || !weights)
        return RAVIK_ENORES;
    const ShiftedLine lineX = shiftedLine(kernelX, shiftX, kRangeOf<S>, weights.get());
    const ShiftedLine lineY = shiftedLine(kernelY, shiftY, lineX.outputs, weights.get() + ShiftedLine::sizeFor(M));
    constexpr bool areBytes = sizeof(S) == 1; // only they can have short sums
    constexpr size_t most = areBytes ? 9 : 17;
    auto* along = rowFilterFor<ProductSums, most>(M, src.data);
    auto* down = columnFilterFor<ProductSums, most>(N, dst.data);
    if constexpr (areBytes) {
        along = lineX.sumsAreShort ? rowFilterFor<ShortSums, 17>(M, src.data) : along;
        down = lineY.sumsAreShort ? columnFilterFor<ShortSums, 17>(N, dst.data) : down;
    }
    S *first = rows.get(), *second = first + rowSize;
    int16_t* const pairs = filtered.get();
    const auto rowAt = [&](size_t y) RVK_INLINE_LAMBDA { return src.row(nearest(y, N / 2, height)); };
    for (size_t x = 0; x < width; x += strip) {
        const size_t n = least(strip, width - x);
        // Rows are copied well ahead: a load that begins in the middle of a store waits until that has left the core.
        const auto copyRows = [&](size_t y) RVK_INLINE_LAMBDA {
            copyRow(first, rowAt(y), width, x, M / 2, n + M - 1);
            copyRow(second, rowAt(y + 1), width, x, M / 2, n + M - 1);
        };
        copyRows(0);
        size_t count = 0; // of pairs
        for (size_t y = 0; y < height + N - 1; y += 2) {
            if (count == capacity) {
                count = window - 1;
                __builtin_memmove(pairs, pairs + (capacity - count) * 2 * size, count * 2 * size * sizeof *pairs);
            }
            prefetch(rowAt(y + 4) + x, n); // strips are too narrow for the processor to see what comes next
            prefetch(rowAt(y + 5) + x, n);
            along(first, second, n, lineX.weights, lineX.shift, pairs + count++ * 2 * size, size);
            copyRows(y + 2);
            if (y + 1 >= N)
                down(pairs + (count - window) * 2 * size, size, n, lineY.weights, lineY.shift,
                     twoRows(dst, y + 1 - N, height, x));
        }
    }
    return RAVIK_SUCCESS;
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

rvkStatus rvkConvValids16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, int16_t* dst,
                           uint32_t dstStride)
{
    const size_t columns = size_t{srcWidth} - M + 1, rows = size_t{srcHeight} - N + 1;
    const Source<int16_t> valid = {Plane{src, srcStride}, srcWidth, srcHeight, 0, 0, columns, rows};
    return correlateSource(valid, Taps<int16_t>{kernel, M, N, true}, shift, Plane{dst, dstStride});
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikCorrelationForms.h"

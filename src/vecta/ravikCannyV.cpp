// Vector implementation of the Canny edge detector.
//
// Row by row: the gradient and its magnitude, in rings of rows; one row behind, thinning, which leaves two bits of a
// pixel. Then the edges grow through the candidates, a machine word of pixels at a time, and the bits become bytes.
//
// A step is kBytes pixels. All working rows have room for whole steps.
#include "cpu/ravikCannyC.h"
#include "scratch.h"
#include "vecta/simd/sobel.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Row y of a picture, while the next `count` - 1 rows have not taken its place.
template <class T, size_t count>
struct Ring
{
    T* data;
    size_t pitch;

    RVK_INLINE T* row(size_t y) const { return data + y % count * pitch; }
};

// ---- gradient ------------------------------------------------------------------------------------------------------

// The derivatives of a step of pixels, each in order.
struct Derivative
{
    Vecs<int16_t, 2> exact;  // saturated
    Vecs<int16_t, 2> scaled; // for the detection
};

// The weighted sums of a step of row sums, which are in the order of Pairs, down a column. Those of 3 and 5 rows fit 16
// bits.
template <class W, size_t count>
RVK_INLINE Derivative columnSum(const int16_t* const (&rows)[count], size_t x)
{
    static_assert(W::at(count - 1) == 1);
    Vecs<int16_t, 2> sum = loadVecs<2>(rows[count - 1] + x);
    unrolled<count - 1>([&](auto k) RVK_INLINE_LAMBDA {
        if constexpr (W::at(k) != 0) {
            const Vecs<int16_t, 2> v = loadVecs<2>(rows[k] + x);
            if constexpr (W::at(k) == -1)
                sum = sum - v;
            else
                sum = sum + int16_t{W::at(k)} * v;
        }
    });
    sum = orderPairs(sum);
    return {sum, sum};
}

// Of the rows 0, 1, 2 and 3 away from the centre, those on both sides together, in the order of narrowSatInLanes.
template <int w0, int w1, int w2, int w3>
RVK_INLINE Vecs<int32_t, 2> weightedSum(Vec<int16_t> v0, Vec<int16_t> v1, Vec<int16_t> v2, Vec<int16_t> v3)
{
#if defined(__x86_64__)
    const Vecs<int16_t, 2> a = zipInLanes(v0, v1), b = zipInLanes(v2, v3);
    return {weightedPairs<int32_t, w0, w1>(a[0]) + weightedPairs<int32_t, w2, w3>(b[0]),
            weightedPairs<int32_t, w0, w1>(a[1]) + weightedPairs<int32_t, w2, w3>(b[1])};
#else
    const auto sum = [](int16x4_t a, int16x4_t b, int16x4_t c, int16x4_t d) RVK_INLINE_LAMBDA {
        int32x4_t r = vmlal_n_s16(vmlal_n_s16(vmull_n_s16(b, w1), c, w2), d, w3);
        if constexpr (w0 != 0)
            r = vmlal_n_s16(r, a, w0);
        return vec(r);
    };
    return {sum(lowHalf(v0), lowHalf(v1), lowHalf(v2), lowHalf(v3)),
            sum(highHalf(v0), highHalf(v1), highHalf(v2), highHalf(v3))};
#endif
}

// v / 16, rounded to the nearest, halves to the even one: 7 or 8 sixteenths more, rounded down.
RVK_INLINE Vec<int32_t> sixteenth(Vec<int32_t> v)
{
    const Vec<int32_t> isOdd = shiftRight(v, 4) & splat<int32_t>(1);
    return shiftRight(v + splat<int32_t>(7) + isOdd, 4);
}
static_assert(kScaleOf7x7 == 16);

template <class W>
RVK_INLINE Derivative columnSum(const int16_t* const (&rows)[7], size_t x)
{
    Pairs<int16_t> exact, scaled;
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        const auto bothSides = [&](size_t k) RVK_INLINE_LAMBDA {
            const Vec<int16_t> a = load(rows[3 - k] + x + i * Vec<int16_t>::lanes);
            const Vec<int16_t> b = load(rows[3 + k] + x + i * Vec<int16_t>::lanes);
            return W::anyNegative ? b - a : b + a;
        };
        const Vecs<int32_t, 2> sum = weightedSum<W::at(3), W::at(4), W::at(5), W::at(6)>(
            load(rows[3] + x + i * Vec<int16_t>::lanes), bothSides(1), bothSides(2), bothSides(3));
        exact[i] = narrowSatInLanes<int16_t>(sum);
        scaled[i] = narrowSatInLanes<int16_t>(Vecs<int32_t, 2>{sixteenth(sum[0]), sixteenth(sum[1])});
    });
    return {orderPairs(exact), orderPairs(scaled)};
}

template <int radius>
struct Gradient
{
    static constexpr size_t count = 2 * radius + 1;
    static constexpr bool isScaled = radius == 3;
    using Smoothing = typename SobelWeights<count>::Smoothing;
    using Difference = typename SobelWeights<count>::Difference;

    size_t width, height;
    uint8_t* line; // a row of the picture, continued by its ends
    Ring<int16_t, count> smoothed, differences;

    // Elements of `line`.
    static RVK_INLINE size_t lineSize(size_t pitch) { return pitch + count - 1; }

    // The sums along row y of the picture.
    RVK_INLINE void takeRow(size_t y, const uint8_t* row) const
    {
        __builtin_memset(line, row[0], radius);
        __builtin_memcpy(line + radius, row, width);
        __builtin_memset(line + radius + width, row[width - 1], radius);
        int16_t *smooth = smoothed.row(y), *difference = differences.row(y);
        for (size_t x = 0; x < width; x += kBytes) {
            const Pairs<uint16_t> sums = rowSum<Smoothing>(line + x);
            store(smooth + x, Vecs<int16_t, 2>{bitCast<int16_t>(sums[0]), bitCast<int16_t>(sums[1])});
            store(difference + x, rowSum<Difference>(line + x));
        }
    }

    // The gradient of row y, once all rows of its windows have been taken: for the detection and, where that is scaled,
    // as it is.
    RVK_INLINE void computeRow(size_t y, int16_t* dx, int16_t* dy, int16_t* exactDx, int16_t* exactDy) const
    {
        const int16_t *smooth[count], *difference[count];
        for (size_t k = 0; k < count; ++k) {
            const size_t source = nearest(y + k, radius, height);
            smooth[k] = smoothed.row(source);
            difference[k] = differences.row(source);
        }
        for (size_t x = 0; x < width; x += kBytes) {
            const Derivative h = columnSum<Smoothing>(difference, x), v = columnSum<Difference>(smooth, x);
            store(dx + x, h.scaled);
            store(dy + x, v.scaled);
            if constexpr (isScaled) {
                store(exactDx + x, h.exact);
                store(exactDy + x, v.exact);
            }
        }
    }
};

// ---- magnitude and thinning, in 16 bits where magnitudes fit, otherwise in 32 --------------------------------------

template <class M>
RVK_INLINE Vec<M> loadGradient(const int16_t* p)
{
    if constexpr (sizeof(M) == 2)
        return load(p);
    else
        return loadWiden<M>(p);
}

template <class M, bool squared>
RVK_INLINE void computeMagnitudes(size_t width, const int16_t* dx, const int16_t* dy, M* magnitudes)
{
    for (size_t i = 0; i < width; i += Vec<M>::lanes) {
        const Vec<M> x = abs(loadGradient<M>(dx + i)), y = abs(loadGradient<M>(dy + i));
        store(magnitudes + i, squared ? x * x + y * y : x + y);
    }
}

// v * kTan22 / 2^15, rounded down.
RVK_INLINE Vec<int16_t> timesTan22(Vec<int16_t> v)
{
    return multiplyHigh(v, splat<int16_t>(2 * kTan22));
}
RVK_INLINE Vec<int32_t> timesTan22(Vec<int32_t> v)
{
    return shiftRight(v * splat<int32_t>(kTan22), 15);
}

// The magnitudes at one column of three rows.
template <class M>
struct Column
{
    const M *above, *here, *below;
};

// Below 0 in the lanes of candidates, below -1 in those of edges.
template <class M>
RVK_INLINE Vec<M> ridges(Column<M> at, Vec<M> dx, Vec<M> dy, Vec<M> low, Vec<M> high)
{
    const Vec<M> x = abs(dx), y = abs(dy), flat = timesTan22(x);
    const Mask<M> horizontal = ~greater(y, flat), vertical = greater(y, flat + x + x);
    const Mask<M> rising = less(dx ^ dy, zero<M>());
    const Vec<M> before =
        select(horizontal, load(at.here - 1),
               select(vertical, load(at.above), select(rising, load(at.above + 1), load(at.above - 1))));
    const Vec<M> after =
        select(horizontal, load(at.here + 1),
               select(vertical, load(at.below), select(rising, load(at.below - 1), load(at.below + 1))));
    const Vec<M> m = load(at.here);
    const Mask<M> largest = greater(m, before) & (greater(m, after) | (equal(m, after) & (horizontal | vertical)));
    return toVec(largest & greater(m, low)) + toVec(largest & greater(m, high));
}

RVK_INLINE Vec<int8_t> toBytes(const Vecs<int16_t, 2>& v)
{
    return narrowSat<int8_t>(v);
}
RVK_INLINE Vec<int8_t> toBytes(const Vecs<int32_t, 4>& v)
{
    return toBytes(Vecs<int16_t, 2>{narrowSat<int16_t>(Vecs<int32_t, 2>{v[0], v[1]}),
                                    narrowSat<int16_t>(Vecs<int32_t, 2>{v[2], v[3]})});
}

// Bit i of a row of bits is pixel i.
RVK_INLINE void storeBits(uint8_t* bits, Mask<int8_t> mask)
{
    const auto lanes = laneBits(Mask<uint8_t>{mask.bits});
    __builtin_memcpy(bits, &lanes, kBytes / 8);
}

template <class M>
RVK_INLINE void thinRow(size_t width, Column<M> at, const int16_t* dx, const int16_t* dy, CannyThresholds thresholds,
                        uint8_t* candidates, uint8_t* edges)
{
    const Vec<M> low = splat(static_cast<M>(thresholds.low)), high = splat(static_cast<M>(thresholds.high));
    for (size_t x = 0; x < width; x += kBytes) {
        Vecs<M, sizeof(M)> levels;
        unrolled<sizeof(M)>([&](auto i) RVK_INLINE_LAMBDA {
            const size_t j = x + i * Vec<M>::lanes;
            levels[i] = ridges(Column<M>{at.above + j, at.here + j, at.below + j}, loadGradient<M>(dx + j),
                               loadGradient<M>(dy + j), low, high);
        });
        const Vec<int8_t> bytes = toBytes(levels);
        storeBits(candidates + x / 8, less(bytes, zero<int8_t>()));
        storeBits(edges + x / 8, less(bytes, splat<int8_t>(-1)));
    }
}

// ---- hysteresis ----------------------------------------------------------------------------------------------------

using Word = size_t;
constexpr size_t kWordBits = 8 * sizeof(Word);
static_assert(kBytes <= kWordBits);

// A bit for each pixel, in rows of words with at least one word of zeros around them on all sides.
struct EdgeMap
{
    size_t words; // in all
    size_t pitch; // of them from row to row
    Word *candidates, *edges;
    Word* followed;    // edges whose neighbours have been looked at
    uint32_t* waiting; // words that have others; none comes twice
    size_t waitingCount = 0;

    static RVK_INLINE size_t pitchOf(size_t width) { return roundedUp(width, kWordBits) / kWordBits + 1; }
    static RVK_INLINE size_t wordsOf(size_t width, size_t height) { return pitchOf(width) * (height + 2) + 1; }

    RVK_INLINE uint8_t* row(Word* bits, size_t y) const
    {
        return reinterpret_cast<uint8_t*>(bits + (y + 1) * pitch + 1);
    }

    // The pixels and all candidates that are connected with them within the word.
    static RVK_INLINE Word connected(Word pixels, Word among)
    {
        for (Word grown;; pixels = grown) {
            grown = (pixels | pixels << 1 | pixels >> 1) & among;
            if (grown == pixels)
                return pixels;
        }
    }

    // Makes edges of the candidates among the pixels of a word.
    RVK_INLINE void reach(size_t word, Word pixels)
    {
        const Word fresh = pixels & candidates[word] & ~edges[word];
        if (!fresh)
            return;
        if (edges[word] == followed[word])
            waiting[waitingCount++] = static_cast<uint32_t>(word);
        edges[word] |= connected(fresh, candidates[word]);
    }

    RVK_INLINE void reachNeighbours(size_t word, Word pixels)
    {
        const Word beside = pixels | pixels << 1 | pixels >> 1;
        const Word leaveLeft = pixels << (kWordBits - 1), leaveRight = pixels >> (kWordBits - 1);
        for (size_t row = word - pitch;; row += pitch) {
            reach(row - 1, leaveLeft);
            reach(row, beside);
            reach(row + 1, leaveRight);
            if (row == word + pitch)
                break;
        }
    }

    RVK_INLINE void track()
    {
        for (size_t word = 0; word < words; ++word)
            if (edges[word]) {
                edges[word] = connected(edges[word], candidates[word]);
                waiting[waitingCount++] = static_cast<uint32_t>(word);
            }
        while (waitingCount > 0) {
            const size_t word = waiting[--waitingCount];
            const Word fresh = edges[word] & ~followed[word];
            followed[word] = edges[word];
            reachNeighbours(word, fresh);
        }
    }
};

// 255 for each bit that is set, else 0. Reads 16 bytes where the row of bits has fewer.
RVK_INLINE void expandBits(size_t width, const uint8_t* bits, uint8_t* dst)
{
    const Vec<uint8_t> byteOfLane = shiftRight(iota<uint8_t>(), 3);
    Vec<uint8_t> bitOfLane;
    for (size_t i = 0; i < kBytes; ++i)
        bitOfLane.raw[i] = static_cast<uint8_t>(1u << i % 8);
    for (size_t x = 0; x < width; x += kBytes) {
        const Vec<uint8_t> own = lookup16(loadTable16(bits + x / 8), byteOfLane) & bitOfLane;
        const Vec<uint8_t> result = toVec(equal(own, bitOfLane));
        if (x + kBytes <= width)
            store(dst + x, result);
        else
            storePartial(dst + x, result, width - x);
    }
}

// ---- the detector --------------------------------------------------------------------------------------------------

// dx and dy may have no data: then nobody wants them.
template <int radius, class M, bool squared>
rvkStatus detect(size_t width, size_t height, Plane<const uint8_t> src, CannyThresholds thresholds, Plane<uint8_t> dst,
                 Plane<int16_t> dx, Plane<int16_t> dy)
{
    using Gradients = Gradient<radius>;
    const size_t pitch = roundedUp(width, kBytes);
    const size_t magnitudePitch = pitch + 2 * kBytes; // with a vector of zeros at each end
    const size_t words = EdgeMap::wordsOf(width, height);
    const Scratch<uint8_t> line(Gradients::lineSize(pitch));
    const Scratch<int16_t> sums(2 * Gradients::count, pitch), gradients(6, pitch);
    const Scratch<M> magnitudes(3, magnitudePitch);
    const Scratch<Word> bits(3, words);
    const Scratch<uint32_t> waiting(words);
    if (!line || !sums || !gradients || !magnitudes || !bits || !waiting)
        return RAVIK_ENORES;
    __builtin_memset(line.get(), 0, Gradients::lineSize(pitch));
    __builtin_memset(magnitudes.get(), 0, 3 * magnitudePitch * sizeof(M));
    __builtin_memset(bits.get(), 0, 3 * words * sizeof(Word));

    const Gradients gradient = {
        width, height, line.get(), {sums.get(), pitch}, {sums.get() + Gradients::count * pitch, pitch}};
    const Ring<int16_t, 2> dxRows = {gradients.get(), pitch}, dyRows = {gradients.get() + 2 * pitch, pitch};
    int16_t *const exactDx = gradients.get() + 4 * pitch, *const exactDy = exactDx + pitch; // where they are scaled
    const Ring<M, 3> magnitudeRows = {magnitudes.get() + kBytes, magnitudePitch};
    EdgeMap map = {words,        EdgeMap::pitchOf(width), bits.get(), bits.get() + words, bits.get() + 2 * words,
                   waiting.get()};

    for (size_t y = 0, taken = 0; y <= height; ++y) {
        M* const current = magnitudeRows.row(y);
        if (y < height) {
            for (; taken < height && taken <= y + radius; ++taken)
                gradient.takeRow(taken, src.row(taken));
            gradient.computeRow(y, dxRows.row(y), dyRows.row(y), exactDx, exactDy);
            computeMagnitudes<M, squared>(width, dxRows.row(y), dyRows.row(y), current);
            __builtin_memset(current + width, 0, (pitch - width) * sizeof(M));
            if (dx.data) {
                __builtin_memcpy(dx.row(y), Gradients::isScaled ? exactDx : dxRows.row(y), width * sizeof(int16_t));
                __builtin_memcpy(dy.row(y), Gradients::isScaled ? exactDy : dyRows.row(y), width * sizeof(int16_t));
            }
        } else {
            __builtin_memset(current, 0, width * sizeof(M));
        }
        if (y > 0)
            thinRow<M>(width, {magnitudeRows.row(y + 1), magnitudeRows.row(y + 2), current}, dxRows.row(y + 1),
                       dyRows.row(y + 1), thresholds, map.row(map.candidates, y - 1), map.row(map.edges, y - 1));
    }
    map.track();
    for (size_t y = 0; y < height; ++y)
        expandBits(width, map.row(map.edges, y), dst.row(y));
    return RAVIK_SUCCESS;
}

} // namespace

rvkStatus rvkFilterCanny3x3u8_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, int32_t lowThreshold, int32_t highThreshold)
{
    return detect<1, int16_t, false>(srcWidth, srcHeight, {src, srcStride},
                                     cannyThresholds(lowThreshold, highThreshold, 3, false), {dst, dstStride}, {}, {});
}

rvkStatus rvkFilterCannyu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t apertureSize, int32_t lowThreshold, int32_t highThreshold, uint32_t normType,
                            uint8_t* dst, uint32_t dstStride, int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    const bool squared = normType == RAVIK_CANNY_NORM_L2;
    const auto run = [&](auto function) {
        return function(srcWidth, srcHeight, Plane<const uint8_t>{src, srcStride},
                        cannyThresholds(lowThreshold, highThreshold, apertureSize, squared),
                        Plane<uint8_t>{dst, dstStride}, Plane<int16_t>{dx, dxyStride}, Plane<int16_t>{dy, dxyStride});
    };
    switch (apertureSize) {
    case 3:
        return squared ? run(detect<1, int32_t, true>) : run(detect<1, int16_t, false>);
    case 5:
        return squared ? run(detect<2, int32_t, true>) : run(detect<2, int16_t, false>);
    case 7:
        return squared ? run(detect<3, int32_t, true>) : run(detect<3, int16_t, false>);
    default:
        return RAVIK_EBADPARAM;
    }
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikCannyForms.h"

// Vector implementations of the cosine transforms of blocks and of the Fourier transforms.
#include "cpu/ravikFrequencyC.h"

#include "scratch.h"
#include "vecta/simd/tiles.h"
#include "vecta/vecta.h"

#include <ravik/frequency.h>
#include <ravik/transform.h>

namespace rvk::vecta::RVK_ISA {

decltype(::rvkTransposeu8) rvkTransposeu8V;
decltype(::rvkTransposef32) rvkTransposef32V;

namespace {

// ---- cosine transforms: the blocks of a row of blocks side by side in eight vectors, one for each of their rows -----
//
// The sums are those of the reference, in another order: integers do not mind.

using Samples = Vec<int16_t>;
using Sums = Vecs<int32_t, 2>;
using BlockRows = Samples[8];

// a * weightA + b * weightB, with the weights of cos(k pi / 16), negative for negative k.
template <int k>
constexpr int16_t kWeight = static_cast<int16_t>(k < 0 ? -kHalfCosine[-k] : kHalfCosine[k]);

template <int weightA, int weightB>
RVK_INLINE Sums weighted(Samples a, Samples b)
{
    return dotInLanes(Vecs<int16_t, 2>{a, b}, Vecs<int16_t, 2>{splat(kWeight<weightA>), splat(kWeight<weightB>)});
}

RVK_INLINE Sums operator+(const Sums& a, const Sums& b)
{
    return {a[0] + b[0], a[1] + b[1]};
}
RVK_INLINE Sums operator-(const Sums& a, const Sums& b)
{
    return {a[0] - b[0], a[1] - b[1]};
}

template <unsigned shift>
RVK_INLINE Samples shifted(const Sums& sums)
{
    if constexpr (shift > 16) // more than narrowing shifts do
        return narrowRoundedInLanes<int16_t, 16>(
            both(sums, [](Vec<int32_t> half) RVK_INLINE_LAMBDA { return shiftRight(half, shift - 16); }));
    else
        return narrowRoundedInLanes<int16_t, shift>(sums);
}

// The four sums of the odd frequencies, whose table of weights is its own transpose: of what is odd about the middle of
// the samples, or of the odd frequencies.
template <class Put>
RVK_INLINE void weightOdd(Samples a, Samples b, Samples c, Samples d, Put put)
{
    put(Constant<0>{}, weighted<1, 3>(a, b) + weighted<5, 7>(c, d));
    put(Constant<1>{}, weighted<3, -7>(a, b) + weighted<-1, -5>(c, d));
    put(Constant<2>{}, weighted<5, -1>(a, b) + weighted<7, 3>(c, d));
    put(Constant<3>{}, weighted<7, -5>(a, b) + weighted<3, -1>(c, d));
}

template <unsigned shift>
RVK_INLINE void analyse(BlockRows& r)
{
    const Samples sum[4] = {r[0] + r[7], r[1] + r[6], r[2] + r[5], r[3] + r[4]};
    const Samples difference[4] = {r[0] - r[7], r[1] - r[6], r[2] - r[5], r[3] - r[4]};
    const Samples outer = sum[0] + sum[3], inner = sum[1] + sum[2];
    const Samples outerDifference = sum[0] - sum[3], innerDifference = sum[1] - sum[2];
    r[0] = shifted<shift>(weighted<4, 4>(outer, inner));
    r[4] = shifted<shift>(weighted<4, -4>(outer, inner));
    r[2] = shifted<shift>(weighted<2, 6>(outerDifference, innerDifference));
    r[6] = shifted<shift>(weighted<6, -2>(outerDifference, innerDifference));
    weightOdd(difference[0], difference[1], difference[2], difference[3],
              [&](auto i, const Sums& sums) RVK_INLINE_LAMBDA { r[2 * i + 1] = shifted<shift>(sums); });
}

template <unsigned shift>
RVK_INLINE void synthesise(BlockRows& r)
{
    const Sums whole = weighted<4, 4>(r[0], r[4]), half = weighted<4, -4>(r[0], r[4]);
    const Sums cosines = weighted<2, 6>(r[2], r[6]), sines = weighted<6, -2>(r[2], r[6]);
    const Sums even[4] = {whole + cosines, half + sines, half - sines, whole - cosines};
    weightOdd(r[1], r[3], r[5], r[7], [&](auto i, const Sums& odd) RVK_INLINE_LAMBDA {
        r[i] = shifted<shift>(even[i] + odd);
        r[7 - i] = shifted<shift>(even[i] - odd);
    });
}

RVK_INLINE void transposeBlocks(BlockRows& r)
{
    Reg<int16_t, kBytes> tile[8];
    unrolled<8>([&](auto i) RVK_INLINE_LAMBDA { tile[i].raw = r[i].raw; });
    zipRounds<8>(tile);
    unrolled<8>([&](auto i) RVK_INLINE_LAMBDA { r[i].raw = tile[i].raw; });
}

// Blocks at `src`, as many as a vector has elements for in a row.
RVK_NOINLINE void transformBlocks(Plane<const uint8_t> src, Plane<int16_t> dst)
{
    BlockRows r;
    unrolled<8>([&](auto i) RVK_INLINE_LAMBDA {
        r[i] = bitCast<int16_t>(loadWiden<uint16_t>(src.row(i))) - splat<int16_t>(kMiddlePixel);
    });
    analyse<kForwardShifts[0]>(r);
    transposeBlocks(r);
    analyse<kForwardShifts[1]>(r);
    transposeBlocks(r);
    r[0] = r[0] + (shuffle(splat<int16_t>(kMiddleFrequency), zero<int16_t>(),
                           [](size_t i) { return i % 8 ? Samples::lanes : size_t{0}; }));
    unrolled<8>([&](auto i) RVK_INLINE_LAMBDA { store(dst.row(i), r[i]); });
}

RVK_NOINLINE void transformBlocks(Plane<const int16_t> src, Plane<uint8_t> dst)
{
    BlockRows r;
    unrolled<8>([&](auto i) RVK_INLINE_LAMBDA {
        r[i] = min(max(load(src.row(i)), splat<int16_t>(kLeastCoefficient)), splat<int16_t>(kLargestCoefficient));
    });
    synthesise<kInverseShifts[0]>(r);
    transposeBlocks(r);
    synthesise<kInverseShifts[1]>(r);
    transposeBlocks(r);
    unrolled<8>([&](auto i) RVK_INLINE_LAMBDA {
        storeLowBytes(dst.row(i), bitCast<uint16_t>(min(max(r[i], zero<int16_t>()), splat<int16_t>(255))));
    });
}

// The last blocks of a row overlap those before them. Where there are too few, they go through memory that fits.
template <class S, class D>
RVK_INLINE void mapBlocks(size_t width, size_t height, Plane<const S> src, Plane<D> dst)
{
    constexpr size_t lanes = Samples::lanes;
    S in[8 * lanes] = {};
    D out[8 * lanes];
    for (size_t y = 0; y < height; y += 8) {
        const Plane from{src.row(y), src.stride};
        const Plane to{dst.row(y), dst.stride};
        if (width < lanes) {
            for (size_t i = 0; i < 8; ++i)
                __builtin_memcpy(in + i * lanes, from.row(i), width * sizeof(S));
            transformBlocks(Plane<const S>{in, lanes * sizeof(S)}, Plane<D>{out, lanes * sizeof(D)});
            for (size_t i = 0; i < 8; ++i)
                __builtin_memcpy(to.row(i), out + i * lanes, width * sizeof(D));
            continue;
        }
        for (size_t next = 0; next < width; next += lanes) {
            const size_t x = least(next, width - lanes);
            transformBlocks(Plane<const S>{from.data + x, src.stride}, Plane<D>{to.data + x, dst.stride});
        }
    }
}

} // namespace

rvkStatus rvkDCTu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                    uint32_t dstStride)
{
    mapBlocks<uint8_t, int16_t>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkIDCTs16V(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride)
{
    mapBlocks<int16_t, uint8_t>(srcWidth, srcHeight, {src, srcStride}, {dst, dstStride});
    return RAVIK_SUCCESS;
}

// ---- Fourier transforms ---------------------------------------------------------------------------------------------
//
// Many lines at once, one in each lane: all their values at a place are two vectors, real and imaginary parts. Lines
// are loaded in bit-reversed order and transformed in place, by steps of four. Pictures are real, so that two rows go
// as one complex line, and half of the columns say all.

namespace {

constexpr size_t kLines = Vec<float>::lanes;

// What stands at a place of the lines.
struct Values
{
    Vec<float> re, im;
};

RVK_INLINE Values operator+(Values a, Values b)
{
    return {a.re + b.re, a.im + b.im};
}
RVK_INLINE Values operator-(Values a, Values b)
{
    return {a.re - b.re, a.im - b.im};
}

struct Root
{
    float re, im;
};

RVK_INLINE Values timesRoot(Values a, Root root)
{
    const Vec<float> re = splat(root.re), im = splat(root.im);
    return {multiplyAdd(a.im, splat(-root.im), a.re * re), multiplyAdd(a.re, im, a.im * re)};
}

// The places of the lines, one behind the other.
struct Lines
{
    float* data;

    RVK_INLINE Values load(size_t i) const
    {
        const float* const p = data + 2 * kLines * i;
        return {vecta::RVK_ISA::load(p), vecta::RVK_ISA::load(p + kLines)};
    }
    RVK_INLINE void store(size_t i, Values v) const
    {
        float* const p = data + 2 * kLines * i;
        vecta::RVK_ISA::store(p, v.re);
        vecta::RVK_ISA::store(p + kLines, v.im);
    }
};

// Two steps of two at once: `a` to `d` are the transforms of every fourth value from the first, third, second and
// fourth on, the last three turned already.
RVK_INLINE void combineFour(const Lines& lines, size_t i, size_t distance, Values a, Values b, Values c, Values d)
{
    const Values evenSum = a + b, evenDifference = a - b, oddSum = c + d, oddDifference = c - d;
    const Values turned = {oddDifference.im, zero<float>() - oddDifference.re}; // times -i
    lines.store(i, evenSum + oddSum);
    lines.store(i + distance, evenDifference + turned);
    lines.store(i + 2 * distance, evenSum - oddSum);
    lines.store(i + 3 * distance, evenDifference - turned);
}

// Lines of n values, in bit-reversed order before. `roots` has n of them.
RVK_NOINLINE void transformLines(const Lines& lines, size_t n, const Root* roots)
{
    size_t done = 1; // the length of the transforms that are finished
    if (__builtin_ctzll(n) % 2) {
        for (size_t i = 0; i < n; i += 2) {
            const Values a = lines.load(i), b = lines.load(i + 1);
            lines.store(i, a + b);
            lines.store(i + 1, a - b);
        }
        done = 2;
    } else if (n > 1) {
        for (size_t i = 0; i < n; i += 4)
            combineFour(lines, i, 1, lines.load(i), lines.load(i + 1), lines.load(i + 2), lines.load(i + 3));
        done = 4;
    }
    for (; done < n; done *= 4) {
        const size_t step = n / (4 * done);
        for (size_t k = 0; k < done; ++k) {
            const Root second = roots[2 * k * step], first = roots[k * step], third = roots[3 * k * step];
            for (size_t i = k; i < n; i += 4 * done)
                combineFour(lines, i, done, lines.load(i), timesRoot(lines.load(i + done), second),
                            timesRoot(lines.load(i + 2 * done), first), timesRoot(lines.load(i + 3 * done), third));
        }
    }
}

// What the transforms of lines of n values need.
struct LinePlan
{
    size_t n;
    unsigned bits;
    Scratch<Root> roots;
    Scratch<uint16_t> places; // where the values are loaded to

    RVK_INLINE explicit LinePlan(size_t length)
        : n(length), bits(static_cast<unsigned>(__builtin_ctzll(length))), roots(length), places(length)
    {
        const Scratch<Complex> exact(n);
        isReady = roots && places && exact;
        if (!isReady)
            return;
        fillRootsOfUnity(exact.get(), n);
        for (size_t i = 0; i < n; ++i) {
            roots[i] = {static_cast<float>(exact[i].re), static_cast<float>(exact[i].im)};
            places[i] = static_cast<uint16_t>(reversedBits(i, bits));
        }
    }
    bool isReady;
};

// The columns of the spectrum of rows of n real values that say all of it, and the same in whole vectors.
RVK_INLINE size_t halfOf(size_t n)
{
    return n / 2 + 1;
}
RVK_INLINE size_t wholeHalfOf(size_t n)
{
    return roundedUp(halfOf(n), kLines);
}

// Half spectra of the rows of a picture, real and imaginary parts apart. Rows are an odd number of cache lines long,
// so that a column meets all sets of a cache.
struct HalfSpectra
{
    size_t pitch;
    Scratch<float> re, im;

    RVK_INLINE HalfSpectra(size_t width, size_t height)
        : pitch((wholeHalfOf(width) + 15) / 16 * 16 | 16), re(pitch, height), im(pitch, height)
    {
    }
    RVK_INLINE uint32_t stride() const { return static_cast<uint32_t>(pitch * sizeof(float)); }
};

// Rows that are transformed together, two by two, on their way to or from where a line has a lane.
struct RowBlock
{
    static constexpr size_t rows = 2 * kLines;
    Scratch<uint8_t> pixels; // by column: those of all rows
    Scratch<float> values;   // the lines
    Scratch<float> re, im;   // half spectra, by column: those of all rows

    RVK_INLINE explicit RowBlock(size_t width)
        : pixels(width, rows), values(width, rows), re(wholeHalfOf(width), rows), im(wholeHalfOf(width), rows)
    {
    }
    RVK_INLINE bool isReady() const { return pixels && values && re && im; }
};

constexpr uint32_t kRowBlockStride = static_cast<uint32_t>(RowBlock::rows * sizeof(float));

RVK_INLINE void transposeFloats(const float* src, size_t columns, size_t rows, size_t srcStride, float* dst,
                                size_t dstStride)
{
    rvkTransposef32V(src, static_cast<uint32_t>(columns), static_cast<uint32_t>(rows), static_cast<uint32_t>(srcStride),
                     dst, static_cast<uint32_t>(dstStride));
}

RVK_INLINE Vec<float> pixelsAt(const uint8_t* p)
{
    return toFloat(loadWiden<uint32_t>(p));
}

// Takes the spectra of two rows apart that were transformed as the real and the imaginary part of a line.
RVK_INLINE void separate(const Lines& lines, size_t width, const RowBlock& block)
{
    const Vec<float> half = splat(0.5f);
    for (size_t u = 0; u < halfOf(width); ++u) {
        const Values z = lines.load(u % width), mirrored = lines.load((width - u) % width);
        float *const re = block.re.get() + RowBlock::rows * u, *const im = block.im.get() + RowBlock::rows * u;
        store(re, (z.re + mirrored.re) * half);
        store(re + kLines, (z.im + mirrored.im) * half);
        store(im, (z.im - mirrored.im) * half);
        store(im + kLines, (mirrored.re - z.re) * half);
    }
}

RVK_INLINE void analyseRows(Plane<const uint8_t> src, size_t width, size_t height, const LinePlan& plan,
                            const RowBlock& block, const HalfSpectra& spectra)
{
    const Lines lines{block.values.get()};
    __builtin_memset(block.pixels.get(), 0, width * RowBlock::rows);
    for (size_t y = 0; y < height; y += RowBlock::rows) {
        const size_t rows = least(RowBlock::rows, height - y);
        rvkTransposeu8V(src.row(y), static_cast<uint32_t>(width), static_cast<uint32_t>(rows), src.stride,
                        block.pixels.get(), RowBlock::rows);
        for (size_t x = 0; x < width; ++x) {
            const uint8_t* const p = block.pixels.get() + RowBlock::rows * x;
            lines.store(plan.places[x], {pixelsAt(p), pixelsAt(p + kLines)});
        }
        transformLines(lines, width, plan.roots.get());
        separate(lines, width, block);
        transposeFloats(block.re.get(), rows, halfOf(width), kRowBlockStride, spectra.re.get() + y * spectra.pitch,
                        spectra.stride());
        transposeFloats(block.im.get(), rows, halfOf(width), kRowBlockStride, spectra.im.get() + y * spectra.pitch,
                        spectra.stride());
    }
}

// The values of kLines columns from u on in a row of the spectrum, and what follows from them: those of the columns
// width - u and before it in the row that is the mirror image, which are conjugate.
RVK_INLINE void storeSpectrum(Values v, size_t u, size_t width, float* row, float* mirroredRow)
{
    const size_t columns = least(kLines, halfOf(width) - u);
    const size_t end = least(u + kLines, (width + 1) / 2); // of the columns that have a mirror image
    const Values mirrored = {reverse(v.re), zero<float>() - reverse(v.im)};
    if (u > 0 && end == u + kLines) {
        store2(row + 2 * u, Vecs<float, 2>{v.re, v.im});
        store2(mirroredRow + 2 * (width - u - kLines + 1), Vecs<float, 2>{mirrored.re, mirrored.im});
        return;
    }
    float pairs[4 * kLines];
    store2(pairs, Vecs<float, 2>{v.re, v.im});
    store2(pairs + 2 * kLines, Vecs<float, 2>{mirrored.re, mirrored.im});
    __builtin_memcpy(row + 2 * u, pairs, 2 * columns * sizeof(float));
    const size_t first = u > 0 ? u : 1;
    if (first < end)
        __builtin_memcpy(mirroredRow + 2 * (width - end + 1), pairs + 2 * (2 * kLines - (end - u)),
                         2 * (end - first) * sizeof(float));
}

RVK_INLINE void analyseColumns(const HalfSpectra& spectra, size_t width, size_t height, const LinePlan& plan,
                               const Lines& lines, Plane<float> dst)
{
    for (size_t u = 0; u < halfOf(width); u += kLines) {
        for (size_t y = 0; y < height; ++y) {
            const size_t at = y * spectra.pitch + u;
            lines.store(plan.places[y], {load(spectra.re.get() + at), load(spectra.im.get() + at)});
        }
        transformLines(lines, height, plan.roots.get());
        for (size_t v = 0; v < height; ++v)
            storeSpectrum(lines.load(v), u, width, dst.row(v), dst.row((height - v) % height));
    }
}

// Half the sum of kLines values from u on in a row and of the conjugates of those with opposite frequencies: the
// spectrum of the real part alone. What is not finite leaves something but zeros in `rest`.
RVK_INLINE Values loadSpectrum(const float* row, const float* oppositeRow, size_t u, size_t width, Vec<float>& rest)
{
    Vecs<float, 2> v, opposite;
    if (width >= 2 * kLines && u < width / 2) {
        v = load2(row + 2 * u);
        if (u > 0) {
            const Vecs<float, 2> before = load2(oppositeRow + 2 * (width - u - kLines + 1));
            opposite = {reverse(before[0]), reverse(before[1])};
        } else { // the first column is its own opposite
            const Vecs<float, 2> before = load2(oppositeRow + 2 * (width - kLines));
            opposite = {extract<kLines - 1>(splat(oppositeRow[0]), reverse(before[0])),
                        extract<kLines - 1>(splat(oppositeRow[1]), reverse(before[1]))};
        }
    } else {
        float pairs[2][2 * kLines] = {};
        for (size_t i = 0; i < kLines && u + i < halfOf(width); ++i) {
            __builtin_memcpy(pairs[0] + 2 * i, row + 2 * ((u + i) % width), 2 * sizeof(float));
            __builtin_memcpy(pairs[1] + 2 * i, oppositeRow + 2 * ((width - u - i) % width), 2 * sizeof(float));
        }
        v = load2(pairs[0]);
        opposite = load2(pairs[1]);
    }
    rest = rest + ((v[0] - v[0]) + (v[1] - v[1])) + ((opposite[0] - opposite[0]) + (opposite[1] - opposite[1]));
    const Vec<float> half = splat(0.5f);
    return {v[0] * half + opposite[0] * half, v[1] * half - opposite[1] * half};
}

// Returns whether all values are finite. An inverse transform is that of the values with real and imaginary parts
// exchanged, exchanged again.
RVK_INLINE bool synthesiseColumns(Plane<const float> src, size_t width, size_t height, const LinePlan& plan,
                                  const Lines& lines, const HalfSpectra& spectra)
{
    Vec<float> rest = zero<float>();
    for (size_t u = 0; u < halfOf(width); u += kLines) {
        for (size_t v = 0; v < height; ++v) {
            const Values values = loadSpectrum(src.row(v), src.row((height - v) % height), u, width, rest);
            lines.store(plan.places[v], {values.im, values.re});
        }
        transformLines(lines, height, plan.roots.get());
        for (size_t y = 0; y < height; ++y) {
            const Values values = lines.load(y);
            store(spectra.re.get() + y * spectra.pitch + u, values.im);
            store(spectra.im.get() + y * spectra.pitch + u, values.re);
        }
    }
    return all(equal(rest, zero<float>()));
}

// Values as pixels, rounded and clamped; 0 where they are no numbers.
RVK_INLINE Vec<int32_t> pixelsOf(Vec<float> values, Vec<float> scale)
{
    const Vec<float> clamped = min(splat(255.0f), max(zero<float>(), values * scale));
    return truncateToInt(clamped + splat(0.5f));
}

// Puts two rows together as the real and the imaginary part of a line, real and imaginary parts exchanged.
RVK_INLINE void join(const RowBlock& block, size_t width, const LinePlan& plan, const Lines& lines)
{
    for (size_t u = 0; u < halfOf(width); ++u) {
        const float *const re = block.re.get() + RowBlock::rows * u, *const im = block.im.get() + RowBlock::rows * u;
        const Values first = {load(re), load(im)}, second = {load(re + kLines), load(im + kLines)};
        lines.store(plan.places[u % width], {first.im + second.re, first.re - second.im});
        lines.store(plan.places[(width - u) % width], {second.re - first.im, first.re + second.im});
    }
}

RVK_INLINE void synthesiseRows(const HalfSpectra& spectra, size_t width, size_t height, const LinePlan& plan,
                               const RowBlock& block, float scale, Plane<uint8_t> dst)
{
    const Lines lines{block.values.get()};
    if (height < RowBlock::rows) { // missing rows share lines with others
        __builtin_memset(block.re.get(), 0, halfOf(width) * kRowBlockStride);
        __builtin_memset(block.im.get(), 0, halfOf(width) * kRowBlockStride);
    }
    for (size_t y = 0; y < height; y += RowBlock::rows) {
        const size_t rows = least(RowBlock::rows, height - y);
        transposeFloats(spectra.re.get() + y * spectra.pitch, halfOf(width), rows, spectra.stride(), block.re.get(),
                        kRowBlockStride);
        transposeFloats(spectra.im.get() + y * spectra.pitch, halfOf(width), rows, spectra.stride(), block.im.get(),
                        kRowBlockStride);
        join(block, width, plan, lines);
        transformLines(lines, width, plan.roots.get());
        for (size_t x = 0; x < width; ++x) {
            const Values values = lines.load(x);
            const Vecs<int32_t, 2> pixels = {pixelsOf(values.im, splat(scale)), pixelsOf(values.re, splat(scale))};
            storeLowBytes(block.pixels.get() + RowBlock::rows * x, narrowSat<uint16_t>(pixels));
        }
        rvkTransposeu8V(block.pixels.get(), static_cast<uint32_t>(rows), static_cast<uint32_t>(width), RowBlock::rows,
                        dst.row(y), dst.stride);
    }
}

// What the transforms of a picture need.
struct PicturePlan
{
    const LinePlan rows, columns;
    const HalfSpectra spectra;
    const RowBlock block;
    const Scratch<float> column;

    RVK_INLINE PicturePlan(uint32_t width, uint32_t height)
        : rows(width), columns(height), spectra(width, height), block(width), column(height, 2 * kLines)
    {
    }
    RVK_INLINE bool isReady() const
    {
        return rows.isReady && columns.isReady && spectra.re && spectra.im && block.isReady() && column;
    }
    RVK_INLINE Lines lines() const { return {column.get()}; }
};

} // namespace

rvkStatus rvkFFTu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* dst,
                    uint32_t dstStride)
{
    const PicturePlan plan(srcWidth, srcHeight);
    if (!plan.isReady())
        return RAVIK_ENORES;
    analyseRows({src, srcStride}, srcWidth, srcHeight, plan.rows, plan.block, plan.spectra);
    analyseColumns(plan.spectra, srcWidth, srcHeight, plan.columns, plan.lines(), {dst, dstStride});
    return RAVIK_SUCCESS;
}

rvkStatus rvkIFFTf32V(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride)
{
    const PicturePlan plan(srcWidth, srcHeight);
    if (!plan.isReady())
        return RAVIK_ENORES;
    const Plane<uint8_t> out{dst, dstStride};
    if (synthesiseColumns({src, srcStride}, srcWidth, srcHeight, plan.columns, plan.lines(), plan.spectra)) {
        const float scale = 1 / (static_cast<float>(srcWidth) * static_cast<float>(srcHeight));
        synthesiseRows(plan.spectra, srcWidth, srcHeight, plan.rows, plan.block, scale, out);
    } else {
        for (size_t y = 0; y < srcHeight; ++y)
            __builtin_memset(out.row(y), 0, srcWidth);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

// Vector implementations of the transforms.
#include "cpu/ravikAffineC.h"
#include "scratch.h"
#include "vecta/simd/bits.h"
#include "vecta/simd/boxes.h"
#include "vecta/simd/doubles.h"
#include "vecta/simd/tiles.h"
#include "vecta/simd/words.h"
#include "vecta/vecta.h"

#include <ravik/affine.h>

namespace rvk {
decltype(::rvkUndistortDisparityConvertDepthf32) rvkUndistortDisparityConvertDepthf32C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {

// ---- patches --------------------------------------------------------------------------------------------------------
//
// Positions add up along rows, so rows stand beside each other in vectors: squares of 8 x 8 pixels are computed column
// by column and transposed at the end.

namespace {

constexpr size_t kSide = 8, kSquare = kSide * kSide;

// 64 bytes as the columns of a square, to rows.
RVK_INLINE void transposeSquare(const uint8_t (&columns)[kSquare], uint8_t (&rows)[kSquare])
{
    Reg<uint8_t, 16> r[4];
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { r[i] = loadReg<uint8_t, 16>(columns + 16 * i); });
    zipRounds<kSide>(r);
    unrolled<4>([&](auto i) RVK_INLINE_LAMBDA { storeReg(rows + 16 * i, r[i]); });
}

// Samples steps of positions.
class PatchSampler
{
public:
    static constexpr size_t kStep = 2 * Vec<float>::lanes;
    static constexpr uint32_t kWordReach = 4; // bytes of which two are used

    RVK_INLINE explicit PatchSampler(const PatchSource& source) : m_source(source)
    {
        constexpr uint32_t mostPixels = 1 << 24; // in a direction: floats hold their numbers
        const bool hasInterior = source.width >= kWordReach && source.width <= mostPixels && source.height >= 2 &&
                                 source.height <= mostPixels &&
                                 uint64_t{source.stride} * source.height < uint64_t{1} << 31;
        m_endX = hasInterior ? static_cast<float>(source.width - kWordReach + 1) : 0;
        m_endY = static_cast<float>(source.height - 1);
    }

    RVK_INLINE void sample(const float* x, const float* y, uint8_t* dst) const
    {
        const Vecs<float, 2> xs = clamped(loadVecs<2>(x), m_source.right),
                             ys = clamped(loadVecs<2>(y), m_source.bottom);
        if (isInterior(xs, m_endX) && isInterior(ys, m_endY))
            sampleInterior(xs, ys, dst);
        else
            for (size_t i = 0; i < kStep; ++i)
                dst[i] = samplePatch(m_source, x[i], y[i]);
    }

private:
    static RVK_INLINE Vecs<float, 2> clamped(const Vecs<float, 2>& v, float last)
    {
        return both(v, [=](auto one) RVK_INLINE_LAMBDA { return min(splat(last), max(zero<float>(), one)); });
    }
    // All that is read for these positions exists.
    static RVK_INLINE bool isInterior(const Vecs<float, 2>& v, float end)
    {
        return all(less(max(v[0], v[1]), splat(end)));
    }

    // A coordinate before and behind its point.
    struct Split
    {
        Vecs<uint32_t, 2> whole;
        Vecs<float, 2> fraction;

        RVK_INLINE explicit Split(const Vecs<float, 2>& v)
        {
            const auto truncated = both(v, [](auto one) RVK_INLINE_LAMBDA { return truncateToInt(one); });
            whole = bitCast<uint32_t>(truncated);
            fraction =
                both(v, truncated, [](auto one, auto number) RVK_INLINE_LAMBDA { return one - toFloat(number); });
        }
    };

    RVK_INLINE void sampleInterior(const Vecs<float, 2>& xs, const Vecs<float, 2>& ys, uint8_t* dst) const
    {
        const Split x(xs), y(ys);
        const Vec<uint32_t> stride = splat(m_source.stride);
        const Vecs<uint32_t, 2> offsets =
            both(x.whole, y.whole, [=](auto column, auto row) RVK_INLINE_LAMBDA { return row * stride + column; });
        const auto between = [](const Vecs<float, 2>& a, const Vecs<float, 2>& b,
                                const Vecs<float, 2>& part) RVK_INLINE_LAMBDA {
            return Vecs<float, 2>{a[0] + part[0] * (b[0] - a[0]), a[1] + part[1] * (b[1] - a[1])};
        };
        const auto along = [&](const uint8_t* row) RVK_INLINE_LAMBDA {
            const auto words = both(offsets, [=](auto offset) RVK_INLINE_LAMBDA { return gatherWords(row, offset); });
            const auto byte = [&](uint32_t shift) RVK_INLINE_LAMBDA {
                return both(words,
                            [=](auto v) RVK_INLINE_LAMBDA { return toFloat(shiftRight(v, shift) & splat(255u)); });
            };
            return between(byte(0), byte(8), x.fraction);
        };
        const Vecs<float, 2> value = between(along(m_source.data), along(m_source.data + m_source.stride), y.fraction);
        storeLowBytes(
            dst, narrow(bitCast<uint32_t>(both(value, [](auto v) RVK_INLINE_LAMBDA { return truncateToInt(v); }))));
    }

    const PatchSource m_source;
    float m_endX, m_endY;
};

// Eight rows of a patch, from the left to the right.
class PatchBand
{
public:
    RVK_INLINE PatchBand(const PatchStart& start, const float* affine, size_t row) : m_affine(affine)
    {
        unrolled<kVectors>([&](auto i) RVK_INLINE_LAMBDA {
            const Vec<float> j = toFloat(iota<int32_t>() + splat(static_cast<int32_t>(row + i * Vec<float>::lanes)));
            m_x[i] = splat(start.x) + j * splat(affine[1]);
            m_y[i] = splat(start.y) + j * splat(affine[3]);
        });
    }

    // The next eight columns, row by row.
    RVK_INLINE void next(const PatchSampler& sampler, uint8_t (&square)[kSquare])
    {
        constexpr size_t lanes = Vec<float>::lanes, excess = lanes > kSide ? lanes - kSide : 0;
        float x[kSquare + excess], y[kSquare + excess];
        uint8_t columns[kSquare];
        for (size_t i = 0; i < kSquare; i += kSide)
            unrolled<kVectors>([&](auto v) RVK_INLINE_LAMBDA {
                store(x + i + v * lanes, m_x[v]);
                store(y + i + v * lanes, m_y[v]);
                m_x[v] = m_x[v] + splat(m_affine[0]);
                m_y[v] = m_y[v] + splat(m_affine[2]);
            });
        for (size_t i = 0; i < kSquare; i += PatchSampler::kStep)
            sampler.sample(x + i, y + i, columns + i);
        transposeSquare(columns, square);
    }

private:
    static constexpr size_t kVectors = Vec<float>::lanes < kSide ? kSide / Vec<float>::lanes : 1;
    Vec<float> m_x[kVectors], m_y[kVectors];
    const float* m_affine;
};

} // namespace

rvkStatus rvkTransformAffineu8_v2V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   const float32_t* position, const float32_t* affine, uint8_t* patch,
                                   uint32_t patchWidth, uint32_t patchHeight, uint32_t patchStride)
{
    const PatchSource source = patchSource(src, srcWidth, srcHeight, srcStride);
    PatchStart start;
    if (!placePatch(source, position, affine, patchWidth, patchHeight, start))
        return RAVIK_EFAIL;
    const PatchSampler sampler(source);
    const Plane dst{patch, patchStride};
    for (size_t next = 0; next < patchHeight; next += kSide) {
        const size_t y = patchHeight < kSide ? 0 : least(next, patchHeight - kSide); // the last band overlaps another
        PatchBand band(start, affine, y);
        for (size_t x = 0; x < patchWidth; x += kSide) {
            uint8_t square[kSquare];
            band.next(sampler, square);
            const size_t columns = least(patchWidth - x, kSide), rows = least(patchHeight, kSide);
            if (columns == kSide)
                for (size_t j = 0; j < rows; ++j)
                    __builtin_memcpy(dst.row(y + j) + x, square + kSide * j, kSide);
            else
                for (size_t j = 0; j < rows; ++j)
                    __builtin_memcpy(dst.row(y + j) + x, square + kSide * j, columns);
        }
    }
    return RAVIK_SUCCESS;
}

// ---- clipped transforms of pictures ---------------------------------------------------------------------------------

namespace {

// The runs of rows, as many at once as a vector has doubles.
class RunsOfRows
{
public:
    static constexpr size_t rows = Doubles::lanes;

    RVK_INLINE RunsOfRows(const ClippedMap& map, uint32_t width) : m_map(map), m_width(width) {}

    // Of row j and the ones behind it, which need not exist.
    RVK_INLINE void find(uint32_t j, ClippedRun (&runs)[rows]) const
    {
        const Doubles row = countDoubles(j), none = splatDouble(0);
        const Axis x = {splatDouble(m_map.startX) + row * splatDouble(m_map.downX), m_map.acrossX, m_map.right},
                   y = {splatDouble(m_map.startY) + row * splatDouble(m_map.downY), m_map.acrossY, m_map.bottom};
        Columns columns = {none, splatDouble(m_width)};
        columns.narrow(x);
        columns.narrow(y);
        const Doubles first = roundedDown(columns.first), end = roundedDown(columns.end);
        const Doubles last = end - splatDouble(1), startX = x.at(first), startY = y.at(first);
        const auto areRight = laneBits(x.isInside(startX) & y.isInside(startY) & x.isInside(x.at(last)) &
                                       y.isInside(y.at(last)) & greater(end, first));
        double firsts[rows], ends[rows], startsX[rows], startsY[rows];
        storeDoubles(firsts, first);
        storeDoubles(ends, end);
        storeDoubles(startsX, startX);
        storeDoubles(startsY, startY);
        for (size_t i = 0; i < rows; ++i) {
            const auto begin = static_cast<uint32_t>(firsts[i]), behind = static_cast<uint32_t>(ends[i]);
            runs[i] = areRight >> i & 1 ? clippedRunFrom(m_map, begin, behind, {startsX[i], startsY[i]})
                                        : clippedRun(m_map, j + static_cast<uint32_t>(i), begin, behind);
        }
    }

private:
    // A coordinate of pixels: pixel i of a row is at start + i * step, inside if that is from 0 to `last`.
    struct Axis
    {
        Doubles start;
        double step, last;

        RVK_INLINE Doubles at(Doubles i) const { return start + i * splatDouble(step); }
        RVK_INLINE DoubleMask isInside(Doubles v) const
        {
            return notGreater(splatDouble(0), v) & notGreater(v, splatDouble(last));
        }
    };

    // Which pixels may be inside: all those, and few others, for rounding. Numbers are rounded down in the end.
    struct Columns
    {
        Doubles first, end;

        RVK_INLINE void narrow(const Axis& axis)
        {
            if (axis.step == 0)
                end = select(axis.isInside(axis.start), end, first);
            if (__builtin_fabs(axis.step) < 0x1p-10) // sums may lose so small ones
                return;
            constexpr double margin = 0x1p-10; // roundings of columns up to 2^32 are far less
            const Doubles columnsPerPixel = splatDouble(1 / axis.step);
            const Doubles toZero = (splatDouble(0) - axis.start) * columnsPerPixel,
                          toLast = (splatDouble(axis.last) - axis.start) * columnsPerPixel;
            const bool isForward = axis.step > 0;
            const Doubles before = (isForward ? toZero : toLast) + splatDouble(1 - margin),
                          behind = (isForward ? toLast : toZero) + splatDouble(1 + margin);
            first = min(max(first, before), end); // as they are where these are not numbers
            end = max(min(end, behind), first);
        }
    };

    const ClippedMap& m_map;
    uint32_t m_width;
};

constexpr size_t kClippedChunk = kClippedAnchors; // pixels of three bytes: whole vectors of each element

// The numbers of the pixels of a step: next to each other in two vectors, as loadSplit has them, or in more.
template <size_t vectors>
RVK_INLINE Vecs<uint32_t, vectors> numbersOfPixels()
{
    if constexpr (vectors == 2) {
        return iotaSplit<uint32_t>();
    } else {
        Vecs<uint32_t, vectors> numbers;
        unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA {
            numbers[i] = iota<uint32_t>() * splat<uint32_t>(vectors) + splat(static_cast<uint32_t>(i));
        });
        return numbers;
    }
}

// One coordinate of the pixels of a run by their columns, with 16 bits of fraction.
template <size_t vectors>
class CarriedCoordinate
{
public:
    RVK_INLINE CarriedCoordinate(const ClippedRun& run, int64_t start, int64_t step)
        : m_first(run.first), m_start(start), m_step(step), m_carried(step / 65536), m_lanes(numbersOfPixels<vectors>())
    {
        const auto carried = static_cast<uint32_t>(m_carried);
        unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA { m_lanes[i] = m_lanes[i] * splat(carried); });
    }

    RVK_INLINE int64_t at(size_t column) const
    {
        const size_t beyondAnchor = column % kClippedAnchors;
        return (anchor(column - beyondAnchor) >> 16) + static_cast<int64_t>(beyondAnchor) * m_carried;
    }
    RVK_INLINE int64_t anchor(size_t column) const // with 32 bits of fraction
    {
        return m_start + (static_cast<int64_t>(column) - m_first) * m_step;
    }
    RVK_INLINE int64_t step() const { return m_step; }
    // From a column on whose number is a multiple of that of the elements, and so much more.
    RVK_INLINE Vecs<uint32_t, vectors> from(size_t column, uint32_t more = 0) const
    {
        const Vec<uint32_t> first = splat(static_cast<uint32_t>(at(column)) + more);
        Vecs<uint32_t, vectors> all;
        unrolled<vectors>([&](auto i) RVK_INLINE_LAMBDA { all[i] = first + m_lanes[i]; });
        return all;
    }

private:
    int64_t m_first, m_start, m_step, m_carried;
    Vecs<uint32_t, vectors> m_lanes;
};

// The columns of a run for whose positions a condition holds, which holds for those between two of them, too; and a
// call for each other one.
struct Interior
{
    size_t first, end;

    template <class Condition, class Other>
    static RVK_INLINE Interior of(const ClippedRun& run, Condition isInterior, Other other)
    {
        size_t first = run.first, end = run.end;
        for (; first < end && !isInterior(first); ++first)
            other(static_cast<uint32_t>(first));
        for (; first < end && !isInterior(end - 1); --end)
            other(static_cast<uint32_t>(end - 1));
        return {first, end};
    }
};

// Samples these, one byte each, by steps that begin at multiples of their size: whole(x, p) writes one to p, and so
// does partial(x, p) where some of its positions are none of these.
template <size_t step, class Whole, class Partial>
RVK_INLINE void sampleSteps(const Interior& interior, uint8_t* row, Whole whole, Partial partial)
{
    const auto [first, end] = interior;
    if (first == end) // or the step around it would read from a picture that may have too few columns
        return;
    for (size_t x = first / step * step; x < end; x += step) {
        for (; x >= first && x + step <= end; x += step) // without calls, so that constants stay in registers
            whole(x, row + x);
        if (x >= end)
            break;
        uint8_t pixels[step];
        partial(x, pixels);
        const size_t from = x < first ? first - x : 0;
        __builtin_memcpy(row + x + from, pixels + from, least(end - x, step) - from);
    }
}

// A picture with each pixel and the one below it side by side, in scratch memory: 32 bits are all four neighbours of a
// position, of the last column and row as well.
class PairedRows
{
public:
    RVK_INLINE explicit PairedRows(const ClippedSource& source)
        : m_pitch(2 * (source.width + 1)), m_pixels(source.height, m_pitch)
    {
        if (!m_pixels)
            return;
        const Plane src{source.data, source.stride};
        for (size_t y = 0; y < source.height; ++y)
            pairRow(src.row(y), src.row(least(y + 1, source.height - 1)), m_pixels.get() + y * m_pitch, source.width);
    }

    // Scattered loads are half as many; a picture must be small enough to stay in the cache, and of use as a whole.
    static RVK_INLINE bool areWorthIt(const ClippedSource& source, uint32_t dstWidth, uint32_t dstHeight)
    {
        const uint64_t pixels = uint64_t{source.width} * source.height;
        return pixels <= kMostPixels && source.width <= kMostColumns && uint64_t{dstWidth} * dstHeight >= pixels / 2;
    }

    RVK_INLINE explicit operator bool() const { return static_cast<bool>(m_pixels); }
    RVK_INLINE const uint8_t* data() const { return m_pixels.get(); }
    RVK_INLINE uint32_t pitch() const { return m_pitch; }

private:
    static constexpr uint64_t kMostPixels = 1 << 20;
    static constexpr uint32_t kMostColumns = 16382; // 15 bits hold the pitch

    static RVK_INLINE void pairRow(const uint8_t* row, const uint8_t* below, uint8_t* dst, size_t width)
    {
        constexpr size_t lanes = Vec<uint8_t>::lanes;
        dst[2 * width] = dst[2 * width + 1] = 0; // is read and has no weight
        if (width < lanes) {
            storePartial(dst, zip(loadPartial(row, width), loadPartial(below, width)), 2 * width);
            return;
        }
        const auto pair = [&](size_t x) RVK_INLINE_LAMBDA { store(dst + 2 * x, zip(load(row + x), load(below + x))); };
        for (size_t x = 0; x + lanes < width; x += lanes)
            pair(x);
        pair(width - lanes);
    }

    uint32_t m_pitch;
    const Scratch<uint8_t> m_pixels;
};

enum class Reading { nearest, bilinear, bilinearOfPairs };

#if defined(__AVX512VNNI__)
// From which bit of their words on the values are that were gathered.
template <Reading reading>
constexpr unsigned kValueBits = reading == Reading::nearest ? 0 : kBilinearBits;
#endif

// Bytes, from the source or from its pairs of rows.
template <Reading reading>
class ByteSampler
{
public:
    static constexpr uint32_t channels = 1;
    static constexpr ClippedSample* sampleOne = reading == Reading::nearest ? sampleNearest : sampleBilinear;

    RVK_INLINE explicit ByteSampler(const ClippedSource& source) : ByteSampler(source, source.data, source.stride) {}
    RVK_INLINE ByteSampler(const ClippedSource& source, const PairedRows& pairs)
        : ByteSampler(source, pairs.data(), pairs.pitch())
    {
    }

    RVK_INLINE void sample(const ClippedRun& run, uint8_t* row) const
    {
        const CarriedCoordinate<kVectors> x(run, run.x, run.stepX), y(run, run.y, run.stepY);
        const bool isHorizontal = run.stepY == 0 && (y.at(run.first) & 65535) == 0;
        const uint32_t nextRow = reading == Reading::bilinear && !isHorizontal ? 1 : 0;
        // Positions up to these have all that is read. Carried ones can be beyond the edge, of which pairs have copies.
        const auto lastOf = [](int64_t pixels) RVK_INLINE_LAMBDA {
            return kReadsPairs ? (pixels - 1) << 16 : (pixels << 16) - 1 - kHalf;
        };
        const int64_t lastX = lastOf(int64_t{m_source.width} - kReach + 1), lastY = lastOf(m_source.height - nextRow);
        const auto isInterior = [&](size_t column) RVK_INLINE_LAMBDA {
            const int64_t atX = x.at(column), atY = y.at(column);
            return m_hasInterior && atX >= 0 && atX <= lastX && atY >= 0 && atY <= lastY;
        };
        const Interior interior = Interior::of(run, isInterior, [&](uint32_t column) RVK_INLINE_LAMBDA {
            sampleOne(m_source, clippedPosition(m_source, run, column), row + column);
        });

        const size_t nextOffset = nextRow * m_pitch;
        const auto limited = [](Coordinates v, int64_t last) RVK_INLINE_LAMBDA {
            const Vec<int32_t> most = splat(static_cast<int32_t>(last));
            unrolled<kVectors>([&](auto i) RVK_INLINE_LAMBDA {
                v[i] = bitCast<uint32_t>(min(max(bitCast<int32_t>(v[i]), zero<int32_t>()), most));
            });
            return v;
        };
        sampleSteps<kStep>(
            interior, row,
            [&](size_t from, uint8_t* p)
                RVK_INLINE_LAMBDA { sampleStep(x.from(from, kHalf), y.from(from, kHalf), nextOffset, p); },
            [&](size_t from, uint8_t* p) RVK_INLINE_LAMBDA {
                sampleStep(limited(x.from(from, kHalf), lastX + kHalf), limited(y.from(from, kHalf), lastY + kHalf),
                           nextOffset, p);
            });
    }

private:
    static constexpr bool kReadsPairs = reading == Reading::bilinearOfPairs;
    static constexpr uint32_t kPixel = kReadsPairs ? 2 : 1;
    static constexpr int64_t kReach = kReadsPairs ? 1 : kGatherReach;          // columns
    static constexpr uint32_t kHalf = reading == Reading::nearest ? 32768 : 0; // added before the fraction is dropped
#if defined(__AVX512VNNI__)
    static constexpr size_t kVectors = 4;
#else
    static constexpr size_t kVectors = 2;
#endif
    static constexpr size_t kStep = kVectors * Vec<uint32_t>::lanes;
    using Coordinates = Vecs<uint32_t, kVectors>;

    RVK_INLINE ByteSampler(const ClippedSource& source, const uint8_t* data, uint32_t pitch)
        : m_source(source), m_data(data), m_pitch(pitch), m_hasShortRows(pitch <= INT16_MAX),
          m_hasInterior(uint64_t{pitch} * source.height < uint64_t{1} << 31)
    {
    }

    // Of coordinates to which kHalf was added.
    RVK_INLINE Vec<uint32_t> offset(Vec<uint32_t> x, Vec<uint32_t> y) const
    {
#if defined(__AVX512VNNI__)
        if (kReadsPairs || m_hasShortRows)
            return addProductOfUpperHalves(productOfUpperHalves(y, m_pitch), x, kPixel);
#endif
        const Vec<uint32_t> pixel = shiftRight(x, 16);
        return shiftRight(y, 16) * splat(m_pitch) + (kReadsPairs ? pixel + pixel : pixel);
    }

#if defined(__AVX512VNNI__)
    RVK_INLINE void sampleStep(const Coordinates& x, const Coordinates& y, size_t nextRow, uint8_t* dst) const
    {
        Coordinates pixels;
        unrolled<kVectors>([&](auto i) RVK_INLINE_LAMBDA {
            const Vec<uint32_t> from = offset(x[i], y[i]);
            pixels[i] = gatherWords(m_data, from);
            if constexpr (reading == Reading::bilinear)
                pixels[i] = pairsOfRows(pixels[i], gatherWords(m_data + nextRow, from));
            if constexpr (reading != Reading::nearest)
                pixels[i] = bilinearOfWords(pixels[i], weightsOfX(x[i]), weightsOfY(y[i]));
        });
        store(dst, takeBits<kValueBits<reading>>(pixels));
    }
#else
    // Pixels times 128.
    static RVK_INLINE Vec<int16_t> scaled(Vec<uint16_t> v)
    {
        return bitCast<int16_t>(v & splat<uint16_t>(255 << 7));
    }

    RVK_INLINE void sampleStep(const Coordinates& x, const Coordinates& y, size_t nextRow, uint8_t* dst) const
    {
        const Vecs<uint32_t, 2> offsets = {offset(x[0], y[0]), offset(x[1], y[1])};
        const auto write = [&](Vec<int16_t> topLeft, Vec<int16_t> topRight, Vec<int16_t> bottomLeft,
                               Vec<int16_t> bottomRight) RVK_INLINE_LAMBDA {
            const Vec<int16_t> fy = bitCast<int16_t>(shiftRight(joinSplit(y), 1));
            const Vec<int16_t> left = topLeft + multiplyRounded(bottomLeft - topLeft, fy);
            const Vec<int16_t> right = topRight + multiplyRounded(bottomRight - topRight, fy);
            // Products with 16 bits of fraction that have no sign, rounded down.
            const Vec<int16_t> fx = bitCast<int16_t>(joinSplit(x)), difference = right - left;
            const Vec<int16_t> value = left + multiplyHigh(difference, fx) + (difference & shiftRight(fx, 15));
            storeLowBytes(dst, bitCast<uint16_t>(shiftRightRounded(value, 7)));
        };
        if constexpr (reading == Reading::nearest) {
            storeLowBytes(dst, gatherBytes(m_data, offsets));
        } else if constexpr (kReadsPairs) {
            const auto words =
                both(offsets, [&](auto offset) RVK_INLINE_LAMBDA { return gatherWords(m_data, offset); });
            const Vec<uint16_t> left = joinSplit(words);
            const Vec<uint16_t> right =
                joinSplit(both(words, [](auto v) RVK_INLINE_LAMBDA { return shiftRight(v, 16); }));
            write(scaled(shiftLeft(left, 7)), scaled(shiftLeft(right, 7)), scaled(shiftRight(left, 1)),
                  scaled(shiftRight(right, 1)));
        } else {
            const Vec<uint16_t> top = gatherPairs(m_data, offsets), bottom = gatherPairs(m_data + nextRow, offsets);
            write(scaled(shiftLeft(top, 7)), scaled(shiftRight(top, 1)), scaled(shiftLeft(bottom, 7)),
                  scaled(shiftRight(bottom, 1)));
        }
    }
#endif

    const ClippedSource m_source;
    const uint8_t* m_data;
    uint32_t m_pitch;
    [[maybe_unused]] bool m_hasShortRows; // 15 bits hold the pitch
    bool m_hasInterior;
};

#if defined(__AVX512VNNI__)

// ---- squares --------------------------------------------------------------------------------------------------------
//
// They lie in bands of four rows; those from one anchor to the next are placed at once.

static_assert(kSegmentColumns == kClippedAnchors);

// Of the pixels that come from one box.
template <class SomeBox>
constexpr int32_t kLastColumn = kSquareSide* SomeBox::squares - 1;
constexpr int32_t kLastRow = kSquareSide - 1;

// Whether squares come from such boxes.
template <class SomeBox>
RVK_INLINE bool areInBoxes(const ClippedSource& source, const ClippedMap& map, uint32_t dstWidth)
{
    constexpr uint32_t mostColumns = 1 << 20; // where steps add up to less than the margin
    const auto fit = [](double across, double down, uint32_t size) RVK_INLINE_LAMBDA {
        const double most = size - 2 - 1.0 / 64; // a fraction, a neighbour, and what carried positions are off
        return kLastColumn<SomeBox> * __builtin_fabs(across) + kLastRow * __builtin_fabs(down) <= most;
    };
    return source.width >= SomeBox::columns && source.height >= SomeBox::rows && dstWidth <= mostColumns &&
           uint64_t{source.stride} * source.height < uint64_t{1} << 32 &&
           fit(map.acrossX, map.downX, SomeBox::columns) && fit(map.acrossY, map.downY, SomeBox::rows);
}

// What the squares of a segment have of one coordinate.
struct PlacedSquares
{
    Vec<uint32_t> ofFirst; // the pixels of the first square
    Vec<uint32_t> toBoxes; // to add for each square, so that its box begins at 0
    Vec<uint32_t> boxes;   // where that is
};

// A coordinate of all bands. Boxes begin where exact positions say; carried ones are less than kMargin off.
template <class SomeBox>
class BandAxis
{
public:
    // `last` can be the first of a box.
    RVK_INLINE BandAxis(double start, double across, double down, uint32_t last, int32_t half)
        : m_start(start + least(kLastColumn<SomeBox> * across) + least(kLastRow * down) - kMargin), m_across(across),
          m_down(down), m_step(clippedFixed(across)), m_last(splat(static_cast<int32_t>(last))),
          m_toNext(splat(static_cast<uint64_t>(kSegmentColumns * m_step)))
    {
        constexpr int32_t side = kSquareSide, together = SomeBox::squares;
        const Vec<int32_t> carried = splat(static_cast<int32_t>(m_step / 65536)), numbers = iota<int32_t>();
        m_inSquare = bitCast<uint32_t>((numbers & splat(side - 1)) * carried + splat(half));
        m_toSquares = shiftLeft(numbers, 2) * carried;
        m_toBoxes = shiftLeft(numbers & splat(-together), 2) * carried;
    }

    // The coordinate in the rows from j on, with 32 bits of fraction, and the least one of the first square.
    using At = Vec<uint64_t>;
    RVK_INLINE At at(uint32_t j, size_t column, const ClippedRun (&runs)[kSquareSide], int64_t ClippedRun::*first) const
    {
        uint64_t all[At::lanes] = {};
        for (size_t i = 0; i < kSquareSide; ++i)
            all[i] = static_cast<uint64_t>(
                runs[i].*first + (static_cast<int64_t>(column) - static_cast<int64_t>(runs[i].first)) * m_step);
        const double exact = m_start + j * m_down + static_cast<double>(static_cast<int64_t>(column)) * m_across;
        all[kSquareSide] = static_cast<uint64_t>(clippedFixed(exact));
        return load(all);
    }

    // The squares there. `at` moves on to the next segment.
    RVK_INLINE PlacedSquares place(At& at) const
    {
        const Vec<uint8_t> bytes = bitCast<uint8_t>(at); // 32 bits of these, with 16 of their fraction
        const Vec<uint8_t> rows = shuffle(bytes, bytes, [](size_t i) { return i / 16 * 8 + 2 + i % 4; });
        const Vec<uint8_t> least = shuffle(bytes, bytes, [](size_t i) { return kSquareSide * 8 + 2 + i % 4; });
        const Vec<int32_t> boxes = shiftRight(bitCast<int32_t>(least) + m_toBoxes, 16);
        const Vec<int32_t> first = min(max(boxes, zero<int32_t>()), m_last);
        at = at + m_toNext;
        return {bitCast<uint32_t>(rows) + m_inSquare, bitCast<uint32_t>(m_toSquares - shiftLeft(first, 16)),
                bitCast<uint32_t>(first)};
    }

    // To the next square: an even number.
    RVK_INLINE int32_t step() const { return static_cast<int32_t>(kSquareSide * (m_step / 65536)); }

private:
    static constexpr double kMargin = 1.0 / 256;
    static RVK_INLINE double least(double offset) { return offset < 0 ? offset : 0; }

    double m_start, m_across, m_down;
    int64_t m_step;
    Vec<int32_t> m_last, m_toSquares, m_toBoxes;
    Vec<uint32_t> m_inSquare;
    Vec<uint64_t> m_toNext;
};

// From a square to the next one, as weightsOfX and weightsOfY count.
struct StepsOfWeights
{
    Vec<int16_t> x, y;
};

// The squares of a segment.
struct Segment
{
    Vec<uint32_t> x, y; // of the first one's pixels; those of y times the columns of a box
    Vec<int16_t> weightsX, weightsY;
    uint32_t toX[kSegmentSquares], toY[kSegmentSquares],
        offsets[kSegmentSquares]; // to those in boxes; where these begin

    template <class SomeBox>
    RVK_INLINE void place(const PlacedSquares& placedX, const PlacedSquares& placedY, uint32_t stride)
    {
        x = placedX.ofFirst;
        y = shiftLeft(placedY.ofFirst, SomeBox::columnBits);
        weightsX = weightsOfX(placedX.ofFirst);
        weightsY = weightsOfY(placedY.ofFirst);
        store(toX, placedX.toBoxes);
        store(toY, shiftLeft(placedY.toBoxes, SomeBox::columnBits));
        store(offsets, placedY.boxes * splat(stride) + placedX.boxes);
    }
};

// Tiles of four squares, `first` to before `end`, of the segment's rows. (A function of its own has its constants in
// registers.)
template <Reading reading, class SomeBox>
RVK_NOINLINE void sampleTiles(const ClippedSource& source, const Segment& segment, const StepsOfWeights& steps,
                              size_t first, size_t end, uint8_t* const (&rows)[kSquareSide])
{
    const uint8_t* const data = source.data;
    const size_t stride = source.stride;
    const Vec<uint32_t> xs = segment.x, ys = segment.y;
    const Vec<int16_t> before = splat(static_cast<int16_t>(kTileSquares * first));
    Vec<int16_t> weightsX = segment.weightsX + steps.x * before, weightsY = segment.weightsY + steps.y * before;
    for (size_t tile = first; tile < end; ++tile) {
        Vecs<uint32_t, kTileSquares> values;
        SomeBox boxes[kTileSquares / SomeBox::squares];
        unrolled<kTileSquares>([&](auto i) RVK_INLINE_LAMBDA {
            const size_t n = kTileSquares * tile + i;
            SomeBox& box = boxes[i / SomeBox::squares];
            if constexpr (i % SomeBox::squares == 0)
                box = SomeBox(data + segment.offsets[n], stride);
            const Vec<uint8_t> x = bitCast<uint8_t>(xs + splat(segment.toX[n]));
            const Vec<uint8_t> y = bitCast<uint8_t>(ys + splat(segment.toY[n]));
            const Vec<uint8_t> numbers = selectBits(splat<uint8_t>(SomeBox::columns - 1), x, y); // in bytes 2
            if constexpr (reading == Reading::nearest) {
                values[i] = bitCast<uint32_t>(box.pixels(numbers));
            } else {
                const Vec<uint8_t> fourTimes = shuffle(numbers, numbers, [](size_t k) { return k / 4 * 4 + 2; });
                values[i] = bilinearOfWords(bitCast<uint32_t>(box.pixels(fourTimes + SomeBox::neighboursByColumns())),
                                            weightsX, weightsY);
                weightsX = weightsX + steps.x;
                weightsY = weightsY + steps.y;
            }
        });
        constexpr unsigned bits = reading == Reading::nearest ? 16 : kBilinearBits;
        storeTile<bits>(rows, kTileColumns * tile, values);
    }
}

// Of a row, what is sampled by squares.
struct BandRow
{
    Interior interior = {0, 0};
    uint8_t* pixels = nullptr;

    RVK_INLINE void putPart(size_t column, const uint8_t (&segment)[kSegmentColumns]) const
    {
        const size_t from = greatest(interior.first, column), to = least(interior.end, column + kSegmentColumns);
        if (from < to)
            __builtin_memcpy(pixels + from, segment + (from - column), to - from);
    }
};

template <Reading reading, class SomeBox>
class BandSampler
{
public:
    static constexpr uint32_t channels = 1, bandRows = kSquareSide;
    static constexpr ClippedSample* sampleOne = reading == Reading::nearest ? sampleNearest : sampleBilinear;

    RVK_INLINE BandSampler(const ClippedSource& source, const ClippedMap& map)
        : m_source(source), m_x(map.startX, map.acrossX, map.downX, source.width - SomeBox::columns, kHalf),
          m_y(map.startY, map.acrossY, map.downY, source.height - SomeBox::rows, kHalf),
          m_steps{splatHalves(m_x.step(), -m_x.step()), splatHalves(m_y.step(), m_y.step())}
    {
    }

    // Four rows, in two parts: that the first one waits for its positions is not felt when another band's second one
    // comes between.
    class Band
    {
    public:
        // Rows j to j + 3, of which some may have no run.
        RVK_INLINE void prepare(const BandSampler& sampler, uint32_t j, const ClippedRun (&runs)[kSquareSide],
                                Plane<uint8_t> dst)
        {
            m_begin = m_endOfAll = SIZE_MAX;
            m_end = m_beginOfAll = 0;
            for (uint32_t i = 0; i < kSquareSide; ++i) {
                m_rows[i] = {};
                if (runs[i].first < runs[i].end) {
                    uint8_t* const row = dst.row(j + i);
                    m_rows[i] = {sampler.interiorOf(runs[i], row), row};
                }
                const auto [first, end] = m_rows[i].interior;
                m_beginOfAll = greatest(m_beginOfAll, first);
                m_endOfAll = least(m_endOfAll, end);
                if (first < end) {
                    m_begin = least(m_begin, first);
                    m_end = greatest(m_end, end);
                }
            }
            if (m_begin >= m_end)
                return;
            const size_t column = m_begin / kSegmentColumns * kSegmentColumns;
            m_x = sampler.m_x.at(j, column, runs, &ClippedRun::x);
            m_y = sampler.m_y.at(j, column, runs, &ClippedRun::y);
            place(sampler, 0);
            place(sampler, 1);
        }

        RVK_INLINE void sample(const BandSampler& sampler)
        {
            size_t number = 0;
            for (size_t column = m_begin / kSegmentColumns * kSegmentColumns; column < m_end;
                 column += kSegmentColumns) {
                const size_t firstTile = m_begin < column ? 0 : (m_begin - column) / kTileColumns,
                             endTile = (least(m_end - column, kSegmentColumns) + kTileColumns - 1) / kTileColumns;
                const auto sampleTo = [&](uint8_t* const(&to)[kSquareSide]) RVK_INLINE_LAMBDA {
                    sampleTiles<reading, SomeBox>(sampler.m_source, m_segments[number], sampler.m_steps, firstTile,
                                                  endTile, to);
                };
                if (m_beginOfAll <= column && column + kSegmentColumns <= m_endOfAll) {
                    sampleTo({m_rows[0].pixels + column, m_rows[1].pixels + column, m_rows[2].pixels + column,
                              m_rows[3].pixels + column});
                } else {
                    uint8_t pixels[kSquareSide][kSegmentColumns];
                    sampleTo({pixels[0], pixels[1], pixels[2], pixels[3]});
                    for (size_t i = 0; i < kSquareSide; ++i)
                        m_rows[i].putPart(column, pixels[i]);
                }
                place(sampler, number); // the segment after the next one
                number = 1 - number;
            }
        }

    private:
        RVK_INLINE void place(const BandSampler& sampler, size_t number)
        {
            m_segments[number].template place<SomeBox>(sampler.m_x.place(m_x), sampler.m_y.place(m_y),
                                                       sampler.m_source.stride);
        }

        BandRow m_rows[kSquareSide];
        size_t m_begin, m_end, m_beginOfAll, m_endOfAll; // columns, of any row and of all
        typename BandAxis<SomeBox>::At m_x, m_y;         // of the segment to be placed next
        Segment m_segments[2];
    };

private:
    static constexpr int32_t kHalf = reading == Reading::nearest ? 32768 : 0; // added before the fraction is dropped

    // Steps of one pixel alone are none. Carried positions beyond the edge are those of the edge: pixel by pixel.
    RVK_INLINE Interior interiorOf(const ClippedRun& run, uint8_t* row) const
    {
        const int64_t lastX = int64_t{m_source.width - 1} << 16, lastY = int64_t{m_source.height - 1} << 16;
        const CarriedCoordinate<1> x(run, run.x, run.stepX), y(run, run.y, run.stepY);
        return Interior::of(
            run,
            [&](size_t column) RVK_INLINE_LAMBDA {
                const int64_t atX = x.at(column), atY = y.at(column);
                return run.end - run.first > 1 && atX >= 0 && atX <= lastX && atY >= 0 && atY <= lastY;
            },
            [&](uint32_t column)
                RVK_INLINE_LAMBDA { sampleOne(m_source, clippedPosition(m_source, run, column), row + column); });
    }

    const ClippedSource m_source;
    const BandAxis<SomeBox> m_x, m_y;
    const StepsOfWeights m_steps;
};

#endif

// The weights of the four pixels of a row or column, 14 bits, for some positions: each two neighbours' side by side,
// as they are multiplied.
struct CubicWeights
{
    int16_t w[2][2 * kClippedChunk];

    RVK_INLINE void find(size_t i, const Vecs<uint32_t, 2>& coordinate)
    {
        const auto t = bitCast<int16_t>(shiftRight(joinSplit(coordinate), 1));
        const Vec<int16_t> t2 = multiplyRounded(t, t), t3 = multiplyRounded(t2, t), two = splat<int16_t>(2);
        const Vec<int16_t> w0 = shiftRight(t2 + t2 - t - t3 + two, 2);
        const Vec<int16_t> w2 = t2 - t3 + bitCast<int16_t>(shiftRight(bitCast<uint16_t>(t + t3 + two), 2));
        const Vec<int16_t> w3 = shiftRight(t3 - t2 + two, 2);
        store2(w[0] + 2 * i, Vecs<int16_t, 2>{w0, splat<int16_t>(16384) - w0 - w2 - w3});
        store2(w[1] + 2 * i, Vecs<int16_t, 2>{w2, w3});
    }
    // The products of two vectors with the weights of the first or the last two neighbours, added up.
    RVK_INLINE Vecs<int32_t, 2> dot(const Vecs<int16_t, 2>& v, size_t pair, size_t i) const
    {
        const int16_t* const weights = w[pair] + 2 * i;
#if defined(__x86_64__) // a word that is loaded into all lanes, where two vectors would have to be zipped
        uint32_t both;
        __builtin_memcpy(&both, weights, sizeof both);
        const Vecs<int16_t, 2> zipped = zipInLanes(v[0], v[1]);
        return {dotPairs(zipped[0], bitCast<int16_t>(splat(both))), dotPairs(zipped[1], bitCast<int16_t>(splat(both)))};
#else
        return dotInLanes(v, {splat(weights[0]), splat(weights[1])});
#endif
    }
    // Of all four.
    RVK_INLINE Vecs<int32_t, 2> dot(const Vecs<int16_t, 2>& first, const Vecs<int16_t, 2>& last, size_t i) const
    {
        return both(dot(first, 0, i), dot(last, 1, i), [](auto a, auto b) RVK_INLINE_LAMBDA { return a + b; });
    }
};

// Interleaved pixels of three bytes, bicubic. A pixel at a time: its window's four rows are weighted side by side in
// one vector or two, then the four pixels of their sum.
class CubicRgbSampler
{
public:
    static constexpr uint32_t channels = 3;
    static constexpr ClippedSample* sampleOne = sampleCubicRgb;

    RVK_INLINE explicit CubicRgbSampler(const ClippedSource& source) : m_source(source) {}

    RVK_INLINE void sample(const ClippedRun& run, uint8_t* dst) const
    {
        const CarriedCoordinate<2> x(run, run.x, run.stepX), y(run, run.y, run.stepY);
        const int64_t lastColumn = int64_t{m_source.width} - kReach + 1, lastRow = int64_t{m_source.height} - 3;
        const auto isInterior = [&](size_t i) RVK_INLINE_LAMBDA {
            const int64_t column = x.at(i) >> 16, row = y.at(i) >> 16;
            return column >= 1 && column <= lastColumn && row >= 1 && row <= lastRow;
        };
        const auto [first, end] = Interior::of(run, isInterior, [&](uint32_t i) RVK_INLINE_LAMBDA {
            sampleOne(m_source, clippedPosition(m_source, run, i), dst + size_t{channels} * i);
        });
        for (size_t chunk = first / kClippedChunk * kClippedChunk; chunk < end; chunk += kClippedChunk) {
            const size_t from = chunk < first ? first - chunk : 0;
            sampleChunk(x, y, chunk, from, least(end - chunk, kClippedChunk), dst + channels * chunk);
        }
    }

private:
    static constexpr size_t kVectors = Vec<int16_t>::lanes < 12 ? 2 : 1;        // that hold four pixels
    static constexpr int64_t kReach = (kVectors * Vec<int16_t>::lanes + 2) / 3; // pixels from the window's first one on

    using Row = Vecs<int16_t, kVectors>;
    static RVK_INLINE Row loadRow(const uint8_t* p)
    {
        Row row;
        unrolled<kVectors>([&](auto i) RVK_INLINE_LAMBDA {
            row[i] = bitCast<int16_t>(loadWiden<uint16_t>(p + i * Vec<int16_t>::lanes));
        });
        return row;
    }
    template <size_t n>
    static RVK_INLINE Vec<int16_t> from(const Row& row)
    {
        constexpr size_t lanes = Vec<int16_t>::lanes;
        return extract<n % lanes>(row[n / lanes], row[n / lanes + 1 < kVectors ? n / lanes + 1 : n / lanes]);
    }
    // Pixels `begin` to before `end` of the chunk that begins with column `first`.
    RVK_INLINE void sampleChunk(const CarriedCoordinate<2>& x, const CarriedCoordinate<2>& y, size_t first,
                                size_t begin, size_t end, uint8_t* dst) const
    {
        constexpr size_t step = Vec<uint16_t>::lanes, sums = channels * kClippedChunk;
        CubicWeights across, down;
        uint16_t columns[kClippedChunk], rows[kClippedChunk];
        for (size_t i = begin / step * step; i < end; i += step) {
            const Vecs<uint32_t, 2> xs = x.from(first + i), ys = y.from(first + i);
            const auto whole = [](const Vecs<uint32_t, 2>& v) RVK_INLINE_LAMBDA {
                return joinSplit(both(v, [](auto one) RVK_INLINE_LAMBDA { return shiftRight(one, 16); }));
            };
            across.find(i, xs);
            down.find(i, ys);
            store(columns + i, whole(xs));
            store(rows + i, whole(ys));
        }

        int32_t values[sums + Vec<int32_t>::lanes] = {}; // with 20 bits of fraction
        for (size_t i = begin; i < end; ++i) {
            const uint8_t* const p =
                m_source.data + size_t{rows[i] - 1u} * m_source.stride + channels * (columns[i] - 1u);
            Row pixels[4], sum;
            unrolled<4>([&](auto r) RVK_INLINE_LAMBDA { pixels[r] = loadRow(p + r * m_source.stride); });
            unrolled<kVectors>([&](auto v) RVK_INLINE_LAMBDA {
                sum[v] = narrowRoundedInLanes<int16_t, 8>(
                    down.dot({pixels[0][v], pixels[1][v]}, {pixels[2][v], pixels[3][v]}, i));
            });
            store(values + channels * i, across.dot({sum[0], from<3>(sum)}, {from<6>(sum), from<9>(sum)}, i)[0]);
        }

        uint8_t bytes[sums];
        for (size_t i = 0; i < channels * end; i += Vec<uint8_t>::lanes) {
            const auto words = [&](size_t half) RVK_INLINE_LAMBDA {
                const auto two = loadVecs<2>(values + i + half * Vec<uint16_t>::lanes);
                return narrowSat<int16_t>(both(two, [](auto v) RVK_INLINE_LAMBDA { return shiftRightRounded(v, 20); }));
            };
            store(bytes + i, narrowSat<uint8_t>(Vecs<int16_t, 2>{words(0), words(1)}));
        }
        __builtin_memcpy(dst + channels * begin, bytes + channels * begin, channels * (end - begin));
    }

    const ClippedSource m_source;
};

template <class Sampler>
RVK_INLINE void transformClipped(const Sampler& sampler, const ClippedSource& source, const float* position,
                                 const float* affine, uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                 uint32_t dstStride, uint32_t borderType, const uint8_t* borderValue)
{
    const ClippedRules rules{Sampler::sampleOne, Sampler::channels, borderType, borderValue};
    const ClippedMap map = clippedMap(source, position, affine, dstWidth, dstHeight);
    const RunsOfRows runsOfRows(map, dstWidth);
    ClippedRun runs[RunsOfRows::rows];
    const auto fillOutside = [&](uint32_t j) RVK_INLINE_LAMBDA { // of row j, the next one; the run is left
        if (j % RunsOfRows::rows == 0)
            runsOfRows.find(j, runs);
        const ClippedRun& run = runs[j % RunsOfRows::rows];
        uint8_t* const row = Plane{dst, dstStride}.row(j);
        if (run.first > 0)
            fillClipped(source, rules, map, j, 0, run.first, row);
        if (run.end < dstWidth)
            fillClipped(source, rules, map, j, run.end, dstWidth, row);
        return run;
    };
    if constexpr (requires { typename Sampler::Band; }) {
        const auto prepare = [&](auto& band, uint64_t j) RVK_INLINE_LAMBDA {
            ClippedRun runsOfBand[Sampler::bandRows] = {};
            for (uint64_t i = 0; i < Sampler::bandRows && j + i < dstHeight; ++i)
                runsOfBand[i] = fillOutside(static_cast<uint32_t>(j + i));
            band.prepare(sampler, static_cast<uint32_t>(j), runsOfBand, Plane{dst, dstStride});
        };
        typename Sampler::Band bands[2];
        prepare(bands[0], 0);
        for (uint64_t j = 0, number = 0; j < dstHeight; j += Sampler::bandRows, number = 1 - number) {
            prepare(bands[1 - number], j + Sampler::bandRows);
            bands[number].sample(sampler);
        }
    } else {
        for (uint32_t j = 0; j < dstHeight; ++j)
            if (const ClippedRun run = fillOutside(j); run.first < run.end)
                sampler.sample(run, Plane{dst, dstStride}.row(j));
    }
}

} // namespace

rvkStatus rvkTransformAffineClippedu8_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          const float32_t* position, const float32_t* affine, uint8_t* dst,
                                          uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                          uint32_t interpolation, uint32_t borderType, uint8_t borderValue)
{
    const ClippedSource source{src, srcWidth, srcHeight, srcStride};
    const bool isNearest = interpolation == RAVIK_INTERPOLATION_NEAREST;
    const auto transform = [&](const auto& sampler) RVK_INLINE_LAMBDA {
        transformClipped(sampler, source, position, affine, dst, dstWidth, dstHeight, dstStride, borderType,
                         &borderValue);
        return RAVIK_SUCCESS;
    };
#if defined(__AVX512VNNI__)
    const ClippedMap map = clippedMap(source, position, affine, dstWidth, dstHeight);
    const auto transformInBoxes = [&](auto columns) RVK_INLINE_LAMBDA {
        using SomeBox = Box<columns>;
        return isNearest ? transform(BandSampler<Reading::nearest, SomeBox>(source, map))
                         : transform(BandSampler<Reading::bilinear, SomeBox>(source, map));
    };
    if (areInBoxes<Box<16>>(source, map, dstWidth))
        return transformInBoxes(Constant<16>{});
    if (areInBoxes<Box<8>>(source, map, dstWidth))
        return transformInBoxes(Constant<8>{});
#endif
    if (isNearest)
        return transform(ByteSampler<Reading::nearest>(source));
    if (PairedRows::areWorthIt(source, dstWidth, dstHeight))
        if (const PairedRows pairs(source); pairs)
            return transform(ByteSampler<Reading::bilinearOfPairs>(source, pairs));
    return transform(ByteSampler<Reading::bilinear>(source));
}

rvkStatus rvk3ChannelTransformAffineClippedBCu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, const float32_t* position, const float32_t* affine,
                                                 uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight,
                                                 uint32_t dstStride, uint32_t borderType, const uint8_t* borderValue)
{
    const ClippedSource source{src, srcWidth, srcHeight, srcStride};
    transformClipped(CubicRgbSampler(source), source, position, affine, dst, dstWidth, dstHeight, dstStride, borderType,
                     borderValue);
    return RAVIK_SUCCESS;
}

// ---- depth ----------------------------------------------------------------------------------------------------------

namespace {

// Where the lens puts the pixels of a row of the ideal camera.
class LensRow
{
public:
    RVK_INLINE LensRow(const LensCamera& lens, uint32_t row) : m_lens(lens)
    {
        m_y = (static_cast<float>(row) - lens.cy) * lens.reciprocalFy;
        m_yy = m_y * m_y;
        m_tangentialY = m_yy + m_yy;
    }

    struct Position
    {
        Vec<float> u, v;
    };
    RVK_INLINE Position at(Vec<float> column) const
    {
        const auto k = [](float number) RVK_INLINE_LAMBDA { return splat(number); };
        const Vec<float> x = (column - k(m_lens.cx)) * k(m_lens.reciprocalFx), y = k(m_y);
        const Vec<float> xx = x * x, xy2 = k(2) * x * y, r2 = xx + k(m_yy);
        const Vec<float> radial = k(1) + r2 * (k(m_lens.k1) + r2 * (k(m_lens.k2) + r2 * k(m_lens.k3)));
        const Vec<float> p1 = k(m_lens.p1), p2 = k(m_lens.p2);
        return {k(m_lens.fx) * (x * radial + (p1 * xy2 + p2 * (r2 + k(2) * xx))) + k(m_lens.cx),
                k(m_lens.fy) * (y * radial + (p1 * (r2 + k(m_tangentialY)) + p2 * xy2)) + k(m_lens.cy)};
    }

private:
    const LensCamera& m_lens;
    float m_y, m_yy, m_tangentialY;
};

// The pixels nearest to positions, 0 where there are none, of at most 2^24 in a row or column.
struct NearestPixels
{
    Mask<float> exist;
    Vec<int32_t> number;

    RVK_INLINE NearestPixels(Vec<float> position, uint32_t size)
    {
        const Vec<float> rounded = position + splat(0.5f);
        exist = ~less(rounded, zero<float>()) & less(rounded, splat(static_cast<float>(size)));
        number = truncateToInt(select(exist, rounded, zero<float>()));
    }
};

// The depths of a vector of columns. Whether disparities are positive is asked of their bits, because subnormals are,
// too.
RVK_INLINE Vec<float> depthAt(const LensRow& row, Vec<int32_t> column, const uint8_t* src, uint32_t width,
                              uint32_t height, uint32_t stride, float ofOne)
{
    const LensRow::Position position = row.at(toFloat(column));
    const NearestPixels u(position.u, width), v(position.v, height);
    const auto offset = bitCast<uint32_t>(v.number) * splat(stride) + shiftLeft(bitCast<uint32_t>(u.number), 2);
    const Vec<float> disparity = select(u.exist & v.exist, bitCast<float>(gatherWords(src, offset)), zero<float>());
    const Vec<int32_t> bits = bitCast<int32_t>(disparity), infinity = splat(0x7f800000);
    const Mask<int32_t> isPositive = greater(bits, zero<int32_t>()) & ~greater(bits, infinity);
    return bitCast<float>(select(isPositive, bitCast<int32_t>(divide(splat(ofOne), disparity)), zero<int32_t>()));
}

} // namespace

rvkStatus rvkUndistortDisparityConvertDepthf32V(const float32_t* disparity, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const float32_t* camera,
                                                const float32_t* distortion, float32_t baseline, float32_t* depth,
                                                uint32_t dstStride)
{
    constexpr uint32_t mostPixels = 1 << 24; // in a direction: floats hold their numbers
    constexpr size_t lanes = Vec<float>::lanes;
    const uint32_t stride = srcStride / sizeof(float) * sizeof(float);
    if (srcWidth > mostPixels || srcHeight > mostPixels || uint64_t{stride} * srcHeight > uint64_t{1} << 31)
        return rvkUndistortDisparityConvertDepthf32C(disparity, srcWidth, srcHeight, srcStride, camera, distortion,
                                                     baseline, depth, dstStride);
    const LensCamera lens = lensCamera(camera, distortion, baseline);
    for (uint32_t y = 0; y < srcHeight; ++y) {
        const LensRow row(lens, y);
        const auto at = [&](size_t x) RVK_INLINE_LAMBDA {
            return depthAt(row, iota<int32_t>() + splat(static_cast<int32_t>(x)),
                           reinterpret_cast<const uint8_t*>(disparity), srcWidth, srcHeight, stride, lens.depthOfOne);
        };
        float* const dst = Plane{depth, dstStride}.row(y);
        size_t x = 0;
        for (; x + lanes <= srcWidth; x += lanes)
            store(dst + x, at(x));
        if (x < srcWidth)
            storePartial(dst + x, at(x), srcWidth - x);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikAffineForms.h"

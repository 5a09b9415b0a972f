// Pictures of interleaved bytes between their pixels, as cpu/sampling.h defines them: as many pixels at once as there
// are 16-bit elements in a vector.
#pragma once

#include "cpu/sampling.h" // SampledImage and constants; none of its functions
#include "vecta/simd/tiles.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Where the pixels of a step come from: coordinates in units of which a pixel has 2^unitBits, which may be any floats,
// and those that are fixed point numbers.
constexpr size_t kSampleStep = Vec<uint16_t>::lanes;
template <unsigned unitBits>
struct Positions
{
    Vecs<float, 2> x, y; // in the order of loadSplit
};
struct FixedPositions
{
    Vecs<int32_t, 2> x, y; // in the same order
};

// between / 2^15 of the way from one number to the other, rounded half up.
RVK_INLINE Vec<int16_t> interpolate(Vec<int16_t> from, Vec<int16_t> to, Vec<int16_t> between)
{
    return from + multiplyRounded(to - from, between);
}

// The same from the lower byte of each pair to the upper one, with kGreyBits.
RVK_INLINE Vec<int16_t> interpolatePairs(Vec<uint16_t> pairs, Vec<int16_t> between)
{
#if defined(__x86_64__)
    constexpr int32_t one = 1 << kGreyBits;
    const Vec<uint8_t> bytes = bitCast<uint8_t>(pairs);
    const auto weighted = [=](int32_t lower, int32_t upper)
                              RVK_INLINE_LAMBDA { return dotPairs(bytes, bitCast<int8_t>(splatPair(lower, upper))); };
    return weighted(one, 0) + multiplyRounded(weighted(-one, one), between);
#else
    const Vec<uint16_t> byte = splat<uint16_t>(255 << kGreyBits);
    const Vec<uint16_t> lower = shiftLeft(pairs, kGreyBits) & byte, upper = shiftRight(pairs, 8 - kGreyBits) & byte;
    return interpolate(bitCast<int16_t>(lower), bitCast<int16_t>(upper), between);
#endif
}

// What has kGreyBits of fraction, as a grey level.
RVK_INLINE Vec<uint16_t> greyLevels(Vec<int16_t> v)
{
    return bitCast<uint16_t>(shiftRightRounded(v, kGreyBits));
}

RVK_INLINE Vec<int16_t> fractionOf(const Vecs<int32_t, 2>& coordinate)
{
    const Vec<uint16_t> joined = joinSplit(bitCast<uint32_t>(coordinate));
    return bitCast<int16_t>(joined & splat(static_cast<uint16_t>(kPositionOne - 1)));
}

// Of pairs of pixels at positions, row by row, which are in the order of joinSplit, too.
RVK_INLINE Vec<uint16_t> interpolateRows(Vec<uint16_t> top, Vec<uint16_t> bottom, const Vecs<uint32_t, 2>& x,
                                         const Vecs<uint32_t, 2>& y)
{
    const Vec<int16_t> toRight = fractionOf(bitCast<int32_t>(x)), toBottom = fractionOf(bitCast<int32_t>(y));
    return greyLevels(interpolate(interpolatePairs(top, toRight), interpolatePairs(bottom, toRight), toBottom));
}

// ---- anywhere -------------------------------------------------------------------------------------------------------

// Columns, or rows, on the two sides of positions: moved into the picture, and whether they were there already.
struct Neighbours
{
    uint16_t place[2][kSampleStep];
    Vec<uint16_t> exist[2]; // all bits set
    Vec<int16_t> between;

    RVK_INLINE Neighbours(const Vecs<int32_t, 2>& coordinate, uint32_t size, bool isNearest)
    {
        const Vec<int32_t> last = splat(static_cast<int32_t>(size) - 1), roundUp = splat(isNearest ? 1 : 0);
        between = isNearest ? zero<int16_t>() : fractionOf(coordinate);
        for (int32_t side = 0; side < 2; ++side) {
            const auto number = [=](Vec<int32_t> v) RVK_INLINE_LAMBDA {
                const Vec<int32_t> half = shiftRight(v, kPositionBits - 1) & roundUp;
                return shiftRight(v, kPositionBits) + half + splat(side);
            };
            const auto inside = [=](Vec<int32_t> v) RVK_INLINE_LAMBDA {
                return bitCast<uint32_t>(min(max(number(v), zero<int32_t>()), last));
            };
            const auto isInside = [=](Vec<int32_t> v) RVK_INLINE_LAMBDA {
                return bitCast<uint32_t>(toVec(equal(bitCast<int32_t>(inside(v)), number(v))));
            };
            store(place[side], joinSplit(both(coordinate, inside)));
            exist[side] = joinSplit(both(coordinate, isInside));
        }
    }

    // Of these numbers on the two sides of a position those that have a weight exist.
    RVK_INLINE Vec<uint16_t> weightedExist() const
    {
        return exist[0] & (exist[1] | toVec(equal(bitCast<uint16_t>(between), zero<uint16_t>())));
    }
};

RVK_INLINE Vec<uint16_t> choose(Vec<uint16_t> mask, Vec<uint16_t> a, Vec<uint16_t> b)
{
    return b ^ (mask & (a ^ b));
}

// The first n pixels, wherever they come from: loads one by one, and the border rule.
RVK_NOINLINE void sampleAnywhere(const SampledImage& image, size_t channels, const FixedPositions& positions,
                                 uint8_t* dst, size_t n)
{
    const bool isNearest = image.interpolation == RAVIK_INTERPOLATION_NEAREST;
    const Neighbours x(positions.x, image.width, isNearest), y(positions.y, image.height, isNearest);
    const Vec<uint16_t> some = (x.exist[0] | x.exist[1]) & (y.exist[0] | y.exist[1]);
    if (image.borderType != RAVIK_BORDER_REPLICATE && !any(greater(some, zero<uint16_t>()))) {
        for (size_t i = 0; i < channels * n && image.borderType == RAVIK_BORDER_CONSTANT; ++i)
            dst[i] = image.borderValue[i % channels];
        return;
    }

    uint8_t bytes[4][kSampleStep], written[kSampleStep];
    for (size_t channel = 0; channel < channels; ++channel) {
        const auto at = [&](size_t column, size_t row) RVK_INLINE_LAMBDA {
            uint16_t pixels[kSampleStep];
            for (size_t i = 0; i < kSampleStep; ++i)
                pixels[i] =
                    image.data[size_t{y.place[row][i]} * image.stride + x.place[column][i] * channels + channel];
            Vec<uint16_t> v = load(pixels);
            if (image.borderType == RAVIK_BORDER_CONSTANT)
                v = choose(x.exist[column] & y.exist[row], v, splat(uint16_t{image.borderValue[channel]}));
            return v;
        };
        if (isNearest) {
            storeLowBytes(bytes[channel], at(0, 0));
            continue;
        }
        const auto along = [&](size_t row) RVK_INLINE_LAMBDA {
            return interpolate(bitCast<int16_t>(shiftLeft(at(0, row), kGreyBits)),
                               bitCast<int16_t>(shiftLeft(at(1, row), kGreyBits)), x.between);
        };
        storeLowBytes(bytes[channel], greyLevels(interpolate(along(0), along(1), y.between)));
    }
    storeLowBytes(written,
                  image.borderType == RAVIK_BORDER_NONE ? x.weightedExist() & y.weightedExist() : splat<uint16_t>(255));
    for (size_t i = 0; i < n; ++i)
        for (size_t channel = 0; channel < channels && written[i]; ++channel)
            dst[channels * i + channel] = bytes[channel][i];
}

// ---- inside the picture ---------------------------------------------------------------------------------------------

// A coordinate, which must fit.
template <unsigned unitBits>
RVK_INLINE Vec<int32_t> toPosition(Vec<float> coordinate)
{
    if constexpr (unitBits == kPositionBits)
        return truncateToInt(coordinate);
    else
        return toFixed<kPositionBits - unitBits>(coordinate);
}
// The fixed point numbers as cpu/sampling.h makes them of any coordinates.
template <unsigned unitBits>
RVK_INLINE Vecs<int32_t, 2> fixedAnywhere(const Vecs<float, 2>& coordinate, uint32_t size)
{
    constexpr float one = 1 << unitBits;
    const Vec<float> begin = splat(-one), end = splat(static_cast<float>(size) * one);
    return both(coordinate,
                [=](Vec<float> v) RVK_INLINE_LAMBDA { return toPosition<unitBits>(min(end, max(begin, v))); });
}
// The same of coordinates inside the picture.
template <unsigned unitBits>
RVK_INLINE Vecs<uint32_t, 2> fixedInside(const Vecs<float, 2>& coordinate)
{
    return bitCast<uint32_t>(both(coordinate, [](auto v) RVK_INLINE_LAMBDA { return toPosition<unitBits>(v); }));
}

// The bits of a coordinate that is not negative. As numbers they are in the order of the coordinates, and those of all
// others, negative floats and what is not a number, are above them.
template <unsigned unitBits>
RVK_INLINE uint32_t bitsOfCoordinate(uint32_t fixed)
{
    const float coordinate = static_cast<float>(fixed) / (1 << (kPositionBits - unitBits));
    uint32_t bits;
    __builtin_memcpy(&bits, &coordinate, sizeof bits);
    return bits;
}

// Whole numbers of pixels, halves rounded up.
RVK_INLINE Vec<uint32_t> roundedPosition(Vec<uint32_t> coordinate)
{
#if defined(__ARM_NEON)
    return vec(vrshrq_n_u32(reg(coordinate), kPositionBits));
#else
    return shiftRight(coordinate + splat(kPositionOne / 2u), kPositionBits);
#endif
}

// The fraction of a coordinate, in both halves.
RVK_INLINE Vec<uint32_t> fractionTwice(Vec<uint32_t> coordinate)
{
    const Vec<uint16_t> halves = bitCast<uint16_t>(coordinate);
    return bitCast<uint32_t>(shuffle(halves, halves, [](size_t i) { return i / 2 * 2; })) &
           splat((kPositionOne - 1u) * 0x10001);
}

#if defined(__x86_64__)

constexpr bool kSamplesPixelsLater = true;

// Bilinear pixels of three and four bytes as words, of which three leave the last byte unused. A pixel and the one to
// its right are in the 8 bytes at its offset.
template <size_t channels>
RVK_INLINE Vecs<uint32_t, 2> bilinearWords(const uint8_t* upper, const uint8_t* lower, const uint32_t* splitOffsets,
                                           const Vecs<uint32_t, 2>& toRight, const Vecs<uint32_t, 2>& toBottom)
{
    Vecs<int16_t, 4> pixels;
    unrolled<4>([&](auto n) RVK_INLINE_LAMBDA {
        constexpr size_t number = n;
        const auto forChannels = [](const Vecs<uint32_t, 2>& between) RVK_INLINE_LAMBDA { // of two pixels a block
            return bitCast<int16_t>(shuffle(between[0], between[1], [](size_t i) {
                return i / 4 * 4 + number + i / 2 % 2 * Vec<uint32_t>::lanes;
            }));
        };
        const Vec<int16_t> right = forChannels(toRight), bottom = forChannels(toBottom);
        const auto along = [&](const uint8_t* row) RVK_INLINE_LAMBDA {
            const Vec<uint8_t> bytes = bitCast<uint8_t>(loadEach8InLanes<number>(row, splitOffsets));
            const Vec<uint8_t> pairs =
                shuffle(bytes, bytes, [](size_t i) { return i / 8 * 8 + i % 8 / 2 + i % 2 * channels; });
            return interpolatePairs(bitCast<uint16_t>(pairs), right);
        };
        pixels[n] = interpolate(along(upper), along(lower), bottom);
    });
    const auto words = [&](size_t n) RVK_INLINE_LAMBDA {
        return bitCast<uint32_t>(narrowRoundedInLanes<uint8_t, kGreyBits>(Vecs<int16_t, 2>{pixels[n], pixels[n + 1]}));
    };
    return orderWidened(Vecs<uint32_t, 2>{words(0), words(2)});
}

#else

constexpr bool kSamplesPixelsLater = false;

// Between bytes of two vectors.
RVK_INLINE Vecs<int16_t, 2> interpolateInLanes(Vec<uint8_t> from, Vec<uint8_t> to, const Vecs<int16_t, 2>& between)
{
    const auto wide = [](Vec<uint8_t> v) RVK_INLINE_LAMBDA {
        return both(widenInLanes(v),
                    [](auto half) RVK_INLINE_LAMBDA { return bitCast<int16_t>(shiftLeft(half, kGreyBits)); });
    };
    const Vecs<int16_t, 2> a = wide(from), b = wide(to);
    return {interpolate(a[0], b[0], between[0]), interpolate(a[1], b[1], between[1])};
}

// Four bytes of each pixel, all weighted alike.
struct Corners
{
    Vec<uint32_t> topLeft, topRight, bottomLeft, bottomRight;
};

RVK_INLINE Vec<uint32_t> weigh(const Corners& corners, Vec<uint32_t> toRight, Vec<uint32_t> toBottom)
{
    const auto forChannels = [](Vec<uint32_t> between) RVK_INLINE_LAMBDA {
        const Vec<uint32_t> twice = fractionTwice(between);
        return bitCast<int16_t>(zipInLanes(twice, twice));
    };
    const Vecs<int16_t, 2> right = forChannels(toRight), bottom = forChannels(toBottom);
    const auto along = [&](Vec<uint32_t> from, Vec<uint32_t> to) RVK_INLINE_LAMBDA {
        return interpolateInLanes(bitCast<uint8_t>(from), bitCast<uint8_t>(to), right);
    };
    const Vecs<int16_t, 2> above = along(corners.topLeft, corners.topRight);
    const Vecs<int16_t, 2> below = along(corners.bottomLeft, corners.bottomRight);
    return bitCast<uint32_t>(narrowRoundedInLanes<uint8_t, kGreyBits>(
        Vecs<int16_t, 2>{interpolate(above[0], below[0], bottom[0]), interpolate(above[1], below[1], bottom[1])}));
}

#endif

// The first three bytes of each word.
RVK_INLINE void storeTriples(uint8_t* p, Vec<uint32_t> words)
{
    constexpr size_t most = 3 * Vec<uint32_t>::lanes / 4;
    const Vec<uint8_t> bytes = bitCast<uint8_t>(words);
    const Vec<uint8_t> inBlocks =
        shuffle(bytes, bytes, [](size_t i) { return i % 16 < 12 ? i / 16 * 16 + i % 16 / 3 * 4 + i % 16 % 3 : i; });
    const Vec<uint32_t> triples = bitCast<uint32_t>(inBlocks);
    const Vec<uint32_t> packed = shuffle(triples, triples, [](size_t i) { return i < most ? i / 3 * 4 + i % 3 : i; });
    storeThreeQuarters(p, Reg<uint8_t, kBytes>{bitCast<uint8_t>(packed).raw});
}

// Samples steps of positions.
template <size_t channels, uint32_t interpolation, unsigned unitBits>
class StepSampler
{
public:
    static constexpr bool kSamplesLater = kSamplesPixelsLater && channels > 1;

    // The image must stay where it is.
    RVK_INLINE explicit StepSampler(const SampledImage& image)
        : m_image(image), m_top(image.data), m_stride(image.stride)
    {
        constexpr uint32_t reach = (kReachBytes + channels - 1) / channels; // columns
        const bool hasInterior = image.width >= reach && image.height >= kRows &&
                                 (image.height - 1) * uint64_t{image.stride} + image.width * channels < uint64_t{1}
                                                                                                            << 31;
        const auto end = [=](uint32_t first) RVK_INLINE_LAMBDA { // of the coordinates of this pixel
            const uint32_t fixed = (first << kPositionBits) + (kIsNearest ? kPositionOne / 2 : kPositionOne);
            return hasInterior ? bitsOfCoordinate<unitBits>(fixed) : 0;
        };
        m_hasShortRows = image.height < 32768 && image.stride < 32768;
        m_endX = end(image.width - reach);
        m_endY = end(image.height - kRows);
    }

    // All reads for these positions are inside the picture.
    RVK_INLINE bool areInside(const Positions<unitBits>& p) const
    {
        const Vecs<uint32_t, 2> x = bitCast<uint32_t>(p.x), y = bitCast<uint32_t>(p.y);
        return all(less(max(x[0], x[1]), splat(m_endX)) & less(max(y[0], y[1]), splat(m_endY)));
    }

    // A whole step of such positions.
    RVK_INLINE void sampleInside(const Positions<unitBits>& p, uint8_t* dst) const requires(channels == 1)
    {
        const Vecs<uint32_t, 2> x = fixedInside<unitBits>(p.x), y = fixedInside<unitBits>(p.y);
        storeLowBytes(dst, kIsNearest ? nearest(x, y) : bilinear(x, y));
    }

#if defined(__x86_64__)
    // Pixels of several bytes in two parts: what such a step needs, and the step. Whether there is a second part.
    struct Step
    {
        uint8_t* dst;
        uint32_t offsets[kSampleStep];       // split
        Vecs<uint32_t, 2> toRight, toBottom; // of bilinear pixels, twice
    };
    RVK_INLINE bool prepareInside(Step& step, const Positions<unitBits>& p, uint8_t* dst) const
    {
        const Vecs<uint32_t, 2> x = fixedInside<unitBits>(p.x), y = fixedInside<unitBits>(p.y);
        step.dst = dst;
        store(step.offsets, offsets(x, y));
        if constexpr (!kIsNearest) {
            step.toRight = both(x, fractionTwice);
            step.toBottom = both(y, fractionTwice);
        }
        return true;
    }
    RVK_INLINE void samplePrepared(const Step& step) const
    {
        if constexpr (kIsNearest)
            storeWords(step.dst, loadEach4(m_top, step.offsets));
        else
            storeWords(step.dst,
                       bilinearWords<channels>(m_top, m_top + m_stride, step.offsets, step.toRight, step.toBottom));
    }
#else
    RVK_INLINE void sampleInside(const Positions<unitBits>& p, uint8_t* dst) const requires(channels > 1)
    {
        const Vecs<uint32_t, 2> x = fixedInside<unitBits>(p.x), y = fixedInside<unitBits>(p.y);
        storeWords(dst, orderSplit(Vecs<uint32_t, 2>{wordsAt(x[0], y[0]), wordsAt(x[1], y[1])}));
    }
#endif

    // The first n pixels of any positions.
    RVK_INLINE void sampleAny(const Positions<unitBits>& p, uint8_t* dst, size_t n = kSampleStep) const
    {
        const FixedPositions fixed = {fixedAnywhere<unitBits>(p.x, m_image.width),
                                      fixedAnywhere<unitBits>(p.y, m_image.height)};
        sampleAnywhere(m_image, channels, fixed, dst, n);
    }

private:
    static constexpr bool kIsNearest = interpolation == RAVIK_INTERPOLATION_NEAREST;
    static constexpr uint32_t kReachBytes = channels == 1 ? kGatherReach : kIsNearest ? 4 : 8;
    static constexpr uint32_t kRows = kIsNearest ? 1 : 2;

    static RVK_INLINE Vec<uint32_t> whole(Vec<uint32_t> coordinate)
    {
        return kIsNearest ? roundedPosition(coordinate) : shiftRight(coordinate, kPositionBits);
    }

    // Of the pixel at, or to the upper left of, a position.
    RVK_INLINE Vec<uint32_t> offset(Vec<uint32_t> x, Vec<uint32_t> y) const
    {
        const Vec<uint32_t> column = whole(x);
        const Vec<uint32_t> bytes = channels == 1   ? column
                                    : channels == 4 ? shiftLeft(column, 2)
                                                    : column + shiftLeft(column, 1);
#if defined(__AVX512VNNI__)
        if (m_hasShortRows) // a twentieth of the time of a warp
            return vec<uint32_t>(_mm512_dpwssd_epi32(reg(bytes), reg(whole(y)), reg(splat(m_stride))));
#endif
        return whole(y) * splat(m_stride) + bytes;
    }

    RVK_INLINE Vecs<uint32_t, 2> offsets(const Vecs<uint32_t, 2>& x, const Vecs<uint32_t, 2>& y) const
    {
        return {offset(x[0], y[0]), offset(x[1], y[1])};
    }

    RVK_INLINE Vec<uint16_t> nearest(const Vecs<uint32_t, 2>& x, const Vecs<uint32_t, 2>& y) const
    {
        return gatherBytes(m_top, offsets(x, y));
    }

    RVK_INLINE Vec<uint16_t> bilinear(const Vecs<uint32_t, 2>& x, const Vecs<uint32_t, 2>& y) const
    {
        const Vecs<uint32_t, 2> from = offsets(x, y);
        return interpolateRows(gatherPairs(m_top, from), gatherPairs(m_top + m_stride, from), x, y);
    }

#if !defined(__x86_64__)
    // Pixels of three and four bytes as words, of which three leave the last byte unused.
    RVK_INLINE Vec<uint32_t> wordsAt(Vec<uint32_t> x, Vec<uint32_t> y) const
    {
        const Vec<uint32_t> from = offset(x, y);
        if constexpr (kIsNearest)
            return gatherWords(m_top, from);
        const uint8_t* const bottom = m_top + m_stride;
        return weigh({gatherWords(m_top, from), gatherWords(m_top + channels, from), gatherWords(bottom, from),
                      gatherWords(bottom + channels, from)},
                     x, y);
    }
#endif

    static RVK_INLINE void storeWords(uint8_t* dst, const Vecs<uint32_t, 2>& pixels)
    {
        if constexpr (channels == 4) {
            store(dst, bitCast<uint8_t>(pixels));
        } else {
            storeTriples(dst, pixels[0]);
            storeTriples(dst + 3 * Vec<uint32_t>::lanes, pixels[1]);
        }
    }

    const SampledImage& m_image;
    const uint8_t* m_top;
    uint32_t m_stride;
    uint32_t m_endX, m_endY;              // bits of coordinates
    [[maybe_unused]] bool m_hasShortRows; // 15 bits hold the number of a row, and the stride
};

// Samples steps of positions inside the picture: each at once, ...
template <class Sampler, bool later = Sampler::kSamplesLater>
class InnerSteps
{
public:
    RVK_INLINE explicit InnerSteps(const Sampler& sampler) : m_sampler(sampler) {}

    template <class P>
    RVK_INLINE void sample(const P& positions, uint8_t* dst)
    {
        m_sampler.sampleInside(positions, dst);
    }
    RVK_INLINE void finish() {}

private:
    const Sampler& m_sampler;
};

// ... or several together: all are prepared first, and sampled then. A step by itself would have to take its offsets
// out of vectors, or to wait until those that it stored are in the cache; either takes about as long as hardware
// gathers, and the processor is far from the next step meanwhile.
template <class Sampler>
class InnerSteps<Sampler, true>
{
public:
    RVK_INLINE explicit InnerSteps(const Sampler& sampler) : m_sampler(sampler) {}

    template <class P>
    RVK_INLINE void sample(const P& positions, uint8_t* dst)
    {
        m_count += m_sampler.prepareInside(m_steps[m_count], positions, dst);
        if (m_count == kMost)
            finish();
    }
    RVK_INLINE void finish()
    {
        const Sampler sampler = m_sampler; // in registers, whatever the pixels are written over
        const size_t n = m_count;
        for (size_t i = 0; i < n; ++i)
            sampler.samplePrepared(m_steps[i]);
        m_count = 0;
    }

private:
    static constexpr size_t kMost = 256 / kSampleStep; // with a quarter of them, loads wait

    const Sampler& m_sampler;
    size_t m_count = 0;
    typename Sampler::Step m_steps[kMost];
};

// ---- pictures -------------------------------------------------------------------------------------------------------

// A step of coordinates, of which n are in memory.
RVK_INLINE Vecs<float, 2> loadCoordinates(const float* p, size_t n)
{
    if (n == kSampleStep)
        return loadSplit(p);
    float coordinates[kSampleStep] = {};
    __builtin_memcpy(coordinates, p, n * sizeof *p);
    return loadSplit(coordinates);
}

// Fills a picture of at least a step's width, by steps that begin at (x, y): inside(positions, x, y) where all of
// areInside(positions) are, otherwise anywhere(positions, x, y). Some pixels come twice. Pictures are walked in columns
// of tiles, so that what neighbouring rows share is still in the cache when the next one comes, whichever way a row
// takes through the source.
template <class Rows, class AreInside, class Inside, class Anywhere>
RVK_INLINE void forSteps(size_t width, size_t height, Rows rows, AreInside areInside, Inside inside, Anywhere anywhere)
{
    constexpr size_t tile = 256;
    for (size_t left = 0; left < width; left += tile) {
        const size_t end = least(left + tile, width), last = end - kSampleStep;
        for (size_t y = 0; y < height; ++y) {
            const auto row = rows(y);
            for (size_t x = left; x < end;) {
                if (x > last)
                    x = last; // overlaps the step before
                auto positions = row(x, kSampleStep);
                while (areInside(positions)) { // a loop without calls, whose constants stay in registers
                    inside(positions, x, y);
                    x += kSampleStep;
                    if (x > last)
                        break;
                    positions = row(x, kSampleStep);
                }
                if (x <= last) {
                    anywhere(positions, x, y);
                    x += kSampleStep;
                }
            }
        }
    }
}

// Of these positions.
template <size_t channels, uint32_t interpolation, unsigned unitBits>
RVK_INLINE auto samplerOf(const SampledImage& image, const Positions<unitBits>&)
{
    return StepSampler<channels, interpolation, unitBits>(image);
}

// Fills a picture with samples of another. rows(y) gives what gives the positions of row y: row(x, n), those of n
// pixels from x on.
template <size_t channels, uint32_t interpolation, class Rows>
RVK_INLINE void sampleImage(const SampledImage& image, size_t width, size_t height, Plane<uint8_t> dst, Rows rows)
{
    const decltype(samplerOf<channels, interpolation>(image, rows(0)(0, 0))) sampler(image);
    const auto pixel = [=](size_t x, size_t y) RVK_INLINE_LAMBDA { return dst.row(y) + channels * x; };
    if (width < kSampleStep)
        for (size_t y = 0; y < height; ++y)
            sampler.sampleAny(rows(y)(0, width), dst.row(y), width);
    else {
        InnerSteps inner(sampler);
        forSteps(
            width, height, rows, [&](const auto& p) RVK_INLINE_LAMBDA { return sampler.areInside(p); },
            [&](const auto& p, size_t x, size_t y) RVK_INLINE_LAMBDA { inner.sample(p, pixel(x, y)); },
            [&](const auto& p, size_t x, size_t y) RVK_INLINE_LAMBDA { sampler.sampleAny(p, pixel(x, y)); });
        inner.finish();
    }
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

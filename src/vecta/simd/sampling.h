// Pictures of interleaved bytes between their pixels, as cpu/sampling.h defines them: as many pixels at once as there are
// 16-bit elements in a vector.
#pragma once

#include "cpu/sampling.h" // SampledImage and constants; none of its functions
#include "vecta/simd/tiles.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// The pixels of a step, and where they come from: coordinates in pixels, which may be any floats, or fixed point numbers
// with kPositionBits, any as well.
constexpr size_t kSampleStep = Vec<uint16_t>::lanes;
template <class T>
struct Positions
{
    Vecs<T, 2> x, y; // in the order of loadSplit
};

// between / 2^15 of the way from one number to the other, rounded half up.
RVK_INLINE Vec<int16_t> interpolate(Vec<int16_t> from, Vec<int16_t> to, Vec<int16_t> between)
{
    return from + multiplyRounded(to - from, between);
}

// What has 7 bits of fraction, as a grey level.
RVK_INLINE Vec<uint16_t> greyLevels(Vec<int16_t> v)
{
    return bitCast<uint16_t>(shiftRightRounded(v, 7));
}

RVK_INLINE Vec<int16_t> fractionOf(const Vecs<int32_t, 2>& coordinate)
{
    const Vec<uint16_t> joined = joinSplit(bitCast<uint32_t>(coordinate));
    return bitCast<int16_t>(joined & splat(static_cast<uint16_t>(kPositionOne - 1)));
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
template <size_t channels>
RVK_NOINLINE void sampleAnywhere(const SampledImage& image, const Positions<int32_t>& positions, uint8_t* dst, size_t n)
{
    const bool isNearest = image.interpolation == RAVIK_INTERPOLATION_NEAREST;
    const Neighbours x(positions.x, image.width, isNearest), y(positions.y, image.height, isNearest);
    uint8_t bytes[channels][kSampleStep], written[kSampleStep];
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
            return interpolate(bitCast<int16_t>(shiftLeft(at(0, row), 7)), bitCast<int16_t>(shiftLeft(at(1, row), 7)),
                               x.between);
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

// The fixed point numbers as cpu/sampling.h makes them of any floats.
RVK_INLINE Vecs<int32_t, 2> fixedPositions(const Vecs<float, 2>& coordinate, uint32_t size)
{
    const Vec<float> end = splat(static_cast<float>(size));
    return both(coordinate,
                [=](Vec<float> v) RVK_INLINE_LAMBDA { return toFixed<kPositionBits>(min(end, max(splat(-1.0f), v))); });
}
RVK_INLINE const Vecs<int32_t, 2>& fixedPositions(const Vecs<int32_t, 2>& coordinate, uint32_t)
{
    return coordinate;
}

// The same of coordinates inside the picture.
RVK_INLINE Vecs<uint32_t, 2> fixedInside(const Vecs<float, 2>& coordinate)
{
    return bitCast<uint32_t>(both(coordinate, [](auto v) RVK_INLINE_LAMBDA { return toFixed<kPositionBits>(v); }));
}
RVK_INLINE Vecs<uint32_t, 2> fixedInside(const Vecs<int32_t, 2>& coordinate)
{
    return bitCast<uint32_t>(coordinate);
}

// The bits of the last coordinate ahead of one that is above 0. As numbers, the bits of floats that are not negative are
// in their order, and all others' are above them: those of negative floats and of what is not a number.
template <class T>
RVK_INLINE uint32_t lastBefore(uint32_t fixed)
{
    const T coordinate =
        isSame<T, float> ? static_cast<T>(static_cast<float>(fixed) / kPositionOne) : static_cast<T>(fixed);
    uint32_t bits;
    __builtin_memcpy(&bits, &coordinate, sizeof bits);
    return bits - 1;
}

// Four bytes of each pixel, all weighted alike.
struct Corners
{
    Vec<uint32_t> topLeft, topRight, bottomLeft, bottomRight;
};

RVK_INLINE Vec<uint32_t> weigh(const Corners& corners, Vec<uint32_t> toRight, Vec<uint32_t> toBottom)
{
    const auto wide = [](Vec<uint32_t> pixels) RVK_INLINE_LAMBDA { // times 128
        return both(widenInLanes(bitCast<uint8_t>(pixels)),
                    [](auto v) RVK_INLINE_LAMBDA { return bitCast<int16_t>(shiftLeft(v, 7)); });
    };
    const auto forChannels = [](Vec<uint32_t> between) RVK_INLINE_LAMBDA {
        const Vec<uint32_t> fraction = between & splat(kPositionOne - 1u), twice = fraction | shiftLeft(fraction, 16);
        return bitCast<int16_t>(zipInLanes(twice, twice));
    };
    const auto along = [](const Vecs<int16_t, 2>& from, const Vecs<int16_t, 2>& to,
                          const Vecs<int16_t, 2>& between) RVK_INLINE_LAMBDA {
        return Vecs<int16_t, 2>{interpolate(from[0], to[0], between[0]), interpolate(from[1], to[1], between[1])};
    };
    const Vecs<int16_t, 2> right = forChannels(toRight), bottom = forChannels(toBottom);
    const Vecs<int16_t, 2> sums = along(along(wide(corners.topLeft), wide(corners.topRight), right),
                                        along(wide(corners.bottomLeft), wide(corners.bottomRight), right), bottom);
    return bitCast<uint32_t>(narrowRoundedInLanes<uint8_t, 7>(sums));
}

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

// Samples steps of positions of type T.
template <size_t channels, uint32_t interpolation, class T>
class StepSampler
{
public:
    RVK_INLINE explicit StepSampler(const SampledImage& image) : m_image(image)
    {
        constexpr uint32_t reach = (kReachBytes + channels - 1) / channels; // columns
        m_hasInterior = image.width >= reach && image.height >= kRows &&
                        (image.height - 1) * uint64_t{image.stride} + image.width * channels < uint64_t{1} << 31;
        const uint32_t beyond = kIsNearest ? kPositionOne / 2 : kPositionOne;
        m_lastX = lastBefore<T>(((image.width - reach) << kPositionBits) + beyond);
        m_lastY = lastBefore<T>(((image.height - kRows) << kPositionBits) + beyond);
    }

    // The first n pixels, of which there are a step or, in narrow pictures, fewer.
    RVK_INLINE void sample(const Positions<T>& p, uint8_t* dst, size_t n) const
    {
        if (m_hasInterior && n == kSampleStep && areInside(p)) {
            const Vecs<uint32_t, 2> x = fixedInside(p.x), y = fixedInside(p.y);
            if constexpr (channels == 1)
                storeLowBytes(dst, kIsNearest ? nearest(x, y) : bilinear(x, y));
            else
                sampleWords(x, y, dst);
        } else {
            const Positions<int32_t> fixed = {fixedPositions(p.x, m_image.width), fixedPositions(p.y, m_image.height)};
            sampleAnywhere<channels>(m_image, fixed, dst, n);
        }
    }

private:
    static constexpr bool kIsNearest = interpolation == RAVIK_INTERPOLATION_NEAREST;
    static constexpr uint32_t kReachBytes = channels == 1 ? kGatherReach : kIsNearest ? 4 : channels + 4;
    static constexpr uint32_t kRows = kIsNearest ? 1 : 2;

    // All reads for these positions are inside the picture.
    RVK_INLINE bool areInside(const Positions<T>& p) const
    {
        const Vecs<uint32_t, 2> x = bitCast<uint32_t>(p.x), y = bitCast<uint32_t>(p.y);
        return !any(greater(max(x[0], x[1]), splat(m_lastX)) | greater(max(y[0], y[1]), splat(m_lastY)));
    }

    static RVK_INLINE Vec<uint32_t> whole(Vec<uint32_t> coordinate)
    {
        return shiftRight(kIsNearest ? coordinate + splat(kPositionOne / 2u) : coordinate, kPositionBits);
    }

    // Of the pixel at, or to the upper left of, a position.
    RVK_INLINE Vec<uint32_t> offset(Vec<uint32_t> x, Vec<uint32_t> y) const
    {
        const Vec<uint32_t> column = whole(x);
        const Vec<uint32_t> bytes = channels == 1   ? column
                                    : channels == 4 ? shiftLeft(column, 2)
                                                    : column + shiftLeft(column, 1);
        return whole(y) * splat(m_image.stride) + bytes;
    }

    RVK_INLINE Vecs<uint32_t, 2> offsets(const Vecs<uint32_t, 2>& x, const Vecs<uint32_t, 2>& y) const
    {
        return {offset(x[0], y[0]), offset(x[1], y[1])};
    }

    RVK_INLINE Vec<uint16_t> nearest(const Vecs<uint32_t, 2>& x, const Vecs<uint32_t, 2>& y) const
    {
        return gatherBytes(m_image.data, offsets(x, y));
    }

    RVK_INLINE Vec<uint16_t> bilinear(const Vecs<uint32_t, 2>& x, const Vecs<uint32_t, 2>& y) const
    {
        const Vecs<uint32_t, 2> from = offsets(x, y);
        const Vec<int16_t> toRight = fractionOf(bitCast<int32_t>(x)), toBottom = fractionOf(bitCast<int32_t>(y));
        const auto along = [=](Vec<uint16_t> pairs) RVK_INLINE_LAMBDA { // each pixel times 128
            const Vec<uint16_t> byte = splat<uint16_t>(255 << 7);
            const Vec<uint16_t> left = shiftLeft(pairs, 7) & byte, right = shiftRight(pairs, 1) & byte;
            return interpolate(bitCast<int16_t>(left), bitCast<int16_t>(right), toRight);
        };
        const Vec<int16_t> top = along(gatherPairs(m_image.data, from));
        const Vec<int16_t> bottom = along(gatherPairs(m_image.data + m_image.stride, from));
        return greyLevels(interpolate(top, bottom, toBottom));
    }

    // Pixels of three and four bytes as words, of which three leave the last byte unused.
    RVK_INLINE Vec<uint32_t> wordsAt(Vec<uint32_t> x, Vec<uint32_t> y) const
    {
        const Vec<uint32_t> from = offset(x, y);
        const uint8_t* const top = m_image.data;
        if constexpr (kIsNearest)
            return gatherWords(top, from);
        const uint8_t* const bottom = top + m_image.stride;
        return weigh({gatherWords(top, from), gatherWords(top + channels, from), gatherWords(bottom, from),
                      gatherWords(bottom + channels, from)},
                     x, y);
    }

    RVK_INLINE void sampleWords(const Vecs<uint32_t, 2>& x, const Vecs<uint32_t, 2>& y, uint8_t* dst) const
    {
        const Vecs<uint32_t, 2> pixels = orderSplit(Vecs<uint32_t, 2>{wordsAt(x[0], y[0]), wordsAt(x[1], y[1])});
        if constexpr (channels == 4) {
            store(dst, bitCast<uint8_t>(pixels));
        } else {
            storeTriples(dst, pixels[0]);
            storeTriples(dst + 3 * Vec<uint32_t>::lanes, pixels[1]);
        }
    }

    SampledImage m_image;
    uint32_t m_lastX, m_lastY;
    bool m_hasInterior;
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

// Calls step(positions, x, y, n) for n pixels from (x, y) on, until all of a picture have been; some come twice. rows(y)
// gives what gives the positions of row y: row(x, n). Pictures are walked in columns of tiles, so that what neighbouring
// rows share is still in the cache when the next one comes, whichever way a row takes through the source.
template <class Rows, class Step>
RVK_INLINE void forSteps(size_t width, size_t height, Rows rows, Step step)
{
    constexpr size_t tile = 256;
    const size_t n = least(width, kSampleStep);
    for (size_t left = 0; left < width; left += tile) {
        const size_t end = least(left + tile, width);
        for (size_t y = 0; y < height; ++y) {
            const auto row = rows(y);
            for (size_t x = left; x < end; x += kSampleStep) {
                const size_t at = least(x, width - n); // the last step of a row overlaps the one before
                step(row(at, n), at, y, n);
            }
        }
    }
}

// Fills a picture with samples of another.
template <size_t channels, uint32_t interpolation, class Rows>
RVK_INLINE void sampleImage(const SampledImage& image, size_t width, size_t height, Plane<uint8_t> dst, Rows rows)
{
    using Coordinate = typename decltype(decltype(rows(0)(0, 0))::x)::Element;
    const StepSampler<channels, interpolation, Coordinate> sampler(image);
    forSteps(width, height, rows, [&](const auto& positions, size_t x, size_t y, size_t n) RVK_INLINE_LAMBDA {
        sampler.sample(positions, dst.row(y) + channels * x, n);
    });
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

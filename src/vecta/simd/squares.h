// Pixels of a byte at positions that change little from each pixel to the next in both directions, by squares, as
// cpu/sampling.h defines them.
#pragma once

#include "vecta/simd/bits.h"
#include "vecta/simd/boxes.h"
#include "vecta/simd/sampling.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr size_t kMostSegments = 4, kMostSquareColumns = kMostSegments * kSegmentColumns; // walked together

// Where the pixels of squares beside each other are: of a row of squares, and sixteen of them from a column on.
struct SquarePositions
{
    Vec<float> x, y; // in units of which a pixel has 2^kPositionBits; row by row
};

// The boxes of squares beside each other.
struct SegmentBoxes
{
    uint32_t offsets[kSegmentSquares], x[kSegmentSquares], y[kSegmentSquares]; // first pixels, and their positions
};

template <uint32_t interpolation>
class SquareSampler
{
public:
    RVK_INLINE explicit SquareSampler(const SampledImage& image)
        : m_data(image.data), m_stride(image.stride), m_lastX(last(image.width)), m_lastY(last(image.height))
    {
    }

    // Around the middles of squares.
    RVK_INLINE void place(const SquarePositions& middles, SegmentBoxes& boxes) const
    {
        const auto first = [](Vec<float> middle, float last) RVK_INLINE_LAMBDA {
            constexpr float one = 1 << kPositionBits;
            const Vec<float> before = middle * splat(1 / one) - splat(static_cast<float>(SomeBox::columns / 2 - 1));
            return bitCast<uint32_t>(truncateToInt(min(splat(last), max(zero<float>(), before))));
        };
        const Vec<uint32_t> x = first(middles.x, m_lastX), y = first(middles.y, m_lastY);
        store(boxes.offsets, y * splat(m_stride) + x);
        store(boxes.x, shiftLeft(x, kPositionBits) - splat(kHalf));
        store(boxes.y, shiftLeft(y, kPositionBits) - splat(kHalf));
    }

    // A tile of squares whose numbers begin with `first`, unless not all of their positions are in their boxes.
    template <class PositionsOf>
    RVK_INLINE bool sample(const SegmentBoxes& boxes, size_t first, PositionsOf positionsOf,
                           uint8_t* const (&rows)[kSquareSide]) const
    {
        Vecs<uint32_t, kTileSquares> x, y;
        Vec<uint32_t> farthest = zero<uint32_t>();
        unrolled<kTileSquares>([&](auto i) RVK_INLINE_LAMBDA {
            const SquarePositions p = positionsOf(first + i);
            x[i] = bitCast<uint32_t>(truncateToInt(p.x)) - splat(boxes.x[first + i]);
            y[i] = bitCast<uint32_t>(truncateToInt(p.y)) - splat(boxes.y[first + i]);
            farthest = max(farthest, max(x[i], y[i]));
        });
        if (!all(less(farthest, splat(uint32_t{SomeBox::columns - 1} << kPositionBits))))
            return false;
        unrolled<kTileSquares>([&](auto i) RVK_INLINE_LAMBDA {
            const SomeBox box(m_data + boxes.offsets[first + i], m_stride);
            x[i] = kIsNearest ? nearest(box, x[i], y[i]) : bilinear(box, x[i], y[i]);
        });
        storeTile<0>(rows, kSquareSide * first, x);
        return true;
    }

private:
    using SomeBox = Box<8>;
    static constexpr bool kIsNearest = interpolation == RAVIK_INTERPOLATION_NEAREST;
    static constexpr uint32_t kHalf = kIsNearest ? kPositionOne / 2 : 0; // is added to positions

    static RVK_INLINE float last(uint32_t size) { return static_cast<float>(size - SomeBox::columns); }

    // The numbers of pixels in a box, from bit kPositionBits on.
    static RVK_INLINE Vec<uint32_t> numbers(Vec<uint32_t> x, Vec<uint32_t> y)
    {
        const Vec<uint32_t> column = splat(uint32_t{SomeBox::columns - 1} << kPositionBits);
        return bitCast<uint32_t>(selectBits(bitCast<uint8_t>(column), bitCast<uint8_t>(x),
                                            bitCast<uint8_t>(shiftLeft(y, SomeBox::columnBits))));
    }
    static RVK_INLINE Vec<uint32_t> nearest(const SomeBox& box, Vec<uint32_t> x, Vec<uint32_t> y)
    {
        return bitCast<uint32_t>(box.pixels(bitsFourTimes<kPositionBits>(numbers(x, y))));
    }
    static RVK_INLINE Vec<uint32_t> bilinear(const SomeBox& box, Vec<uint32_t> x, Vec<uint32_t> y)
    {
        const Vec<uint8_t> four = bitsFourTimes<kPositionBits>(numbers(x, y)) + SomeBox::neighboursByRows();
        const Vec<int16_t> rows = interpolatePairs(bitCast<uint16_t>(box.pixels(four)),
                                                   bitCast<int16_t>(fractionTwice(x))); // the upper one in lower halves
        const Vec<int16_t> lower = bitCast<int16_t>(shiftRight(bitCast<uint32_t>(rows), 16));
        const Vec<int16_t> between = bitCast<int16_t>(y & splat(uint32_t{kPositionOne - 1}));
        return bitCast<uint32_t>(greyLevels(interpolate(rows, lower, between)));
    }

    const uint8_t* m_data;
    uint32_t m_stride;
    float m_lastX, m_lastY; // that boxes can begin with
};

// A segment from column x on. Which steps are left: bits of their numbers. (A function of its own has its constants in
// registers.)
template <class Sampler, class Band>
RVK_NOINLINE uint32_t sampleSegment(const Sampler& sampler, const SegmentBoxes& boxes, const Band& positions, size_t x,
                                    uint8_t* const (&rows)[kSquareSide])
{
    const Sampler s = sampler;
    const Band p = positions;
    uint32_t left = 0;
    for (size_t square = 0; square < kSegmentSquares; square += kTileSquares) {
        const bool isDone = s.sample(
            boxes, square, [&](size_t i) RVK_INLINE_LAMBDA { return p.at(x + i * kSquareSide); }, rows);
        left |= uint32_t{!isDone} << square * kSquareSide / kSampleStep;
    }
    return left;
}

// Whether a picture has boxes, and another one squares.
RVK_INLINE bool hasSquares(const SampledImage& image, size_t width, size_t height)
{
    return image.width >= Box<8>::columns && image.height >= Box<8>::rows &&
           uint64_t{image.stride} * image.height < uint64_t{1} << 32 && width >= kSegmentColumns &&
           height >= kSquareSide;
}

// sampleImage of such pictures. columnsFrom(left, n).band(y) has positions: of squares in n columns from `left` on,
// rows y to y + 3. Pictures are walked in columns of segments, for the sake of the cache; some pixels come twice.
template <uint32_t interpolation, class Columns, class Rows>
RVK_INLINE void sampleBySquares(const SampledImage& image, size_t width, size_t height, Plane<uint8_t> dst,
                                Columns columnsFrom, Rows rows)
{
    constexpr size_t most = kMostSquareColumns, steps = kSegmentColumns / kSampleStep;
    const SquareSampler<interpolation> sampler(image);
    const decltype(samplerOf<1, interpolation>(image, rows(0)(0, 0))) stepSampler(image);
    InnerSteps inner(stepSampler);
    const auto sampleStep = [&](size_t x, size_t y) RVK_INLINE_LAMBDA {
        for (size_t i = 0; i < kSquareSide; ++i) {
            const auto positions = rows(y + i)(x, kSampleStep);
            if (stepSampler.areInside(positions))
                inner.sample(positions, dst.row(y + i) + x);
            else
                stepSampler.sampleAny(positions, dst.row(y + i) + x);
        }
    };
    for (size_t left = 0; left < width; left += most) {
        const size_t end = least(left + most, width), begin = least(left, end - kSegmentColumns),
                     segments = (end - begin + kSegmentColumns - 1) / kSegmentColumns;
        const auto columns = columnsFrom(begin, end - begin);
        const auto columnOf = [=](size_t segment) RVK_INLINE_LAMBDA {
            return least(begin + segment * kSegmentColumns, end - kSegmentColumns);
        };
        SegmentBoxes boxes[2][kMostSegments];
        const auto place = [&](size_t band) RVK_INLINE_LAMBDA {
            const auto positions = columns.band(least(band * kSquareSide, height - kSquareSide));
            for (size_t i = 0; i < segments; ++i)
                sampler.place(positions.middles(columnOf(i)), boxes[band % 2][i]);
        };
        place(0);
        for (size_t band = 0; band * kSquareSide < height; ++band) {
            place(band + 1); // long before it is used: all of it is one chain
            const size_t y = least(band * kSquareSide, height - kSquareSide);
            const auto positions = columns.band(y);
            for (size_t i = 0; i < segments; ++i) {
                const size_t x = columnOf(i);
                uint8_t* const to[kSquareSide] = {dst.row(y) + x, dst.row(y + 1) + x, dst.row(y + 2) + x,
                                                  dst.row(y + 3) + x};
                const uint32_t others = sampleSegment(sampler, boxes[band % 2][i], positions, x, to);
                for (size_t step = 0; step < steps; ++step)
                    if (others >> step & 1)
                        sampleStep(x + step * kSampleStep, y);
            }
        }
    }
    inner.finish();
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#endif

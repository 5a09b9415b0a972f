// What the reference and the vector implementation of the scalers of any ratio share: where pixels of the destination
// lie in the source.
#pragma once

#include <cstdint>

namespace rvk {

// A picture and what it becomes. Widths are in pixels of one size.
struct Resizing
{
    const uint8_t* src;
    uint32_t srcWidth, srcHeight, srcStride;
    uint8_t* dst;
    uint32_t dstWidth, dstHeight, dstStride;
};

// Columns `left` to `right` - 1 of rows `top` to `bottom` - 1.
struct Rectangle
{
    uint32_t left, top, right, bottom;
};

// What lies beyond the picture: the nearest pixel, or a value.
struct Outside
{
    bool replicates;
    uint8_t value;
};

// Columns or rows: `from` pixels of the source become `to`. Both fit 31 bits.
struct Axis
{
    uint32_t from, to;
};

Axis columnsOf(const Resizing& r);
Axis rowsOf(const Resizing& r);

// The centre of a pixel of the destination, between those of pixels `pixel` and `pixel + 1` of the source: rounded half
// up to a fraction of 1 / kFractions. It may be half a pixel outside of the source.
constexpr uint32_t kFractionBits = 13;
constexpr uint32_t kFractions = 1 << kFractionBits;
struct Position
{
    int64_t pixel;
    uint32_t fraction; // below kFractions
};
Position positionOf(Axis axis, uint32_t i);

// The pixel that contains the centre; the one behind it when it lies on an edge.
uint32_t pixelAtCentre(Axis axis, uint32_t i);

// The pixels that pixel i covers, and how much of the first and the last one: parts of which a pixel of the source has
// axis.to, and one of the destination axis.from. All of a single pixel is in firstWeight.
struct Coverage
{
    uint32_t first, last;
    uint32_t firstWeight, lastWeight;
};
Coverage coverageOf(Axis axis, uint32_t i);

// The same ratio in the smallest numbers.
Axis reduced(Axis axis);

// Catmull and Rom's weights of the pixels from the one before `pixel` to the third after it, in sum kCubicUnit.
constexpr int32_t kCubicBits = 12, kCubicUnit = 1 << kCubicBits;
void cubicWeights(uint32_t fraction, int16_t (&weights)[4]);

// The first of the whole pixels whose mean pixel i is; the last is before that of pixel i + 1.
uint32_t firstWholePixel(Axis axis, uint32_t i);

// The pixels of the destination that lie between the centres of pixels of the source.
Rectangle interiorOf(const Resizing& r);

// The references of a part of the destination, and of all of it.
void interpolatePart(const Resizing& r, const Rectangle& part, Outside outside);
void averageAreas(const Resizing& r);
void interpolateCubic(const Resizing& r, uint32_t pixelSize);
void irvkScaleDownMNCoreC(const uint8_t* src, uint32_t srcWidth, uint32_t rows, uint32_t srcStride, uint32_t pixelSize,
                          uint8_t* dst, uint32_t dstWidth);

} // namespace rvk

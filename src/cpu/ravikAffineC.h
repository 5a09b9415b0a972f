// What the C and the vector implementations of the transforms share.
#pragma once

#include <cstdint>

namespace rvk {

// A picture that patches are taken from.
struct PatchSource
{
    const uint8_t* data;
    uint32_t width, height, stride;
    float right, bottom; // the last column and row, or the next smaller floats
};
PatchSource patchSource(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride);

// Positions of a patch: its first pixel is at (x, y), which its other rows start from, too.
struct PatchStart
{
    float x, y;
};

// Finds the start. Whether the whole patch lies in the picture.
bool placePatch(const PatchSource& source, const float* position, const float* affine, uint32_t patchWidth,
                uint32_t patchHeight, PatchStart& start);

// The picture at a position, moved to its edge where it lies outside.
uint8_t samplePatch(const PatchSource& source, float x, float y);

// ---- clipped transforms of pictures ----

constexpr uint32_t kMostClippedSize = 32767; // columns, and rows, of a source: 32 bits hold a position in it

struct ClippedSource
{
    const uint8_t* data;
    uint32_t width, height, stride;
};

// A position inside a source, with 16 bits of fraction.
struct ClippedPosition
{
    int32_t x, y;
};

// How a pixel inside is sampled, all of its channels, and what becomes of those outside.
using ClippedSample = void(const ClippedSource& source, ClippedPosition position, uint8_t* dst);
ClippedSample sampleNearest, sampleBilinear, sampleCubicRgb;
struct ClippedRules
{
    ClippedSample* sample;
    uint32_t channels, borderType;
    const uint8_t* borderValue; // for each channel
};

// Where the pixels of the destination are in the source: pixel i of row j is at start + j * down + i * across.
struct ClippedMap
{
    double startX, startY, acrossX, acrossY, downX, downY;
    double right, bottom; // the last column and row of the source
};
ClippedMap clippedMap(const ClippedSource& source, const float* position, const float* affine, uint32_t dstWidth,
                      uint32_t dstHeight);

// (Always inline, because vector implementations may not leave shared functions.)
#define RVK_ALWAYS_INLINE inline __attribute__((always_inline))

struct ExactPosition
{
    double x, y;
};
RVK_ALWAYS_INLINE ExactPosition positionOf(const ClippedMap& map, uint32_t row, uint32_t i)
{
    return {map.startX + row * map.downX + i * map.acrossX, map.startY + row * map.downY + i * map.acrossY};
}
RVK_ALWAYS_INLINE bool isInside(const ClippedMap& map, ExactPosition p) // what is not a number is not
{
    return p.x >= 0 && p.x <= map.right && p.y >= 0 && p.y <= map.bottom;
}

// 32 bits of fraction.
RVK_ALWAYS_INLINE int64_t clippedFixed(double number)
{
    return static_cast<int64_t>(number * 4294967296.0);
}

// The pixels of a row whose positions are inside the source, the first of these positions and the step to the next one,
// in fixed point with 32 bits of fraction.
struct ClippedRun
{
    uint32_t first, end;
    int64_t x, y, stepX, stepY;
};
// Pixels `first` to before `end`, when the first one is at `start`.
RVK_ALWAYS_INLINE ClippedRun clippedRunFrom(const ClippedMap& map, uint32_t first, uint32_t end, ExactPosition start)
{
    ClippedRun run = {first, end, clippedFixed(start.x), clippedFixed(start.y), 0, 0};
    if (end - first > 1) { // so a step does not lead out of the source
        run.stepX = clippedFixed(map.acrossX);
        run.stepY = clippedFixed(map.acrossY);
    }
    return run;
}
// Those from `first` to before `end`, which all others that are inside must be between.
RVK_ALWAYS_INLINE ClippedRun clippedRun(const ClippedMap& map, uint32_t row, uint32_t first, uint32_t end)
{
    while (first < end && !isInside(map, positionOf(map, row, first)))
        ++first;
    while (first < end && !isInside(map, positionOf(map, row, end - 1)))
        --end;
    if (first == end)
        return {first, end, 0, 0, 0, 0};
    return clippedRunFrom(map, first, end, positionOf(map, row, first));
}

// The pixel of a run in this column: steps of 16 bits of fraction from the anchor before it, which has all bits. Rows
// have their anchors in the same columns, so that pixels below each other are as far apart as those beside them. What
// this comes to beyond the edge is the edge.
constexpr uint32_t kClippedAnchors = 64; // columns from one to the next
ClippedPosition clippedPosition(const ClippedSource& source, const ClippedRun& run, uint32_t column);

#undef RVK_ALWAYS_INLINE

// Pixels of a row, from `first` to before `end`, whose positions are outside.
void fillClipped(const ClippedSource& source, const ClippedRules& rules, const ClippedMap& map, uint32_t row,
                 uint32_t first, uint32_t end, uint8_t* dst);

// ---- depth ----

// A camera, what its lens does, and the depth of a disparity of 1.
struct LensCamera
{
    float fx, fy, cx, cy;
    float reciprocalFx, reciprocalFy;
    float k1, k2, p1, p2, k3;
    float depthOfOne;
};

// `distortion` may be null.
LensCamera lensCamera(const float* camera, const float* distortion, float baseline);

} // namespace rvk

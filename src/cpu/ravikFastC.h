// What the FAST corner detectors share: of arcs of 9 and of 10 pixels, references and vector implementations.
#pragma once

#include "cpu/bitMask.h"

namespace rvk {

// The circle of radius 3 around a pixel (Bresenham), in cyclic order; y grows downwards.
struct CirclePoint
{
    int8_t x, y;
};
constexpr size_t kCirclePoints = 16;
constexpr CirclePoint kCircle[kCirclePoints] = {
    {0, 3},  {1, 3},   {2, 2},   {3, 1},   {3, 0},  {3, -1}, {2, -2}, {1, -3},
    {0, -3}, {-1, -3}, {-2, -2}, {-3, -1}, {-3, 0}, {-3, 1}, {-2, 2}, {-1, 3},
};

struct FastPicture
{
    const uint8_t* src;
    uint32_t width, height, stride;
    int32_t barrier;
    uint32_t border;
};

struct CornerList
{
    uint32_t* xy;
    uint32_t* scores; // null: none
    uint32_t capacity;
    uint32_t* count;
};

// What is different for each length of the arc.
struct SegmentTest
{
    uint32_t arc;
    void (*score)(const FastPicture& picture, const CornerList& list);
    const char* unit;
};
extern const SegmentTest kFast9, kFast10;

// The circle as offsets from its centre in memory.
void make_offsets(ptrdiff_t (&offsets)[kCirclePoints], uint32_t stride);

// Whether a pixel is a corner; and the largest threshold from `barrier` on at which it is one, if it is one there.
bool isCorner(const SegmentTest& test, const uint8_t* pixel, const ptrdiff_t* offsets, int32_t threshold);
uint32_t cornerScore(const SegmentTest& test, const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier);

// Fills in the scores of a list.
using CornerScorer = uint32_t(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier);
void scoreCorners(const FastPicture& picture, const CornerList& list, CornerScorer* scorer);

// The reference: detects, scores where the list has scores, and suppresses where there is a buffer for it. The mask is
// null where there is none; one of another picture's size lets no corner through.
void detect(const SegmentTest& test, const FastPicture& picture, const BitMask* mask, const CornerList& list,
            uint32_t* tempBuf);

// The raw corners, with their scores, that are above all of their neighbours, in a list.
void nms_processing(const uint32_t* xy, const uint32_t* scores, uint32_t count, const CornerList& list);

// The caller's memory for suppression, null when there is to be none. Without it the process ends.
uint32_t* suppressionBuffer(const SegmentTest& test, uint32_t nmsEnabled, uint32_t* tempBuf);

} // namespace rvk

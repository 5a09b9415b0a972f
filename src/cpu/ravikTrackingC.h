// What the reference and the vector implementation of the trackers share: the searches. Each brings what they measure
// by.
#pragma once

#include <ravik/moments.h>

#include <cstdint>

namespace rvk {

// ---- optical flow -------------------------------------------------------------------------------

// The kernels of 16x16 pixels.
struct BlockKernels
{
    uint32_t (*sum)(const uint8_t* block, uint32_t stride);
    uint32_t (*zeroMeanSad)(const uint8_t* block1, const uint8_t* block2, uint32_t stride, uint32_t* mean2);
};

struct Frames
{
    const uint8_t* src1;
    const uint8_t* src2;
    uint32_t width, height, stride;
};

struct BlockGrid
{
    uint32_t left, top, right, bottom, step;
};

struct BlockSearch
{
    uint32_t width, height, step;
};

// Where blocks were and are.
struct MotionVectors
{
    uint32_t* count;
    uint32_t* locX;
    uint32_t* locY;
    uint32_t* mvX;
    uint32_t* mvY;
};

void trackBlocks(const BlockKernels& kernels, const Frames& frames, const BlockGrid& grid, const BlockSearch& search,
                 const MotionVectors& vectors);

// ---- mean shift ---------------------------------------------------------------------------------

struct FirstMoments
{
    float32_t m00, m10, m01;
};

template <class T>
struct WeightPicture
{
    const T* data;
    uint32_t width, height, stride;

    // The first pixel of a window. What the offset of its row has beyond whole pixels does not count.
    const T* at(const rvkRectangle& window) const
    {
        return data + static_cast<uint64_t>(window.y) * stride / sizeof(T) + static_cast<uint64_t>(window.x);
    }
};

template <class T>
using FirstMomentsOf = FirstMoments (*)(const T* src, uint32_t width, uint32_t height, uint32_t stride);

// For pixels of uint8_t, int32_t and float32_t.
template <class T>
uint32_t meanShift(const WeightPicture<T>& picture, FirstMomentsOf<T> momentsOf, rvkRectangle* window,
                   uint32_t maxIterations, float32_t epsilon);

// ---- adaptive tracking --------------------------------------------------------------------------

// The window after mean shift, grown to what its moments are taken of.
rvkRectangle grownWindow(const rvkRectangle& window, uint32_t pictureWidth, uint32_t pictureHeight);

// The box around what has these moments in a part of the picture that begins at `place`. If there is anything, the
// upright rectangle around it, clipped to the picture, becomes *window.
rvkRotatedBox boxAround(const rvkMoments& moments, const rvkRectangle& place, uint32_t pictureWidth,
                        uint32_t pictureHeight, rvkRectangle* window);

} // namespace rvk

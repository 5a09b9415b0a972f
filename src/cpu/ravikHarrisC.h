// Corners, for the detectors of either room: where they may lie, and what becomes of those that are found.
#pragma once

#include "cpu/bitMask.h"

#include <ravik/harris.h>

namespace rvk {

struct GreyImage
{
    const uint8_t* data;
    uint32_t width, height, stride;
};

// The pixels that may be corners.
struct CornerArea
{
    uint32_t left, top, right, bottom; // the last two are outside

    bool isEmpty() const { return left >= right || top >= bottom; }
};

// Responses exist from this distance to the edges on: 1 for the gradients and 2 for the smoothing.
constexpr uint32_t kResponseBorder = 3;

// Gets the corners of a picture one by one, in raster order.
class CornerTaker
{
public:
    // False: no more are wanted.
    virtual bool take(uint32_t x, uint32_t y, int32_t response) = 0;

protected:
    ~CornerTaker() = default;
};

// What either room brings: a search for all corners with a response above the threshold. The taker hears of none before
// all memory is there. (The response of good features is not passed on.)
template <class Threshold>
using CornerFinder = rvkStatus(const GreyImage& image, const CornerArea& area, Threshold threshold, CornerTaker& taker);

// Where corners go. The count is written last, and only if all went well.
struct CornerList
{
    uint32_t* xy;
    uint32_t most;
    uint32_t* count;
    uint32_t* scores = nullptr;
    const BitMask* mask = nullptr;
};

rvkStatus listCorners(CornerFinder<int32_t>* find, const GreyImage& image, uint32_t border, int32_t threshold,
                      const CornerList& list);
// At the first threshold, of those between `threshold` and `minThreshold`, that fills the list.
rvkStatus listCornersAdaptively(CornerFinder<int32_t>* find, const GreyImage& image, uint32_t border, int32_t threshold,
                                int32_t minThreshold, const CornerList& list);
// But for those that are less than `minDistance` away from an earlier one.
rvkStatus listDistantCorners(CornerFinder<float32_t>* find, const GreyImage& image, uint32_t border,
                             float32_t threshold, float32_t minDistance, const CornerList& list);

// Ends the process when there was no scratch memory.
void requireScratchOfHarris(rvkStatus status);

} // namespace rvk

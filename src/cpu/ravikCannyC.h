// What the reference and the vector implementation of the edge detector share.
#pragma once

#include <cstdint>

namespace rvk {

// The slope whose angle is 22.5 degrees, in units of 2^-15. That of 67.5 degrees is 2 more.
constexpr int32_t kTan22 = 13573;

// Gradients of 7x7 pixels count in sixteenths, which fit 16 bits.
constexpr uint32_t kScaleOf7x7 = 16;

struct CannyThresholds
{
    uint32_t low, high; // of magnitudes: what is above them is above those of the caller
};

// From the arguments of the functions; of squares for squared magnitudes.
CannyThresholds cannyThresholds(int32_t low, int32_t high, uint32_t apertureSize, bool squared);

} // namespace rvk

// What the reference and the vector implementation of the edge detector share.
#pragma once

#include <cstdint>

namespace rvk {

// The slope whose angle is 22.5 degrees, in units of 2^-15. That of 67.5 degrees is 2 more.
constexpr int32_t kTan22 = 13573;

// A derivative that saturates below zero counts as one that does above.
constexpr int32_t kLargestGradient = 32767;

struct CannyThresholds
{
    uint32_t low, high; // of magnitudes
};

// From the arguments of the functions; squares for squared magnitudes.
CannyThresholds cannyThresholds(int32_t low, int32_t high, bool squared);

} // namespace rvk

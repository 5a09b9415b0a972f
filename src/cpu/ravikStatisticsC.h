// What the references and the vector implementations of the statistics share.
#pragma once

#include <ravik/types.h>

namespace rvk {

// Sums over the pixels of a rectangle.
struct PixelSums
{
    uint64_t pixels;
    uint64_t sum;
    uint64_t squares;
};

// What the variance divides by; false, and a line in the log, when there is no such estimator.
bool divisorOf(int32_t varianceEstimator, uint64_t pixels, uint64_t& divisor);
void storeStatistics(const PixelSums& sums, uint64_t divisor, float32_t* mean, float32_t* variance);

// The table that makes the values of a picture with this histogram equally frequent.
void equalizingTable(const uint32_t (&histogram)[256], uint64_t pixels, uint8_t (&table)[256]);

} // namespace rvk

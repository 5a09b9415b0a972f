// What the entries of polygons and of drawing share.
#pragma once

#include <cstdint>

namespace rvk {

// Whether so many points have coordinates whose differences and sums fit 32 bits: -2^29 to 2^29 - 1.
bool pointsAreInRange(const int32_t* points, uint64_t nPoints);

} // namespace rvk

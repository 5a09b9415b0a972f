// The steps of the arithmetic that every implementation takes once per image.
#pragma once

#include <cstdint>

namespace rvk {

// A weight in 1/256, rounded half away from zero and clamped to 16 bits; 0 for a NaN.
int32_t fixedPointWeight(float weight);

// The sum of an image as a float, divided by the number of its pixels as a float.
float averageOf(int64_t sum, uint32_t width, uint32_t height);

} // namespace rvk

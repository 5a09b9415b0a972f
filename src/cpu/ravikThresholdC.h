// What the reference and the vector implementation of the thresholds share.
#pragma once

#include <cstdint>

namespace rvk {

// The threshold that separates the pixels best, 1 to 256; `histogram` has the number of pixels of each value, `count`
// in all.
uint32_t otsuThreshold(const uint32_t (&histogram)[256], uint32_t count);

} // namespace rvk

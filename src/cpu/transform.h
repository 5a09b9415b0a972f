// What the C and the vector implementations of flips and rotations share.
#pragma once

#include <cstdint>

namespace rvk {

// Whether a flip may run: not when it works in place with two different strides, which no order of writing serves. Logs
// the refusal under the name of the flip.
bool flipIsPossible(const char* function, const void* src, uint32_t srcStride, const void* dst, uint32_t dstStride);

} // namespace rvk

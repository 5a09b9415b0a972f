// What the vector implementations of the smoothing filters share with the references.
#pragma once

#include <cstdint>

namespace rvk {

// The ring of the 5x5 Gaussian of 32-bit elements, from the pixels that exist.
void gaussian5x5s32Ring(const int32_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int32_t* dst,
                        uint32_t dstStride);

} // namespace rvk

// What the C and the vector implementations of turned patches share.
#pragma once

#include <cstdint>

namespace rvk {

// A patch of 17 x 17 pixels: its pixel (i, j), -8 to 8 each, is the one nearest to
// (x + (cosine * i - sine * j) / 2^14, y + (sine * i + cosine * j) / 2^14), halves rounded up.
struct RotatedPatch
{
    static constexpr int32_t kReach = 8;
    static constexpr uint32_t kFractionBits = 14;
    static constexpr int32_t kHalf = 1 << (kFractionBits - 1);

    int32_t cosine, sine;
};

// The patch turned by `orientation` steps of 10 degrees, 0 to 35.
RotatedPatch rotatedPatch(uint32_t orientation);

// Whether all pixels of a patch around (x, y) lie in the picture.
bool isInside(const RotatedPatch& patch, uint32_t width, uint32_t height, uint32_t x, uint32_t y);

} // namespace rvk

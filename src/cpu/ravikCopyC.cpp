// C references of the copies.
#include "cpu/ravikCopyC.h"
#include "cpu/image.h"
#include "functions.h"

namespace rvk {

namespace {

constexpr int32_t kReach = RotatedPatch::kReach;

// 2^14 times the sine of 0, 10, ... 90 degrees.
constexpr int32_t kSines[] = {0, 2845, 5604, 8192, 10531, 12551, 14189, 15396, 16135, 16384};

int32_t sineOf(uint32_t steps)
{
    steps %= 36;
    if (steps >= 18)
        return -sineOf(steps - 18);
    return kSines[steps <= 9 ? steps : 18 - steps];
}

// Offsets of a pixel of the patch from the centre.
int32_t columnOf(const RotatedPatch& patch, int32_t i, int32_t j)
{
    return (patch.cosine * i - patch.sine * j + RotatedPatch::kHalf) >> RotatedPatch::kFractionBits;
}
int32_t rowOf(const RotatedPatch& patch, int32_t i, int32_t j)
{
    return (patch.sine * i + patch.cosine * j + RotatedPatch::kHalf) >> RotatedPatch::kFractionBits;
}

void copy(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst, uint32_t dstStride)
{
    mapElements(
        width, height, Plane{dst, dstStride}, [](uint8_t pixel) { return pixel; }, Plane{src, srcStride});
}

} // namespace

RotatedPatch rotatedPatch(uint32_t orientation)
{
    return {sineOf(orientation + 9), sineOf(orientation)};
}

// No pixel lies farther out than the corners.
bool isInside(const RotatedPatch& patch, uint32_t width, uint32_t height, uint32_t x, uint32_t y)
{
    for (const int32_t i : {-kReach, kReach})
        for (const int32_t j : {-kReach, kReach}) {
            const int64_t column = int64_t{x} + columnOf(patch, i, j), row = int64_t{y} + rowOf(patch, i, j);
            if (column < 0 || column >= width || row < 0 || row >= height)
                return false;
        }
    return true;
}

rvkStatus rvkCopyRotated17x17u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t x, uint32_t y, uint32_t orientation, uint8_t* patch)
{
    const RotatedPatch rotated = rotatedPatch(orientation);
    if (!isInside(rotated, srcWidth, srcHeight, x, y))
        return RAVIK_EFAIL;
    const Plane<const uint8_t> source{src, srcStride};
    for (int32_t j = -kReach; j <= kReach; ++j)
        for (int32_t i = -kReach; i <= kReach; ++i) {
            const int64_t row = int64_t{y} + rowOf(rotated, i, j), column = int64_t{x} + columnOf(rotated, i, j);
            *patch++ = source.row(static_cast<size_t>(row))[column];
        }
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikCopyForms.h"

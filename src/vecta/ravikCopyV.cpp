// Vector implementations of the copies.
#include "cpu/ravikCopyC.h"
#include "vecta/simd/simd.h"
#include "vecta/vecta.h"

#include <ravik/copy.h>

namespace rvk {
decltype(::rvkCopyRotated17x17u8) rvkCopyRotated17x17u8C;
} // namespace rvk

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr size_t kSide = 2 * RotatedPatch::kReach + 1;

// The standard library knows best how to copy on this machine.
RVK_INLINE void copy(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride)
{
    if (srcStride == width && dstStride == width) {
        __builtin_memcpy(dst, src, size_t{width} * height);
        return;
    }
    for (size_t y = 0; y < height; ++y)
        __builtin_memcpy(dst + y * dstStride, src + y * srcStride, width);
}

// Where the pixels of a row of the patch lie, as seen from the first pixel of the picture's row that has the centre.
struct RowOfPatch
{
    static constexpr size_t step = Vec<int32_t>::lanes, count = (kSide + step - 1) / step;

    int32_t offsets[count * step];

    // `column` and `row` are 2^14 times the place of the row's first pixel, halves for rounding included.
    RVK_INLINE void find(const RotatedPatch& patch, int32_t column, int32_t row, int32_t stride)
    {
        constexpr uint32_t bits = RotatedPatch::kFractionBits;
        const Vec<int32_t> i = iota<int32_t>();
        Vec<int32_t> columns = splat(column) + i * splat(patch.cosine), rows = splat(row) + i * splat(patch.sine);
        unrolled<count>([&](auto n) RVK_INLINE_LAMBDA {
            store(offsets + n * step, shiftRight(columns, bits) + shiftRight(rows, bits) * splat(stride));
            columns = columns + splat(static_cast<int32_t>(step) * patch.cosine);
            rows = rows + splat(static_cast<int32_t>(step) * patch.sine);
        });
    }
};

} // namespace

rvkStatus rvkCopyRotated17x17u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t x, uint32_t y, uint32_t orientation, uint8_t* patch)
{
    constexpr uint32_t mostStride = INT32_MAX / 16; // times the rows between the centre and the farthest pixel
    if (srcStride > mostStride)
        return rvkCopyRotated17x17u8C(src, srcWidth, srcHeight, srcStride, x, y, orientation, patch);
    const RotatedPatch rotated = rotatedPatch(orientation);
    if (!isInside(rotated, srcWidth, srcHeight, x, y))
        return RAVIK_EFAIL;
    const uint8_t* const centre = src + size_t{y} * srcStride + x;
    constexpr int32_t reach = RotatedPatch::kReach;
    for (int32_t j = -reach; j <= reach; ++j, patch += kSide) {
        RowOfPatch row;
        row.find(rotated, RotatedPatch::kHalf - rotated.cosine * reach - rotated.sine * j,
                 RotatedPatch::kHalf - rotated.sine * reach + rotated.cosine * j, static_cast<int32_t>(srcStride));
        for (size_t i = 0; i < kSide; ++i)
            patch[i] = centre[row.offsets[i]];
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikCopyForms.h"

// Transposes, flips and rotations: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

// How wide the destination of a rotation is; 0 when nothing is written.
uint32_t rotatedWidth(uint32_t srcWidth, uint32_t srcHeight, uint32_t rotation)
{
    switch (rotation) {
    case RAVIK_ROTATE_90:
    case RAVIK_ROTATE_270:
        return srcHeight;
    case RAVIK_ROTATE_180:
        return srcWidth;
    default:
        return 0;
    }
}

// A quarter turn reads pixels whose places it has written.
bool rotationMayRunInPlace(uint32_t rotation)
{
    return rotation != RAVIK_ROTATE_90 && rotation != RAVIK_ROTATE_270;
}

} // namespace

// The conditions between "clang-format off" and "on" are logged as they stand there.

void rvkTransposeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                    uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcHeight);
    const RVK_IMPL target = chooseTarget(Slot::rvkTransposeu8);
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcHeight));
    implementation<Slot::rvkTransposeu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposeu16(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* dst,
                     uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(uint16_t));
    dstStride = packedIfZero(dstStride, srcHeight, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkTransposeu16);
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 2) && rowFits(srcHeight, 2),
        src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*2) && (dstStride >= srcHeight*2));
    // clang-format on
    implementation<Slot::rvkTransposeu16>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposef32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* dst,
                     uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(float32_t));
    dstStride = packedIfZero(dstStride, srcHeight, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkTransposef32);
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 4) && rowFits(srcHeight, 4),
        src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*4) && (dstStride >= srcHeight*4));
    // clang-format on
    implementation<Slot::rvkTransposef32>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposeRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, 3);
    dstStride = packedIfZero(dstStride, srcHeight, 3);
    const RVK_IMPL target = chooseTarget(Slot::rvkTransposeRGB888u8);
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 3) && rowFits(srcHeight, 3),
        src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*3) && (dstStride >= srcHeight*3));
    // clang-format on
    implementation<Slot::rvkTransposeRGB888u8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkFlipu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
               uint32_t dstStride, uint32_t dir)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFlipu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) &&
                   dir >= 1 && dir <= 3);
    implementation<Slot::rvkFlipu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

void rvkFlipu16(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* dst,
                uint32_t dstStride, uint32_t dir)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(uint16_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(uint16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFlipu16, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 2),
        src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*2) && (dstStride >= srcWidth*2) && dir >= 1 && dir <= 3);
    // clang-format on
    implementation<Slot::rvkFlipu16>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

void rvkFlipRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride, uint32_t dir)
{
    srcStride = packedIfZero(srcStride, srcWidth, 3);
    dstStride = packedIfZero(dstStride, srcWidth, 3);
    const RVK_IMPL target = chooseTarget(Slot::rvkFlipRGB888u8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 3);
    });
    // clang-format off
    RVK_CHECK_SIZED_ARGS(rowFits(srcWidth, 3),
        src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*3) && (dstStride >= srcWidth*3) && dir >= 1 && dir <= 3);
    // clang-format on
    implementation<Slot::rvkFlipRGB888u8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride, dir);
}

rvkStatus rvkRotateImageu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                           uint32_t dstStride, uint32_t rotation)
{
    const uint32_t dstWidth = rotatedWidth(srcWidth, srcHeight, rotation);
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, dstWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkRotateImageu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_STATUS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= dstWidth) &&
                     (src != dst || rotationMayRunInPlace(rotation)));
    return implementation<Slot::rvkRotateImageu8>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                          rotation);
}

rvkStatus rvkRotateImageInterleavedu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride, uint32_t rotation)
{
    const uint32_t dstWidth = rotatedWidth(srcWidth, srcHeight, rotation);
    srcStride = packedIfZero(srcStride, srcWidth, 2);
    dstStride = packedIfZero(dstStride, dstWidth, 2);
    const RVK_IMPL target = chooseTarget(Slot::rvkRotateImageInterleavedu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight, 2);
    });
    RVK_CHECK_STATUS(rowFits(srcWidth, 2) && rowFits(dstWidth, 2) && src && dst && srcWidth && srcHeight &&
                     (srcStride >= srcWidth * 2) && (dstStride >= dstWidth * 2) &&
                     (src != dst || rotationMayRunInPlace(rotation)));
    return implementation<Slot::rvkRotateImageInterleavedu8>(target)(src, srcWidth, srcHeight, srcStride, dst,
                                                                     dstStride, rotation);
}

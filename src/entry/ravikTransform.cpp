// Transposes, flips and rotations: the public functions.
#include "bodies.h"

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

template <Slot slot, uint32_t channels = 1, class T>
void transpose(Words words, const T* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, T* dst,
               uint32_t dstStride)
{
    constexpr uint32_t pixelSize = channels * sizeof(T);
    srcStride = packedIfZero(srcStride, srcWidth, pixelSize);
    dstStride = packedIfZero(dstStride, srcHeight, pixelSize);
    const RVK_IMPL target = chooseTarget(slot);
    if (!(src && dst && srcWidth && srcHeight && srcStride >= rowSize(srcWidth, pixelSize) &&
          dstStride >= rowSize(srcHeight, pixelSize)))
        return refuse<slot>(words);
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

} // namespace

void rvkTransposeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                    uint32_t dstStride)
{
    transpose<Slot::rvkTransposeu8>(
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcHeight)"}, src,
        srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposeu16(const uint16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint16_t* dst,
                     uint32_t dstStride)
{
    transpose<Slot::rvkTransposeu16>(
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*2) && (dstStride >= srcHeight*2)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposef32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* dst,
                     uint32_t dstStride)
{
    transpose<Slot::rvkTransposef32>(
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*4) && (dstStride >= srcHeight*4)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkTransposeRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride)
{
    transpose<Slot::rvkTransposeRGB888u8, 3>(
        {__func__, "src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*3) && (dstStride >= srcHeight*3)"},
        src, srcWidth, srcHeight, srcStride, dst, dstStride);
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
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*2) && (dstStride >= srcWidth*2) &&
                   dir >= 1 && dir <= 3);
    RVK_CHECK_ARGS(rowFits(srcWidth, 2));
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
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*3) && (dstStride >= srcWidth*3) &&
                   dir >= 1 && dir <= 3);
    RVK_CHECK_ARGS(rowFits(srcWidth, 3));
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
    RVK_CHECK_STATUS(src && dst && srcWidth && srcHeight && (srcStride >= rowSize(srcWidth, 2)) &&
                     (dstStride >= rowSize(dstWidth, 2)) && (src != dst || rotationMayRunInPlace(rotation)));
    return implementation<Slot::rvkRotateImageInterleavedu8>(target)(src, srcWidth, srcHeight, srcStride, dst,
                                                                     dstStride, rotation);
}

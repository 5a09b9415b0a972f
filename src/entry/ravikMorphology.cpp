// Dilation and erosion: the public functions. Those of a kind share a body; `function` is the name for the log.
#include "dispatch.h"

using namespace rvk;

namespace {

// ---- 3x3. The forms without strides call the cell of their _v2 form. ----------------------------

template <Slot slot>
void packed3x3(const char* function, const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const RVK_IMPL target =
        chooseTarget(slot, [&] { return aligned(8, src, dst, width) && enoughWork(width, height) && height >= 3; });
    RVK_CHECK_ARGS_OF(function, src && width && height && dst);
    RVK_CHECK_ARGS_OF(function, src != dst);
    implementation<slot>(target)(src, width, height, width, dst, width);
}

template <Slot slot>
void strided3x3(const char* function, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_ARGS_OF(function,
                      src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth));
    RVK_CHECK_ARGS_OF(function, src != dst);
    implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

template <Slot slot>
rvkStatus bordered3x3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                      uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && dst && dstStride >= srcWidth &&
                     src != dst);
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue);
}

// ---- NxN ----------------------------------------------------------------------------------------

template <Slot slot>
rvkStatus squareOf(uint32_t N, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                   uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(src && srcWidth && srcHeight && srcStride >= srcWidth && rowFits(srcStride, srcHeight) && dst &&
                     dstStride >= srcWidth && src != dst && N && N <= srcWidth && N <= srcHeight);
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, N, dst, dstStride);
}

} // namespace

// ---- dilation -----------------------------------------------------------------------------------

void rvkFilterDilate3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    packed3x3<Slot::rvkFilterDilate3x3u8_v2>(__func__, src, width, height, dst);
}

void rvkFilterDilate3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    strided3x3<Slot::rvkFilterDilate3x3u8_v2>(__func__, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkFilterDilate3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    return bordered3x3<Slot::rvkFilterDilate3x3u8_v3>(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType,
                                                      borderValue);
}

rvkStatus rvkFilterDilateNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint32_t N, uint8_t* dst, uint32_t dstStride)
{
    return squareOf<Slot::rvkFilterDilateNxNu8>(N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- erosion ------------------------------------------------------------------------------------

void rvkFilterErode3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    packed3x3<Slot::rvkFilterErode3x3u8_v2>(__func__, src, width, height, dst);
}

void rvkFilterErode3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride)
{
    strided3x3<Slot::rvkFilterErode3x3u8_v2>(__func__, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkFilterErode3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    return bordered3x3<Slot::rvkFilterErode3x3u8_v3>(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType,
                                                     borderValue);
}

rvkStatus rvkFilterErodeNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t N,
                              uint8_t* dst, uint32_t dstStride)
{
    return squareOf<Slot::rvkFilterErodeNxNu8>(N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

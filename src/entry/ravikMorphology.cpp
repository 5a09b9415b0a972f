// Dilation and erosion: the public functions. The 3x3 forms without strides call the cell of their _v2 form.
#include "bodies.h"

using namespace rvk;

namespace {

// The conditions of the 3x3 forms as the log quotes them.
constexpr char kPacked[] = "src && width && height && dst";
constexpr char kStrided[] = "src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth)";
constexpr FilterSizes k3x3 = {.dspHeight = 3};

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
    filter<Slot::rvkFilterDilate3x3u8_v2>(k3x3, {__func__, kPacked}, src, width, height, 0, dst, 0);
}

void rvkFilterDilate3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             uint8_t* dst, uint32_t dstStride)
{
    filter<Slot::rvkFilterDilate3x3u8_v2>(k3x3, {__func__, kStrided}, src, srcWidth, srcHeight, srcStride, dst,
                                          dstStride);
}

rvkStatus rvkFilterDilate3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    return filter<Slot::rvkFilterDilate3x3u8_v3>(k3x3, kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                 borderType, borderValue);
}

rvkStatus rvkFilterDilateNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                               uint32_t N, uint8_t* dst, uint32_t dstStride)
{
    return squareOf<Slot::rvkFilterDilateNxNu8>(N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- erosion ------------------------------------------------------------------------------------

void rvkFilterErode3x3u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    filter<Slot::rvkFilterErode3x3u8_v2>(k3x3, {__func__, kPacked}, src, width, height, 0, dst, 0);
}

void rvkFilterErode3x3u8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                            uint32_t dstStride)
{
    filter<Slot::rvkFilterErode3x3u8_v2>(k3x3, {__func__, kStrided}, src, srcWidth, srcHeight, srcStride, dst,
                                         dstStride);
}

rvkStatus rvkFilterErode3x3u8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint8_t* dst, uint32_t dstStride, uint32_t borderType, uint8_t borderValue)
{
    return filter<Slot::rvkFilterErode3x3u8_v3>(k3x3, kSilent, src, srcWidth, srcHeight, srcStride, dst, dstStride,
                                                borderType, borderValue);
}

rvkStatus rvkFilterErodeNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t N,
                              uint8_t* dst, uint32_t dstStride)
{
    return squareOf<Slot::rvkFilterErodeNxNu8>(N, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

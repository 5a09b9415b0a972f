// Perspective warps and remaps: the public functions.
#include "bodies.h"
#include "cpu/sampling.h"

#include <cmath>

using namespace rvk;

namespace {

constexpr uint32_t kMostWarpedSize = 1 << 24; // floats hold the numbers of all columns and rows

// A source and a destination of another size. Strides of 0 become those of packed rows.
struct Pictures
{
    uint32_t channels;
    const uint8_t* src;
    uint32_t srcWidth, srcHeight, srcStride;
    uint8_t* dst;
    uint32_t dstWidth, dstHeight, dstStride;

    Pictures(uint32_t channelCount, const uint8_t* source, uint32_t sourceWidth, uint32_t sourceHeight,
             uint32_t sourceStride, uint8_t* destination, uint32_t destinationWidth, uint32_t destinationHeight,
             uint32_t destinationStride)
        : channels(channelCount), src(source), srcWidth(sourceWidth), srcHeight(sourceHeight),
          srcStride(packedIfZero(sourceStride, sourceWidth, channelCount)), dst(destination),
          dstWidth(destinationWidth), dstHeight(destinationHeight),
          dstStride(packedIfZero(destinationStride, destinationWidth, channelCount))
    {
    }

    bool suitDsp() const { return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight); }
    bool exist() const
    {
        return src && dst && srcWidth && srcHeight && dstWidth && dstHeight &&
               srcStride >= rowSize(srcWidth, channels) && dstStride >= rowSize(dstWidth, channels);
    }
    // What is wrong with those that exist, or null.
    const char* fault() const
    {
        if (srcWidth > kMostSampledSize || srcHeight > kMostSampledSize)
            return "srcWidth <= kMostSampledSize && srcHeight <= kMostSampledSize";
        return src == dst ? "src != dst" : nullptr;
    }
};

const char* faultOf(const float32_t* matrix, uint32_t dstWidth, uint32_t dstHeight)
{
    for (int i = 0; i < 9; ++i)
        if (!std::isfinite(matrix[i]))
            return "isFinite(matrix)";
    return dstWidth > kMostWarpedSize || dstHeight > kMostWarpedSize
               ? "dstWidth <= kMostWarpedSize && dstHeight <= kMostWarpedSize"
               : nullptr;
}

bool areRules(uint32_t interpolation, uint32_t borderType)
{
    return interpolation <= RAVIK_INTERPOLATION_BILINEAR && borderType <= RAVIK_BORDER_REPLICATE;
}

constexpr const char* kWarpCondition = "src && dst && matrix && srcWidth && srcHeight && dstWidth && dstHeight && "
                                       "(srcStride >= srcWidth) && (dstStride >= dstWidth)";
constexpr const char* kRemapCondition =
    "src && dst && mapX && mapY && srcWidth && srcHeight && dstWidth && dstHeight && "
    "(srcStride >= srcWidth) && (dstStride >= dstWidth) && (mapStride >= dstWidth*4)";
constexpr const char* kRemapRgbaCondition = "src && dst && mapX && mapY && srcWidth && srcHeight && dstWidth && "
                                            "dstHeight && (srcStride >= srcWidth*4) && (dstStride >= dstWidth*4) && "
                                            "(mapStride >= dstWidth*4)";

// `good` is what else must be true.
template <Slot slot, class... Rules>
ResultOf<slot> warp(Words words, const Pictures& p, const float32_t* matrix, bool good, Rules... rules)
{
    const RVK_IMPL target = chooseTarget(slot, [&] { return p.suitDsp(); });
    if (!(p.exist() && matrix && good))
        return refuse<slot>(words);
    if (const char* const fault = p.fault())
        return refuse<slot>({words.function, fault});
    if (const char* const fault = faultOf(matrix, p.dstWidth, p.dstHeight))
        return refuse<slot>({words.function, fault});
    return implementation<slot>(target)(p.src, p.srcWidth, p.srcHeight, p.srcStride, p.dst, p.dstWidth, p.dstHeight,
                                        p.dstStride, matrix, rules...);
}

template <Slot slot, class... Rules>
ResultOf<slot> remap(Words words, const Pictures& p, const float32_t* mapX, const float32_t* mapY, uint32_t mapStride,
                     bool good, Rules... rules)
{
    mapStride = packedIfZero(mapStride, p.dstWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(slot, [&] { return p.suitDsp() && aligned(8, mapX, mapY, mapStride); });
    if (!(p.exist() && mapX && mapY && mapStride >= rowSize(p.dstWidth, sizeof(float32_t)) && good))
        return refuse<slot>(words);
    if (const char* const fault = p.fault())
        return refuse<slot>({words.function, fault});
    const void* const dst = p.dst;
    if (dst == mapX || dst == mapY)
        return refuse<slot>({words.function, "dst != mapX && dst != mapY"});
    return implementation<slot>(target)(p.src, p.srcWidth, p.srcHeight, p.srcStride, p.dst, p.dstWidth, p.dstHeight,
                                        p.dstStride, mapX, mapY, mapStride, rules...);
}

} // namespace

void rvkWarpPerspectiveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, const float32_t* matrix)
{
    warp<Slot::rvkWarpPerspectiveu8>({__func__, kWarpCondition},
                                     {1, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride},
                                     matrix, true);
}

rvkStatus rvkWarpPerspectiveu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float32_t* matrix)
{
    return warp<Slot::rvkWarpPerspectiveu8_v2>(
        kSilent, {1, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, matrix, true);
}

rvkStatus rvkWarpPerspectiveu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float32_t* matrix, uint32_t borderType, uint8_t borderValue)
{
    return warp<Slot::rvkWarpPerspectiveu8_v3>(
        kSilent, {1, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, matrix,
        areRules(RAVIK_INTERPOLATION_BILINEAR, borderType), borderType, borderValue);
}

rvkStatus rvkWarpPerspectiveu8_v4(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float32_t* matrix, uint32_t interpolation, uint32_t borderType,
                                  uint8_t borderValue)
{
    return warp<Slot::rvkWarpPerspectiveu8_v4>(
        kSilent, {1, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, matrix,
        areRules(interpolation, borderType), interpolation, borderType, borderValue);
}

void rvk3ChannelWarpPerspectiveu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                  const float32_t* matrix)
{
    warp<Slot::rvk3ChannelWarpPerspectiveu8>(
        {__func__, "src && dst && matrix && srcWidth && srcHeight && dstWidth && dstHeight && "
                   "(srcStride >= srcWidth*3) && (dstStride >= dstWidth*3)"},
        {3, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, matrix, true);
}

rvkStatus rvk3ChannelWarpPerspectiveu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                          const float32_t* matrix, uint32_t interpolation, uint32_t borderType,
                                          const uint8_t* borderValue)
{
    return warp<Slot::rvk3ChannelWarpPerspectiveu8_v2>(
        kSilent, {3, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, matrix,
        areRules(interpolation, borderType) && borderValue, interpolation, borderType, borderValue);
}

rvkStatus rvk2PlaneWarpPerspectiveu8(const uint8_t* src1, uint32_t srcWidth, uint32_t srcHeight, uint32_t src1Stride,
                                     const uint8_t* src2, uint32_t src2Stride, uint8_t* dst1, uint32_t dstWidth,
                                     uint32_t dstHeight, uint32_t dst1Stride, uint8_t* dst2, uint32_t dst2Stride,
                                     const float32_t* matrix, uint32_t interpolation, uint32_t borderType,
                                     uint8_t borderValue)
{
    const Pictures first(1, src1, srcWidth, srcHeight, src1Stride, dst1, dstWidth, dstHeight, dst1Stride);
    const Pictures second(1, src2, srcWidth, srcHeight, src2Stride, dst2, dstWidth, dstHeight, dst2Stride);
    const RVK_IMPL target =
        chooseTarget(Slot::rvk2PlaneWarpPerspectiveu8, [&] { return first.suitDsp() && second.suitDsp(); });
    RVK_CHECK_STATUS(first.exist() && second.exist() && matrix && areRules(interpolation, borderType));
    RVK_CHECK_STATUS(!first.fault() && !second.fault() && !faultOf(matrix, dstWidth, dstHeight));
    RVK_CHECK_STATUS(src1 != dst2 && src2 != dst1 && dst1 != dst2);
    return implementation<Slot::rvk2PlaneWarpPerspectiveu8>(target)(
        src1, srcWidth, srcHeight, first.srcStride, src2, second.srcStride, dst1, dstWidth, dstHeight, first.dstStride,
        dst2, second.dstStride, matrix, interpolation, borderType, borderValue);
}

void rvkRemapu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, const float32_t* mapX, const float32_t* mapY,
                uint32_t mapStride)
{
    remap<Slot::rvkRemapu8>({__func__, kRemapCondition},
                            {1, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, mapX, mapY,
                            mapStride, true);
}

rvkStatus rvkRemapu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                        uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, const float32_t* mapX,
                        const float32_t* mapY, uint32_t mapStride, uint32_t interpolation, uint32_t borderType,
                        uint8_t borderValue)
{
    return remap<Slot::rvkRemapu8_v2>(
        kSilent, {1, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride}, mapX, mapY, mapStride,
        areRules(interpolation, borderType), interpolation, borderType, borderValue);
}

void rvkRemapRGBA8888NNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, const float32_t* mapX,
                          const float32_t* mapY, uint32_t mapStride)
{
    remap<Slot::rvkRemapRGBA8888NNu8>({__func__, kRemapRgbaCondition},
                                      {4, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride},
                                      mapX, mapY, mapStride, true);
}

void rvkRemapRGBA8888BLu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride, const float32_t* mapX,
                          const float32_t* mapY, uint32_t mapStride)
{
    remap<Slot::rvkRemapRGBA8888BLu8>({__func__, kRemapRgbaCondition},
                                      {4, src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride},
                                      mapX, mapY, mapStride, true);
}

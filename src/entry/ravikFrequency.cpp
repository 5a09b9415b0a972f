// Frequency transforms and wavelets: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

// What a function asks of its sizes and images.
struct Asked
{
    uint32_t unit = 1; // width and height are multiples of it
    bool isTransposed = false;
    bool mayRunInPlace = false;
};

template <Slot slot, class S, class D>
rvkStatus transform(const Asked& asked, const S* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, D* dst,
                    uint32_t dstStride)
{
    const uint32_t dstWidth = asked.isTransposed ? srcHeight : srcWidth;
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(S));
    dstStride = packedIfZero(dstStride, dstWidth, sizeof(D));
    const RVK_IMPL target = chooseTarget(
        slot, [&] { return aligned(8, src, dst, srcStride, dstStride, srcWidth) && enoughWork(srcWidth, srcHeight); });
    RVK_CHECK_STATUS(src && dst && srcWidth && srcHeight && srcWidth % asked.unit == 0 && srcHeight % asked.unit == 0 &&
                     srcStride >= rowSize(srcWidth, sizeof(S)) && dstStride >= rowSize(dstWidth, sizeof(D)));
    RVK_CHECK_STATUS(static_cast<const void*>(src) != dst || (asked.mayRunInPlace && srcStride == dstStride));
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

bool isFourierSize(uint32_t size)
{
    return size && (size & (size - 1)) == 0 && size <= 32768;
}

template <Slot slot, class S, class D>
rvkStatus fourierTransform(uint32_t srcPixel, const S* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                           uint32_t dstPixel, D* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, srcPixel);
    dstStride = packedIfZero(dstStride, srcWidth, dstPixel);
    const RVK_IMPL target = chooseTarget(slot);
    RVK_CHECK_STATUS(src && dst && isFourierSize(srcWidth) && isFourierSize(srcHeight) &&
                     srcStride >= rowSize(srcWidth, srcPixel) && dstStride >= rowSize(srcWidth, dstPixel) &&
                     static_cast<const void*>(src) != dst);
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

} // namespace

rvkStatus rvkDCTu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                   uint32_t dstStride)
{
    return transform<Slot::rvkDCTu8>({.unit = 8}, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkIDCTs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride)
{
    return transform<Slot::rvkIDCTs16>({.unit = 8}, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkFFTu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, float32_t* dst,
                   uint32_t dstStride)
{
    return fourierTransform<Slot::rvkFFTu8>(1, src, srcWidth, srcHeight, srcStride, 2 * sizeof(float32_t), dst,
                                            dstStride);
}

rvkStatus rvkIFFTf32(const float32_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                     uint32_t dstStride)
{
    return fourierTransform<Slot::rvkIFFTf32>(2 * sizeof(float32_t), src, srcWidth, srcHeight, srcStride, 1, dst,
                                              dstStride);
}

rvkStatus rvkDWT53Tabs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                         uint32_t dstStride)
{
    return transform<Slot::rvkDWT53Tabs16>({.mayRunInPlace = true}, src, srcWidth, srcHeight, srcStride, dst,
                                           dstStride);
}

rvkStatus rvkIDWT53Tabs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                          uint32_t dstStride)
{
    return transform<Slot::rvkIDWT53Tabs16>({.mayRunInPlace = true}, src, srcWidth, srcHeight, srcStride, dst,
                                            dstStride);
}

rvkStatus rvkDWT53TabTransposes16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int16_t* dst, uint32_t dstStride)
{
    return transform<Slot::rvkDWT53TabTransposes16>({.isTransposed = true}, src, srcWidth, srcHeight, srcStride, dst,
                                                    dstStride);
}

rvkStatus rvkIDWT53TabTransposes16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   int16_t* dst, uint32_t dstStride)
{
    return transform<Slot::rvkIDWT53TabTransposes16>({.isTransposed = true}, src, srcWidth, srcHeight, srcStride, dst,
                                                     dstStride);
}

rvkStatus rvkDWTHaaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int16_t* dst,
                       uint32_t dstStride)
{
    return transform<Slot::rvkDWTHaaru8>({.unit = 2}, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkDWTHaarTransposeu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                int16_t* dst, uint32_t dstStride)
{
    return transform<Slot::rvkDWTHaarTransposeu8>({.unit = 2, .isTransposed = true}, src, srcWidth, srcHeight,
                                                  srcStride, dst, dstStride);
}

rvkStatus rvkIDWTHaars16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint8_t* dst,
                         uint32_t dstStride)
{
    return transform<Slot::rvkIDWTHaars16>({.unit = 2}, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

rvkStatus rvkIDWTHaarTransposes16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride)
{
    return transform<Slot::rvkIDWTHaarTransposes16>({.unit = 2, .isTransposed = true}, src, srcWidth, srcHeight,
                                                    srcStride, dst, dstStride);
}

// Correlation and convolution filters: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

// Two images that do not begin at the same place, with rows of `width` and `dstWidth` elements that their strides hold,
// and sizes that 32 bits hold.
template <class S, class D>
bool areImages(const S* src, uint32_t width, uint32_t height, uint32_t srcStride, const D* dst, uint32_t dstWidth,
               uint32_t dstStride)
{
    return src && dst && static_cast<const void*>(src) != dst && width && height &&
           srcStride >= rowSize(width, sizeof(S)) && rowFits(srcStride, height) &&
           dstStride >= rowSize(dstWidth, sizeof(D)) && rowFits(dstStride, height);
}

// Odd sizes that the picture holds.
bool isKernelSize(uint32_t M, uint32_t N, uint32_t width, uint32_t height)
{
    return M % 2 == 1 && N % 2 == 1 && M <= width && N <= height && rowFits(M, 4) && rowFits(M * 4, N);
}

// A sum has 32 bits to shift.
bool isShift(uint32_t shift)
{
    return shift < 32;
}

// To a picture of the same size with a kernel of M columns and N rows, whose weights and shifts the entry looks at.
template <Slot slot, class S, class D, class... Parameters>
rvkStatus correlate(uint32_t M, uint32_t N, bool isKernel, const S* src, uint32_t srcWidth, uint32_t srcHeight,
                    uint32_t srcStride, D* dst, uint32_t dstStride, Parameters... parameters)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(S));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(D));
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(sizeof(S) == 1 ? 8 : 4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) &&
               srcHeight >= N;
    });
    RVK_CHECK_STATUS(isKernel && isKernelSize(M, N, srcWidth, srcHeight) &&
                     areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride));
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, parameters..., dst, dstStride);
}

// A separable kernel of `size` each way.
template <Slot slot, uint32_t size>
rvkStatus correlateSquare(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                          int16_t* dst, uint32_t dstStride)
{
    return correlate<slot>(size, size, kernelX && kernelY && isShift(shiftX) && isShift(shiftY), src, srcWidth,
                           srcHeight, srcStride, dst, dstStride, kernelX, kernelY, shiftX, shiftY);
}

} // namespace

// ---- kernels of two dimensions. The form without strides calls the cell of its _v2 form ---------

rvkStatus rvkFilterCorr3x3s8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, const int8_t* kernel,
                             uint32_t shift, uint8_t* dst)
{
    return correlate<Slot::rvkFilterCorr3x3s8_v2>(3, 3, kernel && isShift(shift), src, srcWidth, srcHeight, 0, dst, 0,
                                                  kernel, shift);
}

rvkStatus rvkFilterCorr3x3s8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                const int8_t* kernel, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    return correlate<Slot::rvkFilterCorr3x3s8_v2>(3, 3, kernel && isShift(shift), src, srcWidth, srcHeight, srcStride,
                                                  dst, dstStride, kernel, shift);
}

rvkStatus rvkFilterCorrNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             const int16_t* kernel, uint32_t N, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    return correlate<Slot::rvkFilterCorrNxNu8>(N, N, kernel && isShift(shift), src, srcWidth, srcHeight, srcStride, dst,
                                               dstStride, kernel, N, shift);
}

rvkStatus rvkFilterCorrNxNu8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                const int16_t* kernel, uint32_t N, uint32_t shift, int16_t* dst, uint32_t dstStride)
{
    return correlate<Slot::rvkFilterCorrNxNu8s16>(N, N, kernel && isShift(shift), src, srcWidth, srcHeight, srcStride,
                                                  dst, dstStride, kernel, N, shift);
}

rvkStatus rvkFilterCorrNxNu8f32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                const float32_t* kernel, uint32_t N, float32_t* dst, uint32_t dstStride)
{
    return correlate<Slot::rvkFilterCorrNxNu8f32>(N, N, kernel != nullptr, src, srcWidth, srcHeight, srcStride, dst,
                                                  dstStride, kernel, N);
}

rvkStatus rvkFilterConvolveMxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, uint8_t* dst,
                                 uint32_t dstStride)
{
    return correlate<Slot::rvkFilterConvolveMxNu8>(M, N, kernel && isShift(shift), src, srcWidth, srcHeight, srcStride,
                                                   dst, dstStride, kernel, M, N, shift);
}

rvkStatus rvkFilterConvolveMxNu8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, int16_t* dst,
                                    uint32_t dstStride)
{
    return correlate<Slot::rvkFilterConvolveMxNu8s16>(M, N, kernel && isShift(shift), src, srcWidth, srcHeight,
                                                      srcStride, dst, dstStride, kernel, M, N, shift);
}

rvkStatus rvkConvValids16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, int16_t* dst,
                          uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    const uint32_t dstWidth = srcWidth - M + 1;
    dstStride = packedIfZero(dstStride, dstWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkConvValids16, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstStride) && kernel &&
                     isKernelSize(M, N, srcWidth, srcHeight) && isShift(shift));
    return implementation<Slot::rvkConvValids16>(target)(src, srcWidth, srcHeight, srcStride, kernel, M, N, shift, dst,
                                                         dstStride);
}

// ---- separable kernels. The forms without strides call the cell of their _v2 form ---------------

rvkStatus rvkFilterCorrSepMxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N, uint32_t shiftX,
                                uint32_t shiftY, uint8_t* dst, uint32_t dstStride)
{
    return correlate<Slot::rvkFilterCorrSepMxNu8>(M, N, kernelX && kernelY && isShift(shiftX) && isShift(shiftY), src,
                                                  srcWidth, srcHeight, srcStride, dst, dstStride, kernelX, M, kernelY,
                                                  N, shiftX, shiftY);
}

rvkStatus rvkFilterConvSepMxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N,
                                 uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlate<Slot::rvkFilterConvSepMxNs16>(M, N, kernelX && kernelY && isShift(shiftX) && isShift(shiftY), src,
                                                   srcWidth, srcHeight, srcStride, dst, dstStride, kernelX, M, kernelY,
                                                   N, shiftX, shiftY);
}

rvkStatus rvkFilterCorrSepNxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int16_t* kernelX, const int16_t* kernelY, uint32_t N, uint32_t shiftX,
                                 uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlate<Slot::rvkFilterCorrSepNxNs16>(N, N, kernelX && kernelY && isShift(shiftX) && isShift(shiftY), src,
                                                   srcWidth, srcHeight, srcStride, dst, dstStride, kernelX, kernelY, N,
                                                   shiftX, shiftY);
}

rvkStatus rvkFilterCorrSep9x9s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                 const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSquare<Slot::rvkFilterCorrSep9x9s16_v2, 9>(src, srcWidth, srcHeight, 0, kernelX, kernelY, shiftX,
                                                               shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep9x9s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                    int16_t* dst, uint32_t dstStride)
{
    return correlateSquare<Slot::rvkFilterCorrSep9x9s16_v2, 9>(src, srcWidth, srcHeight, srcStride, kernelX, kernelY,
                                                               shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep11x11s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                   const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSquare<Slot::rvkFilterCorrSep11x11s16_v2, 11>(src, srcWidth, srcHeight, 0, kernelX, kernelY, shiftX,
                                                                  shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep11x11s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                      int16_t* dst, uint32_t dstStride)
{
    return correlateSquare<Slot::rvkFilterCorrSep11x11s16_v2, 11>(src, srcWidth, srcHeight, srcStride, kernelX, kernelY,
                                                                  shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep13x13s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                   const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSquare<Slot::rvkFilterCorrSep13x13s16_v2, 13>(src, srcWidth, srcHeight, 0, kernelX, kernelY, shiftX,
                                                                  shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep13x13s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                      int16_t* dst, uint32_t dstStride)
{
    return correlateSquare<Slot::rvkFilterCorrSep13x13s16_v2, 13>(src, srcWidth, srcHeight, srcStride, kernelX, kernelY,
                                                                  shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep15x15s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                   const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSquare<Slot::rvkFilterCorrSep15x15s16_v2, 15>(src, srcWidth, srcHeight, 0, kernelX, kernelY, shiftX,
                                                                  shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep15x15s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                      int16_t* dst, uint32_t dstStride)
{
    return correlateSquare<Slot::rvkFilterCorrSep15x15s16_v2, 15>(src, srcWidth, srcHeight, srcStride, kernelX, kernelY,
                                                                  shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep17x17s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                   const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSquare<Slot::rvkFilterCorrSep17x17s16_v2, 17>(src, srcWidth, srcHeight, 0, kernelX, kernelY, shiftX,
                                                                  shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep17x17s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                      int16_t* dst, uint32_t dstStride)
{
    return correlateSquare<Slot::rvkFilterCorrSep17x17s16_v2, 17>(src, srcWidth, srcHeight, srcStride, kernelX, kernelY,
                                                                  shiftX, shiftY, dst, dstStride);
}

// Correlation and convolution filters: the public functions.
#include "dispatch.h"

using namespace rvk;

namespace {

// Two images that do not begin at the same place, with rows of `width` and `dstWidth` elements that their strides hold,
// and sizes that 32 bits hold.
template <class S, class D>
bool areImages(const S* src, uint32_t width, uint32_t height, uint32_t srcStride, const D* dst, uint32_t dstWidth,
               uint32_t dstStride)
{
    return src && dst && static_cast<const void*>(src) != dst && width && height && rowFits(width, sizeof(S)) &&
           srcStride >= width * sizeof(S) && rowFits(srcStride, height) && rowFits(dstWidth, sizeof(D)) &&
           dstStride >= dstWidth * sizeof(D) && rowFits(dstStride, height);
}

// Odd sizes that the picture holds.
bool isKernelSize(uint32_t M, uint32_t N, uint32_t width, uint32_t height)
{
    return M % 2 == 1 && N % 2 == 1 && M <= width && N <= height && rowFits(M, 4) && rowFits(M * 4, N);
}

constexpr uint32_t kShifts = 32; // that a sum has

// Kernels of `size` each way; `slot` is that of the form with strides.
template <Slot slot, uint32_t size>
rvkStatus correlateSeparably(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                             int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(slot, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= size;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernelX && kernelY &&
                     isKernelSize(size, size, srcWidth, srcHeight) && shiftX < kShifts && shiftY < kShifts);
    return implementation<slot>(target)(src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst,
                                        dstStride);
}

} // namespace

// ---- kernels of two dimensions. The form without strides calls the cell of its _v2 form ---------

rvkStatus rvkFilterCorr3x3s8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, const int8_t* kernel,
                             uint32_t shift, uint8_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCorr3x3s8_v2, [&] {
        return aligned(8, src, dst, srcWidth) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcWidth, dst, srcWidth, srcWidth) && kernel &&
                     isKernelSize(3, 3, srcWidth, srcHeight) && shift < kShifts);
    return implementation<Slot::rvkFilterCorr3x3s8_v2>(target)(src, srcWidth, srcHeight, srcWidth, kernel, shift, dst,
                                                               srcWidth);
}

rvkStatus rvkFilterCorr3x3s8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                const int8_t* kernel, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCorr3x3s8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= 3;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernel &&
                     isKernelSize(3, 3, srcWidth, srcHeight) && shift < kShifts);
    return implementation<Slot::rvkFilterCorr3x3s8_v2>(target)(src, srcWidth, srcHeight, srcStride, kernel, shift, dst,
                                                               dstStride);
}

rvkStatus rvkFilterCorrNxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                             const int16_t* kernel, uint32_t N, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCorrNxNu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernel &&
                     isKernelSize(N, N, srcWidth, srcHeight) && shift < kShifts);
    return implementation<Slot::rvkFilterCorrNxNu8>(target)(src, srcWidth, srcHeight, srcStride, kernel, N, shift, dst,
                                                            dstStride);
}

rvkStatus rvkFilterCorrNxNu8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                const int16_t* kernel, uint32_t N, uint32_t shift, int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCorrNxNu8s16, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernel &&
                     isKernelSize(N, N, srcWidth, srcHeight) && shift < kShifts);
    return implementation<Slot::rvkFilterCorrNxNu8s16>(target)(src, srcWidth, srcHeight, srcStride, kernel, N, shift,
                                                               dst, dstStride);
}

rvkStatus rvkFilterCorrNxNu8f32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                const float32_t* kernel, uint32_t N, float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCorrNxNu8f32, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernel &&
                     isKernelSize(N, N, srcWidth, srcHeight));
    return implementation<Slot::rvkFilterCorrNxNu8f32>(target)(src, srcWidth, srcHeight, srcStride, kernel, N, dst,
                                                               dstStride);
}

rvkStatus rvkFilterConvolveMxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, uint8_t* dst,
                                 uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterConvolveMxNu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernel &&
                     isKernelSize(M, N, srcWidth, srcHeight) && shift < kShifts);
    return implementation<Slot::rvkFilterConvolveMxNu8>(target)(src, srcWidth, srcHeight, srcStride, kernel, M, N,
                                                                shift, dst, dstStride);
}

rvkStatus rvkFilterConvolveMxNu8s16(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    const int16_t* kernel, uint32_t M, uint32_t N, uint32_t shift, int16_t* dst,
                                    uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterConvolveMxNu8s16, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernel &&
                     isKernelSize(M, N, srcWidth, srcHeight) && shift < kShifts);
    return implementation<Slot::rvkFilterConvolveMxNu8s16>(target)(src, srcWidth, srcHeight, srcStride, kernel, M, N,
                                                                   shift, dst, dstStride);
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
                     isKernelSize(M, N, srcWidth, srcHeight) && shift < kShifts);
    return implementation<Slot::rvkConvValids16>(target)(src, srcWidth, srcHeight, srcStride, kernel, M, N, shift, dst,
                                                         dstStride);
}

// ---- separable kernels. The forms without strides call the cell of their _v2 form ---------------

rvkStatus rvkFilterCorrSepMxNu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N, uint32_t shiftX,
                                uint32_t shiftY, uint8_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCorrSepMxNu8, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernelX && kernelY &&
                     isKernelSize(M, N, srcWidth, srcHeight) && shiftX < kShifts && shiftY < kShifts);
    return implementation<Slot::rvkFilterCorrSepMxNu8>(target)(src, srcWidth, srcHeight, srcStride, kernelX, M, kernelY,
                                                               N, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterConvSepMxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N,
                                 uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterConvSepMxNs16, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernelX && kernelY &&
                     isKernelSize(M, N, srcWidth, srcHeight) && shiftX < kShifts && shiftY < kShifts);
    return implementation<Slot::rvkFilterConvSepMxNs16>(target)(src, srcWidth, srcHeight, srcStride, kernelX, M,
                                                                kernelY, N, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSepNxNs16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 const int16_t* kernelX, const int16_t* kernelY, uint32_t N, uint32_t shiftX,
                                 uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, sizeof(int16_t));
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(int16_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFilterCorrSepNxNs16, [&] {
        return aligned(4, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight) && srcHeight >= N;
    });
    RVK_CHECK_STATUS(areImages(src, srcWidth, srcHeight, srcStride, dst, srcWidth, dstStride) && kernelX && kernelY &&
                     isKernelSize(N, N, srcWidth, srcHeight) && shiftX < kShifts && shiftY < kShifts);
    return implementation<Slot::rvkFilterCorrSepNxNs16>(target)(src, srcWidth, srcHeight, srcStride, kernelX, kernelY,
                                                                N, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep9x9s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                 const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSeparably<Slot::rvkFilterCorrSep9x9s16_v2, 9>(src, srcWidth, srcHeight, 0, kernelX, kernelY, shiftX,
                                                                  shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep9x9s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                    int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably<Slot::rvkFilterCorrSep9x9s16_v2, 9>(src, srcWidth, srcHeight, srcStride, kernelX, kernelY,
                                                                  shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep11x11s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                   const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSeparably<Slot::rvkFilterCorrSep11x11s16_v2, 11>(src, srcWidth, srcHeight, 0, kernelX, kernelY,
                                                                     shiftX, shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep11x11s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                      int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably<Slot::rvkFilterCorrSep11x11s16_v2, 11>(src, srcWidth, srcHeight, srcStride, kernelX,
                                                                     kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep13x13s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                   const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSeparably<Slot::rvkFilterCorrSep13x13s16_v2, 13>(src, srcWidth, srcHeight, 0, kernelX, kernelY,
                                                                     shiftX, shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep13x13s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                      int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably<Slot::rvkFilterCorrSep13x13s16_v2, 13>(src, srcWidth, srcHeight, srcStride, kernelX,
                                                                     kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep15x15s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                   const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSeparably<Slot::rvkFilterCorrSep15x15s16_v2, 15>(src, srcWidth, srcHeight, 0, kernelX, kernelY,
                                                                     shiftX, shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep15x15s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                      int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably<Slot::rvkFilterCorrSep15x15s16_v2, 15>(src, srcWidth, srcHeight, srcStride, kernelX,
                                                                     kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus rvkFilterCorrSep17x17s16(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, const int16_t* kernelX,
                                   const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY, int16_t* dst)
{
    return correlateSeparably<Slot::rvkFilterCorrSep17x17s16_v2, 17>(src, srcWidth, srcHeight, 0, kernelX, kernelY,
                                                                     shiftX, shiftY, dst, 0);
}

rvkStatus rvkFilterCorrSep17x17s16_v2(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                                      int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably<Slot::rvkFilterCorrSep17x17s16_v2, 17>(src, srcWidth, srcHeight, srcStride, kernelX,
                                                                     kernelY, shiftX, shiftY, dst, dstStride);
}

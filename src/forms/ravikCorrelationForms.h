// The correlation and convolution filters that are a call of a driver, correlate or correlateSeparably, of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

// ---- kernels of two dimensions ------------------------------------------------------------------

rvkStatus RVK_FORM(rvkFilterCorr3x3s8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          const int8_t* kernel, uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    return correlate(srcWidth, srcHeight, Plane{src, srcStride}, Taps<int8_t>{kernel, 3, 3, false}, shift,
                     Plane{dst, dstStride});
}

rvkStatus RVK_FORM(rvkFilterCorrNxNu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                       const int16_t* kernel, uint32_t N, uint32_t shift, uint8_t* dst,
                                       uint32_t dstStride)
{
    return correlate(srcWidth, srcHeight, Plane{src, srcStride}, Taps<int16_t>{kernel, N, N, false}, shift,
                     Plane{dst, dstStride});
}

rvkStatus RVK_FORM(rvkFilterCorrNxNu8s16)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          const int16_t* kernel, uint32_t N, uint32_t shift, int16_t* dst,
                                          uint32_t dstStride)
{
    return correlate(srcWidth, srcHeight, Plane{src, srcStride}, Taps<int16_t>{kernel, N, N, false}, shift,
                     Plane{dst, dstStride});
}

rvkStatus RVK_FORM(rvkFilterConvolveMxNu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, const int16_t* kernel, uint32_t M, uint32_t N,
                                           uint32_t shift, uint8_t* dst, uint32_t dstStride)
{
    return correlate(srcWidth, srcHeight, Plane{src, srcStride}, Taps<int16_t>{kernel, M, N, true}, shift,
                     Plane{dst, dstStride});
}

rvkStatus RVK_FORM(rvkFilterConvolveMxNu8s16)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, const int16_t* kernel, uint32_t M, uint32_t N,
                                              uint32_t shift, int16_t* dst, uint32_t dstStride)
{
    return correlate(srcWidth, srcHeight, Plane{src, srcStride}, Taps<int16_t>{kernel, M, N, true}, shift,
                     Plane{dst, dstStride});
}

namespace {

// The same kernel size in both directions, as it is given.
rvkStatus correlateSquare(size_t N, const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                          const int16_t* kernelX, const int16_t* kernelY, uint32_t shiftX, uint32_t shiftY,
                          int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably(width, height, Plane{src, srcStride}, Taps<int16_t>{kernelX, N, 1, false},
                              Taps<int16_t>{kernelY, 1, N, false}, shiftX, shiftY, Plane{dst, dstStride});
}

} // namespace

// ---- separable kernels --------------------------------------------------------------------------

rvkStatus RVK_FORM(rvkFilterCorrSepMxNu8)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          const int16_t* kernelX, uint32_t M, const int16_t* kernelY, uint32_t N,
                                          uint32_t shiftX, uint32_t shiftY, uint8_t* dst, uint32_t dstStride)
{
    return correlateSeparably(srcWidth, srcHeight, Plane{src, srcStride}, Taps<int16_t>{kernelX, M, 1, false},
                              Taps<int16_t>{kernelY, 1, N, false}, shiftX, shiftY, Plane{dst, dstStride});
}

rvkStatus RVK_FORM(rvkFilterConvSepMxNs16)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, const int16_t* kernelX, uint32_t M,
                                           const int16_t* kernelY, uint32_t N, uint32_t shiftX, uint32_t shiftY,
                                           int16_t* dst, uint32_t dstStride)
{
    return correlateSeparably(srcWidth, srcHeight, Plane{src, srcStride}, Taps<int16_t>{kernelX, M, 1, true},
                              Taps<int16_t>{kernelY, 1, N, true}, shiftX, shiftY, Plane{dst, dstStride});
}

rvkStatus RVK_FORM(rvkFilterCorrSepNxNs16)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                           uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                           uint32_t N, uint32_t shiftX, uint32_t shiftY, int16_t* dst,
                                           uint32_t dstStride)
{
    return correlateSquare(N, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus RVK_FORM(rvkFilterCorrSep9x9s16_v2)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                              uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(9, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus RVK_FORM(rvkFilterCorrSep11x11s16_v2)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                                uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(11, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus RVK_FORM(rvkFilterCorrSep13x13s16_v2)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                                uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(13, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus RVK_FORM(rvkFilterCorrSep15x15s16_v2)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                                uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(15, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

rvkStatus RVK_FORM(rvkFilterCorrSep17x17s16_v2)(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, const int16_t* kernelX, const int16_t* kernelY,
                                                uint32_t shiftX, uint32_t shiftY, int16_t* dst, uint32_t dstStride)
{
    return correlateSquare(17, src, srcWidth, srcHeight, srcStride, kernelX, kernelY, shiftX, shiftY, dst, dstStride);
}

} // namespace RVK_ROOM

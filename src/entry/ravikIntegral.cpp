// Integral images: the public functions.
#include "bodies.h"

using namespace rvk;

namespace {

// Whether a row of an integral that has one entry more than the picture has a size that 32 bits hold.
bool exclusiveRowFits(uint32_t width)
{
    return width < UINT32_MAX / sizeof(uint32_t);
}

// A row of `width` + 1 entries; of a size that does not fit as packedIfZero.
uint32_t packedExclusiveIfZero(uint32_t stride, uint32_t width)
{
    return packedIfZero(stride, exclusiveRowFits(width) ? width + 1 : UINT32_MAX, sizeof(uint32_t));
}

// Whether the pixels from `begin` on lie below `end`.
bool isWithin(uint32_t begin, uint32_t size, uint32_t end)
{
    return uint64_t{begin} + size <= end;
}

} // namespace

// It calls the cell of the form with strides.
void rvkIntegrateImageu8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegrateImageu8_v2,
                                         [&] { return aligned(8, src, dst, width) && enoughWork(width, height); });
    RVK_CHECK_ARGS(src && dst && width && height);
    RVK_CHECK_ARGS(exclusiveRowFits(width));
    implementation<Slot::rvkIntegrateImageu8_v2>(target)(src, width, height, width, dst,
                                                         packedExclusiveIfZero(0, width));
}

void rvkIntegrateImageu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedExclusiveIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegrateImageu8_v2, [&] {
        return aligned(8, src, dst, srcStride, dstStride) && enoughWork(srcWidth, srcHeight);
    });
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= (srcWidth+1)*sizeof(uint32_t)));
    RVK_CHECK_ARGS(exclusiveRowFits(srcWidth));
    implementation<Slot::rvkIntegrateImageu8_v2>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkIntegrateImageu8u64(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t* dstIntgrl, uint64_t* dstIntgrlSqrd, uint32_t dstIntgrlStride,
                            uint32_t dstIntgrlSqrdStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstIntgrlStride = packedIfZero(dstIntgrlStride, srcWidth, sizeof(uint32_t));
    dstIntgrlSqrdStride = packedIfZero(dstIntgrlSqrdStride, srcWidth, sizeof(uint64_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegrateImageu8u64);
    RVK_CHECK_ARGS(src && dstIntgrl && dstIntgrlSqrd && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstIntgrlStride>=srcWidth*sizeof(uint32_t)) && (dstIntgrlSqrdStride>=srcWidth*sizeof(uint64_t)));
    RVK_CHECK_ARGS(rowFits(srcWidth, sizeof(uint64_t)));
    implementation<Slot::rvkIntegrateImageu8u64>(target)(src, srcWidth, srcHeight, srcStride, dstIntgrl, dstIntgrlSqrd,
                                                         dstIntgrlStride, dstIntgrlSqrdStride);
}

void rvkIntegratePatchu8(const uint8_t* src, uint32_t srcStride, uint32_t left, uint32_t top, uint32_t width,
                         uint32_t height, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut)
{
    if (srcStride == 0)
        srcStride = isWithin(left, width, UINT32_MAX) ? left + width : UINT32_MAX;
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegratePatchu8);
    RVK_CHECK_ARGS(src && intgrlImgOut && intgrlSqrdImgOut && width && height);
    RVK_CHECK_ARGS(isWithin(left, width, srcStride) && exclusiveRowFits(width) && intgrlImgOut != intgrlSqrdImgOut);
    implementation<Slot::rvkIntegratePatchu8>(target)(src, srcStride, left, top, width, height, intgrlImgOut,
                                                      intgrlSqrdImgOut);
}

rvkStatus rvkIntegratePatchu8_v3(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                 uint32_t left, uint32_t top, uint32_t width, uint32_t height, uint32_t* intgrlImgOut,
                                 uint32_t intgrlStride, uint32_t* intgrlSqrdImgOut, uint32_t intgrlSqrdStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    intgrlStride = packedExclusiveIfZero(intgrlStride, width);
    intgrlSqrdStride = packedExclusiveIfZero(intgrlSqrdStride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegratePatchu8_v3);
    RVK_CHECK_STATUS(src && intgrlImgOut && intgrlSqrdImgOut && intgrlImgOut != intgrlSqrdImgOut && srcWidth &&
                     srcHeight && width && height && srcStride >= srcWidth && isWithin(left, width, srcWidth) &&
                     isWithin(top, height, srcHeight) && exclusiveRowFits(width) &&
                     intgrlStride >= rowSize(width + 1, sizeof(uint32_t)) &&
                     intgrlSqrdStride >= rowSize(width + 1, sizeof(uint32_t)));
    return implementation<Slot::rvkIntegratePatchu8_v3>(target)(src, srcWidth, srcHeight, srcStride, left, top, width,
                                                                height, intgrlImgOut, intgrlStride, intgrlSqrdImgOut,
                                                                intgrlSqrdStride);
}

void rvkIntegratePatch12x12u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                              uint32_t left, uint32_t top, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegratePatch12x12u8);
    RVK_CHECK_ARGS(src && intgrlImgOut && intgrlSqrdImgOut && srcWidth && srcHeight);
    RVK_CHECK_ARGS(intgrlImgOut != intgrlSqrdImgOut);
    RVK_CHECK_ARGS(srcStride >= srcWidth && isWithin(left, 12, srcWidth) && isWithin(top, 12, srcHeight));
    implementation<Slot::rvkIntegratePatch12x12u8>(target)(src, srcWidth, srcHeight, srcStride, left, top, intgrlImgOut,
                                                           intgrlSqrdImgOut);
}

void rvkIntegratePatch18x18u8(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t left,
                              uint32_t top, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut)
{
    srcStride = packedIfZero(srcStride, width);
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegratePatch18x18u8);
    RVK_CHECK_ARGS(src && intgrlImgOut && intgrlSqrdImgOut && width && height);
    RVK_CHECK_ARGS(intgrlImgOut != intgrlSqrdImgOut);
    RVK_CHECK_ARGS(srcStride >= width && isWithin(left, 18, width) && isWithin(top, 18, height));
    implementation<Slot::rvkIntegratePatch18x18u8>(target)(src, width, height, srcStride, left, top, intgrlImgOut,
                                                           intgrlSqrdImgOut);
}

void rvkIntegrateImageYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                             uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                             uint32_t* integralY, uint32_t* integralCb, uint32_t* integralCr,
                                             uint32_t integralYStride, uint32_t integralCbStride,
                                             uint32_t integralCrStride)
{
    srcYStride = packedIfZero(srcYStride, srcWidth);
    srcCStride = packedIfZero(srcCStride, srcWidth / 2 + srcWidth % 2, 2);
    integralYStride = packedIfZero(integralYStride, srcWidth, sizeof(uint32_t));
    integralCbStride = packedIfZero(integralCbStride, srcWidth / 2, sizeof(uint32_t));
    integralCrStride = packedIfZero(integralCrStride, srcWidth / 2, sizeof(uint32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegrateImageYCbCr420PseudoPlanaru8);
    RVK_CHECK_ARGS(srcY && srcC && integralY && integralCb && integralCr && srcWidth && srcHeight && (srcYStride >= srcWidth) && (srcCStride >= srcWidth) && (integralYStride >= srcWidth*sizeof(uint32_t)) && (integralCbStride >= (srcWidth/2)*sizeof(uint32_t)) && (integralCrStride >= (srcWidth/2)*sizeof(uint32_t)));
    RVK_CHECK_ARGS(rowFits(srcWidth, sizeof(uint32_t)));
    RVK_CHECK_ARGS(srcCStride >= rowSize(srcWidth / 2 + srcWidth % 2, 2));
    RVK_CHECK_ARGS(srcWidth > 1 && srcHeight > 1);
    RVK_CHECK_ARGS(integralY != integralCb && integralCb != integralCr && integralCr != integralY);
    implementation<Slot::rvkIntegrateImageYCbCr420PseudoPlanaru8>(target)(
        srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, integralY, integralCb, integralCr, integralYStride,
        integralCbStride, integralCrStride);
}

void rvkTiltedIntegralu8s32(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, int32_t* dst,
                            uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedExclusiveIfZero(dstStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkTiltedIntegralu8s32);
    RVK_CHECK_ARGS(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && exclusiveRowFits(srcWidth) &&
                   (dstStride >= rowSize(srcWidth + 1, sizeof(int32_t))));
    implementation<Slot::rvkTiltedIntegralu8s32>(target)(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void rvkIntegrateImageLineu8(const uint8_t* src, uint32_t width, uint32_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegrateImageLineu8);
    RVK_CHECK_ARGS(src && width && dst);
    RVK_CHECK_ARGS(rowFits(width, sizeof(uint32_t)));
    implementation<Slot::rvkIntegrateImageLineu8>(target)(src, width, dst);
}

void rvkIntegrateImageLine64u8(const uint8_t* src, uint32_t* dst)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkIntegrateImageLine64u8);
    RVK_CHECK_ARGS(src && dst);
    implementation<Slot::rvkIntegrateImageLine64u8>(target)(src, dst);
}

void rvkFindForegroundIntegrateImageYCbCr420u32(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                uint8_t backgroundY, uint8_t backgroundCb, uint8_t backgroundCr,
                                                uint32_t threshold, uint32_t* dst, uint32_t dstStride)
{
    const uint32_t pairs = srcWidth / 2 + srcWidth % 2;
    srcYStride = packedIfZero(srcYStride, srcWidth);
    srcCStride = packedIfZero(srcCStride, pairs, 2);
    dstStride = packedIfZero(dstStride, srcWidth, sizeof(uint32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkFindForegroundIntegrateImageYCbCr420u32);
    RVK_CHECK_ARGS(srcY && srcC && dst && srcWidth && srcHeight && (srcYStride >= srcWidth) &&
                   (srcCStride >= rowSize(pairs, 2)) && (dstStride >= rowSize(srcWidth, sizeof(uint32_t))));
    implementation<Slot::rvkFindForegroundIntegrateImageYCbCr420u32>(target)(
        srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, backgroundY, backgroundCb, backgroundCr, threshold,
        dst, dstStride);
}

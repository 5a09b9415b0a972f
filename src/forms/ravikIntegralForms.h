// The integral images, by the drivers integrateImage, integrateBoth, integratePatch, integrateSquarePatch,
// integrateInclusive, integratePairs and integrateLine of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {
namespace {

Plane<const uint8_t> patchAt(uint32_t left, uint32_t top, const uint8_t* src, uint32_t srcStride)
{
    return {Plane<const uint8_t>{src, srcStride}.row(top) + left, srcStride};
}

} // namespace

void RVK_FORM(rvkIntegrateImageu8_v2)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint32_t* dst, uint32_t dstStride)
{
    integrateImage(srcWidth, srcHeight, Plane<const uint8_t>{src, srcStride}, Plane<uint32_t>{dst, dstStride});
}

void RVK_FORM(rvkIntegrateImageu8u64)(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint32_t* dstIntgrl, uint64_t* dstIntgrlSqrd, uint32_t dstIntgrlStride,
                                      uint32_t dstIntgrlSqrdStride)
{
    integrateBoth(srcWidth, srcHeight, Plane<const uint8_t>{src, srcStride},
                  Plane<uint32_t>{dstIntgrl, dstIntgrlStride}, Plane<uint64_t>{dstIntgrlSqrd, dstIntgrlSqrdStride});
}

rvkStatus RVK_FORM(rvkIntegratePatchu8_v3)(const uint8_t* src, uint32_t, uint32_t, uint32_t srcStride, uint32_t left,
                                           uint32_t top, uint32_t width, uint32_t height, uint32_t* intgrlImgOut,
                                           uint32_t intgrlStride, uint32_t* intgrlSqrdImgOut, uint32_t intgrlSqrdStride)
{
    integratePatch(width, height, patchAt(left, top, src, srcStride), Plane<uint32_t>{intgrlImgOut, intgrlStride},
                   Plane<uint32_t>{intgrlSqrdImgOut, intgrlSqrdStride});
    return RAVIK_SUCCESS;
}

void RVK_FORM(rvkIntegratePatchu8)(const uint8_t* src, uint32_t srcStride, uint32_t left, uint32_t top, uint32_t width,
                                   uint32_t height, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut)
{
    const uint32_t packed = static_cast<uint32_t>((width + 1) * sizeof(uint32_t));
    integratePatch(width, height, patchAt(left, top, src, srcStride), Plane<uint32_t>{intgrlImgOut, packed},
                   Plane<uint32_t>{intgrlSqrdImgOut, packed});
}

void RVK_FORM(rvkIntegratePatch12x12u8)(const uint8_t* src, uint32_t, uint32_t, uint32_t srcStride, uint32_t left,
                                        uint32_t top, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut)
{
    integrateSquarePatch<12>(patchAt(left, top, src, srcStride), intgrlImgOut, intgrlSqrdImgOut);
}

void RVK_FORM(rvkIntegratePatch18x18u8)(const uint8_t* src, uint32_t, uint32_t, uint32_t srcStride, uint32_t left,
                                        uint32_t top, uint32_t* intgrlImgOut, uint32_t* intgrlSqrdImgOut)
{
    integrateSquarePatch<18>(patchAt(left, top, src, srcStride), intgrlImgOut, intgrlSqrdImgOut);
}

void RVK_FORM(rvkIntegrateImageYCbCr420PseudoPlanaru8)(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                       uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                       uint32_t* integralY, uint32_t* integralCb, uint32_t* integralCr,
                                                       uint32_t integralYStride, uint32_t integralCbStride,
                                                       uint32_t integralCrStride)
{
    integrateInclusive(srcWidth, srcHeight, Plane<const uint8_t>{srcY, srcYStride},
                       Plane<uint32_t>{integralY, integralYStride});
    integratePairs(srcWidth / 2, srcHeight / 2, Plane<const uint8_t>{srcC, srcCStride},
                   Plane<uint32_t>{integralCb, integralCbStride}, Plane<uint32_t>{integralCr, integralCrStride});
}

void RVK_FORM(rvkIntegrateImageLineu8)(const uint8_t* src, uint32_t width, uint32_t* dst)
{
    integrateLine(src, width, nullptr, dst);
}

void RVK_FORM(rvkIntegrateImageLine64u8)(const uint8_t* src, uint32_t* dst)
{
    integrateLine(src, 64, nullptr, dst);
}

void RVK_FORM(irvkIntegralLine)(const uint8_t* src, uint32_t width, const uint32_t* above, uint32_t* dst)
{
    integrateLine(src, width, above, dst);
}

} // namespace RVK_ROOM

// Normalised cross-correlation: the public functions.
#include "cpu/ravikNccC.h"
#include "dispatch.h"

using namespace rvk;

namespace {

// One body for the circle and the square, without strides and with them.
template <Slot slot, bool hasStrides>
int32_t findAround(const uint8_t* patch, uint32_t patchStride, const uint8_t* src, uint32_t srcWidth,
                   uint32_t srcHeight, uint32_t srcStride, uint32_t centerX, uint32_t centerY, uint32_t radius,
                   uint32_t* bestX, uint32_t* bestY, float32_t* bestScore)
{
    patchStride = packedIfZero(patchStride, kNccSide);
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(
        slot, [&] { return aligned(8, patch, patchStride, src, srcStride) && enoughWork(srcWidth, srcHeight); });
    if (!(patch && src && bestX && bestY && bestScore && srcWidth >= kNccSide && srcHeight >= kNccSide &&
          patchStride >= kNccSide && srcStride >= srcWidth))
        return -1;
    if constexpr (hasStrides)
        return implementation<slot>(target)(patch, patchStride, src, srcWidth, srcHeight, srcStride, centerX, centerY,
                                            radius, bestX, bestY, bestScore);
    else
        return implementation<slot>(target)(patch, src, srcWidth, srcHeight, centerX, centerY, radius, bestX, bestY,
                                            bestScore);
}

} // namespace

int32_t rvkNCCPatchOnCircle8x8u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                 uint32_t centerX, uint32_t centerY, uint32_t radius, uint32_t* bestX, uint32_t* bestY,
                                 float32_t* bestScore)
{
    return findAround<Slot::rvkNCCPatchOnCircle8x8u8, false>(patch, 0, src, srcWidth, srcHeight, 0, centerX, centerY,
                                                             radius, bestX, bestY, bestScore);
}

int32_t rvkNCCPatchOnCircle8x8u8_v2(const uint8_t* patch, uint32_t patchStride, const uint8_t* src, uint32_t srcWidth,
                                    uint32_t srcHeight, uint32_t srcStride, uint32_t centerX, uint32_t centerY,
                                    uint32_t radius, uint32_t* bestX, uint32_t* bestY, float32_t* bestScore)
{
    return findAround<Slot::rvkNCCPatchOnCircle8x8u8_v2, true>(patch, patchStride, src, srcWidth, srcHeight, srcStride,
                                                               centerX, centerY, radius, bestX, bestY, bestScore);
}

int32_t rvkNCCPatchOnSquare8x8u8(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                 uint32_t centerX, uint32_t centerY, uint32_t radius, uint32_t* bestX, uint32_t* bestY,
                                 float32_t* bestScore)
{
    return findAround<Slot::rvkNCCPatchOnSquare8x8u8, false>(patch, 0, src, srcWidth, srcHeight, 0, centerX, centerY,
                                                             radius, bestX, bestY, bestScore);
}

int32_t rvkNCCPatchOnSquare8x8u8_v2(const uint8_t* patch, uint32_t patchStride, const uint8_t* src, uint32_t srcWidth,
                                    uint32_t srcHeight, uint32_t srcStride, uint32_t centerX, uint32_t centerY,
                                    uint32_t radius, uint32_t* bestX, uint32_t* bestY, float32_t* bestScore)
{
    return findAround<Slot::rvkNCCPatchOnSquare8x8u8_v2, true>(patch, patchStride, src, srcWidth, srcHeight, srcStride,
                                                               centerX, centerY, radius, bestX, bestY, bestScore);
}

rvkStatus rvkNCCPatchesOnRectu8(const uint8_t* patches, uint32_t patchCount, uint32_t patchWidth, uint32_t patchHeight,
                                uint32_t patchStride, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                uint32_t srcStride, uint32_t rectX, uint32_t rectY, uint32_t rectWidth,
                                uint32_t rectHeight, uint32_t* bestX, uint32_t* bestY, float32_t* bestScores)
{
    patchStride = packedIfZero(patchStride, patchWidth);
    srcStride = packedIfZero(srcStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkNCCPatchesOnRectu8);
    RVK_CHECK_STATUS(patches && src && bestX && bestY && bestScores && patchCount && rectWidth && rectHeight);
    RVK_CHECK_STATUS(patchWidth && patchHeight && patchStride >= patchWidth && srcStride >= srcWidth);
    RVK_CHECK_STATUS(rowSize(patchWidth, patchHeight) <= kMostNccPixels && srcWidth >= patchWidth &&
                     srcHeight >= patchHeight);
    return implementation<Slot::rvkNCCPatchesOnRectu8>(target)(patches, patchCount, patchWidth, patchHeight,
                                                               patchStride, src, srcWidth, srcHeight, srcStride, rectX,
                                                               rectY, rectWidth, rectHeight, bestX, bestY, bestScores);
}

// Patches of 8x8 pixels around a point, by findPatch of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

int32_t RVK_FORM(rvkNCCPatchOnCircle8x8u8_v2)(const uint8_t* patch, uint32_t patchStride, const uint8_t* src,
                                              uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                              uint32_t centerX, uint32_t centerY, uint32_t radius, uint32_t* bestX,
                                              uint32_t* bestY, float32_t* bestScore)
{
    const NccImage wanted = {patch, kNccSide, kNccSide, patchStride}, picture = {src, srcWidth, srcHeight, srcStride};
    const NccBest best = findPatch(wanted, picture, nccCircle(picture, {centerX, centerY}, radius));
    return storeNccBest(best, wanted, bestX, bestY, bestScore) ? 0 : 1;
}

int32_t RVK_FORM(rvkNCCPatchOnCircle8x8u8)(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                           uint32_t srcHeight, uint32_t centerX, uint32_t centerY, uint32_t radius,
                                           uint32_t* bestX, uint32_t* bestY, float32_t* bestScore)
{
    return RVK_FORM(rvkNCCPatchOnCircle8x8u8_v2)(patch, kNccSide, src, srcWidth, srcHeight, srcWidth, centerX, centerY,
                                                 radius, bestX, bestY, bestScore);
}

int32_t RVK_FORM(rvkNCCPatchOnSquare8x8u8_v2)(const uint8_t* patch, uint32_t patchStride, const uint8_t* src,
                                              uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                              uint32_t centerX, uint32_t centerY, uint32_t radius, uint32_t* bestX,
                                              uint32_t* bestY, float32_t* bestScore)
{
    const NccImage wanted = {patch, kNccSide, kNccSide, patchStride}, picture = {src, srcWidth, srcHeight, srcStride};
    const NccBest best = findPatch(wanted, picture, nccSquare(picture, {centerX, centerY}, radius));
    return storeNccBest(best, wanted, bestX, bestY, bestScore) ? 0 : 1;
}

int32_t RVK_FORM(rvkNCCPatchOnSquare8x8u8)(const uint8_t* patch, const uint8_t* src, uint32_t srcWidth,
                                           uint32_t srcHeight, uint32_t centerX, uint32_t centerY, uint32_t radius,
                                           uint32_t* bestX, uint32_t* bestY, float32_t* bestScore)
{
    return RVK_FORM(rvkNCCPatchOnSquare8x8u8_v2)(patch, kNccSide, src, srcWidth, srcHeight, srcWidth, centerX, centerY,
                                                 radius, bestX, bestY, bestScore);
}

} // namespace RVK_ROOM

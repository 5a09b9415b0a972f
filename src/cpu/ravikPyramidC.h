// The levels of pyramids, for the functions of either room that compute them.
#pragma once

#include <ravik/pyramid.h>

namespace rvk {

// Whether `numLevels` levels above a base of this size have pixels; and whether halving leaves no rest.
bool hasLevels(uint32_t width, uint32_t height, uint32_t numLevels);
bool hasEvenLevels(uint32_t width, uint32_t height, uint32_t numLevels);

// What a pyramid without strides demands of its callers. Ends the process when it is not so.
void requireEvenLevels(const void* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
                       const rvkPyramidLevel* pyramid);

// Make the base level 0 and give all levels their sizes. False when one cannot be computed, for want of memory of its
// own or because its rows are longer than its stride; levels with strides stay as they are then, others up to the first
// without memory have got their sizes.
bool setLevels(const void* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels, rvkPyramidLevel* pyramid);
bool setLevels(const void* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t baseStride, uint32_t numLevels,
               uint32_t elementSize, rvkPyramidLevel_v2* pyramid);
// The same of the derivatives of levels.
bool setDerivatives(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid, rvkPyramidLevel* dyPyramid,
                    uint32_t numLevels, uint32_t elementSize);

} // namespace rvk

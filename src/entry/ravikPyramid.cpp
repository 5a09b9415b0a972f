// Pyramids: the public functions. Those that allocate and free are not dispatched.
#include "cpu/ravikPyramidC.h"
#include "dispatch.h"

#include <ravik/frame.h>

using namespace rvk;

namespace {

constexpr uint32_t kAlignment = 16; // of levels

bool isAlignment(uint32_t bytes)
{
    constexpr uint32_t mostOfMemory = 128; // that rvkMemAlloc gives
    return bytes >= kAlignment && bytes <= mostOfMemory && (bytes & (bytes - 1)) == 0;
}

// The bytes from row to row of a level whose rows are multiples of `unit`.
uint64_t strideIn(uint32_t width, uint32_t elementSize, uint32_t unit)
{
    return (rowSize(width, elementSize) + unit - 1) / unit * unit;
}

bool canAllocate(uint32_t baseWidth, uint32_t baseHeight, uint32_t elementSize, uint32_t numLevels, uint32_t firstLevel,
                 uint32_t unit)
{
    if (firstLevel > 1 || elementSize == 0 || !hasLevels(baseWidth, baseHeight, numLevels))
        return false;
    const uint64_t stride = strideIn(baseWidth, elementSize, unit); // levels are no larger than the base
    return stride <= UINT32_MAX && baseHeight <= UINT32_MAX / stride;
}

template <class Level>
void release(Level* pyramid, uint32_t numLevels, uint32_t firstLevel)
{
    for (uint32_t k = firstLevel; pyramid && k < numLevels; ++k) {
        rvkMemFree(pyramid[k].ptr);
        pyramid[k].ptr = nullptr;
    }
}

void setStride(rvkPyramidLevel&, uint64_t) {}
void setStride(rvkPyramidLevel_v2& level, uint64_t stride)
{
    level.stride = static_cast<uint32_t>(stride);
}

// Rows are multiples of `unit` bytes; 1 packs them.
template <class Level>
rvkStatus allocate(Level* pyramid, uint32_t baseWidth, uint32_t baseHeight, uint32_t elementSize, uint32_t numLevels,
                   uint32_t firstLevel, uint32_t unit)
{
    RVK_CHECK_STATUS(pyramid && canAllocate(baseWidth, baseHeight, elementSize, numLevels, firstLevel, unit));
    const uint32_t alignment = unit > kAlignment ? unit : kAlignment;
    bool isComplete = true;
    for (uint32_t k = 0; k < numLevels; ++k) {
        Level& level = pyramid[k] = {};
        level.width = baseWidth >> k;
        level.height = baseHeight >> k;
        const uint64_t stride = strideIn(level.width, elementSize, unit);
        setStride(level, stride);
        if (k >= firstLevel && isComplete)
            level.ptr = rvkMemAlloc(static_cast<uint32_t>(stride * level.height), alignment);
        isComplete &= k < firstLevel || level.ptr;
    }
    if (isComplete)
        return RAVIK_SUCCESS;
    release(pyramid, numLevels, firstLevel);
    return RAVIK_ENORES;
}

// Packed pyramids; `halves` are the sizes that they have levels of.
template <Slot slot, class T>
int32_t create(bool halves, const T* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
               rvkPyramidLevel* pyramid)
{
    const RVK_IMPL target = chooseTarget(slot);
    if (!(base && baseWidth && baseHeight && numLevels && pyramid && halves && rowFits(baseWidth, sizeof(T))))
        return -1;
    return implementation<slot>(target)(base, baseWidth, baseHeight, numLevels, pyramid);
}

template <Slot slot, class T, class... Parameters>
rvkStatus createStrided(bool halves, const T* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t baseStride,
                        uint32_t numLevels, rvkPyramidLevel_v2* pyramid, Parameters... parameters)
{
    baseStride = packedIfZero(baseStride, baseWidth, sizeof(T));
    const RVK_IMPL target = chooseTarget(slot);
    RVK_CHECK_STATUS(base && pyramid && halves && baseStride >= rowSize(baseWidth, sizeof(T)));
    return implementation<slot>(target)(base, baseWidth, baseHeight, baseStride, numLevels, pyramid, parameters...);
}

template <Slot slot>
int32_t derive(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid, rvkPyramidLevel* dyPyramid,
               uint32_t numLevels)
{
    const RVK_IMPL target = chooseTarget(slot);
    if (!(pyramid && dxPyramid && dyPyramid && numLevels))
        return -1;
    return implementation<slot>(target)(pyramid, dxPyramid, dyPyramid, numLevels);
}

} // namespace

// ---- memory --------------------------------------------------------------------------------------

rvkStatus rvkPyramidAllocate(rvkPyramidLevel* pyramid, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels)
{
    return allocate(pyramid, baseWidth, baseHeight, 1, numLevels, 1, 1);
}

rvkStatus rvkPyramidAllocate_v2(rvkPyramidLevel* pyramid, uint32_t baseWidth, uint32_t baseHeight, uint32_t elementSize,
                                uint32_t numLevels, uint32_t firstLevel)
{
    return allocate(pyramid, baseWidth, baseHeight, elementSize, numLevels, firstLevel, 1);
}

rvkStatus rvkPyramidAllocate_v3(rvkPyramidLevel_v2* pyramid, uint32_t baseWidth, uint32_t baseHeight,
                                uint32_t elementSize, uint32_t numLevels, uint32_t firstLevel, uint32_t alignment)
{
    RVK_CHECK_STATUS(isAlignment(alignment));
    return allocate(pyramid, baseWidth, baseHeight, elementSize, numLevels, firstLevel, alignment);
}

void rvkPyramidDelete(rvkPyramidLevel* pyramid, uint32_t numLevels, uint32_t firstLevel)
{
    release(pyramid, numLevels, firstLevel);
}

void rvkPyramidDelete_v2(rvkPyramidLevel_v2* pyramid, uint32_t numLevels, uint32_t firstLevel)
{
    release(pyramid, numLevels, firstLevel);
}

// ---- levels --------------------------------------------------------------------------------------

int32_t rvkPyramidCreateu8(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
                           rvkPyramidLevel* pyramid)
{
    // Sizes that leave a rest are the implementation's to answer.
    return create<Slot::rvkPyramidCreateu8>(true, base, baseWidth, baseHeight, numLevels, pyramid);
}

rvkStatus rvkPyramidCreateu8_v2(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t baseStride,
                                uint32_t numLevels, rvkPyramidLevel_v2* pyramid)
{
    return createStrided<Slot::rvkPyramidCreateu8_v2>(hasEvenLevels(baseWidth, baseHeight, numLevels), base, baseWidth,
                                                      baseHeight, baseStride, numLevels, pyramid);
}

rvkStatus rvkPyramidCreateu8_v3(const uint8_t* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t baseStride,
                                uint32_t numLevels, rvkPyramidLevel_v2* pyramid, uint32_t kernelSize)
{
    return createStrided<Slot::rvkPyramidCreateu8_v3>(
        hasLevels(baseWidth, baseHeight, numLevels) && (kernelSize == 3 || kernelSize == 5), base, baseWidth,
        baseHeight, baseStride, numLevels, pyramid, kernelSize);
}

int32_t rvkPyramidCreatef32(const float32_t* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
                            rvkPyramidLevel* pyramid)
{
    return create<Slot::rvkPyramidCreatef32>(hasEvenLevels(baseWidth, baseHeight, numLevels), base, baseWidth,
                                             baseHeight, numLevels, pyramid);
}

rvkStatus rvkPyramidCreatef32_v2(const float32_t* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t baseStride,
                                 uint32_t numLevels, rvkPyramidLevel_v2* pyramid)
{
    return createStrided<Slot::rvkPyramidCreatef32_v2>(hasEvenLevels(baseWidth, baseHeight, numLevels), base, baseWidth,
                                                       baseHeight, baseStride, numLevels, pyramid);
}

// ---- derivatives ---------------------------------------------------------------------------------

int32_t rvkPyramidSobelGradientCreatei8(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid,
                                        rvkPyramidLevel* dyPyramid, uint32_t numLevels)
{
    return derive<Slot::rvkPyramidSobelGradientCreatei8>(pyramid, dxPyramid, dyPyramid, numLevels);
}

int32_t rvkPyramidSobelGradientCreatef32(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid,
                                         rvkPyramidLevel* dyPyramid, uint32_t numLevels)
{
    return derive<Slot::rvkPyramidSobelGradientCreatef32>(pyramid, dxPyramid, dyPyramid, numLevels);
}

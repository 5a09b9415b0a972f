// C references of the pyramids. The pixels of their levels are those of the scalers and derivatives.
#include "cpu/ravikPyramidC.h"
#include "dispatch.h"

namespace rvk {
namespace {

// Where the log says that arguments are wrong.
constexpr char kUnit[] = "src/cpu/ravikPyramidC";
constexpr int kArgumentLine = 105, kSizeLine = 106;

constexpr uint32_t kMostLevels = 32; // of a size that 32 bits hold

uint32_t halved(uint32_t size, uint32_t times)
{
    return times < kMostLevels ? size >> times : 0;
}

bool isEven(uint32_t size, uint32_t halvings)
{
    return halved(size, halvings) << halvings == size;
}

// Whether none of the pointers is null or the same as another.
template <class PointerAt>
bool areThereAndApart(uint32_t count, PointerAt pointerAt)
{
    for (uint32_t i = 0; i < count; ++i)
        for (uint32_t j = 0; j <= i; ++j)
            if (!pointerAt(i) || (i != j && pointerAt(i) == pointerAt(j)))
                return false;
    return true;
}

} // namespace

bool hasLevels(uint32_t width, uint32_t height, uint32_t numLevels)
{
    return numLevels && halved(width, numLevels - 1) && halved(height, numLevels - 1);
}

bool hasEvenLevels(uint32_t width, uint32_t height, uint32_t numLevels)
{
    return hasLevels(width, height, numLevels) && isEven(width, numLevels - 1) && isEven(height, numLevels - 1);
}

void requireEvenLevels(const void* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels,
                       const rvkPyramidLevel* pyramid)
{
    if (!(base && numLevels && baseHeight && baseWidth && pyramid))
        failInternalAssertion(kUnit, kArgumentLine, "base && numLevels && baseHeight && baseWidth && pyramid");
    if (!hasEvenLevels(baseWidth, baseHeight, numLevels))
        failInternalAssertion(kUnit, kSizeLine,
                              "( (baseWidth & ((1 << (numLevels - 1)) - 1)) == 0 ) & "
                              "( (baseHeight & ((1 << (numLevels - 1)) - 1)) == 0 )");
}

bool setLevels(const void* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t numLevels, rvkPyramidLevel* pyramid)
{
    pyramid[0] = {const_cast<void*>(base), baseWidth, baseHeight};
    for (uint32_t k = 1; k < numLevels; ++k) {
        pyramid[k].width = pyramid[k - 1].width / 2;
        pyramid[k].height = pyramid[k - 1].height / 2;
        if (!pyramid[k].ptr)
            return false;
    }
    return areThereAndApart(numLevels, [=](uint32_t k) { return pyramid[k].ptr; });
}

bool setLevels(const void* base, uint32_t baseWidth, uint32_t baseHeight, uint32_t baseStride, uint32_t numLevels,
               uint32_t elementSize, rvkPyramidLevel_v2* pyramid)
{
    const auto pointerAt = [=](uint32_t k) { return k ? pyramid[k].ptr : base; };
    for (uint32_t k = 1; k < numLevels; ++k)
        if (pyramid[k].stride && pyramid[k].stride < rowSize(baseWidth >> k, elementSize))
            return false;
    if (!areThereAndApart(numLevels, pointerAt))
        return false;
    pyramid[0] = {const_cast<void*>(base), baseWidth, baseHeight, baseStride};
    for (uint32_t k = 1; k < numLevels; ++k) {
        pyramid[k].width = baseWidth >> k;
        pyramid[k].height = baseHeight >> k;
    }
    return true;
}

bool setDerivatives(const rvkPyramidLevel* pyramid, rvkPyramidLevel* dxPyramid, rvkPyramidLevel* dyPyramid,
                    uint32_t numLevels, uint32_t elementSize)
{
    if (numLevels > kMostLevels)
        return false;
    for (uint32_t k = 0; k < numLevels; ++k) {
        const rvkPyramidLevel& level = pyramid[k];
        dxPyramid[k].width = dyPyramid[k].width = level.width;
        dxPyramid[k].height = dyPyramid[k].height = level.height;
        if (!level.ptr || !level.width || !level.height || !rowFits(level.width, elementSize))
            return false;
    }
    return areThereAndApart(3 * numLevels, [=](uint32_t i) {
        return (i < numLevels ? pyramid : i < 2 * numLevels ? dxPyramid : dyPyramid)[i % numLevels].ptr;
    });
}

} // namespace rvk

#include "forms/ravikPyramidForms.h"

// HOG: the public functions, and the internal operations. Those that make and release handles are not dispatched by
// themselves, but their bodies are.
#include "cpu/ravikHogC.h"
#include "dispatch.h"

using namespace rvk;

rvkStatus rvkHOGInit(uint32_t method, uint32_t cellSize, uint32_t blockSize, uint32_t blockStep, uint32_t binCount,
                     rvkHOG** hog)
{
    RVK_CHECK_STATUS(cellSize >= 2 && cellSize <= kMostHogCellSize && hog);
    if (method == RAVIK_HOG_FHOG)
        RVK_CHECK_STATUS(blockSize == 2 && blockStep == 1 && binCount == kFhogBins);
    else
        RVK_CHECK_STATUS(method == RAVIK_HOG_DALAL && blockSize >= 1 && blockSize <= kMostHogBlockSize &&
                         blockStep >= 1 && blockStep <= kMostHogBlockSize && binCount >= 2 && binCount <= kMostHogBins);
    return irvkHOGInit(method, cellSize, blockSize, blockStep, binCount, hog);
}

void rvkHOGDeInit(rvkHOG* hog)
{
    irvkHOGDeInit(hog);
}

rvkStatus rvkExtractHOGu16(const rvkHOG* hog, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                           uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkExtractHOGu16);
    RVK_CHECK_STATUS(hog && src && dst);
    srcStride = packedIfZero(srcStride, srcWidth);
    const HogGrid grid(*hog, srcWidth, srcHeight);
    const uint64_t rowBytes = uint64_t{grid.blocksAcross} * grid.blockValues * sizeof(uint16_t);
    RVK_CHECK_STATUS(grid.blocksAcross && grid.blocksDown && srcStride >= srcWidth && rowBytes <= UINT32_MAX);
    dstStride = dstStride ? dstStride : static_cast<uint32_t>(rowBytes);
    RVK_CHECK_STATUS(dstStride >= rowBytes);
    return implementation<Slot::rvkExtractHOGu16>(target)(hog, src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

// ---- internal operations -------------------------------------------------------------------------

rvkStatus rvk::irvkExtractHOGu16(const rvkHOG* hog, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                 uint32_t srcStride, uint16_t* dst, uint32_t dstStride)
{
    return internalImplementation<InternalSlot::irvkExtractHOGu16>()(hog, src, srcWidth, srcHeight, srcStride, dst,
                                                                     dstStride);
}

rvkStatus rvk::irvkHOGInit(uint32_t method, uint32_t cellSize, uint32_t blockSize, uint32_t blockStep,
                           uint32_t binCount, rvkHOG** hog)
{
    return internalImplementation<InternalSlot::irvkHOGInit>()(method, cellSize, blockSize, blockStep, binCount, hog);
}

void rvk::irvkHOGDeInit(rvkHOG* hog)
{
    internalImplementation<InternalSlot::irvkHOGDeInit>()(hog);
}

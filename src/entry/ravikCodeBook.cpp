// Background code books: the public functions. Those that make, set up and release models are not dispatched.
#include "cpu/ravikCodeBookC.h"
#include "dispatch.h"

#include <ravik/frame.h>

#include <algorithm>
#include <memory>
#include <new>

using namespace rvk;

namespace {

constexpr uint32_t kPixelSize = 3;

bool isFor(const rvkBGCodeBookModel* model, uint32_t width, uint32_t height)
{
    return model && width == model->width && height == model->height;
}

bool isPicture(const uint8_t* src, uint32_t width, uint32_t stride)
{
    return src && stride >= rowSize(width, kPixelSize);
}

} // namespace

rvkStatus rvkCreateBGCodeBookModel(uint32_t srcWidth, uint32_t srcHeight, rvkBGCodeBookModel** model)
{
    RVK_CHECK_STATUS(srcWidth && srcHeight && rowFits(srcWidth, kPixelSize) && model);
    constexpr uint32_t alignment = alignof(CodeBookBlock);
    constexpr uint64_t headSize = (sizeof(rvkBGCodeBookModel) + alignment - 1) / alignment * alignment;
    const uint32_t blocksAcross = (srcWidth - 1) / kCodeBookBlock + 1;
    const uint64_t mostBlocks = (UINT32_MAX - headSize) / sizeof(CodeBookBlock);
    if (uint64_t{blocksAcross} * srcHeight > mostBlocks)
        return RAVIK_ENORES;
    const size_t blocks = size_t{blocksAcross} * srcHeight;
    auto* const memory =
        static_cast<uint8_t*>(rvkMemAlloc(static_cast<uint32_t>(headSize + blocks * sizeof(CodeBookBlock)), alignment));
    if (!memory)
        return RAVIK_ENORES;
    auto* const first = reinterpret_cast<CodeBookBlock*>(memory + headSize);
    std::uninitialized_value_construct_n(first, blocks);
    *model = new (memory)
        rvkBGCodeBookModel{srcWidth, srcHeight, blocksAcross, 0, {10, 10, 10}, {3, 3, 3}, {10, 10, 10}, 16, first};
    return RAVIK_SUCCESS;
}

rvkStatus rvkConfigBGCodeBookModel(rvkBGCodeBookModel* model, const uint8_t* learnBounds, const uint8_t* modMin,
                                   const uint8_t* modMax, uint32_t maxCodewords)
{
    RVK_CHECK_STATUS(model && learnBounds && modMin && modMax && maxCodewords >= 1 && maxCodewords <= 255);
    std::copy_n(learnBounds, kCodeBookChannels, model->learnBounds);
    std::copy_n(modMin, kCodeBookChannels, model->modMin);
    std::copy_n(modMax, kCodeBookChannels, model->modMax);
    model->maxCodewords = maxCodewords;
    return RAVIK_SUCCESS;
}

void rvkReleaseBGCodeBookModel(rvkBGCodeBookModel** model)
{
    if (!model || !*model)
        return;
    const size_t blocks = size_t{(*model)->blocksAcross} * (*model)->height;
    for (size_t i = 0; i < blocks; ++i) {
        CodeBookBlock& block = (*model)->blocks[i];
        std::fill_n(block.counts, kCodeBookBlock, uint8_t{0});
        releaseUnusedLayers(block);
    }
    rvkMemFree(*model);
    *model = nullptr;
}

rvkStatus rvkBGCodeBookUpdateu8(rvkBGCodeBookModel* model, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                uint32_t srcStride, const uint8_t* mask, uint32_t maskStride)
{
    srcStride = packedIfZero(srcStride, srcWidth, kPixelSize);
    maskStride = packedIfZero(maskStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBGCodeBookUpdateu8);
    RVK_CHECK_STATUS(isFor(model, srcWidth, srcHeight) && isPicture(src, srcWidth, srcStride) &&
                     (!mask || maskStride >= srcWidth));
    return implementation<Slot::rvkBGCodeBookUpdateu8>(target)(model, src, srcWidth, srcHeight, srcStride, mask,
                                                               maskStride);
}

rvkStatus rvkBGCodeBookDiffu8(const rvkBGCodeBookModel* model, const uint8_t* src, uint32_t srcWidth,
                              uint32_t srcHeight, uint32_t srcStride, uint8_t* fgMask, uint32_t fgMaskStride,
                              uint32_t* fgCount)
{
    srcStride = packedIfZero(srcStride, srcWidth, kPixelSize);
    fgMaskStride = packedIfZero(fgMaskStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBGCodeBookDiffu8);
    RVK_CHECK_STATUS(isFor(model, srcWidth, srcHeight) && isPicture(src, srcWidth, srcStride) && fgMask &&
                     fgMaskStride >= srcWidth);
    return implementation<Slot::rvkBGCodeBookDiffu8>(target)(model, src, srcWidth, srcHeight, srcStride, fgMask,
                                                             fgMaskStride, fgCount);
}

rvkStatus rvkBGCodeBookClearStaleu8(rvkBGCodeBookModel* model, uint32_t staleThreshold, const uint8_t* mask,
                                    uint32_t srcWidth, uint32_t srcHeight, uint32_t maskStride)
{
    maskStride = packedIfZero(maskStride, srcWidth);
    const RVK_IMPL target = chooseTarget(Slot::rvkBGCodeBookClearStaleu8);
    RVK_CHECK_STATUS(isFor(model, srcWidth, srcHeight) && (!mask || maskStride >= srcWidth));
    return implementation<Slot::rvkBGCodeBookClearStaleu8>(target)(model, staleThreshold, mask, srcWidth, srcHeight,
                                                                   maskStride);
}

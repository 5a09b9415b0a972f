// C references of background code books.
#include "cpu/ravikCodeBookC.h"

#include "functions.h"

#include <ravik/frame.h>

#include <algorithm>
#include <new>
#include <utility>

namespace rvk {

// ---- single pixels -------------------------------------------------------------------------------------------------

namespace {

// The layer of codeword n, which exists.
CodeBookLayer& layerAt(const CodeBookBlock& block, size_t n)
{
    CodeBookLayer* layer = block.first;
    for (; n > 0; --n)
        layer = layer->next;
    return *layer;
}

// The layer of a codeword behind the last one, or null.
CodeBookLayer* layerForNext(CodeBookBlock& block, size_t count)
{
    CodeBookLayer*& layer = count ? layerAt(block, count - 1).next : block.first;
    if (!layer)
        if (void* const memory = rvkMemAlloc(sizeof(CodeBookLayer), alignof(CodeBookLayer)))
            layer = new (memory) CodeBookLayer{};
    return layer;
}

CodeBookLayer* layerOfStalest(const CodeBookBlock& block, size_t i)
{
    CodeBookLayer* stalest = block.first;
    CodeBookLayer* layer = block.first;
    for (size_t n = 0; n < block.counts[i]; ++n, layer = layer->next)
        if (layer->stale[i] > stalest->stale[i])
            stalest = layer;
    return stalest;
}

} // namespace

rvkStatus addCodeword(const rvkBGCodeBookModel& model, CodeBookBlock& block, size_t i, const uint8_t* pixel)
{
    const bool isFull = block.counts[i] >= model.maxCodewords;
    CodeBookLayer* const layer = isFull ? layerOfStalest(block, i) : layerForNext(block, block.counts[i]);
    if (!layer)
        return RAVIK_ENORES;
    for (size_t c = 0; c < kCodeBookChannels; ++c) {
        layer->learnLow[c][i] = static_cast<uint8_t>(std::max(pixel[c] - model.learnBounds[c], 0));
        layer->learnHigh[c][i] = static_cast<uint8_t>(std::min(pixel[c] + model.learnBounds[c], 255));
        layer->min[c][i] = layer->max[c][i] = pixel[c];
    }
    layer->lastUpdate[i] = model.time;
    layer->stale[i] = 0;
    block.counts[i] = static_cast<uint8_t>(block.counts[i] + !isFull);
    return RAVIK_SUCCESS;
}

void removeStale(const rvkBGCodeBookModel& model, CodeBookBlock& block, size_t i, uint32_t threshold)
{
    CodeBookLayer* to = block.first;
    uint8_t kept = 0;
    CodeBookLayer* from = block.first;
    for (size_t n = 0; n < block.counts[i]; ++n, from = from->next) {
        if (from->stale[i] > threshold)
            continue;
        for (size_t c = 0; c < kCodeBookChannels; ++c) {
            to->learnLow[c][i] = from->learnLow[c][i];
            to->learnHigh[c][i] = from->learnHigh[c][i];
            to->min[c][i] = from->min[c][i];
            to->max[c][i] = from->max[c][i];
        }
        to->lastUpdate[i] = model.time;
        to->stale[i] = 0;
        to = to->next;
        ++kept;
    }
    block.counts[i] = kept;
}

void releaseUnusedLayers(CodeBookBlock& block)
{
    const uint8_t longest = *std::max_element(block.counts, block.counts + kCodeBookBlock);
    CodeBookLayer** link = &block.first;
    for (size_t n = 0; n < longest; ++n)
        link = &(*link)->next;
    for (CodeBookLayer* layer = std::exchange(*link, nullptr); layer;)
        rvkMemFree(std::exchange(layer, layer->next));
}

namespace {

// action(block, number of the pixel in it, x, y) for each pixel that the mask has.
template <class Action>
void forEachPixel(const rvkBGCodeBookModel& model, const uint8_t* mask, uint32_t maskStride, Action action)
{
    for (size_t y = 0; y < model.height; ++y)
        for (size_t x = 0; x < model.width; ++x)
            if (!mask || mask[y * maskStride + x])
                action(model.blocks[y * model.blocksAcross + x / kCodeBookBlock], x % kCodeBookBlock, x, y);
}

template <class Condition>
bool allChannels(Condition condition)
{
    return condition(0) && condition(1) && condition(2);
}

// Whether there was a codeword to learn from the pixel.
bool learn(const rvkBGCodeBookModel& model, CodeBookBlock& block, size_t i, const uint8_t* pixel)
{
    bool hasMatched = false;
    CodeBookLayer* layer = block.first;
    for (size_t n = 0; n < block.counts[i]; ++n, layer = layer->next) {
        if (!hasMatched && allChannels([&](size_t c) {
                return layer->learnLow[c][i] <= pixel[c] && pixel[c] <= layer->learnHigh[c][i];
            })) {
            hasMatched = true;
            layer->lastUpdate[i] = model.time;
            for (size_t c = 0; c < kCodeBookChannels; ++c) {
                layer->min[c][i] = std::min(layer->min[c][i], pixel[c]);
                layer->max[c][i] = std::max(layer->max[c][i], pixel[c]);
                layer->learnHigh[c][i] += layer->learnHigh[c][i] < std::min(pixel[c] + model.learnBounds[c], 255);
                layer->learnLow[c][i] -= layer->learnLow[c][i] > std::max(pixel[c] - model.learnBounds[c], 0);
            }
        }
        layer->stale[i] = std::max(layer->stale[i], model.time - layer->lastUpdate[i]);
    }
    return hasMatched;
}

bool isBackground(const rvkBGCodeBookModel& model, const CodeBookBlock& block, size_t i, const uint8_t* pixel)
{
    const CodeBookLayer* layer = block.first;
    for (size_t n = 0; n < block.counts[i]; ++n, layer = layer->next)
        if (allChannels([&](size_t c) {
                return layer->min[c][i] - model.modMin[c] <= pixel[c] && pixel[c] <= layer->max[c][i] + model.modMax[c];
            }))
            return true;
    return false;
}

} // namespace

// ---- pictures ------------------------------------------------------------------------------------------------------

rvkStatus rvkBGCodeBookUpdateu8C(rvkBGCodeBookModel* model, const uint8_t* src, uint32_t, uint32_t, uint32_t srcStride,
                                 const uint8_t* mask, uint32_t maskStride)
{
    rvkStatus status = RAVIK_SUCCESS;
    ++model->time;
    forEachPixel(*model, mask, maskStride, [&](CodeBookBlock& block, size_t i, size_t x, size_t y) {
        const uint8_t* const pixel = src + y * srcStride + kCodeBookChannels * x;
        if (!learn(*model, block, i, pixel) && addCodeword(*model, block, i, pixel) != RAVIK_SUCCESS)
            status = RAVIK_ENORES;
    });
    return status;
}

rvkStatus rvkBGCodeBookDiffu8C(const rvkBGCodeBookModel* model, const uint8_t* src, uint32_t, uint32_t,
                               uint32_t srcStride, uint8_t* fgMask, uint32_t fgMaskStride, uint32_t* fgCount)
{
    uint32_t count = 0;
    forEachPixel(*model, nullptr, 0, [&](const CodeBookBlock& block, size_t i, size_t x, size_t y) {
        const bool isForeground = !isBackground(*model, block, i, src + y * srcStride + kCodeBookChannels * x);
        fgMask[y * fgMaskStride + x] = isForeground ? 255 : 0;
        count += isForeground;
    });
    if (fgCount)
        *fgCount = count;
    return RAVIK_SUCCESS;
}

rvkStatus rvkBGCodeBookClearStaleu8C(rvkBGCodeBookModel* model, uint32_t staleThreshold, const uint8_t* mask, uint32_t,
                                     uint32_t, uint32_t maskStride)
{
    forEachPixel(*model, mask, maskStride, [&](CodeBookBlock& block, size_t i, size_t, size_t) {
        removeStale(*model, block, i, staleThreshold);
    });
    std::for_each_n(model->blocks, size_t{model->blocksAcross} * model->height, releaseUnusedLayers);
    return RAVIK_SUCCESS;
}

} // namespace rvk

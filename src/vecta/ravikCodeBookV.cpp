// Vector implementation of background code books: codeword after codeword for all pixels of a block. Pixels whose lists
// change are taken one by one.
#include "cpu/ravikCodeBookC.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;
using Pixel = Vecs<uint8_t, kCodeBookChannels>;

static_assert(kCodeBookBlock % kBytes == 0);

// ---- blocks --------------------------------------------------------------------------------------------------------

RVK_INLINE Bytes isNotZero(Bytes v)
{
    return ~toVec(equal(v, zero<uint8_t>()));
}

// Pixels of a block, and all bits set for those that take part. Behind the end of the row, none does.
class BlockPixels
{
public:
    // Null for no picture, or for no mask.
    RVK_INLINE BlockPixels(const uint8_t* src, const uint8_t* mask, size_t count) : m_src(src)
    {
        if (src && count < kCodeBookBlock) {
            __builtin_memset(m_copy, 0, sizeof m_copy);
            __builtin_memcpy(m_copy, src, kCodeBookChannels * count);
            m_src = m_copy;
        }
        if (count < kCodeBookBlock || !mask)
            __builtin_memset(m_active, 0, sizeof m_active);
        if (mask)
            __builtin_memcpy(m_active, mask, count);
        else
            __builtin_memset(m_active, 255, count);
    }
    BlockPixels(const BlockPixels&) = delete;
    BlockPixels& operator=(const BlockPixels&) = delete;

    RVK_INLINE Pixel at(size_t i) const { return load3(m_src + kCodeBookChannels * i); }
    RVK_INLINE Bytes active(size_t i) const { return isNotZero(load(m_active + i)); }
    RVK_INLINE bool isActive(size_t i) const { return m_active[i] != 0; }
    RVK_INLINE const uint8_t* single(size_t i) const { return m_src + kCodeBookChannels * i; }

private:
    const uint8_t* m_src;
    uint8_t m_copy[kCodeBookChannels * kCodeBookBlock], m_active[kCodeBookBlock];
};

// action(block, x, y, pixels of it) for each block of the picture.
template <class Action>
RVK_INLINE void forEachBlock(const rvkBGCodeBookModel& model, Action action)
{
    for (size_t y = 0; y < model.height; ++y) {
        CodeBookBlock* const row = model.blocks + y * model.blocksAcross;
        for (size_t i = 0; i < model.blocksAcross; ++i) {
            const size_t x = i * kCodeBookBlock;
            if (i + 1 < model.blocksAcross && row[i + 1].first)
                prefetch(row[i + 1].first->min[0], 2 * sizeof(CodeBookLayer::min)); // and max
            action(row[i], x, y, least(model.width - x, kCodeBookBlock));
        }
    }
}

// All bits set where a pixel has codeword n.
RVK_INLINE Bytes hasCodeword(Bytes counts, size_t n)
{
    return isNotZero(subSat(counts, splat(static_cast<uint8_t>(n))));
}

// Not 0 where the channel is outside of low..high.
RVK_INLINE Bytes outside(Bytes low, Bytes high, Bytes channel)
{
    return subSat(low, channel) | subSat(channel, high);
}

template <class OutsideOf>
RVK_INLINE Bytes isInside(OutsideOf outsideOf)
{
    return toVec(equal(outsideOf(0) | outsideOf(1) | outsideOf(2), zero<uint8_t>()));
}

RVK_INLINE bool anySet(Bytes v)
{
    return any(~equal(v, zero<uint8_t>()));
}

// ---- learning ------------------------------------------------------------------------------------------------------

RVK_INLINE Bytes selectBytes(Bytes mask, Bytes a, Bytes b)
{
    return (mask & a) | (b & ~mask);
}

// Takes the pixels that hit in.
RVK_INLINE void grow(CodeBookLayer& layer, size_t i, const Pixel& pixel, Bytes hit, const uint8_t* bounds)
{
    const Bytes one = splat<uint8_t>(1) & hit;
    unrolled<kCodeBookChannels>([&](auto c) RVK_INLINE_LAMBDA {
        const Bytes p = pixel[c], bound = splat(bounds[c]);
        const auto update = [=](uint8_t* values, Bytes v) RVK_INLINE_LAMBDA { store(values + i, v); };
        const Bytes least = load(layer.min[c] + i), most = load(layer.max[c] + i);
        update(layer.min[c], selectBytes(hit, min(least, p), least));
        update(layer.max[c], selectBytes(hit, max(most, p), most));
        const Bytes low = load(layer.learnLow[c] + i), high = load(layer.learnHigh[c] + i);
        update(layer.learnHigh[c], high + (isNotZero(subSat(addSat(p, bound), high)) & one));
        update(layer.learnLow[c], low - (isNotZero(subSat(low, subSat(p, bound))) & one));
    });
}

// lastUpdate where the pixels hit, and stale of all `active` ones.
RVK_INLINE void keepTime(CodeBookLayer& layer, size_t first, Bytes hit, Bytes active, uint32_t time)
{
    uint8_t hits[kBytes], actives[kBytes];
    store(hits, hit);
    store(actives, active);
    const Vec<uint32_t> now = splat(time), none = zero<uint32_t>();
    for (size_t i = 0; i < kBytes; i += Vec<uint32_t>::lanes) {
        uint32_t *const lasts = layer.lastUpdate + first + i, *const stales = layer.stale + first + i;
        const Vec<uint32_t> last = select(equal(loadWiden<uint32_t>(hits + i), none), load(lasts), now);
        const Vec<uint32_t> stale = load(stales);
        store(lasts, last);
        store(stales, select(equal(loadWiden<uint32_t>(actives + i), none), stale, max(stale, now - last)));
    }
}

// Sets the bytes of the pixels that no codeword matches.
RVK_INLINE bool learnBlock(const rvkBGCodeBookModel& model, CodeBookBlock& block, const BlockPixels& pixels,
                           uint8_t* unmatched)
{
    bool hasUnmatched = false;
    for (size_t i = 0; i < kCodeBookBlock; i += kBytes) {
        const Bytes counts = load(block.counts + i), active = pixels.active(i);
        const Pixel pixel = pixels.at(i);
        Bytes waiting = active;
        CodeBookLayer* layer = block.first;
        for (size_t n = 0;; ++n, layer = layer->next) {
            const Bytes has = hasCodeword(counts, n) & active;
            if (!anySet(has))
                break;
            const Bytes hit = waiting & has & isInside([&](size_t c) RVK_INLINE_LAMBDA {
                                  return outside(load(layer->learnLow[c] + i), load(layer->learnHigh[c] + i), pixel[c]);
                              });
            if (anySet(hit))
                grow(*layer, i, pixel, hit, model.learnBounds);
            keepTime(*layer, i, hit, active, model.time);
            waiting = waiting & ~hit;
        }
        store(unmatched + i, waiting);
        hasUnmatched |= anySet(waiting);
    }
    return hasUnmatched;
}

// ---- comparing -----------------------------------------------------------------------------------------------------

// All bits set where no codeword has the pixel.
RVK_INLINE Bytes foreground(const rvkBGCodeBookModel& model, const CodeBookBlock& block, size_t i, const Pixel& pixel,
                            Bytes active)
{
    const Bytes counts = load(block.counts + i);
    Bytes waiting = active;
    const CodeBookLayer* layer = block.first;
    for (size_t n = 0;; ++n, layer = layer->next) {
        const Bytes has = hasCodeword(counts, n) & waiting;
        if (!anySet(has))
            return waiting;
        waiting = waiting & ~(has & isInside([&](size_t c) RVK_INLINE_LAMBDA {
                                  return outside(subSat(load(layer->min[c] + i), splat(model.modMin[c])),
                                                 addSat(load(layer->max[c] + i), splat(model.modMax[c])), pixel[c]);
                              }));
    }
}

// ---- clearing ------------------------------------------------------------------------------------------------------

RVK_INLINE bool hasStale(const CodeBookBlock& block, const BlockPixels& pixels, uint32_t threshold)
{
    const CodeBookLayer* layer = block.first;
    for (size_t n = 0; layer; ++n, layer = layer->next) {
        Vec<uint32_t> most = zero<uint32_t>();
        for (size_t i = 0; i < kCodeBookBlock; i += kBytes) {
            uint8_t has[kBytes];
            store(has, hasCodeword(load(block.counts + i), n) & pixels.active(i));
            for (size_t k = 0; k < kBytes; k += Vec<uint32_t>::lanes) {
                const Mask<uint32_t> hasNot = equal(loadWiden<uint32_t>(has + k), zero<uint32_t>());
                most = max(most, select(hasNot, zero<uint32_t>(), load(layer->stale + i + k)));
            }
        }
        if (reduceMax(most) > threshold)
            return true;
    }
    return false;
}

// As if all codewords had been updated now.
RVK_INLINE void beginAnew(const CodeBookBlock& block, const BlockPixels& pixels, uint32_t time)
{
    for (CodeBookLayer* layer = block.first; layer; layer = layer->next)
        for (size_t i = 0; i < kCodeBookBlock; i += kBytes) {
            uint8_t actives[kBytes];
            store(actives, pixels.active(i));
            for (size_t k = 0; k < kBytes; k += Vec<uint32_t>::lanes) {
                uint32_t *const lasts = layer->lastUpdate + i + k, *const stales = layer->stale + i + k;
                const Mask<uint32_t> isLeftOut = equal(loadWiden<uint32_t>(actives + k), zero<uint32_t>());
                store(lasts, select(isLeftOut, load(lasts), splat(time)));
                store(stales, select(isLeftOut, load(stales), zero<uint32_t>()));
            }
        }
}

} // namespace

// ---- pictures ------------------------------------------------------------------------------------------------------

rvkStatus rvkBGCodeBookUpdateu8V(rvkBGCodeBookModel* model, const uint8_t* src, uint32_t, uint32_t, uint32_t srcStride,
                                 const uint8_t* mask, uint32_t maskStride)
{
    rvkStatus status = RAVIK_SUCCESS;
    ++model->time;
    forEachBlock(*model, [&](CodeBookBlock& block, size_t x, size_t y, size_t count) RVK_INLINE_LAMBDA {
        const BlockPixels pixels(src + y * srcStride + kCodeBookChannels * x,
                                 mask ? mask + y * maskStride + x : nullptr, count);
        uint8_t unmatched[kCodeBookBlock];
        if (!learnBlock(*model, block, pixels, unmatched))
            return;
        for (size_t i = 0; i < count; ++i)
            if (unmatched[i] && addCodeword(*model, block, i, pixels.single(i)) != RAVIK_SUCCESS)
                status = RAVIK_ENORES;
    });
    return status;
}

rvkStatus rvkBGCodeBookDiffu8V(const rvkBGCodeBookModel* model, const uint8_t* src, uint32_t, uint32_t,
                               uint32_t srcStride, uint8_t* fgMask, uint32_t fgMaskStride, uint32_t* fgCount)
{
    Total<uint8_t> total;
    forEachBlock(*model, [&](const CodeBookBlock& block, size_t x, size_t y, size_t count) RVK_INLINE_LAMBDA {
        const BlockPixels pixels(src + y * srcStride + kCodeBookChannels * x, nullptr, count);
        uint8_t* const dst = fgMask + y * fgMaskStride + x;
        for (size_t i = 0; i < count; i += kBytes) {
            const Bytes isForeground = foreground(*model, block, i, pixels.at(i), pixels.active(i));
            total.add(isForeground & splat<uint8_t>(1));
            if (i + kBytes <= count)
                store(dst + i, isForeground);
            else
                storePartial(dst + i, isForeground, count - i);
        }
    });
    if (fgCount)
        *fgCount = total.value();
    return RAVIK_SUCCESS;
}

rvkStatus rvkBGCodeBookClearStaleu8V(rvkBGCodeBookModel* model, uint32_t staleThreshold, const uint8_t* mask, uint32_t,
                                     uint32_t, uint32_t maskStride)
{
    forEachBlock(*model, [&](CodeBookBlock& block, size_t x, size_t y, size_t count) RVK_INLINE_LAMBDA {
        const BlockPixels pixels(nullptr, mask ? mask + y * maskStride + x : nullptr, count);
        if (!hasStale(block, pixels, staleThreshold))
            return beginAnew(block, pixels, model->time);
        for (size_t i = 0; i < count; ++i)
            if (pixels.isActive(i))
                removeStale(*model, block, i, staleThreshold);
        releaseUnusedLayers(block);
    });
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

// Vector implementations of edge pixels and line segments.
#include "cpu/ravikLineSegmentC.h"
#include "vecta/simd/bitRows.h"
#include "vecta/simd/thinning.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {

rvkStatus rvkImageDetectEdgePixelsu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint32_t threshold, uint32_t* xy, uint32_t nPixelsMax, uint32_t* nPixels,
                                      int16_t* gradients)
{
    constexpr uint32_t aboveAll = 4 * 255 * 2; // magnitudes
    const uint32_t limit = threshold < aboveAll ? threshold : aboveAll;
    const size_t words = wordsOfRow(srcWidth);
    const Scratch<Word> bits(words);
    if (!bits)
        return RAVIK_ENORES;
    __builtin_memset(bits.get(), 0, words * sizeof(Word));
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(bits.get());

    uint32_t count = 0;
    const auto takeRidges = [&](size_t y, const GradientRow& gradient) RVK_INLINE_LAMBDA {
        for (size_t i = 0; i < words; ++i) {
            const Word word = bits[i];
            bits[i] = 0;
            forEachBit(word, static_cast<uint32_t>(i * kWordBits), [&](uint32_t x) RVK_INLINE_LAMBDA {
                if (count == nPixelsMax)
                    return;
                const size_t at = 2 * size_t{count++};
                xy[at] = x;
                xy[at + 1] = static_cast<uint32_t>(y);
                if (gradients) {
                    gradients[at] = gradient.dx[static_cast<ptrdiff_t>(x)];
                    gradients[at + 1] = gradient.dy[static_cast<ptrdiff_t>(x)];
                }
            });
        }
    };
    const bool isDone = thin<1, int16_t>(
        srcWidth, srcHeight, Plane<const uint8_t>{src, srcStride}, {limit, limit}, Plane<int16_t>{}, Plane<int16_t>{},
        [=](size_t) RVK_INLINE_LAMBDA {
            return RidgeBits{bytes, bytes};
        }, // the two thresholds are one
        takeRidges);
    if (!isDone)
        return RAVIK_ENORES;
    *nPixels = count;
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikLineSegmentForms.h"

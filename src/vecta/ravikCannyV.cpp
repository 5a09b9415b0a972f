// Vector implementation of the Canny edge detector.
//
// Thinning leaves two bits of a pixel. Then the edges grow through the candidates, a machine word of pixels at a time,
// and the bits become bytes.
#include "vecta/ravikCannyV.h"

#include "scratch.h"
#include "vecta/simd/bitRows.h"
#include "vecta/simd/thinning.h"
#include "vecta/vecta.h"

#include <ravik/canny.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- hysteresis ----------------------------------------------------------------------------------------------------

// A bit for each pixel, in rows of words with at least one word of zeros around them on all sides.
struct EdgeMap
{
    size_t words; // in all
    size_t pitch; // of them from row to row
    Word *candidates, *edges;
    Word* followed;    // edges whose neighbours have been looked at
    uint32_t* waiting; // words that have others; none comes twice
    size_t waitingCount = 0;

    static RVK_INLINE size_t pitchOf(size_t width) { return wordsOfRow(width) + 1; }
    static RVK_INLINE uint64_t wordsOf(size_t width, size_t height)
    {
        return uint64_t{pitchOf(width)} * (uint64_t{height} + 2) + 1;
    }

    // On memory for three maps and a list of so many words.
    RVK_INLINE EdgeMap(size_t width, size_t height, Word* maps, uint32_t* list)
        : words(static_cast<size_t>(wordsOf(width, height))), pitch(pitchOf(width)), candidates(maps),
          edges(maps + words), followed(edges + words), waiting(list)
    {
        __builtin_memset(maps, 0, 3 * words * sizeof(Word));
    }

    RVK_INLINE uint8_t* row(Word* bits, size_t y) const
    {
        return reinterpret_cast<uint8_t*>(bits + (y + 1) * pitch + 1);
    }

    // The pixels and all candidates that are connected with them within the word.
    static RVK_INLINE Word connected(Word pixels, Word among)
    {
        for (Word grown;; pixels = grown) {
            grown = (pixels | pixels << 1 | pixels >> 1) & among;
            if (grown == pixels)
                return pixels;
        }
    }

    // Makes edges of the candidates among the pixels of a word.
    RVK_INLINE void reach(size_t word, Word pixels)
    {
        const Word fresh = pixels & candidates[word] & ~edges[word];
        if (!fresh)
            return;
        if (edges[word] == followed[word])
            waiting[waitingCount++] = static_cast<uint32_t>(word);
        edges[word] |= connected(fresh, candidates[word]);
    }

    RVK_INLINE void reachNeighbours(size_t word, Word pixels)
    {
        const Word beside = pixels | pixels << 1 | pixels >> 1;
        const Word leaveLeft = pixels << (kWordBits - 1), leaveRight = pixels >> (kWordBits - 1);
        for (size_t row = word - pitch;; row += pitch) {
            reach(row - 1, leaveLeft);
            reach(row, beside);
            reach(row + 1, leaveRight);
            if (row == word + pitch)
                break;
        }
    }

    RVK_INLINE void track()
    {
        for (size_t word = 0; word < words; ++word)
            if (edges[word]) {
                edges[word] = connected(edges[word], candidates[word]);
                waiting[waitingCount++] = static_cast<uint32_t>(word);
            }
        while (waitingCount > 0) {
            const size_t word = waiting[--waitingCount];
            const Word fresh = edges[word] & ~followed[word];
            followed[word] = edges[word];
            reachNeighbours(word, fresh);
        }
    }
};

// 255 for each bit that is set, else 0. Reads 16 bytes where the row of bits has fewer.
RVK_INLINE void expandBits(size_t width, const uint8_t* bits, uint8_t* dst)
{
    for (size_t x = 0; x < width; x += kBytes) {
        const Vec<uint8_t> result = toVec(loadBits(bits + x / 8));
        if (x + kBytes <= width)
            store(dst + x, result);
        else
            storePartial(dst + x, result, width - x);
    }
}

// ---- the detector --------------------------------------------------------------------------------------------------

// Where edges go: to bytes or, where there are none, to bits.
struct EdgeOutput
{
    Plane<uint8_t> bytes;
    Word* bits;

    RVK_INLINE void take(const EdgeMap& map, size_t width, size_t height) const
    {
        const size_t words = wordsOfRow(width);
        for (size_t y = 0; y < height; ++y) {
            const uint8_t* const row = map.row(map.edges, y);
            if (bytes.data)
                expandBits(width, row, bytes.row(y));
            else
                __builtin_memcpy(bits + y * words, row, words * sizeof(Word));
        }
    }
};

// M holds magnitudes: 16 bits their sums, 32 bits those of squares. dx and dy may have no data: then nobody wants them.
template <int radius, class M>
RVK_NOINLINE rvkStatus detect(size_t width, size_t height, Plane<const uint8_t> src, CannyThresholds thresholds,
                              EdgeOutput dst, Plane<int16_t> dx, Plane<int16_t> dy)
{
    const uint64_t words = EdgeMap::wordsOf(width, height);
    const Scratch<Word> bits(3, words);
    const Scratch<uint32_t> waiting(words);
    if (!bits || !waiting)
        return RAVIK_ENORES;
    EdgeMap map(width, height, bits.get(), waiting.get());
    const auto takeGradient = [&](size_t y, const int16_t* rowDx, const int16_t* rowDy) RVK_INLINE_LAMBDA {
        if (dx.data) {
            __builtin_memcpy(dx.row(y), rowDx, width * sizeof(int16_t));
            __builtin_memcpy(dy.row(y), rowDy, width * sizeof(int16_t));
        }
    };
    const auto bitsOf = [&](size_t y) RVK_INLINE_LAMBDA {
        return RidgeBits{map.row(map.candidates, y), map.row(map.edges, y)};
    };
    const auto takeRidges = [](size_t, const int16_t*, const int16_t*) RVK_INLINE_LAMBDA {};
    if (!thin<radius, M>(width, height, src, thresholds, takeGradient, bitsOf, takeRidges))
        return RAVIK_ENORES;
    map.track();
    dst.take(map, width, height);
    return RAVIK_SUCCESS;
}

} // namespace

rvkStatus rvkFilterCanny3x3u8_v3V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  uint8_t* dst, uint32_t dstStride, int32_t lowThreshold, int32_t highThreshold)
{
    return detect<1, int16_t>(srcWidth, srcHeight, {src, srcStride},
                              cannyThresholds(lowThreshold, highThreshold, 3, false), {{dst, dstStride}, nullptr}, {},
                              {});
}

rvkStatus findCannyEdgesV(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          int32_t lowThreshold, int32_t highThreshold, size_t* edges)
{
    return detect<1, int16_t>(srcWidth, srcHeight, {src, srcStride},
                              cannyThresholds(lowThreshold, highThreshold, 3, false), {{}, edges}, {}, {});
}

rvkStatus rvkFilterCannyu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t apertureSize, int32_t lowThreshold, int32_t highThreshold, uint32_t normType,
                            uint8_t* dst, uint32_t dstStride, int16_t* dx, int16_t* dy, uint32_t dxyStride)
{
    const bool squared = normType == RAVIK_CANNY_NORM_L2;
    const auto run = [&](auto function) {
        return function(srcWidth, srcHeight, Plane<const uint8_t>{src, srcStride},
                        cannyThresholds(lowThreshold, highThreshold, apertureSize, squared),
                        EdgeOutput{{dst, dstStride}, nullptr}, Plane<int16_t>{dx, dxyStride},
                        Plane<int16_t>{dy, dxyStride});
    };
    switch (apertureSize) {
    case 3:
        return squared ? run(detect<1, int32_t>) : run(detect<1, int16_t>);
    case 5:
        return squared ? run(detect<2, int32_t>) : run(detect<2, int16_t>);
    case 7:
        return squared ? run(detect<3, int32_t>) : run(detect<3, int16_t>);
    default:
        return RAVIK_EBADPARAM;
    }
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikCannyForms.h"

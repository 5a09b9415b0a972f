// Vector implementation of the Canny edge detector.
//
// Thinning leaves two bits of a pixel, candidate and edge. Row by row, while these are at hand, the edges grow down
// through the candidates, then up and down in turns. In the end the bits become bytes.
#include "vecta/ravikCannyV.h"

#include "scratch.h"
#include "vecta/simd/bitRows.h"
#include "vecta/simd/thinning.h"
#include "vecta/vecta.h"

#include <ravik/canny.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- hysteresis ----------------------------------------------------------------------------------------------------

using Bits = Vec<uint64_t>;

RVK_INLINE bool anyBit(Bits bits)
{
    return !all(equal(bitCast<uint32_t>(bits), zero<uint32_t>()));
}

// The pixels and all candidates in a row that are connected with them within a word.
RVK_INLINE Bits connected(Bits pixels, Bits among)
{
    // A pixel that is added to a run of candidates turns all bits from there to the run's end but other pixels' ones.
    pixels = pixels | (((among + pixels) ^ among) & among);
    unrolled<6>([&](auto i) RVK_INLINE_LAMBDA { // 1, 2, 4... pixels down, where all of these are candidates
        constexpr unsigned distance = 1u << i;
        pixels = pixels | (shiftRight(pixels, distance) & among);
        among = among & shiftRight(among, distance);
    });
    return pixels;
}

// A bit for each pixel that is a candidate or an edge, and for each that is an edge. Hardly a branch depends on the
// picture: no processor foresees those.
struct EdgeMap
{
    size_t pitch;         // words of a row of bits, whole vectors; the last one is zero
    uint64_t* candidates; // of the first row; after those of a row come its edges. A row above is all zeros
    uint32_t* sweeps;     // for each row: the last one that added edges

    static RVK_INLINE size_t pitchOf(size_t width) { return roundedUp((width + 63) / 64 + 1, Bits::lanes); }
    // Two words behind the last row are read.
    static RVK_INLINE uint64_t wordsOf(size_t width, size_t height)
    {
        return 2 * uint64_t{pitchOf(width)} * (uint64_t{height} + 1) + 2;
    }

    RVK_INLINE EdgeMap(size_t width, uint64_t* words, uint32_t* sweepOfRow)
        : pitch(pitchOf(width)), candidates(words + 2 * pitch), sweeps(sweepOfRow)
    {
        clear(words);
    }

    RVK_INLINE uint64_t* candidatesOf(size_t y) const { return candidates + 2 * pitch * y; }
    RVK_INLINE uint64_t* edgesOf(size_t y) const { return candidatesOf(y) + pitch; }
    RVK_INLINE void clear(uint64_t* row) const { __builtin_memset(row, 0, 2 * pitch * sizeof(uint64_t)); }

    // Where the bits of a row are to be put.
    RVK_INLINE RidgeBits begin(size_t y) const
    {
        clear(candidatesOf(y));
        return {reinterpret_cast<uint8_t*>(candidatesOf(y)), reinterpret_cast<uint8_t*>(edgesOf(y))};
    }

    // The first and the last pixel of words, where the pixel beside it in the next word is set.
    static RVK_INLINE Bits besideWords(const uint64_t* words)
    {
        return shiftRight(load(words - 1), 63) | shiftLeft(load(words + 1), 63);
    }
    // The pixels of a row that touch those of another one.
    static RVK_INLINE Bits touched(const uint64_t* words)
    {
        const Bits here = load(words);
        return here | shiftLeft(here, 1) | shiftRight(here, 1) | besideWords(words);
    }

    // Whether a row has candidates next to edges of another row.
    RVK_INLINE bool touches(size_t y, const uint64_t* neighbours) const
    {
        const uint64_t *const among = candidatesOf(y), *const edges = edgesOf(y);
        Bits reached = zero<uint64_t>();
        for (size_t i = 0; i < pitch; i += Bits::lanes)
            reached = reached | (touched(neighbours + i) & load(among + i) & ~load(edges + i));
        return anyBit(reached);
    }

    // Makes edges of the candidates of a row that are connected with its edges and with those of another row.
    RVK_INLINE void grow(size_t y, const uint64_t* neighbours) const
    {
        const uint64_t* const among = candidatesOf(y);
        uint64_t* const edges = edgesOf(y);
        Bits open = zero<uint64_t>(); // words that end as an edge where the next begins with a candidate, or vice versa
        Bits lastHere = open, lastGrown = open; // not loaded: that would wait for the stores
        for (size_t i = 0; i < pitch; i += Bits::lanes) {
            const Bits here = load(among + i), old = load(edges + i);
            const Bits grown = connected(old | (touched(neighbours + i) & here), here);
            store(edges + i, grown);
            const auto endOfWordBefore = [](Bits last, Bits words) RVK_INLINE_LAMBDA {
                return shiftRight(extract<Bits::lanes - 1>(last, words), 63);
            };
            open = open | (endOfWordBefore(lastHere, here) & here & (endOfWordBefore(lastGrown, grown) ^ grown));
            lastHere = here;
            lastGrown = grown;
        }
        while (anyBit(open))
            open = growAcrossWords(y);
    }

    // The pixels that this adds.
    RVK_INLINE Bits growAcrossWords(size_t y) const
    {
        const uint64_t* const among = candidatesOf(y);
        uint64_t* const edges = edgesOf(y);
        Bits added = zero<uint64_t>();
        for (size_t i = 0; i < pitch; i += Bits::lanes) {
            const Bits here = load(among + i), old = load(edges + i);
            const Bits joined = besideWords(edges + i) & here & ~old;
            store(edges + i, connected(old | joined, here));
            added = added | joined;
        }
        return added;
    }

    // Connects a row, once its bits are there, with the row above.
    RVK_INLINE void connect(size_t y) const { grow(y, edgesOf(y) - 2 * pitch); }

    // Lets the edges grow from row to row, up and down in turns, until nothing is added. A row looks at the one before
    // only when that one has got edges since it last did.
    RVK_INLINE void track(size_t height) const
    {
        __builtin_memset(sweeps, 0, height * sizeof(uint32_t));
        bool hasGrown = true;
        for (uint32_t sweep = 1; hasGrown; ++sweep) {
            hasGrown = false;
            const bool isUpward = sweep % 2 == 1;
            for (size_t i = 1; i < height; ++i) {
                const size_t y = isUpward ? height - 1 - i : i, last = isUpward ? y + 1 : y - 1;
                if (sweeps[last] + 1 < sweep || !touches(y, edgesOf(last)))
                    continue;
                grow(y, edgesOf(last));
                sweeps[y] = sweep;
                hasGrown = true;
            }
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
            const uint64_t* const row = map.edgesOf(y);
            if (bytes.data)
                expandBits(width, reinterpret_cast<const uint8_t*>(row), bytes.row(y));
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
    const Scratch<uint64_t> words(EdgeMap::wordsOf(width, height));
    const Scratch<uint32_t> sweeps(height);
    if (!words || !sweeps)
        return RAVIK_ENORES;
    const EdgeMap map(width, words.get(), sweeps.get());
    const bool isDone = thin<radius, M>(
        width, height, src, thresholds, dx, dy, [&](size_t y) RVK_INLINE_LAMBDA { return map.begin(y); },
        [&](size_t y, const GradientRow&) RVK_INLINE_LAMBDA { map.connect(y); });
    if (!isDone)
        return RAVIK_ENORES;
    map.track(height);
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

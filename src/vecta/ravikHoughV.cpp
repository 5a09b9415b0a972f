// Vector implementations of the Hough transforms.
//
// Both list the pixels that vote once. Vectors compute which bins or cells they vote for; the votes themselves are
// scalar.
#include "cpu/ravikHoughC.h"
#include "scratch.h"
#include "vecta/simd/bitRows.h"
#include "vecta/vecta.h"

#include <ravik/canny.h>

namespace rvk {

decltype(::rvkHoughCircleu8) rvkHoughCircleu8C;

} // namespace rvk

namespace rvk::vecta::RVK_ISA {

decltype(::rvkFilterCanny3x3u8_v3) rvkFilterCanny3x3u8_v3V;
decltype(irvkHoughAccumulateAreaC) irvkHoughAccumulateAreaV;

namespace {

constexpr uint32_t kLongestSide = 16384; // so that coordinates fit 16 bits, and their squares and products 32

// Bits of the non-zero pixels, in rows of `pitch` words. Returns how many there are.
RVK_INLINE uint32_t findPixels(size_t width, size_t height, Plane<const uint8_t> src, Word* bits, size_t pitch)
{
    uint32_t count = 0;
    for (size_t y = 0; y < height; ++y)
        count += findNonZero(width, src.row(y), bits + y * pitch);
    return count;
}

// The pixels of bits of a row, x + 65536 * y; bit 0 is pixel `first`. Returns where the next ones go.
RVK_INLINE uint32_t* listBits(Word word, uint32_t first, uint32_t* pixels)
{
    forEachBit(word, first, [&](uint32_t pixel) RVK_INLINE_LAMBDA { *pixels++ = pixel; });
    return pixels;
}

// ---- lines ---------------------------------------------------------------------------------------------------------

// The bins that pixels of a picture can vote for.
struct BinRange
{
    int32_t first, last;
};

RVK_INLINE BinRange binsOf(HoughAngle angle, size_t width, size_t height)
{
    const int32_t across = static_cast<int32_t>(width - 1) * angle.c, down = static_cast<int32_t>(height - 1) * angle.s;
    const int32_t least = across < 0 ? across : 0, most = (across < 0 ? 0 : across) + down; // s is not negative
    return {(least + 16384) >> 15, (most + 16384) >> 15};
}

// The votes of the angles whose peaks are looked for and of their neighbours. The first and the last angle are neighbours
// of each other, mirrored, and stay.
struct RollingBins
{
    uint32_t* memory; // five rows
    size_t pitch;
    uint32_t nAngles;
    int32_t reach;
    BinRange ranges[5]; // where a row is not 0

    // Of the row of an angle: the bins of both signs, and a vector of zeros at each end.
    static RVK_INLINE size_t pitchOf(int32_t reach)
    {
        return roundedUp(2 * static_cast<size_t>(reach) + 1, kBytes) + 2 * Vec<uint32_t>::lanes;
    }

    RVK_INLINE size_t rowOf(uint32_t k) const { return k + 1 == nAngles ? 4 : k == 0 ? 3 : k % 3; }
    RVK_INLINE BinRange& rangeOf(uint32_t k) { return ranges[rowOf(k)]; }
    RVK_INLINE uint32_t* zeroOf(uint32_t k) const
    {
        return memory + rowOf(k) * pitch + Vec<uint32_t>::lanes + static_cast<size_t>(reach);
    }
};

// Pixels that vote alone, and pairs of neighbours that vote together: as the bins of the second pixels follow from those
// of the first ones, a pair is counted once.
constexpr size_t kPairings = 4;
struct PairStep // from the first pixel of a pair to the second
{
    int32_t dx, dy;
};
constexpr PairStep kPairSteps[kPairings] = {{0, 1}, {1, 1}, {-1, 1}, {1, 0}};

struct LinePixels
{
    uint32_t* singles;
    uint32_t* pairs[kPairings]; // their first pixels
    uint32_t nSingles, nPairs[kPairings];

    // Words for so many pixels: not all may find a partner, or all by the same step.
    static RVK_INLINE uint64_t memoryFor(uint32_t nPixels) { return nPixels + kPairings * (uint64_t{nPixels} / 2) + 1; }
};

// Takes the pixels of a word that have a partner in the row below, dx columns farther, and their partners.
template <int dx>
RVK_INLINE Word takePairs(Word& own, Word* below)
{
    if constexpr (dx == 0) {
        const Word pairs = own & below[0];
        own &= ~pairs;
        below[0] &= ~pairs;
        return pairs;
    } else if constexpr (dx > 0) {
        const Word pairs = own & (below[0] >> 1 | below[1] << (kWordBits - 1));
        own &= ~pairs;
        below[0] &= ~(pairs << 1);
        below[1] &= ~(pairs >> (kWordBits - 1));
        return pairs;
    } else {
        const Word pairs = own & (below[0] << 1 | below[-1] >> (kWordBits - 1));
        own &= ~pairs;
        below[0] &= ~(pairs >> 1);
        below[-1] &= ~(pairs << (kWordBits - 1));
        return pairs;
    }
}

// The same for partners to the right in the same word: every second pixel of a run.
RVK_INLINE Word takePairsBeside(Word& own)
{
    Word pairs = 0;
    for (Word hasPartner = own & own >> 1; hasPartner;) {
        const Word first = hasPartner & ~(hasPartner << 1);
        pairs |= first;
        hasPartner &= ~(first | first << 1);
    }
    own &= ~(pairs | pairs << 1);
    return pairs;
}

// Words of a row of bits: one more than the picture needs, which is 0, as is the row below the last one.
RVK_INLINE size_t pairingPitchOf(size_t width)
{
    return wordsOfRow(width) + 1;
}

// Takes all bits.
RVK_INLINE LinePixels listLinePixels(size_t width, size_t height, Word* bits, uint32_t nPixels, bool inPairs,
                                     uint32_t* memory)
{
    LinePixels list;
    list.singles = memory;
    uint32_t *singles = memory, *pairs[kPairings];
    for (size_t d = 0; d < kPairings; ++d)
        pairs[d] = list.pairs[d] = memory + nPixels + d * (nPixels / 2);
    const size_t pitch = pairingPitchOf(width);
    for (size_t y = 0; y < height; ++y)
        for (size_t i = 0; i + 1 < pitch; ++i) {
            Word own = bits[y * pitch + i];
            if (!own)
                continue;
            Word* const below = bits + (y + 1) * pitch + i;
            const auto first = static_cast<uint32_t>(i * kWordBits | y << 16);
            if (inPairs) {
                pairs[0] = listBits(takePairs<0>(own, below), first, pairs[0]);
                pairs[1] = listBits(takePairs<1>(own, below), first, pairs[1]);
                pairs[2] = listBits(takePairs<-1>(own, below), first, pairs[2]);
                pairs[3] = listBits(takePairsBeside(own), first, pairs[3]);
            }
            singles = listBits(own, first, singles);
        }
    list.nSingles = static_cast<uint32_t>(singles - list.singles);
    for (size_t d = 0; d < kPairings; ++d)
        list.nPairs[d] = static_cast<uint32_t>(pairs[d] - list.pairs[d]);
    return list;
}

// Counts pixels by their bins binsOf(pixels). Bins are computed for many pixels before the first of them is counted: a
// load of a part of what a vector has just stored takes long.
template <class T, class BinsOf>
RVK_INLINE void countPixels(const uint32_t* pixels, uint32_t nPixels, T* counts, BinsOf binsOf)
{
    constexpr uint32_t lanes = Vec<int32_t>::lanes, most = 256;
    int32_t bins[most];
    for (uint32_t start = 0; start < nPixels; start += most) {
        const auto count = static_cast<uint32_t>(least(most, nPixels - start));
        for (uint32_t i = 0; i < count; i += lanes) {
            const uint32_t* const p = pixels + start + i;
            store(bins + i, binsOf(count - i < lanes ? loadPartial(p, count - i) : load(p)));
        }
        uint32_t i = 0;
        for (; i + lanes <= count; i += lanes)
            unrolled<lanes>([&](auto j) RVK_INLINE_LAMBDA { ++counts[bins[i + j]]; });
        for (; i < count; ++i)
            ++counts[bins[i]];
    }
}

// The places of pixels across a line, in units of 2^-15 bins, half a bin added.
RVK_INLINE Vec<int32_t> placesOf(Vec<uint32_t> pixels, const HalfWeights& angle)
{
    return addWeightedHalves(splat<int32_t>(16384), pixels, angle);
}

// How many pairs have their pixels in a bin and in the one `wholeBins` after it, or in the one after that: whether these
// are one more depends on the fraction of the first pixel's place. The sum of both bins tells them apart.
struct PairCounts
{
    int16_t* memory; // 0 between the angles
    size_t pitch;
    int32_t reach;
    int32_t wholeBins[kPairings];

    // Of pairs of a step that are counted before they become votes.
    static constexpr uint32_t kMost = INT16_MAX;

    // Two numbers for each bin of both signs, and what is loaded with them.
    static RVK_INLINE size_t pitchOf(int32_t reach)
    {
        return roundedUp(2 * (2 * static_cast<size_t>(reach) + 1), kBytes) + 2 * kBytes;
    }

    // The pairs whose first pixel is in bin 0, and, next to them, those whose second one is a bin farther.
    RVK_INLINE int16_t* zeroOf(size_t d) const { return memory + d * pitch + kBytes + 2 * static_cast<size_t>(reach); }

    RVK_INLINE void count(size_t d, const uint32_t* pairs, uint32_t nPairs, HoughAngle angle)
    {
        const int32_t step = kPairSteps[d].dx * angle.c + kPairSteps[d].dy * angle.s;
        wholeBins[d] = step >> 15;
        const HalfWeights weights(angle.c, angle.s);
        countPixels(pairs, nPairs, zeroOf(d) - wholeBins[d], [=](Vec<uint32_t> pixels) RVK_INLINE_LAMBDA {
            const Vec<int32_t> place = placesOf(pixels, weights);
            return shiftRight(place, 15) + shiftRight(place + splat(step), 15);
        });
    }

    // Turns all pairs into votes.
    RVK_INLINE void castVotes(BinRange range, uint32_t* zero) const
    {
        const int16_t *first[kPairings], *second[kPairings];
        for (size_t d = 0; d < kPairings; ++d) {
            first[d] = zeroOf(d);
            second[d] = first[d] - 2 * wholeBins[d] - 1;
        }
        for (int32_t r = range.first; r <= range.last; r += static_cast<int32_t>(Vec<uint32_t>::lanes)) {
            Vec<int32_t> votes = bitCast<int32_t>(load(zero + r));
            unrolled<kPairings>([&](auto d) RVK_INLINE_LAMBDA {
                votes = addNeighboursTo(addNeighboursTo(votes, load(first[d] + 2 * r)), load(second[d] + 2 * r));
            });
            store(zero + r, bitCast<uint32_t>(votes));
        }
        const size_t counts = 2 * static_cast<size_t>(range.last - range.first + 1);
        for (size_t d = 0; d < kPairings; ++d)
            __builtin_memset(zeroOf(d) + 2 * range.first, 0, counts * sizeof(int16_t));
    }
};

// All votes of an angle.
RVK_NOINLINE void accumulate(RollingBins& bins, const LinePixels& pixels, PairCounts& pairs, uint32_t k,
                             HoughAngle angle)
{
    uint32_t* const zero = bins.zeroOf(k);
    __builtin_memset(zero - bins.reach, 0, (2 * static_cast<size_t>(bins.reach) + 1) * sizeof(uint32_t));
    irvkHoughAccumulateAreaV(pixels.singles, pixels.nSingles, angle.c, angle.s, zero);
    for (uint32_t start = 0;; start += PairCounts::kMost) {
        bool isDone = true;
        for (size_t d = 0; d < kPairings; ++d)
            isDone = isDone && start >= pixels.nPairs[d];
        if (isDone)
            return;
        for (size_t d = 0; d < kPairings; ++d) {
            const uint32_t left = pixels.nPairs[d] > start ? pixels.nPairs[d] - start : 0;
            pairs.count(d, pixels.pairs[d] + start, static_cast<uint32_t>(least(left, PairCounts::kMost)), angle);
        }
        pairs.castVotes(bins.rangeOf(k), zero);
    }
}

// Few bins have enough votes.
RVK_NOINLINE void offerPeaksFrom(const RollingBins& bins, uint32_t k, int32_t first, uint32_t threshold,
                                 StrongestLines& strongest)
{
    const uint32_t* const zero = bins.zeroOf(k);
    for (int32_t r = first; r < first + static_cast<int32_t>(Vec<uint32_t>::lanes); ++r)
        if (zero[r] >= threshold && isHoughPeak(bins, k, r))
            strongest.offer(k, r, zero[r]);
}

RVK_INLINE void offerPeaks(RollingBins& bins, uint32_t k, uint32_t threshold, StrongestLines& strongest)
{
    const BinRange range = bins.rangeOf(k);
    const uint32_t* const zero = bins.zeroOf(k);
    const Vec<uint32_t> tooFew = splat(threshold - 1);
    for (int32_t r = range.first; r <= range.last; r += static_cast<int32_t>(Vec<uint32_t>::lanes))
        if (any(greater(load(zero + r), max(tooFew, load(zero + r - 1)))))
            offerPeaksFrom(bins, k, r, threshold, strongest);
}

} // namespace

void irvkHoughAccumulateAreaV(const uint32_t* pixels, uint32_t nPixels, int32_t c, int32_t s, uint32_t* votes)
{
    const HalfWeights angle(c, s);
    countPixels(pixels, nPixels, votes,
                [=](Vec<uint32_t> pixel) RVK_INLINE_LAMBDA { return shiftRight(placesOf(pixel, angle), 15); });
}

rvkStatus rvkHoughLineu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          uint32_t nAngles, float32_t rhoStep, uint32_t threshold, rvkLine* lines, uint32_t nLinesMax,
                          uint32_t* nLines)
{
    const int32_t reach = houghReach(srcWidth, srcHeight, rhoStep);
    const size_t pitch = RollingBins::pitchOf(reach), pitchOfPairs = PairCounts::pitchOf(reach);
    const size_t pitchOfBits = pairingPitchOf(srcWidth), wordsOfBits = pitchOfBits * (size_t{srcHeight} + 1) + 1;
    const Scratch<Word> bits(wordsOfBits);
    const Scratch<uint32_t> memory(5, pitch);
    const Scratch<int16_t> memoryOfPairs(kPairings, pitchOfPairs);
    // All bins are never there at once, but are not more than the reference can have.
    if (!bits || !memory || !memoryOfPairs || !houghBinsFit(nAngles, reach))
        return RAVIK_ENORES;
    __builtin_memset(bits.get(), 0, wordsOfBits * sizeof(Word));
    const uint32_t nPixels = findPixels(srcWidth, srcHeight, {src, srcStride}, bits.get(), pitchOfBits);
    const Scratch<uint32_t> list(LinePixels::memoryFor(nPixels));
    if (!list)
        return RAVIK_ENORES;
    // Pairs take work for each bin, too.
    const bool inPairs = nPixels > 4 * static_cast<uint32_t>(reach);
    const LinePixels pixels = listLinePixels(srcWidth, srcHeight, bits.get(), nPixels, inPairs, list.get());

    __builtin_memset(memory.get(), 0, 5 * pitch * sizeof(uint32_t));
    __builtin_memset(memoryOfPairs.get(), 0, kPairings * pitchOfPairs * sizeof(int16_t));
    RollingBins bins = {memory.get(), pitch, nAngles, reach, {}};
    PairCounts pairs = {memoryOfPairs.get(), pitchOfPairs, reach, {}};
    StrongestLines strongest(lines, nLinesMax);
    const auto vote = [&](uint32_t k) RVK_INLINE_LAMBDA {
        const HoughAngle angle = houghAngle(k, nAngles, rhoStep);
        bins.rangeOf(k) = binsOf(angle, srcWidth, srcHeight);
        accumulate(bins, pixels, pairs, k, angle);
    };
    vote(nAngles - 1);
    if (nAngles > 1)
        vote(0);
    for (uint32_t k = 0; k < nAngles; ++k) {
        if (nAngles - k > 2)
            vote(k + 1);
        offerPeaks(bins, k, threshold, strongest);
    }
    *nLines = strongest.finish(nAngles, rhoStep);
    return RAVIK_SUCCESS;
}

// ---- circles -------------------------------------------------------------------------------------------------------

namespace {

// The non-zero pixels of a picture, x + 65536 * y, in strips as wide as a machine word has bits: the leftmost first, each
// from the top down.
struct PixelList
{
    uint32_t* pixels;
    uint32_t* starts; // where each row of each strip begins, and where the last one ends
};

RVK_INLINE void listPixels(size_t width, size_t height, const Word* bits, const PixelList& list)
{
    const size_t words = wordsOfRow(width);
    uint32_t *pixels = list.pixels, *starts = list.starts;
    for (size_t strip = 0; strip < words; ++strip)
        for (size_t y = 0; y < height; ++y) {
            *starts++ = static_cast<uint32_t>(pixels - list.pixels);
            const auto first = static_cast<uint32_t>(strip * kWordBits | y << 16);
            pixels = listBits(bits[y * words + strip], first, pixels);
        }
    *starts = static_cast<uint32_t>(pixels - list.pixels);
}

constexpr size_t kLanes = Vec<int32_t>::lanes;

RVK_INLINE size_t cellPitchOf(size_t width)
{
    return roundedUp(width, kLanes) + 2 * kLanes;
}

RVK_INLINE uint64_t cellsOf(size_t width, size_t height)
{
    return uint64_t{cellPitchOf(width)} * (uint64_t{height} + 2) + kLanes;
}

// Numbers for the cells of a picture with a vector of zeros or more at each end of the rows, and behind all rows a vector
// of cells for votes that do not count.
template <class T>
struct Cells
{
    T* data;
    size_t pitch, height;

    RVK_INLINE T* row(size_t y) const { return data + (y + 1) * pitch + kLanes; }
    // Where the votes go that do not count, from the first row on.
    RVK_INLINE size_t aside() const { return (height + 1) * pitch - kLanes; }
};

// The derivatives of a pixel, whose neighbours outside the picture are like the nearest ones inside.
RVK_INLINE HoughDirection directionAt(size_t width, size_t height, Plane<const uint8_t> src, size_t x, size_t y)
{
    const size_t left = x > 0 ? x - 1 : 0, right = least(x + 1, width - 1);
    const uint8_t *above = src.row(y > 0 ? y - 1 : 0), *here = src.row(y), *below = src.row(least(y + 1, height - 1));
    const int32_t dx = above[right] - above[left] + 2 * (here[right] - here[left]) + below[right] - below[left];
    const int32_t dy = below[left] - above[left] + 2 * (below[x] - above[x]) + below[right] - above[right];
    return houghDirection(dx, dy);
}

// Cells that pixels vote for, by their distance from the first one. They are computed for many votes before the first of
// them counts: a load of a part of what a vector has just stored takes long.
template <class T>
struct Ballot
{
    static constexpr size_t kMost = 32 * kLanes;

    const Cells<T>& votes;
    size_t count = 0;
    int32_t offsets[kMost];

    RVK_INLINE explicit Ballot(const Cells<T>& cells) : votes(cells) {}

    RVK_INLINE void add(Vec<int32_t> cells)
    {
        store(offsets + count, cells);
        count += kLanes;
        if (count == kMost)
            tally();
    }

    RVK_NOINLINE void tally()
    {
        T* const first = votes.row(0);
        for (size_t i = 0; i < count; i += kLanes)
            unrolled<kLanes>([&](auto j) RVK_INLINE_LAMBDA { ++first[offsets[i + j]]; });
        count = 0;
    }
};

// The votes of a pixel along a direction. `isWithin`: none of them leaves the picture.
template <bool isWithin, class T>
RVK_INLINE void castVotes(Ballot<T>& ballot, size_t width, int32_t x, int32_t y, int32_t u, int32_t v,
                          const CircleChoice& choice)
{
    using V = Vec<int32_t>;
    constexpr auto lanes = static_cast<int32_t>(kLanes);
    const Cells<T>& votes = ballot.votes;
    const auto minRadius = static_cast<int32_t>(choice.minRadius), maxRadius = static_cast<int32_t>(choice.maxRadius);
    const V aside = splat(static_cast<int32_t>(votes.aside())) + iota<int32_t>();
    const V pitch = splat(static_cast<int32_t>(votes.pitch)), lastRadius = splat(maxRadius);
    const V half = splat<int32_t>(32768);
    const Vec<uint32_t> columns = splat(static_cast<uint32_t>(width));
    const Vec<uint32_t> rows = splat(static_cast<uint32_t>(votes.height));
    V r = splat(minRadius) + iota<int32_t>();
    V across = r * splat(u) + half, down = r * splat(v) + half; // from the pixel, in units of 2^-16
    V previous = splat<int32_t>(-1);
    for (int32_t start = minRadius;;) {
        const V column = splat(x) + shiftRight(across, 16), row = splat(y) + shiftRight(down, 16);
        const V offset = row * pitch + column;
        const Mask<int32_t> isSame = equal(offset, extract<kLanes - 1>(previous, offset));
        V cells = select(isSame | greater(r, lastRadius), aside, offset);
        if constexpr (!isWithin) {
            const Mask<uint32_t> isInside =
                less(bitCast<uint32_t>(column), columns) & less(bitCast<uint32_t>(row), rows);
            cells = bitCast<int32_t>(select(isInside, bitCast<uint32_t>(cells), bitCast<uint32_t>(aside)));
            if (!any(isInside))
                return;
        }
        ballot.add(cells);
        start += lanes;
        if (start > maxRadius)
            return;
        previous = offset;
        r = r + splat(lanes);
        across = across + splat(lanes * u);
        down = down + splat(lanes * v);
    }
}

// Those along the gradient of a pixel and against it.
template <class T>
RVK_INLINE void castVotes(Ballot<T>& ballot, size_t width, uint32_t x, uint32_t y, HoughDirection direction,
                          const CircleChoice& choice)
{
    const auto column = static_cast<int32_t>(x), row = static_cast<int32_t>(y);
    const auto reach = static_cast<int32_t>(choice.maxRadius);
    const auto cast = [&](int32_t u, int32_t v) RVK_INLINE_LAMBDA {
        const int32_t lastColumn = column + ((reach * u + 32768) >> 16), lastRow = row + ((reach * v + 32768) >> 16);
        if (static_cast<uint32_t>(lastColumn) < width && static_cast<uint32_t>(lastRow) < ballot.votes.height)
            castVotes<true>(ballot, width, column, row, u, v, choice);
        else
            castVotes<false>(ballot, width, column, row, u, v, choice);
    };
    cast(direction.u, direction.v);
    cast(-direction.u, -direction.v);
}

RVK_INLINE Vec<int32_t> loadCells(const uint32_t* p)
{
    return bitCast<int32_t>(load(p));
}
RVK_INLINE Vec<int32_t> loadCells(const uint16_t* p)
{
    return bitCast<int32_t>(loadWiden<uint32_t>(p));
}

// Scores of a row, from the votes of three rows; `sums` is memory for a row.
template <class T>
RVK_INLINE void computeScores(const Cells<T>& votes, size_t width, size_t y, int32_t* sums, int32_t* scores)
{
    constexpr size_t lanes = kLanes;
    const T *above = votes.row(y) - votes.pitch, *here = votes.row(y), *below = here + votes.pitch;
    for (size_t x = 0; x < votes.pitch; x += lanes)
        store(sums + x - lanes,
              loadCells(above + x - lanes) + loadCells(here + x - lanes) + loadCells(below + x - lanes));
    for (size_t x = 0; x < width; x += lanes)
        store(scores + x, load(sums + x - 1) + load(sums + x) + load(sums + x + 1));
    __builtin_memset(scores + width, 0, (roundedUp(width, lanes) - width) * sizeof(int32_t));
}

// Centres in raster order, and how many there are; those that have no room are only counted.
struct CentreList
{
    HoughCentre* centres;
    size_t room, count = 0;

    RVK_INLINE void add(size_t x, size_t y, int32_t score)
    {
        if (count < room)
            centres[count] = {static_cast<uint32_t>(x), static_cast<uint32_t>(y), static_cast<uint32_t>(score)};
        ++count;
    }
};

// Adds the centres of row y, whose scores are in the second of three rows.
RVK_INLINE void addCentres(const int32_t* above, const int32_t* here, const int32_t* below, size_t width, size_t y,
                           int32_t centerThreshold, CentreList& list)
{
    constexpr size_t lanes = kLanes;
    const Vec<int32_t> tooLow = splat(centerThreshold - 1);
    for (size_t x = 0; x < width; x += lanes) {
        const Vec<int32_t> own = load(here + x);
        if (!any(greater(own, tooLow)))
            continue;
        const auto most = [](Vec<int32_t> a, Vec<int32_t> b, Vec<int32_t> c, Vec<int32_t> d)
                              RVK_INLINE_LAMBDA { return max(max(a, b), max(c, d)); };
        const Vec<int32_t> before = most(load(above + x - 1), load(above + x), load(above + x + 1), load(here + x - 1));
        const Vec<int32_t> after = most(load(here + x + 1), load(below + x - 1), load(below + x), load(below + x + 1));
        const Mask<int32_t> isCentre = greater(own, max(before, tooLow)) & ~greater(after, own);
        if (!any(isCentre))
            continue;
        int32_t found[lanes];
        store(found, toVec(isCentre));
        for (size_t i = 0; i < lanes; ++i)
            if (found[i])
                list.add(x + i, y, here[x + i]);
    }
}

// Adds all centres; `memory` is for four rows of cells.
template <class T>
RVK_NOINLINE void findCentres(const Cells<T>& votes, size_t width, uint32_t centerThreshold, int32_t* memory,
                              CentreList& list)
{
    if (centerThreshold > INT32_MAX)
        return;
    const auto threshold = static_cast<int32_t>(centerThreshold);
    __builtin_memset(memory, 0, 4 * votes.pitch * sizeof(int32_t));
    const auto scoresOf = [&](size_t y) RVK_INLINE_LAMBDA { return memory + (y + 3) % 3 * votes.pitch + kLanes; };
    int32_t* const sums = memory + 3 * votes.pitch + kLanes;
    computeScores(votes, width, 0, sums, scoresOf(0));
    for (size_t y = 0; y < votes.height; ++y) {
        if (y + 1 < votes.height)
            computeScores(votes, width, y + 1, sums, scoresOf(y + 1));
        else
            __builtin_memset(scoresOf(y + 1), 0, width * sizeof(int32_t));
        addCentres(scoresOf(y + 2), scoresOf(y), scoresOf(y + 1), width, y, threshold, list);
    }
}

// Distances to the nearest integer: d where d^2 - d < squared <= d^2 + d.
RVK_INLINE Vec<int32_t> rounded(Vec<int32_t> squared)
{
    const Vec<int32_t> guess = roundToInt(squareRoot(toFloat(squared))); // at most one off
    const Vec<int32_t> square = guess * guess;
    const Vec<int32_t> isTooLarge = toVec(~greater(squared, square - guess));
    const Vec<int32_t> isTooSmall = toVec(greater(squared, square + guess));
    return guess + isTooLarge - isTooSmall; // masks are -1
}

// Adds the edge pixels at each distance; a vector of numbers behind counts[maxRadius - minRadius] gets those that do not
// count.
RVK_INLINE void countDistances(const PixelList& edges, size_t width, size_t height, const HoughCentre& centre,
                               const CircleChoice& choice, uint32_t* counts)
{
    using V = Vec<int32_t>;
    const uint32_t reach = choice.maxRadius;
    const size_t firstStrip = (centre.x > reach ? centre.x - reach : 0) / kWordBits;
    const size_t lastStrip = least(size_t{centre.x} + reach, width - 1) / kWordBits;
    const size_t firstRow = centre.y > reach ? centre.y - reach : 0;
    const size_t endRow = least(size_t{centre.y} + reach + 1, height);
    const auto minRadius = static_cast<int32_t>(choice.minRadius), maxRadius = static_cast<int32_t>(choice.maxRadius);
    const V tooNear = splat(minRadius * minRadius - minRadius), farthest = splat(maxRadius * maxRadius + maxRadius);
    const V aside = splat(maxRadius - minRadius + 1) + iota<int32_t>();
    constexpr uint32_t most = 16 * kLanes;
    const Vec<int16_t> origin = bitCast<int16_t>(splat(centre.x | centre.y << 16));
    for (size_t strip = firstStrip; strip <= lastStrip; ++strip) {
        const uint32_t end = edges.starts[strip * height + endRow];
        for (uint32_t start = edges.starts[strip * height + firstRow]; start < end; start += most) {
            int32_t places[most];
            const auto count = static_cast<uint32_t>(least(most, end - start));
            for (uint32_t i = 0; i < count; i += kLanes) {
                const Vec<int16_t> offset = bitCast<int16_t>(load(edges.pixels + start + i)) - origin;
                const V squared = dotPairs(offset, offset);
                const Mask<int32_t> isInside = greater(squared, tooNear) & ~greater(squared, farthest) &
                                               less(iota<int32_t>(), splat(static_cast<int32_t>(count - i)));
                store(places + i, select(isInside, rounded(squared) - splat(minRadius), aside));
            }
            for (uint32_t i = 0; i < count; i += kLanes)
                unrolled<kLanes>([&](auto j) RVK_INLINE_LAMBDA { ++counts[places[i + j]]; });
        }
    }
}

RVK_NOINLINE uint32_t chooseFrom(HoughCentre* centres, size_t nCentres, const PixelList& edges, size_t width,
                                 size_t height, const CircleChoice& choice, uint32_t* counts, rvkCircle* circles,
                                 uint32_t nCirclesMax)
{
    return chooseCircles(centres, nCentres, choice, counts, circles, nCirclesMax,
                         [&](const HoughCentre& centre, uint32_t* ofDistances)
                             RVK_INLINE_LAMBDA { countDistances(edges, width, height, centre, choice, ofDistances); });
}

// The circles of edges; T counts the votes for a cell.
template <class T>
RVK_NOINLINE rvkStatus findCircles(size_t width, size_t height, Plane<const uint8_t> src, const PixelList& edges,
                                   uint32_t nEdges, const CircleChoice& choice, rvkCircle* circles,
                                   uint32_t nCirclesMax, uint32_t* nCircles)
{
    constexpr size_t few = 4096;
    const Scratch<T> cells(cellsOf(width, height));
    const Scratch<int32_t> scores(4, cellPitchOf(width));
    const Scratch<uint32_t> counts(uint64_t{choice.maxRadius} - choice.minRadius + 1 + kLanes);
    const Scratch<HoughCentre> fewCentres(few);
    if (!cells || !scores || !counts || !fewCentres)
        return RAVIK_ENORES;

    const Cells<T> votes = {cells.get(), cellPitchOf(width), height};
    __builtin_memset(votes.data, 0, static_cast<size_t>(cellsOf(width, height)) * sizeof(T));
    Ballot<T> ballot(votes);
    for (uint32_t i = 0; i < nEdges; ++i) {
        const uint32_t x = edges.pixels[i] & 0xffff, y = edges.pixels[i] >> 16;
        castVotes(ballot, width, x, y, directionAt(width, height, src, x, y), choice);
    }
    ballot.tally();

    const auto choose = [&](const CentreList& list) {
        *nCircles =
            chooseFrom(list.centres, list.count, edges, width, height, choice, counts.get(), circles, nCirclesMax);
        return RAVIK_SUCCESS;
    };
    CentreList list = {fewCentres.get(), few};
    findCentres(votes, width, choice.centerThreshold, scores.get(), list);
    if (list.count <= few)
        return choose(list);
    const Scratch<HoughCentre> manyCentres(list.count);
    if (!manyCentres)
        return RAVIK_ENORES;
    list = {manyCentres.get(), list.count};
    findCentres(votes, width, choice.centerThreshold, scores.get(), list);
    return choose(list);
}

} // namespace

rvkStatus rvkHoughCircleu8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t edgeThreshold, uint32_t minRadius, uint32_t maxRadius, uint32_t centerThreshold,
                            uint32_t minDistance, rvkCircle* circles, uint32_t nCirclesMax, uint32_t* nCircles)
{
    if (srcWidth > kLongestSide || srcHeight > kLongestSide)
        return rvkHoughCircleu8C(src, srcWidth, srcHeight, srcStride, edgeThreshold, minRadius, maxRadius,
                                 centerThreshold, minDistance, circles, nCirclesMax, nCircles);
    const CircleChoice choice = circleChoice(srcWidth, srcHeight, minRadius, maxRadius, centerThreshold, minDistance);
    const size_t words = wordsOfRow(srcWidth);
    const Scratch<uint8_t> edges(srcHeight, srcWidth);
    const Scratch<Word> bits(srcHeight, words);
    const Scratch<uint32_t> starts(words * srcHeight + 1);
    if (!edges || !bits || !starts)
        return RAVIK_ENORES;
    const rvkStatus status =
        rvkFilterCanny3x3u8_v3V(src, srcWidth, srcHeight, srcStride, edges.get(), srcWidth,
                                static_cast<int32_t>(edgeThreshold / 2), static_cast<int32_t>(edgeThreshold));
    if (status != RAVIK_SUCCESS)
        return status;
    const uint32_t nEdges = findPixels(srcWidth, srcHeight, {edges.get(), srcWidth}, bits.get(), words);
    const Scratch<uint32_t> pixels(uint64_t{nEdges} + kLanes);
    if (!pixels)
        return RAVIK_ENORES;
    const PixelList list = {pixels.get(), starts.get()};
    listPixels(srcWidth, srcHeight, bits.get(), list);
    // No edge pixel votes twice for a cell.
    const auto find = nEdges <= UINT16_MAX ? findCircles<uint16_t> : findCircles<uint32_t>;
    return find(srcWidth, srcHeight, {src, srcStride}, list, nEdges, choice, circles, nCirclesMax, nCircles);
}

} // namespace rvk::vecta::RVK_ISA

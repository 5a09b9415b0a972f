// Vector implementations of the Hough transforms.
//
// Both list the pixels that vote once. Vectors compute which bins or cells they vote for; the votes themselves are
// scalar.
#include "cpu/ravikHoughC.h"
#include "scratch.h"
#include "vecta/ravikCannyV.h"
#include "vecta/simd/bitRows.h"
#include "vecta/simd/doubles.h"
#include "vecta/vecta.h"

namespace rvk {

decltype(::rvkHoughCircleu8) rvkHoughCircleu8C;

} // namespace rvk

namespace rvk::vecta::RVK_ISA {

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

// The votes of the angles whose peaks are looked for and of their neighbours. The first and the last angle are
// neighbours of each other, mirrored, and stay.
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
    // Of the angle whose row this was.
    RVK_INLINE void clear(uint32_t k)
    {
        const BinRange range = rangeOf(k);
        __builtin_memset(zeroOf(k) + range.first, 0,
                         static_cast<size_t>(range.last - range.first + 1) * sizeof(uint32_t));
    }
};

// Pixels that vote alone, and pairs of neighbours that vote together: as the bins of the second pixels follow from
// those of the first ones, a pair is counted once.
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

// How many pairs have their pixels in a bin and in the one `wholeBins` after it, or in the one after that: whether
// these are one more depends on the fraction of the first pixel's place. The sum of both bins tells them apart.
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
        bins.clear(k);
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

// The edge pixels of a picture, x + 65536 * y, in strips: the leftmost first, each from the top down.
struct EdgeList
{
    static constexpr size_t kStripWidth = 32;

    uint32_t* pixels;
    uint32_t* starts; // where each row of each strip begins, and where the last one ends

    static RVK_INLINE size_t stripsOf(size_t width) { return roundedUp(width, kStripWidth) / kStripWidth; }
};

RVK_INLINE void listEdges(size_t width, size_t height, const Word* bits, const EdgeList& list)
{
    constexpr size_t stripsOfWord = kWordBits / EdgeList::kStripWidth;
    const size_t words = wordsOfRow(width);
    uint32_t *pixels = list.pixels, *starts = list.starts;
    for (size_t strip = 0; strip < EdgeList::stripsOf(width); ++strip) {
        const Word* column = bits + strip / stripsOfWord;
        const size_t shift = strip % stripsOfWord * EdgeList::kStripWidth;
        for (size_t y = 0; y < height; ++y, column += words) {
            *starts++ = static_cast<uint32_t>(pixels - list.pixels);
            const auto first = static_cast<uint32_t>(strip * EdgeList::kStripWidth | y << 16);
            pixels = listBits(static_cast<uint32_t>(*column >> shift), first, pixels);
        }
    }
    *starts = static_cast<uint32_t>(pixels - list.pixels);
}

constexpr size_t kLanes = Vec<int32_t>::lanes;
constexpr size_t kCells = Vec<uint16_t>::lanes; // of one row that are looked at together, at most

// Numbers for the cells of a picture and some around it: a vector at each end of the rows and a row above and below, or
// so many that no vote leaves them, where that is not much more. Behind all rows there is a vector of cells for votes
// that do not count.
struct CellLayout
{
    size_t width, height;
    size_t columns, rows; // on each side
    bool takesAllVotes;
    size_t pitch;

    RVK_INLINE CellLayout(size_t pictureWidth, size_t pictureHeight, uint32_t maxRadius)
        : width(pictureWidth), height(pictureHeight), columns(roundedUp(maxRadius + 1, kCells)), rows(maxRadius + 1),
          takesAllVotes((uint64_t{width} + 2 * columns) * (height + 2 * rows) <= 2 * uint64_t{width} * height)
    {
        if (!takesAllVotes) {
            columns = kCells;
            rows = 1;
        }
        constexpr size_t unit = 32; // an odd number of them, so that rows lie in all sets of a cache
        pitch = ((roundedUp(width, kCells) + 2 * columns + unit - 1) / unit | 1) * unit;
    }

    RVK_INLINE uint64_t size() const { return uint64_t{pitch} * (height + 2 * rows) + kLanes; }
};

template <class T>
struct Cells : CellLayout
{
    T* data;

    RVK_INLINE T* row(size_t y) const { return data + (y + rows) * pitch + columns; }
    // Where the votes go that do not count, from the first row on.
    RVK_INLINE size_t aside() const { return (height + rows) * pitch - columns; }

    // Forgets the votes for cells beside the picture.
    RVK_INLINE void clearSurroundings() const
    {
        const size_t behind = roundedUp(width, kCells) - width + kCells;
        for (size_t y = 0; y < height; ++y) {
            __builtin_memset(row(y) - kCells, 0, kCells * sizeof(T));
            __builtin_memset(row(y) + width, 0, behind * sizeof(T));
        }
        const size_t all = kCells + width + behind;
        __builtin_memset(row(0) - pitch - kCells, 0, all * sizeof(T));
        __builtin_memset(row(height) - kCells, 0, all * sizeof(T));
    }
};

// The derivatives of a pixel, whose neighbours outside the picture are like the nearest ones inside. (Not inline: clang
// would make vectors of single bytes of several pixels.)
RVK_NOINLINE void storeGradient(size_t width, size_t height, Plane<const uint8_t> src, uint32_t pixel, float* gradient)
{
    const size_t x = pixel & 0xffff, y = pixel >> 16;
    const size_t left = x > 0 ? x - 1 : 0, right = least(x + 1, width - 1);
    const uint8_t *above = src.row(y > 0 ? y - 1 : 0), *here = src.row(y), *below = src.row(least(y + 1, height - 1));
    const int32_t dx = above[right] - above[left] + 2 * (here[right] - here[left]) + below[right] - below[left];
    const int32_t dy = below[left] - above[left] + 2 * (below[x] - above[x]) + below[right] - above[right];
    gradient[0] = static_cast<float>(dx);
    gradient[1] = static_cast<float>(dy);
}

// The directions of some edge pixels, from their gradients, which are not 0. In the same order of operations as the
// reference.
struct Directions
{
    static constexpr size_t kMost = 64; // in whole vectors

    float gradients[2 * kMost];
    HoughDirection directions[kMost];

    RVK_INLINE void compute(size_t count)
    {
        const Doubles unit = splatDouble(65536), large = splatDouble(6755399441055744); // 3 * 2^51
        for (; count % Vec<float>::lanes; ++count)
            gradients[2 * count] = gradients[2 * count + 1] = 1;
        for (size_t i = 0; i < count; i += Doubles::lanes) {
            const DoublePoints<2> g = loadPoints<2>(gradients + 2 * i);
            const Doubles length = squareRoot(g[0] * g[0] + g[1] * g[1]);
            storePoints(gradients + 2 * i,
                        {unit * g[0] / length + large - large, unit * g[1] / length + large - large});
        }
        for (size_t i = 0; i < 2 * count; i += Vec<float>::lanes)
            store(&directions[0].u + i, truncateToInt(load(gradients + i)));
    }
};

// Cells that pixels vote for, by their distance from the first one. They are computed for many votes before the first
// of them counts: a load of a part of what a vector has just stored takes long.
template <class T>
struct Ballot
{
    static constexpr size_t kMost = 64 * kLanes;

    const Cells<T>& votes;
    Vec<int32_t> aside;
    int32_t *offsets, *end;

    // Elements for kMost votes, those of a pixel, and two vectors; not a multiple of what makes addresses look alike.
    static RVK_INLINE size_t sizeFor(const CircleChoice& choice)
    {
        return kMost + roundedUp(choice.maxRadius - choice.minRadius + 1, kLanes) + 3 * kLanes;
    }

    RVK_INLINE Ballot(const Cells<T>& cells, int32_t* memory)
        : votes(cells), aside(splat(static_cast<int32_t>(cells.aside())) + iota<int32_t>()), offsets(memory),
          end(memory)
    {
    }

    // For the votes of a pixel.
    RVK_INLINE void makeRoom()
    {
        if (end > offsets + kMost)
            tally();
    }

    RVK_NOINLINE void tally()
    {
        T* const first = votes.row(0);
        store(end, aside);
        for (const int32_t* p = offsets; p < end; p += kLanes)
            unrolled<kLanes>([&](auto j) RVK_INLINE_LAMBDA { ++first[p[j]]; });
        end = offsets;
    }
};

// The votes of edge pixels.
template <class T>
struct Voters
{
    using V = Vec<int32_t>;

    // Successive pixels are mostly on one edge: their votes on one side of it are for cells near each other, which are
    // in the caches together.
    Ballot<T>&along, &against;
    size_t width, height;
    bool haveAllCells;
    uint32_t minRadius, maxRadius;
    V radii;                     // the first ones
    Mask<int32_t> areLastWithin; // of the last ones
    V pitch;
    uint32_t fraction; // these bits are not 0 in directions that have no cell halfway between two others

    RVK_INLINE Voters(Ballot<T>& a, Ballot<T>& b, const CircleChoice& choice)
        : along(a), against(b), width(a.votes.width), height(a.votes.height), haveAllCells(a.votes.takesAllVotes),
          minRadius(choice.minRadius), maxRadius(choice.maxRadius),
          radii(splat(static_cast<int32_t>(minRadius)) + iota<int32_t>()),
          areLastWithin(less(iota<int32_t>(), splat(static_cast<int32_t>((maxRadius - minRadius) % kLanes + 1)))),
          pitch(splat(static_cast<int32_t>(a.votes.pitch)))
    {
        // r u is a multiple of 2^15, when it is, as r and u have 15 times the factor 2 together
        fraction = 1u << 15;
        for (uint32_t r = maxRadius; r > 1 && fraction > 1; r /= 2)
            fraction /= 2;
        fraction -= 1;
    }

    // visit(columns, rows, doCount) for vector after vector of radii: the cells from the pixel on, until it returns
    // false.
    template <class Visit>
    RVK_INLINE void walk(int32_t u, int32_t v, Visit visit) const
    {
        const V half = splat<int32_t>(32768), uStep = splat(static_cast<int32_t>(kLanes) * u);
        const V vStep = splat(static_cast<int32_t>(kLanes) * v);
        V across = radii * splat(u) + half, down = radii * splat(v) + half; // in units of 2^-16
        for (uint32_t vectors = (maxRadius - minRadius) / kLanes; vectors > 0; --vectors) {
            if (!visit(shiftRight(across, 16), shiftRight(down, 16), equal(half, half)))
                return;
            across = across + uStep;
            down = down + vStep;
        }
        visit(shiftRight(across, 16), shiftRight(down, 16), areLastWithin);
    }

    // As far as they stay in the picture.
    RVK_NOINLINE void castInside(Ballot<T>& ballot, int32_t x, int32_t y, int32_t u, int32_t v) const
    {
        const auto columns = splat(static_cast<uint32_t>(width)), rows = splat(static_cast<uint32_t>(height));
        V previous = splat<int32_t>(-1);
        ballot.makeRoom();
        walk(u, v, [&](V column, V row, Mask<int32_t> doCount) RVK_INLINE_LAMBDA {
            column = column + splat(x);
            row = row + splat(y);
            const V cells = row * pitch + column;
            const Mask<int32_t> isSame = equal(cells, extract<kLanes - 1>(previous, cells));
            const Mask<uint32_t> isInside =
                less(bitCast<uint32_t>(column), columns) & less(bitCast<uint32_t>(row), rows);
            previous = cells;
            ballot.end +=
                storeChosen(ballot.end, cells, Mask<int32_t>{isInside.bits} & doCount & ~isSame, ballot.aside);
            return any(isInside);
        });
    }

    // On both sides, where the cells mirror each other and are all there.
    RVK_INLINE void castMirrored(int32_t x, int32_t y, int32_t u, int32_t v) const
    {
        const V here = splat(y * static_cast<int32_t>(along.votes.pitch) + x);
        V previous = splat<int32_t>(INT32_MAX);
        along.makeRoom();
        against.makeRoom();
        int32_t *alongEnd = along.end, *againstEnd = against.end;
        walk(u, v, [&](V column, V row, Mask<int32_t> doCount) RVK_INLINE_LAMBDA {
            const V cells = row * pitch + column;
            doCount = doCount & ~equal(cells, extract<kLanes - 1>(previous, cells));
            previous = cells;
            alongEnd += storeChosen(alongEnd, here + cells, doCount, along.aside);
            againstEnd += storeChosen(againstEnd, here - cells, doCount, against.aside);
            return true;
        });
        along.end = alongEnd;
        against.end = againstEnd;
    }

    // Halves are rounded up on either side.
    RVK_INLINE bool isHalfway(int32_t direction) const
    {
        return !(static_cast<uint32_t>(direction) & fraction) && direction % 65536;
    }

    RVK_INLINE bool isInside(int32_t x, int32_t direction, size_t size) const
    {
        const auto length = static_cast<uint32_t>(direction < 0 ? -direction : direction);
        const uint32_t reach = (maxRadius * length + 32768) >> 16, at = static_cast<uint32_t>(x);
        return at >= reach && at + reach < size;
    }

    RVK_INLINE void cast(int32_t x, int32_t y, HoughDirection d) const
    {
        const bool areAllThere = haveAllCells || (isInside(x, d.u, width) && isInside(y, d.v, height));
        if (areAllThere && !isHalfway(d.u) && !isHalfway(d.v)) {
            castMirrored(x, y, d.u, d.v);
        } else {
            castInside(along, x, y, d.u, d.v);
            castInside(against, x, y, -d.u, -d.v);
        }
    }
};

template <class T>
RVK_NOINLINE void castVotes(const Cells<T>& votes, Plane<const uint8_t> src, const uint32_t* edges, uint32_t nEdges,
                            const CircleChoice& choice, int32_t* memory)
{
    Ballot<T> along(votes, memory), against(votes, memory + Ballot<T>::sizeFor(choice));
    const Voters<T> voters(along, against, choice);
    Directions some;
    for (uint32_t start = 0; start < nEdges; start += Directions::kMost) {
        const size_t count = least(nEdges - start, Directions::kMost);
        const uint32_t* const pixels = edges + start;
        for (size_t i = 0; i < count; ++i)
            storeGradient(votes.width, votes.height, src, pixels[i], some.gradients + 2 * i);
        some.compute(count);
        for (size_t i = 0; i < count; ++i)
            voters.cast(static_cast<int32_t>(pixels[i] & 0xffff), static_cast<int32_t>(pixels[i] >> 16),
                        some.directions[i]);
    }
    along.tally();
    against.tally();
    votes.clearSurroundings();
}

// Scores are numbers of 16 bits, which stay at the largest one when they do not fit, or of 32 bits.
template <class S, class T>
RVK_INLINE Vec<S> loadCells(const T* p)
{
    if constexpr (sizeof(S) == sizeof(T))
        return bitCast<S>(load(p));
    else
        return bitCast<S>(loadWiden<uint32_t>(p));
}
RVK_INLINE Vec<uint16_t> sumOf(Vec<uint16_t> a, Vec<uint16_t> b, Vec<uint16_t> c)
{
    return addSat(addSat(a, b), c);
}
RVK_INLINE Vec<int32_t> sumOf(Vec<int32_t> a, Vec<int32_t> b, Vec<int32_t> c)
{
    return a + b + c;
}

// Elements of a row of scores, between two vectors.
template <class S>
RVK_INLINE size_t scorePitchOf(size_t width)
{
    return roundedUp(width, Vec<S>::lanes) + 2 * Vec<S>::lanes;
}

// Scores of a row, from the votes of three rows; `sums` is memory for a row.
template <class S, class T>
RVK_INLINE void computeScores(const Cells<T>& votes, size_t y, S* sums, S* scores)
{
    constexpr size_t lanes = Vec<S>::lanes;
    const T *here = votes.row(y) - lanes, *above = here - votes.pitch, *below = here + votes.pitch;
    for (size_t x = 0; x < scorePitchOf<S>(votes.width); x += lanes)
        store(sums + x - lanes, sumOf(loadCells<S>(above + x), loadCells<S>(here + x), loadCells<S>(below + x)));
    for (size_t x = 0; x < votes.width; x += lanes)
        store(scores + x, sumOf(load(sums + x - 1), load(sums + x), load(sums + x + 1)));
    __builtin_memset(scores + votes.width, 0, (roundedUp(votes.width, lanes) - votes.width) * sizeof(S));
}

// Centres in raster order, and how many there are; those that have no room are only counted.
struct CentreList
{
    HoughCentre* centres;
    size_t room, count = 0;

    RVK_INLINE void add(size_t x, size_t y, uint32_t score)
    {
        if (count < room)
            centres[count] = {static_cast<uint32_t>(x), static_cast<uint32_t>(y), score};
        ++count;
    }
};

// Adds the centres of row y, whose scores are in the second of three rows. False when a score may not fit.
template <class S>
RVK_INLINE bool addCentres(const S* above, const S* here, const S* below, size_t width, size_t y, S centerThreshold,
                           CentreList& list)
{
    constexpr size_t lanes = Vec<S>::lanes;
    const Vec<S> tooLow = splat(static_cast<S>(centerThreshold - 1));
    for (size_t x = 0; x < width; x += lanes) {
        const Vec<S> own = load(here + x);
        if (!any(greater(own, tooLow)))
            continue;
        const auto most = [](Vec<S> a, Vec<S> b, Vec<S> c, Vec<S> d)
                              RVK_INLINE_LAMBDA { return max(max(a, b), max(c, d)); };
        const Vec<S> before = most(load(above + x - 1), load(above + x), load(above + x + 1), load(here + x - 1));
        const Vec<S> after = most(load(here + x + 1), load(below + x - 1), load(below + x), load(below + x + 1));
        const Mask<S> isCentre = greater(own, max(before, tooLow)) & ~greater(after, own);
        if constexpr (isSame<S, uint16_t>)
            if (any(equal(own, splat<uint16_t>(UINT16_MAX))))
                return false;
        if (!any(isCentre))
            continue;
        S found[lanes];
        store(found, toVec(isCentre));
        for (size_t i = 0; i < lanes; ++i)
            if (found[i])
                list.add(x + i, y, static_cast<uint32_t>(here[x + i]));
    }
    return true;
}

// Adds all centres; `memory` is for four rows of scores. False when scores do not fit.
template <class S, class T>
RVK_NOINLINE bool findCentres(const Cells<T>& votes, S centerThreshold, S* memory, CentreList& list)
{
    const size_t width = votes.width, pitch = scorePitchOf<S>(width);
    __builtin_memset(memory, 0, 4 * pitch * sizeof(S));
    const auto scoresOf = [&](size_t y) RVK_INLINE_LAMBDA { return memory + (y + 3) % 3 * pitch + Vec<S>::lanes; };
    S* const sums = memory + 3 * pitch + Vec<S>::lanes;
    computeScores(votes, 0, sums, scoresOf(0));
    for (size_t y = 0; y < votes.height; ++y) {
        if (y + 1 < votes.height)
            computeScores(votes, y + 1, sums, scoresOf(y + 1));
        else
            __builtin_memset(scoresOf(y + 1), 0, width * sizeof(S));
        if (!addCentres(scoresOf(y + 2), scoresOf(y), scoresOf(y + 1), width, y, centerThreshold, list))
            return false;
    }
    return true;
}

template <class T>
RVK_INLINE void findCentres(const Cells<T>& votes, uint32_t centerThreshold, void* memory, CentreList& list)
{
    list.count = 0;
    if constexpr (isSame<T, uint16_t>) {
        const auto threshold = static_cast<uint16_t>(centerThreshold);
        if (threshold == centerThreshold && findCentres(votes, threshold, static_cast<uint16_t*>(memory), list))
            return;
        list.count = 0;
    }
    if (centerThreshold <= INT32_MAX)
        findCentres(votes, static_cast<int32_t>(centerThreshold), static_cast<int32_t*>(memory), list);
}

// Distances, not 0, to the nearest integer: d where d^2 - d < squared <= d^2 + d.
RVK_INLINE Vec<int32_t> rounded(Vec<int32_t> squared)
{
    const Vec<int32_t> guess = roundToInt(guessSquareRoot(toFloat(squared))); // at most one off
    const Vec<int32_t> square = guess * guess;
    const Vec<int32_t> isTooLarge = toVec(~greater(squared, square - guess));
    const Vec<int32_t> isTooSmall = toVec(greater(squared, square + guess));
    return guess + isTooLarge - isTooSmall; // masks are -1
}

// Those below 256: as d^2 + d and d^2 + d + 1 are on either side of (d + 1/2)^2, with roots 1/1000 apart or more, a
// root within 2^-19 is good enough.
RVK_INLINE Vec<int32_t> roundedIfShort(Vec<int32_t> squared)
{
    return roundToInt(guessSquareRoot(toFloat(squared)));
}

// How many edge pixels are at each distance from a centre.
struct DistanceCounts
{
    // Successive pixels of an edge, which may be at the same distance, count in different tables: an addition to what
    // the one before it has just stored would wait for that.
    static constexpr size_t kTables = 4;
    static constexpr uint32_t kMost = 16 * kLanes; // pixels at a time

    uint32_t* memory;
    uint32_t minRadius, maxRadius;
    size_t distances, pitch; // of a table: whole vectors, and with one for pixels that do not count

    static RVK_INLINE size_t distancesOf(const CircleChoice& choice)
    {
        return roundedUp(choice.maxRadius - choice.minRadius + 1, kLanes);
    }
    static RVK_INLINE uint64_t sizeFor(const CircleChoice& choice)
    {
        return uint64_t{kTables} * (distancesOf(choice) + kLanes);
    }
    RVK_INLINE DistanceCounts(const CircleChoice& choice, uint32_t* tables)
        : memory(tables), minRadius(choice.minRadius), maxRadius(choice.maxRadius), distances(distancesOf(choice)),
          pitch(distances + kLanes)
    {
    }

    template <class Round>
    RVK_INLINE void add(const uint32_t* edges, const uint32_t* end, uint32_t centre, Round round) const
    {
        using V = Vec<int32_t>;
        const auto from = static_cast<int32_t>(minRadius), to = static_cast<int32_t>(maxRadius);
        const V tooNear = splat(from * from - from), farthest = splat(to * to + to);
        const V aside = splat(static_cast<int32_t>(distances)) + iota<int32_t>();
        const Vec<int16_t> origin = bitCast<int16_t>(splat(centre));
        int32_t places[kMost + kLanes];
        while (edges < end) {
            int32_t* last = places;
            for (size_t i = 0; i < kMost && edges < end; i += kLanes, edges += kLanes) {
                const Vec<int16_t> offset = bitCast<int16_t>(load(edges)) - origin;
                const V squared = dotPairs(offset, offset);
                const Mask<int32_t> doCount = greater(squared, tooNear) & ~greater(squared, farthest) &
                                              less(iota<int32_t>(), splat(static_cast<int32_t>(end - edges)));
                last += storeChosen(last, round(squared) - splat(from), doCount, aside);
            }
            store(last, aside);
            for (const int32_t* p = places; p < last; p += kTables)
                unrolled<kTables>([&](auto i) RVK_INLINE_LAMBDA { ++memory[i * pitch + p[i]]; });
        }
    }

    RVK_INLINE void count(const EdgeList& edges, size_t width, size_t height, const HoughCentre& centre) const
    {
        __builtin_memset(memory, 0, kTables * pitch * sizeof(uint32_t));
        const size_t firstStrip = (centre.x > maxRadius ? centre.x - maxRadius : 0) / EdgeList::kStripWidth;
        const size_t lastStrip = least(size_t{centre.x} + maxRadius, width - 1) / EdgeList::kStripWidth;
        const bool areShort = maxRadius < 256;
        for (size_t strip = firstStrip; strip <= lastStrip; ++strip) {
            const uint32_t reach = reachIn(strip, centre.x);
            const uint32_t* const rows = edges.starts + strip * height;
            const uint32_t* const first = edges.pixels + rows[centre.y > reach ? centre.y - reach : 0];
            const uint32_t* const end = edges.pixels + rows[least(size_t{centre.y} + reach + 1, height)];
            const uint32_t at = centre.x | centre.y << 16;
            if (areShort)
                add(first, end, at, [](Vec<int32_t> squared) RVK_INLINE_LAMBDA { return roundedIfShort(squared); });
            else
                add(first, end, at, [](Vec<int32_t> squared) RVK_INLINE_LAMBDA { return rounded(squared); });
        }
    }

    // How many rows above and below a centre at column x a strip has pixels that count.
    RVK_INLINE uint32_t reachIn(size_t strip, uint32_t x) const
    {
        const auto first = static_cast<uint32_t>(strip * EdgeList::kStripWidth);
        const auto last = static_cast<uint32_t>(first + EdgeList::kStripWidth - 1);
        const uint32_t beside = x < first ? first - x : x > last ? x - last : 0;
        const uint32_t squared = maxRadius * maxRadius + maxRadius - beside * beside;
        return static_cast<uint32_t>(__builtin_sqrtf(static_cast<float>(squared))) + 1;
    }

    // Adds all tables to the first one. Returns the largest number.
    RVK_INLINE uint32_t sum() const
    {
        Vec<uint32_t> most = zero<uint32_t>();
        for (size_t i = 0; i < distances; i += kLanes) {
            Vec<uint32_t> counts = load(memory + i);
            unrolled<kTables - 1>([&](auto table)
                                      RVK_INLINE_LAMBDA { counts = counts + load(memory + (table + 1) * pitch + i); });
            store(memory + i, counts);
            most = max(most, counts);
        }
        return reduceMax(most);
    }
};

RVK_NOINLINE uint32_t chooseFrom(HoughCentre* centres, size_t nCentres, const EdgeList& edges, size_t width,
                                 size_t height, const CircleChoice& choice, const DistanceCounts& counts,
                                 rvkCircle* circles, uint32_t nCirclesMax)
{
    return chooseCircles(centres, nCentres, choice, circles, nCirclesMax,
                         [&](const HoughCentre& centre) RVK_INLINE_LAMBDA {
                             counts.count(edges, width, height, centre);
                             if (counts.sum() < choice.centerThreshold)
                                 return rvkCircle{centre.x, centre.y, 0, 0};
                             return bestCircle(centre, choice, counts.memory);
                         });
}

// The circles of edges; T counts the votes for a cell.
template <class T>
RVK_NOINLINE rvkStatus findCircles(size_t width, size_t height, Plane<const uint8_t> src, const EdgeList& edges,
                                   uint32_t nEdges, const CircleChoice& choice, rvkCircle* circles,
                                   uint32_t nCirclesMax, uint32_t* nCircles)
{
    constexpr size_t few = 4096;
    const CellLayout layout(width, height, choice.maxRadius);
    const Scratch<T> cells(layout.size());
    const Scratch<int32_t> scores(4, scorePitchOf<int32_t>(roundedUp(width, kCells)));
    const Scratch<uint32_t> counts(DistanceCounts::sizeFor(choice));
    const Scratch<HoughCentre> fewCentres(few);
    const Scratch<int32_t> ballots(2, Ballot<T>::sizeFor(choice));
    if (!ballots || !cells || !scores || !counts || !fewCentres)
        return RAVIK_ENORES;

    const Cells<T> votes = {layout, cells.get()};
    __builtin_memset(votes.data, 0, static_cast<size_t>(layout.size()) * sizeof(T));
    castVotes(votes, src, edges.pixels, nEdges, choice, ballots.get());

    const auto choose = [&](const CentreList& list) {
        *nCircles = chooseFrom(list.centres, list.count, edges, width, height, choice,
                               DistanceCounts(choice, counts.get()), circles, nCirclesMax);
        return RAVIK_SUCCESS;
    };
    CentreList list = {fewCentres.get(), few};
    findCentres(votes, choice.centerThreshold, scores.get(), list);
    if (list.count <= few)
        return choose(list);
    const Scratch<HoughCentre> manyCentres(list.count);
    if (!manyCentres)
        return RAVIK_ENORES;
    list = {manyCentres.get(), list.count};
    findCentres(votes, choice.centerThreshold, scores.get(), list);
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
    const Scratch<Word> bits(srcHeight, words);
    const Scratch<uint32_t> starts(EdgeList::stripsOf(srcWidth) * srcHeight + 1);
    if (!bits || !starts)
        return RAVIK_ENORES;
    const rvkStatus status =
        findCannyEdgesV(src, srcWidth, srcHeight, srcStride, static_cast<int32_t>(edgeThreshold / 2),
                        static_cast<int32_t>(edgeThreshold), bits.get());
    if (status != RAVIK_SUCCESS)
        return status;
    uint32_t nEdges = 0;
    for (size_t i = 0; i < words * srcHeight; ++i)
        nEdges += countBits(bits[i]);
    const Scratch<uint32_t> pixels(uint64_t{nEdges} + kLanes);
    if (!pixels)
        return RAVIK_ENORES;
    const EdgeList list = {pixels.get(), starts.get()};
    listEdges(srcWidth, srcHeight, bits.get(), list);
    // No edge pixel votes twice for a cell.
    const auto find = nEdges <= UINT16_MAX ? findCircles<uint16_t> : findCircles<uint32_t>;
    return find(srcWidth, srcHeight, {src, srcStride}, list, nEdges, choice, circles, nCirclesMax, nCircles);
}

} // namespace rvk::vecta::RVK_ISA

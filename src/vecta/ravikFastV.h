// Vector implementation of the FAST corners, for both lengths of the arc.
//
// A pixel's contrast is by how much the least bright pixel of the brightest arc exceeds it, or it the brightest pixel
// of the darkest arc: above the barrier it is a corner, and its score is one less. Two passes over a band of rows: the
// first compares a few pairs of opposite pixels of the circle, which rule out most corners, a step of kBytes pixels at
// a time; the second computes the contrasts of what is left, in blocks of 16 pixels, as many as a register holds,
// wherever they lie. Corners come from left to right, until the list is full.
//
// Suppression works on rows of contrasts, 0 where there is no corner.
#pragma once

#include "cpu/ravikFastC.h"
#include "vecta/simd/windows.h"
#include "vecta/vecta.h"

#include <ravik/fast.h>

namespace rvk::vecta::RVK_ISA {
namespace {

using Bytes = Vec<uint8_t>;
using LaneBits = decltype(laneBits(Mask<uint8_t>{}));

RVK_INLINE size_t lowestBit(LaneBits bits)
{
    return static_cast<size_t>(sizeof bits == 8 ? __builtin_ctzll(bits) : __builtin_ctz(static_cast<unsigned>(bits)));
}

// ---- contrasts -----------------------------------------------------------------------------------------------------

struct Brighter // arcs that are brighter than their centre: the least bright pixel, the best arc
{
    static RVK_INLINE Bytes worst(Bytes a, Bytes b) { return min(a, b); }
    static RVK_INLINE Bytes best(Bytes a, Bytes b) { return max(a, b); }
};
struct Darker
{
    static RVK_INLINE Bytes worst(Bytes a, Bytes b) { return max(a, b); }
    static RVK_INLINE Bytes best(Bytes a, Bytes b) { return min(a, b); }
};

using Circle = Vecs<uint8_t, kCirclePoints>;

// Of a pixel of the circle around a pixel so many rows below.
RVK_INLINE ptrdiff_t offsetOf(size_t i, ptrdiff_t stride, ptrdiff_t row = 0)
{
    return (row + kCircle[i].y) * stride + kCircle[i].x;
}

// The worst pixel of the best arc. Two arcs that begin side by side have all but one pixel each in common, so that it
// takes one arc's length less one for two of them, of which pairs, fours and eights serve several.
template <uint32_t arc, class Side>
RVK_INLINE Bytes bestArc(const Circle& circle)
{
    constexpr size_t n = kCirclePoints;
    static_assert(arc == 9 || arc == 10);
    Vecs<uint8_t, n / 2> pairs, fours; // from pixel 2k + 1 on
    Bytes best{};
    unrolled<n / 2>([&](auto k)
                        RVK_INLINE_LAMBDA { pairs[k] = Side::worst(circle[2 * k + 1], circle[(2 * k + 2) % n]); });
    unrolled<n / 2>([&](auto k) RVK_INLINE_LAMBDA { fours[k] = Side::worst(pairs[k], pairs[(k + 1) % (n / 2)]); });
    unrolled<n / 2>([&](auto k) RVK_INLINE_LAMBDA {
        constexpr size_t first = 2 * k + 1;
        Bytes common = Side::worst(fours[k], fours[(k + 2) % (n / 2)]);
        if constexpr (arc == 10)
            common = Side::worst(common, circle[(first + 8) % n]);
        const Bytes arcs = Side::worst(common, Side::best(circle[2 * k], circle[(first + arc - 1) % n]));
        best = k == 0 ? arcs : Side::best(best, arcs);
    });
    return best;
}

template <uint32_t arc>
RVK_INLINE Bytes contrasts(const uint8_t* const* blocks, ptrdiff_t stride)
{
    Circle circle;
    unrolled<kCirclePoints>([&](auto i) RVK_INLINE_LAMBDA { circle[i] = loadEach16(blocks, offsetOf(i, stride)); });
    const Bytes centre = loadEach16(blocks, 0);
    return max(subSat(bestArc<arc, Brighter>(circle), centre), subSat(centre, bestArc<arc, Darker>(circle)));
}

// Pairs of pixels of which every arc has one, since too few pixels lie between them on either side: opposite ones for
// arcs of 9, closer ones for arcs of 10. Closer ones rule out more: half of the pixels that opposite ones leave, those
// beside straight edges, where half of the circle is brighter or darker. Which pairs leave least is found by trial of all
// on natural pictures, and so is which of them come first. For arcs of 9 three are enough for a wide step: the fourth
// would spare a sixth of the blocks that are left, but its loads across cache lines take longer than these.
template <uint32_t arc>
struct TestedPairs;
template <>
struct TestedPairs<9>
{
    static constexpr size_t distance = 8;
    using First = Indices<2, 6>;
    using Second = Indices<0, 4>;
    using OfWideStep = Indices<0, 2, 6>;
    static constexpr size_t rowsApart = 4; // and both compare pixels of a row between
};
template <>
struct TestedPairs<10>
{
    static constexpr size_t distance = 6;
    using First = Indices<7, 15>;
    using Second = Indices<3, 11>;
    using OfWideStep = Indices<7, 15, 3, 11>;
    static constexpr size_t rowsApart = 2;
};

// Which pixels of the step so many rows below may be corners by the pairs that begin with these pixels of the circle.
template <uint32_t arc, size_t... i>
RVK_INLINE Mask<uint8_t> mayBeCorners(const uint8_t* pixel, ptrdiff_t stride, Bytes barrier, Indices<i...>,
                                      ptrdiff_t row = 0)
{
    constexpr size_t pairs = sizeof...(i), distance = TestedPairs<arc>::distance;
    const Vecs<uint8_t, pairs> first = {{load(pixel + offsetOf(i, stride, row))...}};
    const Vecs<uint8_t, pairs> second = {{load(pixel + offsetOf((i + distance) % kCirclePoints, stride, row))...}};
    const Bytes centre = load(pixel + row * stride);
    if constexpr (kBytes == 64) { // a unit of its own compares, while one alone has min, max and saturation: both work
        const Bytes high = addSat(centre, barrier), low = subSat(centre, barrier);
        const auto most = [&](size_t k) RVK_INLINE_LAMBDA { return max(first[k], second[k]); };
        const auto least = [&](size_t k) RVK_INLINE_LAMBDA { return min(first[k], second[k]); };
        Mask<uint8_t> bright = greater(min(most(0), most(1)), high), dark = less(max(least(0), least(1)), low);
        unrolled<pairs - 2>([&](auto k) RVK_INLINE_LAMBDA {
            bright = bright & greater(most(k + 2), high);
            dark = dark & less(least(k + 2), low);
        });
        return bright | dark;
    } else {
        Bytes bright = max(first[0], second[0]), dark = min(first[0], second[0]);
        unrolled<pairs - 1>([&](auto k) RVK_INLINE_LAMBDA {
            bright = min(bright, max(first[k + 1], second[k + 1]));
            dark = max(dark, min(first[k + 1], second[k + 1]));
        });
        return greater(max(subSat(bright, centre), subSat(centre, dark)), barrier);
    }
}

// ---- corners -------------------------------------------------------------------------------------------------------

// Rows of contrasts, by their columns, 0 where there is no corner; each is followed by room for a step. Most of a
// picture has no corners: only sections of rows that have some are looked at and cleared.
struct ContrastRows
{
    static constexpr size_t kBand = 8, kRows = kBand + 2; // rows that are searched at once, and their neighbours

    uint8_t* data; // null: none
    size_t pitch;
    uint32_t begin, end; // of the columns that may be corners
    uint32_t sectionBits;
    uint64_t sections[kRows]; // bit s: whether section s has some

    // Rows without corners in this memory.
    static RVK_INLINE ContrastRows in(void* memory, size_t pitch, uint32_t begin, uint32_t end)
    {
        ContrastRows rows = {static_cast<uint8_t*>(memory), pitch, begin, end, __builtin_ctz(kBytes), {}};
        while ((end - begin) >> rows.sectionBits >= 64)
            ++rows.sectionBits;
        __builtin_memset(memory, 0, kRows * pitch);
        return rows;
    }

    RVK_INLINE uint8_t* row(uint32_t y) const { return data + y % kRows * pitch; }
    RVK_INLINE void put(uint32_t x, uint32_t y, uint8_t contrast)
    {
        row(y)[x] = contrast;
        sections[y % kRows] |= uint64_t{1} << ((x - begin) >> sectionBits);
    }

    // Calls for each section with corners: its columns, from the first to behind the last.
    template <class Visit>
    RVK_INLINE void forSections(uint32_t y, Visit visit) const
    {
        for (uint64_t left = sections[y % kRows]; left; left &= left - 1) {
            const size_t from = begin + (static_cast<size_t>(__builtin_ctzll(left)) << sectionBits);
            const size_t to = from + (size_t{1} << sectionBits);
            visit(from, to < end ? to : end);
        }
    }
    RVK_INLINE void clear(uint32_t y)
    {
        forSections(y, [&](size_t from, size_t to) RVK_INLINE_LAMBDA {
            for (size_t x = from; x < to; x += kBytes)
                store(row(y) + x, zero<uint8_t>());
        });
        sections[y % kRows] = 0;
    }
};

// Where corners go: into a list, or their contrasts into rows.
struct Corners
{
    const BitMask* mask;
    CornerList list;
    ContrastRows contrasts;
    uint32_t count = 0;
    uint32_t lastX = 0, lastY = 0; // of the pixel taken last

    RVK_INLINE bool needsContrasts() const { return contrasts.data || list.scores; }

    // False when there is no room for another one.
    RVK_INLINE bool take(uint32_t x, uint32_t y, uint8_t contrast)
    {
        if (y == lastY && x <= lastX) // the last step of a row, which overlaps the one before, found it again
            return true;
        lastX = x;
        lastY = y;
        if (mask && mask->excludes(x, y))
            return true;
        if (contrasts.data) {
            contrasts.put(x, y, contrast);
        } else {
            list.xy[size_t{2} * count] = x;
            list.xy[size_t{2} * count + 1] = y;
            if (list.scores)
                list.scores[count] = contrast - 1u;
        }
        return ++count < list.capacity;
    }
};

// Steps begin where vectors do, as far as possible, where loads across two cache lines take longer: with SSE4.2 that
// spares a fifth of the time. On Arm it would only cost instructions.
#if defined(__x86_64__)
constexpr bool kAlignsSteps = true;
#else
constexpr bool kAlignsSteps = false;
#endif

// What the steps along a row have in common.
struct Search
{
    uint32_t begin, end; // columns
    uint32_t second;     // where the second step begins
    uint32_t last;       // where the last step begins, whose circles end with the row
    uint32_t steps;
    uint8_t barrier;
    ptrdiff_t stride;
};

// The parts of steps that are worked on, together with those of other steps.
constexpr size_t kBlockBytes = 16, kBlocks = kBytes / kBlockBytes;

// Where blocks of many steps are chosen at once (AVX-512), all steps are candidates: a store whose address waits for a
// comparison holds up the loads after it.
constexpr bool kTakesAllSteps = kBytes == 64;

// Steps that may have corners, row by row: where they begin, counted from column 0 of the first row.
struct Candidates
{
    static constexpr size_t kMost = 512;

    const uint8_t* origin;
    uint32_t y; // of the first row
    size_t count;
    uint32_t steps[kMost + Vec<uint32_t>::lanes];
    LaneBits bits[kMost + kBlocks]; // of the pixels that may be corners, where steps are several blocks
};

// The blocks of the candidates that may have corners.
struct Blocks
{
    static constexpr size_t kMost = Candidates::kMost * kBlocks;

    const uint8_t* origin;
    size_t count;
    uint32_t places[kMost + Vec<uint32_t>::lanes]; // the last of them repeated, so that whole vectors of blocks are
    LaneBits corners[kMost / kBlocks];             // of vectors of blocks, where they are known

    RVK_INLINE void finish(size_t end)
    {
        for (size_t i = 0; i < kBlocks && end; ++i)
            places[end + i] = places[end - 1];
        count = end;
    }
};

// A vector of blocks.
struct BlocksAt
{
    const uint8_t* pixels[kBlocks];

    RVK_INLINE BlocksAt(const Blocks& blocks, size_t first)
    {
        unrolled<kBlocks>([&](auto i) RVK_INLINE_LAMBDA { pixels[i] = blocks.origin + blocks.places[first + i]; });
    }
};

RVK_INLINE void takeBlocks(Candidates& candidates, Blocks& blocks)
{
    const size_t stepCount = candidates.count;
    size_t count = 0;
    blocks.origin = candidates.origin;
    if constexpr (kBlocks == 1) {
        __builtin_memcpy(blocks.places, candidates.steps, stepCount * sizeof *blocks.places);
        count = stepCount;
    } else if constexpr (kTakesAllSteps) {
        using Places = Vec<uint32_t>;
        const Places inStep = shiftLeft(iota<uint32_t>() & splat<uint32_t>(kBlocks - 1), 4);
        for (size_t i = 0; i < kBlocks; ++i) // what fills the last vector
            candidates.bits[stepCount + i] = 0;
        for (size_t i = 0; i < stepCount; i += Places::lanes / kBlocks) {
            const Places steps = load(candidates.steps + i);
            const Places places = shuffle(steps, steps, [](size_t lane) { return lane / kBlocks; }) + inStep;
            const Places bits = loadWiden<uint32_t>(reinterpret_cast<const uint16_t*>(candidates.bits + i));
            count += storeChosen(blocks.places + count, places, greater(bits, zero<uint32_t>()), places);
        }
    } else {
        for (size_t step = 0; step < stepCount; ++step)
            for (size_t i = 0; i < kBlocks; ++i) {
                blocks.places[count] = candidates.steps[step] + static_cast<uint32_t>(i * kBlockBytes);
                count += (candidates.bits[step] >> i * kBlockBytes & 0xffff) != 0;
            }
    }
    blocks.finish(count);
}

// Where comparisons give bits (AVX-512), corners without contrasts are found in the bits of many pixels at once: half of
// the work.
constexpr bool kSiftsBlocks = kBytes == 64;

struct InAll // arcs of bits: those that all pixels have, of any arc
{
    static RVK_INLINE Bytes worst(Bytes a, Bytes b) { return a & b; }
    static RVK_INLINE Bytes best(Bytes a, Bytes b) { return a | b; }
};

// For each pixel of the circle the bits of as many centres as a vector has.
struct ComparedCircles
{
    static constexpr size_t kVectors = kBytes / sizeof(LaneBits); // of centres
    static_assert(Candidates::kMost % kVectors == 0);
    alignas(kBytes) LaneBits bits[kCirclePoints][kVectors];

    template <uint32_t arc>
    RVK_INLINE Bytes arcs() const
    {
        Circle circle;
        unrolled<kCirclePoints>([&](auto i)
                                    RVK_INLINE_LAMBDA { circle[i] = load(reinterpret_cast<const uint8_t*>(bits[i])); });
        return bestArc<arc, InAll>(circle);
    }
};

// Finds the corners of blocks.
template <uint32_t arc>
RVK_NOINLINE void siftBlocks(const Search& search, Blocks& blocks)
{
    constexpr size_t group = ComparedCircles::kVectors * kBlocks;
    const Bytes barrier = splat(search.barrier);
    const ptrdiff_t stride = search.stride;
    const size_t count = blocks.count;
    // Bits are read a group later, when their stores are done: a load of several stores that are not has to wait.
    ComparedCircles bright[2], dark[2];
    const auto compare = [&](size_t first, size_t parity) RVK_INLINE_LAMBDA {
        for (size_t i = 0; i < group && first + i < count; i += kBlocks) {
            const BlocksAt at(blocks, first + i);
            const Bytes centre = loadEach16(at.pixels, 0);
            const Bytes high = addSat(centre, barrier), low = subSat(centre, barrier);
            unrolled<kCirclePoints>([&](auto k) RVK_INLINE_LAMBDA {
                const Bytes pixel = loadEach16(at.pixels, offsetOf(k, stride));
                bright[parity].bits[k][i / kBlocks] = laneBits(greater(pixel, high));
                dark[parity].bits[k][i / kBlocks] = laneBits(less(pixel, low));
            });
        }
    };
    const auto findArcs = [&](size_t first, size_t parity) RVK_INLINE_LAMBDA {
        store(reinterpret_cast<uint8_t*>(blocks.corners + first / kBlocks),
              bright[parity].template arcs<arc>() | dark[parity].template arcs<arc>());
    };
    size_t parity = 0;
    for (size_t first = 0; first < count; first += group, parity ^= 1) {
        compare(first, parity);
        if (first)
            findArcs(first - group, parity ^ 1);
    }
    if (count)
        findArcs((count - 1) / group * group, parity ^ 1);
}

// Takes the corners of the candidates, of which there are none then. False when there is no room for another corner.
template <uint32_t arc>
RVK_NOINLINE bool takeCorners(const Search& search, Candidates& candidates, Corners& corners)
{
    Blocks blocks;
    takeBlocks(candidates, blocks);
    uint32_t y = candidates.y, rowEnd = static_cast<uint32_t>(search.stride);
    const auto take = [&](size_t first, size_t lane, uint8_t contrast) RVK_INLINE_LAMBDA { // of a vector of blocks
        const size_t block = first + lane / kBlockBytes;
        if (block >= blocks.count)
            return true;
        const auto place = static_cast<uint32_t>(blocks.places[block] + lane % kBlockBytes);
        for (; place >= rowEnd; rowEnd += static_cast<uint32_t>(search.stride))
            ++y;
        const uint32_t x = place - (rowEnd - static_cast<uint32_t>(search.stride));
        return x < search.begin || x >= search.end || corners.take(x, y, contrast);
    };
    candidates.count = 0;
    if constexpr (kSiftsBlocks) {
        if (!corners.needsContrasts()) {
            siftBlocks<arc>(search, blocks);
            for (size_t i = 0; i < blocks.count; i += kBlocks)
                for (LaneBits bits = blocks.corners[i / kBlocks]; bits; bits &= bits - 1)
                    if (!take(i, lowestBit(bits), 0))
                        return false;
            return true;
        }
    }
    const Bytes barrier = splat(search.barrier);
    for (size_t i = 0; i < blocks.count; i += kBlocks) {
        const Bytes contrast = contrasts<arc>(BlocksAt(blocks, i).pixels, search.stride);
        LaneBits bits = laneBits(greater(contrast, barrier));
        if (!bits)
            continue;
        uint8_t each[kBytes];
        store(each, contrast);
        for (; bits; bits &= bits - 1) {
            const size_t lane = lowestBit(bits);
            if (!take(i, lane, each[lane]))
                return false;
        }
    }
    return true;
}

// Adds the candidates of the row whose column 0 is at this place. False when there is no room for another corner.
template <uint32_t arc>
RVK_NOINLINE bool searchRow(const Search& search, uint32_t row, Candidates& candidates, Corners& corners)
{
    const Bytes barrier = splat(search.barrier);
    const ptrdiff_t stride = search.stride;
    const uint8_t* const origin = candidates.origin;
    const uint32_t end = row + search.end, last = row + search.last;
    size_t count = candidates.count;
    uint32_t next = row + (kAlignsSteps ? search.second : search.begin + uint32_t{kBytes});
    for (uint32_t place = row + search.begin; place < end; place = next, next += kBytes) {
        const uint32_t step = place < last ? place : last;
        const uint8_t* const pixel = origin + step;
        if constexpr (kBlocks == 1) { // most steps end with few pixels
            if (!any(mayBeCorners<arc>(pixel, stride, barrier, typename TestedPairs<arc>::First{})))
                continue;
            candidates.steps[count] = step;
            count += any(mayBeCorners<arc>(pixel, stride, barrier, typename TestedPairs<arc>::Second{}));
        } else { // chance decides
            const LaneBits bits =
                laneBits(mayBeCorners<arc>(pixel, stride, barrier, typename TestedPairs<arc>::OfWideStep{}));
            candidates.steps[count] = step;
            candidates.bits[count] = bits;
            count += kTakesAllSteps || bits != 0;
        }
        if (count == Candidates::kMost) {
            candidates.count = count;
            if (!takeCorners<arc>(search, candidates, corners))
                return false;
            count = 0;
        }
    }
    candidates.count = count;
    return true;
}

// Adds all steps of a band of rows, where all are candidates and have room. Rows that are so far apart that they
// compare the same pixels are searched together: what takes longest are loads across two cache lines, and so there are
// fewer.
template <uint32_t arc>
RVK_NOINLINE void searchBand(const Search& search, Candidates& candidates)
{
    constexpr size_t apart = TestedPairs<arc>::rowsApart, together = ContrastRows::kBand / apart;
    const Bytes barrier = splat(search.barrier);
    const ptrdiff_t stride = search.stride;
    const uint8_t* const origin = candidates.origin;
    const size_t steps = search.steps, first = candidates.count;
    const uint32_t last = search.last;
    for (size_t y = 0; y < apart; ++y) {
        const auto row = static_cast<uint32_t>(y * static_cast<size_t>(stride));
        uint32_t column = search.begin, next = search.second;
        for (size_t i = 0; i < steps; ++i, column = next, next += kBytes) {
            const uint32_t step = row + (column < last ? column : last);
            LaneBits bits[together];
            unrolled<together>([&](auto k) RVK_INLINE_LAMBDA {
                bits[k] =
                    laneBits(mayBeCorners<arc>(origin + step, stride, barrier, typename TestedPairs<arc>::OfWideStep{},
                                               static_cast<ptrdiff_t>(k * apart)));
            });
            unrolled<together>([&](auto k) RVK_INLINE_LAMBDA {
                const size_t at = first + (y + k * apart) * steps + i;
                candidates.steps[at] = step + static_cast<uint32_t>(k * apart * static_cast<size_t>(stride));
                candidates.bits[at] = bits[k];
            });
        }
    }
    candidates.count = first + ContrastRows::kBand * steps;
}

// Rows that are too short for a step, longer: the seven that a circle reaches.
struct ShortRows
{
    static constexpr size_t kStride = kBytes + 6;
    uint8_t pixels[7 * kStride] = {};

    // Row y; its column 0.
    RVK_INLINE const uint8_t* fill(const FastPicture& picture, uint32_t y)
    {
        for (size_t k = 0; k < 7; ++k)
            __builtin_memcpy(pixels + k * kStride, picture.src + (y - 3 + k) * picture.stride, picture.width);
        return pixels + 3 * kStride;
    }
};

// Appends the corners of row y that are above all of their neighbours to the list.
RVK_NOINLINE void takeMaxima(const ContrastRows& rows, uint32_t y, const CornerList& list)
{
    const uint8_t *above = rows.row(y - 1), *here = rows.row(y), *below = rows.row(y + 1);
    uint32_t count = *list.count;
    rows.forSections(y, [&](size_t from, size_t to) RVK_INLINE_LAMBDA {
        for (size_t x = from; x < to; x += kBytes) {
            const Bytes contrast = load(here + x);
            const auto around = [=](const uint8_t* row)
                                    RVK_INLINE_LAMBDA { return max(load(row + x - 1), load(row + x + 1)); };
            const Bytes neighbours =
                max(max(max(around(above), load(above + x)), max(around(below), load(below + x))), around(here));
            for (LaneBits bits = laneBits(greater(contrast, neighbours)); bits; bits &= bits - 1) {
                const size_t column = x + lowestBit(bits);
                list.xy[size_t{2} * count] = static_cast<uint32_t>(column);
                list.xy[size_t{2} * count + 1] = y;
                list.scores[count++] = here[column] - 1u;
            }
        }
    });
    *list.count = count;
}

// ---- all together --------------------------------------------------------------------------------------------------

// The corners of all rows into the list, or, where there are rows of contrasts, the best ones.
template <uint32_t arc>
RVK_NOINLINE void search(const FastPicture& picture, const BitMask* mask, const CornerList& list,
                         const ContrastRows& emptyContrasts)
{
    constexpr uint32_t step = kBytes;
    const uint32_t right = picture.width - 3, bottom = picture.height - picture.border;
    const bool isShort = right < step + 3;
    const uint32_t columns = picture.width - 2 * picture.border;
    const auto second =
        static_cast<uint32_t>(secondColumn<step>(columns, Plane{picture.src + picture.border, picture.stride}));
    const Search search = {picture.border,
                           picture.border + columns,
                           picture.border + second,
                           isShort ? 3 : right - step,
                           1 + (columns > second ? (columns - second + step - 1) / step : 0),
                           static_cast<uint8_t>(picture.barrier < 255 ? picture.barrier : 255),
                           static_cast<ptrdiff_t>(isShort ? ShortRows::kStride : picture.stride)};
    Corners corners = {mask, list, emptyContrasts};
    ContrastRows& contrasts = corners.contrasts;
    ShortRows rows;
    Candidates candidates;
    candidates.count = 0;
    const uint32_t band = isShort || picture.stride >= 1u << 28 ? 1 : ContrastRows::kBand; // places have 32 bits

    const bool searchesBands = kTakesAllSteps && search.steps <= Candidates::kMost / ContrastRows::kBand;

    bool hasRoom = true;
    uint32_t top = picture.border;
    while (top < bottom && hasRoom) {
        const uint32_t end = bottom - top < band ? bottom : top + band;
        if (contrasts.data)
            for (uint32_t y = top; y < end; ++y)
                contrasts.clear(y);
        candidates.origin = isShort ? rows.fill(picture, top) : picture.src + size_t{top} * picture.stride;
        candidates.y = top;
        if (searchesBands && end - top == ContrastRows::kBand) {
            searchBand<arc>(search, candidates);
        } else {
            for (uint32_t y = top; y < end && hasRoom; ++y)
                hasRoom = searchRow<arc>(search, (y - top) * picture.stride, candidates, corners);
        }
        hasRoom = hasRoom && takeCorners<arc>(search, candidates, corners);
        if (contrasts.data)
            for (uint32_t y = top == picture.border ? top : top - 1; y < end - 1; ++y)
                takeMaxima(contrasts, y, list);
        top = end;
    }
    if (contrasts.data) {
        contrasts.clear(top);
        takeMaxima(contrasts, top - 1, list);
    } else {
        *list.count = corners.count;
    }
}

template <uint32_t arc>
RVK_INLINE void detectCorners(const SegmentTest& test, const FastPicture& picture, const BitMask* mask,
                              const CornerList& list, uint32_t* tempBuf)
{
    if (picture.barrier < 0) { // contrasts have no sign
        detect(test, picture, mask, list, tempBuf);
        return;
    }
    *list.count = 0;
    if ((mask && !*mask) || (tempBuf && list.capacity == 0))
        return;
    const uint64_t pitch = uint64_t{picture.width} + kBytes;
    const uint64_t room = (uint64_t{3} * list.capacity + picture.height) * sizeof *tempBuf;
    if (!tempBuf) {
        search<arc>(picture, mask, list, {});
    } else if (ContrastRows::kRows * pitch <= room) {
        search<arc>(
            picture, mask, list,
            ContrastRows::in(tempBuf, static_cast<size_t>(pitch), picture.border, picture.width - picture.border));
    } else { // too few corners are wanted for rows of contrasts
        const CornerList raw = {tempBuf, tempBuf + size_t{2} * list.capacity, list.capacity, list.count};
        search<arc>(picture, mask, raw, {});
        nms_processing(raw.xy, raw.scores, *raw.count, list);
    }
}

// The score of one corner.
template <uint32_t arc>
RVK_INLINE uint32_t scoreOf(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    // Each lane begins another arc, the lanes behind the sixteenth repeat some of them.
    uint8_t circle[3 * kCirclePoints + kBytes];
    for (size_t i = 0; i < sizeof circle; ++i)
        circle[i] = pixel[offsets[i % kCirclePoints]];
    Bytes least = load(circle), most = least;
    for (size_t i = 1; i < arc; ++i) {
        least = min(least, load(circle + i));
        most = max(most, load(circle + i));
    }
    const int32_t brighter = reduceMax(least) - *pixel, darker = *pixel - reduceMin(most);
    const int32_t score = (brighter > darker ? brighter : darker) - 1;
    return static_cast<uint32_t>(score > barrier ? score : barrier);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

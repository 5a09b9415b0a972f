// Vector implementations of flood fill and region growing. What pixels have in common is found out for vectors of them
// and kept as a bit for each; fills grow by machine words of these bits, regions are joined by runs of them.
#include "scratch.h"
#include "vecta/simd/bitRows.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/region.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- flood fill ----------------------------------------------------------------------------------------------------

// Which pixels a fill may reach and which it has reached, a bit for each. Rows are looked at when the fill comes to
// them: a small one in a large picture is no work. A ring of words without pixels lies around the picture.
class FloodMap
{
public:
    struct Place
    {
        uint32_t word, row;
    };

    static RVK_INLINE size_t pitchOf(size_t width) { return (width + kWordBits - 1) / kWordBits + 1; }
    // In each of three maps, with what loadBits may read behind the last row.
    static RVK_INLINE uint64_t wordsOf(size_t width, size_t height)
    {
        return uint64_t{pitchOf(width)} * (uint64_t{height} + 2) + 1 + 16 / sizeof(Word);
    }
    static RVK_INLINE size_t rowsOf(size_t height) { return height + 2; }

    RVK_INLINE FloodMap(size_t width, size_t height, Plane<uint8_t> image, Word* maps, Place* waiting, uint16_t* rounds)
        : m_width(width), m_height(height), m_image(image), m_pitch(pitchOf(width)), m_among(maps),
          m_fresh(maps + static_cast<size_t>(wordsOf(width, height))),
          m_reached(m_fresh + static_cast<size_t>(wordsOf(width, height))), m_waiting(waiting), m_rounds(rounds)
    {
        __builtin_memset(rounds, 0, rowsOf(height) * sizeof *rounds);
    }

    // From here on fills may reach what lies in a range of values, reached before or not.
    RVK_INLINE void beginRound(uint8_t least, uint8_t most)
    {
        ++m_round;
        m_least = least;
        m_span = static_cast<uint8_t>(most - least);
    }

    RVK_INLINE void addSeed(uint32_t x, uint32_t y)
    {
        const uint32_t row = y + 1;
        prepare(row);
        reach({static_cast<uint32_t>(row * m_pitch + 1 + x / kWordBits), row}, Word{1} << x % kWordBits);
    }

    template <bool hasDiagonals>
    RVK_INLINE void fill()
    {
        while (m_waitingCount > 0) {
            const Place place = m_waiting[--m_waitingCount];
            const Word pixels = m_fresh[place.word];
            m_fresh[place.word] = 0;
            m_reached[place.word] |= pixels;
            const Word leaveLeft = pixels << (kWordBits - 1), leaveRight = pixels >> (kWordBits - 1);
            const Word beside = hasDiagonals ? pixels | pixels << 1 | pixels >> 1 : pixels;
            const auto pitch = static_cast<uint32_t>(m_pitch);
            const Place besides[] = {{place.word - pitch, place.row - 1}, {place.word + pitch, place.row + 1}};
            for (const Place& row : besides) {
                prepare(row.row);
                if (hasDiagonals && leaveLeft)
                    reach({row.word - 1, row.row}, leaveLeft);
                reach(row, beside);
                if (hasDiagonals && leaveRight)
                    reach({row.word + 1, row.row}, leaveRight);
            }
            reach({place.word - 1, place.row}, leaveLeft);
            reach({place.word + 1, place.row}, leaveRight);
        }
    }

    // Gives the pixels that have been reached a value.
    RVK_INLINE rvkConnectedComponent finish(uint8_t value) const
    {
        size_t left = m_width, right = 0, top = m_height, bottom = 0;
        uint32_t area = 0;
        for (size_t y = 0; y < m_height; ++y) {
            if (m_rounds[y + 1] == 0)
                continue;
            const Word* const bits = m_reached + (y + 1) * m_pitch + 1;
            uint32_t count = 0;
            for (size_t w = 0; w + 1 < m_pitch; ++w) {
                if (bits[w] == 0)
                    continue;
                const size_t x = w * kWordBits, first = x + firstBit(bits[w]), last = x + lastBit(bits[w]);
                left = first < left ? first : left;
                right = last > right ? last : right;
                count += countBits(bits[w]);
                fillWord(m_image.row(y) + x, m_width - x, bits + w, value);
            }
            if (count == 0)
                continue;
            area += count;
            top = y < top ? y : top;
            bottom = y;
        }
        return {{static_cast<int32_t>(left), static_cast<int32_t>(top), static_cast<int32_t>(right - left + 1),
                 static_cast<int32_t>(bottom - top + 1)},
                area};
    }

private:
    size_t m_width, m_height;
    Plane<uint8_t> m_image;
    size_t m_pitch;     // words from row to row
    Word* m_among;      // what this round may reach and has not
    Word* m_fresh;      // reached, but its neighbours have not been looked at
    Word* m_reached;    // in all rounds, but for what is fresh
    Place* m_waiting;   // words that have fresh pixels, each once
    uint16_t* m_rounds; // by row, the ring's first: the last round that came to it
    size_t m_waitingCount = 0;
    uint16_t m_round = 0;
    uint8_t m_least = 0, m_span = 0;

    // The row is that of the maps.
    RVK_INLINE void prepare(uint32_t row)
    {
        if (m_rounds[row] != m_round)
            prepareRow(row);
    }

    RVK_NOINLINE void prepareRow(uint32_t row)
    {
        const size_t first = row * m_pitch, bytes = (m_pitch + 1) * sizeof(Word); // with the ring at both ends
        Word* const among = m_among + first + 1;
        if (m_rounds[row] == 0) {
            // The ring word at the right end is the next row's, which has nothing there.
            __builtin_memset(m_fresh + first, 0, bytes - sizeof(Word));
            __builtin_memset(m_reached + first, 0, bytes - sizeof(Word));
        }
        m_rounds[row] = m_round;
        among[-1] = among[m_pitch - 1] = 0;
        if (row == 0 || row > m_height) {
            __builtin_memset(among, 0, bytes - 2 * sizeof(Word));
            return;
        }
        const uint8_t* const pixels = m_image.row(row - 1);
        const Vec<uint8_t> least = splat(m_least), span = splat(m_span);
        const auto put = [=](size_t x, Vec<uint8_t> v) RVK_INLINE_LAMBDA {
            const Vec<uint8_t> above = v - least;
            storeBits(reinterpret_cast<uint8_t*>(among) + x / 8, equal(min(above, span), above));
        };
        among[m_pitch - 2] = 0;
        size_t x = 0;
        for (; x + kBytes <= m_width; x += kBytes)
            put(x, load(pixels + x));
        if (x < m_width) {
            put(x, loadPartial(pixels + x, m_width - x));
            among[m_pitch - 2] &= bitsUpTo((m_width - 1) % kWordBits);
        }
    }

    // The pixels and all others that are connected with them within the word.
    static RVK_INLINE Word connected(Word pixels, Word among)
    {
        // A sum carries to the end of each run; what carried over a second seed of a run stays set.
        pixels |= ((among + pixels) ^ among) & among;
        for (size_t step = 1; step < kWordBits; step *= 2) {
            pixels |= among & pixels >> step;
            among &= among >> step;
        }
        return pixels;
    }

    RVK_INLINE void reach(Place place, Word pixels)
    {
        Word& among = m_among[place.word];
        pixels &= among;
        if (!pixels)
            return;
        pixels = connected(pixels, among);
        among &= ~pixels;
        if (!m_fresh[place.word])
            m_waiting[m_waitingCount++] = place;
        m_fresh[place.word] |= pixels;
    }

    static RVK_INLINE void fillWord(uint8_t* dst, size_t width, const Word* bits, uint8_t value)
    {
        const auto* const bytes = reinterpret_cast<const uint8_t*>(bits);
        const Vec<uint8_t> values = splat(value);
        for (size_t x = 0; x < kWordBits && x < width; x += kBytes) {
            const Mask<uint8_t> mask = loadBits(bytes + x / 8);
            if (x + kBytes <= width)
                store(dst + x, select(mask, values, load(dst + x)));
            else
                storePartial(dst + x, select(mask, values, loadPartial(dst + x, width - x)), width - x);
        }
    }
};

} // namespace

rvkStatus rvkFloodfillMergedu8V(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                const uint32_t* seeds, uint32_t nSeeds, uint8_t lowDifference, uint8_t highDifference,
                                uint8_t newValue, uint32_t connectivity, rvkConnectedComponent* component)
{
    const Plane<uint8_t> image = {dst, dstStride};
    const uint64_t words = FloodMap::wordsOf(dstWidth, dstHeight);
    const Scratch<Word> maps(3, words);
    const Scratch<FloodMap::Place> waiting(words);
    const Scratch<uint16_t> rounds(FloodMap::rowsOf(dstHeight));
    if (!maps || !waiting || !rounds)
        return RAVIK_ENORES;

    FloodMap map(dstWidth, dstHeight, image, maps.get(), waiting.get(), rounds.get());
    const auto valueOfSeed = [=](size_t i) RVK_INLINE_LAMBDA { return image.row(seeds[2 * i + 1])[seeds[2 * i]]; };
    uint8_t isSeedValue[256] = {};
    for (size_t i = 0; i < nSeeds; ++i)
        isSeedValue[valueOfSeed(i)] = 1;
    for (size_t value = 0; value < 256; ++value) {
        if (!isSeedValue[value])
            continue;
        map.beginRound(static_cast<uint8_t>(value < lowDifference ? 0 : value - lowDifference),
                       static_cast<uint8_t>(value + highDifference > 255 ? 255 : value + highDifference));
        for (size_t i = 0; i < nSeeds; ++i)
            if (valueOfSeed(i) == value)
                map.addSeed(seeds[2 * i], seeds[2 * i + 1]);
        connectivity == 8 ? map.fill<true>() : map.fill<false>();
    }
    const rvkConnectedComponent reached = map.finish(newValue);
    if (component)
        *component = reached;
    return RAVIK_SUCCESS;
}

// ---- regions of a colour -------------------------------------------------------------------------------------------

namespace {

// A row of a picture by channels, with a vector's room at both ends.
struct Channels
{
    uint8_t* channel[3];

    static RVK_INLINE size_t pitchOf(size_t width) { return (width + kBytes - 1) / kBytes * kBytes + 2 * kBytes; }
    // Of three channels.
    static RVK_INLINE Channels in(uint8_t* memory, size_t pitch)
    {
        uint8_t* const first = memory + kBytes;
        return {{first, first + pitch, first + 2 * pitch}};
    }

    RVK_INLINE void take(const uint8_t* pixels, size_t width) const
    {
        const auto put = [&](size_t x, const uint8_t* p) RVK_INLINE_LAMBDA {
            const Vecs<uint8_t, 3> v = load3(p);
            unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { store(channel[c] + x, v[c]); });
        };
        size_t x = 0;
        for (; x + kBytes <= width; x += kBytes)
            put(x, pixels + 3 * x);
        if (x < width) {
            uint8_t rest[3 * kBytes] = {};
            __builtin_memcpy(rest, pixels + 3 * x, 3 * (width - x));
            put(x, rest);
        }
    }

    // Whether kBytes pixels from x on have no channel that differs by more than the threshold from that of the pixels
    // `shift` beside them, -1 to 1.
    RVK_INLINE Mask<uint8_t> areSimilar(size_t x, const Channels& other, ptrdiff_t shift, Vec<uint8_t> threshold) const
    {
        const auto difference = [&](size_t c) RVK_INLINE_LAMBDA {
            return absDiff(load(channel[c] + x), load(other.channel[c] + x + shift));
        };
        const Vec<uint8_t> most = max(max(difference(0), difference(1)), difference(2));
        return equal(min(most, threshold), most);
    }
};

// Runs of pixels in a row that belong together, numbered in the order of the picture, and the sets that they are joined
// to. A set is known by its first run; each run points to itself or to an earlier one of its set.
struct RunSets
{
    uint32_t* parents;
    uint32_t* areas;
    uint32_t count = 0;

    // The runs of a row, from bits that are set where they begin.
    RVK_INLINE void addRow(const Word* starts, size_t width)
    {
        uint32_t begin = 0;
        for (size_t w = 0; w * kWordBits < width; ++w)
            for (Word bits = starts[w]; bits; bits &= bits - 1) {
                const auto x = static_cast<uint32_t>(w * kWordBits + firstBit(bits));
                if (x > 0)
                    areas[count - 1] = x - begin;
                begin = x;
                parents[count] = count;
                ++count;
            }
        areas[count - 1] = static_cast<uint32_t>(width) - begin;
    }
    RVK_INLINE uint32_t find(uint32_t run) const
    {
        while (parents[run] != run)
            run = parents[run] = parents[parents[run]];
        return run;
    }
    RVK_INLINE void join(size_t a, size_t b) const
    {
        const uint32_t first = find(static_cast<uint32_t>(a)), second = find(static_cast<uint32_t>(b));
        if (first < second)
            parents[second] = first;
        else
            parents[first] = second;
    }
    // Turns the areas of runs into the labels of their sets, 0 where these are small. Returns the last label.
    RVK_INLINE uint32_t label(uint32_t minArea) const
    {
        for (uint32_t run = 0; run < count; ++run) {
            const uint32_t first = parents[run] = parents[parents[run]];
            if (first != run)
                areas[first] += areas[run];
        }
        uint32_t labels = 0;
        for (uint32_t run = 0; run < count; ++run) {
            const uint32_t first = parents[run];
            areas[run] = first != run ? areas[first] : areas[run] >= minArea ? ++labels : 0;
        }
        return labels;
    }
};

// The bits of a row of pixels: which are similar to a neighbour above. Those of the last pixels' neighbours that do not
// exist are 0.
struct Links
{
    Word *up, *upLeft, *upRight;
};

RVK_INLINE Word bitBefore(const Word* bits, size_t w)
{
    return bits[w] << 1 | (w > 0 ? bits[w - 1] >> (kWordBits - 1) : 0);
}
RVK_INLINE Word bitAfter(const Word* bits, size_t w, size_t words)
{
    return bits[w] >> 1 | (w + 1 < words ? bits[w + 1] << (kWordBits - 1) : 0);
}

// Joins the runs of a row, the first of which has this number, to those of the row above, that begin with another. Bits
// of links that say what the one beside them said are left out.
template <bool hasDiagonals>
RVK_INLINE void joinRows(const RunSets& sets, size_t words, const Word* starts, size_t run, const Word* startsAbove,
                         size_t runAbove, const Links& links)
{
    for (size_t w = 0; w < words; ++w) {
        const Word here = starts[w], above = startsAbove[w], up = links.up[w], upBefore = bitBefore(links.up, w);
        const auto runAt = [&](size_t i) RVK_INLINE_LAMBDA { return run + countBits(here & bitsUpTo(i)) - 1; };
        const auto runAboveAt = [&](size_t i)
                                    RVK_INLINE_LAMBDA { return runAbove + countBits(above & bitsUpTo(i)) - 1; };
        for (Word bits = up & ~(upBefore & ~(here | above)); bits; bits &= bits - 1) {
            const size_t i = firstBit(bits);
            sets.join(runAt(i), runAboveAt(i));
        }
        if constexpr (hasDiagonals) {
            for (Word bits = links.upLeft[w] & ~(up & ~above) & ~(upBefore & ~here); bits; bits &= bits - 1) {
                const size_t i = firstBit(bits);
                sets.join(runAt(i), runAboveAt(i) - (above >> i & 1));
            }
            const Word aboveNext = bitAfter(startsAbove, w, words), hereNext = bitAfter(starts, w, words);
            const Word upNext = bitAfter(links.up, w, words);
            for (Word bits = links.upRight[w] & ~(up & ~aboveNext) & ~(upNext & ~hereNext); bits; bits &= bits - 1) {
                const size_t i = firstBit(bits);
                sets.join(runAt(i), runAboveAt(i) + (aboveNext >> i & 1));
            }
        }
        run += countBits(here);
        runAbove += countBits(above);
    }
}

// Finds all runs and joins them. `starts` gets the bits of where they begin, in rows of words.
template <bool hasDiagonals>
RVK_NOINLINE void findRegions(size_t width, size_t height, Plane<const uint8_t> src, uint8_t threshold,
                              uint8_t* channels, size_t channelPitch, Word* starts, Word* linkBits, RunSets& sets)
{
    const size_t words = (width + kWordBits - 1) / kWordBits;
    const Word inLast = bitsUpTo((width - 1) % kWordBits);
    const Vec<uint8_t> thresholds = splat(threshold);
    const Links links = {linkBits, linkBits + words, linkBits + 2 * words};
    size_t runAbove = 0;
    for (size_t y = 0; y < height; ++y) {
        const Channels here = Channels::in(channels + y % 2 * 3 * channelPitch, channelPitch);
        const Channels above = Channels::in(channels + (y + 1) % 2 * 3 * channelPitch, channelPitch);
        here.take(src.row(y), width);

        // The bits of a row; those of pixels that do not exist are cleared.
        const auto compare = [&](Word* bits, const Channels& other, ptrdiff_t shift) RVK_INLINE_LAMBDA {
            bits[words - 1] = 0;
            for (size_t x = 0; x < width; x += kBytes)
                storeBits(reinterpret_cast<uint8_t*>(bits) + x / 8, here.areSimilar(x, other, shift, thresholds));
            bits[words - 1] &= inLast;
        };
        Word* const rowStarts = starts + y * words;
        compare(rowStarts, here, -1);
        for (size_t w = 0; w < words; ++w)
            rowStarts[w] = ~rowStarts[w];
        rowStarts[words - 1] &= inLast;
        rowStarts[0] |= 1;

        const size_t run = sets.count;
        sets.addRow(rowStarts, width);
        if (y > 0) {
            compare(links.up, above, 0);
            if constexpr (hasDiagonals) {
                compare(links.upLeft, above, -1);
                links.upLeft[0] &= ~Word{1};
                compare(links.upRight, above, 1);
                links.upRight[words - 1] &= inLast >> 1;
            }
            joinRows<hasDiagonals>(sets, words, rowStarts, run, rowStarts - words, runAbove, links);
        }
        runAbove = run;
    }
}

// The labels of `count` pixels of a row that has room for `room` from there on: what is written too much is the next
// runs', which come later.
RVK_INLINE void fillLabels(uint32_t* labels, size_t count, size_t room, uint32_t label)
{
    constexpr size_t lanes = Vec<uint32_t>::lanes;
    const Vec<uint32_t> v = splat(label);
    for (size_t x = 0; x < count; x += lanes) {
        if (x + lanes <= room)
            store(labels + x, v);
        else
            storePartial(labels + x, v, room - x);
    }
}

RVK_INLINE void addToSums(uint64_t* sums, const uint8_t* pixels, size_t count)
{
    constexpr size_t most = size_t{1} << 20; // pixels whose sum fits 32 bits
    while (count > 0) {
        const size_t some = count < most ? count : most;
        size_t x = 0;
        uint32_t sum[3] = {};
        if (some >= kBytes) {
            Vecs<uint32_t, 3> acc = {zero<uint32_t>(), zero<uint32_t>(), zero<uint32_t>()};
            for (; x + kBytes <= some; x += kBytes) {
                const Vecs<uint8_t, 3> v = load3(pixels + 3 * x);
                unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { acc[c] = addBytesTo(acc[c], v[c]); });
            }
            unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { sum[c] = reduceAdd(acc[c]); });
        }
        for (; x < some; ++x)
            unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { sum[c] += pixels[3 * x + c]; });
        unrolled<3>([&](auto c) RVK_INLINE_LAMBDA { sums[c] += sum[c]; });
        pixels += 3 * some;
        count -= some;
    }
}

// What is known of the first regions while their runs come in: bounds hold the last column and row, not the size.
struct Records
{
    rvkRegion* regions;
    uint64_t* sums;
    uint32_t count;

    RVK_INLINE void clear() const
    {
        for (size_t i = 0; i < count; ++i)
            regions[i] = {{INT32_MAX, 0, 0, 0}, 0, {0, 0, 0, 0}};
        __builtin_memset(sums, 0, size_t{count} * 3 * sizeof *sums);
    }
    RVK_INLINE void add(uint32_t label, size_t y, size_t begin, size_t end, const uint8_t* pixels) const
    {
        if (label - 1 >= count)
            return;
        rvkRegion& region = regions[label - 1];
        const auto left = static_cast<int32_t>(begin), right = static_cast<int32_t>(end - 1);
        if (region.area == 0)
            region.bounds.y = static_cast<int32_t>(y);
        region.bounds.x = left < region.bounds.x ? left : region.bounds.x;
        region.bounds.width = right > region.bounds.width ? right : region.bounds.width;
        region.bounds.height = static_cast<int32_t>(y);
        region.area += static_cast<uint32_t>(end - begin);
        addToSums(sums + size_t{3} * (label - 1), pixels + 3 * begin, end - begin);
    }
    RVK_INLINE void finish() const
    {
        for (size_t i = 0; i < count; ++i) {
            rvkRegion& region = regions[i];
            region.bounds.width += 1 - region.bounds.x;
            region.bounds.height += 1 - region.bounds.y;
            for (size_t c = 0; c < 3; ++c)
                region.mean[c] =
                    static_cast<uint8_t>((2 * sums[3 * i + c] + region.area) / (uint64_t{2} * region.area));
        }
    }
};

} // namespace

rvkStatus rvkImageSegmentationRegionGrowV(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint32_t threshold, uint32_t minArea, uint32_t connectivity, uint32_t* labels,
                                          uint32_t labelStride, rvkRegion* regions, uint32_t nRegionsMax,
                                          uint32_t* nRegions)
{
    const Plane<const uint8_t> image = {src, srcStride};
    const Plane<uint32_t> out = {labels, labelStride};
    const size_t words = (srcWidth + kWordBits - 1) / kWordBits, channelPitch = Channels::pitchOf(srcWidth);
    const Scratch<uint32_t> parents(srcHeight, srcWidth), areas(srcHeight, srcWidth);
    const Scratch<Word> starts(srcHeight, words), links(3, words);
    const Scratch<uint8_t> channels(6, channelPitch);
    if (!parents || !areas || !starts || !links || !channels)
        return RAVIK_ENORES;

    __builtin_memset(channels.get(), 0, 6 * channelPitch);
    RunSets sets = {parents.get(), areas.get()};
    const auto mostDifference = static_cast<uint8_t>(threshold < 255 ? threshold : 255);
    (connectivity == 8 ? findRegions<true> : findRegions<false>)(srcWidth, srcHeight, image, mostDifference,
                                                                 channels.get(), channelPitch, starts.get(),
                                                                 links.get(), sets);
    const uint32_t count = sets.label(minArea);
    const uint32_t recorded = count < nRegionsMax ? count : nRegionsMax;
    const Scratch<uint64_t> sums(recorded, 3);
    if (!sums)
        return RAVIK_ENORES;

    *nRegions = count;
    const Records records = {regions, sums.get(), recorded};
    records.clear();
    const uint32_t* labelOfRun = areas.get();
    for (size_t y = 0; y < srcHeight; ++y) {
        const Word* const rowStarts = starts.get() + y * words;
        const auto putRun = [&](size_t begin, size_t end) RVK_INLINE_LAMBDA {
            const uint32_t label = *labelOfRun++;
            fillLabels(out.row(y) + begin, end - begin, srcWidth - begin, label);
            records.add(label, y, begin, end, image.row(y));
        };
        size_t begin = 0;
        for (size_t w = 0; w < words; ++w)
            for (Word bits = rowStarts[w]; bits; bits &= bits - 1) {
                const size_t end = w * kWordBits + firstBit(bits);
                if (end > 0)
                    putRun(begin, end);
                begin = end;
            }
        putRun(begin, srcWidth);
    }
    records.finish();
    return RAVIK_SUCCESS;
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikRegionForms.h"

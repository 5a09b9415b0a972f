// C references of flood fill and region growing.
#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <bit>
#include <cstdlib>
#include <numeric>

namespace rvk {
namespace {

// ---- neighbours ----------------------------------------------------------------------------------------------------

struct Step
{
    int32_t x, y;
};

// Up, left, right, down, then the diagonal ones row by row. The first 4 or all 8 count.
constexpr Step kSteps[8] = {{0, -1}, {-1, 0}, {1, 0}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};

// action(number of the step, x, y) for each neighbour inside the picture.
template <class Action>
void forEachNeighbour(uint32_t x, uint32_t y, uint32_t width, uint32_t height, uint32_t connectivity, Action action)
{
    for (uint32_t k = 0; k < connectivity; ++k) {
        const uint32_t column = x + static_cast<uint32_t>(kSteps[k].x), row = y + static_cast<uint32_t>(kSteps[k].y);
        if (column < width && row < height) // those before the first wrap
            action(k, column, row);
    }
}

// The smallest rectangle around all pixels that have been added, at least one.
struct Bounds
{
    uint32_t left = UINT32_MAX, right = 0, top = UINT32_MAX, bottom = 0;

    void add(uint32_t x, uint32_t y)
    {
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
    }
    rvkRectangle rectangle() const
    {
        return {static_cast<int32_t>(left), static_cast<int32_t>(top), static_cast<int32_t>(right - left + 1),
                static_cast<int32_t>(bottom - top + 1)};
    }
};

} // namespace

// ---- flood fill ----------------------------------------------------------------------------------------------------

rvkStatus rvkFloodfillMergedu8C(uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                const uint32_t* seeds, uint32_t nSeeds, uint8_t lowDifference, uint8_t highDifference,
                                uint8_t newValue, uint32_t connectivity, rvkConnectedComponent* component)
{
    // Seeds of one value collect the same pixels or pixels apart: a pixel that was visited for the one need not be for
    // the other.
    enum : uint8_t { kReached = 1, kVisited = 2 };
    const Plane<uint8_t> image = {dst, dstStride};
    const Scratch<uint8_t> marks(dstHeight, dstWidth);
    const Scratch<uint32_t> waiting(dstHeight, dstWidth); // places of pixels, each once
    if (!marks || !waiting)
        return RAVIK_ENORES;
    const size_t pixels = size_t{dstWidth} * dstHeight;
    std::fill_n(marks.get(), pixels, uint8_t{0});

    bool isSeedValue[256] = {};
    for (size_t i = 0; i < nSeeds; ++i)
        isSeedValue[image.row(seeds[2 * i + 1])[seeds[2 * i]]] = true;
    for (int value = 0; value < 256; ++value) {
        if (!isSeedValue[value])
            continue;
        size_t count = 0;
        const auto visit = [&](uint32_t x, uint32_t y) {
            const size_t place = size_t{y} * dstWidth + x;
            const int pixel = image.row(y)[x];
            if ((marks[place] & kVisited) || pixel < value - lowDifference || pixel > value + highDifference)
                return;
            marks[place] |= kVisited | kReached;
            waiting[count++] = static_cast<uint32_t>(place);
        };
        for (size_t place = 0; place < pixels; ++place)
            marks[place] &= kReached;
        for (size_t i = 0; i < nSeeds; ++i)
            if (image.row(seeds[2 * i + 1])[seeds[2 * i]] == value)
                visit(seeds[2 * i], seeds[2 * i + 1]);
        while (count > 0) {
            const uint32_t place = waiting[--count];
            forEachNeighbour(place % dstWidth, place / dstWidth, dstWidth, dstHeight, connectivity,
                             [&](uint32_t, uint32_t x, uint32_t y) { visit(x, y); });
        }
    }

    Bounds bounds;
    uint32_t area = 0;
    for (uint32_t y = 0; y < dstHeight; ++y)
        for (uint32_t x = 0; x < dstWidth; ++x) {
            if (!marks[size_t{y} * dstWidth + x])
                continue;
            image.row(y)[x] = newValue;
            bounds.add(x, y);
            ++area;
        }
    if (component)
        *component = {bounds.rectangle(), area};
    return RAVIK_SUCCESS;
}

// ---- regions of a colour -------------------------------------------------------------------------------------------

namespace {

// Sets of pixels, each known by its first one. Each pixel points to itself or to an earlier one of its set.
struct PixelSets
{
    uint32_t* parents;

    uint32_t find(uint32_t pixel) const
    {
        while (parents[pixel] != pixel)
            pixel = parents[pixel] = parents[parents[pixel]];
        return pixel;
    }
    void join(uint32_t a, uint32_t b) const
    {
        const auto [first, second] = std::minmax({find(a), find(b)});
        parents[second] = first;
    }
};

bool areSimilar(const uint8_t* a, const uint8_t* b, uint32_t threshold)
{
    for (int channel = 0; channel < 3; ++channel)
        if (static_cast<uint32_t>(std::abs(a[channel] - b[channel])) > threshold)
            return false;
    return true;
}

} // namespace

rvkStatus rvkImageSegmentationRegionGrowC(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                          uint32_t threshold, uint32_t minArea, uint32_t connectivity, uint32_t* labels,
                                          uint32_t labelStride, rvkRegion* regions, uint32_t nRegionsMax,
                                          uint32_t* nRegions)
{
    const Plane image = {src, srcStride};
    const Plane<uint32_t> out = {labels, labelStride};
    const uint32_t pixels = srcWidth * srcHeight;
    const Scratch<uint32_t> parents(pixels), areas(pixels);
    if (!parents || !areas)
        return RAVIK_ENORES;

    const PixelSets sets = {parents.get()};
    std::iota(sets.parents, sets.parents + pixels, 0u);
    for (uint32_t y = 0; y < srcHeight; ++y)
        for (uint32_t x = 0; x < srcWidth; ++x)
            forEachNeighbour(x, y, srcWidth, srcHeight, connectivity, [&](uint32_t, uint32_t column, uint32_t row) {
                const uint32_t place = y * srcWidth + x, neighbour = row * srcWidth + column;
                if (neighbour < place && areSimilar(image.row(y) + 3 * x, image.row(row) + 3 * column, threshold))
                    sets.join(place, neighbour);
            });

    std::fill_n(areas.get(), pixels, 0u);
    for (uint32_t place = 0; place < pixels; ++place)
        ++areas[sets.find(place)];
    uint32_t count = 0;
    for (uint32_t place = 0; place < pixels; ++place)
        count += areas[place] != 0 && areas[place] >= minArea;
    const uint32_t recorded = std::min(count, nRegionsMax);
    const Scratch<Bounds> bounds(recorded);
    const Scratch<uint64_t> sums(recorded, 3);
    if (!bounds || !sums)
        return RAVIK_ENORES;
    std::fill_n(bounds.get(), recorded, Bounds{});
    std::fill_n(sums.get(), size_t{recorded} * 3, uint64_t{0});

    *nRegions = 0;
    for (uint32_t y = 0; y < srcHeight; ++y)
        for (uint32_t x = 0; x < srcWidth; ++x) {
            const uint32_t place = y * srcWidth + x, first = sets.find(place), area = areas[first];
            uint32_t& label = out.row(y)[x];
            if (first == place)
                label = area >= minArea ? ++*nRegions : 0;
            else
                label = out.row(first / srcWidth)[first % srcWidth];
            if (label == 0 || label > recorded)
                continue;
            regions[label - 1].area = area;
            bounds[label - 1].add(x, y);
            for (size_t channel = 0; channel < 3; ++channel)
                sums[3 * (label - 1) + channel] += image.row(y)[3 * x + channel];
        }
    for (size_t i = 0; i < recorded; ++i) {
        regions[i].bounds = bounds[i].rectangle();
        for (size_t channel = 0; channel < 3; ++channel)
            regions[i].mean[channel] =
                static_cast<uint8_t>((2 * sums[3 * i + channel] + regions[i].area) / (uint64_t{2} * regions[i].area));
        regions[i].mean[3] = 0;
    }
    return RAVIK_SUCCESS;
}

// ---- regions from seeds --------------------------------------------------------------------------------------------

namespace {

// A region's number of pixels n and their sum S, as S = mean * n + rest with 0 <= rest < n.
struct GrowingRegion
{
    uint32_t count = 0, rest = 0;
    int32_t mean = 0;

    void add(int32_t value)
    {
        const int64_t sum = int64_t{mean} * count + rest + value;
        ++count;
        const int64_t excess = int64_t{rest} + value - mean; // over mean * count
        if (excess < 0 || excess >= count)
            mean = static_cast<int32_t>(sum / count - (sum % count < 0));
        rest = static_cast<uint32_t>(sum - int64_t{mean} * count);
    }
    // floor(|n v - S| / n): without a division, since |n v - S| is n |v - mean| and the rest more or less.
    uint32_t price(int32_t value) const
    {
        return static_cast<uint32_t>(value > mean ? value - mean - (rest > 0) : mean - value);
    }
};

// A set of numbers below 65536 that knows its least: three levels of words, where a bit tells whether the word below it
// has any.
class PriceSet
{
public:
    void insert(uint32_t price)
    {
        m_prices[price / 64] |= bit(price);
        m_words[price / 4096] |= bit(price / 64);
        m_top |= bit(price / 4096);
    }
    void remove(uint32_t price)
    {
        if ((m_prices[price / 64] &= ~bit(price)) != 0 || (m_words[price / 4096] &= ~bit(price / 64)) != 0)
            return;
        m_top &= ~bit(price / 4096);
    }
    bool isEmpty() const { return m_top == 0; }
    uint32_t least() const
    {
        const auto first = [](uint64_t word) { return static_cast<uint32_t>(std::countr_zero(word)); };
        const uint32_t top = first(m_top), word = top * 64 + first(m_words[top]);
        return word * 64 + first(m_prices[word]);
    }

private:
    static uint64_t bit(uint32_t i) { return uint64_t{1} << i % 64; }

    uint64_t m_prices[1024] = {}, m_words[16] = {}, m_top = 0;
};

constexpr uint32_t kHighestPrice = 65535;

// Offers to take a pixel, by price and in the order in which they were made. An offer is known by its two pixels, one
// of which has a label and takes the other; no two pixels make two, because both have one afterwards. So an offer is
// the place of the earlier pixel and one of the forward steps, and all that is stored of it is which one comes next.
class Offers
{
public:
    static constexpr uint32_t kNone = UINT32_MAX;

    struct Queue
    {
        uint32_t first, last;
    };

    Offers(uint32_t* next, Queue* queues, uint32_t nQueues) : m_next(next), m_queues(queues)
    {
        std::fill_n(queues, nQueues, Queue{kNone, kNone});
    }

    void add(uint32_t offer, uint32_t price)
    {
        Queue& queue = m_queues[price];
        m_next[offer] = kNone;
        (queue.first == kNone ? queue.first : m_next[queue.last]) = offer;
        queue.last = offer;
        m_prices.insert(price);
    }
    bool isEmpty() const { return m_prices.isEmpty(); }
    uint32_t takeCheapest()
    {
        const uint32_t price = m_prices.least();
        Queue& queue = m_queues[price];
        const uint32_t offer = queue.first;
        queue.first = m_next[offer];
        if (queue.first == kNone)
            m_prices.remove(price);
        return offer;
    }

private:
    uint32_t* m_next;
    Queue* m_queues;
    PriceSet m_prices;
};

} // namespace

rvkStatus rvkImageSegmentationSeedRegionGrows16C(const int16_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                 uint32_t srcStride, const uint32_t* seeds, uint32_t nSeeds,
                                                 uint32_t maxDifference, uint32_t connectivity, uint32_t* labels,
                                                 uint32_t labelStride)
{
    // The forward one of each step and its opposite, by the numbers of kSteps.
    constexpr uint32_t kForward[8] = {1, 0, 0, 1, 3, 2, 2, 3};
    constexpr Step kForwardSteps[4] = {{1, 0}, {0, 1}, {-1, 1}, {1, 1}};
    const uint32_t nForward = connectivity / 2, nQueues = std::min(maxDifference, kHighestPrice) + 1;
    const Plane image = {src, srcStride};
    const Plane<uint32_t> out = {labels, labelStride};
    const Scratch<uint32_t> next(srcHeight, uint64_t{srcWidth} * nForward);
    const Scratch<Offers::Queue> queues(nQueues);
    const Scratch<GrowingRegion> regions(nSeeds);
    if (!next || !queues || !regions)
        return RAVIK_ENORES;

    Offers offers(next.get(), queues.get(), nQueues);
    const auto makeOffers = [&](const GrowingRegion& region, uint32_t x, uint32_t y) {
        const uint32_t place = y * srcWidth + x;
        forEachNeighbour(x, y, srcWidth, srcHeight, connectivity, [&](uint32_t k, uint32_t column, uint32_t row) {
            const uint32_t neighbour = row * srcWidth + column;
            const uint32_t price = region.price(image.row(row)[column]);
            if (out.row(row)[column] == 0 && price < nQueues)
                offers.add(std::min(place, neighbour) * nForward + kForward[k], price);
        });
    };

    for (uint32_t y = 0; y < srcHeight; ++y)
        std::fill_n(out.row(y), srcWidth, 0u);
    for (uint32_t i = 0; i < nSeeds; ++i) {
        const uint32_t x = seeds[2 * i], y = seeds[2 * i + 1];
        regions[i] = {};
        if (out.row(y)[x] != 0)
            continue;
        out.row(y)[x] = i + 1;
        regions[i].add(image.row(y)[x]);
    }
    for (uint32_t i = 0; i < nSeeds; ++i)
        if (regions[i].count > 0)
            makeOffers(regions[i], seeds[2 * i], seeds[2 * i + 1]);
    while (!offers.isEmpty()) {
        const uint32_t offer = offers.takeCheapest(), place = offer / nForward;
        const Step step = kForwardSteps[offer % nForward];
        const uint32_t x = place % srcWidth, y = place / srcWidth;
        const uint32_t otherX = x + static_cast<uint32_t>(step.x), otherY = y + static_cast<uint32_t>(step.y);
        uint32_t &label = out.row(y)[x], &otherLabel = out.row(otherY)[otherX];
        if (label != 0 && otherLabel != 0)
            continue;
        const bool isOther = label != 0; // the pixel that is taken
        const uint32_t newX = isOther ? otherX : x, newY = isOther ? otherY : y;
        label = otherLabel = label | otherLabel;
        GrowingRegion& region = regions[label - 1];
        region.add(image.row(newY)[newX]);
        makeOffers(region, newX, newY);
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikRegionForms.h"

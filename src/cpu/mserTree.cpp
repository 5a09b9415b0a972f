#include "cpu/mserTree.h"

#include <algorithm>

namespace rvk {
namespace {

// ---- flooding ------------------------------------------------------------------------------------------------------

constexpr uint32_t kLevels = 256;

// The pixels that the flood has reached and not left, a queue for each level. No pixel is there twice, so the histogram
// tells how many a level has.
struct Shore
{
    uint32_t* places;
    uint32_t next[kLevels];
    uint32_t end[2 * kLevels];   // what was seen before is of a level in the upper half, and put where nobody reads
    uint32_t nextLevel[kLevels]; // that has pixels, or kLevels

    Shore(uint32_t* memory, const uint32_t (&histogram)[kLevels]) : places(memory)
    {
        uint32_t room = 0;
        for (uint32_t level = 0; level < kLevels; ++level) {
            next[level] = end[level] = room;
            room += histogram[level];
        }
        std::fill_n(end + kLevels, kLevels, room);
        for (uint32_t level = kLevels, above = kLevels; level-- > 0;) {
            nextLevel[level] = above;
            above = histogram[level] ? level : above;
        }
    }
    // Takes a grey value of a cell. It does not branch: what is new around a pixel cannot be foreseen.
    void put(uint32_t place, uint32_t grey)
    {
        const uint32_t at = end[grey];
        places[at] = place;
        __builtin_prefetch(places + at + MserWorkspace::kAhead, 1);
        end[grey] = at + (grey < kMserSeen);
    }
    bool isEmpty(uint32_t level) const { return next[level] == end[level]; }
};
static_assert(kMserSeen == kLevels);

// Floods the picture from its first pixel: always on the lowest level that it can reach, so that a region is left when
// all its pixels are. The pixels of a level are taken first come, first served. So it is known where the flood goes
// next, and the processor need not wait for what the last pixel brought. (Beyond the end of a queue, what it is told to
// fetch is never used.)
template <uint32_t neighbours>
uint32_t flood(const MserWorkspace& work, uint32_t pitch, const uint32_t (&histogram)[kLevels], uint32_t minArea)
{
    // Of regions that the flood has not left, each in the one before it.
    struct Open
    {
        uint32_t level, begin, firstNode;
    } open[kLevels];
    Shore shore(work.words, histogram);
    uint16_t* const cells = work.cells;
    uint32_t* const order = work.order;
    const ptrdiff_t row = static_cast<ptrdiff_t>(pitch);
    const ptrdiff_t all8[8] = {-row - 1, -row + 1, row - 1, row + 1, -row, row, -1, 1};
    const ptrdiff_t* const distances = all8 + (8 - neighbours);

    uint32_t left = 0, nodes = 0, level = cells[pitch + 1];
    shore.put(pitch + 1, level);
    cells[pitch + 1] |= kMserSeen;
    Open* top = open;
    *top = {level, 0, 0};
    for (;;) {
        uint32_t next = shore.next[level];
        while (next != shore.end[level]) {
            const uint32_t place = shore.places[next];
            uint16_t* const cell = cells + place;
            const uint16_t* const soon = cells + shore.places[next + MserWorkspace::kAhead / 2];
            __builtin_prefetch(soon - row);
            __builtin_prefetch(soon);
            __builtin_prefetch(soon + row);
            uint32_t greys[neighbours], lowest = kMserSeen;
#pragma GCC unroll 8
            for (uint32_t i = 0; i < neighbours; ++i) {
                greys[i] = cell[distances[i]];
                lowest = std::min(lowest, greys[i]);
            }
            if (lowest < level) { // this pixel waits
                uint32_t i = 0;
                while (greys[i] != lowest)
                    ++i;
                shore.next[level] = next;
                level = lowest;
                next = shore.next[level];
                shore.put(place + static_cast<uint32_t>(distances[i]), lowest);
                cell[distances[i]] = static_cast<uint16_t>(lowest | kMserSeen);
                *++top = {level, left, nodes};
                continue;
            }
            // Many, since an addition to one end waits for the one before it.
            constexpr uint32_t marks = kLevels / neighbours;
            const uint32_t mark = kMserSeen + place % marks;
#pragma GCC unroll 8
            for (uint32_t i = 0; i < neighbours; ++i) {
                shore.put(place + static_cast<uint32_t>(distances[i]), greys[i]);
                cell[distances[i]] = static_cast<uint16_t>(mark + i * marks);
            }
            order[left++] = place;
            ++next;
        }
        shore.next[level] = next;
        do
            level = shore.nextLevel[level];
        while (level != kLevels && shore.isEmpty(level));
        if (left - top->begin < minArea)
            nodes = top->firstNode;
        work.nodes[nodes++] = {top->begin, left, top->level};
        if (level == kLevels)
            return nodes;
        if (top > open && top[-1].level == level)
            --top; // a pixel of the region around waits there
        else
            top->level = level;
    }
}

// ---- selection -----------------------------------------------------------------------------------------------------

// The regions around a node, the largest first, while the nodes are taken from the last to the first: each comes after
// those around it. Their levels differ, so there are no more than 256.
template <class T>
class Path
{
public:
    void leaveWhatEndsBefore(const MserNode& node)
    {
        while (m_size > 0 && m_nodes[m_size - 1].node.begin > node.begin)
            --m_size;
    }
    void enter(const MserNode& node, const T& value) { m_nodes[m_size++] = {node, value}; }
    bool isEmpty() const { return m_size == 0; }
    const MserNode& node() const { return m_nodes[m_size - 1].node; }
    const T& value() const { return m_nodes[m_size - 1].value; }
    // The area of the largest one on a level of at most `level`, or of the node itself.
    uint32_t areaAt(uint32_t level, const MserNode& node) const
    {
        const auto* const found =
            std::partition_point(m_nodes, m_nodes + m_size, [=](const Entry& e) { return e.node.level > level; });
        return found == m_nodes + m_size ? node.area() : found->node.area();
    }

private:
    struct Entry
    {
        MserNode node;
        T value;
    } m_nodes[256];
    size_t m_size = 0;
};

// Whether each of the nodes is stable, and its area delta levels higher.
void findStable(const MserNode* nodes, uint32_t count, uint32_t delta, uint8_t* isStable, uint32_t* grown)
{
    Path<uint32_t> around; // by their numbers
    for (uint32_t i = count; i-- > 0;) {
        const MserNode& node = nodes[i];
        around.leaveWhatEndsBefore(node);
        grown[i] = around.areaAt(std::min(node.level + delta, 255u), node);
        isStable[i] = 1;
        if (!around.isEmpty()) {
            const uint32_t parent = around.value();
            const bool variesMore = uint64_t{grown[i]} * nodes[parent].area() > uint64_t{grown[parent]} * node.area();
            isStable[variesMore ? i : parent] = 0;
        }
        around.enter(node, i);
    }
}

// Leaves the flags of those that are kept, and returns their number.
uint32_t select(const MserNode* nodes, uint32_t count, const MserParameters& parameters, uint8_t* isKept,
                const uint32_t* grown)
{
    uint32_t kept = 0;
    Path<char> around;
    for (uint32_t i = count; i-- > 0;) {
        if (!isKept[i])
            continue;
        const MserNode& node = nodes[i];
        const double area = node.area(), growth = grown[i] - node.area();
        around.leaveWhatEndsBefore(node);
        const double areaAround = around.isEmpty() ? 0 : around.node().area();
        isKept[i] = node.area() >= parameters.minArea && node.area() <= parameters.maxArea &&
                    growth <= double{parameters.maxVariation} * area &&
                    (around.isEmpty() || areaAround - area >= double{parameters.minDiversity} * areaAround);
        if (!isKept[i])
            continue;
        around.enter(node, 0);
        ++kept;
    }
    return kept;
}

// In place of the cells, once the flood is over.
uint8_t* flagsOf(const MserWorkspace& work)
{
    return reinterpret_cast<uint8_t*>(work.cells);
}

} // namespace

uint32_t floodMserTree(const MserWorkspace& work, uint32_t pitch, const uint32_t (&histogram)[256], uint32_t minArea,
                       uint32_t connectivity)
{
    return connectivity == 8 ? flood<8>(work, pitch, histogram, minArea) : flood<4>(work, pitch, histogram, minArea);
}

uint32_t selectMserRegions(const MserWorkspace& work, uint32_t nodes, const MserParameters& parameters)
{
    findStable(work.nodes, nodes, parameters.delta, flagsOf(work), work.words);
    return select(work.nodes, nodes, parameters, flagsOf(work), work.words);
}

void listMserRegions(const MserWorkspace& work, uint32_t nodes, MserKept* list)
{
    const uint8_t* const isKept = flagsOf(work);
    const uint32_t* const grown = work.words;
    uint32_t kept = 0;
    Path<uint32_t> around;
    for (uint32_t i = nodes; i-- > 0;) {
        if (!isKept[i])
            continue;
        around.leaveWhatEndsBefore(work.nodes[i]);
        list[kept] = {
            work.nodes[i], grown[i], around.isEmpty() ? MserKept::kNone : around.value(), UINT32_MAX, 0, 0, {}};
        around.enter(work.nodes[i], kept);
        ++kept;
    }
}

} // namespace rvk

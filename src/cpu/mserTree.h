// The regions of a picture at all levels, and which of them are kept.
#pragma once

#include "cpu/ravikMserC.h"

#include <ravik/types.h>

#include <initializer_list>

namespace rvk {

// A region. Its pixels are the places that the flood left from number `begin` to `end` - 1.
struct MserNode
{
    uint32_t begin, end, level;

    uint32_t area() const { return end - begin; }
};

// Working memory of a pass, in one block.
struct MserWorkspace
{
    static constexpr uint64_t kAlignment = 64;
    static constexpr uint32_t kAhead = 16; // so many places ahead the flood tells the processor what it will need

    uint16_t* cells;
    uint32_t* words; // as many as cells and a few more; first the flood's shore
    uint32_t* order; // the places of all pixels in the order in which the flood left them
    MserNode* nodes; // the regions, each after those in it

    // Calls visit(bytes) for each of the four.
    template <class Visit>
    static void forEachPart(uint32_t width, uint32_t height, Visit visit)
    {
        const uint64_t cells = mserCells(width, height), pixels = uint64_t{width} * height;
        for (const uint64_t bytes : {cells * sizeof(uint16_t), (cells + kAhead) * sizeof(uint32_t),
                                     pixels * sizeof(uint32_t), pixels * sizeof(MserNode)})
            visit((bytes + kAlignment - 1) / kAlignment * kAlignment);
    }
    MserWorkspace(uint8_t* memory, uint32_t width, uint32_t height)
    {
        uint8_t *parts[4], **next = parts;
        forEachPart(width, height, [&](uint64_t bytes) {
            *next++ = memory;
            memory += bytes;
        });
        cells = reinterpret_cast<uint16_t*>(parts[0]);
        words = reinterpret_cast<uint32_t*>(parts[1]);
        order = reinterpret_cast<uint32_t*>(parts[2]);
        nodes = reinterpret_cast<MserNode*>(parts[3]);
    }
};

// A region that is kept.
struct MserKept
{
    MserNode node;
    uint32_t grown;  // the area delta levels higher
    uint32_t parent; // the kept region around it, kNone
    uint32_t first;  // the least place
    uint32_t rank;   // its place in the list
    uint32_t put;    // where its next pixel goes
    rvkRectangle bounds;

    static constexpr uint32_t kNone = UINT32_MAX;
};

// Floods the picture whose cells are in the workspace, and returns the number of regions that `nodes` has then. Regions
// of less than minArea pixels that lie in others such are left out: nobody will ask for them.
uint32_t floodMserTree(const MserWorkspace& work, uint32_t pitch, const uint32_t (&histogram)[256], uint32_t minArea,
                       uint32_t connectivity);

// Flags, in place of the cells, which nodes are kept, and finds, in place of the shore, their areas delta levels higher.
// Returns how many are kept.
uint32_t selectMserRegions(const MserWorkspace& work, uint32_t nodes, const MserParameters& parameters);

// Lists what is flagged, each after those around it.
void listMserRegions(const MserWorkspace& work, uint32_t nodes, MserKept* list);

} // namespace rvk

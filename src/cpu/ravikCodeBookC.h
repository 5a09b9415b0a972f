// What a model of code books is, and the work on single pixels that the reference and the vector implementation share.
#pragma once

#include <ravik/codebook.h>

#include <cstddef>
#include <cstdint>

namespace rvk {

inline constexpr uint32_t kCodeBookBlock = 64; // pixels of a row
inline constexpr size_t kCodeBookChannels = 3;

// One codeword of each pixel in a block. All that is compared comes first and whole vectors at a time.
struct alignas(64) CodeBookLayer
{
    uint8_t min[kCodeBookChannels][kCodeBookBlock], max[kCodeBookChannels][kCodeBookBlock];
    uint8_t learnLow[kCodeBookChannels][kCodeBookBlock], learnHigh[kCodeBookChannels][kCodeBookBlock];
    uint32_t lastUpdate[kCodeBookBlock], stale[kCodeBookBlock];
    CodeBookLayer* next; // the next codeword's, or null
};

// A block's layers, at least as many as its longest list has codewords, and how many each pixel has. The codewords of
// a layer that a pixel has not are any bytes.
struct alignas(64) CodeBookBlock
{
    uint8_t counts[kCodeBookBlock];
    CodeBookLayer* first;
};

} // namespace rvk

struct rvkBGCodeBookModel
{
    uint32_t width, height, blocksAcross, time;
    uint8_t learnBounds[rvk::kCodeBookChannels], modMin[rvk::kCodeBookChannels], modMax[rvk::kCodeBookChannels];
    uint32_t maxCodewords;
    rvk::CodeBookBlock* blocks; // row by row
};

namespace rvk {

// Adds a codeword for pixel i of a block, or replaces one; RAVIK_ENORES if there is no memory for another layer.
rvkStatus addCodeword(const rvkBGCodeBookModel& model, CodeBookBlock& block, size_t i, const uint8_t* pixel);

// Removes the stale codewords of pixel i, and begins anew to count how stale the others get.
void removeStale(const rvkBGCodeBookModel& model, CodeBookBlock& block, size_t i, uint32_t threshold);

// Releases the layers behind the longest list.
void releaseUnusedLayers(CodeBookBlock& block);

} // namespace rvk

// What a handle of the HOG functions is, and what the reference and the vector implementation share.
#pragma once

#include <ravik/hog.h>

#include <cstdint>

struct rvkHOG
{
    uint32_t method, cellSize, blockSize, blockStep, binCount;
};

namespace rvk {

inline constexpr uint32_t kMostHogCellSize = 64, kMostHogBlockSize = 8, kMostHogBins = 36;
inline constexpr uint32_t kFhogBins = 9, kFhogSignedBins = 18, kFhogValues = 31;

// The largest share of a value in its block, the weight of texture, and what a value of 1 is stored as.
inline constexpr float kHogClip = 0.2f, kFhogTextureWeight = 0.2357f, kHogOne = 32768;

// Vector implementations may not leave shared definitions behind.
#define RVK_ALWAYS_INLINE inline __attribute__((always_inline))

// How many cells and blocks a picture has, and what they are made of. FHOG's blocks are cells here.
struct HogGrid
{
    uint32_t cellsAcross, cellsDown, blocksAcross, blocksDown, blockValues;

    RVK_ALWAYS_INLINE HogGrid(const rvkHOG& hog, uint32_t width, uint32_t height)
        : cellsAcross(width / hog.cellSize), cellsDown(height / hog.cellSize), blocksAcross(cellsAcross),
          blocksDown(cellsDown), blockValues(kFhogValues)
    {
        if (hog.method == RAVIK_HOG_FHOG)
            return;
        blocksAcross = blocksIn(hog, cellsAcross);
        blocksDown = blocksIn(hog, cellsDown);
        blockValues = hog.blockSize * hog.blockSize * hog.binCount;
    }

private:
    static RVK_ALWAYS_INLINE uint32_t blocksIn(const rvkHOG& hog, uint32_t cells)
    {
        return cells < hog.blockSize ? 0 : (cells - hog.blockSize) / hog.blockStep + 1;
    }
};

#undef RVK_ALWAYS_INLINE

} // namespace rvk

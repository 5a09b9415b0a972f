// What the reference and the vector implementation of contours share.
#pragma once

#include "scratch.h"

#include <ravik/contour.h>

#include <cstddef>
#include <cstdint>

struct rvkContourWorkspace
{
    uint32_t maxWidth, maxHeight;
    void* memory; // rvk::contourMemory(maxWidth, maxHeight) bytes
};

namespace rvk {

// Vector implementations may not leave shared definitions behind.
#define RVK_ALWAYS_INLINE inline __attribute__((always_inline))

enum class ContourMode { external, list, ccomp, tree };

// Pixels from row to row of the working memory. There is at least one column more than the picture has.
constexpr uint64_t contourPitch(uint32_t width)
{
    return (uint64_t{width} + 64) / 64 * 64;
}

// The points of a contour that is not known to fit in the caller's list yet.
constexpr size_t kContourChunk = 16384;

// The bytes that any implementation takes for a picture of this size, or a smaller one.
constexpr uint64_t contourMemory(uint32_t width, uint32_t height)
{
    return 6 * contourPitch(width) * (uint64_t{height} + 2) + kContourChunk * 2 * sizeof(int32_t) + 1024;
}

// The working memory of a call: that of the workspace or, without one, scratch memory of so many bytes.
class ContourMemory
{
public:
    RVK_ALWAYS_INLINE ContourMemory(const rvkContourWorkspace* workspace, uint64_t bytes)
        : m_scratch(workspace ? nullptr : getScratchRows(1, bytes, 1)),
          m_data(workspace ? workspace->memory : m_scratch)
    {
    }
    RVK_ALWAYS_INLINE ~ContourMemory()
    {
        if (m_scratch)
            releaseScratch(m_scratch);
    }
    ContourMemory(const ContourMemory&) = delete;
    ContourMemory& operator=(const ContourMemory&) = delete;

    RVK_ALWAYS_INLINE uint8_t* data() const { return static_cast<uint8_t*>(m_data); }

private:
    void *m_scratch, *m_data;
};

// A border by its index in the lists, and whether it is that of a hole.
class BorderName
{
public:
    RVK_ALWAYS_INLINE BorderName(uint32_t index, bool isHole) : m_number(2 * index + isHole) {}
    RVK_ALWAYS_INLINE explicit BorderName(uint32_t number) : m_number(number) {}
    RVK_ALWAYS_INLINE uint32_t index() const { return m_number / 2; }
    RVK_ALWAYS_INLINE bool isHole() const { return m_number % 2; }
    RVK_ALWAYS_INLINE uint32_t number() const { return m_number; }

private:
    uint32_t m_number;
};

// What a call fills. Without memory for points it only counts.
struct ContourLists
{
    uint32_t* sizes;
    uint32_t mostContours;
    int32_t* points;
    uint32_t mostPoints;
    int32_t* hierarchy;
    uint32_t count = 0;
    uint64_t pointCount = 0;

    // Adds a contour, unless it does not fit.
    bool add(uint64_t size, int32_t parent);
    // Where the points of the next contour go.
    RVK_ALWAYS_INLINE int32_t* nextPoints() const
    {
        return points ? points + 2 * static_cast<size_t>(pointCount) : nullptr;
    }
    // The parent of a new border, by the one that is met before it: on the other side of the background left of an outer
    // border, or where the component begins left of a hole.
    RVK_ALWAYS_INLINE int32_t parentBy(BorderName met, bool isHole) const
    {
        return met.isHole() != isHole ? static_cast<int32_t>(met.index()) : hierarchy[4 * size_t{met.index()} + 3];
    }
    // Completes the hierarchy, of which the parents are known.
    void link() const;
};

// The reference, for pictures of any width.
rvkStatus followBorders(ContourMode mode, const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                        uint32_t approximation, const rvkContourWorkspace* workspace, ContourLists& lists);

// Draws the contours that are long enough into a picture of zeros, all of whose rows are `width` bytes.
rvkStatus drawForeground(uint8_t* picture, uint32_t width, uint32_t height, uint32_t shape, float perimeterScale,
                         ContourLists& lists);

#undef RVK_ALWAYS_INLINE

} // namespace rvk

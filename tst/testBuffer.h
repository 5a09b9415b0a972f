// Test buffers: two-dimensional windows into blocks of the library's own buffer object.
#pragma once

#include <ravik/buffer.h>

#include <cstdint>

// How a test buffer lies in its block. Sizes and positions are in elements and rows.
struct MemShape_
{
    int32_t stride; // elements per row of the whole block
    int32_t rows;   // rows of the whole block
    int32_t x, y;   // first element of the window
    int32_t width, height;
    int32_t elementSize; // bytes
    int32_t alignment;   // bytes; 0 for the default

    bool operator==(const MemShape_&) const = default;

    // A window that fills its block.
    static MemShape_ packed(int32_t width, int32_t height, int32_t elementSize)
    {
        return {width, height, 0, 0, width, height, elementSize, 0};
    }
};

class RAVIK_TEST_Buffer : public rvkBuffer
{
public:
    int32_t stride = 0;
    int32_t rows = 0;
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
    int32_t elementSize = 0;
    int32_t alignment = 0;
    int32_t onHeap = 0; // stays on the ordinary heap even for a DSP target

    RAVIK_TEST_Buffer() = default;
    RAVIK_TEST_Buffer(const RAVIK_TEST_Buffer&) = delete;
    RAVIK_TEST_Buffer& operator=(const RAVIK_TEST_Buffer&) = delete;
    ~RAVIK_TEST_Buffer() { Release(); }

    // Makes a block of the shape and fills it with zero bytes; true on success. With `keep` an earlier block that is
    // large enough is used again.
    bool Shape(MemShape_ shape, rvkMemOption option, bool keep);
    // Frees the block and forgets the shape.
    void Release();

    MemShape_ shape() const { return {stride, rows, x, y, width, height, elementSize, alignment}; }
    bool empty() const { return elementSize == 0; }
    uint32_t strideBytes() const { return static_cast<uint32_t>(stride) * static_cast<uint32_t>(elementSize); }
    uint32_t blockBytes() const { return strideBytes() * static_cast<uint32_t>(rows); }
    // The block's first byte, and the first byte of a row of the window.
    uint8_t* block() const { return static_cast<uint8_t*>(data); }
    uint8_t* row(int32_t index) const;
    template <class T>
    T* window() const
    {
        return reinterpret_cast<T*>(row(0));
    }

private:
    void setShape(const MemShape_& shape);

    uint32_t m_offset = 0; // of the data in a shared block
};

// Copies a window into another of the same size.
void copyWindow(const RAVIK_TEST_Buffer& from, RAVIK_TEST_Buffer& to);

// Widens the buffer's rows to `newStride` elements when they are narrower. Returns 0 on success.
template <class T>
int RAVIK_TEST_AddStrideToBuffer(RAVIK_TEST_Buffer& buffer, int newStride, rvkMemOption option, bool keepContents);

// Flushes and invalidates the caches of `count` pairs of (void* address, int bytes) through the DSP stub library, when
// -C is on and the library has that entry.
void RAVIK_TEST_Buffer_Flush_Invalidate(int count, ...);

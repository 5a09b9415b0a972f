#include "testBuffer.h"

#include "device.h"
#include "settings.h"

#include <cstdarg>
#include <cstring>

namespace {

// Bytes of a block; 0 when the shape makes no sense or is too large.
uint32_t bytesOf(const MemShape_& shape)
{
    uint64_t bytes;
    if (shape.stride < 1 || shape.rows < 1 || shape.elementSize < 1 ||
        __builtin_mul_overflow(static_cast<uint64_t>(shape.stride) * static_cast<uint64_t>(shape.rows),
                               static_cast<uint64_t>(shape.elementSize), &bytes) ||
        bytes > INT32_MAX)
        return 0;
    return static_cast<uint32_t>(bytes);
}

// How far -AL moves the data of a shared block from its well-aligned start: just enough to lose every larger alignment.
uint32_t offsetFor(const MemShape_& shape, bool onHeap)
{
    if (!settings.limitAlignment || onHeap)
        return 0;
    return static_cast<uint32_t>(shape.alignment ? shape.alignment : shape.elementSize);
}

} // namespace

bool RAVIK_TEST_Buffer::Shape(MemShape_ shape, rvkMemOption kind, bool keep)
{
    const uint32_t bytes = bytesOf(shape);
    if (bytes == 0)
        return false;
    if (kind == RAVIK_MEM_SHARED && (onHeap || !runSwitches.sharedVectors))
        kind = RAVIK_MEM_SYSTEM;
    const uint32_t offset = offsetFor(shape, onHeap);
    if (!Size(bytes, kind, keep && offset == m_offset, offset))
        return false;
    m_offset = offset;
    setShape(shape);
    memset(data, 0, bytes);
    return true;
}

void RAVIK_TEST_Buffer::Release()
{
    setShape({});
    Free(option);
}

void RAVIK_TEST_Buffer::setShape(const MemShape_& shape)
{
    stride = shape.stride;
    rows = shape.rows;
    x = shape.x;
    y = shape.y;
    width = shape.width;
    height = shape.height;
    elementSize = shape.elementSize;
    alignment = shape.alignment;
}

uint8_t* RAVIK_TEST_Buffer::row(int32_t index) const
{
    const size_t element = static_cast<size_t>(y + index) * static_cast<size_t>(stride) + static_cast<size_t>(x);
    return block() + element * static_cast<size_t>(elementSize);
}

void copyWindow(const RAVIK_TEST_Buffer& from, RAVIK_TEST_Buffer& to)
{
    for (int32_t j = 0; j < from.height; j++)
        memcpy(to.row(j), from.row(j), static_cast<size_t>(from.width) * static_cast<size_t>(from.elementSize));
}

template <class T>
int RAVIK_TEST_AddStrideToBuffer(RAVIK_TEST_Buffer& buffer, int newStride, rvkMemOption option, bool keepContents)
{
    if (buffer.stride >= newStride)
        return 0;

    MemShape_ shape = buffer.shape();
    RAVIK_TEST_Buffer copy;
    if (keepContents) {
        if (shape.elementSize != sizeof(T) || !copy.Shape(shape, option, false))
            return 1;
        copyWindow(buffer, copy);
    }
    shape.stride = newStride;
    if (!buffer.Shape(shape, option, false))
        return 1;
    if (keepContents) {
        if (copy.width != buffer.width || copy.height != buffer.height)
            return 1;
        copyWindow(copy, buffer);
    }
    return 0;
}

template int RAVIK_TEST_AddStrideToBuffer<signed char>(RAVIK_TEST_Buffer&, int, rvkMemOption, bool);
template int RAVIK_TEST_AddStrideToBuffer<unsigned char>(RAVIK_TEST_Buffer&, int, rvkMemOption, bool);
template int RAVIK_TEST_AddStrideToBuffer<short>(RAVIK_TEST_Buffer&, int, rvkMemOption, bool);
template int RAVIK_TEST_AddStrideToBuffer<int>(RAVIK_TEST_Buffer&, int, rvkMemOption, bool);

void RAVIK_TEST_Buffer_Flush_Invalidate(int count, ...)
{
    if (!settings.flushCaches || !dspLibrary.flushInvalidate)
        return;
    va_list pairs;
    va_start(pairs, count);
    for (int i = 0; i < count; i++) {
        void* const address = va_arg(pairs, void*);
        dspLibrary.flushInvalidate(address, va_arg(pairs, int));
    }
    va_end(pairs);
}

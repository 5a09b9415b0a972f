#include <ravik/buffer.h>

#include "memory.h"
#include "platform/platform.h"

#include <ravik/frame.h>

#include <climits>
#include <cstdio>
#include <cstring>

namespace {

constexpr size_t kSystemAlignment = 16;
constexpr uint32_t kLibraryAlignment = 128;
constexpr int kSharedHeap = 25;
constexpr uint32_t kSharedFlags = 1;

// By what the block is, whatever the caller asks for now: `option` always tells the kind of an existing block.
void release(rvkBuffer& buffer)
{
    if (buffer.raw) {
        if (buffer.option == RAVIK_MEM_LIBRARY)
            rvkMemFree(buffer.raw);
        else if (buffer.option == RAVIK_MEM_SHARED)
            dspmem_free(buffer.sharedHandle);
        else
            rvk::systemAllocator.release(buffer.raw);
    }
    buffer.capacity = 0;
    buffer.size = 0;
    buffer.raw = nullptr;
    buffer.data = nullptr;
}

// Releases the block unless `keep` can be honoured, then notes the size. Whether room must still be made.
bool needsBlock(rvkBuffer& buffer, unsigned int size, rvkMemOption option, bool keep)
{
    const bool reusable = buffer.raw && buffer.option == option && buffer.capacity >= size;
    if (!(keep && reusable))
        release(buffer);
    buffer.size = size;
    return buffer.capacity < size;
}

bool allocateShared(rvkBuffer& buffer, unsigned int size, unsigned int offset)
{
    const uint64_t bytes = (uint64_t{offset} + size) * 2;
    void* handle =
        bytes <= INT_MAX ? allocateSharedMemory(kSharedHeap, kSharedFlags, static_cast<int>(bytes)) : nullptr;
    if (!handle) {
        printf("Failed to Allocate ION Memory !!!");
        return false;
    }
    buffer.sharedHandle = handle;
    buffer.sharedSize = static_cast<uint32_t>(bytes);
    buffer.raw = reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(handle) | offset);
    buffer.data = buffer.raw;
    return true;
}

bool allocateSystem(rvkBuffer& buffer, unsigned int size)
{
    size_t bytes;
    if (!__builtin_add_overflow(size, kSystemAlignment - 1, &bytes))
        buffer.raw = rvk::systemAllocator.allocate(bytes);
    if (!buffer.raw) {
        buffer.size = 0;
        return false;
    }
    const uintptr_t padding = -reinterpret_cast<uintptr_t>(buffer.raw) & (kSystemAlignment - 1);
    buffer.data = static_cast<char*>(buffer.raw) + padding;
    return true;
}

} // namespace

rvkBuffer::~rvkBuffer()
{
    release(*this);
}

bool rvkBuffer::commonSize(unsigned int wanted, rvkMemOption kind, bool keep, unsigned int offset)
{
    if (!needsBlock(*this, wanted, kind, keep))
        return true;
    const bool allocated = kind == RAVIK_MEM_SHARED   ? allocateShared(*this, wanted, offset)
                           : kind == RAVIK_MEM_SYSTEM ? allocateSystem(*this, wanted)
                                                      : false;
    if (!allocated)
        return false;
    capacity = wanted;
    option = kind;
    return true;
}

bool rvkBuffer::sharedMemSize(unsigned int wanted, rvkMemOption, bool keep)
{
    if (!needsBlock(*this, wanted, RAVIK_MEM_LIBRARY, keep))
        return true;
    raw = rvkMemAlloc(wanted, kLibraryAlignment);
    if (!raw) {
        size = 0;
        return false;
    }
    data = raw;
    capacity = wanted;
    option = RAVIK_MEM_LIBRARY;
    return true;
}

bool rvkBuffer::Size(unsigned int wanted, rvkMemOption kind, bool keep, unsigned int offset)
{
    return kind == RAVIK_MEM_LIBRARY ? sharedMemSize(wanted, kind, keep) : commonSize(wanted, kind, keep, offset);
}

bool rvkBuffer::Set(const void* src, unsigned int wanted, rvkMemOption kind, bool keep)
{
    if (!Size(wanted, kind, keep, 0))
        return false;
    if (src) {
        if (!data) {
            release(*this);
            return false;
        }
        memcpy(data, src, wanted);
    }
    option = kind;
    return true;
}

bool rvkBuffer::Free(rvkMemOption kind)
{
    return kind == RAVIK_MEM_LIBRARY ? sharedMemFree(kind) : commonFree(kind);
}

bool rvkBuffer::commonFree(rvkMemOption)
{
    release(*this);
    return true;
}

bool rvkBuffer::sharedMemFree(rvkMemOption)
{
    release(*this);
    return true;
}

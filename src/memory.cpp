#include "memory.h"

#include <ravik/frame.h>

#include <bit>
#include <cstdlib>

namespace rvk {

constinit SystemAllocator systemAllocator = {malloc, free};
constinit std::atomic<SharedMemAlloc*> sharedMemAllocHook = nullptr;
constinit std::atomic<SharedMemFree*> sharedMemFreeHook = nullptr;

namespace {

constexpr uint32_t kLargestAlignment = 128;

// An aligned block is one system block of nBytes + alignment + 1 bytes. The byte before the returned address holds the
// distance between the two, 2 to alignment + 1, so it fits its byte and the block stays inside its allocation.
void* allocateAligned(uint32_t nBytes, uint32_t alignment)
{
    size_t total;
    if (!std::has_single_bit(alignment) || alignment > kLargestAlignment ||
        __builtin_add_overflow(nBytes, alignment + 1, &total))
        return nullptr;
    auto* raw = static_cast<uint8_t*>(systemAllocator.allocate(total));
    if (!raw)
        return nullptr;
    const uintptr_t limit = reinterpret_cast<uintptr_t>(raw) + alignment + 1;
    const auto distance = static_cast<uint8_t>(alignment + 1 - limit % alignment);
    uint8_t* data = raw + distance;
    data[-1] = distance;
    return data;
}

void releaseAligned(void* ptr)
{
    auto* data = static_cast<uint8_t*>(ptr);
    systemAllocator.release(data - data[-1]);
}

} // namespace

} // namespace rvk

void* rvkMemAlloc(uint32_t nBytes, uint32_t byteAlignment)
{
    auto* allocateShared = rvk::sharedMemAllocHook.load();
    if (allocateShared && rvk::sharedMemFreeHook.load()) {
        if (void* shared = allocateShared(nBytes, byteAlignment))
            return shared;
    }
    return rvk::allocateAligned(nBytes, byteAlignment);
}

void rvkMemFree(void* ptr)
{
    if (!ptr)
        return;
    auto* releaseShared = rvk::sharedMemFreeHook.load();
    const bool isShared = rvk::sharedMemAllocHook.load() && releaseShared && releaseShared(ptr) == 0;
    if (!isShared)
        rvk::releaseAligned(ptr);
}

void rvkHeapStatsInit(void) {}

void rvkHeapStats(void) {}

void rvkHeapStatsMalloc(void*, uint32_t) {}

void rvkHeapStatsFree(void*) {}

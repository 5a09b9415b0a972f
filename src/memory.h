// The allocator behind everything that the library takes from the system, and the companion library's shared-memory
// hooks.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace rvk {

// Tests replace it to count allocations and to make them fail.
struct SystemAllocator
{
    void* (*allocate)(size_t size); // null on failure
    void (*release)(void* block);   // accepts null
};
extern SystemAllocator systemAllocator;

using SharedMemAlloc = void*(uint32_t size, uint32_t alignment);
using SharedMemFree = int(void* ptr); // non-zero: the pointer is not one of its own

extern std::atomic<SharedMemAlloc*> sharedMemAllocHook;
extern std::atomic<SharedMemFree*> sharedMemFreeHook;

} // namespace rvk

// The scratch pool: 32 slots, each with a block that is kept for the next request when its buffer comes back.
#include "scratch.h"

#include "companion.h"
#include "memory.h"

#include <ravik/frame.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>
#include <mutex>
#include <pthread.h>

namespace rvk {

namespace {

// Stands just before every buffer that is handed out.
struct Header
{
    uint32_t tag;
    uintptr_t word; // pool buffer: its slot; other buffer: the block to free
};
static_assert(sizeof(Header) == 2 * sizeof(void*));
constexpr uint32_t kPoolTag = 0xCDCDCDCD;
constexpr uint32_t kHeapTag = 0xABABABAB;
constexpr uint32_t kCacheLine = 64;

struct Block
{
    void* raw;
    size_t rawSize;
    void* user;        // what is handed out
    uint32_t capacity; // the largest request that the block can serve
};

struct Slot
{
    Block block;
    // Also the slot's lock, taken with a single try and held while the buffer is out. A pthread mutex could be given
    // back only by the thread that took it; a scratch buffer may travel.
    std::atomic<uint32_t> inUse;
};

constinit Slot slots[32] = {};
constinit std::atomic<bool> poolReady = false;

void writeHeader(void* user, uint32_t tag, const void* word)
{
    const Header header = {tag, reinterpret_cast<uintptr_t>(word)};
    memcpy(static_cast<char*>(user) - sizeof header, &header, sizeof header);
}

Header readHeader(const void* user)
{
    Header header;
    memcpy(&header, static_cast<const char*>(user) - sizeof header, sizeof header);
    return header;
}

bool isAligned(const void* ptr, uint32_t alignment)
{
    return (reinterpret_cast<uintptr_t>(ptr) & (alignment - 1)) == 0;
}

// A new block for `size` bytes at a multiple of `alignment`, with room for the header; all null on failure.
Block allocateBlock(uint32_t size, uint32_t alignment)
{
    const uint64_t total = uint64_t{size} + (alignment - 1) + sizeof(Header);
    void* raw = total <= SIZE_MAX ? systemAllocator.allocate(static_cast<size_t>(total)) : nullptr;
    if (!raw)
        return {};
    const uintptr_t first = reinterpret_cast<uintptr_t>(raw) + sizeof(Header);
    const uintptr_t padding = -first & (alignment - 1);
    return {raw, static_cast<size_t>(total), static_cast<char*>(raw) + sizeof(Header) + padding, size};
}

void* takeOutsidePool(uint32_t size, uint32_t alignment)
{
    const Block block = allocateBlock(size, alignment);
    if (block.user)
        writeHeader(block.user, kHeapTag, block.raw);
    return block.user;
}

bool tryLock(Slot& slot)
{
    return slot.inUse.load(std::memory_order_relaxed) == 0 && slot.inUse.exchange(1) == 0;
}

Slot* lockFreeSlot()
{
    for (Slot& slot : slots) {
        if (tryLock(slot))
            return &slot;
    }
    return nullptr;
}

void freeBlockIfIdle(Slot& slot)
{
    if (!tryLock(slot))
        return;
    systemAllocator.release(slot.block.raw);
    slot.block = {};
    slot.inUse.store(0);
}

// The pool may have been torn down while the buffer was out. Tear-down clears poolReady and then tries every slot; here
// the slot is unlocked before poolReady is read. So one of the two finds the slot idle and frees its block.
void unlock(Slot& slot)
{
    slot.inUse.store(0);
    if (!poolReady.load())
        freeBlockIfIdle(slot);
}

// Gives a locked slot a block that serves the request, unless it has one. The old block stays when there is no memory.
// Whatever the alignment asked for, blocks are aligned to a cache line, so that they serve Scratch next time.
bool prepare(Slot& slot, uint32_t size, uint32_t alignment)
{
    const Block& old = slot.block;
    if (old.raw && size <= old.capacity && isAligned(old.user, alignment))
        return true;
    const Block block = allocateBlock(std::max(size, old.capacity), std::max(alignment, kCacheLine));
    if (!block.raw)
        return false;
    systemAllocator.release(old.raw);
    slot.block = block;
    writeHeader(block.user, kPoolTag, &slot);
    return true;
}

void* localGetAligned(uint32_t size, uint32_t alignment)
{
    if (!std::has_single_bit(alignment))
        alignment = 1;
    if (!poolReady.load())
        return takeOutsidePool(size, alignment);
    Slot* slot = lockFreeSlot();
    if (!slot)
        return nullptr;
    if (!prepare(*slot, size, alignment)) {
        unlock(*slot);
        return nullptr;
    }
    return slot->block.user;
}

void* localGetUnaligned(uint32_t size)
{
    return localGetAligned(size, 1);
}

// The slot that a header names, if that is a slot whose buffer `ptr` is out.
Slot* slotOf(uintptr_t word, const void* ptr)
{
    for (Slot& slot : slots) {
        if (reinterpret_cast<uintptr_t>(&slot) == word)
            return slot.inUse.load() && slot.block.user == ptr ? &slot : nullptr;
    }
    return nullptr;
}

void localRelease(void* ptr)
{
    if (!ptr)
        return;
    const Header header = readHeader(ptr);
    if (header.tag == kHeapTag) {
        systemAllocator.release(reinterpret_cast<void*>(header.word));
    } else if (header.tag == kPoolTag) {
        if (Slot* slot = slotOf(header.word, ptr))
            unlock(*slot);
    }
}

// The scratch operations; the companion library may replace them.
using GetAligned = void*(uint32_t size, uint32_t alignment);
using GetUnaligned = void*(uint32_t size);
using Release = void(void* ptr);
constinit std::atomic<GetAligned*> getAligned = localGetAligned;
constinit std::atomic<GetUnaligned*> getUnaligned = localGetUnaligned;
constinit std::atomic<Release*> release = localRelease;

using MemoryCall = void();
constinit std::atomic<MemoryCall*> companionMemInit = nullptr;
constinit std::atomic<MemoryCall*> companionMemDeInit = nullptr;
constinit std::atomic<void*> companionMemoryLibrary = nullptr; // reference held from the look-up to rvkMemDeInit

void lookUpCompanionMemory()
{
    Companion companion;
    if (!companion)
        return;
    companionMemInit = companion.function<MemoryCall>("rvkMemInit");
    companionMemDeInit = companion.function<MemoryCall>("rvkMemDeInit");
    if (auto* function = companion.functionInWord<GetAligned>("rvkGetScratchBufferAligned_"))
        getAligned = function;
    if (auto* function = companion.functionInWord<GetUnaligned>("rvkGetScratchBufferUnaligned_"))
        getUnaligned = function;
    if (auto* function = companion.functionInWord<Release>("rvkReleaseScratchBuffer_"))
        release = function;
    companion.keepIn(companionMemoryLibrary);
}

// How often the pool has been asked for. Both under the mutex.
constinit std::mutex poolMutex;
uint32_t poolUsers;
bool memoryInitialised;

void openPool()
{
    const std::lock_guard lock(poolMutex);
    if (!poolReady.load()) {
        poolUsers = 0;
        poolReady.store(true);
    }
    poolUsers++;
    memoryInitialised = true;
}

void tearDownPool()
{
    poolReady.store(false);
    for (Slot& slot : slots)
        freeBlockIfIdle(slot); // a buffer that is out frees its block when it comes back
}

// Whether this was the last user. Only the first call after openPool() counts down.
bool closePool()
{
    const std::lock_guard lock(poolMutex);
    if (!memoryInitialised || !poolReady.load())
        return false;
    if (--poolUsers == 0) {
        tearDownPool();
        return true;
    }
    memoryInitialised = false;
    return false;
}

} // namespace

void* getScratchAligned(uint32_t size, uint32_t alignment)
{
    return getAligned.load()(size, alignment);
}

void* getScratchUnaligned(uint32_t size)
{
    return getUnaligned.load()(size);
}

void releaseScratch(void* ptr)
{
    release.load()(ptr);
}

void* getScratchRows(uint64_t rows, uint64_t columns, uint32_t elementSize)
{
    const uint64_t most = (UINT32_MAX - 256) / elementSize; // its square fits 64 bits
    if (rows > most || columns > most || rows * columns > most)
        return nullptr;
    return getScratchAligned(static_cast<uint32_t>(rows * columns) * elementSize, kCacheLine);
}

} // namespace rvk

void rvkMemInit(void)
{
    using namespace rvk;
    if (companionSession.isOpen()) {
        static pthread_once_t once = PTHREAD_ONCE_INIT;
        pthread_once(&once, lookUpCompanionMemory);
        if (MemoryCall* initialise = companionMemInit)
            initialise();
    }
    openPool();
}

void rvkMemInitPreAlloc(uint32_t preAllocBytes)
{
    constexpr uint32_t largest = 3840 * 2160 * 4;
    rvkMemInit();
    if (preAllocBytes == 0)
        return;
    const uint32_t size = std::min(preAllocBytes, largest);
    if (void* buffer = rvk::getScratchAligned(size, 16)) {
        memset(buffer, 0, size);
        rvk::releaseScratch(buffer);
    }
}

void rvkMemDeInit(void)
{
    using namespace rvk;
    if (companionSession.isOpen()) {
        if (MemoryCall* deinitialise = companionMemDeInit)
            deinitialise();
    }
    if (!closePool())
        Companion::drop(companionMemoryLibrary);
}

// MEM: the frame's memory, that is aligned blocks, buffers of each kind and the scratch pool.
#include "bufferPool.h"
#include "check.h"
#include "groups.h"

#include "scratch.h"

#include <ravik/buffer.h>
#include <ravik/frame.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace {

bool isAligned(const void* pointer, uintptr_t alignment)
{
    return reinterpret_cast<uintptr_t>(pointer) % alignment == 0;
}

bool holds(const void* bytes, size_t size, int value)
{
    const auto* const first = static_cast<const uint8_t*>(bytes);
    return std::all_of(first, first + size, [value](uint8_t byte) { return byte == value; });
}

void checkAlignedBlocks(Checks& checks)
{
    constexpr uint32_t size = 1000;
    std::vector<void*> blocks;
    for (uint32_t alignment = 1; alignment <= 128; alignment *= 2) {
        void* const block = rvkMemAlloc(size, alignment);
        checks.expect(block && isAligned(block, alignment), "alignment of a block");
        if (block)
            memset(block, static_cast<int>(alignment), size);
        blocks.push_back(block);
    }
    for (size_t i = 0; i < blocks.size(); i++)
        checks.expect(blocks[i] && holds(blocks[i], size, 1 << i), "blocks are apart");
    std::for_each(blocks.begin(), blocks.end(), rvkMemFree);
    rvkMemFree(nullptr);
}

void checkBuffer(Checks& checks, rvkMemOption option, uintptr_t alignment)
{
    std::array<uint8_t, 1000> source;
    source.fill(7);
    rvkBuffer buffer;
    checks.expect(buffer.Set(source.data(), source.size(), option, false) && isAligned(buffer.data, alignment) &&
                      holds(buffer.data, source.size(), 7),
                  "a buffer holds what it is given");

    const void* const data = buffer.data;
    checks.expect(buffer.Set(nullptr, 500, option, true) && buffer.data == data && buffer.size == 500 &&
                      holds(data, 500, 7),
                  "a smaller size keeps the block");
    checks.expect(buffer.Size(100000, option, true, 0) && buffer.data && buffer.capacity >= 100000,
                  "a larger size gets a new block");
    if (buffer.data)
        memset(buffer.data, 1, 100000);
    checks.expect(buffer.Free(option) && !buffer.data && buffer.size == 0, "a freed buffer is empty");
}

void checkUnknownKind(Checks& checks)
{
    rvkBuffer buffer;
    checks.expect(buffer.Size(100, RAVIK_MEM_SYSTEM, false, 0), "a buffer of 100 bytes");
    checks.expect(!buffer.Size(100, static_cast<rvkMemOption>(3), false, 0) && !buffer.data, "no such kind of memory");
}

// Takes as many buffers as the pool has, and one more.
void checkPool(Checks& checks)
{
    constexpr uint32_t size = 300;
    std::vector<void*> taken;
    for (uint32_t i = 0; i < 32; i++) {
        const uint32_t alignment = 1u << i % 8;
        void* const buffer = rvk::getScratchAligned(size, alignment);
        checks.expect(buffer && isAligned(buffer, alignment), "scratch buffer from the pool");
        if (buffer)
            memset(buffer, static_cast<int>(i), size);
        taken.push_back(buffer);
    }
    checks.expect(rvk::getScratchUnaligned(size) == nullptr, "the pool has 32 buffers");
    for (size_t i = 0; i < taken.size(); i++)
        checks.expect(taken[i] && holds(taken[i], size, static_cast<int>(i)), "scratch buffers are apart");
    std::for_each(taken.begin(), taken.end(), rvk::releaseScratch);

    void* const again = rvk::getScratchUnaligned(size / 2);
    checks.expect(again == taken.front(), "the pool uses its blocks again");
    rvk::releaseScratch(again);
}

void checkWithoutPool(Checks& checks)
{
    void* const buffer = rvk::getScratchAligned(300, 64);
    checks.expect(buffer && isAligned(buffer, 64), "scratch buffer without the pool");
    if (buffer)
        memset(buffer, 1, 300);
    rvk::releaseScratch(buffer);
}

} // namespace

int TEST_MEM_Test(int, const char*)
{
    Checks checks("MEM");
    checkAlignedBlocks(checks);
    checkBuffer(checks, RAVIK_MEM_SYSTEM, 16);
    checkBuffer(checks, RAVIK_MEM_SHARED, 16);
    checkBuffer(checks, RAVIK_MEM_LIBRARY, 128);
    checkUnknownKind(checks);

    // The pool of the run makes room for pools of this test.
    bufferPool.close();
    checkWithoutPool(checks);
    for (const uint32_t preAllocated : {0u, 100000u}) {
        rvkMemInitPreAlloc(preAllocated);
        checkPool(checks);
        rvkMemDeInit();
    }
    checkWithoutPool(checks);
    bufferPool.open();
    return checks.failure();
}

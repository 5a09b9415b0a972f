// rvkMemAlloc and the scratch pool. The system allocator is replaced by one that keeps account and fails on demand.
#include "memory.h"
#include "scratch.h"
#include "support/ownProcess.h"
#include "support/random.h"

#include <ravik/frame.h>

#include <atomic>
#include <thread>

using namespace rvk;
using namespace test;

namespace {

std::atomic<int> liveBlocks;
std::atomic<int> allocations;
std::atomic<size_t> lastSize;
std::atomic<size_t> sizeLimit; // larger requests fail

void* countedAllocate(size_t size)
{
    if (size > sizeLimit)
        return nullptr;
    allocations++;
    liveBlocks++;
    lastSize = size;
    return malloc(size);
}

void countedRelease(void* block)
{
    liveBlocks -= block != nullptr;
    free(block);
}

class FrameMemory : public testing::Test
{
protected:
    FrameMemory()
    {
        systemAllocator = {countedAllocate, countedRelease};
        liveBlocks = 0;
        allocations = 0;
        sizeLimit = size_t{1} << 30;
    }
    ~FrameMemory() override
    {
        EXPECT_EQ(liveBlocks, 0) << "leaked";
        systemAllocator = saved;
    }
    const SystemAllocator saved = systemAllocator;
};

constexpr size_t kHeader = 2 * sizeof(void*);

// The pool for the length of a scope.
struct Pool
{
    Pool() { rvkMemInit(); }
    ~Pool() { rvkMemDeInit(); }
};

uint32_t tagOf(const void* scratch)
{
    uint32_t tag;
    memcpy(&tag, static_cast<const char*>(scratch) - kHeader, sizeof tag);
    return tag;
}

void* wordOf(const void* scratch)
{
    void* word;
    memcpy(&word, static_cast<const char*>(scratch) - sizeof(void*), sizeof word);
    return word;
}

bool isAligned(const void* ptr, uintptr_t alignment)
{
    return reinterpret_cast<uintptr_t>(ptr) % alignment == 0;
}

// ---- rvkMemAlloc ----

alignas(256) char arena[1024];
size_t arenaOffset;
void* released;

TEST_F(FrameMemory, AlignedBlocksLieInsideTheirAllocation)
{
    // A system allocator that returns every residue.
    systemAllocator = {[](size_t size) -> void* {
                           lastSize = size;
                           return arena + arenaOffset;
                       },
                       [](void* block) { released = block; }};
    for (uint32_t alignment = 1; alignment <= 128; alignment *= 2) {
        for (arenaOffset = 0; arenaOffset < 256; arenaOffset++) {
            char* data = static_cast<char*>(rvkMemAlloc(100, alignment));
            ASSERT_EQ(lastSize, 100 + alignment + 1);
            const auto raw = reinterpret_cast<uintptr_t>(arena) + arenaOffset;
            const auto expected = (raw + alignment + 1) / alignment * alignment;
            ASSERT_EQ(reinterpret_cast<uintptr_t>(data), expected);
            ASSERT_GE(expected - 1, raw); // the byte before the data is inside, too
            ASSERT_LE(expected + 100, raw + lastSize);
            rvkMemFree(data);
            ASSERT_EQ(released, arena + arenaOffset);
        }
    }
}

TEST_F(FrameMemory, UnusableRequestsGiveNull)
{
    for (const uint32_t alignment : {0u, 3u, 48u, 129u, 256u, 0x80000000u, UINT32_MAX})
        EXPECT_EQ(rvkMemAlloc(100, alignment), nullptr) << alignment;
    EXPECT_EQ(rvkMemAlloc(UINT32_MAX, 128), nullptr); // beyond the limit, or, with 32-bit sizes, an overflow
    EXPECT_EQ(rvkMemAlloc(UINT32_MAX - 5, 16), nullptr);
    sizeLimit = 0;
    EXPECT_EQ(rvkMemAlloc(1, 16), nullptr);
    rvkMemFree(nullptr);
    EXPECT_EQ(allocations, 0);
}

// ---- scratch without a pool ----

TEST_F(FrameMemory, ScratchWithoutAPoolIsFreedOnRelease)
{
    char* unaligned = static_cast<char*>(getScratchUnaligned(1000));
    EXPECT_EQ(lastSize, 1000 + kHeader);
    EXPECT_EQ(tagOf(unaligned), 0xABABABABu);
    EXPECT_EQ(wordOf(unaligned), unaligned - kHeader);
    memset(unaligned, 1, 1000);

    for (uint32_t alignment = 1; alignment <= 65536; alignment *= 2) {
        char* data = static_cast<char*>(getScratchAligned(1000, alignment));
        EXPECT_EQ(lastSize, 1000 + alignment - 1 + kHeader);
        EXPECT_TRUE(isAligned(data, alignment));
        EXPECT_EQ(tagOf(data), 0xABABABABu);
        const char* raw = static_cast<char*>(wordOf(data));
        EXPECT_GE(data, raw + kHeader);
        EXPECT_LT(data, raw + kHeader + alignment);
        memset(data, 1, 1000);
        releaseScratch(data);
    }
    EXPECT_EQ(liveBlocks, 1);
    {
        const Pool pool;
        releaseScratch(unaligned); // although there is a pool by now
        EXPECT_EQ(liveBlocks, 0);
    }
    releaseScratch(getScratchAligned(10, 48)); // not a power of two: as 1
    EXPECT_EQ(lastSize, 10 + kHeader);
    releaseScratch(getScratchUnaligned(0));
    releaseScratch(nullptr);

    sizeLimit = 100;
    EXPECT_EQ(getScratchUnaligned(1000), nullptr);
    EXPECT_EQ(getScratchAligned(1000, 16), nullptr);
    EXPECT_EQ(getScratchAligned(UINT32_MAX, 0x80000000), nullptr);
    EXPECT_EQ(getScratchUnaligned(UINT32_MAX - 3), nullptr);
}

// ---- the pool ----

TEST_F(FrameMemory, SlotsAreTakenInOrderAndTheirBlocksReused)
{
    const Pool pool;
    void* first = getScratchUnaligned(1000);
    void* second = getScratchUnaligned(500);
    EXPECT_EQ(tagOf(first), 0xCDCDCDCDu);
    EXPECT_LT(wordOf(first), wordOf(second)); // the addresses of slots 0 and 1
    EXPECT_EQ(allocations, 2);
    releaseScratch(first);
    releaseScratch(second);

    EXPECT_EQ(getScratchUnaligned(800), first); // slot 0's block
    EXPECT_EQ(getScratchAligned(500, 4), second);
    EXPECT_EQ(allocations, 2);
    releaseScratch(second);
    releaseScratch(first);

    void* larger = getScratchUnaligned(1001); // slot 0 again, its block replaced
    EXPECT_EQ(allocations, 3);
    EXPECT_EQ(liveBlocks, 2);
    EXPECT_EQ(tagOf(larger), 0xCDCDCDCDu);
    memset(larger, 1, 1001);
    releaseScratch(larger);
}

TEST_F(FrameMemory, BlockThatLacksTheAlignmentIsReplaced)
{
    const Pool pool;
    for (uint32_t alignment = 16; alignment <= 4096; alignment *= 2) {
        void* data = getScratchAligned(100, alignment);
        EXPECT_TRUE(isAligned(data, alignment));
        memset(data, 1, 100);
        releaseScratch(data);
        EXPECT_EQ(liveBlocks, 1);
    }
    void* big = getScratchAligned(5000, 1);
    releaseScratch(big);
    void* aligned = getScratchAligned(100, 8192);
    releaseScratch(aligned);
    const int before = allocations;
    void* again = getScratchAligned(5000, 8192); // what the slot has served it serves without a new block
    memset(again, 1, 5000);
    EXPECT_EQ(again, aligned);
    EXPECT_EQ(allocations, before);
    releaseScratch(again);
}

TEST_F(FrameMemory, ThirtyTwoTakers)
{
    const Pool pool;
    void* buffers[32];
    for (void*& buffer : buffers)
        buffer = getScratchAligned(64, 16);
    EXPECT_EQ(allocations, 32);
    EXPECT_EQ(getScratchAligned(64, 16), nullptr);
    EXPECT_EQ(getScratchUnaligned(1), nullptr);
    EXPECT_FALSE(Scratch<int>(1));
    EXPECT_EQ(allocations, 32);

    releaseScratch(buffers[17]);
    EXPECT_EQ(getScratchUnaligned(64), buffers[17]);
    EXPECT_EQ(getScratchUnaligned(64), nullptr);
    for (void* buffer : buffers)
        releaseScratch(buffer);
}

TEST_F(FrameMemory, ScratchOfASizeThatDoesNotFitIsNull)
{
    const uint32_t half = 1u << 16; // its square is 0 in 32 bits
    EXPECT_FALSE(Scratch<uint8_t>(half, half));
    EXPECT_FALSE(Scratch<uint8_t>(UINT32_MAX));
    EXPECT_FALSE(Scratch<uint32_t>(half, half / 4));
    EXPECT_FALSE(Scratch<uint32_t>(UINT64_MAX, 2));
    EXPECT_FALSE(Scratch<uint32_t>(UINT64_MAX / 4 + 2));
    EXPECT_EQ(allocations, 0);

    const Scratch<uint32_t> fits(half / 4, 3);
    ASSERT_TRUE(fits);
    EXPECT_GE(lastSize, half * 3);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(fits.get()) % 64, 0u);
    fits[half / 4 * 3 - 1] = 1;
}

TEST_F(FrameMemory, FailedAllocationLeavesTheSlotUsable)
{
    const Pool pool;
    void* data = getScratchUnaligned(100);
    releaseScratch(data);
    sizeLimit = 1000;
    uint32_t alignment = 4096; // that the block does not happen to have
    while (reinterpret_cast<uintptr_t>(data) % alignment == 0)
        alignment *= 2;
    for (int i = 0; i < 100; i++) { // more often than there are slots
        EXPECT_EQ(getScratchUnaligned(10000), nullptr);
        EXPECT_EQ(getScratchAligned(100, alignment), nullptr);
    }
    EXPECT_EQ(getScratchUnaligned(100), data); // the old block is still there
    releaseScratch(data);
}

TEST_F(FrameMemory, ForeignPointersAndDoubleReleasesAreIgnored)
{
    const Pool pool;
    alignas(16) char foreign[64] = {};
    releaseScratch(foreign + 32);
    memset(foreign, 0xCD, sizeof foreign); // the pool's tag, but no slot's address
    releaseScratch(foreign + 32);

    void* data = getScratchUnaligned(100);
    memcpy(foreign, static_cast<char*>(data) - kHeader, kHeader);
    releaseScratch(foreign + kHeader); // a copy of a true header
    void* other = getScratchUnaligned(100);
    EXPECT_NE(other, data);
    releaseScratch(data);
    releaseScratch(data);
    EXPECT_EQ(getScratchUnaligned(100), data);
    void* third = getScratchUnaligned(100);
    EXPECT_NE(third, data);
    EXPECT_NE(third, other);
    for (void* buffer : {data, other, third})
        releaseScratch(buffer);
}

// ---- life of the pool ----

bool poolExists()
{
    void* data = getScratchUnaligned(10);
    const bool exists = tagOf(data) == 0xCDCDCDCD;
    releaseScratch(data);
    return exists;
}

TEST_F(FrameMemory, PoolIsCounted)
{
    inOwnProcess([] {
        rvkMemDeInit(); // never initialised
        EXPECT_FALSE(poolExists());
        rvkMemInit();
        EXPECT_TRUE(poolExists());
        rvkMemDeInit();
        EXPECT_FALSE(poolExists());
        rvkMemDeInit(); // one too many
        rvkMemInit();
        EXPECT_TRUE(poolExists());
        rvkMemInit();
        rvkMemDeInit();
        rvkMemDeInit(); // does not count: the call before it was not the last one
        EXPECT_TRUE(poolExists());
    });
}

TEST_F(FrameMemory, BufferThatOutlivesItsPoolKeepsItsSlotInTheNext)
{
    rvkMemInit();
    void* survivor = getScratchUnaligned(100);
    memset(survivor, 5, 100);
    rvkMemDeInit();
    rvkMemInit();
    std::vector<void*> buffers;
    while (void* buffer = getScratchUnaligned(100))
        buffers.push_back(buffer);
    EXPECT_EQ(buffers.size(), 31u);
    EXPECT_EQ(static_cast<char*>(survivor)[99], 5);
    releaseScratch(survivor);
    EXPECT_EQ(getScratchUnaligned(100), survivor);
    releaseScratch(survivor);
    for (void* buffer : buffers)
        releaseScratch(buffer);
    rvkMemDeInit();
    EXPECT_EQ(liveBlocks, 0);
}

TEST_F(FrameMemory, PreAllocationGrowsOneSlot)
{
    rvkMemInitPreAlloc(50000000);
    EXPECT_EQ(lastSize, 33177600 + 63 + kHeader);
    EXPECT_TRUE(Scratch<uint32_t>(2160, 3840));
    EXPECT_EQ(allocations, 1);
    EXPECT_EQ(liveBlocks, 1);
    const int before = allocations;
    releaseScratch(getScratchAligned(33177600, 16));
    EXPECT_EQ(allocations, before);
    releaseScratch(getScratchAligned(33177601, 16));
    EXPECT_EQ(allocations, before + 1);
    rvkMemDeInit();

    rvkMemInitPreAlloc(0);
    EXPECT_TRUE(poolExists());
    rvkMemDeInit();
    sizeLimit = 1000;
    rvkMemInitPreAlloc(1001); // no memory: the pool is there all the same
    EXPECT_TRUE(poolExists());
    rvkMemDeInit();
}

// ---- threads ----

void fillAndCheck(void* data, uint32_t size, uint8_t value)
{
    memset(data, value, size);
    std::this_thread::yield();
    const auto* bytes = static_cast<const uint8_t*>(data);
    EXPECT_TRUE(bytes[0] == value && bytes[size / 2] == value && bytes[size - 1] == value);
}

TEST_F(FrameMemory, ThreadsNeverShareABuffer)
{
    std::atomic<bool> done = false;
    std::vector<std::thread> threads;
    for (unsigned number = 1; number <= 4; number++) {
        threads.emplace_back([number] {
            Random random(number);
            for (int i = 0; i < 2000; i++) {
                const uint32_t size = 1 + random.below(3000);
                if (void* data =
                        random.below(2) ? getScratchAligned(size, 1u << random.below(8)) : getScratchUnaligned(size)) {
                    fillAndCheck(data, size, static_cast<uint8_t>(number));
                    releaseScratch(data);
                }
            }
        });
    }
    std::thread janitor([&] { // the pool comes and goes meanwhile
        while (!done) {
            const Pool pool;
            std::this_thread::yield();
        }
    });
    for (std::thread& thread : threads)
        thread.join();
    done = true;
    janitor.join();
    EXPECT_EQ(liveBlocks, 0);
}

TEST_F(FrameMemory, BufferMayBeReleasedByAnotherThread)
{
    const Pool pool;
    void* data = getScratchUnaligned(100);
    std::thread([data] { releaseScratch(data); }).join();
    std::thread([data] { EXPECT_EQ(getScratchUnaligned(100), data); }).join();
    releaseScratch(data);
}

} // namespace

// rvkBuffer on each kind of memory. The DSP's allocator is replaced by one that keeps account.
#include "memory.h"

#include <ravik/buffer.h>
#include <ravik/frame.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <type_traits>

namespace {

struct SharedRequest
{
    int heap;
    uint32_t flags;
    int size;
};
std::map<void*, SharedRequest> sharedBlocks;
bool sharedFails;
int unknownFrees;

} // namespace

extern "C" void* dspmem_alloc(int heap, uint32_t flags, int size)
{
    if (sharedFails)
        return nullptr;
    void* block = aligned_alloc(4096, (static_cast<size_t>(size) + 4095) / 4096 * 4096);
    sharedBlocks[block] = {heap, flags, size};
    return block;
}

extern "C" void dspmem_free(void* address)
{
    unknownFrees += sharedBlocks.erase(address) == 0;
    free(address);
}

namespace {

void* refuse(size_t)
{
    return nullptr;
}

class FrameBuffer : public testing::Test
{
protected:
    FrameBuffer()
    {
        for (size_t i = 0; i < sizeof source; i++)
            source[i] = static_cast<uint8_t>(i * 7);
    }
    ~FrameBuffer() override
    {
        rvk::systemAllocator = saved;
        sharedFails = false;
        EXPECT_TRUE(sharedBlocks.empty());
        EXPECT_EQ(unknownFrees, 0);
    }
    void failSystemAllocations() { rvk::systemAllocator.allocate = refuse; }

    uint8_t source[1000];
    const rvk::SystemAllocator saved = rvk::systemAllocator;
};

void expectCleared(const rvkBuffer& buffer, uint32_t size = 0)
{
    EXPECT_EQ(buffer.capacity, 0u);
    EXPECT_EQ(buffer.size, size);
    EXPECT_EQ(buffer.raw, nullptr);
    EXPECT_EQ(buffer.data, nullptr);
}

uintptr_t address(const void* ptr)
{
    return reinterpret_cast<uintptr_t>(ptr);
}

constexpr rvkMemOption kKinds[] = {RAVIK_MEM_SYSTEM, RAVIK_MEM_SHARED, RAVIK_MEM_LIBRARY};

TEST_F(FrameBuffer, SetCopiesIntoAlignedMemoryOfEachKind)
{
    for (const rvkMemOption kind : kKinds) {
        rvkBuffer buffer;
        expectCleared(buffer);
        ASSERT_TRUE(buffer.Set(source, 1000, kind, false));
        EXPECT_EQ(buffer.capacity, 1000u);
        EXPECT_EQ(buffer.size, 1000u);
        EXPECT_EQ(buffer.option, kind);
        EXPECT_EQ(address(buffer.data) % (kind == RAVIK_MEM_LIBRARY ? 128 : 16), 0u);
        EXPECT_EQ(memcmp(buffer.data, source, 1000), 0);
        EXPECT_EQ(sharedBlocks.size(), kind == RAVIK_MEM_SHARED ? 1u : 0u);
        EXPECT_TRUE(buffer.Free(kind));
        expectCleared(buffer);
        EXPECT_TRUE(sharedBlocks.empty());
        EXPECT_TRUE(buffer.Free(kind));
        EXPECT_TRUE(buffer.Set(source, 10, kind, false)); // left to the destructor
    }
}

TEST_F(FrameBuffer, KeepReusesALargerBlock)
{
    for (const rvkMemOption kind : kKinds) {
        rvkBuffer buffer;
        ASSERT_TRUE(buffer.Set(source, 1000, kind, false));
        const void* data = buffer.data;
        EXPECT_TRUE(buffer.Set(nullptr, 500, kind, true));
        EXPECT_EQ(buffer.data, data);
        EXPECT_EQ(buffer.size, 500u);
        EXPECT_EQ(buffer.capacity, 1000u);
        EXPECT_EQ(memcmp(buffer.data, source, 1000), 0);
        EXPECT_TRUE(buffer.Size(1000, kind, true, 0));
        EXPECT_EQ(buffer.data, data);
        EXPECT_TRUE(buffer.Size(2000, kind, true, 0)); // grows
        memset(buffer.data, 1, 2000);
        EXPECT_EQ(buffer.capacity, 2000u);
        EXPECT_TRUE(buffer.Size(500, kind, false, 0)); // does not keep
        EXPECT_EQ(buffer.capacity, 500u);
    }
}

TEST_F(FrameBuffer, SharedMemoryIsAskedForTwiceTheBytes)
{
    rvkBuffer buffer;
    EXPECT_TRUE(buffer.Size(100, RAVIK_MEM_SHARED, false, 0));
    const SharedRequest& request = sharedBlocks.at(buffer.sharedHandle);
    EXPECT_TRUE(request.heap == 25 && request.flags == 1 && request.size == 200);
    EXPECT_EQ(buffer.sharedSize, 200u);

    EXPECT_TRUE(buffer.Size(100, RAVIK_MEM_SHARED, false, 28));
    EXPECT_EQ(buffer.sharedSize, 256u);
    EXPECT_EQ(address(buffer.data), address(buffer.sharedHandle) + 28);
    EXPECT_EQ(buffer.raw, buffer.data);
    memset(buffer.data, 1, 100);
}

// A block is released by what it is, even where the caller now asks for another kind.
TEST_F(FrameBuffer, KindsMayChange)
{
    rvkBuffer buffer;
    for (const rvkMemOption first : kKinds) {
        for (const rvkMemOption second : kKinds) {
            ASSERT_TRUE(buffer.Set(source, 1000, first, false));
            ASSERT_TRUE(buffer.Set(source, 900, second, true));
            EXPECT_EQ(buffer.option, second);
            EXPECT_EQ(memcmp(buffer.data, source, 900), 0);
            EXPECT_EQ(sharedBlocks.size(), second == RAVIK_MEM_SHARED ? 1u : 0u);
            buffer.Free(first);
        }
        ASSERT_TRUE(buffer.Size(1000, first, false, 0));
        EXPECT_FALSE(buffer.Size(100, static_cast<rvkMemOption>(3), false, 0));
        expectCleared(buffer, 100);
    }
}

TEST_F(FrameBuffer, EmptySizes)
{
    for (const rvkMemOption kind : kKinds) {
        rvkBuffer buffer;
        EXPECT_TRUE(buffer.Size(0, kind, false, 0));
        EXPECT_TRUE(buffer.Set(nullptr, 0, kind, false));
        EXPECT_FALSE(buffer.Set(source, 0, kind, false)); // nowhere to copy to
        expectCleared(buffer);
        EXPECT_TRUE(buffer.Set(source, 10, kind, false));
        EXPECT_TRUE(buffer.Set(source, 0, kind, true));
        EXPECT_EQ(buffer.capacity, 10u);
    }
}

TEST_F(FrameBuffer, FailedAllocations)
{
    for (const rvkMemOption kind : {RAVIK_MEM_SYSTEM, RAVIK_MEM_LIBRARY}) {
        rvkBuffer buffer;
        ASSERT_TRUE(buffer.Set(source, 100, kind, false));
        failSystemAllocations();
        EXPECT_FALSE(buffer.Set(source, 1000, kind, true));
        expectCleared(buffer);
        rvk::systemAllocator = saved;
        EXPECT_TRUE(buffer.Set(source, 1000, kind, true));
    }

    rvkBuffer buffer;
    ASSERT_TRUE(buffer.Set(source, 100, RAVIK_MEM_SHARED, false));
    sharedFails = true;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(buffer.Set(source, 1000, RAVIK_MEM_SHARED, true));
    sharedFails = false;
    expectCleared(buffer, 1000);
    EXPECT_FALSE(buffer.Size(UINT32_MAX, RAVIK_MEM_SHARED, false, UINT32_MAX)); // not a size that can be asked for
    const std::string message = "Failed to Allocate ION Memory !!!";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), message + message);
}

} // namespace

// A companion library that exports everything the library asks for. The words that hold addresses are exported as 0,
// those of the memory hooks excepted; a test fills what it needs.
#include "fakeCompanion.h"

#include <cstdlib>

extern "C" {

FakeCompanion fakeCompanion = {"", 0, "1.9.0", nullptr, false};

void rvkGetVersion(char* version, uint32_t length)
{
    fakeCompanion.note("rvkGetVersion %u\n", length);
    snprintf(version, length, "%s", fakeCompanion.version);
}

uint32_t rvkAvailableHWComponent(rvkOperationMode mode)
{
    fakeCompanion.note("rvkAvailableHWComponent %x\n", static_cast<unsigned>(mode));
    return fakeCompanion.hardware;
}

void rvkInitializeMasterFuncManager(RVK_FUNC_MANAGER* manager)
{
    fakeCompanion.note("rvkInitializeMasterFuncManager\n");
    fakeCompanion.manager = manager;
}

void uQTable(RVK_FUNC_MANAGER*, uint32_t target)
{
    fakeCompanion.note("uQTable %u\n", target);
}

void uGTable(RVK_FUNC_MANAGER*, uint32_t target)
{
    fakeCompanion.note("uGTable %u\n", target);
}

void rvkInitRemoteLib(rvkOperationMode mode)
{
    fakeCompanion.note("rvkInitRemoteLib %x\n", static_cast<unsigned>(mode));
}

void rvkCleanUp()
{
    fakeCompanion.note("rvkCleanUp\n");
}

uint64_t rvkX6GetClk()
{
    return 0x123456789;
}

void rvkMemInit()
{
    fakeCompanion.note("rvkMemInit\n");
}

void rvkMemDeInit()
{
    fakeCompanion.note("rvkMemDeInit\n");
}

// Shared memory has one block at a time.
static char* sharedBlock;

static void* sharedMemAlloc(uint32_t size, uint32_t alignment)
{
    fakeCompanion.note("sharedMemAlloc %u %u\n", size, alignment);
    return fakeCompanion.refusesMemory ? nullptr : (sharedBlock = static_cast<char*>(malloc(size)));
}

static int sharedMemFree(void* ptr)
{
    fakeCompanion.note("sharedMemFree\n");
    if (ptr != sharedBlock)
        return 1;
    free(sharedBlock);
    sharedBlock = nullptr;
    return 0;
}

static char scratch[64];

static void* getScratchAligned(uint32_t size, uint32_t alignment)
{
    fakeCompanion.note("getScratchAligned %u %u\n", size, alignment);
    return scratch;
}

static void* getScratchUnaligned(uint32_t size)
{
    fakeCompanion.note("getScratchUnaligned %u\n", size);
    return scratch;
}

static void releaseScratch(void* ptr)
{
    fakeCompanion.note("releaseScratch %d\n", ptr == scratch);
}

auto* rvkSharedMemAllocR_ = &sharedMemAlloc;
auto* rvkSharedMemFreeR_ = &sharedMemFree;
auto* rvkGetScratchBufferAligned_ = &getScratchAligned;
auto* rvkGetScratchBufferUnaligned_ = &getScratchUnaligned;
auto* rvkReleaseScratchBuffer_ = &releaseScratch;

#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##remote(rvk::Cell name##R_;)
#include "functionList.inc"
#undef RVK_FUNCTION
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##remote(rvk::Cell name##R_;)
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION

} // extern "C"

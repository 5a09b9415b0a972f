// The frame and the companion library, against the fake libraries of tests/fake*. What the frame does once per process
// makes every test a process of its own.
#include "dispatch.h"
#include "fakeCompanion/fakeCompanion.h"
#include "hardware.h"
#include "scratch.h"
#include "support/logCapture.h"
#include "support/ownProcess.h"
#include "support/temporaryDirectory.h"

#include <ravik/ravik.h>

#include <dlfcn.h>

#include <cstdlib>
#include <set>

using namespace rvk;
using namespace test;

namespace {

constexpr uint32_t kExpertNdsp = RAVIK_OP_EXPERT | RAVIK_UNIT_NDSP;
constexpr uint32_t kExpertGpu = RAVIK_OP_EXPERT | RAVIK_UNIT_GPU;

void* library;
FakeCompanion* fake; // of fakeCompanion only

// Loads a fake library, so that the loader knows "libravikopt.so", in a process of its own.
template <class Body>
void withCompanion(const char* directory, Body body)
{
    inOwnProcess([&] {
        const std::string path = std::string(RVK_TEST_BINARY_DIR "/") + directory + "/libravikopt.so";
        library = dlopen(path.c_str(), RTLD_NOW);
        ASSERT_NE(library, nullptr) << dlerror();
        fake = static_cast<FakeCompanion*>(dlsym(library, "fakeCompanion"));
        clearLog();
        body();
    });
}

Cell& word(const char* name)
{
    return *static_cast<Cell*>(dlsym(library, name));
}

uint32_t row(Slot slot)
{
    return static_cast<uint32_t>(slot);
}

uint32_t targetOf(Slot slot)
{
    return dispatchState.targets[row(slot)];
}

Cell cellOf(Slot slot, uint32_t target)
{
    return dispatchState.table[row(slot) * kTargets + target];
}

std::string takeEvents()
{
    const std::string events = fake->events;
    fake->events[0] = '\0';
    return events;
}

// ---- order and content of the hand-over ----

const std::string kQuery = "rvkGetVersion 40\nrvkAvailableHWComponent ";

TEST(FrameCompanion, IsAskedInOrder)
{
    withCompanion("fakeCompanion", [] {
        fake->hardware = RAVIK_UNIT_NDSP | RAVIK_UNIT_GPU;
        EXPECT_EQ(rvkSetOperationMode(RAVIK_OP_PERFORMANCE), 0);
        EXPECT_EQ(takeEvents(), kQuery + "1\n" + kQuery +
                                    "1\nrvkInitializeMasterFuncManager\nuQTable 2\nuGTable 3\n"
                                    "rvkInitRemoteLib 1\n");
        EXPECT_EQ(rvkSetOperationMode(kExpertGpu), 0);
        EXPECT_EQ(takeEvents(), kQuery + "80000020\n" + kQuery +
                                    "80000020\nrvkInitializeMasterFuncManager\nuQTable 2\n"
                                    "uGTable 3\nrvkInitRemoteLib 80000020\n");

        const RVK_FUNC_MANAGER* manager = fake->manager;
        EXPECT_EQ(manager->publicTargets, dispatchState.targets);
        EXPECT_EQ(manager->publicFunctions, 506u);
        EXPECT_EQ(manager->publicTable, dispatchState.table);
        EXPECT_EQ(manager->internalTargets, dispatchState.internalTargets);
        EXPECT_EQ(manager->internalFunctions, 16u);
        EXPECT_EQ(manager->internalTable, dispatchState.internalTable);
        EXPECT_EQ(manager->targetsPerRow, 7u);

        // Which columns it fills follows the units that it reports; a mode that stays on the C reference installs
        // nothing.
        fake->hardware = RAVIK_UNIT_GPU;
        word("rvkAbsDiffu8R_") = [] {};
        EXPECT_EQ(rvkSetOperationMode(7), 0);
        EXPECT_EQ(takeEvents(), kQuery + "7\n" + kQuery + "7\nrvkInitializeMasterFuncManager\nuGTable 3\n");
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_CPU);
        fake->hardware = RAVIK_UNIT_NDSP;
        EXPECT_EQ(rvkSetOperationMode(4), 0);
        EXPECT_EQ(takeEvents(), kQuery + "4\n" + kQuery + "4\nrvkInitializeMasterFuncManager\nuQTable 2\n");
        EXPECT_TRUE(logLines.empty());
    });
}

TEST(FrameCompanion, IsNotTouchedByCpuModes)
{
    withCompanion("fakeCompanion", [] {
        fake->hardware = RAVIK_UNIT_NDSP | RAVIK_UNIT_GPU;
        for (const uint32_t mode : {uint32_t{RAVIK_OP_CPU_PERFORMANCE}, RAVIK_OP_EXPERT | 1,
                                    RAVIK_OP_EXPERT | RAVIK_UNIT_ARM, RAVIK_OP_EXPERT | RAVIK_UNIT_VECTA})
            EXPECT_EQ(rvkSetOperationMode(static_cast<rvkOperationMode>(mode)), 0) << mode;
        rvkMemInit();
        rvkMemDeInit();
        rvkCleanUp();
        EXPECT_EQ(takeEvents(), "");
    });
}

TEST(FrameCompanion, DeviceWithoutAcceleratorStaysOnTheCpu)
{
    withCompanion("fakeCompanion", [] {
        const TemporaryDirectory directory;
        const std::string path = directory.file("cpuinfo");
        writeFile(path, "Hardware\t: BCM2835\n");
        cpuInfoPath = path.c_str();
        EXPECT_EQ(rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_ARM)), 0);
        EXPECT_TRUE(logLines.empty());
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_CPU);
        EXPECT_EQ(rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | 3)),
                  0); // not -1: mode 3 in its place
        EXPECT_TRUE(
            logHas("6 ravik_lib_log: DSP and GPU not present. Setting RAVIK mode to RAVIK_OP_CPU_PERFORMANCE.\n"));
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_VECTA);
        EXPECT_EQ(takeEvents(), "");
    });
}

// ---- what it lacks is logged ----

TEST(FrameCompanion, MissingSymbolsAreLogged)
{
    // The loader's own words follow each text.
    const auto logged = [](const std::string& text) {
        for (const std::string& line : logLines) {
            if (line.rfind(text, 0) == 0 && line.find("undefined symbol", text.size()) != std::string::npos)
                return true;
        }
        return false;
    };
    withCompanion("fakeBare", [&] {
        EXPECT_EQ(rvkSetOperationMode(RAVIK_OP_LOW_POWER), 0);
        EXPECT_TRUE(logged("3 ravik_lib_log: Warning: AvailableHwComponent is (nil). "));
        EXPECT_TRUE(logged("6 ravik_lib_log: prvkInitializeMasterFuncManagerFn NULL "));
        EXPECT_TRUE(logged("6 ravik_lib_log: pTableFn uQTable (nil) "));
        EXPECT_TRUE(logged("6 ravik_lib_log: pTableFn uGTable (nil) "));
        EXPECT_TRUE(logged("6 ravik_lib_log: Error: uR pInitFn NULL. "));
        EXPECT_FALSE(logged("6 ravik_lib_log: Error: AvailableHw is "));
        EXPECT_EQ(rvkAvailableHardware(0) & (RAVIK_UNIT_NDSP | RAVIK_UNIT_GPU), RAVIK_UNIT_NDSP | RAVIK_UNIT_GPU);
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_VECTA);
        rvkMemInit(); // the session is open; the companion has no memory functions
        releaseScratch(getScratchUnaligned(100));
        rvkMemDeInit();
        clearLog();
        rvkCleanUp();
        EXPECT_TRUE(logged("6 ravik_lib_log: Error: rvkCleanUp NULL. "));
    });
    withCompanion("fakeEmpty", [&] {
        EXPECT_EQ(rvkAvailableHardware(0), rvkAvailableHardware(RAVIK_OP_CPU_PERFORMANCE));
        EXPECT_TRUE(logged("3 ravik_lib_log: Warning: AvailableHwComponent is (nil). "));
        EXPECT_TRUE(logged("6 ravik_lib_log: Error: AvailableHw is (nil). "));
        EXPECT_EQ(rvkX6GetClk(), 0u);
    });
}

TEST(FrameCompanion, UnitsVersionAndClock)
{
    withCompanion("fakeCompanion", [] {
        const uint32_t cpu = rvkAvailableHardware(RAVIK_OP_CPU_PERFORMANCE);
        fake->hardware = RAVIK_UNIT_C2D;
        for (const auto& [version, bit] : {std::pair{"1.9.0", 4096u},
                                           {"1.0.0-rc", 4096u},
                                           {"2.7.1", 0u},
                                           {"1.7", 0u},
                                           {"", 0u},
                                           {"one.two.three", 0u}}) {
            strcpy(fake->version, version);
            EXPECT_EQ(rvkAvailableHardware(RAVIK_OP_LOW_POWER), cpu | RAVIK_UNIT_C2D | bit) << version;
        }
        EXPECT_EQ(rvkX6GetClk(), 0x123456789u);
    });
}

// ---- remote implementations ----

uint32_t remoteCalls;
uint32_t remoteSrcStride;
uint32_t remoteDstStride;

void remoteAbsDiff(const uint8_t*, const uint8_t*, uint32_t, uint32_t, uint32_t srcStride, uint8_t*, uint32_t dstStride)
{
    remoteCalls++;
    remoteSrcStride = srcStride;
    remoteDstStride = dstStride;
}

TEST(FrameCompanion, EveryRemoteSymbolGoesToItsRow)
{
    withCompanion("fakeCompanion", [] {
        // Give every word a value of its own, then see in which cell it lands.
        std::set<Cell> expected;
        const auto mark = [&](const char* symbol) {
            ASSERT_NE(dlsym(library, symbol), nullptr) << symbol;
            word(symbol) = reinterpret_cast<Cell>(dlsym(library, symbol));
            expected.insert(word(symbol));
        };
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##remote(mark(#name "R_");)
#include "functionList.inc"
#undef RVK_FUNCTION
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##remote(mark(#name "R_");)
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
        EXPECT_EQ(expected.size(), 404u);

        rvkSetOperationMode(RAVIK_OP_LOW_POWER);
        for (uint32_t i = 0; i < kPublicFunctions; i++) {
            const auto slot = static_cast<Slot>(i);
            const std::string symbol = std::string(nameOf(slot)) + "R_";
            if (void* address = dlsym(library, symbol.c_str())) {
                EXPECT_EQ(targetOf(slot), RVK_IMPL_NDSP) << symbol;
                EXPECT_EQ(cellOf(slot, RVK_IMPL_NDSP), reinterpret_cast<Cell>(address)) << symbol;
            } else {
                EXPECT_NE(targetOf(slot), RVK_IMPL_NDSP) << symbol;
            }
        }
        for (uint32_t i = 0; i < kInternalFunctions; i++) {
            EXPECT_EQ(dispatchState.internalTargets[i], RVK_IMPL_NDSP);
            EXPECT_TRUE(expected.count(dispatchState.internalTable[i * kTargets + RVK_IMPL_NDSP])) << i;
        }
    });
}

TEST(FrameCompanion, RemoteCellsComeAndGoWithTheMode)
{
    withCompanion("fakeCompanion", [] {
        rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE);
        const Cell reference = cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_CPU);
        const Cell vector = cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_VECTA);
        const Cell remote = eraseType(remoteAbsDiff);
        const auto probe = [](x6ProfileCommand command, uint32_t argument) -> uint64_t {
            return command * 1000u + argument;
        };
        EXPECT_EQ(cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_NDSP), vector);

        word("rvkAbsDiffu8R_") = remote;
        word("probeX6TimeR_") = reinterpret_cast<Cell>(+probe);
        rvkSetOperationMode(RAVIK_OP_CPU_OFFLOAD);
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_NDSP);
        EXPECT_EQ(cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_NDSP), remote);
        EXPECT_EQ(cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_VECTA), vector);
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffs32), RVK_IMPL_VECTA); // its word is 0
        EXPECT_EQ(probeX6Time(7, 5), 7005u);

        rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE);
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_VECTA);
        EXPECT_EQ(cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_NDSP), vector);
        EXPECT_EQ(probeX6Time(7, 5), 0u);

        rvkSetOperationMode(static_cast<rvkOperationMode>(kExpertGpu));
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_GPU);
        EXPECT_EQ(cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_GPU), remote);
        EXPECT_EQ(cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_NDSP), vector);
        EXPECT_EQ(dispatchState.offloadForced, 0);

        EXPECT_EQ(rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | 3)), -1);
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_VECTA); // the assignment made before the refusal stays
        rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_ARM));
        EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_CPU);
        EXPECT_EQ(cellOf(Slot::rvkAbsDiffu8, RVK_IMPL_CPU), reference);
    });
}

TEST(FrameCompanion, CallsGoWhereTheRuleSays)
{
    withCompanion("fakeCompanion", [] {
        std::vector<uint8_t> memory(3 * 65536);
        auto* base = reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(memory.data()) + 15) & ~uintptr_t{15});
        word("rvkAbsDiffu8R_") = eraseType(remoteAbsDiff);
        setenv("VENDOR_RUNTIME_RAVIK_LOG", "1", 1);
        const auto isRemote = [&](uint32_t height) {
            remoteCalls = 0;
            clearLog();
            rvkAbsDiffu8(base, base + 60000, 160, height, 0, base + 120000, 0);
            EXPECT_TRUE(logHas(std::string("6 ravik_runtime_log: rvkAbsDiffu8_") + (remoteCalls ? "NDSP" : "VECTA")));
            return remoteCalls == 1;
        };
        rvkSetOperationMode(RAVIK_OP_LOW_POWER);
        EXPECT_FALSE(isRemote(158)); // 25280 elements
        EXPECT_TRUE(isRemote(160));
        EXPECT_EQ(remoteSrcStride, 160u) << "packed strides are written out";
        EXPECT_EQ(remoteDstStride, 160u);
        rvkSetOperationMode(static_cast<rvkOperationMode>(kExpertNdsp));
        EXPECT_TRUE(isRemote(1)) << "forced";

        // Bad arguments never reach the companion.
        remoteCalls = 0;
        rvkAbsDiffu8(base, nullptr, 160, 160, 0, base + 120000, 0);
        rvkAbsDiffu8(base, base, 160, 160, 159, base + 120000, 0);
        EXPECT_EQ(remoteCalls, 0u);
    });
}

// ---- memory ----

TEST(FrameCompanion, SharedMemoryHooks)
{
    withCompanion("fakeCompanion", [] {
        void* local = rvkMemAlloc(100, 16);
        EXPECT_EQ(takeEvents(), "");
        rvkAvailableHardware(RAVIK_OP_LOW_POWER);
        takeEvents();

        rvkMemFree(local); // offered to the companion, which does not know it
        void* shared = rvkMemAlloc(1000, 64);
        memset(shared, 1, 1000);
        EXPECT_EQ(takeEvents(), "sharedMemFree\nsharedMemAlloc 1000 64\n");
        rvkMemFree(shared);
        rvkMemFree(nullptr);
        EXPECT_EQ(takeEvents(), "sharedMemFree\n");

        fake->refusesMemory = true;
        local = rvkMemAlloc(1000, 64);
        ASSERT_NE(local, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(local) % 64, 0u);
        rvkMemFree(local);
        EXPECT_EQ(takeEvents(), "sharedMemAlloc 1000 64\nsharedMemFree\n");
    });
    withCompanion("fakeCompanion", [] { // one hook alone is not used
        word("rvkSharedMemFreeR_") = nullptr;
        rvkAvailableHardware(RAVIK_OP_LOW_POWER);
        takeEvents();
        rvkMemFree(rvkMemAlloc(100, 16));
        EXPECT_EQ(takeEvents(), "");
    });
}

TEST(FrameCompanion, ScratchMemoryIsTakenOver)
{
    withCompanion("fakeCompanion", [] {
        fake->hardware = RAVIK_UNIT_NDSP;
        rvkMemInit(); // no session yet: the companion is not asked
        rvkMemDeInit();
        EXPECT_EQ(takeEvents(), "");

        rvkAvailableHardware(RAVIK_OP_LOW_POWER);
        takeEvents();
        rvkMemInitPreAlloc(0);
        releaseScratch(getScratchAligned(10, 32));
        releaseScratch(getScratchUnaligned(20));
        EXPECT_EQ(takeEvents(), "rvkMemInit\ngetScratchAligned 10 32\nreleaseScratch 1\ngetScratchUnaligned 20\n"
                                "releaseScratch 1\n");
        rvkMemDeInit();
        rvkMemInit(); // looked up once, still known
        rvkMemInit();
        rvkMemDeInit();
        rvkMemDeInit();
        releaseScratch(getScratchUnaligned(30)); // valid although every reference to the library is gone
        EXPECT_EQ(takeEvents(),
                  "rvkMemDeInit\nrvkMemInit\nrvkMemInit\nrvkMemDeInit\nrvkMemDeInit\ngetScratchUnaligned 30\n"
                  "releaseScratch 1\n");
    });
}

// ---- the end of a session, and the next one ----

TEST(FrameCompanion, CleanUpEndsTheSessionAndAnotherMayFollow)
{
    withCompanion("fakeCompanion", [] {
        rvkSetOperationMode(RAVIK_OP_LOW_POWER); // neither a DSP nor a GPU: no session
        takeEvents();
        rvkCleanUp();
        EXPECT_EQ(takeEvents(), "");

        word("rvkAbsDiffu8R_") = eraseType(remoteAbsDiff);
        for (const uint32_t unit : {RAVIK_UNIT_NDSP, RAVIK_UNIT_GPU}) {
            fake->hardware = unit;
            rvkSetOperationMode(RAVIK_OP_LOW_POWER);
            EXPECT_EQ(targetOf(Slot::rvkAbsDiffu8), RVK_IMPL_NDSP);
            rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE); // does not close the session
            takeEvents();
            rvkCleanUp();
            EXPECT_EQ(takeEvents(), "rvkCleanUp\n");
            rvkCleanUp();
            rvkMemInit();
            rvkMemDeInit();
            EXPECT_EQ(takeEvents(), "");
        }
        // Tables and hooks may still name the companion's code; it stays loaded.
        rvkSetOperationMode(static_cast<rvkOperationMode>(kExpertNdsp));
        void* shared = rvkMemAlloc(10, 16);
        rvkCleanUp();
        dlclose(library);
        uint8_t pixel = 0;
        remoteCalls = 0;
        rvkAbsDiffu8(&pixel, &pixel, 1, 1, 1, &pixel, 1);
        EXPECT_EQ(remoteCalls, 1u);
        takeEvents();
        rvkMemFree(shared);
        EXPECT_EQ(takeEvents(), "sharedMemFree\n");
    });
}

} // namespace

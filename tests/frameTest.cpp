// Start, modes, dispatch and log of the frame where there is no companion library.
#include "dispatch.h"
#include "support/logCapture.h"
#include "support/ownProcess.h"
#include "vecta/column.h"

#include <ravik/ravik.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <thread>

using namespace rvk;
using namespace test;

namespace {

constexpr auto kTestSlot = Slot::rvkAbsDiffu8;

Target& targetOf(Slot slot)
{
    return dispatchState.targets[static_cast<uint32_t>(slot)];
}

// ---- before any mode is set ----

// Runs before the constructors of ordinary static objects, the library's included.
struct EarlyCaller
{
    EarlyCaller()
    {
        const uint8_t a = 7;
        const uint8_t b = 10;
        rvkAbsDiffu8(&a, &b, 1, 1, 0, &result, 0);
        rvkGetVersion(version, sizeof version);
        probe = probeX6Time(0, 0);
    }
    uint8_t result = 0;
    char version[8];
    uint64_t probe = 1;
};
__attribute__((init_priority(101))) EarlyCaller earlyCaller;

TEST(Frame, WorksFromStaticConstructors)
{
    EXPECT_EQ(earlyCaller.result, 3);
    EXPECT_STREQ(earlyCaller.version, "1.7.1");
    EXPECT_EQ(earlyCaller.probe, 0u);
}

TEST(Frame, StartsOnTheReference)
{
    inOwnProcess([] {
        for (uint32_t row = 0; row < kPublicFunctions; row++) {
            const Cell* cells = &dispatchState.table[row * kTargets];
            EXPECT_EQ(dispatchState.targets[row], RVK_IMPL_CPU);
            for (const uint32_t target : {RVK_IMPL_VECTA, RVK_IMPL_NDSP, RVK_IMPL_GPU})
                EXPECT_EQ(cells[target], cells[RVK_IMPL_CPU]);
            for (const uint32_t target : {RVK_IMPL_ADSP, RVK_IMPL_CDSP, RVK_IMPL_MDSP})
                EXPECT_EQ(cells[target], nullptr);
        }
        EXPECT_EQ(implementation<kTestSlot>(RVK_IMPL_CPU), &rvkAbsDiffu8C);
        EXPECT_EQ(rvkRegisterBuf(nullptr, 0), 0);
    });
}

// ---- modes ----

TEST(Frame, ModesAssignTargets)
{
    enum class Expect { reference, vector, forcedVector, refusal };
    const uint32_t expert = RAVIK_OP_EXPERT;
    const std::pair<Expect, std::vector<uint32_t>> modes[] = {
        {Expect::vector, {3, 0, 1, 2}}, // the first one builds the tables
        {Expect::reference, {4, 7, INT_MAX, expert + 2}},
        {Expect::forcedVector, {expert + 8, expert + 1024}},
        {Expect::vector, {expert + 1, expert + 4, expert + 32}},
        {Expect::refusal, {expert, expert + 3, expert + 5, expert + 9, expert + 16, expert + 64, expert + INT_MAX}},
    };
    const auto expectMode = [&](uint32_t mode, Expect expect) {
        EXPECT_EQ(rvkSetOperationMode(static_cast<rvkOperationMode>(mode)), expect == Expect::refusal ? -1 : 0) << mode;
        EXPECT_EQ(dispatchState.offloadForced, expect == Expect::forcedVector) << mode;
        const bool reference = expect == Expect::reference;
        const char* wrongRow = nullptr;
#define RVK_VECTA_TARGET_YES 1u
#define RVK_VECTA_TARGET_NO 0u
#define RVK_FUNCTION(name, hasReference, vecta, remote)                      \
    if (targetOf(Slot::name) != (reference ? 0u : RVK_VECTA_TARGET_##vecta)) \
        wrongRow = #name;
#include "functionList.inc"
#undef RVK_FUNCTION
        EXPECT_EQ(wrongRow, nullptr) << mode << ": " << wrongRow;
    };
    inOwnProcess([&] {
        for (const auto& [expect, each] : modes)
            for (const uint32_t mode : each)
                expectMode(mode, expect);
        EXPECT_TRUE(logLines.empty());
    });
}

TEST(Frame, VectorColumnIsThatOfTheBestAllowedVariant)
{
    uint32_t count = 0;
    const vecta::Variant* all = vecta::variants(count);
    for (uint32_t i = 0; i < count; i++) {
        if (!all[i].runsHere)
            continue;
        inOwnProcess([&] {
            setenv("VENDOR_RUNTIME_RAVIK_VECTA", all[i].name, 1);
            EXPECT_EQ(vecta::chosenVariant(), &all[i]);
            rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE);
            for (const vecta::Entry* entry = all[i].column; entry->implementation; entry++) {
                EXPECT_EQ(dispatchState.table[entry->slot * kTargets + RVK_IMPL_VECTA], entry->implementation);
                EXPECT_NE(dispatchState.table[entry->slot * kTargets + RVK_IMPL_CPU], entry->implementation);
            }
        });
    }
    inOwnProcess([] { // a name that is none caps nothing, and says so
        const vecta::Variant* best = nullptr;
        uint32_t n = 0;
        for (const vecta::Variant* v = vecta::variants(n); v && n; v++, n--)
            best = v->runsHere ? v : best;
        setenv("VENDOR_RUNTIME_RAVIK_VECTA", "sse41", 1);
        EXPECT_EQ(vecta::chosenVariant(), best);
        EXPECT_TRUE(logHas("6 ravik_lib_log: vendor.runtime.ravik.vecta: no instruction set \"sse41\" in this build"));
    });
}

// ---- dispatch of one call ----

TEST(Frame, FallbackRules)
{
    const auto choose = [](uint32_t target, bool forced, bool dspCanRun, bool gpuCanRun) {
        targetOf(kTestSlot) = target;
        dispatchState.offloadForced = forced;
        const RVK_IMPL chosen = chooseTarget(
            kTestSlot, [&] { return dspCanRun; }, [&] { return gpuCanRun; });
        targetOf(kTestSlot) = 0;
        dispatchState.offloadForced = 0;
        return chosen;
    };
    for (const uint32_t dsp : {RVK_IMPL_NDSP, RVK_IMPL_ADSP, RVK_IMPL_CDSP, RVK_IMPL_MDSP}) {
        EXPECT_EQ(choose(dsp, false, true, false), dsp);
        EXPECT_EQ(choose(dsp, false, false, true), RVK_IMPL_VECTA);
        EXPECT_EQ(choose(dsp, true, false, false), dsp);
    }
    for (const bool forced : {false, true}) {
        EXPECT_EQ(choose(RVK_IMPL_GPU, forced, false, true), RVK_IMPL_GPU);
        EXPECT_EQ(choose(RVK_IMPL_GPU, forced, true, false), RVK_IMPL_VECTA);
        EXPECT_EQ(choose(RVK_IMPL_CPU, forced, false, false), RVK_IMPL_CPU);
        EXPECT_EQ(choose(RVK_IMPL_VECTA, forced, false, false), RVK_IMPL_VECTA);
    }
    EXPECT_DEATH(choose(7, false, true, true), "");
}

TEST(Frame, TermsOfSizesDoNotWrap)
{
    EXPECT_TRUE(enoughWork(UINT32_MAX, UINT32_MAX, 16)); // the product wraps in 64 bits
    EXPECT_TRUE(enoughWork(65536, 65536, 1));            // and in 32
    EXPECT_FALSE(enoughWork(0, UINT32_MAX, 16));

    EXPECT_EQ(packedIfZero(0, UINT32_MAX / 4 + 2, 4), UINT32_MAX); // too short for the row
    EXPECT_TRUE(rowFits(UINT32_MAX, 1));
    EXPECT_TRUE(rowFits(UINT32_MAX / 4, 4));
    EXPECT_FALSE(rowFits(UINT32_MAX / 4 + 1, 4));
}

TEST(Frame, RuntimeLogNamesEachChoice)
{
    const auto logOfCall = [](const char* property) {
        setenv("VENDOR_RUNTIME_RAVIK_LOG", property, 1);
        rvkAvailableHardware(RAVIK_OP_CPU_PERFORMANCE);
        clearLog();
        uint8_t pixel = 0;
        rvkAbsDiffu8(&pixel, &pixel, 1, 1, 0, &pixel, 0);
        probeX6Time(0, 0);
        return logLines;
    };
    inOwnProcess([&] {
        for (const char* off : {"", "0", "on", "0x1"}) // decimal: 0
            EXPECT_EQ(logOfCall(off).size(), 0u) << off;
        const std::vector<std::string> chosen = {"6 ravik_runtime_log: rvkAbsDiffu8_CPU",
                                                 "6 ravik_runtime_log: probeX6Time_CPU"};
        EXPECT_EQ(logOfCall("1"), chosen);
        EXPECT_EQ(logOfCall("-3"), chosen);

        // The choice is logged before the arguments are found wanting.
        clearLog();
        rvkAbsDiffu8(nullptr, nullptr, 0, 0, 0, nullptr, 0);
        ASSERT_EQ(logLines.size(), 2u);
        EXPECT_EQ(logLines[0], "6 ravik_runtime_log: rvkAbsDiffu8_CPU");
        EXPECT_EQ(logLines[1].rfind("6 ravik_lib_log: Assertion failed @rvkAbsDiffu8: src1 && src2", 0), 0u);
    });
}

TEST(Frame, InternalAssertionEndsTheProcess)
{
    const auto failAndPrintTheLog = [] {
        clearLog();
        atexit([] { fputs(logLines.empty() ? "nothing" : logLines.front().c_str(), stderr); });
        failInternalAssertion("src/cpu/ravikPyramidC", 106, "( (baseWidth & 1) == 0 )");
    };
    EXPECT_EXIT(failAndPrintTheLog(), testing::ExitedWithCode(1),
                "6 ravik_lib_log: src/cpu/ravikPyramidC@106: \\( \\(baseWidth & 1\\) == 0 \\) Assertion failed\n");
}

// ---- version and time ----

TEST(Frame, Version)
{
    char buffer[8];
    for (const uint32_t length : {0u, 1u, 5u, 6u, 8u}) {
        memset(buffer, '#', sizeof buffer);
        rvkGetVersion(buffer, length);
        char expected[8];
        memset(expected, '#', sizeof expected);
        if (length < 6)
            memset(expected, 0, length);
        else
            memcpy(expected, "1.7.1", 6);
        EXPECT_EQ(memcmp(buffer, expected, sizeof buffer), 0) << length;
    }
    rvkGetVersion(nullptr, 10);
}

TEST(Frame, TimeIsTheWallClockInMicroseconds)
{
    const uint64_t before = static_cast<uint64_t>(time(nullptr)) * 1000000;
    const uint64_t now = rvkGetTime();
    EXPECT_GE(now, before);
    EXPECT_LE(now, before + 60 * 1000000);
    EXPECT_EQ(rvkX6GetClk(), 0u);
}

// ---- threads ----

// As the companion library, which has the addresses of the targets, may do at any time.
TEST(Frame, TargetsMayChangeDuringDispatch)
{
    inOwnProcess([] {
        rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE);
        std::atomic<bool> done = false;
        std::thread mover([&] {
            for (uint32_t target = RVK_IMPL_CPU; !done; target ^= RVK_IMPL_CPU ^ RVK_IMPL_VECTA)
                targetOf(kTestSlot).store(target, std::memory_order_relaxed);
        });
        for (int i = 0; i < 2000; i++) {
            const uint8_t a[3] = {1, 2, 3}, b[3] = {3, 3, 3};
            uint8_t d[3] = {};
            rvkAbsDiffu8(a, b, 3, 1, 0, d, 0);
            ASSERT_EQ(d[0] * 100 + d[1] * 10 + d[2], 210);
        }
        done = true;
        mover.join();
    });
}

TEST(Frame, ThreadsMayDispatchAndRaceForTheFirstCall)
{
    inOwnProcess([] {
        setenv("VENDOR_RUNTIME_RAVIK_LOG", "1", 1);
        std::atomic<bool> go = false;
        const auto work = [&](unsigned number) {
            while (!go)
                std::this_thread::yield();
            for (unsigned i = 0; i < 200; i++) {
                const uint32_t units = rvkAvailableHardware(number % 2 ? RAVIK_OP_CPU_PERFORMANCE : RAVIK_OP_LOW_POWER);
                EXPECT_TRUE(units & RAVIK_UNIT_ARM);
                const uint8_t a[3] = {1, 2, 3};
                const uint8_t b[3] = {3, 3, 3};
                uint8_t d[3];
                rvkAbsDiffu8(a, b, 3, 1, 0, d, 0);
                EXPECT_EQ(d[0] * 100 + d[1] * 10 + d[2], 210);
                rvkMemInit();
                rvkMemFree(rvkMemAlloc(i, 16));
                rvkMemDeInit();
                rvkCleanUp();
            }
        };
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < 6; i++)
            threads.emplace_back(work, i);
        go = true;
        for (std::thread& thread : threads)
            thread.join();
    });
}

} // namespace

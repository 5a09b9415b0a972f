#include "driver.h"

#include "bufferPool.h"
#include "device.h"
#include "groups.h"
#include "options.h"
#include "settings.h"
#include "stackStatistics.h"
#include "testLog.h"
#include "testTable.h"

#include "platform/platform.h"

#include <ravik/frame.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

BufferPool bufferPool;

namespace {

constexpr int kFewestWords = 2;
constexpr int kMostWords = 14;

int refuse(const char* program, const char* message)
{
    fwrite(message, 1, strlen(message), stderr);
    printUsage(program);
    return 1;
}

void runWithoutOperationMode(const char* dataDirectory)
{
    if (runUnsetModeTests(dataDirectory) != 0)
        testLogError("ERROR: Running ravik API without calling setOperationMode is fail\n");
    else
        testLog("Running ravik API without calling setOperationMode is pass\n");
}

void seedRandom(long seed)
{
    srand(static_cast<unsigned>(seed == -1 ? static_cast<long>(time(nullptr)) : seed));
}

unsigned long long timeToInitialise(rvkOperationMode mode)
{
    const uint64_t start = rvkGetTime();
    rvkAvailableHardware(mode);
    return rvkGetTime() - start;
}

void initialiseHardware(int targets, int modes)
{
    constexpr int dspUnits = RAVIK_UNIT_NDSP | RAVIK_UNIT_NDSP_TEST;
    constexpr int remoteUnits = dspUnits | RAVIK_UNIT_FPGA | RAVIK_UNIT_GPU | RAVIK_UNIT_DMA | RAVIK_UNIT_C2D;
    if (targets == 0 || targets & dspUnits) {
        char flag[PROP_VALUE_MAX] = "";
        __system_property_get("vendor.runtime.skel.flag", flag);
        if (atoi(flag) != 0)
            check_skel_libs("ls /vendor/lib/dspfs/adsp/");
    }

    if (modes == 8)
        testLog("\nTime taken for Initialization in RAVIK_OP_CPU_PERFORMANCE is: %lld \n",
                static_cast<long long>(timeToInitialise(RAVIK_OP_CPU_PERFORMANCE)));
    else if (targets == 0 || targets & remoteUnits)
        testLog("\nTime taken for Initialization(X6,GPU) in RAVIK_OP_PERFORMANCE is: %lld \n",
                static_cast<long long>(timeToInitialise(RAVIK_OP_PERFORMANCE)));

    if (targets != 0) {
        settings.targetArm = (targets & RAVIK_UNIT_ARM) != 0;
        settings.targetVecta = (targets & RAVIK_UNIT_VECTA) != 0;
        settings.targetNdsp = (targets & dspUnits) != 0;
        settings.targetGpu = (targets & RAVIK_UNIT_GPU) != 0;
        settings.targetReserved = 0;
    }
}

void chooseModes(int modes)
{
    settings.lowPower = (modes & 1) != 0;
    settings.performance = (modes & 2) != 0;
    settings.cpuOffload = (modes & 4) != 0;
    settings.cpuPerformance = (modes & 8) != 0;

    testLog("Targets chosen: ARM:%d VECTA:%d NDSP:%d, GPU:%d", settings.targetArm, settings.targetVecta,
            settings.targetNdsp, settings.targetGpu);
    testLog("Operation mode chosen: LowPower: %d, Performance: %d, CPU offload: %d, CPU Performance: %d",
            settings.lowPower, settings.performance, settings.cpuOffload, settings.cpuPerformance);
}

void enableTargets(bool modesOnly)
{
    if (!modesOnly) {
        settings.enabled[kTargetC] = settings.targetArm;
        settings.enabled[kTargetVecta] = settings.targetVecta;
        settings.enabled[kTargetNdsp] = settings.targetNdsp;
        settings.enabled[kTargetGpu] = settings.targetGpu;
    }
    settings.enabled[kTargetLowPower] = settings.lowPower;
    settings.enabled[kTargetPerformance] = settings.performance;
    settings.enabled[kTargetCpuOffload] = settings.cpuOffload;
    settings.enabled[kTargetCpuPerformance] = settings.cpuPerformance;
}

const char* profilingLabel(char letter)
{
    switch (letter) {
    case 'C':
        return "REF, ";
    case 'V':
        return "Vecta, ";
    case 'Q':
        return "NDSP, NDSPw/oRem, ";
    case 'G':
        return "GPU, ";
    case 'L':
        return "LowPower, ";
    case 'P':
        return "Performance, ";
    case 'F':
        return "CPUOffload, ";
    case 'S':
        return "CPUPerformance, ";
    default:
        return "";
    }
}

void printProfilingOrder()
{
    char line[1024] = "PROFILING ORDER : ";
    for (unsigned i = 0; i < static_cast<unsigned>(runSwitches.profilingEntries); i++)
        strncat(line, profilingLabel(letterOf(i)), sizeof line - strlen(line) - 1);
    profilePrint("RAVIK_PROFILE, %s\n", line);
}

void openBufferPool(const Options& options)
{
    if (!options.bufferPool)
        return;
    if (options.preAllocate)
        profilePrint("preAllocEnable, nPreAllocBytes %d\n", options.preAllocBytes);
    bufferPool.configure(options.preAllocate, static_cast<uint32_t>(std::max(options.preAllocBytes, 0)));
    bufferPool.open();
}

// A group that runs out of memory has failed; the other groups run on.
int callGroup(const TestGroup& group, int loops, const char* dataDirectory)
{
    try {
        return group.run(loops, dataDirectory);
    } catch (const std::bad_alloc&) {
        testLog("Out of memory in group %s\n", group.keyword);
        return 1;
    }
}

int runGroup(const TestGroup& group, int loops, const char* dataDirectory)
{
    const uint8_t* const stack = settings.stackStatistics ? rvk_test_stackprefill() : nullptr;
    if (settings.heapStatistics)
        rvkHeapStatsInit();

    const int failure = callGroup(group, loops, dataDirectory);
    testLog("RAVIK_TEST, %s=>%s", group.keyword, verdictOf(failure));

    if (settings.heapStatistics)
        rvkHeapStats();
    if (stack) {
        const uint8_t* const used = firstUsedByte(stack);
        const ptrdiff_t remaining = used - stack;
        testLog("STACK USAGE STATS ==> %s, Stack Max PTR : %p; USAGE : %td KB; REMAINING : %td KB\n", group.keyword,
                static_cast<const void*>(used), (static_cast<ptrdiff_t>(kStackStatisticsBytes) - remaining) >> 10,
                remaining >> 10);
    }
    return failure;
}

int runGroups(const Options& options)
{
    bool anyRan = false;
    int failure = 0;
    for (const TestGroup& group : testGroups()) {
        if (options.module && strncmp(options.module, group.keyword, group.length) != 0)
            continue;
        anyRan = true;
        failure |= runGroup(group, options.loops, options.dataDirectory);
    }
    if (!anyRan)
        testLog("WARNING - No group is called %s.\n", options.module);
    return failure != 0;
}

int finish(int failure)
{
    testLog("FIT:(FeatureName=>RAVIK, Overall=>%s)", verdictOf(failure));
    profilePrint("RAVIK_PROFILE, FIT:(FeatureName=>RAVIK, Overall=>%s)\n", verdictOf(failure));
    if (failure)
        testLog("...\n");
    bufferPool.close();
    rvkCleanUp();
    return failure;
}

int runFromCommandLine(int argc, char** argv)
{
    rvktest_print_ver();
    const char* const program = argc > 0 ? argv[0] : "ravikTest";
    if (argc < kFewestWords || argc > kMostWords) {
        printUsage(program);
        return 1;
    }
    Options options;
    if (const char* const error = parseOptions(argc, argv, options))
        return refuse(program, error);

    if (settings.withoutOperationMode)
        runWithoutOperationMode(options.dataDirectory);
    if (options.bumpClocks)
        rvktest_bump_arm_clk();
    if (options.function && !options.module)
        return refuse(program, "ERROR: Specify the module name to which this function belongs\n");
    seedRandom(options.seed);
    initialiseHardware(options.targets, options.modes);
    settings.functionIndex = static_cast<int32_t>(parseFunctionName(options.function));
    chooseModes(options.modes);
    if (options.modesOnly && options.modes == 0)
        return refuse(program, "ERROR: missing -M option with -OPT\n");
    enableTargets(options.modesOnly);
    rvktest_dump_clocks();
    printProfilingOrder();
    if (settings.functionIndex != 0)
        testLog("Function chosen: %s ", options.function);

    memset(testTable, 0, sizeof testTable);
    if (RAVIK_TEST_ReadTestTable(options.dataDirectory) != 0)
        return 1;
    openBufferPool(options);
    if (settings.flushCaches)
        rvktest_adspstub_open();
    const int failure = runGroups(options);
    if (settings.flushCaches)
        rvktest_adspstub_close();
    return finish(failure);
}

} // namespace

int runRavikTest(int argc, char** argv)
{
    try {
        return runFromCommandLine(argc, argv);
    } catch (const std::bad_alloc&) {
        fputs("ERROR: out of memory\n", stderr);
        return 1;
    }
}

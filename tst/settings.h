// What the command line chose. The driver writes it during start-up; the groups read it while they run.
#pragma once

#include <ravik/types.h>

// Index into the profiling order: the four units, then the four ordinary operation modes.
enum TargetIndex : unsigned {
    kTargetC,
    kTargetVecta,
    kTargetNdsp,
    kTargetGpu,
    kTargetLowPower,
    kTargetPerformance,
    kTargetCpuOffload,
    kTargetCpuPerformance,
    kTargetIndices
};
inline constexpr unsigned kUnitTargets = 4;

struct RAVIK_TEST_Settings
{
    uint8_t targetArm = 1;
    uint8_t targetVecta = 1;
    uint8_t targetNdsp = 1;
    uint8_t targetReserved = 0;
    uint8_t targetGpu = 1;
    uint8_t lowPower = 0;
    uint8_t performance = 0;
    uint8_t cpuOffload = 0;
    uint8_t cpuPerformance = 0;
    uint8_t flushCaches = 0;
    uint8_t withoutOperationMode = 0;
    uint8_t openCvBenchmark = 0;
    uint8_t exhaustive = 0;
    uint8_t limitAlignment = 0; // shared buffers are aligned to no more than their elements
    uint8_t stackStatistics = 0;
    uint8_t heapStatistics = 0;
    int32_t functionIndex = 0; // of -f; 0: no limit
    int32_t dspLoops = 0;      // iterations on the DSP within one remote call
    int32_t resolution = 0;    // of profiling; 0 is VGA
    uint8_t enabled[kTargetIndices] = {};
};

struct RAVIK_TEST_RunSwitches
{
    uint8_t unitTests = 1;
    uint8_t profiling = 1;
    int32_t profilingEntries = kTargetIndices;
    int32_t reserved = 10;
    const char* verdicts[2] = {"PASS", "FAIL"};
    const char* profilingOrder = "CVQGLPFSO"; // only the first profilingEntries letters count
    int32_t sharedVectors = 1;                // DSP test vectors lie in shared memory
};

extern RAVIK_TEST_Settings settings;
extern RAVIK_TEST_RunSwitches runSwitches;

// What a target index stands for.
rvkOperationMode operationModeOf(unsigned targetIndex);
rvkMemOption memoryOptionOf(unsigned targetIndex);
char letterOf(unsigned targetIndex);
// "PASS" for 0, "FAIL" for everything else.
const char* verdictOf(int failure);

#include "settings.h"

// The statistics have no option: a build that wants them defines these to 1.
#ifndef RAVIK_TEST_STACK_STATISTICS
#define RAVIK_TEST_STACK_STATISTICS 0
#endif
#ifndef RAVIK_TEST_HEAP_STATISTICS
#define RAVIK_TEST_HEAP_STATISTICS 0
#endif

RAVIK_TEST_Settings settings{.stackStatistics = RAVIK_TEST_STACK_STATISTICS,
                             .heapStatistics = RAVIK_TEST_HEAP_STATISTICS};
RAVIK_TEST_RunSwitches runSwitches;

rvkOperationMode operationModeOf(unsigned targetIndex)
{
    constexpr uint32_t modes[kTargetIndices] = {
        RAVIK_OP_EXPERT | RAVIK_UNIT_ARM,
        RAVIK_OP_EXPERT | RAVIK_UNIT_VECTA,
        RAVIK_OP_EXPERT | RAVIK_UNIT_NDSP_TEST,
        RAVIK_OP_EXPERT | RAVIK_UNIT_GPU,
        RAVIK_OP_LOW_POWER,
        RAVIK_OP_PERFORMANCE,
        RAVIK_OP_CPU_OFFLOAD,
        RAVIK_OP_CPU_PERFORMANCE,
    };
    return static_cast<rvkOperationMode>(modes[targetIndex]);
}

rvkMemOption memoryOptionOf(unsigned targetIndex)
{
    constexpr rvkMemOption options[kTargetIndices] = {
        RAVIK_MEM_SYSTEM, RAVIK_MEM_SYSTEM, RAVIK_MEM_SHARED, RAVIK_MEM_LIBRARY,
        RAVIK_MEM_SHARED, RAVIK_MEM_SHARED, RAVIK_MEM_SHARED, RAVIK_MEM_SYSTEM,
    };
    return options[targetIndex];
}

char letterOf(unsigned targetIndex)
{
    return runSwitches.profilingOrder[targetIndex];
}

const char* verdictOf(int failure)
{
    return runSwitches.verdicts[failure != 0];
}

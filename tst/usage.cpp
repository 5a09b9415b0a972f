#include "groups.h"
#include "options.h"

#include <cstdio>

namespace {

constexpr char kHead[] =
    "USAGE: %s test_data_directory [-l loops] [-m module_name] [-p power_level][-E] [-S resolution#]\n"
    "             [-f func_name] [-t target] [-M operation_mode] [-OPT] [-s see] [-nbp] [-o] [-U] [-P]\n"
    "\n"
    "OPTIONS\n"
    "------------------------------------------------------------------------------\n"
    "-nbp\n"
    "    Uses mallocs instead of internal buffer pool for scratch/temporary buffers.\n"
    "-psb nPreAllocBytes\n"
    "    Enable Preallocate Scratch Buffers\n"
    "    nPreAllocBytes is the number of bytes for the pre-allocated buffer.\n"
    "-l loops\n"
    "    0 = [default] do not profile\n"
    "    +integer = loops to use when profiling.\n"
    "-m module_name\n"
    "    String name of module to limit to.  Valid strings in order are:\n";

constexpr char kFunctionHead[] = "-f func_name\n"
                                 "    String name of function to limit to.  Make sure to specify corresponding module "
                                 "using -m. Valid strings are:\n";

constexpr char kTail[] =
    "    Note: Not all modules have function limit functionality yet. \n"
    "    Please use this option with module limit option to limit to \n"
    "    a particular function.\n"
    "-e directory\n"
    "    String name of exhaustive test data directory.\n"
    "-p power_level\n"
    "    Power mode to run NDSP in.  Valid values are:\n"
    "    %d = minimum\n"
    "    %d = normal\n"
    "    %d = [default] maximum\n"
    "-t target\n"
    "    Integer value indicating target.  Valid values are:\n"
    "    RAVIK_ALL_TARGETS = 0\n"
    "    RAVIK_UNIT_ARM = 2\n"
    "    RAVIK_UNIT_VECTA = 4\n"
    "    RAVIK_UNIT_NDSP = 8\n"
    "    RAVIK_UNIT_FPGA = 16\n"
    "    RAVIK_UNIT_GPU = 32\n"
    "    RAVIK_UNIT_C2D = 64\n"
    "    RAVIK_UNIT_VFP = 128\n"
    "    RAVIK_UNIT_ARMv7 = 256\n"
    "    RAVIK_UNIT_DMA = 512\n"
    "    RAVIK_UNIT_NDSP_TEST = 1024\n"
    "-M operation_mode\n"
    "    Integer value indicating operation mode.  Valid values are:\n"
    "    Skip operation mode test = 0  \n"
    "    RAVIK_OP_LOW_POWER = 1\n"
    "    RAVIK_OP_PERFORMANCE = 2\n"
    "    RAVIK_OP_LOW_POWER and RAVIK_OP_PERFORMANCE = 3\n"
    "    RAVIK_OP_CPU_OFFLOAD = 4\n"
    "    RAVIK_OP_LOW_POWER and RAVIK_OP_CPU_OFFLOAD = 5\n"
    "    RAVIK_OP_PERFORMANCE and RAVIK_OP_CPU_OFFLOAD = 6\n"
    "    RAVIK_OP_LOW_POWER, RAVIK_OP_PERFORMANCE and RAVIK_OP_CPU_OFFLOAD = 7\n"
    "    RAVIK_OP_CPU_PERFORMANCE = 8\n"
    "-OPT\n"
    "    Use this option with [-M operation_mode] to skip unit testing on individual processing units and test only "
    "operation tables\n"
    "-s seed\n"
    "    Seed for random number generator.\n"
    "-o\n"
    "    FLAG to enable opencv benchmark profiling Results\n"
    "-L loops\n"
    "    Tells the number of iterations for profiling a function on NDSP with only single remoting overhead \n"
    "-U\n"
    "     Enables only the Unit Tests while disabling the Performance Tests\n"
    "-P\n"
    "    Enables only profiling while disabling the unit Tests\n"
    "-DF\n"
    "    Disables fuzzing check\n"
    "-E\n"
    "    Enables exhaustive testing to validate profiling vectors\n"
    "-S resolution#\n"
    "    Resolution for profiling.. Deafult is VGA\n"
    "-H\n"
    "    Enables NDSP test vectors to be allocated on ARM Heap instead of ION\n"
    "-AC\n"
    "    Bump up ARM clocks\n"
    "-AL\n"
    "    ION allocation buffers are aligned to no more than element size. No effect on heap allocated buffers.\n"
    "-TWOp\n"
    "    Test a couple ravik API without calling any rvkSetOperationMode to run default C reference code.\n"
    "\n"
    "NOTE: Fast running functions will automatically have a loop multiplier and the results will be normalized "
    "accordingly.\n";

} // namespace

void printUsage(const char* program)
{
    fprintf(stderr, kHead, program);
    for (const TestGroup& group : testGroups())
        fprintf(stderr, "    %s\n", group.keyword);
    fprintf(stderr, kFunctionHead);
    for (const TestGroup& group : testGroups()) {
        if (!group.functions)
            continue;
        for (const FunctionTest& function : group.functions().functions)
            if (function.name == function.tableName)
                fprintf(stderr, "    %s\n", function.name.c_str());
    }
    fprintf(stderr, kTail, 0, 1, 2);
}

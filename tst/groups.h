// The test groups in the order in which they run.
#pragma once

#include "group.h"

#include <cstddef>
#include <span>

// A group runs for every -m word that equals its keyword in the first `length` characters: a length of one more than
// the keyword's is an exact match.
struct TestGroup
{
    const char* keyword;
    size_t length;
    int (*run)(int loops, const char* dataDirectory); // 0 when the group passed
    const FunctionGroup& (*functions)();              // null for groups that test no functions
};

std::span<const TestGroup> testGroups();

// -TWOp: what runs before any operation mode is set. Each returns 0 when it passed.
struct UnsetModeTest
{
    const char* name;
    int (*run)(const char* dataDirectory);
};
std::span<const UnsetModeTest> unsetModeTests();
int RAVIK_TEST_UNSET_MODE_Median3x3u8(const char* dataDirectory);

int TEST_HW_Test(int loops, const char* dataDirectory);
int TEST_MEM_Test(int loops, const char* dataDirectory);

// A group that the common routine tests: RVK_TEST_GROUP(entry, functions) declares both.
#define RVK_TEST_GROUP(entry, functionGroup)                            \
    const FunctionGroup& functionGroup();                               \
    inline int entry(int loops, const char* dataDirectory)              \
    {                                                                   \
        return runFunctionGroup(functionGroup(), loops, dataDirectory); \
    }

RVK_TEST_GROUP(RAVIK_TEST_IDIFF_Test, imageDiffFunctions)
RVK_TEST_GROUP(RAVIK_TEST_TRNS_Test, transposeFunctions)
RVK_TEST_GROUP(RAVIK_TEST_BLUR_Test, blurFunctions)
RVK_TEST_GROUP(RAVIK_TEST_EDGE_Sobel_Test, edgesFunctions)
RVK_TEST_GROUP(RAVIK_TEST_EDGE_Scharr_Test, scharrFunctions)
RVK_TEST_GROUP(RAVIK_TEST_THRESH_Test, thresholdFunctions)
RVK_TEST_GROUP(RAVIK_TEST_BITCNT_Test, bitCountFunctions)
RVK_TEST_GROUP(RAVIK_TEST_BITWISEOP_Test, bitwiseFunctions)
RVK_TEST_GROUP(RAVIK_TEST_IPP_Test, flipFunctions)
RVK_TEST_GROUP(RAVIK_TEST_SET, fillFunctions)
RVK_TEST_GROUP(RAVIK_TEST_ADAPTIVETHRESHOLD_Test, adaptiveThresholdFunctions)
RVK_TEST_GROUP(RAVIK_TEST_ABSDIFF_Test, absDiffFunctions)
RVK_TEST_GROUP(RAVIK_TEST_AVERAGE_Test, averageFunctions)
RVK_TEST_GROUP(RAVIK_TEST_FIR_Test, firFunctions)
RVK_TEST_GROUP(RAVIK_TEST_EDGE_Test, edgeFunctions)
RVK_TEST_GROUP(RAVIK_TEST_MINMAX_Test, minMaxFunctions)
RVK_TEST_GROUP(RAVIK_TEST_SMOOTH_Test, smoothFunctions)
RVK_TEST_GROUP(RAVIK_TEST_ARITHM_Test, arithmeticFunctions)

// The one routine that tests functions: a group entry runs each of its functions on each enabled target through unit
// test, exhaustive test and profiling, and prints the function's report.
#pragma once

#include "functionTest.h"
#include "perfReport.h"
#include "testCase.h"

#include <string>
#include <vector>

enum RAVIK_TEST_TYPE { RAVIK_TEST_UNIT = 0, RAVIK_TEST_PROFILING = 1, RAVIK_TEST_EXHAUSTIVE = 2 };

struct FunctionGroup
{
    std::string directory; // of its stored vectors, in the data directory
    std::string prefix;    // what script names leave out of function names
    // Stored vectors alone, the profiling vectors with their results; otherwise random cases join the stored vectors,
    // and the reference gives the results of the profiling vectors when they are wanted.
    bool isStored;
    std::vector<FunctionTest> functions;

    // The path of a script of the function, below the data directory.
    std::string scriptName(const FunctionTest& function, RAVIK_TEST_TYPE type) const;
    ScriptContent scriptContent(RAVIK_TEST_TYPE type) const;
};

// Where the profiling vectors of all groups lie.
inline constexpr char kProfilingDirectory[] = "rvkTestRef";

// Tests every function of the group that the settings select. Returns 0 when all of them passed.
int runFunctionGroup(const FunctionGroup& group, int loops, const char* dataDirectory);

// Tests one function on one target, whose operation mode is set. Profiling fills the target's record of `times`.
// Returns 0 when everything matched.
int unitTest(const FunctionGroup& group, const FunctionTest& function, const char* dataDirectory, unsigned targetIndex,
             float tolerance, RAVIK_TEST_TYPE type, int loops, RAVIK_TEST_Times* times);

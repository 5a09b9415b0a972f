// The functions that tests know by number, and the table that says where each is implemented and how exact it is.
#pragma once

#include <cstdint>

// Index of a function: its row in functionNames.inc, from 1; 0 is no function.
using RAVIK_FUNC = uint32_t;
inline constexpr RAVIK_FUNC kLastFunction = 485;

struct RAVIK_TEST_TableRecord
{
    char name[100];         // empty: the table has no line for the function
    uint8_t implemented[4]; // on the C reference, VECTA, NDSP, GPU
    int32_t rowCount;       // tolerance rows in use; 0 or less: no entry
    float tolerances[2][4]; // row k: unit test k; column: target as in `implemented`
};

extern RAVIK_TEST_TableRecord testTable[kLastFunction + 1];

// Reads "<dataDirectory>/RavikTestTable.csv" into testTable, which the caller has cleared. Returns 0, or 1 when the
// file cannot be opened or is no table.
int RAVIK_TEST_ReadTestTable(const char* dataDirectory);

// The function's index; 0 for a null pointer or an unknown name.
RAVIK_FUNC parseFunctionName(const char* name);

// Whether the function is tested on the target index. Writes one tolerance per row in use; an operation mode gets the
// loosest of all targets.
bool isFunctionImpl(RAVIK_FUNC index, unsigned target, float* tolerances);

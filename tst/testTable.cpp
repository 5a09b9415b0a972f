#include "testTable.h"

#include "controlScript.h"
#include "inputFile.h"
#include "settings.h"
#include "testLog.h"

#include <algorithm>
#include <cstring>

RAVIK_TEST_TableRecord testTable[kLastFunction + 1];

namespace {

constexpr const char* kFunctionNames[] = {
#define RAVIK_TEST_FUNCTION(name) #name,
#include "functionNames.inc"
#undef RAVIK_TEST_FUNCTION
};
static_assert(std::size(kFunctionNames) == kLastFunction);

constexpr int32_t kMostRows = static_cast<int32_t>(std::size(RAVIK_TEST_TableRecord{}.tolerances));

ScriptResult readRecord(const char* dataDirectory, FILE* file, RAVIK_TEST_TableRecord& record)
{
    record = {};
    const ScriptColumn columns[] = {
        ScriptColumn::text(record.name, sizeof record.name),
        record.implemented[0],
        record.implemented[1],
        record.implemented[2],
        record.implemented[3],
        record.rowCount,
        record.tolerances[0][0],
        record.tolerances[0][1],
        record.tolerances[0][2],
        record.tolerances[0][3],
        record.tolerances[1][0],
        record.tolerances[1][1],
        record.tolerances[1][2],
        record.tolerances[1][3],
    };
    return RAVIK_TEST_ReadControlScript(dataDirectory, file, columns);
}

void storeRecord(const char* dataDirectory, const RAVIK_TEST_TableRecord& record)
{
    const RAVIK_FUNC index = parseFunctionName(record.name);
    if (index == 0) {
        testLog("WARNING - Unknown function %s in %s/RavikTestTable.csv.\n", record.name, dataDirectory);
        return;
    }
    if (record.rowCount > kMostRows) {
        testLog("WARNING - %d tolerance rows of function %s in %s/RavikTestTable.csv.\n", record.rowCount, record.name,
                dataDirectory);
        return;
    }
    testTable[index] = record;
}

} // namespace

int RAVIK_TEST_ReadTestTable(const char* dataDirectory)
{
    char path[256];
    snprintf(path, sizeof path, "%s/RavikTestTable.csv", dataDirectory);
    const InputFile file = openFile(path);

    ScriptResult result = ScriptResult::noScript;
    if (file) {
        RAVIK_TEST_TableRecord record;
        while ((result = readRecord(dataDirectory, file.get(), record)) == ScriptResult::line ||
               result == ScriptResult::badLine)
            if (result == ScriptResult::line)
                storeRecord(dataDirectory, record);
    }
    if (result == ScriptResult::noScript) {
        logCannotOpen(path);
        profilePrint("RAVIK_PROFILE, Could not open %s...\n\n", path);
        profilePrint("RAVIK_PROFILE, %s\n",
                     "Problem with the Ravik data : Check whether the Ravik data path is correct or not ...\n");
        return 1;
    }

    for (RAVIK_FUNC index = 1; index <= kLastFunction; index++)
        if (testTable[index].name[0] == '\0')
            testLog("WARNING - Function %d not found in %s/RavikTestTable.csv.\n", static_cast<int>(index),
                    dataDirectory);
    return 0;
}

RAVIK_FUNC parseFunctionName(const char* name)
{
    if (!name)
        return 0;
    const auto found = std::find_if(std::begin(kFunctionNames), std::end(kFunctionNames),
                                    [name](const char* known) { return strcmp(name, known) == 0; });
    return found == std::end(kFunctionNames) ? 0 : static_cast<RAVIK_FUNC>(found - std::begin(kFunctionNames)) + 1;
}

bool isFunctionImpl(RAVIK_FUNC index, unsigned target, float* tolerances)
{
    if (index == 0 || index > kLastFunction)
        return false;
    const RAVIK_TEST_TableRecord& record = testTable[index];
    if (record.rowCount < 1)
        return false;

    for (int32_t row = 0; row < record.rowCount; row++) {
        const float(&ofTargets)[kUnitTargets] = record.tolerances[row];
        tolerances[row] =
            target < kUnitTargets ? ofTargets[target] : *std::max_element(std::begin(ofTargets), std::end(ofTargets));
    }
    return target >= kUnitTargets || record.implemented[target];
}

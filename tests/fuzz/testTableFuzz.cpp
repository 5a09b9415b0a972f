// The test table on any bytes: what it stores is what the functions that read it can rely on.
#include "fuzzing.h"

#include "settings.h"
#include "testTable.h"

#include <iterator>

namespace {

void checkRecord(RAVIK_FUNC index)
{
    constexpr size_t rows = std::size(RAVIK_TEST_TableRecord{}.tolerances);
    constexpr float untouched = -12345;

    const RAVIK_TEST_TableRecord& record = testTable[index];
    fuzz::require(memchr(record.name, 0, sizeof record.name), "a name ends in its field");
    fuzz::require(record.name[0] == 0 || parseFunctionName(record.name) == index, "a record stands in its own place");
    fuzz::require(record.rowCount <= static_cast<int32_t>(rows), "a record has no more rows than there is room for");
    for (unsigned target = 0; target < kTargetIndices; target++) {
        float tolerances[rows + 1];
        std::fill(std::begin(tolerances), std::end(tolerances), untouched);
        isFunctionImpl(index, target, tolerances);
        const auto used = static_cast<size_t>(std::max(record.rowCount, 0));
        fuzz::require(tolerances[used] == untouched, "no tolerances but those of rows in use");
    }
}

} // namespace

// A file that is no table is reported on standard output.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    return freopen("/dev/null", "w", stdout) ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const test::TemporaryDirectory directory;
    fuzz::writeFile(directory.file("RavikTestTable.csv"), {data, size});
    memset(testTable, 0, sizeof testTable);
    RAVIK_TEST_ReadTestTable(directory.string().c_str());
    for (RAVIK_FUNC index = 0; index <= kLastFunction; index++)
        checkRecord(index);
    return 0;
}

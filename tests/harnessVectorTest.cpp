// What stored vectors and random cases are worth: the reference computes something from them, or refuses them on
// purpose.
#include "controlScript.h"
#include "functionsPage.h"
#include "groups.h"
#include "inputFile.h"
#include "pythonTable.h"
#include "settings.h"
#include "support/harnessRun.h"
#include "support/logCapture.h"
#include "testCase.h"

#include <ravik/frame.h>

using namespace test;

namespace {

enum class Effect { none, refusal, result };

// Of a case on the reference.
Effect effectOf(TestCase& testCase)
{
    const FunctionTest& function = testCase.function();
    clearLog();
    testCase.prepareOutputs();
    const Outcome outcome = testCase.call();
    if (outcome.status != RAVIK_SUCCESS || !logLines.empty())
        return Effect::refusal;
    if (testCase.writesItsOutputs() != function.contract.writesNothing)
        return Effect::result;
    return function.isSilent ? Effect::refusal : Effect::none;
}

void forEachFunction(const std::function<void(const FunctionGroup&, const FunctionTest&)>& action)
{
    rvkSetOperationMode(operationModeOf(kTargetC));
    for (const TestGroup& group : testGroups())
        if (group.functions)
            for (const FunctionTest& function : group.functions().functions)
                action(group.functions(), function);
}

TEST(StoredVectors, ComputeSomethingOrAreMeantToBeRefused)
{
    const std::string directory = testData().string();
    forEachFunction([&](const FunctionGroup& group, const FunctionTest& function) {
        const InputFile script = openFile(directory + "/" + group.scriptName(function, RAVIK_TEST_UNIT));
        ASSERT_TRUE(script) << function.name;
        TestCase testCase(function, RAVIK_MEM_SYSTEM);
        int effects[3] = {};
        while (testCase.read(script.get(), (directory + "/" + group.directory).c_str(),
                             group.scriptContent(RAVIK_TEST_UNIT)) == ScriptResult::line)
            effects[static_cast<int>(effectOf(testCase))]++;
        EXPECT_EQ(effects[static_cast<int>(Effect::none)], 0) << function.name;
        EXPECT_GE(effects[static_cast<int>(Effect::result)], 6) << function.name;
        EXPECT_EQ(effects[static_cast<int>(Effect::refusal)], function.canRefuse() ? 2 : 0) << function.name;
    });
}

TEST(DrawnCases, DoWhatIsWanted)
{
    forEachFunction([](const FunctionGroup&, const FunctionTest& function) {
        CountingRandom random;
        TestCase testCase(function, RAVIK_MEM_SYSTEM);
        const auto effect = [&](Wanted wanted, CaseSize size) {
            EXPECT_TRUE(testCase.draw(size, wanted, size.width % 2 == 0, random));
            return effectOf(testCase);
        };
        for (uint32_t i = 1; i < 5; i++) {
            EXPECT_EQ(effect(Wanted::computes, {i, 5 - i}), Effect::result) << function.name;
            EXPECT_NE(effect(Wanted::accepts, {i, 1}), Effect::refusal) << function.name;
            if (function.canRefuse()) {
                EXPECT_EQ(effect(Wanted::refuses, {10 * i, 7}), Effect::refusal) << function.name;
            }
        }
    });
}

TEST(FunctionsPage, IsThatOfTheDescriptors)
{
    EXPECT_TRUE(readFile(RVK_SOURCE_DIR "/docs/functions.md") == functionsPage())
        << "docs/functions.md is out of date: ravikTestData --functions > docs/functions.md";
}

TEST(PythonTable, IsThatOfTheDescriptors)
{
    EXPECT_TRUE(readFile(RVK_SOURCE_DIR "/python/package/pictures.txt") == pythonTable())
        << "python/package/pictures.txt is out of date: ravikTestData --python > python/package/pictures.txt";
}

TEST(GuideToRavikTest, ListsTheGroupsInTheOrderInWhichTheyRun)
{
    const std::string guide = readFile(RVK_SOURCE_DIR "/docs/ravikTest.md");
    std::string table = guide.substr(guide.find("| group | match | tests |"));
    table.resize(table.find("\n\n"));
    size_t at = 0;
    for (const TestGroup& group : testGroups()) {
        at = table.find(std::string("\n| ") + group.keyword + " | ", at);
        ASSERT_NE(at, std::string::npos) << group.keyword;
    }
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), testGroups().size() + 1);
}

} // namespace

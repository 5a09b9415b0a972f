#include "group.h"

#include "compareBuffers.h"
#include "controlScript.h"
#include "inputFile.h"
#include "testLog.h"
#include "testTable.h"

#include "offload.h"

#include <ravik/frame.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

constexpr int kRandomCases = 10;

// What the companion library understands by a probe of the DSP's time.
constexpr rvk::x6ProfileCommand kProbeStart = 0;
constexpr rvk::x6ProfileCommand kProbeRead = 1;

class HarnessRandom : public RandomBits
{
public:
    uint32_t next() override
    {
        const auto high = static_cast<uint32_t>(rand()); // 31 bits
        return high << 1 ^ static_cast<uint32_t>(rand());
    }
};

// One function on one target.
class FunctionRun
{
public:
    FunctionRun(const FunctionGroup& group, const FunctionTest& function, const char* dataDirectory,
                unsigned targetIndex, float tolerance)
        : m_group(group), m_function(function), m_dataDirectory(dataDirectory), m_targetIndex(targetIndex),
          m_tolerance(tolerance)
    {
    }

    int unitTest();
    int exhaustiveTest();
    int profile(int loops, RAVIK_TEST_Times& times);

private:
    int runVectors(RAVIK_TEST_TYPE type);
    int runRandomCases();
    int runCase(TestCase& testCase, unsigned number);
    bool runReference(TestCase& testCase);
    bool expectReference(TestCase& testCase);
    int outOfMemory() const;
    void logVerdict(const char* kind, int failure) const;
    InputFile openScript(RAVIK_TEST_TYPE type) const;
    std::string scriptPath(RAVIK_TEST_TYPE type) const
    {
        return std::string(m_dataDirectory) + "/" + m_group.scriptName(m_function, type);
    }
    std::string vectorDirectory(RAVIK_TEST_TYPE type) const
    {
        return std::string(m_dataDirectory) + "/" + (type == RAVIK_TEST_UNIT ? m_group.directory : kProfilingDirectory);
    }

    const FunctionGroup& m_group;
    const FunctionTest& m_function;
    const char* m_dataDirectory;
    unsigned m_targetIndex;
    float m_tolerance;
    int m_lastFailure = 0; // of the last case compared
};

int FunctionRun::unitTest()
{
    int failure = runVectors(RAVIK_TEST_UNIT);
    if (!m_group.isStored)
        failure |= runRandomCases();
    logVerdict("", m_lastFailure);
    return failure;
}

int FunctionRun::exhaustiveTest()
{
    const int failure = runVectors(RAVIK_TEST_EXHAUSTIVE);
    logVerdict("_E", m_lastFailure);
    return failure;
}

// Every line of a script; one without a line has nothing to show and fails.
int FunctionRun::runVectors(RAVIK_TEST_TYPE type)
{
    const InputFile script = openScript(type);
    if (!script)
        return 1;
    const std::string directory = vectorDirectory(type);
    const ScriptContent content = m_group.scriptContent(type);
    TestCase testCase(m_function, memoryOptionOf(m_targetIndex));

    int failure = 0;
    for (unsigned line = 0;; line++) {
        const ScriptResult result = testCase.read(script.get(), directory.c_str(), content);
        if (result == ScriptResult::badLine) {
            m_lastFailure = 1;
            failure = 1;
            logVectorFailure(m_function.name.c_str(), m_targetIndex, line);
            continue;
        }
        if (result != ScriptResult::line) {
            if (line > 0 && result == ScriptResult::end)
                return failure;
            testLog("ERROR: no test vectors in %s\n", scriptPath(type).c_str());
            return m_lastFailure = 1;
        }
        if (content == ScriptContent::sources && !expectReference(testCase))
            return outOfMemory();
        failure |= runCase(testCase, line);
        if (!m_group.isStored && type == RAVIK_TEST_UNIT) {
            if (!testCase.addStride(line % 9 + 1))
                return outOfMemory();
            failure |= runCase(testCase, line);
        }
    }
}

int FunctionRun::runCase(TestCase& testCase, unsigned number)
{
    if (!testCase.prepareOutputs())
        return outOfMemory();
    const Outcome outcome = testCase.call();
    if (outcome.status == RAVIK_ENORES) {
        testLog("%s return RAVIK_ENORES - skip test %d", m_function.name.c_str(), static_cast<int>(number));
        return 0;
    }
    m_lastFailure = testCase.compare(outcome, m_tolerance);
    if (m_lastFailure)
        logVectorFailure(m_function.name.c_str(), m_targetIndex, number);
    return m_lastFailure;
}

// In the reference's operation mode: takes the reference's result as the expected one.
bool FunctionRun::runReference(TestCase& testCase)
{
    return testCase.prepareOutputs() && testCase.expectThisOutput(testCase.call());
}

bool FunctionRun::expectReference(TestCase& testCase)
{
    rvkSetOperationMode(operationModeOf(kTargetC));
    const bool done = runReference(testCase);
    rvkSetOperationMode(operationModeOf(m_targetIndex));
    return done;
}

int FunctionRun::runRandomCases()
{
    HarnessRandom random;
    std::vector<std::unique_ptr<TestCase>> cases;
    for (int i = 0; i < kRandomCases; i++) {
        const auto& testCase =
            cases.emplace_back(std::make_unique<TestCase>(m_function, memoryOptionOf(m_targetIndex)));
        // The first is large and regular enough for a DSP, the second is refused.
        const bool large = i == 0;
        const CaseSize size = large ? CaseSize{176, 152}
                                    : CaseSize{static_cast<uint32_t>(random.between(1, 80)),
                                               static_cast<uint32_t>(random.between(1, 12))};
        const Wanted wanted = i == 1 && m_function.canRefuse() ? Wanted::refuses
                              : i % 2 == 0                     ? Wanted::accepts
                                                               : Wanted::computes;
        if (!testCase->draw(size, wanted, large, random))
            return outOfMemory();
    }

    rvkSetOperationMode(operationModeOf(kTargetC));
    const bool done = std::all_of(cases.begin(), cases.end(), [&](const auto& c) { return runReference(*c); });
    rvkSetOperationMode(operationModeOf(m_targetIndex));
    if (!done)
        return outOfMemory();

    int failure = 0;
    for (unsigned i = 0; i < cases.size(); i++)
        failure |= runCase(*cases[i], i);
    return failure;
}

int FunctionRun::profile(int loops, RAVIK_TEST_Times& times)
{
    const InputFile script = openScript(RAVIK_TEST_PROFILING);
    if (!script)
        return 1;
    for (int line = 0; line < settings.resolution; line++)
        RAVIK_TEST_SkipScriptLine(script.get());
    TestCase testCase(m_function, memoryOptionOf(m_targetIndex));
    if (testCase.read(script.get(), vectorDirectory(RAVIK_TEST_PROFILING).c_str(),
                      m_group.scriptContent(RAVIK_TEST_PROFILING)) != ScriptResult::line) {
        testLog("ERROR: no line %d in %s\n", settings.resolution, scriptPath(RAVIK_TEST_PROFILING).c_str());
        return 1;
    }
    if (!testCase.prepareOutputs())
        return outOfMemory();

    const CallValues values = testCase.callValues();
    const auto dspLoops = static_cast<uint32_t>(std::max(settings.dspLoops, 0));
    for (int i = 0; i < loops; i++) {
        testCase.flush();
        times.dspStart = rvk::probeX6Time(kProbeStart, dspLoops);
        times.start = rvkGetTime();
        m_function.call(values, m_function.loopMultiplier);
        times.end = rvkGetTime();
        times.dspEnd = rvk::probeX6Time(kProbeRead, dspLoops);
        recordSample(times, dspLoops);
    }
    return 0;
}

InputFile FunctionRun::openScript(RAVIK_TEST_TYPE type) const
{
    const std::string path = scriptPath(type);
    InputFile script = openFile(path);
    if (!script)
        logCannotOpen(path);
    return script;
}

int FunctionRun::outOfMemory() const
{
    testLog("Out of memory...Allocating dstBuffer %s\n", m_function.name.c_str());
    return 1;
}

void FunctionRun::logVerdict(const char* kind, int failure) const
{
    testLog("RAVIK_TEST, %s_%c%s =>%s", m_function.name.c_str(), letterOf(m_targetIndex), kind, verdictOf(failure));
}

// The timing records of a group run.
class TimingRecords
{
public:
    // False when memory is short.
    bool prepare(int loops)
    {
        for (unsigned i = 0; i < kTargetIndices && loops > 0; i++) {
            if (!m_samples[i].Shape(MemShape_::packed(loops, 1, sizeof(uint64_t)), memoryOptionOf(kTargetC), false))
                return false;
            m_records[i].samples = m_samples[i].window<uint64_t>();
            m_records[i].capacity = static_cast<uint32_t>(loops);
        }
        return true;
    }
    RAVIK_TEST_Times* records() { return m_records; }

private:
    RAVIK_TEST_Buffer m_samples[kTargetIndices];
    RAVIK_TEST_Times m_records[kTargetIndices];
};

int testOnTarget(const FunctionGroup& group, const FunctionTest& function, RAVIK_FUNC index, unsigned target, int loops,
                 const char* dataDirectory, RAVIK_TEST_Times* times)
{
    float tolerances[std::size(RAVIK_TEST_TableRecord{}.tolerances)];
    if (!settings.enabled[target] || !isFunctionImpl(index, target, tolerances))
        return 0;

    rvkSetOperationMode(operationModeOf(target));
    const auto run = [&](RAVIK_TEST_TYPE type) {
        const bool profiling = type == RAVIK_TEST_PROFILING;
        return unitTest(group, function, dataDirectory, target, tolerances[0], type, profiling ? loops : 0,
                        profiling ? times : nullptr);
    };
    int failure = 0;
    if (runSwitches.unitTests)
        failure |= run(RAVIK_TEST_UNIT);
    if (settings.exhaustive)
        failure |= run(RAVIK_TEST_EXHAUSTIVE);
    if (runSwitches.profiling)
        run(RAVIK_TEST_PROFILING);
    return failure;
}

} // namespace

std::string FunctionGroup::scriptName(const FunctionTest& function, RAVIK_TEST_TYPE type) const
{
    const char* const kind = type == RAVIK_TEST_UNIT ? "" : "profiling_";
    return directory + "/control_script_" + kind + function.name.substr(prefix.size()) + ".csv";
}

ScriptContent FunctionGroup::scriptContent(RAVIK_TEST_TYPE type) const
{
    return isStored || type == RAVIK_TEST_UNIT ? ScriptContent::sourcesAndResults : ScriptContent::sources;
}

int unitTest(const FunctionGroup& group, const FunctionTest& function, const char* dataDirectory, unsigned targetIndex,
             float tolerance, RAVIK_TEST_TYPE type, int loops, RAVIK_TEST_Times* times)
{
    FunctionRun run(group, function, dataDirectory, targetIndex, tolerance);
    switch (type) {
    case RAVIK_TEST_UNIT:
        return run.unitTest();
    case RAVIK_TEST_EXHAUSTIVE:
        return run.exhaustiveTest();
    case RAVIK_TEST_PROFILING:
        return loops > 0 ? run.profile(loops, times[targetIndex]) : 0;
    }
    return 1;
}

int runFunctionGroup(const FunctionGroup& group, int loops, const char* dataDirectory)
{
    TimingRecords times;
    if (!times.prepare(loops)) {
        testLog("Out of memory...Allocating %d samples\n", loops);
        return 1;
    }
    int groupFailure = 0;
    for (const FunctionTest& function : group.functions) {
        const RAVIK_FUNC index = parseFunctionName(function.tableName.c_str());
        if (settings.functionIndex != 0 && settings.functionIndex != static_cast<int32_t>(index))
            continue;
        int failure = 0;
        for (unsigned target = 0; target < kTargetIndices; target++)
            failure |= testOnTarget(group, function, index, target, loops, dataDirectory, times.records());
        const auto calls = static_cast<float>(function.loopMultiplier);
        GENERATE_PERF_LOG(function.name.c_str(), failure, times.records(), static_cast<unsigned>(loops),
                          function.loopMultiplier == 1 ? RAVIK_STAT_SUM : RAVIK_STAT_SCALED, calls);
        groupFailure |= failure;
    }
    return groupFailure;
}

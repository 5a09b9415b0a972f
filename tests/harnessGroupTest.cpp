// Groups and their verdicts: on good data, on bad data, and above all when a function is wrong.
#include "functions.h"
#include "groups.h"
#include "memory.h"
#include "settings.h"
#include "support/harnessRun.h"
#include "testCase.h"
#include "testTable.h"

#include <dlfcn.h>

#include <csignal>
#include <cstring>
#include <new>
#include <set>

using namespace test;
namespace fs = std::filesystem;

namespace {

// Allocations until one fails; negative: all succeed.
long allocationsLeft = -1;

bool allocationFails()
{
    return allocationsLeft >= 0 && allocationsLeft-- == 0;
}

void* failingMalloc(size_t size)
{
    return allocationFails() ? nullptr : malloc(size);
}

} // namespace

__attribute__((noinline)) void* operator new(size_t size)
{
    void* const memory = failingMalloc(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}
__attribute__((noinline)) void operator delete(void* memory) noexcept
{
    free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, size_t) noexcept
{
    free(memory);
}

namespace {

ProgramRun runOn(
    const fs::path& directory, std::vector<std::string> options, const std::function<void()>& prepare = [] {})
{
    options.insert(options.begin(), directory.string());
    return runProgram(options, prepare);
}

// A copy of one group's test data, to be damaged.
class DamagedData
{
public:
    explicit DamagedData(const std::string& group) : m_group(m_directory.path() / group)
    {
        fs::copy(testData() / group, m_group);
        fs::copy(testData() / "RavikTestTable.csv", m_directory.path());
    }
    const fs::path& path() const { return m_directory.path(); }
    fs::path file(const std::string& name) const { return m_group / name; }
    void replaceInTable(const std::string& what, const std::string& by) const
    {
        std::string table = readFile(path() / "RavikTestTable.csv");
        table.replace(table.find(what), what.size(), by);
        writeFile(path() / "RavikTestTable.csv", table);
    }
    void addToLastByte(const std::string& name, int increment) const
    {
        std::string bytes = readFile(file(name));
        bytes.back() = static_cast<char>(bytes.back() + increment);
        writeFile(file(name), bytes);
    }

private:
    TemporaryDirectory m_directory;
    fs::path m_group;
};

const char kPass[] = "RAVIK_PROFILE, FIT:(FeatureName=>RAVIK, Overall=>PASS)\n";
const char kFail[] = "RAVIK_PROFILE, FIT:(FeatureName=>RAVIK, Overall=>FAIL)\n";

void expectFailure(const ProgramRun& run, const std::string& function, const std::string& reason)
{
    EXPECT_EQ(run.exitStatus, 1) << reason;
    EXPECT_TRUE(run.printed("RAVIK_PROFILE, " + function + " :: FAIL")) << reason << run.out;
    EXPECT_TRUE(run.printed(kFail)) << reason;
    EXPECT_TRUE(run.logged(reason)) << reason << "\n" << run.err;
}

// ---- good data ----

TEST(HarnessGroups, PassOnEveryTargetInEveryPart)
{
    const ProgramRun run = runOn(testData(), {"-m", "ABSDIFF", "-M", "15", "-l", "1", "-E"});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_TRUE(run.out.ends_with(kPass));
    EXPECT_FALSE(run.logged("FAIL"));
    for (const char letter : std::string("CVQGLPFS"))
        for (const std::string kind : {"", "_E"})
            EXPECT_TRUE(run.logged(std::string("RAVIK_TEST, rvkAbsDiffVc4f32_") + letter + kind + " =>PASS"));
    EXPECT_TRUE(run.logged("RAVIK_TEST, ABSDIFF=>PASS"));

    // Every target but NDSP's own clock has taken its time.
    const size_t line = run.out.find("RAVIK_PROFILE, rvkAbsDiffVc4f32 :: PASS");
    ASSERT_NE(line, std::string::npos);
    std::istringstream times(run.out.substr(run.out.find(',', run.out.find("::", line)) + 1));
    for (int i = 0; i < 9; i++) {
        unsigned long long time = 0;
        times >> time;
        EXPECT_EQ(time > 0, i != 3) << i;
        times.ignore(1, ',');
    }
}

TEST(HarnessGroups, PassInUnusualMemory)
{
    EXPECT_EQ(runOn(testData(), {"-U", "-AL", "-nbp", "-t", "1024", "-M", "1"}).exitStatus, 0);
    EXPECT_EQ(runOn(testData(), {"-U", "-H", "-C", "-t", "1024", "-M", "2", "-s", "-1"}).exitStatus, 0);
}

TEST(HarnessGroups, RunThePartsThatAreChosen)
{
    const auto runAbsDiff = [](std::vector<std::string> options) {
        options.insert(options.end(), {"-m", "ABSDIFF"});
        return runOn(testData(), options);
    };
    const ProgramRun one = runAbsDiff({"-f", "rvkAbsDiffs32", "-t", "2", "-l", "1", "-P"});
    EXPECT_TRUE(one.printed("RAVIK_PROFILE, rvkAbsDiffs32 :: PASS, ")) << one.out;
    EXPECT_FALSE(one.printed("rvkAbsDiffu8"));
    EXPECT_FALSE(one.logged("rvkAbsDiffs32_C =>")) << "-P leaves unit tests out";

    const ProgramRun modes = runAbsDiff({"-OPT", "-M", "9", "-U"});
    EXPECT_TRUE(modes.logged("rvkAbsDiffs32_L =>PASS") && modes.logged("rvkAbsDiffs32_S =>PASS"));
    EXPECT_FALSE(modes.logged("rvkAbsDiffs32_C =>") || modes.logged("rvkAbsDiffs32_P =>"));
    EXPECT_TRUE(modes.printed("RAVIK_PROFILE, rvkAbsDiffs32 :: PASS\n")) << "without loops there are no times";

    const ProgramRun other = runAbsDiff({"-f", "rvkAddu8"});
    EXPECT_EQ(other.exitStatus, 0);
    EXPECT_FALSE(other.printed("rvkAbsDiff")) << "a function of another group skips all of this one";

    const ProgramRun unprofiled = runAbsDiff({"-f", "rvkAbsDiffu8", "-S", "7", "-l", "1", "-P"});
    EXPECT_EQ(unprofiled.exitStatus, 0) << "profiling does not count towards the verdict";
    EXPECT_TRUE(unprofiled.logged("ERROR: no line 7 in "));
    EXPECT_TRUE(unprofiled.printed("rvkAbsDiffu8 :: PASS, 0, 0, 0, 0, 0, 0, 0, 0, 0\n"));
}

TEST(HarnessGroups, CoverEveryFunction)
{
    std::set<std::string> tested;
    for (const FunctionTest* function : allFunctions()) {
        tested.insert(function->function);
        EXPECT_NE(parseFunctionName(function->tableName.c_str()), 0u) << function->name;
    }
#define RVK_FUNCTION(name, reference, vecta, remote) \
    RVK_WHEN_##reference(EXPECT_TRUE(tested.count(#name)) << #name " has no entry in a test group";)
#include "functionList.inc"
#undef RVK_FUNCTION
}

// ---- bad data ----

TEST(HarnessGroups, FailOnAWrongResultByItsTolerance)
{
    const DamagedData data("ravikabsdiff");
    data.addToLastByte("u8_3_out5.pgm", 1);
    const ProgramRun run = runOn(data.path(), {"-m", "ABSDIFF", "-U"});
    expectFailure(run, "rvkAbsDiffu8", "RAVIK_TEST, rvkAbsDiffu8_C (3) =>FAIL");
    EXPECT_TRUE(run.logged("RAVIK_TEST, rvkAbsDiffu8_V (3) =>FAIL"));
    EXPECT_TRUE(run.logged("Diff Index = (3,15) (3,15) ref = "));
    EXPECT_TRUE(run.logged("RAVIK_TEST, ABSDIFF=>FAIL"));
    EXPECT_TRUE(run.printed("rvkAbsDiffs32 :: PASS")) << "the others run on";

    data.replaceInTable("rvkAbsDiffu8,1,1,1,1,1,0,0,0,0", "rvkAbsDiffu8,1,1,1,1,1,1.9,1,1,1");
    EXPECT_EQ(runOn(data.path(), {"-m", "ABSDIFF", "-U"}).exitStatus, 0) << "the table allows a difference of 1";
    data.addToLastByte("u8_3_out5.pgm", 1);
    expectFailure(runOn(data.path(), {"-m", "ABSDIFF", "-U"}), "rvkAbsDiffu8", "rvkAbsDiffu8_C (3) =>FAIL");
    data.replaceInTable("rvkAbsDiffu8,1,1,1,1,1,", "rvkAbsDiffu8,0,0,0,0,1,");
    EXPECT_EQ(runOn(data.path(), {"-m", "ABSDIFF", "-U"}).exitStatus, 0) << "no target implements it";
    expectFailure(runOn(data.path(), {"-m", "ABSDIFF", "-U", "-M", "8"}), "rvkAbsDiffu8", "rvkAbsDiffu8_S (3) =>FAIL");
}

TEST(HarnessGroups, FailOnFilesThatAreMissingTruncatedOrAbsurd)
{
    const std::vector<std::string> options = {"-m", "ABSDIFF", "-U", "-t", "2"};
    const auto expectBroken = [&](const std::string& name, const std::string& contents, const std::string& reason) {
        const DamagedData data("ravikabsdiff");
        if (contents == "missing")
            fs::remove(data.file(name));
        else
            writeFile(data.file(name), contents);
        const ProgramRun run = runOn(data.path(), options);
        expectFailure(run, "rvkAbsDiffu8", reason);
        EXPECT_TRUE(run.printed("rvkAbsDiffs32 :: PASS")) << "the others run on";
    };
    const std::string script = "control_script_u8.csv", source = "u8_4_in1.pgm";
    const std::string types = "unsignedchar[],unsignedchar[],unsignedchar[]\n";
    expectBroken(script, "missing", "control_script_u8.csv...");
    expectBroken(script, "", "ERROR: no test vectors in ");
    expectBroken(script, types, "ERROR: no test vectors in ");
    expectBroken(script, types + "u8_1_in0.pgm,u8_1_in1.pgm\n", "WARNING - Bad line of a control script: u8_1_in0.pgm");
    expectBroken(script, types + "u8_1_in0.pgm,u8_2_in1.pgm,u8_1_out5.pgm\n", "do not fit the function");
    expectBroken(script, types + "u8_1_in0.pgm,u8_1_in1.pgm,u8_2_out5.pgm\n", "do not fit the function");
    expectBroken(script, "int[],int[],int[]\nVc4s32_1_in0_12x2.data,Vc4s32_1_in0_12x2.data,Vc4s32_1_in0_12x2.data\n",
                 "do not fit the function");
    expectBroken(script, std::string(1 << 20, 'x'), "ERROR: no test vectors in ");
    expectBroken(source, "missing", "u8_4_in1.pgm...");
    expectBroken(source, "P5 17 9 255\nshort", "no PGM image of the type");
    expectBroken(source, "P5 100000 100000 255\n", "no PGM image of the type");
}

// ---- wrong functions ----

using Word = void (*)();

Word& remoteWord(const char* name)
{
    static void* const library = dlopen(RVK_TEST_BINARY_DIR "/fakeFunctions/libravikopt.so", RTLD_NOW);
    return *static_cast<Word*>(dlsym(library, name));
}

// Runs a group on the DSP, where `function` takes the place of the library's.
template <class Function>
ProgramRun runOnDsp(const char* group, const char* name, Function* function, std::vector<std::string> options = {"-U"})
{
    options.insert(options.end(), {"-m", group, "-t", "1024"});
    return runOn(testData(), options,
                 [=] { remoteWord((std::string(name) + "R_").c_str()) = reinterpret_cast<Word>(function); });
}

enum class Wrong { nothing, status, beyondRow, strides, largeImages, memory };

template <Wrong wrong>
rvkStatus add(const uint8_t* src1, uint32_t width, uint32_t height, uint32_t src1Stride, const uint8_t* src2,
              uint32_t src2Stride, uint32_t policy, uint8_t* dst, uint32_t dstStride)
{
    if (wrong == Wrong::memory && width == 7)
        return RAVIK_ENORES;
    if (policy > 1)
        return wrong == Wrong::status ? RAVIK_EFAIL : RAVIK_EBADPARAM;
    if (wrong == Wrong::strides)
        src1Stride = src2Stride = width;
    for (uint32_t j = 0; j < height; j++) {
        for (uint32_t i = 0; i < width; i++) {
            const unsigned sum = src1[j * src1Stride + i] + src2[j * src2Stride + i];
            dst[j * dstStride + i] = static_cast<uint8_t>(policy && sum > 255 ? 255 : sum);
        }
        if (wrong == Wrong::beyondRow && dstStride > width)
            dst[j * dstStride + width - (j + 1 == height)] |= 1; // not behind the last row: the block may end there
    }
    if (wrong == Wrong::largeImages && width > 150)
        dst[(height - 1) * dstStride + width - 1] ^= 1;
    return RAVIK_SUCCESS;
}

template <Wrong wrong>
ProgramRun runWithAdd()
{
    return runOnDsp("ARITHM", "rvkAddu8", add<wrong>);
}

TEST(HarnessGroups, FailWhenAFunctionIsWrong)
{
    EXPECT_EQ(runWithAdd<Wrong::nothing>().exitStatus, 0);
    expectFailure(runWithAdd<Wrong::status>(), "rvkAddu8", "ref status = 3, count = 0, tst status = 1");
    expectFailure(runWithAdd<Wrong::beyondRow>(), "rvkAddu8", "rvkAddu8_Q (");
    expectFailure(runWithAdd<Wrong::strides>(), "rvkAddu8", "rvkAddu8_Q (");
    const ProgramRun large = runWithAdd<Wrong::largeImages>();
    expectFailure(large, "rvkAddu8", "rvkAddu8_Q (0) =>FAIL");
    EXPECT_TRUE(large.printed("rvkAdds16 :: PASS"));
}

TEST(HarnessGroups, SkipWhatRunsOutOfResources)
{
    const ProgramRun run = runWithAdd<Wrong::memory>();
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_TRUE(run.logged("rvkAddu8 return RAVIK_ENORES - skip test 2"));
}

void absDiffOfNothing(const uint8_t*, const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t) {}

TEST(HarnessGroups, FailOnWrongProfilingVectors)
{
    expectFailure(runOnDsp("ABSDIFF", "rvkAbsDiffu8", absDiffOfNothing, {"-P", "-E"}), "rvkAbsDiffu8",
                  "rvkAbsDiffu8_Q_E =>FAIL");
}

void kill(const int32_t*, const int32_t*, uint32_t, uint32_t, uint32_t, int32_t*, uint32_t)
{
    raise(SIGKILL);
}

TEST(HarnessGroups, LeaveWhatTheyPrintedWhenKilled)
{
    const ProgramRun run = runOnDsp("ABSDIFF", "rvkAbsDiffs32", kill, {"-U"});
    EXPECT_EQ(run.exitStatus, -1);
    EXPECT_TRUE(run.out.ends_with("RAVIK_PROFILE, rvkAbsDiffu8 :: PASS\n")) << run.out;
}

uint64_t probe(int32_t command, uint32_t)
{
    return command == 0 ? 100 : 140;
}

void absDiffInAMillisecond(const uint8_t*, const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t)
{
    usleep(1000);
}

TEST(HarnessGroups, KeepOneRemoteCallInProfiles)
{
    const ProgramRun run =
        runOn(testData(), {"-P", "-m", "ABSDIFF", "-f", "rvkAbsDiffu8", "-t", "1024", "-l", "3", "-L", "4"}, [] {
            remoteWord("rvkAbsDiffu8R_") = reinterpret_cast<Word>(absDiffInAMillisecond);
            remoteWord("probeX6TimeR_") = reinterpret_cast<Word>(probe);
        });
    unsigned long long all = 0, onDsp = 0;
    const size_t line = run.out.find("rvkAbsDiffu8 :: PASS");
    ASSERT_NE(line, std::string::npos) << run.out;
    ASSERT_EQ(sscanf(run.out.c_str() + line, "rvkAbsDiffu8 :: PASS, 0, 0, %llu, %llu, 0", &all, &onDsp), 2) << run.out;
    EXPECT_EQ(onDsp, 30u) << "three samples of 40 / 4";
    EXPECT_GE(all, 3 * (1000u - 30));
}

// ---- memory ----

TEST(HarnessGroups, EndWithAVerdictWhenMemoryRunsOut)
{
    int failures = 0;
    for (const long count : {0L, 1L, 7L, 40L, 200L, 777L, 1500L, 4000L}) {
        const ProgramRun run = runOn(testData(), {"-m", "ABSDIFF", "-f", "rvkAbsDiffVc3u8", "-l", "2", "-E"}, [count] {
            rvk::systemAllocator.allocate = failingMalloc;
            allocationsLeft = count;
        });
        EXPECT_TRUE(run.exitStatus == 0 || run.exitStatus == 1) << count << " " << run.exitStatus << run.err;
        failures += run.exitStatus;
        EXPECT_TRUE(run.exitStatus == 0 || run.logged("memory") || run.printed(kFail)) << count << run.err;
    }
    EXPECT_GT(failures, 3);
}

// ---- cases ----

struct Drawn
{
    const int16_t* src1;
    uint32_t width, srcStride, dstStride;
    int16_t scalar;
};
std::vector<Drawn> drawn;

void remember(const int16_t* src1, const int16_t* src2, uint32_t width, uint32_t height, uint32_t srcStride,
              int16_t scalar, int16_t* dst, uint32_t dstStride)
{
    drawn.push_back({src1, width, srcStride, dstStride, scalar});
    int16_t sum = 0; // every element of every row is there
    for (uint32_t j = 0; j < height; j++)
        for (uint32_t i = 0; i < width; i++) {
            sum = static_cast<int16_t>(sum + src1[j * srcStride / 2 + i] + src2[j * srcStride / 2 + i]);
            dst[j * dstStride / 2 + i] = sum;
        }
}

TEST(TestCases, AreDrawnInAllLayouts)
{
    using namespace arguments;
    const FunctionTest function = describe("remember", "remember", "rvkAddu8", remember,
                                           {src, src, width, height, stride, between(-3, 3), dst, stride});
    CountingRandom random;
    std::set<int> scalars;
    int unaligned = 0, padded = 0;
    for (uint32_t i = 1; i <= 60; i++) {
        TestCase testCase(function, RAVIK_MEM_SYSTEM);
        ASSERT_TRUE(testCase.draw({i, 1 + i % 7}, Wanted::computes, i % 10 == 0, random));
        ASSERT_TRUE(testCase.prepareOutputs());
        ASSERT_TRUE(testCase.expectThisOutput(testCase.call()));
        ASSERT_TRUE(testCase.addStride(i));
        ASSERT_TRUE(testCase.prepareOutputs());
        EXPECT_EQ(testCase.compare(testCase.call(), 0), 0);
        const Drawn before = drawn[drawn.size() - 2], after = drawn.back();
        EXPECT_EQ(before.width, i);
        EXPECT_EQ(after.srcStride, before.srcStride + 2 * i);
        EXPECT_GE(before.srcStride, 2 * i);
        EXPECT_EQ(i % 10 != 0 || before.srcStride == 2 * i, true) << "packed";
        scalars.insert(before.scalar);
        unaligned += reinterpret_cast<uintptr_t>(before.src1) % 16 != 0;
        padded += before.dstStride > 2 * i;
    }
    EXPECT_EQ(scalars, (std::set<int>{-3, -2, -1, 0, 1, 2, 3}));
    EXPECT_GT(unaligned, 30);
    EXPECT_GT(padded, 40);
}

uint32_t nextCount;
float nextAverage;

uint32_t countAndAverage(const uint8_t*, uint32_t, float* average)
{
    *average = nextAverage;
    return nextCount;
}

TEST(TestCases, CompareCountsAndValues)
{
    using namespace arguments;
    const FunctionTest function = describe("count", "count", "rvkAddu8", countAndAverage, {src, area, value});
    CountingRandom random;
    TestCase testCase(function, RAVIK_MEM_SYSTEM);
    const auto callGiving = [&](uint32_t count, float average) {
        nextCount = count;
        nextAverage = average;
        return testCase.call();
    };
    ASSERT_TRUE(testCase.draw({5, 3}, Wanted::computes, false, random) && testCase.prepareOutputs());
    ASSERT_TRUE(testCase.expectThisOutput(callGiving(4, 1)));
    EXPECT_EQ(testCase.compare(callGiving(4, 1), 0), 0);
    EXPECT_EQ(testCase.compare(callGiving(4, 2), 1), 0);
    EXPECT_NE(testCase.compare(callGiving(4, 2), 0.5f), 0);
    EXPECT_NE(testCase.compare(callGiving(5, 1), 1), 0) << "counts have no tolerance";
}

// ---- the data generator ----

TEST(TestData, SaysWhatItCannotWrite)
{
    const TemporaryDirectory directory;
    writeFile(directory.path() / "file", "");
    EXPECT_THROW(writeTestData(directory.string() + "/file", 0), std::exception);
    EXPECT_EQ(readFile(directory.path() / "file"), "");
}

} // namespace

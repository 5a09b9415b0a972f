// The command line of ravikTest and the course of a run.
#include "options.h"
#include "settings.h"
#include "support/harnessRun.h"

using namespace test;

namespace {

// A data directory whose table knows no function: groups that test functions pass at once.
class HarnessRun : public testing::Test
{
protected:
    HarnessRun()
    {
        const std::string scalars = ",int,int,int,int,int,float,float,float,float,float,float,float,float\n";
        writeFile(m_directory.path() / "RavikTestTable.csv", "char*" + scalars);
    }
    ProgramRun run(
        std::vector<std::string> options, const std::function<void()>& prepare = [] {}) const
    {
        options.insert(options.begin(), m_directory.string());
        return runProgram(options, prepare);
    }

    const TemporaryDirectory m_directory;
};

struct Parsed
{
    Options options;
    const char* error;
};

Parsed parse(std::vector<std::string> words)
{
    settings = {};
    runSwitches = {};
    words.insert(words.begin(), {"ravikTest", "data"});
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    Parsed parsed;
    parsed.error = parseOptions(static_cast<int>(words.size()), arguments.data(), parsed.options);
    // The words do not outlive this function.
    parsed.options.dataDirectory = parsed.options.module = parsed.options.function = nullptr;
    return parsed;
}

TEST(HarnessOptions, MatchByTheirLengths)
{
    EXPECT_EQ(parse({"-loops", "3"}).options.loops, 3);
    EXPECT_EQ(parse({"-s", "77"}).options.seed, 77);
    EXPECT_EQ(parse({"-seed", "77"}).options.seed, 1246302971) << "-s is exact";
    EXPECT_FALSE(parse({"-nbpool"}).options.bufferPool);
    EXPECT_TRUE(parse({"-nb"}).options.bufferPool);
    parse({"-A", "-TWO", "unknown", "-p", "1", "-e", "directory", "-DF"});
    EXPECT_FALSE(settings.limitAlignment || settings.withoutOperationMode || settings.exhaustive);
    EXPECT_TRUE(parse({"-AC"}).options.bumpClocks);
    EXPECT_FALSE(settings.limitAlignment);
    parse({"-AL", "-C", "-TWOp", "-o", "-E", "-H"});
    EXPECT_TRUE(settings.limitAlignment && settings.flushCaches && settings.withoutOperationMode &&
                settings.openCvBenchmark && settings.exhaustive);
    EXPECT_EQ(runSwitches.sharedVectors, 0);
}

TEST(HarnessOptions, CompareTheRestOfThePassWithTheValue)
{
    EXPECT_EQ(parse({"-l", "-P"}).options.loops, 0);
    EXPECT_EQ(runSwitches.unitTests, 0) << "the value of -l is also the option -P";

    const Parsed chained = parse({"-t", "-S", "3"});
    EXPECT_EQ(chained.options.targets, 0);
    EXPECT_EQ(settings.resolution, 3);

    EXPECT_EQ(parse({"-M", "-l"}).error, nullptr) << "-l stands before -M and is not asked again";
    EXPECT_STREQ(parse({"-M", "-S"}).error, "ERROR: missing Resolution param with option -S\n");
}

TEST(HarnessOptions, KeepValuesInTheirRanges)
{
    EXPECT_EQ(parse({"-l", "20000000"}).options.loops, 10000000);
    EXPECT_EQ(parse({"-l", "99999999999999999999"}).options.loops, 10000000);
    EXPECT_EQ(parse({"-l", "-5"}).options.loops, 0);
    parse({"-S", "7"});
    EXPECT_EQ(settings.resolution, 7);
    for (const char* outside : {"8", "9", "-1"}) {
        parse({"-S", outside});
        EXPECT_EQ(settings.resolution, 0) << outside;
    }
    EXPECT_EQ(parse({"-s", "-1"}).options.seed, -1);
}

TEST(HarnessOptions, LaterPartsWin)
{
    parse({"-U", "-P"});
    EXPECT_TRUE(!runSwitches.unitTests && runSwitches.profiling);
    parse({"-P", "-U"});
    EXPECT_TRUE(runSwitches.unitTests && !runSwitches.profiling);
}

TEST_F(HarnessRun, RefusesBadCommandLines)
{
    const auto expectRefused = [](const ProgramRun& run, const std::string& message) {
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_TRUE(run.logged(message + "USAGE: ravikTest test_data_directory [-l loops]")) << message << run.err;
        EXPECT_FALSE(run.printed("FIT:"));
    };
    const ProgramRun bare = runProgram({});
    expectRefused(bare, "");
    for (const char* text : {"    ABSDIFF\n", "    rvkAbsDiffVc4f32\n", "    RAVIK_UNIT_NDSP_TEST = 1024\n"})
        EXPECT_TRUE(bare.logged(text)) << text;
    EXPECT_LT(bare.err.find("rvktest_print_ver: E"), bare.err.find("USAGE")) << "the versions come first";
    expectRefused(run(std::vector<std::string>(13, "-U")), "");

    for (const char* option : {"-l", "-L", "-m", "-f", "-t", "-M", "-s"})
        expectRefused(run({"-U", option}), std::string("ERROR: missing param with option ") + option + "\n");
    expectRefused(run({"-psb"}), "ERROR: missing param nPreAllocBytes with option -psb\n");
    expectRefused(run({"-S"}), "ERROR: missing Resolution param with option -S\n");
    expectRefused(run({"-f", "rvkAbsDiffu8"}), "ERROR: Specify the module name to which this function belongs\n");
    expectRefused(run({"-OPT"}), "ERROR: missing -M option with -OPT\n");
}

TEST_F(HarnessRun, TakesFourteenWordsAndEndsWithItsVerdict)
{
    const ProgramRun passed = run({"-U", "-U", "-U", "-U", "-U", "-U", "-U", "-U", "-U", "-U", "-m", "HW"});
    EXPECT_EQ(passed.exitStatus, 0) << passed.err;
    EXPECT_TRUE(passed.printed("RAVIK_PROFILE, PROFILING ORDER : REF, Vecta, NDSP, NDSPw/oRem, GPU, LowPower, "
                               "Performance, CPUOffload, CPUPerformance, \n"));
    EXPECT_TRUE(passed.out.ends_with("RAVIK_PROFILE, FIT:(FeatureName=>RAVIK, Overall=>PASS)\n"));
    EXPECT_TRUE(passed.logged("D/ravik_test: RAVIK_TEST, HW=>PASS\n"));
    EXPECT_TRUE(passed.logged("D/ravik_test: FIT:(FeatureName=>RAVIK, Overall=>PASS)\n"));
}

TEST_F(HarnessRun, ChoosesGroupsByTheirCompareLengths)
{
    const auto groupsOf = [&](const char* module) {
        const ProgramRun result = module ? run({"-m", module}) : run({});
        std::string groups;
        for (const std::string keyword : {"HW", "MEM", "IDIFF", "BITCNT", "BITWISEOP", "SET", "ABSDIFF", "ARITHM"})
            if (result.logged("RAVIK_TEST, " + keyword + "=>PASS"))
                groups += keyword + " ";
        return groups;
    };
    EXPECT_EQ(groupsOf(nullptr), "HW MEM IDIFF BITCNT BITWISEOP SET ABSDIFF ARITHM ");
    EXPECT_EQ(groupsOf("HWX"), "HW ");
    EXPECT_EQ(groupsOf("SETTING"), "SET ");
    EXPECT_EQ(groupsOf("BITWISE"), "BITWISEOP ");
    EXPECT_EQ(groupsOf("ABS"), "");
    EXPECT_EQ(groupsOf("absdiff"), "");
}

TEST_F(HarnessRun, ChoosesTargetsAndModes)
{
    const auto chosen = [](const ProgramRun& result, const std::string& targets, const std::string& modes) {
        EXPECT_TRUE(result.logged("Targets chosen: " + targets)) << targets << result.err;
        EXPECT_TRUE(result.logged("Operation mode chosen: " + modes)) << modes << result.err;
    };
    chosen(run({"-m", "none"}), "ARM:1 VECTA:1 NDSP:1, GPU:1",
           "LowPower: 0, Performance: 0, CPU offload: 0, CPU Performance: 0");
    chosen(run({"-m", "none", "-t", "6", "-M", "15"}), "ARM:1 VECTA:1 NDSP:0, GPU:0",
           "LowPower: 1, Performance: 1, CPU offload: 1, CPU Performance: 1");
    const ProgramRun testDsp = run({"-m", "none", "-t", "1024", "-M", "6"});
    chosen(testDsp, "ARM:0 VECTA:0 NDSP:1, GPU:0", "LowPower: 0, Performance: 1, CPU offload: 1, CPU Performance: 0");
    EXPECT_TRUE(testDsp.logged("Time taken for Initialization(X6,GPU) in RAVIK_OP_PERFORMANCE is: "));
    EXPECT_TRUE(testDsp.printed("NDSP clk : 0"));

    const ProgramRun cpu = run({"-m", "none", "-t", "6", "-M", "8"});
    EXPECT_TRUE(cpu.logged("Time taken for Initialization in RAVIK_OP_CPU_PERFORMANCE is: "));
    EXPECT_FALSE(cpu.printed("NDSP clk"));
    EXPECT_FALSE(run({"-m", "none", "-t", "6"}).logged("Time taken for Initialization"));
}

TEST_F(HarnessRun, SetsUpThePoolAsTold)
{
    const ProgramRun result = run({"-psb", "1000", "-m", "MEM"});
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    EXPECT_TRUE(result.printed("preAllocEnable, nPreAllocBytes 1000\n"));
    const ProgramRun without = run({"-psb", "1000", "-nbp", "-m", "MEM"});
    EXPECT_EQ(without.exitStatus, 0) << without.err;
    EXPECT_FALSE(without.printed("preAllocEnable"));
}

TEST_F(HarnessRun, TestsFunctionsBeforeAModeIsSet)
{
    const ProgramRun result = runProgram({testData().string(), "-TWOp", "-m", "none"});
    EXPECT_EQ(result.exitStatus, 0) << result.err;
    for (const char* name :
         {"FilterMedian3x3u8", "DotProduct36x1s8", "SumOfSquaredDiffs36x4s8", "ColorYUV420toRGB565u8Rotate180"})
        EXPECT_TRUE(result.logged("RAVIK_TEST, rvk" + std::string(name) + "_C =>PASS")) << name << "\n" << result.err;
    EXPECT_TRUE(result.logged("Running ravik API without calling setOperationMode is pass\n")) << result.err;
    const ProgramRun withoutVectors = run({"-TWOp", "-m", "none"});
    EXPECT_EQ(withoutVectors.exitStatus, 0) << "the verdict does not count";
    EXPECT_TRUE(withoutVectors.logged("ERROR: Running ravik API without calling setOperationMode is fail\n"));
}

TEST_F(HarnessRun, StopsWithoutTheLibrariesOfTheDspWhenThePropertyAsks)
{
    const auto withFlag = [] { setenv("VENDOR_RUNTIME_SKEL_FLAG", "1", 1); };
    const ProgramRun stopped = run({}, withFlag);
    EXPECT_EQ(stopped.exitStatus, 0);
    EXPECT_TRUE(stopped.printed("RAVIK_PROFILE, Missing skel libs in :/vendor/lib/dspfs/adsp/: "));
    EXPECT_FALSE(stopped.printed("FIT:"));
    EXPECT_TRUE(run({"-t", "6", "-m", "none"}, withFlag).printed("FIT:")) << "only DSP targets need them";
}

TEST_F(HarnessRun, ReportsTheStackThatAGroupUsed)
{
    const ProgramRun result = run({"-m", "HW"}, [] { settings.stackStatistics = settings.heapStatistics = 1; });
    EXPECT_TRUE(result.logged("STACK USAGE STATS ==> HW, Stack Max PTR : 0x")) << result.err;
    EXPECT_FALSE(result.logged("USAGE : 0 KB;")) << "the group had a stack frame";
}

TEST_F(HarnessRun, NeedsATable)
{
    const auto expectNoTable = [](const std::string& directory) {
        const ProgramRun result = runProgram({directory});
        EXPECT_EQ(result.exitStatus, 1);
        EXPECT_TRUE(result.logged("Could not open " + directory + "/RavikTestTable.csv...\n"));
        EXPECT_TRUE(result.printed("RAVIK_PROFILE, Could not open " + directory + "/RavikTestTable.csv...\n\n"));
        EXPECT_TRUE(result.printed("RAVIK_PROFILE, Problem with the Ravik data : Check whether the Ravik data path is "
                                   "correct or not ...\n"));
        EXPECT_FALSE(result.printed("FIT:"));
    };
    const TemporaryDirectory other;
    expectNoTable(other.string());
    std::filesystem::create_directory(other.path() / "RavikTestTable.csv");
    expectNoTable(other.string());
    std::filesystem::remove(other.path() / "RavikTestTable.csv");
    writeFile(other.path() / "RavikTestTable.csv", std::string(100000, '\xff'));
    expectNoTable(other.string());
}

} // namespace

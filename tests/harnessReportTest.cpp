// Samples, the profiling report, and what the program asks of the device.
#include "device.h"
#include "perfReport.h"
#include "settings.h"
#include "support/logCapture.h"
#include "support/ownProcess.h"

#include <cstdarg>
#include <map>
#include <sstream>

using namespace test;

namespace {

// ---- a shell that answers as it is told ----

std::map<std::string, std::string> answers;
std::vector<std::string> commands;
bool shellFails;

} // namespace

extern "C" FILE* popen(const char* command, const char* mode)
{
    EXPECT_STREQ(mode, "r");
    commands.push_back(command);
    if (shellFails)
        return nullptr;
    FILE* const file = tmpfile();
    const auto answer = answers.find(command);
    if (answer != answers.end())
        fputs(answer->second.c_str(), file);
    rewind(file);
    return file;
}

extern "C" int pclose(FILE* file)
{
    return fclose(file);
}

namespace {

class Report : public testing::Test
{
protected:
    Report()
    {
        settings = {};
        answers.clear();
        commands.clear();
        shellFails = false;
        clearLog();
        for (int i = 0; i < 8; i++) {
            m_times[i].samples = m_samples[i];
            m_times[i].capacity = 3;
        }
    }

    template <class Action>
    static std::string printedBy(Action action)
    {
        testing::internal::CaptureStdout();
        action();
        return testing::internal::GetCapturedStdout();
    }

    std::string report(RAVIK_PROFILING_STAT stat, unsigned loops = 3, float scale = 1, int failures = 0,
                       const std::string& name = "rvkName")
    {
        return printedBy([&] { GENERATE_PERF_LOG(name.c_str(), failures, m_times, loops, stat, scale); });
    }

    void sample(int target, uint64_t start, uint64_t end, uint64_t dspStart = 0, uint64_t dspEnd = 0,
                uint32_t loops = 0)
    {
        RAVIK_TEST_Times& times = m_times[target];
        times.start = start;
        times.end = end;
        times.dspStart = dspStart;
        times.dspEnd = dspEnd;
        recordSample(times, loops);
    }

    uint64_t m_samples[8][3] = {};
    RAVIK_TEST_Times m_times[8];
};
using Device = Report;

TEST_F(Report, SamplesKeepOneRemoteCall)
{
    RAVIK_TEST_Times& times = m_times[2];
    sample(2, 100, 160, 0, 50, 10); // 60 in all, 50 on the DSP for 10 iterations: 10 of remoting, 5 on the DSP
    sample(2, 100, 108);
    sample(2, 100, 90); // the clock ran backwards: dropped
    EXPECT_EQ(times.count, 2u);
    EXPECT_TRUE(times.sum == 15 + 8 && times.sumOfSquares == 15 * 15 + 8 * 8);
    EXPECT_TRUE(times.dspSum == 5 && times.dspSumOfSquares == 25);
    EXPECT_TRUE(times.maximum == 15 && times.minimum == 8);
    sample(2, 0, 1);
    sample(2, 0, 2); // beyond the capacity
    EXPECT_EQ(times.count, 4u);
    EXPECT_EQ(m_samples[2][2], 1u);
    EXPECT_EQ(m_samples[3][0], 0u);
}

TEST_F(Report, ListsEveryTargetAndNdspTwice)
{
    sample(0, 0, 100);
    sample(0, 0, 50);
    sample(2, 0, 40, 0, 10);
    sample(7, 0, 7);
    EXPECT_EQ(report(RAVIK_STAT_SUM), "RAVIK_PROFILE, rvkName :: PASS, 150, 0, 40, 10, 0, 0, 0, 0, 7\n");
    EXPECT_EQ(report(RAVIK_STAT_SUM), "RAVIK_PROFILE, rvkName :: PASS, 0, 0, 0, 0, 0, 0, 0, 0, 0\n") << "starts anew";
    EXPECT_EQ(m_times[0].count, 0u);
    EXPECT_EQ(m_times[0].first, 1);
    EXPECT_EQ(m_samples[0][0], 0u);
    EXPECT_EQ(m_times[0].capacity, 3u);
    EXPECT_EQ(report(RAVIK_STAT_SUM, 0), "RAVIK_PROFILE, rvkName :: PASS\n");
    EXPECT_EQ(report(RAVIK_STAT_SUM, 0, 1, 4), "RAVIK_PROFILE, rvkName :: FAIL\n");
    EXPECT_EQ(report(RAVIK_STAT_SUM, 1, 1, 0, std::string(400, 'n')), "RAVIK_PROFILE, " + std::string(255, 'n') + "\n");
}

TEST_F(Report, PrintsTheStatisticThatIsAskedFor)
{
    const auto fill = [&] {
        for (const uint64_t time : {2, 4, 6})
            sample(0, 0, time);
        sample(1, 0, 5);
    };
    fill();
    EXPECT_EQ(report(RAVIK_STAT_MEAN), "RAVIK_PROFILE, rvkName :: PASS, 4, 5, 0, 0, 0, 0, 0, 0, 0\n");
    fill();
    EXPECT_EQ(report(RAVIK_STAT_SIGMA), "RAVIK_PROFILE, rvkName :: PASS, 4, 5, 0, 0, 0, 0, 0, 0, 0\n"
                                        "RAVIK_PROFILE, rvkName_Sigma, 2, 0, 0, 0, 0, 0, 0, 0, 0\n");
    EXPECT_EQ(m_times[0].count, 0u);
    fill();
    EXPECT_EQ(report(RAVIK_STAT_SCALED, 3, 8),
              "RAVIK_PROFILE, rvkName :: PASS, 1.5, 0.6, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0\n");
    EXPECT_EQ(report(static_cast<RAVIK_PROFILING_STAT>(5)), "RAVIK_PROFILE, CHOOSE OPTIONS 0-3 or no option\n");
}

// ---- the device ----

TEST_F(Device, VersionsAreLogged)
{
    rvktest_print_ver();
    ASSERT_EQ(logLines.size(), 4u);
    EXPECT_EQ(logLines[0], "3 ravik_test: rvktest_print_ver: E");
    EXPECT_EQ(logLines[1], "3 ravik_test: Static-Lib version: 1.7.1\n");
    EXPECT_EQ(logLines[2], "3 ravik_test: handle: (nil)\n");
    EXPECT_EQ(logLines[3].rfind("3 ravik_test: Shared-Lib version: -None-, libravikopt.so", 0), 0u);
}

TEST_F(Device, ClocksAreBumpedInOrder)
{
    answers["echo 1 > /sys/devices/system/cpu/cpu2/online 2>&1"] = "Permission denied\n";
    rvktest_bump_arm_clk();
    ASSERT_EQ(commands.size(), 8u);
    EXPECT_EQ(commands[0], "stop mpdecision 2>&1");
    EXPECT_EQ(commands[3], "echo 1 > /sys/devices/system/cpu/cpu3/online 2>&1");
    EXPECT_EQ(commands[4], "echo performance > /sys/devices/system/cpu/cpu0/cpufreq/scaling_governor 2>&1");
    EXPECT_EQ(logLines, std::vector<std::string>{"3 ravik_test: ERROR: popen setting cpu2 online error\n"});
}

TEST_F(Device, ClocksAreReportedOrNotAvailable)
{
    settings.targetNdsp = 0;
    answers["cat /sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_cur_freq 2>&1"] = "1800000\n";
    answers["cat /sys/kernel/debug/clk/bimc_clk/measure 2>&1"] = "777\n";
    std::string printed = printedBy(rvktest_dump_clocks);
    EXPECT_EQ(printed.rfind("RAVIK_PROFILE, CLOCKS: ARM cpu0: 1800000, cpu1: NA, cpu2: NA, cpu3: NA\n"
                            "RAVIK_PROFILE,             cpu4: NA, cpu5: NA, cpu6: NA, cpu7: NA\n",
                            0),
              0u)
        << printed;
    EXPECT_EQ(printed.find("NDSP clk"), std::string::npos);
    EXPECT_TRUE(logHas("3 ravik_test: RAVIK_TEST, ERROR: Reading snoc_clk failed\n"));
    EXPECT_FALSE(logHas("3 ravik_test: RAVIK_TEST, ERROR: Reading bimc_clk failed\n"));

    settings.performance = 1;
    printed = printedBy(rvktest_dump_clocks);
    EXPECT_TRUE(printed.ends_with("RAVIK_PROFILE,         NDSP clk : 0, bimc_clk: 777, snoc_clk: 0\n")) << printed;
    EXPECT_TRUE(logHas("3 ravik_test: SysProbe not found and NDSP clk may be Invalid"));

    answers["ls /data/ | grep sysProbe"] = "sysProbe\n";
    answers["/data/sysProbe getstate --x6 adsp | grep \"DSP Core clock\""] = "DSP Core clock : 825.6 MHz and more\n";
    printed = printedBy(rvktest_dump_clocks);
    EXPECT_TRUE(printed.ends_with("RAVIK_PROFILE,         ADSP clk (SysProbe): DSP Core clock : 825.6 MHz,CDSP clk "
                                  "(SysProbe): NA,NDSP clk : 0, bimc_clk: 777, snoc_clk: 0\n"))
        << printed;
}

TEST_F(Device, DspLibrariesMustBeThere)
{
    const char command[] = "ls /vendor/";
    EXPECT_EQ(printedBy([] { check_skel_libs("ls"); }), "RAVIK_PROFILE, skel_libs_path ls is empty \n");
    const std::string three = "libdspcv_skel.so\nlibdspmemheap.so\nlibravikdsp.so\n";
    for (const char* skeleton : {"libravikdsp_skel.so\n", "libravikopt_skel.so\n"}) {
        answers[command] = three + skeleton;
        clearLog();
        EXPECT_EQ(printedBy([&] { check_skel_libs(command); }), "");
        EXPECT_TRUE(logHas("3 ravik_test: All the skel libs in :/vendor/:  are present "));
    }

    const auto expectStop = [&](const std::string& listing, const char* line) {
        answers[command] = listing;
        EXPECT_EXIT((dup2(2, 1), check_skel_libs(command)), testing::ExitedWithCode(0), line);
    };
    expectStop("", "Missing skel libs in :/vendor/: libdspmemheap.so not found");
    expectStop("libdspmemheap.so\n", "libdspcv_skel.so not found");
    expectStop(three, "Missing skel libs in :/vendor/: Either libravikdsp_skel.so or libravikopt_skel.so not found");
}

TEST_F(Device, WithoutAShellTheRunEndsEarly)
{
    shellFails = true;
    EXPECT_EXIT(rvktest_dump_clocks(), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(rvktest_bump_arm_clk(), testing::ExitedWithCode(0), "");
}

} // namespace

#include "device.h"

#include "settings.h"
#include "testLog.h"

#include <ravik/frame.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <optional>
#include <string>
#include <unistd.h>

DspLibrary dspLibrary;

namespace {

// The first `mostLines` lines of what a shell command prints, each of at most `mostCharacters` characters. Ends the
// process when no shell can be started.
std::string outputOf(const std::string& command, int mostLines, size_t mostCharacters)
{
    fflush(stdout);
    FILE* const pipe = popen(command.c_str(), "r");
    if (!pipe) {
        testLog("Failed to run command\n");
        exit(0);
    }
    std::string output;
    std::string line(mostCharacters + 1, '\0');
    for (int i = 0; i < mostLines && fgets(line.data(), static_cast<int>(line.size()), pipe); i++)
        output += line.c_str();
    pclose(pipe);
    return output;
}

std::string firstLineOf(const std::string& command)
{
    return outputOf(command, 1, 99);
}

// The decimal integer that a command's first line begins with; an error text gives none.
std::optional<long long> numberFrom(const std::string& command)
{
    const std::string line = firstLineOf(command);
    char* end;
    const long long number = strtoll(line.c_str(), &end, 10);
    return end == line.c_str() ? std::nullopt : std::optional(number);
}

void warnIfItPrints(const std::string& command, const std::string& error)
{
    if (!firstLineOf(command).empty())
        testLog("%s", error.c_str());
}

long long busClock(const char* name)
{
    const std::optional<long long> clock =
        numberFrom("cat /sys/kernel/debug/clk/" + std::string(name) + "/measure 2>&1");
    if (!clock)
        testLog("RAVIK_TEST, ERROR: Reading %s failed\n", name);
    return clock.value_or(0);
}

// What the DSP monitor says about a DSP's clock, up to its unit.
std::string monitoredClock(const char* dsp)
{
    const std::string line =
        firstLineOf("/data/sysProbe getstate --x6 " + std::string(dsp) + " | grep \"DSP Core clock\"");
    const size_t unit = line.find("MHz");
    return unit == std::string::npos ? "NA" : line.substr(0, unit + 3);
}

void dumpDspClocks(long long bimc, long long snoc)
{
    std::string probed;
    if (firstLineOf("ls /data/ | grep sysProbe").empty())
        testLog("SysProbe not found and NDSP clk may be Invalid");
    else
        probed =
            "ADSP clk (SysProbe): " + monitoredClock("adsp") + ",CDSP clk (SysProbe): " + monitoredClock("cdsp") + ",";
    profilePrint("RAVIK_PROFILE,         %sNDSP clk : %llu, bimc_clk: %lld, snoc_clk: %lld\n", probed.c_str(),
                 static_cast<unsigned long long>(rvkX6GetClk()), bimc, snoc);
}

template <class Function>
void lookUp(Function*& function, const char* symbol)
{
    function = reinterpret_cast<Function*>(dlsym(dspLibrary.handle, symbol));
    if (!function)
        testLog("Unable to find symbol %s\n", symbol);
}

} // namespace

void rvktest_print_ver()
{
    testLog("rvktest_print_ver: E");
    char version[8] = {};
    rvkGetVersion(version, sizeof version);
    testLog("Static-Lib version: %s\n", version);

    void* const handle = dlopen("libravikopt.so", RTLD_NOW);
    testLog("handle: %p\n", handle);
    if (!handle) {
        const char* const error = dlerror();
        testLog("Shared-Lib version: %s, %s\n", "-None-", error ? error : "");
        return;
    }
    using GetVersion = void(char*, uint32_t);
    if (auto* const getVersion = reinterpret_cast<GetVersion*>(dlsym(handle, "rvkGetVersion"))) {
        char sharedVersion[40] = {};
        getVersion(sharedVersion, sizeof sharedVersion - 1);
        testLog("Shared-Lib version: %s , handle: %p\n", sharedVersion, handle);
    } else {
        testLog("Error while retrieving %s\n", "Shared-Lib version!!!");
    }
    testLog("After If condition:rvktest_print_ver");
    dlclose(handle);
    testLog("rvktest_print_ver: X");
}

void rvktest_bump_arm_clk()
{
    warnIfItPrints("stop mpdecision 2>&1", "ERROR: popen \"stop mpdecision\" error\n");
    for (int i = 1; i < 4; i++) {
        const std::string cpu = "cpu" + std::to_string(i);
        warnIfItPrints("echo 1 > /sys/devices/system/cpu/" + cpu + "/online 2>&1",
                       "ERROR: popen setting " + cpu + " online error\n");
    }
    for (int i = 0; i < 4; i++) {
        const std::string cpu = "cpu" + std::to_string(i);
        warnIfItPrints("echo performance > /sys/devices/system/cpu/" + cpu + "/cpufreq/scaling_governor 2>&1",
                       "ERROR: popen setting " + cpu + " frequency scaling_governor to performance\n");
    }
}

void rvktest_dump_clocks()
{
    std::array<std::string, 8> clocks;
    clocks.fill("NA");
    const long online = std::min(sysconf(_SC_NPROCESSORS_ONLN), static_cast<long>(clocks.size()));
    for (int i = 0; i < online; i++) {
        const auto clock =
            numberFrom("cat /sys/devices/system/cpu/cpu" + std::to_string(i) + "/cpufreq/cpuinfo_cur_freq 2>&1");
        if (clock)
            clocks[static_cast<size_t>(i)] = std::to_string(*clock);
        else
            testLog("RAVIK_TEST, ERROR: Reading ARM cpu%d clock failed\n", i);
    }
    const long long bimc = busClock("bimc_clk");
    const long long snoc = busClock("snoc_clk");
    profilePrint("RAVIK_PROFILE, CLOCKS: ARM cpu0: %s, cpu1: %s, cpu2: %s, cpu3: %s\n", clocks[0].c_str(),
                 clocks[1].c_str(), clocks[2].c_str(), clocks[3].c_str());
    profilePrint("RAVIK_PROFILE,             cpu4: %s, cpu5: %s, cpu6: %s, cpu7: %s\n", clocks[4].c_str(),
                 clocks[5].c_str(), clocks[6].c_str(), clocks[7].c_str());
    if (settings.targetNdsp || settings.lowPower || settings.performance || settings.cpuOffload)
        dumpDspClocks(bimc, snoc);
}

void check_skel_libs(const char* listCommand)
{
    const char* const directory = strchr(listCommand, '/');
    if (!directory) {
        profilePrint("RAVIK_PROFILE, skel_libs_path %s is empty \n", listCommand);
        return;
    }
    const std::string listing = outputOf(listCommand, 50, 2999).substr(0, 3000);
    const auto listed = [&](const char* library) { return listing.find(library) != std::string::npos; };
    const auto missing = [&](const std::string& what) {
        profilePrint("RAVIK_PROFILE, Missing skel libs in :%s: %s\n", directory, what.c_str());
        exit(0);
    };

    for (const char* library : {"libdspmemheap.so", "libdspcv_skel.so", "libravikdsp.so"})
        if (!listed(library))
            missing(std::string(library) + " not found");
    constexpr char skeleton[] = "libravikdsp_skel.so", otherSkeleton[] = "libravikopt_skel.so";
    if (!listed(skeleton) && !listed(otherSkeleton))
        missing(std::string("Either ") + skeleton + " or " + otherSkeleton + " not found");
    testLog("All the skel libs in :%s:  are present ", directory);
}

void rvktest_adspstub_open()
{
    constexpr char library[] = "libravikadsp_stub.so";
    dspLibrary.handle = dlopen(library, RTLD_NOW);
    if (!dspLibrary.handle) {
        testLog("Unable to open %s\n", library);
        return;
    }
    lookUp(dspLibrary.flushInvalidate, "rvk_cache_flush_invalidateN");
    lookUp(dspLibrary.checkMemoryLeaks, "rvkCheckMemoryLeaksN");
}

void rvktest_adspstub_close()
{
    if (dspLibrary.checkMemoryLeaks)
        dspLibrary.checkMemoryLeaks();
    if (dspLibrary.handle)
        dlclose(dspLibrary.handle);
    dspLibrary = {};
}

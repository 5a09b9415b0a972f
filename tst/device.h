// The device around the tests: library versions, clocks, DSP-side libraries.
#pragma once

#include <cstdint>

// Logs the versions of the linked library and of the companion library.
void rvktest_print_ver();

// Takes the CPU's clocks out of power saving. Ends the process with status 0 when no shell can be started, as the next
// two.
void rvktest_bump_arm_clk();

// Prints the clocks in force.
void rvktest_dump_clocks();

// Checks that the directory that `listCommand` lists holds the DSP-side libraries; ends the process with status 0 when
// one is missing.
void check_skel_libs(const char* listCommand);

// What the DSP stub library offers; null while it is not open or lacks an entry.
struct DspLibrary
{
    void* handle = nullptr;
    int (*flushInvalidate)(void* address, int bytes) = nullptr;
    int (*checkMemoryLeaks)() = nullptr;
};
extern DspLibrary dspLibrary;

void rvktest_adspstub_open();
void rvktest_adspstub_close();

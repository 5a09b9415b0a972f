// The command line.
#pragma once

#include <cstdint>

// What only the driver needs; the rest goes into `settings` and `runSwitches`.
struct Options
{
    const char* dataDirectory = nullptr;
    int loops = 0; // of profiling; 0 does not profile
    const char* module = nullptr;
    const char* function = nullptr;
    int targets = 0; // RAVIK_UNIT_ bits; 0 is all
    int modes = 0;   // bit 0 low power, 1 performance, 2 CPU offload, 3 CPU performance
    long seed = 1246302971;
    bool modesOnly = false; // -OPT
    bool bufferPool = true;
    bool preAllocate = false;
    int preAllocBytes = 0;
    bool bumpClocks = false;
};

// Parses the words of the command line. Returns null, or the message of the first option that lacks its value.
const char* parseOptions(int argc, char** argv, Options& options);

// Prints the usage text on standard error.
void printUsage(const char* program);

#include "options.h"

#include "settings.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kMostLoops = 10000000;

// atoi, defined for every text.
int integerFrom(const char* text)
{
    return static_cast<int>(std::clamp<long>(strtol(text, nullptr, 10), INT_MIN, INT_MAX));
}

void setResolution(const char* text)
{
    const int index = integerFrom(text);
    if (index >= 0 && index <= 7)
        settings.resolution = index;
}

void setParts(uint8_t unitTests, uint8_t profiling)
{
    runSwitches.unitTests = unitTests;
    runSwitches.profiling = profiling;
}

// An option matches the words that begin with its first `length` characters. A length of one more than its text
// therefore makes the match exact.
struct Option
{
    const char* text;
    size_t length;
    const char* missingValue; // the error without a value; null for options that take none
    void (*apply)(Options& options, const char* value);
};

constexpr Option kOptions[] = {
    {"-nbp", 4, nullptr, [](Options& o, const char*) { o.bufferPool = false; }},
    {"-psb", 4, "ERROR: missing param nPreAllocBytes with option -psb\n",
     [](Options& o, const char* value) {
         o.preAllocate = true;
         o.preAllocBytes = integerFrom(value);
     }},
    {"-l", 2, "ERROR: missing param with option -l\n",
     [](Options& o, const char* value) { o.loops = std::clamp(integerFrom(value), 0, kMostLoops); }},
    {"-L", 2, "ERROR: missing param with option -L\n",
     [](Options&, const char* value) { settings.dspLoops = integerFrom(value); }},
    {"-m", 2, "ERROR: missing param with option -m\n", [](Options& o, const char* value) { o.module = value; }},
    {"-f", 2, "ERROR: missing param with option -f\n", [](Options& o, const char* value) { o.function = value; }},
    {"-t", 2, "ERROR: missing param with option -t\n",
     [](Options& o, const char* value) { o.targets = integerFrom(value); }},
    {"-M", 2, "ERROR: missing param with option -M\n",
     [](Options& o, const char* value) { o.modes = integerFrom(value); }},
    {"-o", 2, nullptr, [](Options&, const char*) { settings.openCvBenchmark = 1; }},
    {"-U", 2, nullptr, [](Options&, const char*) { setParts(1, 0); }},
    {"-P", 2, nullptr, [](Options&, const char*) { setParts(0, 1); }},
    {"-E", 2, nullptr, [](Options&, const char*) { settings.exhaustive = 1; }},
    {"-S", 2, "ERROR: missing Resolution param with option -S\n",
     [](Options&, const char* value) { setResolution(value); }},
    {"-s", 5, "ERROR: missing param with option -s\n",
     [](Options& o, const char* value) { o.seed = strtol(value, nullptr, 10); }},
    {"-H", 2, nullptr, [](Options&, const char*) { runSwitches.sharedVectors = 0; }},
    {"-AC", 3, nullptr, [](Options& o, const char*) { o.bumpClocks = true; }},
    {"-AL", 3, nullptr, [](Options&, const char*) { settings.limitAlignment = 1; }},
    {"-OPT", 4, nullptr, [](Options& o, const char*) { o.modesOnly = true; }},
    {"-C", 2, nullptr, [](Options&, const char*) { settings.flushCaches = 1; }},
    {"-TWOp", 5, nullptr, [](Options&, const char*) { settings.withoutOperationMode = 1; }},
};

} // namespace

const char* parseOptions(int argc, char** argv, Options& options)
{
    options.dataDirectory = argv[1];
    for (int i = 2; i < argc; i++) {
        // A value takes the place of its option: the rest of the options are compared with the value.
        const char* word = argv[i];
        for (const Option& option : kOptions) {
            if (strncmp(word, option.text, option.length) != 0)
                continue;
            if (option.missingValue) {
                if (i + 1 == argc)
                    return option.missingValue;
                word = argv[++i];
            }
            option.apply(options, word);
        }
    }
    return nullptr;
}

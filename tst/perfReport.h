// Call times of a function, per target, and the line that reports them.
#pragma once

#include "settings.h"

#include <cstdint>

struct RAVIK_TEST_Times
{
    uint64_t start = 0; // microseconds before and after the call
    uint64_t end = 0;
    uint64_t dspStart = 0; // DSP probe before and after the call
    uint64_t dspEnd = 0;
    uint64_t sum = 0; // of the corrected call times
    uint64_t dspSum = 0;
    uint64_t sumOfSquares = 0;
    uint64_t dspSumOfSquares = 0;
    uint64_t maximum = 0;
    uint64_t minimum = 0;
    uint64_t* samples = nullptr; // one corrected time per iteration
    uint32_t count = 0;
    uint32_t capacity = 0;
    uint8_t first = 1; // until the first sample is recorded
};

// Adds the sample that start, end, dspStart and dspEnd describe. A clock that ran backwards gives none. `dspLoops` is
// the number of iterations within one remote call: one remoting overhead is kept.
void recordSample(RAVIK_TEST_Times& times, uint32_t dspLoops);

// Forgets every sample; the samples array stays.
void clearTimes(RAVIK_TEST_Times& times);

enum RAVIK_PROFILING_STAT : unsigned {
    RAVIK_STAT_SUM = 0,
    RAVIK_STAT_MEAN = 1,
    RAVIK_STAT_SIGMA = 2, // means, then standard deviations
    RAVIK_STAT_SCALED = 3 // sums divided by a scale
};

// Prints "RAVIK_PROFILE, <name> :: PASS" or FAIL and, when loops were run, one number per target index in the profiling
// order; NDSP has a second one for the time on the DSP alone. Clears the records.
void GENERATE_PERF_LOG(const char* name, int failed, RAVIK_TEST_Times* times, unsigned loops, RAVIK_PROFILING_STAT stat,
                       float scale);

#include "perfReport.h"

#include "testLog.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

// A line of at most 255 characters; what does not fit is cut.
class ReportLine
{
public:
    void add(const char* format, ...) __attribute__((format(printf, 2, 3)))
    {
        const size_t length = strlen(m_text);
        va_list args;
        va_start(args, format);
        vsnprintf(m_text + length, sizeof m_text - length, format, args);
        va_end(args);
    }
    void print() const { profilePrint("RAVIK_PROFILE, %s\n", m_text); }

private:
    char m_text[256] = "";
};

double meanOf(uint64_t sum, uint32_t count)
{
    return count ? static_cast<double>(sum) / count : 0;
}

double deviationOf(uint64_t sum, uint64_t sumOfSquares, uint32_t count)
{
    if (count < 2)
        return 0;
    const double n = count;
    const auto total = static_cast<double>(sum);
    const double variance = (n * static_cast<double>(sumOfSquares) - total * total) / ((n - 1) * n);
    return variance > 0 ? std::sqrt(variance) : 0;
}

// Appends a field for the CPU-side sums of every record, and one for the DSP side behind NDSP.
template <class AddField>
void addFields(const RAVIK_TEST_Times* times, AddField addField)
{
    for (int i = 0; i < runSwitches.profilingEntries; i++) {
        addField(times[i].sum, times[i].sumOfSquares, times[i].count);
        if (letterOf(static_cast<unsigned>(i)) == 'Q')
            addField(times[i].dspSum, times[i].dspSumOfSquares, times[i].count);
    }
}

} // namespace

void recordSample(RAVIK_TEST_Times& times, uint32_t dspLoops)
{
    if (times.end < times.start)
        return;
    uint64_t dspTime = times.dspEnd - times.dspStart;
    uint64_t callTime = times.end - times.start;
    if (dspTime && dspLoops) { // of the iterations on the DSP one is kept
        const uint64_t others = dspTime - dspTime / dspLoops;
        dspTime /= dspLoops;
        callTime -= std::min(others, callTime); // the two clocks may disagree
    }
    if (times.count < times.capacity)
        times.samples[times.count] = callTime;
    times.count++;
    times.sum += callTime;
    times.sumOfSquares += callTime * callTime;
    times.dspSum += dspTime;
    times.dspSumOfSquares += dspTime * dspTime;
    times.maximum = times.first ? callTime : std::max(times.maximum, callTime);
    times.minimum = times.first ? callTime : std::min(times.minimum, callTime);
    times.first = 0;
}

void clearTimes(RAVIK_TEST_Times& times)
{
    std::fill_n(times.samples, times.samples ? times.capacity : 0, 0);
    times = {.samples = times.samples, .capacity = times.capacity};
}

void GENERATE_PERF_LOG(const char* name, int failed, RAVIK_TEST_Times* times, unsigned loops, RAVIK_PROFILING_STAT stat,
                       float scale)
{
    ReportLine line;
    line.add("%s :: %s", name, verdictOf(failed));
    if (stat > RAVIK_STAT_SCALED) {
        profilePrint("RAVIK_PROFILE, %s\n", "CHOOSE OPTIONS 0-3 or no option");
        return;
    }
    if (loops == 0) {
        line.print();
        return;
    }

    addFields(times, [&](uint64_t sum, uint64_t, uint32_t count) {
        if (stat == RAVIK_STAT_SUM)
            line.add(", %llu", static_cast<unsigned long long>(sum));
        else if (stat == RAVIK_STAT_SCALED)
            line.add(", %.1f", static_cast<double>(sum) / static_cast<double>(scale));
        else
            line.add(", %.0f", meanOf(sum, count));
    });
    line.print();
    if (stat == RAVIK_STAT_SIGMA) {
        ReportLine sigma;
        sigma.add("%s_Sigma", name);
        addFields(times, [&](uint64_t sum, uint64_t sumOfSquares, uint32_t count) {
            sigma.add(", %.0f", deviationOf(sum, sumOfSquares, count));
        });
        sigma.print();
    }
    std::for_each_n(times, runSwitches.profilingEntries, clearTimes);
}

// Executed instructions of every run per pixel, counted by the emulator's plugin.
#include "instructionCount.h"
#include "runs.h"

#include <ravik/ravik.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>

namespace bench {
namespace {

#if defined(__clang__)
constexpr const char* kCompiler = "clang";
#else
constexpr const char* kCompiler = "g++";
#endif

#if defined(__aarch64__)
constexpr double kTimesBest = 1.0;
#else
constexpr double kTimesBest = 1.3; // the bests are those of AArch64, which has twice as many registers
#endif
constexpr double kStreamingGoal = 0.6; // where nobody measured the best: a pixel of up to three bytes
constexpr double kRounding = 0.01;     // of the bests

double goalOf(const Run& run)
{
    if (const double best = bestInstructions(run); best > 0)
        return kTimesBest * best + kRounding;
    const Traffic& bytes = run.row->bytes;
    return bytes.streaming && bytes.bytesPerPixel <= 3 ? kStreamingGoal : 0;
}

double instructionsPerPixel(const Run& run, rvkOperationMode mode)
{
    rvkSetOperationMode(mode);
    run.row->ravik(run.picture); // binds symbols and makes buffers
    const uint64_t count = executedInstructions(
        [](const void* context) {
            const Run& work = *static_cast<const Run*>(context);
            work.row->ravik(work.picture);
        },
        &run);
    return static_cast<double>(count) / run.picture.width / run.picture.height;
}

std::string placeOf(const Run& run)
{
    return run.name + "\t" + run.size();
}

// What the program of another compiler takes: a line with the compiler, then lines of a run, its size and its count,
// between tabs.
class Saved
{
public:
    explicit Saved(const std::string& path)
    {
        std::ifstream file(path);
        std::getline(file, m_compiler);
        for (std::string name, size, count;
             std::getline(file, name, '\t') && std::getline(file, size, '\t') && std::getline(file, count);)
            m_counts[name + "\t" + size] = std::stod(count);
    }
    const std::string& compiler() const { return m_compiler; }
    double of(const Run& run) const // 0: none
    {
        const auto found = m_counts.find(placeOf(run));
        return found == m_counts.end() ? 0 : found->second;
    }

private:
    std::string m_compiler;
    std::map<std::string, double> m_counts;
};

void printCount(double count)
{
    if (count > 0)
        printf(" %10.2f", count);
    else
        printf(" %10s", "-");
}

void printInstructionsOf(const Run& run, const Saved& others, Totals& totals)
{
    const double reference = instructionsPerPixel(run, kModeC);
    const double vecta = instructionsPerPixel(run, kModeVecta);
    const double other = others.of(run);
    const double least = other > 0 ? std::min(vecta, other) : vecta;
    const double best = bestInstructions(run);
    const double goal = goalOf(run);
    const bool notBelowReference = least >= reference;
    const bool aboveGoal = goal > 0 && least > goal;
    printf("%-52s %-10s %10.2f %10.2f", run.name.c_str(), run.size().c_str(), reference, vecta);
    if (!others.compiler().empty())
        printCount(other);
    printCount(best);
    printf("%s%s\n", notBelowReference ? "  not below C" : "", !aboveGoal ? "" : best > 0 ? "  > best" : "  > 0.6");
    fflush(stdout);
    totals.rows++;
    totals.marked += notBelowReference || aboveGoal;
}

} // namespace

int printInstructions(std::string_view filter, const std::string& besideFile)
{
    const Saved others(besideFile);
    printf("Executed instructions per pixel: the reference with %s, VECTA with each compiler.\n%-52s %-10s %10s %10s",
           kCompiler, "function", "size", "C", kCompiler);
    if (!others.compiler().empty())
        printf(" %10s", others.compiler().c_str());
    printf(" %10s\n", "best");
    Totals totals;
    for (const Run& run : runsOf(filter, {{640, 480}}))
        printInstructionsOf(run, others, totals);
    printf(
        "%d rows, %d marked: VECTA (the smallest) not below C, above %.1f times best, or, where a streaming row of at "
        "most three bytes a pixel has none, above %.1f\n",
        totals.rows, totals.marked, kTimesBest, kStreamingGoal);
    return totals.rows ? 0 : 1;
}

int saveInstructions(std::string_view filter, const std::string& path)
{
    std::ofstream file(path);
    file << kCompiler << "\n";
    for (const Run& run : runsOf(filter, {{640, 480}}))
        file << placeOf(run) << "\t" << instructionsPerPixel(run, kModeVecta) << "\n";
    file.close();
    return file ? 0 : 1;
}

} // namespace bench

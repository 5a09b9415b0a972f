// Executed instructions of every run per pixel, counted by the emulator's plugin.
#include "instructionCount.h"
#include "runs.h"

#include <ravik/ravik.h>

#include <cstdio>

namespace bench {
namespace {

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

void printInstructionsOf(const Run& run, Totals& totals)
{
    const double reference = instructionsPerPixel(run, kModeC);
    const double vecta = instructionsPerPixel(run, kModeVecta);
    const double best = bestInstructions(run);
    const double goal = goalOf(run);
    const bool notBelowReference = vecta >= reference;
    const bool aboveGoal = goal > 0 && vecta > goal;
    printf("%-44s %-10s %10.2f %10.2f", run.name.c_str(), run.size().c_str(), reference, vecta);
    if (best > 0)
        printf(" %10.2f", best);
    else
        printf(" %10s", "-");
    printf("%s%s\n", notBelowReference ? "  not below C" : "", !aboveGoal ? "" : best > 0 ? "  > best" : "  > 0.6");
    fflush(stdout);
    totals.rows++;
    totals.marked += notBelowReference || aboveGoal;
}

} // namespace

int printInstructions(std::string_view filter)
{
    printf("Executed instructions per pixel.\n%-44s %-10s %10s %10s %10s\n", "function", "size", "C", "VECTA", "best");
    Totals totals;
    for (const Run& run : runsOf(filter, {{640, 480}}))
        printInstructionsOf(run, totals);
    printf("%d rows, %d marked: VECTA not below C, above %.1f times best, or, where a streaming row of at most three "
           "bytes "
           "a pixel has none, above %.1f\n",
           totals.rows, totals.marked, kTimesBest, kStreamingGoal);
    return totals.rows ? 0 : 1;
}

} // namespace bench

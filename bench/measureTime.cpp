// How long every run takes, as C reference, as VECTA and in the other libraries, in times of a memcpy of the same
// compulsory bytes.
#include "runs.h"

#include "dispatch.h"
#include "vecta/column.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace bench {
namespace {

constexpr double kSampleSeconds = 20e-6;  // long against the clock, short against a disturbance
constexpr int kSamplesPerBatch = 6;       // the first ones of large pictures find others' data in the caches
constexpr double kContenderSeconds = 0.1; // then a contender has had its share
constexpr int kFewestBatches = 2;
constexpr int kMostBatches = 300;
constexpr double kNoise = 1.10; // below it two times are the same

double seconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

struct Contender
{
    Work work;
    rvkOperationMode mode;
    int callsPerSample = 1;
    int batches = 0;
    double spent = 0;
    double best = 1e9; // seconds a call, the least of all samples

    bool finished() const
    {
        return batches >= kMostBatches || (batches >= kFewestBatches && spent >= kContenderSeconds);
    }
};

// A copy with the traffic of the row now measured: half its bytes read, half written.
std::vector<u8> copySource;
std::vector<u8> copyTarget;
void prepareCopy(const Row& row, const Picture& picture)
{
    copySource.resize(static_cast<size_t>(row.bytes.bytesPerPixel * picture.width * picture.height / 2));
    copyTarget.resize(copySource.size());
}
void copy(const Picture&)
{
    memcpy(copyTarget.data(), copySource.data(), copySource.size());
    asm volatile("" ::: "memory"); // the copy is wanted though nobody reads it
}

void takeSample(Contender& contender, const Picture& picture)
{
    const double start = seconds();
    for (int call = 0; call < contender.callsPerSample; call++)
        contender.work(picture);
    const double taken = seconds() - start;
    contender.best = std::min(contender.best, taken / contender.callsPerSample);
    contender.spent += taken;
}

void runBatch(Contender& contender, const Picture& picture)
{
    rvkSetOperationMode(contender.mode);
    for (int sample = 0; sample < kSamplesPerBatch; sample++)
        takeSample(contender, picture);
    contender.callsPerSample = static_cast<int>(std::clamp(kSampleSeconds / contender.best, 1.0, 1e6));
    contender.batches++;
}

// Rounds of one batch each, so that all contenders see the same machine.
void race(std::span<Contender> contenders, const Picture& picture)
{
    for (bool allFinished = false; !allFinished;) {
        allFinished = true;
        for (Contender& contender : contenders)
            if (contender.work && !contender.finished()) {
                runBatch(contender, picture);
                allFinished = false;
            }
    }
}

void printTimesOf(const Run& run, Totals& totals)
{
    const Row& row = *run.row;
    const Picture& picture = run.picture;
    prepareCopy(row, picture);
    Contender contenders[] = {
        {copy, kModeC}, {row.ravik, kModeC}, {row.ravik, kModeVecta}, {row.opencv, kModeC}, {row.libyuv, kModeC}};
    race(contenders, picture);

    const double unit = contenders[0].best;
    const double vecta = contenders[2].best / unit;
    const double opencv = row.opencv ? contenders[3].best / unit : 0;
    const double best = bestTime(run);
    const double goal = row.bytes.streaming ? std::max(best, 1.0) : best; // a memcpy is as fast as memory

    printf("%-52s %-10s %8.2f %8.2f", run.name.c_str(), run.size().c_str(), contenders[1].best / unit, vecta);
    for (const double other : {opencv, row.libyuv ? contenders[4].best / unit : 0, best}) {
        if (other > 0)
            printf(" %8.2f", other);
        else
            printf(" %8s", "-");
    }
    printf(" %9.3f", contenders[2].best * 1e9 / picture.width / picture.height);
    const bool aboveGoal = goal > 0 && vecta > kNoise * goal;
    const bool aboveOpencv = opencv > 0 && vecta > 1.05 * opencv;
    printf("%s%s\n", aboveGoal ? "  > best" : "", aboveOpencv ? "  > opencv" : "");
    fflush(stdout);
    totals.rows++;
    totals.marked += aboveGoal || aboveOpencv;
}

// What the way through a public function adds to a call of its implementation.
void printDispatchCost()
{
    rvkSetOperationMode(kModeVecta);
    constexpr int calls = 20000;
    const Picture p = {32, 1};
    auto* volatile direct = rvk::implementation<rvk::Slot::rvkAbsDiffu8>(RVK_IMPL_VECTA);
    auto* volatile dispatched = &rvkAbsDiffu8;
    double least[2] = {1e9, 1e9};
    for (int round = 0; round < 100; round++)
        for (int way = 0; way < 2; way++) {
            auto* const function = way ? dispatched : direct;
            const double start = seconds();
            for (int call = 0; call < calls; call++)
                function(p.in<u8>(0), p.in<u8>(1), p.width, p.height, p.width, p.out<u8>(), p.width);
            least[way] = std::min(least[way], (seconds() - start) / calls);
        }
    const double nanoseconds = (least[1] - least[0]) * 1e9;
    printf("dispatch: %.1f ns a call more than calling the implementation (%.1f and %.1f ns for 32 pixels)%s\n",
           nanoseconds, least[1] * 1e9, least[0] * 1e9, nanoseconds > 10 ? "  > 10 ns" : "");
}

} // namespace

int printTimes(std::string_view filter)
{
    const rvk::vecta::Variant* variant = rvk::vecta::chosenVariant();
    printf("Times of a memcpy of the same bytes; VECTA is %s; best is that of %s; last column: ns a pixel of VECTA.\n",
           variant ? variant->name : "absent", machineOfBestTimes());
    printf("%-52s %-10s %8s %8s %8s %8s %8s %9s\n", "function", "size", "C", "VECTA", "OpenCV", "libyuv", "best",
           "ns/pixel");
    Totals totals;
    for (const Run& run : runsOf(filter, {{1920, 1080}, {640, 480}}))
        printTimesOf(run, totals);
    printDispatchCost();
    printf(
        "%d rows, %d marked: VECTA above best (1 where streaming rows have none) by more than 10 %%, or above OpenCV\n",
        totals.rows, totals.marked);
    return totals.rows ? 0 : 1;
}

} // namespace bench

// ravikBench [--arm COUNTFILE] [FILTER]
//
// Without --arm: how long every row takes, as C reference, as VECTA and in the other libraries, in times of a memcpy of
// the same compulsory bytes. With --arm: executed instructions per pixel, counted by the emulator's plugin.
#include "bench.h"
#include "instructionCount.h"

#include "dispatch.h"
#include "vecta/column.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

namespace bench {
namespace {

std::vector<Row>& allRows()
{
    static std::vector<Row> rows;
    return rows;
}

struct Best
{
    const char* name;
    double timesMemcpy;
};
constexpr Best kBests[] = {
#define RVK_BEST(name, timesMemcpy) {name, timesMemcpy},
#include "best.inc"
#undef RVK_BEST
};

// 0 when nobody measured it.
double bestOf(const Row& row)
{
    for (const Best& best : kBests)
        if (row.best && std::string_view(row.best) == best.name)
            return best.timesMemcpy;
    if (row.best)
        fprintf(stderr, "ravikBench: %s names \"%s\", which best.inc does not have\n", row.function, row.best);
    return 0;
}

// ---- time -----------------------------------------------------------------------------------------------------------

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

constexpr auto kModeC = static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_ARM);
constexpr auto kModeVecta = static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_VECTA);

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

struct Totals
{
    int rows = 0;
    int marked = 0;
};

void printTimes(const Row& row, const Picture& picture, Totals& totals)
{
    prepareCopy(row, picture);
    Contender contenders[] = {
        {copy, kModeC}, {row.ravik, kModeC}, {row.ravik, kModeVecta}, {row.opencv, kModeC}, {row.libyuv, kModeC}};
    race(contenders, picture);

    const double unit = contenders[0].best;
    const double vecta = contenders[2].best / unit;
    const double opencv = row.opencv ? contenders[3].best / unit : 0;
    const double best = bestOf(row);
    const double goal = row.bytes.streaming ? std::max(best, 1.0) : best; // a memcpy is as fast as memory

    char size[24];
    snprintf(size, sizeof size, "%ux%u", picture.width, picture.height);
    printf("%-34s %-10s %8.2f %8.2f", row.function, size, contenders[1].best / unit, vecta);
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

int printAllTimes(std::string_view filter)
{
    const rvk::vecta::Variant* variant = rvk::vecta::chosenVariant();
    printf("Times of a memcpy of the same bytes; VECTA is %s; last column: ns a pixel of VECTA.\n",
           variant ? variant->name : "absent");
    printf("%-34s %-10s %8s %8s %8s %8s %8s %9s\n", "function", "size", "C", "VECTA", "OpenCV", "libyuv", "best",
           "ns/pixel");
    Totals totals;
    for (const Row& row : allRows()) {
        if (std::string_view(row.function).find(filter) == std::string_view::npos)
            continue;
        if (row.shape.width)
            printTimes(row, row.shape, totals);
        else
            for (const Picture& picture : {Picture{1920, 1080}, Picture{640, 480}})
                printTimes(row, picture, totals);
    }
    printDispatchCost();
    printf(
        "%d rows, %d marked: VECTA above best (1 where streaming rows have none) by more than 10 %%, or above OpenCV\n",
        totals.rows, totals.marked);
    return totals.rows ? 0 : 1;
}

// ---- instructions ---------------------------------------------------------------------------------------------------

struct Call
{
    Work work;
    Picture picture;
};

double instructionsPerPixel(const Row& row, const Picture& picture, rvkOperationMode mode)
{
    rvkSetOperationMode(mode);
    const Call call = {row.ravik, picture};
    row.ravik(picture); // binds symbols and makes buffers
    const uint64_t count = executedInstructions(
        [](const void* context) {
            const Call& work = *static_cast<const Call*>(context);
            work.work(work.picture);
        },
        &call);
    return static_cast<double>(count) / picture.width / picture.height;
}

int printAllInstructions(std::string_view filter)
{
    constexpr double streamingGoal = 0.6; // a pixel of up to three bytes
    printf("Executed instructions per pixel.\n%-34s %-10s %10s %10s\n", "function", "size", "C", "VECTA");
    Totals totals;
    for (const Row& row : allRows()) {
        if (std::string_view(row.function).find(filter) == std::string_view::npos)
            continue;
        const Picture picture = row.shape.width ? row.shape : Picture{640, 480};
        const double reference = instructionsPerPixel(row, picture, kModeC);
        const double vecta = instructionsPerPixel(row, picture, kModeVecta);
        const bool aboveGoal = row.bytes.streaming && row.bytes.bytesPerPixel <= 3 && vecta > streamingGoal;
        char size[24];
        snprintf(size, sizeof size, "%ux%u", picture.width, picture.height);
        printf("%-34s %-10s %10.2f %10.2f%s%s\n", row.function, size, reference, vecta,
               vecta >= reference ? "  not below C" : "", aboveGoal ? "  > 0.6" : "");
        fflush(stdout);
        totals.rows++;
        totals.marked += vecta >= reference || aboveGoal;
    }
    printf("%d rows, %d marked: VECTA not below C, or above %.1f in a streaming row of at most three bytes a pixel\n",
           totals.rows, totals.marked, streamingGoal);
    return totals.rows ? 0 : 1;
}

} // namespace

void fillRandom(u8* data, size_t bytes)
{
    uint64_t state = 0x9E3779B97F4A7C15; // xorshift
    for (size_t i = 0; i + sizeof state <= bytes; i += sizeof state) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        memcpy(data + i, &state, sizeof state);
    }
}

void fillRandom(f32* data, size_t values)
{
    fillRandom(reinterpret_cast<u8*>(data), values * sizeof *data);
    for (size_t i = 0; i < values; i++) {
        uint32_t bits;
        memcpy(&bits, data + i, sizeof bits);
        data[i] = static_cast<f32>(bits >> 8) / 65536.0f;
    }
}

Rows::Rows(std::span<const Row> rows)
{
    allRows().insert(allRows().end(), rows.begin(), rows.end());
}

} // namespace bench

int main(int argc, char** argv)
{
#if RVK_BENCH_OPENCV
    cv::setNumThreads(1);
#endif
    if (argc > 2 && std::string_view(argv[1]) == "--arm") {
        if (!bench::openInstructionCount(argv[2])) {
            fprintf(stderr, "ravikBench: %s has no count; run this under the emulator with the counting plugin\n",
                    argv[2]);
            return 1;
        }
        return bench::printAllInstructions(argc > 3 ? argv[3] : "");
    }
    return bench::printAllTimes(argc > 1 ? argv[1] : "");
}

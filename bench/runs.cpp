#include "runs.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace bench {
namespace {

std::vector<Row>& allRows()
{
    static std::vector<Row> rows;
    return rows;
}

struct BestTime
{
    const char* name;
    double zen4, xeon, xeonVga; // in times of a memcpy
};
constexpr BestTime kBestTimes[] = {
#define RVK_BEST(...) {__VA_ARGS__},
#include "best.inc"
#undef RVK_BEST
};

struct BestInstructions
{
    const char* name;
    double count; // per pixel
};
constexpr BestInstructions kBestInstructions[] = {
#define RVK_BEST(...) {__VA_ARGS__},
#include "bestInstructions.inc"
#undef RVK_BEST
};

template <class Best, size_t count>
const Best* find(const Best (&bests)[count], std::string_view name)
{
    const Best* const found = std::find_if(bests, bests + count, [=](const Best& best) { return name == best.name; });
    return found == bests + count ? nullptr : found;
}

// What was measured on natural content if that is the run's, else what was measured on some content.
template <class Best, size_t count>
const Best* bestOf(const Best (&bests)[count], const Run& run)
{
    if (!run.row->best)
        return nullptr;
    const std::string name = run.row->best;
    const Best* const onNatural = run.picture.content == Content::natural ? find(bests, name + ", natural") : nullptr;
    return onNatural ? onNatural : find(bests, name);
}

std::string contentOf(const Row& row, Content content)
{
    if (!row.bytes.byContent)
        return "";
    return content == Content::natural ? ", natural" : ", random";
}

bool runsOn(const Traffic& bytes, Content content)
{
    return content == Content::natural ? bytes.byContent || bytes.onNatural : !bytes.onNatural;
}

bool isIntel()
{
    std::ifstream information("/proc/cpuinfo");
    for (std::string line; std::getline(information, line);)
        if (line.starts_with("vendor_id"))
            return line.ends_with("GenuineIntel");
    return false;
}

} // namespace

Rows::Rows(std::span<const Row> rows)
{
    allRows().insert(allRows().end(), rows.begin(), rows.end());
    for (const Row& row : rows)
        if (row.best && !find(kBestTimes, row.best) && !find(kBestInstructions, row.best))
            fprintf(stderr, "ravikBench: %s names \"%s\", which no table of bests has\n", row.function, row.best);
}

std::vector<Run> runsOf(std::string_view filter, std::initializer_list<Picture> sizes)
{
    std::vector<Run> runs;
    const auto add = [&](const Row& row, Picture picture, Content content) {
        picture.content = content;
        const std::string name = row.function + contentOf(row, content);
        if (name.find(filter) != std::string::npos)
            runs.push_back({&row, name, picture});
    };
    for (const Row& row : allRows())
        for (const Content content : {Content::random, Content::natural}) {
            if (!runsOn(row.bytes, content))
                continue;
            if (row.shape.width)
                add(row, row.shape, content);
            else
                for (const Picture& size : sizes)
                    add(row, size, content);
        }
    return runs;
}

double bestTime(const Run& run)
{
    static const bool intel = isIntel();
    const BestTime* const best = bestOf(kBestTimes, run);
    if (!best)
        return 0;
    if (!intel)
        return best->zen4;
    return run.picture.width == 640 ? best->xeonVga : best->xeon;
}

double bestInstructions(const Run& run)
{
    const BestInstructions* const best = bestOf(kBestInstructions, run);
    return best ? best->count : 0;
}

const char* machineOfBestTimes()
{
    return isIntel() ? "an Intel Xeon with AVX-512" : "an AMD Zen 4";
}

} // namespace bench

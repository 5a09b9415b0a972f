// What the rows come to: a row at a size, on a content, as it is timed, counted and printed.
#pragma once

#include "bench.h"

#include <ravik/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace bench {

struct Run
{
    const Row* row;
    std::string name; // the row's, with its content where that matters
    Picture picture;

    std::string size() const { return std::to_string(picture.width) + "x" + std::to_string(picture.height); }
};

// All runs whose name contains `filter`, at each of `sizes` where the row has none of its own.
std::vector<Run> runsOf(std::string_view filter, std::initializer_list<Picture> sizes);

inline constexpr auto kModeC = static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_ARM);
inline constexpr auto kModeVecta = static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_VECTA);

// What others reach; 0 when nobody measured it. Times are in times of a memcpy, on a machine like this one.
double bestTime(const Run& run);
double bestInstructions(const Run& run);
const char* machineOfBestTimes();

struct Totals
{
    int rows = 0;
    int marked = 0;
};

// What the program does; all return its exit status. Instructions stand beside those that another compiler's program saved
// in a file, if `besideFile` is not empty.
int printTimes(std::string_view filter);
int printInstructions(std::string_view filter, const std::string& besideFile);
int saveInstructions(std::string_view filter, const std::string& file);

} // namespace bench

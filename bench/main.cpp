// ravikBench [--count COUNTFILE [--save FILE | --beside FILE]] [FILTER]
//
// How long every row takes beside the other libraries. With --count, under the emulator: executed instructions per
// pixel; the emulator's plugin writes its counts to COUNTFILE. --save keeps them in FILE, --beside shows those that the
// program of another compiler has saved.
#include "instructionCount.h"
#include "runs.h"

#include <cstdio>
#include <vector>

namespace {

// Takes "OPTION VALUE" off the words' front; empty when something else stands there.
std::string_view taken(std::vector<std::string_view>& words, std::string_view option)
{
    if (words.size() < 2 || words[0] != option)
        return {};
    const std::string_view value = words[1];
    words.erase(words.begin(), words.begin() + 2);
    return value;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string_view> words(argv + 1, argv + argc);
    const std::string countFile(taken(words, "--count"));
    const std::string save(taken(words, "--save")), beside(taken(words, "--beside"));
    const std::string_view filter = words.empty() ? "" : words[0];
    if (words.size() > 1 || filter.starts_with("--")) {
        fprintf(stderr, "usage: ravikBench [--count COUNTFILE [--save FILE | --beside FILE]] [FILTER]\n");
        return 1;
    }
#if RVK_BENCH_OPENCV
    cv::setNumThreads(1);
#endif
    if (countFile.empty())
        return bench::printTimes(filter);
    if (!bench::openInstructionCount(countFile.c_str())) {
        fprintf(stderr, "ravikBench: %s has no count; run this under the emulator with the counting plugin\n",
                countFile.c_str());
        return 1;
    }
    return save.empty() ? bench::printInstructions(filter, beside) : bench::saveInstructions(filter, save);
}

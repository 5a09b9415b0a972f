// ravikBench [--count COUNTFILE] [FILTER]
//
// Without --count: how long every row takes beside the other libraries. With --count, under the emulator: executed
// instructions per pixel; the emulator's plugin writes its counts to COUNTFILE.
#include "instructionCount.h"
#include "runs.h"

#include <cstdio>

int main(int argc, char** argv)
{
#if RVK_BENCH_OPENCV
    cv::setNumThreads(1);
#endif
    if (argc > 2 && std::string_view(argv[1]) == "--count") {
        if (!bench::openInstructionCount(argv[2])) {
            fprintf(stderr, "ravikBench: %s has no count; run this under the emulator with the counting plugin\n",
                    argv[2]);
            return 1;
        }
        return bench::printInstructions(argc > 3 ? argv[3] : "");
    }
    return bench::printTimes(argc > 1 ? argv[1] : "");
}

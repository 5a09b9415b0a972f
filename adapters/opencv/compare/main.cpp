// The program that compare.py runs twice, on OpenCV with the adapter and without. It takes commands from standard input:
//
//   list                      names the operations, with how far apart results may be
//   check NAME SEED FILE      calls one with random arguments and writes what came out into FILE
//   time NAME WIDTH HEIGHT    microseconds of one call on one thread, and of a memcpy of its source
#include "operation.h"

#include <chrono>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>

namespace {

std::map<std::string, Operation> allOperations()
{
    std::map<std::string, Operation> all;
    for (auto module : {coreOperations, filterOperations, colorOperations, geometryOperations, features2dOperations}) {
        for (Operation& operation : module())
            all[operation.name] = operation;
    }
    return all;
}

// One matrix a line: rows, row bytes, depth; then all matrices' bytes, row after row.
void write(const std::vector<cv::Mat>& results, const std::string& failure, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    for (const cv::Mat& result : results)
        file << result.rows << ' ' << result.cols * result.channels() << ' ' << result.depth() << '\n';
    file << "end " << failure << '\n';
    for (const cv::Mat& result : results) {
        for (int y = 0; y < result.rows; y++)
            file.write(result.ptr<char>(y), std::streamsize(result.cols * result.elemSize()));
    }
}

void check(const Operation& operation, uint64_t seed, const std::string& path)
{
    cv::setNumThreads(3); // stripes
    Draw draw(seed);
    Call call = operation.prepare(draw);
    std::string failure;
    try {
        call.run();
    } catch (const cv::Exception& exception) {
        failure = exception.err;
    }
    write(call.results, failure, path);
    std::cout << "done" << std::endl;
}

// The least time of a call, in microseconds: the best of runs of about a millisecond.
double leastTime(const std::function<void()>& run)
{
    using Clock = std::chrono::steady_clock;
    const auto timeOf = [&](int calls) {
        const auto begin = Clock::now();
        for (int i = 0; i < calls; i++)
            run();
        return std::chrono::duration<double, std::micro>(Clock::now() - begin).count() / calls;
    };
    const double first = std::min(timeOf(1), timeOf(1));
    const int calls = std::max(1, int(1000 / (first + 0.01)));
    double least = first;
    const auto end = Clock::now() + std::chrono::milliseconds(25);
    do
        least = std::min(least, timeOf(calls));
    while (Clock::now() < end);
    return least;
}

void time(const Operation& operation, cv::Size size)
{
    cv::setNumThreads(1);
    Draw draw(size);
    Call call = operation.prepare(draw);
    std::vector<char> from(call.sourceBytes, 1), to(call.sourceBytes);
    const double copied = leastTime([&] { std::memcpy(to.data(), from.data(), from.size()); });
    std::cout << leastTime(call.run) << ' ' << copied << std::endl;
}

} // namespace

int main()
{
    cv::setUseOptimized(true);
    const std::map<std::string, Operation> operations = allOperations();
    std::string command, name;
    while (std::cin >> command) {
        if (command == "list") {
            for (const auto& entry : operations)
                std::cout << entry.first << ' ' << entry.second.within << ' ' << entry.second.exceptions << '\n';
            std::cout << "end" << std::endl;
            continue;
        }
        std::cin >> name;
        const Operation& operation = operations.at(name);
        if (command == "check") {
            uint64_t seed = 0;
            std::string path;
            std::cin >> seed >> path;
            check(operation, seed, path);
        } else {
            cv::Size size;
            std::cin >> size.width >> size.height;
            time(operation, size);
        }
    }
}

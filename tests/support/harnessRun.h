// Runs ravikTest in a child process.
#pragma once

#include "driver.h"
#include "temporaryDirectory.h"
#include "testCase.h"
#include "testDataWriter.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace test {

struct ProgramRun
{
    int exitStatus; // -1 when a signal ended the program
    std::string out;
    std::string err; // messages and log lines

    bool printed(const std::string& text) const { return out.find(text) != std::string::npos; }
    bool logged(const std::string& text) const { return err.find(text) != std::string::npos; }
};

// Runs "ravikTest <words>". `prepare` is called in the child process before.
inline ProgramRun runProgram(
    const std::vector<std::string>& words, const std::function<void()>& prepare = [] {})
{
    const TemporaryDirectory directory;
    const std::string out = directory.string() + "/out", err = directory.string() + "/err";
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        if (!freopen(out.c_str(), "w", stdout) || !freopen(err.c_str(), "w", stderr))
            _exit(99);
        std::vector<std::string> all = words;
        all.insert(all.begin(), "ravikTest");
        std::vector<char*> arguments;
        for (std::string& word : all)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        prepare(); // last: it may take memory away
        const int status = runRavikTest(static_cast<int>(all.size()), arguments.data());
        fflush(nullptr);
        _exit(status);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(out), readFile(err)};
}

// The same bits in every run.
class CountingRandom : public RandomBits
{
public:
    uint32_t next() override { return m_state = m_state * 1664525 + 1013904223; }

private:
    uint32_t m_state = 1;
};

// Test data with stored vectors and the profiling vectors of the first resolution, which the build has made; for reading.
inline std::filesystem::path testData()
{
    return RVK_TEST_DATA;
}

} // namespace test

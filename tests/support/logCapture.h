// Takes the place of the platform's log and keeps what is written. Include in one unit of a test program.
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

namespace test {

// Everything logged since the last clearLog, as "<priority> <tag>: <message>".
inline std::mutex logMutex;
inline std::vector<std::string> logLines;

inline void clearLog()
{
    const std::lock_guard lock(logMutex);
    logLines.clear();
}

inline bool logHas(const std::string& line)
{
    const std::lock_guard lock(logMutex);
    return std::find(logLines.begin(), logLines.end(), line) != logLines.end();
}

} // namespace test

extern "C" __attribute__((format(printf, 3, 4))) int __android_log_print(int priority, const char* tag,
                                                                         const char* format, ...)
{
    char message[4096];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);
    const std::lock_guard lock(test::logMutex);
    test::logLines.push_back(std::to_string(priority) + " " + tag + ": " + message);
    return length;
}

#include "testLog.h"

#include "platform/platform.h"

#include <cstdarg>
#include <cstdio>

namespace {

void logAt(int priority, const char* format, va_list args)
{
    char message[4096];
    vsnprintf(message, sizeof message, format, args);
    __android_log_print(priority, "ravik_test", "%s", message);
}

} // namespace

void testLog(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    logAt(ANDROID_LOG_DEBUG, format, args);
    va_end(args);
}

void testLogError(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    logAt(ANDROID_LOG_ERROR, format, args);
    va_end(args);
}

void profilePrint(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    vprintf(format, args);
    va_end(args);
    fflush(stdout);
}

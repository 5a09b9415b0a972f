#include "log.h"

#include "dispatch.h"
#include "platform/platform.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace rvk {

namespace {

constexpr char kLibraryTag[] = "ravik_lib_log";
constexpr char kRuntimeTag[] = "ravik_runtime_log";

void logLibrary(int priority, const char* format, va_list args)
{
    char message[1024];
    vsnprintf(message, sizeof message, format, args);
    __android_log_print(priority, kLibraryTag, "%s", message);
}

} // namespace

void logLibraryError(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    logLibrary(ANDROID_LOG_ERROR, format, args);
    va_end(args);
}

void logLibraryWarning(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    logLibrary(ANDROID_LOG_DEBUG, format, args);
    va_end(args);
}

void logChosenTarget(const char* function, RVK_IMPL target)
{
    constexpr const char* targetNames[] = {"CPU", "VECTA", "NDSP", "GPU", "ADSP", "CDSP", "MDSP"};
    __android_log_print(ANDROID_LOG_ERROR, kRuntimeTag, "%s_%s", function, targetNames[target]);
}

void readRuntimeLogProperty()
{
    char value[PROP_VALUE_MAX] = "";
    __system_property_get("vendor.runtime.ravik.log", value);
    dispatchState.runtimeLog.store(strtol(value, nullptr, 10) != 0, std::memory_order_relaxed);
}

void logArgumentAssertion(const char* function, const char* condition)
{
    __android_log_print(ANDROID_LOG_ERROR, kLibraryTag, "Assertion failed @%s: %s\n", function, condition);
}

void logIfOutOfScratch(const char* function, rvkStatus status)
{
    if (status == RAVIK_ENORES)
        logLibraryError("Error: %s - no scratch memory\n", function);
}

void failInternalAssertion(const char* unit, int line, const char* condition)
{
    __android_log_print(ANDROID_LOG_ERROR, kLibraryTag, "%s@%d: %s Assertion failed\n", unit, line, condition);
    exit(1);
}

} // namespace rvk

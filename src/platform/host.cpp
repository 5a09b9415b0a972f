// The platform interfaces of hosts that are not Android. All are weak: a program may define its own.
#include "platform/platform.h"

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#define RVK_WEAK extern "C" __attribute__((weak))

// One line "D/tag: message" on standard error, written at once so that the lines of several threads do not mix.
RVK_WEAK int __android_log_print(int priority, const char* tag, const char* format, ...)
{
    constexpr char letters[] = "??VDIWEF";
    const bool known = priority >= 0 && priority < static_cast<int>(sizeof letters) - 1;

    char line[4096];
    constexpr size_t room = sizeof line - 1; // for the line feed
    size_t length =
        static_cast<size_t>(snprintf(line, room, "%c/%.64s: ", known ? letters[priority] : '?', tag ? tag : ""));
    va_list args;
    va_start(args, format);
    const int wanted = vsnprintf(line + length, room - length, format, args);
    va_end(args);
    if (wanted > 0)
        length += strlen(line + length);
    if (line[length - 1] != '\n')
        line[length++] = '\n';
    return static_cast<int>(fwrite(line, 1, length, stderr));
}

// A property is the environment variable of its name in upper case, with '_' for everything that is not alphanumeric.
RVK_WEAK int __system_property_get(const char* name, char* value)
{
    char variable[128];
    size_t length = 0;
    for (; name[length] && length < sizeof variable - 1; length++) {
        const auto letter = static_cast<unsigned char>(name[length]);
        variable[length] = isalnum(letter) ? static_cast<char>(toupper(letter)) : '_';
    }
    variable[length] = '\0';

    const char* text = getenv(variable);
    return snprintf(value, PROP_VALUE_MAX, "%.*s", PROP_VALUE_MAX - 1, text ? text : "");
}

// Without a DSP, shared memory is page-aligned memory.
RVK_WEAK void* dspmem_alloc(int, uint32_t, int size)
{
    void* address = nullptr;
    if (size <= 0 ||
        posix_memalign(&address, static_cast<size_t>(sysconf(_SC_PAGESIZE)), static_cast<size_t>(size)) != 0)
        return nullptr;
    return address;
}

RVK_WEAK void dspmem_free(void* address)
{
    free(address);
}

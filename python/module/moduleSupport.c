/* Takes the place of the platform's log in the Python module: what the library has to say of an error is kept for the
 * thread that called it, everything else goes to standard error. */
#include "moduleSupport.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

enum { kError = 6 };

static _Thread_local char lastError[1024];

int __android_log_print(int priority, const char* tag, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int length;
    if (priority == kError && strcmp(tag, "ravik_lib_log") == 0) {
        length = vsnprintf(lastError, sizeof lastError, format, arguments);
    } else {
        char line[1024];
        length = vsnprintf(line, sizeof line, format, arguments);
        fprintf(stderr, "%s: %s\n", tag, line);
    }
    va_end(arguments);
    return length;
}

int ravikHasLogged(void)
{
    return lastError[0] != '\0';
}

void ravikTakeLog(char* text, size_t size)
{
    snprintf(text, size, "%s", lastError);
    lastError[0] = '\0';
}

int ravikOverlap(const void* a, size_t sizeOfA, const void* b, size_t sizeOfB)
{
    const uintptr_t first = (uintptr_t)a, second = (uintptr_t)b;
    if (first == second && sizeOfA == sizeOfB)
        return RAVIK_SAME_MEMORY;
    return first < second + sizeOfB && second < first + sizeOfA ? RAVIK_OVERLAPPING : RAVIK_APART;
}

int ravikOverlapsAny(const void* a, size_t sizeOfA, const void* b, size_t sizeOfB, const void* c, size_t sizeOfC,
                     const void* d, size_t sizeOfD)
{
    return (sizeOfB && ravikOverlap(a, sizeOfA, b, sizeOfB)) || (sizeOfC && ravikOverlap(a, sizeOfA, c, sizeOfC)) ||
           (sizeOfD && ravikOverlap(a, sizeOfA, d, sizeOfD));
}

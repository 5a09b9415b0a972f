// What the complete fake companion library records, and what a test tells it to answer. A test finds the one object by
// the symbol "fakeCompanion".
#pragma once

#include "manager.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

struct FakeCompanion
{
    char events[4096]; // one line per call: name and arguments
    uint32_t hardware; // answer of rvkAvailableHWComponent
    char version[40];
    RVK_FUNC_MANAGER* manager; // last one received
    bool refusesMemory;        // the shared-memory allocation hook returns null

    __attribute__((format(printf, 2, 3))) void note(const char* format, ...)
    {
        const size_t used = strlen(events);
        va_list values;
        va_start(values, format);
        vsnprintf(events + used, sizeof events - used, format, values);
        va_end(values);
    }
};

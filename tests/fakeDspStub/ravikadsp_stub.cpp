// A DSP stub library that keeps what it is told.
#include <cstdio>
#include <string>

extern "C" {

std::string fakeDspEvents;

int rvk_cache_flush_invalidateN(void* address, int bytes)
{
    char event[64];
    snprintf(event, sizeof event, "flush %p %d\n", address, bytes);
    fakeDspEvents += event;
    return 0;
}

int rvkCheckMemoryLeaksN()
{
    fakeDspEvents += "leaks\n";
    return 0;
}
}

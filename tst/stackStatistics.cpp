#include "stackStatistics.h"

namespace {

constexpr uint8_t kFill = 0xDD;

} // namespace

// The address leaves the frame as a number: the bytes below the caller are only looked at, never used as an object.
__attribute__((noinline, no_sanitize("address"))) const uint8_t* rvk_test_stackprefill()
{
    volatile uint8_t area[kStackStatisticsBytes];
    for (volatile uint8_t& byte : area)
        byte = kFill;
    volatile uintptr_t address = reinterpret_cast<uintptr_t>(&area[0]);
    return reinterpret_cast<const uint8_t*>(address);
}

__attribute__((noinline, no_sanitize("address"))) const uint8_t* firstUsedByte(const uint8_t* lowest)
{
    const volatile uint8_t* byte = lowest;
    size_t unused = 0;
    while (unused < kStackStatisticsBytes && byte[unused] == kFill)
        unused++;
    return lowest + unused;
}

// What the CPU and the companion library offer.
#pragma once

#include <ravik/types.h>

#include <cstddef>

namespace rvk {

// Feature bits of the CPU.
inline constexpr uint32_t kCpuArmV7 = 1;
inline constexpr uint32_t kCpuVfp = 2;
inline constexpr uint32_t kCpuVector = 4;

struct CpuFacts
{
    bool detected;
    uint32_t features;
    uint32_t implementer; // code of the CPU's maker
};
extern CpuFacts cpuFacts;

// Where the CPU describes itself; tests point it to a text of theirs.
extern const char* cpuInfoPath;

// Reads cpuInfoPath into cpuFacts and dispatchState.noAccelerator. detectCpuOnce() is the way for everybody else.
void rvk_android_cpuInit();
void detectCpuOnce();

// The value of the first line that begins with `field`: what stands between the next ": " and the end of its line. A
// zero-terminated copy for the caller to free, or null when there is none or memory is exhausted.
char* extract_cpuinfo_field(const char* buffer, size_t length, const char* field);

// Modes that never touch the companion library: RAVIK_OP_CPU_PERFORMANCE, and the expert modes of units 1, ARM and
// VECTA.
bool isCpuOnly(rvkOperationMode mode);

// An expert mode has bit 31 set; the rest is the unit.
inline bool isExpert(rvkOperationMode mode)
{
    return mode < 0;
}
inline uint32_t expertUnit(rvkOperationMode mode)
{
    return static_cast<uint32_t>(mode) & 0x7fffffffu;
}

} // namespace rvk

// The two internal operations that exist for the DSP side. Both are dispatched: without the companion library they run
// their C reference, which does nothing.
#pragma once

#include <cstdint>

namespace rvk {

// Meaning of the values: the companion library's.
using x6ProfileCommand = int32_t;

// A time reading from the DSP; 0 on the CPU.
uint64_t probeX6Time(x6ProfileCommand command, uint32_t argument);

// Makes a buffer known to the DSP side; 0 on success. The CPU has nothing to do.
int rvkRegisterBuf(const void* data, uint32_t size);

} // namespace rvk

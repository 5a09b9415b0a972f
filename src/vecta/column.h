// The columns of vector implementations, one set for each instruction set that this build carries.
#pragma once

#include <cstdint>

namespace rvk::vecta {

struct Entry
{
    uint32_t slot;
    void (*implementation)(); // null ends a column; its slot is then the number of rows
};

struct Variant
{
    const char* name;            // "neon", "sse42", "avx2" or "avx512"
    const Entry* column;         // public functions; slot is a Slot
    const Entry* internalColumn; // internal operations; slot is an InternalSlot
    const Entry* kernels;        // inner kernels; slot is a Kernel
    bool runsHere;               // whether this CPU has the instruction set
};

// All variants of this build, the plainest first; `count` receives their number.
const Variant* variants(uint32_t& count);

// The best variant that the CPU has and the property "vendor.runtime.ravik.vecta" (a name; empty: no cap) allows; null
// when there is none. The choice is made once per process.
const Variant* chosenVariant();

} // namespace rvk::vecta

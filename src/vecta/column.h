// The columns of vector implementations, one for each instruction set that this build carries.
#pragma once

#include <cstdint>

namespace rvk::vecta {

struct Entry {
    uint32_t slot; // kPublicFunctions ends a column
    void (*implementation)();
};

struct Variant {
    const char* name;    // "neon", "sse42", "avx2" or "avx512"
    const Entry* column;
    bool runsHere;       // whether this CPU has the instruction set
};

// All variants of this build, the plainest first; `count` receives their number.
const Variant* variants(uint32_t& count);

// The best variant that the CPU has and the property "vendor.runtime.ravik.vecta" (a name; empty: no cap) allows; null when
// there is none.
const Variant* chosenVariant();

} // namespace rvk::vecta

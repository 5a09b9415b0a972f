// Every operation of the vector layer beside its scalar definition, as functions on bytes: simd/kernels.cpp is compiled
// once per instruction set, simdTest.cpp runs what the processor has. No inline functions here: see vecta/simd/core.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace test {

struct SimdOperation
{
    const char* name;
    const char* element;
    uint32_t inputBytes;
    uint32_t outputBytes;
    uint32_t elementBytes;
    enum class Draw : uint8_t { any, floats, normalFloats, intRangeFloats } draw; // normal: no subnormals
    bool sameNan; // whether not-a-numbers of a float output are compared by their bits
    void (*vector)(const void* in, void* out);
    void (*scalar)(const void* in, void* out);
};

struct SimdPartial
{
    uint32_t elementBytes;
    uint32_t most;                                      // elements
    void (*load)(const void* in, size_t n, void* out);  // loadPartial, stored whole
    void (*store)(const void* in, void* out, size_t n); // a whole load, storePartial
};

struct SimdGroup
{
    const SimdOperation* operations;
    size_t count;
};

struct SimdKernels
{
    SimdGroup (*const* groups)();
    size_t groupCount;
    const SimdPartial* partials;
    size_t partialCount;
};

} // namespace test

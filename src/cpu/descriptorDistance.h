// The distance of descriptors.
#pragma once

#include <ravik/types.h>

namespace rvk {

// Squared, of vectors scaled to length 1, from their inverse lengths and their dot product. In single precision and in
// this order, which no compiler may change. (Always inline, because vector implementations may not leave shared
// definitions behind.)
__attribute__((always_inline)) inline float32_t descriptorDistance(float32_t invLenA, float32_t invLenB, float32_t dot)
{
    return __builtin_fabsf(2.0f - ((invLenA + invLenA) * invLenB) * dot);
}

} // namespace rvk

// What the C and the vector implementations of perspective warps share.
#pragma once

#include <ravik/types.h>

namespace rvk {

// A matrix that maps positions (x, y) to ((m0 x + m1 y + m2) / w, (m3 x + m4 y + m5) / w), w = m6 x + m7 y + m8.
struct Homography
{
    float32_t m[9];
};

// The same map, scaled by a power of two so that the largest coefficient is from 1/2 to 1, and without those that are
// below 2^-100 of it: no product of a coefficient and a coordinate is subnormal, and no sum of them overflows. (32-bit
// Arm computes without subnormals.)
Homography scaledHomography(const float32_t* matrix);

} // namespace rvk

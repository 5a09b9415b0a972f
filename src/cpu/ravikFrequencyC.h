// What the references and the vector implementations of the frequency transforms share.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rvk {

// cos(k pi / 16) / 2 in units of 2^-15.
constexpr int16_t kHalfCosine[8] = {16384, 16069, 15137, 13623, 11585, 9102, 6270, 3196};

// What is left of these units after the first of two passes, so that 16 bits hold it, and after the second.
constexpr unsigned kForwardShifts[2] = {11, 19};
constexpr unsigned kInverseShifts[2] = {13, 17};

// Blocks are transformed less the middle of their range; its share of the zero frequency is exact.
constexpr int32_t kMiddlePixel = 128, kMiddleFrequency = 8 * kMiddlePixel;

constexpr int32_t kLeastCoefficient = -2048, kLargestCoefficient = 2047;

struct Complex
{
    double re, im;
};

// exp(-2 pi i k / n) for all k below n, a power of two. By square roots and products, which are the same everywhere.
void fillRootsOfUnity(Complex* roots, size_t n);

// i with its lower `bits` bits in the reverse order.
size_t reversedBits(size_t i, unsigned bits);

} // namespace rvk

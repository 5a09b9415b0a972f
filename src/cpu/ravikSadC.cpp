// C references of the sums of absolute differences.
#include "cpu/image.h"
#include "functions.h"

#include <cstdlib>

namespace rvk {
namespace {

template <uint32_t size>
uint32_t blockDistance(const uint8_t* block1, uint32_t stride1, const uint8_t* block2, uint32_t stride2)
{
    const Plane a{block1, stride1}, b{block2, stride2};
    uint32_t sum = 0;
    for (size_t y = 0; y < size; ++y)
        for (size_t x = 0; x < size; ++x)
            sum += static_cast<uint32_t>(std::abs(a.row(y)[x] - b.row(y)[x]));
    return sum;
}

template <uint32_t size>
void patchDistances(const uint8_t* patch, uint32_t width, uint32_t height, Plane<const uint8_t> src,
                    Plane<uint16_t> dst)
{
    for (size_t y = 0; y <= height - size; ++y)
        for (size_t x = 0; x <= width - size; ++x)
            dst.row(y)[x] = static_cast<uint16_t>(blockDistance<size>(patch, size, src.row(y) + x, src.stride));
}

} // namespace

// ---- kernels of block matching ------------------------------------------------------------------

uint32_t calculateBlockSum16x16C(const uint8_t* block, uint32_t stride)
{
    uint32_t sum = 0;
    for (size_t y = 0; y < 16; ++y)
        for (size_t x = 0; x < 16; ++x)
            sum += Plane{block, stride}.row(y)[x];
    return sum;
}

uint32_t calculateBlockSAD_ZeroMean16x16C(const uint8_t* block1, const uint8_t* block2, uint32_t stride,
                                          uint32_t* mean2)
{
    const Plane a{block1, stride}, b{block2, stride};
    *mean2 = calculateBlockSum16x16C(block2, stride) >> 8;
    const int shift = static_cast<int>((calculateBlockSum16x16C(block1, stride) >> 8) - *mean2);
    uint32_t sum = 0;
    for (size_t y = 0; y < 16; ++y)
        for (size_t x = 0; x < 16; ++x)
            sum += static_cast<uint32_t>(std::abs(a.row(y)[x] - b.row(y)[x] - shift));
    return sum;
}

} // namespace rvk

#include "forms/ravikSadForms.h"

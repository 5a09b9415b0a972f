// C references of the bit counts and Hamming distances.
#include "functions.h"

#include <cstddef>

namespace rvk {
namespace {

struct BitsOfByte
{
    uint8_t count[256] = {};

    constexpr BitsOfByte()
    {
        for (size_t i = 1; i < 256; ++i)
            count[i] = static_cast<uint8_t>(count[i / 2] + i % 2);
    }
};
constexpr BitsOfByte bitsOfByte;

uint32_t bitCount(const uint8_t* src, size_t length)
{
    uint32_t count = 0;
    for (size_t i = 0; i < length; ++i)
        count += bitsOfByte.count[src[i]];
    return count;
}

uint32_t hammingDistance(const uint8_t* a, const uint8_t* b, size_t length)
{
    uint32_t distance = 0;
    for (size_t i = 0; i < length; ++i)
        distance += bitsOfByte.count[a[i] ^ b[i]];
    return distance;
}

} // namespace

uint32_t rvkBitCountu32C(const uint32_t* src, uint32_t srcLength)
{
    uint32_t count = 0;
    for (size_t i = 0; i < srcLength; ++i)
        for (unsigned shift = 0; shift < 32; shift += 8)
            count += bitsOfByte.count[src[i] >> shift & 0xff];
    return count;
}

} // namespace rvk

#include "forms/ravikBitCountForms.h"

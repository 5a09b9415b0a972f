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

uint32_t rvkBitCount32x1u8C(const uint8_t* src)
{
    return bitCount(src, 32);
}

uint32_t rvkBitCount64x1u8C(const uint8_t* src)
{
    return bitCount(src, 64);
}

void rvkBitCount32x4u8C(const uint8_t* src1, const uint8_t* src2, const uint8_t* src3, const uint8_t* src4,
                        uint32_t* counts)
{
    const uint8_t* src[4] = {src1, src2, src3, src4};
    for (size_t i = 0; i < 4; ++i)
        counts[i] = bitCount(src[i], 32);
}

void rvkBitCount64x4u8C(const uint8_t* src1, const uint8_t* src2, const uint8_t* src3, const uint8_t* src4,
                        uint32_t* counts)
{
    const uint8_t* src[4] = {src1, src2, src3, src4};
    for (size_t i = 0; i < 4; ++i)
        counts[i] = bitCount(src[i], 64);
}

uint32_t rvkBitCountu32C(const uint32_t* src, uint32_t srcLength)
{
    uint32_t count = 0;
    for (size_t i = 0; i < srcLength; ++i)
        for (unsigned shift = 0; shift < 32; shift += 8)
            count += bitsOfByte.count[src[i] >> shift & 0xff];
    return count;
}

uint32_t rvkBitCountu8C(const uint8_t* src, uint32_t srcLength)
{
    return bitCount(src, srcLength);
}

uint32_t rvkHammingDistance32x1u8C(const uint8_t* a, const uint8_t* b)
{
    return hammingDistance(a, b, 32);
}

uint32_t rvkHammingDistance32x1u8a4C(const uint8_t* a, const uint8_t* b)
{
    return hammingDistance(a, b, 32);
}

uint32_t rvkHammingDistance64x1u8C(const uint8_t* a, const uint8_t* b)
{
    return hammingDistance(a, b, 64);
}

uint32_t rvkHammingDistance64x1u8a4C(const uint8_t* a, const uint8_t* b)
{
    return hammingDistance(a, b, 64);
}

void rvkHammingDistance32x4u8a4C(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                 const uint8_t* b3, uint32_t* distances)
{
    const uint8_t* b[4] = {b0, b1, b2, b3};
    for (size_t i = 0; i < 4; ++i)
        distances[i] = hammingDistance(a, b[i], 32);
}

void rvkHammingDistance64x4u8C(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                               const uint8_t* b3, uint32_t* distances)
{
    const uint8_t* b[4] = {b0, b1, b2, b3};
    for (size_t i = 0; i < 4; ++i)
        distances[i] = hammingDistance(a, b[i], 64);
}

void rvkHammingDistance64x4u8a4C(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                 const uint8_t* b3, uint32_t* distances)
{
    rvkHammingDistance64x4u8C(a, b0, b1, b2, b3, distances);
}

uint32_t rvkHammingDistanceu8C(const uint8_t* a, const uint8_t* b, uint32_t length)
{
    return hammingDistance(a, b, length);
}

} // namespace rvk

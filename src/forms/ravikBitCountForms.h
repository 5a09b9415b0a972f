// Bit counts and Hamming distances, by the drivers bitCount and hammingDistance of either room.
#pragma once

#include "forms/form.h"

namespace RVK_ROOM {

uint32_t RVK_FORM(rvkBitCount32x1u8)(const uint8_t* src)
{
    return bitCount(src, 32);
}

uint32_t RVK_FORM(rvkBitCount64x1u8)(const uint8_t* src)
{
    return bitCount(src, 64);
}

void RVK_FORM(rvkBitCount32x4u8)(const uint8_t* src1, const uint8_t* src2, const uint8_t* src3, const uint8_t* src4,
                                 uint32_t* counts)
{
    const uint8_t* src[4] = {src1, src2, src3, src4};
    for (size_t i = 0; i < 4; ++i)
        counts[i] = bitCount(src[i], 32);
}

void RVK_FORM(rvkBitCount64x4u8)(const uint8_t* src1, const uint8_t* src2, const uint8_t* src3, const uint8_t* src4,
                                 uint32_t* counts)
{
    const uint8_t* src[4] = {src1, src2, src3, src4};
    for (size_t i = 0; i < 4; ++i)
        counts[i] = bitCount(src[i], 64);
}

uint32_t RVK_FORM(rvkBitCountu8)(const uint8_t* src, uint32_t srcLength)
{
    return bitCount(src, srcLength);
}

uint32_t RVK_FORM(rvkHammingDistance32x1u8)(const uint8_t* a, const uint8_t* b)
{
    return hammingDistance(a, b, 32);
}

uint32_t RVK_FORM(rvkHammingDistance32x1u8a4)(const uint8_t* a, const uint8_t* b)
{
    return RVK_FORM(rvkHammingDistance32x1u8)(a, b);
}

uint32_t RVK_FORM(rvkHammingDistance64x1u8)(const uint8_t* a, const uint8_t* b)
{
    return hammingDistance(a, b, 64);
}

uint32_t RVK_FORM(rvkHammingDistance64x1u8a4)(const uint8_t* a, const uint8_t* b)
{
    return RVK_FORM(rvkHammingDistance64x1u8)(a, b);
}

void RVK_FORM(rvkHammingDistance32x4u8a4)(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                          const uint8_t* b3, uint32_t* distances)
{
    const uint8_t* b[4] = {b0, b1, b2, b3};
    for (size_t i = 0; i < 4; ++i)
        distances[i] = hammingDistance(a, b[i], 32);
}

void RVK_FORM(rvkHammingDistance64x4u8)(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                        const uint8_t* b3, uint32_t* distances)
{
    const uint8_t* b[4] = {b0, b1, b2, b3};
    for (size_t i = 0; i < 4; ++i)
        distances[i] = hammingDistance(a, b[i], 64);
}

void RVK_FORM(rvkHammingDistance64x4u8a4)(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                          const uint8_t* b3, uint32_t* distances)
{
    RVK_FORM(rvkHammingDistance64x4u8)(a, b0, b1, b2, b3, distances);
}

uint32_t RVK_FORM(rvkHammingDistanceu8)(const uint8_t* a, const uint8_t* b, uint32_t length)
{
    return hammingDistance(a, b, length);
}

} // namespace RVK_ROOM

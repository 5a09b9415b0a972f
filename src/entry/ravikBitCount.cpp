// Bit counts and Hamming distances: the public functions.
#include "dispatch.h"

using namespace rvk;

uint32_t rvkBitCount32x1u8(const uint8_t* src)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkBitCount32x1u8);
    RVK_CHECK_ARGS_OR(0, src);
    return implementation<Slot::rvkBitCount32x1u8>(target)(src);
}

uint32_t rvkBitCount64x1u8(const uint8_t* src)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkBitCount64x1u8);
    RVK_CHECK_ARGS_OR(0, src);
    return implementation<Slot::rvkBitCount64x1u8>(target)(src);
}

void rvkBitCount32x4u8(const uint8_t* src1, const uint8_t* src2, const uint8_t* src3, const uint8_t* src4,
                       uint32_t* bitCount)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkBitCount32x4u8);
    RVK_CHECK_ARGS(src1 && src2 && src3 && src4 && bitCount);
    implementation<Slot::rvkBitCount32x4u8>(target)(src1, src2, src3, src4, bitCount);
}

void rvkBitCount64x4u8(const uint8_t* src1, const uint8_t* src2, const uint8_t* src3, const uint8_t* src4,
                       uint32_t* bitCount)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkBitCount64x4u8);
    RVK_CHECK_ARGS(src1 && src2 && src3 && src4 && bitCount);
    implementation<Slot::rvkBitCount64x4u8>(target)(src1, src2, src3, src4, bitCount);
}

uint32_t rvkBitCountu32(const uint32_t* src, uint32_t srcLength)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkBitCountu32);
    RVK_CHECK_ARGS_OR(0, src);
    return implementation<Slot::rvkBitCountu32>(target)(src, srcLength);
}

uint32_t rvkBitCountu8(const uint8_t* src, uint32_t srcLength)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkBitCountu8);
    RVK_CHECK_ARGS_OR(0, src);
    return implementation<Slot::rvkBitCountu8>(target)(src, srcLength);
}

uint32_t rvkHammingDistance32x1u8(const uint8_t* a, const uint8_t* b)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkHammingDistance32x1u8);
    RVK_CHECK_ARGS_OR(0, a && b);
    return implementation<Slot::rvkHammingDistance32x1u8>(target)(a, b);
}

uint32_t rvkHammingDistance32x1u8a4(const uint8_t* a, const uint8_t* b)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkHammingDistance32x1u8a4);
    RVK_CHECK_ARGS_OR(0, a && b && aligned(4, a, b));
    return implementation<Slot::rvkHammingDistance32x1u8a4>(target)(a, b);
}

uint32_t rvkHammingDistance64x1u8(const uint8_t* a, const uint8_t* b)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkHammingDistance64x1u8);
    RVK_CHECK_ARGS_OR(0, a && b);
    return implementation<Slot::rvkHammingDistance64x1u8>(target)(a, b);
}

uint32_t rvkHammingDistance64x1u8a4(const uint8_t* a, const uint8_t* b)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkHammingDistance64x1u8a4);
    RVK_CHECK_ARGS_OR(0, a && b && aligned(4, a, b));
    return implementation<Slot::rvkHammingDistance64x1u8a4>(target)(a, b);
}

void rvkHammingDistance32x4u8a4(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                const uint8_t* b3, uint32_t* hammingDistance)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkHammingDistance32x4u8a4);
    RVK_CHECK_ARGS(a && b0 && b1 && b2 && b3 && hammingDistance && aligned(4, a, b0, b1, b2, b3));
    implementation<Slot::rvkHammingDistance32x4u8a4>(target)(a, b0, b1, b2, b3, hammingDistance);
}

void rvkHammingDistance64x4u8(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                              const uint8_t* b3, uint32_t* hammingDistance)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkHammingDistance64x4u8);
    RVK_CHECK_ARGS(a && b0 && b1 && b2 && b3 && hammingDistance);
    implementation<Slot::rvkHammingDistance64x4u8>(target)(a, b0, b1, b2, b3, hammingDistance);
}

void rvkHammingDistance64x4u8a4(const uint8_t* a, const uint8_t* b0, const uint8_t* b1, const uint8_t* b2,
                                const uint8_t* b3, uint32_t* hammingDistance)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkHammingDistance64x4u8a4);
    RVK_CHECK_ARGS(a && b0 && b1 && b2 && b3 && hammingDistance && aligned(4, a, b0, b1, b2, b3));
    implementation<Slot::rvkHammingDistance64x4u8a4>(target)(a, b0, b1, b2, b3, hammingDistance);
}

uint32_t rvkHammingDistanceu8(const uint8_t* a, const uint8_t* b, uint32_t length)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkHammingDistanceu8);
    RVK_CHECK_ARGS_OR(0, a && b);
    return implementation<Slot::rvkHammingDistanceu8>(target)(a, b, length);
}

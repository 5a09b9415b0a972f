// Descriptors: the public functions.
#include "dispatch.h"

#include <algorithm>

using namespace rvk;

namespace {

template <class T>
bool allGiven(const T* const* list, uint32_t count)
{
    return std::all_of(list, list + count, [](const T* vector) { return vector != nullptr; });
}

} // namespace

void rvkSumOfSquaredDiffs36x4s8(const int8_t* A, float32_t invLenA, const int8_t* B, const int8_t* C, const int8_t* D,
                                const int8_t* E, const float32_t* invLenB, float32_t* distances)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfSquaredDiffs36x4s8);
    RVK_CHECK_ARGS(A && B && C && D && E && invLenB && distances);
    implementation<Slot::rvkSumOfSquaredDiffs36x4s8>(target)(A, invLenA, B, C, D, E, invLenB, distances);
}

void rvkSumOfSquaredDiffs36xNs8(const int8_t* A, float32_t invLenA, const int8_t* const* B, const float32_t* invLenB,
                                uint32_t N, float32_t* distances)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfSquaredDiffs36xNs8);
    RVK_CHECK_ARGS(A && B && invLenB && distances);
    implementation<Slot::rvkSumOfSquaredDiffs36xNs8>(target)(A, invLenA, B, invLenB, N, distances);
}

void rvkSumOfSquaredDiffsu8(const uint8_t* a, float32_t invLenA, uint32_t length, const uint8_t* const* bList,
                            const float32_t* invLenB, uint32_t count, float32_t* distances)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfSquaredDiffsu8);
    RVK_CHECK_ARGS(a && bList && invLenB && distances);
    RVK_CHECK_ARGS(allGiven(bList, count));
    implementation<Slot::rvkSumOfSquaredDiffsu8>(target)(a, invLenA, length, bList, invLenB, count, distances);
}

void rvkSumOfSquaredDiffss8(const int8_t* a, float32_t invLenA, uint32_t length, const int8_t* const* bList,
                            const float32_t* invLenB, uint32_t count, float32_t* distances)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfSquaredDiffss8);
    RVK_CHECK_ARGS(a && bList && invLenB && distances);
    RVK_CHECK_ARGS(allGiven(bList, count));
    implementation<Slot::rvkSumOfSquaredDiffss8>(target)(a, invLenA, length, bList, invLenB, count, distances);
}

void rvkSumOfSquaredDiffsf32(const float32_t* a, float32_t invLenA, uint32_t length, const float32_t* const* bList,
                             const float32_t* invLenB, uint32_t count, float32_t* distances)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkSumOfSquaredDiffsf32);
    RVK_CHECK_ARGS(a && bList && invLenB && distances);
    RVK_CHECK_ARGS(allGiven(bList, count));
    implementation<Slot::rvkSumOfSquaredDiffsf32>(target)(a, invLenA, length, bList, invLenB, count, distances);
}

void rvkSort8Scoresf32(const float32_t* inScores, float32_t* outScores)
{
    const RVK_IMPL target = chooseTarget(Slot::rvkSort8Scoresf32);
    RVK_CHECK_ARGS(inScores && outScores);
    implementation<Slot::rvkSort8Scoresf32>(target)(inScores, outScores);
}

rvkStatus rvkVecNormalize36s8f32(const int8_t* src, uint32_t srcStride, const float32_t* invLengths, uint32_t count,
                                 float32_t* dst, uint32_t dstStride)
{
    srcStride = packedIfZero(srcStride, 36);
    dstStride = packedIfZero(dstStride, 36, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkVecNormalize36s8f32);
    RVK_CHECK_STATUS(src && invLengths && count && dst && srcStride >= 36 && dstStride >= 36 * sizeof(float32_t));
    return implementation<Slot::rvkVecNormalize36s8f32>(target)(src, srcStride, invLengths, count, dst, dstStride);
}

rvkStatus rvkDescriptor17x17u8To36s8(const uint8_t* patch, uint32_t patchStride, int8_t* descriptor,
                                     float32_t* invLength)
{
    patchStride = packedIfZero(patchStride, 17);
    const RVK_IMPL target = chooseTarget(Slot::rvkDescriptor17x17u8To36s8);
    RVK_CHECK_STATUS(patch && descriptor && patchStride >= 17);
    return implementation<Slot::rvkDescriptor17x17u8To36s8>(target)(patch, patchStride, descriptor, invLength);
}

rvkStatus rvkDescriptorSampledMeanAndVar36f32(const float32_t* src, uint32_t count, uint32_t srcStride,
                                              float32_t* means, float32_t* variances)
{
    srcStride = packedIfZero(srcStride, 36, sizeof(float32_t));
    const RVK_IMPL target = chooseTarget(Slot::rvkDescriptorSampledMeanAndVar36f32);
    RVK_CHECK_STATUS(src && count && means && variances && srcStride >= 36 * sizeof(float32_t));
    return implementation<Slot::rvkDescriptorSampledMeanAndVar36f32>(target)(src, count, srcStride, means, variances);
}

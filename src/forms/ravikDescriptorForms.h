// Squared distances, by the dot products of the same room.
#pragma once

#include "cpu/descriptorDistance.h"
#include "forms/form.h"

#include <ravik/dotproduct.h>

namespace RVK_ROOM {

decltype(::rvkDotProduct36x1s8) RVK_FORM(rvkDotProduct36x1s8);
decltype(::rvkDotProduct36x4s8) RVK_FORM(rvkDotProduct36x4s8);
decltype(::rvkDotProducts8) RVK_FORM(rvkDotProducts8);
decltype(::rvkDotProductu8) RVK_FORM(rvkDotProductu8);

namespace {

template <class T, class Dot>
void compareWithList(const T* a, float32_t invLenA, uint32_t length, const T* const* bList, const float32_t* invLenB,
                     uint32_t count, float32_t* distances, Dot dot)
{
    for (size_t k = 0; k < count; ++k)
        distances[k] = descriptorDistance(invLenA, invLenB[k], static_cast<float32_t>(dot(a, bList[k], length)));
}

} // namespace

void RVK_FORM(rvkSumOfSquaredDiffs36x4s8)(const int8_t* A, float32_t invLenA, const int8_t* B, const int8_t* C,
                                          const int8_t* D, const int8_t* E, const float32_t* invLenB,
                                          float32_t* distances)
{
    int32_t dots[4];
    RVK_FORM(rvkDotProduct36x4s8)(A, B, C, D, E, dots);
    for (size_t k = 0; k < 4; ++k)
        distances[k] = descriptorDistance(invLenA, invLenB[k], static_cast<float32_t>(dots[k]));
}

void RVK_FORM(rvkSumOfSquaredDiffs36xNs8)(const int8_t* A, float32_t invLenA, const int8_t* const* B,
                                          const float32_t* invLenB, uint32_t N, float32_t* distances)
{
    for (size_t k = 0; k < N;) {
        const int8_t* const* b = B + k;
        if (N - k >= 4 && b[0] && b[1] && b[2] && b[3]) {
            ::rvkSumOfSquaredDiffs36x4s8(A, invLenA, b[0], b[1], b[2], b[3], invLenB + k, distances + k);
            k += 4;
            continue;
        }
        for (const size_t end = N - k < 4 ? N : k + 4; k < end; ++k) {
            const int32_t dot = B[k] ? RVK_FORM(rvkDotProduct36x1s8)(A, B[k]) : -1;
            distances[k] = descriptorDistance(invLenA, invLenB[k], static_cast<float32_t>(dot));
        }
    }
}

void RVK_FORM(rvkSumOfSquaredDiffsu8)(const uint8_t* a, float32_t invLenA, uint32_t length, const uint8_t* const* bList,
                                      const float32_t* invLenB, uint32_t count, float32_t* distances)
{
    compareWithList(a, invLenA, length, bList, invLenB, count, distances, RVK_FORM(rvkDotProductu8));
}

void RVK_FORM(rvkSumOfSquaredDiffss8)(const int8_t* a, float32_t invLenA, uint32_t length, const int8_t* const* bList,
                                      const float32_t* invLenB, uint32_t count, float32_t* distances)
{
    compareWithList(a, invLenA, length, bList, invLenB, count, distances, RVK_FORM(rvkDotProducts8));
}

// By the public function, so on the target that is chosen for it.
void RVK_FORM(rvkSumOfSquaredDiffsf32)(const float32_t* a, float32_t invLenA, uint32_t length,
                                       const float32_t* const* bList, const float32_t* invLenB, uint32_t count,
                                       float32_t* distances)
{
    compareWithList(a, invLenA, length, bList, invLenB, count, distances, ::rvkDotProductf32);
}

} // namespace RVK_ROOM

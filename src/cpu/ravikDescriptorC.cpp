// C references of descriptors.
#include "cpu/image.h"
#include "functions.h"

#include <cmath>
#include <cstdlib>

namespace rvk {
namespace {

// ---- sorting --------------------------------------------------------------------------------------------------------

// Neighbours alone change places, so equal scores never do.
void sortFour(float32_t* scores)
{
    for (const size_t i : {0, 1, 2, 0, 1, 0})
        if (scores[i + 1] < scores[i])
            std::swap(scores[i], scores[i + 1]);
}

// ---- the descriptor of a patch --------------------------------------------------------------------------------------

constexpr int32_t kPixels = 17, kCells = 6; // across and down

// What cell and pixel have in common, in sixths of a pixel: a cell reaches from 17 * cell on, a pixel from 6 * x on.
int32_t commonLength(int32_t cell, int32_t x)
{
    return std::max(0, std::min((cell + 1) * kPixels, (x + 1) * kCells) - std::max(cell * kPixels, x * kCells));
}

// In 36ths of a pixel, of which a cell has 17 * 17.
int32_t sumOfCell(Plane<const uint8_t> patch, int32_t column, int32_t row)
{
    int32_t sum = 0;
    for (int32_t y = row * kPixels / kCells; commonLength(row, y) > 0; ++y)
        for (int32_t x = column * kPixels / kCells; commonLength(column, x) > 0; ++x)
            sum += commonLength(column, x) * commonLength(row, y) * patch.row(static_cast<size_t>(y))[x];
    return sum;
}

// value * 127 / largest to the nearest integer, halves away from zero.
int8_t scaledTo127(int32_t value, int32_t largest)
{
    const int32_t magnitude = (2 * 127 * std::abs(value) + largest) / (2 * largest);
    return static_cast<int8_t>(value < 0 ? -magnitude : magnitude);
}

} // namespace

void rvkSort8Scoresf32C(const float32_t* inScores, float32_t* outScores)
{
    float32_t halves[2][4];
    for (size_t i = 0; i < 8; ++i)
        halves[i / 4][i % 4] = inScores[i];
    sortFour(halves[0]);
    sortFour(halves[1]);
    const float32_t *first = halves[0], *second = halves[1];
    const float32_t *const endOfFirst = first + 4, *const endOfSecond = second + 4;
    for (size_t i = 0; i < 8; ++i) {
        const bool takesFirst = second == endOfSecond || (first != endOfFirst && *first < *second);
        outScores[i] = takesFirst ? *first++ : *second++;
    }
}

rvkStatus rvkVecNormalize36s8f32C(const int8_t* src, uint32_t srcStride, const float32_t* invLengths, uint32_t count,
                                  float32_t* dst, uint32_t dstStride)
{
    const Plane from{src, srcStride};
    const Plane to{dst, dstStride};
    for (size_t k = 0; k < count; ++k)
        for (size_t i = 0; i < 36; ++i)
            to.row(k)[i] = static_cast<float32_t>(from.row(k)[i]) * invLengths[k];
    return RAVIK_SUCCESS;
}

rvkStatus rvkDescriptor17x17u8To36s8C(const uint8_t* patch, uint32_t patchStride, int8_t* descriptor,
                                      float32_t* invLength)
{
    int32_t cells[36];
    int32_t sum = 0;
    for (int32_t i = 0; i < 36; ++i)
        sum += cells[i] = sumOfCell({patch, patchStride}, i % kCells, i / kCells);
    int32_t largest = 0;
    for (int32_t& cell : cells) {
        cell = 36 * cell - sum; // 36 times the difference from the mean
        largest = std::max(largest, std::abs(cell));
    }
    int32_t squares = 0;
    for (size_t i = 0; i < 36; ++i) {
        descriptor[i] = largest ? scaledTo127(cells[i], largest) : int8_t{0};
        squares += descriptor[i] * descriptor[i];
    }
    if (invLength)
        *invLength = squares ? 1.0f / std::sqrt(static_cast<float32_t>(squares)) : 0.0f;
    return RAVIK_SUCCESS;
}

rvkStatus rvkDescriptorSampledMeanAndVar36f32C(const float32_t* src, uint32_t count, uint32_t srcStride,
                                               float32_t* means, float32_t* variances)
{
    const Plane vectors{src, srcStride};
    for (size_t i = 0; i < 36; ++i) {
        float32_t sum = 0;
        for (size_t k = 0; k < count; ++k)
            sum += vectors.row(k)[i];
        const float32_t mean = sum / static_cast<float32_t>(count);
        float32_t squares = 0;
        for (size_t k = 0; k < count; ++k) {
            const float32_t difference = vectors.row(k)[i] - mean;
            squares += difference * difference;
        }
        means[i] = mean;
        variances[i] = count > 1 ? squares / static_cast<float32_t>(count - 1) : 0.0f;
    }
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikDescriptorForms.h"

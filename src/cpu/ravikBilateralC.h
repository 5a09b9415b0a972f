// The weights of the bilateral filters, for the references and the vector implementations. <ravik/bilateral.h> has the
// formulas.
#pragma once

#include <ravik/types.h>

namespace rvk {

// ---- windows: numbers of 15 bits ----------------------------------------------------------------

constexpr float32_t kBilateralSigmaColor = 25;
constexpr float32_t bilateralSigmaSpace(int radius)
{
    return static_cast<float32_t>(radius) / 2;
}

// Windows are discs: directions are alike.
constexpr bool isInWindow(int dx, int dy, int radius)
{
    return dx * dx + dy * dy <= radius * radius;
}

// a . b
int multiplyRounded(int a, int b);

// What makes t of a difference of grey levels.
struct RangeScale
{
    int16_t limit, factor, scale;
};
RangeScale rangeScale(float32_t sigmaColor);

// What t . 2t is subtracted from for a neighbour at this distance.
int16_t weightAtDistance(int dx, int dy, float32_t sigmaSpace);

constexpr int16_t kWeightFloor = 15485;
constexpr int kWeightSquarings = 4;
constexpr int16_t kOwnWeight = 32752; // of the pixel itself

// ---- recursive ----------------------------------------------------------------------------------

// The part of the weights that all neighbours in rows (or columns) of `size` pixels share, ...
float32_t recursiveSpace(float32_t sigmaSpace, uint32_t size);
// ... and the weights of all differences of grey levels.
void recursiveWeights(float32_t (&weights)[256], float32_t sigmaColor, float32_t sigmaSpace, uint32_t size);

} // namespace rvk

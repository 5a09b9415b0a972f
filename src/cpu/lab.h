// The numbers of the conversion to Lab, in fixed point: Q15 has 1 as 32768, Q16 has it as 65536. All products are of
// 16-bit integers with a sign, so that the vector implementations multiply as many at a time as there are.
#pragma once

#include <cstdint>

namespace rvk::lab {

// A polynomial with a variable and coefficients in Q15, the constant first. Horner's scheme rounds each product; only
// the root of 1 comes out above 16 bits, and is clamped.
template <int degree>
struct Polynomial
{
    int16_t coefficients[degree + 1];
};

// ---- linear light, Q15, of a byte; the variable is byte / 128 - 1, with `kByteScale` the byte's weight in Q15 -------

constexpr int16_t kByteScale = 256;
// Below this, light is proportional to the byte: 32768 / (255 * 12.92) for each.
constexpr int16_t kPowerStart = (11 - 128) * kByteScale;
constexpr int16_t kDarkSlope = 1273; // 9.946 for a byte
// From there on the power 2.4; where the cube root is steep, within 2^-14.
constexpr Polynomial<4> kPower = {{7068, 15297, 9714, 1207, -242}};

// ---- X, Y and Z, Q16, of linear red, green and blue -----------------------------------------------------------------
// The sum of three products, each rounded: Q15 has the shares of what white has, twice because of Q16.

constexpr uint16_t kShares[3][3] = {{28435, 24656, 12445}, {13933, 46871, 4732}, {1161, 7174, 57201}};

// ---- f, Q15, of X, Y and Z ------------------------------------------------------------------------------------------
// A cube root down to kCubeStart; from there on down a line: root(max(t, start)) - slope * max(start - t, 0).

constexpr uint16_t kCubeStart = 580; // (6/29)^3, Q16

// 1 / (3 * (6/29)^2) for each, with Q15 for Q16, of numbers shifted by kLineShift.
constexpr unsigned kLineShift = 5;
constexpr int16_t kLineSlope = 3987;

// The root of 1/4 to 1, within 2^-13. Below, 16 times t or 4 times t or both lie there, and their roots are scaled
// back. The variable is t - 5/8, in 1/65536 as if they were Q15.
constexpr uint16_t kSixteenth = 4096, kQuarter = 16384, kRootCentre = 40960;
constexpr int16_t kRootOfSixteenth = 13004, kRootOfQuarter = 20643; // Q15
constexpr Polynomial<5> kRoot = {{28015, 7478, -1945, 810, -675, 473}};

// ---- L, a and b, of differences of f --------------------------------------------------------------------------------

// L in units of 1/64: 116 * 2.55 for f, less 16 * 2.55.
constexpr unsigned kLightnessShift = 6;
constexpr int16_t kLightness = 18931, kLightnessBase = -2611;
constexpr int16_t kA = 500, kB = 200, kNeutral = 128;

} // namespace rvk::lab

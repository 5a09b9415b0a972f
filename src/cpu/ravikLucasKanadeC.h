// Lucas-Kanade tracking: all but the work on windows, which either room brings.
#pragma once

#include <ravik/lucaskanade.h>

#include <cstddef>

namespace rvk {

// Rows of windows have room for whole vectors, which may be read beyond the last column.
constexpr size_t kLucasKanadeLanes = 16;

// Pixels as floats; samples lie to the right of pixels and below them by fractions, multiples of 2^-16.
struct LucasKanadePatch
{
    const float32_t* pixels;
    size_t pitch; // elements between rows
    float32_t right, below;
};

// A window of the first picture: its samples and their derivatives.
struct LucasKanadeWindow
{
    size_t columns, rows;
    const float32_t* values;
    size_t valuePitch;
    const float32_t *dx, *dy;
    size_t pitch;
};

// The kernels for pixels of T. Sums are those down each column of the window, in the order of its rows.
template <class T>
struct LucasKanadeKernels
{
    // Of a part of a picture.
    void (*toFloats)(const T* src, uint32_t srcStride, size_t width, size_t height, float32_t* dst, size_t dstPitch);
    // The samples a + f (b - a), to the right first, then below.
    void (*sample)(const LucasKanadePatch& patch, size_t width, size_t height, float32_t* dst, size_t dstPitch);
    void (*sumSquares)(const LucasKanadeWindow& window, float32_t* xx, float32_t* xy, float32_t* yy);
    void (*sumDifferences)(const LucasKanadeWindow& window, const LucasKanadePatch& patch, float32_t* x, float32_t* y);
    void (*sumErrors)(const LucasKanadeWindow& window, const LucasKanadePatch& patch, float32_t* errors);
};

struct LucasKanadePoints
{
    const float32_t* points1;
    float32_t* points2; // where the search begins, too, if `useGuess` says so
    uint32_t count;
    uint8_t* status;
    float32_t* errors;
    uint32_t useGuess;
};

struct LucasKanadeSearch
{
    uint32_t width, height; // of the window
    uint32_t maxIterations;
    float32_t epsilon, minEigenvalue;
};

// For pixels of uint8_t, with levels of either kind, and of float32_t, packed.
template <class T, class Level>
rvkStatus trackPoints(const LucasKanadeKernels<T>& kernels, const Level* pyr1, const Level* pyr2, uint32_t numLevels,
                      const LucasKanadePoints& points, const LucasKanadeSearch& search);

} // namespace rvk

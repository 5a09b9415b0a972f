// What the reference and the vector implementation of the correlation of patches share: where patches are tried, and
// what becomes of the best.
//
// A place is that of a window's first pixel; positions, as users count them, are half a patch to the right and below.
#pragma once

#include <ravik/ncc.h>

#include <cstdint>

namespace rvk {

constexpr uint32_t kNccSide = 8; // of the patches around a point
constexpr uint32_t kMostNccPixels = 65536;

struct NccImage
{
    const uint8_t* data;
    uint32_t width, height, stride;
};

// The places from (left, top) to before (right, bottom), all in the picture; with a circle those alone whose distance
// from its centre is at most its radius. None of them is farther away in one direction.
struct NccArea
{
    uint32_t left, top, right, bottom;
    bool isCircle;
    int64_t centerX, centerY;
    uint32_t radius;
};

struct NccPoint
{
    uint32_t x, y;
};

NccArea nccCircle(const NccImage& src, NccPoint center, uint32_t radius);
NccArea nccSquare(const NccImage& src, NccPoint center, uint32_t radius);
NccArea nccRectangle(const NccImage& patch, const NccImage& src, NccPoint first, uint32_t width, uint32_t height);

// Of the pixels of a patch or of a window. There are so few that 32 bits hold both.
struct NccSums
{
    uint32_t values, squares;
};
NccSums nccSumsOf(const NccImage& patch);
int64_t nccSpread(const NccSums& sums, uint32_t n); // n^2 times the variance of n pixels

double nccScore(int64_t covariance, int64_t patchSpread, int64_t spread);

// The best place so far, if there is any.
struct NccBest
{
    double score;
    uint32_t x, y;
    bool exists;
};

// Stores the position; whether there is one.
bool storeNccBest(const NccBest& best, const NccImage& patch, uint32_t* bestX, uint32_t* bestY, float32_t* bestScore);

} // namespace rvk

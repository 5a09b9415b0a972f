// What the reference and the vector implementation of the moments share.
#pragma once

#include <ravik/moments.h>

#include <cstddef>
#include <cstdint>

namespace rvk {

constexpr uint32_t kMomentTile = 32; // width and height

struct RawMoments
{
    double m00, m10, m01, m20, m11, m02, m30, m21, m12, m03;
};

// Sums down the columns of a tile: those of order q have the weights y^q.
template <class Sum>
using MomentColumns = Sum[4][kMomentTile];

// The moments of the columns from `first` to `end` - 1 of a tile, which begins at `first`.
RawMoments momentsOfColumns(const MomentColumns<float32_t>& columns, size_t first, size_t end);
// The same up to the first order, the rest 0.
RawMoments firstMomentsOfColumns(const MomentColumns<float32_t>& columns, size_t first, size_t end);

// The moments of a tile whose first pixel is at (x, y) instead, by the binomial theorem: sums of v * (x + tx)^p *
// (y + ty)^q over its pixels (tx, ty). Of one tile, or of several in vectors.
template <class Moments, class Number>
inline __attribute__((always_inline)) Moments movedTile(const Moments& tile, Number x, Number y)
{
    Moments m;
    m.m00 = tile.m00;
    m.m10 = tile.m10 + x * tile.m00;
    m.m01 = tile.m01 + y * tile.m00;
    m.m20 = tile.m20 + x * (2 * tile.m10 + x * tile.m00);
    m.m11 = tile.m11 + x * tile.m01 + y * (tile.m10 + x * tile.m00);
    m.m02 = tile.m02 + y * (2 * tile.m01 + y * tile.m00);
    m.m30 = tile.m30 + x * (3 * tile.m20 + x * (3 * tile.m10 + x * tile.m00));
    m.m21 = tile.m21 + x * (2 * tile.m11 + x * tile.m01) + y * (tile.m20 + x * (2 * tile.m10 + x * tile.m00));
    m.m12 = tile.m12 + y * (2 * tile.m11 + y * tile.m10) + x * (tile.m02 + y * (2 * tile.m01 + y * tile.m00));
    m.m03 = tile.m03 + y * (3 * tile.m02 + y * (3 * tile.m01 + y * tile.m00));
    return m;
}

// Adds the moments of a tile whose first pixel is at (x, y).
void addTile(RawMoments& sums, const RawMoments& tile, uint32_t x, uint32_t y);

void storeMoments(const RawMoments& raw, rvkMoments* moments);

} // namespace rvk

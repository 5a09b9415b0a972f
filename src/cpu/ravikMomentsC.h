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

// Adds the moments of a tile whose first pixel is at (x, y).
void addTile(RawMoments& sums, const RawMoments& tile, uint32_t x, uint32_t y);

void storeMoments(const RawMoments& raw, rvkMoments* moments);

} // namespace rvk

// Vector implementations of the sums of absolute differences.
#include "vecta/simd/distances.h"
#include "vecta/vecta.h"

#include <ravik/sad.h>

namespace rvk::vecta::RVK_ISA {
namespace {

template <size_t size>
RVK_INLINE uint32_t blockDistance(const uint8_t* block1, uint32_t stride1, const uint8_t* block2, uint32_t stride2)
{
    return distanceOfBlocks<size>(block1, stride1, block2, stride2);
}

template <size_t size>
RVK_INLINE void patchDistances(const uint8_t* patch, uint32_t width, uint32_t height, Plane<const uint8_t> src,
                               Plane<uint16_t> dst)
{
    distancesInPicture<size>(patch, width, height, src, dst);
}

// Rows of 16 pixels, as many as a vector holds.
constexpr size_t kRows = kBytes / 16;

RVK_INLINE Vec<uint8_t> loadRowsOf16(const uint8_t* p, size_t stride)
{
    if constexpr (kRows == 1)
        return load(p);
    uint8_t rows[kBytes];
    for (size_t y = 0; y < kRows; ++y)
        __builtin_memcpy(rows + 16 * y, p + y * stride, 16);
    return load(rows);
}

} // namespace

// ---- kernels of block matching ------------------------------------------------------------------

uint32_t calculateBlockSum16x16V(const uint8_t* block, uint32_t stride)
{
    Vec<uint32_t> sums = zero<uint32_t>();
    for (size_t y = 0; y < 16; y += kRows)
        sums = addBytesTo(sums, loadRowsOf16(block + y * stride, stride));
    return reduceAdd(sums);
}

uint32_t calculateBlockSAD_ZeroMean16x16V(const uint8_t* block1, const uint8_t* block2, uint32_t stride,
                                          uint32_t* mean2)
{
    *mean2 = calculateBlockSum16x16V(block2, stride) >> 8;
    const Vec<int16_t> shift = splat(static_cast<int16_t>((calculateBlockSum16x16V(block1, stride) >> 8) - *mean2));
    Vec<uint16_t> sums = zero<uint16_t>(); // 32 distances below 512 at most
    for (size_t y = 0; y < 16; y += kRows) {
        const Vecs<int16_t, 2> differences =
            subtractWide(loadRowsOf16(block1 + y * stride, stride), loadRowsOf16(block2 + y * stride, stride));
        unrolled<2>([&](auto i)
                        RVK_INLINE_LAMBDA { sums = sums + bitCast<uint16_t>(distance(differences[i], shift)); });
    }
    return reduceAdd(sums);
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikSadForms.h"

// Vector implementations of the statistics of grey values, and of pictures changed by tables of them.
#include "cpu/ravikStatisticsC.h"
#include "vecta/simd/histogram.h"
#include "vecta/simd/runningSums.h"
#include "vecta/simd/tables.h"
#include "vecta/vecta.h"

#include <ravik/statistics.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// Adds the moments of n pixels, at most as many as all of them hold. Several are filled in turn, because an addition
// takes longer than the pixels of a vector do.
constexpr size_t kMoments = 4;
constexpr size_t kMostPixels = ByteMoments::most * kMoments * kBytes;

RVK_INLINE void addMoments(const uint8_t* p, size_t n, PixelSums& sums)
{
    constexpr size_t step = kMoments * kBytes;
    ByteMoments moments[kMoments];
    for (; n >= step; n -= step)
        unrolled<kMoments / 2>([&](auto i) RVK_INLINE_LAMBDA {
            const Pair<Vec<uint8_t>> two = loadTwo(p);
            moments[2 * i].add(two.first);
            moments[2 * i + 1].add(two.second);
        });
    for (; n >= kBytes; n -= kBytes, p += kBytes)
        moments[0].add(load(p));
    if (n)
        moments[1].add(loadPartial(p, n));
    unrolled<kMoments>([&](auto i) RVK_INLINE_LAMBDA {
        sums.sum += moments[i].sum();
        sums.squares += moments[i].squares();
    });
}

RVK_NOINLINE PixelSums sumsOf(size_t width, size_t height, Plane<const uint8_t> src)
{
    PixelSums sums = {uint64_t{width} * height, 0, 0};
    if (src.packed(width)) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; x += kMostPixels)
            addMoments(src.row(y) + x, least(kMostPixels, width - x), sums);
    return sums;
}

RVK_INLINE void countPixels(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    countBytes(width, height, src, histogram);
}

RVK_NOINLINE void lookUp(size_t width, size_t height, Plane<const uint8_t> src, const uint8_t (&table)[256],
                         Plane<uint8_t> dst)
{
    constexpr size_t together = 4;
    const SharedTable prepared = prepareShared(table);
    if (src.packed(width) && dst.packed(width)) {
        width *= height;
        height = 1;
    }
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* in = src.row(y);
        uint8_t* out = dst.row(y);
        size_t left = anyNumber(width);
        for (; left >= together * kBytes; left -= together * kBytes) {
            store(out, lookup(prepared, loadVecs<together>(in)));
            in += together * kBytes;
            out += together * kBytes;
        }
        mapRow(
            left, out, [&](Vec<uint8_t> v) RVK_INLINE_LAMBDA { return lookup(prepared, v); }, in);
    }
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikStatisticsForms.h"

// C references of edge pixels and line segments.
#include "cpu/ravikLineSegmentC.h"

#include "cpu/thinning.h"
#include "functions.h"
#include "scratch.h"

#include <cmath>

namespace rvk {

rvkStatus rvkImageDetectEdgePixelsu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                      uint32_t threshold, uint32_t* xy, uint32_t nPixelsMax, uint32_t* nPixels,
                                      int16_t* gradients)
{
    const Scratch<int16_t> dx(srcHeight, srcWidth), dy(srcHeight, srcWidth);
    const Scratch<uint32_t> magnitudes(kRowsOfThinning, uint64_t{srcWidth} + 2);
    if (!dx || !dy || !magnitudes)
        return RAVIK_ENORES;
    const uint32_t stride = srcWidth * 2;
    rvkFilterSobel3x3u8s16C(src, srcWidth, srcHeight, srcStride, dx.get(), dy.get(), stride, RAVIK_BORDER_REPLICATE, 0);
    const Plane<const int16_t> planeDx = {dx.get(), stride}, planeDy = {dy.get(), stride};
    uint32_t count = 0;
    forEachRidge(srcWidth, srcHeight, planeDx, planeDy, false, threshold, magnitudes.get(),
                 [&](size_t x, size_t y, uint32_t) {
                     if (count == nPixelsMax)
                         return;
                     xy[2 * size_t{count}] = static_cast<uint32_t>(x);
                     xy[2 * size_t{count} + 1] = static_cast<uint32_t>(y);
                     if (gradients) {
                         gradients[2 * size_t{count}] = planeDx.row(y)[x];
                         gradients[2 * size_t{count} + 1] = planeDy.row(y)[x];
                     }
                     ++count;
                 });
    *nPixels = count;
    return RAVIK_SUCCESS;
}

// ---- line segments -------------------------------------------------------------------------------------------------

namespace {

// The eighth of the full circle that the gradient points to: floor(angle / 45 degrees).
uint8_t eighthOf(int32_t dx, int32_t dy)
{
    uint8_t quarter = 0;
    for (; dx <= 0 || dy < 0; ++quarter) { // turned back by 90 degrees until it is in the first quarter
        const int32_t oldDx = dx;
        dx = dy;
        dy = -oldDx;
    }
    return static_cast<uint8_t>(2 * quarter + (dy >= dx));
}

// The multiple of 45 degrees that is nearest to the gradient's direction.
uint8_t nearestEighthOf(int32_t dx, int32_t dy)
{
    const int32_t x = std::abs(dx), y = std::abs(dy);
    if (y * 32768 <= x * kTan22)
        return dx > 0 ? 0 : 4;
    if (y * 32768 > x * (kTan22 + 65536))
        return dy > 0 ? 2 : 6;
    if (dy > 0)
        return dx > 0 ? 1 : 3;
    return dx > 0 ? 7 : 5;
}

constexpr uint32_t kNone = UINT32_MAX;
constexpr uint32_t kPartitions = 2;

// A pixel as a member of a support region, and the region of which it is the first.
struct Support
{
    uint32_t region; // its first pixel; while regions are joined, one before this in the same region
    uint8_t sector;
    uint32_t size, votes;
    uint32_t lastVoter;
};

struct Pixel
{
    Support in[kPartitions];
    uint32_t nextVoter; // for the same region

    uint32_t larger(const Pixel* pixels) const
    {
        return pixels[in[0].region].in[0].size >= pixels[in[1].region].in[1].size ? 0 : 1;
    }
};

uint32_t firstOf(Pixel* pixels, uint32_t pixel, uint32_t partition)
{
    while (pixels[pixel].in[partition].region != pixel) {
        uint32_t& region = pixels[pixel].in[partition].region;
        region = pixels[region].in[partition].region; // halves the path
        pixel = region;
    }
    return pixel;
}

void join(Pixel* pixels, uint32_t a, uint32_t b, uint32_t partition)
{
    if (pixels[a].in[partition].sector != pixels[b].in[partition].sector)
        return;
    const uint32_t firstOfA = firstOf(pixels, a, partition), firstOfB = firstOf(pixels, b, partition);
    pixels[std::max(firstOfA, firstOfB)].in[partition].region = std::min(firstOfA, firstOfB);
}

// Parts the pixels into support regions. `columns` is memory for two rows of columns, with one more at each end.
void formRegions(const EdgePixels& edges, uint32_t width, uint32_t* columns, Pixel* pixels)
{
    const size_t pitch = size_t{width} + 2;
    std::fill_n(columns, 2 * pitch, kNone);
    // The pixel in this column of this row or of the one above it; columns are counted from 1.
    const auto entry = [&](uint32_t y, size_t column) -> uint32_t& { return columns[y % 2 * pitch + column]; };
    for (uint32_t i = 0; i < edges.count; ++i) {
        const size_t at = 2 * size_t{i};
        const uint32_t y = edges.xy[at + 1];
        const size_t column = size_t{edges.xy[at]} + 1;
        const int16_t dx = edges.gradients[at], dy = edges.gradients[at + 1];
        pixels[i] = {{{i, eighthOf(dx, dy), 0, 0, kNone}, {i, nearestEighthOf(dx, dy), 0, 0, kNone}}, kNone};
        const auto joinWith = [&](uint32_t neighbour, uint32_t row) {
            if (neighbour == kNone || edges.xy[2 * size_t{neighbour} + 1] != row) // one of an older row
                return;
            for (uint32_t partition = 0; partition < kPartitions; ++partition)
                join(pixels, neighbour, i, partition);
        };
        joinWith(entry(y, column - 1), y);
        for (size_t above = column - 1; y > 0 && above <= column + 1; ++above)
            joinWith(entry(y - 1, above), y - 1);
        entry(y, column) = i;
    }
    for (uint32_t i = 0; i < edges.count; ++i) // regions point to pixels that are done
        for (uint32_t partition = 0; partition < kPartitions; ++partition) {
            uint32_t& region = pixels[i].in[partition].region;
            region = pixels[region].in[partition].region;
            ++pixels[region].in[partition].size;
        }
}

// Each pixel votes; the voters for a region become a list that begins with the first of them.
void vote(Pixel* pixels, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t partition = pixels[i].larger(pixels);
        Support& region = pixels[pixels[i].in[partition].region].in[partition];
        if (region.votes++ > 0)
            pixels[region.lastVoter].nextVoter = i;
        region.lastVoter = i;
    }
}

// Sums over the voters for a region. Those of coordinates are relative to the first voter: integers that double holds
// exactly for all regions but absurd ones.
struct Moments
{
    double n = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0, dx = 0, dy = 0;
};

// The direction of the best line, half of atan2(2 cxy, cxx - cyy), -90 to 90 degrees. Square roots alone have the same
// bits everywhere.
struct Axis
{
    double cosine, sine;

    explicit Axis(const Moments& m)
    {
        const double difference = (m.n * m.xx - m.x * m.x) - (m.n * m.yy - m.y * m.y);
        const double twice = 2 * (m.n * m.xy - m.x * m.y);
        const double length = std::sqrt(difference * difference + twice * twice);
        if (length == 0) {
            cosine = 1;
            sine = 0;
        } else if (difference >= 0) {
            cosine = std::sqrt((length + difference) / (2 * length));
            sine = twice / (2 * length * cosine);
        } else {
            const double size = std::sqrt((length - difference) / (2 * length));
            sine = twice < 0 ? -size : size;
            cosine = twice / (2 * length * sine);
        }
    }
};

// Calls visit(x, y, index) for the voters from the first on, with coordinates relative to it.
template <class Visit>
void forEachVoter(const EdgePixels& edges, const Pixel* pixels, uint32_t first, Visit visit)
{
    const auto at = [&](uint32_t i, size_t coordinate) {
        return static_cast<double>(edges.xy[2 * size_t{i} + coordinate]);
    };
    const double originX = at(first, 0), originY = at(first, 1);
    for (uint32_t i = first; i != kNone; i = pixels[i].nextVoter)
        visit(at(i, 0) - originX, at(i, 1) - originY, i);
}

struct FittedSegment
{
    rvkLineSegment segment;
    double length, error;
};

FittedSegment fitSegment(const EdgePixels& edges, const Pixel* pixels, uint32_t first)
{
    Moments m;
    forEachVoter(edges, pixels, first, [&](double x, double y, uint32_t i) {
        m.n += 1;
        m.x += x;
        m.y += y;
        m.xx += x * x;
        m.xy += x * y;
        m.yy += y * y;
        m.dx += edges.gradients[2 * size_t{i}];
        m.dy += edges.gradients[2 * size_t{i} + 1];
    });
    Axis axis(m);
    if (axis.cosine * m.dy - axis.sine * m.dx < 0) { // the brighter side is on the left
        axis.cosine = -axis.cosine;
        axis.sine = -axis.sine;
    }
    const double meanX = m.x / m.n, meanY = m.y / m.n;
    double start = 0, end = 0, squares = 0;
    forEachVoter(edges, pixels, first, [&](double x, double y, uint32_t) {
        const double along = (x - meanX) * axis.cosine + (y - meanY) * axis.sine;
        const double across = (y - meanY) * axis.cosine - (x - meanX) * axis.sine;
        start = std::min(start, along);
        end = std::max(end, along);
        squares += across * across;
    });
    const double centreX = edges.xy[2 * size_t{first}] + meanX, centreY = edges.xy[2 * size_t{first} + 1] + meanY;
    const auto xAt = [&](double along) { return static_cast<float32_t>(centreX + along * axis.cosine); };
    const auto yAt = [&](double along) { return static_cast<float32_t>(centreY + along * axis.sine); };
    return {{xAt(start), yAt(start), xAt(end), yAt(end), static_cast<uint32_t>(m.n)},
            end - start,
            std::sqrt(squares / m.n)};
}

} // namespace

rvkStatus findLineSegments(const EdgePixels& edges, uint32_t width, float32_t minLength, float32_t maxError,
                           rvkLineSegment* segments, uint32_t nSegmentsMax, uint32_t* nSegments)
{
    const Scratch<uint32_t> columns(2, uint64_t{width} + 2);
    const Scratch<Pixel> pixels(uint64_t{edges.count} + 1);
    if (!columns || !pixels)
        return RAVIK_ENORES;
    formRegions(edges, width, columns.get(), pixels.get());
    vote(pixels.get(), edges.count);

    uint32_t found = 0;
    for (uint32_t i = 0; i < edges.count && found < nSegmentsMax; ++i) {
        const uint32_t partition = pixels[i].larger(pixels.get());
        Support& region = pixels[pixels[i].in[partition].region].in[partition];
        if (uint64_t{region.votes} * 2 <= region.size)
            continue;
        region.votes = 0; // this voter was the first
        const FittedSegment fitted = fitSegment(edges, pixels.get(), i);
        if (fitted.length >= minLength && fitted.error <= maxError)
            segments[found++] = fitted.segment;
    }
    *nSegments = found;
    return RAVIK_SUCCESS;
}

} // namespace rvk

#include "forms/ravikLineSegmentForms.h"

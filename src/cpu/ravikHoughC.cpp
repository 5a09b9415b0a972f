// C references of the Hough transforms.
#include "cpu/ravikHoughC.h"

#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>

namespace rvk {

namespace {

// The nearest integer, halves to the even one, of numbers below 2^31: a sum of this size has no fraction. (The library's
// functions are calls.)
int32_t roundedToEven(double v)
{
    constexpr double large = 6755399441055744; // 3 * 2^51
    return static_cast<int32_t>(v + large - large);
}

} // namespace

// ---- lines ---------------------------------------------------------------------------------------------------------

HoughAngle houghAngle(uint32_t k, uint32_t nAngles, float32_t rhoStep)
{
    const double theta = k * std::numbers::pi / nAngles;
    return {roundedToEven(32768 * std::cos(theta) / rhoStep), roundedToEven(32768 * std::sin(theta) / rhoStep)};
}

int32_t houghReach(uint32_t width, uint32_t height, float32_t rhoStep)
{
    // Rounding moves a pixel by up to half a bin for c and s and by half a bin for itself.
    return static_cast<int32_t>(std::hypot(width, height) / rhoStep) + 2;
}

bool houghBinsFit(uint32_t nAngles, int32_t reach)
{
    const uint64_t binsOfAngle = 2 * static_cast<uint64_t>(reach) + 1;
    return nAngles * binsOfAngle <= UINT32_MAX / sizeof(uint32_t);
}

namespace {

int32_t binOf(const rvkLine& line)
{
    return std::bit_cast<int32_t>(line.rho);
}

uint32_t angleOf(const rvkLine& line)
{
    return std::bit_cast<uint32_t>(line.theta);
}

bool isStronger(const rvkLine& a, const rvkLine& b)
{
    if (a.votes != b.votes)
        return a.votes > b.votes;
    if (angleOf(a) != angleOf(b))
        return angleOf(a) < angleOf(b);
    return binOf(a) < binOf(b);
}

} // namespace

void StrongestLines::offer(uint32_t k, int32_t r, uint32_t votes)
{
    const rvkLine line = {std::bit_cast<float32_t>(r), std::bit_cast<float32_t>(k), votes};
    if (m_count == m_capacity) {
        if (m_capacity == 0 || !isStronger(line, m_lines[0]))
            return;
        std::pop_heap(m_lines, m_lines + m_count--, isStronger);
    }
    m_lines[m_count++] = line;
    std::push_heap(m_lines, m_lines + m_count, isStronger);
}

uint32_t StrongestLines::finish(uint32_t nAngles, float32_t rhoStep)
{
    std::sort_heap(m_lines, m_lines + m_count, isStronger);
    for (uint32_t i = 0; i < m_count; ++i) {
        rvkLine& line = m_lines[i];
        line.rho = static_cast<float32_t>(binOf(line) * double{rhoStep});
        line.theta = static_cast<float32_t>(angleOf(line) * std::numbers::pi / nAngles);
    }
    return m_count;
}

void irvkHoughAccumulateAreaC(const uint32_t* pixels, uint32_t nPixels, int32_t c, int32_t s, uint32_t* votes)
{
    for (uint32_t i = 0; i < nPixels; ++i) {
        const auto x = static_cast<int32_t>(pixels[i] & 0xffff), y = static_cast<int32_t>(pixels[i] >> 16);
        ++votes[(x * c + y * s + 16384) >> 15];
    }
}

namespace {

// The bins of all angles, `reach` on either side of bin 0.
struct HoughBins
{
    uint32_t* votes;
    uint32_t nAngles;
    int32_t reach;

    uint32_t* zeroOf(uint32_t k) const { return votes + size_t{k} * (2 * static_cast<size_t>(reach) + 1) + reach; }
};

} // namespace

rvkStatus rvkHoughLineu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                          uint32_t nAngles, float32_t rhoStep, uint32_t threshold, rvkLine* lines, uint32_t nLinesMax,
                          uint32_t* nLines)
{
    const int32_t reach = houghReach(srcWidth, srcHeight, rhoStep);
    const uint64_t binsOfAngle = 2 * static_cast<uint64_t>(reach) + 1;
    const Scratch<uint32_t> votes(nAngles, binsOfAngle), pixels(srcHeight, srcWidth);
    if (!votes || !pixels)
        return RAVIK_ENORES;

    uint32_t nPixels = 0;
    const Plane source = {src, srcStride};
    for (uint32_t y = 0; y < srcHeight; ++y)
        for (uint32_t x = 0; x < srcWidth; ++x)
            if (source.row(y)[x])
                pixels[nPixels++] = x | y << 16;

    std::fill_n(votes.get(), nAngles * static_cast<size_t>(binsOfAngle), 0u);
    const HoughBins bins = {votes.get(), nAngles, reach};
    for (uint32_t k = 0; k < nAngles; ++k) {
        const HoughAngle angle = houghAngle(k, nAngles, rhoStep);
        irvkHoughAccumulateAreaC(pixels.get(), nPixels, angle.c, angle.s, bins.zeroOf(k));
    }
    StrongestLines strongest(lines, nLinesMax);
    for (uint32_t k = 0; k < nAngles; ++k)
        for (int32_t r = -reach + 1; r < reach; ++r)
            if (bins.zeroOf(k)[r] >= threshold && isHoughPeak(bins, k, r))
                strongest.offer(k, r, bins.zeroOf(k)[r]);
    *nLines = strongest.finish(nAngles, rhoStep);
    return RAVIK_SUCCESS;
}

// ---- circles -------------------------------------------------------------------------------------------------------

HoughDirection houghDirection(int32_t dx, int32_t dy)
{
    const double length = std::sqrt(static_cast<double>(dx * dx + dy * dy));
    return {roundedToEven(65536.0 * dx / length), roundedToEven(65536.0 * dy / length)};
}

CircleChoice circleChoice(uint32_t width, uint32_t height, uint32_t minRadius, uint32_t maxRadius,
                          uint32_t centerThreshold, uint32_t minDistance)
{
    const uint32_t beyondAll = static_cast<uint32_t>(std::hypot(width, height)) + 2;
    return {std::min(minRadius, beyondAll), std::min(maxRadius, beyondAll), centerThreshold, minDistance};
}

void sortCentres(HoughCentre* centres, size_t count)
{
    std::sort(centres, centres + count, [](const HoughCentre& a, const HoughCentre& b) {
        if (a.score != b.score)
            return a.score > b.score;
        return a.y != b.y ? a.y < b.y : a.x < b.x;
    });
}

namespace {

uint64_t squaredDistance(uint32_t x1, uint32_t y1, uint32_t x2, uint32_t y2)
{
    const int64_t dx = int64_t{x1} - x2, dy = int64_t{y1} - y2;
    return static_cast<uint64_t>(dx * dx + dy * dy);
}

} // namespace

bool isFarEnough(const HoughCentre& centre, const rvkCircle* circles, uint32_t count, uint32_t minDistance)
{
    return std::all_of(circles, circles + count, [&](const rvkCircle& circle) {
        return squaredDistance(centre.x, centre.y, circle.x, circle.y) >= uint64_t{minDistance} * minDistance;
    });
}

rvkCircle bestCircle(const HoughCentre& centre, const CircleChoice& choice, const uint32_t* counts)
{
    rvkCircle best = {centre.x, centre.y, choice.minRadius, counts[0]};
    for (uint32_t radius = choice.minRadius; radius <= choice.maxRadius; ++radius) {
        const uint32_t support = counts[radius - choice.minRadius];
        if (uint64_t{support} * best.radius > uint64_t{best.support} * radius)
            best = {centre.x, centre.y, radius, support};
    }
    return best;
}

namespace {

// Numbers for the cells of a picture between two columns and two rows that stay 0.
struct HoughCells
{
    uint32_t* data;
    uint32_t width, height;

    size_t pitch() const { return size_t{width} + 2; }
    size_t size() const { return pitch() * (size_t{height} + 2); }
    uint32_t* at(size_t x, size_t y) const { return data + (y + 1) * pitch() + x + 1; }
};

// The votes of a pixel along a direction.
void castVotes(const HoughCells& votes, uint32_t x, uint32_t y, int64_t u, int64_t v, const CircleChoice& choice)
{
    const uint32_t* last = nullptr;
    for (int64_t r = choice.minRadius; r <= choice.maxRadius; ++r) {
        const int64_t column = (65536 * int64_t{x} + r * u + 32768) >> 16;
        const int64_t row = (65536 * int64_t{y} + r * v + 32768) >> 16;
        if (column < 0 || column >= votes.width || row < 0 || row >= votes.height)
            return;
        uint32_t* const cell = votes.at(static_cast<size_t>(column), static_cast<size_t>(row));
        if (cell != last)
            ++*cell;
        last = cell;
    }
}

void sumNeighbours(const HoughCells& votes, const HoughCells& scores)
{
    std::fill_n(scores.data, scores.size(), 0u);
    for (size_t y = 0; y < votes.height; ++y)
        for (size_t x = 0; x < votes.width; ++x)
            for (size_t row = y; row <= y + 2; ++row)
                for (size_t column = x; column <= x + 2; ++column)
                    *scores.at(x, y) += votes.data[row * votes.pitch() + column];
}

// take(centre) for each in raster order.
template <class Take>
void forEachCentre(const HoughCells& scores, uint32_t centerThreshold, Take take)
{
    const size_t pitch = scores.pitch();
    for (uint32_t y = 0; y < scores.height; ++y)
        for (uint32_t x = 0; x < scores.width; ++x) {
            const uint32_t *here = scores.at(x, y), *above = here - pitch, *below = here + pitch;
            const uint32_t before = std::max({above[-1], above[0], above[1], here[-1]});
            const uint32_t after = std::max({here[1], below[-1], below[0], below[1]});
            if (*here >= centerThreshold && *here > before && *here >= after)
                take(HoughCentre{x, y, *here});
        }
}

void countDistances(Plane<const uint8_t> edges, uint32_t width, uint32_t height, const HoughCentre& centre,
                    const CircleChoice& choice, uint32_t* counts)
{
    const auto first = [&](uint32_t c) { return c - std::min(c, choice.maxRadius); };
    const auto end = [&](uint32_t c, uint32_t size) { return c + std::min(size - 1 - c, choice.maxRadius) + 1; };
    for (uint32_t y = first(centre.y); y < end(centre.y, height); ++y)
        for (uint32_t x = first(centre.x); x < end(centre.x, width); ++x) {
            if (!edges.row(y)[x])
                continue;
            const auto squared = static_cast<double>(squaredDistance(x, y, centre.x, centre.y));
            const auto distance = static_cast<uint32_t>(std::sqrt(squared) + 0.5);
            if (distance >= choice.minRadius && distance <= choice.maxRadius)
                ++counts[distance - choice.minRadius];
        }
}

} // namespace

rvkStatus rvkHoughCircleu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                            uint32_t edgeThreshold, uint32_t minRadius, uint32_t maxRadius, uint32_t centerThreshold,
                            uint32_t minDistance, rvkCircle* circles, uint32_t nCirclesMax, uint32_t* nCircles)
{
    const CircleChoice choice = circleChoice(srcWidth, srcHeight, minRadius, maxRadius, centerThreshold, minDistance);
    const uint64_t pitch = uint64_t{srcWidth} + 2, rows = uint64_t{srcHeight} + 2;
    const Scratch<uint8_t> edgeBytes(srcHeight, srcWidth);
    const Scratch<int16_t> dx(srcHeight, srcWidth), dy(srcHeight, srcWidth);
    const Scratch<uint32_t> votesMemory(rows, pitch), scoresMemory(rows, pitch);
    const Scratch<uint32_t> counts(uint64_t{choice.maxRadius} - choice.minRadius + 1);
    if (!edgeBytes || !dx || !dy || !votesMemory || !scoresMemory || !counts)
        return RAVIK_ENORES;
    const Plane<const uint8_t> edges = {edgeBytes.get(), srcWidth};
    const HoughCells votes = {votesMemory.get(), srcWidth, srcHeight};
    const HoughCells scores = {scoresMemory.get(), srcWidth, srcHeight};

    const rvkStatus status =
        rvkFilterCannyu8C(src, srcWidth, srcHeight, srcStride, 3, static_cast<int32_t>(edgeThreshold / 2),
                          static_cast<int32_t>(edgeThreshold), RAVIK_CANNY_NORM_L1, edgeBytes.get(), srcWidth, dx.get(),
                          dy.get(), srcWidth * 2);
    if (status != RAVIK_SUCCESS)
        return status;
    std::fill_n(votes.data, votes.size(), 0u);
    for (uint32_t y = 0; y < srcHeight; ++y)
        for (uint32_t x = 0; x < srcWidth; ++x) {
            if (!edges.row(y)[x])
                continue;
            const size_t place = size_t{y} * srcWidth + x;
            const HoughDirection direction = houghDirection(dx[place], dy[place]);
            castVotes(votes, x, y, direction.u, direction.v, choice);
            castVotes(votes, x, y, -direction.u, -direction.v, choice);
        }
    sumNeighbours(votes, scores);

    size_t nCentres = 0;
    forEachCentre(scores, centerThreshold, [&](const HoughCentre&) { ++nCentres; });
    const Scratch<HoughCentre> centres(nCentres + 1);
    if (!centres)
        return RAVIK_ENORES;
    nCentres = 0;
    forEachCentre(scores, centerThreshold, [&](const HoughCentre& centre) { centres[nCentres++] = centre; });
    *nCircles = chooseCircles(centres.get(), nCentres, choice, circles, nCirclesMax, [&](const HoughCentre& centre) {
        std::fill_n(counts.get(), choice.maxRadius - choice.minRadius + 1, 0u);
        countDistances(edges, srcWidth, srcHeight, centre, choice, counts.get());
        return bestCircle(centre, choice, counts.get());
    });
    return RAVIK_SUCCESS;
}

} // namespace rvk

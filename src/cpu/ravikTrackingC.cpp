// C references of the trackers, and the searches that the vector implementations share.
#include "cpu/ravikTrackingC.h"

#include "cpu/image.h"
#include "dispatch.h"
#include "functions.h"

#include <cmath>

namespace rvk {

// ---- optical flow -------------------------------------------------------------------------------

namespace {

constexpr uint32_t kBlock = 16;

struct Place
{
    uint32_t x, y;

    bool operator==(const Place&) const = default;
};

// The places from `first` to `last`, both included, every `step` columns and rows.
template <class Visit>
void forPlaces(Place first, Place last, uint32_t step, Visit visit)
{
    for (uint64_t y = first.y; y <= last.y; y += step)
        for (uint64_t x = first.x; x <= last.x; x += step)
            visit(Place{static_cast<uint32_t>(x), static_cast<uint32_t>(y)});
}

uint32_t minus(uint32_t a, uint32_t b)
{
    return a > b ? a - b : 0;
}

uint32_t plus(uint32_t a, uint32_t b, uint32_t most)
{
    return static_cast<uint32_t>(std::min<uint64_t>(uint64_t{a} + b, most));
}

// Looks for one block.
class BlockMatch
{
public:
    BlockMatch(const Frames& frames, Place start)
        : m_frames(frames),
          m_block(frames.src1 + size_t{start.y} * frames.stride + start.x), m_last{frames.width - kBlock,
                                                                                   frames.height - kBlock},
          m_start(start), m_best(start), m_least(distanceAt(start)), m_largest(0)
    {
    }

    void search(const BlockSearch& area)
    {
        tryAll({minus(m_start.x, area.width), minus(m_start.y, area.height)},
               {plus(m_start.x, area.width, m_last.x), plus(m_start.y, area.height, m_last.y)}, area.step);
        if (area.step >= 2)
            tryAll({minus(m_best.x, 1), minus(m_best.y, 1)}, {plus(m_best.x, 1, m_last.x), plus(m_best.y, 1, m_last.y)},
                   1);
    }
    bool hasMoved(uint32_t sumOfBlock) const
    {
        return m_best != m_start && static_cast<float32_t>(sumOfBlock) * 0.5f > static_cast<float32_t>(m_least) &&
               m_least < m_largest >> 1;
    }
    Place best() const { return m_best; }

private:
    // By the library's own function, on the unit that it is on.
    uint32_t distanceAt(Place place) const
    {
        constexpr Slot sad = Slot::rvkSumOfAbsoluteDiff16x16u8;
        const uint8_t* const there = m_frames.src2 + size_t{place.y} * m_frames.stride + place.x;
        return implementation<sad>(chooseTarget(sad))(m_block, m_frames.stride, there, m_frames.stride);
    }
    void tryAll(Place first, Place last, uint32_t step)
    {
        forPlaces(first, last, step, [this](Place place) {
            const uint32_t distance = distanceAt(place);
            m_largest = std::max(m_largest, distance);
            if (distance < m_least) {
                m_least = distance;
                m_best = place;
            }
        });
    }

    const Frames& m_frames;
    const uint8_t* const m_block;
    const Place m_last, m_start;
    Place m_best;
    uint32_t m_least, m_largest;
};

// The number rounded up to a multiple, or the limit.
uint32_t roundedUp(uint32_t n, uint32_t unit, uint32_t limit)
{
    return static_cast<uint32_t>(std::min<uint64_t>((uint64_t{n} + unit - 1) / unit * unit, limit));
}

} // namespace

void trackBlocks(const BlockKernels& kernels, const Frames& frames, const BlockGrid& grid, const BlockSearch& search,
                 const MotionVectors& vectors)
{
    uint32_t count = 0;
    const Place first = {grid.left / grid.step * grid.step, grid.top / grid.step * grid.step};
    const Place last = {roundedUp(grid.right, grid.step, frames.width - kBlock),
                        roundedUp(grid.bottom, grid.step, frames.height - kBlock)};
    forPlaces(first, last, grid.step, [&](Place place) {
        const size_t offset = size_t{place.y} * frames.stride + place.x;
        const uint32_t sum = kernels.sum(frames.src1 + offset, frames.stride);
        uint32_t mean;
        const uint32_t change = kernels.zeroMeanSad(frames.src1 + offset, frames.src2 + offset, frames.stride, &mean);
        if (change < 1280 + sum * 8 / 100 || sum < 5120)
            return;
        BlockMatch match(frames, place);
        match.search(search);
        if (!match.hasMoved(sum))
            return;
        vectors.locX[count] = place.x;
        vectors.locY[count] = place.y;
        vectors.mvX[count] = match.best().x;
        vectors.mvY[count] = match.best().y;
        ++count;
    });
    *vectors.count = count;
}

// ---- mean shift ---------------------------------------------------------------------------------

namespace {

constexpr double kFarthest = 2147483648.0; // a step across any picture

int64_t roundedAwayFromZero(double number)
{
    return static_cast<int64_t>(number < 0 ? number - 0.5 : number + 0.5);
}

// The square of epsilon, rounded; 2^62 is more than the square of any step but the longest ones.
uint64_t limitOf(float32_t epsilon)
{
    const double square = epsilon * epsilon;
    return square >= 0 ? static_cast<uint64_t>(roundedAwayFromZero(std::min(square, 0x1p62))) : 0;
}

int32_t clampedPosition(int64_t position, uint32_t size)
{
    return static_cast<int32_t>(std::clamp<int64_t>(position, 0, int64_t{size} - 1));
}

int32_t clampedSize(int32_t size, uint32_t available)
{
    return static_cast<int32_t>(std::clamp<uint32_t>(static_cast<uint32_t>(size), 1, available));
}

bool areEqual(const rvkRectangle& a, const rvkRectangle& b)
{
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

// One step. Whether the search goes on.
template <class T>
bool shift(const WeightPicture<T>& picture, FirstMomentsOf<T> momentsOf, rvkRectangle& window, uint64_t limit)
{
    window.x = clampedPosition(window.x, picture.width);
    window.y = clampedPosition(window.y, picture.height);
    window.width = clampedSize(window.width, picture.width - static_cast<uint32_t>(window.x));
    window.height = clampedSize(window.height, picture.height - static_cast<uint32_t>(window.y));

    const FirstMoments m = momentsOf(picture.at(window), static_cast<uint32_t>(window.width),
                                     static_cast<uint32_t>(window.height), picture.stride);
    if (!(std::fabs(m.m00) >= 2.220446e-16f))
        return false;
    const double dx = static_cast<double>(m.m10 / m.m00) - window.width * 0.5;
    const double dy = static_cast<double>(m.m01 / m.m00) - window.height * 0.5;
    if (std::isnan(dx) || std::isnan(dy))
        return false;
    const int64_t right = roundedAwayFromZero(std::clamp(dx, -kFarthest, kFarthest));
    const int64_t down = roundedAwayFromZero(std::clamp(dy, -kFarthest, kFarthest));
    window.x = clampedPosition(window.x + right, picture.width);
    window.y = clampedPosition(window.y + down, picture.height);
    return static_cast<uint64_t>(right * right) + static_cast<uint64_t>(down * down) >= limit;
}

} // namespace

// A step follows from the window alone. So a window that comes again does so for ever, every so many steps: whole
// rounds of what is left of maxIterations change nothing. Windows are compared with one that was kept after 1, 2, 4,
// ... steps (Brent, "An Improved Monte Carlo Factorization Algorithm", 1980).
template <class T>
uint32_t meanShift(const WeightPicture<T>& picture, FirstMomentsOf<T> momentsOf, rvkRectangle* window,
                   uint32_t maxIterations, float32_t epsilon)
{
    const uint64_t limit = limitOf(epsilon);
    rvkRectangle kept = *window;
    uint32_t stepsSince = 0, keptSteps = 1;
    for (uint32_t left = maxIterations; left > 0;) {
        if (!shift(picture, momentsOf, *window, limit))
            return maxIterations - left; // no round has been left out: the search has no end then
        --left;
        ++stepsSince;
        if (areEqual(*window, kept)) {
            left %= stepsSince;
            stepsSince = 0;
        } else if (stepsSince == keptSteps) {
            kept = *window;
            keptSteps *= 2;
            stepsSince = 0;
        }
    }
    return maxIterations;
}

template uint32_t meanShift(const WeightPicture<uint8_t>&, FirstMomentsOf<uint8_t>, rvkRectangle*, uint32_t, float32_t);
template uint32_t meanShift(const WeightPicture<int32_t>&, FirstMomentsOf<int32_t>, rvkRectangle*, uint32_t, float32_t);
template uint32_t meanShift(const WeightPicture<float32_t>&, FirstMomentsOf<float32_t>, rvkRectangle*, uint32_t,
                            float32_t);

// ---- adaptive tracking --------------------------------------------------------------------------

namespace {

// From `first` to `last`, as far as they are in the picture, and at least a pixel of it.
void setClipped(double first, double last, uint32_t size, int32_t& position, int32_t& length)
{
    const double end = static_cast<double>(size) - 1;
    const double from = std::clamp(std::floor(first), 0.0, end), to = std::clamp(std::ceil(last), from, end);
    position = static_cast<int32_t>(from);
    length = static_cast<int32_t>(to - from) + 1;
}

// A side of an ellipse's box: 4 standard deviations.
float32_t sideOf(double variance)
{
    return static_cast<float32_t>(4 * std::sqrt(std::max(variance, 0.0)));
}

} // namespace

rvkRectangle grownWindow(const rvkRectangle& window, uint32_t pictureWidth, uint32_t pictureHeight)
{
    constexpr double growth = 10;
    rvkRectangle grown;
    setClipped(window.x - growth, double{1} * window.x + window.width - 1 + growth, pictureWidth, grown.x, grown.width);
    setClipped(window.y - growth, double{1} * window.y + window.height - 1 + growth, pictureHeight, grown.y,
               grown.height);
    return grown;
}

rvkRotatedBox boxAround(const rvkMoments& moments, const rvkRectangle& place, uint32_t pictureWidth,
                        uint32_t pictureHeight, rvkRectangle* window)
{
    const double mass = moments.m00;
    const double x = place.x + moments.m10 / mass, y = place.y + moments.m01 / mass;
    const double xx = moments.mu20 / mass, xy = moments.mu11 / mass, yy = moments.mu02 / mass; // variances
    if (!(mass > 0) || !std::isfinite(x + y + xx + xy + yy))
        return {};

    const double middle = (xx + yy) / 2, half = std::sqrt((xx - yy) * (xx - yy) / 4 + xy * xy);
    constexpr double degreesOfRadian = 180 / 3.14159265358979323846;
    const double degrees = std::atan2(2 * xy, xx - yy) / 2 * degreesOfRadian; // -90 to 90
    const auto angle = static_cast<float32_t>(degrees < 0 ? degrees + 180 : degrees);

    const double right = 2 * std::sqrt(std::max(xx, 0.0)), down = 2 * std::sqrt(std::max(yy, 0.0));
    setClipped(x - right, x + right, pictureWidth, window->x, window->width);
    setClipped(y - down, y + down, pictureHeight, window->y, window->height);
    return {static_cast<float32_t>(x), static_cast<float32_t>(y), sideOf(middle + half), sideOf(middle - half),
            angle < 180 ? angle : 0};
}

// ---- the references -----------------------------------------------------------------------------

namespace {

FirstMoments firstOf(const rvkMoments& moments)
{
    return {moments.m00, moments.m10, moments.m01};
}

FirstMoments firstMoments(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    rvkMoments moments;
    rvkImageMomentsu8C(src, width, height, stride, 0, &moments);
    return firstOf(moments);
}

FirstMoments firstMoments(const int32_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    rvkMoments moments;
    rvkImageMomentss32C(src, width, height, stride, 0, &moments);
    return firstOf(moments);
}

FirstMoments firstMoments(const float32_t* src, uint32_t width, uint32_t height, uint32_t stride)
{
    rvkMoments moments;
    rvkImageMomentsf32C(src, width, height, stride, 0, &moments);
    return firstOf(moments);
}

} // namespace

void rvkUpdateMotionHistoryu8s32C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                  int32_t* dst, uint32_t dstStride, int32_t timeStamp, int32_t maxHistory)
{
    const auto update = [=](uint8_t moves, int32_t stamp) {
        const auto end = static_cast<int32_t>(static_cast<uint32_t>(stamp) + static_cast<uint32_t>(maxHistory));
        return moves ? timeStamp : end < timeStamp ? 0 : stamp;
    };
    const Plane history{dst, dstStride};
    mapElements(srcWidth, srcHeight, history, update, Plane{src, srcStride}, history);
}

} // namespace rvk

#include "forms/ravikTrackingForms.h"

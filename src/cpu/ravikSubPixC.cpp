// C reference of the refinement of corners.
#include "cpu/ravikSubPixC.h"

#include "cpu/image.h"
#include "functions.h"
#include "scratch.h"

#include <cmath>
#include <cstring>

namespace rvk {
namespace {

constexpr uint32_t kMostIterations = 100;

struct Point
{
    float32_t x, y;
};

// A whole number and a fraction of it, rounded to a multiple of 2^-14: so numbers that samples are made of are never so
// small that some targets take them as 0.
struct Place
{
    int64_t whole;
    float32_t fraction;

    explicit Place(float32_t at)
    {
        constexpr float32_t unit = 16384;
        whole = static_cast<int64_t>(at);
        const auto rest = static_cast<int32_t>((at - static_cast<float32_t>(whole)) * unit + 0.5f);
        fraction = static_cast<float32_t>(rest) / unit; // 1 is as good
    }
};

// The weights of 2 * radius + 1 pixels.
void fillWeights(float32_t* weights, uint32_t radius)
{
    for (uint32_t i = 0; i <= radius; ++i) {
        const double distance = static_cast<double>(i) / radius;
        weights[radius - i] = weights[radius + i] = static_cast<float32_t>(std::exp(-distance * distance));
    }
}

struct DeadZone
{
    uint32_t radius;
    bool exists;

    // Where it begins among 2 * windowRadius + 1 pixels, and where it ends.
    size_t begin(uint32_t windowRadius) const { return exists ? windowRadius - std::min(radius, windowRadius) : 0; }
    size_t end(uint32_t windowRadius) const { return exists ? windowRadius + std::min(radius, windowRadius) + 1 : 0; }
};

// The memory of a search, and what of it is the same for all corners.
class Workspace
{
public:
    explicit Workspace(const SubPixSearch& search)
        : m_columns(2 * size_t{search.radiusX} + 1), m_rows(2 * size_t{search.radiusY} + 1),
          m_pitch((m_columns + kSubPixLanes - 1) / kSubPixLanes * kSubPixLanes), m_numbers(7, m_pitch),
          m_weights(m_rows), m_bytes(m_rows + 3, m_pitch + kSubPixLanes)
    {
        if (!*this)
            return;
        std::fill_n(m_numbers.get(), 7 * m_pitch, 0.0f);
        std::memset(m_bytes.get(), 0, (m_rows + 3) * (m_pitch + kSubPixLanes));
        fillWeights(columnWeights(), search.radiusX);
        fillWeights(m_weights.get(), search.radiusY);
        const bool isDead = search.deadRadiusX >= 0 && search.deadRadiusY >= 0;
        const DeadZone across = {static_cast<uint32_t>(search.deadRadiusX), isDead};
        const DeadZone down = {static_cast<uint32_t>(search.deadRadiusY), isDead};
        m_deadTop = down.begin(search.radiusY);
        m_deadBottom = down.end(search.radiusY);
        for (size_t column = 0; column < m_columns; ++column)
            isAlive()[column] = column < across.begin(search.radiusX) || column >= across.end(search.radiusX);
    }
    explicit operator bool() const { return m_numbers && m_weights && m_bytes; }

    SubPixWindow window() const
    {
        return {m_columns, m_rows, m_pitch, m_weights.get(), isAlive(), m_deadTop, m_deadBottom};
    }
    SubPixSums sums() const { return {array(2), array(3), array(4), array(5), array(6)}; }
    float32_t* columnWeights() const { return array(0); }

    // The patch around a window: of the picture where that has all its columns and those that vectors read, or a copy.
    SubPixPatch patchAround(const Plane<const uint8_t>& src, uint32_t width, uint32_t height, Point centre) const
    {
        const Place x(centre.x), y(centre.y);
        const size_t pitch = m_pitch + kSubPixLanes, columns = m_columns + 3, rows = m_rows + 3;
        const int64_t left = x.whole - static_cast<int64_t>(m_columns / 2) - 1;
        const int64_t top = y.whole - static_cast<int64_t>(m_rows / 2) - 1;
        const bool isInside = left >= 0 && left + static_cast<int64_t>(pitch) <= width;
        if (isInside && top >= 0 && top + static_cast<int64_t>(rows) <= height)
            return {src.row(static_cast<size_t>(top)) + left, src.stride, x.fraction, y.fraction};
        for (size_t row = 0; row < rows; ++row) {
            const int64_t nearest = std::clamp<int64_t>(top + static_cast<int64_t>(row), 0, int64_t{height} - 1);
            const uint8_t* from = src.row(static_cast<size_t>(nearest));
            uint8_t* to = m_bytes.get() + row * pitch;
            if (isInside)
                std::memcpy(to, from + left, columns);
            else
                for (size_t column = 0; column < columns; ++column)
                    to[column] = from[std::clamp<int64_t>(left + static_cast<int64_t>(column), 0, int64_t{width} - 1)];
        }
        return {m_bytes.get(), pitch, x.fraction, y.fraction};
    }

private:
    float32_t* array(size_t number) const { return m_numbers.get() + number * m_pitch; }
    float32_t* isAlive() const { return array(1); }

    size_t m_columns, m_rows, m_pitch;
    Scratch<float32_t> m_numbers, m_weights;
    Scratch<uint8_t> m_bytes;
    size_t m_deadTop = 0, m_deadBottom = 0;
};

struct Step
{
    double x, y;
    bool exists; // what the sums determine
};

// The way from the centre of a window to the point that is nearest to the lines along its grey values.
Step solve(const SubPixWindow& window, const float32_t* columnWeights, const SubPixSums& sums)
{
    float32_t xx = 0, xy = 0, yy = 0, x = 0, y = 0;
    for (size_t i = 0; i < window.columns; ++i) {
        const float32_t weight = columnWeights[i],
                        distance = static_cast<float32_t>(i) - static_cast<float32_t>(window.columns / 2);
        xx += sums.xx[i] * weight;
        xy += sums.xy[i] * weight;
        yy += sums.yy[i] * weight;
        x += (sums.xx[i] * distance + sums.xyTimesRow[i]) * weight;
        y += (sums.xy[i] * distance + sums.yyTimesRow[i]) * weight;
    }
    // Lines of one direction leave a determinant of rounding errors.
    constexpr double leastPart = 1.0 / 65536;
    const double a = xx, b = xy, c = yy, determinant = a * c - b * b;
    if (!(determinant > leastPart * a * c))
        return {};
    return {(c * x - b * y) / determinant, (a * y - b * x) / determinant, true};
}

// Where the search for a corner ends; where it began when it leads nowhere.
template <class StepFrom>
Point refined(Point given, uint32_t width, uint32_t height, const SubPixSearch& search, StepFrom stepFrom)
{
    const auto isInside = [&](Point p) {
        return p.x >= 0 && p.x <= static_cast<float32_t>(width - 1) && p.y >= 0 &&
               p.y <= static_cast<float32_t>(height - 1);
    };
    const auto isInWindow = [&](Point p) {
        return std::fabs(p.x - given.x) <= static_cast<float32_t>(search.radiusX) &&
               std::fabs(p.y - given.y) <= static_cast<float32_t>(search.radiusY);
    };
    if (!isInside(given))
        return given;
    Point at = given;
    const double epsilon = std::max(0.0, static_cast<double>(search.epsilon));
    for (uint32_t i = 0; i < std::min(search.maxIterations, kMostIterations); ++i) {
        const Step step = stepFrom(at);
        if (!step.exists)
            return given;
        at = {static_cast<float32_t>(at.x + step.x), static_cast<float32_t>(at.y + step.y)};
        if (!isInside(at) || !isInWindow(at))
            return given;
        if (step.x * step.x + step.y * step.y <= epsilon * epsilon)
            break;
    }
    return at;
}

} // namespace

rvkStatus refineCorners(SumSubPixColumns* sumColumns, const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                        uint32_t srcStride, float32_t* xy, uint32_t nCorners, const SubPixSearch& search)
{
    const Workspace workspace(search);
    if (!workspace)
        return RAVIK_ENORES;
    const SubPixWindow window = workspace.window();
    const SubPixSums sums = workspace.sums();
    for (size_t i = 0; i < nCorners; ++i) {
        const Point corner = refined({xy[2 * i], xy[2 * i + 1]}, srcWidth, srcHeight, search, [&](Point at) {
            sumColumns(window, workspace.patchAround({src, srcStride}, srcWidth, srcHeight, at), sums);
            return solve(window, workspace.columnWeights(), sums);
        });
        xy[2 * i] = corner.x;
        xy[2 * i + 1] = corner.y;
    }
    return RAVIK_SUCCESS;
}

namespace {

void sumColumns(const SubPixWindow& window, const SubPixPatch& patch, const SubPixSums& sums)
{
    const auto between = [](float32_t a, float32_t b, float32_t fraction) { return a + fraction * (b - a); };
    // The sample whose upper left byte this is.
    const auto sample = [&](size_t column, size_t row) {
        const uint8_t *p = patch.bytes + row * patch.pitch + column, *q = p + patch.pitch;
        return between(between(p[0], p[1], patch.right), between(q[0], q[1], patch.right), patch.below);
    };
    for (size_t column = 0; column < window.columns; ++column) {
        float32_t xx = 0, xy = 0, yy = 0, xyTimesRow = 0, yyTimesRow = 0;
        for (size_t row = 0; row < window.rows; ++row) {
            const bool mayBeDead = row >= window.deadTop && row < window.deadBottom;
            const float32_t weight = window.rowWeights[row] * (mayBeDead ? window.isAlive[column] : 1.0f);
            const float32_t distance = static_cast<float32_t>(row) - static_cast<float32_t>(window.rows / 2);
            const float32_t dx = sample(column + 2, row + 1) - sample(column, row + 1);
            const float32_t dy = sample(column + 1, row + 2) - sample(column + 1, row);
            const float32_t weightedX = dx * weight, weightedY = dy * weight;
            xx += weightedX * dx;
            xy += weightedX * dy;
            yy += weightedY * dy;
            xyTimesRow += weightedX * dy * distance;
            yyTimesRow += weightedY * dy * distance;
        }
        sums.xx[column] = xx;
        sums.xy[column] = xy;
        sums.yy[column] = yy;
        sums.xyTimesRow[column] = xyTimesRow;
        sums.yyTimesRow[column] = yyTimesRow;
    }
}

} // namespace

rvkStatus rvkCornerRefineSubPixu8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   float32_t* xy, uint32_t nCorners, uint32_t windowRadiusX, uint32_t windowRadiusY,
                                   int32_t deadRadiusX, int32_t deadRadiusY, uint32_t maxIterations, float32_t epsilon)
{
    return refineCorners(sumColumns, src, srcWidth, srcHeight, srcStride, xy, nCorners,
                         {windowRadiusX, windowRadiusY, deadRadiusX, deadRadiusY, maxIterations, epsilon});
}

} // namespace rvk

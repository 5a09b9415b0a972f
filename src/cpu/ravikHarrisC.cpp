// C references of the corner detectors.
#include "cpu/ravikHarrisC.h"

#include "cpu/image.h"
#include "functions.h"
#include "log.h"
#include "scratch.h"

#include <cmath>

namespace rvk {
namespace {

// ---- what becomes of corners ---------------------------------------------------------------------------------------

CornerArea areaWithin(const GreyImage& image, uint32_t border)
{
    constexpr uint32_t leastBorder = 5; // so that responses exist all around each corner
    border = std::max(border, leastBorder);
    if (uint64_t{border} * 2 >= std::min(image.width, image.height))
        return {};
    return {border, border, image.width - border, image.height - border};
}

class Lister final : public CornerTaker
{
public:
    explicit Lister(const CornerList& list) : m_list(list) {}

    bool take(uint32_t x, uint32_t y, int32_t response) override
    {
        if (m_list.mask && m_list.mask->excludes(x, y))
            return true;
        m_list.xy[2 * m_count] = x;
        m_list.xy[2 * m_count + 1] = y;
        if (m_list.scores)
            m_list.scores[m_count] = static_cast<uint32_t>(response);
        return ++m_count < m_list.most;
    }
    size_t count() const { return m_count; }
    void writeCount() const { *m_list.count = static_cast<uint32_t>(m_count); }

private:
    const CornerList& m_list;
    size_t m_count = 0;
};

template <class Taker, class Threshold>
rvkStatus list(CornerFinder<Threshold>* find, const GreyImage& image, uint32_t border, Threshold threshold,
               Taker& taker)
{
    const CornerArea area = areaWithin(image, border);
    const rvkStatus status = area.isEmpty() ? RAVIK_SUCCESS : find(image, area, threshold, taker);
    if (status == RAVIK_SUCCESS)
        taker.writeCount();
    return status;
}

// Chooses the threshold when it has seen all corners: `least`, and a distance from it that is halved until enough
// corners exceed both. A list has no corner that as many of its own halving precede as the list has room for.
class AdaptiveLister final : public CornerTaker
{
public:
    AdaptiveLister(const CornerList& list, const CornerArea& area, int32_t largest, int32_t least)
        : m_list(list), m_least(least), m_distance(static_cast<uint64_t>(int64_t{largest} - least)),
          m_room(std::max(list.most, 1u)), m_corners(std::min(mostCorners(area), kHalvings * m_room))
    {
    }
    explicit operator bool() const { return static_cast<bool>(m_corners); }

    bool take(uint32_t x, uint32_t y, int32_t response) override
    {
        const auto above = static_cast<uint64_t>(int64_t{response} - m_least);
        size_t halvings = 0;
        while (m_distance >> halvings >= above)
            ++halvings;
        if (m_counts[halvings]++ < m_room)
            m_corners[m_count++] = {x, y, response};
        return m_counts[0] < m_room; // or the first threshold will do
    }
    void list() const
    {
        const int64_t least = threshold();
        Lister lister(m_list);
        bool hasRoom = true;
        for (size_t i = 0; i < m_count && hasRoom; ++i) {
            const Corner& corner = m_corners[i];
            hasRoom = corner.response <= least || lister.take(corner.x, corner.y, corner.response);
        }
        lister.writeCount();
    }

private:
    struct Corner
    {
        uint32_t x, y;
        int32_t response;
    };
    static constexpr uint64_t kHalvings = 33; // of 32 bits, to 0

    // Corners are above all pixels of the 5x5 around them.
    static uint64_t mostCorners(const CornerArea& area)
    {
        return ((area.right - area.left + uint64_t{2}) / 3) * ((area.bottom - area.top + uint64_t{2}) / 3);
    }
    int64_t threshold() const
    {
        uint64_t found = m_counts[0];
        size_t halvings = 0;
        while (found < m_list.most && m_distance >> halvings)
            found += m_counts[++halvings];
        return m_least + static_cast<int64_t>(m_distance >> halvings);
    }

    const CornerList& m_list;
    int64_t m_least;
    uint64_t m_distance, m_room;
    uint64_t m_counts[kHalvings] = {};
    Scratch<Corner> m_corners;
    size_t m_count = 0;
};

class DistantLister final : public CornerTaker
{
public:
    DistantLister(const CornerList& list, float32_t minDistance)
        : m_list(list), m_lister(list), m_minSquare(minDistance > 1.0f ? minDistance * minDistance : 0.0f)
    {
    }

    bool take(uint32_t x, uint32_t y, int32_t response) override
    {
        return isNearAnother(x, y) || m_lister.take(x, y, response);
    }
    void writeCount() const { m_lister.writeCount(); }

private:
    // Corners come from the top down: from the first one that is too far above, all are, and corners that keep their
    // distance are few in the rows from there on.
    bool isNearAnother(uint32_t x, uint32_t y) const
    {
        for (size_t i = m_lister.count(); i-- > 0;) {
            const uint64_t dx = x - uint64_t{m_list.xy[2 * i]}, dy = y - m_list.xy[2 * i + 1];
            if (!(m_minSquare > static_cast<float32_t>(dy * dy)))
                return false;
            if (m_minSquare > static_cast<float32_t>(dx * dx + dy * dy))
                return true;
        }
        return false;
    }

    const CornerList& m_list;
    Lister m_lister;
    float32_t m_minSquare;
};

} // namespace

rvkStatus listCorners(CornerFinder<int32_t>* find, const GreyImage& image, uint32_t border, int32_t threshold,
                      const CornerList& corners)
{
    Lister lister(corners);
    return list(find, image, border, threshold, lister);
}

rvkStatus listCornersAdaptively(CornerFinder<int32_t>* find, const GreyImage& image, uint32_t border, int32_t threshold,
                                int32_t minThreshold, const CornerList& corners)
{
    const CornerArea area = areaWithin(image, border);
    if (threshold <= minThreshold || area.isEmpty())
        return listCorners(find, image, border, minThreshold, corners);
    AdaptiveLister lister(corners, area, threshold, minThreshold);
    const rvkStatus status = lister ? find(image, area, minThreshold, lister) : RAVIK_ENORES;
    if (status == RAVIK_SUCCESS)
        lister.list();
    return status;
}

rvkStatus listDistantCorners(CornerFinder<float32_t>* find, const GreyImage& image, uint32_t border,
                             float32_t threshold, float32_t minDistance, const CornerList& corners)
{
    DistantLister lister(corners, minDistance);
    return list(find, image, border, threshold, lister);
}

void requireScratchOfHarris(rvkStatus status)
{
    constexpr int line = 193; // where the log says that it is
    if (status == RAVIK_ENORES)
        failInternalAssertion("src/cpu/ravikHarrisC", line, "corner && grads && blurgrads");
}

// ---- the search ----------------------------------------------------------------------------------------------------

namespace {

constexpr size_t kWindow = 5; // rows of all windows, and of the rings

// The smoothed products of a pixel: xx, yy and xy.
constexpr size_t kProducts = 3;

void multiplyGradients(Plane<const uint8_t> src, size_t width, size_t y, int16_t* products)
{
    const uint8_t *above = src.row(y - 1), *row = src.row(y), *below = src.row(y + 1);
    for (size_t x = 1; x + 1 < width; ++x) {
        const int dx = (row[x + 1] - row[x - 1]) >> 1, dy = (below[x] - above[x]) >> 1;
        products[x] = static_cast<int16_t>(dx * dx);
        products[x + width] = static_cast<int16_t>(dy * dy);
        products[x + 2 * width] = static_cast<int16_t>(dx * dy);
    }
}

// The binomial means of 5x5 products, rounded down, which begin with the second of each row.
void blurRow5x5(const int16_t* const (&rows)[kWindow], size_t width, int16_t* dst)
{
    int a = 0, b = 0, c = 0, d = 0; // the sums of the columns before
    for (size_t x = 1; x + 1 < width; ++x) {
        const int e = rows[0][x] + 4 * (rows[1][x] + rows[3][x]) + 6 * rows[2][x] + rows[4][x];
        if (x >= kWindow)
            dst[x - 2] = static_cast<int16_t>((a + 4 * (b + d) + 6 * c + e) >> 8);
        a = b, b = c, c = d, d = e;
    }
}

int32_t harrisResponse(int xx, int yy, int xy)
{
    return xx * yy - xy * xy - ((xx + yy) * (xx + yy) >> 4);
}

float32_t smallerEigenvalue(int xx, int yy, int xy)
{
    const float32_t a = static_cast<float32_t>(xx) * 0.5f, c = static_cast<float32_t>(yy) * 0.5f;
    const auto b = static_cast<float32_t>(xy);
    return a + c - std::sqrt((a - c) * (a - c) + b * b);
}

// Scores row after row: useRow(y, scoreRow) is called when those of row y exist, and ends the search by false. Where
// scoreRow(y) is are the scores of the last five rows.
template <class Score, class UseRow>
rvkStatus scoreRows(const GreyImage& image, Score score, UseRow useRow)
{
    using Value = decltype(score(0, 0, 0));
    const size_t width = image.width;
    const Scratch<Value> scores(kWindow, width);
    const Scratch<int16_t> products(kWindow * kProducts, width), smoothed(kProducts, width);
    if (!scores || !products || !smoothed)
        return RAVIK_ENORES;
    const Plane src = {image.data, image.stride};
    const auto productRow = [&](size_t y) { return products.get() + y % kWindow * kProducts * width; };
    const auto scoreRow = [&](size_t y) { return scores.get() + y % kWindow * width; };
    for (uint32_t newest = 1; newest + 1 < image.height; ++newest) {
        multiplyGradients(src, width, newest, productRow(newest));
        if (newest < kWindow)
            continue;
        const uint32_t y = newest - 2;
        for (size_t i = 0; i < kProducts * width; i += width)
            blurRow5x5({productRow(y - 2) + i, productRow(y - 1) + i, productRow(y) + i, productRow(y + 1) + i,
                        productRow(y + 2) + i},
                       width, smoothed.get() + i);
        for (size_t x = kResponseBorder; x + kResponseBorder < width; ++x)
            scoreRow(y)[x] = score(smoothed[x], smoothed[x + width], smoothed[x + 2 * width]);
        if (!useRow(y, scoreRow))
            break;
    }
    return RAVIK_SUCCESS;
}

template <class Value>
bool isLargest(const Value* const (&rows)[kWindow], size_t x)
{
    const Value centre = rows[2][x];
    for (const Value* row : rows)
        for (size_t i = x - 2; i <= x + 2; ++i)
            if (!(centre > row[i]) && !(row == rows[2] && i == x))
                return false;
    return true;
}

template <class Value, class Score>
rvkStatus findCorners(const GreyImage& image, const CornerArea& area, Value threshold, CornerTaker& taker, Score score)
{
    return scoreRows(image, score, [&](uint32_t newest, auto scoreRow) {
        if (newest < area.top + 2)
            return true;
        const uint32_t y = newest - 2;
        const Value* const rows[kWindow] = {scoreRow(y - 2), scoreRow(y - 1), scoreRow(y), scoreRow(y + 1),
                                            scoreRow(y + 2)};
        for (uint32_t x = area.left; x < area.right; ++x)
            if (rows[2][x] > threshold && isLargest(rows, x) && !taker.take(x, y, static_cast<int32_t>(rows[2][x])))
                return false;
        return y + 1 < area.bottom;
    });
}

rvkStatus findHarrisCorners(const GreyImage& image, const CornerArea& area, int32_t threshold, CornerTaker& taker)
{
    return findCorners(image, area, threshold, taker, harrisResponse);
}

rvkStatus findGoodFeatures(const GreyImage& image, const CornerArea& area, float32_t threshold, CornerTaker& taker)
{
    return findCorners(image, area, threshold, taker, smallerEigenvalue);
}

} // namespace

rvkStatus rvkLocalHarrisMaxu8C(const uint8_t* patch, uint32_t width, uint32_t height, uint32_t stride, uint32_t* maxX,
                               uint32_t* maxY, int32_t* maxResponse)
{
    uint32_t bestX = 0, bestY = 0;
    int32_t best = INT32_MIN;
    const rvkStatus status = scoreRows({patch, width, height, stride}, harrisResponse, [&](uint32_t y, auto scoreRow) {
        for (uint32_t x = kResponseBorder; x + kResponseBorder < width; ++x)
            if (scoreRow(y)[x] > best) {
                best = scoreRow(y)[x];
                bestX = x;
                bestY = y;
            }
        return true;
    });
    if (status == RAVIK_SUCCESS) {
        *maxX = bestX;
        *maxY = bestY;
        *maxResponse = best;
    }
    return status;
}

} // namespace rvk

#include "forms/ravikHarrisForms.h"

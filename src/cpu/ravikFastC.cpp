// C reference of the FAST corners: what both lengths of the arc share, and those of 9 pixels.
#include "cpu/ravikFastC.h"
#include "kernels.h"
#include "log.h"

#include <algorithm>

namespace rvk {
namespace {

template <class Passes>
bool hasArc(const uint8_t* pixel, const ptrdiff_t* offsets, uint32_t arc, Passes passes)
{
    uint32_t run = 0;
    for (size_t i = 0; i < kCirclePoints + arc - 1; ++i) {
        run = passes(pixel[offsets[i % kCirclePoints]]) ? run + 1 : 0;
        if (run == arc)
            return true;
    }
    return false;
}

struct Corner
{
    uint32_t x, y;
};

Corner cornerOf(const uint32_t* xy, uint32_t index)
{
    return {xy[size_t{2} * index], xy[size_t{2} * index + 1]};
}

bool isBefore(Corner a, Corner b)
{
    return a.y < b.y || (a.y == b.y && a.x < b.x);
}

// Raw corners in raster order, of which neighbours are looked for.
class RawCorners
{
public:
    RawCorners(const uint32_t* xy, const uint32_t* scores, uint32_t count) : m_xy(xy), m_scores(scores), m_count(count)
    {
    }

    // Whether a corner of the row, at most a column away from x, has the score or more; not corner `except`. The cursor
    // stays behind the corners that no later call with this cursor looks at.
    bool hasAsGood(uint32_t x, uint32_t row, uint32_t except, uint32_t& cursor) const
    {
        while (cursor < m_count && isBefore(cornerOf(m_xy, cursor), {x - 1, row}))
            ++cursor;
        for (uint32_t i = cursor; i < m_count && !isBefore({x + 1, row}, cornerOf(m_xy, i)); ++i)
            if (i != except && m_scores[i] >= m_scores[except])
                return true;
        return false;
    }

private:
    const uint32_t *m_xy, *m_scores;
    uint32_t m_count;
};

// The corners in raster order until the list is full; how many there are.
uint32_t scan(const SegmentTest& test, const FastPicture& picture, const BitMask* mask, uint32_t* xy, uint32_t capacity)
{
    ptrdiff_t offsets[kCirclePoints];
    make_offsets(offsets, picture.stride);
    uint32_t count = 0;
    for (uint32_t y = picture.border; y < picture.height - picture.border; ++y)
        for (uint32_t x = picture.border; x < picture.width - picture.border; ++x) {
            const uint8_t* const pixel = picture.src + size_t{y} * picture.stride + x;
            if ((mask && mask->excludes(x, y)) || !isCorner(test, pixel, offsets, picture.barrier))
                continue;
            xy[size_t{2} * count] = x;
            xy[size_t{2} * count + 1] = y;
            if (++count >= capacity)
                return count;
        }
    return count;
}

} // namespace

void make_offsets(ptrdiff_t (&offsets)[kCirclePoints], uint32_t stride)
{
    for (size_t i = 0; i < kCirclePoints; ++i)
        offsets[i] = static_cast<ptrdiff_t>(int64_t{kCircle[i].y} * stride + kCircle[i].x);
}

bool isCorner(const SegmentTest& test, const uint8_t* pixel, const ptrdiff_t* offsets, int32_t threshold)
{
    threshold = std::clamp(threshold, -256, 255); // no pixels differ by more
    const int32_t high = *pixel + threshold, low = *pixel - threshold;
    // An arc is longer than half of the circle: of two pixels that are opposite it has one. Most pixels are no corners,
    // and the first pairs show it, if they are far from each other.
    constexpr size_t pairs[] = {0, 4, 2, 6, 1, 3, 5, 7};
    bool mayBeBrighter = true, mayBeDarker = true;
    for (const size_t i : pairs) {
        const int32_t one = pixel[offsets[i]], opposite = pixel[offsets[i + kCirclePoints / 2]];
        mayBeBrighter &= std::max(one, opposite) > high;
        mayBeDarker &= std::min(one, opposite) < low;
        if (!mayBeBrighter && !mayBeDarker)
            return false;
    }
    return (mayBeBrighter && hasArc(pixel, offsets, test.arc, [=](int32_t value) { return value > high; })) ||
           (mayBeDarker && hasArc(pixel, offsets, test.arc, [=](int32_t value) { return value < low; }));
}

uint32_t cornerScore(const SegmentTest& test, const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    int64_t low = barrier, high = 255; // a corner, if it is one at all, and none
    while (high - low > 1) {
        const int64_t middle = (low + high) / 2;
        (isCorner(test, pixel, offsets, static_cast<int32_t>(middle)) ? low : high) = middle;
    }
    return static_cast<uint32_t>(low);
}

void scoreCorners(const FastPicture& picture, const CornerList& list, CornerScorer* scorer)
{
    ptrdiff_t offsets[kCirclePoints];
    make_offsets(offsets, picture.stride);
    for (uint32_t i = 0; i < *list.count; ++i) {
        const Corner corner = cornerOf(list.xy, i);
        const uint8_t* const pixel = picture.src + size_t{corner.y} * picture.stride + corner.x;
        list.scores[i] = scorer(pixel, offsets, picture.barrier);
    }
}

void nms_processing(const uint32_t* xy, const uint32_t* scores, uint32_t count, const CornerList& list)
{
    const RawCorners raw(xy, scores, count);
    uint32_t above = 0, here = 0, below = 0, survivors = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const Corner corner = cornerOf(xy, i);
        if (raw.hasAsGood(corner.x, corner.y - 1, i, above) || raw.hasAsGood(corner.x, corner.y, i, here) ||
            raw.hasAsGood(corner.x, corner.y + 1, i, below))
            continue;
        list.xy[size_t{2} * survivors] = corner.x;
        list.xy[size_t{2} * survivors + 1] = corner.y;
        list.scores[survivors++] = scores[i];
    }
    *list.count = survivors;
}

uint32_t* suppressionBuffer(const SegmentTest& test, uint32_t nmsEnabled, uint32_t* tempBuf)
{
    constexpr int line = 330;
    if (nmsEnabled && !tempBuf)
        failInternalAssertion(test.unit, line, "tempBuf");
    return nmsEnabled ? tempBuf : nullptr;
}

void detect(const SegmentTest& test, const FastPicture& picture, const BitMask* mask, const CornerList& list,
            uint32_t* tempBuf)
{
    *list.count = 0;
    if ((mask && !*mask) || (tempBuf && list.capacity == 0))
        return;
    CornerList raw = list;
    if (tempBuf) {
        raw.xy = tempBuf;
        raw.scores = tempBuf + size_t{2} * list.capacity;
    }
    *raw.count = scan(test, picture, mask, raw.xy, raw.capacity);
    if (raw.scores)
        test.score(picture, raw);
    if (tempBuf)
        nms_processing(raw.xy, raw.scores, *raw.count, list);
}

// ---- arcs of 9 pixels ----

namespace {

void score_9(const FastPicture& picture, const CornerList& list)
{
    scoreCorners(picture, list, kernel<Kernel::fast9_corner_score>());
}

void fast9(const FastPicture& picture, const BitMask* mask, const CornerList& list, uint32_t* tempBuf)
{
    detect(kFast9, picture, mask, list, tempBuf);
}

} // namespace

const SegmentTest kFast9 = {9, score_9, "src/cpu/ravikFastC"};

uint32_t fast9_corner_scoreC(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier)
{
    return cornerScore(kFast9, pixel, offsets, barrier);
}

} // namespace rvk

#include "forms/ravikFastForms.h"

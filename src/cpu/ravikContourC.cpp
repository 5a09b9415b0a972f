// C references of contours and of the clean-up of foreground masks.
#include "cpu/ravikContourC.h"

#include "cpu/image.h"
#include "functions.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace rvk {

// ---- lists ---------------------------------------------------------------------------------------------------------

bool ContourLists::add(uint64_t size, int32_t parent)
{
    if (points) {
        if (count == mostContours || size > mostPoints - pointCount)
            return false;
        sizes[count] = static_cast<uint32_t>(size);
        if (hierarchy)
            hierarchy[4 * size_t{count} + 3] = parent;
    }
    ++count;
    pointCount += size;
    return true;
}

void ContourLists::link() const
{
    enum { next, previous, child, parent };
    for (size_t i = 0; hierarchy && i < count; ++i)
        std::fill_n(hierarchy + 4 * i, 3, -1);
    int32_t firstRoot = -1;
    for (size_t i = hierarchy ? count : 0; i-- > 0;) { // of those behind this one, the first of each parent is known
        int32_t* const links = hierarchy + 4 * i;
        int32_t& first = links[parent] < 0 ? firstRoot : hierarchy[4 * static_cast<size_t>(links[parent]) + child];
        links[next] = first;
        if (first >= 0)
            hierarchy[4 * static_cast<size_t>(first) + previous] = static_cast<int32_t>(i);
        first = static_cast<int32_t>(i);
    }
}

// ---- border following ----------------------------------------------------------------------------------------------

namespace {

// Directions, counter-clockwise on the screen.
enum : uint32_t { kRight, kUp = 2, kLeft = 4, kDirections = 8 };
constexpr int32_t kColumns[kDirections] = {1, 1, 0, -1, -1, -1, 0, 1};
constexpr int32_t kRows[kDirections] = {0, -1, -1, -1, 0, 1, 1, 1};

constexpr uint32_t turned(uint32_t direction, uint32_t by)
{
    return (direction + by) % kDirections;
}

// The picture in a ring of background: 0, 1 for foreground that no border has come by, or the mark of a border. The mark
// is negative where the border has the background to its right.
struct Marks
{
    int32_t* marks;
    size_t pitch;

    int32_t& at(size_t x, size_t y) const { return marks[(y + 1) * pitch + x + 1]; }
    bool isSet(int64_t x, int64_t y) const { return at(static_cast<size_t>(x), static_cast<size_t>(y)) != 0; }
};

struct Visit
{
    int64_t x, y;
    bool isCorner;    // of the walk
    bool passesRight; // the pixel to the right is background, on this side of the border
};

// visit(Visit) for each point of the border that starts at (x, y).
template <class F>
void followBorder(const Marks& marks, int64_t x, int64_t y, bool isHole, F visit)
{
    const auto neighbour = [&](uint32_t direction) {
        return marks.isSet(x + kColumns[direction], y + kRows[direction]);
    };
    uint32_t before = isHole ? kRight : kLeft; // where the last point of the border lies
    uint32_t tried = 1;
    for (; tried < kDirections && !neighbour(turned(before, kDirections - 1)); ++tried)
        before = turned(before, kDirections - 1);
    if (tried == kDirections)
        return visit(Visit{x, y, true, true});
    before = turned(before, kDirections - 1);

    const int64_t startX = x, startY = y;
    const uint32_t startBefore = before;
    do {
        uint32_t next = turned(before, 1);
        bool passesRight = false;
        for (; !neighbour(next); next = turned(next, 1))
            passesRight |= next == kRight;
        visit(Visit{x, y, next != turned(before, 4), passesRight});
        x += kColumns[next];
        y += kRows[next];
        before = turned(next, 4);
    } while (x != startX || y != startY || before != startBefore);
}

// A border's mark; 1 is not one.
int32_t markOf(BorderName border)
{
    return static_cast<int32_t>(border.number()) + 2;
}
BorderName borderOf(int32_t mark)
{
    return BorderName(static_cast<uint32_t>(std::abs(mark)) - 2);
}

// Adds the border that starts at (x, y) to the lists, if it fits. `met` is the last mark in the row, or 0.
bool addBorder(ContourMode mode, const Marks& marks, size_t x, size_t y, bool isHole, int32_t met,
               uint32_t approximation, ContourLists& lists)
{
    const auto startX = static_cast<int64_t>(x), startY = static_cast<int64_t>(y);
    const auto isListed = [=](const Visit& visit) {
        return approximation == RAVIK_CONTOUR_ALL_POINTS || visit.isCorner;
    };
    uint64_t size = 0;
    followBorder(marks, startX, startY, isHole, [&](const Visit& visit) { size += isListed(visit); });

    const bool hasParent =
        lists.hierarchy && met != 0 && (mode == ContourMode::tree || (mode == ContourMode::ccomp && isHole));
    const int32_t parent = hasParent ? lists.parentBy(borderOf(met), isHole) : -1;
    const int32_t mark = markOf(BorderName(lists.count, isHole));
    int32_t* point = lists.nextPoints();
    if (!lists.add(size, parent))
        return false;
    followBorder(marks, startX, startY, isHole, [&](const Visit& visit) {
        if (lists.points && isListed(visit)) {
            *point++ = static_cast<int32_t>(visit.x);
            *point++ = static_cast<int32_t>(visit.y);
        }
        int32_t& old = marks.at(static_cast<size_t>(visit.x), static_cast<size_t>(visit.y));
        if (visit.passesRight)
            old = -mark;
        else if (old == 1)
            old = mark;
    });
    return true;
}

} // namespace

rvkStatus followBorders(ContourMode mode, const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride,
                        uint32_t approximation, const rvkContourWorkspace* workspace, ContourLists& lists)
{
    const uint64_t pitch = uint64_t{width} + 2, pixels = pitch * (uint64_t{height} + 2);
    const ContourMemory memory(workspace, pixels * sizeof(int32_t));
    if (!memory.data())
        return RAVIK_ENORES;
    const Marks marks = {reinterpret_cast<int32_t*>(memory.data()), static_cast<size_t>(pitch)};
    std::fill_n(marks.marks, static_cast<size_t>(pixels), 0);
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            marks.at(x, y) = Plane{src, stride}.row(y)[x] != 0;

    bool fits = true;
    for (size_t y = 0; y < height && fits; ++y) {
        int32_t met = 0;
        for (size_t x = 0; x < width && fits; ++x) {
            const int32_t here = marks.at(x, y);
            if (here == 0)
                continue;
            const bool startsOuter = here == 1 && !marks.isSet(static_cast<int64_t>(x) - 1, static_cast<int64_t>(y));
            const bool startsHole =
                here > 0 && !startsOuter && !marks.isSet(static_cast<int64_t>(x) + 1, static_cast<int64_t>(y));
            if (startsHole && here > 1)
                met = here;
            // After a mark that is positive the row is inside of a component, or of a hole of it.
            if (mode == ContourMode::external ? startsOuter && met <= 0 : startsOuter || startsHole)
                fits = addBorder(mode, marks, x, y, startsHole, met, approximation, lists);
            if (marks.at(x, y) != 1)
                met = marks.at(x, y);
        }
    }
    lists.link();
    return RAVIK_SUCCESS;
}

// ---- foreground masks ----------------------------------------------------------------------------------------------

namespace {

// The length of a closed walk from pixel to pixel.
double lengthOf(const int32_t* points, uint32_t size)
{
    uint32_t straight = 0, diagonal = 0;
    for (size_t i = 0; i < size; ++i) {
        const int32_t *p = points + 2 * i, *q = points + 2 * ((i + 1) % size);
        const int steps = std::abs(q[0] - p[0]) + std::abs(q[1] - p[1]);
        straight += steps == 1;
        diagonal += steps == 2;
    }
    return straight + diagonal * std::sqrt(2.0);
}

rvkStatus drawHull(uint8_t* picture, uint32_t width, uint32_t height, int32_t* points, uint32_t size)
{
    uint32_t corners = 0;
    const rvkStatus status = rvkFindConvexHullC(points, size, points, &corners);
    return status == RAVIK_SUCCESS ? rvkFillConvexPolyu8C(picture, width, height, width, points, corners, 255) : status;
}

} // namespace

rvkStatus drawForeground(uint8_t* picture, uint32_t width, uint32_t height, uint32_t shape, float perimeterScale,
                         ContourLists& lists)
{
    const double leastLength = (double{1} * width + height) / perimeterScale;
    int32_t* points = lists.points;
    rvkStatus status = RAVIK_SUCCESS;
    for (uint32_t i = 0; i < lists.count && status == RAVIK_SUCCESS; ++i) {
        const uint32_t size = lists.sizes[i];
        if (lengthOf(points, size) < leastLength)
            ;
        else if (shape == RAVIK_MASK_HULLS)
            status = drawHull(picture, width, height, points, size);
        else
            status = rvkDrawContouru8C(picture, width, height, width, points, &size, 1, RAVIK_DRAW_FILLED, 255);
        points += 2 * size_t{size};
    }
    return status;
}

namespace {

rvkStatus findContours(ContourMode mode, uint32_t width, uint32_t height, Plane<const uint8_t> src,
                       uint32_t approximation, const rvkContourWorkspace* workspace, ContourLists& lists)
{
    return followBorders(mode, src.data, width, height, src.stride, approximation, workspace, lists);
}

} // namespace
} // namespace rvk

#include "forms/ravikContourForms.h"

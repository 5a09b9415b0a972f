// Vector implementation of contours and of the clean-up of foreground masks.
//
// First, over whole rows of vectors: a byte for each pixel with a bit for each neighbour that is foreground, and a bit
// for each pixel where a border can begin, by what lies around it. Then borders are followed from these pixels by a
// table: the neighbours and the direction of the last point give the next point. A border that comes by another pixel
// where it could have begun deletes that bit. So only the pixels of borders are touched one by one.
#include "cpu/ravikContourC.h"
#include "vecta/simd/rows.h"
#include "vecta/vecta.h"

#include <ravik/contour.h>
#include <ravik/morphology.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- neighbours ----------------------------------------------------------------------------------------------------

// Directions, counter-clockwise on the screen.
enum : uint32_t { kRight, kAboveRight, kUp, kAboveLeft, kLeft, kDirections = 8 };

// A pixel and its neighbours in the row: their bits in a byte of a row, ...
enum : uint8_t { kBefore = 1, kBehind = 2, kItself = 4, kThree = 7 };
// ... and where the byte of neighbours has those of the row above, of the row below, and of the pixel's own row.
constexpr unsigned kBelowShift = 3, kOwnShift = 6;
constexpr uint8_t kBitOf[kDirections] = {kBehind << kOwnShift,
                                         kBehind,
                                         kItself,
                                         kBefore,
                                         kBefore << kOwnShift,
                                         kBefore << kBelowShift,
                                         kItself << kBelowShift,
                                         kBehind << kBelowShift};

// The three bits of each pixel of a row, of which `line` is a copy between zeros: pixel x is line[x + 1].
RVK_INLINE void encodeRow(const uint8_t* line, size_t pitch, uint8_t* bits)
{
    const Vec<uint8_t> none = zero<uint8_t>();
    const auto bitWhereSet = [&](const uint8_t* p, uint8_t bit)
                                 RVK_INLINE_LAMBDA { return select(equal(load(p), none), none, splat(bit)); };
    for (size_t x = 0; x < pitch; x += kBytes)
        store(bits + x,
              bitWhereSet(line + x, kBefore) | bitWhereSet(line + x + 1, kItself) | bitWhereSet(line + x + 2, kBehind));
}

// Outer borders begin at pixels without foreground before them in raster order, those of holes at pixels with background
// to their right and foreground above that.
RVK_INLINE Mask<uint8_t> canBeginBorder(Vec<uint8_t> above, Vec<uint8_t> own)
{
    const auto has = [](Vec<uint8_t> bits, uint8_t which, uint8_t wanted)
                         RVK_INLINE_LAMBDA { return equal(bits & splat(which), splat(wanted)); };
    const Vec<uint8_t> before = (own & splat<uint8_t>(kItself | kBefore)) ^ splat<uint8_t>(kItself);
    const Mask<uint8_t> outer = equal(before | above, zero<uint8_t>());
    return outer | (has(own, kItself | kBehind, kItself) & has(above, kBehind, kBehind));
}

// What is known of a picture before its borders are followed. Rows are `pitch` pixels.
struct Neighbourhoods
{
    size_t pitch;
    uint8_t* neighbours;
    uint8_t* starts; // bits

    // `rows` is memory for three rows and one between zeros.
    RVK_NOINLINE void compute(size_t width, size_t height, Plane<const uint8_t> src, uint8_t* rows) const
    {
        uint8_t* const line = rows + 3 * pitch;
        const auto bitsOf = [&](size_t y) RVK_INLINE_LAMBDA { return rows + y % 3 * pitch; };
        __builtin_memset(bitsOf(2), 0, pitch); // of row -1
        __builtin_memset(line, 0, pitch + 2);
        const auto takeRow = [&](size_t y) RVK_INLINE_LAMBDA {
            if (y < height)
                __builtin_memcpy(line + 1, src.row(y), width);
            else
                __builtin_memset(line + 1, 0, width);
            encodeRow(line, pitch, bitsOf(y));
        };
        takeRow(0);
        for (size_t y = 0; y < height; ++y) {
            takeRow(y + 1);
            const uint8_t *above = bitsOf(y + 2), *own = bitsOf(y), *below = bitsOf(y + 1);
            for (size_t x = 0; x < pitch; x += kBytes) {
                const Vec<uint8_t> a = load(above + x), o = load(own + x);
                store(neighbours + y * pitch + x,
                      a | shiftLeft(load(below + x), kBelowShift) | shiftLeft(o, kOwnShift));
                const auto bits = laneBits(canBeginBorder(a, o));
                __builtin_memcpy(starts + (y * pitch + x) / 8, &bits, kBytes / 8);
            }
        }
    }
};

// ---- following -----------------------------------------------------------------------------------------------------

// What the table says of a point, by its neighbours and by the direction in which the last point lies: in which
// direction it lies from the next one, and what the border comes by on the way from the one to the other.
enum : uint8_t { kBeforeNext = 7, kCorner = 8, kStart = 16, kPassesLeft = 32, kPassesRight = 64 };
constexpr unsigned kFlagBits = 8; // of an entry for a picture; the others are how far it is to the next point

constexpr uint8_t stepFor(uint32_t neighbours, uint32_t before)
{
    const auto isSet = [=](uint32_t direction) { return (neighbours & kBitOf[direction % kDirections]) != 0; };
    uint32_t next = before + 1;
    bool passesLeft = false, passesRight = false;
    for (; next < before + kDirections && !isSet(next); ++next) {
        passesLeft |= next % kDirections == kLeft;
        passesRight |= next % kDirections == kRight;
    }
    const bool startsOuter = passesLeft && !isSet(kAboveLeft) && !isSet(kUp) && !isSet(kAboveRight);
    const bool startsHole = passesRight && isSet(kAboveRight);
    return static_cast<uint8_t>((next + 4) % kDirections | (next != before + 4 ? kCorner : 0) |
                                (startsOuter || startsHole ? kStart : 0) | (passesLeft ? kPassesLeft : 0) |
                                (passesRight ? kPassesRight : 0));
}

// The same for borders that are followed backwards, by the direction in which the next point lies: in which direction
// this one lies from the one before it.
constexpr uint8_t stepBackFor(uint32_t neighbours, uint32_t next)
{
    uint32_t before = next + kDirections - 1;
    while (before > next && !(neighbours & kBitOf[before % kDirections]))
        --before;
    const uint32_t flags = stepFor(neighbours, before % kDirections) & ~uint32_t{kBeforeNext};
    return static_cast<uint8_t>((before + 4) % kDirections | flags);
}

constexpr size_t kSteps = 256 * kDirections;
struct StepTable
{
    uint8_t steps[kSteps], stepsBack[kSteps];
    uint8_t atOuter[256], atHole[256]; // where the last point of a border lies from its start
};
constexpr uint8_t lastFrom(uint32_t neighbours, uint32_t background)
{
    uint32_t direction = background + kDirections - 1;
    while (direction > background + 1 && !(neighbours & kBitOf[direction % kDirections]))
        --direction;
    return static_cast<uint8_t>(direction % kDirections);
}
constexpr StepTable tableOfSteps()
{
    StepTable table = {};
    for (uint32_t i = 0; i < kSteps; ++i) {
        table.steps[i] = stepFor(i / kDirections, i % kDirections);
        table.stepsBack[i] = stepBackFor(i / kDirections, i % kDirections);
    }
    for (uint32_t i = 0; i < 256; ++i) {
        table.atOuter[i] = lastFrom(i, kLeft);
        table.atHole[i] = lastFrom(i, kRight);
    }
    return table;
}
constexpr StepTable kStepTable = tableOfSteps();

// The coordinates of a point as they lie in memory, in one number, so that a step is one addition.
using Point = int64_t;
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
RVK_INLINE Point pointAt(int64_t x, int64_t y)
{
    return x + y * (int64_t{1} << 32);
}

struct Start
{
    size_t x, y;
    size_t place;    // y * pitch + x
    uint32_t before; // the direction of the last point of the border
    bool isLone;     // there is no other point
};

// Borders keep their direction for a while: where they lead is fetched so many steps before.
constexpr ptrdiff_t kAhead = 8;

// The pictures that a table of steps can be made for: the distances of neighbours must fit the entries.
constexpr uint64_t kMostPitch = 1 << 22;

// On the way along a border.
struct Walk
{
    size_t place;
    uint32_t side; // in which direction the point lies that the walk comes from
    Point point;
    int32_t step = 0;

    RVK_INLINE void look(const uint8_t* neighbours, const int32_t* steps)
    {
        step = steps[neighbours[place] * kDirections + side];
    }
    // In which direction the next point lies.
    RVK_INLINE uint32_t otherSide() const { return (step + 4) & kBeforeNext; }
    RVK_INLINE void goOn(const uint8_t* neighbours, const Point* moves)
    {
        const ptrdiff_t distance = step >> kFlagBits;
        prefetch(neighbours + (static_cast<ptrdiff_t>(place) + kAhead * distance), 1);
        place += static_cast<size_t>(distance);
        side = step & kBeforeNext;
        point += moves[side];
    }
};

// How many points of a border were found from its start on, and from its end back.
struct Ends
{
    size_t first, last;

    RVK_INLINE size_t sum() const { return first + last; }
};

class Follower
{
public:
    RVK_INLINE Follower(const Neighbourhoods& known) : m_known(known)
    {
        constexpr int columns[kDirections] = {1, 1, 0, -1, -1, -1, 0, 1},
                      rows[kDirections] = {0, -1, -1, -1, 0, 1, 1, 1};
        const auto pitch = static_cast<int32_t>(known.pitch);
        int32_t distances[kDirections];
        for (uint32_t before = 0; before < kDirections; ++before) {
            m_distances[before] = -(columns[before] + rows[before] * pitch);
            distances[before] = m_distances[before] * (1 << kFlagBits);
            m_moves[before] = pointAt(-columns[before], -rows[before]);
        }
        for (size_t i = 0; i < kSteps; ++i) {
            m_steps[i] = distances[kStepTable.steps[i] & kBeforeNext] | kStepTable.steps[i];
            m_stepsBack[i] = distances[kStepTable.stepsBack[i] & kBeforeNext] | kStepTable.stepsBack[i];
        }
    }

    RVK_INLINE Start startAt(size_t x, size_t y) const
    {
        const size_t place = y * m_known.pitch + x;
        const uint8_t around = m_known.neighbours[place];
        const uint32_t last = isHole(place) ? kStepTable.atHole[around] : kStepTable.atOuter[around];
        return {x, y, place, last, around == 0};
    }
    // Of what can begin at this place.
    RVK_INLINE bool isHole(size_t place) const { return m_known.neighbours[place] & kBitOf[kAboveRight]; }

    // Follows a border from its start on and, at the same time, from its end back, until both meet: each step waits for
    // what the last one found, but not for the other's. The first points go to `points`, as many as there is room for
    // before `end`, the last ones to right before `end`. marks.put(place, step) sees each.
    template <bool cornersOnly, class Marks>
    RVK_INLINE Ends follow(const Start& start, int32_t* points, int32_t* end, Marks marks) const
    {
        const auto room = static_cast<size_t>(end - points) / 2;
        const Point origin = pointAt(static_cast<int64_t>(start.x), static_cast<int64_t>(start.y));
        if (start.isLone) {
            if (room)
                __builtin_memcpy(points, &origin, sizeof origin);
            deleteStart(start.place);
            marks.put(start.place, kPassesLeft | kPassesRight);
            return {1, 0};
        }
        Ends sizes = {0, 0};
        const auto take = [&](const Walk& walk, size_t& size, int32_t* to) RVK_INLINE_LAMBDA {
            if (sizes.sum() < room)
                __builtin_memcpy(to, &walk.point, sizeof walk.point);
            size += !cornersOnly || (walk.step & kCorner);
            if (walk.step & kStart)
                deleteStart(walk.place);
            marks.put(walk.place, static_cast<uint32_t>(walk.step));
        };
        const uint32_t fromEnd = (start.before + 4) % kDirections;
        Walk ahead = {start.place, start.before, origin},
             back = {start.place + static_cast<size_t>(ptrdiff_t{m_distances[fromEnd]}), fromEnd,
                     origin + m_moves[fromEnd]};
        for (;;) {
            ahead.look(m_known.neighbours, m_steps);
            take(ahead, sizes.first, points + 2 * sizes.first);
            if (ahead.place == back.place && ahead.otherSide() == back.side)
                return sizes;
            ahead.goOn(m_known.neighbours, m_moves);

            back.look(m_known.neighbours, m_stepsBack);
            take(back, sizes.last, end - 2 * (sizes.last + 1));
            if (back.place == ahead.place && back.otherSide() == ahead.side)
                return sizes;
            back.goOn(m_known.neighbours, m_moves);
        }
    }

private:
    RVK_INLINE void deleteStart(size_t place) const
    {
        m_known.starts[place / 8] = static_cast<uint8_t>(m_known.starts[place / 8] & ~(1u << place % 8));
    }

    const Neighbourhoods& m_known;
    int32_t m_steps[kSteps], m_stepsBack[kSteps];
    int32_t m_distances[kDirections];
    Point m_moves[kDirections]; // to the next point, by the direction in which this one lies from there
};

// ---- what borders leave behind, for those that are met later --------------------------------------------------------

// Nothing: no border asks.
struct NoMarks
{
    RVK_INLINE void put(size_t, uint32_t) const {}
};

// A bit for each pixel with background to the right that belongs to no component's holes.
struct OutsideBits
{
    uint8_t* bits;

    RVK_INLINE void put(size_t place, uint32_t step) const
    {
        if (step & kPassesRight)
            bits[place / 8] = static_cast<uint8_t>(bits[place / 8] | 1u << place % 8);
    }
    RVK_INLINE bool has(size_t place) const { return bits[place / 8] >> place % 8 & 1; }
};

// The name of the border at each change from background to foreground in a row, and from foreground to background.
struct Names
{
    uint32_t* names;
    uint32_t name;

    RVK_INLINE void put(size_t place, uint32_t step) const
    {
        if (step & kPassesLeft)
            names[place] = name;
        if (step & kPassesRight)
            names[place + 1] = name;
    }
};

// How many pixels there are in a row, right before one, that are 0, or that are not.
RVK_INLINE size_t lengthOfRunBefore(const uint8_t* row, size_t x, bool ofZeros)
{
    constexpr size_t ones = ~size_t{0} / 255;
    size_t i = x;
    for (; i >= sizeof(size_t); i -= sizeof(size_t)) {
        size_t word;
        __builtin_memcpy(&word, row + i - sizeof word, sizeof word);
        const bool hasZero = (word - ones) & ~word & (ones << 7);
        if (ofZeros ? word != 0 : hasZero)
            break;
    }
    while (i > 0 && (row[i - 1] == 0) == ofZeros)
        --i;
    return x - i;
}

// ---- lists ---------------------------------------------------------------------------------------------------------

// The parts of the working memory.
struct Memory
{
    Neighbourhoods known;
    uint8_t* rows;
    int32_t* chunk;
    uint8_t* outside;
    uint32_t* names;
};

struct Search
{
    ContourMode mode;
    size_t width, height;
    Plane<const uint8_t> src;
    Memory memory;
    ContourLists& lists;

    // Whether a border is wanted; then what it leaves behind and its parent are known, too.
    RVK_INLINE bool isOutside(const Start& start) const
    {
        const size_t gap = lengthOfRunBefore(src.row(start.y), start.x, true);
        return gap == start.x || OutsideBits{memory.outside}.has(start.place - gap - 1);
    }
    RVK_INLINE int32_t parentOf(const Start& start, bool isHole) const
    {
        if (!isHole && mode == ContourMode::ccomp)
            return -1;
        const size_t run = lengthOfRunBefore(src.row(start.y), start.x, !isHole);
        if (!isHole && run == start.x)
            return -1;
        return lists.parentBy(BorderName(memory.names[start.place - run]), isHole);
    }

    // Adds a border to the lists. One that is longer than the chunk is followed twice.
    template <bool cornersOnly, class Marks>
    RVK_INLINE bool add(const Follower& follower, const Start& start, int32_t parent, Marks marks) const
    {
        const size_t room = lists.points ? kContourChunk : 0;
        int32_t* const chunkEnd = memory.chunk + 2 * room;
        const Ends sizes = follower.follow<cornersOnly>(start, memory.chunk, chunkEnd, marks);
        int32_t* const points = lists.nextPoints();
        if (!lists.add(sizes.sum(), parent))
            return false;
        if (sizes.sum() <= room) {
            __builtin_memcpy(points, memory.chunk, sizes.first * sizeof(Point));
            __builtin_memcpy(points + 2 * sizes.first, chunkEnd - 2 * sizes.last, sizes.last * sizeof(Point));
        } else if (room)
            follower.follow<cornersOnly>(start, points, points + 2 * sizes.sum(), NoMarks{});
        return true;
    }

    template <bool cornersOnly>
    RVK_INLINE bool take(const Follower& follower, size_t x, size_t y) const
    {
        const Start start = follower.startAt(x, y);
        const bool isHole = follower.isHole(start.place);
        if (mode == ContourMode::external)
            return isHole || !isOutside(start) || add<cornersOnly>(follower, start, -1, OutsideBits{memory.outside});
        if (!memory.names)
            return add<cornersOnly>(follower, start, -1, NoMarks{});
        return add<cornersOnly>(follower, start, parentOf(start, isHole),
                                Names{memory.names, BorderName(lists.count, isHole).number()});
    }

    template <bool cornersOnly>
    RVK_NOINLINE void run() const
    {
        const Follower follower(memory.known);
        using Word = size_t;
        constexpr size_t wordBits = sizeof(Word) * 8;
        for (size_t y = 0; y < height; ++y)
            for (size_t from = 0; from < width; from += wordBits) {
                const uint8_t* const p = memory.known.starts + (y * memory.known.pitch + from) / 8;
                for (Word todo = ~Word{0};;) {
                    Word starts; // those not yet met, of which the last border may have deleted some
                    __builtin_memcpy(&starts, p, sizeof starts);
                    starts &= todo;
                    if (starts == 0)
                        break;
                    const auto bit = static_cast<size_t>(
                        sizeof(Word) == 8 ? __builtin_ctzll(starts) : __builtin_ctz(static_cast<unsigned>(starts)));
                    todo = ~Word{1} << bit;
                    if (!take<cornersOnly>(follower, from + bit, y))
                        return;
                }
            }
    }
};

rvkStatus findContours(ContourMode mode, uint32_t width, uint32_t height, Plane<const uint8_t> src,
                       uint32_t approximation, const rvkContourWorkspace* workspace, ContourLists& lists)
{
    const uint64_t pitch = contourPitch(width), pixels = pitch * height;
    if (pitch > kMostPitch)
        return followBorders(mode, src.data, width, height, src.stride, approximation, workspace, lists);

    const bool hasNames = lists.hierarchy && (mode == ContourMode::ccomp || mode == ContourMode::tree);
    const uint64_t sizes[] = {pixels,
                              pixels / 8 + 8,
                              4 * pitch + 2 * kBytes,
                              lists.points ? kContourChunk * sizeof(Point) : 0,
                              mode == ContourMode::external ? pixels / 8 : 0,
                              hasNames ? (pixels + 1) * sizeof(uint32_t) : 0};
    uint64_t offsets[7] = {};
    for (size_t i = 0; i < 6; ++i)
        offsets[i + 1] = offsets[i] + (sizes[i] + 63) / 64 * 64;
    const ContourMemory memory(workspace, offsets[6]);
    if (!memory.data())
        return RAVIK_ENORES;
    const auto part = [&](size_t i) RVK_INLINE_LAMBDA { return memory.data() + offsets[i]; };
    const Search search = {mode,
                           width,
                           height,
                           src,
                           {{static_cast<size_t>(pitch), part(0), part(1)},
                            part(2),
                            reinterpret_cast<int32_t*>(part(3)),
                            part(4),
                            hasNames ? reinterpret_cast<uint32_t*>(part(5)) : nullptr},
                           lists};
    if (mode == ContourMode::external)
        __builtin_memset(part(4), 0, static_cast<size_t>(sizes[4]));
    search.memory.known.compute(width, height, src, search.memory.rows);
    if (approximation == RAVIK_CONTOUR_CORNERS)
        search.run<true>();
    else
        search.run<false>();
    lists.link();
    return RAVIK_SUCCESS;
}

} // namespace

decltype(::rvkFilterDilate3x3u8_v2) rvkFilterDilate3x3u8_v2V;
decltype(::rvkFilterErode3x3u8_v2) rvkFilterErode3x3u8_v2V;

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikContourForms.h"

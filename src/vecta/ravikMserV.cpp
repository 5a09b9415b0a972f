// Vector implementations of the kernels of the MSER functions.
#include "cpu/ravikMserC.h"
#include "vecta/simd/histogram.h"
#include "vecta/vecta.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Grey values are those of the picture, or 255 less them.
template <bool isInverted>
RVK_INLINE void prepareCells(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                             uint32_t* histogram)
{
    const Plane<const uint8_t> image = {src, stride};
    const size_t pitch = mserPitch(width);
    const auto put = [](const uint8_t* from, uint16_t* to) RVK_INLINE_LAMBDA {
        const Vec<uint8_t> v = isInverted ? ~load(from) : load(from);
        store(to, widen(v));
    };
    const auto putRing = [=](uint16_t* ring, size_t count) RVK_INLINE_LAMBDA {
        for (size_t i = 0; i < count; ++i)
            ring[i] = kMserSeen;
    };
    putRing(cells, pitch + 1);
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* const row = image.row(y);
        uint16_t* const out = cells + (y + 1) * pitch + 1;
        size_t x = 0;
        for (; x + kBytes <= width; x += kBytes)
            put(row + x, out + x);
        for (; x < width; ++x)
            out[x] = isInverted ? 255 - row[x] : row[x];
        out[width] = kMserSeen;
    }
    putRing(cells + (size_t{height} + 1) * pitch, pitch + 1);

    uint32_t counts[256];
    countBytes(width, height, image, counts);
    for (size_t i = 0; i < 256; ++i)
        histogram[i] = counts[isInverted ? 255 - i : i];
}

// ---- pits -----------------------------------------------------------------------------------------------------------

// Most regions of a picture are pits of noise. They are found in blocks of the picture, eight columns wide, of which
// the first column, the first row and the row behind the last one are the rim: a pixel in the block is raised to the
// lowest level at which the rim can be reached from it. What a block cannot hold remains, so there are two grids of
// blocks, each with its rims in the middle of the other's blocks.
constexpr size_t kBlockColumns = 8;
constexpr size_t kTallBlock = 6, kFlatBlock = 2; // rows without the rim
constexpr uint32_t pixelsOfBlock(size_t rows)
{
    return static_cast<uint32_t>(rows * (kBlockColumns - 1));
}

// A copy of the picture's grey values with walls around it, over which no way out is lower than another.
struct WalledPicture
{
    static constexpr size_t kLeft = 8, kAbove = 4, kBelow = kTallBlock + 2;
    static constexpr uint8_t kWall = 255;

    size_t width, height, pitch;
    uint8_t* memory;

    RVK_INLINE WalledPicture(size_t pictureWidth, size_t pictureHeight, void* block)
        : width(pictureWidth), height(pictureHeight), pitch(roundedUp(kLeft + width + kBytes + kBlockColumns, 64)),
          memory(static_cast<uint8_t*>(block))
    {
    }
    RVK_INLINE size_t bytes() const { return pitch * (kAbove + height + kBelow); }
    RVK_INLINE uint8_t* at(ptrdiff_t x, ptrdiff_t y) const
    {
        return memory + (y + ptrdiff_t{kAbove}) * static_cast<ptrdiff_t>(pitch) + x + ptrdiff_t{kLeft};
    }
    RVK_INLINE void takeFrom(const uint16_t* cells) const
    {
        __builtin_memset(memory, kWall, bytes());
        for (size_t y = 0; y < height; ++y) {
            const uint16_t* const row = cells + (y + 1) * (width + 1) + 1;
            uint8_t* const out = at(0, static_cast<ptrdiff_t>(y));
            size_t x = 0;
            for (; x + kBytes <= width; x += kBytes)
                store(out + x, narrow(loadVecs<2>(row + x)));
            for (; x < width; ++x)
                out[x] = static_cast<uint8_t>(row[x]);
        }
    }
    RVK_INLINE void giveTo(uint16_t* cells) const
    {
        for (size_t y = 0; y < height; ++y) {
            uint16_t* const row = cells + (y + 1) * (width + 1) + 1;
            const uint8_t* const in = at(0, static_cast<ptrdiff_t>(y));
            size_t x = 0;
            for (; x + kBytes <= width; x += kBytes)
                store(row + x, widen(load(in + x)));
            for (; x < width; ++x)
                row[x] = in[x];
        }
    }
};

// Blocks side by side, as many as a vector holds, from a column of their rims on. The rim is that of `rows` + 2 rows.
template <size_t neighbours, size_t rows>
class Blocks
{
public:
    RVK_INLINE Blocks(uint8_t* rim, size_t pitch) : m_first(rim + pitch), m_pitch(pitch)
    {
        const Vec<uint8_t> inside = bitCast<uint8_t>(splat<uint64_t>(~uint64_t{255})),
                           last = bitCast<uint8_t>(splat<uint64_t>(uint64_t{255} << 56));
        for (size_t i = 0; i < rows + 2; ++i) {
            const uint8_t* const row = rim + i * pitch;
            const bool isRim = i == 0 || i == rows + 1;
            m_ground[i] = load(row);
            m_rim[i] = load(row + 1) & last;
            m_level[i] = isRim ? m_ground[i] : m_ground[i] | inside;
        }
    }
    // Lowers the levels, at first the highest there are, until they are those of the pixel or its lowest neighbour.
    RVK_INLINE void settle()
    {
        Vec<uint8_t> changes;
        do {
            changes = zero<uint8_t>();
            unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA { m_level[i + 1] = lowered(i + 1); });
            unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA {
                const Vec<uint8_t> level = lowered(rows - i);
                changes = changes | (level ^ m_level[rows - i]);
                m_level[rows - i] = level;
            });
        } while (!all(equal(changes, zero<uint8_t>())));
    }
    // Blocks where a pixel rises by more than mostDepth levels stay as they are.
    RVK_INLINE void raise(uint8_t mostDepth) const
    {
        const Vec<uint8_t> most = splat(mostDepth);
        Mask<uint8_t> isTooHigh = greater(most, most);
        unrolled<rows>(
            [&](auto i) RVK_INLINE_LAMBDA { isTooHigh = isTooHigh | greater(m_level[i + 1] - m_ground[i + 1], most); });
        Vec<uint64_t> stays = bitCast<uint64_t>(toVec(isTooHigh));
        for (unsigned bits = 8; bits < 64; bits *= 2) // to all bytes of a block
            stays = stays | shiftLeft(stays, bits);
        for (unsigned bits = 8; bits < 64; bits *= 2)
            stays = stays | shiftRight(stays, bits);
        const Vec<uint8_t> mask = bitCast<uint8_t>(stays);
        unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA {
            store(m_first + i * m_pitch, (m_ground[i + 1] & mask) | (m_level[i + 1] & ~mask));
        });
    }

private:
    uint8_t* m_first;
    size_t m_pitch;
    Vec<uint8_t> m_ground[rows + 2], m_level[rows + 2], m_rim[rows + 2]; // to the right of each block

    // The levels beside those of a row. Left of a block's first column, the rim, is nothing lower: so it stays.
    RVK_INLINE Vec<uint8_t> beside(size_t row) const
    {
        const Vec<uint64_t> blocks = bitCast<uint64_t>(m_level[row]);
        return min(bitCast<uint8_t>(shiftLeft(blocks, 8)), bitCast<uint8_t>(shiftRight(blocks, 8)) | m_rim[row]);
    }
    RVK_INLINE Vec<uint8_t> lowered(size_t row) const
    {
        Vec<uint8_t> lowest = min(beside(row), min(m_level[row - 1], m_level[row + 1]));
        if constexpr (neighbours == 8)
            lowest = min(lowest, min(beside(row - 1), beside(row + 1)));
        return max(m_ground[row], lowest);
    }
};

template <size_t neighbours, size_t rows>
RVK_NOINLINE void fillBlocks(const WalledPicture& picture, uint8_t mostDepth)
{
    const auto width = static_cast<ptrdiff_t>(picture.width), height = static_cast<ptrdiff_t>(picture.height);
    constexpr ptrdiff_t columns = kBlockColumns, period = rows + 1;
    for (ptrdiff_t shift = 0; shift < 2; ++shift)
        for (ptrdiff_t y = -1 - shift * (period / 2); y + 1 < height; y += period)
            for (ptrdiff_t x = -1 - shift * (columns / 2); x + 1 < width; x += kBytes) {
                Blocks<neighbours, rows> blocks(picture.at(x, y), picture.pitch);
                blocks.settle();
                blocks.raise(mostDepth);
            }
}

template <size_t neighbours>
RVK_INLINE void fillPits(uint16_t* cells, uint32_t width, uint32_t height, uint32_t mostPixels, uint32_t mostDepth,
                         uint32_t* histogram, uint32_t* memory)
{
    const WalledPicture picture(width, height, memory);
    if (mostPixels < pixelsOfBlock(kFlatBlock) || picture.bytes() > mserCells(width, height) * sizeof *memory)
        return;
    picture.takeFrom(cells);
    if (mostPixels < pixelsOfBlock(kTallBlock))
        fillBlocks<neighbours, kFlatBlock>(picture, static_cast<uint8_t>(mostDepth));
    else
        fillBlocks<neighbours, kTallBlock>(picture, static_cast<uint8_t>(mostDepth));
    picture.giveTo(cells);

    uint32_t counts[256];
    countBytes(width, height, Plane<const uint8_t>{picture.at(0, 0), static_cast<uint32_t>(picture.pitch)}, counts);
    __builtin_memcpy(histogram, counts, sizeof counts);
}

// ---- bounds ---------------------------------------------------------------------------------------------------------

struct Extent
{
    uint32_t first = UINT32_MAX, last = 0, left = UINT32_MAX, right = 0;

    RVK_INLINE void add(uint32_t place, uint32_t column)
    {
        first = place < first ? place : first;
        last = place > last ? place : last;
        left = column < left ? column : left;
        right = column > right ? column : right;
    }
};

// The columns of places below 2^24, which floats hold: their quotients by the pitch may be one too many or too few.
struct Columns
{
    static constexpr uint32_t kMostPlaces = 1u << 24;

    Vec<int32_t> pitch;
    Vec<float> reciprocal;

    RVK_INLINE explicit Columns(uint32_t width)
        : pitch(splat(static_cast<int32_t>(width))), reciprocal(splat(1.0f / static_cast<float>(width)))
    {
    }
    RVK_INLINE Vec<int32_t> of(Vec<int32_t> places) const
    {
        const Vec<int32_t> column = places - truncateToInt(toFloat(places) * reciprocal) * pitch,
                           none = zero<int32_t>();
        const Vec<int32_t> notNegative = select(greater(none, column), column + pitch, column);
        return select(greater(pitch, notNegative), notNegative, notNegative - pitch);
    }
};

// Of at least a vector of places.
RVK_INLINE Extent extentOf(const uint32_t* places, size_t count, const Columns& columns)
{
    constexpr size_t lanes = Vec<int32_t>::lanes;
    const auto placesAt = [=](size_t i) RVK_INLINE_LAMBDA { return bitCast<int32_t>(load(places + i)); };
    Vec<int32_t> first = placesAt(0), last = first, left = columns.of(first), right = left;
    const auto add = [&](Vec<int32_t> v) RVK_INLINE_LAMBDA {
        const Vec<int32_t> column = columns.of(v);
        first = min(first, v);
        last = max(last, v);
        left = min(left, column);
        right = max(right, column);
    };
    for (size_t i = lanes; i + lanes <= count; i += lanes)
        add(placesAt(i));
    add(placesAt(count - lanes));
    return {static_cast<uint32_t>(reduceMin(first)), static_cast<uint32_t>(reduceMax(last)),
            static_cast<uint32_t>(reduceMin(left)), static_cast<uint32_t>(reduceMax(right))};
}

} // namespace

void irvkMserPreprocessPlusNN4V(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                uint32_t* histogram)
{
    prepareCells<true>(src, width, height, stride, cells, histogram);
}

void irvkMserPreprocessMinusNN4V(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                 uint32_t* histogram)
{
    prepareCells<false>(src, width, height, stride, cells, histogram);
}

void irvkMserPreprocessPlusNN8V(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                uint32_t* histogram)
{
    prepareCells<true>(src, width, height, stride, cells, histogram);
}

void irvkMserPreprocessMinusNN8V(const uint8_t* src, uint32_t width, uint32_t height, uint32_t stride, uint16_t* cells,
                                 uint32_t* histogram)
{
    prepareCells<false>(src, width, height, stride, cells, histogram);
}

void irvkMserFillPitsNN4V(uint16_t* cells, uint32_t width, uint32_t height, uint32_t mostPixels, uint32_t mostDepth,
                          uint32_t* histogram, uint32_t* memory)
{
    fillPits<4>(cells, width, height, mostPixels, mostDepth, histogram, memory);
}

void irvkMserFillPitsNN8V(uint16_t* cells, uint32_t width, uint32_t height, uint32_t mostPixels, uint32_t mostDepth,
                          uint32_t* histogram, uint32_t* memory)
{
    fillPits<8>(cells, width, height, mostPixels, mostDepth, histogram, memory);
}

void irvkMserBoundingBoxesV(const uint32_t* places, const uint32_t* counts, uint32_t nLists, uint32_t pitch,
                            rvkRectangle* boxes, uint32_t* firsts)
{
    const Columns columns(pitch);
    for (size_t i = 0; i < nLists; places += counts[i], ++i) {
        const size_t count = counts[i];
        Extent extent;
        if (count >= Vec<int32_t>::lanes)
            extent = extentOf(places, count, columns);
        if (count < Vec<int32_t>::lanes || extent.last >= Columns::kMostPlaces) {
            extent = {};
            for (size_t k = 0; k < count; ++k)
                extent.add(places[k], places[k] % pitch);
        }
        const uint32_t top = extent.first / pitch, bottom = extent.last / pitch;
        boxes[i] = {static_cast<int32_t>(extent.left - 1), static_cast<int32_t>(top - 1),
                    static_cast<int32_t>(extent.right - extent.left + 1), static_cast<int32_t>(bottom - top + 1)};
        firsts[i] = extent.first;
    }
}

} // namespace rvk::vecta::RVK_ISA

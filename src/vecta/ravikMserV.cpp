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

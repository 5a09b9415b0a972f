#include "border.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace rvk::hal {

namespace {

constexpr int kNowhere = -1;

// The place of a line of `length` pixels whose value position p takes, as OpenCV's borders say.
int placeOf(int p, int length, int border)
{
    if (p >= 0 && p < length)
        return p;
    switch (border) {
    case kReplicate:
        return p < 0 ? 0 : length - 1;
    case kWrap:
        return (p % length + length) % length;
    case kReflect:
    case kReflect101: {
        if (length == 1)
            return 0;
        const int period = border == kReflect ? 2 * length : 2 * length - 2;
        const int q = (p % period + period) % period;
        return q < length ? q : border == kReflect ? period - 1 - q : period - q;
    }
    default:
        return kNowhere;
    }
}

struct Rectangle
{
    int x, y, width, height;
};

// Scratch memory for a picture; empty where there is none.
class Scratch
{
public:
    Scratch(int width, int height, size_t pixelSize)
        : stride((width * pixelSize + 15) / 16 * 16), bytes(new (std::nothrow) uint8_t[stride * height])
    {
    }
    explicit operator bool() const { return bool(bytes); }
    uint8_t* row(int y) { return bytes.get() + y * stride; }

    const size_t stride;

private:
    std::unique_ptr<uint8_t[]> bytes;
};

// Writes a rectangle of the plane that the source lies in, (0, 0) being its first pixel.
void copyPadded(const Source& source, const Outside& outside, const Rectangle& from, Scratch& to)
{
    const int matrixWidth = source.left + source.width + source.right;
    const int matrixHeight = source.top + source.height + source.bottom;
    // Columns that exist are copied in one piece, the others one by one.
    const int first = std::max(from.x, -source.left), end = std::min(from.x + from.width, source.width + source.right);
    for (int y = 0; y < from.height; y++) {
        uint8_t* row = to.row(y);
        const int place = placeOf(from.y + y + source.top, matrixHeight, outside.border);
        if (place == kNowhere) {
            std::memset(row, outside.value, from.width);
            continue;
        }
        const uint8_t* matrixRow = source.data + ptrdiff_t(place - source.top) * ptrdiff_t(source.step) - source.left;
        const auto pixel = [&](int x) {
            const int column = placeOf(x + source.left, matrixWidth, outside.border);
            row[x - from.x] = column == kNowhere ? outside.value : matrixRow[column];
        };
        for (int x = from.x; x < std::min(first, from.x + from.width); x++)
            pixel(x);
        if (end > first)
            std::memcpy(row + (first - from.x), matrixRow + first + source.left, end - first);
        for (int x = std::max(end, from.x); x < from.x + from.width; x++)
            pixel(x);
    }
}

// Some rows of the target at a time, computed from a padded copy of what their windows cover.
class Bands
{
public:
    Bands(const Target& all, int mostRows, const Windows& theirWindows)
        : target(all), windows(theirWindows), padded(extent(target.width), extent(mostRows), 1),
          filtered(extent(target.width), extent(mostRows), target.pixelSize)
    {
    }

    bool hasMemory() const { return padded && filtered; }

    rvkStatus compute(const Source& source, const Outside& outside, int y, int rows)
    {
        const int margin = marginOf(), ring = margin / windows.scale;
        const Rectangle from = {-margin, y * windows.scale - margin, extent(target.width), extent(rows)};
        copyPadded(source, outside, from, padded);
        const rvkStatus status = windows.filter(padded.row(0), from.width, from.height, uint32_t(padded.stride),
                                                filtered.row(0), uint32_t(filtered.stride));
        for (int i = 0; i < rows && status == RAVIK_SUCCESS; i++)
            std::memcpy(static_cast<uint8_t*>(target.data) + (y + i) * target.step,
                        filtered.row(ring + i) + ring * target.pixelSize, target.width * target.pixelSize);
        return status;
    }

private:
    // The copy begins at a multiple of the scale, so that the filter's pixels are the target's.
    int marginOf() const { return (windows.radius + windows.scale - 1) / windows.scale * windows.scale; }
    // Of how many pixels the windows of that many consist.
    int extent(int pixels) const { return (pixels - 1) * windows.scale + 1 + 2 * marginOf(); }

    const Target& target;
    const Windows& windows;
    Scratch padded, filtered;
};

// Rows of which a band and its copy stay in the cache, and few are copied twice.
int rowsOfBand(const Target& target, int radius)
{
    constexpr size_t kCache = 96 << 10;
    const size_t row = (target.width + 2 * radius) * (1 + target.pixelSize);
    return int(std::clamp<size_t>(kCache / row, 8 + 4 * radius, std::max(target.height, 8 + 4 * radius)));
}

} // namespace

Extent extentOf(const Source& source)
{
    const uint8_t* first = source.data - ptrdiff_t(source.top) * ptrdiff_t(source.step) - source.left;
    return extentOf(first, source.step, size_t(source.left + source.width + source.right),
                    source.top + source.height + source.bottom);
}

Extent extentOf(const Target& target)
{
    return extentOf(target.data, target.step, target.width * target.pixelSize, target.height);
}

int filterWithBorder(const Source& source, const Target& target, const Outside& outside, const Windows& windows)
{
    if (outside.border < kConstant || outside.border > kReflect101 ||
        !areStrides(source.width, source.height, 1, {source.step}) ||
        !areStrides(target.width, target.height, target.pixelSize, {target.step}))
        return kNotImplemented;
    const bool inPlace = source.data == target.data && target.pixelSize == 1 && windows.scale == 1 &&
                         (source.step == target.step || source.height == 1);
    if (!inPlace && !areApart(extentOf(source), extentOf(target)))
        return kNotImplemented;
    if (windows.hasBorder && !source.hasSurroundings() && !inPlace)
        return done(windows.filter(source.data, source.width, source.height, strideOf(source.step, source.height),
                                   target.data, strideOf(target.step, target.height)));
    // Rows would be overwritten that are still needed: then all of them are one band.
    const int most = inPlace ? target.height : std::min(rowsOfBand(target, windows.radius), target.height);
    Bands bands(target, most, windows);
    if (!bands.hasMemory())
        return kNotImplemented;
    for (int y = 0; y < target.height; y += most) {
        if (bands.compute(source, outside, y, std::min(most, target.height - y)) != RAVIK_SUCCESS)
            return kNotImplemented;
    }
    return kOk;
}

} // namespace rvk::hal

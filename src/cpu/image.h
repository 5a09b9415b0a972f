// How the C references walk images: rows, columns, one formula.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace rvk {

// An image, or the sources and destinations of one: rows of T, `stride` bytes apart. A stride that is not a multiple of
// the element size is rounded down to one.
template <class T>
struct Plane
{
    T* data;
    uint32_t stride;

    T* row(size_t y) const { return data + y * (stride / sizeof(T)); }
};
template <class T>
Plane(T*, uint32_t) -> Plane<T>;

// An image that goes on beyond its edges: each pixel outside has the value of the nearest one inside, or all the same
// value.
template <class T>
struct BorderedImage
{
    Plane<const T> image;
    int64_t right, bottom; // the last column and row
    bool replicates;
    T outside;

    BorderedImage(Plane<const T> inside, size_t width, size_t height, bool replicate, T value)
        : image(inside), right(static_cast<int64_t>(width) - 1), bottom(static_cast<int64_t>(height) - 1),
          replicates(replicate), outside(value)
    {
    }

    T at(int64_t x, int64_t y) const
    {
        const int64_t nearestX = std::clamp<int64_t>(x, 0, right), nearestY = std::clamp<int64_t>(y, 0, bottom);
        const bool exists = x == nearestX && y == nearestY;
        return exists || replicates ? image.row(static_cast<size_t>(nearestY))[nearestX] : outside;
    }
};

// The value clamped to the range of To.
template <class To, class From>
To saturate(From value)
{
    using Limits = std::numeric_limits<To>;
    return value < Limits::min() ? Limits::min() : value > Limits::max() ? Limits::max() : static_cast<To>(value);
}

// dst(x, y) = formula(sources(x, y)...) for every element of `width` x `height`. Rows of interleaved images have
// width x channels elements.
template <class D, class Formula, class... S>
void mapElements(size_t width, size_t height, Plane<D> dst, Formula formula, Plane<S>... sources)
{
    for (size_t y = 0; y < height; ++y)
        for (size_t x = 0; x < width; ++x)
            dst.row(y)[x] = formula(sources.row(y)[x]...);
}

} // namespace rvk

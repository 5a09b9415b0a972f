// How the C references walk images: rows, columns, one formula.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace rvk {

// An image, or the sources and destinations of one: rows of T, `stride` bytes apart. A stride that is not a multiple of the
// element size is rounded down to one.
template <class T>
struct Plane {
    T* data;
    uint32_t stride;

    T* row(size_t y) const { return data + y * (stride / sizeof(T)); }
};
template <class T>
Plane(T*, uint32_t) -> Plane<T>;

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

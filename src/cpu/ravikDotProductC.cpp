// C references of the dot products.
#include "cpu/image.h"
#include "functions.h"

namespace rvk {
namespace {

template <class T>
struct DotOf;
template <>
struct DotOf<int8_t>
{
    using Type = int32_t;
};
template <>
struct DotOf<uint8_t>
{
    using Type = uint32_t;
};
template <class T>
using Dot = typename DotOf<T>::Type;

// Modulo 2^32.
template <class T>
Dot<T> dotOfLength(const T* a, const T* b, uint32_t length)
{
    uint32_t sum = 0;
    for (size_t i = 0; i < length; ++i)
        sum += static_cast<uint32_t>(a[i] * b[i]);
    return static_cast<Dot<T>>(sum);
}

template <uint32_t n, class T>
Dot<T> dot(const T* a, const T* b)
{
    return dotOfLength(a, b, n);
}

template <uint32_t n, class T>
void dotFour(const T* a, const T* const (&candidates)[4], Dot<T>* dots)
{
    for (size_t k = 0; k < 4; ++k)
        dots[k] = dot<n>(a, candidates[k]);
}

// The dot product of two blocks, each column from top to bottom.
template <class Sum, class T>
Sum dotOfBlocks(Plane<const T> a, Plane<const T> b, size_t left, size_t right, size_t top, size_t bottom)
{
    Sum sum = 0;
    for (size_t x = left; x < right; ++x) {
        Sum ofColumn = 0;
        for (size_t y = top; y < bottom; ++y)
            ofColumn += static_cast<Sum>(a.row(y)[x]) * static_cast<Sum>(b.row(y)[x]);
        sum += ofColumn;
    }
    return sum;
}

template <class Sum, class T>
rvkStatus dotEachBlock(size_t width, size_t height, Plane<const T> a, Plane<const T> b, size_t blockWidth,
                       size_t blockHeight, Plane<Sum> dst)
{
    const auto end = [](size_t start, size_t length, size_t most) { return start + std::min(length, most - start); };
    for (size_t top = 0, bottom; top < height; top = bottom) {
        bottom = end(top, blockHeight, height);
        Sum* out = dst.row(top / blockHeight);
        for (size_t left = 0, right; left < width; left = right) {
            right = end(left, blockWidth, width);
            *out++ = dotOfBlocks<Sum>(a, b, left, right, top, bottom);
        }
    }
    return RAVIK_SUCCESS;
}

} // namespace

int32_t rvkDotProducts8C(const int8_t* a, const int8_t* b, uint32_t length)
{
    return dotOfLength(a, b, length);
}

uint32_t rvkDotProductu8C(const uint8_t* a, const uint8_t* b, uint32_t length)
{
    return dotOfLength(a, b, length);
}

float32_t rvkDotProductf32C(const float32_t* a, const float32_t* b, uint32_t length)
{
    float32_t sum = 0;
    for (size_t i = 0; i < length; ++i)
        sum = sum + a[i] * b[i];
    return sum;
}

} // namespace rvk

#include "forms/ravikDotProductForms.h"

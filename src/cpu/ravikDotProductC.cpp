// C references of the dot products.
#include "functions.h"

#include <cstddef>

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

} // namespace

int32_t rvkDotProducts8C(const int8_t* a, const int8_t* b, uint32_t length)
{
    return dotOfLength(a, b, length);
}

uint32_t rvkDotProductu8C(const uint8_t* a, const uint8_t* b, uint32_t length)
{
    return dotOfLength(a, b, length);
}

} // namespace rvk

#include "forms/ravikDotProductForms.h"

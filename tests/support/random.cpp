#include "random.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace test {
namespace {

template <class T>
T drawFloat(Random& random, Content content)
{
    static const T special[] = {0.0f, -0.0f, 1.0f, -1.0f, INFINITY, -INFINITY, NAN, FLT_MAX, -FLT_MAX, FLT_MIN};
    switch (content) {
    case Content::extremes:
        return special[random.below(10)];
    case Content::small:
        return static_cast<T>(static_cast<int>(random.below(17)) - 8);
    default: { // any exponent between 2^-30 and 2^30: no overflow, no subnormals in sums and products
        const float mantissa = static_cast<float>(static_cast<int32_t>(random.next() >> 32)) / 2147483648.0f;
        return std::ldexp(mantissa, static_cast<int>(random.below(61)) - 30);
    }
    }
}

template <class T>
T drawInteger(Random& random, Content content)
{
    using Limits = std::numeric_limits<T>;
    static const T special[] = {
        Limits::min(),    Limits::max(), 0, 1, static_cast<T>(-1), Limits::max() - 1, static_cast<T>(Limits::min() + 1),
        Limits::max() / 2};
    switch (content) {
    case Content::extremes:
        return special[random.below(8)];
    case Content::small:
        return static_cast<T>(random.below(9)) - static_cast<T>(std::is_signed_v<T> ? 4 : 0);
    default:
        return static_cast<T>(random.next() >> 20);
    }
}

} // namespace

template <class T>
T drawElement(Random& random, Content content)
{
    if constexpr (std::is_floating_point_v<T>)
        return drawFloat<T>(random, content);
    else
        return drawInteger<T>(random, content);
}

template uint8_t drawElement(Random&, Content);
template int8_t drawElement(Random&, Content);
template uint16_t drawElement(Random&, Content);
template int16_t drawElement(Random&, Content);
template uint32_t drawElement(Random&, Content);
template int32_t drawElement(Random&, Content);
template uint64_t drawElement(Random&, Content);
template int64_t drawElement(Random&, Content);
template float drawElement(Random&, Content);

bool sameFloat(float a, float b)
{
#if defined(__arm__)
    if (std::fabs(a) < FLT_MIN && std::fabs(b) < FLT_MIN)
        return true;
#endif
    return memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

} // namespace test

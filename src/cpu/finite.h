// Results that are floats, or none.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace rvk {

inline bool areFinite(const float* numbers, size_t count)
{
    return std::all_of(numbers, numbers + count, [](float number) { return std::isfinite(number); });
}

// Writes the numbers as floats, or nothing when one of them is not finite then.
inline bool storeFinite(const double* values, size_t count, float* dst)
{
    const auto rounded = [](double value) { return static_cast<float>(value); };
    if (!std::all_of(values, values + count, [=](double value) { return std::isfinite(rounded(value)); }))
        return false;
    std::transform(values, values + count, dst, rounded);
    return true;
}
template <size_t count>
bool storeFinite(const double (&values)[count], float* dst)
{
    return storeFinite(values, count, dst);
}

} // namespace rvk

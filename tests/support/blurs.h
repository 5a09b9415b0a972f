// Binomial and box filters by their definition.
#pragma once

#include "windows.h"

namespace test {

// The ring of pixels whose window reaches beyond the picture: left as it is, made of the pixels that exist, or of the
// window as Beyond continues it.
enum class Ring { left, existing, constant, nearest };

inline Beyond beyond(Ring ring)
{
    return ring == Ring::nearest ? Beyond::nearest : Beyond::constant;
}

inline std::vector<int> binomials(int n)
{
    std::vector<int> row = {1};
    for (; n > 0; --n) {
        row.push_back(1);
        for (size_t k = row.size() - 2; k > 0; --k)
            row[k] += row[k - 1];
    }
    return row;
}

template <class T>
Picture<T> binomialMeans(const Picture<T>& src, int size, Ring ring, T outside = 0)
{
    const std::vector<int> weights = productWeights(binomials(size - 1), binomials(size - 1));
    const int64_t whole = int64_t{1} << 2 * (size - 1);
    const Picture<T> ones(src.width, src.height, T{1});
    return pictureOf<T>(src.width, src.height, [&](int x, int y) -> int64_t {
        const bool isInterior = src.hasWindow(x, y, size, size);
        if (!isInterior && ring == Ring::left)
            return 77;
        if (!isInterior && ring == Ring::existing)
            return weightedSum(windowOf(src, x, y, size, size, Beyond::constant), weights) /
                   weightedSum(windowOf(ones, x, y, size, size, Beyond::constant), weights);
        const int64_t sum = weightedSum(windowOf(src, x, y, size, size, beyond(ring), outside), weights);
        return sum / whole - (sum % whole < 0); // rounded down
    });
}

// The mean in fixed point.
inline Picture<uint8_t> boxMeans(const Picture<uint8_t>& src, int size, Ring ring, uint8_t outside = 0)
{
    const std::vector<int> weights(static_cast<size_t>(size * size), 1);
    const int64_t reciprocal = (65536 + size * size / 2) / (size * size);
    return pictureOf<uint8_t>(src.width, src.height, [&](int x, int y) {
        const int64_t sum = weightedSum(windowOf(src, x, y, size, size, beyond(ring), outside), weights);
        return (sum * reciprocal + 32768) >> 16;
    });
}

} // namespace test

#include "windows.h"

namespace test {

template <class T>
std::vector<T> windowOf(const Picture<T>& picture, int x, int y, int M, int N, Beyond beyond, T outside)
{
    std::vector<T> window;
    window.reserve(static_cast<size_t>(M * N));
    for (int v = y - N / 2; v < y - N / 2 + N; ++v)
        for (int u = x - M / 2; u < x - M / 2 + M; ++u)
            window.push_back(beyond == Beyond::nearest || picture.has(u, v) ? picture.nearest(u, v) : outside);
    return window;
}
template std::vector<uint8_t> windowOf(const Picture<uint8_t>&, int, int, int, int, Beyond, uint8_t);
template std::vector<int16_t> windowOf(const Picture<int16_t>&, int, int, int, int, Beyond, int16_t);
template std::vector<int32_t> windowOf(const Picture<int32_t>&, int, int, int, int, Beyond, int32_t);
template std::vector<float> windowOf(const Picture<float>&, int, int, int, int, Beyond, float);

template <class T, class Weight>
int64_t weightedSum(const std::vector<T>& window, const std::vector<Weight>& weights)
{
    int64_t sum = 0;
    for (size_t i = 0; i < window.size(); ++i)
        sum += int64_t{window[i]} * weights[i];
    return sum;
}
template int64_t weightedSum(const std::vector<uint8_t>&, const std::vector<int>&);
template int64_t weightedSum(const std::vector<int16_t>&, const std::vector<int>&);
template int64_t weightedSum(const std::vector<int32_t>&, const std::vector<int>&);
template int64_t weightedSum(const std::vector<uint8_t>&, const std::vector<int8_t>&);
template int64_t weightedSum(const std::vector<uint8_t>&, const std::vector<int16_t>&);
template int64_t weightedSum(const std::vector<int16_t>&, const std::vector<int16_t>&);

} // namespace test

// The memory that rows work on.
#include "bench.h"
#include "content.h"

#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <tuple>
#include <type_traits>

namespace bench {
namespace {

enum class Role { input, output };

// Buffers start at different offsets within a page: with equal ones a store would delay the loads it resembles.
template <class T>
class Buffer
{
public:
    Buffer(unsigned index, Role role) : m_block(std::make_unique<T[]>(kBufferValues + 4096 / sizeof(T)))
    {
        const unsigned lead = (128 * (index + (role == Role::output ? kBuffers : 0)) + 64) / sizeof(T);
        m_data = reinterpret_cast<T*>((reinterpret_cast<uintptr_t>(m_block.get()) + 63) / 64 * 64) + lead;
    }
    T* data() const { return m_data; }

private:
    std::unique_ptr<T[]> m_block;
    T* m_data;
};

template <class T>
constexpr float kNaturalScale = sizeof(T) == 1 || std::is_floating_point_v<T> ? 1 : 16;

template <class T>
T sample(float grey)
{
    const float scaled = grey * kNaturalScale<T>;
    if constexpr (std::is_floating_point_v<T>)
        return scaled;
    else if constexpr (std::is_same_v<T, s8>)
        return static_cast<T>(std::lround(scaled) - 128);
    else
        return static_cast<T>(std::lround(scaled));
}

} // namespace

template <class T>
const T* randomInput(unsigned index)
{
    static std::array<std::unique_ptr<Buffer<T>>, kBuffers> buffers;
    std::unique_ptr<Buffer<T>>& buffer = buffers[index];
    if (!buffer) {
        buffer = std::make_unique<Buffer<T>>(index, Role::input);
        if constexpr (std::is_same_v<T, f32>)
            fillRandom(buffer->data(), kBufferValues);
        else
            fillRandom(reinterpret_cast<u8*>(buffer->data()), kBufferValues * sizeof(T));
    }
    return buffer->data();
}

template <class T>
const T* naturalInput(unsigned index, uint32_t width, uint32_t height)
{
    static std::map<std::tuple<unsigned, uint32_t, uint32_t>, Buffer<T>> buffers;
    const auto [found, isNew] = buffers.try_emplace({index, width, height}, index, Role::input);
    T* const data = found->second.data();
    if (isNew) {
        const std::vector<float> picture = drawNaturalPicture(width, height, index);
        for (size_t i = 0; i < kBufferValues; i++) // again and again, so that no pixel of any size is blank
            data[i] = i < picture.size() ? sample<T>(picture[i]) : data[i - picture.size()];
    }
    return data;
}

template <class T>
T* output(unsigned index)
{
    static std::array<std::unique_ptr<Buffer<T>>, kBuffers> buffers;
    std::unique_ptr<Buffer<T>>& buffer = buffers[index];
    if (!buffer)
        buffer = std::make_unique<Buffer<T>>(index, Role::output);
    return buffer->data();
}

#define RVK_BENCH_BUFFERS(T)                                         \
    template const T* randomInput<T>(unsigned);                      \
    template const T* naturalInput<T>(unsigned, uint32_t, uint32_t); \
    template T* output<T>(unsigned);
RVK_BENCH_BUFFERS(u8)
RVK_BENCH_BUFFERS(u16)
RVK_BENCH_BUFFERS(u32)
RVK_BENCH_BUFFERS(s8)
RVK_BENCH_BUFFERS(s16)
RVK_BENCH_BUFFERS(s32)
RVK_BENCH_BUFFERS(f32)
#undef RVK_BENCH_BUFFERS

} // namespace bench

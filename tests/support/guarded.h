// Memory between two guards that fault on any access: one byte too far ends the test, and so does as
// much as wrong coordinates come to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace test {

class GuardedMemory
{
public:
    enum class Flush { toEnd, toStart }; // which guard the bytes touch

    GuardedMemory(size_t bytes, Flush flush)
    {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE)), guard = 64 * page;
        const size_t body = (bytes + page - 1) / page * page;
        m_size = body + 2 * guard;
        m_base =
            static_cast<uint8_t*>(mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (m_base == MAP_FAILED || mprotect(m_base, guard, PROT_NONE) ||
            mprotect(m_base + guard + body, guard, PROT_NONE))
            abort();
        m_data = m_base + guard + (flush == Flush::toEnd ? body - bytes : 0);
    }
    ~GuardedMemory()
    {
        if (m_base)
            munmap(m_base, m_size);
    }
    GuardedMemory(GuardedMemory&& other) noexcept : m_base(other.m_base), m_size(other.m_size), m_data(other.m_data)
    {
        other.m_base = nullptr;
    }
    GuardedMemory& operator=(GuardedMemory&&) = delete;

    uint8_t* data() const { return m_data; }

private:
    uint8_t* m_base;
    size_t m_size;
    uint8_t* m_data;
};

// What an array has, up to a guard page.
template <class T>
GuardedMemory guardedCopy(const std::vector<T>& values)
{
    GuardedMemory copy(values.size() * sizeof(T), GuardedMemory::Flush::toEnd);
    std::memcpy(copy.data(), values.data(), values.size() * sizeof(T));
    return copy;
}

// Whole pages between guard pages: a region for each argument of a call, the same in all calls.
constexpr size_t kRegionBytes = 1 << 22;
inline uint8_t* regionOf(size_t argument)
{
    static std::vector<GuardedMemory> regions;
    while (regions.size() <= argument)
        regions.emplace_back(kRegionBytes, GuardedMemory::Flush::toStart);
    return regions[argument].data();
}

} // namespace test

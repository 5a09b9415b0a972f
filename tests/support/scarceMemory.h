// Makes allocations of the library fail.
#pragma once

#include "memory.h"

#include <atomic>
#include <cstdlib>

namespace test {

// Grants the library so many allocations and no more, until the end of the scope.
class ScarceMemory
{
public:
    explicit ScarceMemory(int granted) : m_system(rvk::systemAllocator)
    {
        s_left = granted;
        s_live = 0;
        rvk::systemAllocator = {[](size_t size) -> void* { return s_left-- > 0 ? ++s_live, malloc(size) : nullptr; },
                                [](void* block) {
                                    s_live -= block != nullptr;
                                    free(block);
                                }};
    }
    ~ScarceMemory() { rvk::systemAllocator = m_system; }
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    bool hasRefused() const { return s_left < 0; }
    bool allIsReleased() const { return s_live == 0; }

private:
    inline static std::atomic<int> s_left, s_live; // functions may have threads
    rvk::SystemAllocator m_system;
};

} // namespace test

// Scratch memory of the implementations, from the pool that rvkMemInit prepares or, without it, from the heap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rvk {

// Each returns null when all 32 buffers of the pool are out, when memory is exhausted, or when the size overflows.
void* getScratchAligned(uint32_t size, uint32_t alignment);
void* getScratchUnaligned(uint32_t size);
void releaseScratch(void* ptr);

// `count` elements of scratch memory, aligned to 16 bytes unless told otherwise, released at the end of the scope. Test it
// before use: it is null when the memory cannot be had.
template <class T>
class Scratch {
public:
    explicit Scratch(size_t count, uint32_t alignment = 16)
        : m_data(count <= (UINT32_MAX - 256) / sizeof(T)
                     ? static_cast<T*>(getScratchAligned(static_cast<uint32_t>(count * sizeof(T)), alignment))
                     : nullptr)
    {
    }
    ~Scratch() { releaseScratch(m_data); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    explicit operator bool() const { return m_data != nullptr; }
    T* get() const { return m_data; }
    T& operator[](size_t i) const { return m_data[i]; }

private:
    T* m_data;
};

} // namespace rvk

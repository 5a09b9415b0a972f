// Scratch memory of the implementations, from the pool that rvkMemInit prepares or, without it, from the heap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rvk {

// Each returns null when all 32 buffers of the pool are out, when memory is exhausted, or when the size overflows.
void* getScratchAligned(uint32_t size, uint32_t alignment);
void* getScratchUnaligned(uint32_t size);
void releaseScratch(void* ptr);

// A buffer of rows * columns elements, aligned to a cache line; null, too, when 32 bits do not hold its size.
void* getScratchRows(uint64_t rows, uint64_t columns, uint32_t elementSize);

// Scratch memory for rows * columns elements, aligned to a cache line, released at the end of the scope. Test it before
// use: it is null when the memory cannot be had or its size does not fit. Sizes of pictures are multiplied here only:
// size_t holds no such product on a 32-bit target. (Always inline, because vector implementations may not leave shared
// definitions behind.)
#define RVK_ALWAYS_INLINE inline __attribute__((always_inline))
template <class T>
class Scratch
{
public:
    RVK_ALWAYS_INLINE explicit Scratch(uint64_t rows, uint64_t columns = 1)
        : m_data(static_cast<T*>(getScratchRows(rows, columns, sizeof(T))))
    {
    }
    RVK_ALWAYS_INLINE ~Scratch() { releaseScratch(m_data); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    RVK_ALWAYS_INLINE explicit operator bool() const { return m_data != nullptr; }
    RVK_ALWAYS_INLINE T* get() const { return m_data; }
    RVK_ALWAYS_INLINE T& operator[](size_t i) const { return m_data[i]; }

private:
    T* m_data;
};
#undef RVK_ALWAYS_INLINE

} // namespace rvk

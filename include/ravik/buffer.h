/* Ravik: a growing block of memory that the CPU and the DSP can share. C++ only. */
#ifndef RAVIK_BUFFER_H
#define RAVIK_BUFFER_H

#include "types.h"

#ifdef __cplusplus

/* Owns one block of memory of a chosen kind and frees it when it ends. Every function returns true on success.
 *
 * `keep` reuses the block when it is large enough and of the wanted kind: only the size changes. Otherwise the block is
 * released and a new one allocated; its contents are not carried over. Kinds other than RAVIK_MEM_SYSTEM,
 * RAVIK_MEM_SHARED and RAVIK_MEM_LIBRARY fail after the old block is released. */
class RVK_API rvkBuffer
{
public:
    rvkBuffer() = default;
    ~rvkBuffer();
    rvkBuffer(const rvkBuffer&) = delete;
    rvkBuffer& operator=(const rvkBuffer&) = delete;

    /* Makes room for `wanted` bytes and, when `src` is given, copies them from there. */
    bool Set(const void* src, unsigned int wanted, rvkMemOption kind, bool keep);

    /* Makes room for `wanted` bytes. In shared memory they begin at the shared address ORed with `offset`. */
    bool Size(unsigned int wanted, rvkMemOption kind, bool keep, unsigned int offset);

    /* Releases the block, whatever its kind, and clears the buffer. */
    bool Free(rvkMemOption kind);

    /* The steps of the above for system and shared memory, and for library memory. */
    bool commonSize(unsigned int wanted, rvkMemOption kind, bool keep, unsigned int offset);
    bool sharedMemSize(unsigned int wanted, rvkMemOption kind, bool keep);
    bool commonFree(rvkMemOption kind);
    bool sharedMemFree(rvkMemOption kind);

    uint32_t capacity = 0;                  /* bytes that the block can hold */
    uint32_t size = 0;                      /* bytes last asked for */
    void* raw = nullptr;                    /* the block as allocated */
    void* data = nullptr;                   /* where the data begins: a multiple of 16, of 128 in library memory */
    rvkMemOption option = RAVIK_MEM_SYSTEM; /* kind of the block */
    uint32_t reserved = 0;                  /* 0 */
    void* sharedHandle = nullptr;           /* shared memory: what dspmem_alloc returned */
    uint32_t sharedSize = 0;                /* shared memory: bytes asked of dspmem_alloc */
};

#endif

#endif

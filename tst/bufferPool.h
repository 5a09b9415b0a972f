// The library's scratch pool, as the command line wants it for the whole run.
#pragma once

#include <ravik/frame.h>

#include <cstdint>

class BufferPool
{
public:
    // Nothing happens without configure(): scratch buffers are plain allocations.
    void configure(bool preAllocate, uint32_t bytes)
    {
        m_used = true;
        m_preAllocate = preAllocate;
        m_bytes = bytes;
    }
    void open() const
    {
        if (m_used && m_preAllocate)
            rvkMemInitPreAlloc(m_bytes);
        else if (m_used)
            rvkMemInit();
    }
    void close() const
    {
        if (m_used)
            rvkMemDeInit();
    }

private:
    bool m_used = false;
    bool m_preAllocate = false;
    uint32_t m_bytes = 0;
};

extern BufferPool bufferPool;

// Tables of 256 bytes, looked up for several vectors at once.
#pragma once

#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

#if defined(__arm__)

// It does not fit the registers; so each eighth is loaded once for all vectors.
struct SharedTable
{
    alignas(32) uint8_t bytes[256];
};

RVK_INLINE SharedTable prepareShared(const uint8_t (&table)[256])
{
    SharedTable shared;
    __builtin_memcpy(shared.bytes, table, sizeof shared.bytes);
    return shared;
}

// The 32 bytes at p, which is aligned to them; p moves on to the next.
RVK_INLINE uint8x8x4_t loadAlignedEighth(const uint8_t*& p)
{
#if defined(__clang__)
    const uint8x8x4_t eighth = vld1_u8_x4(p);
    p += 32;
    return eighth;
#else
    return loadEighth(p);
#endif
}

// The next eighth comes after this: clang would load all of them first, and keep them and all indices in memory.
RVK_INLINE void keepOrder(Vec<uint8_t>& found, Vec<uint8_t>& index, const uint8_t*& p)
{
    __asm__ volatile("" : "+w"(found.raw), "+w"(index.raw), "+r"(p));
}

// An index outside of an eighth leaves the lane alone.
template <size_t count>
RVK_INLINE Vecs<uint8_t, count> lookup(const SharedTable& table, Vecs<uint8_t, count> index)
{
    const uint8_t* p = table.bytes;
    Vecs<uint8_t, count> found = {};
    unrolled<8>([&](auto) RVK_INLINE_LAMBDA {
        const uint8x8x4_t eighth = loadAlignedEighth(p);
        unrolled<count>([&](auto i) RVK_INLINE_LAMBDA {
            found[i] = join(vtbx4_u8(lowHalf(found[i]), eighth, lowHalf(index[i])),
                            vtbx4_u8(highHalf(found[i]), eighth, highHalf(index[i])));
            index[i] = index[i] - splat<uint8_t>(32);
            keepOrder(found[i], index[i], p);
        });
    });
    return found;
}

RVK_INLINE Vec<uint8_t> lookup(const SharedTable& table, Vec<uint8_t> index)
{
    return lookup(table, Vecs<uint8_t, 1>{index})[0];
}

#else

using SharedTable = Table256;

RVK_INLINE SharedTable prepareShared(const uint8_t (&table)[256])
{
    return prepare(table);
}

template <size_t count>
RVK_INLINE Vecs<uint8_t, count> lookup(const SharedTable& table, Vecs<uint8_t, count> index)
{
    unrolled<count>([&](auto i) RVK_INLINE_LAMBDA { index[i] = lookup(table, index[i]); });
    return index;
}

#endif

} // namespace
} // namespace rvk::vecta::RVK_ISA

// Rows of bits, one for each pixel, the first pixel in the least significant bit of the first byte.
#pragma once

#include "vecta/simd/rows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// Words of such a row, as the machine has them.
using Word = size_t;
constexpr size_t kWordBits = 8 * sizeof(Word);
static_assert(kBytes <= kWordBits);

// Words that a row takes.
RVK_INLINE size_t wordsOfRow(size_t width)
{
    return roundedUp(width, kWordBits) / kWordBits;
}

// The bits of kBytes pixels.
template <class T>
requires(sizeof(T) == 1) RVK_INLINE void storeBits(uint8_t* bits, Mask<T> mask)
{
    const auto lanes = laneBits(Mask<uint8_t>{mask.bits});
    __builtin_memcpy(bits, &lanes, kBytes / 8);
}

// The pixels whose bits are set. May read 16 bytes.
RVK_INLINE Mask<uint8_t> loadBits(const uint8_t* bits)
{
#if defined(__AVX512BW__)
    Mask<uint8_t> mask;
    __builtin_memcpy(&mask.bits, bits, kBytes / 8);
    return mask;
#else
    const Vec<uint8_t> byteOfLane = shiftRight(iota<uint8_t>(), 3);
    // No loop over the lanes: of that clang 14 makes one that runs each time.
    const Vec<uint8_t> bitOfLane = bitCast<uint8_t>(splat(uint64_t{0x8040201008040201}));
    return equal(lookup16(loadTable16(bits), byteOfLane) & bitOfLane, bitOfLane);
#endif
}

// The number of the first and of the last bit that is set; there must be one.
static_assert(sizeof(Word) == sizeof(unsigned long));
RVK_INLINE size_t firstBit(Word bits)
{
    return static_cast<size_t>(__builtin_ctzl(bits));
}
RVK_INLINE size_t lastBit(Word bits)
{
    return kWordBits - 1 - static_cast<size_t>(__builtin_clzl(bits));
}

// The bits of the pixels from the first to number i of a word, i < kWordBits.
RVK_INLINE Word bitsUpTo(size_t i)
{
    return (Word{2} << i) - 1;
}

// visit(x) for each bit that is set, from the lowest up; bit 0 is pixel `first`.
template <class Visit>
RVK_INLINE void forEachBit(Word bits, uint32_t first, Visit visit)
{
    for (; bits; bits &= bits - 1)
        visit(first + static_cast<uint32_t>(firstBit(bits)));
}

// The non-zero pixels of a row; writes whole words. Returns how many there are.
RVK_INLINE uint32_t findNonZero(size_t width, const uint8_t* row, Word* bits)
{
    uint32_t count = 0;
    for (size_t x = 0; x < width; x += kWordBits) {
        Word word = 0;
        for (size_t i = 0; i < kWordBits && x + i < width; i += kBytes) {
            const size_t left = width - x - i;
            const Vec<uint8_t> pixels = left < kBytes ? loadPartial(row + x + i, left) : load(row + x + i);
            word |= static_cast<Word>(laneBits(~equal(pixels, zero<uint8_t>()))) << i;
        }
        bits[x / kWordBits] = word;
        count += countBits(word);
    }
    return count;
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

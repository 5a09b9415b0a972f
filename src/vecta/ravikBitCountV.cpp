// Vector implementations of the bit counts and Hamming distances.
#include "vecta/simd/simd.h"
#include "vecta/vecta.h"

#include <ravik/bitcount.h>

namespace rvk::vecta::RVK_ISA {
namespace {

// The bits to count: those of one string, or those in which two differ.
template <class T>
RVK_INLINE T bitsOf(T a)
{
    return a;
}

template <class T>
RVK_INLINE T bitsOf(T a, T b)
{
    return a ^ b;
}

template <class Word>
RVK_INLINE Word loadWord(const uint8_t* p)
{
    Word word;
    __builtin_memcpy(&word, p, sizeof word);
    return word;
}

// Word by word, the rest by halves.
template <class... Source>
RVK_INLINE uint32_t countByWords(size_t length, const Source*... src)
{
    uint32_t count = 0;
    for (; length >= 32; length -= 32) {
        for (size_t i = 0; i < 32; i += 8)
            count += countBits(bitsOf(loadWord<uint64_t>(src + i)...));
        ((src += 32), ...);
    }
    for (; length >= 8; length -= 8) {
        count += countBits(bitsOf(loadWord<uint64_t>(src)...));
        ((src += 8), ...);
    }
    if (length & 4) {
        count += countBits(bitsOf(loadWord<uint32_t>(src)...));
        ((src += 4), ...);
    }
    if (length & 2) {
        count += countBits(bitsOf(loadWord<uint16_t>(src)...));
        ((src += 2), ...);
    }
    if (length & 1)
        count += countBits(bitsOf(*src...));
    return count;
}

// Vector by vector, the rest by words.
template <class... Source>
RVK_INLINE uint32_t countByVectors(size_t length, const Source*... src)
{
    Vec<uint32_t> total = zero<uint32_t>();
    while (length >= 2 * kBytes) {
        // 15 pairs of at most 8 bits a byte: 240 still fits a byte.
        size_t pairs = length / (2 * kBytes);
        pairs = pairs < 15 ? pairs : 15;
        length -= pairs * 2 * kBytes;
        Vec<uint8_t> counts = zero<uint8_t>();
        for (; pairs; --pairs) {
            const Vec<uint8_t> first = countBits(bitsOf(load(src)...));
            const Vec<uint8_t> second = countBits(bitsOf(load(src + kBytes)...));
            counts = counts + (first + second);
            ((src += 2 * kBytes), ...);
        }
        total = addBytesTo(total, counts);
    }
    if (length >= kBytes) {
        total = addBytesTo(total, countBits(bitsOf(load(src)...)));
        length -= kBytes;
        ((src += kBytes), ...);
    }
    return reduceAdd(total) + countByWords(length, src...);
}

template <class... Source>
RVK_INLINE uint32_t countString(size_t length, const Source*... src)
{
    if (length < kCountBitsInVectorsFrom)
        return countByWords(length, src...);
    return countByVectors(length, src...);
}

RVK_INLINE uint32_t bitCount(const uint8_t* src, size_t length)
{
    return countString(length, src);
}

RVK_INLINE uint32_t hammingDistance(const uint8_t* a, const uint8_t* b, size_t length)
{
    return countString(length, a, b);
}

} // namespace

uint32_t rvkBitCountu32V(const uint32_t* src, uint32_t srcLength)
{
    return countString(size_t{srcLength} * sizeof(uint32_t), reinterpret_cast<const uint8_t*>(src));
}

} // namespace rvk::vecta::RVK_ISA

#include "forms/ravikBitCountForms.h"

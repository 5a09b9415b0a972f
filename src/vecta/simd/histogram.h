// Histograms of bytes.
#pragma once

#include "scratch.h"
#include "vecta/simd/rows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- one by one -------------------------------------------------------------------------------------------------

// Counts in one table or several: an addition to a counter would wait for the one before it, were they of the same
// value. Two pixels are counted abreast for the same reason.
template <class Counter, size_t tables>
RVK_INLINE void count(const uint8_t* p, size_t n, Counter* const (&table)[tables])
{
    constexpr size_t step = 16;
    size_t x = 0;
    for (; x + step <= n; x += step)
        unrolled<step / 2>([&](auto i) RVK_INLINE_LAMBDA {
            if constexpr (tables == 1) {
                ++table[0][p[x + 2 * i]];
                ++table[0][p[x + 2 * i + 1]];
                return;
            }
            Counter& first = table[2 * i % tables][p[x + 2 * i]];
            Counter& second = table[(2 * i + 1) % tables][p[x + 2 * i + 1]];
            const Counter firstCount = first, secondCount = second;
            first = static_cast<Counter>(firstCount + 1);
            second = static_cast<Counter>(secondCount + 1);
        });
    for (; x < n; ++x)
        ++table[0][p[x]];
}

template <class Counter, size_t tables>
RVK_INLINE void countOneByOne(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    constexpr size_t lanes = Vec<Counter>::lanes;
    Counter counts[tables][256]; // in the caches, where the histogram may not be
    Counter* table[tables];
    for (size_t k = 0; k < tables; ++k) {
        for (size_t i = 0; i < 256; i += lanes)
            store(counts[k] + i, zero<Counter>());
        table[k] = counts[k];
        __asm__("" : "+r"(table[k])); // a register each, or the place in the first table would be formed for each pixel
    }
    for (size_t y = 0; y < height; ++y)
        count(src.row(y), width, table);
    for (size_t i = 0; i < 256; i += lanes) {
        Vec<Counter> sum = load(counts[0] + i);
        for (size_t k = 1; k < tables; ++k)
            sum = sum + load(counts[k] + i);
        if constexpr (sizeof(Counter) < sizeof(uint32_t))
            store(histogram + i, widen(sum));
        else
            store(histogram + i, sum);
    }
}

// Of so few pixels that tables of their own would take longer than the waiting.
RVK_INLINE void countFew(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    for (size_t i = 0; i < 256; i += Vec<uint32_t>::lanes)
        store(histogram + i, zero<uint32_t>());
    prefetch(histogram + 256, 256); // of the next cell of a grid: counting in it would wait for its lines
    uint32_t* const table[1] = {histogram};
    for (size_t y = 0; y < height; ++y)
        count(src.row(y), width, table);
}

// ---- in pairs ---------------------------------------------------------------------------------------------------

// A counter for each pair of bytes: half as many counters have to be loaded and stored, which is what counting waits
// for. They are bytes, so that the first-level cache has most of them whatever the picture is; what they cannot hold
// they carry to the histogram.
class PairCounts
{
public:
    static constexpr size_t counters = 65536;

    // The memory for the counters, and a histogram of zeros.
    RVK_INLINE PairCounts(uint8_t* memory, uint32_t (&histogram)[256]) : m_left(memory), m_histogram(histogram)
    {
        __builtin_memset(m_left, kMost, counters);
    }

    // 2 n bytes.
    RVK_INLINE void count(const uint8_t* p, size_t n)
    {
        const uint8_t* const end = p + 2 * n;
        for (; p + 2 * kStep <= end; p += 2 * kStep)
            if (areEqual(p))
                add(pairAt(p), kStep);
            else
                unrolled<kStep / 2>([&](auto k)
                                        RVK_INLINE_LAMBDA { addTwo(pairAt(p + 4 * k), pairAt(p + 4 * k + 2)); });
        for (; p < end; p += 2)
            add(pairAt(p), 1);
    }

    // The counters' part of the histogram. Each pair is in a row by one of its bytes and in a column by the other.
    RVK_INLINE void finish()
    {
        for (size_t row = 0; row < 256; ++row) {
            Vec<uint32_t> sum = zero<uint32_t>();
            for (size_t column = 0; column < 256; column += kBytes)
                sum = addBytesTo(sum, counted(row, column));
            m_histogram[row] += reduceAdd(sum);
        }
        constexpr size_t together = 4;
        for (size_t column = 0; column < 256; column += together * kBytes) {
            Vecs<uint16_t, 2 * together> sums = {}; // of 256 bytes each
            for (size_t row = 0; row < 256; ++row)
                unrolled<together>([&](auto k) RVK_INLINE_LAMBDA {
                    const Vecs<uint16_t, 2> counts = widen(counted(row, column + k * kBytes));
                    sums[2 * k] = sums[2 * k] + counts[0];
                    sums[2 * k + 1] = sums[2 * k + 1] + counts[1];
                });
            uint16_t stored[together * kBytes];
            store(stored, sums);
            for (size_t i = 0; i < together * kBytes; ++i)
                m_histogram[column + i] += stored[i];
        }
    }

private:
    uint8_t* m_left; // by pair: the counters count down, so that the sign tells when one wraps
    uint32_t (&m_histogram)[256];

    static constexpr size_t kStep = 16; // pairs
    static constexpr uint8_t kMost = 255;

    // What is left for a pair after n more of it: below 0 when its counter wrapped.
    RVK_INLINE int32_t take(size_t pair, int32_t n)
    {
        const int32_t left = m_left[pair] - n;
        m_left[pair] = static_cast<uint8_t>(left);
        return left;
    }

    RVK_INLINE void add(size_t pair, int32_t n)
    {
        if (__builtin_expect(take(pair, n) < 0, false))
            carry(m_histogram, pair);
    }

    RVK_INLINE void addTwo(size_t first, size_t second)
    {
#if defined(__x86_64__) // counts in memory in one instruction, whose flag tells
        add(first, 1);
        add(second, 1);
#else // counts in registers: one branch for two saves a sixth of the instructions
        const int32_t left = take(first, 1), alsoLeft = take(second, 1);
        if (__builtin_expect((left | alsoLeft) < 0, false)) {
            if (left < 0)
                carry(m_histogram, first);
            if (alsoLeft < 0)
                carry(m_histogram, second);
        }
#endif
    }

    static RVK_NOINLINE void carry(uint32_t (&histogram)[256], size_t pair)
    {
        histogram[pair % 256] += kMost + 1;
        histogram[pair / 256] += kMost + 1;
    }

    RVK_INLINE Vec<uint8_t> counted(size_t row, size_t column) const
    {
        return ~load(m_left + row * 256 + column);
    }

    static RVK_INLINE size_t pairAt(const uint8_t* p)
    {
        uint16_t pair;
        __builtin_memcpy(&pair, p, sizeof pair);
        return pair;
    }

    // Whether the pairs of a step are one again and again: the additions to its counter would wait for each other.
    static RVK_INLINE bool areEqual(const uint8_t* p)
    {
        const auto wordAt = [p](size_t i) RVK_INLINE_LAMBDA {
            size_t word;
            __builtin_memcpy(&word, p + i, sizeof word);
            return word;
        };
        const size_t word = wordAt(0);
        if (word != (word << 16 | word >> (8 * sizeof word - 16)))
            return false;
        for (size_t i = sizeof word; i < 2 * kStep; i += sizeof word)
            if (wordAt(i) != word)
                return false;
        return true;
    }
};

// ---- pictures ---------------------------------------------------------------------------------------------------

// From so many pixels on the pairs' counters are worth their clearing and summing.
constexpr size_t kFewestForPairs = size_t{1} << 16;
// And from so many on four tables, or two: of fewer, clearing and adding up a second table takes longer than waiting.
constexpr size_t kFewestForFourTables = 2048, kFewestForTwoTables = 768;

// False, with nothing done, when there is no memory for the counters.
RVK_INLINE bool countInPairs(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    const Scratch<uint8_t> counters(PairCounts::counters);
    if (!counters)
        return false;
    __builtin_memset(histogram, 0, sizeof histogram);
    PairCounts pairs(counters.get(), histogram);
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* row = src.row(y);
        pairs.count(row, width / 2);
        if (width % 2)
            ++histogram[row[width - 1]];
    }
    pairs.finish();
    return true;
}

// histogram[v] = how many pixels are v.
RVK_NOINLINE void countBytes(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    const size_t pixels = width * height;
    if (pixels < kFewestForTwoTables)
        countFew(width, height, src, histogram);
    else if (pixels < kFewestForFourTables)
        countOneByOne<uint16_t, 2>(width, height, src, histogram);
    else if (width < 2 || pixels < kFewestForPairs || !countInPairs(width, height, src, histogram))
        countOneByOne<uint32_t, 4>(width, height, src, histogram);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

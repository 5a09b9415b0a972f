// Histograms of bytes.
#pragma once

#include "scratch.h"
#include "vecta/simd/rows.h"

namespace rvk::vecta::RVK_ISA {
namespace {

// ---- one by one -------------------------------------------------------------------------------------------------

// Counts in several tables: an addition to a counter would wait for the one before it, were they of the same value. Two
// pixels are counted abreast for the same reason.
constexpr size_t kTables = 4;

RVK_INLINE void count(const uint8_t* p, size_t n, uint32_t (&tables)[kTables][256])
{
    uint32_t* table[kTables];
    for (size_t k = 0; k < kTables; ++k) {
        table[k] = tables[k];
        __asm__("" : "+r"(table[k])); // a register each, or the place in the first table would be formed for each pixel
    }
    constexpr size_t step = 16;
    size_t x = 0;
    for (; x + step <= n; x += step)
        unrolled<step / 2>([&](auto i) RVK_INLINE_LAMBDA {
            uint32_t& first = table[2 * i % kTables][p[x + 2 * i]];
            uint32_t& second = table[2 * i % kTables + 1][p[x + 2 * i + 1]];
            const uint32_t firstCount = first, secondCount = second;
            first = firstCount + 1;
            second = secondCount + 1;
        });
    for (; x < n; ++x)
        ++table[0][p[x]];
}

// ---- in pairs ---------------------------------------------------------------------------------------------------

// A counter for each pair of bytes: half as many counters have to be loaded and stored. Neighbours are alike, so the
// counters that a picture needs are few, and the first-level cache holds them.
class PairCounts
{
public:
    static constexpr size_t counters = 65536;

    RVK_INLINE explicit PairCounts(uint16_t* zeroed) : m_counts(zeroed) {}

    // 2 n bytes.
    RVK_INLINE void count(const uint8_t* p, size_t n, uint32_t (&histogram)[256])
    {
        while (n > 0) {
            if (m_room == 0)
                moveTo(histogram);
            const size_t part = least(n, m_room);
            countSome(p, part);
            p += 2 * part;
            n -= part;
            m_room -= part;
        }
    }

    // Each pair is in a row by one of its bytes and in a column by the other. All sums fit 16 bits as the counters do.
    RVK_INLINE void moveTo(uint32_t (&histogram)[256])
    {
        constexpr size_t lanes = Vec<uint16_t>::lanes, together = 4;
        Vec<uint16_t> rows[256] = {};
        for (size_t column = 0; column < 256; column += together * lanes) {
            Vecs<uint16_t, together> columns = {};
            for (size_t row = 0; row < 256; ++row)
                unrolled<together>([&](auto k) RVK_INLINE_LAMBDA {
                    const Vec<uint16_t> counts = load(m_counts + row * 256 + column + k * lanes);
                    columns[k] = columns[k] + counts;
                    rows[row] = rows[row] + counts;
                });
            uint16_t sums[together * lanes];
            store(sums, columns);
            for (size_t i = 0; i < together * lanes; ++i)
                histogram[column + i] += sums[i];
        }
        for (size_t row = 0; row < 256; ++row)
            histogram[row] += static_cast<uint32_t>(reduceAdd(rows[row]));
        __builtin_memset(m_counts, 0, counters * sizeof *m_counts);
        m_room = UINT16_MAX;
    }

private:
    uint16_t* m_counts;
    size_t m_room = UINT16_MAX; // pairs until a counter may be full

    static constexpr size_t kStep = 16; // pairs

    RVK_INLINE void countSome(const uint8_t* p, size_t n) const
    {
        const uint8_t* const end = p + 2 * n;
        for (; p + 2 * kStep <= end; p += 2 * kStep)
            if (areEqual(p))
                m_counts[pairAt(p)] = static_cast<uint16_t>(m_counts[pairAt(p)] + kStep);
            else
                unrolled<kStep>([&](auto k) RVK_INLINE_LAMBDA { ++m_counts[pairAt(p + 2 * k)]; });
        for (; p < end; p += 2)
            ++m_counts[pairAt(p)];
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
constexpr size_t kFewestForPairs = size_t{1} << 17;

RVK_INLINE void countOneByOne(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    uint32_t tables[kTables][256] = {};
    for (size_t y = 0; y < height; ++y)
        count(src.row(y), width, tables);
    for (size_t i = 0; i < 256; ++i)
        histogram[i] = tables[0][i] + tables[1][i] + tables[2][i] + tables[3][i];
}

// False, with nothing done, when there is no memory for the counters.
RVK_INLINE bool countInPairs(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    const Scratch<uint16_t> counters(PairCounts::counters);
    if (!counters)
        return false;
    __builtin_memset(counters.get(), 0, PairCounts::counters * sizeof(uint16_t));
    __builtin_memset(histogram, 0, sizeof histogram);
    PairCounts pairs(counters.get());
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* row = src.row(y);
        pairs.count(row, width / 2, histogram);
        if (width % 2)
            ++histogram[row[width - 1]];
    }
    pairs.moveTo(histogram);
    return true;
}

RVK_INLINE void countBytes(size_t width, size_t height, Plane<const uint8_t> src, uint32_t (&histogram)[256])
{
    const bool isLarge = width >= 2 && width * height >= kFewestForPairs;
    if (!isLarge || !countInPairs(width, height, src, histogram))
        countOneByOne(width, height, src, histogram);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

// Sums of bytes weighted by their columns and rows, where products of bytes are summed four at a time in one operation.
#pragma once

#include "vecta/simd/rows.h"

#if defined(__AVX512VNNI__)

namespace rvk::vecta::RVK_ISA {
namespace {

struct FirstSums
{
    uint64_t s00, s10, s01; // weighted by 1, by columns and by rows
};

// Of a part of a picture. Rows are summed from left to right, and the sums up to each vector are added up: so a vector
// counts once more for each that follows it. The same is done with rows. A vector takes three operations.
class FirstSumsOfBlock
{
public:
    static constexpr size_t mostColumns = 1024, mostRows = 128; // so that sums fit 32 bits

    static RVK_INLINE FirstSums of(const uint8_t* p, size_t pitch, size_t width, size_t height)
    {
        FirstSumsOfBlock block;
        size_t y = 0;
        for (; y + together <= height; y += together)
            block.addRows<together>(p + y * pitch, pitch, width);
        for (; y < height; ++y)
            block.addRows<1>(p + y * pitch, pitch, width);
        return block.total(width, height);
    }

private:
    static constexpr size_t lanes = Vec<uint8_t>::lanes, together = 4;

    template <size_t rows>
    RVK_INLINE void addRows(const uint8_t* p, size_t pitch, size_t width)
    {
        Vec<int32_t> row[rows] = {};
        const auto addVectors = [&](auto loadFrom) RVK_INLINE_LAMBDA {
            unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA {
                const Vec<uint8_t> v = loadFrom(p + i * pitch);
                row[i] = addDotQuads(row[i], v, splat<int8_t>(1));
                m_inVectors[i] = addDotQuads(m_inVectors[i], v, iota<int8_t>());
                m_ofVectors = m_ofVectors + row[i];
            });
            p += lanes;
        };
        for (size_t vectors = width / lanes; vectors; --vectors)
            addVectors([](const uint8_t* q) RVK_INLINE_LAMBDA { return load(q); });
        if (const size_t rest = width % lanes)
            addVectors([=](const uint8_t* q) RVK_INLINE_LAMBDA { return loadPartial(q, rest); });
        unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA {
            m_sum = m_sum + row[i];
            m_ofRows = m_ofRows + m_sum;
        });
    }

    RVK_INLINE FirstSums total(size_t width, size_t height) const
    {
        const Vec<int32_t> inVectors = (m_inVectors[0] + m_inVectors[1]) + (m_inVectors[2] + m_inVectors[3]);
        uint32_t sums[4];
        storeSums(sums, bitCast<uint32_t>(Vecs<int32_t, 4>{m_sum, inVectors, m_ofVectors, m_ofRows}));
        const uint64_t sum = sums[0], vectors = (width + lanes - 1) / lanes;
        return {sum, sums[1] + lanes * (vectors * sum - sums[2]), height * sum - sums[3]};
    }

    Vec<int32_t> m_sum = {}, m_inVectors[together] = {}, m_ofVectors = {}, m_ofRows = {};
};

RVK_NOINLINE FirstSums firstSums(const uint8_t* src, size_t width, size_t height, size_t stride)
{
    FirstSums sums = {};
    for (size_t y = 0, rows; y < height; y += rows) {
        rows = least(height - y, FirstSumsOfBlock::mostRows);
        for (size_t x = 0, columns; x < width; x += columns) {
            columns = least(width - x, FirstSumsOfBlock::mostColumns);
            const FirstSums block = FirstSumsOfBlock::of(src + y * stride + x, stride, columns, rows);
            sums.s00 += block.s00;
            sums.s10 += block.s10 + x * block.s00;
            sums.s01 += block.s01 + y * block.s00;
        }
    }
    return sums;
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

#endif

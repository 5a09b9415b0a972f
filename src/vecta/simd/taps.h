// Columns of a destination that are weighted sums of a few pixels of a row: which pixels, with which weights, is made
// into a table once, from which rows are computed by shuffles.
//
// A step is as many columns as a vector has lanes of 16 bits. A column takes one or two pairs of bytes, each with two
// weights; TapsOfStep is what the table has for one pair of each column of a step. Columns is the table for a kind of
// sum: set() each pair of each column, finish(), then sum() rows.
#pragma once

#include "scratch.h"
#include "vecta/simd/simd.h"

namespace rvk::vecta::RVK_ISA {
namespace {

constexpr size_t kColumns = Vec<int16_t>::lanes;

// Where the first and the second byte of a column's pair lie among those of a step.
RVK_INLINE size_t laneOfPair(size_t column, size_t which)
{
#if defined(__x86_64__)
    return 2 * column + which;
#else
    return which * kColumns + column;
#endif
}

struct TapsOfStep
{
    uint8_t indices[kBytes]; // into windows
#if defined(__x86_64__)
    int8_t coarse[kBytes], fine[kBytes]; // of the bytes of pairs: weight = 64 * coarse + fine, or as below
#else
    int16_t weights[2][kColumns];
#endif
#if defined(__aarch64__)
    uint8_t indicesOfWords[2][kBytes]; // of the first and of the second bytes, as upper bytes of words
#endif
};

// Each kind of sum has setWeights, which puts the weights of one pair of each column into the table, and sum, which
// takes the pairs of all columns of a step and what the table has for them.

#if defined(__x86_64__)
// weight = 64 * coarse + fine
struct SplitWeight
{
    Vec<int16_t> coarse, fine;

    RVK_INLINE explicit SplitWeight(Vec<int16_t> weight)
        : coarse(shiftRight(weight + splat<int16_t>(32), 6)), fine(weight - shiftLeft(coarse, 6))
    {
    }
};

// What fits bytes, by turns.
RVK_INLINE Vec<int8_t> bytePairs(Vec<int16_t> first, Vec<int16_t> second)
{
    return bitCast<int8_t>((first & splat<int16_t>(255)) | shiftLeft(second, 8));
}
#endif

// (p0 * (2^13 - weight) + p1 * weight + 2^5) / 2^6, rounded down; on x86 its negative, since a signed byte can be -128,
// but not 128. Between two such rows, between() is of either sign.
struct Interpolation
{
    static constexpr size_t pairs = 1, values = 1;

#if defined(__x86_64__)
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t>, Vec<int16_t> weight)
    {
        const SplitWeight split(weight);
        store(taps.coarse, bytePairs(split.coarse - splat<int16_t>(128), zero<int16_t>() - split.coarse));
        store(taps.fine, bytePairs(zero<int16_t>() - split.fine, split.fine));
    }
    RVK_INLINE static Vec<int16_t> sum(const Vecs<uint8_t, 1>& pixels, const TapsOfStep* taps)
    {
        const Vec<int16_t> fine = dotPairs(pixels[0], load(taps->fine));
        return dotPairs(pixels[0], load(taps->coarse)) - shiftRightRounded(fine, 6);
    }
    // (upper * (2^15 - weight) + lower * weight + 2^14) / 2^15
    RVK_INLINE static Vec<int16_t> between(Vec<int16_t> upper, Vec<int16_t> lower, Vec<int16_t> weight)
    {
        return multiplyRounded(upper - lower, weight) - upper;
    }
#else
#if defined(__aarch64__)
    // A second look-up gives words where halves of bytes would have to be widened: lanes without an index become 0.
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t>, Vec<int16_t> weight)
    {
        store(taps.weights[0], shiftLeft(weight, 2));
        store(taps.indicesOfWords[0], zip(splat<uint8_t>(255), load(taps.indices)));
    }
    RVK_INLINE static Vec<int16_t> sum(const Vecs<uint8_t, 2>& words, const TapsOfStep* taps)
    {
        const uint16x8_t first = reg(bitCast<uint16_t>(words[0])), second = reg(bitCast<uint16_t>(words[1]));
        const Vec<int16_t> difference = vec(vreinterpretq_s16_u16(vhsubq_u16(second, first)));
        const int16x8_t part = reg(multiplyRounded(difference, load(taps->weights[0])));
        return vec(vreinterpretq_s16_u16(vsraq_n_u16(vreinterpretq_u16_s16(part), first, 1)));
    }
    RVK_INLINE static Vec<int16_t> sum(const Vecs<uint8_t, 1>& pixels, const TapsOfStep* taps)
    {
        return sum(zip(zero<uint8_t>(), pixels[0]), taps);
    }
#else
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t>, Vec<int16_t> weight)
    {
        store(taps.weights[0], shiftLeft(weight, 2));
    }
    RVK_INLINE static Vec<int16_t> sum(const Vecs<uint8_t, 1>& pixels, const TapsOfStep* taps)
    {
        const Vec<int16_t> first = vec(vreinterpretq_s16_u16(vshll_n_u8(lowHalf(pixels[0]), 7)));
        const Vec<int16_t> second = vec(vreinterpretq_s16_u16(vshll_n_u8(highHalf(pixels[0]), 7)));
        return first + multiplyRounded(second - first, load(taps->weights[0]));
    }
#endif
    RVK_INLINE static Vec<int16_t> between(Vec<int16_t> upper, Vec<int16_t> lower, Vec<int16_t> weight)
    {
        return upper + multiplyRounded(lower - upper, weight);
    }
#endif

    // between() without its 7 bits of fraction. It fits bytes: nothing is to saturate, so the lower ones can be picked
    // by one permutation, where saturated ones would have to be put in order.
    RVK_INLINE static Vec<uint8_t> pixels(const Vecs<int16_t, 2>& between)
    {
        if constexpr (kBytes == 64)
            return narrow(bitCast<uint16_t>(
                both(between, [](auto half) RVK_INLINE_LAMBDA { return shiftRightRounded(half, 7); })));
        else
            return narrowRounded<uint8_t, 7>(between);
    }
};

#if defined(__x86_64__)
RVK_INLINE void setSplitWeights(TapsOfStep& taps, Vec<int16_t> weight0, Vec<int16_t> weight1)
{
    const SplitWeight first(weight0), second(weight1);
    store(taps.coarse, bytePairs(first.coarse, second.coarse));
    store(taps.fine, bytePairs(first.fine, second.fine));
}
#else
RVK_INLINE void setPlainWeights(TapsOfStep& taps, Vec<int16_t> weight0, Vec<int16_t> weight1)
{
    store(taps.weights[0], weight0);
    store(taps.weights[1], weight1);
}

// The bytes of pairs, first and second ones apart, with 16 bits.
RVK_INLINE Vecs<int16_t, 2> widenPairs(Vec<uint8_t> pairs)
{
    return bitCast<int16_t>(widen(pairs));
}
#endif

// (p0 * weight0 + ... + p3 * weight3 + 2^5) / 2^6, rounded down, for weights of a sum of 2^12 of which no two
// neighbours make more than that.
struct CubicInterpolation
{
    static constexpr size_t pairs = 2, values = 1;

#if defined(__x86_64__)
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t> weight0, Vec<int16_t> weight1)
    {
        setSplitWeights(taps, weight0, weight1);
    }
    RVK_INLINE static Vec<int16_t> sum(const Vecs<uint8_t, 2>& pixels, const TapsOfStep* taps)
    {
        const auto parts = [&](auto part) RVK_INLINE_LAMBDA {
            return dotPairs(pixels[0], load(taps[0].*part)) + dotPairs(pixels[1], load(taps[1].*part));
        };
        return parts(&TapsOfStep::coarse) + shiftRightRounded(parts(&TapsOfStep::fine), 6);
    }
#else
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t> weight0, Vec<int16_t> weight1)
    {
        setPlainWeights(taps, weight0, weight1);
    }
    RVK_INLINE static Vec<int16_t> sum(const Vecs<uint8_t, 2>& pixels, const TapsOfStep* taps)
    {
        const auto weightsOf = [](const TapsOfStep& pair) RVK_INLINE_LAMBDA {
            return Vecs<int16_t, 2>{load(pair.weights[0]), load(pair.weights[1])};
        };
        const Vecs<int32_t, 2> first = dotInLanes(widenPairs(pixels[0]), weightsOf(taps[0]));
        const Vecs<int32_t, 2> all = addDotInLanes(first, widenPairs(pixels[1]), weightsOf(taps[1]));
        return narrowRoundedInLanes<int16_t, 6>(all);
    }
#endif
};

// p0 * weight0 + ..., for weights from 0 to 127 of a sum of 128 at most.
template <size_t count>
struct WeightedSum
{
    static_assert(count == 1 || count == 2);
    static constexpr size_t pairs = count, values = 1;

#if defined(__x86_64__)
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t> weight0, Vec<int16_t> weight1)
    {
        store(taps.coarse, bytePairs(weight0, weight1));
    }
    RVK_INLINE static Vec<int16_t> sumOfPair(Vec<uint8_t> pixels, const TapsOfStep& taps)
    {
        return dotPairs(pixels, load(taps.coarse));
    }
#else
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t> weight0, Vec<int16_t> weight1)
    {
        setPlainWeights(taps, weight0, weight1);
    }
    RVK_INLINE static Vec<int16_t> sumOfPair(Vec<uint8_t> pixels, const TapsOfStep& taps)
    {
        const Vecs<int16_t, 2> p = widenPairs(pixels);
        return p[0] * load(taps.weights[0]) + p[1] * load(taps.weights[1]);
    }
#endif
    RVK_INLINE static Vec<int16_t> sum(const Vecs<uint8_t, count>& pixels, const TapsOfStep* taps)
    {
        if constexpr (count == 1)
            return sumOfPair(pixels[0], taps[0]);
        else
            return sumOfPair(pixels[0], taps[0]) + sumOfPair(pixels[1], taps[1]);
    }
};

// The same for weights of a larger sum: 64 * the first value + the second one.
constexpr uint32_t kMostOfSplitSum = 8000;
template <size_t count>
struct SplitSum
{
    static_assert(count == 1 || count == 2);
    static constexpr size_t pairs = count, values = 2;

#if defined(__x86_64__)
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t> weight0, Vec<int16_t> weight1)
    {
        setSplitWeights(taps, weight0, weight1);
    }
    RVK_INLINE static Vecs<int16_t, 2> sum(const Vecs<uint8_t, count>& pixels, const TapsOfStep* taps)
    {
        Vec<int16_t> coarse = dotPairs(pixels[0], load(taps[0].coarse)), fine = dotPairs(pixels[0], load(taps[0].fine));
        if constexpr (count == 2) {
            coarse = coarse + dotPairs(pixels[1], load(taps[1].coarse));
            fine = fine + dotPairs(pixels[1], load(taps[1].fine));
        }
        return {coarse, fine};
    }
#else
    RVK_INLINE static void setWeights(TapsOfStep& taps, Vec<int16_t> weight0, Vec<int16_t> weight1)
    {
        setPlainWeights(taps, weight0, weight1);
    }
    RVK_INLINE static Vecs<int16_t, 2> sum(const Vecs<uint8_t, count>& pixels, const TapsOfStep* taps)
    {
        const auto weightsOf = [](const TapsOfStep& pair) RVK_INLINE_LAMBDA {
            return Vecs<int16_t, 2>{load(pair.weights[0]), load(pair.weights[1])};
        };
        Vecs<int32_t, 2> all = dotInLanes(widenPairs(pixels[0]), weightsOf(taps[0]));
        if constexpr (count == 2)
            all = addDotInLanes(all, widenPairs(pixels[1]), weightsOf(taps[1]));
        const auto coarse = both(all, [](auto v) RVK_INLINE_LAMBDA { return shiftRight(v, 6); });
        return {narrowInLanes(coarse), narrowInLanes(all) & splat<int16_t>(63)};
    }
#endif
};

// shiftRight by what is no constant.
RVK_INLINE Vec<uint16_t> shiftRightByVariable(Vec<uint16_t> v, unsigned count)
{
#if defined(__AVX512BW__) // a number for each lane: one operation, where one for all of them takes two
    return vec<uint16_t>(_mm512_srlv_epi16(reg(v), reg(splat(static_cast<uint16_t>(count)))));
#else
    return shiftRight(v, count);
#endif
}

// (columns + 2^(shift - 1)) / 2^shift, below 256, of two or four vectors of bytes by turns.
template <unsigned shift>
RVK_INLINE void storeColumns(uint8_t* p, const Vecs<uint16_t, 2>& first, const Vecs<uint16_t, 2>& second)
{
#if defined(__x86_64__)
    const auto pairs = [](Vec<uint16_t> a, Vec<uint16_t> b) RVK_INLINE_LAMBDA {
        const Vec<uint16_t> half = splat<uint16_t>(1 << (shift - 1));
        return bitCast<uint8_t>(shiftRight(a + half, shift) | shiftLeft(shiftRight(b + half, shift), 8));
    };
    store(p, both(first, second, pairs));
#else
    store2(p, Vecs<uint8_t, 2>{narrowRounded<uint8_t, shift>(first), narrowRounded<uint8_t, shift>(second)});
#endif
}

template <unsigned shift>
RVK_INLINE void storeColumns(uint8_t* p, const Vecs<uint16_t, 2>& first, const Vecs<uint16_t, 2>& second,
                             const Vecs<uint16_t, 2>& third, const Vecs<uint16_t, 2>& fourth)
{
#if defined(__x86_64__)
    const auto pairs = [](Vec<uint16_t> a, Vec<uint16_t> b) RVK_INLINE_LAMBDA {
        const Vec<uint16_t> half = splat<uint16_t>(1 << (shift - 1));
        return shiftRight(a + half, shift) | shiftLeft(shiftRight(b + half, shift), 8);
    };
    unrolled<2>([&](auto i) RVK_INLINE_LAMBDA {
        store2(reinterpret_cast<uint16_t*>(p) + i * 2 * kColumns,
               Vecs<uint16_t, 2>{pairs(first[i], second[i]), pairs(third[i], fourth[i])});
    });
#else
    store4(p, Vecs<uint8_t, 4>{narrowRounded<uint8_t, shift>(first), narrowRounded<uint8_t, shift>(second),
                               narrowRounded<uint8_t, shift>(third), narrowRounded<uint8_t, shift>(fourth)});
#endif
}

// ---- tables ---------------------------------------------------------------------------------------------------------

constexpr size_t kWindowsOfStep = kBytes / kWindow;

// Strips of columns that are walked down: as many steps as leave registers enough, and so many rows of the destination.
// More rows are on more pages than are fetched ahead of at a time; fewer are soon done where strips are narrow.
#if defined(__aarch64__)
constexpr size_t kStepsOfStrip = 4, kRowsOfStrip = 32;
#else
constexpr size_t kStepsOfStrip = 2, kRowsOfStrip = kBytes == 64 ? 16 : 32;
#endif

// Rows of the source that are scaled at once: they share what is read from the table.
constexpr size_t kMostInBatch = 4;
struct RowBatch
{
    const uint8_t* src[kMostInBatch];
    int16_t* dst[kMostInBatch];
};

// One pair of bytes of each column of a step: where the first byte is, and their weights.
struct PairsOfStep
{
    uint32_t places[kColumns];
    int16_t weights[2][kColumns];
};

// Which bytes of a row of the source make the columns of a row of the destination: as many pairs for each. Steps reach
// beyond the end, where they have the last column again and again.
class ColumnTable
{
public:
    // The bytes of a pair are `apart` from each other, but for those whose second one would be beyond the row: there it
    // is the first one again.
    ColumnTable(size_t rowBytes, size_t apart, size_t columns, size_t pairs, size_t stepsAtOnce)
        : m_rowBytes(rowBytes), m_apart(apart), m_columns(columns), m_pairs(pairs),
          m_steps(roundedUp(columns, stepsAtOnce * kColumns) / kColumns), m_given(m_steps, pairs),
          m_offsets(m_steps * pairs, kWindowsOfStep), m_taps(m_steps, pairs)
    {
    }
    bool exists() const { return m_given && m_offsets && m_taps; }
    bool hasWindows() const { return m_windowSize != 0; }

    // One pair of a column: where its first byte is, and the weights.
    RVK_INLINE void set(size_t column, size_t pair, size_t place, int32_t weight0, int32_t weight1)
    {
        PairsOfStep& p = pairsOfStep(column / kColumns, pair);
        p.places[column % kColumns] = static_cast<uint32_t>(place);
        p.weights[0][column % kColumns] = static_cast<int16_t>(weight0);
        p.weights[1][column % kColumns] = static_cast<int16_t>(weight1);
    }
    // The same of all columns of a step.
    RVK_INLINE PairsOfStep& pairsOfStep(size_t step, size_t pair = 0) { return m_given[step * m_pairs + pair]; }

protected:
    // After the last column was set.
    void findWindows();
    // The bytes of a pair of a step, one by one, where there are no windows.
    void fetchEach(const uint8_t* row, const PairsOfStep& pairs, uint8_t* bytes) const;

    size_t m_rowBytes, m_apart, m_columns, m_pairs, m_steps;
    Scratch<PairsOfStep> m_given;
    Scratch<uint32_t> m_offsets; // of windows
    Scratch<TapsOfStep> m_taps;
    size_t m_windowSize = 0; // in kWindow; 0: there are pairs only

private:
    RVK_INLINE uint32_t secondPlace(uint32_t place) const
    {
        return place + (place + m_apart < m_rowBytes ? static_cast<uint32_t>(m_apart) : 0);
    }
    bool makeWindows(size_t size);
};

RVK_NOINLINE void ColumnTable::findWindows()
{
    const size_t last = m_columns - 1;
    for (size_t column = m_columns; column < m_steps * kColumns; ++column)
        for (size_t pair = 0; pair < m_pairs; ++pair)
            set(column, pair, m_given[last / kColumns * m_pairs + pair].places[last % kColumns], 0, 0);
    m_windowSize = makeWindows(1) ? 1 : m_rowBytes >= 2 * kWindow && makeWindows(2) ? 2 : 0;
}

// Whether windows of so many kWindow hold all the bytes that are to be taken from each; then the indices are known.
RVK_NOINLINE bool ColumnTable::makeWindows(size_t size)
{
    constexpr size_t columns = kColumns / kWindowsOfStep; // of a window
    const size_t bytes = size * kWindow, lastWindow = m_rowBytes < bytes ? 0 : m_rowBytes - bytes;
    for (size_t i = 0; i < m_steps * m_pairs; ++i)
        for (size_t window = 0; window < kWindowsOfStep; ++window) {
            // Columns are in the order of their pixels.
            const uint32_t* const places = m_given[i].places + window * columns;
            const uint32_t first = places[0], last = secondPlace(places[columns - 1]);
            if (last - first >= bytes)
                return false;
            const uint32_t offset = static_cast<uint32_t>(least(first, lastWindow));
            m_offsets[i * kWindowsOfStep + window] = offset;
            uint8_t* __restrict const indices = m_taps[i].indices;
            for (size_t k = 0; k < columns; ++k) {
                indices[laneOfPair(window * columns + k, 0)] = static_cast<uint8_t>(places[k] - offset);
                indices[laneOfPair(window * columns + k, 1)] = static_cast<uint8_t>(secondPlace(places[k]) - offset);
            }
        }
    return true;
}

RVK_NOINLINE void ColumnTable::fetchEach(const uint8_t* row, const PairsOfStep& pairs, uint8_t* bytes) const
{
    for (size_t column = 0; column < kColumns; ++column) {
        bytes[laneOfPair(column, 0)] = row[pairs.places[column]];
        bytes[laneOfPair(column, 1)] = row[secondPlace(pairs.places[column])];
    }
}

// The bytes of a row of the destination as sums of pairs of bytes of a row of the source.
template <class Sum>
class Columns : public ColumnTable
{
public:
    Columns(size_t rowBytes, size_t columns, size_t apart = 1, size_t stepsAtOnce = 1)
        : ColumnTable(rowBytes, apart, columns, Sum::pairs, stepsAtOnce)
    {
    }
    // A scaled row.
    size_t values() const { return m_steps * kValues; }

    // After the last column was set.
    void finish()
    {
        findWindows();
        for (size_t i = 0; i < m_steps * Sum::pairs; ++i)
            Sum::setWeights(m_taps[i], load(m_given[i].weights[0]), load(m_given[i].weights[1]));
    }

    // Of the first rows of a batch: kMostInBatch or half of them.
    template <size_t rows>
    void sum(const RowBatch& batch) const;

private:
    static constexpr size_t kValues = kColumns * Sum::values; // of a step

    // fetch(row, step, its taps) gives the pairs of a step.
    template <size_t rows, class Fetch>
    RVK_INLINE void sumSteps(const RowBatch& batch, Fetch fetch) const;
    template <size_t rows>
    RVK_NOINLINE void sumWholeWindows(const RowBatch& batch) const;
};

template <class Sum>
template <size_t rows, class Fetch>
RVK_INLINE void Columns<Sum>::sumSteps(const RowBatch& batch, Fetch fetch) const
{
    const TapsOfStep* taps = m_taps.get();
    const uint8_t* src[rows];
    int16_t* dst[rows];
    unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA {
        src[i] = batch.src[i];
        dst[i] = batch.dst[i];
    });
    for (size_t step = 0, x = 0, steps = m_steps; step < steps; ++step, x += kValues, taps += Sum::pairs) {
        decltype(Sum::sum(fetch(src[0], step, taps), taps)) sums[rows];
        unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA { sums[i] = Sum::sum(fetch(src[i], step, taps), taps); });
        unrolled<rows>([&](auto i) RVK_INLINE_LAMBDA { store(dst[i] + x, sums[i]); });
    }
}

// The pairs of a step, from windows n * kWindow wide.
template <size_t n, class Sum>
RVK_INLINE auto fetchFromWindows(const uint8_t* row, const uint32_t* offsets, const TapsOfStep* taps)
{
#if defined(__aarch64__)
    if constexpr (isSame<Sum, Interpolation>)
        return Vecs<uint8_t, 2>{lookupWindows<n>(row, offsets, load(taps->indicesOfWords[0])),
                                lookupWindows<n>(row, offsets, load(taps->indicesOfWords[1]))};
    else
#endif
    {
        Vecs<uint8_t, Sum::pairs> pixels;
        unrolled<Sum::pairs>([&](auto i) RVK_INLINE_LAMBDA {
            pixels[i] = lookupWindows<n>(row, offsets + i * kWindowsOfStep, load(taps[i].indices));
        });
        return pixels;
    }
}

template <class Sum>
template <size_t rows>
RVK_NOINLINE void Columns<Sum>::sumWholeWindows(const RowBatch& batch) const
{
    constexpr size_t windows = Sum::pairs * kWindowsOfStep; // of a step
    const uint32_t* const offsets = m_offsets.get();
    if (m_windowSize == 1)
        sumSteps<rows>(batch, [=](const uint8_t* row, size_t step, const TapsOfStep* taps) RVK_INLINE_LAMBDA {
            return fetchFromWindows<1, Sum>(row, offsets + step * windows, taps);
        });
    else if (m_windowSize == 2)
        sumSteps<rows>(batch, [=](const uint8_t* row, size_t step, const TapsOfStep* taps) RVK_INLINE_LAMBDA {
            return fetchFromWindows<2, Sum>(row, offsets + step * windows, taps);
        });
    else
        sumSteps<rows>(batch, [this](const uint8_t* row, size_t step, const TapsOfStep*) RVK_INLINE_LAMBDA {
            uint8_t bytes[Sum::pairs * kBytes];
            for (size_t pair = 0; pair < Sum::pairs; ++pair)
                fetchEach(row, m_given[step * Sum::pairs + pair], bytes + pair * kBytes);
            return loadVecs<Sum::pairs>(bytes);
        });
}

template <class Sum>
template <size_t rows>
void Columns<Sum>::sum(const RowBatch& batch) const
{
    if (m_rowBytes >= kWindow) {
        sumWholeWindows<rows>(batch);
        return;
    }
    uint8_t padded[rows][kWindow] = {};
    RowBatch wider = batch;
    for (size_t i = 0; i < rows; ++i)
        wider.src[i] = static_cast<uint8_t*>(__builtin_memcpy(padded[i], batch.src[i], m_rowBytes));
    sumWholeWindows<rows>(wider);
}

} // namespace
} // namespace rvk::vecta::RVK_ISA

// Vector implementations against their C reference.
//
//     TEST(Diff, VectaEqualsReference)
//     {
//         expectVectaEqualsReference<Slot::rvkAbsDiffu8>([](auto function, Trial& t) {
//             auto a = t.input<uint8_t>(), b = t.input<uint8_t>();
//             auto d = t.output<uint8_t>();
//             function(a.data, b.data, t.width, t.height, a.stride, d.data, d.stride);
//         });
//     }
//
// The lambda is run once with the reference and once with each vector variant of this machine, for some hundred sizes,
// strides, misalignments and contents. Each run draws the same inputs; outputs, results and the bytes between the rows
// must come out the same. All images lie against a guard page.
#pragma once

#include "dispatch.h"
#include "guarded.h"
#include "vecta/column.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace test {

using namespace rvk;

// Small, fast, the same everywhere.
class Random
{
public:
    explicit Random(uint64_t seed) : m_state(seed * 0x9E3779B97F4A7C15u + 1) {}

    uint64_t next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return m_state * 0x2545F4914F6CDD1Du;
    }
    // 0 .. bound - 1
    uint32_t below(uint32_t bound) { return static_cast<uint32_t>((next() >> 32) % bound); }

private:
    uint64_t m_state;
};

// What the elements of the inputs look like.
enum class Content { uniform, extremes, small, constant, count };

template <class T>
T drawElement(Random& random, Content content)
{
    if constexpr (std::is_floating_point_v<T>) {
        static const T special[] = {0.0f, -0.0f, 1.0f, -1.0f, INFINITY, -INFINITY, NAN, FLT_MAX, -FLT_MAX, FLT_MIN};
        switch (content) {
        case Content::extremes:
            return special[random.below(10)];
        case Content::small:
            return static_cast<T>(static_cast<int>(random.below(17)) - 8);
        default: { // any exponent between 2^-30 and 2^30: no overflow, no subnormals in sums and products
            const float mantissa = static_cast<float>(static_cast<int32_t>(random.next() >> 32)) / 2147483648.0f;
            return std::ldexp(mantissa, static_cast<int>(random.below(61)) - 30);
        }
        }
    } else {
        using Limits = std::numeric_limits<T>;
        static const T special[] = {Limits::min(),
                                    Limits::max(),
                                    0,
                                    1,
                                    static_cast<T>(-1),
                                    Limits::max() - 1,
                                    static_cast<T>(Limits::min() + 1),
                                    Limits::max() / 2};
        switch (content) {
        case Content::extremes:
            return special[random.below(8)];
        case Content::small:
            return static_cast<T>(random.below(9)) - static_cast<T>(std::is_signed_v<T> ? 4 : 0);
        default:
            return static_cast<T>(random.next() >> 20);
        }
    }
}

template <class T>
struct Image
{
    T* data;
    uint32_t stride; // bytes
};

// One set of sizes, strides, alignments and contents; see the head of this file.
class Trial
{
public:
    uint32_t width = 1, height = 1;

    // `channels` interleaved elements per pixel. Every input of a trial has the same padding, so two inputs of the same
    // type and size share their stride.
    template <class T>
    Image<const T> input(uint32_t channels = 1)
    {
        Image<T> image = make<T>(width * channels, height, m_inputPadding, "", true);
        return {image.data, image.stride};
    }
    template <class T>
    Image<const T> inputOf(uint32_t elementsPerRow, uint32_t rows)
    {
        Image<T> image = make<T>(elementsPerRow, rows, m_inputPadding, "", true);
        return {image.data, image.stride};
    }

    // Uninitialised as far as the function is concerned; compared after the run.
    template <class T>
    Image<T> output(uint32_t channels = 1)
    {
        return make<T>(width * channels, height, m_outputPadding, "output", false);
    }
    template <class T>
    Image<T> outputOf(uint32_t elementsPerRow, uint32_t rows)
    {
        return make<T>(elementsPerRow, rows, m_outputPadding, "output", false);
    }

    // Read and written, with the padding of the inputs: for calls in place.
    template <class T>
    Image<T> inOut(uint32_t channels = 1)
    {
        return make<T>(width * channels, height, m_inputPadding, "in place", true);
    }

    // A scalar argument.
    template <class T>
    T value()
    {
        return drawElement<T>(m_random, m_content == Content::constant ? Content::uniform : m_content);
    }
    uint32_t below(uint32_t bound) { return m_random.below(bound); }

    // A returned value, compared after the run.
    template <class T>
    void result(T value)
    {
        const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&value);
        if constexpr (std::is_floating_point_v<T>)
            m_results.push_back(std::isnan(value) ? "NaN"
                                                  : std::to_string(value) + std::string(bytes, bytes + sizeof value));
        else
            m_results.push_back(std::to_string(value));
    }

    // ---- for expectVectaEqualsReference ----
    // Random sizes at first, then all widths in turn: what a step over vectors leaves out shows at a few widths only.
    static constexpr uint32_t kRandomTrials = 100, kWidths = 200;
    explicit Trial(uint32_t seed) : m_random(seed)
    {
        static const uint32_t widths[] = {1,  2,  3,  7,   8,   15,  16,  17,  31,  32, 33,
                                          63, 64, 65, 127, 128, 129, 191, 192, 193, 260};
        width = m_random.below(2) ? widths[m_random.below(21)] : 1 + m_random.below(300);
        height = m_random.below(3) ? 1 + m_random.below(5) : 1 + m_random.below(70);
        if (seed >= kRandomTrials) {
            width = seed - kRandomTrials + 1;
            height = 1 + m_random.below(12);
        }
        m_content = static_cast<Content>(m_random.below(static_cast<uint32_t>(Content::count)));
        m_inputPadding = m_random.below(3) ? 0 : 1 + m_random.below(80);
        m_outputPadding = m_random.below(3) ? 0 : 1 + m_random.below(80);
        m_flush = m_random.below(2) ? GuardedMemory::Flush::toEnd : GuardedMemory::Flush::toStart;
    }

    std::string describe() const
    {
        return std::to_string(width) + "x" + std::to_string(height) + ", content " +
               std::to_string(static_cast<int>(m_content)) + ", paddings " + std::to_string(m_inputPadding) + " and " +
               std::to_string(m_outputPadding);
    }

    friend ::testing::AssertionResult sameOutcome(const Trial& expected, const Trial& actual);

private:
    struct Block
    {
        std::shared_ptr<GuardedMemory> memory;
        const char* role; // empty for inputs
        uint32_t rowBytes, rows, stride;
        bool isFloat;
    };

    template <class T>
    Image<T> make(uint32_t elements, uint32_t rows, uint32_t padding, const char* role, bool random)
    {
        const uint32_t rowBytes = elements * static_cast<uint32_t>(sizeof(T));
        const uint32_t stride = (rowBytes + padding) / sizeof(T) * sizeof(T); // a multiple of the element size
        const size_t bytes = size_t{stride} * (rows - 1) + rowBytes;
        auto memory = std::make_shared<GuardedMemory>(bytes, m_flush);
        memset(memory->data(), 0xA5, bytes);
        const T constant = drawElement<T>(m_random, Content::uniform);
        for (uint32_t y = 0; y < rows && random; ++y) {
            T* row = reinterpret_cast<T*>(memory->data() + size_t{y} * stride);
            for (uint32_t x = 0; x < elements; ++x)
                row[x] = m_content == Content::constant ? constant : drawElement<T>(m_random, m_content);
        }
        m_blocks.push_back({memory, role, rowBytes, rows, stride, std::is_floating_point_v<T>});
        return {reinterpret_cast<T*>(memory->data()), stride};
    }

    Random m_random;
    Content m_content;
    uint32_t m_inputPadding, m_outputPadding;
    GuardedMemory::Flush m_flush;
    std::vector<Block> m_blocks;
    std::vector<std::string> m_results;
};

// Any NaN equals any other. The vector unit of 32-bit Arm flushes subnormals to zero.
inline bool sameFloat(float a, float b)
{
#if defined(__arm__)
    if (std::fabs(a) < FLT_MIN && std::fabs(b) < FLT_MIN)
        return true;
#endif
    return memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

inline ::testing::AssertionResult sameOutcome(const Trial& expected, const Trial& actual)
{
    if (expected.m_results != actual.m_results)
        return ::testing::AssertionFailure() << "returned values differ";
    for (size_t i = 0; i < expected.m_blocks.size(); ++i) {
        const auto& block = expected.m_blocks[i];
        const uint8_t *e = block.memory->data(), *a = actual.m_blocks[i].memory->data();
        for (uint32_t y = 0; y < block.rows; ++y, e += block.stride, a += block.stride) {
            const uint32_t element = block.isFloat ? 4 : 1;
            for (uint32_t x = 0; x < block.rowBytes; x += element) {
                float expectedFloat = 0, actualFloat = 0;
                if (block.isFloat) {
                    memcpy(&expectedFloat, e + x, 4);
                    memcpy(&actualFloat, a + x, 4);
                }
                if (block.isFloat ? !sameFloat(expectedFloat, actualFloat) : e[x] != a[x])
                    return ::testing::AssertionFailure() << block.role << " image " << i << ", row " << y << ", byte "
                                                         << x << ": expected " << (block.isFloat ? expectedFloat : e[x])
                                                         << ", got " << (block.isFloat ? actualFloat : a[x]);
            }
            if (y + 1 < block.rows &&
                memcmp(e + block.rowBytes, a + block.rowBytes, block.stride - block.rowBytes) != 0)
                return ::testing::AssertionFailure() << "image " << i << ": wrote between the rows, after row " << y;
        }
    }
    return ::testing::AssertionSuccess();
}

// Runs `body(name, function)` for the vector implementation of a slot in every variant that this machine runs.
template <Slot slot, class Body>
void forEachVecta(Body body)
{
    uint32_t count = 0;
    const vecta::Variant* variants = vecta::variants(count);
    for (uint32_t i = 0; i < count; ++i) {
        if (!variants[i].runsHere)
            continue;
        for (const vecta::Entry* e = variants[i].column; e->implementation; ++e)
            if (e->slot == static_cast<uint32_t>(slot))
                body(variants[i].name, reinterpret_cast<typename SignatureOf<slot>::Type>(e->implementation));
    }
}

template <Slot slot>
typename SignatureOf<slot>::Type referenceOf()
{
    return reinterpret_cast<typename SignatureOf<slot>::Type>(
        dispatchState.table[static_cast<uint32_t>(slot) * kTargets]);
}

template <Slot slot, class Call>
void expectVectaEqualsReference(Call call, uint32_t trials = Trial::kRandomTrials + Trial::kWidths)
{
    uint32_t compared = 0;
    for (uint32_t seed = 0; seed < trials; ++seed) {
        Trial expected(seed);
        call(referenceOf<slot>(), expected);
        forEachVecta<slot>([&](const char* variant, auto function) {
            Trial actual(seed);
            call(function, actual);
            ++compared;
            ASSERT_TRUE(sameOutcome(expected, actual))
                << nameOf(slot) << " on " << variant << ", trial " << seed << ": " << actual.describe();
        });
        if (::testing::Test::HasFatalFailure())
            return;
    }
    EXPECT_GT(compared, 0u) << nameOf(slot) << " has no vector implementation here";
}

} // namespace test

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
// strides, misalignments and contents. Each run asks for the same things in the same order, so the images are drawn by
// the first and given back as they were to the others; outputs, results and the bytes between the rows must come out the
// same. All images lie against a guard page.
//
// What happens inside stands in trial.cpp, which is optimised where the tests are not.
#pragma once

#include "dispatch.h"
#include "guarded.h"
#include "vecta/column.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
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

// For integers of 8 to 64 bits and for floats.
template <class T>
T drawElement(Random& random, Content content);

// `count` elements; all the same when the content is `constant`.
template <class T>
void drawElements(Random& random, Content content, T* to, size_t count);

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
        return inputOf<T>(width * channels, height);
    }
    template <class T>
    Image<const T> inputOf(uint32_t elementsPerRow, uint32_t rows)
    {
        const Image<T> image = make<T>(elementsPerRow, rows, Role::input);
        return {image.data, image.stride};
    }

    // Uninitialised as far as the function is concerned; compared after the run.
    template <class T>
    Image<T> output(uint32_t channels = 1)
    {
        return outputOf<T>(width * channels, height);
    }
    template <class T>
    Image<T> outputOf(uint32_t elementsPerRow, uint32_t rows)
    {
        return make<T>(elementsPerRow, rows, Role::output);
    }

    // Read and written, with the padding of the inputs: for calls in place.
    template <class T>
    Image<T> inOut(uint32_t channels = 1)
    {
        return make<T>(width * channels, height, Role::inPlace);
    }

    // A scalar argument.
    template <class T>
    T value()
    {
        return drawElement<T>(m_random, m_content == Content::constant ? Content::uniform : m_content);
    }
    uint32_t below(uint32_t bound) { return m_random.below(bound); }

    // A returned value, compared after the run. Any NaN equals any other.
    template <class T>
    void result(T value)
    {
        uint64_t bits = 0;
        if constexpr (std::is_floating_point_v<T>) {
            value = std::isnan(value) ? std::nanf("") : value;
            memcpy(&bits, &value, sizeof value);
        } else {
            bits = static_cast<uint64_t>(value);
        }
        m_results.push_back(bits);
    }

    // Random sizes at first, then all widths in turn: what a step over vectors leaves out shows at a few widths only.
    static constexpr uint32_t kRandomTrials = 100, kWidths = 200;

private:
    // There is one trial at a time.
    friend void expectSameOutcomes(Slot, uint32_t, void*, void (*)(void*, Cell, Trial&));
    explicit Trial(uint32_t seed);
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;

    std::string describe() const;
    void keepOutcome(); // what this run left is what the next ones must leave
    void rewind();      // the next run begins
    ::testing::AssertionResult sameOutcome() const;

    enum class Role { input, output, inPlace };
    struct Shape
    {
        Role role;
        bool isFloat;
        uint32_t elementBytes, elements, rows;

        uint32_t rowBytes() const { return elements * elementBytes; }
        bool operator==(const Shape&) const = default;
    };
    struct Block
    {
        Shape shape;
        uint32_t stride;
        uint8_t* data;
        std::vector<uint8_t> before, outcome;
        Random randomAfter;
    };
    using Draw = void (*)(Random&, Content, void*, size_t);

    template <class T>
    Image<T> make(uint32_t elements, uint32_t rows, Role role)
    {
        const Block& block =
            blockOf({role, std::is_floating_point_v<T>, static_cast<uint32_t>(sizeof(T)), elements, rows},
                    [](Random& random, Content content, void* to, size_t count) {
                        drawElements(random, content, static_cast<T*>(to), count);
                    });
        return {reinterpret_cast<T*>(block.data), block.stride};
    }
    const Block& blockOf(const Shape& shape, Draw draw);
    Block newBlock(const Shape& shape, Draw draw);
    static std::string differenceInRow(const Shape& shape, const uint8_t* expected, const uint8_t* actual);

    Random m_random, m_randomAtStart;
    uint32_t m_widthAtStart, m_heightAtStart;
    Content m_content;
    uint32_t m_inputPadding, m_outputPadding;
    GuardedMemory::Flush m_flush;
    std::vector<Block> m_blocks;
    size_t m_blocksGiven = 0; // to this run
    bool m_replays = false;   // this is not the first run
    std::vector<uint64_t> m_results, m_expectedResults;
};

// Any NaN equals any other. The vector unit of 32-bit Arm flushes subnormals to zero.
bool sameFloat(float a, float b);

// The vector implementations of a slot that this machine runs, with the names of their instruction sets.
struct NamedCell
{
    const char* name;
    Cell cell;
};
std::vector<NamedCell> vectaCellsOf(Slot slot);

// Runs `body(name, function)` for each of them.
template <Slot slot, class Body>
void forEachVecta(Body body)
{
    for (const NamedCell& vecta : vectaCellsOf(slot))
        body(vecta.name, reinterpret_cast<typename SignatureOf<slot>::Type>(vecta.cell));
}

template <Slot slot>
typename SignatureOf<slot>::Type referenceOf()
{
    return implementation<slot>(RVK_IMPL_CPU);
}

// What expectVectaEqualsReference does, for a call without its types.
void expectSameOutcomes(Slot slot, uint32_t trials, void* call, void (*run)(void* call, Cell function, Trial& trial));

template <Slot slot, class Call>
void expectVectaEqualsReference(Call call, uint32_t trials = Trial::kRandomTrials + Trial::kWidths)
{
    expectSameOutcomes(slot, trials, &call, [](void* typed, Cell function, Trial& trial) {
        (*static_cast<Call*>(typed))(reinterpret_cast<typename SignatureOf<slot>::Type>(function), trial);
    });
}

} // namespace test

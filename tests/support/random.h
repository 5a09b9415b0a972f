// What the contents of pictures are drawn from.
#pragma once

#include <cstdint>

namespace test {

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

// What the elements of a picture look like.
enum class Content { uniform, extremes, small, constant, count };

inline Content drawContent(Random& random)
{
    return static_cast<Content>(random.below(static_cast<uint32_t>(Content::count)));
}

// For integers of 8 to 64 bits and for floats.
template <class T>
T drawElement(Random& random, Content content);

// Any NaN equals any other. The vector unit of 32-bit Arm flushes subnormals to zero.
bool sameFloat(float a, float b);

} // namespace test

// The vector layer: every operation against its scalar definition, with every instruction set that this machine has.
#include "simd/kernels.h"
#include "support/guarded.h"
#include "vecta/column.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#define RVK_INSTRUCTION_SET(isa)                \
    namespace rvk::vecta::isa {                 \
    extern const test::SimdKernels simdKernels; \
    }
#include "instructionSets.inc"
#undef RVK_INSTRUCTION_SET

namespace {

using test::GuardedMemory;
using test::SimdKernels;
using test::SimdOperation;

const SimdKernels* kernelsOf(const std::string& name)
{
#define RVK_INSTRUCTION_SET(isa) \
    if (name == #isa)            \
        return &rvk::vecta::isa::simdKernels;
#include "instructionSets.inc"
#undef RVK_INSTRUCTION_SET
    return nullptr;
}

class Simd : public testing::TestWithParam<const char*>
{
protected:
    const SimdKernels& kernels() { return *kernelsOf(GetParam()); }

    std::vector<SimdOperation> operations()
    {
        std::vector<SimdOperation> all;
        for (size_t i = 0; i < kernels().groupCount; ++i) {
            const test::SimdGroup group = kernels().groups[i]();
            all.insert(all.end(), group.operations, group.operations + group.count);
        }
        return all;
    }
};

std::vector<const char*> instructionSetsHere()
{
    uint32_t count;
    const rvk::vecta::Variant* variants = rvk::vecta::variants(count);
    std::vector<const char*> names;
    for (uint32_t i = 0; i < count; ++i)
        if (variants[i].runsHere)
            names.push_back(variants[i].name);
    return names;
}

std::mt19937 generator(20240501);

uint32_t below(uint32_t bound)
{
    return generator() % bound;
}

// Ends of the value ranges, their neighbours, and small numbers.
void putExtreme(uint8_t* to, uint32_t elementBytes)
{
    const uint64_t top = (uint64_t(1) << (8 * elementBytes - 1)) - 1; // the largest signed value
    const uint64_t values[] = {0, 1, 2, ~uint64_t(0), ~uint64_t(1), top, top + 1, top - 1, top + 2, top / 2};
    std::memcpy(to, &values[below(10)], elementBytes);
}

float anyFloat(SimdOperation::Draw draw, bool extreme)
{
    if (draw == SimdOperation::Draw::intRangeFloats) {
        static const float edges[] = {0.5f,       -0.5f,       1.5f,       2.5f,       -2.5f,         0.49999997f,
                                      8388607.5f, -8388606.5f, 4194304.5f, 8388609.0f, 2147483520.0f, -2147483648.0f,
                                      0.0f,       -0.0f,       1e-40f,     16777217.0f};
        return extreme ? edges[below(16)]
                       : std::ldexp(static_cast<float>(static_cast<int32_t>(generator())), -int(below(40)));
    }
    static const float special[] = {0.0f, -0.0f,   1.0f,     -1.0f, INFINITY, -INFINITY,
                                    NAN,  FLT_MAX, -FLT_MAX, 3.0f,  1e-40f,   -FLT_TRUE_MIN};
    if (extreme)
        return special[below(draw == SimdOperation::Draw::normalFloats ? 10 : 12)];
    return std::ldexp(static_cast<float>(static_cast<int32_t>(generator() | 1)), static_cast<int>(below(60)) - 60);
}

void drawElement(const SimdOperation& o, bool extreme, uint8_t* to)
{
    if (o.draw != SimdOperation::Draw::any) {
        const float value = anyFloat(o.draw, extreme);
        std::memcpy(to, &value, sizeof value);
    } else if (extreme) {
        putExtreme(to, o.elementBytes);
    } else {
        const uint64_t value = generator() | static_cast<uint64_t>(generator()) << 32;
        std::memcpy(to, &value, o.elementBytes);
    }
}

// Round by round: anything, extremes, a mixture of both, one value everywhere, and that with one element different.
void drawInput(const SimdOperation& o, int round, uint8_t* in)
{
    const uint32_t count = o.inputBytes / o.elementBytes;
    const int kind = round % 5;
    for (uint32_t i = 0; i < count; ++i) {
        if (kind >= 3 && i > 0)
            std::memcpy(in + i * o.elementBytes, in, o.elementBytes);
        else
            drawElement(o, kind == 1 || (kind >= 2 && below(2)), in + i * o.elementBytes);
    }
    if (kind == 4)
        drawElement(o, false, in + below(count) * o.elementBytes);
}

std::string hex(const uint8_t* bytes, size_t n)
{
    std::string s;
    char digits[3];
    for (size_t i = 0; i < n; ++i) {
        snprintf(digits, sizeof digits, "%02x", bytes[i]);
        s += digits;
    }
    return s;
}

bool sameOutput(const SimdOperation& o, const uint8_t* a, const uint8_t* b)
{
    if (!std::memcmp(a, b, o.outputBytes))
        return true;
    if (o.sameNan)
        return false;
    for (size_t i = 0; i < o.outputBytes; i += sizeof(float)) {
        float x, y;
        std::memcpy(&x, a + i, sizeof x);
        std::memcpy(&y, b + i, sizeof y);
        if (std::memcmp(&x, &y, sizeof x) && !(std::isnan(x) && std::isnan(y)))
            return false;
    }
    return true;
}

TEST_P(Simd, EveryOperationEqualsItsScalarDefinition)
{
    for (const SimdOperation& o : operations()) {
        // A page away from the memory allowed, so that no element but those named is read or written.
        const GuardedMemory in(o.inputBytes, GuardedMemory::Flush::toEnd),
            out(o.outputBytes, GuardedMemory::Flush::toEnd);
        std::vector<uint8_t> expected(o.outputBytes);
        for (int round = 0; round < 100; ++round) {
            drawInput(o, round, in.data());
            std::memset(out.data(), 0xa5, o.outputBytes);
            o.scalar(in.data(), expected.data());
            o.vector(in.data(), out.data());
            if (!sameOutput(o, out.data(), expected.data())) {
                ADD_FAILURE() << o.name << " of " << o.element << "\nin       " << hex(in.data(), o.inputBytes)
                              << "\nout      " << hex(out.data(), o.outputBytes) << "\nexpected "
                              << hex(expected.data(), o.outputBytes);
                break;
            }
        }
    }
}

TEST_P(Simd, PartialLoadsAndStoresTouchNothingElse)
{
    for (size_t k = 0; k < kernels().partialCount; ++k) {
        const test::SimdPartial& p = kernels().partials[k];
        const size_t whole = p.most * p.elementBytes;
        std::vector<uint8_t> full(whole), loaded(whole);
        for (uint8_t& b : full)
            b = static_cast<uint8_t>(1 + below(255));
        for (const auto flush : {GuardedMemory::Flush::toStart, GuardedMemory::Flush::toEnd}) {
            for (size_t n = 0; n <= p.most; ++n) {
                const size_t bytes = n * p.elementBytes;
                const std::string what = std::to_string(n) + " of " + std::to_string(p.most) + " elements";
                const GuardedMemory memory(bytes, flush);
                std::memcpy(memory.data(), full.data(), bytes);
                p.load(memory.data(), n, loaded.data());
                std::vector<uint8_t> expected(full.begin(), full.begin() + static_cast<ptrdiff_t>(bytes));
                expected.resize(whole);
                EXPECT_EQ(loaded, expected) << what;

                const GuardedMemory target(bytes, flush);
                p.store(full.data(), target.data(), n);
                EXPECT_FALSE(std::memcmp(target.data(), full.data(), bytes)) << what;

                std::vector<uint8_t> around(whole + 2 * 64, 0xee), untouched = around;
                p.store(full.data(), around.data() + 64, n);
                std::memcpy(untouched.data() + 64, full.data(), bytes);
                EXPECT_EQ(around, untouched) << what;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Here, Simd, testing::ValuesIn(instructionSetsHere()),
                         [](const auto& isa) { return std::string(isa.param); });

} // namespace

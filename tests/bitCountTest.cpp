#include "support/logCapture.h"
#include "support/trial.h"

#include <bit>

using namespace test;

namespace {

// ---- the references, against the language's own count ----

TEST(BitCount, ReferenceCountsEveryByteValue)
{
    uint8_t bytes[256];
    uint32_t total = 0;
    for (unsigned i = 0; i < 256; ++i) {
        bytes[i] = static_cast<uint8_t>(i);
        const uint32_t bits = static_cast<uint32_t>(std::popcount(i));
        total += bits;
        EXPECT_EQ(rvkBitCountu8C(&bytes[i], 1), bits);
        EXPECT_EQ(rvkHammingDistanceu8C(&bytes[i], bytes, 1), bits);
        const uint32_t word = i << 24 | i << 11;
        EXPECT_EQ(rvkBitCountu32C(&word, 1), static_cast<uint32_t>(std::popcount(word)));
    }
    EXPECT_EQ(rvkBitCountu8C(bytes, 256), total);
    EXPECT_EQ(rvkBitCountu8C(bytes, 0), 0u);

    const uint8_t difference[3] = {0xff, 0x00, 0x81}, zeros[3] = {0x0f, 0x00, 0x80};
    EXPECT_EQ(rvkHammingDistanceu8C(difference, zeros, 3), 5u);
    EXPECT_EQ(rvkHammingDistanceu8C(difference, zeros, 0), 0u);
}

TEST(BitCount, ReferenceOfFixedFormsIsThatOfStrings)
{
    Random random(1);
    alignas(4) uint8_t v[5][64];
    for (auto& vector : v)
        for (uint8_t& byte : vector)
            byte = static_cast<uint8_t>(random.next());
    uint32_t counts32[4], counts64[4], distances32[4], distances64[4], distances64a4[4];
    rvkBitCount32x4u8C(v[1], v[2], v[3], v[4], counts32);
    rvkBitCount64x4u8C(v[1], v[2], v[3], v[4], counts64);
    rvkHammingDistance32x4u8a4C(v[0], v[1], v[2], v[3], v[4], distances32);
    rvkHammingDistance64x4u8C(v[0], v[1], v[2], v[3], v[4], distances64);
    rvkHammingDistance64x4u8a4C(v[0], v[1], v[2], v[3], v[4], distances64a4);
    for (unsigned i = 0; i < 4; ++i) {
        const uint8_t* const b = v[i + 1];
        EXPECT_EQ(rvkBitCount32x1u8C(b), rvkBitCountu8C(b, 32));
        EXPECT_EQ(rvkBitCount64x1u8C(b), rvkBitCountu8C(b, 64));
        EXPECT_EQ(counts32[i], rvkBitCountu8C(b, 32));
        EXPECT_EQ(counts64[i], rvkBitCountu8C(b, 64));
        EXPECT_EQ(rvkHammingDistance32x1u8C(v[0], b), rvkHammingDistanceu8C(v[0], b, 32));
        EXPECT_EQ(rvkHammingDistance32x1u8a4C(v[0], b), rvkHammingDistanceu8C(v[0], b, 32));
        EXPECT_EQ(rvkHammingDistance64x1u8C(v[0], b), rvkHammingDistanceu8C(v[0], b, 64));
        EXPECT_EQ(rvkHammingDistance64x1u8a4C(v[0], b), rvkHammingDistanceu8C(v[0], b, 64));
        EXPECT_EQ(distances32[i], rvkHammingDistanceu8C(v[0], b, 32));
        EXPECT_EQ(distances64[i], rvkHammingDistanceu8C(v[0], b, 64));
        EXPECT_EQ(distances64a4[i], rvkHammingDistanceu8C(v[0], b, 64));
    }
}

// ---- VECTA ----

// A vector that a guard page follows, `alignment` bytes aligned but no more.
const uint8_t* drawVector(Trial& t, uint32_t length, uint32_t alignment)
{
    const uint32_t lead = t.below(16 / alignment) * alignment;
    return t.inputOf<uint8_t>(lead + length, 1).data + lead;
}

template <Slot slot>
void expectCount(uint32_t length)
{
    expectVectaEqualsReference<slot>([=](auto function, Trial& t) { t.result(function(drawVector(t, length, 1))); },
                                     60);
}

template <Slot slot>
void expectDistance(uint32_t length, uint32_t alignment)
{
    expectVectaEqualsReference<slot>(
        [=](auto function, Trial& t) {
            const uint8_t* const a = drawVector(t, length, alignment);
            t.result(function(a, drawVector(t, length, alignment)));
        },
        60);
}

// Four vectors, for distances after the one that they are compared with.
template <Slot slot>
void expectFourResults(uint32_t length, uint32_t alignment)
{
    expectVectaEqualsReference<slot>(
        [=](auto function, Trial& t) {
            const uint8_t* v[5];
            for (const uint8_t*& p : v)
                p = drawVector(t, length, alignment);
            uint32_t* const result = t.outputOf<uint32_t>(4, 1).data;
            if constexpr (std::is_invocable_v<decltype(function), const uint8_t*, const uint8_t*, const uint8_t*,
                                              const uint8_t*, uint32_t*>)
                function(v[0], v[1], v[2], v[3], result);
            else
                function(v[0], v[1], v[2], v[3], v[4], result);
        },
        60);
}

// Mostly short: every rest of a word and of a vector; some beyond what the byte counters of a vector hold.
uint32_t drawLength(Trial& t)
{
    return t.below(4) ? t.below(300) : t.below(9000);
}

TEST(BitCount, VectaEqualsReference)
{
    expectCount<Slot::rvkBitCount32x1u8>(32);
    expectCount<Slot::rvkBitCount64x1u8>(64);
    expectFourResults<Slot::rvkBitCount32x4u8>(32, 1);
    expectFourResults<Slot::rvkBitCount64x4u8>(64, 1);
    expectDistance<Slot::rvkHammingDistance32x1u8>(32, 1);
    expectDistance<Slot::rvkHammingDistance32x1u8a4>(32, 4);
    expectDistance<Slot::rvkHammingDistance64x1u8>(64, 1);
    expectDistance<Slot::rvkHammingDistance64x1u8a4>(64, 4);
    expectFourResults<Slot::rvkHammingDistance32x4u8a4>(32, 4);
    expectFourResults<Slot::rvkHammingDistance64x4u8>(64, 1);
    expectFourResults<Slot::rvkHammingDistance64x4u8a4>(64, 4);

    expectVectaEqualsReference<Slot::rvkBitCountu8>(
        [](auto function, Trial& t) {
            const uint32_t length = drawLength(t);
            t.result(function(drawVector(t, length, 1), length));
        },
        600);
    expectVectaEqualsReference<Slot::rvkBitCountu32>([](auto function, Trial& t) {
        const uint32_t length = drawLength(t);
        t.result(function(t.inputOf<uint32_t>(length, 1).data, length));
    });
    expectVectaEqualsReference<Slot::rvkHammingDistanceu8>(
        [](auto function, Trial& t) {
            const uint32_t length = drawLength(t);
            const uint8_t* const a = drawVector(t, length, 1);
            t.result(function(a, drawVector(t, length, 1), length));
        },
        600);
}

TEST(BitCount, VectaCountsOnesWithoutOverflow)
{
    const std::vector<uint8_t> ones(1 << 20, 0xff), zeros(1 << 20, 0x00);
    forEachVecta<Slot::rvkBitCountu8>(
        [&](const char* variant, auto function) { EXPECT_EQ(function(ones.data(), 1 << 20), 8u << 20) << variant; });
    forEachVecta<Slot::rvkHammingDistanceu8>([&](const char* variant, auto function) {
        EXPECT_EQ(function(ones.data(), zeros.data(), 1 << 20), 8u << 20) << variant;
    });
}

// ---- entries ----

TEST(BitCount, BadArgumentsAreLoggedAndGiveNothing)
{
    alignas(4) const uint8_t v[68] = {255};
    uint32_t results[4] = {77, 77, 77, 77};
    const auto refused = [&](auto call) {
        clearLog();
        call();
        return logLines.size() == 1 && results[0] == 77;
    };
    EXPECT_TRUE(refused([&] { EXPECT_EQ(rvkHammingDistance32x1u8a4(v, v + 1), 0u); }));
    EXPECT_TRUE(logHas("6 ravik_lib_log: Assertion failed @rvkHammingDistance32x1u8a4: a && b && aligned(4, a, b)\n"));
    EXPECT_TRUE(refused([&] { EXPECT_EQ(rvkHammingDistance64x1u8a4(v + 2, v), 0u); }));
    EXPECT_TRUE(refused([&] { rvkHammingDistance32x4u8a4(v, v, v, v, v + 3, results); }));
    EXPECT_TRUE(refused([&] { rvkHammingDistance64x4u8a4(v + 1, v, v, v, v, results); }));
    EXPECT_TRUE(refused([&] { rvkHammingDistance64x4u8(v, v, v, nullptr, v, results); }));
    EXPECT_TRUE(refused([&] { rvkBitCount32x4u8(v, v, v, v, nullptr); }));
    EXPECT_TRUE(refused([&] { rvkBitCount64x4u8(nullptr, v, v, v, results); }));
    EXPECT_TRUE(refused([&] { EXPECT_EQ(rvkBitCountu8(nullptr, 5), 0u); }));
    EXPECT_TRUE(refused([&] { EXPECT_EQ(rvkBitCountu32(nullptr, 5), 0u); }));
    EXPECT_TRUE(refused([&] { EXPECT_EQ(rvkBitCount32x1u8(nullptr), 0u); }));
    EXPECT_TRUE(refused([&] { EXPECT_EQ(rvkBitCount64x1u8(nullptr), 0u); }));
    EXPECT_TRUE(refused([&] { EXPECT_EQ(rvkHammingDistanceu8(v, nullptr, 0), 0u); }));
    clearLog();
    EXPECT_EQ(rvkHammingDistanceu8(v, v + 1, 0), 0u);
    EXPECT_EQ(rvkHammingDistance32x1u8(v, v + 1), 8u); // no alignment demanded
    EXPECT_TRUE(logLines.empty());
}

} // namespace

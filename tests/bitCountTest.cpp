#include "support/implementations.h"
#include "support/random.h"

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

TEST(BitCount, VectaCountsOnesWithoutOverflow)
{
    const std::vector<uint8_t> ones(1 << 20, 0xff), zeros(1 << 20, 0x00);
    forEachVecta<Slot::rvkBitCountu8>(
        [&](const char* variant, auto function) { EXPECT_EQ(function(ones.data(), 1 << 20), 8u << 20) << variant; });
    forEachVecta<Slot::rvkHammingDistanceu8>([&](const char* variant, auto function) {
        EXPECT_EQ(function(ones.data(), zeros.data(), 1 << 20), 8u << 20) << variant;
    });
}

} // namespace

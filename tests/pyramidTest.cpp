#include "support/implementations.h"
#include "support/logCapture.h"
#include "support/random.h"
#include "support/scarceMemory.h"

using namespace test;

namespace {

struct Pyramid
{
    std::vector<std::vector<uint8_t>> memory;
    std::vector<rvkPyramidLevel> levels;

    Pyramid(uint32_t numLevels, size_t bytes) : memory(numLevels, std::vector<uint8_t>(bytes)), levels(numLevels)
    {
        for (uint32_t k = 0; k < numLevels; ++k)
            levels[k].ptr = memory[k].data();
    }
};

// Each level is what the scaler makes of the one before.
TEST(Pyramid, LevelsFollowFromEachOther)
{
    std::vector<uint8_t> base(96 * 48);
    Random random(1);
    for (uint8_t& pixel : base)
        pixel = drawElement<uint8_t>(random, Content::uniform);
    forEachImplementation<Slot::rvkPyramidCreateu8>([&](const char* name, auto create) {
        Pyramid pyramid(5, base.size());
        ASSERT_EQ(create(base.data(), 96, 48, 5, pyramid.levels.data()), 0) << name;
        EXPECT_EQ(pyramid.levels[0].ptr, base.data());
        for (uint32_t k = 1; k < 5; ++k) {
            const rvkPyramidLevel &from = pyramid.levels[k - 1], &to = pyramid.levels[k];
            std::vector<uint8_t> expected(base.size());
            rvkScaleDownBy2Gaussian5x5u8(static_cast<uint8_t*>(from.ptr), from.width, from.height, expected.data());
            EXPECT_EQ(to.width, 96u >> k);
            EXPECT_EQ(to.height, 48u >> k);
            EXPECT_TRUE(pyramid.memory[k] == expected) << name << ", level " << k;
        }
    });
}

// Sizes are known of the levels up to the one that has no memory.
TEST(Pyramid, ALevelWithoutMemoryKnowsItsSize)
{
    const std::vector<uint8_t> base(64 * 32, 7);
    Pyramid pyramid(4, base.size());
    pyramid.levels[2].ptr = nullptr;
    EXPECT_EQ(rvkPyramidCreateu8(base.data(), 64, 32, 4, pyramid.levels.data()), -1);
    EXPECT_EQ(pyramid.levels[2].width, 16u);
    EXPECT_EQ(pyramid.levels[2].height, 8u);
    EXPECT_EQ(pyramid.levels[3].width, 0u);
    EXPECT_EQ(pyramid.memory[1], std::vector<uint8_t>(base.size()));

    Pyramid dx(2, base.size()), dy(2, base.size());
    const rvkPyramidLevel levels[] = {{const_cast<uint8_t*>(base.data()), 8, 4}, {pyramid.levels[1].ptr, 4, 2}};
    dy.levels[1].ptr = nullptr;
    EXPECT_EQ(rvkPyramidSobelGradientCreatei8(levels, dx.levels.data(), dy.levels.data(), 2), -1);
    EXPECT_EQ(dx.levels[1].width, 4u);
    EXPECT_EQ(dy.levels[1].height, 2u);
}

TEST(Pyramid, EndsTheProcessOnSizesThatLeaveARest)
{
    const std::vector<uint8_t> base(100 * 100);
    const auto printLogAtExit = [] {
        for (const std::string& line : logLines)
            fputs(line.c_str(), stderr);
    };
    for (const uint32_t numLevels : {4u, 33u, 40u, UINT32_MAX})
        for (const uint32_t unit : {RAVIK_UNIT_ARM, RAVIK_UNIT_VECTA}) {
            Pyramid pyramid(4, base.size());
            rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | unit));
            EXPECT_EXIT(
                (atexit(printLogAtExit), rvkPyramidCreateu8(base.data(), 100, 100, numLevels, pyramid.levels.data())),
                ::testing::ExitedWithCode(1),
                "6 ravik_lib_log: src/cpu/ravikPyramidC@106: \\( \\(baseWidth & .*Assertion failed");
        }
}

bool isMultipleOf(uint32_t alignment, const void* pointer)
{
    return reinterpret_cast<uintptr_t>(pointer) % alignment == 0;
}

TEST(Pyramid, MemoryIsAlignedAndFreed)
{
    rvkPyramidLevel packed[3];
    const ScarceMemory memory(100);
    ASSERT_EQ(rvkPyramidAllocate(packed, 31, 9, 3), RAVIK_SUCCESS);
    EXPECT_EQ(packed[0].ptr, nullptr);
    EXPECT_EQ(packed[2].width, 7u);
    EXPECT_EQ(packed[2].height, 2u);
    EXPECT_TRUE(packed[1].ptr && isMultipleOf(16, packed[1].ptr) && packed[2].ptr && isMultipleOf(16, packed[2].ptr));
    packed[0].ptr = packed; // the caller's
    rvkPyramidDelete(packed, 3, 1);
    rvkPyramidDelete(packed, 3, 1);
    EXPECT_EQ(packed[0].ptr, packed);
    EXPECT_EQ(packed[1].ptr, nullptr);

    rvkPyramidLevel_v2 rows[3];
    ASSERT_EQ(rvkPyramidAllocate_v3(rows, 31, 9, 4, 3, 0, 64), RAVIK_SUCCESS);
    for (const rvkPyramidLevel_v2& level : rows) {
        EXPECT_TRUE(isMultipleOf(64, level.ptr) && level.stride % 64 == 0 && level.stride >= 4 * level.width);
        memset(level.ptr, 1, size_t{level.stride} * level.height);
    }
    rvkPyramidDelete_v2(rows, 3, 0);
    rvkPyramidDelete_v2(nullptr, 3, 0);
    EXPECT_TRUE(memory.allIsReleased());
}

TEST(Pyramid, AllocationsAreRefusedWhole)
{
    rvkPyramidLevel packed[4] = {{packed, 1, 1}, {packed, 1, 1}, {packed, 1, 1}, {packed, 1, 1}};
    rvkPyramidLevel_v2 rows[4];
    EXPECT_EQ(rvkPyramidAllocate(nullptr, 8, 8, 2), RAVIK_EBADPARAM);
    struct Wrong
    {
        uint32_t width, height, elementSize, numLevels, firstLevel;
    };
    for (const Wrong& w : {Wrong{8, 8, 1, 0, 1},
                           {16, 7, 1, 4, 1},
                           {8, 8, 1, 33, 1},
                           {65536, 65536, 1, 2, 1},
                           {8, 8, 0, 2, 0},
                           {8, 8, 1u << 30, 2, 0},
                           {8, 8, 1, 2, 2}})
        EXPECT_EQ(rvkPyramidAllocate_v2(packed, w.width, w.height, w.elementSize, w.numLevels, w.firstLevel),
                  RAVIK_EBADPARAM)
            << w.width << "x" << w.height << ", " << w.numLevels << " levels of " << w.elementSize << " bytes";
    for (const uint32_t alignment : {0u, 8u, 24u, 256u})
        EXPECT_EQ(rvkPyramidAllocate_v3(rows, 8, 8, 1, 2, 0, alignment), RAVIK_EBADPARAM) << alignment;
    EXPECT_EQ(packed[1].ptr, packed) << "nothing is written";

    for (int granted = 0; granted < 3; ++granted) {
        const ScarceMemory memory(granted);
        EXPECT_EQ(rvkPyramidAllocate(packed, 64, 64, 4), RAVIK_ENORES);
        EXPECT_TRUE(memory.allIsReleased() && !packed[1].ptr && !packed[2].ptr && !packed[3].ptr);
    }
}

} // namespace

#include "internal.h"
#include "support/windows.h"

#include <cmath>

using namespace test;

namespace {

TEST(Copy, InternalOperationCopiesOnEveryUnit)
{
    Random random(1);
    const auto src = randomPicture<uint8_t>(random, 37, 11);
    auto& target = dispatchState.internalTargets[static_cast<uint32_t>(InternalSlot::irvkCopy)];
    for (const RVK_IMPL unit : {RVK_IMPL_CPU, RVK_IMPL_VECTA}) {
        rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE);
        EXPECT_EQ(target, RVK_IMPL_VECTA);
        target = unit;
        EXPECT_EQ(filtered<uint8_t>(&irvkCopy, src), src);
    }
}

// Turned by multiples of 90 degrees no pixel lies between two others.
TEST(Copy, QuarterTurnsAreExact)
{
    const auto src = pictureOf<uint8_t>(30, 20, [](int x, int y) { return x + 31 * y; });
    for (uint32_t quarters = 0; quarters < 4; ++quarters) {
        const auto expected = pictureOf<uint8_t>(17, 17, [&](int i, int j) {
            i -= 8, j -= 8;
            for (uint32_t n = 0; n < quarters; ++n)
                i = std::exchange(j, i), i = -i; // (i, j) to (-j, i)
            return src.at(20 + i, 9 + j);
        });
        forEachImplementation<Slot::rvkCopyRotated17x17u8>([&](const char* name, auto function) {
            Picture<uint8_t> patch(17, 17);
            EXPECT_EQ(function(src.pixels.data(), 30, 20, 30, 20, 9, 9 * quarters, patch.pixels.data()), RAVIK_SUCCESS);
            EXPECT_EQ(patch, expected) << name << ", " << quarters << " quarters";
        });
    }
}

// At every angle, beside the sines of the standard library, and as near to each edge as it goes.
TEST(Copy, PatchesOfEveryOrientationReachToTheEdges)
{
    Random random(2);
    for (uint32_t orientation = 0; orientation < 36; ++orientation) {
        const double angle = orientation * M_PI / 18, c = std::cos(angle), s = std::sin(angle);
        const auto offset = [](double value) { return static_cast<int>(std::floor(value + 0.5 + 1e-9)); };
        const int reach = offset(8 * (std::fabs(c) + std::fabs(s))), size = 2 * reach + 1;
        const auto src = randomPicture<uint8_t>(random, size, size);
        const auto expected = pictureOf<uint8_t>(17, 17, [&](int i, int j) {
            i -= 8, j -= 8;
            return src.at(reach + offset(c * i - s * j), reach + offset(s * i + c * j));
        });
        const uint32_t n = src.columns(), centre = static_cast<uint32_t>(reach);
        forEachImplementation<Slot::rvkCopyRotated17x17u8>([&](const char* name, auto function) {
            Picture<uint8_t> patch(17, 17);
            const auto statusAt = [&](uint32_t x, uint32_t y) {
                return function(src.pixels.data(), n, n, n, x, y, orientation, patch.pixels.data());
            };
            EXPECT_EQ(statusAt(centre, centre), RAVIK_SUCCESS);
            EXPECT_EQ(patch, expected) << name << ", orientation " << orientation;
            for (const uint32_t off : {centre - 1, centre + 1, UINT32_MAX}) {
                EXPECT_EQ(statusAt(off, centre), RAVIK_EFAIL);
                EXPECT_EQ(statusAt(centre, off), RAVIK_EFAIL);
            }
            EXPECT_EQ(patch, expected) << name << " wrote although it failed";
        });
    }
}

} // namespace

#include "support/implementations.h"
#include "support/random.h"

#include <array>
#include <cmath>

using namespace test;

namespace {

// Gradients and what becomes of them.
struct Gradients
{
    std::vector<int16_t> dx, dy;

    uint32_t size() const { return static_cast<uint32_t>(dx.size()); }

    // With the signs and the order that `octant` says. 32768 has no positive form.
    void add(int large, int small, uint32_t octant)
    {
        const int x = octant & 4 ? small : large, y = octant & 4 ? large : small;
        dx.push_back(static_cast<int16_t>(octant & 1 || x == 32768 ? -x : x));
        dy.push_back(static_cast<int16_t>(octant & 2 || y == 32768 ? -y : y));
    }
};

// For most lengths of a gradient's larger component and for roots r of all sizes: the smaller components with the
// largest sum of squares that has the root r and the least one that has r + 1.
Gradients besideRoundedRoots()
{
    Gradients gradients;
    Random random(1);
    for (int64_t large = 0; large <= 32768; large += 5)
        for (int i = 0; i < 12; ++i) {
            const int64_t r = large + random.below(static_cast<uint32_t>(large / 2 + 2));
            const int64_t most = r * r + r - large * large; // (r + 1/2)^2, rounded down
            const auto small = static_cast<int64_t>(std::sqrt(static_cast<double>(most)));
            for (int64_t s = small; s <= small + 1; ++s)
                if (s <= 32768)
                    gradients.add(static_cast<int>(large), static_cast<int>(s), random.below(8));
        }
    return gradients;
}

double boundary(int k)
{
    return std::tan((k + 0.5) * M_PI / 128);
}

// The two fractions of numbers up to 32768 that lie nearest to a number between 0 and 1, on either side.
std::array<std::array<int, 2>, 2> nearestFractions(double number)
{
    std::array<int, 2> below = {0, 1}, above = {1, 1};
    for (;;) {
        const std::array<int, 2> between = {below[0] + above[0], below[1] + above[1]};
        if (between[1] > 32768)
            return {below, above};
        (between[0] < number * between[1] ? below : above) = between;
    }
}

// Gradients on either side of every boundary between two phases: the nearest of all, and those of many sizes.
Gradients besideRoundedPhases()
{
    Gradients gradients;
    Random random(2);
    for (int k = 0; k < 32; ++k) {
        for (uint32_t octant = 0; octant < 8; ++octant)
            for (const auto& [small, large] : nearestFractions(boundary(k)))
                gradients.add(large, small, octant);
        for (int large = 1; large <= 32768; large += large < 300 ? 1 : 11) {
            const auto small = static_cast<int>(large * boundary(k));
            gradients.add(large, small, random.below(8));
            gradients.add(large, small + 1, random.below(8));
        }
    }
    return gradients;
}

// The results of a function of two sources, as one row.
template <class D, class Function>
std::vector<D> resultsOf(Function function, const Gradients& g)
{
    std::vector<D> dst(g.size());
    const auto bytes = static_cast<uint32_t>(g.size() * sizeof(int16_t));
    EXPECT_EQ(function(g.dx.data(), g.size(), 1, bytes, g.dy.data(), bytes, dst.data(),
                       static_cast<uint32_t>(g.size() * sizeof(D))),
              RAVIK_SUCCESS);
    return dst;
}

TEST(Magnitude, IsTheNearestInteger)
{
    const Gradients g = besideRoundedRoots();
    forEachImplementation<Slot::rvkMagnitudes16>([&](const char* name, auto function) {
        const std::vector<int16_t> roots = resultsOf<int16_t>(function, g);
        for (size_t i = 0; i < g.size(); ++i) {
            const int64_t sum = int64_t{g.dx[i]} * g.dx[i] + int64_t{g.dy[i]} * g.dy[i], r = roots[i];
            ASSERT_TRUE(4 * sum > (2 * r - 1) * (2 * r - 1) || r == 0) << name << ": " << g.dx[i] << ", " << g.dy[i];
            ASSERT_TRUE(4 * sum < (2 * r + 1) * (2 * r + 1) || r == 32767)
                << name << ": " << g.dx[i] << ", " << g.dy[i];
        }
    });
}

TEST(Phase, IsTheNearestDirection)
{
    // A direction belongs to a phase when it lies counter-clockwise of the phase's first boundary and clockwise of its
    // last.
    std::vector<std::array<long double, 2>> boundaries;
    for (int phase = 0; phase <= 256; ++phase) {
        const long double angle = (phase - 0.5L) * std::acos(-1.0L) / 128;
        boundaries.push_back({std::cos(angle), std::sin(angle)});
    }
    const auto isWithin = [&](size_t phase, int x, int y) {
        const auto& [firstX, firstY] = boundaries[phase];
        const auto& [lastX, lastY] = boundaries[phase + 1];
        return y * firstX - x * firstY > 0 && y * lastX - x * lastY < 0;
    };
    const Gradients g = besideRoundedPhases();
    forEachImplementation<Slot::rvkPhases16>([&](const char* name, auto function) {
        const std::vector<uint8_t> phases = resultsOf<uint8_t>(function, g);
        for (size_t i = 0; i < g.size(); ++i)
            ASSERT_TRUE(isWithin(phases[i], g.dx[i], g.dy[i]))
                << name << ": " << g.dx[i] << ", " << g.dy[i] << ": " << +phases[i];
    });
}

TEST(Magnitude, WorkedValues)
{
    const Gradients g = {
        {0, 1, 0, -1, 0, 1, -1, -1, 1, 3, 1, -2, 100, 100, 100, -100, 32767, -32768, 0, -32768, 23170, 23169},
        {0, 0, 1, 0, -1, 1, 1, -1, -1, 4, 2, 2, -1, 2, -2, -1, 0, 0, -32768, -32768, 23170, -23169}};
    const std::vector<int16_t> magnitudes = {0, 1,   1,   1,   1,   1,     1,     1,     1,     5,     2,
                                             3, 100, 100, 100, 100, 32767, 32767, 32767, 32767, 32767, 32766};
    const std::vector<uint8_t> phases = {0,  0, 64, 128, 192, 32, 96,  160, 224, 38, 45,
                                         96, 0, 1,  255, 128, 0,  128, 192, 160, 32, 224};
    EXPECT_EQ(resultsOf<int16_t>(rvkMagnitudes16, g), magnitudes);
    EXPECT_EQ(resultsOf<uint8_t>(rvkPhases16, g), phases);
}

TEST(EdgeWeighting, WorkedValues)
{
    const std::vector<int16_t> src = {0, 1, -1, 10, -10, 11, -11, 12, 1000, -1000, 32767, -32768};
    const auto weighted = [&](uint16_t threshold, uint16_t weight, uint16_t limit) {
        std::vector<int16_t> dst(src.size(), 77);
        const auto size = static_cast<uint32_t>(src.size());
        EXPECT_EQ(rvkEdgeWeightings16(src.data(), size, 1, 0, threshold, weight, limit, dst.data(), 0), RAVIK_SUCCESS);
        return dst;
    };
    using Values = std::vector<int16_t>;
    EXPECT_EQ(weighted(0, 256, 32767), (Values{0, 1, -1, 10, -10, 11, -11, 12, 1000, -1000, 32767, -32767}));
    EXPECT_EQ(weighted(10, 256, 65535), (Values{0, 0, 0, 0, 0, 1, -1, 2, 990, -990, 32757, -32758}));
    EXPECT_EQ(weighted(10, 384, 1500), (Values{0, 0, 0, 0, 0, 2, -2, 3, 1485, -1485, 1500, -1500}));
    EXPECT_EQ(weighted(0, 127, 5), (Values{0, 0, 0, 5, -5, 5, -5, 5, 5, -5, 5, -5}));
    EXPECT_EQ(weighted(0, 128, 32767), (Values{0, 1, -1, 5, -5, 6, -6, 6, 500, -500, 16384, -16384}));
    EXPECT_EQ(weighted(0, 65535, 65535),
              (Values{0, 256, -256, 2560, -2560, 2816, -2816, 3072, 32767, -32767, 32767, -32767}));
    EXPECT_EQ(weighted(32768, 65535, 65535), Values(src.size()));
    EXPECT_EQ(weighted(32767, 65535, 65535), (Values{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -256}));
    EXPECT_EQ(weighted(0, 65535, 0), Values(src.size()));
}

TEST(Magnitude, InPlaceTheStridesMustBeEqual)
{
    const int16_t src[64] = {};
    int16_t image[64] = {77};
    EXPECT_EQ(rvkMagnitudes16(image, 8, 4, 16, src, 16, image, 18), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkMagnitudes16(src, 8, 4, 16, image, 18, image, 16), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkEdgeWeightings16(image, 8, 4, 16, 1, 2, 3, image, 18), RAVIK_EBADPARAM);
    EXPECT_EQ(image[0], 77);
}

} // namespace

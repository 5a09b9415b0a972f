#include "cpu/ravikMomentsC.h"
#include "support/kernelModes.h"
#include "support/windows.h"

#include <cmath>

using namespace test;

namespace {

// By the definition, in long double; `size` is the same of magnitudes.
struct Sum
{
    long double value = 0, size = 0;
};

template <class T>
Sum momentOf(const Picture<T>& p, bool binary, int powerX, int powerY, long double centreX = 0, long double centreY = 0)
{
    Sum sum;
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x) {
            const long double v = binary ? p.at(x, y) != 0 : static_cast<long double>(p.at(x, y));
            long double term = v;
            for (int n = 0; n < powerX; ++n)
                term *= x - centreX;
            for (int n = 0; n < powerY; ++n)
                term *= y - centreY;
            sum.value += term;
            sum.size += std::fabs(term);
        }
    return sum;
}

constexpr int kPowers[][2] = {{0, 0}, {1, 0}, {0, 1}, {2, 0}, {1, 1}, {0, 2}, {3, 0}, {2, 1}, {1, 2}, {0, 3}};

template <Slot slot, class T>
void expectMoments(const Picture<T>& p, bool binary)
{
    const long double mass = momentOf(p, binary, 0, 0).value;
    const long double x = momentOf(p, binary, 1, 0).value / mass, y = momentOf(p, binary, 0, 1).value / mass;
    std::vector<Sum> raw, central;
    for (const auto& [px, py] : kPowers) {
        raw.push_back(momentOf(p, binary, px, py));
        central.push_back(mass == 0 ? Sum{} : momentOf(p, binary, px, py, x, y));
    }
    forEachImplementation<slot>([&](const char* name, auto function) {
        float m[24];
        static_assert(sizeof m == sizeof(rvkMoments));
        EXPECT_EQ(function(p.pixels.data(), p.columns(), p.rows(), p.stride(), binary ? 7 : 0,
                           reinterpret_cast<rvkMoments*>(m)),
                  RAVIK_SUCCESS);
        for (size_t i = 0; i < std::size(kPowers); ++i) {
            EXPECT_NEAR(m[i], raw[i].value, raw[i].size * 1e-6L) << name << ", moment " << i;
            if (i < 3)
                continue;
            const int order = kPowers[i][0] + kPowers[i][1];
            const long double unit = mass == 0 ? 1 : std::pow(std::fabs(mass), 1 + order / 2.0L);
            const long double tolerance = 1e-6L * central[i].size + 1e-13L * raw[i].size;
            EXPECT_NEAR(m[7 + i], central[i].value, tolerance) << name << ", central moment " << i;
            EXPECT_NEAR(m[14 + i], central[i].value / unit, tolerance / unit) << name << ", normalised moment " << i;
        }
    });
}

// Around tiles of 32x32; weights of one sign, so that the centre lies in the picture.
template <Slot slot, class T, class Draw>
void expectMomentsOfAllSizes(Draw draw)
{
    Random random(static_cast<uint32_t>(slot));
    for (const int width : {1, 7, 31, 32, 33, 64, 100, 300})
        for (const int height : {1, 32, 45}) {
            const auto p = pictureOf<T>(width, height, [&](int, int) { return draw(random); });
            expectMoments<slot>(p, false);
            expectMoments<slot>(p, true);
        }
    expectMoments<slot>(Picture<T>(40, 40), false);
}

TEST(Moments, AreSumsOfPowers)
{
    expectMomentsOfAllSizes<Slot::rvkImageMomentsu8, uint8_t>([](Random& r) { return r.below(3) ? r.below(256) : 0; });
    expectMomentsOfAllSizes<Slot::rvkImageMomentss32, int32_t>(
        [](Random& r) { return r.below(3) ? r.below(1u << 31) : 0; });
    expectMomentsOfAllSizes<Slot::rvkImageMomentsf32, float>(
        [](Random& r) { return r.below(3) ? static_cast<float>(r.below(1000)) / 64 : 0; });
}

// The largest sums of a tile, and signs; what is not finite has no centre.
TEST(Moments, OfExtremes)
{
    expectMoments<Slot::rvkImageMomentsu8>(Picture<uint8_t>(96, 70, 255), false);
    for (const bool isLow : {false, true}) // all on one side of a tile's middle
        expectMoments<Slot::rvkImageMomentsu8>(
            pictureOf<uint8_t>(64, 32, [=](int, int y) { return (y < 16) == isLow ? 255 : 0; }), false);
    expectMoments<Slot::rvkImageMomentss32>(Picture<int32_t>(160, 71, INT32_MIN), false);
    forEachImplementation<Slot::rvkImageMomentsf32>([](const char* name, auto function) {
        Picture<float> p(40, 3, 1);
        p.at(35, 2) = INFINITY;
        rvkMoments m;
        function(p.pixels.data(), 40, 3, 160, 0, &m);
        EXPECT_TRUE(std::isinf(m.m00)) << name;
        EXPECT_TRUE(m.mu20 == 0 && m.nu03 == 0) << name;
        p.at(35, 2) = 1e-40f; // not 0, and a unit that takes subnormals for it must not see it as such
        p.at(0, 0) = -0.0f;
        function(p.pixels.data(), 40, 3, 160, 1, &m);
        EXPECT_EQ(m.m00, 119) << name;
    });
}

// Raw moments of the third order, or of the second one as well. Both sides of the pictures are alike, so central
// moments of the third order are nothing but what was rounded.
TEST(Moments, RoundWhatDoublesDoNotHold)
{
    Random random(9);
    for (const auto& [width, height] : {std::pair{2500, 31}, std::pair{30001, 9}}) {
        auto p = randomPicture<uint8_t>(random, width, height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width / 2; ++x)
                p.at(width - 1 - x, y) = p.at(x, y);
        std::vector<float> expected;
        forEachImplementation<Slot::rvkImageMomentsu8>([&](const char* name, auto function) {
            float m[24];
            function(p.pixels.data(), p.columns(), p.rows(), p.stride(), 0, reinterpret_cast<rvkMoments*>(m));
            if (expected.empty())
                expected.assign(m, m + 24);
            EXPECT_EQ(std::vector(m, m + 24), expected) << name;
        });
    }
}

TEST(Moments, KernelsOfTiles)
{
    Random random(5);
    const auto u8 = randomPicture<uint8_t>(random, 40, 32);
    const auto s32 = randomPicture<int32_t>(random, 40, 32);
    for (const uint32_t width : {1u, 17u, 32u})
        inBothModes(Kernel::irvkTileMomentsu8, "irvkTileMomentsu8", [&] {
            RawMoments m, n;
            kernel<Kernel::irvkTileMomentsu8>()(u8.pixels.data(), width, 20, 40, 0, &m);
            irvkTileMomentsu8C(u8.pixels.data(), width, 20, 40, 0, &n);
            EXPECT_EQ(std::vector(&m.m00, &m.m03 + 1), std::vector(&n.m00, &n.m03 + 1));
            kernel<Kernel::irvkTileMomentss32>()(s32.pixels.data(), width, 20, 160, 0, &m);
            irvkTileMomentss32C(s32.pixels.data(), width, 20, 160, 0, &n);
            EXPECT_EQ(std::vector(&m.m00, &m.m03 + 1), std::vector(&n.m00, &n.m03 + 1));
        });
}

} // namespace

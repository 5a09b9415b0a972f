#include "support/windows.h"

#include <cmath>

using namespace test;

namespace {

using Codes = std::vector<uint8_t>;

template <class Function>
Codes codesOf(Function function, const Picture<uint8_t>& src, uint32_t radius, uint32_t neighbors)
{
    Codes codes((src.width - 2 * radius) * (src.height - 2 * radius));
    EXPECT_EQ(function(src.pixels.data(), src.width, src.height, src.stride(), radius, neighbors, codes.data(),
                       src.width - 2 * radius),
              RAVIK_SUCCESS);
    return codes;
}

// The bit of a point where the true interpolated value is clear of the centre's.
void expectInterpolated(const Picture<uint8_t>& src, uint32_t radius, uint32_t neighbors, const Codes& codes)
{
    for (uint32_t k = 0; k < neighbors; k++) {
        const double angle = 2 * M_PI * k / neighbors;
        const double dx = -std::sin(angle) * radius, dy = std::cos(angle) * radius;
        for (uint32_t i = 0; i < codes.size(); i++) {
            const double x = i % (src.width - 2 * radius) + radius, y = i / (src.width - 2 * radius) + radius;
            const auto at = [&](double column, double row) -> double {
                return src.pixels[static_cast<size_t>(row) * src.width + static_cast<size_t>(column)];
            };
            const double left = std::floor(x + dx + 1e-9), top = std::floor(y + dy + 1e-9);
            const double fx = x + dx - left, fy = y + dy - top;
            double value = 0;
            for (const int corner : {0, 1, 2, 3}) {
                const double weight = (corner & 1 ? fx : 1 - fx) * (corner & 2 ? fy : 1 - fy);
                if (std::fabs(weight) > 1e-6)
                    value += weight * at(left + (corner & 1), top + (corner >> 1));
            }
            if (std::fabs(value - at(x, y)) > 0.2) {
                EXPECT_EQ(codes[i] >> k & 1, value > at(x, y)) << k << " of " << neighbors << " in " << radius;
            }
        }
    }
}

TEST(Glbp, IsThatOfPointsOnACircle)
{
    Random random(1);
    const auto src = pictureOf<uint8_t>(40, 15, [&](int, int) { return random.below(256); });
    forEachImplementation<Slot::rvkGLBPu8>([&](const char* name, auto function) {
        SCOPED_TRACE(name);
        for (const uint32_t radius : {1u, 2u, 3u, 7u})
            for (uint32_t neighbors = 1; neighbors <= 8; neighbors++)
                expectInterpolated(src, radius, neighbors, codesOf(function, src, radius, neighbors));
        EXPECT_EQ(codesOf(function, src, 0, 5), Codes(40 * 15, 31)) << "the centre is as bright as itself";
    });
}

// Every centre, every sum of the neighbours beside it, and every corner that is near the decision; ties among them.
TEST(Glbp, VectorsDecideAsTheReferenceOnDiagonals)
{
    forEachVecta<Slot::rvkGLBPu8>([](const char* name, auto function) {
        Random random(2);
        for (int centre = 0; centre < 256; centre++) {
            const auto src = pictureOf<uint8_t>(3 * 171, 12, [&](int x, int y) {
                const int sum = x / 3 * 3 + y / 3 * 510 / 513;
                const int near = centre - static_cast<int>(std::floor((sum - 2 * centre) * 0.41424)) - 1;
                const bool isBeside = (x % 3 + y % 3) % 2 == 1;
                if (x % 3 == 1 && y % 3 == 1)
                    return centre;
                return isBeside ? (x % 3 == 1 ? sum / 2 : sum - sum / 2)
                                : std::clamp(near + static_cast<int>(random.below(3)), 0, 255);
            });
            EXPECT_EQ(codesOf(function, src, 1, 8), codesOf(referenceOf<Slot::rvkGLBPu8>(), src, 1, 8))
                << name << ", centre " << centre;
        }
    });
}

// Columns of vectors that end with the picture, or overlap, in blocks of rows.
TEST(Glbp, VectorsMeetTheEndsOfPictures)
{
    forEachVecta<Slot::rvkGLBPu8>([](const char* name, auto function) {
        Random random(3);
        for (const uint32_t width : {16u, 17u, 18u, 33u, 34u, 64u, 65u, 66u, 67u, 129u, 130u, 200u})
            for (const uint32_t height : {3u, 26u, 27u, 70u}) {
                const auto src = pictureOf<uint8_t>(width, height, [&](int, int) { return random.below(256); });
                EXPECT_EQ(codesOf(function, src, 1, 8), codesOf(referenceOf<Slot::rvkGLBPu8>(), src, 1, 8))
                    << name << ", " << width << " x " << height;
            }
    });
}

// A point below at R rows less R / 32768 lies between two rows; the upper one decides where the lower equals the centre,
// until it has a part of its own.
TEST(Glbp, PointsBesideARow)
{
    for (const uint32_t radius : {2u, 100u, 130u}) {
        const uint32_t size = 2 * radius + 1;
        for (const int upper : {-1, 0, 1})
            for (const int lower : {-1, 0, 1}) {
                const auto src = pictureOf<uint8_t>(size, size, [&](int x, int y) {
                    const auto row = static_cast<uint32_t>(y);
                    const bool isPoint = static_cast<uint32_t>(x) == radius;
                    return 100 + (isPoint && row == 2 * radius ? lower : 0) +
                           (isPoint && row == 2 * radius - 1 ? upper : 0);
                });
                const bool expected = lower > 0 || (lower == 0 && upper >= 0);
                forEachImplementation<Slot::rvkGLBPu8>([&](const char* name, auto function) {
                    EXPECT_EQ(codesOf(function, src, radius, 1), Codes(1, expected)) << name << " in " << radius;
                });
            }
    }
}

} // namespace

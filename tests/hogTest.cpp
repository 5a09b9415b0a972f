#include "cpu/ravikHogC.h"
#include "support/scarceMemory.h"
#include "support/windows.h"

#include <cmath>

using namespace test;

namespace {

using Bytes = Picture<uint8_t>;
using Values = std::vector<long double>;

long double length(const Values& values, long double more)
{
    long double sum = more;
    for (const long double v : values)
        sum += v * v;
    return std::sqrt(sum);
}

// The definition, cell by cell: each asks all pixels around it.
class Exact
{
public:
    Exact(const rvkHOG& hog, const Bytes& src)
        : m_hog(hog), m_isFhog(hog.method == RAVIK_HOG_FHOG), m_size(static_cast<int>(hog.cellSize)),
          m_across(src.width / m_size), m_down(src.height / m_size),
          m_cells(static_cast<size_t>(m_across * m_down), Values(m_isFhog ? 18 : hog.binCount))
    {
        for (int y = 0; y < m_down * m_size; ++y)
            for (int x = 0; x < m_across * m_size; ++x)
                vote(x, y, src.nearest(x + 1, y) - src.nearest(x - 1, y),
                     src.nearest(x, y + 1) - src.nearest(x, y - 1));
    }

    // Row by row.
    Values values() const
    {
        Values all;
        const int size = m_isFhog ? 1 : static_cast<int>(m_hog.blockSize), step = static_cast<int>(m_hog.blockStep);
        for (int y = 0; y + size <= m_down; y += step)
            for (int x = 0; x + size <= m_across; x += step) {
                const Values block = m_isFhog ? fhog(x, y) : dalal(x, y, size);
                all.insert(all.end(), block.begin(), block.end());
            }
        return all;
    }

private:
    const rvkHOG& m_hog;
    bool m_isFhog;
    int m_size, m_across, m_down;
    std::vector<Values> m_cells;

    const Values& at(int x, int y) const
    {
        const int column = std::clamp(x, 0, m_across - 1), row = std::clamp(y, 0, m_down - 1);
        return m_cells[static_cast<size_t>(row * m_across + column)];
    }
    long double weight(int pixel, int cell) const
    {
        return std::max(0.0L, 1 - std::fabs((pixel + 0.5L) / m_size - 0.5L - cell));
    }
    // Of a bin, by how far its centre is away from the direction.
    long double share(long double position, int dx, int dy, size_t bin, size_t bins) const
    {
        if (m_isFhog && dx == 0)
            return bin == (dy > 0 ? 5 : 14);
        const long double count = static_cast<long double>(bins), once = static_cast<long double>(bin) - position;
        const long double away = std::min({std::fabs(once), std::fabs(once + count), std::fabs(once - count)});
        return m_isFhog ? away < 0.5L : std::max(0.0L, 1 - away);
    }
    void vote(int x, int y, int dx, int dy)
    {
        const long double turns = std::atan2(1.0L * dy, 1.0L * dx) / M_PIl + (dy < 0 ? m_isFhog ? 2 : 1 : 0);
        const long double magnitude = std::hypot(1.0L * dx, 1.0L * dy);
        for (int i = 0; i < 9; ++i) {
            const int column = x / m_size + i % 3 - 1, row = y / m_size + i / 3 - 1;
            const long double part = magnitude * weight(x, column) * weight(y, row);
            if (part == 0 || column < 0 || row < 0 || column >= m_across || row >= m_down)
                continue;
            Values& bins = m_cells[static_cast<size_t>(row * m_across + column)];
            const long double position =
                m_isFhog ? turns * 9 : turns * static_cast<long double>(bins.size()) - 0.5L; // of centres 0, 1, ...
            for (size_t b = 0; b < bins.size(); ++b)
                bins[b] += part * share(position, dx, dy, b, bins.size());
        }
    }
    Values dalal(int x, int y, int size) const
    {
        Values v;
        for (int cell = 0; cell < size * size; ++cell) {
            const Values& bins = at(x + cell % size, y + cell / size);
            v.insert(v.end(), bins.begin(), bins.end());
        }
        const long double first = length(v, 1);
        for (long double& value : v)
            value = std::min(value / first, 0.2L);
        const long double second = length(v, 1e-6L);
        for (long double& value : v)
            value /= second;
        return v;
    }
    Values unsignedAt(int x, int y) const
    {
        Values u(at(x, y).begin(), at(x, y).begin() + 9);
        for (size_t b = 0; b < 9; ++b)
            u[b] += at(x, y)[b + 9];
        return u;
    }
    Values fhog(int x, int y) const
    {
        Values v(31), bins = at(x, y);
        const Values u = unsignedAt(x, y);
        bins.insert(bins.end(), u.begin(), u.end());
        for (size_t k = 0; k < 4; ++k) {
            const int dx = k % 2 ? 1 : -1, dy = k / 2 ? 1 : -1;
            long double energy = 1;
            for (const Values& other : {u, unsignedAt(x + dx, y), unsignedAt(x, y + dy), unsignedAt(x + dx, y + dy)})
                energy += length(other, 0) * length(other, 0);
            for (size_t b = 0; b < 27; ++b) {
                const long double clipped = std::min(bins[b] / std::sqrt(energy), 0.2L);
                v[b] += clipped / 2;
                v[27 + k] += b < 18 ? 0.2357L * clipped : 0;
            }
        }
        return v;
    }
};

// Noise of all values and of few, stripes with directions between bins, edges of full contrast.
Bytes drawPicture(Random& random, int width, int height)
{
    const unsigned kind = random.below(5), a = 1 + random.below(9), b = 1 + random.below(9);
    return pictureOf<uint8_t>(width, height, [&](int x, int y) -> unsigned {
        const unsigned u = static_cast<unsigned>(x), v = static_cast<unsigned>(y);
        switch (kind) {
        case 0:
            return random.below(256);
        case 1:
            return 7 + random.below(2);
        case 2:
            return (a * u + b * v) / 2 % 256;
        case 3:
            return (u * a > v * b + 9) * 255;
        default:
            return random.below(40) == 0 ? 255 : 16 * (v % 4);
        }
    });
}

TEST(Hog, IsExactWithinTheTolerance)
{
    Random random(7);
    for (int trial = 0; trial < 60; ++trial) {
        const bool isFhog = trial % 2;
        const uint32_t cell = trial % 5 ? 2 + random.below(9) : 11 + random.below(trial % 3 ? 10 : 54);
        const rvkHOG hog = isFhog ? rvkHOG{RAVIK_HOG_FHOG, cell, 2, 1, 9}
                                  : rvkHOG{RAVIK_HOG_DALAL, cell, 1 + random.below(trial % 4 ? 3 : 8),
                                           1 + random.below(3), 2 + random.below(trial % 3 ? 8 : 35)};
        const uint32_t least = hog.cellSize * (isFhog ? 1 : hog.blockSize);
        const Bytes src = drawPicture(random, static_cast<int>(least + random.below(trial % 3 ? 20 : 70)),
                                      static_cast<int>(least + random.below(20)));
        const Values expected = Exact(hog, src).values();
        forEachImplementation<Slot::rvkExtractHOGu16>([&](const char* name, auto function) {
            std::vector<uint16_t> dst(expected.size() + 1, 77);
            const HogGrid grid(hog, src.columns(), src.rows());
            ASSERT_EQ(grid.blocksAcross * grid.blocksDown * grid.blockValues, expected.size());
            EXPECT_EQ(function(&hog, src.pixels.data(), src.columns(), src.rows(), src.stride(), dst.data(),
                               grid.blocksAcross * grid.blockValues * 2),
                      RAVIK_SUCCESS);
            for (size_t i = 0; i < expected.size(); ++i)
                ASSERT_NEAR(dst[i], static_cast<double>(32768 * expected[i]), name[0] == 'C' ? 0.51 : 4)
                    << name << ", value " << i << ", method " << hog.method << ", cells of " << cell << ", "
                    << src.width << "x" << src.height;
            EXPECT_EQ(dst.back(), 77);
        });
    }
}

TEST(Hog, HandlesHoldTheirLimits)
{
    rvkHOG* hog = nullptr;
    constexpr uint32_t bad[][5] = {{0, 1, 2, 1, 9}, {0, 65, 2, 1, 9}, {0, 8, 0, 1, 9}, {0, 8, 9, 1, 9},
                                   {0, 8, 2, 0, 9}, {0, 8, 2, 9, 9},  {0, 8, 2, 1, 1}, {0, 8, 2, 1, 37},
                                   {1, 8, 1, 1, 9}, {1, 8, 2, 2, 9},  {1, 8, 2, 1, 8}, {1, 1, 2, 1, 9},
                                   {2, 8, 2, 1, 9}};
    for (const auto& [method, cell, block, step, bins] : bad)
        EXPECT_EQ(rvkHOGInit(method, cell, block, step, bins, &hog), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkHOGInit(0, 8, 2, 1, 9, nullptr), RAVIK_EBADPARAM);
    rvkHOGDeInit(nullptr);
    const ScarceMemory memory(1);
    ASSERT_EQ(rvkHOGInit(RAVIK_HOG_DALAL, 64, 8, 8, 36, &hog), RAVIK_SUCCESS);
    rvkHOG* none = nullptr;
    EXPECT_EQ(rvkHOGInit(0, 8, 2, 1, 9, &none), RAVIK_ENORES);
    EXPECT_EQ(none, nullptr);
    const uint8_t src[512] = {};
    uint16_t dst[1] = {77};
    EXPECT_EQ(rvkExtractHOGu16(nullptr, src, 512, 1, 0, dst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkExtractHOGu16(hog, src, 511, 512, 0, dst, 0), RAVIK_EBADPARAM) << "less than a block";
    EXPECT_EQ(rvkExtractHOGu16(hog, src, 512, 511, 0, dst, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(dst[0], 77);
    rvkHOGDeInit(hog);
    EXPECT_TRUE(memory.allIsReleased());
}

} // namespace

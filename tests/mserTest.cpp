#include "cpu/ravikMserC.h"
#include "kernels.h"
#include "support/kernelModes.h"
#include "support/windows.h"

#include <array>
#include <cerrno>
#include <dlfcn.h>
#include <pthread.h>

using namespace test;

// ---- threads ----

// Whether no thread can be started.
static bool areThreadsOut;

#if RVK_TEST_WITHOUT_THREADS
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument)
{
    static const auto create = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    return areThreadsOut ? EAGAIN : create(thread, attributes, start, argument);
}
#endif

namespace {

struct Parameters
{
    uint32_t delta, minArea, maxArea;
    float maxVariation, minDiversity;
};

struct Regions
{
    std::vector<rvkMserRegion> regions;
    std::vector<uint32_t> pixels;
};

void expectEqual(const Regions& actual, const Regions& expected, const std::string& what)
{
    ASSERT_EQ(actual.regions.size(), expected.regions.size()) << what;
    for (size_t i = 0; i < expected.regions.size(); ++i) {
        rvkMserRegion a = actual.regions[i];
        EXPECT_NEAR(a.variation, expected.regions[i].variation, 1e-6 * expected.regions[i].variation) << what;
        a.variation = expected.regions[i].variation;
        ASSERT_EQ(memcmp(&a, &expected.regions[i], sizeof a), 0) << what << ", region " << i;
    }
    EXPECT_EQ(actual.pixels, expected.pixels) << what;
}

// ---- the definition, by the components at each of 256 levels ----

class Levels
{
public:
    Levels(const Picture<uint8_t>& src, bool isBright, uint32_t connectivity) : m_src(src), m_isBright(isBright)
    {
        for (int t = 0; t < 256; ++t)
            m_levels.push_back(componentsAt(t, connectivity));
        for (int t = 255; t >= 0; --t) {
            std::vector<bool> isRegion(src.pixels.size());
            for (size_t k = 0; k < src.pixels.size(); ++k)
                if (grey(k) == t)
                    isRegion[static_cast<size_t>(at(t).first[k])] = true;
            for (size_t start = 0; start < src.pixels.size(); ++start)
                if (isRegion[start])
                    m_regions.push_back({t, start, areaAt(t, start), parentOf(t, start)});
        }
    }

    // Appends the regions of the pass.
    void list(const Parameters& p, Regions& out) const
    {
        std::vector<bool> isStable(m_regions.size(), true);
        for (size_t i = 0; i < m_regions.size(); ++i)
            if (const int parent = m_regions[i].parent; parent >= 0) {
                const Region &inner = m_regions[i], &outer = m_regions[static_cast<size_t>(parent)];
                const bool variesMore = grown(inner, p) * outer.area > grown(outer, p) * inner.area;
                isStable[variesMore ? i : static_cast<size_t>(parent)] = false;
            }
        const size_t before = out.regions.size();
        std::vector<Region> kept;
        for (size_t k = 0; k < m_regions.size(); ++k) {
            const Region& r = m_regions[k];
            const double area = static_cast<double>(r.area), growth = static_cast<double>(grown(r, p)) - area;
            int around = -1;
            for (size_t i = 0; i < kept.size(); ++i)
                if (at(kept[i].t).first[r.start] == static_cast<int>(kept[i].start))
                    around = static_cast<int>(i); // the latest is the innermost
            const double areaAround = around < 0 ? 0 : static_cast<double>(kept[static_cast<size_t>(around)].area);
            if (!isStable[k] || area < p.minArea || area > p.maxArea || growth > double{p.maxVariation} * area ||
                (around >= 0 && areaAround - area < double{p.minDiversity} * areaAround))
                continue;
            kept.push_back(r);
            append(r, growth / area, around < 0 ? -1 : around + static_cast<int>(before), out);
        }
    }

private:
    struct Components
    {
        std::vector<int> first;      // by pixel: the first one of its component, -1 outside
        std::vector<uint64_t> areas; // by first pixel
    };
    struct Region
    {
        int t;
        size_t start; // its first pixel
        uint64_t area;
        int parent; // its number
    };

    const Picture<uint8_t>& m_src;
    bool m_isBright;
    std::vector<Components> m_levels;
    std::vector<Region> m_regions; // from the highest level down, then by first pixel

    int grey(size_t k) const { return m_isBright ? 255 - m_src.pixels[k] : m_src.pixels[k]; }
    const Components& at(int t) const { return m_levels[static_cast<size_t>(t)]; }
    uint64_t areaAt(int t, size_t k) const { return at(t).areas[static_cast<size_t>(at(t).first[k])]; }
    uint64_t grown(const Region& r, const Parameters& p) const
    {
        return areaAt(std::min(r.t + static_cast<int>(p.delta), 255), r.start);
    }

    Components componentsAt(int t, uint32_t connectivity) const
    {
        Components result{std::vector<int>(m_src.pixels.size(), -1), std::vector<uint64_t>(m_src.pixels.size())};
        std::vector<std::pair<int, int>> waiting;
        for (int start = 0; start < m_src.width * m_src.height; ++start) {
            const auto visit = [&](int x, int y) {
                const auto k = static_cast<size_t>(y * m_src.width + x);
                if (!m_src.has(x, y) || grey(k) > t || result.first[k] >= 0)
                    return;
                result.first[k] = start;
                result.areas[static_cast<size_t>(start)]++;
                waiting.emplace_back(x, y);
            };
            for (visit(start % m_src.width, start / m_src.width); !waiting.empty();) {
                const auto [x, y] = waiting.back();
                waiting.pop_back();
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        if (connectivity == 8 || !dx || !dy)
                            visit(x + dx, y + dy);
            }
        }
        return result;
    }
    // The next larger region around.
    int parentOf(int t, size_t start) const
    {
        const uint64_t area = areaAt(t, start);
        for (++t; t < 256; ++t)
            if (areaAt(t, start) > area)
                return static_cast<int>(std::find_if(m_regions.begin(), m_regions.end(),
                                                     [&](const Region& r) {
                                                         return r.t == t &&
                                                                static_cast<int>(r.start) == at(t).first[start];
                                                     }) -
                                        m_regions.begin());
        return -1;
    }
    void append(const Region& r, double variation, int parent, Regions& out) const
    {
        int left = m_src.width, right = 0, bottom = 0;
        for (int y = 0; y < m_src.height; ++y)
            for (int x = 0; x < m_src.width; ++x) {
                if (at(r.t).first[static_cast<size_t>(y * m_src.width + x)] != static_cast<int>(r.start))
                    continue;
                left = std::min(left, x), right = std::max(right, x), bottom = y;
                out.pixels.insert(out.pixels.end(), {static_cast<uint32_t>(x), static_cast<uint32_t>(y)});
            }
        const int top = static_cast<int>(r.start) / m_src.width, level = m_isBright ? 255 - r.t : r.t;
        out.regions.push_back({{left, top, right - left + 1, bottom - top + 1},
                               static_cast<uint32_t>(r.area),
                               m_isBright ? 1 : -1,
                               static_cast<uint32_t>(level),
                               static_cast<float>(variation),
                               parent});
    }
};

// ---- calls ----

constexpr uint32_t kMostRegions = 2000, kMostPixels = 200000;

// Runs call(regions, capacity, count, pixels, their capacity).
template <class Call>
Regions listed(Call call, uint32_t capacity = kMostRegions, uint32_t pixelCapacity = kMostPixels)
{
    Regions result = {std::vector<rvkMserRegion>(capacity + 1), std::vector<uint32_t>(size_t{2} * pixelCapacity + 1)};
    uint32_t count = 0;
    EXPECT_EQ(call(result.regions.data(), capacity, &count, result.pixels.data(), pixelCapacity), 1u);
    result.regions.resize(count);
    size_t pixels = 0;
    for (const rvkMserRegion& region : result.regions)
        pixels += region.area;
    result.pixels.resize(2 * pixels);
    return result;
}

Regions extracted(const Picture<uint8_t>& src, const Parameters& p, uint32_t connectivity = 4, uint32_t polarities = 3,
                  uint32_t capacity = kMostRegions, uint32_t pixelCapacity = kMostPixels)
{
    return listed(
        [&](auto... output) {
            return rvkMserExtu8_v3(src.pixels.data(), src.columns(), src.rows(), 0, p.delta, p.minArea, p.maxArea,
                                   p.maxVariation, p.minDiversity, connectivity, polarities, output...);
        },
        capacity, pixelCapacity);
}

// The lists of bright and of dark regions.
template <class Function>
std::array<Regions, 2> split(Function function, const Picture<uint8_t>& src, const Parameters& p)
{
    std::array<Regions, 2> lists;
    lists[0] = listed([&](auto... bright) {
        uint32_t result = 0;
        lists[1] = listed([&](auto... dark) {
            return result = function(src.pixels.data(), src.columns(), src.rows(), src.stride(), p.delta, p.minArea,
                                     p.maxArea, p.maxVariation, p.minDiversity, bright..., dark...);
        });
        return result;
    });
    return lists;
}

// Boxes in front of each other, each of its own grey and shaded, under noise.
Picture<uint8_t> natural(int width, int height, uint64_t seed)
{
    Random random(seed);
    const auto below = [&](int bound) { return static_cast<int>(random.below(static_cast<uint32_t>(bound))); };
    Picture<uint8_t> picture(width, height, 120);
    for (int i = 0; i < 20; ++i) {
        const int left = below(width), top = below(height), grey = 20 + below(200), slope = below(3);
        for (int y = top, bottom = top + 1 + below(height / 2 + 1); y < std::min(bottom, height); ++y)
            for (int x = left; x < std::min(left + width / 3, width); ++x)
                picture.at(x, y) = static_cast<uint8_t>(std::min(grey + slope * (x - left), 250));
    }
    for (uint8_t& pixel : picture.pixels)
        pixel = static_cast<uint8_t>(pixel + below(4));
    return picture;
}

constexpr Parameters kUsual = {5, 8, 1500, 0.6f, 0.2f};

// ---- tests ----

TEST(Mser, FollowsTheDefinition)
{
    Random random(1);
    const Parameters all[] = {kUsual, {1, 1, 100000, 1e30f, 0}, {255, 1, 100000, 1000, 0.5f}, {20, 3, 200, 0, 1}};
    size_t kept = 0;
    for (int trial = 0; trial < 12; ++trial) {
        const int kind = trial % 6,
                  size = trial == 0  ? 48
                         : kind == 5 ? 1
                                     : 12 + trial / 6,
                  width = size, height = size;
        const Picture<uint8_t> photo = natural(width, height, static_cast<uint64_t>(trial));
        const auto src = pictureOf<uint8_t>(width, height, [&](int x, int y) -> int {
            return kind == 0   ? photo.at(x, y)
                   : kind == 1 ? static_cast<int>(random.below(256))
                   : kind == 2 ? static_cast<int>(random.below(4)) * 85
                   : kind == 3 ? (x + y) % 2 * 255
                   : kind == 4 ? std::min(x * 3 + y * 11, 255)
                               : 77;
        });
        for (const uint32_t connectivity : {4u, 8u}) {
            const Levels bright(src, true, connectivity), dark(src, false, connectivity);
            for (const Parameters& p : all)
                for (uint32_t polarities = 1; polarities <= 3; ++polarities) {
                    Regions expected;
                    if (polarities & RAVIK_MSER_BRIGHT)
                        bright.list(p, expected);
                    if (polarities & RAVIK_MSER_DARK)
                        dark.list(p, expected);
                    kept += expected.regions.size();
                    expectEqual(extracted(src, p, connectivity, polarities), expected,
                                "trial " + std::to_string(trial) + ", delta " + std::to_string(p.delta));
                }
        }
    }
    EXPECT_GT(kept, 500u);
}

TEST(Mser, InvertedPicturesSwapThePasses)
{
    const Picture<uint8_t> src = natural(160, 120, 3);
    Picture<uint8_t> inverted = src;
    for (uint8_t& pixel : inverted.pixels)
        pixel = static_cast<uint8_t>(255 - pixel);
    const auto ours = split(rvkMserSplitExtu8, src, kUsual);
    auto theirs = split(rvkMserSplitExtu8, inverted, kUsual);
    for (size_t pass = 0; pass < 2; ++pass) {
        EXPECT_GT(ours[pass].regions.size(), 3u);
        for (rvkMserRegion& region : theirs[pass].regions) {
            region.polarity = -region.polarity;
            region.level = 255 - region.level;
        }
        expectEqual(theirs[pass], ours[1 - pass], "inverted");
    }
}

TEST(Mser, TwoThreadsFindWhatOneDoes)
{
    const Picture<uint8_t> src = natural(160, 120, 4);
    const auto onTwo = split(rvkMserSplitExtu8, src, kUsual), onOne = split(irvkMserSplitExtu8, src, kUsual);
    const Regions together = extracted(src, kUsual);
    areThreadsOut = true;
    const auto withoutThread = split(rvkMserSplitExtu8, src, kUsual);
    expectEqual(extracted(src, kUsual), together, "one list without a thread");
    areThreadsOut = false;
    for (size_t pass = 0; pass < 2; ++pass) {
        expectEqual(onOne[pass], onTwo[pass], "one thread");
        expectEqual(withoutThread[pass], onTwo[pass], "no thread");
    }
}

// At every length from 0 on, and with room for any number of pixels, lists have the beginning of what there is.
TEST(Mser, FullListsEnd)
{
    const Picture<uint8_t> src = natural(60, 45, 5);
    const Parameters p = {3, 4, 2000, 2, 0};
    const Regions all = extracted(src, p);
    const auto begins = [&](const Regions& part, size_t regions) {
        Regions expected = {{all.regions.begin(), all.regions.begin() + static_cast<ptrdiff_t>(regions)}, {}};
        expected.pixels.assign(all.pixels.begin(), all.pixels.begin() + static_cast<ptrdiff_t>(part.pixels.size()));
        expectEqual(part, expected, "part of " + std::to_string(regions));
    };
    ASSERT_GT(all.regions.size(), 20u);
    EXPECT_EQ(all.regions.front().polarity, 1);
    EXPECT_EQ(all.regions.back().polarity, -1);
    uint32_t pixels = 0;
    for (uint32_t n = 0; n <= all.regions.size(); ++n) {
        begins(extracted(src, p, 4, 3, n), n);
        begins(extracted(src, p, 4, 3, kMostRegions, pixels), n);
        if (n == all.regions.size())
            break;
        pixels += all.regions[n].area;
        begins(extracted(src, p, 4, 3, kMostRegions, pixels - 1), n);
    }
}

// Nothing that is deep or has many neighbours takes long or overflows.
TEST(Mser, TakesRampsAndCheckerboards)
{
    for (const int kind : {0, 1, 2}) {
        const auto src = pictureOf<uint8_t>(512, 300, [&](int x, int y) {
            return kind == 0 ? x % 256 : kind == 1 ? (x + y) % 2 * 255 : (x ^ y) & 255;
        });
        uint32_t count = 0;
        std::vector<rvkMserRegion> regions(200000);
        EXPECT_EQ(rvkMserExtu8(src.pixels.data(), 512, 300, 255, 1, 200000, 1e9f, 0, regions.data(), 200000, &count,
                               nullptr, 0),
                  1u);
        EXPECT_GT(count, 0u);
    }
}

TEST(MserNN8, HandlesServePicturesUpToTheirSize)
{
    void* handle = nullptr;
    const auto init = [&](uint32_t width, uint32_t height, const Parameters& p, void** where) {
        return rvkMserNN8Init(width, height, p.delta, p.minArea, p.maxArea, p.maxVariation, p.minDiversity, where);
    };
    EXPECT_EQ(init(0, 5, kUsual, &handle) | init(5, 0, kUsual, &handle) | init(5, 5, kUsual, nullptr), 0u);
    EXPECT_EQ(init(65536, 65536, kUsual, &handle) | init(30000, 30000, kUsual, &handle), 0u);
    EXPECT_EQ(init(5, 5, {0, 1, 1, 0, 0}, &handle) | init(5, 5, {1, 2, 1, 0, 0}, &handle), 0u);
    EXPECT_EQ(handle, nullptr);
    ASSERT_EQ(init(120, 90, kUsual, &handle), 1u);
    for (const auto& [width, height] : {std::pair(120, 90), {1, 1}, {50, 90}, {120, 3}}) {
        const Picture<uint8_t> src = natural(width, height, 6);
        const Regions expected = extracted(src, kUsual, 8);
        expectEqual(listed([&](auto... output) {
                        return rvkMserExtNN8u8(handle, src.pixels.data(), src.columns(), src.rows(), 0, output...);
                    }),
                    expected, "handle");
        std::vector<rvkRectangle> bounds(kMostRegions);
        std::vector<uint32_t> areas(kMostRegions);
        uint32_t count = 0;
        EXPECT_EQ(rvkMserNN8u8(handle, src.pixels.data(), src.columns(), src.rows(), 0, bounds.data(), areas.data(),
                               kMostRegions, &count, nullptr, 0),
                  1u);
        ASSERT_EQ(count, expected.regions.size());
        for (size_t i = 0; i < count; ++i) {
            EXPECT_EQ(areas[i], expected.regions[i].area);
            EXPECT_EQ(memcmp(&bounds[i], &expected.regions[i].bounds, sizeof bounds[i]), 0);
        }
    }
    const std::vector<uint8_t> pixels(121 * 91);
    rvkMserRegion region;
    uint32_t count = 5;
    for (const auto& [width, height] : {std::pair(121u, 90u), {120, 91}})
        EXPECT_EQ(rvkMserExtNN8u8(handle, pixels.data(), width, height, 0, &region, 1, &count, nullptr, 0), 0u);
    EXPECT_EQ(rvkMserExtNN8u8(nullptr, pixels.data(), 5, 5, 0, &region, 1, &count, nullptr, 0), 0u);
    EXPECT_EQ(count, 5u);
    rvkMemFree(handle);
}

// ---- kernels ----

TEST(MserKernels, PrepareCells)
{
    const auto check = [](auto kernel, bool isInverted) {
        Random random(7);
        for (const uint32_t width : {1u, 15u, 64u, 131u}) {
            const uint32_t height = 1 + random.below(9), stride = width + 3;
            std::vector<uint8_t> src(size_t{stride} * height);
            for (uint8_t& pixel : src)
                pixel = static_cast<uint8_t>(random.below(256));
            std::vector<uint16_t> cells(mserCells(width, height) + 1, 9), expected(cells.size(), kMserSeen);
            std::vector<uint32_t> histogram(256, 3), counts(256);
            expected.back() = 9;
            for (uint32_t y = 0; y < height; ++y)
                for (uint32_t x = 0; x < width; ++x) {
                    const uint32_t pixel = src[y * stride + x], grey = isInverted ? 255 - pixel : pixel;
                    expected[(y + 1) * (width + 1) + x + 1] = static_cast<uint16_t>(grey);
                    ++counts[grey];
                }
            kernel()(src.data(), width, height, stride, cells.data(), histogram.data());
            EXPECT_EQ(cells, expected) << width;
            EXPECT_EQ(histogram, counts);
        }
    };
    inBothModes(Kernel::irvkMserPreprocessPlusNN4, "plus 4",
                [&] { check(kernel<Kernel::irvkMserPreprocessPlusNN4>, true); });
    inBothModes(Kernel::irvkMserPreprocessMinusNN4, "minus 4",
                [&] { check(kernel<Kernel::irvkMserPreprocessMinusNN4>, false); });
    inBothModes(Kernel::irvkMserPreprocessPlusNN8, "plus 8",
                [&] { check(kernel<Kernel::irvkMserPreprocessPlusNN8>, true); });
    inBothModes(Kernel::irvkMserPreprocessMinusNN8, "minus 8",
                [&] { check(kernel<Kernel::irvkMserPreprocessMinusNN8>, false); });
}

// Noise on slopes, deep holes of all sizes, and what is as bright as can be.
Picture<uint8_t> pitted(Random& random)
{
    const auto below = [&](int bound) { return static_cast<int>(random.below(static_cast<uint32_t>(bound))); };
    const int width = 1 + below(150), height = 1 + below(90), noise = 1 + below(12), slope = below(4);
    auto picture = pictureOf<uint8_t>(width, height, [&](int x, int y) {
        return std::min((x + y) * slope / 2 + below(noise) + (below(30) ? 9 : 0), 255);
    });
    for (int i = 0; i < 40; ++i) {
        const int left = below(width), top = below(height), side = 1 + below(8), grey = below(256);
        for (int y = top; y < std::min(top + side, height); ++y)
            for (int x = left; x < std::min(left + side, width); ++x)
                picture.at(x, y) = static_cast<uint8_t>(grey);
    }
    return picture;
}

TEST(MserKernels, PitsAreFilledWithoutATrace)
{
    const auto check = [&](Kernel kernel, const char* name, uint32_t connectivity) {
        std::vector<Regions> all;
        bool isReference = true;
        inBothModes(kernel, name, [&] {
            Random random(9);
            for (size_t trial = 0; trial < 24; ++trial) {
                const Picture<uint8_t> src = pitted(random);
                const float variations[] = {0, 0.25f, 1}, variation = variations[random.below(3)];
                const Parameters p = {1 + random.below(9), 15 + random.below(80), 100000, variation, 0};
                const Regions found = extracted(src, p, connectivity);
                if (isReference)
                    all.push_back(found);
                else
                    expectEqual(found, all[trial], name + std::to_string(trial));
            }
            isReference = false;
        });
    };
    check(Kernel::irvkMserFillPitsNN4, "four ", 4);
    check(Kernel::irvkMserFillPitsNN8, "eight ", 8);
}

// A region of 43 pixels that would be kept but for one of 36 pixels in it, which varies less.
TEST(MserKernels, PitsThatMatterStay)
{
    Picture<uint8_t> picture(60, 50, 90);
    const auto fill = [&](int top, int rows, int columns, uint8_t grey) {
        for (int y = top; y < top + rows; ++y)
            for (int x = 8; x < 8 + columns; ++x)
                picture.at(x, y) = grey;
    };
    fill(7, 6, 6, 50);
    fill(13, 1, 7, 52);
    fill(14, 1, 11, 56);
    fill(15, 1, 20, 60);
    const auto expectAreas = [&](const Parameters& p, std::vector<uint32_t> expected) {
        inBothModes(Kernel::irvkMserFillPitsNN4, "fill", [&] {
            std::vector<uint32_t> areas;
            for (const rvkMserRegion& region : extracted(picture, p, 4, RAVIK_MSER_DARK).regions)
                areas.push_back(region.area);
            EXPECT_EQ(areas, expected);
        });
    };
    expectAreas({5, 40, 50, 0.3f, 0}, {});
    fill(7, 1, 6, 52);
    expectAreas({5, 40, 50, 0.3f, 0}, {43});
}

TEST(MserKernels, FillPits)
{
    constexpr uint32_t width = 100, height = 60, pitch = mserPitch(width);
    std::vector<uint16_t> cells(mserCells(width, height), kMserSeen);
    const auto row = [&](uint32_t y) { return cells.begin() + (y + 1) * pitch + 1; };
    for (uint32_t y = 0; y < height; ++y)
        std::fill_n(row(y), width, uint16_t{90});
    for (const uint32_t x : {20u, 40u, 60u})
        std::fill_n(row(30) + x, 3, uint16_t{86});
    row(30)[41] = row(30)[62] = 80; // too deep
    std::vector<uint32_t> histogram(256), memory(cells.size());
    inBothModes(Kernel::irvkMserFillPitsNN4, "fill", [&] {
        kernel<Kernel::irvkMserFillPitsNN4>()(cells.data(), width, height, 42, 9, histogram.data(), memory.data());
    });
    EXPECT_EQ(histogram[90], width * height - 6);
    EXPECT_EQ(histogram[86], 4u);
    EXPECT_EQ(row(30)[20], 90);
    EXPECT_EQ(row(30)[42], 86);
}

TEST(MserKernels, MeasureBoxes)
{
    const auto check = [] {
        Random random(8);
        for (const uint32_t pitch : {2u, 7u, 641u, 4099u, 70001u}) {
            std::vector<uint32_t> places, counts, firsts(40);
            std::vector<rvkRectangle> boxes(40), expected;
            std::vector<uint32_t> expectedFirsts;
            for (int list = 0; list < 40; ++list) { // some end beyond 2^24
                const uint32_t rows = 2 + random.below(list % 2 ? 20 : (1u << 25) / pitch),
                               count = 1 + random.below(100);
                counts.push_back(count);
                int left = INT32_MAX, right = 0, top = INT32_MAX, bottom = 0;
                uint32_t first = UINT32_MAX;
                for (uint32_t i = 0; i < count; ++i) {
                    const uint32_t column = 1 + random.below(pitch - 1), row = 1 + random.below(rows);
                    places.push_back(row * pitch + column);
                    first = std::min(first, places.back());
                    left = std::min(left, static_cast<int>(column)), right = std::max(right, static_cast<int>(column));
                    top = std::min(top, static_cast<int>(row)), bottom = std::max(bottom, static_cast<int>(row));
                }
                expected.push_back({left - 1, top - 1, right - left + 1, bottom - top + 1});
                expectedFirsts.push_back(first);
            }
            kernel<Kernel::irvkMserBoundingBoxes>()(places.data(), counts.data(), 40, pitch, boxes.data(),
                                                    firsts.data());
            EXPECT_EQ(memcmp(boxes.data(), expected.data(), 40 * sizeof(rvkRectangle)), 0) << pitch;
            EXPECT_EQ(firsts, expectedFirsts);
        }
    };
    inBothModes(Kernel::irvkMserBoundingBoxes, "boxes", check);
}

} // namespace

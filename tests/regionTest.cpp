#include "support/windows.h"

#include <cmath>
#include <map>
#include <numeric>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif

using namespace test;

namespace {

// ---- pictures ----

// Each pixel is one of `values`, as often as not that of its left or upper neighbour: regions with holes and arms. At
// 60 of 100 ones among zeros, noise alone makes a maze of 4-connected pixels.
Picture<uint8_t> patches(int width, int height, uint32_t values, Random& random)
{
    Picture<uint8_t> picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const uint32_t dice = random.below(8);
            picture.at(x, y) = dice < 3 && x > 0   ? picture.at(x - 1, y)
                               : dice < 6 && y > 0 ? picture.at(x, y - 1)
                                                   : static_cast<uint8_t>(random.below(values));
        }
    return picture;
}

Picture<uint8_t> maze(int width, int height, Random& random)
{
    return pictureOf<uint8_t>(width, height, [&](int, int) { return random.below(100) < 60 ? 1 : 0; });
}

// A corridor one pixel wide that winds from the corner to the middle, in walls of other values.
Picture<uint8_t> spiral(int size)
{
    Picture<uint8_t> picture(size, size, 9);
    int x = 0, y = 0, dx = 1, dy = 0;
    const auto isFree = [&](int column, int row) { return picture.has(column, row) && picture.at(column, row) != 1; };
    const auto mayGo = [&] {
        return isFree(x + dx, y + dy) && (!picture.has(x + 2 * dx, y + 2 * dy) || isFree(x + 2 * dx, y + 2 * dy));
    };
    for (picture.at(0, 0) = 1;; picture.at(x, y) = 1) {
        if (!mayGo()) {
            std::tie(dx, dy) = std::tuple(-dy, dx);
            if (!mayGo())
                return picture;
        }
        x += dx, y += dy;
    }
}

bool areNeighbours(int x, int y, uint32_t connectivity)
{
    return (x || y) && (connectivity == 8 || !x || !y);
}

// The first pixel, in raster order, of the set that each belongs to, where mayJoin(place, place) neighbours do: by
// passing on numbers until none changes.
template <class MayJoin>
std::vector<int> firstPixels(int width, int height, uint32_t connectivity, MayJoin mayJoin)
{
    std::vector<int> first(static_cast<size_t>(width * height));
    std::iota(first.begin(), first.end(), 0);
    for (bool changes = true; changes;) {
        changes = false;
        for (int place = 0; place < width * height; ++place)
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    const int x = place % width + dx, y = place / width + dy, other = y * width + x;
                    if (!areNeighbours(dx, dy, connectivity) || x < 0 || x >= width || y < 0 || y >= height ||
                        !mayJoin(place, other))
                        continue;
                    int &mine = first[static_cast<size_t>(place)], theirs = first[static_cast<size_t>(other)];
                    changes |= theirs < mine;
                    mine = std::min(mine, theirs);
                }
    }
    return first;
}

// ---- flood fill ----

struct Filled
{
    Picture<uint8_t> picture;
    rvkConnectedComponent component;
};

template <class Function>
Filled filled(Function fill, const Picture<uint8_t>& src, const std::vector<uint32_t>& seeds, int low, int high,
              uint8_t value, uint32_t connectivity)
{
    Filled result = {src, {}};
    EXPECT_EQ(fill(result.picture.pixels.data(), src.columns(), src.rows(), src.stride(), seeds.data(),
                   static_cast<uint32_t>(seeds.size() / 2), static_cast<uint8_t>(low), static_cast<uint8_t>(high),
                   value, connectivity, &result.component),
              RAVIK_SUCCESS);
    return result;
}

#if RVK_TEST_OPENCV
TEST(FloodFill, EqualsOpenCv)
{
    Random random(1);
    for (int trial = 0; trial < 120; ++trial) {
        const int width = 1 + static_cast<int>(random.below(200)), height = 1 + static_cast<int>(random.below(60));
        const Picture<uint8_t> src =
            trial % 3 ? patches(width, height, trial % 3 == 1 ? 3 : 200, random) : maze(width, height, random);
        const uint32_t x = random.below(src.columns()), y = random.below(src.rows()), connectivity = trial % 2 ? 4 : 8;
        const int low = static_cast<int>(random.below(60)) * (trial % 3 == 2), high = low ? 300 % (low + 40) : 0;
        cv::Mat expected = cv::Mat(height, width, CV_8U, const_cast<uint8_t*>(src.pixels.data())).clone();
        cv::Rect bounds;
        const int area = cv::floodFill(expected, cv::Point(static_cast<int>(x), static_cast<int>(y)), 255, &bounds, low,
                                       high, static_cast<int>(connectivity) | cv::FLOODFILL_FIXED_RANGE);
        const auto expectFilled = [&](const char* name, const Filled& f) {
            EXPECT_TRUE(std::equal(f.picture.pixels.begin(), f.picture.pixels.end(), expected.data)) << name << trial;
            EXPECT_EQ(f.component.area, static_cast<uint32_t>(area)) << name << trial;
            EXPECT_EQ(memcmp(&f.component.bounds, &bounds, sizeof bounds), 0) << name << trial;
        };
        forEachImplementation<Slot::rvkFloodfillMergedu8>([&](const char* name, auto fill) {
            expectFilled(name, filled(fill, src, {x, y}, low, high, 255, connectivity));
        });
        if (low || high)
            continue;
        forEachImplementation<Slot::rvkFloodfillSimpleu8>([&](const char* name, auto fill) {
            Filled f = {src, {}};
            fill(f.picture.pixels.data(), src.columns(), src.rows(), src.stride(), x, y, 255, connectivity,
                 &f.component);
            expectFilled(name, f);
        });
    }
}
#endif

// What each of many seeds collects by itself, together: also where the values that they look for overlap, and where the
// new value is one of them.
TEST(FloodFill, MergesWhatSeedsCollect)
{
    Random random(2);
    for (const uint32_t connectivity : {4u, 8u}) {
        const Picture<uint8_t> src = connectivity == 4 ? patches(150, 40, 12, random) : maze(150, 40, random);
        std::vector<uint32_t> seeds;
        Picture<uint8_t> expected = src;
        for (int i = 0; i < 9; ++i) {
            seeds.insert(seeds.end(), {random.below(150), random.below(40)});
            const Filled one =
                filled(rvkFloodfillMergedu8C, src, {seeds.end() - 2, seeds.end()}, 1, 2, 255, connectivity);
            for (size_t k = 0; k < src.pixels.size(); ++k)
                if (one.picture.pixels[k] == 255)
                    expected.pixels[k] = 7;
        }
        forEachImplementation<Slot::rvkFloodfillMergedu8>([&](const char* name, auto fill) {
            EXPECT_EQ(filled(fill, src, seeds, 1, 2, 7, connectivity).picture, expected) << name;
        });
    }
}

TEST(FloodFill, FollowsALongSpiral)
{
    const Picture<uint8_t> src = spiral(601);
    const auto corridor = static_cast<uint32_t>(std::count(src.pixels.begin(), src.pixels.end(), 1));
    EXPECT_GT(corridor, 601u * 601 * 2 / 5);
    forEachImplementation<Slot::rvkFloodfillSimpleu8>([&](const char* name, auto fill) {
        Filled f = {src, {}};
        fill(f.picture.pixels.data(), 601, 601, 601, 0, 0, 200, 4, &f.component);
        EXPECT_EQ(f.component.area, corridor) << name;
        EXPECT_EQ(std::count(f.picture.pixels.begin(), f.picture.pixels.end(), 200), corridor) << name;
    });
}

TEST(FloodFill, NeedsSeedsInsideThePicture)
{
    Picture<uint8_t> picture(5, 4);
    const uint32_t outside[] = {1, 1, 5, 0}, below[] = {1, 1, 0, 4}, inside[] = {4, 3};
    const auto fill = [&](const uint32_t* seeds, uint32_t count) {
        return rvkFloodfillMergedu8(picture.pixels.data(), 5, 4, 0, seeds, count, 0, 0, 3, 4, nullptr);
    };
    for (const auto& [seeds, count] : {std::pair(outside, 2u), {below, 2u}, {inside, 0u}})
        EXPECT_EQ(fill(seeds, count), RAVIK_EBADPARAM);
    EXPECT_EQ(fill(nullptr, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(picture, Picture<uint8_t>(5, 4));
    EXPECT_EQ(fill(inside, 1), RAVIK_SUCCESS);
    EXPECT_EQ(picture, Picture<uint8_t>(5, 4, 3));
}

// ---- regions of a colour ----

// Interleaved pixels in a picture three times as wide.
Picture<uint8_t> colors(int width, int height, uint32_t values, Random& random)
{
    const Picture<uint8_t> planes[] = {patches(width, height, values, random), patches(width, height, values, random),
                                       patches(width, height, values, random)};
    return pictureOf<uint8_t>(3 * width, height, [&](int x, int y) { return planes[x % 3].at(x / 3, y); });
}

TEST(RegionGrow, FollowsTheDefinition)
{
    Random random(3);
    for (int trial = 0; trial < 40; ++trial) {
        const int width = 1 + static_cast<int>(random.below(150)), height = 1 + static_cast<int>(random.below(20));
        const uint32_t connectivity = trial % 2 ? 4 : 8, minArea = random.below(9);
        const int threshold = trial % 3 ? 6 : 0;
        const Picture<uint8_t> src = colors(width, height, threshold ? 20 : 2, random);
        const auto channel = [&](int place, int c) { return src.pixels[static_cast<size_t>(3 * place + c)]; };
        const auto first = firstPixels(width, height, connectivity, [&](int a, int b) {
            return std::max({std::abs(channel(a, 0) - channel(b, 0)), std::abs(channel(a, 1) - channel(b, 1)),
                             std::abs(channel(a, 2) - channel(b, 2))}) <= threshold;
        });

        std::map<int, std::vector<int>> members; // by the first pixel
        for (int place = 0; place < width * height; ++place)
            members[first[static_cast<size_t>(place)]].push_back(place);
        std::vector<rvkRegion> regions;
        std::vector<uint32_t> labels(first.size());
        for (const auto& [_, places] : members) {
            if (places.size() < minArea)
                continue;
            int left = width, right = 0;
            double sums[3] = {};
            for (const int place : places) {
                left = std::min(left, place % width), right = std::max(right, place % width);
                labels[static_cast<size_t>(place)] = static_cast<uint32_t>(regions.size() + 1);
                for (int c = 0; c < 3; ++c)
                    sums[c] += channel(place, c);
            }
            const int top = places.front() / width, bottom = places.back() / width;
            const auto area = static_cast<uint32_t>(places.size());
            const auto mean = [&](int c) { return static_cast<uint8_t>(std::floor(sums[c] / area + 0.5)); };
            regions.push_back({{left, top, right - left + 1, bottom - top + 1}, area, {mean(0), mean(1), mean(2), 0}});
        }

        const size_t most = trial % 4 ? regions.size() : regions.size() / 2; // there may be room for fewer
        forEachImplementation<Slot::rvkImageSegmentationRegionGrow>([&](const char* name, auto grow) {
            std::vector<uint32_t> actual(labels.size());
            std::vector<rvkRegion> records(most);
            uint32_t count = 0;
            EXPECT_EQ(grow(src.pixels.data(), static_cast<uint32_t>(width), src.rows(), src.stride(),
                           static_cast<uint32_t>(threshold), minArea, connectivity, actual.data(),
                           static_cast<uint32_t>(width) * 4, records.data(), static_cast<uint32_t>(most), &count),
                      RAVIK_SUCCESS);
            EXPECT_EQ(actual, labels) << name << ", trial " << trial;
            EXPECT_EQ(count, regions.size()) << name;
            for (size_t i = 0; i < most; ++i)
                EXPECT_EQ(memcmp(&records[i], &regions[i], sizeof(rvkRegion)), 0) << name << ", region " << i;
        });
    }
}

#if RVK_TEST_OPENCV
// At threshold 0, regions are what connectedComponents finds in each colour.
TEST(RegionGrow, EqualsOpenCvOnEachColour)
{
    Random random(4);
    const int width = 333, height = 200;
    const Picture<uint8_t> grey = patches(width, height, 4, random);
    const auto src = pictureOf<uint8_t>(3 * width, height, [&](int x, int y) { return grey.at(x / 3, y) * (x % 3); });
    for (const uint32_t connectivity : {4u, 8u}) {
        std::vector<uint32_t> labels(grey.pixels.size());
        uint32_t count = 0;
        EXPECT_EQ(rvkImageSegmentationRegionGrow(src.pixels.data(), width, height, 0, 0, 0, connectivity, labels.data(),
                                                 0, nullptr, 0, &count),
                  RAVIK_SUCCESS);
        uint32_t expectedCount = 0;
        std::map<uint32_t, std::pair<int, int>> theirs; // by our label
        for (int value = 0; value < 4; ++value) {
            cv::Mat found, mask = cv::Mat(height, width, CV_8U, const_cast<uint8_t*>(grey.pixels.data())) == value;
            expectedCount +=
                static_cast<uint32_t>(cv::connectedComponents(mask, found, static_cast<int>(connectivity)) - 1);
            for (size_t k = 0; k < labels.size(); ++k)
                if (grey.pixels[k] == value) {
                    const std::pair label(value, found.ptr<int>()[k]);
                    EXPECT_EQ(theirs.try_emplace(labels[k], label).first->second, label);
                }
        }
        EXPECT_EQ(count, expectedCount);
        EXPECT_EQ(theirs.size(), expectedCount);
    }
}
#endif

// ---- regions from seeds ----

// By a list of all offers, and sums of 64 bits.
std::vector<uint32_t> expectedLabels(const Picture<int16_t>& src, const std::vector<uint32_t>& seeds,
                                     uint32_t maxDifference, uint32_t connectivity)
{
    struct Offer
    {
        int64_t price;
        size_t number, place, label;
    };
    std::vector<Offer> offers;
    std::vector<int64_t> counts(seeds.size() / 2 + 1), sums(counts.size());
    std::vector<uint32_t> labels(src.pixels.size());
    const auto take = [&](size_t place, size_t label) {
        labels[place] = static_cast<uint32_t>(label);
        counts[label]++;
        sums[label] += src.pixels[place];
    };
    size_t made = 0;
    const auto offer = [&](size_t place, size_t label) {
        static const int dx[] = {0, -1, 1, 0, -1, 1, -1, 1}, dy[] = {-1, 0, 0, 1, -1, -1, 1, 1};
        for (size_t k = 0; k < connectivity; ++k) {
            const int x = static_cast<int>(place % src.columns()) + dx[k];
            const int y = static_cast<int>(place / src.columns()) + dy[k];
            if (!src.has(x, y))
                continue;
            const auto other = static_cast<size_t>(y * src.width + x);
            const int64_t price = std::abs(counts[label] * src.pixels[other] - sums[label]) / counts[label];
            if (!labels[other] && price <= maxDifference)
                offers.push_back({price, made++, other, label});
        }
    };
    for (size_t i = 0; i < seeds.size() / 2; ++i)
        if (const size_t place = seeds[2 * i + 1] * src.columns() + seeds[2 * i]; !labels[place])
            take(place, i + 1);
    for (size_t i = 0; i < seeds.size() / 2; ++i)
        if (counts[i + 1])
            offer(seeds[2 * i + 1] * src.columns() + seeds[2 * i], i + 1);
    while (!offers.empty()) {
        const auto best = std::min_element(offers.begin(), offers.end(), [](const Offer& a, const Offer& b) {
            return std::pair(a.price, a.number) < std::pair(b.price, b.number);
        });
        const Offer taken = *best;
        offers.erase(best);
        if (labels[taken.place])
            continue;
        take(taken.place, taken.label);
        offer(taken.place, taken.label);
    }
    return labels;
}

TEST(SeedRegionGrow, FollowsTheDefinition)
{
    Random random(5);
    for (int trial = 0; trial < 60; ++trial) {
        const int width = 1 + static_cast<int>(random.below(30)), height = 1 + static_cast<int>(random.below(30));
        const Picture<uint8_t> grey = patches(width, height, 200, random);
        const auto src = pictureOf<int16_t>(width, height, [&](int x, int y) {
            return trial % 3 ? grey.at(x, y) * 7 - 900 : static_cast<int>(random.below(65536)) - 32768;
        });
        std::vector<uint32_t> seeds;
        for (uint32_t i = 0; i < 1 + random.below(6); ++i) // some on one pixel
            seeds.insert(seeds.end(), {random.below(src.columns()), random.below(src.rows())});
        const uint32_t differences[] = {0, 30, 400, 70000, UINT32_MAX}, connectivity = trial % 2 ? 4 : 8;
        const uint32_t maxDifference = differences[random.below(5)];
        std::vector<uint32_t> labels(src.pixels.size());
        EXPECT_EQ(rvkImageSegmentationSeedRegionGrows16(src.pixels.data(), src.columns(), src.rows(), 0, seeds.data(),
                                                        static_cast<uint32_t>(seeds.size() / 2), maxDifference,
                                                        connectivity, labels.data(), 0),
                  RAVIK_SUCCESS);
        EXPECT_EQ(labels, expectedLabels(src, seeds, maxDifference, connectivity)) << "trial " << trial;
    }
    int16_t pixel = 0;
    uint32_t label = 5;
    const uint32_t outside[] = {0, 0, 1, 0};
    EXPECT_EQ(rvkImageSegmentationSeedRegionGrows16(&pixel, 1, 1, 0, outside, 2, 0, 4, &label, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkImageSegmentationSeedRegionGrows16(&pixel, 1, 1, 0, outside, 0, 0, 4, &label, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(label, 5u);
}

} // namespace

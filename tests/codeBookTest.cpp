#include "support/scarceMemory.h"
#include "support/windows.h"

#include <ravik/codebook.h>

#include <array>

using namespace test;

namespace {

using Colour = std::array<int, 3>;

struct Codeword
{
    Colour learnLow, learnHigh, min, max;
    uint32_t lastUpdate, stale;
};

struct Settings
{
    std::array<uint8_t, 3> bounds{10, 10, 10}, below{3, 3, 3}, above{10, 10, 10};
    uint32_t most = 16;
};

// One of three bytes a pixel, packed.
struct Scene
{
    uint32_t width, height;
    std::vector<uint8_t> bytes;

    template <class ColourAt>
    Scene(uint32_t w, uint32_t h, ColourAt colourAt) : width(w), height(h)
    {
        for (uint32_t y = 0; y < h; ++y)
            for (uint32_t x = 0; x < w; ++x)
                for (const int channel : colourAt(x, y))
                    bytes.push_back(static_cast<uint8_t>(std::clamp(channel, 0, 255)));
    }
    Colour at(size_t i) const { return {bytes[3 * i], bytes[3 * i + 1], bytes[3 * i + 2]}; }
};

// The definition, with a list for each pixel.
class Lists
{
public:
    explicit Lists(size_t pixels) : m_lists(pixels) {}

    void update(const Settings& s, const Scene& src, const std::vector<uint8_t>& mask)
    {
        ++m_time;
        for (size_t i = 0; i < m_lists.size(); ++i)
            if (mask[i])
                update(s, m_lists[i], src.at(i));
    }
    std::vector<uint8_t> foreground(const Settings& s, const Scene& src) const
    {
        std::vector<uint8_t> result;
        for (size_t i = 0; i < m_lists.size(); ++i)
            result.push_back(std::any_of(m_lists[i].begin(), m_lists[i].end(),
                                         [&](const Codeword& w) {
                                             return every([&](size_t c) {
                                                 return w.min[c] - s.below[c] <= src.at(i)[c] &&
                                                        src.at(i)[c] <= w.max[c] + s.above[c];
                                             });
                                         })
                                 ? 0
                                 : 255);
        return result;
    }
    void clearStale(uint32_t threshold, const std::vector<uint8_t>& mask)
    {
        for (size_t i = 0; i < m_lists.size(); ++i) {
            if (!mask[i])
                continue;
            std::erase_if(m_lists[i], [=](const Codeword& w) { return w.stale > threshold; });
            for (Codeword& w : m_lists[i])
                w.stale = 0, w.lastUpdate = m_time;
        }
    }

private:
    std::vector<std::vector<Codeword>> m_lists;
    uint32_t m_time = 0;

    template <class Condition>
    static bool every(Condition condition)
    {
        return condition(0) && condition(1) && condition(2);
    }
    void update(const Settings& s, std::vector<Codeword>& list, const Colour& p) const
    {
        Colour low, high;
        for (size_t c = 0; c < 3; ++c)
            low[c] = std::max(p[c] - s.bounds[c], 0), high[c] = std::min(p[c] + s.bounds[c], 255);
        const auto match = std::find_if(list.begin(), list.end(), [&](const Codeword& w) {
            return every([&](size_t c) { return w.learnLow[c] <= p[c] && p[c] <= w.learnHigh[c]; });
        });
        const bool isNew = match == list.end();
        for (size_t c = 0; c < 3 && !isNew; ++c) {
            match->lastUpdate = m_time;
            match->min[c] = std::min(match->min[c], p[c]), match->max[c] = std::max(match->max[c], p[c]);
            match->learnHigh[c] += match->learnHigh[c]<high[c], match->learnLow[c] -= match->learnLow[c]> low[c];
        }
        for (Codeword& w : list)
            w.stale = std::max(w.stale, m_time - w.lastUpdate);
        if (isNew) {
            const auto isLess = [](const Codeword& a, const Codeword& b) { return a.stale < b.stale; };
            Codeword& word =
                list.size() < s.most ? list.emplace_back() : *std::max_element(list.begin(), list.end(), isLess);
            word = {low, high, p, p, m_time, 0};
        }
    }
};

template <Slot slot>
auto implementations()
{
    std::vector<typename SignatureOf<slot>::Type> all;
    forEachImplementation<slot>([&](const char*, auto function) { all.push_back(function); });
    return all;
}

// Whichever implementation works on a model, the next one finds what it left.
TEST(CodeBook, IsItsDefinition)
{
    const auto updates = implementations<Slot::rvkBGCodeBookUpdateu8>();
    const auto clears = implementations<Slot::rvkBGCodeBookClearStaleu8>();
    Random random(1);
    for (int trial = 0; trial < 12; ++trial) {
        const uint32_t width = 1 + random.below(trial % 3 ? 150 : 30), height = 1 + random.below(3);
        rvkBGCodeBookModel* model = nullptr;
        ASSERT_EQ(rvkCreateBGCodeBookModel(width, height, &model), RAVIK_SUCCESS);
        Lists lists(size_t{width} * height);
        Settings settings;
        const unsigned colours = 1 + random.below(9), noise = 1 + random.below(25);
        for (int step = 0; step < 40; ++step) {
            if (random.below(12) == 0) {
                for (auto* three : {&settings.bounds, &settings.below, &settings.above})
                    for (uint8_t& value : *three)
                        value = static_cast<uint8_t>(random.below(random.below(2) ? 20 : 256));
                settings.most = random.below(2) ? 1 + random.below(4) : 255;
                ASSERT_EQ(rvkConfigBGCodeBookModel(model, settings.bounds.data(), settings.below.data(),
                                                   settings.above.data(), settings.most),
                          RAVIK_SUCCESS);
            }
            const auto channel = [&] { return static_cast<int>(random.below(colours) * 37 + random.below(noise)); };
            const Scene scene(width, height, [&](uint32_t, uint32_t) {
                return Colour{channel(), channel(), channel()};
            });
            std::vector<uint8_t> mask(size_t{width} * height, 9);
            const bool isMasked = random.below(2);
            for (uint8_t& m : mask)
                m = isMasked && random.below(3) == 0 ? 0 : m;
            const uint8_t* const given = isMasked ? mask.data() : nullptr;
            if (random.below(6)) {
                const auto update = updates[random.below(static_cast<uint32_t>(updates.size()))];
                EXPECT_EQ(update(model, scene.bytes.data(), width, height, 3 * width, given, width), RAVIK_SUCCESS);
                lists.update(settings, scene, mask);
            } else {
                const uint32_t threshold = random.below(6);
                const auto clear = clears[random.below(static_cast<uint32_t>(clears.size()))];
                EXPECT_EQ(clear(model, threshold, given, width, height, width), RAVIK_SUCCESS);
                lists.clearStale(threshold, mask);
            }
            const std::vector<uint8_t> expected = lists.foreground(settings, scene);
            forEachImplementation<Slot::rvkBGCodeBookDiffu8>([&](const char* name, auto function) {
                std::vector<uint8_t> actual(expected.size(), 77);
                uint32_t count = 0;
                EXPECT_EQ(function(model, scene.bytes.data(), width, height, 3 * width, actual.data(), width, &count),
                          RAVIK_SUCCESS);
                ASSERT_EQ(actual, expected) << name << ", trial " << trial << ", step " << step << ", width " << width;
                EXPECT_EQ(count, std::count(expected.begin(), expected.end(), 255));
            });
        }
        rvkReleaseBGCodeBookModel(&model);
    }
}

TEST(CodeBook, SeesWhatMovesBeforeANoisyScene)
{
    constexpr uint32_t width = 200, height = 60, size = 12;
    Random random(2);
    const auto sceneWith = [&](uint32_t left) {
        return Scene(width, height, [&](uint32_t x, uint32_t y) {
            const bool isObject = x - left < size && y - 20 < size;
            const auto noise = [&] { return static_cast<int>(random.below(9)) - 4; };
            const int flicker = x < 40 && random.below(2) ? 60 : 0; // a second colour, as of leaves
            const int grey = isObject ? 20 : 100 + static_cast<int>(x / 4 + y) % 60 + flicker;
            return Colour{grey + noise(), grey + noise(), (isObject ? 220 : grey) + noise()};
        });
    };
    rvkBGCodeBookModel* model = nullptr;
    ASSERT_EQ(rvkCreateBGCodeBookModel(width, height, &model), RAVIK_SUCCESS);
    for (int frame = 0; frame < 40; ++frame)
        EXPECT_EQ(rvkBGCodeBookUpdateu8(model, sceneWith(width).bytes.data(), width, height, 0, nullptr, 0),
                  RAVIK_SUCCESS);
    for (uint32_t left = 0; left <= width; left += 50) {
        std::vector<uint8_t> mask(width * height);
        uint32_t count = 0;
        EXPECT_EQ(rvkBGCodeBookDiffu8(model, sceneWith(left).bytes.data(), width, height, 0, mask.data(), 0, &count),
                  RAVIK_SUCCESS);
        EXPECT_EQ(count, left < width ? size * size : 0);
        for (uint32_t i = 0; i < width * height; ++i)
            ASSERT_EQ(mask[i], i % width - left < size && i / width - 20 < size ? 255 : 0) << i;
    }
    rvkReleaseBGCodeBookModel(&model);
    EXPECT_EQ(model, nullptr);
}

TEST(CodeBook, StaysValidWithoutMemory)
{
    const Scene scene(130, 1, [](uint32_t x, uint32_t) { return Colour{static_cast<int>(x), 0, 255}; });
    forEachImplementation<Slot::rvkBGCodeBookUpdateu8>([&](const char* name, auto update) {
        const ScarceMemory memory(3); // for the model, and two of its three blocks
        rvkBGCodeBookModel *model = nullptr, *none = nullptr;
        ASSERT_EQ(rvkCreateBGCodeBookModel(130, 1, &model), RAVIK_SUCCESS);
        EXPECT_EQ(update(model, scene.bytes.data(), 130, 1, 390, nullptr, 0), RAVIK_ENORES) << name;
        EXPECT_EQ(rvkCreateBGCodeBookModel(1, 1, &none), RAVIK_ENORES);
        EXPECT_EQ(none, nullptr);
        uint8_t mask[130];
        uint32_t count = 0;
        EXPECT_EQ(rvkBGCodeBookDiffu8(model, scene.bytes.data(), 130, 1, 0, mask, 0, &count), RAVIK_SUCCESS);
        EXPECT_EQ(count, 2u) << "what has not learnt";
        rvkReleaseBGCodeBookModel(&model);
        EXPECT_TRUE(memory.allIsReleased());
    });
}

TEST(CodeBook, RefusesWhatModelsCannotBe)
{
    rvkBGCodeBookModel* model = nullptr;
    EXPECT_EQ(rvkCreateBGCodeBookModel(0, 1, &model), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkCreateBGCodeBookModel(1, 0, &model), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkCreateBGCodeBookModel(1, 1, nullptr), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkCreateBGCodeBookModel(0x55555556, 1, &model), RAVIK_EBADPARAM) << "a row of 2^32 bytes";
    EXPECT_EQ(rvkCreateBGCodeBookModel(0x55555555, UINT32_MAX, &model), RAVIK_ENORES);
    rvkReleaseBGCodeBookModel(nullptr);
    rvkReleaseBGCodeBookModel(&model);
    ASSERT_EQ(rvkCreateBGCodeBookModel(5, 4, &model), RAVIK_SUCCESS);
    const uint8_t bytes[60] = {};
    uint8_t mask[20] = {77};
    for (const uint32_t most : {0u, 256u, UINT32_MAX})
        EXPECT_EQ(rvkConfigBGCodeBookModel(model, bytes, bytes, bytes, most), RAVIK_EBADPARAM);
    for (const auto& three :
         {std::array{bytes + 60, bytes, bytes}, {bytes, bytes + 60, bytes}, {bytes, bytes, bytes + 60}}) {
        const auto orNull = [&](size_t i) { return three[i] == bytes ? bytes : nullptr; };
        EXPECT_EQ(rvkConfigBGCodeBookModel(model, orNull(0), orNull(1), orNull(2), 1), RAVIK_EBADPARAM);
    }
    EXPECT_EQ(rvkConfigBGCodeBookModel(nullptr, bytes, bytes, bytes, 1), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkBGCodeBookUpdateu8(model, bytes, 4, 4, 0, nullptr, 0), RAVIK_EBADPARAM) << "another size";
    EXPECT_EQ(rvkBGCodeBookDiffu8(model, bytes, 5, 3, 0, mask, 0, nullptr), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkBGCodeBookClearStaleu8(model, 0, nullptr, 4, 5, 0), RAVIK_EBADPARAM);
    EXPECT_EQ(rvkBGCodeBookDiffu8(nullptr, bytes, 5, 4, 0, mask, 0, nullptr), RAVIK_EBADPARAM);
    EXPECT_EQ(mask[0], 77);
    rvkReleaseBGCodeBookModel(&model);
}

} // namespace

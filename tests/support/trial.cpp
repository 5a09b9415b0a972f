#include "trial.h"

#include <algorithm>
#include <cfloat>
#include <limits>
#include <map>
#include <stdexcept>
#include <unistd.h>

namespace test {

// ---- contents ----

namespace {

template <class T>
T drawFloat(Random& random, Content content)
{
    static const T special[] = {0.0f, -0.0f, 1.0f, -1.0f, INFINITY, -INFINITY, NAN, FLT_MAX, -FLT_MAX, FLT_MIN};
    switch (content) {
    case Content::extremes:
        return special[random.below(10)];
    case Content::small:
        return static_cast<T>(static_cast<int>(random.below(17)) - 8);
    default: { // any exponent between 2^-30 and 2^30: no overflow, no subnormals in sums and products
        const float mantissa = static_cast<float>(static_cast<int32_t>(random.next() >> 32)) / 2147483648.0f;
        return std::ldexp(mantissa, static_cast<int>(random.below(61)) - 30);
    }
    }
}

template <class T>
T drawInteger(Random& random, Content content)
{
    using Limits = std::numeric_limits<T>;
    static const T special[] = {
        Limits::min(),    Limits::max(), 0, 1, static_cast<T>(-1), Limits::max() - 1, static_cast<T>(Limits::min() + 1),
        Limits::max() / 2};
    switch (content) {
    case Content::extremes:
        return special[random.below(8)];
    case Content::small:
        return static_cast<T>(random.below(9)) - static_cast<T>(std::is_signed_v<T> ? 4 : 0);
    default:
        return static_cast<T>(random.next() >> 20);
    }
}

} // namespace

template <class T>
T drawElement(Random& random, Content content)
{
    if constexpr (std::is_floating_point_v<T>)
        return drawFloat<T>(random, content);
    else
        return drawInteger<T>(random, content);
}

template <class T>
void drawElements(Random& random, Content content, T* to, size_t count)
{
    if (content == Content::constant) {
        std::fill_n(to, count, drawElement<T>(random, content));
        return;
    }
    for (size_t i = 0; i < count; ++i)
        to[i] = drawElement<T>(random, content);
}

#define RVK_DRAW(T)                              \
    template T drawElement<T>(Random&, Content); \
    template void drawElements<T>(Random&, Content, T*, size_t);
RVK_DRAW(uint8_t)
RVK_DRAW(int8_t)
RVK_DRAW(uint16_t)
RVK_DRAW(int16_t)
RVK_DRAW(uint32_t)
RVK_DRAW(int32_t)
RVK_DRAW(uint64_t)
RVK_DRAW(int64_t)
RVK_DRAW(float)
#undef RVK_DRAW

// ---- memory ----

namespace {

// Pages between guards are asked for once and then taken again: making them is slower than most of what runs on them,
// above all under emulation.
class GuardedPages
{
public:
    uint8_t* take(size_t bytes, GuardedMemory::Flush flush)
    {
        static const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t size = (bytes + page - 1) / page * page;
        Memories& memories = m_bySize[size];
        if (memories.used == memories.all.size())
            memories.all.emplace_back(size, GuardedMemory::Flush::toStart);
        uint8_t* const start = memories.all[memories.used++].data();
        return flush == GuardedMemory::Flush::toEnd ? start + size - bytes : start;
    }
    void giveAllBack()
    {
        for (auto& [size, memories] : m_bySize)
            memories.used = 0;
    }

private:
    struct Memories
    {
        std::vector<GuardedMemory> all;
        size_t used = 0;
    };
    std::map<size_t, Memories> m_bySize;
};

GuardedPages pages; // for one trial at a time

constexpr uint8_t kUntouched = 0xA5;

} // namespace

// ---- trials ----

Trial::Trial(uint32_t seed) : m_random(seed), m_randomAtStart(seed)
{
    static const uint32_t widths[] = {1,  2,  3,  7,   8,   15,  16,  17,  31,  32, 33,
                                      63, 64, 65, 127, 128, 129, 191, 192, 193, 260};
    width = m_random.below(2) ? widths[m_random.below(21)] : 1 + m_random.below(300);
    height = m_random.below(3) ? 1 + m_random.below(5) : 1 + m_random.below(70);
    if (seed >= kRandomTrials) {
        width = seed - kRandomTrials + 1;
        height = 1 + m_random.below(12);
    }
    m_content = static_cast<Content>(m_random.below(static_cast<uint32_t>(Content::count)));
    m_inputPadding = m_random.below(3) ? 0 : 1 + m_random.below(80);
    m_outputPadding = m_random.below(3) ? 0 : 1 + m_random.below(80);
    m_flush = m_random.below(2) ? GuardedMemory::Flush::toEnd : GuardedMemory::Flush::toStart;

    m_randomAtStart = m_random;
    m_widthAtStart = width;
    m_heightAtStart = height;
    pages.giveAllBack();
}

std::string Trial::describe() const
{
    return std::to_string(width) + "x" + std::to_string(height) + ", content " +
           std::to_string(static_cast<int>(m_content)) + ", paddings " + std::to_string(m_inputPadding) + " and " +
           std::to_string(m_outputPadding);
}

// The first run draws the images; the others get the same ones.
const Trial::Block& Trial::blockOf(const Shape& shape, Draw draw)
{
    if (!m_replays)
        m_blocks.push_back(newBlock(shape, draw));
    else if (m_blocksGiven == m_blocks.size() || !(m_blocks[m_blocksGiven].shape == shape))
        throw std::logic_error("a trial's runs ask for different images");
    const Block& block = m_blocks[m_blocksGiven++];
    m_random = block.randomAfter;
    return block;
}

Trial::Block Trial::newBlock(const Shape& shape, Draw draw)
{
    const uint32_t padding = shape.role == Role::output ? m_outputPadding : m_inputPadding;
    const uint32_t rowBytes = shape.rowBytes();
    const uint32_t stride = (rowBytes + padding) / shape.elementBytes * shape.elementBytes;
    const size_t bytes = size_t{stride} * (shape.rows - 1) + rowBytes;
    uint8_t* const data = pages.take(bytes, m_flush);
    memset(data, kUntouched, bytes);
    for (uint32_t y = 0; y < shape.rows && shape.role != Role::output; ++y) {
        if (m_content == Content::constant && y > 0)
            memcpy(data + size_t{y} * stride, data, rowBytes);
        else
            draw(m_random, m_content, data + size_t{y} * stride, shape.elements);
    }
    return {shape, stride, data, {data, data + bytes}, {}, m_random};
}

void Trial::keepOutcome()
{
    m_expectedResults = m_results;
    for (Block& block : m_blocks)
        block.outcome.assign(block.data, block.data + block.before.size());
    m_replays = true;
}

void Trial::rewind()
{
    m_random = m_randomAtStart;
    width = m_widthAtStart;
    height = m_heightAtStart;
    m_results.clear();
    m_blocksGiven = 0;
    for (const Block& block : m_blocks)
        memcpy(block.data, block.before.data(), block.before.size());
}

bool sameFloat(float a, float b)
{
#if defined(__arm__)
    if (std::fabs(a) < FLT_MIN && std::fabs(b) < FLT_MIN)
        return true;
#endif
    return memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

namespace {

// How the first element that differs reads, in the two rows; empty when none does.
template <class T>
std::string firstDifference(const uint8_t* expected, const uint8_t* actual, uint32_t elements)
{
    for (uint32_t x = 0; x < elements; ++x) {
        T e, a;
        memcpy(&e, expected + x * sizeof(T), sizeof(T));
        memcpy(&a, actual + x * sizeof(T), sizeof(T));
        bool same;
        if constexpr (std::is_floating_point_v<T>)
            same = sameFloat(e, a);
        else
            same = e == a;
        if (!same)
            return "element " + std::to_string(x) + ": expected " + ::testing::PrintToString(+e) + ", got " +
                   ::testing::PrintToString(+a);
    }
    return {};
}

} // namespace

std::string Trial::differenceInRow(const Shape& shape, const uint8_t* expected, const uint8_t* actual)
{
    if (memcmp(expected, actual, shape.rowBytes()) == 0)
        return {};
    if (shape.isFloat)
        return firstDifference<float>(expected, actual, shape.elements);
    switch (shape.elementBytes) {
    case 1:
        return firstDifference<uint8_t>(expected, actual, shape.elements);
    case 2:
        return firstDifference<uint16_t>(expected, actual, shape.elements);
    case 4:
        return firstDifference<uint32_t>(expected, actual, shape.elements);
    default:
        return firstDifference<uint64_t>(expected, actual, shape.elements);
    }
}

::testing::AssertionResult Trial::sameOutcome() const
{
    if (m_results != m_expectedResults)
        return ::testing::AssertionFailure() << "returned " << ::testing::PrintToString(m_results) << ", expected "
                                             << ::testing::PrintToString(m_expectedResults);
    if (m_blocksGiven != m_blocks.size())
        return ::testing::AssertionFailure() << "a trial's runs ask for different images";
    static const char* const roles[] = {"input", "output", "in place"};
    for (size_t i = 0; i < m_blocks.size(); ++i) {
        const Block& block = m_blocks[i];
        const uint8_t *expected = block.outcome.data(), *actual = block.data;
        if (memcmp(expected, actual, block.outcome.size()) == 0)
            continue;
        const uint32_t rowBytes = block.shape.rowBytes();
        for (uint32_t y = 0; y < block.shape.rows; ++y, expected += block.stride, actual += block.stride) {
            const std::string difference = differenceInRow(block.shape, expected, actual);
            if (!difference.empty())
                return ::testing::AssertionFailure()
                       << "image " << i << " (" << roles[static_cast<int>(block.shape.role)] << "), row " << y << ", "
                       << difference;
            if (y + 1 < block.shape.rows &&
                memcmp(expected + rowBytes, actual + rowBytes, block.stride - rowBytes) != 0)
                return ::testing::AssertionFailure() << "image " << i << ": wrote between the rows, after row " << y;
        }
    }
    return ::testing::AssertionSuccess();
}

// ---- all trials of a function ----

std::vector<NamedCell> vectaCellsOf(Slot slot)
{
    std::vector<NamedCell> cells;
    uint32_t count = 0;
    const vecta::Variant* variants = vecta::variants(count);
    for (uint32_t i = 0; i < count; ++i)
        for (const vecta::Entry* e = variants[i].column; e->implementation; ++e)
            if (variants[i].runsHere && e->slot == static_cast<uint32_t>(slot))
                cells.push_back({variants[i].name, e->implementation});
    return cells;
}

namespace {

// Where everything is many times slower, of the widths in turn only those with few vectors, and those around multiples
// of a vector.
bool isRun(uint32_t seed)
{
    if (!RVK_TEST_SLOW_MACHINE || seed < Trial::kRandomTrials)
        return true;
    const uint32_t width = seed - Trial::kRandomTrials + 1;
    return width <= 40 || (width + 1) % 16 <= 3;
}

} // namespace

void expectSameOutcomes(Slot slot, uint32_t trials, void* call, void (*run)(void* call, Cell function, Trial& trial))
{
    const std::vector<NamedCell> variants = vectaCellsOf(slot);
    EXPECT_FALSE(variants.empty()) << nameOf(slot) << " has no vector implementation here";
    for (uint32_t seed = 0; seed < trials; ++seed) {
        if (!isRun(seed))
            continue;
        Trial trial(seed);
        run(call, dispatchState.table[static_cast<uint32_t>(slot) * kTargets], trial);
        trial.keepOutcome();
        for (const NamedCell& variant : variants) {
            trial.rewind();
            run(call, variant.cell, trial);
            ASSERT_TRUE(trial.sameOutcome())
                << nameOf(slot) << " on " << variant.name << ", trial " << seed << ": " << trial.describe();
        }
    }
}

} // namespace test

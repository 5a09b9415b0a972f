// A call of a function as its descriptor says: pictures in memory between guard pages, numbers for all other arguments.
#pragma once

#include "functionTest.h"
#include "guarded.h"
#include "naturalPicture.h"
#include "random.h"
#include "testCase.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace test {

class SeededBits : public RandomBits
{
public:
    explicit SeededBits(uint64_t seed) : m_random(seed) {}
    uint32_t next() override { return static_cast<uint32_t>(m_random.next() >> 32); }
    uint32_t below(uint32_t bound) { return m_random.below(bound); }

private:
    Random m_random;
};

// Elements of a type and content: rows are copied from them, because drawing each anew takes longer than the functions.
template <class T>
const T* drawnElements(Content content, SeededBits& bits, size_t count)
{
    constexpr size_t kElements = 1 << 14;
    static std::map<Content, std::vector<T>> pools;
    std::vector<T>& pool = pools[content];
    Random random(7 + static_cast<uint64_t>(content));
    while (pool.size() < kElements)
        pool.push_back(drawElement<T>(random, content));
    return pool.data() + bits.below(static_cast<uint32_t>(kElements - count));
}

class FunctionCall
{
public:
    struct Layout
    {
        uint32_t mostPadding = 0; // elements between rows, where there is a stride
        uint32_t strideUnit = 1;  // strides are multiples of it
        bool inPlace = false;     // where the contract allows it
        GuardedMemory::Flush flush = GuardedMemory::Flush::toEnd;
        Content content = Content::uniform;
    };
    // The memory of an image.
    struct Block
    {
        size_t argument;
        Element element;
        uint32_t rowBytes, rows, stride;
        uint8_t* data;
        std::vector<uint8_t> before;

        size_t bytes() const { return rows && rowBytes ? size_t{stride} * (rows - 1) + rowBytes : 0; }
    };

    CallValues values;

    // Draws numbers that the function accepts.
    FunctionCall(const FunctionTest& function, SeededBits& bits)
        : values{std::vector<void*>(function.arguments.size()), std::vector<double>(function.arguments.size())},
          m_function(function), m_bits(bits)
    {
        for (size_t i = 0; i < function.arguments.size(); i++)
            if (function.arguments[i].role == Role::scalar && !function.arguments[i].isPosition())
                values.numbers[i] = drawNumber(function.arguments[i], bits);
    }

    // Lays out and fills the images of a case. A stride is drawn for each argument that gives one.
    void draw(CaseSize size, const Layout& layout);

    // Makes all memory what it was before the call.
    void restore() const
    {
        for (const Block& block : m_blocks)
            std::copy(block.before.begin(), block.before.end(), block.data);
    }
    bool isUnchanged() const
    {
        return std::all_of(m_blocks.begin(), m_blocks.end(), [](const Block& block) {
            return std::equal(block.before.begin(), block.before.end(), block.data);
        });
    }
    Outcome call(AnyFunction function) const
    {
        restore();
        return m_function.call(function, values);
    }

    const std::vector<Block>& blocks() const { return m_blocks; }
    CaseSize size() const { return m_size; }
    bool isScratch(const Block& block) const { return of(block.argument).isScratch; }
    // Bytes of a row of an image, and its rows.
    uint32_t rowBytes(size_t argument) const
    {
        return static_cast<uint32_t>(imageSize(argument).columns) * of(argument).pixelSize();
    }
    uint32_t rows(size_t argument) const { return static_cast<uint32_t>(imageSize(argument).rows); }

private:
    using Role = Argument::Role;

    // The ends of a range more often than chance would have it.
    static double drawNumber(const Argument& a, SeededBits& bits)
    {
        const uint32_t end = a.choices.empty() ? bits.below(8) : 2;
        return end == 0 ? a.low : end == 1 ? a.high : drawScalar(a, bits);
    }
    const Argument& of(size_t argument) const { return m_function.arguments[argument]; }
    ImageSize imageSize(size_t argument) const
    {
        return of(argument).usedIn(m_function.sizesFor(m_size, values.numbers));
    }
    uint32_t drawStride(size_t strideArgument, const Layout& layout);
    void place(size_t argument, uint32_t stride, const Layout& layout);
    void fill(const Block& block, Content content);
    void fillFromRanges(const Block& block, Content content);
    void addMapped(Block& block);
    void shareSource();

    const FunctionTest& m_function;
    SeededBits& m_bits;
    CaseSize m_size{1, 1};
    std::vector<Block> m_blocks;
};

inline void FunctionCall::draw(CaseSize size, const Layout& layout)
{
    m_size = size = m_function.wholeUnits(size);
    m_blocks.clear();
    std::vector<uint32_t> strides(m_function.arguments.size());
    m_function.drawSizes(values.numbers, size, m_bits);
    for (size_t i = 0; i < m_function.arguments.size(); i++)
        if (of(i).role == Role::stride)
            strides[i] = drawStride(i, layout);
    for (size_t i = 0; i < m_function.arguments.size(); i++)
        if (of(i).isImage()) {
            const size_t stride = m_function.strideOfImage(i);
            place(i, stride == FunctionTest::npos ? rowBytes(i) : strides[stride], layout);
        }
    for (Block& block : m_blocks)
        if (of(block.argument).mapping)
            addMapped(block);
    for (size_t i = 0; i < m_function.arguments.size(); i++)
        if (of(i).role == Role::alias) {
            values.pointers[i] = values.pointers[of(i).aliasOf];
            values.numbers[m_function.strideOfImage(i)] = values.numbers[m_function.strideOfImage(of(i).aliasOf)];
        }
    if (layout.inPlace && m_function.contract.dstIsSrc == InPlace::allowed)
        shareSource();
}

// What is left of a stride beyond whole elements does not count; at times there is such a rest.
inline uint32_t FunctionCall::drawStride(size_t strideArgument, const Layout& layout)
{
    uint32_t widest = 0, largestElement = 1;
    for (const size_t image : m_function.imagesOfStride(strideArgument)) {
        if (!of(image).isImage())
            continue;
        widest = std::max(widest, rowBytes(image));
        largestElement = std::max(largestElement, sizeOf(of(image).element));
    }
    const uint32_t padded = widest + m_bits.below(layout.mostPadding + 1) * largestElement;
    const uint32_t stride = (padded + layout.strideUnit - 1) / layout.strideUnit * layout.strideUnit;
    const bool hasRest = layout.mostPadding && !of(strideArgument).isWhole;
    values.numbers[strideArgument] = stride + (hasRest ? m_bits.below(largestElement) : 0);
    return stride;
}

inline void FunctionCall::place(size_t argument, uint32_t stride, const Layout& layout)
{
    Block block{argument, of(argument).element, rowBytes(argument), rows(argument), stride, nullptr, {}};
    if (block.bytes() > kRegionBytes)
        abort();
    // Small vectors are no better aligned than they must be.
    const size_t lead =
        of(argument).fixedSize ? m_bits.below(16) * std::max(of(argument).alignment, sizeOf(block.element)) : 0;
    block.data =
        regionOf(argument) + (layout.flush == GuardedMemory::Flush::toEnd ? kRegionBytes - block.bytes() : lead);
    std::fill_n(block.data, block.bytes(), uint8_t{0xA5});
    if (of(argument).isInput())
        fill(block, layout.content);
    block.before.assign(block.data, block.data + block.bytes());
    values.pointers[argument] = block.data;
    m_blocks.push_back(std::move(block));
}

inline void FunctionCall::addMapped(Block& to)
{
    const size_t source = m_function.sourceOfMapping(to.argument);
    const auto from =
        std::find_if(m_blocks.begin(), m_blocks.end(), [=](const Block& block) { return block.argument == source; });
    for (uint32_t y = 0; y < to.rows; y++)
        of(to.argument)
            .mapping(reinterpret_cast<const float*>(from->data + size_t{y} * from->stride),
                     reinterpret_cast<float*>(to.data + size_t{y} * to.stride));
    to.before.assign(to.data, to.data + to.bytes());
}

// Elements of ranges, and among extreme ones what must do no harm: far outside, not finite, in arrays one at a time.
inline void FunctionCall::fillFromRanges(const Block& block, Content content)
{
    constexpr size_t kPositions = 1 << 12;
    static std::vector<float> positions;
    while (positions.size() < kPositions)
        positions.push_back(static_cast<float>(m_bits.next() / 4294967295.0));
    const float odd[] = {0.0f, -0.0f, -1.0f, 1e30f, -1e30f, 3e9f, -3e9f, 65536.0f, INFINITY, -INFINITY, NAN, 1e-30f};
    const Argument& a = of(block.argument);
    const size_t elements = block.rowBytes / sizeof(float);
    const bool isOdd = content == Content::extremes, isMap = !a.fixedSize;
    for (uint32_t y = 0; y < block.rows; y++) {
        float* const row = reinterpret_cast<float*>(block.data + size_t{y} * block.stride);
        const uint32_t first = m_bits.below(kPositions), oddOne = m_bits.below(static_cast<uint32_t>(elements));
        for (size_t x = 0; x < elements; x++) {
            const double position = positions[(first + (content == Content::constant ? 0 : x)) % kPositions];
            const double number = a.rangeOf(x).at(position, m_size);
            row[x] = static_cast<float>(a.isWhole                   ? std::rint(number)
                                        : content != Content::small ? number
                                        : isMap                     ? std::rint(number)
                                                                    : std::rint(number * 8) / 8);
            if (isOdd && !a.isWhole && (isMap ? m_bits.below(16) == 0 : x == oddOne))
                row[x] = odd[m_bits.below(static_cast<uint32_t>(std::size(odd)))];
        }
    }
}

inline void FunctionCall::fill(const Block& block, Content content)
{
    if (!of(block.argument).ranges.empty())
        return fillFromRanges(block, content);
    if (of(block.argument).isNatural && content == Content::uniform)
        return drawNaturalPicture(block.data, block.rowBytes, block.rows, block.stride, m_bits);
    visitElement(block.element, [&](auto zero) {
        using T = decltype(zero);
        const size_t elements = block.rowBytes / sizeof(T);
        const T constant = *drawnElements<T>(Content::uniform, m_bits, 1);
        for (uint32_t y = 0; y < block.rows; y++) {
            T* const row = reinterpret_cast<T*>(block.data + size_t{y} * block.stride);
            const T* const drawn = drawnElements<T>(content, m_bits, elements);
            if (content == Content::constant)
                std::fill_n(row, elements, constant);
            else
                std::copy_n(drawn, elements, row);
            if (of(block.argument).isMask)
                for (size_t x = 0; x < elements; x++)
                    row[x] = drawn[elements - 1 - x] > T{100} ? row[x] : T{0};
        }
    });
}

// Lets the destination take the place of one of the sources with the same pixels.
inline void FunctionCall::shareSource()
{
    const auto isPlain = [&](size_t i) {
        return of(i).isPicture() && !of(i).isMask && !of(i).isTransposed && !of(i).isMeasured();
    };
    for (size_t dst = 0; dst < m_function.arguments.size(); dst++) {
        if (of(dst).role != Role::destination || !isPlain(dst))
            continue;
        std::vector<size_t> sources;
        for (size_t src = 0; src < m_function.arguments.size(); src++)
            if (of(src).role == Role::source && isPlain(src) && of(src).pixelSize() == of(dst).pixelSize())
                sources.push_back(src);
        if (sources.empty())
            continue;
        const size_t src = sources[m_bits.below(static_cast<uint32_t>(sources.size()))];
        std::erase_if(m_blocks, [&](const Block& block) { return block.argument == dst; });
        values.pointers[dst] = values.pointers[src];
        const size_t from = m_function.strideOfImage(src), to = m_function.strideOfImage(dst);
        if (to != FunctionTest::npos)
            values.numbers[to] = from == FunctionTest::npos ? rowBytes(src) : values.numbers[from];
    }
}

} // namespace test

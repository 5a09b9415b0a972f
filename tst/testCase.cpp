#include "testCase.h"

#include "compareBuffers.h"
#include "controlScript.h"
#include "naturalPicture.h"
#include "testLog.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <numeric>

namespace {

using Role = Argument::Role;

bool fitsElement(double number, Element element)
{
    return visitElement(element, [number](auto zero) {
        using T = decltype(zero);
        return number >= static_cast<double>(std::numeric_limits<T>::lowest()) &&
               number <= static_cast<double>(std::numeric_limits<T>::max());
    });
}

// Tolerances are floats; integers are compared with their whole part.
template <class T>
T toleranceAs(float tolerance)
{
    const auto largest = static_cast<float>(std::numeric_limits<T>::max());
    return tolerance >= largest ? std::numeric_limits<T>::max() : static_cast<T>(std::max(tolerance, 0.0f));
}

int compareImages(RAVIK_TEST_Buffer& expected, RAVIK_TEST_Buffer& output, Element element, float tolerance)
{
    return visitElement(element, [&](auto zero) {
        using T = decltype(zero);
        if constexpr (std::is_same_v<T, float>)
            return RAVIK_TEST_CompareBuffers_f32(expected, output, tolerance);
        else
            return RAVIK_TEST_CompareBuffers<T>(expected, output, toleranceAs<T>(tolerance));
    });
}

bool isZero(const uint8_t* from, const uint8_t* to)
{
    return std::all_of(from, to, [](uint8_t byte) { return byte == 0; });
}

// Whether what lies around the window is still as Shape() left it.
bool surroundingsAreZero(const RAVIK_TEST_Buffer& buffer)
{
    const size_t rowBytes = static_cast<size_t>(buffer.width) * static_cast<size_t>(buffer.elementSize);
    const uint8_t* gap = buffer.block();
    for (int32_t j = 0; j < buffer.height; j++) {
        if (!isZero(gap, buffer.row(j)))
            return false;
        gap = buffer.row(j) + rowBytes;
    }
    return isZero(gap, buffer.block() + buffer.blockBytes());
}

int addStrideTo(RAVIK_TEST_Buffer& buffer, int newStride, rvkMemOption option)
{
    switch (buffer.elementSize) {
    case 1:
        return RAVIK_TEST_AddStrideToBuffer<unsigned char>(buffer, newStride, option, true);
    case 2:
        return RAVIK_TEST_AddStrideToBuffer<short>(buffer, newStride, option, true);
    default:
        return RAVIK_TEST_AddStrideToBuffer<int>(buffer, newStride, option, true);
    }
}

template <class T>
T drawExtreme(RandomBits& random)
{
    if constexpr (std::is_same_v<T, float>) {
        constexpr float values[] = {0.0f, 1.0f, -1.0f, 65536.0f, 1e30f, -1e30f};
        return values[random.between(0, std::size(values) - 1)];
    } else {
        constexpr T values[] = {0, 1, std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest(),
                                static_cast<T>(std::numeric_limits<T>::max() / 2 + 1)};
        return values[random.between(0, std::size(values) - 1)];
    }
}

template <class T>
void fillRow(T* row, size_t count, bool extreme, RandomBits& random)
{
    if (extreme) {
        std::generate_n(row, count, [&] { return drawExtreme<T>(random); });
    } else if constexpr (std::is_same_v<T, float>) {
        for (size_t i = 0; i < count; i++) {
            const uint32_t bits = random.floatBits();
            memcpy(row + i, &bits, sizeof bits);
        }
    } else {
        const size_t bytes = count * sizeof(T);
        for (size_t i = 0; i < bytes; i += 4) {
            const uint32_t bits = random.next();
            memcpy(reinterpret_cast<uint8_t*>(row) + i, &bits, std::min<size_t>(4, bytes - i));
        }
    }
}

// Elements of ranges; at times, in images of many, rounded to whole numbers.
void fillFromRanges(RAVIK_TEST_Buffer& image, const Argument& argument, CaseSize picture, RandomBits& random)
{
    const bool isRounded = argument.isWhole || (!argument.fixedSize && random.between(0, 3) == 0);
    visitElement(argument.element, [&](auto zero) {
        using T = decltype(zero);
        for (int32_t j = 0; j < image.height; j++)
            for (int32_t i = 0; i < image.width; i++) {
                const double position = random.next() / 4294967295.0;
                const double number = argument.rangeOf(static_cast<size_t>(i)).at(position, picture);
                reinterpret_cast<T*>(image.row(j))[i] = static_cast<T>(isRounded ? std::rint(number) : number);
            }
    });
}

void fillWithBits(RAVIK_TEST_Buffer& image, const Argument& argument, RandomBits& random)
{
    const bool extreme = !argument.isMask && random.between(0, 3) == 0;
    visitElement(argument.element, [&](auto zero) {
        using T = decltype(zero);
        for (int32_t j = 0; j < image.height; j++) {
            T* const row = reinterpret_cast<T*>(image.row(j));
            fillRow(row, static_cast<size_t>(image.width), extreme, random);
            if (argument.isMask)
                std::replace_if(
                    row, row + image.width, [&](T) { return random.between(0, 1) == 0; }, T{});
        }
    });
}

} // namespace

double drawScalar(const Argument& argument, RandomBits& random)
{
    if (!argument.choices.empty())
        return argument
            .choices[static_cast<size_t>(random.between(0, static_cast<int64_t>(argument.choices.size()) - 1))];
    if (argument.element != Element::f32)
        return static_cast<double>(random.between(std::llround(argument.low), std::llround(argument.high)));
    const double position = random.next() / 4294967295.0;
    return static_cast<float>(argument.low + position * (argument.high - argument.low));
}

std::vector<ScriptField> scriptFields(const FunctionTest& function, ScriptContent content)
{
    std::vector<ScriptField> fields;
    const auto add = [&](ScriptField::Kind kind, const char* title, auto wanted) {
        for (size_t i = 0; i < function.arguments.size(); i++) {
            const Argument& argument = function.arguments[i];
            const bool isPairs = argument.pairPart == Argument::PairPart::from;
            if (wanted(argument))
                fields.push_back({kind, i, argument.element, argument.isImage() && argument.role != Role::value,
                                  isPairs, title + std::to_string(i)});
        }
    };
    add(ScriptField::Kind::input, "in", [](const Argument& argument) {
        using Part = Argument::PairPart;
        return argument.isInput() && (argument.pairPart == Part::none || argument.pairPart == Part::from);
    });
    if (content == ScriptContent::sources)
        return fields;
    add(ScriptField::Kind::result, "out", [](const Argument& argument) { return argument.isResult(); });
    if (function.hasCount)
        fields.push_back({ScriptField::Kind::count, 0, Element::u32, false, false, "count"});
    if (function.hasStatus)
        fields.push_back({ScriptField::Kind::status, 0, Element::s32, false, false, "status"});
    return fields;
}

TestCase::TestCase(const FunctionTest& function, rvkMemOption option)
    : m_function(function), m_option(option), m_data(function.arguments.size())
{
    for (size_t i = 0; i < m_data.size(); i++) // what must be aligned stays out of the way of -AL
        m_data[i].buffer.onHeap = m_data[i].initial.onHeap = argument(i).alignment != 0;
}

RAVIK_TEST_Buffer& TestCase::inputBuffer(size_t index)
{
    return argument(index).role == Role::updated ? m_data[index].initial : m_data[index].buffer;
}

const RAVIK_TEST_Buffer& TestCase::image(const ScriptField& field) const
{
    const ArgumentData& data = m_data[field.argument];
    if (field.kind == ScriptField::Kind::result)
        return data.expected;
    return argument(field.argument).role == Role::updated ? data.initial : data.buffer;
}

// The argument behind the field's that has this part; npos where there is none.
size_t TestCase::pairPart(const ScriptField& field, Argument::PairPart part) const
{
    for (size_t i = field.argument; i < m_data.size(); i++)
        if (argument(i).pairPart == part)
            return i;
    return FunctionTest::npos;
}

TestCorrespondences TestCase::pairs(const ScriptField& field) const
{
    TestCorrespondences pairs;
    const RAVIK_TEST_Buffer& from = m_data[field.argument].buffer;
    const RAVIK_TEST_Buffer& to = m_data[pairPart(field, Argument::PairPart::to)].buffer;
    pairs.fromDimensions = static_cast<uint32_t>(from.width);
    pairs.count = static_cast<uint32_t>(from.height);
    const auto append = [](std::vector<float>& numbers, const RAVIK_TEST_Buffer& points, int32_t row) {
        const float* const point = reinterpret_cast<const float*>(points.row(row));
        numbers.insert(numbers.end(), point, point + points.width);
    };
    for (int32_t j = 0; j < from.height; j++) {
        append(pairs.from, from, j);
        append(pairs.to, to, j);
    }
    if (const size_t mask = pairPart(field, Argument::PairPart::mask); mask != FunctionTest::npos)
        pairs.mask.assign(m_data[mask].buffer.row(0), m_data[mask].buffer.row(0) + pairs.count);
    return pairs;
}

// Makes correspondences that were read the images that the call takes; a mask that is missing has all of them.
bool TestCase::takePairs(const ScriptField& field, const TestCorrespondences& pairs)
{
    const auto count = static_cast<int32_t>(pairs.count);
    const auto fill = [&](size_t index, int32_t width, int32_t height, const auto& elements) {
        RAVIK_TEST_Buffer& image = m_data[index].buffer;
        if (!image.Shape(MemShape_::packed(width, height, sizeof elements[0]), m_option, true))
            return false;
        memcpy(image.block(), elements.data(), elements.size() * sizeof elements[0]);
        return true;
    };
    const size_t to = pairPart(field, Argument::PairPart::to), mask = pairPart(field, Argument::PairPart::mask);
    return fill(field.argument, static_cast<int32_t>(pairs.fromDimensions), count, pairs.from) &&
           fill(to, 2, count, pairs.to) &&
           (mask == FunctionTest::npos ||
            fill(mask, count, 1, pairs.mask.empty() ? std::vector<uint8_t>(pairs.count, 1) : pairs.mask));
}

double TestCase::scalar(const ScriptField& field) const
{
    switch (field.kind) {
    case ScriptField::Kind::count:
        return m_expectedOutcome.count;
    case ScriptField::Kind::status:
        return m_expectedOutcome.status;
    case ScriptField::Kind::result:
        return visitElement(field.element, [&](auto zero) {
            return static_cast<double>(*m_data[field.argument].expected.window<decltype(zero)>());
        });
    case ScriptField::Kind::input:
        break;
    }
    return m_data[field.argument].number;
}

ScriptResult TestCase::read(FILE* script, const char* dataDirectory, ScriptContent content)
{
    const std::vector<ScriptField> fields = scriptFields(m_function, content);
    std::vector<double> numbers(fields.size());
    std::vector<TestCorrespondences> pairs(fields.size());
    std::vector<ScriptColumn> columns;
    for (size_t i = 0; i < fields.size(); i++) {
        const ScriptField& field = fields[i];
        if (field.isPairs) {
            pairs[i].fromDimensions = argument(field.argument).channels;
            columns.emplace_back(pairs[i]);
        } else if (!field.isArray)
            columns.emplace_back(numbers[i]);
        else if (field.kind == ScriptField::Kind::input)
            columns.push_back(ScriptColumn::array(inputBuffer(field.argument), m_option));
        else
            columns.push_back(ScriptColumn::array(m_data[field.argument].expected, m_option));
    }
    const ScriptResult result = RAVIK_TEST_ReadControlScript(dataDirectory, script, columns);
    if (result != ScriptResult::line)
        return result;

    bool hasPairs = true;
    for (size_t i = 0; i < fields.size(); i++) {
        if (fields[i].kind == ScriptField::Kind::input)
            m_data[fields[i].argument].number = numbers[i];
        hasPairs = hasPairs && (!fields[i].isPairs || takePairs(fields[i], pairs[i]));
    }
    if (hasPairs && takeInputs(content) && (content == ScriptContent::sources || takeResults(numbers)))
        return ScriptResult::line;
    testLog("ERROR: %s: the data of a script line do not fit the function.\n", m_function.name.c_str());
    return ScriptResult::badLine;
}

// Finds the size of the case by the first picture that was read: one of its own size, rather by a result than by a
// sampled one, the last sample of which may be of fewer pixels.
void TestCase::takeSize(ScriptContent content)
{
    m_width = m_height = 1;
    bool isKnown = false;
    const auto hasSizeOfCase = [](const Argument& a) { return a.isPicture() && !a.isMeasured(); };
    const auto take = [&](const Argument& a, const RAVIK_TEST_Buffer& image) {
        m_width = static_cast<uint32_t>(image.width) / a.channels << a.xShift;
        m_height = static_cast<uint32_t>(image.height) << a.yShift;
        isKnown = true;
    };
    for (size_t i = 0; i < m_data.size() && !isKnown; i++)
        if (hasSizeOfCase(argument(i)) && argument(i).isInput() && !argument(i).isSampled())
            take(argument(i), inputBuffer(i));
    for (size_t i = 0; i < m_data.size() && !isKnown && content == ScriptContent::sourcesAndResults; i++)
        if (hasSizeOfCase(argument(i)) && argument(i).isOutput() && !argument(i).isSampled() &&
            !argument(i).isTransposed)
            take(argument(i), m_data[i].expected);
    for (size_t i = 0; i < m_data.size() && !isKnown; i++)
        if (hasSizeOfCase(argument(i)) && argument(i).isInput())
            take(argument(i), inputBuffer(i));
}

// Finds the size of the case and checks that all inputs that were read agree with it.
bool TestCase::takeInputs(ScriptContent content)
{
    takeSize(content);
    if (m_width == 0)
        return false;
    for (size_t i = 0; i < m_data.size(); i++) {
        const Argument& a = argument(i);
        if (a.isNumber() && !fitsElement(m_data[i].number, a.element))
            return false;
        if (!a.isImage())
            continue;
        m_data[i].shape = packedShape(i);
        if (a.isInput() && inputBuffer(i).shape() != m_data[i].shape)
            return false;
    }
    return true;
}

// Checks the results that were read, or makes them from the numbers that were.
bool TestCase::takeResults(const std::vector<double>& numbers)
{
    const std::vector<ScriptField> fields = scriptFields(m_function, ScriptContent::sourcesAndResults);
    m_expectedOutcome = {};
    for (size_t i = 0; i < fields.size(); i++) {
        const ScriptField& field = fields[i];
        if (field.isArray ? field.kind == ScriptField::Kind::result &&
                                m_data[field.argument].expected.shape() != packedShape(field.argument)
                          : !fitsElement(numbers[i], field.element))
            return false;
        if (field.kind == ScriptField::Kind::count)
            m_expectedOutcome.count = static_cast<uint32_t>(numbers[i]);
        else if (field.kind == ScriptField::Kind::status)
            m_expectedOutcome.status = static_cast<int32_t>(numbers[i]);
        else if (field.kind == ScriptField::Kind::result && !field.isArray) {
            RAVIK_TEST_Buffer& expected = m_data[field.argument].expected;
            if (!expected.Shape(packedShape(field.argument), m_option, true))
                return false;
            visitElement(field.element, [&](auto zero) {
                *expected.window<decltype(zero)>() = static_cast<decltype(zero)>(numbers[i]);
            });
        }
    }
    return true;
}

MemShape_ TestCase::packedShape(size_t index) const
{
    const Argument& a = argument(index);
    const ImageSize pixels = a.sizeIn(m_function.sizesFor({m_width, m_height}, numbers()));
    // A size that no buffer can have stays one that no buffer can have.
    const auto size = [](uint64_t count) { return static_cast<int32_t>(count > INT32_MAX ? 0 : count); };
    return MemShape_::packed(size(pixels.columns * a.channels), size(pixels.rows),
                             static_cast<int32_t>(sizeOf(a.element)));
}

void TestCase::layOut(bool packed, RandomBits& random)
{
    const auto upTo = [&](int32_t most) { return static_cast<int32_t>(random.between(0, most)); };

    for (size_t i = 0; i < m_data.size(); i++) {
        if (!argument(i).isImage())
            continue;
        MemShape_& shape = m_data[i].shape = packedShape(i);
        if (packed)
            continue;
        const int32_t unit = std::max(1, static_cast<int32_t>(argument(i).alignment) / shape.elementSize);
        const bool hasStride = m_function.strideOfImage(i) != FunctionTest::npos;
        if (hasStride || shape.height == 1) {
            shape.x = upTo(7) * unit;
            shape.stride += shape.x;
        }
        if (unit == 1) {
            shape.y = upTo(1);
            shape.rows += shape.y + upTo(1);
        }
    }
    for (size_t s = 0; s < m_data.size() && !packed; s++) {
        if (argument(s).role != Role::stride)
            continue;
        int32_t widest = 0;
        for (const size_t i : m_function.imagesOfStride(s))
            widest = std::max(widest, m_data[i].shape.stride);
        widest += upTo(9);
        for (const size_t i : m_function.imagesOfStride(s))
            m_data[i].shape.stride = widest;
    }
}

bool TestCase::draw(CaseSize size, Wanted wanted, bool packed, RandomBits& random)
{
    drawNumbers(random);
    const CaseSize least =
        wanted == Wanted::accepts ? m_function.leastDrawn(numbers()) : m_function.leastEffective(numbers());
    std::vector<double> drawn = numbers();
    m_function.drawSizes(drawn, m_function.wholeUnits({size.width + least.width - 1, size.height + least.height - 1}),
                         random);
    take(drawn);
    if (wanted == Wanted::refuses)
        drawFault(random);
    else
        m_fault = {};
    layOut(packed, random);
    for (size_t i = 0; i < m_data.size(); i++) {
        const Argument& a = argument(i);
        if (!a.isImage() || !a.isInput())
            continue;
        RAVIK_TEST_Buffer& image = inputBuffer(i);
        if (!image.Shape(a.role == Role::updated ? packedShape(i) : m_data[i].shape, m_option, true))
            return false;
        fillImage(i, random);
    }
    for (size_t i = 0; i < m_data.size(); i++)
        if (argument(i).mapping)
            addMapped(i);
    return true;
}

void TestCase::addMapped(size_t index)
{
    RAVIK_TEST_Buffer& from = inputBuffer(m_function.sourceOfMapping(index));
    RAVIK_TEST_Buffer& to = inputBuffer(index);
    for (int32_t j = 0; j < to.height; j++)
        argument(index).mapping(reinterpret_cast<const float*>(from.row(j)), reinterpret_cast<float*>(to.row(j)));
}

void TestCase::fillImage(size_t index, RandomBits& random)
{
    const Argument& a = argument(index);
    RAVIK_TEST_Buffer& image = inputBuffer(index);
    if (m_fault && m_fault->argument == index)
        visitElement(a.element, [&](auto zero) {
            const std::vector<double>& elements = a.refusedElements[m_fault->elements];
            std::copy(elements.begin(), elements.end(), image.window<decltype(zero)>());
        });
    else if (!a.ranges.empty())
        fillFromRanges(image, a, {m_width, m_height}, random);
    else if (a.isNatural)
        drawNaturalPicture(image.row(0), static_cast<uint32_t>(image.width), static_cast<uint32_t>(image.height),
                           image.strideBytes(), random);
    else
        fillWithBits(image, a, random);
}

void TestCase::drawNumbers(RandomBits& random)
{
    for (size_t i = 0; i < m_data.size(); i++)
        if (argument(i).role == Role::scalar)
            m_data[i].number = drawScalar(argument(i), random);
}

// Makes one number wrong, the picture too small, or the elements of an array such as the function refuses.
void TestCase::drawFault(RandomBits& random)
{
    std::vector<double> all = numbers();
    const auto wrongNumbers = m_function.wrongNumbers(all, false);
    std::vector<WrongElements> wrongElements;
    for (size_t i = 0; i < m_data.size(); i++)
        for (size_t k = 0; k < argument(i).refusedElements.size(); k++)
            wrongElements.push_back({i, k});
    const auto fault =
        static_cast<size_t>(random.between(0, static_cast<int64_t>(wrongNumbers.size() + wrongElements.size()) - 1));
    if (fault >= wrongNumbers.size()) {
        m_fault = wrongElements[fault - wrongNumbers.size()];
        return;
    }
    m_fault = {};
    all[wrongNumbers[fault].first] = wrongNumbers[fault].second;
    take(all);
}

// Makes the numbers of a call those of the case.
void TestCase::take(const std::vector<double>& numbers)
{
    for (size_t i = 0; i < m_data.size(); i++) {
        if (argument(i).role == Role::width)
            m_width = static_cast<uint32_t>(numbers[i]);
        else if (argument(i).role == Role::height)
            m_height = static_cast<uint32_t>(numbers[i]);
        else if (argument(i).isNumber())
            m_data[i].number = numbers[i];
    }
}

std::vector<double> TestCase::numbers() const
{
    std::vector<double> all;
    for (size_t i = 0; i < m_data.size(); i++)
        all.push_back(number(i));
    return all;
}

CallValues TestCase::callValues() const
{
    CallValues values{.pointers = {}, .numbers = numbers()};
    for (size_t i = 0; i < m_data.size(); i++)
        values.pointers.push_back(pointer(i));
    return values;
}

bool TestCase::addStride(uint32_t elements)
{
    for (size_t s = 0; s < m_data.size(); s++) {
        if (argument(s).role != Role::stride)
            continue;
        for (const size_t i : m_function.imagesOfStride(s)) {
            if (!argument(i).isImage())
                continue;
            int32_t& stride = m_data[i].shape.stride;
            stride += static_cast<int32_t>(elements);
            if (argument(i).role == Role::source && addStrideTo(m_data[i].buffer, stride, m_option) != 0)
                return false;
        }
    }
    return true;
}

bool TestCase::prepareOutputs()
{
    for (size_t i = 0; i < m_data.size(); i++) {
        if (!argument(i).isOutput())
            continue;
        if (!m_data[i].buffer.Shape(m_data[i].shape, m_option, true))
            return false;
        if (argument(i).role == Role::updated)
            copyWindow(m_data[i].initial, m_data[i].buffer);
    }
    return true;
}

bool TestCase::expectThisOutput(const Outcome& outcome)
{
    m_expectedOutcome = outcome;
    for (size_t i = 0; i < m_data.size(); i++) {
        if (!argument(i).isResult())
            continue;
        if (!m_data[i].expected.Shape(packedShape(i), m_option, true))
            return false;
        copyWindow(m_data[i].buffer, m_data[i].expected);
    }
    return true;
}

int TestCase::compare(const Outcome& outcome, float tolerance)
{
    if (outcome != m_expectedOutcome) {
        testLog("%s: ref status = %d, count = %u, tst status = %d, count = %u\n", m_function.name.c_str(),
                m_expectedOutcome.status, m_expectedOutcome.count, outcome.status, outcome.count);
        return 1;
    }
    int failure = 0;
    for (size_t i = 0; i < m_data.size(); i++) {
        if (!argument(i).isResult())
            continue;
        failure |= compareImages(m_data[i].expected, m_data[i].buffer, argument(i).element, tolerance);
        if (!surroundingsAreZero(m_data[i].buffer)) {
            testLog("%s: argument %zu was written outside its rows\n", m_function.name.c_str(), i);
            failure = 1;
        }
    }
    return failure;
}

// The bytes of each output but lists after a call on memory that is full of `byte`; images that are read keep their
// contents.
std::vector<std::string> TestCase::outputsOver(uint8_t byte)
{
    std::vector<std::string> outputs;
    if (!prepareOutputs())
        return outputs;
    for (size_t i = 0; i < m_data.size(); i++)
        if (argument(i).isOutput() && !argument(i).isInput())
            memset(m_data[i].buffer.block(), byte, m_data[i].buffer.blockBytes());
    call();
    for (size_t i = 0; i < m_data.size(); i++)
        if (argument(i).isResult() && !argument(i).isList)
            outputs.emplace_back(reinterpret_cast<char*>(m_data[i].buffer.block()), m_data[i].buffer.blockBytes());
    return outputs;
}

bool TestCase::writesItsOutputs()
{
    const std::vector<std::string> overZeros = outputsOver(0x00), overOnes = outputsOver(0xFF);
    const auto sharesByte = [](const std::string& a, const std::string& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), false, std::logical_or<>(), std::equal_to<>());
    };
    return std::equal(overZeros.begin(), overZeros.end(), overOnes.begin(), overOnes.end(), sharesByte);
}

void TestCase::flush() const
{
    for (const ArgumentData& data : m_data)
        if (!data.buffer.empty())
            RAVIK_TEST_Buffer_Flush_Invalidate(1, data.buffer.data, static_cast<int>(data.buffer.blockBytes()));
}

void* TestCase::pointer(size_t index) const
{
    if (argument(index).role == Role::null)
        return nullptr;
    if (argument(index).role == Role::alias)
        return pointer(argument(index).aliasOf);
    if (!argument(index).isImage())
        return nullptr;
    return m_data[index].buffer.window<void>();
}

double TestCase::number(size_t index) const
{
    switch (argument(index).role) {
    case Role::width:
        return m_width;
    case Role::height:
        return m_height;
    case Role::area:
        return static_cast<double>(m_width) * m_height;
    case Role::stride: {
        const std::vector<size_t> images = m_function.imagesOfStride(index);
        if (images.empty())
            return 0;
        const Argument& image = argument(images[0]);
        return m_data[image.role == Role::alias ? image.aliasOf : images[0]].buffer.strideBytes();
    }
    default:
        return m_data[index].number;
    }
}

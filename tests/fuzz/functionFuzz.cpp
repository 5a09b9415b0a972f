// Any function that a test group describes, called with sizes, strides, addresses and numbers of the input, as C
// reference and as VECTA. Pictures lie against guard pages and are as large as sizes and strides say, or nothing at all
// where the call must be refused before it looks at them.
//
// No call reads or writes outside of its pictures, or writes to a source; a refused one writes nothing; what the
// descriptor says is refused is; VECTA gives what the reference gives. With RAVIK_FUZZ_TRACE in the environment each
// call is printed: functionFuzz FIND shows what was found.
#include "fuzzing.h"

#include "../support/guarded.h"
#include "groups.h"
#include "testCase.h"

#include <ravik/frame.h>

#include <bit>
#include <cmath>

namespace {

using Role = Argument::Role;
using fuzz::require;

constexpr uint64_t kMostBytes = 1 << 16; // of a picture
constexpr uint64_t kMostWork = 1 << 21;  // elements of windows in a call
constexpr uint32_t kPointElement = sizeof(float);
constexpr uint64_t kLargest32Bits = 0xFFFFFFFFull; // sizes are kept in 64 bits, whatever their parameters can hold

// The input as the harness draws from it.
class InputBits : public fuzz::Input, public RandomBits
{
public:
    using Input::Input;
    uint32_t next() override { return take<uint32_t>(); }
};

struct Image
{
    size_t argument;
    const Argument* descriptor;
    uint64_t rowBytes, rows, stride; // stride in whole elements
    bool isNull;
    const std::vector<double>* refusedElements; // that it holds
    uint8_t* data = nullptr;
    std::vector<uint8_t> before{};

    uint64_t bytes() const { return rows && rowBytes ? std::max(stride, rowBytes) * (rows - 1) + rowBytes : 0; }
    bool fits() const { return rowBytes <= kMostBytes && rows <= kMostBytes && bytes() <= kMostBytes; }
};

// The numbers of a call, the shapes of its pictures, and whether it must be refused.
class Case
{
public:
    Case(const FunctionTest& described, InputBits& input) : function(described), m_input(input)
    {
        values.pointers.resize(arguments().size());
        values.numbers.resize(arguments().size());
        takeNumbers();
        takeStrides();
        describeImages();
        mustBeRefused = isWrong();
    }

    const FunctionTest& function;
    CallValues values;
    std::vector<Image> images;
    bool mustBeRefused = false;
    CaseSize size() const { return {m_width, m_height}; }

    // Whether its pictures fit the memory that there is, and its work the time.
    bool isFeasible() const
    {
        if (mustBeRefused)
            return true;
        const CaseSize window = function.windowOf(values.numbers);
        uint64_t pixels = 0;
        for (const Image& image : images) {
            if (!image.fits())
                return false;
            pixels = std::max(pixels, image.rows * image.rowBytes);
        }
        return window.width <= kMostBytes && window.height <= kMostBytes &&
               pixels * window.width * window.height <= kMostWork;
    }

private:
    const std::vector<Argument>& arguments() const { return function.arguments; }

    uint32_t takeSize()
    {
        switch (m_input.below(8)) {
        case 0:
            return m_input.take<uint32_t>();
        case 1:
            return m_input.take<uint16_t>();
        case 2: // about a power of two: products that wrap
            return (uint32_t{1} << m_input.below(32)) + static_cast<uint32_t>(m_input.take<int8_t>());
        default:
            return m_input.take<uint8_t>() % 100;
        }
    }

    // The descriptor answers for any number, but not where it lists some and none that are refused, or the one of a
    // variant, and not for windows where a kernel of the listed sizes is an argument.
    bool mayBeAny(const Argument& scalar) const
    {
        const bool hasKernel = std::any_of(arguments().begin(), arguments().end(),
                                           [](const Argument& a) { return a.role == Role::source && a.fixedSize; });
        const bool isWindow = scalar.isWindowWidth || scalar.isWindowHeight;
        if (scalar.isCapacity)
            return false;
        return scalar.choices.empty() ||
               (!scalar.refused.empty() && scalar.choices.size() > 1 && !(isWindow && hasKernel));
    }

    double takeScalar(const Argument& scalar)
    {
        const uint32_t way = m_input.below(4);
        if (way == 0 && !scalar.refused.empty())
            return scalar.refused[m_input.below(scalar.refused.size())];
        if (way == 1 && mayBeAny(scalar))
            return takeAny(scalar.element);
        return drawScalar(scalar, m_input);
    }
    double takeAny(Element element)
    {
        return visitElement(element, [&](auto zero) { return static_cast<double>(m_input.take<decltype(zero)>()); });
    }

    void takeNumbers()
    {
        m_width = takeSize();
        m_height = takeSize();
        const CaseSize unit = function.contract.unit;
        if (!function.contract.refusesOtherSizes || m_input.oneIn(2))
            m_width -= m_width % unit.width, m_height -= m_height % unit.height;
        if (function.contract.largestPower && m_input.oneIn(2))
            m_width = std::bit_floor(m_width), m_height = std::bit_floor(m_height);
        for (size_t i = 0; i < arguments().size(); i++) {
            if (arguments()[i].role == Role::area)
                m_height = 1;
            if (arguments()[i].role == Role::scalar)
                values.numbers[i] = takeScalar(arguments()[i]);
        }
        function.drawSizes(values.numbers, {m_width, m_height}, m_input);
        for (size_t i = 0; i < arguments().size(); i++)
            if (arguments()[i].isDependent() && m_input.oneIn(2))
                values.numbers[i] = arguments()[i].isPosition() ? takeAny(arguments()[i].element) : takeSize();
    }

    ImageSize sizeOfImage(const Argument& image) const
    {
        return image.usedIn(function.sizesFor({m_width, m_height}, values.numbers));
    }
    uint64_t rowBytesOf(const Argument& image) const { return sizeOfImage(image).columns * image.pixelSize(); }

    // The picture that an argument is or stands for.
    const Argument& picture(size_t argument) const
    {
        const Argument& a = arguments()[argument];
        return a.role == Role::alias ? arguments()[a.aliasOf] : a;
    }

    uint64_t widestRow(size_t strideArgument) const
    {
        uint64_t widest = 0;
        for (const size_t image : function.imagesOfStride(strideArgument))
            widest = std::max(widest, rowBytesOf(picture(image)));
        return widest;
    }

    uint32_t takeStride(uint64_t row)
    {
        switch (m_input.below(8)) {
        case 0:
            return m_input.take<uint32_t>();
        case 1: // too short
            return static_cast<uint32_t>(row - 1 - m_input.take<uint8_t>() % 4);
        case 2:
        case 3:
            return 0;
        case 4:
            return static_cast<uint32_t>((row + 7) / 8 * 8);
        default:
            return static_cast<uint32_t>(row + m_input.take<uint8_t>() % 20);
        }
    }

    // Mostly a multiple of an element's size where others are refused.
    uint32_t wholeStride(size_t argument, uint32_t stride)
    {
        const bool isAny = !arguments()[argument].isWhole || m_input.oneIn(8);
        return isAny ? stride : stride / kPointElement * kPointElement;
    }

    void takeStrides()
    {
        for (size_t i = 0; i < arguments().size(); i++)
            if (arguments()[i].role == Role::stride)
                values.numbers[i] = wholeStride(i, takeStride(widestRow(i)));
        for (size_t i = 0; i < arguments().size(); i++)
            if (arguments()[i].role == Role::alias) {
                const size_t own = function.strideOfImage(i), original = function.strideOfImage(arguments()[i].aliasOf);
                if (own != FunctionTest::npos && original != FunctionTest::npos)
                    values.numbers[own] = values.numbers[original];
            }
    }

    void describeImages()
    {
        for (size_t i = 0; i < arguments().size(); i++) {
            const Argument& a = arguments()[i];
            if (!a.isImage())
                continue;
            const size_t strideArgument = function.strideOfImage(i);
            uint64_t stride = rowBytesOf(a);
            if (strideArgument != FunctionTest::npos && values.numbers[strideArgument] > 0)
                stride = static_cast<uint64_t>(values.numbers[strideArgument]) / sizeOf(a.element) * sizeOf(a.element);
            images.push_back({.argument = i,
                              .descriptor = &a,
                              .rowBytes = rowBytesOf(a),
                              .rows = sizeOfImage(a).rows,
                              .stride = stride,
                              .isNull = !a.isVital && m_input.oneIn(16),
                              .refusedElements = takeRefusedElements(a)});
        }
    }

    const std::vector<double>* takeRefusedElements(const Argument& a)
    {
        if (a.refusedElements.empty() || !m_input.oneIn(8))
            return nullptr;
        return &a.refusedElements[m_input.below(a.refusedElements.size())];
    }

    // Whether the descriptor says that the numbers cannot be right.
    bool isWrong() const
    {
        bool wrong = function.refuses(values.numbers), hasRows = false; // without a width there is a number of elements
        for (const Argument& a : arguments())
            hasRows |= a.role == Role::width;
        bool hasOutput = false, hadOutput = false;
        for (const Image& image : images) {
            const Argument& a = *image.descriptor;
            hadOutput |= a.isOutput();
            hasOutput |= a.isOutput() && !image.isNull;
            wrong |= image.isNull && !a.mayBeNull;
            wrong |= image.refusedElements != nullptr;
            if (image.isNull || !a.isPicture())
                continue;
            const size_t strideArgument = function.strideOfImage(image.argument);
            const bool mayOverlap = strideArgument != FunctionTest::npos && arguments()[strideArgument].mayOverlap;
            wrong |= !mayOverlap && image.stride < image.rowBytes;
            wrong |= strideArgument != FunctionTest::npos && arguments()[strideArgument].isWhole &&
                     std::fmod(values.numbers[strideArgument], sizeOf(a.element)) != 0;
            wrong |= hasRows && image.rowBytes > kLargest32Bits;
        }
        wrong |= hadOutput && !hasOutput && !function.hasCount;
        return wrong || uint64_t{m_width} * m_height > function.contract.mostPixels;
    }

    InputBits& m_input;
    uint32_t m_width = 0, m_height = 0;
};

// A case in memory.
class Call
{
public:
    Call(Case& drawn, InputBits& input) : m_case(drawn), m_input(input)
    {
        for (Image& image : m_case.images)
            place(image);
        if (m_input.oneIn(4))
            shareSource();
        const std::vector<Argument>& arguments = m_case.function.arguments;
        for (size_t i = 0; i < arguments.size(); i++)
            if (arguments[i].role == Role::alias)
                m_case.values.pointers[i] = m_case.values.pointers[arguments[i].aliasOf];
    }

    // For whoever looks at a find: "name(0x7f.., 31, ...)", a picture with its size.
    void print() const
    {
        fprintf(stderr, "%s%s(", m_case.mustBeRefused ? "to be refused: " : "", m_case.function.name.c_str());
        for (size_t i = 0; i < m_case.function.arguments.size(); i++) {
            const Argument& a = m_case.function.arguments[i];
            if (a.isImage() || a.role == Role::alias || a.role == Role::null)
                fprintf(stderr, "%s%p", i ? ", " : "", m_case.values.pointers[i]);
            else
                fprintf(stderr, "%s%.9g", i ? ", " : "", m_case.values.numbers[i]);
        }
        fprintf(stderr, ")\n");
        for (const Image& image : m_case.images)
            fprintf(stderr, "  argument %zu: %zu bytes there, rows of %llu bytes\n", image.argument,
                    image.before.size(), static_cast<unsigned long long>(image.rowBytes));
    }

    // Calls and checks what the call left behind.
    Outcome run() const
    {
        for (const Image& image : m_case.images)
            std::copy(image.before.begin(), image.before.end(), image.data);
        fuzz::logLines = 0;
        const Outcome outcome = m_case.function.call(m_case.values);
        const bool refused = isRefusal(outcome);
        require(refused || !m_case.mustBeRefused, "what cannot be done is refused");
        for (const Image& image : m_case.images)
            if (refused || !image.descriptor->isOutput())
                require(std::equal(image.before.begin(), image.before.end(), image.data),
                        refused ? "a refused call writes nothing" : "sources are not written to");
            else
                require(gapsAreUntouched(image), "nothing is written between rows");
        return outcome;
    }

    // What returns 0 without a word may have found nothing, too.
    bool isRefusal(const Outcome& outcome) const
    {
        if (m_case.function.hasStatus)
            return outcome.status != RAVIK_SUCCESS &&
                   !(m_case.function.contract.failsInPart && outcome.status == RAVIK_EFAIL);
        return m_case.function.isSilent ? m_case.mustBeRefused && outcome.count == 0 : fuzz::logLines > 0;
    }

    std::vector<std::vector<uint8_t>> outputs() const
    {
        std::vector<std::vector<uint8_t>> all;
        for (const Image& image : m_case.images)
            all.emplace_back(image.data, image.data + image.before.size());
        return all;
    }
    bool equals(const std::vector<std::vector<uint8_t>>& expected) const
    {
        for (size_t i = 0; i < m_case.images.size(); i++)
            if (!equalsImage(m_case.images[i], expected[i]))
                return false;
        return true;
    }

private:
    // Against the guard page behind it, before it, or not far from either; aligned as it has to be and no better.
    uint8_t* placeFor(const Image& image, uint64_t bytes)
    {
        const uint32_t alignment = std::max(image.descriptor->alignment, sizeOf(image.descriptor->element));
        const uint8_t choice = m_input.take<uint8_t>();
        const uint64_t distance = choice & 1 ? uint64_t{choice} % 32 * alignment : 0;
        uint8_t* const region = test::regionOf(image.argument);
        if (choice & 2)
            return region + distance;
        return region + test::kRegionBytes - (bytes + distance + alignment - 1) / alignment * alignment;
    }

    void place(Image& image)
    {
        const bool mayBeRead = !image.descriptor->refusedElements.empty();
        const bool asSmallAsCanBe = m_case.mustBeRefused && !mayBeRead && (!image.fits() || m_input.oneIn(2));
        const uint64_t bytes = asSmallAsCanBe ? 0 : image.bytes();
        image.data = placeFor(image, bytes);
        m_case.values.pointers[image.argument] = image.isNull ? nullptr : image.data;
        const auto content = m_input.rest();
        for (size_t i = 0; i < bytes; i++)
            image.before.push_back(content.empty() ? static_cast<uint8_t>(i * 37 % 251)
                                                   : content[(i + image.argument * 5) % content.size()]);
        if (image.descriptor->element == Element::f32 && bytes > 0)
            placeNumbers(image, bytes / sizeof(float));
    }

    // Floats of the ranges, which chance would seldom give, or those that are refused.
    void placeNumbers(Image& image, size_t count)
    {
        const Argument& a = *image.descriptor;
        const bool takesAnyBits = a.ranges.empty() || (!a.isWhole && m_input.oneIn(4));
        for (size_t i = 0; i < count; i++) {
            float number;
            memcpy(&number, image.before.data() + i * sizeof number, sizeof number);
            if (image.refusedElements)
                number = static_cast<float>((*image.refusedElements)[i % image.refusedElements->size()]);
            else if (!takesAnyBits && (a.isWhole || image.before[i * sizeof number] % 16))
                number = static_cast<float>(a.rangeOf(i).at(image.before[i * sizeof number] / 255.0, m_case.size()));
            if (a.isWhole)
                number = std::rint(number);
            memcpy(image.before.data() + i * sizeof number, &number, sizeof number);
        }
    }

    // Makes a source of the same shape the destination, too, where it is known what becomes of that.
    void shareSource()
    {
        const InPlace inPlace = m_case.function.contract.dstIsSrc;
        std::vector<Image>& images = m_case.images;
        const auto dst = std::find_if(images.begin(), images.end(), [](const Image& image) {
            return image.descriptor->role == Role::destination && image.descriptor->isPicture();
        });
        if (inPlace == InPlace::undefined || dst == images.end() || dst->isNull)
            return;
        const auto src = std::find_if(images.begin(), images.end(), [&](const Image& image) {
            return image.descriptor->role == Role::source && image.descriptor->isPicture() &&
                   !image.descriptor->isMask && image.descriptor->pixelSize() == dst->descriptor->pixelSize() &&
                   image.rowBytes == dst->rowBytes && image.stride == dst->stride &&
                   image.before.size() == dst->before.size();
        });
        if (src == images.end())
            return;
        dst->data = src->data;
        dst->before = src->before;
        m_case.values.pointers[dst->argument] = m_case.values.pointers[src->argument];
        m_case.mustBeRefused |= inPlace == InPlace::refused;
        images.erase(src);
    }

    bool gapsAreUntouched(const Image& image) const
    {
        if (image.stride <= image.rowBytes)
            return true;
        for (uint64_t at = image.rowBytes; at + image.rowBytes < image.before.size(); at += image.stride)
            if (memcmp(image.data + at, image.before.data() + at, image.stride - image.rowBytes) != 0)
                return false;
        return true;
    }

    // The bits of NaNs may differ, and what a row leaves of an overlapping one.
    bool equalsImage(const Image& image, const std::vector<uint8_t>& expected) const
    {
        if (image.descriptor->isScratch || image.stride < image.rowBytes ||
            std::equal(expected.begin(), expected.end(), image.data))
            return true;
        if (m_case.function.tolerance > 0) // that of the values which the tests draw, not of any
            return true;
        if (image.descriptor->element != Element::f32)
            return false;
        for (size_t i = 0; i + sizeof(float) <= expected.size(); i += sizeof(float)) {
            float wanted, got;
            memcpy(&wanted, expected.data() + i, sizeof wanted);
            memcpy(&got, image.data + i, sizeof got);
            if (memcmp(&wanted, &got, sizeof got) != 0 && !(std::isnan(wanted) && std::isnan(got)))
                return false;
        }
        return true;
    }

    Case& m_case;
    InputBits& m_input;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    InputBits input({data, size});
    static const std::vector<const FunctionTest*> functions = allFunctions();
    const FunctionTest& function = *functions[input.below(functions.size())];
    fuzz::subject = function.name;
    Case drawn(function, input);
    if (!drawn.isFeasible())
        return 0;
    const Call call(drawn, input);
    static const bool isTraced = getenv("RAVIK_FUZZ_TRACE");
    if (isTraced)
        call.print();
    rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_ARM));
    const Outcome expected = call.run();
    const auto outputs = call.outputs();
    rvkSetOperationMode(static_cast<rvkOperationMode>(RAVIK_OP_EXPERT | RAVIK_UNIT_VECTA));
    const Outcome actual = call.run();
    require(actual == expected, "VECTA returns what the reference returns");
    require(call.equals(outputs), "VECTA gives what the reference gives");
    return 0;
}

// What the tests need to know about a function: its name and, argument by argument, what to pass, and what it promises.
// A function costs one entry:
//
//     RVK_TEST(rvkAbsDiffu8, src, src, width, height, stride, dst, stride).keeps(twoBytes)
//
// Element types come from the function's own declaration. From the entry follow the columns of its control scripts, the
// vectors that the data generator makes, random cases, profiling and the comparison. With its contract they tell
// tests/contractTest.cpp all that it must prove, and docs/functions.md all that it says.
#pragma once

#include "element.h"

#include <ravik/correspondences.h>

#include <cstdlib>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

// Bits to draw numbers from.
class RandomBits
{
public:
    virtual ~RandomBits() = default;
    virtual uint32_t next() = 0; // 32 bits

    // A whole number of low..high.
    int64_t between(int64_t low, int64_t high);
    // The bits of a normal float of moderate size: 32-bit Arm flushes subnormal ones, so they and small differences of
    // them must not come up.
    uint32_t floatBits();
};

// What a call gave back: the status of a status function and the number of a counting one.
struct Outcome
{
    int32_t status = RAVIK_SUCCESS;
    uint32_t count = 0;

    bool operator==(const Outcome&) const = default;
};

struct CaseSize
{
    uint32_t width, height;
};

inline CaseSize larger(CaseSize a, CaseSize b)
{
    return {a.width > b.width ? a.width : b.width, a.height > b.height ? a.height : b.height};
}

// What an image measures, in pixels. Products of sizes fit.
struct ImageSize
{
    uint64_t columns, rows;
};

// Where a number, or each element of an image, is drawn from: of low..high, or relative to the picture.
struct Range
{
    enum class Of : uint8_t {
        numbers,
        columns, // from column `low` of the picture to `high` columns behind its last one
        rows,
        widths, // times the picture's width
        heights
    };

    double low, high;
    Of of = Of::numbers;

    // From 0, the lower end, to 1. Where the picture is too small for the ends, their mean.
    double at(double position, CaseSize picture) const;
};

// What the sizes of images follow from.
struct CaseSizes
{
    ImageSize picture;
    CaseSize second{1, 1}; // that of resized images
    CaseSize rectangle{0, 0};
    CaseSize window{1, 1};
};

// What an image measures that is not as large as the picture, and how docs/functions.md says it.
struct Measure
{
    std::function<ImageSize(const CaseSizes&)> size{};
    std::string name{};
};

// One argument of a function. Images measure `width` x `height` pixels of the case unless they say otherwise.
struct Argument
{
    enum class Role : uint8_t {
        source,      // an image that is read
        destination, // an image that is written
        updated,     // an image that is read and written
        value,       // one number that is written
        alias,       // the image of an earlier argument again
        null,        // a null pointer
        width,       // of the case
        height,
        area,        // width x height; may be 0
        secondWidth, // of resized images
        secondHeight,
        left, // of a rectangle in the picture
        top,
        rectangleWidth,
        rectangleHeight,
        stride, // in bytes, of the images listed since the previous stride
        scalar
    };

    // The correspondences that a control script names as one file consist of these, in this order.
    enum class PairPart : uint8_t { none, from, to, mask };

    Role role;
    Element element = Element::u8; // of images, values and scalars
    uint32_t channels = 1;
    bool isTransposed = false;
    uint32_t xShift = 0, yShift = 0; // one for 2^xShift x 2^yShift pixels of the case, fewer at its edges
    Measure measure{};               // of an image that is no picture of the case's size
    uint32_t fixedSize = 0;          // elements in one row, whatever the case; 0: as large as the case
    uint32_t alignment = 0;          // bytes that the address must be a multiple of; 0: of an element
    uint32_t columns = 0;            // of a picture as high as the case: so many, whatever the case's width
    bool isMask = false;             // half of the elements are 0
    bool isNatural = false;          // a picture of things, with edges and corners
    bool isWhole = false;   // floats that are whole numbers; a stride of whole elements, without which it is refused
    bool isList = false;    // an output of which a call writes as much as it finds
    bool isScratch = false; // memory that a call may use; what it leaves there does not count
    bool isVital = false;   // without which the function ends the process
    size_t aliasOf = 0;
    bool isInterior = false; // of the result: the pixels alone whose whole window lies in the picture
    bool mayBeNull = false;
    bool mayOverlap = false; // a stride that may be less than a row
    PairPart pairPart = PairPart::none;
    // Adds to a row what the row of the source before it becomes by a mapping; what is drawn is how far off it lies.
    std::function<void(const float* from, float* to)> mapping{};
    double low = 0, high = 0;      // of a scalar; of the width or height of a rectangle the least
    std::vector<Range> ranges{};   // of the elements of an image one after the other, or all of them; of a scalar
    std::vector<double> typical{}; // elements in profiles, instead of the middle of the ranges
    std::vector<std::vector<double>> refusedElements{}; // of an image
    std::vector<double> choices{};                      // of a scalar, instead of a range
    std::vector<double> refused{};                      // values of a scalar that the function refuses
    // Of a second size: how many times the case's it is at least, at most and in profiles. What must not be more or
    // less than the case's is refused.
    double leastPart = 0, mostPart = 2, typicalPart = 1;
    bool mustNotExceed = false, mustReach = false;
    bool isByPowerOfTwo = false; // mostly the case's times a power of two, the same for both
    bool isCapacity = false;     // of a scalar: there is no room for more
    uint32_t span = 0;           // the rectangle's width or height, of a left or top without an argument for it
    bool isWindowWidth = false;  // the picture is at least as wide, or high, as the scalar says
    bool isWindowHeight = false;
    bool hasWindowWidth = false;  // of an image of fixed size: no more is read of it than the window is wide, high,
    bool hasWindowHeight = false; // or the product of both

    Argument ofChannels(uint32_t count) const
    {
        return changed([=](Argument& a) { a.channels = count; });
    }
    Argument transposed() const
    {
        return changed([](Argument& a) { a.isTransposed = true; });
    }
    Argument sampled(uint32_t horizontalShift, uint32_t verticalShift) const
    {
        return changed([=](Argument& a) { a.xShift = horizontalShift, a.yShift = verticalShift; });
    }
    // A row for each point.
    Argument ofPoints(uint32_t coordinates) const
    {
        return changed([=](Argument& a) { a.channels = coordinates, a.columns = 1; });
    }
    // An element for each point, side by side.
    Argument perPoint() const
    {
        return changed([](Argument& a) { a.columns = 1, a.isTransposed = true; });
    }
    // An image of another size. A row and a column of it do not get shorter when the case gets larger.
    Argument measuring(const Measure& what) const
    {
        return changed([&](Argument& a) { a.measure = what; });
    }
    // `to` pixels for each whole `from` pixels of the case, in each direction, or across and down.
    Argument scaled(uint32_t from, uint32_t to) const { return scaled(from, to, from, to); }
    Argument scaled(uint32_t fromAcross, uint32_t toAcross, uint32_t fromDown, uint32_t toDown) const;
    Argument halved() const { return scaled(2, 1); }
    Argument quartered() const { return scaled(4, 1); }
    Argument doubled() const { return scaled(1, 2); }
    // One column and one row more than the case.
    Argument withOneMore() const;
    // As large as the second size.
    Argument resized() const;
    // One column and one row more than the rectangle.
    Argument ofRectangleWithOneMore() const;

    Argument as(Role newRole) const
    {
        return changed([=](Argument& a) { a.role = newRole; });
    }
    Argument ofSize(uint32_t elements) const
    {
        return changed([=](Argument& a) { a.fixedSize = elements; });
    }
    Argument alignedTo(uint32_t bytes) const
    {
        return changed([=](Argument& a) { a.alignment = bytes; });
    }

    Argument interior() const
    {
        return changed([](Argument& a) { a.isInterior = true; });
    }
    Argument natural() const
    {
        return changed([](Argument& a) { a.isNatural = true; });
    }
    Argument whole() const
    {
        return changed([](Argument& a) { a.isWhole = true; });
    }
    Argument vital() const
    {
        return changed([](Argument& a) { a.isVital = true; });
    }
    Argument orNull() const
    {
        return changed([](Argument& a) { a.mayBeNull = true; });
    }
    // A scalar that is never more than what it is drawn as: the images have no room for it, or it would take too long.
    Argument limited() const
    {
        return changed([](Argument& a) { a.isCapacity = true; });
    }
    Argument refusing(std::vector<double> numbers) const
    {
        return changed([&](Argument& a) { a.refused = std::move(numbers); });
    }

    // Of a second size: refused when it is larger or smaller than the case's; or never drawn as more than this part.
    Argument noLarger() const
    {
        return changed([](Argument& a) { a.mostPart = 1, a.typicalPart = 0.5, a.mustNotExceed = true; });
    }
    Argument noSmaller() const
    {
        return changed([](Argument& a) { a.leastPart = 1, a.typicalPart = 2, a.mustReach = true; });
    }
    Argument upTo(double part) const
    {
        return changed([=](Argument& a) { a.mostPart = a.typicalPart = part; });
    }

    // Elements, or a scalar, of these ranges. Random cases have others, too, and some that are no numbers.
    Argument within(std::vector<Range> elements) const
    {
        return changed([&](Argument& a) { a.ranges = std::move(elements); });
    }
    Argument typically(std::vector<double> elements) const
    {
        return changed([&](Argument& a) { a.typical = std::move(elements); });
    }
    Argument refusingElements(std::vector<std::vector<double>> images) const
    {
        return changed([&](Argument& a) { a.refusedElements = std::move(images); });
    }
    // Of the width or height of a rectangle.
    Argument atLeast(uint32_t pixels) const
    {
        return changed([=](Argument& a) { a.low = pixels; });
    }
    // Left or top of a rectangle of a size that is no argument.
    Argument spanning(uint32_t pixels) const
    {
        return changed([=](Argument& a) { a.span = pixels; });
    }

    bool isImage() const
    {
        return role == Role::source || role == Role::destination || role == Role::updated || role == Role::value;
    }
    bool isSecondSize() const { return role == Role::secondWidth || role == Role::secondHeight; }
    bool isOfRectangle() const
    {
        return role == Role::left || role == Role::top || role == Role::rectangleWidth || role == Role::rectangleHeight;
    }
    bool isPosition() const { return role == Role::scalar && !ranges.empty(); }
    bool isDependent() const { return isSecondSize() || isOfRectangle() || isPosition(); } // on the picture's size
    bool isNumber() const { return role == Role::scalar || isDependent(); }
    const Range& rangeOf(size_t index) const { return ranges[index % ranges.size()]; }
    bool isInput() const { return role == Role::source || role == Role::updated || isNumber(); }
    bool isOutput() const { return role == Role::destination || role == Role::updated || role == Role::value; }
    bool isResult() const { return isOutput() && !isScratch; }
    bool isPicture() const { return isImage() && fixedSize == 0; } // its size follows from that of the case
    // And neither of bits nor scratch memory: remote units want it aligned.
    bool isOfPixels() const { return isPicture() && !isScratch && !(isMask && isMeasured()); }
    bool isSampled() const { return xShift || yShift; }
    bool isMeasured() const { return static_cast<bool>(measure.size); }
    uint32_t pixelSize() const { return channels * sizeOf(element); }
    // What the image measures at most, and what a call with this window uses of it.
    ImageSize sizeIn(const CaseSizes& sizes) const;
    ImageSize usedIn(const CaseSizes& sizes) const;

private:
    template <class Change>
    Argument changed(Change change) const
    {
        Argument copy = *this;
        change(copy);
        return copy;
    }
};

// The words that entries are made of.
namespace arguments {
inline const Argument src{.role = Argument::Role::source};
inline const Argument dst{.role = Argument::Role::destination};
inline const Argument updated{.role = Argument::Role::updated};
inline const Argument value{.role = Argument::Role::value, .fixedSize = 1};
inline const Argument mask{.role = Argument::Role::source, .isMask = true};
inline const Argument null{.role = Argument::Role::null};
// A list of at most so many elements, of which a call writes as many as it finds, and the argument that says how many
// there is room for: the least and the largest number.
inline Argument list(uint32_t elements)
{
    return {.role = Argument::Role::destination, .fixedSize = elements, .isList = true};
}
inline Argument capacity(double least, double most)
{
    return {.role = Argument::Role::scalar, .low = least, .high = most, .isCapacity = true};
}
// Scratch memory of the caller: `words` elements and as many as the picture has rows.
Argument scratchForRows(uint32_t words);
inline const Argument width{.role = Argument::Role::width};
inline const Argument height{.role = Argument::Role::height};
inline const Argument area{.role = Argument::Role::area};
// The second size, which is any, from 1 to twice that of the case, unless a word says otherwise.
inline const Argument dstWidth{.role = Argument::Role::secondWidth};
inline const Argument dstHeight{.role = Argument::Role::secondHeight};
// A packed mask of one bit for each pixel of another size, and that size.
Argument bits();
inline const Argument bitsAcross{.role = Argument::Role::secondWidth, .isByPowerOfTwo = true};
inline const Argument bitsDown{.role = Argument::Role::secondHeight, .isByPowerOfTwo = true};
// A rectangle inside the picture. A function without the width or height of a picture takes one that ends where the
// rectangle does.
inline const Argument left{.role = Argument::Role::left};
inline const Argument top{.role = Argument::Role::top};
inline const Argument rectangleWidth{.role = Argument::Role::rectangleWidth};
inline const Argument rectangleHeight{.role = Argument::Role::rectangleHeight};
inline const Argument stride{.role = Argument::Role::stride};
// A multiple of an element's size; what is not is refused.
inline const Argument wholeStride{.role = Argument::Role::stride, .isWhole = true};
// Less than a row is as good: rows overlap then.
inline const Argument overlappingStride{.role = Argument::Role::stride, .mayOverlap = true};
inline Argument between(double low, double high)
{
    return {.role = Argument::Role::scalar, .low = low, .high = high};
}
inline Argument oneOf(std::vector<double> choices)
{
    return {.role = Argument::Role::scalar, .choices = std::move(choices)};
}
// Any number of the parameter's type.
inline const Argument any{.role = Argument::Role::scalar};
inline Argument sameAs(size_t argument)
{
    return {.role = Argument::Role::alias, .aliasOf = argument};
}
// A few numbers.
inline Argument numbers(std::vector<Range> each)
{
    const auto count = static_cast<uint32_t>(each.size());
    return src.ofSize(count).within(std::move(each));
}
// From so many columns inside the picture, or beyond its edges where they are negative and positive, to so many; rows
// alike.
inline Range columns(double fromFirst, double fromLast)
{
    return {fromFirst, fromLast, Range::Of::columns};
}
inline Range rows(double fromFirst, double fromLast)
{
    return {fromFirst, fromLast, Range::Of::rows};
}
inline Range widths(double low, double high)
{
    return {low, high, Range::Of::widths};
}
inline Range heights(double low, double high)
{
    return {low, high, Range::Of::heights};
}
inline Argument at(const Range& range)
{
    return any.within({range});
}
inline const Argument policy = oneOf({RAVIK_POLICY_SATURATE, RAVIK_POLICY_WRAP}).refusing({2, UINT32_MAX});
// The weights of a window, at most as many: one for each of its pixels, columns or rows.
inline Argument weights(uint32_t most)
{
    return {.role = Argument::Role::source, .fixedSize = most, .hasWindowWidth = true, .hasWindowHeight = true};
}
inline Argument rowOfWeights(uint32_t most)
{
    return {.role = Argument::Role::source, .fixedSize = most, .hasWindowWidth = true};
}
inline Argument columnOfWeights(uint32_t most)
{
    return {.role = Argument::Role::source, .fixedSize = most, .hasWindowHeight = true};
}
// Correspondences of points of `coordinates` numbers, drawn of these ranges, with points in a plane: what the mapping
// adds, and a deviation. These are five arguments, points and strides and how many pairs there are, and with the mask six.
std::vector<Argument> pointPairsWithoutMask(uint32_t coordinates, std::vector<Range> from, std::vector<Range> deviation,
                                            std::function<void(const float* from, float* to)> mapping);
std::vector<Argument> pointPairs(uint32_t coordinates, std::vector<Range> from, std::vector<Range> deviation,
                                 std::function<void(const float* from, float* to)> mapping);
// Sizes of a window, which the picture holds.
inline Argument windowWidth(std::vector<double> sizes)
{
    return {.role = Argument::Role::scalar, .choices = std::move(sizes), .isWindowWidth = true};
}
inline Argument windowHeight(std::vector<double> sizes)
{
    return {.role = Argument::Role::scalar, .choices = std::move(sizes), .isWindowHeight = true};
}
inline Argument windowSize(std::vector<double> sizes)
{
    return {.role = Argument::Role::scalar, .choices = std::move(sizes), .isWindowWidth = true, .isWindowHeight = true};
}
} // namespace arguments

// When a call may run on a remote unit: all conditions hold, or it falls back to VECTA.
struct OffloadRule
{
    uint32_t alignment = 1;       // of pictures, their strides and packed rows, in bytes
    uint32_t outputAlignment = 0; // of the outputs, whose strides are free; 0: as all pictures
    uint32_t strideMultiple = 1;  // of the first picture's rows
    uint32_t widthMultiple = 1;   // of the picture
    uint32_t heightMultiple = 1;
    uint32_t leastWidth = 1;
    uint32_t leastHeight = 1;      // and that of the window
    uint32_t elementsPerPixel = 1; // of which a remote call takes no less than kLeastElements
    static constexpr uint32_t kLeastElements = 25345;
};

// What a filter does where its window reaches beyond the picture.
enum class Border : uint8_t {
    none,       // has no window
    kept,       // leaves these pixels of the destination as they are
    copied,     // takes the source's
    present,    // leaves out what does not exist
    zero,       // takes 0 for it
    replicated, // takes the nearest pixel
    unwritten,  // has no such pixels in the destination
    chosen      // by an argument
};

// Whether the destination may be a source of the same elements and stride.
enum class InPlace : uint8_t { undefined, refused, allowed };

// What a function promises, besides what its arguments say. Functions of a kind share one: each word below makes
// another contract from it.
struct Contract
{
    CaseSize least{1, 1};      // that the function accepts, besides windows that are arguments
    CaseSize leastDrawn{1, 1}; // where smaller ones may be refused for what they hold
    CaseSize unit{1, 1};       // of which sizes are multiples
    bool refusesOtherSizes = false;
    uint32_t largestPower = 0; // of two, of which sizes are some, up to this one; 0: sizes are any
    uint32_t window = 1;       // width and height, where they are no arguments
    Border atBorder = Border::none;
    InPlace dstIsSrc = InPlace::undefined;
    uint64_t mostPixels = UINT64_MAX; // of a picture
    bool takesSmallPictures = false;  // smaller than a window that is an argument
    bool logs = false;                // refusals, although it has a status; functions without one do
    bool writesNothing = false;       // whatever the picture
    bool failsInPart = false;         // RAVIK_EFAIL says that some of the results are none
    bool refusesOverlap = false;      // of images, but for a destination that is the source where that is allowed
    std::optional<OffloadRule> dspRule{}, gpuRule{};

    Contract atLeast(uint32_t width, uint32_t height) const
    {
        return changed([=](Contract& c) { c.least = {width, height}; });
    }
    // Some smaller pictures are refused, by where numbers point.
    Contract drawnFrom(uint32_t width, uint32_t height) const
    {
        return changed([=](Contract& c) { c.leastDrawn = {width, height}; });
    }
    // Pictures of a width and height that are multiples of these, and whether others are refused.
    Contract inUnitsOf(uint32_t width, uint32_t height, bool refused = true) const
    {
        return changed([=](Contract& c) { c.unit = {width, height}, c.refusesOtherSizes = refused; });
    }
    Contract powersOfTwo(uint32_t largest) const
    {
        return changed([=](Contract& c) { c.largestPower = largest; });
    }
    // Takes windows of size x size pixels, of pictures of any size.
    Contract windows(uint32_t size) const
    {
        return changed([=](Contract& c) { c.window = size; });
    }
    // Refuses pictures that are smaller than the window.
    Contract wholeWindows(uint32_t size) const { return windows(size).atLeast(size, size); }
    Contract ofSmallPictures() const
    {
        return changed([](Contract& c) { c.takesSmallPictures = true; });
    }
    Contract border(Border what) const
    {
        return changed([=](Contract& c) { c.atBorder = what; });
    }
    Contract inPlace() const
    {
        return changed([](Contract& c) { c.dstIsSrc = InPlace::allowed; });
    }
    Contract refusingInPlace() const
    {
        return changed([](Contract& c) { c.dstIsSrc = InPlace::refused; });
    }
    Contract refusingOverlap() const
    {
        return changed([](Contract& c) { c.dstIsSrc = InPlace::refused, c.refusesOverlap = true; });
    }
    Contract upToPixels(uint64_t count) const
    {
        return changed([=](Contract& c) { c.mostPixels = count; });
    }
    Contract logging() const
    {
        return changed([](Contract& c) { c.logs = true; });
    }
    Contract writingNothing() const
    {
        return changed([](Contract& c) { c.writesNothing = true; });
    }
    Contract failingInPart() const
    {
        return changed([](Contract& c) { c.failsInPart = true; });
    }
    Contract onDsp(const OffloadRule& rule) const
    {
        return changed([=](Contract& c) { c.dspRule = rule; });
    }
    Contract onGpu(const OffloadRule& rule) const
    {
        return changed([=](Contract& c) { c.gpuRule = rule; });
    }

private:
    template <class Change>
    Contract changed(Change change) const
    {
        Contract copy = *this;
        change(copy);
        return copy;
    }
};

// A function without its type.
using AnyFunction = void (*)();

// What a call passes, by the index of the argument.
struct CallValues
{
    std::vector<void*> pointers; // of images, aliases and null pointers
    std::vector<double> numbers; // of all others
};

// Calls a function of some type, or the adapter with it as first argument.
using Caller = Outcome (*)(AnyFunction function, AnyFunction adapter, const CallValues& values, uint32_t times);

struct FunctionTest
{
    std::string name;      // of the test: the function's, or that of one of its variants
    std::string function;  // the function's
    std::string tableName; // the function's name in the test table
    std::vector<Argument> arguments;
    bool hasStatus = false;
    bool hasCount = false;
    int32_t withoutMemory = RAVIK_ENORES; // the status
    bool endsWithoutMemory = false;       // the process
    bool isSilent = false;                // about refusals, although it has no status
    float tolerance = 0;                  // that the test table gets
    uint32_t loopMultiplier = 1;          // calls per profiling sample, for functions that the clock cannot see
    Contract contract{};
    AnyFunction entry = nullptr; // the public function
    Caller caller = nullptr;
    AnyFunction adapter = nullptr; // that makes the arguments of those that are described
    bool returnsNumber = false;    // an int32_t that is no status

    // Calls a function of the same type with these values, so many times. Returns what the last call gave.
    Outcome call(AnyFunction callee, const CallValues& values, uint32_t times = 1) const;
    Outcome call(const CallValues& values, uint32_t times = 1) const { return call(entry, values, times); }

    // Whether refusals are logged.
    bool logsRefusals() const { return contract.logs || (!hasStatus && !isSilent); }

    // The image whose rows the rows of the argument at `index` are mapped from.
    size_t sourceOfMapping(size_t index) const;
    // The images whose stride the argument at `index` gives.
    std::vector<size_t> imagesOfStride(size_t index) const;
    // The stride argument of an image; npos when its rows are packed.
    size_t strideOfImage(size_t index) const;
    static constexpr size_t npos = static_cast<size_t>(-1);

    // Puts the size of the pictures into the numbers of a call.
    void setSize(std::vector<double>& numbers, CaseSize size) const;
    // The same, and the numbers that depend on it: drawn, or what a user would pass.
    void drawSizes(std::vector<double>& numbers, CaseSize size, RandomBits& random) const;
    void setTypicalSizes(std::vector<double>& numbers, CaseSize size) const;
    // What images measure for a picture and these numbers.
    CaseSizes sizesFor(CaseSize picture, const std::vector<double>& numbers) const;
    // The window for these scalars.
    CaseSize windowOf(const std::vector<double>& numbers) const;
    // The least pictures that the function does not refuse for their size, that it accepts, and that it does more with
    // than keep the ring, for these scalars.
    CaseSize leastAccepted(const std::vector<double>& numbers) const;
    CaseSize leastDrawn(const std::vector<double>& numbers) const;
    CaseSize leastEffective(const std::vector<double>& numbers) const;
    // The size, or the next larger one of whole units.
    CaseSize wholeUnits(CaseSize size) const;
    // Whether the function refuses a call because of one of its sizes or other numbers.
    bool refuses(const std::vector<double>& numbers) const;
    // Single numbers that make it do so, by their arguments: those for which there may be images, or any.
    std::vector<std::pair<size_t, double>> wrongNumbers(const std::vector<double>& numbers, bool any) const;
    // Whether there are any of the former.
    bool canRefuse() const;

    // ---- for entries ----
    FunctionTest repeated(uint32_t calls) &&
    {
        loopMultiplier = calls;
        return std::move(*this);
    }
    // Refuses by a count of 0 alone.
    FunctionTest silent() &&
    {
        isSilent = true;
        return std::move(*this);
    }
    // A variant of the function, tested under a name of its own.
    FunctionTest named(const char* variant) &&
    {
        name = variant;
        return std::move(*this);
    }
    // Floats may differ by so much, and for numbers above 1 by so much of them where the contract is tested. So may the
    // numbers of u8 and u16.
    FunctionTest within(float difference) &&
    {
        tolerance = difference;
        return std::move(*this);
    }
    // The int32_t that the function returns is a number, not a status.
    FunctionTest returningNumber() &&
    {
        hasStatus = false;
        hasCount = returnsNumber = true;
        return std::move(*this);
    }
    FunctionTest endingWithoutMemory() &&
    {
        endsWithoutMemory = true;
        return std::move(*this);
    }
    FunctionTest keeps(const Contract& promised) &&
    {
        contract = promised;
        return std::move(*this);
    }
};

template <class Parameter>
Parameter argumentAs(const CallValues& values, size_t index)
{
    if constexpr (std::is_pointer_v<Parameter>)
        return static_cast<Parameter>(values.pointers[index]);
    else
        return static_cast<Parameter>(values.numbers[index]);
}

// Completes an argument by the type of its parameter. Ends the program when the two do not go together.
template <class Parameter>
Argument completed(Argument argument)
{
    using Role = Argument::Role;
    if constexpr (std::is_pointer_v<Parameter>) {
        using Pointee = std::remove_pointer_t<Parameter>;
        const bool fits = argument.role == Role::source
                              ? std::is_const_v<Pointee>
                              : argument.isOutput() || argument.role == Role::null || argument.role == Role::alias;
        if (!fits)
            abort();
        argument.element = elementOf<std::remove_const_t<Pointee>>();
    } else {
        if (argument.isImage() || argument.role == Role::null || argument.role == Role::alias)
            abort();
        if (argument.isNumber())
            argument.element = elementOf<Parameter>();
        if (argument.role == Role::scalar) {
            if (argument.choices.empty() && argument.ranges.empty() && argument.low == argument.high) {
                constexpr bool isInteger = std::is_integral_v<Parameter>;
                argument.low = isInteger ? static_cast<double>(std::numeric_limits<Parameter>::lowest()) : -1000.0;
                argument.high = isInteger ? static_cast<double>(std::numeric_limits<Parameter>::max()) : 1000.0;
            }
        }
    }
    return argument;
}

// Arguments are converted before the first call, so that calls in a row take what the function takes.
template <class Result, class... Parameters>
Outcome callRepeatedly(uint32_t times, Result (*function)(Parameters...), Parameters... parameters)
{
    Outcome outcome;
    for (; times > 0; times--) {
        if constexpr (std::is_void_v<Result>)
            function(parameters...);
        else if constexpr (std::is_same_v<Result, uint32_t>)
            outcome.count = function(parameters...);
        else
            outcome.status = function(parameters...);
    }
    return outcome;
}

template <class Result, class... Parameters>
Outcome callPlainly(AnyFunction any, AnyFunction, const CallValues& values, uint32_t times)
{
    return [&]<size_t... I>(std::index_sequence<I...>)
    {
        return callRepeatedly(times, reinterpret_cast<Result (*)(Parameters...)>(any),
                              argumentAs<Parameters>(values, I)...);
    }
    (std::index_sequence_for<Parameters...>());
}

template <class Function, class Result, class... Parameters>
Outcome callAdapted(AnyFunction any, AnyFunction adapter, const CallValues& values, uint32_t times)
{
    return [&]<size_t... I>(std::index_sequence<I...>)
    {
        return callRepeatedly(times, reinterpret_cast<Result (*)(Function*, Parameters...)>(adapter),
                              reinterpret_cast<Function*>(any), argumentAs<Parameters>(values, I)...);
    }
    (std::index_sequence_for<Parameters...>());
}

template <class Result, class... Parameters>
std::vector<Argument> completedArguments(const std::vector<Argument>& given)
{
    if (given.size() != sizeof...(Parameters))
        abort();
    return [&]<size_t... I>(std::index_sequence<I...>)
    {
        return std::vector<Argument>{completed<Parameters>(given[I])...};
    }
    (std::index_sequence_for<Parameters...>());
}

template <class Result>
FunctionTest describeResult(const char* name, const char* functionName, const char* tableName, AnyFunction entry,
                            Caller caller, std::vector<Argument> arguments)
{
    return {.name = name,
            .function = functionName,
            .tableName = tableName,
            .arguments = std::move(arguments),
            .hasStatus = std::is_same_v<Result, rvkStatus> || std::is_same_v<Result, int32_t>,
            .hasCount = std::is_same_v<Result, uint32_t>,
            .withoutMemory = std::is_same_v<Result, int32_t> ? -1 : RAVIK_ENORES,
            .entry = entry,
            .caller = caller};
}

template <class Result, class... Parameters>
FunctionTest describe(const char* name, const char* functionName, const char* tableName,
                      Result (*function)(Parameters...), const std::vector<Argument>& given)
{
    return describeResult<Result>(name, functionName, tableName, reinterpret_cast<AnyFunction>(function),
                                  callPlainly<Result, Parameters...>, completedArguments<Result, Parameters...>(given));
}

// A function that takes structures of images: `adapter(function, arguments...)` makes them of the arguments that are
// described.
template <class Function, class Result, class... Parameters>
FunctionTest describeAdapted(const char* name, const char* tableName, Function* function,
                             Result (*adapter)(Function*, Parameters...), const std::vector<Argument>& given)
{
    FunctionTest test = describeResult<Result>(name, name, tableName, reinterpret_cast<AnyFunction>(function),
                                               callAdapted<Function, Result, Parameters...>,
                                               completedArguments<Result, Parameters...>(given));
    test.adapter = reinterpret_cast<AnyFunction>(adapter);
    return test;
}

// A function that takes correspondences, the first arguments of the descriptor, as a structure ...
template <class Result, class... Rest>
Result callWithPairs(Result (*function)(const rvkaCorrespondences*, Rest...), const float* src, uint32_t srcStride,
                     const float* dst, uint32_t dstStride, uint32_t count, const uint8_t* mask, Rest... rest)
{
    const rvkaCorrespondences pairs{src, srcStride, dst, dstStride, count, mask};
    return function(&pairs, rest...);
}

template <class Result, class... Rest>
FunctionTest describeWithPairs(const char* name, const char* tableName,
                               Result (*function)(const rvkaCorrespondences*, Rest...), std::vector<Argument> pairs,
                               const std::vector<Argument>& others)
{
    pairs.insert(pairs.end(), others.begin(), others.end());
    return describeAdapted(name, tableName, function, callWithPairs<Result, Rest...>, pairs);
}

// ... or one by one.
template <class Result, class... Parameters>
FunctionTest describeWithPairs(const char* name, const char* tableName, Result (*function)(Parameters...),
                               std::vector<Argument> pairs, const std::vector<Argument>& others)
{
    pairs.insert(pairs.end(), others.begin(), others.end());
    return describe(name, name, tableName, function, pairs);
}

#define RVK_TEST(function, ...) describe(#function, #function, #function, function, {__VA_ARGS__})
// A variant of a function: tested under a name of its own, by the function's line of the test table.
#define RVK_TEST_AS(name, tableName, function, ...) describe(name, #function, tableName, function, {__VA_ARGS__})
#define RVK_TEST_ADAPTED(tableName, function, adapter, ...) \
    describeAdapted(#function, tableName, function, adapter, {__VA_ARGS__})
#define RVK_TEST_WITH_PAIRS(tableName, function, pairs, ...) \
    describeWithPairs(#function, tableName, function, pairs, {__VA_ARGS__})

#include "functionTest.h"

#include <algorithm>
#include <bit>
#include <cmath>

using Role = Argument::Role;

double Range::at(double position, CaseSize picture) const
{
    double from = low, to = high;
    switch (of) {
    case Of::numbers:
        break;
    case Of::columns:
        to += picture.width - 1.0;
        break;
    case Of::rows:
        to += picture.height - 1.0;
        break;
    case Of::widths:
        from *= picture.width, to *= picture.width;
        break;
    case Of::heights:
        from *= picture.height, to *= picture.height;
        break;
    }
    return to < from ? (from + to) / 2 : from + position * (to - from);
}

Argument Argument::scaled(uint32_t fromAcross, uint32_t toAcross, uint32_t fromDown, uint32_t toDown) const
{
    const auto ratio = [](uint32_t from, uint32_t to) {
        return std::to_string(to) + (from > 1 ? "/" + std::to_string(from) : "");
    };
    const std::string across = ratio(fromAcross, toAcross), down = ratio(fromDown, toDown);
    return measuring(
        {[=](const CaseSizes& sizes) {
             return ImageSize{sizes.picture.columns / fromAcross * toAcross, sizes.picture.rows / fromDown * toDown};
         },
         "of " + across + (across == down ? "" : " x " + down)});
}

Argument Argument::withOneMore() const
{
    return measuring({[](const CaseSizes& sizes) {
                          return ImageSize{sizes.picture.columns + 1, sizes.picture.rows + 1};
                      },
                      "of + 1"});
}

Argument Argument::resized() const
{
    return measuring({[](const CaseSizes& sizes) {
                          return ImageSize{sizes.second.width, sizes.second.height};
                      },
                      "of a second size"});
}

Argument Argument::ofRectangleWithOneMore() const
{
    return measuring({[](const CaseSizes& sizes) {
                          return ImageSize{uint64_t{sizes.rectangle.width} + 1, uint64_t{sizes.rectangle.height} + 1};
                      },
                      "of a rectangle + 1"});
}

namespace arguments {

Argument scratchForRows(uint32_t words)
{
    Argument scratch = dst.measuring({[=](const CaseSizes& sizes) {
                                          return ImageSize{words + sizes.picture.rows, 1};
                                      },
                                      "of scratch"});
    scratch.isScratch = true;
    return scratch;
}

Argument bits()
{
    return mask.measuring({[](const CaseSizes& sizes) {
                               return ImageSize{(uint64_t{sizes.second.width} + 7) / 8, sizes.second.height};
                           },
                           "of bits of a second size,"});
}

std::vector<Argument> pointPairsWithoutMask(uint32_t coordinates, std::vector<Range> from, std::vector<Range> deviation,
                                            std::function<void(const float* from, float* to)> mapping)
{
    Argument first = src.ofPoints(coordinates).within(std::move(from));
    Argument second = src.ofPoints(2).within(std::move(deviation));
    first.pairPart = Argument::PairPart::from;
    second.pairPart = Argument::PairPart::to;
    second.mapping = std::move(mapping);
    return {first, wholeStride, second, wholeStride, height};
}

std::vector<Argument> pointPairs(uint32_t coordinates, std::vector<Range> from, std::vector<Range> deviation,
                                 std::function<void(const float* from, float* to)> mapping)
{
    std::vector<Argument> all =
        pointPairsWithoutMask(coordinates, std::move(from), std::move(deviation), std::move(mapping));
    all.push_back(arguments::mask.perPoint().orNull());
    all.back().pairPart = Argument::PairPart::mask;
    return all;
}

} // namespace arguments

ImageSize Argument::sizeIn(const CaseSizes& sizes) const
{
    if (fixedSize)
        return {fixedSize, 1};
    if (isMeasured())
        return measure.size(sizes);
    const uint64_t across = columns ? columns : sizes.picture.columns;
    if (isTransposed)
        return {sizes.picture.rows, across};
    const auto samples = [](uint64_t pixels, uint32_t shift) { return (pixels + (1u << shift) - 1) >> shift; };
    return {samples(across, xShift), samples(sizes.picture.rows, yShift)};
}

ImageSize Argument::usedIn(const CaseSizes& sizes) const
{
    const CaseSize window = sizes.window;
    if (hasWindowWidth || hasWindowHeight)
        return {uint64_t{hasWindowWidth ? window.width : 1} * (hasWindowHeight ? window.height : 1), 1};
    const auto inside = [](uint64_t whole, uint32_t ofWindow) {
        return whole - std::min(whole, uint64_t{std::max(ofWindow, 1u)} - 1);
    };
    const ImageSize size = sizeIn(sizes);
    return isInterior ? ImageSize{inside(size.columns, window.width), inside(size.rows, window.height)} : size;
}

size_t FunctionTest::sourceOfMapping(size_t index) const
{
    while (index-- > 0)
        if (arguments[index].role == Role::source)
            return index;
    return npos;
}

std::vector<size_t> FunctionTest::imagesOfStride(size_t index) const
{
    std::vector<size_t> images;
    for (size_t i = index; i-- > 0 && arguments[i].role != Argument::Role::stride;)
        if (arguments[i].role == Argument::Role::alias || (arguments[i].isPicture()))
            images.push_back(i);
    return images;
}

size_t FunctionTest::strideOfImage(size_t index) const
{
    if (arguments[index].fixedSize)
        return npos;
    for (size_t i = index + 1; i < arguments.size(); i++)
        if (arguments[i].role == Argument::Role::stride)
            return i;
    return npos;
}

void FunctionTest::setSize(std::vector<double>& numbers, CaseSize size) const
{
    for (size_t i = 0; i < arguments.size(); i++) {
        if (arguments[i].role == Argument::Role::width)
            numbers[i] = size.width;
        else if (arguments[i].role == Argument::Role::height)
            numbers[i] = size.height;
        else if (arguments[i].role == Argument::Role::area)
            numbers[i] = double{1} * size.width * size.height;
    }
}

// The window that arguments give; what they do not give is as in `otherwise`.
static CaseSize givenWindow(const FunctionTest& test, const std::vector<double>& numbers, CaseSize otherwise)
{
    CaseSize size = otherwise;
    for (size_t i = 0; i < test.arguments.size(); i++) {
        if (test.arguments[i].isWindowWidth)
            size.width = static_cast<uint32_t>(numbers[i]);
        if (test.arguments[i].isWindowHeight)
            size.height = static_cast<uint32_t>(numbers[i]);
    }
    return size;
}

CaseSize FunctionTest::windowOf(const std::vector<double>& numbers) const
{
    return givenWindow(*this, numbers, {contract.window, contract.window});
}

// A number of the role, or `otherwise`.
static double numberOf(const FunctionTest& test, Role role, const std::vector<double>& numbers, double otherwise)
{
    for (size_t i = 0; i < test.arguments.size(); i++)
        if (test.arguments[i].role == role)
            return numbers[i];
    return otherwise;
}

static bool has(const FunctionTest& test, Role role)
{
    return std::any_of(test.arguments.begin(), test.arguments.end(), [=](const Argument& a) { return a.role == role; });
}

// Where a rectangle begins and how far it reaches, across or down; of no pixels without one.
struct Interval
{
    double begin, length;
    double end() const { return begin + length; }
};

static Interval rectangle(const FunctionTest& test, Role begin, Role length, const std::vector<double>& numbers)
{
    double span = 0;
    for (const Argument& a : test.arguments)
        if (a.role == begin)
            span = a.span;
    return {numberOf(test, begin, numbers, 0), numberOf(test, length, numbers, span)};
}

static Interval across(const FunctionTest& test, const std::vector<double>& numbers)
{
    return rectangle(test, Role::left, Role::rectangleWidth, numbers);
}

static Interval down(const FunctionTest& test, const std::vector<double>& numbers)
{
    return rectangle(test, Role::top, Role::rectangleHeight, numbers);
}

CaseSizes FunctionTest::sizesFor(CaseSize picture, const std::vector<double>& numbers) const
{
    const auto size = [&](Role width, Role height) {
        return CaseSize{static_cast<uint32_t>(numberOf(*this, width, numbers, 1)),
                        static_cast<uint32_t>(numberOf(*this, height, numbers, 1))};
    };
    const Interval columns = across(*this, numbers), rows = down(*this, numbers);
    CaseSizes sizes{.picture = {picture.width, picture.height},
                    .second = size(Role::secondWidth, Role::secondHeight),
                    .rectangle = {static_cast<uint32_t>(columns.length), static_cast<uint32_t>(rows.length)},
                    .window = windowOf(numbers)};
    if (has(*this, Role::left) && !has(*this, Role::width))
        sizes.picture.columns = static_cast<uint64_t>(columns.end());
    if (has(*this, Role::top) && !has(*this, Role::height))
        sizes.picture.rows = static_cast<uint64_t>(rows.end());
    return sizes;
}

// How a second size is drawn for a size of the case.
struct SecondSizes
{
    int64_t least, most, typical;

    SecondSizes(const Argument& a, uint32_t size)
    {
        const auto part = [=](double times, int64_t from) {
            return std::clamp<int64_t>(std::llround(times * size), from, UINT32_MAX);
        };
        least = part(a.leastPart, 1);
        most = part(a.mostPart, least);
        typical = part(a.typicalPart, least);
    }
    // The ends of the range, and the size of the case, more often than chance would have it.
    int64_t draw(uint32_t size, RandomBits& random) const
    {
        const int64_t way = random.between(0, 7);
        return way == 0   ? least
               : way == 1 ? most
               : way == 2 ? std::clamp<int64_t>(size, least, most)
                          : random.between(least, most);
    }
};

// The case's size by a power of two, 8 at most, that divides both; or any.
static CaseSize drawSizeByPowerOfTwo(CaseSize size, RandomBits& random)
{
    const auto shift = static_cast<uint32_t>(random.between(0, 4));
    if (shift == 4)
        return {static_cast<uint32_t>(random.between(1, 2 * size.width)),
                static_cast<uint32_t>(random.between(1, 2 * size.height))};
    const bool isDivided = ((size.width | size.height) & ((1u << shift) - 1)) == 0 && random.between(0, 1);
    return isDivided ? CaseSize{size.width >> shift, size.height >> shift}
                     : CaseSize{size.width << shift, size.height << shift};
}

// Draws an interval inside of the size; its length stays what it is when it is no argument.
static Interval drawInterval(uint32_t size, double span, double least, RandomBits& random)
{
    const auto shortest = std::min<int64_t>(std::max(1, static_cast<int>(least)), std::max(1u, size));
    int64_t length = static_cast<int64_t>(span);
    if (length == 0)
        length = random.between(0, 7) == 0 ? size : random.between(shortest, std::max(1u, size));
    const int64_t most = std::max<int64_t>(0, size - length);
    const int64_t way = random.between(0, 7);
    const int64_t begin = way == 0 ? 0 : way == 1 ? most : random.between(0, most);
    return {static_cast<double>(begin), static_cast<double>(length)};
}

static Interval typicalInterval(uint32_t size, double span, double)
{
    return span > 0 ? Interval{std::floor(std::max(0.0, size - span) / 2), span} : Interval{0, double{1} * size};
}

// A number for a scalar of a range.
static double roundedFor(const Argument& a, double number)
{
    if (a.element == Element::f32)
        return static_cast<float>(number);
    return visitElement(a.element, [=](auto zero) {
        using Limits = std::numeric_limits<decltype(zero)>;
        return std::clamp(std::floor(number + 0.5), static_cast<double>(Limits::lowest()),
                          static_cast<double>(Limits::max()));
    });
}

// Puts what `second(argument, size)`, `interval(size, span, least length)` and `position()`, 0 to 1 in a range, give
// into the numbers that depend on the size.
template <class Second, class MakeInterval, class Position>
static void setDependent(const FunctionTest& test, std::vector<double>& numbers, CaseSize size, Second second,
                         MakeInterval interval, Position position)
{
    for (size_t i = 0; i < test.arguments.size(); i++) {
        const Argument& a = test.arguments[i];
        if (a.isPosition())
            numbers[i] = roundedFor(a, a.ranges[0].at(position(), size));
        if (a.isSecondSize())
            numbers[i] = static_cast<double>(second(a, a.role == Role::secondWidth ? size.width : size.height));
        if (a.role != Role::left && a.role != Role::top)
            continue;
        const bool isLeft = a.role == Role::left;
        const auto length = std::find_if(test.arguments.begin(), test.arguments.end(), [=](const Argument& other) {
            return other.role == (isLeft ? Role::rectangleWidth : Role::rectangleHeight);
        });
        const bool hasLength = length != test.arguments.end();
        const Interval drawn = interval(isLeft ? size.width : size.height, a.span, hasLength ? length->low : 0);
        numbers[i] = drawn.begin;
        if (hasLength)
            numbers[static_cast<size_t>(length - test.arguments.begin())] = drawn.length;
    }
}

Outcome FunctionTest::call(AnyFunction callee, const CallValues& values, uint32_t times) const
{
    const Outcome outcome = caller(callee, adapter, values, times);
    return returnsNumber ? Outcome{.count = static_cast<uint32_t>(outcome.status)} : outcome;
}

void FunctionTest::drawSizes(std::vector<double>& numbers, CaseSize size, RandomBits& random) const
{
    setSize(numbers, size);
    CaseSize byPower{};
    if (std::any_of(arguments.begin(), arguments.end(), [](const Argument& a) { return a.isByPowerOfTwo; }))
        byPower = drawSizeByPowerOfTwo(size, random);
    setDependent(
        *this, numbers, size,
        [&](const Argument& a, uint32_t ofCase) -> int64_t {
            if (a.isByPowerOfTwo)
                return a.role == Role::secondWidth ? byPower.width : byPower.height;
            return SecondSizes(a, ofCase).draw(ofCase, random);
        },
        [&](uint32_t ofCase, uint32_t span, double least) { return drawInterval(ofCase, span, least, random); },
        [&] { return random.next() / 4294967295.0; });
}

void FunctionTest::setTypicalSizes(std::vector<double>& numbers, CaseSize size) const
{
    setSize(numbers, size);
    setDependent(
        *this, numbers, size, [](const Argument& a, uint32_t ofCase) { return SecondSizes(a, ofCase).typical; },
        typicalInterval, [] { return 0.5; });
}

CaseSize FunctionTest::leastAccepted(const std::vector<double>& numbers) const
{
    return contract.takesSmallPictures ? contract.least : larger(contract.least, givenWindow(*this, numbers, {0, 0}));
}

CaseSize FunctionTest::leastDrawn(const std::vector<double>& numbers) const
{
    return larger(contract.leastDrawn, leastAccepted(numbers));
}

CaseSize FunctionTest::leastEffective(const std::vector<double>& numbers) const
{
    return larger(larger(contract.leastDrawn, contract.least), windowOf(numbers));
}

static bool refusesSecondSize(const Argument& a, double number, double size)
{
    return (number < 1 && !a.isByPowerOfTwo) || (a.mustNotExceed && number > size) || (a.mustReach && number < size);
}

bool FunctionTest::refuses(const std::vector<double>& numbers) const
{
    const CaseSize least = leastAccepted(numbers);
    const auto number = [&](Role role, double otherwise) { return numberOf(*this, role, numbers, otherwise); };
    const double width = number(Role::width, least.width), height = number(Role::height, least.height);
    bool isWrong = width < least.width || height < least.height;
    if (contract.refusesOtherSizes)
        isWrong |= std::fmod(width, contract.unit.width) != 0 || std::fmod(height, contract.unit.height) != 0;
    const auto isPower = [&](double size) {
        return size <= contract.largestPower && std::has_single_bit(static_cast<uint32_t>(size));
    };
    if (contract.largestPower)
        isWrong |= !isPower(width) || !isPower(height);
    for (size_t i = 0; i < arguments.size(); i++) {
        const Argument& a = arguments[i];
        isWrong |=
            a.role == Role::scalar && std::find(a.refused.begin(), a.refused.end(), numbers[i]) != a.refused.end();
        isWrong |= a.role == Role::secondWidth && refusesSecondSize(a, numbers[i], width);
        isWrong |= a.role == Role::secondHeight && refusesSecondSize(a, numbers[i], height);
    }
    if (has(*this, Role::left))
        isWrong |= across(*this, numbers).length < 1 || across(*this, numbers).end() > number(Role::width, UINT32_MAX);
    if (has(*this, Role::top))
        isWrong |= down(*this, numbers).length < 1 ||
                   (has(*this, Role::height) && down(*this, numbers).end() > number(Role::height, 0));
    return isWrong;
}

std::vector<std::pair<size_t, double>> FunctionTest::wrongNumbers(const std::vector<double>& numbers, bool any) const
{
    const CaseSize least = leastAccepted(numbers);
    const Interval columns = across(*this, numbers), rows = down(*this, numbers);
    const double width = numberOf(*this, Role::width, numbers, columns.end());
    const double height = numberOf(*this, Role::height, numbers, rows.end());
    const auto hasImages = [&](const std::vector<double>& changed) {
        const CaseSizes sizes = sizesFor({static_cast<uint32_t>(numberOf(*this, Role::width, changed, columns.end())),
                                          static_cast<uint32_t>(numberOf(*this, Role::height, changed, rows.end()))},
                                         changed);
        return std::none_of(arguments.begin(), arguments.end(), [&](const Argument& a) {
            return a.isPicture() && (a.sizeIn(sizes).columns == 0 || a.sizeIn(sizes).rows == 0);
        });
    };
    std::vector<std::pair<size_t, double>> wrong;
    const auto tryNumbers = [&](size_t argument, const std::vector<double>& candidates) {
        for (const double number : candidates) {
            if (number < 0 && arguments[argument].role != Role::scalar)
                continue;
            std::vector<double> changed = numbers;
            changed[argument] = number;
            const bool isSize = arguments[argument].role != Role::scalar;
            const bool leavesImages = hasImages(changed) && (!isSize || (number > 0 && number < UINT32_MAX));
            if ((any || leavesImages) && refuses(changed))
                wrong.push_back({argument, number});
        }
    };
    const std::vector<double> tooLarge(contract.largestPower ? 1 : 0, 2.0 * contract.largestPower);
    for (size_t i = 0; i < arguments.size(); i++) {
        switch (arguments[i].role) {
        case Role::scalar:
            tryNumbers(i, arguments[i].refused);
            break;
        case Role::width:
            tryNumbers(i, {0, least.width - 1.0, width + 1});
            tryNumbers(i, tooLarge);
            break;
        case Role::height:
            tryNumbers(i, {0, least.height - 1.0, height + 1});
            tryNumbers(i, tooLarge);
            break;
        case Role::secondWidth:
            tryNumbers(i, {0, width - 1, width + 1});
            break;
        case Role::secondHeight:
            tryNumbers(i, {0, height - 1, height + 1});
            break;
        case Role::left:
            tryNumbers(i, {width - columns.length + 1, UINT32_MAX});
            break;
        case Role::top:
            tryNumbers(i, {height - rows.length + 1, UINT32_MAX});
            break;
        case Role::rectangleWidth:
            tryNumbers(i, {0, width - columns.begin + 1, UINT32_MAX});
            break;
        case Role::rectangleHeight:
            tryNumbers(i, {0, height - rows.begin + 1, UINT32_MAX});
            break;
        default:
            break;
        }
    }
    return wrong;
}

CaseSize FunctionTest::wholeUnits(CaseSize size) const
{
    const auto roundedUp = [](uint32_t number, uint32_t unit) { return (number + unit - 1) / unit * unit; };
    if (contract.largestPower)
        return {std::bit_ceil(size.width), std::bit_ceil(size.height)};
    return {roundedUp(size.width, contract.unit.width), roundedUp(size.height, contract.unit.height)};
}

bool FunctionTest::canRefuse() const
{
    std::vector<double> numbers;
    for (const Argument& a : arguments)
        numbers.push_back(a.choices.empty() ? a.low : a.choices[0]);
    setTypicalSizes(numbers, {64, 64});
    return !wrongNumbers(numbers, false).empty() ||
           std::any_of(arguments.begin(), arguments.end(),
                       [](const Argument& a) { return !a.refusedElements.empty(); });
}

int64_t RandomBits::between(int64_t low, int64_t high)
{
    const uint64_t count = static_cast<uint64_t>(high - low) + 1;
    return low + static_cast<int64_t>(next() * count >> 32);
}

uint32_t RandomBits::floatBits()
{
    const uint32_t bits = next();
    const auto exponent = static_cast<uint32_t>(between(117, 137));
    return (bits & 0x807FFFFFu) | exponent << 23;
}

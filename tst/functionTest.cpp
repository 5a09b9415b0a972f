#include "functionTest.h"

#include <algorithm>
#include <cmath>

using Role = Argument::Role;

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

ImageSize Argument::sizeIn(const CaseSizes& sizes) const
{
    if (fixedSize)
        return {fixedSize, 1};
    if (isMeasured())
        return measure.size(sizes);
    if (isTransposed)
        return {sizes.picture.rows, sizes.picture.columns};
    const auto samples = [](uint64_t pixels, uint32_t shift) { return (pixels + (1u << shift) - 1) >> shift; };
    return {samples(sizes.picture.columns, xShift), samples(sizes.picture.rows, yShift)};
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

CaseSizes FunctionTest::sizesFor(CaseSize picture, const std::vector<double>& numbers) const
{
    CaseSizes sizes{.picture = {picture.width, picture.height}, .window = windowOf(numbers)};
    for (size_t i = 0; i < arguments.size(); i++) {
        if (arguments[i].role == Role::secondWidth)
            sizes.second.width = static_cast<uint32_t>(numbers[i]);
        else if (arguments[i].role == Role::secondHeight)
            sizes.second.height = static_cast<uint32_t>(numbers[i]);
    }
    return sizes;
}

// How a second size is drawn for a size of the case.
struct SecondSizes
{
    int64_t least, most, typical;

    SecondSizes(const Argument& a, CaseSize picture)
    {
        const double size = a.role == Role::secondWidth ? picture.width : picture.height;
        const auto part = [=](double times, int64_t from) {
            return std::clamp<int64_t>(std::llround(times * size), from, UINT32_MAX);
        };
        least = part(a.leastPart, 1);
        most = part(a.mostPart, least);
        typical = part(a.typicalPart, least);
    }
    // The ends of the range, and the size of the case, more often than chance would have it.
    double draw(int64_t size, RandomBits& random) const
    {
        const int64_t way = random.between(0, 7);
        return static_cast<double>(way == 0   ? least
                                   : way == 1 ? most
                                   : way == 2 ? std::clamp(size, least, most)
                                              : random.between(least, most));
    }
};

void FunctionTest::drawSizes(std::vector<double>& numbers, CaseSize size, RandomBits& random) const
{
    setSize(numbers, size);
    for (size_t i = 0; i < arguments.size(); i++)
        if (arguments[i].isSecondSize())
            numbers[i] = SecondSizes(arguments[i], size)
                             .draw(arguments[i].role == Role::secondWidth ? size.width : size.height, random);
}

void FunctionTest::setTypicalSizes(std::vector<double>& numbers, CaseSize size) const
{
    setSize(numbers, size);
    for (size_t i = 0; i < arguments.size(); i++)
        if (arguments[i].isSecondSize())
            numbers[i] = static_cast<double>(SecondSizes(arguments[i], size).typical);
}

static CaseSize larger(CaseSize a, CaseSize b)
{
    return {std::max(a.width, b.width), std::max(a.height, b.height)};
}

CaseSize FunctionTest::leastAccepted(const std::vector<double>& numbers) const
{
    return contract.takesSmallPictures ? contract.least : larger(contract.least, givenWindow(*this, numbers, {1, 1}));
}

CaseSize FunctionTest::leastEffective(const std::vector<double>& numbers) const
{
    return larger(contract.least, windowOf(numbers));
}

// The number of the first argument of the role; 1 without one.
static double numberOf(const FunctionTest& test, Role role, const std::vector<double>& numbers)
{
    for (size_t i = 0; i < test.arguments.size(); i++)
        if (test.arguments[i].role == role)
            return numbers[i];
    return 1;
}

bool FunctionTest::refuses(const std::vector<double>& numbers) const
{
    const CaseSize least = leastAccepted(numbers);
    const double width = numberOf(*this, Role::width, numbers), height = numberOf(*this, Role::height, numbers);
    const auto isWrong = [&](const Argument& a, double number) {
        if (a.role == Role::width || a.role == Role::height)
            return number < std::max(1u, a.role == Role::width ? least.width : least.height);
        if (!a.isSecondSize())
            return std::find(a.refused.begin(), a.refused.end(), number) != a.refused.end();
        const double size = a.role == Role::secondWidth ? width : height;
        return number < 1 || (a.mustNotExceed && number > size) || (a.mustReach && number < size);
    };
    for (size_t i = 0; i < arguments.size(); i++)
        if (isWrong(arguments[i], numbers[i]))
            return true;
    return false;
}

std::vector<std::pair<size_t, double>> FunctionTest::wrongNumbers(const std::vector<double>& numbers,
                                                                  bool sizesOf0) const
{
    const CaseSize least = leastAccepted(numbers);
    const double width = numberOf(*this, Role::width, numbers), height = numberOf(*this, Role::height, numbers);
    std::vector<std::pair<size_t, double>> wrong;
    const auto tryNumber = [&](size_t argument, double number) {
        std::vector<double> changed = numbers;
        changed[argument] = number;
        if (refuses(changed))
            wrong.push_back({argument, number});
    };
    for (size_t i = 0; i < arguments.size(); i++) {
        const Argument& a = arguments[i];
        for (const double number : a.refused)
            tryNumber(i, number);
        const bool isSize = a.role == Role::width || a.role == Role::height || a.isSecondSize();
        if (isSize && sizesOf0)
            tryNumber(i, 0);
        if (a.role == Role::width && least.width > 1)
            tryNumber(i, least.width - 1);
        if (a.role == Role::height && least.height > 1)
            tryNumber(i, least.height - 1);
        if (a.isSecondSize()) {
            const double size = a.role == Role::secondWidth ? width : height;
            tryNumber(i, size + 1);
            if (size > 1)
                tryNumber(i, size - 1);
        }
    }
    return wrong;
}

bool FunctionTest::canRefuse() const
{
    std::vector<double> numbers;
    for (const Argument& a : arguments)
        numbers.push_back(a.choices.empty() ? a.low : a.choices[0]);
    setTypicalSizes(numbers, {64, 64});
    return !wrongNumbers(numbers, false).empty();
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

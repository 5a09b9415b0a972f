#include "functionTest.h"

#include <algorithm>

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
    return {.picture = {picture.width, picture.height}, .window = windowOf(numbers)};
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

bool FunctionTest::canRefuse() const
{
    return contract.least.width > 1 || contract.least.height > 1 ||
           std::any_of(arguments.begin(), arguments.end(), [](const Argument& a) { return !a.refused.empty(); });
}

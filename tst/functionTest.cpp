#include "functionTest.h"

#include <algorithm>

ImageSize Argument::sizeIn(CaseSize picture) const
{
    if (fixedSize)
        return {fixedSize, 1};
    if (isTransposed)
        return {picture.height, picture.width};
    const auto samples = [](uint64_t pixels, uint32_t shift) { return (pixels + (1u << shift) - 1) >> shift; };
    return {samples(picture.width, xShift), samples(picture.height, yShift)};
}

ImageSize Argument::sizeIn(CaseSize picture, CaseSize window) const
{
    if (hasWindowWidth || hasWindowHeight)
        return {uint64_t{hasWindowWidth ? window.width : 1} * (hasWindowHeight ? window.height : 1), 1};
    const auto inside = [](uint64_t whole, uint32_t ofWindow) {
        return whole - std::min(whole, uint64_t{std::max(ofWindow, 1u)} - 1);
    };
    const ImageSize size = sizeIn(picture);
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

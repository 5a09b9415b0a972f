#include "functionTest.h"

#include "testCase.h"

std::vector<size_t> FunctionTest::imagesOfStride(size_t index) const
{
    std::vector<size_t> images;
    for (size_t i = index; i-- > 0 && arguments[i].role != Argument::Role::stride;)
        if (arguments[i].role == Argument::Role::alias || (arguments[i].isImage() && arguments[i].fixedSize == 0))
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

void* argumentPointer(const TestCase& testCase, size_t index)
{
    return testCase.pointer(index);
}

double argumentNumber(const TestCase& testCase, size_t index)
{
    return testCase.number(index);
}

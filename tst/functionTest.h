// What a test needs to know about a function: its name and, argument by argument, what to pass. A function costs one
// entry:
//
//     RVK_TEST(rvkAbsDiffu8, src, src, width, height, stride, dst, stride)
//
// Element types come from the function's own declaration. From the entry follow the columns of its control scripts, the
// vectors that the data generator makes, random cases, profiling and the comparison.
#pragma once

#include "element.h"

#include <ravik/types.h>

#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

class TestCase;

// What a call gave back: the status of a status function and the number of a counting one.
struct Outcome
{
    int32_t status = RAVIK_SUCCESS;
    uint32_t count = 0;

    bool operator==(const Outcome&) const = default;
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
        area,   // width x height
        stride, // in bytes, of the images listed since the previous stride
        scalar
    };

    Role role;
    Element element = Element::u8; // of images, values and scalars
    uint32_t channels = 1;
    bool isTransposed = false;
    uint32_t fixedSize = 0; // elements in one row, whatever the case; 0: as large as the case
    uint32_t alignment = 0; // bytes that the address must be a multiple of; 0: of an element
    bool isMask = false;    // half of the elements are 0
    size_t aliasOf = 0;
    double low = 0, high = 0;      // of a scalar
    std::vector<double> choices{}; // of a scalar, instead of a range

    Argument ofChannels(uint32_t count) const
    {
        return changed([=](Argument& a) { a.channels = count; });
    }
    Argument transposed() const
    {
        return changed([](Argument& a) { a.isTransposed = true; });
    }
    Argument ofSize(uint32_t elements) const
    {
        return changed([=](Argument& a) { a.fixedSize = elements; });
    }
    Argument alignedTo(uint32_t bytes) const
    {
        return changed([=](Argument& a) { a.alignment = bytes; });
    }

    bool isImage() const
    {
        return role == Role::source || role == Role::destination || role == Role::updated || role == Role::value;
    }
    bool isInput() const { return role == Role::source || role == Role::updated || role == Role::scalar; }
    bool isOutput() const { return role == Role::destination || role == Role::updated || role == Role::value; }

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
inline const Argument width{.role = Argument::Role::width};
inline const Argument height{.role = Argument::Role::height};
inline const Argument area{.role = Argument::Role::area};
inline const Argument stride{.role = Argument::Role::stride};
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
// What policy arguments take; the last is refused by the function.
inline const Argument policy = oneOf({RAVIK_POLICY_SATURATE, RAVIK_POLICY_WRAP, 2});
} // namespace arguments

struct FunctionTest
{
    std::string name;      // of the test: the function's, or that of one of its variants
    std::string tableName; // the function's name in the test table
    std::vector<Argument> arguments;
    bool hasStatus = false;
    bool hasCount = false;
    float tolerance = 0;         // that the test table gets
    uint32_t loopMultiplier = 1; // calls per profiling sample, for functions that the clock cannot see
    // The call of the function with a case's arguments, ready to be made and timed.
    std::function<std::function<Outcome()>(const TestCase&)> bind;

    // The images whose stride the argument at `index` gives.
    std::vector<size_t> imagesOfStride(size_t index) const;
    // The stride argument of an image; npos when its rows are packed.
    size_t strideOfImage(size_t index) const;
    static constexpr size_t npos = static_cast<size_t>(-1);

    FunctionTest repeated(uint32_t calls) &&
    {
        loopMultiplier = calls;
        return std::move(*this);
    }
};

// The value of an argument for the call, and the type of a case's memory.
void* argumentPointer(const TestCase& testCase, size_t index);
double argumentNumber(const TestCase& testCase, size_t index);

template <class Parameter>
Parameter argumentAs(const TestCase& testCase, size_t index)
{
    if constexpr (std::is_pointer_v<Parameter>)
        return static_cast<Parameter>(argumentPointer(testCase, index));
    else
        return static_cast<Parameter>(argumentNumber(testCase, index));
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
        if (argument.role == Role::scalar) {
            argument.element = elementOf<Parameter>();
            if (argument.choices.empty() && argument.low == argument.high) {
                constexpr bool isInteger = std::is_integral_v<Parameter>;
                argument.low = isInteger ? static_cast<double>(std::numeric_limits<Parameter>::lowest()) : -1000.0;
                argument.high = isInteger ? static_cast<double>(std::numeric_limits<Parameter>::max()) : 1000.0;
            }
        }
    }
    return argument;
}

template <class Result, class... Parameters>
FunctionTest describe(const char* name, const char* tableName, Result (*function)(Parameters...),
                      const Argument (&given)[sizeof...(Parameters)])
{
    return [&]<size_t... I>(std::index_sequence<I...>)
    {
        FunctionTest test{.name = name,
                          .tableName = tableName,
                          .arguments = {completed<Parameters>(given[I])...},
                          .hasStatus = std::is_same_v<Result, rvkStatus>,
                          .hasCount = std::is_same_v<Result, uint32_t>,
                          .bind = {}};
        test.bind = [function](const TestCase& testCase) -> std::function<Outcome()> {
            return [function, values = std::tuple(argumentAs<Parameters>(testCase, I)...)] {
                Outcome outcome;
                if constexpr (std::is_void_v<Result>)
                    std::apply(function, values);
                else if constexpr (std::is_same_v<Result, rvkStatus>)
                    outcome.status = std::apply(function, values);
                else
                    outcome.count = std::apply(function, values);
                return outcome;
            };
        };
        return test;
    }
    (std::index_sequence_for<Parameters...>());
}

#define RVK_TEST(function, ...) describe(#function, #function, function, {__VA_ARGS__})
// A variant of a function: tested under a name of its own, by the function's line of the test table.
#define RVK_TEST_AS(name, tableName, function, ...) describe(name, tableName, function, {__VA_ARGS__})

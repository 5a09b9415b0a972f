#include "functionsPage.h"

#include "groups.h"

#include "functions.h"

#include <algorithm>
#include <iterator>

namespace {

using Role = Argument::Role;
using Tests = std::vector<const FunctionTest*>; // of one function, all its variants

const char kHead[] =
    R"(# Functions

Made by `ravikTestData --functions` from the entries in `tst/ravikTest*.cpp`; a test holds the two together.

- **types**: the elements of the images that are read, and of those that are written; `u8 x 3` has three channels, `u8 per
  2x2` one sample for so many pixels, `u8 of 1/2` half a picture's width and height, `of 2 x 1` twice its width, `of + 1`
  a column and a row more than it has, `of a second size` that of an argument, `of a rectangle +
  1` a column and a row more than that, `list` as much as the call finds. What else a function takes or returns is in its header.
- **border**: the window, and what becomes of the pixels whose window reaches beyond the picture: `kept` leaves the
  destination as it was, `existing` takes the pixels that exist, `nearest` the nearest pixel for one outside, `zero` 0
  for it, `copied` the source's pixel, `unwritten` means that the destination has no such pixels, `choice` that an argument
  says it.
- **in place**: `yes` where the destination may be a source of the same elements and stride, `refused` where the function
  sees to it that it is not, `no` where images must not overlap. Arguments may decide between two of them.
- **vectors**: whether there is a vector implementation.
- **DSP**: what a call must have to run there: pictures and strides that are multiples of so many bytes, a width and
  height, and so many pixels. Without a rule every call runs there, where the companion library has the function.
)";

std::string elementName(Element element)
{
    static constexpr const char* names[] = {"u8", "s8", "u16", "s16", "u32", "s32", "u64", "f32"};
    return names[static_cast<size_t>(element)];
}

std::string typeName(const FunctionTest& test, const Argument& argument)
{
    const Argument& image = argument.role == Role::alias ? test.arguments[argument.aliasOf] : argument;
    std::string name = elementName(image.element);
    if (image.channels > 1)
        name += " x " + std::to_string(image.channels);
    if (image.columns)
        name += image.isTransposed ? " per point" : " points";
    if (image.isMeasured())
        name += " " + image.measure.name;
    if (image.isSampled())
        name += " per " + std::to_string(1u << image.xShift) + "x" + std::to_string(1u << image.yShift);
    if (image.isMask)
        name += " mask";
    else if (image.hasWindowWidth || image.hasWindowHeight)
        name += " weights";
    else if (image.isList)
        name += " list";
    else if (image.fixedSize > 1)
        name += " x " + std::to_string(image.fixedSize);
    return name;
}

// Joins what is not empty.
std::string joined(const std::vector<std::string>& parts, const char* between)
{
    std::string all;
    for (const std::string& part : parts)
        if (!part.empty())
            all += (all.empty() ? "" : between) + part;
    return all;
}

template <class Condition>
bool has(const FunctionTest& test, Condition condition)
{
    return std::any_of(test.arguments.begin(), test.arguments.end(), condition);
}

std::string types(const FunctionTest& test)
{
    const bool isAliased = has(test, [](const Argument& a) { return a.role == Role::alias; });
    std::vector<std::string> inputs, outputs;
    for (const Argument& argument : test.arguments) {
        const bool isRead = argument.role == Role::updated ? !isAliased : argument.role == Role::source;
        if (isRead || argument.role == Role::alias)
            inputs.push_back(typeName(test, argument));
        if (argument.isResult())
            outputs.push_back(typeName(test, argument));
    }
    if (test.hasCount)
        outputs.push_back("count");
    return joined(inputs, ", ") + " to " + joined(outputs, ", ");
}

bool takesWindow(const FunctionTest& test)
{
    return test.contract.atBorder != Border::none &&
           has(test, [](const Argument& a) { return a.isWindowWidth || a.isWindowHeight; });
}

std::string border(const FunctionTest& test)
{
    static constexpr const char* names[] = {"", "kept", "copied", "existing", "zero", "nearest", "unwritten", "choice"};
    return names[static_cast<size_t>(test.contract.atBorder)];
}

// What the variants of a function say, each thing once.
template <class Say>
std::string each(const Tests& variants, Say say)
{
    std::vector<std::string> all;
    for (const FunctionTest* test : variants)
        if (std::find(all.begin(), all.end(), say(*test)) == all.end())
            all.push_back(say(*test));
    return joined(all, " or ");
}

// Whether a null pointer takes the place of an image of the other variant.
bool leavesOutImage(const FunctionTest& test, const FunctionTest& other)
{
    return !std::equal(test.arguments.begin(), test.arguments.end(), other.arguments.begin(), other.arguments.end(),
                       [](const Argument& a, const Argument& b) { return a.role != Role::null || !b.isImage(); });
}

std::string typesOf(const Tests& variants)
{
    Tests whole;
    std::copy_if(variants.begin(), variants.end(), std::back_inserter(whole),
                 [&](const FunctionTest* test) { return !leavesOutImage(*test, *variants[0]); });
    return each(whole, types);
}

std::string window(const FunctionTest& test)
{
    const std::string size = std::to_string(test.contract.window);
    return takesWindow(test) ? "window by argument" : test.contract.window > 1 ? size + "x" + size : "";
}

std::string inPlace(const FunctionTest& test)
{
    const bool isAliased = has(test, [](const Argument& a) { return a.role == Role::alias; });
    if (isAliased || test.contract.dstIsSrc == InPlace::allowed)
        return "yes";
    if (!has(test, [](const Argument& a) { return a.role == Role::destination && a.isPicture(); }))
        return ""; // there is no picture to make of another
    return test.contract.dstIsSrc == InPlace::refused ? "refused" : "no";
}

constexpr const char* kWithVectors[] = {
#define RVK_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(#name, )
#include "functionList.inc"
#undef RVK_FUNCTION
#define RVK_INTERNAL_FUNCTION(name, reference, vecta, remote) RVK_WHEN_##vecta(#name, )
#include "internalFunctionList.inc"
#undef RVK_INTERNAL_FUNCTION
};

bool hasVectors(const std::string& function)
{
    return std::any_of(std::begin(kWithVectors), std::end(kWithVectors),
                       [&](const std::string& slot) { return slot == function || slot == function + "_v2"; });
}

std::string offload(const FunctionTest& test)
{
    if (!test.contract.dspRule)
        return "";
    const OffloadRule& rule = *test.contract.dspRule;
    const auto when = [](bool holds, const char* head, uint32_t number, const char* tail = "") {
        return holds ? head + std::to_string(number) + tail : std::string();
    };
    const uint32_t least = std::max(rule.leastHeight, test.contract.window);
    return joined({when(rule.alignment > 1, "multiples of ", rule.alignment),
                   when(rule.outputAlignment, "outputs of ", rule.outputAlignment),
                   when(rule.strideMultiple > 1, "stride of ", rule.strideMultiple),
                   when(rule.widthMultiple > 1, "width of ", rule.widthMultiple),
                   when(rule.heightMultiple > 1, "height of ", rule.heightMultiple),
                   when(rule.leastWidth > 1, "", rule.leastWidth, " wide"), when(least > 1, "", least, " high"),
                   takesWindow(test) ? "as high as the window" : "",
                   when(true, "", (OffloadRule::kLeastElements - 1) / rule.elementsPerPixel + 1, " pixels or more")},
                  ", ");
}

std::string row(const Tests& variants)
{
    return "| `" + variants[0]->function + "` | " + typesOf(variants) + " | " +
           joined({each(variants, window), each(variants, border)}, ", ") + " | " + each(variants, inPlace) + " | " +
           (hasVectors(variants[0]->function) ? "yes" : "no") + " | " + offload(*variants[0]) + " |\n";
}

// The variants of each function of a group, in its order.
std::vector<Tests> functionsOf(const FunctionGroup& group)
{
    std::vector<Tests> functions;
    for (const FunctionTest& test : group.functions) {
        const auto known = std::find_if(functions.begin(), functions.end(),
                                        [&](const Tests& tests) { return tests[0]->function == test.function; });
        if (known == functions.end())
            functions.push_back({&test});
        else
            known->push_back(&test);
    }
    return functions;
}

} // namespace

std::string functionsPage()
{
    std::string page = kHead;
    for (const TestGroup& group : testGroups()) {
        if (!group.functions)
            continue;
        page += std::string("\n## ") + group.keyword + "\n\n";
        page += "| function | types | border | in place | vectors | DSP |\n|---|---|---|---|---|---|\n";
        for (const Tests& variants : functionsOf(group.functions()))
            page += row(variants);
    }
    return page;
}

#include "pythonTable.h"

#include "groups.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace {

using Role = Argument::Role;
using Words = std::vector<std::string>;

const char kHead[] =
    R"(# What the declarations do not say: a line for each function, a word for each of its parameters.
#
# Made by `ravikTestData --python` from the entries in tst/ravikTest*.cpp; a test holds the two together. What they
# cannot say is in structures.txt, which also says what the words mean.
)";

// The picture of the examples.
constexpr CaseSize kExample{48, 40};

// A number of the case that formulas are made of, and what Python calls it.
struct Base
{
    std::string text;
    std::function<uint64_t(const CaseSizes&)> value;
};

// A size that follows from the case.
struct Formula
{
    std::string text;
    std::function<uint64_t(const CaseSizes&)> value;
};

std::string parameter(size_t index)
{
    return "p" + std::to_string(index);
}

template <class Condition>
size_t find(const FunctionTest& test, Condition condition)
{
    const auto found = std::find_if(test.arguments.begin(), test.arguments.end(), condition);
    return found == test.arguments.end() ? FunctionTest::npos : static_cast<size_t>(found - test.arguments.begin());
}

size_t find(const FunctionTest& test, Role role)
{
    return find(test, [=](const Argument& a) { return a.role == role; });
}

bool has(const FunctionTest& test, Role role)
{
    return find(test, role) != FunctionTest::npos;
}

// How far a rectangle is wide or high.
std::string lengthOf(const FunctionTest& test, Role begin, Role length)
{
    return has(test, length) ? parameter(find(test, length)) : std::to_string(test.arguments[find(test, begin)].span);
}

// How far the picture reaches across or down: a rectangle in it says so where no argument does.
std::string extent(const FunctionTest& test, Role size, const char* otherwise, Role begin, Role length)
{
    if (has(test, size) || !has(test, begin))
        return otherwise;
    return parameter(find(test, begin)) + "+" + lengthOf(test, begin, length);
}

std::string windowSize(const FunctionTest& test, bool Argument::*isSize)
{
    const size_t index = find(test, [=](const Argument& a) { return a.*isSize; });
    return index == FunctionTest::npos ? std::to_string(test.contract.window) : parameter(index);
}

// All formulas of the sizes of a function's images.
std::vector<Formula> formulas(const FunctionTest& test)
{
    const Base across{extent(test, Role::width, "w", Role::left, Role::rectangleWidth),
                      [](const CaseSizes& s) { return s.picture.columns; }};
    const Base down{extent(test, Role::height, "h", Role::top, Role::rectangleHeight),
                    [](const CaseSizes& s) { return s.picture.rows; }};
    const Base windowAcross{windowSize(test, &Argument::isWindowWidth),
                            [](const CaseSizes& s) { return uint64_t{s.window.width}; }};
    const Base windowDown{windowSize(test, &Argument::isWindowHeight),
                          [](const CaseSizes& s) { return uint64_t{s.window.height}; }};
    std::vector<Base> bases{across,
                            down,
                            {"W", [](const CaseSizes& s) { return uint64_t{s.second.width}; }},
                            {"H", [](const CaseSizes& s) { return uint64_t{s.second.height}; }},
                            windowAcross,
                            windowDown};
    if (has(test, Role::left))
        bases.push_back({lengthOf(test, Role::left, Role::rectangleWidth),
                         [](const CaseSizes& s) { return uint64_t{s.rectangle.width}; }});
    if (has(test, Role::top))
        bases.push_back({lengthOf(test, Role::top, Role::rectangleHeight),
                         [](const CaseSizes& s) { return uint64_t{s.rectangle.height}; }});

    std::vector<Formula> all;
    for (const Base& base : bases) {
        const auto add = [&](const std::string& before, const std::string& after, uint64_t (*of)(uint64_t)) {
            all.push_back({before + base.text + after, [=](const CaseSizes& s) { return of(base.value(s)); }});
        };
        add("", "", [](uint64_t n) { return n; });
        add("", "+1", [](uint64_t n) { return n + 1; });
        add("2*", "", [](uint64_t n) { return 2 * n; });
        add("256*", "", [](uint64_t n) { return 256 * n; });
        add("", "//2", [](uint64_t n) { return n / 2; });
        add("", "//4", [](uint64_t n) { return n / 4; });
        add("", "//3*2", [](uint64_t n) { return n / 3 * 2; });
        add("(", "+1)//2", [](uint64_t n) { return (n + 1) / 2; });
        add("(", "+7)//8", [](uint64_t n) { return (n + 7) / 8; });
    }
    const auto whole = [](const Base& size, const Base& window) {
        return Formula{"max(" + size.text + "-" + window.text + "+1,0)", [=](const CaseSizes& s) {
                           return size.value(s) - std::min(size.value(s), window.value(s) - 1);
                       }};
    };
    const auto parts = [](const Base& size, const Base& window) {
        return Formula{"-(-" + size.text + "//max(" + window.text + ",1))",
                       [=](const CaseSizes& s) { return (size.value(s) + window.value(s) - 1) / window.value(s); }};
    };
    const auto product = [](const Formula& a, const Formula& b) {
        return Formula{a.text + "*" + b.text, [=](const CaseSizes& s) { return a.value(s) * b.value(s); }};
    };
    const Formula blocksAcross = parts(across, windowAcross), blocksDown = parts(down, windowDown);
    all.insert(all.end(), {whole(across, windowAcross), whole(down, windowDown), blocksAcross, blocksDown,
                           product(blocksAcross, blocksDown),
                           product({windowAcross.text, windowAcross.value}, {windowDown.text, windowDown.value})});
    return all;
}

// Sizes that tell formulas apart.
std::vector<CaseSizes> probes(const FunctionTest& test)
{
    std::vector<CaseSizes> all;
    for (uint32_t i = 0; i < 24; i++) {
        CaseSizes sizes{{1009 + 7 * i, 2003 + 11 * i},
                        {401 + 5 * i, 601 + 3 * i},
                        {211 + 13 * i, 307 + i},
                        {test.contract.window, test.contract.window}};
        const auto isArgument = [&](bool Argument::*isSize) {
            return find(test, [=](const Argument& a) { return a.*isSize; }) != FunctionTest::npos;
        };
        if (isArgument(&Argument::isWindowWidth))
            sizes.window.width = 5 + i;
        if (isArgument(&Argument::isWindowHeight))
            sizes.window.height = 37 + 3 * i;
        all.push_back(sizes);
    }
    return all;
}

// The formula of a size; empty when there is none.
template <class Size>
std::string formulaOf(const FunctionTest& test, Size size)
{
    const std::vector<CaseSizes> cases = probes(test);
    const auto fits = [&](const auto& value) {
        return std::all_of(cases.begin(), cases.end(), [&](const CaseSizes& s) { return size(s) == value(s); });
    };
    if (fits([&](const CaseSizes&) { return size(cases[0]); }))
        return std::to_string(size(cases[0]));
    for (const Formula& formula : formulas(test))
        if (fits(formula.value))
            return formula.text;
    return "";
}

std::string number(double value)
{
    char text[32];
    snprintf(text, sizeof text, "%.9g", value);
    return text;
}

// Numbers that make sense, as users would pass them.
std::vector<double> exampleNumbers(const FunctionTest& test)
{
    std::vector<double> numbers;
    for (const Argument& a : test.arguments) {
        const double inside = a.low <= 3 && 3 <= a.high ? 3 : a.low + 0.75 * (a.high - a.low);
        numbers.push_back(!a.choices.empty()          ? a.choices[0]
                          : a.isCapacity              ? a.high
                          : a.element == Element::f32 ? inside
                                                      : std::floor(inside));
    }
    test.setTypicalSizes(numbers, kExample);
    return numbers;
}

std::string exampleElements(const Argument& a)
{
    std::string all;
    for (size_t i = 0; i < a.fixedSize && !a.ranges.empty(); i++)
        all += (i ? "," : "@") + number(a.typical.empty() ? a.rangeOf(i).at(0.5, kExample) : a.typical[i]);
    return all;
}

// Whether a call may leave elements of its destination as they were.
bool keepsSome(const FunctionTest& test)
{
    const Contract& contract = test.contract;
    return contract.atBorder == Border::kept || contract.atBorder == Border::chosen || contract.writesNothing ||
           has(test, Role::secondWidth);
}

// What to pass for an image; empty when there is no word for it.
std::string imageWord(const FunctionTest& test, size_t index)
{
    const Argument& a = test.arguments[index];
    const bool isAlsoRead = find(test, [=](const Argument& other) {
                                return other.role == Role::alias && other.aliasOf == index;
                            }) != FunctionTest::npos;
    const bool isWithin =
        a.role == Role::source && a.isPicture() && !a.isMeasured() &&
        ((has(test, Role::left) && !has(test, Role::width)) || (has(test, Role::top) && !has(test, Role::height)));
    std::string word = isWithin                                 ? "within"
                       : a.role == Role::source                 ? "in"
                       : a.role == Role::updated && !isAlsoRead ? "update"
                       : a.isPicture() && keepsSome(test)       ? "keep"
                                                                : "out";
    if (has(test, Role::area) && a.isPicture())
        return a.isMeasured() ? "" : word + ":n";
    const std::string columns = formulaOf(test, [&](const CaseSizes& s) { return a.usedIn(s).columns; });
    const std::string rows = formulaOf(test, [&](const CaseSizes& s) { return a.usedIn(s).rows; });
    if (columns.empty() || rows.empty() || a.columns)
        return "";
    word += ":" + columns;
    if (!a.fixedSize)
        word += ":" + rows;
    if (a.channels > 1)
        word += ":" + std::to_string(a.channels);
    return word + (a.mayBeNull ? "?" : "") + exampleElements(a);
}

size_t capacityOf(const FunctionTest& test)
{
    return find(test, [](const Argument& a) { return a.isCapacity && a.role == Role::scalar; });
}

// What to pass for a list, or for memory that is proportional to the lists.
std::string listWord(const FunctionTest& test, size_t index)
{
    const Argument& a = test.arguments[index];
    const size_t capacity = capacityOf(test);
    const auto most = static_cast<uint64_t>(test.arguments[capacity].high);
    if (a.isScratch) {
        CaseSizes none{};
        return "scratch:" + std::to_string(a.sizeIn(none).columns / most) + "*" + parameter(capacity) + "+h";
    }
    return "list:" + std::to_string(a.fixedSize / most) + ":" + parameter(capacity) + ":" +
           parameter(find(test, Role::value));
}

std::string word(const FunctionTest& test, size_t index, const std::vector<double>& examples)
{
    const Argument& a = test.arguments[index];
    const bool hasLists = find(test, [](const Argument& other) { return other.isList; }) != FunctionTest::npos;
    switch (a.role) {
    case Role::width:
        return "w";
    case Role::height:
        return "h";
    case Role::area:
        return "n";
    case Role::secondWidth:
        return "W@" + number(examples[index]);
    case Role::secondHeight:
        return "H@" + number(examples[index]);
    case Role::stride:
        return "stride";
    case Role::value:
        return hasLists ? "count" : "value";
    case Role::null:
        return "null";
    case Role::alias: {
        Argument image = test.arguments[a.aliasOf];
        FunctionTest apart = test;
        image.role = Role::source;
        apart.arguments[index] = image;
        return imageWord(apart, index);
    }
    case Role::source:
    case Role::destination:
    case Role::updated:
        return a.isList || a.isScratch ? listWord(test, index) : imageWord(test, index);
    default:
        return "number@" + number(examples[index]);
    }
}

// The words of a test; none when there is an argument without one.
Words wordsOf(const FunctionTest& test)
{
    const auto count = [&](auto condition) {
        return std::count_if(test.arguments.begin(), test.arguments.end(), condition);
    };
    const auto lists = count([](const Argument& a) { return a.isList; });
    const auto capacities = count([](const Argument& a) { return a.isCapacity; });
    const auto values = count([](const Argument& a) { return a.role == Role::value; });
    const bool hasOtherLists = lists ? capacities != 1 || values != 1 : capacities != 0;
    if (test.adapter || hasOtherLists)
        return {};
    const std::vector<double> examples = exampleNumbers(test);
    Words words;
    for (size_t i = 0; i < test.arguments.size(); i++) {
        words.push_back(word(test, i, examples));
        if (words.back().empty())
            return {};
    }
    if (test.contract.dstIsSrc == InPlace::allowed)
        words.push_back("+inplace");
    if (test.returnsNumber)
        words.push_back("+number");
    return words;
}

// What holds for both words of an image, or a number: the more careful one. Empty when they say different things.
std::string merged(const std::string& a, const std::string& b)
{
    const auto isDestination = [](const std::string& word) {
        return word.starts_with("out:") || word.starts_with("keep:");
    };
    const auto sizes = [&](const std::string& word) {
        const std::string bare = word.substr(0, word.find_first_of("?@"));
        return isDestination(word) ? bare.substr(bare.find(':')) : bare;
    };
    const auto mayBeNull = [](const std::string& word) {
        return word == "null" || word.find('?') != std::string::npos;
    };
    const std::string& image = a == "null" || b.starts_with("keep:") ? b : a;
    if (a != "null" && b != "null" && sizes(a) != sizes(b))
        return "";
    return mayBeNull(image) || !(mayBeNull(a) || mayBeNull(b)) ? image : image + "?";
}

// What holds for both variants of a function: an image that one of them leaves out may be null. None when they differ.
Words merged(const Words& a, const Words& b)
{
    if (a.size() != b.size())
        return {};
    Words both;
    for (size_t i = 0; i < a.size(); i++) {
        both.push_back(merged(a[i], b[i]));
        if (both.back().empty())
            return {};
    }
    return both;
}

} // namespace

std::string pythonTable()
{
    std::map<std::string, Words> rows;
    for (const FunctionTest* test : allFunctions()) {
        const auto [row, isNew] = rows.try_emplace(test->function, wordsOf(*test));
        if (!isNew)
            row->second = merged(row->second, wordsOf(*test));
    }
    std::string table = kHead;
    for (const auto& [function, words] : rows) {
        if (words.empty())
            continue;
        table += function;
        for (const std::string& each : words)
            table += " " + each;
        table += "\n";
    }
    return table;
}

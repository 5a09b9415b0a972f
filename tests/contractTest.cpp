// What every function promises, proved for each function that a test group names, from its descriptor alone: bad
// arguments are refused and nothing is written, strides of 0 are packed rows, calls that do not suit a remote unit fall
// back, vector implementations equal the reference and stay within their images. A function needs no line here.
#include "groups.h"
#include "support/functionCall.h"
#include "support/implementations.h"
#include "support/logCapture.h"
#include "support/scarceMemory.h"

#include <cmath>
#include <csignal>
#include <deque>
#include <fstream>
#include <numeric>
#include <set>

using namespace test;

namespace {

using Role = Argument::Role;

// ---- functions and their cells --------------------------------------------------------------------------------------

void forEachFunction(const std::function<void(const FunctionTest&)>& action)
{
    for (const FunctionTest* function : allFunctions())
        action(*function);
}

// The rows of both lists, the public one first.
constexpr uint32_t kNoSlot = kPublicFunctions + kInternalFunctions;

template <class Action>
auto ofRow(uint32_t slot, Action action)
{
    return slot < kPublicFunctions ? action(static_cast<Slot>(slot))
                                   : action(static_cast<InternalSlot>(slot - kPublicFunctions));
}

uint32_t slotNamed(const std::string& name)
{
    for (uint32_t slot = 0; slot < kNoSlot; slot++)
        if (name == ofRow(slot, [](auto row) { return nameOf(row); }))
            return slot;
    return kNoSlot;
}

// The slot of a function, or of the form that it calls.
uint32_t slotOf(const FunctionTest& function)
{
    const uint32_t slot = slotNamed(function.function);
    return slot == kNoSlot ? slotNamed(function.function + "_v2") : slot;
}

Cell referenceOf(uint32_t slot)
{
    return ofRow(slot, [](auto row) { return referenceCellOf(row); });
}

std::vector<NamedCell> vectaCells(uint32_t slot)
{
    return ofRow(slot, [](auto row) { return vectaCellsOf(row); });
}

// ---- faults that end the process ------------------------------------------------------------------------------------

char currentCall[256];

void sayWhere(int signal)
{
    const char head[] = "fault in: ";
    if (write(STDERR_FILENO, head, sizeof head - 1) < 0 || write(STDERR_FILENO, currentCall, strlen(currentCall)) < 0 ||
        write(STDERR_FILENO, "\n", 1) < 0)
        _exit(1);
    ::signal(signal, SIG_DFL);
}

void setCurrent(const FunctionTest& function, const std::string& what)
{
    for (const int signal : {SIGSEGV, SIGBUS, SIGABRT})
        ::signal(signal, sayWhere);
    snprintf(currentCall, sizeof currentCall, "%s: %s", function.name.c_str(), what.c_str());
}

// ---- arguments ------------------------------------------------------------------------------------------------------

uint32_t number(const FunctionCall& call, size_t argument)
{
    return static_cast<uint32_t>(call.values.numbers[argument]);
}

// A picture somewhat larger than the least, all of its rows packed.
FunctionCall plainCall(const FunctionTest& function, SeededBits& bits, CaseSize more = {12, 5})
{
    FunctionCall call(function, bits);
    const CaseSize least = function.leastDrawn(call.values.numbers);
    call.draw({least.width + more.width, least.height + more.height}, {});
    return call;
}

struct Fault
{
    std::string what;
    CallValues values;
};

// Every way to make the call wrong that the descriptor knows.
class Faults
{
public:
    Faults(const FunctionTest& function, const FunctionCall& call) : m_function(function), m_call(call)
    {
        for (size_t i = 0; i < function.arguments.size(); i++)
            addForArgument(i, function.arguments[i]);
        for (const auto& [argument, number] : function.wrongNumbers(call.values.numbers, true))
            addNumber("argument", argument, number);
        addNoOutputAtAll();
        addSizesThatWrap();
        addTooManyPixels();
        addSharedMemory();
        addOverlaps();
    }
    Faults(const Faults&) = delete;
    const std::vector<Fault>& all() const { return m_all; }

private:
    template <class Change>
    void add(std::string what, Change change)
    {
        m_all.push_back({std::move(what), m_call.values});
        change(m_all.back().values);
    }
    void addNumber(std::string what, size_t argument, double number)
    {
        add(what + " " + std::to_string(argument) + " is " + std::to_string(number),
            [=](CallValues& v) { v.numbers[argument] = number; });
    }
    void addForArgument(size_t i, const Argument& a)
    {
        if (a.isImage() && !a.mayBeNull && !a.isVital)
            add("argument " + std::to_string(i) + " is null", [=](CallValues& v) { v.pointers[i] = nullptr; });
        for (const std::vector<double>& elements : a.refusedElements) {
            const auto& kept = m_elements.emplace_back(elements.begin(), elements.end());
            add("argument " + std::to_string(i) + " has bad elements",
                [&](CallValues& v) { v.pointers[i] = const_cast<float*>(kept.data()); });
        }
        if (a.alignment > sizeOf(a.element))
            add("argument " + std::to_string(i) + " is misaligned",
                [=](CallValues& v) { v.pointers[i] = static_cast<uint8_t*>(v.pointers[i]) + a.alignment / 2; });
        if (a.role == Role::stride && !a.mayOverlap && number(m_call, i) > 0)
            addNumber("stride", i, number(m_call, i) - 1); // rows are packed
        if (a.role == Role::stride && a.isWhole)
            addNumber("stride", i, number(m_call, i) + 1);
    }
    void addNoOutputAtAll()
    {
        add("all outputs are null", [&](CallValues& v) {
            for (size_t i = 0; i < m_function.arguments.size(); i++)
                if (m_function.arguments[i].isOutput())
                    v.pointers[i] = nullptr;
        });
        if (m_function.hasCount && std::all_of(m_function.arguments.begin(), m_function.arguments.end(),
                                               [](const Argument& a) { return !a.isOutput() || a.mayBeNull; }))
            m_all.pop_back();
    }
    bool has(Role role) const
    {
        return std::any_of(m_function.arguments.begin(), m_function.arguments.end(),
                           [=](const Argument& a) { return a.role == role; });
    }
    // A row of few bytes more than 2^32, with strides that hold what is left of it in 32 bits, or seem to hold it all.
    void addSizesThatWrap()
    {
        for (size_t i = 0; i < m_function.arguments.size(); i++)
            for (const Role wrong : {Role::width, Role::height, Role::secondWidth}) {
                const Argument& a = m_function.arguments[i];
                if (!a.isPicture() || a.isScratch || !has(wrong) || !rowWraps(a, wrong, UINT32_MAX))
                    continue;
                const double size = secondThatWraps(a, wrong);
                for (const double stride : {0.0, double{1} * UINT32_MAX, double{64}})
                    add("rows of argument " + std::to_string(i) + " wrap, strides are " + std::to_string(stride),
                        [&](CallValues& v) { setSizes(v, wrong, size, stride); });
            }
    }
    bool rowWraps(const Argument& a, Role changing, uint32_t size) const
    {
        CaseSize picture = m_call.size();
        CallValues values = m_call.values;
        if (changing == Role::secondWidth)
            setSizes(values, changing, size, 0);
        else
            (changing == Role::width ? picture.width : picture.height) = size;
        return a.usedIn(m_function.sizesFor(picture, values.numbers)).columns * a.pixelSize() > UINT32_MAX;
    }
    // The second one, so that there is something left of a row.
    uint32_t secondThatWraps(const Argument& a, Role changing) const
    {
        uint32_t fits = 1, wraps = UINT32_MAX;
        while (wraps - fits > 1) {
            const uint32_t between = fits + (wraps - fits) / 2;
            (rowWraps(a, changing, between) ? wraps : fits) = between;
        }
        return wraps == UINT32_MAX ? wraps : wraps + 1;
    }
    void setSizes(CallValues& v, Role role, double size, double stride) const
    {
        for (size_t i = 0; i < m_function.arguments.size(); i++) {
            if (m_function.arguments[i].role == role)
                v.numbers[i] = size;
            if (m_function.arguments[i].role == Role::stride)
                v.numbers[i] = stride;
        }
    }
    void addTooManyPixels()
    {
        const uint64_t most = m_function.contract.mostPixels;
        if (most == UINT64_MAX)
            return;
        add("too many pixels", [&](CallValues& v) {
            setSizes(v, Role::width, 65536, 0);
            setSizes(v, Role::height, static_cast<double>(most / 65536 + 1), 0);
        });
    }
    // Images that share a byte.
    void addOverlaps()
    {
        if (!m_function.contract.refusesOverlap)
            return;
        for (const FunctionCall::Block& out : m_call.blocks())
            for (const FunctionCall::Block& other : m_call.blocks()) {
                if (!m_function.arguments[out.argument].isOutput() || out.argument == other.argument)
                    continue;
                const std::string what = "argument " + std::to_string(out.argument);
                const size_t stride = m_function.strideOfImage(out.argument);
                add(what + " begins in another",
                    [&](CallValues& v) { v.pointers[out.argument] = other.data + other.bytes() - 1; });
                add(what + " ends in another",
                    [&](CallValues& v) { v.pointers[out.argument] = other.data - out.bytes() + 1; });
                if (m_function.contract.dstIsSrc == InPlace::allowed && stride != FunctionTest::npos)
                    add(what + " is another of another stride", [&](CallValues& v) {
                        v.pointers[out.argument] = other.data;
                        v.numbers[stride] += 1;
                    });
            }
    }
    // Two outputs at the same place; an output in the place of a source, where that is refused.
    void addSharedMemory()
    {
        const auto& arguments = m_function.arguments;
        bool isFirst = true;
        for (size_t out = 0; out < arguments.size(); out++) {
            if (arguments[out].role != Role::destination || !arguments[out].isPicture())
                continue;
            for (size_t other = 0; other < arguments.size(); other++) {
                const Argument& a = arguments[other];
                const bool isSource = a.role == Role::source && !a.isMask &&
                                      m_function.contract.dstIsSrc == InPlace::refused &&
                                      (isFirst || a.element == arguments[out].element);
                const bool isOutput = a.role == Role::destination && other > out && a.element == arguments[out].element;
                if (a.isPicture() && (isSource || isOutput))
                    add("argument " + std::to_string(out) + " is argument " + std::to_string(other),
                        [=](CallValues& v) { v.pointers[out] = v.pointers[other]; });
            }
            isFirst = false;
        }
    }

    const FunctionTest& m_function;
    const FunctionCall& m_call;
    std::vector<Fault> m_all;
    std::deque<std::vector<float>> m_elements; // that faults point to
};

size_t countRefusals(const FunctionTest& function)
{
    const std::string head = "6 ravik_lib_log: Assertion failed @" + function.function + ": ";
    return static_cast<size_t>(std::count_if(logLines.begin(), logLines.end(),
                                             [&](const std::string& line) { return line.starts_with(head); }));
}

bool isAccepted(const FunctionTest& function, const FunctionCall& call)
{
    clearLog();
    const Outcome outcome = call.call(function.entry);
    return outcome.status == RAVIK_SUCCESS && logLines.empty();
}

TEST(Contract, RefusesEveryBadArgumentAndWritesNothing)
{
    forEachFunction([](const FunctionTest& function) {
        SCOPED_TRACE(function.name);
        SeededBits bits(1);
        FunctionCall call = plainCall(function, bits);
        setCurrent(function, "good arguments");
        EXPECT_TRUE(isAccepted(function, call));
        Faults faults(function, call);
        for (const Fault& fault : faults.all()) {
            setCurrent(function, fault.what);
            call.values = fault.values;
            clearLog();
            const Outcome outcome = call.call(function.entry);
            EXPECT_TRUE(call.isUnchanged()) << fault.what << ": something was written";
            EXPECT_EQ(outcome.status == RAVIK_SUCCESS, !function.hasStatus) << fault.what;
            EXPECT_EQ(outcome.count, 0u) << fault.what;
            const size_t lines = function.logsRefusals();
            EXPECT_EQ(countRefusals(function), lines) << fault.what;
            EXPECT_EQ(logLines.size(), lines) << fault.what << (logLines.empty() ? "" : ": " + logLines.back());
        }
    });
}

// What the log quotes is read by programs, too: it stays word for word.
TEST(Contract, QuotesKnownConditions)
{
    std::set<std::string> logged;
    forEachFunction([&](const FunctionTest& function) {
        SeededBits bits(1);
        FunctionCall call = plainCall(function, bits);
        Faults faults(function, call);
        for (const Fault& fault : faults.all()) {
            call.values = fault.values;
            clearLog();
            call.call(function.entry);
            logged.insert(logLines.begin(), logLines.end());
        }
    });
    std::ifstream conditions(RVK_SOURCE_DIR "/tests/conditions.txt");
    size_t count = 0;
    for (std::string line; std::getline(conditions, line); count++)
        EXPECT_TRUE(logged.count("6 ravik_lib_log: Assertion failed @" + line + "\n")) << line;
    EXPECT_GT(count, 0u);
}

// ---- what is accepted -----------------------------------------------------------------------------------------------

TEST(Contract, AcceptsTheLeastPicture)
{
    forEachFunction([](const FunctionTest& function) {
        SeededBits bits(2);
        for (int i = 0; i < 4; i++) { // with several windows
            const FunctionCall call = plainCall(function, bits, {0, 0});
            setCurrent(function, "the least picture");
            EXPECT_TRUE(isAccepted(function, call)) << function.name << (logLines.empty() ? "" : logLines[0]);
        }
    });
}

TEST(Contract, LeavesOutWhatMayBeNull)
{
    forEachFunction([](const FunctionTest& function) {
        for (size_t i = 0; i < function.arguments.size(); i++) {
            if (!function.arguments[i].mayBeNull)
                continue;
            SeededBits bits(3);
            FunctionCall call = plainCall(function, bits);
            call.values.pointers[i] = nullptr;
            setCurrent(function, "argument " + std::to_string(i) + " is null");
            EXPECT_TRUE(isAccepted(function, call)) << currentCall;
        }
    });
}

std::vector<uint8_t> contents(const FunctionCall& call)
{
    std::vector<uint8_t> all;
    for (const FunctionCall::Block& block : call.blocks())
        if (!call.isScratch(block))
            all.insert(all.end(), block.data, block.data + block.bytes());
    return all;
}

TEST(Contract, TakesImagesThatTouchWhereTheyMayNotOverlap)
{
    forEachFunction([](const FunctionTest& function) {
        if (!function.contract.refusesOverlap)
            return;
        SeededBits bits(9);
        FunctionCall call = plainCall(function, bits);
        setCurrent(function, "images that touch");
        EXPECT_TRUE(isAccepted(function, call)) << currentCall;
        const std::vector<uint8_t> expected = contents(call);
        call.restore();
        std::vector<uint8_t> together = contents(call);
        size_t used = 0;
        for (const FunctionCall::Block& block : call.blocks()) {
            call.values.pointers[block.argument] = together.data() + used;
            used += block.bytes();
        }
        function.call(call.values);
        EXPECT_TRUE(together == expected) << currentCall;
    });
}

TEST(Contract, OverlappingRowsStayWithinThem)
{
    forEachFunction([](const FunctionTest& function) {
        for (size_t i = 0; i < function.arguments.size(); i++) {
            if (!function.arguments[i].mayOverlap)
                continue;
            SeededBits bits(4);
            FunctionCall call = plainCall(function, bits);
            const uint32_t stride = call.values.numbers[i] > 3 ? number(call, i) - 3 : 1;
            call.values.numbers[i] = stride;
            setCurrent(function, "overlapping rows");
            EXPECT_TRUE(isAccepted(function, call)) << currentCall;
            for (const FunctionCall::Block& block : call.blocks()) {
                if (function.strideOfImage(block.argument) != i)
                    continue;
                const size_t used = size_t{stride} * (block.rows - 1) + block.rowBytes;
                EXPECT_TRUE(std::equal(block.before.begin() + static_cast<ptrdiff_t>(used), block.before.end(),
                                       block.data + used))
                    << currentCall;
            }
        }
    });
}

TEST(Contract, TakesAStrideOf0AsPackedRows)
{
    forEachFunction([](const FunctionTest& function) {
        SeededBits bits(5);
        FunctionCall call = plainCall(function, bits);
        setCurrent(function, "packed rows");
        const Outcome outcome = call.call(function.entry);
        const std::vector<uint8_t> expected = contents(call);
        for (size_t i = 0; i < function.arguments.size(); i++)
            if (function.arguments[i].role == Role::stride)
                call.values.numbers[i] = 0;
        EXPECT_TRUE(call.call(function.entry) == outcome && contents(call) == expected) << function.name;
    });
}

std::ptrdiff_t countWithoutStrides(const FunctionTest& function)
{
    return std::count_if(function.arguments.begin(), function.arguments.end(),
                         [](const Argument& a) { return a.role != Role::stride; });
}

// What `function` is called with, for its form that has strides.
CallValues withStrides(const FunctionTest& function, const FunctionCall& call, const FunctionTest& strided)
{
    CallValues values{std::vector<void*>(strided.arguments.size()), std::vector<double>(strided.arguments.size())};
    size_t from = 0;
    const auto isStride = [](const FunctionTest& f, size_t i) { return f.arguments[i].role == Role::stride; };
    for (size_t i = 0; i < strided.arguments.size(); i++) {
        if (isStride(strided, i) && (from == function.arguments.size() || !isStride(function, from))) {
            const Argument& image = strided.arguments[strided.imagesOfStride(i)[0]];
            const ImageSize size = image.sizeIn(function.sizesFor(call.size(), call.values.numbers));
            values.numbers[i] = static_cast<double>(size.columns * image.pixelSize());
            continue;
        }
        values.pointers[i] = call.values.pointers[from];
        values.numbers[i] = call.values.numbers[from++];
    }
    return values;
}

const FunctionTest& testNamed(const std::string& name)
{
    for (const FunctionTest* function : allFunctions())
        if (function->name == name)
            return *function;
    ADD_FAILURE() << "no test of " << name;
    abort();
}

// Each argument reaches the implementation, in its place.
TEST(Contract, EntriesPassOnTheirArguments)
{
    forEachFunction([](const FunctionTest& function) {
        SeededBits bits(6);
        for (int i = 0; i < 4; i++) {
            FunctionCall call(function, bits);
            const CaseSize least = function.leastEffective(call.values.numbers);
            call.draw({least.width + 6, least.height + 4}, {.mostPadding = 7});
            setCurrent(function, "an entry");
            ASSERT_TRUE(isAccepted(function, call)) << function.name;
            const std::vector<uint8_t> actual = contents(call);
            call.restore();
            if (slotNamed(function.function) != kNoSlot) {
                call.call(referenceOf(slotOf(function)));
            } else {
                const FunctionTest& strided = testNamed(function.function + "_v2");
                if (countWithoutStrides(strided) > countWithoutStrides(function))
                    return; // it has options, for which the family's test knows the defaults
                strided.call(referenceOf(slotOf(strided)), withStrides(function, call, strided));
            }
            EXPECT_TRUE(contents(call) == actual) << function.name;
        }
    });
}

// ---- remote units ---------------------------------------------------------------------------------------------------

// All functions on a unit, whose cells hold references as long as there is no companion library.
class AllOnUnit
{
public:
    explicit AllOnUnit(RVK_IMPL unit)
    {
        setAll(unit);
        dispatchState.runtimeLog = 1;
    }
    ~AllOnUnit()
    {
        setAll(RVK_IMPL_CPU);
        dispatchState.runtimeLog = 0;
    }

private:
    static void setAll(RVK_IMPL unit)
    {
        std::fill(std::begin(dispatchState.targets), std::end(dispatchState.targets), unit);
        std::fill(std::begin(dispatchState.internalTargets), std::end(dispatchState.internalTargets), unit);
    }
};

// The largest window, where the scalar is one.
double largestChoice(const Argument& a)
{
    return a.choices.empty() ? a.low : *std::max_element(a.choices.begin(), a.choices.end());
}

// A call that ends when its unit has been chosen: all sources and outputs that must not be null are, but for the one
// whose address matters. Where there is no other, a number is refused. So pictures of any size need no memory.
class UnitChoice
{
public:
    UnitChoice(const FunctionTest& function, CaseSize size) : m_function(function), m_size(size)
    {
        const size_t count = function.arguments.size();
        m_values = {std::vector<void*>(count), std::vector<double>(count)};
        function.setTypicalSizes(m_values.numbers, size);
        const bool hasOneImage = std::count_if(function.arguments.begin(), function.arguments.end(),
                                               [](const Argument& a) { return a.isImage(); }) == 1;
        for (size_t i = 0; i < count; i++) {
            const Argument& a = function.arguments[i];
            if (a.role == Role::scalar)
                m_values.numbers[i] = hasOneImage && !a.refused.empty() ? a.refused[0] : largestChoice(a);
        }
        for (size_t i = 0; i < count; i++) {
            const Argument& a = function.arguments[i];
            if (a.role == Role::stride)
                m_values.numbers[i] = strideOf(i);
            if (a.role == Role::source && a.mayBeNull)
                m_values.pointers[i] = reinterpret_cast<void*>(uintptr_t{4096});
        }
    }
    UnitChoice& misalign(size_t argument, uint32_t bytes)
    {
        if (m_function.arguments[argument].role == Role::stride)
            m_values.numbers[argument] += bytes;
        else
            m_values.pointers[argument] = reinterpret_cast<void*>(uintptr_t{4096} + bytes);
        return *this;
    }
    // The name of the unit that the function chose.
    std::string unit() const
    {
        clearLog();
        m_function.call(m_values);
        const std::string head = "6 ravik_runtime_log: " + m_function.function;
        for (const std::string& line : logLines)
            if (line.starts_with(head))
                return line.substr(line.rfind('_') + 1);
        return "none";
    }

private:
    double strideOf(size_t argument) const
    {
        uint32_t row = 0;
        for (const size_t image : m_function.imagesOfStride(argument)) {
            const Argument& a = m_function.arguments[image];
            const ImageSize size = a.sizeIn(m_function.sizesFor(m_size, m_values.numbers));
            row = std::max(row, static_cast<uint32_t>(size.columns) * a.pixelSize());
        }
        return (row + 63) / 64 * 64;
    }

    const FunctionTest& m_function;
    CaseSize m_size;
    CallValues m_values;
};

// A rule at its limits; `unit` is the name of the unit that it is for.
class RuleTest
{
public:
    RuleTest(const FunctionTest& function, const OffloadRule& rule, const char* unit)
        : m_function(function), m_rule(rule), m_unit(unit)
    {
        std::vector<double> numbers;
        for (const Argument& a : function.arguments)
            numbers.push_back(largestChoice(a));
        m_widthStep = std::lcm(rule.widthMultiple, function.contract.unit.width);
        if (rule.strideMultiple > 1) // so that strides, which are multiples of 64, have no gaps
            m_widthStep = std::lcm(m_widthStep, 64u);
        for (size_t i = 0; i < function.arguments.size(); i++) {
            const Argument& a = function.arguments[i];
            const bool hasFreeRows = a.isOutput() && rule.outputAlignment;
            if (a.isOfPixels() && !hasFreeRows && function.strideOfImage(i) == FunctionTest::npos)
                m_widthStep = std::lcm(m_widthStep, stepOfAlignedRows(a, numbers));
        }
        m_leastHeight = std::max(rule.leastHeight, function.windowOf(numbers).height);
        m_leastHeight = roundedUp(m_leastHeight, std::lcm(rule.heightMultiple, function.contract.unit.height));
    }

    void run() const
    {
        // As low as may be, and as wide as the work asks for.
        const uint32_t elements = quotient(OffloadRule::kLeastElements, m_rule.elementsPerPixel);
        const uint32_t width = roundedUp(quotient(elements, m_leastHeight), m_widthStep);
        const CaseSize least{width, m_leastHeight};
        expect(true, least, "the least work");
        expect(false, {width - m_widthStep, m_leastHeight}, "too little work");
        const uint32_t heightStep = std::lcm(m_rule.heightMultiple, m_function.contract.unit.height);
        if (m_leastHeight > heightStep)
            expect(false, {2 * width, m_leastHeight - heightStep}, "too low");
        if (m_rule.heightMultiple > 1)
            expect(false, {2 * width, m_leastHeight + 1}, "a wrong height");
        if (m_widthStep > 1)
            expect(false, {width + m_widthStep / 2, m_leastHeight}, "a wrong width");
        if (m_rule.leastWidth > 1) {
            const uint32_t narrow = roundedUp(m_rule.leastWidth, m_widthStep);
            const uint32_t height = quotient(elements, narrow) * 2;
            expect(true, {narrow, height}, "the least width");
            expect(false, {narrow - m_widthStep, height}, "too narrow");
        }
        for (size_t i = 0; i < m_function.arguments.size(); i++)
            runMisaligned(least, i);
    }

private:
    // The width whose multiples have aligned rows, which count as strides of packed images.
    uint32_t stepOfAlignedRows(const Argument& a, std::vector<double> numbers) const
    {
        for (uint32_t width = 1;; width++) {
            m_function.setTypicalSizes(numbers, {width, width});
            const uint64_t columns = a.sizeIn(m_function.sizesFor({width, width}, numbers)).columns;
            if (columns && columns * a.pixelSize() % m_rule.alignment == 0)
                return width;
        }
    }
    static uint32_t quotient(uint32_t a, uint32_t b) { return (a + b - 1) / b; }
    static uint32_t roundedUp(uint32_t a, uint32_t unit) { return quotient(a, unit) * unit; }

    void runMisaligned(CaseSize size, size_t i) const
    {
        const Argument& a = m_function.arguments[i];
        uint32_t alignment = m_rule.alignment;
        if (a.isOutput() && m_rule.outputAlignment)
            alignment = m_rule.outputAlignment;
        bool matters = a.isOfPixels();
        if (a.role == Role::stride) {
            const std::vector<size_t> images = m_function.imagesOfStride(i);
            matters = !images.empty() && !(m_function.arguments[images[0]].isOutput() && m_rule.outputAlignment);
        }
        if ((a.isOfPixels() || a.role == Role::stride) && alignment > 1) {
            EXPECT_EQ(UnitChoice(m_function, size).misalign(i, alignment / 2).unit(), matters ? "VECTA" : m_unit)
                << m_function.name << ", argument " << i << " is misaligned";
        }
    }
    void expect(bool suits, CaseSize size, const char* what) const
    {
        setCurrent(m_function, what);
        EXPECT_EQ(UnitChoice(m_function, size).unit(), suits ? m_unit : "VECTA")
            << m_function.name << ", " << what << ": " << size.width << " x " << size.height;
    }

    const FunctionTest& m_function;
    const OffloadRule& m_rule;
    const char* m_unit;
    uint32_t m_widthStep, m_leastHeight;
};

void expectRules(RVK_IMPL unit, const char* name, std::optional<OffloadRule> Contract::*rule)
{
    const AllOnUnit all(unit);
    forEachFunction([&](const FunctionTest& function) {
        if (const auto& its = function.contract.*rule)
            RuleTest(function, *its, name).run();
        else
            EXPECT_EQ(UnitChoice(function, {1, 1}).unit(), name) << function.name << " has no rule";
    });
}

TEST(Contract, CallsThatDoNotSuitTheDspFallBack)
{
    expectRules(RVK_IMPL_NDSP, "NDSP", &Contract::dspRule);
}

TEST(Contract, CallsThatDoNotSuitTheGpuFallBack)
{
    expectRules(RVK_IMPL_GPU, "GPU", &Contract::gpuRule);
}

TEST(Contract, ForcedOffloadLeavesOutTheRulesOfTheDsp)
{
    const AllOnUnit all(RVK_IMPL_NDSP);
    dispatchState.offloadForced = 1;
    forEachFunction([](const FunctionTest& function) {
        EXPECT_EQ(UnitChoice(function, {1, 1}).unit(), "NDSP") << function.name;
    });
    dispatchState.offloadForced = 0;
}

// ---- vector implementations -----------------------------------------------------------------------------------------

// Around the multiples of each vector size, and all small ones.
std::vector<uint32_t> widths()
{
#if defined(__x86_64__)
    constexpr uint32_t kVectorBytes = 64, kAll = 68, kMostVectors = 4;
#else
    constexpr uint32_t kVectorBytes = 16, kAll = 20, kMostVectors = 8;
#endif
    std::vector<uint32_t> all;
    for (uint32_t width = 1; width <= kAll; width++)
        all.push_back(width);
    for (uint32_t multiple = 2 * kVectorBytes; multiple <= kMostVectors * kVectorBytes; multiple += kVectorBytes)
        for (uint32_t width = multiple - 1; width <= multiple + 1; width++)
            all.push_back(width);
    all.push_back(300);
    return all;
}

// Where memory differs from what the reference made of it; empty when it does not.
std::string difference(const FunctionCall& call, const std::vector<uint8_t>& expected, float tolerance)
{
    const uint8_t* e = expected.data();
    for (const FunctionCall::Block& block : call.blocks()) {
        if (call.isScratch(block))
            continue;
        const bool isFloat = block.element == Element::f32;
        const bool isWord = tolerance > 0 && block.element == Element::u16; // others have no tolerance
        const uint32_t step = isFloat ? 4 : isWord ? 2 : 1;
        for (size_t i = 0; i < block.bytes(); i += step, e += step) {
            const size_t column = i % block.stride;
            const auto place = [&] {
                return "argument " + std::to_string(block.argument) + ", row " + std::to_string(i / block.stride) +
                       (column < block.rowBytes ? ", byte " : ", outside of the row, byte ") + std::to_string(column);
            };
            float wanted = e[0], got = block.data[i];
            if (isFloat) {
                memcpy(&wanted, e, 4);
                memcpy(&got, block.data + i, 4);
            } else if (isWord) {
                wanted = static_cast<float>(e[0] | e[1] << 8);
                got = static_cast<float>(block.data[i] | block.data[i + 1] << 8);
            }
            const bool isNumber = (isWord || block.element == Element::u8) && column < block.rowBytes;
            const float allowed = isFloat ? tolerance * std::max(1.0f, std::fabs(wanted)) : isNumber ? tolerance : 0;
            const bool same = (isFloat && sameFloat(wanted, got)) || std::fabs(wanted - got) <= allowed;
            if (!same)
                return place() + ": expected " + std::to_string(wanted) + ", got " + std::to_string(got);
        }
    }
    return "";
}

// The reference and the vector implementations of a function, on the same pictures.
class Comparison
{
public:
    Comparison(const FunctionTest& function, uint32_t slot, uint32_t seed)
        : m_function(function), m_cells(vectaCells(slot)), m_reference(referenceOf(slot)), m_bits(seed),
          m_call(function, m_bits)
    {
    }

    // Pictures that are larger than the least by this.
    void run(CaseSize more, uint32_t strideUnit = 1)
    {
        const FunctionCall::Layout layout{
            .mostPadding = m_bits.below(3) ? 0 : m_bits.below(40),
            .strideUnit = strideUnit,
            .inPlace = m_bits.below(3) == 0,
            .flush = m_bits.below(2) ? GuardedMemory::Flush::toEnd : GuardedMemory::Flush::toStart,
            .content = static_cast<Content>(m_bits.below(static_cast<uint32_t>(Content::count)))};
        const CaseSize least = m_function.leastAccepted(m_call.values.numbers);
        m_call.draw({least.width + more.width, least.height + more.height}, layout);
        setCurrent(m_function, describe("reference", layout));
        const Outcome expectedOutcome = m_call.call(m_reference);
        const std::vector<uint8_t> expected = contents(m_call);
        for (const NamedCell& vecta : m_cells) {
            setCurrent(m_function, describe(vecta.name, layout));
            const Outcome outcome = m_call.call(vecta.cell);
            ASSERT_TRUE(outcome == expectedOutcome) << currentCall;
            if (contents(m_call) != expected) {
                ASSERT_EQ(difference(m_call, expected, m_function.tolerance), "") << currentCall;
            }
        }
    }
    // Wider and higher than the strips, tiles and chunks that vector implementations work in; and with rows so far
    // apart that they collide in caches.
    void runLarge()
    {
        uint32_t pixel = 1;
        for (const Argument& a : m_function.arguments)
            pixel = std::max(pixel, a.isPicture() ? a.pixelSize() >> (a.xShift + a.yShift) : 1);
        const uint32_t width = 900 + m_bits.below(1300);
        run({width, m_bits.below(std::min(90u, 900'000 / pixel / (width + 60)))});
        run({60 + m_bits.below(160), 100 + m_bits.below(60)}, 4096);
    }
    uint32_t below(uint32_t bound) { return m_bits.below(bound); }

private:
    std::string describe(const char* where, const FunctionCall::Layout& layout) const
    {
        return std::string(where) + ", " + std::to_string(m_call.size().width) + "x" +
               std::to_string(m_call.size().height) + ", content " + std::to_string(static_cast<int>(layout.content)) +
               (layout.inPlace ? ", in place" : "");
    }

    const FunctionTest& m_function;
    std::vector<NamedCell> m_cells;
    AnyFunction m_reference;
    SeededBits m_bits;
    FunctionCall m_call;
};

// Each allocation of a call fails in turn. A call that can do without it makes what it always makes; one that cannot
// says so, by its status or in the log, and writes nothing; nothing stays taken.
void expectSafeWithoutMemory(const FunctionTest& function, const NamedCell& cell)
{
    SeededBits bits(8);
    const FunctionCall call = plainCall(function, bits, {90, 40});
    const Outcome expectedOutcome = call.call(cell.cell);
    const std::vector<uint8_t> expected = contents(call);
    const bool writes = !call.isUnchanged();
    setCurrent(function, std::string(cell.name) + " without memory");
    bool needsMore = true;
    for (int granted = 0; needsMore; granted++) {
        const ScarceMemory memory(granted);
        clearLog();
        const Outcome outcome = call.call(cell.cell);
        needsMore = memory.hasRefused();
        const bool gaveUp =
            needsMore && (function.hasStatus ? outcome.status == function.withoutMemory : writes && call.isUnchanged());
        EXPECT_TRUE(gaveUp ? call.isUnchanged() : outcome == expectedOutcome && contents(call) == expected)
            << currentCall << ", but for " << granted << " allocations";
        EXPECT_EQ(logHas("6 ravik_lib_log: Error: " + function.function + " - no scratch memory\n"),
                  gaveUp && !function.hasStatus)
            << currentCall;
        EXPECT_TRUE(memory.allIsReleased()) << currentCall;
    }
}

TEST(Contract, NeedsNoMemoryOrWritesNothing)
{
    forEachFunction([](const FunctionTest& function) {
        const uint32_t slot = slotNamed(function.function);
        if (slot == kNoSlot || function.endsWithoutMemory)
            return;
        expectSafeWithoutMemory(function, {"C", referenceOf(slot)});
        for (const NamedCell& cell : vectaCells(slot))
            expectSafeWithoutMemory(function, cell);
    });
}

class VectaContract : public testing::TestWithParam<const TestGroup*>
{
};

TEST_P(VectaContract, EqualsReference)
{
    for (const FunctionTest& function : GetParam()->functions().functions) {
        const uint32_t slot = slotNamed(function.function);
        if (slot == kNoSlot)
            continue; // the form that it calls is tested
        constexpr uint32_t kRounds = 2;
        const std::vector<uint32_t> all = widths();
        for (uint32_t seed = 0; seed < kRounds * all.size(); seed++) {
            Comparison comparison(function, slot, seed);
            comparison.run({all[seed % all.size()] - 1, comparison.below(comparison.below(8) ? 6 : 70)});
        }
        for (uint32_t seed = 0; seed < kRounds; seed++)
            Comparison(function, slot, seed).runLarge();
    }
}

std::vector<const TestGroup*> functionGroups()
{
    std::vector<const TestGroup*> groups;
    for (const TestGroup& group : testGroups())
        if (group.functions)
            groups.push_back(&group);
    return groups;
}

INSTANTIATE_TEST_SUITE_P(Groups, VectaContract, testing::ValuesIn(functionGroups()),
                         [](const auto& group) { return std::string(group.param->keyword); });

} // namespace

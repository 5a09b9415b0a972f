// One call of a function under test: its inputs, its outputs, and what the outputs should be.
#pragma once

#include "dataFiles.h"
#include "functionTest.h"
#include "testBuffer.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

enum class ScriptResult;

// A value for a scalar argument.
double drawScalar(const Argument& argument, RandomBits& random);

// What the reference makes of a case.
enum class Wanted {
    accepts, // it accepts the arguments, but the picture may be too small for a whole window
    computes,
    refuses // one argument, or the size, is wrong; for functions that can refuse
};

// What a control script says about its cases.
enum class ScriptContent { sources, sourcesAndResults };

struct ScriptField
{
    enum class Kind { input, result, count, status };
    Kind kind;
    size_t argument; // of inputs and results
    Element element;
    bool isArray;
    bool isPairs; // correspondences, of which the argument is the first points
    std::string title;
};

// The columns of a function's scripts: the inputs in the order of the arguments, then the results.
std::vector<ScriptField> scriptFields(const FunctionTest& function, ScriptContent content);

class TestCase
{
public:
    TestCase(const FunctionTest& function, rvkMemOption option);

    // Takes a line of a control script. With ScriptContent::sources the results are left to expectThisOutput().
    ScriptResult read(FILE* script, const char* dataDirectory, ScriptContent content);

    // Draws a case of the size, which grows by as much as the function needs more than a pixel for what is `wanted`.
    // Unless it is `packed`, its images begin anywhere in rows that are wider than they need to be. False when memory
    // is short, here and below.
    bool draw(CaseSize size, Wanted wanted, bool packed, RandomBits& random);

    // Widens the rows of all images that have a stride by `elements`.
    bool addStride(uint32_t elements);

    // Makes the outputs ready for a call.
    bool prepareOutputs();
    CallValues callValues() const;
    Outcome call() const { return m_function.call(callValues()); }

    // Makes what the last call gave the result that the next ones should give.
    bool expectThisOutput(const Outcome& outcome);
    // 0 when the last call gave what was expected and wrote nowhere else.
    int compare(const Outcome& outcome, float tolerance);

    // Whether a call writes to every output, found by calling on different bytes. Of images that are read, too, nothing
    // can be said; they count as written.
    bool writesItsOutputs();

    // Flushes and invalidates the caches of every image.
    void flush() const;

    const FunctionTest& function() const { return m_function; }
    // What a script holds in a field: correspondences, an image or a number.
    TestCorrespondences pairs(const ScriptField& field) const;
    const RAVIK_TEST_Buffer& image(const ScriptField& field) const;
    double scalar(const ScriptField& field) const;

private:
    struct ArgumentData
    {
        MemShape_ shape{};          // of an image in the next call
        RAVIK_TEST_Buffer buffer;   // the image
        RAVIK_TEST_Buffer initial;  // what an updated image holds before the call
        RAVIK_TEST_Buffer expected; // what an output should be
        double number = 0;          // what is drawn of the other arguments
    };

    // Elements that the function refuses, by their place in the argument.
    struct WrongElements
    {
        size_t argument, elements;
    };

    const Argument& argument(size_t index) const { return m_function.arguments[index]; }
    RAVIK_TEST_Buffer& inputBuffer(size_t index);
    MemShape_ packedShape(size_t index) const;
    // What the call passes for an argument.
    void* pointer(size_t index) const;
    double number(size_t index) const;
    void drawNumbers(RandomBits& random);
    void drawFault(RandomBits& random);
    void fillImage(size_t index, RandomBits& random);
    void addMapped(size_t index);
    size_t pairPart(const ScriptField& field, Argument::PairPart part) const;
    bool takePairs(const ScriptField& field, const TestCorrespondences& pairs);
    void take(const std::vector<double>& numbers);
    std::vector<double> numbers() const;
    std::vector<std::string> outputsOver(uint8_t byte);
    void layOut(bool packed, RandomBits& random);
    void takeSize(ScriptContent content);
    bool takeInputs(ScriptContent content);
    bool takeResults(const std::vector<double>& numbers);

    const FunctionTest& m_function;
    rvkMemOption m_option;
    uint32_t m_width = 1;
    uint32_t m_height = 1;
    std::vector<ArgumentData> m_data; // per argument
    std::optional<WrongElements> m_fault;
    Outcome m_expectedOutcome;
};

// Control scripts: CSV files that say, a line per test vector, which numbers and data files a test takes.
// docs/ravikTest.md describes the format.
#pragma once

#include "dataFiles.h"

#include <cstdio>
#include <span>
#include <variant>

enum class ScriptResult {
    end = 0,     // no further line
    line = 1,    // a line was read into the destinations
    badLine = 2, // a line does not fit the destinations or names a bad file; it was logged and is behind us
    noScript = 3 // the file has no header that names a type for each column
};

// Where one column of a script goes.
class ScriptColumn
{
public:
    // Scalars: the number must fit the destination.
    ScriptColumn(uint8_t& number) : m_destination(&number) {}
    ScriptColumn(int32_t& number) : m_destination(&number) {}
    ScriptColumn(float& number) : m_destination(&number) {}
    ScriptColumn(double& number) : m_destination(&number) {}
    // Columns that name a file.
    ScriptColumn(std::vector<TestRect>& rects) : m_destination(&rects) {}
    ScriptColumn(TestCorrespondences& correspondences) : m_destination(&correspondences) {}
    ScriptColumn(TestContours& contours) : m_destination(&contours) {}
    ScriptColumn(TestPyramid& pyramid) : m_destination(&pyramid) {}

    static ScriptColumn text(char* characters, size_t size) { return Destination(Text{characters, size}); }
    static ScriptColumn array(RAVIK_TEST_Buffer& buffer, rvkMemOption option)
    {
        return Destination(Array{&buffer, option});
    }
    static ScriptColumn structure(void* bytes, size_t size) { return Destination(Structure{bytes, size}); }

    // Converts or loads `field` by the type that the script's header names; false when type and destination do not go
    // together or the field is bad.
    bool store(const char* dataDirectory, const std::string& type, const std::string& field) const;

    struct Text
    {
        char* characters;
        size_t size;
    };
    struct Array
    {
        RAVIK_TEST_Buffer* buffer;
        rvkMemOption option;
    };
    struct Structure
    {
        void* bytes;
        size_t size;
    };

private:
    using Destination = std::variant<uint8_t*, int32_t*, float*, double*, std::vector<TestRect>*, TestCorrespondences*,
                                     TestContours*, TestPyramid*, Text, Array, Structure>;

    ScriptColumn(Destination destination) : m_destination(destination) {}

    Destination m_destination;
};

// Reads the script's header and then its next line, one column per destination. A bad line may have filled some of
// them.
ScriptResult RAVIK_TEST_ReadControlScript(const char* dataDirectory, FILE* script,
                                          std::span<const ScriptColumn> columns);

// Passes over the next line without loading what it names.
ScriptResult RAVIK_TEST_SkipScriptLine(FILE* script);

// The type words for a scalar and for an array of elements.
const char* scalarTypeWord(Element element);
const char* arrayTypeWord(Element element);
// The type word for correspondences.
inline constexpr char kPairsTypeWord[] = "rvkaCorrespondences";

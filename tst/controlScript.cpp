#include "controlScript.h"

#include "testLog.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

namespace {

constexpr size_t kLongestLine = 2048;
constexpr int kMostHeaderRows = 8;

struct NumberType
{
    std::string_view word;
    Element element;
};

// The first word of an element is the one that scripts are written with.
constexpr NumberType kScalarTypes[] = {
    {"unsignedchar", Element::u8},    {"char", Element::s8},
    {"unsignedshort", Element::u16},  {"short", Element::s16},
    {"unsignedint", Element::u32},    {"int", Element::s32},
    {"float", Element::f32},          {"bool", Element::u8},
    {"long", Element::s32},           {"unsigned_char", Element::u8},
    {"unsigned_short", Element::u16}, {"unsigned_int", Element::u32},
    {"unsignedlong", Element::u32},
};
constexpr NumberType kArrayTypes[] = {
    {"unsignedchar[]", Element::u8},   {"signedchar[]", Element::s8},
    {"unsignedshort[]", Element::u16}, {"short[]", Element::s16},
    {"unsignedint[]", Element::u32},   {"int[]", Element::s32},
    {"float[]", Element::f32},         {"unsignedlonglong[]", Element::u64},
    {"char[]", Element::s8},           {"char*", Element::s8},
    {"bool[]", Element::u8},           {"unsignedlong[]", Element::u32},
};
constexpr std::string_view kOtherTypes[] = {
    "char*", "struct", "rvkaRect", "rvkaCorrespondences", "rvkaContours", "rvkPyramidLevel", "rvkPyramidLevel_v2",
    "pyr",   "pyr3"};

std::optional<Element> findType(std::span<const NumberType> types, std::string_view word)
{
    const auto found = std::find_if(types.begin(), types.end(), [&](const NumberType& t) { return t.word == word; });
    return found == types.end() ? std::nullopt : std::optional(found->element);
}

const char* wordOf(std::span<const NumberType> types, Element element)
{
    const auto found =
        std::find_if(types.begin(), types.end(), [&](const NumberType& t) { return t.element == element; });
    return found == types.end() ? "" : found->word.data();
}

bool isTypeWord(std::string_view word)
{
    return findType(kScalarTypes, word) || findType(kArrayTypes, word) ||
           std::find(std::begin(kOtherTypes), std::end(kOtherTypes), word) != std::end(kOtherTypes);
}

// 0 when the word names no pyramid, else its images per level.
uint32_t pyramidPlanes(std::string_view word)
{
    if (word == "pyr3")
        return 3;
    return word == "pyr" || word == "rvkPyramidLevel" || word == "rvkPyramidLevel_v2";
}

enum class LineResult { end, line, bad };

// The next line without its line end. Lines that are too long or hold a zero byte are bad and behind us.
LineResult readLine(FILE* file, std::string& line)
{
    line.clear();
    bool bad = false;
    int character;
    while ((character = getc(file)) != EOF && character != '\n') {
        if (line.size() == kLongestLine || character == '\0')
            bad = true;
        else
            line.push_back(static_cast<char>(character));
    }
    if (character == EOF && line.empty() && !bad)
        return LineResult::end;
    return bad ? LineResult::bad : LineResult::line;
}

LineResult readLineWithText(FILE* file, std::string& line)
{
    LineResult result;
    do
        result = readLine(file, line);
    while (result == LineResult::line && line.find_first_not_of(" \t\r") == std::string::npos);
    return result;
}

// The type words of the columns: the first of the leading rows that consists of type words. Titles may stand above it.
std::vector<std::string> readHeader(FILE* script)
{
    std::string line;
    for (int row = 0; row < kMostHeaderRows && readLineWithText(script, line) == LineResult::line; row++) {
        line.erase(std::remove(line.begin(), line.end(), ' '), line.end());
        std::vector<std::string> types = splitFields(line);
        if (std::all_of(types.begin(), types.end(), isTypeWord))
            return types;
    }
    return {};
}

// Reads the header and the next line behind the place where the script stands.
ScriptResult readNextLine(FILE* script, std::vector<std::string>& types, std::string& line)
{
    const long position = ftell(script);
    if (position < 0 || fseek(script, 0, SEEK_SET) != 0)
        return ScriptResult::noScript;
    types = readHeader(script);
    if (types.empty())
        return ScriptResult::noScript;
    if (position > ftell(script) && fseek(script, position, SEEK_SET) != 0)
        return ScriptResult::noScript;

    switch (readLineWithText(script, line)) {
    case LineResult::line:
        return ScriptResult::line;
    case LineResult::bad:
        testLog("WARNING - A line of a control script is longer than %zu characters or no text: refused.\n",
                kLongestLine);
        return ScriptResult::badLine;
    case LineResult::end:
        break;
    }
    return ScriptResult::end;
}

// A field of a line on its way into a destination.
struct Field
{
    const char* dataDirectory;
    const std::string& type;
    const std::string& text;

    std::string path() const { return std::string(dataDirectory) + "/" + text; }

    template <class Number>
    bool into(Number* number) const
    {
        const std::optional<Element> element = findType(kScalarTypes, type);
        return element && visitElement(*element, [&](auto value) {
                   if (!parseNumber(text, value) || (type == "bool" && value > 1))
                       return false;
                   const auto exact = static_cast<double>(value);
                   if (exact < static_cast<double>(std::numeric_limits<Number>::lowest()) ||
                       exact > static_cast<double>(std::numeric_limits<Number>::max()))
                       return false;
                   *number = static_cast<Number>(exact);
                   return static_cast<double>(*number) == exact;
               });
    }
    bool into(std::vector<TestRect>* rects) const { return type == "rvkaRect" && loadRects(path(), *rects); }
    bool into(TestCorrespondences* correspondences) const
    {
        return type == kPairsTypeWord && loadCorrespondences(path(), *correspondences);
    }
    bool into(TestContours* contours) const { return type == "rvkaContours" && loadContours(path(), *contours); }
    bool into(TestPyramid* pyramid) const
    {
        const uint32_t planes = pyramidPlanes(type);
        return planes && loadPyramid(dataDirectory, text, planes, *pyramid);
    }
    bool into(ScriptColumn::Text destination) const
    {
        if ((type != "char*" && type != "char[]") || text.size() >= destination.size)
            return false;
        memcpy(destination.characters, text.c_str(), text.size() + 1);
        return true;
    }
    bool into(ScriptColumn::Array array) const
    {
        const std::optional<Element> element = findType(kArrayTypes, type);
        return element && loadArray(path(), *element, array.option, *array.buffer);
    }
    bool into(ScriptColumn::Structure structure) const
    {
        return type == "struct" && loadStructure(path(), structure.bytes, structure.size);
    }
};

} // namespace

bool ScriptColumn::store(const char* dataDirectory, const std::string& type, const std::string& field) const
{
    const Field source{dataDirectory, type, field};
    return std::visit([&](auto destination) { return source.into(destination); }, m_destination);
}

ScriptResult RAVIK_TEST_ReadControlScript(const char* dataDirectory, FILE* script,
                                          std::span<const ScriptColumn> columns)
{
    std::vector<std::string> types;
    std::string line;
    const ScriptResult result = readNextLine(script, types, line);
    if (result != ScriptResult::line)
        return result;
    if (types.size() != columns.size()) {
        testLog("WARNING - A control script has %zu columns where %zu are wanted.\n", types.size(), columns.size());
        return ScriptResult::noScript;
    }

    const std::vector<std::string> fields = splitFields(line);
    bool good = fields.size() == columns.size();
    for (size_t i = 0; good && i < columns.size(); i++)
        good = columns[i].store(dataDirectory, types[i], fields[i]);
    if (!good)
        testLog("WARNING - Bad line of a control script: %.200s\n", line.c_str());
    return good ? ScriptResult::line : ScriptResult::badLine;
}

ScriptResult RAVIK_TEST_SkipScriptLine(FILE* script)
{
    std::vector<std::string> types;
    std::string line;
    return readNextLine(script, types, line);
}

const char* scalarTypeWord(Element element)
{
    return wordOf(kScalarTypes, element);
}

const char* arrayTypeWord(Element element)
{
    return wordOf(kArrayTypes, element);
}

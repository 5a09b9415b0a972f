#include "testDataWriter.h"

#include "controlScript.h"
#include "groups.h"
#include "inputFile.h"
#include "naturalPicture.h"
#include "outputFiles.h"
#include "testCase.h"
#include "testTable.h"

#include <ravik/frame.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>

namespace {

// From VGA upward: the indices of ravikTest's option -S.
constexpr CaseSize kResolutions[] = {{640, 480}, {720, 480},  {800, 480},  {720, 576},
                                     {800, 600}, {1024, 768}, {1280, 720}, {1920, 1080}};

// Vectors: single pixels or windows, odd widths, full vector registers and what is left over. Functions that can refuse
// are asked to by two of them.
constexpr CaseSize kVectorSizes[] = {{1, 1}, {3, 2}, {7, 5}, {16, 4}, {17, 9}, {33, 3}, {64, 6}, {100, 7}};
constexpr bool isRefusal(size_t vector)
{
    return vector == 1 || vector == 5;
}
// Large and regular enough for a DSP.
constexpr CaseSize kDspSize = {176, 152};

// splitmix64, seeded by a name.
class NamedRandom : public RandomBits
{
public:
    explicit NamedRandom(const std::string& name)
    {
        for (const char character : name)
            m_state = (m_state ^ static_cast<uint8_t>(character)) * 0x100000001B3u;
    }
    uint32_t next() override
    {
        m_state += 0x9E3779B97F4A7C15u;
        uint64_t mixed = m_state;
        mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBu;
        return static_cast<uint32_t>(mixed >> 32);
    }

private:
    uint64_t m_state = 0xCBF29CE484222325u;
};

void require(bool done)
{
    if (!done)
        throw std::bad_alloc();
}

// A control script: two header rows, then a line per vector.
class ScriptFile
{
public:
    ScriptFile(const std::string& path, const std::vector<ScriptField>& fields) : m_file(path)
    {
        std::vector<std::string> titles, types;
        for (const ScriptField& field : fields) {
            titles.push_back(field.title);
            types.push_back(field.isPairs   ? kPairsTypeWord
                            : field.isArray ? arrayTypeWord(field.element)
                                            : scalarTypeWord(field.element));
        }
        add(titles);
        add(types);
    }
    void add(const std::vector<std::string>& fields) { m_file.write(csvLine(fields)); }
    void close() { m_file.close(); }

private:
    OutputFile m_file;
};

class DataWriter
{
public:
    DataWriter(std::string directory, size_t resolutions)
        : m_directory(std::move(directory)), m_resolutions(resolutions)
    {
    }

    void writeAll()
    {
        const std::string table = m_directory + "/RavikTestTable.csv";
        std::filesystem::remove(table);
        std::filesystem::create_directories(profilingDirectory());
        rvkSetOperationMode(operationModeOf(kTargetC));
        for (const TestGroup& group : testGroups())
            if (group.functions)
                writeGroup(group.functions());
        writeTable(table); // last: a directory without it is not complete
    }

private:
    std::string profilingDirectory() const { return m_directory + "/" + kProfilingDirectory; }

    void writeGroup(const FunctionGroup& group)
    {
        std::filesystem::create_directories(m_directory + "/" + group.directory);
        for (const FunctionTest& function : group.functions) {
            writeVectors(group, function);
            writeProfilingVectors(group, function);
            float& tolerance = m_tolerances[function.tableName];
            tolerance = std::max(tolerance, function.tolerance);
        }
    }

    void writeVectors(const FunctionGroup& group, const FunctionTest& function)
    {
        const auto fields = scriptFields(function, group.scriptContent(RAVIK_TEST_UNIT));
        ScriptFile script(m_directory + "/" + group.scriptName(function, RAVIK_TEST_UNIT), fields);
        std::vector<CaseSize> sizes(std::begin(kVectorSizes), std::end(kVectorSizes));
        if (group.isStored)
            sizes.push_back(kDspSize);

        NamedRandom random(function.name);
        for (size_t i = 0; i < sizes.size(); i++) {
            TestCase testCase(function, RAVIK_MEM_SYSTEM);
            const Wanted wanted = isRefusal(i) && function.canRefuse() ? Wanted::refuses : Wanted::computes;
            require(testCase.draw(sizes[i], wanted, true, random));
            runReference(testCase);
            const std::string name = function.name.substr(group.prefix.size()) + "_" + std::to_string(i) + "_";
            script.add(texts(fields, testCase, [&](const ScriptField& field) {
                const std::string directory = m_directory + "/" + group.directory;
                if (field.isPairs)
                    return writePairs(directory, name + field.title, testCase.pairs(field));
                return writeImage(directory, name + field.title, testCase.image(field), field.element);
            }));
        }
        script.close();
    }

    void writeProfilingVectors(const FunctionGroup& group, const FunctionTest& function)
    {
        const ScriptContent content = group.scriptContent(RAVIK_TEST_PROFILING);
        const auto fields = scriptFields(function, content);
        ScriptFile script(m_directory + "/" + group.scriptName(function, RAVIK_TEST_PROFILING), fields);
        for (size_t i = 0; i < m_resolutions; i++) {
            std::vector<std::string> line = profilingSources(function, function.wholeUnits(kResolutions[i]));
            if (content == ScriptContent::sourcesAndResults) {
                TestCase testCase(function, RAVIK_MEM_SYSTEM);
                readBack(testCase, line);
                runReference(testCase);
                line = texts(fields, testCase, [&](const ScriptField& field) {
                    if (field.kind == ScriptField::Kind::input)
                        return line[static_cast<size_t>(&field - fields.data())];
                    const RAVIK_TEST_Buffer& image = testCase.image(field);
                    const std::string name = rawFileName(function.name, static_cast<uint32_t>(image.width),
                                                         static_cast<uint32_t>(image.height));
                    OutputFile file(profilingDirectory() + "/" + name);
                    file.write(image.block(), image.blockBytes());
                    file.close();
                    return name;
                });
            }
            script.add(line);
        }
        script.close();
    }

    // The inputs of a profiling line. Their files are shared by all functions that take such a shape.
    std::vector<std::string> profilingSources(const FunctionTest& function, CaseSize size)
    {
        NamedRandom random(function.name + " profiling");
        std::vector<std::string> line;
        std::map<std::string, char> letters; // the next source of a kind within this function
        std::vector<double> numbers(function.arguments.size());
        for (size_t i = 0; i < numbers.size(); i++)
            if (const Argument& argument = function.arguments[i]; argument.role == Argument::Role::scalar)
                numbers[i] = argument.choices.empty() ? drawScalar(argument, random) : argument.choices[0];
        function.setTypicalSizes(numbers, size);
        for (const ScriptField& field : scriptFields(function, ScriptContent::sources)) {
            const Argument& argument = function.arguments[field.argument];
            if (!field.isArray) {
                line.push_back(numberText(numbers[field.argument], field.element));
                continue;
            }
            if (field.isPairs) {
                line.push_back(drawnPairs(function, field, size));
                continue;
            }
            const ImageSize pixels = argument.sizeIn(function.sizesFor(size, numbers));
            const auto width = static_cast<uint32_t>(pixels.columns * argument.channels);
            const auto height = static_cast<uint32_t>(pixels.rows);
            if (!argument.ranges.empty()) {
                line.push_back(rangedSource(function, field, size, width, height));
                continue;
            }
            const std::string kind = argument.isMask      ? "mask"
                                     : argument.isNatural ? "natural"
                                                          : "bits" + std::to_string(8 * sizeOf(field.element));
            const char letter = letters.try_emplace(kind, 'a').first->second++;
            line.push_back(sharedSource(kind, letter, width, height, sizeOf(field.element)));
        }
        return line;
    }

    // The name of a file of as many correspondences as the picture has rows, or some more.
    std::string drawnPairs(const FunctionTest& function, const ScriptField& field, CaseSize size)
    {
        NamedRandom random(function.name + " pairs");
        TestCase drawn(function, RAVIK_MEM_SYSTEM);
        require(drawn.draw(size, Wanted::computes, true, random));
        return writePairs(profilingDirectory(), function.name + "For" + std::to_string(size.height),
                          drawn.pairs(field));
    }

    // The name of a source with elements of ranges, as a user would pass them: a few typical ones, or many that rise
    // along rows and columns.
    std::string rangedSource(const FunctionTest& function, const ScriptField& field, CaseSize size, uint32_t width,
                             uint32_t height)
    {
        const Argument& argument = function.arguments[field.argument];
        const Range& first = argument.ranges[0];
        const std::string ends =
            std::to_string(std::lround(first.at(0, size))) + "to" + std::to_string(std::lround(first.at(1, size)));
        const bool isMap = !argument.fixedSize, isDown = first.of == Range::Of::rows;
        const std::string name = isMap ? rawFileName((isDown ? "down" : "across") + ends, width, height)
                                       : rawFileName(function.name + field.title + "for" + std::to_string(size.width) +
                                                         "x" + std::to_string(size.height),
                                                     width, height);
        if (!m_sources.insert(name).second)
            return name;
        OutputFile file(profilingDirectory() + "/" + name);
        std::vector<float> row(width);
        for (uint32_t j = 0; j < height; j++) {
            for (uint32_t i = 0; i < width; i++) {
                const double along = (isDown ? j : i) + 0.5, beside = (isDown ? i : j) + 0.5; // sheared a little
                const double position =
                    isMap ? (along + beside / 16) / ((isDown ? height : width) + (isDown ? width : height) / 16.0)
                          : 0.5;
                const double number =
                    !isMap && !argument.typical.empty() ? argument.typical[i] : argument.rangeOf(i).at(position, size);
                row[i] = static_cast<float>(argument.isWhole ? std::rint(number) : number);
            }
            file.write(row.data(), size_t{width} * sizeof(float));
        }
        file.close();
        return name;
    }

    // The name of a shared source, which is written when it is first asked for. Sources of 32 bits are valid as floats.
    std::string sharedSource(const std::string& kind, char letter, uint32_t width, uint32_t height,
                             uint32_t elementSize)
    {
        const std::string name = rawFileName(kind + letter, width, height);
        if (!m_sources.insert(name).second)
            return name;
        NamedRandom random(name);
        OutputFile file(profilingDirectory() + "/" + name);
        if (kind == "natural") {
            std::vector<uint8_t> picture(size_t{width} * height);
            drawNaturalPicture(picture.data(), width, height, width, random);
            file.write(picture.data(), picture.size());
            file.close();
            return name;
        }
        std::vector<uint32_t> row(width * elementSize / 4 + 1);
        for (uint32_t j = 0; j < height; j++) {
            std::generate(row.begin(), row.end(), [&] {
                return kind == "mask"     ? random.next() & 0x01010101u
                       : elementSize == 4 ? random.floatBits()
                                          : random.next();
            });
            file.write(row.data(), size_t{width} * elementSize);
        }
        file.close();
        return name;
    }

    // Reads the sources of a profiling line as ravikTest does.
    void readBack(TestCase& testCase, const std::vector<std::string>& line) const
    {
        const std::string path = m_directory + "/line.csv";
        ScriptFile script(path, scriptFields(testCase.function(), ScriptContent::sources));
        script.add(line);
        script.close();
        const InputFile file = openFile(path);
        const ScriptResult result =
            file ? testCase.read(file.get(), profilingDirectory().c_str(), ScriptContent::sources)
                 : ScriptResult::noScript;
        std::filesystem::remove(path);
        if (result != ScriptResult::line)
            throw std::runtime_error(testCase.function().name + ": profiling sources cannot be read back");
    }

    static void runReference(TestCase& testCase)
    {
        require(testCase.prepareOutputs());
        require(testCase.expectThisOutput(testCase.call()));
    }

    // The texts of a script line; `writeFile` writes what is no number and returns the file's name.
    template <class WriteFile>
    static std::vector<std::string> texts(const std::vector<ScriptField>& fields, const TestCase& testCase,
                                          WriteFile writeFile)
    {
        std::vector<std::string> line;
        for (const ScriptField& field : fields)
            line.push_back(field.isArray ? writeFile(field) : numberText(testCase.scalar(field), field.element));
        return line;
    }

    void writeTable(const std::string& path) const
    {
        OutputFile file(path);
        file.write(csvLine({"function", "C", "VECTA", "NDSP", "GPU", "rows", "C0", "VECTA0", "NDSP0", "GPU0", "C1",
                            "VECTA1", "NDSP1", "GPU1"}));
        const std::string flag = scalarTypeWord(Element::u8), number = scalarTypeWord(Element::f32);
        file.write(csvLine({"char*", flag, flag, flag, flag, scalarTypeWord(Element::s32), number, number, number,
                            number, number, number, number, number}));
        for (const auto& [name, tolerance] : m_tolerances) {
            const std::string text = numberText(static_cast<double>(tolerance), Element::f32);
            file.write(csvLine({name, "1", "1", "1", "1", "1", text, text, text, text, "0", "0", "0", "0"}));
        }
        file.close();
    }

    std::string m_directory;
    size_t m_resolutions;
    std::set<std::string> m_sources;           // that are written
    std::map<std::string, float> m_tolerances; // by the name in the test table
};

} // namespace

void writeTestData(const std::string& directory, size_t resolutions)
{
    static_assert(std::size(kResolutions) == kProfilingResolutions);
    DataWriter(directory, resolutions).writeAll();
}

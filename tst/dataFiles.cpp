#include "dataFiles.h"

#include "inputFile.h"
#include "testLog.h"

#include <bit>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <sys/stat.h>

static_assert(std::endian::native == std::endian::little, "raw data files are little-endian");

namespace {

constexpr uint64_t kLargestText = 16u << 20; // CSV and PGM files
constexpr uint64_t kLargestBlock = 1u << 30; // decoded arrays
constexpr size_t kMostLevels = 32;

// A regular file and its size; null otherwise.
struct DataFile
{
    explicit DataFile(const std::string& path) : file(openFile(path))
    {
        struct stat status;
        if (!file || fstat(fileno(file.get()), &status) != 0 || !S_ISREG(status.st_mode)) {
            logCannotOpen(path);
            file.reset();
            return;
        }
        size = static_cast<uint64_t>(status.st_size);
    }
    bool read(void* to, size_t bytes) const { return fread(to, 1, bytes, file.get()) == bytes; }

    InputFile file;
    uint64_t size = 0;
};

bool fail(const std::string& path, const char* why)
{
    testLog("ERROR: %s: %s.\n", path.c_str(), why);
    return false;
}

bool readText(const std::string& path, std::string& text)
{
    const DataFile file(path);
    if (!file.file)
        return false;
    if (file.size > kLargestText)
        return fail(path, "absurd size");
    text.resize(static_cast<size_t>(file.size));
    return file.read(text.data(), text.size()) || fail(path, "cannot be read");
}

bool shapePacked(uint64_t width, uint64_t height, Element element, rvkMemOption option, RAVIK_TEST_Buffer& buffer)
{
    const uint32_t elementSize = sizeOf(element);
    if (width == 0 || height == 0 || width > kLargestBlock || height > kLargestBlock ||
        width * height > kLargestBlock / elementSize)
        return false;
    return buffer.Shape(
        MemShape_::packed(static_cast<int32_t>(width), static_cast<int32_t>(height), static_cast<int32_t>(elementSize)),
        option, true);
}

struct ImageSize
{
    uint64_t width, height;
};

// The size in the suffix "_<width>x<height>" of a file name without its extension.
std::optional<ImageSize> sizeInName(std::string_view stem)
{
    const size_t underscore = stem.rfind('_');
    if (underscore == std::string_view::npos)
        return std::nullopt;
    const std::string_view suffix = stem.substr(underscore + 1);
    const size_t cross = suffix.find('x');
    uint32_t width, height;
    if (cross == std::string_view::npos || !parseNumber(suffix.substr(0, cross), width) ||
        !parseNumber(suffix.substr(cross + 1), height))
        return std::nullopt;
    return ImageSize{width, height};
}

bool loadRaw(const std::string& path, std::string_view stem, Element element, rvkMemOption option,
             RAVIK_TEST_Buffer& buffer)
{
    const DataFile file(path);
    if (!file.file)
        return false;
    const ImageSize size = sizeInName(stem).value_or(ImageSize{file.size / sizeOf(element), 1});
    if (size.height == 0 || size.width > kLargestBlock / size.height ||
        size.width * size.height * sizeOf(element) != file.size)
        return fail(path, "size and name differ");
    return (shapePacked(size.width, size.height, element, option, buffer) &&
            file.read(buffer.block(), static_cast<size_t>(file.size))) ||
           fail(path, "cannot be loaded");
}

// Tokens of a PGM header: separated by white space, comments run from '#' to the end of the line.
class PgmReader
{
public:
    explicit PgmReader(std::span<const uint8_t> file) : m_rest(file) {}

    bool number(uint32_t& value)
    {
        skipBlanks();
        size_t digits = 0;
        while (digits < m_rest.size() && isdigit(m_rest[digits]))
            digits++;
        const bool good = parseNumber(std::string_view(reinterpret_cast<const char*>(m_rest.data()), digits), value);
        m_rest = m_rest.subspan(digits);
        return good;
    }
    // What follows the one white-space character behind the last number.
    std::span<const uint8_t> raster() const { return m_rest.empty() ? m_rest : m_rest.subspan(1); }

private:
    void skipBlanks()
    {
        bool comment = false;
        size_t i = 0;
        for (; i < m_rest.size() && (comment || isspace(m_rest[i]) || m_rest[i] == '#'); i++)
            comment = m_rest[i] == '#' || (comment && m_rest[i] != '\n');
        m_rest = m_rest.subspan(i);
    }

    std::span<const uint8_t> m_rest;
};

// Numbers in rows of equal length.
template <class T>
struct Grid
{
    size_t columns = 0;
    size_t rows = 0;
    std::vector<T> numbers;
};

template <class T>
bool parseGrid(std::string_view text, Grid<T>& grid)
{
    grid = {};
    while (!text.empty()) {
        const size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.find_first_not_of(" \t\r") == std::string_view::npos)
            continue;
        const std::vector<std::string> fields = splitFields(line);
        if (grid.rows++ == 0)
            grid.columns = fields.size();
        if (fields.size() != grid.columns)
            return false;
        for (const std::string& field : fields)
            if (!parseNumber(field, grid.numbers.emplace_back()))
                return false;
    }
    return grid.rows > 0;
}

template <class T>
bool loadGrid(const std::string& path, Grid<T>& grid)
{
    std::string text;
    return readText(path, text) && (parseGrid(text, grid) || fail(path, "no table of numbers"));
}

} // namespace

template <class T>
bool parseNumber(std::string_view text, T& value)
{
    const char* const end = text.data() + text.size();
    if constexpr (std::is_integral_v<T>) {
        const auto [stop, error] = std::from_chars(text.data(), end, value);
        return error == std::errc() && stop == end;
    } else {
        char digits[64]; // strtof wants a terminating zero
        if (text.empty() || text.size() >= sizeof digits || isspace(static_cast<unsigned char>(text[0])))
            return false;
        digits[text.copy(digits, text.size())] = '\0';
        char* stop;
        value = strtof(digits, &stop);
        return stop == digits + text.size() && std::isfinite(value);
    }
}

template bool parseNumber(std::string_view, uint8_t&);
template bool parseNumber(std::string_view, int8_t&);
template bool parseNumber(std::string_view, uint16_t&);
template bool parseNumber(std::string_view, int16_t&);
template bool parseNumber(std::string_view, uint32_t&);
template bool parseNumber(std::string_view, int32_t&);
template bool parseNumber(std::string_view, uint64_t&);
template bool parseNumber(std::string_view, float&);

std::vector<std::string> splitFields(std::string_view line)
{
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (const char character : line) {
        if (character == '"')
            quoted = !quoted;
        else if (character == ',' && !quoted)
            fields.emplace_back();
        else
            fields.back().push_back(character);
    }
    for (std::string& field : fields) {
        constexpr char blanks[] = " \t\r\n";
        field.erase(field.find_last_not_of(blanks) + 1);
        field.erase(0, field.find_first_not_of(blanks));
    }
    return fields;
}

bool parsePgm(std::span<const uint8_t> file, Element element, rvkMemOption option, RAVIK_TEST_Buffer& buffer)
{
    if (file.size() < 2 || file[0] != 'P' || (file[1] != '5' && file[1] != '2'))
        return false;
    const bool binary = file[1] == '5';
    PgmReader reader(file.subspan(2));
    uint32_t width, height, largest;
    if (!reader.number(width) || !reader.number(height) || !reader.number(largest) || largest == 0)
        return false;
    const uint32_t bytes = largest < 256 ? 1 : 2;
    // Every pixel takes at least a byte of the file, so an absurd size is refused before memory is asked for.
    if (largest > 65535 || sizeOf(element) != bytes || width > kLargestBlock || height > kLargestBlock ||
        uint64_t{width} * height > file.size() || !shapePacked(width, height, element, option, buffer))
        return false;

    uint8_t* const pixels = buffer.block();
    const size_t count = static_cast<size_t>(width) * height;
    if (binary) {
        const std::span<const uint8_t> raster = reader.raster();
        if (raster.size() < count * bytes)
            return false;
        for (size_t i = 0; i < count * bytes; i++) // the file is big-endian
            pixels[i] = raster[bytes == 2 ? i ^ 1 : i];
        return true;
    }
    for (size_t i = 0; i < count; i++) {
        uint32_t value;
        if (!reader.number(value) || value > largest)
            return false;
        memcpy(pixels + i * bytes, &value, bytes);
    }
    return true;
}

bool parseCsv(std::string_view text, Element element, rvkMemOption option, RAVIK_TEST_Buffer& buffer)
{
    return visitElement(element, [&](auto zero) {
        Grid<decltype(zero)> grid;
        if (!parseGrid(text, grid) || !shapePacked(grid.columns, grid.rows, element, option, buffer))
            return false;
        memcpy(buffer.block(), grid.numbers.data(), grid.numbers.size() * sizeof zero);
        return true;
    });
}

bool loadArray(const std::string& path, Element element, rvkMemOption option, RAVIK_TEST_Buffer& buffer)
{
    const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
    const size_t dot = name.rfind('.');
    const std::string_view extension = dot == std::string_view::npos ? "" : name.substr(dot + 1);

    if (extension == "data")
        return loadRaw(path, name.substr(0, dot), element, option, buffer);
    std::string text;
    if (extension == "pgm")
        return readText(path, text) &&
               (parsePgm({reinterpret_cast<const uint8_t*>(text.data()), text.size()}, element, option, buffer) ||
                fail(path, "no PGM image of the type"));
    if (extension == "csv")
        return readText(path, text) && (parseCsv(text, element, option, buffer) || fail(path, "no table of numbers"));
    testLog("Error:Invalid File Extension");
    return false;
}

bool loadRects(const std::string& path, std::vector<TestRect>& rects)
{
    rects.clear();
    Grid<int32_t> grid;
    if (!loadGrid(path, grid))
        return false;
    if (grid.columns != 4)
        return fail(path, "a rectangle has four numbers");
    for (size_t i = 0; i < grid.numbers.size(); i += 4)
        rects.push_back({grid.numbers[i], grid.numbers[i + 1], grid.numbers[i + 2], grid.numbers[i + 3]});
    return true;
}

bool loadCorrespondences(const std::string& path, TestCorrespondences& correspondences)
{
    uint32_t dimensions = correspondences.fromDimensions;
    correspondences = {};
    Grid<float> grid;
    if (!loadGrid(path, grid))
        return false;
    if (dimensions == 0)
        dimensions = grid.columns == 4 ? 2 : 3;
    const bool hasMask = grid.columns == dimensions + 3;
    if (grid.columns != dimensions + 2 && !hasMask)
        return fail(path, "a correspondence has four, five or six numbers");
    correspondences.fromDimensions = dimensions;
    correspondences.count = static_cast<uint32_t>(grid.rows);
    for (auto row = grid.numbers.begin(); row != grid.numbers.end(); row += static_cast<ptrdiff_t>(grid.columns)) {
        const auto to = row + correspondences.fromDimensions;
        correspondences.from.insert(correspondences.from.end(), row, to);
        correspondences.to.insert(correspondences.to.end(), to, to + 2);
        if (!hasMask)
            continue;
        if (!(to[2] >= 0 && to[2] <= UINT8_MAX))
            return fail(path, "a mask has bytes");
        correspondences.mask.push_back(static_cast<uint8_t>(to[2]));
    }
    return true;
}

bool loadContours(const std::string& path, TestContours& contours)
{
    contours.clear();
    Grid<int32_t> grid;
    if (!loadGrid(path, grid))
        return false;
    if (grid.columns != 3)
        return fail(path, "a contour point has three numbers");
    for (size_t i = 0; i < grid.numbers.size(); i += 3) {
        const int64_t contour = grid.numbers[i];
        const auto known = static_cast<int64_t>(contours.size());
        if (contour == known)
            contours.emplace_back();
        else if (contour < 0 || contour != known - 1)
            return fail(path, "contours are numbered from 0 without gaps");
        contours.back().push_back({grid.numbers[i + 1], grid.numbers[i + 2]});
    }
    return true;
}

bool loadStructure(const std::string& path, void* structure, size_t size)
{
    const DataFile file(path);
    return file.file && ((file.size == size && file.read(structure, size)) || fail(path, "wrong size of a structure"));
}

bool loadPyramid(const std::string& directory, const std::string& name, uint32_t planes, TestPyramid& pyramid)
{
    pyramid.images.clear();
    pyramid.planes = planes;
    const std::string path = directory + "/" + name;
    std::string text;
    if (!readText(path, text))
        return false;

    std::string_view rest = text;
    while (!rest.empty()) {
        const size_t end = rest.find('\n');
        const std::vector<std::string> names = splitFields(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (names.size() == 1 && names[0].empty())
            continue;
        if (names.size() != planes || pyramid.images.size() == kMostLevels * planes)
            return fail(path, "wrong number of images");
        for (const std::string& image : names) {
            RAVIK_TEST_Buffer& buffer = *pyramid.images.emplace_back(std::make_unique<RAVIK_TEST_Buffer>());
            if (!loadArray(directory + "/" + image, pyramid.element, pyramid.option, buffer))
                return false;
        }
    }
    return !pyramid.images.empty() || fail(path, "no level");
}

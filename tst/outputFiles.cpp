#include "outputFiles.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace {

constexpr int32_t kLongestCsvRow = 4;

[[noreturn]] void fail(const std::string& path)
{
    throw std::runtime_error(path + ": " + strerror(errno));
}

std::string csvText(const RAVIK_TEST_Buffer& image, Element element)
{
    return visitElement(element, [&](auto zero) {
        std::string text;
        for (int32_t j = 0; j < image.height; j++) {
            const auto* const row = reinterpret_cast<const decltype(zero)*>(image.row(j));
            std::vector<std::string> fields;
            for (int32_t i = 0; i < image.width; i++)
                fields.push_back(numberText(static_cast<double>(row[i]), element));
            text += csvLine(fields);
        }
        return text;
    });
}

void writeRows(OutputFile& file, const RAVIK_TEST_Buffer& image)
{
    for (int32_t j = 0; j < image.height; j++)
        file.write(image.row(j), static_cast<size_t>(image.width) * static_cast<size_t>(image.elementSize));
}

} // namespace

OutputFile::OutputFile(const std::string& path) : m_path(path), m_file(fopen(path.c_str(), "wb"))
{
    if (!m_file)
        fail(path);
}

OutputFile::~OutputFile()
{
    if (m_file)
        fclose(m_file);
}

void OutputFile::write(const void* bytes, size_t count)
{
    if (fwrite(bytes, 1, count, m_file) != count)
        fail(m_path);
}

void OutputFile::close()
{
    FILE* const file = m_file;
    m_file = nullptr;
    if (fclose(file) != 0)
        fail(m_path);
}

std::string csvLine(const std::vector<std::string>& fields)
{
    std::string line;
    for (const std::string& field : fields)
        line += (line.empty() ? "" : ",") + field;
    return line + "\n";
}

std::string numberText(double number, Element element)
{
    char text[40];
    snprintf(text, sizeof text, element == Element::f32 ? "%.9g" : "%.0f", number);
    return text;
}

std::string rawFileName(const std::string& name, uint32_t width, uint32_t height)
{
    return name + "_" + std::to_string(width) + "x" + std::to_string(height) + ".data";
}

std::string writeImage(const std::string& directory, const std::string& name, const RAVIK_TEST_Buffer& image,
                       Element element)
{
    const bool isCsv = image.height == 1 && image.width <= kLongestCsvRow;
    const bool isPgm = !isCsv && element == Element::u8;
    const std::string fileName =
        isCsv   ? name + ".csv"
        : isPgm ? name + ".pgm"
                : rawFileName(name, static_cast<uint32_t>(image.width), static_cast<uint32_t>(image.height));
    OutputFile file(directory + "/" + fileName);
    if (isCsv) {
        file.write(csvText(image, element));
    } else {
        if (isPgm)
            file.write("P5\n" + std::to_string(image.width) + " " + std::to_string(image.height) + "\n255\n");
        writeRows(file, image);
    }
    file.close();
    return fileName;
}

std::string writePairs(const std::string& directory, const std::string& name, const TestCorrespondences& pairs)
{
    const std::string fileName = name + ".csv";
    OutputFile file(directory + "/" + fileName);
    const auto text = [](float number) { return numberText(static_cast<double>(number), Element::f32); };
    for (size_t i = 0; i < pairs.count; i++) {
        std::vector<std::string> fields;
        for (size_t k = 0; k < pairs.fromDimensions; k++)
            fields.push_back(text(pairs.from[i * pairs.fromDimensions + k]));
        fields.push_back(text(pairs.to[2 * i]));
        fields.push_back(text(pairs.to[2 * i + 1]));
        if (!pairs.mask.empty())
            fields.push_back(std::to_string(pairs.mask[i]));
        file.write(csvLine(fields));
    }
    file.close();
    return fileName;
}

// Files of the test data. What cannot be written throws std::runtime_error.
#pragma once

#include "dataFiles.h"
#include "testBuffer.h"

#include "element.h"

#include <cstdio>
#include <string>
#include <vector>

class OutputFile
{
public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void write(const void* bytes, size_t count);
    void write(const std::string& text) { write(text.data(), text.size()); }
    // Ends the file; without it the file is not known to be complete.
    void close();

private:
    std::string m_path;
    FILE* m_file;
};

// A line of comma-separated fields.
std::string csvLine(const std::vector<std::string>& fields);

// Shortest text that reads back as the same number.
std::string numberText(double number, Element element);

// Writes the image, its rows one after the other, in the format that suits it: "csv" for short rows of numbers, "pgm"
// for what can be looked at, "data" for the rest. Returns the file's name: `name` with the format's suffix.
std::string writeImage(const std::string& directory, const std::string& name, const RAVIK_TEST_Buffer& image,
                       Element element);

// Writes correspondences, a line each. Returns the file's name.
std::string writePairs(const std::string& directory, const std::string& name, const TestCorrespondences& pairs);

// The name of a raw file, which tells its shape.
std::string rawFileName(const std::string& name, uint32_t width, uint32_t height);

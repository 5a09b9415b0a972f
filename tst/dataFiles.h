// The data files that control scripts name. Every loader reports success; what is missing, truncated or does not add up
// is logged and leaves nothing behind that could be read out of bounds.
#pragma once

#include "element.h"
#include "testBuffer.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct TestRect
{
    int32_t x, y, width, height;
};

struct TestPoint
{
    int32_t x, y;
};

struct TestCorrespondences
{
    uint32_t fromDimensions = 0; // 2 or 3; before it is loaded that which is wanted, or 0
    uint32_t count = 0;
    std::vector<float> from;   // fromDimensions numbers each
    std::vector<float> to;     // x, y each
    std::vector<uint8_t> mask; // one each; empty where the file has none
};

using TestContours = std::vector<std::vector<TestPoint>>;

// `planes` images per level: one, or an image and its two gradients. The caller chooses the element type.
struct TestPyramid
{
    Element element = Element::u8;
    rvkMemOption option = RAVIK_MEM_SYSTEM;
    uint32_t planes = 0;
    std::vector<std::unique_ptr<RAVIK_TEST_Buffer>> images; // level after level
};

// Loads an array by its file name's extension: "pgm", "data" (raw elements, little-endian) or "csv" (a line per row).
bool loadArray(const std::string& path, Element element, rvkMemOption option, RAVIK_TEST_Buffer& buffer);
// Lines of "x,y,width,height".
bool loadRects(const std::string& path, std::vector<TestRect>& rects);
// Lines of "fromX,fromY,toX,toY" or "fromX,fromY,fromZ,toX,toY".
bool loadCorrespondences(const std::string& path, TestCorrespondences& correspondences);
// Lines of "contour,x,y"; the contours are numbered from 0 without gaps.
bool loadContours(const std::string& path, TestContours& contours);
// The bytes of a structure, exactly `size` of them.
bool loadStructure(const std::string& path, void* structure, size_t size);
// A line per level, each with `planes` names of array files in `directory`.
bool loadPyramid(const std::string& directory, const std::string& name, uint32_t planes, TestPyramid& pyramid);

// The formats themselves.
bool parsePgm(std::span<const uint8_t> file, Element element, rvkMemOption option, RAVIK_TEST_Buffer& buffer);
bool parseCsv(std::string_view text, Element element, rvkMemOption option, RAVIK_TEST_Buffer& buffer);

// Converts the whole of `text`; false when it is no number of the type. Infinities and NaNs are no numbers here.
template <class T>
bool parseNumber(std::string_view text, T& value);

// Splits a line at its commas; a double quote toggles quoting, where commas do not split. Blanks around fields go.
std::vector<std::string> splitFields(std::string_view line);

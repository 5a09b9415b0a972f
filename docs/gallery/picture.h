// Coloured pictures, and rows of them in a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Colour
{
    uint8_t red, green, blue;

    uint8_t grey() const { return static_cast<uint8_t>((77 * red + 150 * green + 29 * blue + 128) / 256); }
};

class Picture
{
public:
    Picture(uint32_t columns, uint32_t rows, Colour colour = {255, 255, 255})
        : width(columns), height(rows), m_pixels(size_t{columns} * rows, colour)
    {
    }
    uint32_t width, height;
    Colour& at(uint32_t x, uint32_t y) { return m_pixels[size_t{y} * width + x]; }
    const Colour& at(uint32_t x, uint32_t y) const { return m_pixels[size_t{y} * width + x]; }
    const Colour* data() const { return m_pixels.data(); }

    // With its left upper corner at (left, top), as far as it fits.
    void paste(const Picture& other, uint32_t left, uint32_t top);
    Picture enlarged(uint32_t times) const;

private:
    std::vector<Colour> m_pixels;
};

// The inputs, an arrow, the outputs; without inputs no arrow.
Picture rowOf(const std::vector<Picture>& inputs, const std::vector<Picture>& outputs);

// Ends the program when the file cannot be written.
void writePng(const std::string& path, const Picture& picture);

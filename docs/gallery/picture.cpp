#include "picture.h"

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr uint32_t kGap = 8;
constexpr Colour kArrowColour{110, 110, 110};

Picture arrow()
{
    constexpr uint32_t kSize = 13;
    Picture picture(kSize, kSize);
    for (uint32_t y = 0; y < kSize; y++)
        for (uint32_t x = 0; x <= std::min(y, kSize - 1 - y) * 2; x++)
            picture.at(x, y) = kArrowColour;
    return picture;
}

} // namespace

void Picture::paste(const Picture& other, uint32_t left, uint32_t top)
{
    for (uint32_t y = 0; y < other.height && top + y < height; y++)
        for (uint32_t x = 0; x < other.width && left + x < width; x++)
            at(left + x, top + y) = other.at(x, y);
}

Picture Picture::enlarged(uint32_t times) const
{
    Picture larger(width * times, height * times);
    for (uint32_t y = 0; y < larger.height; y++)
        for (uint32_t x = 0; x < larger.width; x++)
            larger.at(x, y) = at(x / times, y / times);
    return larger;
}

Picture rowOf(const std::vector<Picture>& inputs, const std::vector<Picture>& outputs)
{
    std::vector<Picture> parts = inputs;
    if (!inputs.empty())
        parts.push_back(arrow());
    parts.insert(parts.end(), outputs.begin(), outputs.end());
    uint32_t width = 0, height = 0;
    for (const Picture& part : parts) {
        width += part.width + kGap;
        height = std::max(height, part.height);
    }
    Picture row(width - kGap, height);
    uint32_t left = 0;
    for (const Picture& part : parts) {
        row.paste(part, left, (height - part.height) / 2);
        left += part.width + kGap;
    }
    return row;
}

void writePng(const std::string& path, const Picture& picture)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.width;
    image.height = picture.height;
    image.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_file(&image, path.c_str(), 0, picture.data(), 0, nullptr)) {
        fprintf(stderr, "%s: %s\n", path.c_str(), image.message);
        exit(1);
    }
}

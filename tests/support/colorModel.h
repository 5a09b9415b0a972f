// What HSV and Lab are, in double precision; every colour.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace test {

// The largest distance that each byte of converted pixels has from the exact number; hues are on a circle of 256.
struct ColorDistances
{
    double channel[3] = {0, 0, 0};
};

// Pixels of 3 bytes.
void measureHsv(const uint8_t* rgb, const uint8_t* hsv, size_t pixels, ColorDistances& largest);
// Pixels of 4 bytes, and of 3.
void measureLab(const uint8_t* rgba, const uint8_t* lab, size_t pixels, ColorDistances& largest);

// The largest difference of each byte of pixels of 3.
void measureDifferences(const uint8_t* a, const uint8_t* b, size_t pixels, int (&largest)[3]);

// The colours are taken in pictures of one red: all of them, or some where each takes long.
#if defined(RVK_TEST_EVERY_COLOUR)
constexpr uint32_t kRedStep = 1;
#else
constexpr uint32_t kRedStep = 51;
#endif

// A picture of all greens and blues.
template <size_t channels>
std::vector<uint8_t> greensAndBlues(uint32_t red)
{
    std::vector<uint8_t> picture;
    for (uint32_t i = 0; i < 65536; ++i) {
        picture.push_back(static_cast<uint8_t>(red));
        picture.push_back(static_cast<uint8_t>(i >> 8));
        picture.push_back(static_cast<uint8_t>(i));
        if (channels == 4)
            picture.push_back(static_cast<uint8_t>(i * 7));
    }
    return picture;
}

} // namespace test

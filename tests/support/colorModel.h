// What HSV and Lab are, in double precision.
#pragma once

#include <cstddef>
#include <cstdint>

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

} // namespace test

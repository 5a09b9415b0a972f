#include "colorModel.h"

#include <algorithm>
#include <cmath>

namespace test {

namespace {

struct Exact
{
    double channel[3];
};

void measure(const Exact& exact, const uint8_t* pixel, ColorDistances& largest)
{
    for (size_t i = 0; i < 3; ++i)
        largest.channel[i] = std::max(largest.channel[i], std::abs(pixel[i] - exact.channel[i]));
}

double linearLight(uint8_t byte)
{
    const double c = byte / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double labFunction(double t)
{
    constexpr double kDelta = 6.0 / 29;
    return t > kDelta * kDelta * kDelta ? std::cbrt(t) : t / (3 * kDelta * kDelta) + 4.0 / 29;
}

struct LinearLights
{
    double of[256];

    LinearLights()
    {
        for (unsigned byte = 0; byte < 256; ++byte)
            of[byte] = linearLight(static_cast<uint8_t>(byte));
    }
};

} // namespace

void measureHsv(const uint8_t* rgb, const uint8_t* hsv, size_t pixels, ColorDistances& largest)
{
    for (size_t i = 0; i < pixels; ++i, rgb += 3, hsv += 3) {
        const double red = rgb[0], green = rgb[1], blue = rgb[2];
        const double value = std::max({red, green, blue}), range = value - std::min({red, green, blue});
        double sixths = 0;
        if (range > 0)
            sixths = value == red     ? (green - blue) / range
                     : value == green ? 2 + (blue - red) / range
                                      : 4 + (red - green) / range;
        double hue = sixths * 256 / 6;
        if (hue < hsv[0] - 128.0) // the other way around the circle is shorter
            hue += 256;
        else if (hue > hsv[0] + 128.0)
            hue -= 256;
        measure({{hue, value > 0 ? 255 * range / value : 0, value}}, hsv, largest);
    }
}

void measureLab(const uint8_t* rgba, const uint8_t* lab, size_t pixels, ColorDistances& largest)
{
    static const LinearLights lights;
    for (size_t i = 0; i < pixels; ++i, rgba += 4, lab += 3) {
        const double red = lights.of[rgba[0]], green = lights.of[rgba[1]], blue = lights.of[rgba[2]];
        const double x = labFunction((0.4124 * red + 0.3576 * green + 0.1805 * blue) / 0.9505);
        const double y = labFunction(0.2126 * red + 0.7152 * green + 0.0722 * blue);
        const double z = labFunction((0.0193 * red + 0.1192 * green + 0.9505 * blue) / 1.0890);
        measure({{(116 * y - 16) * 2.55, 500 * (x - y) + 128, 200 * (y - z) + 128}}, lab, largest);
    }
}

void measureDifferences(const uint8_t* a, const uint8_t* b, size_t pixels, int (&largest)[3])
{
    for (size_t i = 0; i < pixels; ++i)
        for (size_t channel = 0; channel < 3; ++channel)
            largest[channel] = std::max(largest[channel], std::abs(a[3 * i + channel] - b[3 * i + channel]));
}

} // namespace test

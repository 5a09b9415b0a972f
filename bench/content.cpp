#include "content.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace bench {
namespace {

class Random // xorshift
{
public:
    explicit Random(uint32_t seed = 0) : m_state(0x9E3779B97F4A7C15 + seed * 0xD1342543DE82EF95) {}

    uint64_t next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return m_state;
    }
    float between(float low, float high)
    {
        return low + (high - low) * static_cast<float>(next() >> 40) / static_cast<float>(1 << 24);
    }
    // Nearly Gaussian, with a deviation of 1.
    float normal() { return between(-1, 1) + between(-1, 1) + between(-1, 1); }

private:
    uint64_t m_state;
};

// Noise with the same variance in each octave, a period of kSize pixels and a deviation of about 1: what surfaces look
// like.
class Texture
{
public:
    static constexpr uint32_t kSize = 256;

    explicit Texture(Random& random) : m_values(kSize * kSize)
    {
        constexpr float octaves = 6;
        for (uint32_t cell = 2; cell <= 64; cell *= 2)
            addOctave(random, cell, 1.7f / std::sqrt(octaves)); // interpolation takes from the variance
    }
    float at(uint32_t x, uint32_t y) const { return m_values[y % kSize * kSize + x % kSize]; }

private:
    void addOctave(Random& random, uint32_t cell, float amplitude)
    {
        const uint32_t cells = kSize / cell;
        std::vector<float> corners(cells * cells);
        for (float& corner : corners)
            corner = amplitude * random.normal();
        for (uint32_t y = 0; y < kSize; y++)
            for (uint32_t x = 0; x < kSize; x++) {
                const auto corner = [&](uint32_t dx, uint32_t dy) {
                    return corners[(y / cell + dy) % cells * cells + (x / cell + dx) % cells];
                };
                const float right = static_cast<float>(x % cell) / static_cast<float>(cell);
                const float down = static_cast<float>(y % cell) / static_cast<float>(cell);
                const float above = std::lerp(corner(0, 0), corner(1, 0), right);
                const float below = std::lerp(corner(0, 1), corner(1, 1), right);
                m_values[y * kSize + x] += std::lerp(above, below, down);
            }
    }

    std::vector<float> m_values;
};

struct Canvas
{
    uint32_t width, height;
    std::vector<float> values;

    float& at(uint32_t x, uint32_t y) { return values[size_t{y} * width + x]; }
};

// An ellipse of one brightness in a light that falls off along a direction.
struct Thing
{
    float x, y, radius;          // of the longer half axis
    float axisX, axisY;          // its direction, of length 1
    float stretch;               // how many times shorter the other half axis is
    float grey;                  // at its centre
    float slopeX, slopeY;        // of its brightness, per pixel
    float softness;              // pixels from outside its outline to inside
    float roughness;             // deviation of its texture
    uint32_t textureX, textureY; // where in the texture it was cut out

    Thing(Random& random, const Canvas& canvas, float least, float largest)
    {
        // The density of radii is proportional to radius^-3.
        const float ratio = least / largest;
        radius = least / std::sqrt(1 - random.between(0, 1) * (1 - ratio * ratio));
        x = random.between(-radius, static_cast<float>(canvas.width) + radius);
        y = random.between(-radius, static_cast<float>(canvas.height) + radius);
        const float directionX = random.between(-1, 1), directionY = random.between(0.01f, 1);
        const float length = std::sqrt(directionX * directionX + directionY * directionY);
        axisX = directionX / length;
        axisY = directionY / length;
        stretch = random.between(1, 3);
        grey = 115 + 42 * random.normal();
        slopeX = random.between(-25, 25) / radius;
        slopeY = random.between(-25, 25) / radius;
        softness = random.between(0, 1) < 0.5f ? 1.0f : random.between(1, 0.5f * radius + 1);
        roughness = std::max(0.0f, random.between(-5, 9));
        textureX = static_cast<uint32_t>(random.next() % Texture::kSize);
        textureY = static_cast<uint32_t>(random.next() % Texture::kSize);
    }

    void draw(Canvas& canvas, const Texture& texture) const
    {
        const auto clamped = [](float at, uint32_t size) {
            return static_cast<uint32_t>(std::clamp(at, 0.0f, static_cast<float>(size)));
        };
        const float reach = radius + softness;
        const uint32_t left = clamped(x - reach, canvas.width), right = clamped(x + reach, canvas.width);
        const uint32_t top = clamped(y - reach, canvas.height), bottom = clamped(y + reach, canvas.height);
        for (uint32_t row = top; row < bottom; row++)
            for (uint32_t column = left; column < right; column++) {
                const float dx = static_cast<float>(column) - x, dy = static_cast<float>(row) - y;
                const float opacity = opacityAt(dx, dy);
                if (opacity <= 0)
                    continue;
                const float value =
                    grey + slopeX * dx + slopeY * dy + roughness * texture.at(column + textureX, row + textureY);
                float& pixel = canvas.at(column, row);
                pixel = std::lerp(pixel, value, std::min(opacity, 1.0f));
            }
    }

private:
    float opacityAt(float dx, float dy) const
    {
        const float along = dx * axisX + dy * axisY, across = (dy * axisX - dx * axisY) * stretch;
        const float distance = std::sqrt(along * along + across * across);
        return (radius - distance) / softness + 0.5f;
    }
};

// A lens spreads a point: weights 1, 2, 1 along one direction. The neighbours of the pixel `at` are `step` values away.
void spread(std::vector<float>& values, size_t start, size_t count, size_t step)
{
    float before = values[start];
    for (size_t i = 0, at = start; i < count; i++, at += step) {
        const float here = values[at], after = i + 1 < count ? values[at + step] : here;
        values[at] = (before + 2 * here + after) / 4;
        before = here;
    }
}

void focus(Canvas& canvas)
{
    for (uint32_t y = 0; y < canvas.height; y++)
        spread(canvas.values, size_t{y} * canvas.width, canvas.width, 1);
    for (uint32_t x = 0; x < canvas.width; x++)
        spread(canvas.values, x, canvas.height, canvas.width);
}

// Light comes in grains: the brighter, the more noise.
void expose(Canvas& canvas, Random& random)
{
    for (float& value : canvas.values) {
        const float light = std::clamp(value, 0.0f, 255.0f);
        value = std::clamp(light + (0.5f + 0.07f * std::sqrt(light)) * random.normal(), 0.0f, 255.0f);
    }
}

} // namespace

void fillRandom(uint8_t* data, size_t bytes)
{
    Random random;
    for (size_t i = 0; i + sizeof(uint64_t) <= bytes; i += sizeof(uint64_t)) {
        const uint64_t value = random.next();
        memcpy(data + i, &value, sizeof value);
    }
}

void fillRandom(float* data, size_t values)
{
    fillRandom(reinterpret_cast<uint8_t*>(data), values * sizeof *data);
    for (size_t i = 0; i < values; i++) {
        uint32_t bits;
        memcpy(&bits, data + i, sizeof bits);
        data[i] = static_cast<float>(bits >> 8) / 65536.0f;
    }
}

std::vector<float> drawNaturalPicture(uint32_t width, uint32_t height, uint32_t seed)
{
    Random random(seed + 1);
    const Texture texture(random);
    Canvas canvas{width, height, std::vector<float>(size_t{width} * height, 115.0f)};

    const float least = static_cast<float>(height) / 30, largest = static_cast<float>(height) / 2;
    const float meanArea = 3.14f / 2 * 2 * least * least * std::log(largest / least);
    constexpr float layers = 4; // so much is drawn on each pixel that nothing is left of the ground
    const auto things =
        static_cast<uint32_t>(layers * static_cast<float>(width) * static_cast<float>(height) / meanArea);
    for (uint32_t i = 0; i < things; i++)
        Thing(random, canvas, least, largest).draw(canvas, texture);

    focus(canvas);
    expose(canvas, random);
    return std::move(canvas.values);
}

} // namespace bench

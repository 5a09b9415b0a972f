#include "scene.h"

#include <algorithm>
#include <cmath>

namespace {

// Places in the scene, whatever its size: from 0 to 4 across and from 0 to 3 down.
constexpr double kAcross = 4, kDown = 3;

struct Shade
{
    double red, green, blue;
};

constexpr uint32_t kRows = 7, kColumns = 5;
constexpr const char* kLetters[][kRows] = {
    {"####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"},
    {".###.", "#...#", "#...#", "#####", "#...#", "#...#", "#...#"},
    {"#...#", "#...#", "#...#", "#...#", "#...#", ".#.#.", "..#.."},
    {".###.", "..#..", "..#..", "..#..", "..#..", "..#..", ".###."},
    {"#...#", "#..#.", "#.#..", "##...", "#.#..", "#..#.", "#...#"},
};

bool isOnLetter(double x, double y)
{
    constexpr double left = 0.3, top = 0.3, size = 0.085;
    const double column = (x - left) / size, row = (y - top) / size;
    if (column < 0 || row < 0 || row >= kRows || column >= std::size(kLetters) * (kColumns + 1))
        return false;
    const auto place = static_cast<uint32_t>(column);
    const uint32_t inLetter = place % (kColumns + 1);
    return inLetter < kColumns && kLetters[place / (kColumns + 1)][static_cast<uint32_t>(row)][inLetter] == '#';
}

Shade ball(double x, double y) // around its centre, of radius 1
{
    const double lit = std::max(0.0, std::sqrt(1 - x * x - y * y) * 0.8 - x * 0.35 - y * 0.45);
    return {60 + 190 * lit, 25 + 105 * lit, 20 + 45 * lit};
}

Shade wall(double x, double y)
{
    return {175 - 20 * x, 190 - 18 * x - 10 * y, 215 - 30 * y};
}

// Boards in perspective, with grain.
Shade floor(double x, double y)
{
    const double depth = 1 / (y - 1.55), across = (x - 2) * depth * 2;
    const double grain = std::sin(across * 40 + 3 * std::sin(depth * 9)) * 14;
    const double board = static_cast<int>(std::floor(across) + std::floor(depth * 2)) % 2 == 0 ? 45 : 0;
    return {105 + board + grain, 85 + board + grain, 60 + board / 2 + grain};
}

Shade box(double x, double y) // from 0 to 1
{
    const bool isSide = x > 0.7;
    const double light = isSide ? 0.55 : 0.85 + 0.15 * y;
    return {60 * light, 140 * light, 95 * light};
}

Shade sceneAt(double x, double y, int moment)
{
    const double ballX = (x - 2.9 + 0.22 * moment) / 0.55, ballY = (y - 1.75 + 0.05 * moment) / 0.55;
    if (ballX * ballX + ballY * ballY < 1)
        return ball(ballX, ballY);
    if (x > 0.7 && x < 1.6 && y > 1.5 && y < 2.4)
        return box((x - 0.7) / 0.9, (y - 1.5) / 0.9);
    if (isOnLetter(x, y))
        return {35, 40, 60};
    return y < 2 ? wall(x, y) : floor(x, y);
}

} // namespace

Picture drawScene(uint32_t width, uint32_t height, int moment)
{
    constexpr int kSamples = 4; // of each pixel, across and down
    Picture picture(width, height);
    for (uint32_t y = 0; y < height; y++)
        for (uint32_t x = 0; x < width; x++) {
            Shade sum{0, 0, 0};
            for (int i = 0; i < kSamples * kSamples; i++) {
                const double across = x + (i % kSamples + 0.5) / kSamples, down = y + (i / kSamples + 0.5) / kSamples;
                const Shade shade = sceneAt(across / width * kAcross, down / height * kDown, moment);
                sum.red += shade.red, sum.green += shade.green, sum.blue += shade.blue;
            }
            const auto byte = [](double total) {
                return static_cast<uint8_t>(std::clamp(total / (kSamples * kSamples), 0.0, 255.0));
            };
            picture.at(x, y) = {byte(sum.red), byte(sum.green), byte(sum.blue)};
        }
    return picture;
}

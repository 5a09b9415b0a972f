#include "naturalPicture.h"

#include <algorithm>

namespace {

// A part of the picture that becomes lighter or darker across and down. Shades are in 1/16 of a grey level.
struct Box
{
    int64_t left, top, right, bottom; // the last two are outside
    int64_t grey, across, down;

    Box(uint32_t width, uint32_t height, int64_t size, RandomBits& random)
        : left(random.between(-size / 2, width - 1)), top(random.between(-size / 2, height - 1)),
          right(left + random.between(size / 2, size)), bottom(top + random.between(size / 2, size)),
          grey(random.between(0, 255 * 16)), across(random.between(-8, 8)), down(random.between(-8, 8))
    {
        left = std::max<int64_t>(left, 0), right = std::min<int64_t>(right, width);
        top = std::max<int64_t>(top, 0), bottom = std::min<int64_t>(bottom, height);
    }
};

} // namespace

void drawNaturalPicture(uint8_t* picture, uint32_t width, uint32_t height, size_t stride, RandomBits& random)
{
    const auto draw = [&](const Box& box) {
        for (int64_t y = box.top; y < box.bottom; y++)
            for (int64_t x = box.left; x < box.right; x++) {
                const int64_t shade = box.grey + (x - box.left) * box.across + (y - box.top) * box.down;
                picture[static_cast<size_t>(y) * stride + static_cast<size_t>(x)] =
                    static_cast<uint8_t>(std::clamp<int64_t>(shade / 16, 0, 255));
            }
    };
    Box ground(width, height, 2, random);
    ground.left = ground.top = 0, ground.right = width, ground.bottom = height;
    draw(ground);
    // A quarter of the picture for each size, which halves from the whole to a few pixels.
    const int64_t pixels = int64_t{width} * height;
    for (int64_t size = std::max(width, height); size >= 2; size /= 2)
        for (int64_t drawn = 0; drawn < pixels; drawn += 4 * size * size)
            draw(Box(width, height, size, random));
    for (uint32_t y = 0; y < height; y++)
        for (uint32_t x = 0; x < width; x++) {
            uint8_t& pixel = picture[y * stride + x];
            pixel = static_cast<uint8_t>(std::clamp<int64_t>(pixel + random.between(-2, 2), 0, 255));
        }
}

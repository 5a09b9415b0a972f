// Pictures and their windows, pixel by pixel: what the oracles of filters are made of.
#pragma once

#include "implementations.h"
#include "random.h"

#include <algorithm>
#include <tuple>

namespace test {

template <class T>
struct Picture
{
    int width, height;
    std::vector<T> pixels; // row by row

    Picture(int columns, int rows, T value = {})
        : width(columns), height(rows), pixels(static_cast<size_t>(columns) * static_cast<size_t>(rows), value)
    {
    }
    bool operator==(const Picture& other) const
    {
        if (width != other.width || height != other.height)
            return false;
        if constexpr (std::is_same_v<T, float>)
            return std::equal(pixels.begin(), pixels.end(), other.pixels.begin(), sameFloat);
        else
            return pixels == other.pixels;
    }

    T& at(int x, int y) { return pixels[static_cast<size_t>(y * width + x)]; }
    T at(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
    T nearest(int x, int y) const { return at(std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1)); }
    bool has(int x, int y) const { return x >= 0 && x < width && y >= 0 && y < height; }
    // Whether the window of M x N pixels around a pixel lies in the picture.
    bool hasWindow(int x, int y, int M, int N) const
    {
        return has(x - M / 2, y - N / 2) && has(x - M / 2 + M - 1, y - N / 2 + N - 1);
    }

    // As arguments of a call.
    uint32_t columns() const { return static_cast<uint32_t>(width); }
    uint32_t rows() const { return static_cast<uint32_t>(height); }
    uint32_t stride() const { return columns() * static_cast<uint32_t>(sizeof(T)); }

    friend void PrintTo(const Picture& p, std::ostream* out)
    {
        *out << p.width << "x" << p.height << " " << ::testing::PrintToString(p.pixels);
    }
};

// The picture of pixelAt(x, y).
template <class T, class PixelAt>
Picture<T> pictureOf(int width, int height, PixelAt pixelAt)
{
    Picture<T> picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.at(x, y) = static_cast<T>(pixelAt(x, y));
    return picture;
}

template <class T>
Picture<T> randomPicture(Random& random, int width, int height)
{
    const Content content = drawContent(random);
    const T constant = drawElement<T>(random, Content::uniform);
    return pictureOf<T>(width, height, [&](int, int) {
        return content == Content::constant ? constant : drawElement<T>(random, content);
    });
}

// ---- windows ----

// How a window goes on outside the picture: with `outside` or with the nearest pixel.
enum class Beyond { constant, nearest };

// The pixels of the window of M x N around a pixel, row by row. Its centre is M / 2 pixels from its left end and N / 2
// from the top.
template <class T>
std::vector<T> windowOf(const Picture<T>& picture, int x, int y, int M, int N, Beyond beyond, T outside = {});

template <class T, class Weight>
int64_t weightedSum(const std::vector<T>& window, const std::vector<Weight>& weights);

// The weights of a window: those of its rows times those of its columns.
inline std::vector<int> productWeights(const std::vector<int>& ofRows, const std::vector<int>& ofColumns)
{
    std::vector<int> weights;
    for (const int row : ofRows)
        for (const int column : ofColumns)
            weights.push_back(row * column);
    return weights;
}

// What Sobel's operator of 3, 5 or 7 pixels weighs across and along the derivative.
inline const std::vector<int>& sobelSmoothing(int size)
{
    static const std::vector<int> weights[] = {{1, 2, 1}, {1, 4, 6, 4, 1}, {1, 6, 15, 20, 15, 6, 1}};
    return weights[size / 2 - 1];
}
inline const std::vector<int>& sobelDifference(int size)
{
    static const std::vector<int> weights[] = {{-1, 0, 1}, {-1, -2, 0, 2, 1}, {-1, -4, -5, 0, 5, 4, 1}};
    return weights[size / 2 - 1];
}

// ---- calls ----

// What a function makes of a picture; 77 where it writes nothing. Its arguments stand behind the destination or before
// it; there may be no strides.
template <class D, class T, class Function, class... Arguments>
Picture<D> filtered(Function function, const Picture<T>& src, Arguments... arguments)
{
    Picture<D> dst(src.width, src.height, D{77});
    const T* const in = src.pixels.data();
    D* const out = dst.pixels.data();
    const uint32_t width = src.columns(), height = src.rows(), srcStride = src.stride(), dstStride = dst.stride();
    const auto call = [&] {
        if constexpr (std::is_invocable_v<Function, const T*, uint32_t, uint32_t, uint32_t, D*, uint32_t, Arguments...>)
            return function(in, width, height, srcStride, out, dstStride, arguments...);
        else if constexpr (std::is_invocable_v<Function, const T*, uint32_t, uint32_t, D*, Arguments...>)
            return function(in, width, height, out, arguments...);
        else if constexpr (std::is_invocable_v<Function, const T*, uint32_t, uint32_t, Arguments..., D*>)
            return function(in, width, height, arguments..., out);
        else
            return function(in, width, height, srcStride, arguments..., out, dstStride);
    };
    if constexpr (std::is_void_v<decltype(call())>)
        call();
    else
        EXPECT_EQ(call(), RAVIK_SUCCESS);
    return dst;
}

// Every implementation of a function makes `expected(picture, arguments...)` of random pictures from least x least
// pixels on, some of them wider than vectors; the arguments are a tuple that draw(random, picture) gives.
template <Slot slot, class S, class D = S, class Draw, class Expected>
void expectFiltered(int least, Draw draw, Expected expected, int trials = 30)
{
    Random random(static_cast<uint32_t>(slot));
    for (int trial = 0; trial < trials && !::testing::Test::HasFailure(); ++trial) {
        const int width = least + static_cast<int>(random.below(trial % 3 == 0 ? 4 : trial % 3 == 1 ? 25 : 90));
        const int height = least + static_cast<int>(random.below(trial % 2 ? 4 : trial % 8 ? 20 : 40));
        const Picture<S> src = randomPicture<S>(random, width, height);
        std::apply(
            [&](auto... arguments) {
                const Picture<D> wanted = expected(src, arguments...);
                forEachImplementation<slot>([&](const char* name, auto function) {
                    EXPECT_EQ(filtered<D>(function, src, arguments...), wanted)
                        << nameOf(slot) << " on " << name << ", arguments "
                        << ::testing::PrintToString(std::tuple(arguments...));
                });
            },
            draw(random, src));
    }
}
// The same with arguments that do not change.
template <Slot slot, class S, class... Arguments, class Expected>
void expectFiltered(int least, std::tuple<Arguments...> arguments, Expected expected)
{
    expectFiltered<slot, S>(
        least, [&](auto&&...) { return arguments; }, [&](const auto& src, auto...) { return expected(src); });
}

// Vector implementations make what the reference makes: for options that no oracle covers.
template <Slot slot, class S, class D = S, class Draw>
void expectVectaEqualsReference(int least, Draw draw, int trials = 60)
{
    expectFiltered<slot, S, D>(
        least, draw,
        [](const auto& src, auto... arguments) { return filtered<D>(referenceOf<slot>(), src, arguments...); }, trials);
}

} // namespace test

// Side-by-side benchmarks. A function is one row beside its peers; bench/README.md shows how to add one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#if RVK_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#if RVK_BENCH_LIBYUV
#include <libyuv.h>
#endif

namespace bench {

using u8 = uint8_t;
using u16 = uint16_t;
using u32 = uint32_t;
using s8 = int8_t;
using s16 = int16_t;
using s32 = int32_t;
using f32 = float;

// What the inputs of a row contain: values of the full range without any order, or a picture like a photograph.
enum class Content : uint8_t { random, natural };

// The largest picture (counting instructions needs none larger than VGA), and how many values of an element type each
// buffer holds: four channels of it and some slack.
inline constexpr size_t kMostPixels = sizeof(void*) == 8 ? 1920 * 1080 : 640 * 480;
inline constexpr size_t kBufferValues = 4 * kMostPixels + 4096;
inline constexpr unsigned kBuffers = 6;

// The inputs and outputs `index` of element type T, made at the first use; outputs are zero. Natural pictures have one
// channel; integers wider than a byte hold 12 bits of it, as cameras give.
template <class T>
const T* randomInput(unsigned index);
template <class T>
const T* naturalInput(unsigned index, uint32_t width, uint32_t height);
template <class T>
T* output(unsigned index);

// What a row works on: a size, and packed inputs and outputs of any element type. A 64-byte boundary starts each.
struct Picture
{
    uint32_t width;
    uint32_t height;
    Content content = Content::random;

    template <class T>
    const T* in(unsigned index = 0) const
    {
        return content == Content::natural ? naturalInput<T>(index, width, height) : randomInput<T>(index);
    }
    template <class T>
    T* out(unsigned index = 0) const
    {
        return output<T>(index);
    }

#if RVK_BENCH_OPENCV
    template <class T>
    cv::Mat matIn(unsigned index = 0, int channels = 1) const
    {
        return mat(const_cast<T*>(in<T>(index)), height, width, channels);
    }
    template <class T>
    cv::Mat matOut(unsigned index = 0, int channels = 1) const
    {
        return mat(out<T>(index), height, width, channels);
    }
    // Of another size, for functions from or to pictures that are not as large as this one.
    template <class T>
    cv::Mat matIn(cv::Size size, unsigned index = 0, int channels = 1) const
    {
        return mat(const_cast<T*>(in<T>(index)), static_cast<uint32_t>(size.height), static_cast<uint32_t>(size.width),
                   channels);
    }
    template <class T>
    cv::Mat matOut(cv::Size size, unsigned index = 0, int channels = 1) const
    {
        return mat(out<T>(index), static_cast<uint32_t>(size.height), static_cast<uint32_t>(size.width), channels);
    }
    template <class T>
    cv::Mat matOutTurned(unsigned index = 0, int channels = 1) const
    {
        return mat(out<T>(index), width, height, channels);
    }

private:
    template <class T>
    static cv::Mat mat(T* data, uint32_t rows, uint32_t columns, int channels)
    {
        return cv::Mat(static_cast<int>(rows), static_cast<int>(columns), CV_MAKETYPE(cv::DataType<T>::depth, channels),
                       data);
    }
#endif
};

// Compulsory bytes of a pixel: every input once, every output once.
struct Traffic
{
    double bytesPerPixel;
    bool streaming = false; // element by element: memcpy speed is the goal, and 0.6 instructions a pixel of u8 on Arm
    bool byContent = false; // the work depends on the content: the row runs on a natural picture, too
    bool onNatural = false; // the row runs on a natural picture alone
};
constexpr Traffic streaming(double reads, double writes)
{
    return {.bytesPerPixel = reads + writes, .streaming = true};
}
constexpr Traffic traffic(double reads, double writes)
{
    return {.bytesPerPixel = reads + writes};
}
constexpr Traffic trafficByContent(double reads, double writes)
{
    return {.bytesPerPixel = reads + writes, .byContent = true};
}
constexpr Traffic trafficOnNatural(double reads, double writes)
{
    return {.bytesPerPixel = reads + writes, .onNatural = true};
}

using Work = void (*)(const Picture&);

struct Row
{
    const char* function;  // rvkAbsDiffu8
    const char* best;      // its name in best.inc and bestInstructions.inc, or null
    Traffic bytes;         // per pixel
    Work ravik;            // run as C reference and as VECTA
    Work opencv = nullptr; // null: none, or not built in
    Work libyuv = nullptr;
    Picture shape = {0, 0}; // for rows that are not about pictures: items and 1
};

// A unit's rows register themselves: const bench::Rows registered(rows);
struct Rows
{
    explicit Rows(std::span<const Row> rows);
};

} // namespace bench

// The works of a row, as expressions on the picture p.
#define RAVIK(...) +[]([[maybe_unused]] const bench::Picture& p) { __VA_ARGS__; }
#if RVK_BENCH_OPENCV
#define OPENCV(...) RAVIK(__VA_ARGS__)
#else
#define OPENCV(...) nullptr
#endif
#if RVK_BENCH_LIBYUV
#define LIBYUV(...) RAVIK(__VA_ARGS__)
#else
#define LIBYUV(...) nullptr
#endif

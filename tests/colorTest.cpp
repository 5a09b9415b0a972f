// Conversions between formats: every function that converts, against one model of formats; worked values; how far from
// the start a colour is that went to YCbCr and back; agreement with other libraries. HSV and Lab are in colorSpaceTest.
#include "groups.h"
#include "support/colorModel.h"
#include "support/functionCall.h"
#include "support/implementations.h"
#include "support/logCapture.h"

#include <ravik/ravik.h>

#include <cmath>
#include <map>

#if RVK_TEST_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#if RVK_TEST_LIBYUV
#include <libyuv.h>
#endif

using namespace test;

namespace {

// ---- a model of formats ---------------------------------------------------------------------------------------------

// A plane is rows of groups of bytes; a group holds what belongs to 2^xShift x 2^yShift pixels. Each byte is a
// component by its letter: R, G, B, A, L (grey), Y, U (Cb), V (Cr), or a digit for a channel without meaning. A letter
// that comes twice is that of the next pixel. Words of 16 bits have 5 bits, 6 and 5, whose letters they name from the
// high ones on.
struct PlaneModel
{
    std::string letters;
    uint32_t xShift = 0, yShift = 0;
    bool isWord = false;

    size_t groupSize() const { return isWord ? 2 : letters.size(); }
    bool has(char letter) const { return letters.find(letter) != std::string::npos; }
};
using FormatModel = std::vector<PlaneModel>;

bool has(const FormatModel& format, char letter)
{
    return std::any_of(format.begin(), format.end(), [=](const PlaneModel& plane) { return plane.has(letter); });
}

// YCbCr with chroma in two planes, or in pairs, of which one letter comes first.
FormatModel planar(uint32_t xShift, uint32_t yShift)
{
    return {{"Y"}, {"U", xShift, yShift}, {"V", xShift, yShift}};
}
FormatModel pseudoPlanar(const char* pair, uint32_t xShift, uint32_t yShift)
{
    return {{"Y"}, {pair, xShift, yShift}};
}

// By the names that functions have for them.
const std::map<std::string, FormatModel> kFormats = {
    {"RGB565", {{"RGB", 0, 0, true}}},
    {"BGR565", {{"BGR", 0, 0, true}}},
    {"RGB888", {{"RGB"}}},
    {"BGR888", {{"BGR"}}},
    {"RGBA8888", {{"RGBA"}}},
    {"RGB8888", {{"RGBA"}}},
    {"BGRA8888", {{"BGRA"}}},
    {"Gray", {{"L"}}},
    {"YCrCb", {{"YVU"}}},
    {"YCbCr444Planar", planar(0, 0)},
    {"YCbCr422Planar", planar(1, 0)},
    {"YCbCr420Planar", planar(1, 1)},
    {"YCbCr444PseudoPlanar", pseudoPlanar("UV", 0, 0)},
    {"YCbCr422PseudoPlanar", pseudoPlanar("UV", 1, 0)},
    {"YCbCr420PseudoPlanar", pseudoPlanar("UV", 1, 1)},
    {"YCrCb420PseudoPlanar", pseudoPlanar("VU", 1, 1)},
    {"YUV420", pseudoPlanar("VU", 1, 1)},
    {"YCrCbH1V1", pseudoPlanar("VU", 0, 0)},
    {"YCrCbH2V1", pseudoPlanar("VU", 1, 0)},
    {"YCrCbH2V2", pseudoPlanar("VU", 1, 1)},
    {"YCrCbH1V2", pseudoPlanar("VU", 0, 1)},
    {"RGB", {{"RGB"}}},
    {"RGBA", {{"RGBA"}}},
    {"NV12", pseudoPlanar("UV", 1, 1)},
    {"NV21", pseudoPlanar("VU", 1, 1)},
    {"UYVY", {{"UYVY", 1, 0}}},
    {"YUYV", {{"YUYV", 1, 0}}},
};

struct ConversionModel
{
    FormatModel from, to;
    bool isRotated = false;
};

const std::map<std::string, ConversionModel> kOthers = {
    {"rvkColorCbCrSwapu8", {{{"01"}}, {{"10"}}}},
    {"rvkInterleaveu8", {{{"0"}, {"1"}}, {{"01"}}}},
    {"rvkDeinterleaveu8", {{{"01"}}, {{"0"}, {"1"}}}},
    {"rvkChannelCombine2Planesu8", {{{"0"}, {"1"}}, {{"01"}}}},
    {"rvkChannelCombine3Planesu8", {{{"0"}, {"1"}, {"2"}}, {{"012"}}}},
    {"rvkChannelCombine4Planesu8", {{{"0"}, {"1"}, {"2"}, {"3"}}, {{"0123"}}}},
};

bool takeOut(std::string& name, const std::string& part)
{
    const size_t at = name.find(part);
    if (at != std::string::npos)
        name.erase(at, part.size());
    return at != std::string::npos;
}

// rvkChannelExtractu8_NV12_U
ConversionModel extractionByName(const std::string& name)
{
    const size_t at = name.find('_') + 1;
    const FormatModel& from = kFormats.at(name.substr(at, name.size() - at - 2));
    const char letter = name.back();
    const auto plane = std::find_if(from.begin(), from.end(), [=](const PlaneModel& p) { return p.has(letter); });
    PlaneModel to{std::string(1, letter), plane->xShift, plane->yShift};
    if (letter == 'Y')
        to.xShift = 0;
    return {from, {to}};
}

// rvkColorRGB888ToRGB565Rotate180u8: its formats are in its name. To YCbCr, bytes of red and blue change their places.
ConversionModel modelOf(std::string name)
{
    if (const auto other = kOthers.find(name); other != kOthers.end())
        return other->second;
    if (name.starts_with("rvkChannelExtract"))
        return extractionByName(name);
    ConversionModel model;
    model.isRotated = takeOut(name, "Rotate180");
    takeOut(name, "rvkColor"), takeOut(name, "u8"), takeOut(name, "_v2");
    const size_t to = name.find("To") == std::string::npos ? name.find("to") : name.find("To");
    model.from = kFormats.at(name.substr(0, to));
    model.to = kFormats.at(name.substr(to + 2));
    if (PlaneModel& rgb = model.from[0]; rgb.has('R') && !rgb.isWord && has(model.to, 'U'))
        std::swap(rgb.letters.front(), rgb.letters[2]);
    return model;
}

// ---- what a conversion should give ----------------------------------------------------------------------------------

// The pictures of a call that have the role, in their order.
std::vector<const FunctionCall::Block*> blocksOf(const FunctionTest& function, const FunctionCall& call,
                                                 Argument::Role role)
{
    std::vector<const FunctionCall::Block*> blocks;
    for (const FunctionCall::Block& block : call.blocks())
        if (function.arguments[block.argument].role == role)
            blocks.push_back(&block);
    return blocks;
}

int floorOf256th(double number)
{
    return static_cast<int>(std::floor(number / 256));
}

class Source
{
public:
    Source(const FormatModel& format, std::vector<const FunctionCall::Block*> blocks, CaseSize size)
        : m_format(format), m_blocks(std::move(blocks)), m_size(size)
    {
    }

    // A component of a pixel, computed where the format does not have it.
    int at(char letter, uint32_t x, uint32_t y) const
    {
        for (size_t i = 0; i < m_format.size(); i++)
            if (m_format[i].has(letter))
                return m_format[i].isWord ? bitsOf(letter, x, y) : byteOf(i, letter, x, y);
        const auto component = [&](char other) { return double{1} * at(other, x, y); };
        switch (letter) {
        case 'Y':
            return floorOf256th(29 * component('B') + 150 * component('G') + 77 * component('R') + 128);
        case 'U':
            return chroma(128 * component('B') - 85 * component('G') - 43 * component('R'));
        case 'V':
            return chroma(128 * component('R') - 107 * component('G') - 21 * component('B'));
        case 'L':
            return floorOf256th((19595 * component('R') + 38469 * component('G') + 7471 * component('B') + 32768) /
                                256);
        case 'A':
            return 255;
        }
        const double luma = 256 * component('Y'), d = component('U') - 128, e = component('V') - 128;
        const double sum = letter == 'R' ? luma + 359 * e : letter == 'G' ? luma - 88 * d - 183 * e : luma + 454 * d;
        return std::clamp(floorOf256th(sum + 128), 0, 255);
    }

    // The component of a group of pixels: the mean of what the source has, or one pixel's where it is computed.
    int ofGroup(char letter, uint32_t left, uint32_t top, const PlaneModel& to) const
    {
        if (!has(m_format, letter))
            return at(letter, left, top);
        int sum = 0, count = 0;
        for (uint32_t y = top; y < std::min(m_size.height, top + (1u << to.yShift)); y++)
            for (uint32_t x = left; x < std::min(m_size.width, left + (1u << to.xShift)); x++, count++)
                sum += at(letter, x, y);
        return (2 * sum + count) / (2 * count);
    }

private:
    static int chroma(double sum) { return std::min(128 + floorOf256th(sum + 128), 255); }

    const uint8_t* group(size_t plane, uint32_t x, uint32_t y) const
    {
        const FunctionCall::Block& block = *m_blocks[plane];
        return block.before.data() + size_t{y >> m_format[plane].yShift} * block.stride +
               (x >> m_format[plane].xShift) * m_format[plane].groupSize();
    }
    int byteOf(size_t plane, char letter, uint32_t x, uint32_t y) const
    {
        const std::string& letters = m_format[plane].letters;
        const size_t first = letters.find(letter), second = letters.find(letter, first + 1);
        return group(plane, x, y)[second != std::string::npos && x % 2 ? second : first];
    }
    int bitsOf(char letter, uint32_t x, uint32_t y) const
    {
        uint16_t word;
        memcpy(&word, group(0, x, y), sizeof word);
        switch (m_format[0].letters.find(letter)) {
        case 0:
            return (word >> 11) * 33 >> 2; // abcde: abcdeabc
        case 1:
            return (word >> 5) % 64 * 65 >> 4;
        }
        return word % 32 * 33 >> 2;
    }

    const FormatModel& m_format;
    std::vector<const FunctionCall::Block*> m_blocks;
    CaseSize m_size;
};

// A group of a plane of the target, whose upper left pixel is given.
std::vector<uint8_t> expectedGroup(const Source& source, const PlaneModel& to, uint32_t x, uint32_t y)
{
    if (to.isWord) {
        const auto bits = [&](size_t i, int shift) { return source.at(to.letters[i], x, y) >> shift; };
        const auto word = static_cast<uint16_t>(bits(0, 3) * 2048 + bits(1, 2) * 32 + bits(2, 3));
        std::vector<uint8_t> bytes(2);
        memcpy(bytes.data(), &word, 2);
        return bytes;
    }
    std::vector<uint8_t> bytes;
    for (const char letter : to.letters)
        bytes.push_back(static_cast<uint8_t>(source.ofGroup(letter, x, y, to)));
    return bytes;
}

// Where a plane of the target is not what the model says; empty when it is.
std::string difference(const ConversionModel& model, const Source& source, CaseSize size, const PlaneModel& to,
                       const FunctionCall::Block& block)
{
    const size_t groupSize = to.groupSize();
    for (uint32_t j = 0; j < block.rows; j++)
        for (uint32_t i = 0; i < block.rowBytes / groupSize; i++) {
            const uint32_t x = i << to.xShift, y = j << to.yShift;
            const std::vector<uint8_t> expected =
                model.isRotated ? expectedGroup(source, to, size.width - 1 - x, size.height - 1 - y)
                                : expectedGroup(source, to, x, y);
            const uint8_t* const actual = block.data + size_t{j} * block.stride + i * groupSize;
            if (!std::equal(expected.begin(), expected.end(), actual))
                return "argument " + std::to_string(block.argument) + " at " + std::to_string(i) + ", " +
                       std::to_string(j) + ": expected " + testing::PrintToString(expected) + ", got " +
                       testing::PrintToString(std::vector<uint8_t>(actual, actual + groupSize));
        }
    return "";
}

void expectModel(const FunctionTest& function, const ConversionModel& model, CaseSize size, Content content,
                 SeededBits& bits)
{
    FunctionCall call(function, bits);
    call.draw(size, {.mostPadding = 3, .content = content});
    const Source source(model.from, blocksOf(function, call, Argument::Role::source), size);
    const auto targets = blocksOf(function, call, Argument::Role::destination);
    ASSERT_EQ(targets.size(), model.to.size()) << function.name;
    call.call(function.entry);
    for (size_t i = 0; i < targets.size(); i++)
        ASSERT_EQ(difference(model, source, size, model.to[i], *targets[i]), "")
            << function.name << ", " << size.width << "x" << size.height;
}

TEST(Color, EveryConversionFollowsTheModelOfItsFormats)
{
    size_t count = 0;
    for (const auto group : {colorToRgbFunctions, colorSamplingFunctions, colorFromRgbFunctions, channelFunctions})
        for (const FunctionTest& function : group().functions) {
            if (function.name.ends_with("ToHSV888u8") || function.name.ends_with("ToLABu8"))
                continue;
            const ConversionModel model = modelOf(function.name);
            SeededBits bits(1);
            const uint32_t least = function.contract.least.width;
            for (const CaseSize more : {CaseSize{0, 1}, {1, 1}, {1, 2}, {2, 3}, {15, 4}, {21, 5}})
                for (const Content content : {Content::uniform, Content::extremes})
                    expectModel(function, model, {least + more.width, more.height}, content, bits);
            count++;
        }
    EXPECT_EQ(count, 102u - 2 + 18); // of those of channel extraction there are 19
}

// ---- worked values --------------------------------------------------------------------------------------------------

using Bytes = std::vector<uint8_t>;

struct Planes
{
    Bytes y = Bytes(4), u = Bytes(4), v = Bytes(4);

    bool operator==(const Planes&) const = default;
    friend void PrintTo(const Planes& p, std::ostream* out)
    {
        *out << testing::PrintToString(p.y) << testing::PrintToString(p.u) << testing::PrintToString(p.v);
    }
};

TEST(Color, KnownColoursToYCbCr)
{
    const auto converted = [](const Bytes& blueGreenRed) {
        Bytes pixel(3);
        rvkColorRGB888toYCrCbu8(blueGreenRed.data(), 1, 1, pixel.data());
        return pixel;
    };
    EXPECT_EQ(converted({255, 255, 255}), (Bytes{255, 128, 128}));
    EXPECT_EQ(converted({0, 0, 0}), (Bytes{0, 128, 128}));
    EXPECT_EQ(converted({255, 0, 0}), (Bytes{29, 107, 255})) << "blue: the Cb of 256 is 255";
    EXPECT_EQ(converted({0, 0, 255}), (Bytes{77, 255, 85})) << "red";
    EXPECT_EQ(converted({0, 255, 0}), (Bytes{149, 21, 43})) << "green";
}

TEST(Color, KnownColoursFromYCbCr)
{
    const auto converted = [](uint8_t y, uint8_t cb, uint8_t cr) {
        Bytes pixel(3);
        rvkColorYCbCr444PlanarToRGB888u8(&y, 1, 1, 0, &cb, 0, &cr, 0, pixel.data(), 0);
        return pixel;
    };
    EXPECT_EQ(converted(0, 128, 128), (Bytes{0, 0, 0}));
    EXPECT_EQ(converted(255, 128, 128), (Bytes{255, 255, 255}));
    EXPECT_EQ(converted(255, 128, 255), (Bytes{255, 164, 255})) << "clamped";
    EXPECT_EQ(converted(0, 128, 0), (Bytes{0, 92, 0})) << "clamped below";
    EXPECT_EQ(converted(100, 255, 128), (Bytes{100, 56, 255}));
}

TEST(Color, ChromaOfABlockIsThatOfItsUpperLeftPixel)
{
    const Bytes grey{90, 90, 90, 90, 90, 90, 90, 90, 90, 90, 90, 90};
    const auto converted = [](const Bytes& picture) {
        Planes planes;
        rvkColorRGB888ToYCbCr420Planaru8(picture.data(), 2, 2, 0, planes.y.data(), 0, planes.u.data(), 0,
                                         planes.v.data(), 0);
        return planes;
    };
    for (size_t pixel = 0; pixel < 4; pixel++) {
        Bytes picture = grey;
        picture[3 * pixel] = 255; // blue
        EXPECT_EQ(converted(picture).u[0], pixel == 0 ? 128 + 83 : 128) << pixel;
        EXPECT_EQ(converted(picture).y[pixel], 109) << pixel;
    }
}

TEST(Color, MeansOfChromaRoundHalvesUpward)
{
    Planes from{{1, 2, 3, 4}, {1, 2, 2, 1}, {255, 255, 255, 254}}, to;
    rvkColorYCbCr444PlanarToYCbCr420Planaru8(from.y.data(), 2, 2, 0, from.u.data(), 0, from.v.data(), 0, to.y.data(), 0,
                                             to.u.data(), 0, to.v.data(), 0);
    EXPECT_EQ(to, (Planes{{1, 2, 3, 4}, {2, 0, 0, 0}, {255, 0, 0, 0}}));
    rvkColorYCbCr444PlanarToYCbCr422Planaru8(from.y.data(), 2, 2, 0, from.u.data(), 0, from.v.data(), 0, to.y.data(), 0,
                                             to.u.data(), 0, to.v.data(), 0);
    EXPECT_EQ(to, (Planes{{1, 2, 3, 4}, {2, 2, 0, 0}, {255, 255, 0, 0}}));
}

TEST(Color, KnownWords)
{
    Bytes red(4), grey(1);
    const uint16_t word = 0x8421; // a half and a bit: 10000 100001 00001
    rvkColorRGB565ToRGBA8888u8(reinterpret_cast<const uint8_t*>(&word), 1, 1, 0, red.data(), 0);
    EXPECT_EQ(red, (Bytes{132, 134, 8, 255}));
    rvkColorRGB888ToGrayu8(red.data(), 1, 1, 0, grey.data(), 0);
    EXPECT_EQ(grey[0], 119); // (19595 * 132 + 38469 * 134 + 7471 * 8 + 32768) / 65536 = 119.53
}

// Planes of one picture may lie side by side in rows of one stride.
TEST(Color, TakesPlanesSideBySide)
{
    const Bytes picture(4 * 4 * 3, 90);
    Bytes memory(4 * 8);
    rvkColorRGB888ToYCbCr420Planaru8(picture.data(), 4, 4, 0, memory.data(), 8, memory.data() + 4, 8, memory.data() + 6,
                                     8);
    EXPECT_EQ(Bytes(memory.begin(), memory.begin() + 8), (Bytes{90, 90, 90, 90, 128, 128, 128, 128}));
}

void convertRowOfOne()
{
    uint8_t pixel[3] = {}, chroma[2] = {};
    clearLog();
    atexit([] { fputs(logLines.empty() ? "nothing" : logLines.front().c_str(), stderr); });
    referenceOf<Slot::rvkColorYCbCr420PseudoPlanarToRGB888u8>()(pixel, 1, 1, 1, chroma, 2, pixel, 3);
}

TEST(Color, ARowOfOnePixelThatSharesChromaEndsTheProcess)
{
    EXPECT_EXIT(convertRowOfOne(), testing::ExitedWithCode(1),
                "6 ravik_lib_log: src/cpu/ravikColorC@[0-9]+: length > 1 Assertion failed\n");
}

// ---- there and back -------------------------------------------------------------------------------------------------

TEST(Color, EveryColourComesBackNearly)
{
    constexpr uint32_t size = 256, count = size * size;
    Bytes source = greensAndBlues<3>(0), turned(source.size()), back(source.size()), y(count), cb(count), cr(count);
    int largest[3] = {};
    for (uint32_t red = 0; red < 256; red += kRedStep) {
        for (uint32_t i = 0; i < count; i++)
            source[3 * i] = static_cast<uint8_t>(red);
        rvkColorRGB888ToBGR888u8(source.data(), size, size, 0, turned.data(), 0);
        rvkColorRGB888ToYCbCr444Planaru8(turned.data(), size, size, 0, y.data(), 0, cb.data(), 0, cr.data(), 0);
        rvkColorYCbCr444PlanarToRGB888u8(y.data(), size, size, 0, cb.data(), 0, cr.data(), 0, back.data(), 0);
        measureDifferences(source.data(), back.data(), count, largest);
    }
    EXPECT_EQ(std::max(largest[0], largest[2]), 2); // as the header says
    EXPECT_EQ(largest[1], 1);
}

// ---- other libraries ------------------------------------------------------------------------------------------------

#if RVK_TEST_OPENCV || RVK_TEST_LIBYUV
// A picture of all that can come: NV12, and what we make of it.
struct Nv12
{
    static constexpr uint32_t kWidth = 640, kHeight = 480;
    Bytes y = drawn(kWidth * kHeight), c = drawn(kWidth * kHeight / 2), rgb = Bytes(3 * kWidth * kHeight);

    Nv12() { rvkColorYCbCr420PseudoPlanarToRGB888u8(y.data(), kWidth, kHeight, 0, c.data(), 0, rgb.data(), 0); }
    static Bytes drawn(size_t count)
    {
        static Random random(3);
        Bytes bytes(count);
        std::generate(bytes.begin(), bytes.end(), [] { return static_cast<uint8_t>(random.next() >> 56); });
        return bytes;
    }
};
#endif

#if RVK_TEST_OPENCV
// OpenCV's conversion of full range takes pixels of Y, Cr, Cb.
TEST(Color, IsThatOfOpenCvButForConstants)
{
    const Nv12 nv12;
    constexpr int width = Nv12::kWidth, height = Nv12::kHeight;
    cv::Mat ycrcb(height, width, CV_8UC3), rgb;
    for (int i = 0; i < height; i++)
        for (int j = 0; j < width; j++) {
            const uint8_t* const pair = &nv12.c[static_cast<size_t>(i / 2 * width + j / 2 * 2)];
            ycrcb.at<cv::Vec3b>(i, j) = {nv12.y[static_cast<size_t>(i * width + j)], pair[1], pair[0]};
        }
    cv::cvtColor(ycrcb, rgb, cv::COLOR_YCrCb2RGB);
    int largest[3] = {};
    measureDifferences(rgb.data, nv12.rgb.data(), nv12.y.size(), largest);
    EXPECT_LE(*std::max_element(largest, largest + 3), 1); // as the header says
}
#endif

#if RVK_TEST_LIBYUV
TEST(Color, IsThatOfLibyuvButForConstants)
{
    const Nv12 nv12;
    constexpr int width = Nv12::kWidth, height = Nv12::kHeight;
    Bytes bgr(nv12.rgb.size()), rgb(nv12.rgb.size());
    libyuv::NV12ToRGB24Matrix(nv12.y.data(), width, nv12.c.data(), width, bgr.data(), 3 * width,
                              &libyuv::kYuvJPEGConstants, width, height);
    rvkColorRGB888ToBGR888u8(bgr.data(), width, height, 0, rgb.data(), 0);
    int largest[3] = {};
    measureDifferences(rgb.data(), nv12.rgb.data(), nv12.y.size(), largest);
    EXPECT_LE(*std::max_element(largest, largest + 3), 1);
}
#endif

} // namespace

// HSV and Lab: every colour against double precision, and worked values.
#include "support/colorModel.h"
#include "support/implementations.h"
#include "support/kernelModes.h"

#include <ravik/ravik.h>

using namespace test;

namespace {

using Measure = void (*)(const uint8_t* rgb, const uint8_t* converted, size_t pixels, ColorDistances& largest);

// Converts all colours by the reference, measures it, and holds the vector implementations against it.
template <Slot slot, size_t channels>
ColorDistances measureEveryColour(Measure measure)
{
    ColorDistances largest;
    std::vector<uint8_t> source = greensAndBlues<channels>(0), reference(3 * 65536), vecta(3 * 65536);
    for (uint32_t red = 0; red < 256; red += kRedStep) {
        for (size_t i = 0; i < source.size(); i += channels)
            source[i] = static_cast<uint8_t>(red);
        referenceOf<slot>()(source.data(), 256, 256, 256 * channels, reference.data(), 256 * 3);
        measure(source.data(), reference.data(), 65536, largest);
        forEachVecta<slot>([&](const char* variant, auto function) {
            function(source.data(), 256, 256, 256 * channels, vecta.data(), 256 * 3);
            EXPECT_TRUE(vecta == reference) << variant << ", red " << red;
        });
    }
    return largest;
}

TEST(ColorSpace, HsvOfEveryColourIsTheExactOneRounded)
{
    const ColorDistances largest = measureEveryColour<Slot::rvkColorRGB888ToHSV888u8, 3>(measureHsv);
    for (const double distance : largest.channel)
        EXPECT_LE(distance, 0.5);
}

TEST(ColorSpace, LabOfEveryColourIsWithinOneUnit)
{
    const ColorDistances largest = measureEveryColour<Slot::rvkColorRGBA8888ToLABu8, 4>(measureLab);
    for (const double distance : largest.channel)
        EXPECT_LE(distance, 0.66); // as the header says
}

struct Worked
{
    std::vector<uint8_t> rgb, converted;
};

TEST(ColorSpace, HsvOfKnownColours)
{
    const Worked colours[] = {
        {{0, 0, 0}, {0, 0, 0}},           {{255, 255, 255}, {0, 0, 255}},   {{90, 90, 90}, {0, 0, 90}},
        {{255, 0, 0}, {0, 255, 255}},     {{255, 255, 0}, {43, 255, 255}}, // 256 / 6 = 42.67
        {{0, 255, 0}, {85, 255, 255}},    {{0, 255, 255}, {128, 255, 255}}, {{0, 0, 255}, {171, 255, 255}},
        {{255, 0, 255}, {213, 255, 255}}, {{255, 0, 1}, {0, 255, 255}}, // 255.83 is 256, the beginning of the circle
        {{2, 1, 2}, {213, 128, 2}},                                     // 127.5 goes up
    };
    for (const Worked& colour : colours) {
        std::vector<uint8_t> pixel = colour.rgb;
        rvkColorRGB888ToHSV888u8(pixel.data(), 1, 1, 0, pixel.data(), 0); // in place
        EXPECT_EQ(pixel, colour.converted) << testing::PrintToString(colour.rgb);
    }
}

// L*, a*, b* of the primaries as they are published, scaled.
TEST(ColorSpace, LabOfKnownColours)
{
    const Worked colours[] = {
        {{0, 0, 0, 9}, {0, 128, 128}},         {{255, 255, 255, 9}, {255, 128, 128}},
        {{255, 0, 0, 9}, {136, 208, 195}},     // 53.24, 80.09, 67.20
        {{0, 255, 0, 9}, {224, 42, 211}},      // 87.73, -86.18, 83.18
        {{0, 0, 255, 9}, {82, 207, 20}},       // 32.30, 79.19, -107.86
        {{119, 119, 119, 9}, {128, 128, 128}}, // 50.03, 0, 0
    };
    for (const Worked& colour : colours) {
        std::vector<uint8_t> converted(3);
        rvkColorRGBA8888ToLABu8(colour.rgb.data(), 1, 1, 0, converted.data(), 0);
        EXPECT_EQ(converted, colour.converted) << testing::PrintToString(colour.rgb);
    }
}

TEST(ColorSpace, LabKernelConvertsARowInBothModes)
{
    const std::vector<uint8_t> source = greensAndBlues<4>(200);
    inBothModes(Kernel::irvkRowRGBToLab, "irvkRowRGBToLab", [&] {
        for (uint32_t width = 1; width < 200; ++width) {
            std::vector<uint8_t> row(3 * width + 1, 0xa5), expected = row;
            rvkColorRGBA8888ToLABu8C(source.data(), width, 1, 0, expected.data(), 0);
            kernel<Kernel::irvkRowRGBToLab>()(source.data(), width, row.data());
            ASSERT_EQ(row, expected) << "width " << width;
        }
    });
}

} // namespace

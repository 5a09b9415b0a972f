// COLORYUVRGB, COLORYUV, COLORRGB and CHANNEL: conversions between formats. What a test passes and what the function
// promises follow from the planes of the two formats.
#include "groups.h"

#include <ravik/channel.h>
#include <ravik/color.h>

#include <string_view>

using namespace arguments;

namespace {

// The planes of a picture, as sources.
using Format = std::vector<Argument>;

const Format bytes{src}, pairs{src.ofChannels(2)}, triples{src.ofChannels(3)}, quads{src.ofChannels(4)};
const Format rgb565 = pairs, bgr565 = pairs, rgb888 = triples, bgr888 = triples, rgba8888 = quads, bgra8888 = quads;

Format planar(uint32_t xShift, uint32_t yShift)
{
    return {src, src.sampled(xShift, yShift), src.sampled(xShift, yShift)};
}
const Format ycbcr444Planar = planar(0, 0), ycbcr422Planar = planar(1, 0), ycbcr420Planar = planar(1, 1);

Format pseudoPlanar(uint32_t xShift, uint32_t yShift)
{
    return {src, src.ofChannels(2).sampled(xShift, yShift)};
}
const Format ycbcr444PseudoPlanar = pseudoPlanar(0, 0), ycbcr422PseudoPlanar = pseudoPlanar(1, 0),
             ycbcr420PseudoPlanar = pseudoPlanar(1, 1), ycbcr440PseudoPlanar = pseudoPlanar(0, 1);

Format planes(size_t count)
{
    return Format(count, src);
}

// A row of pairs that share chroma is converted in pairs.
bool takesPairs(const Format& from, const Format& to)
{
    return to.size() == 1 && from.size() > 1 && from[1].xShift == 1;
}

bool isInPlace(const Format& from, const Format& to)
{
    return from.size() == 1 && to.size() == 1 && from[0].channels == to[0].channels;
}

const Contract apart = Contract().logging().refusingOverlap().onDsp({.alignment = 8});

Contract contractOf(const Format& from, const Format& to)
{
    const Contract contract = isInPlace(from, to) ? apart.inPlace() : apart;
    return takesPairs(from, to) ? contract.atLeast(2, 1) : contract;
}

// The planes of the source, the size after the first one; those of the destination; after each the stride.
std::vector<Argument> argumentsOf(const Format& from, const Format& to)
{
    std::vector<Argument> all{from[0], width, height, stride};
    for (size_t i = 1; i < from.size(); i++)
        all.insert(all.end(), {from[i], stride});
    for (const Argument& plane : to)
        all.insert(all.end(), {plane.as(Argument::Role::destination), stride});
    return all;
}

template <class Function>
FunctionTest conversion(const char* name, const char* tableName, Function* function, const Format& from,
                        const Format& to)
{
    return describe(name, name, tableName, function, argumentsOf(from, to)).keeps(contractOf(from, to));
}

#define RVK_CONVERSION(function, from, to) conversion(#function, #function, function, from, to)
// By another function's line of the test table.
#define RVK_CONVERSION_BY(tableName, function, from, to) conversion(#function, tableName, function, from, to)

// A format that channels are extracted from.
struct ChannelFormat
{
    const char* name;
    uint32_t number;
    Format planes;
    std::string channels; // their letters
};

// The letters of channels stand at their numbers.
constexpr std::string_view kChannels = "RGBAYUV";

FunctionTest extraction(const ChannelFormat& format, char channel)
{
    std::vector<double> refused{kChannels.size(), UINT32_MAX};
    for (const char other : kChannels)
        if (format.channels.find(other) == std::string::npos)
            refused.push_back(static_cast<double>(kChannels.find(other)));
    const Argument chroma = format.planes.back();
    const bool isChroma = channel == 'U' || channel == 'V', hasOnePlane = format.planes.size() == 1;
    const std::string name = std::string("rvkChannelExtractu8_") + format.name + "_" + channel;
    return describe(name.c_str(), "rvkChannelExtractu8", "rvkChannelExtractu8", rvkChannelExtractu8,
                    {format.planes[0], width, height, stride, hasOnePlane ? null : chroma, stride,
                     oneOf({double{1} * format.number}).refusing({RAVIK_FORMAT_YUYV + 1, UINT32_MAX}),
                     oneOf({static_cast<double>(kChannels.find(channel))}).refusing(refused),
                     isChroma ? dst.sampled(chroma.xShift, chroma.yShift) : dst, stride})
        .keeps(apart);
}

std::vector<FunctionTest> extractions()
{
    const Format groups{src.ofChannels(4).sampled(1, 0)};
    const ChannelFormat formats[] = {
        {"RGB", RAVIK_FORMAT_RGB, triples, "RGB"},
        {"RGBA", RAVIK_FORMAT_RGBA, quads, "RGBA"},
        {"NV12", RAVIK_FORMAT_NV12, ycbcr420PseudoPlanar, "YUV"},
        {"NV21", RAVIK_FORMAT_NV21, ycbcr420PseudoPlanar, "YUV"},
        {"UYVY", RAVIK_FORMAT_UYVY, groups, "YUV"},
        {"YUYV", RAVIK_FORMAT_YUYV, groups, "YUV"},
    };
    std::vector<FunctionTest> all;
    for (const ChannelFormat& format : formats)
        for (const char channel : format.channels)
            all.push_back(extraction(format, channel));
    return all;
}

} // namespace

const FunctionGroup& colorToRgbFunctions()
{
    static const FunctionGroup group{
        "ravikcoloryuvrgb",
        "rvkColor",
        false,
        {
            RVK_CONVERSION(rvkColorYCbCr444PlanarToRGB565u8, ycbcr444Planar, rgb565),
            RVK_CONVERSION(rvkColorYCbCr444PlanarToRGB888u8, ycbcr444Planar, rgb888),
            RVK_CONVERSION(rvkColorYCbCr444PlanarToRGBA8888u8, ycbcr444Planar, rgba8888),
            RVK_CONVERSION(rvkColorYCbCr422PlanarToRGB565u8, ycbcr422Planar, rgb565),
            RVK_CONVERSION(rvkColorYCbCr422PlanarToRGB888u8, ycbcr422Planar, rgb888),
            RVK_CONVERSION(rvkColorYCbCr422PlanarToRGBA8888u8, ycbcr422Planar, rgba8888),
            RVK_CONVERSION(rvkColorYCbCr420PlanarToRGB565u8, ycbcr420Planar, rgb565),
            RVK_CONVERSION(rvkColorYCbCr420PlanarToRGB888u8, ycbcr420Planar, rgb888),
            RVK_CONVERSION(rvkColorYCbCr420PlanarToRGBA8888u8, ycbcr420Planar, rgba8888),
            RVK_CONVERSION(rvkColorYCbCr444PseudoPlanarToRGB565u8, ycbcr444PseudoPlanar, rgb565),
            RVK_CONVERSION(rvkColorYCbCr444PseudoPlanarToRGB888u8, ycbcr444PseudoPlanar, rgb888),
            RVK_CONVERSION(rvkColorYCbCr444PseudoPlanarToRGBA8888u8, ycbcr444PseudoPlanar, rgba8888),
            RVK_CONVERSION(rvkColorYCbCr422PseudoPlanarToRGB565u8, ycbcr422PseudoPlanar, rgb565),
            RVK_CONVERSION(rvkColorYCbCr422PseudoPlanarToRGB888u8, ycbcr422PseudoPlanar, rgb888),
            RVK_CONVERSION(rvkColorYCbCr422PseudoPlanarToRGBA8888u8, ycbcr422PseudoPlanar, rgba8888),
            RVK_CONVERSION(rvkColorYCbCr420PseudoPlanarToRGB565u8, ycbcr420PseudoPlanar, rgb565),
            RVK_CONVERSION(rvkColorYCbCr420PseudoPlanarToRGB888u8, ycbcr420PseudoPlanar, rgb888),
            RVK_CONVERSION(rvkColorYCbCr420PseudoPlanarToRGBA8888u8, ycbcr420PseudoPlanar, rgba8888),
            RVK_CONVERSION(rvkColorYCrCbH1V1toRGB888u8, ycbcr444PseudoPlanar, rgb888),
            RVK_CONVERSION(rvkColorYCrCbH2V1toRGB888u8, ycbcr422PseudoPlanar, rgb888),
            RVK_CONVERSION(rvkColorYCrCbH2V2toRGB888u8, ycbcr420PseudoPlanar, rgb888),
            RVK_CONVERSION(rvkColorYCrCbH1V2toRGB888u8, ycbcr440PseudoPlanar, rgb888),
            RVK_CONVERSION(rvkColorYUV420toRGB565u8, ycbcr420PseudoPlanar, rgb565),
            RVK_CONVERSION(rvkColorYUV420toRGB565u8Rotate180, ycbcr420PseudoPlanar, rgb565),
            RVK_CONVERSION(rvkColorYUV420toRGB8888u8, ycbcr420PseudoPlanar, rgba8888),
            // The same conversion by another name, which the test table does not know.
            RVK_CONVERSION_BY("rvkColorYUV420toRGB8888u8", rvkColorYCrCb420PseudoPlanarToRGB8888u8,
                              ycbcr420PseudoPlanar, rgba8888),
        }};
    return group;
}

const FunctionGroup& colorSamplingFunctions()
{
    static const FunctionGroup group{
        "ravikcoloryuv",
        "rvkColor",
        false,
        {
            RVK_CONVERSION(rvkColorYCbCr444PlanarToYCbCr422Planaru8, ycbcr444Planar, ycbcr422Planar),
            RVK_CONVERSION(rvkColorYCbCr444PlanarToYCbCr420Planaru8, ycbcr444Planar, ycbcr420Planar),
            RVK_CONVERSION(rvkColorYCbCr444PlanarToYCbCr444PseudoPlanaru8, ycbcr444Planar, ycbcr444PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr444PlanarToYCbCr422PseudoPlanaru8, ycbcr444Planar, ycbcr422PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr444PlanarToYCbCr420PseudoPlanaru8, ycbcr444Planar, ycbcr420PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr422PlanarToYCbCr444Planaru8, ycbcr422Planar, ycbcr444Planar),
            RVK_CONVERSION(rvkColorYCbCr422PlanarToYCbCr420Planaru8, ycbcr422Planar, ycbcr420Planar),
            RVK_CONVERSION(rvkColorYCbCr422PlanarToYCbCr444PseudoPlanaru8, ycbcr422Planar, ycbcr444PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr422PlanarToYCbCr422PseudoPlanaru8, ycbcr422Planar, ycbcr422PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr422PlanarToYCbCr420PseudoPlanaru8, ycbcr422Planar, ycbcr420PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr420PlanarToYCbCr444Planaru8, ycbcr420Planar, ycbcr444Planar),
            RVK_CONVERSION(rvkColorYCbCr420PlanarToYCbCr422Planaru8, ycbcr420Planar, ycbcr422Planar),
            RVK_CONVERSION(rvkColorYCbCr420PlanarToYCbCr444PseudoPlanaru8, ycbcr420Planar, ycbcr444PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr420PlanarToYCbCr422PseudoPlanaru8, ycbcr420Planar, ycbcr422PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr420PlanarToYCbCr420PseudoPlanaru8, ycbcr420Planar, ycbcr420PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr444PseudoPlanarToYCbCr444Planaru8, ycbcr444PseudoPlanar, ycbcr444Planar),
            RVK_CONVERSION(rvkColorYCbCr444PseudoPlanarToYCbCr422Planaru8, ycbcr444PseudoPlanar, ycbcr422Planar),
            RVK_CONVERSION(rvkColorYCbCr444PseudoPlanarToYCbCr420Planaru8, ycbcr444PseudoPlanar, ycbcr420Planar),
            RVK_CONVERSION(rvkColorYCbCr444PseudoPlanarToYCbCr422PseudoPlanaru8, ycbcr444PseudoPlanar,
                           ycbcr422PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8, ycbcr444PseudoPlanar,
                           ycbcr420PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr422PseudoPlanarToYCbCr444Planaru8, ycbcr422PseudoPlanar, ycbcr444Planar),
            RVK_CONVERSION(rvkColorYCbCr422PseudoPlanarToYCbCr422Planaru8, ycbcr422PseudoPlanar, ycbcr422Planar),
            RVK_CONVERSION(rvkColorYCbCr422PseudoPlanarToYCbCr420Planaru8, ycbcr422PseudoPlanar, ycbcr420Planar),
            RVK_CONVERSION(rvkColorYCbCr422PseudoPlanarToYCbCr444PseudoPlanaru8, ycbcr422PseudoPlanar,
                           ycbcr444PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr422PseudoPlanarToYCbCr420PseudoPlanaru8, ycbcr422PseudoPlanar,
                           ycbcr420PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr420PseudoPlanarToYCbCr444Planaru8, ycbcr420PseudoPlanar, ycbcr444Planar),
            RVK_CONVERSION(rvkColorYCbCr420PseudoPlanarToYCbCr422Planaru8, ycbcr420PseudoPlanar, ycbcr422Planar),
            RVK_CONVERSION(rvkColorYCbCr420PseudoPlanarToYCbCr420Planaru8, ycbcr420PseudoPlanar, ycbcr420Planar),
            RVK_CONVERSION(rvkColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8, ycbcr420PseudoPlanar,
                           ycbcr444PseudoPlanar),
            RVK_CONVERSION(rvkColorYCbCr420PseudoPlanarToYCbCr422PseudoPlanaru8, ycbcr420PseudoPlanar,
                           ycbcr422PseudoPlanar),
            RVK_CONVERSION(rvkColorCbCrSwapu8, pairs, pairs),
        }};
    return group;
}

const FunctionGroup& colorFromRgbFunctions()
{
    static const FunctionGroup group{
        "ravikcolorrgb",
        "rvkColor",
        false,
        {
            RVK_CONVERSION(rvkColorRGB565ToYCbCr444Planaru8, rgb565, ycbcr444Planar),
            RVK_CONVERSION(rvkColorRGB565ToYCbCr422Planaru8, rgb565, ycbcr422Planar),
            RVK_CONVERSION(rvkColorRGB565ToYCbCr420Planaru8, rgb565, ycbcr420Planar),
            RVK_CONVERSION(rvkColorRGB565ToYCbCr444PseudoPlanaru8, rgb565, ycbcr444PseudoPlanar),
            RVK_CONVERSION(rvkColorRGB565ToYCbCr422PseudoPlanaru8, rgb565, ycbcr422PseudoPlanar),
            RVK_CONVERSION(rvkColorRGB565ToYCbCr420PseudoPlanaru8, rgb565, ycbcr420PseudoPlanar),
            RVK_CONVERSION(rvkColorRGB888ToYCbCr444Planaru8, rgb888, ycbcr444Planar),
            RVK_CONVERSION(rvkColorRGB888ToYCbCr422Planaru8, rgb888, ycbcr422Planar),
            RVK_CONVERSION(rvkColorRGB888ToYCbCr420Planaru8, rgb888, ycbcr420Planar),
            RVK_CONVERSION(rvkColorRGB888ToYCbCr444PseudoPlanaru8, rgb888, ycbcr444PseudoPlanar),
            RVK_CONVERSION(rvkColorRGB888ToYCbCr422PseudoPlanaru8, rgb888, ycbcr422PseudoPlanar),
            RVK_CONVERSION(rvkColorRGB888ToYCbCr420PseudoPlanaru8, rgb888, ycbcr420PseudoPlanar),
            RVK_CONVERSION(rvkColorRGBA8888ToYCbCr444Planaru8, rgba8888, ycbcr444Planar),
            RVK_CONVERSION(rvkColorRGBA8888ToYCbCr422Planaru8, rgba8888, ycbcr422Planar),
            RVK_CONVERSION(rvkColorRGBA8888ToYCbCr420Planaru8, rgba8888, ycbcr420Planar),
            RVK_CONVERSION(rvkColorRGBA8888ToYCbCr444PseudoPlanaru8, rgba8888, ycbcr444PseudoPlanar),
            RVK_CONVERSION(rvkColorRGBA8888ToYCbCr422PseudoPlanaru8, rgba8888, ycbcr422PseudoPlanar),
            RVK_CONVERSION(rvkColorRGBA8888ToYCbCr420PseudoPlanaru8, rgba8888, ycbcr420PseudoPlanar),
            RVK_CONVERSION(rvkColorRGB565ToRGB888u8, rgb565, rgb888),
            RVK_CONVERSION(rvkColorRGB565ToRGBA8888u8, rgb565, rgba8888),
            RVK_CONVERSION(rvkColorRGB565ToBGR565u8, rgb565, bgr565),
            RVK_CONVERSION(rvkColorRGB565ToBGR888u8, rgb565, bgr888),
            RVK_CONVERSION(rvkColorRGB565ToBGRA8888u8, rgb565, bgra8888),
            RVK_CONVERSION(rvkColorRGB888ToRGB565u8, rgb888, rgb565),
            RVK_CONVERSION(rvkColorRGB888ToRGBA8888u8, rgb888, rgba8888),
            RVK_CONVERSION(rvkColorRGB888ToBGR565u8, rgb888, bgr565),
            RVK_CONVERSION(rvkColorRGB888ToBGR888u8, rgb888, bgr888),
            RVK_CONVERSION(rvkColorRGB888ToBGRA8888u8, rgb888, bgra8888),
            RVK_CONVERSION(rvkColorRGBA8888ToRGB565u8, rgba8888, rgb565),
            RVK_CONVERSION(rvkColorRGBA8888ToRGB888u8, rgba8888, rgb888),
            RVK_CONVERSION(rvkColorRGBA8888ToBGR565u8, rgba8888, bgr565),
            RVK_CONVERSION(rvkColorRGBA8888ToBGR888u8, rgba8888, bgr888),
            RVK_CONVERSION(rvkColorRGBA8888ToBGRA8888u8, rgba8888, bgra8888),
            RVK_CONVERSION(rvkColorRGB888ToGrayu8, rgb888, bytes),
            RVK_CONVERSION(rvkColorRGB888ToRGB565Rotate180u8, rgb888, rgb565),
            RVK_TEST(rvkColorRGB888toYCrCbu8, triples[0], width, height, dst.ofChannels(3))
                .keeps(contractOf(rgb888, triples)),
            RVK_CONVERSION(rvkColorRGB888ToHSV888u8, rgb888, triples),
            RVK_CONVERSION(rvkColorRGBA8888ToLABu8, rgba8888, triples),
            RVK_CONVERSION_BY("rvkColorRGB888toYCrCbu8", rvkColorRGB888toYCrCbu8_v2, rgb888, triples),
        }};
    return group;
}

const FunctionGroup& channelFunctions()
{
    static const FunctionGroup group = [] {
        FunctionGroup all{"ravikchannel",
                          "rvk",
                          false,
                          {
                              RVK_CONVERSION(rvkInterleaveu8, planes(2), pairs),
                              RVK_CONVERSION(rvkDeinterleaveu8, pairs, planes(2)),
                              RVK_CONVERSION(rvkChannelCombine2Planesu8, planes(2), pairs),
                              RVK_CONVERSION(rvkChannelCombine3Planesu8, planes(3), triples),
                              RVK_CONVERSION(rvkChannelCombine4Planesu8, planes(4), quads),
                          }};
        for (FunctionTest& test : extractions())
            all.functions.push_back(std::move(test));
        return all;
    }();
    return group;
}

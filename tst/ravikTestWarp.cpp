// WARP, 3CHANNELWARP, QUAD and REMAP: pictures sampled at the positions of matrices and maps.
#include "groups.h"

#include <ravik/affine.h>
#include <ravik/warp.h>

#include <cmath>

using namespace arguments;

namespace {

const Argument out = dst.resized();
const Argument interpolation =
    oneOf({RAVIK_INTERPOLATION_BILINEAR, RAVIK_INTERPOLATION_NEAREST}).refusing({RAVIK_INTERPOLATION_AREA, UINT32_MAX});
const Argument borderType =
    oneOf({RAVIK_BORDER_CONSTANT, RAVIK_BORDER_REPLICATE, RAVIK_BORDER_NONE}).refusing({3, UINT32_MAX});
const Argument borderValues = src.ofSize(3);
const Contract sampling = Contract().refusingInPlace().onDsp({.alignment = 8});
// Without a border nothing comes of a small picture, of which no position is inside.
const Contract withBorder = sampling.border(Border::chosen).drawnFrom(12, 12);

std::vector<std::vector<double>> notFinite()
{
    return {{1, 0, 0, 0, 1, 0, 0, NAN, 1}, {1, 0, INFINITY, 0, 1, 0, 0, 0, 1}, {-INFINITY, 0, 0, 0, 1, 0, 0, 0, 1}};
}

// Turns, scales and tilts somewhat; a part of the destination is outside.
const Argument matrix = numbers({{0.6, 1.3},
                                 {-0.4, 0.4},
                                 widths(-0.2, 0.3),
                                 {-0.4, 0.4},
                                 {0.6, 1.3},
                                 heights(-0.2, 0.3),
                                 {-0.001, 0.001},
                                 {-0.001, 0.001},
                                 {0.9, 1.1}})
                            .typically({0.98, -0.17, 20, 0.17, 0.98, -30, 1e-5, 2e-5, 1})
                            .refusingElements(notFinite());

// What makes a picture of the quadrilateral (40, 20), (590, 50), (620, 460), (10, 440) of 640 x 480 pixels, and its
// like of other sizes: all of it inside.
const Argument quadrilateral = numbers({{0.8, 0.9},
                                        {-0.06, -0.04},
                                        widths(0.06, 0.1),
                                        {0.03, 0.06},
                                        {0.82, 0.9},
                                        heights(0.04, 0.06),
                                        {-1e-5, 1e-5},
                                        {-1e-5, 1e-5},
                                        {1, 1.02}})
                                   .typically({0.866, -0.0618, 40, 0.0474, 0.878, 20, 9.6e-6, 1.6e-6, 1})
                                   .refusingElements(notFinite());

// Affine patches of a part of the picture, all of them inside.
const Argument patchCentre = numbers({widths(0.45, 0.55), heights(0.45, 0.55)});
const Argument patchMatrix = numbers({{0.6, 1.2}, {-0.02, 0.02}, {-0.02, 0.02}, {0.6, 1.2}});
const Argument patchWidth = dstWidth.upTo(0.25), patchHeight = dstHeight.upTo(0.25);

// Clipped affine transforms, a part of whose destination is outside.
const Argument centre = numbers({widths(0.3, 0.7), heights(0.3, 0.7)}).typically({320.3, 240.4});
const Argument affine =
    numbers({{0.5, 1.3}, {-0.5, 0.5}, {-0.5, 0.5}, {0.5, 1.3}}).typically({0.9356, -0.165, 0.165, 0.9356});

} // namespace

const FunctionGroup& warpFunctions()
{
    const Contract patches = Contract().drawnFrom(16, 16), smallPatches = Contract().drawnFrom(32, 32);
    const Argument smallPatch = dst.measuring({[](const CaseSizes&) { return ImageSize{8, 8}; }, "8x8"});

    static const FunctionGroup group{
        "ravikwarp",
        "rvk",
        false,
        {
            RVK_TEST(rvkTransformAffine8x8u8, src, width, height, patchCentre, patchMatrix, dst.ofSize(64))
                .keeps(smallPatches)
                .repeated(100),
            RVK_TEST_AS("rvkTransformAffine8x8u8_v2", "rvkTransformAffine8x8u8", rvkTransformAffine8x8u8_v2, src, width,
                        height, stride, patchCentre, patchMatrix, smallPatch, stride)
                .keeps(smallPatches)
                .repeated(100),
            RVK_TEST(rvkTransformAffineu8, src, width, height, patchCentre, patchMatrix, out, patchWidth, patchHeight)
                .keeps(patches),
            RVK_TEST_AS("rvkTransformAffineu8_v2", "rvkTransformAffineu8", rvkTransformAffineu8_v2, src, width, height,
                        stride, patchCentre, patchMatrix, out, patchWidth, patchHeight, stride)
                .keeps(patches),
            RVK_TEST(rvkTransformAffineClippedu8, src, width, height, stride, centre, affine, out, dstWidth, dstHeight,
                     stride)
                .keeps(sampling.drawnFrom(12, 12)),
            RVK_TEST(rvkTransformAffineClippedu8_v2, src, width, height, stride, centre, affine, out, dstWidth,
                     dstHeight, stride, borderType, any)
                .keeps(withBorder),
            RVK_TEST(rvkTransformAffineClippedu8_v3, src, width, height, stride, centre, affine, out, dstWidth,
                     dstHeight, stride, interpolation, borderType, any)
                .keeps(withBorder),
            RVK_TEST(rvkWarpPerspectiveu8, src, width, height, stride, out, dstWidth, dstHeight, stride, matrix)
                .keeps(sampling),
            RVK_TEST_AS("rvkWarpPerspectiveu8_v2", "rvkWarpPerspectiveu8", rvkWarpPerspectiveu8_v2, src, width, height,
                        stride, out, dstWidth, dstHeight, stride, matrix)
                .keeps(sampling),
            RVK_TEST(rvkWarpPerspectiveu8_v3, src, width, height, stride, out, dstWidth, dstHeight, stride, matrix,
                     borderType, any)
                .keeps(withBorder),
            RVK_TEST(rvkWarpPerspectiveu8_v4, src, width, height, stride, out, dstWidth, dstHeight, stride, matrix,
                     interpolation, borderType, any)
                .keeps(withBorder),
            RVK_TEST(rvk2PlaneWarpPerspectiveu8, src, width, height, stride, src, stride, out, dstWidth, dstHeight,
                     stride, out, stride, matrix, interpolation, borderType, any)
                .keeps(withBorder),
        }};
    return group;
}

const FunctionGroup& threeChannelWarpFunctions()
{
    static const FunctionGroup group{
        "ravik3channelwarp",
        "rvk",
        false,
        {
            RVK_TEST(rvk3ChannelTransformAffineClippedBCu8, src.ofChannels(3), width, height, stride, centre, affine,
                     out.ofChannels(3), dstWidth, dstHeight, stride, borderType, borderValues)
                .keeps(withBorder),
            RVK_TEST(rvk3ChannelWarpPerspectiveu8, src.ofChannels(3), width, height, stride, out.ofChannels(3),
                     dstWidth, dstHeight, stride, matrix)
                .keeps(sampling),
            RVK_TEST_AS("rvk3ChannelWarpPerspectiveu8_v2", "rvk3ChannelWarpPerspectiveu8",
                        rvk3ChannelWarpPerspectiveu8_v2, src.ofChannels(3), width, height, stride, out.ofChannels(3),
                        dstWidth, dstHeight, stride, matrix, interpolation, borderType, borderValues)
                .keeps(withBorder),
        }};
    return group;
}

const FunctionGroup& quadFunctions()
{
    static const FunctionGroup group{
        "ravikquad",
        "rvk",
        false,
        {
            RVK_TEST_AS("rvkWarpPerspectiveu8_quad", "rvkWarpPerspectiveu8_v4", rvkWarpPerspectiveu8_v4, src, width,
                        height, stride, out, dstWidth, dstHeight, stride, quadrilateral, interpolation, borderType, any)
                .keeps(withBorder),
            RVK_TEST_AS("rvk3ChannelWarpPerspectiveu8_quad", "rvk3ChannelWarpPerspectiveu8",
                        rvk3ChannelWarpPerspectiveu8_v2, src.ofChannels(3), width, height, stride, out.ofChannels(3),
                        dstWidth, dstHeight, stride, quadrilateral, interpolation, borderType, borderValues)
                .keeps(withBorder),
        }};
    return group;
}

const FunctionGroup& remapFunctions()
{
    const Argument mapX = src.resized().within({columns(-2, 2)}), mapY = src.resized().within({rows(-2, 2)});

    static const FunctionGroup group{
        "ravikremap",
        "rvk",
        false,
        {
            RVK_TEST(rvkRemapu8, src, width, height, stride, out, dstWidth, dstHeight, stride, mapX, mapY, stride)
                .keeps(sampling),
            RVK_TEST(rvkRemapu8_v2, src, width, height, stride, out, dstWidth, dstHeight, stride, mapX, mapY, stride,
                     interpolation, borderType, any)
                .keeps(withBorder),
            RVK_TEST(rvkRemapRGBA8888NNu8, src.ofChannels(4), width, height, stride, out.ofChannels(4), dstWidth,
                     dstHeight, stride, mapX, mapY, stride)
                .keeps(sampling),
            RVK_TEST(rvkRemapRGBA8888BLu8, src.ofChannels(4), width, height, stride, out.ofChannels(4), dstWidth,
                     dstHeight, stride, mapX, mapY, stride)
                .keeps(sampling),
        }};
    return group;
}

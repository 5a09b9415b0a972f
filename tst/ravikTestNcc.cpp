// NCC: patches by normalised cross-correlation.
#include "groups.h"

#include <ravik/ncc.h>

using namespace arguments;

const FunctionGroup& nccFunctions()
{
    const Argument frame = src.natural(), patch = src.ofSize(64), x = at(columns(4, -3)), y = at(rows(4, -3));
    const Argument block = src.measuring({[](const CaseSizes&) { return ImageSize{8, 8}; }, "8x8"});
    constexpr uint32_t most = 3; // patches, one below the other
    const Argument patches = src.measuring({[](const CaseSizes& sizes) {
                                                return ImageSize{sizes.window.width, sizes.window.height * most};
                                            },
                                            "the patches"});
    const Argument patchWidth = windowWidth({8, 2, 3, 16, 21}).refusing({0}),
                   patchHeight = windowHeight({8, 1, 5, 17, 20}).refusing({0});
    const Argument radius = oneOf({8, 0, 3, 25, UINT32_MAX}), size = oneOf({30, 1, 9, 300, UINT32_MAX}).refusing({0}),
                   lists = dst.ofSize(most);
    const Contract around = Contract().atLeast(8, 8).onDsp({.alignment = 8});

    static const FunctionGroup group{
        "ravikncc",
        "rvk",
        false,
        {
            RVK_TEST(rvkNCCPatchOnCircle8x8u8, patch, frame, width, height, x, y, radius, value, value, value)
                .keeps(around),
            RVK_TEST_AS("rvkNCCPatchOnCircle8x8u8_v2", "rvkNCCPatchOnCircle8x8u8", rvkNCCPatchOnCircle8x8u8_v2, block,
                        stride, frame, width, height, stride, x, y, radius, value, value, value)
                .keeps(around),
            RVK_TEST(rvkNCCPatchOnSquare8x8u8, patch, frame, width, height, x, y, radius, value, value, value)
                .keeps(around),
            RVK_TEST_AS("rvkNCCPatchOnSquare8x8u8_v2", "rvkNCCPatchOnSquare8x8u8", rvkNCCPatchOnSquare8x8u8_v2, block,
                        stride, frame, width, height, stride, x, y, radius, value, value, value)
                .keeps(around),
            RVK_TEST(rvkNCCPatchesOnRectu8, patches, oneOf({most, 1, 2}).refusing({0}).limited(), patchWidth,
                     patchHeight, stride, frame, width, height, stride, x, y, size, size, lists, lists, lists),
        }};
    return group;
}

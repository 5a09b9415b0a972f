// FAST and FAST10: corners of arcs of 9 and of 10 pixels.
#include "groups.h"

#include <ravik/fast.h>

using namespace arguments;

namespace {

constexpr uint32_t kCorners = 200;

const Argument picture = src.natural();
const Argument barrier = oneOf({20, 0, 1, 5, 10, 40, 80, 254, 255, 256, -1, -20, -256, INT32_MIN, INT32_MAX});
const Argument border = oneOf({3, 4, 5}).refusing({1 << 20, INT32_MAX, 0x80000000u, UINT32_MAX});
const Argument corners = list(2 * kCorners), scores = list(kCorners), room = capacity(0, kCorners);
const Argument suppresses = oneOf({1, 0, UINT32_MAX}), tempBuf = scratchForRows(3 * kCorners).vital();
const Contract contract = Contract().atLeast(7, 7).drawnFrom(11, 11).onDsp({.alignment = 8});

} // namespace

const FunctionGroup& fastFunctions()
{
    static const FunctionGroup group{
        "ravikfast",
        "rvk",
        false,
        {
            RVK_TEST(rvkCornerFast9u8, picture, width, height, stride, barrier, border, corners, room, value)
                .keeps(contract),
            RVK_TEST(rvkCornerFast9Scoreu8, picture, width, height, stride, barrier, border, corners, scores, room,
                     value)
                .keeps(contract),
            RVK_TEST(rvkCornerFast9Scoreu8_v2, picture, width, height, stride, barrier, border, corners, scores, room,
                     value, suppresses, tempBuf)
                .keeps(contract),
            RVK_TEST(rvkCornerFast9InMasku8, picture, width, height, stride, barrier, border, corners, room, value,
                     bits(), bitsAcross, bitsDown)
                .keeps(contract),
            RVK_TEST(rvkCornerFast9InMaskScoreu8, picture, width, height, stride, barrier, border, corners, scores,
                     room, value, bits(), bitsAcross, bitsDown)
                .keeps(contract),
            RVK_TEST(rvkCornerFast9InMaskScoreu8_v2, picture, width, height, stride, barrier, border, corners, scores,
                     room, value, bits(), bitsAcross, bitsDown, suppresses, tempBuf)
                .keeps(contract),
        }};
    return group;
}

const FunctionGroup& fast10Functions()
{
    static const FunctionGroup group{
        "ravikfast10",
        "rvk",
        false,
        {
            RVK_TEST(rvkCornerFast10u8, picture, width, height, stride, barrier, border, corners, room, value)
                .keeps(contract),
            RVK_TEST(rvkCornerFast10Scoreu8, picture, width, height, stride, barrier, border, corners, scores, room,
                     value, suppresses, tempBuf)
                .keeps(contract),
            RVK_TEST(rvkCornerFast10InMasku8, picture, width, height, stride, barrier, border, corners, room, value,
                     bits(), bitsAcross, bitsDown)
                .keeps(contract),
            RVK_TEST(rvkCornerFast10InMaskScoreu8, picture, width, height, stride, barrier, border, corners, scores,
                     room, value, bits(), bitsAcross, bitsDown, suppresses, tempBuf)
                .keeps(contract),
        }};
    return group;
}

// HARRIS and CORNERSUBPIX: corners, good features, local maxima; corners between pixels.
#include "groups.h"

#include <ravik/harris.h>

using namespace arguments;

const FunctionGroup& harrisFunctions()
{
    constexpr uint32_t most = 60; // corners
    const Argument photo = src.natural(), corners = list(2 * most), room = capacity(0, most);
    const Argument border = oneOf({5, 0, 3, 6, 9, 2147483648.0, UINT32_MAX});
    const Argument threshold = oneOf({20000, 0, 100, -5000, 1000000, INT32_MAX, INT32_MIN});
    const Argument eigenvalue = oneOf({20, 0, 1.5, 300, -1, 1e30, -1e30});
    const Argument distance = oneOf({4, 0, 1, 6.5, 30, -5, 1e30});
    const Argument radius = oneOf({2, 1, 3, 7, 8, 15}).refusing({0, 16, UINT32_MAX});

    const Contract detector = Contract().atLeast(5, 5).drawnFrom(17, 15).onDsp({.alignment = 8});
    const Contract withStatus = detector.atLeast(1, 1);

    static const FunctionGroup group{
        "ravikharris",
        "rvk",
        false,
        {
            RVK_TEST(rvkCornerHarrisu8, photo, width, height, stride, border, corners, room, value, threshold)
                .endingWithoutMemory()
                .keeps(detector),
            RVK_TEST(rvkCornerHarrisInMasku8, photo, width, height, stride, border, corners, room, value, threshold,
                     bits(), bitsAcross, bitsDown)
                .keeps(detector),
            RVK_TEST(rvkCornerHarrisScoreu8, photo, width, height, stride, border, corners, list(most), room, value,
                     threshold)
                .keeps(detector),
            RVK_TEST(rvkCornerHarrisAdaptiveu8, photo, width, height, stride, border, corners, room, value, threshold,
                     threshold)
                .keeps(detector),
            RVK_TEST(rvkLocalHarrisMaxu8, photo, width, height, stride, value, value, value)
                .keeps(detector.atLeast(7, 7).drawnFrom(1, 1)),
            RVK_TEST(rvkGoodFeatureToTracku8, photo, width, height, stride, distance, border, eigenvalue, corners, room,
                     value)
                .keeps(withStatus),
            RVK_TEST(rvkFindMultipleMaximau8, photo, width, height, stride, radius, any, corners, list(most).orNull(),
                     room, value)
                .keeps(withStatus.drawnFrom(1, 1)),
        }};
    return group;
}

const FunctionGroup& cornerSubPixFunctions()
{
    constexpr uint32_t most = 30; // corners
    const Argument corners = updated.ofSize(2 * most).within({columns(-1, 1), rows(-1, 1)});
    const Argument radius = oneOf({5, 1, 2, 3}).refusing({0, 2147483648.0, UINT32_MAX});
    const Argument deadRadius = oneOf({-1, 0, 1, 4, INT32_MAX, INT32_MIN});
    const Argument iterations = oneOf({10, 0, 1, 100, UINT32_MAX});
    const Argument epsilon = oneOf({0.01, 0, -1, 1e30});

    static const FunctionGroup group{
        "ravikcornersubpix",
        "rvk",
        false,
        {
            RVK_TEST(rvkCornerRefineSubPixu8, src.natural(), width, height, stride, corners, capacity(0, most), radius,
                     radius, deadRadius, deadRadius, iterations, epsilon)
                .keeps(Contract().drawnFrom(11, 11).onDsp({.alignment = 8})),
        }};
    return group;
}

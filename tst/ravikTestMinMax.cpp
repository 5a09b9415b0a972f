// MINMAX: smallest and largest element with their places.
#include "groups.h"

#include <ravik/minmax.h>

using namespace arguments;

// Both forms of a function; they share its line in the test table.
#define MIN_MAX_TESTS(function)                                                                                        \
    RVK_TEST(function, src, width, height, stride, value, value, value, value, value, value),                          \
        RVK_TEST_AS(#function "_v2", #function, function##_v2, src, width, height, stride, value, value, value, value, \
                    value, value)

const FunctionGroup& minMaxFunctions()
{
    static const FunctionGroup group{"ravikminmax",
                                     "rvk",
                                     false,
                                     {
                                         MIN_MAX_TESTS(rvkMinMaxLocu8),
                                         MIN_MAX_TESTS(rvkMinMaxLocu16),
                                         MIN_MAX_TESTS(rvkMinMaxLocu32),
                                         MIN_MAX_TESTS(rvkMinMaxLocs16),
                                         MIN_MAX_TESTS(rvkMinMaxLocs32),
                                         MIN_MAX_TESTS(rvkMinMaxLocf32),
                                     }};
    return group;
}

// COPY: copies, and patches that are turned.
#include "groups.h"

#include <ravik/copy.h>

using namespace arguments;

const FunctionGroup& copyFunctions()
{
    // At these angles the patch reaches 11 pixels from its centre, in each direction.
    const Argument orientation = oneOf({4, 3, 5, 6, 12, 13, 14, 15, 21, 24, 30, 32}).refusing({36, UINT32_MAX});
    const Argument centre = oneOf({11}).refusing({10, UINT32_MAX});

    static const FunctionGroup group{"ravikcopy",
                                     "rvk",
                                     false,
                                     {
                                         RVK_TEST(rvkCopy, src, width, height, stride, dst, stride)
                                             .keeps(Contract().onDsp({.alignment = 8, .widthMultiple = 8})),
                                         RVK_TEST(rvkCopyRotated17x17u8, src, width, height, stride, centre, centre,
                                                  orientation, dst.ofSize(17 * 17))
                                             .keeps(Contract().atLeast(23, 23)),
                                     }};
    return group;
}

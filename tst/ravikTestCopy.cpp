// COPY: copies, and patches that are turned.
#include "groups.h"

#include <ravik/copy.h>

using namespace arguments;

const FunctionGroup& copyFunctions()
{
    const Argument orientation = between(0, 35).refusing({36, UINT32_MAX});
    // The patch reaches 8 to 11 pixels from its centre, in each direction.
    const Argument x = at(columns(11, -11)).refusing({7, UINT32_MAX}), y = at(rows(11, -11)).refusing({7, UINT32_MAX});

    static const FunctionGroup group{
        "ravikcopy",
        "rvk",
        false,
        {
            RVK_TEST(rvkCopy, src, width, height, stride, dst, stride)
                .keeps(Contract().onDsp({.alignment = 8, .widthMultiple = 8})),
            RVK_TEST(rvkCopyRotated17x17u8, src, width, height, stride, x, y, orientation, dst.ofSize(17 * 17))
                .keeps(Contract().atLeast(17, 17).drawnFrom(23, 23)),
        }};
    return group;
}

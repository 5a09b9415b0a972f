// Copies.
#include "bench.h"

#include <ravik/copy.h>

namespace {

using namespace bench;

constexpr u32 kPatches = 1000;

// Patches all over the picture, in all orientations.
void copyRotated(const Picture& p)
{
    for (u32 i = 0; i < kPatches; ++i)
        rvkCopyRotated17x17u8(p.in<u8>(), 640, 480, 0, 12 + i * 61 % 616, 12 + i * 37 % 456, i % 36, p.out<u8>());
}

constexpr Row kRows[] = {
    {"rvkCopy", nullptr, streaming(1, 1), RAVIK(rvkCopy(p.in<u8>(), p.width, p.height, 0, p.out<u8>(), 0)),
     OPENCV(p.matIn<u8>().copyTo(p.matOut<u8>())),
     LIBYUV(libyuv::CopyPlane(p.in<u8>(), int(p.width), p.out<u8>(), int(p.width), int(p.width), int(p.height)))},
    {"rvkCopyRotated17x17u8", nullptr, traffic(2 * 17 * 17, 0), copyRotated, nullptr, nullptr, {kPatches, 1}},
};
const Rows registered(kRows);

} // namespace

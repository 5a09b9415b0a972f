// Local binary patterns. The bests are those of the plain kind, whose eight points are pixels.
#include "bench.h"

#include <ravik/lbp.h>

namespace {

using namespace bench;

constexpr Row kRows[] = {
    {"rvkGLBPu8, 8 points, radius 1", "LBP 3x3 u8", traffic(1, 1),
     RAVIK(rvkGLBPu8(p.in<u8>(), p.width, p.height, 0, 1, 8, p.out<u8>(), 0))},
    {"rvkGLBPu8, 8 points, radius 2", nullptr, traffic(1, 1),
     RAVIK(rvkGLBPu8(p.in<u8>(), p.width, p.height, 0, 2, 8, p.out<u8>(), 0))},
    {"rvkGLBPu8, 4 points, radius 2", nullptr, traffic(1, 1),
     RAVIK(rvkGLBPu8(p.in<u8>(), p.width, p.height, 0, 2, 4, p.out<u8>(), 0))},
};
const Rows registered(kRows);

} // namespace

// The points of local binary patterns.
#pragma once

#include <cstdint>

namespace rvk {

// A point of the circle: the four pixels around it, as offsets from the centre, and their weights, which make 2^24 but
// for what rounding them down took. ..0 is above or left of ..1; where a weight is 0 both may be the same.
struct CirclePoint
{
    int32_t x0, y0, x1, y1;
    uint32_t w00, w01, w10, w11; // of (x0, y0), (x1, y0), (x0, y1), (x1, y1)
};

// What is added to the weighted sum: more than the rounding of the weights can have taken.
constexpr uint32_t kBiasOfCircle = 4 * 255;

// Point k of `neighbors` on the circle of this radius; ends the process unless there are 1 to 8.
CirclePoint circlePoint(uint32_t neighbors, uint32_t k, uint32_t radius);

} // namespace rvk
